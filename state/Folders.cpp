// Folders.cpp -- the path table and the folder variables
#include "state/Folders.h"

#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <string>

namespace {

constexpr u32 PATH_CHARS = 264;
constexpr u32 EXPANSION_LIMIT = 259;

constexpr const char16_t *apszInitial[] = {
    u"%EXE_BASEFOLDER%",
    u"%DLL_BASEFOLDER%",
    u"%DAT_BASEFOLDER%",
    u"%DAT_BASEFOLDER%\\Globals.XML",
    u"%DAT_BASEFOLDER%\\Favorites.XML",
    u"%DAT_BASEFOLDER%\\Presets",
    u"%DAT_BASEFOLDER%\\Presets\\*.VD",
    u"%DLL_BASEFOLDER%\\*.DLL",
    u"%DAT_BASEFOLDER%\\Fragments",
    u"%DAT_BASEFOLDER%\\Fragments\\*.VDF",
    u"%DAT_BASEFOLDER%\\Images",
    u"%DAT_BASEFOLDER%\\Images\\*.*",
    u"%DAT_BASEFOLDER%\\Shaders",
    u"%DAT_BASEFOLDER%\\Shaders\\*.glsl",
    u"%DLL_BASEFOLDER%\\SoundLevelDLL.dll",
    u"%DAT_BASEFOLDER%\\Palettes",
    u"%DAT_BASEFOLDER%\\Objects",
    u"%DAT_BASEFOLDER%\\ScreenShots",
    u"%EXE_BASEFOLDER%\\ColorTableEditor.exe",
    u"%DAT_BASEFOLDER%\\UI",
    u"%EXE_BASEFOLDER%\\PixelProgramTool.exe",
    u"%DAT_BASEFOLDER%\\ShaderToy",
    u"%DAT_BASEFOLDER%\\ShaderToy\\ShadertoyCache",
    u"%DAT_BASEFOLDER%\\ShaderToy\\Shaders",
    u"%DAT_BASEFOLDER%\\ShaderToy\\Shaders\\*.json",
    u"%DAT_BASEFOLDER%\\ShaderToy\\Playlists",
    u"%DAT_BASEFOLDER%\\ShaderToy\\Playlists\\*.playlist",
};
static_assert(std::size(apszInitial) == PATH_ROWS);

constexpr PathRow aeDataFileFolders[] = {PATH_IMAGES, PATH_PALETTES, PATH_SCREENSHOTS, PATH_SHADERS, PATH_PRESETS};

struct BaseFolders {
    const char16_t *pszType;
    std::u16string exe, dll, dat;
};

char16_t aszPath[PATH_ROWS][PATH_CHARS];
const char16_t *pszConfiguration = u"Unknown";

std::u16string FolderOf(std::u16string_view path)
{
    return WithoutTrailingSeparators(path.substr(0, path.size() - NameAndExtension(path).size()));
}

// A path that is rooted elsewhere, such as that of a stick with a folder of the same name, does not count.
bool LiesIn(std::u16string_view path, std::u16string_view folder)
{
    return FindNoCase(path, std::u16string(folder) + u"/") == 0;
}

BaseFolders FindBaseFolders(std::u16string_view program)
{
    const std::u16string folder = FolderOf(program);
    if (ContainsNoCase(program, u"D:\\C\\Projects\\"))
        return {u"Debugging", folder, folder, u"D:\\Vorticade"};
    const std::u16string programs = WithoutTrailingSeparators(ProgramFilesFolder());
    if (LiesIn(program, programs)) {
        const std::u16string exe = programs + u"\\Ortolanics\\Vorticade";
        return {u"Installed\n", exe, exe + u"\\DLL",
                WithoutTrailingSeparators(RoamingDataFolder()) + u"\\Ortolanics\\Vorticade"};
    }
    return {u"Portable\n", folder, folder + u"\\DLL", folder};
}

std::u16string WithNativeSeparators(std::u16string s)
{
    std::replace(s.begin(), s.end(), u'\\', u'/');
    return s;
}

} // namespace

void InitFolders(const FolderOverrides &overrides)
{
    ASSERT_MAIN_THREAD();
    BaseFolders base = FindBaseFolders(overrides.program.empty() ? ProgramPath() : std::u16string(overrides.program));
    if (!overrides.data.empty())
        base.dat = WithoutTrailingSeparators(AbsolutePath(overrides.data));
    if (!overrides.modules.empty())
        base.dll = WithoutTrailingSeparators(AbsolutePath(overrides.modules));
    pszConfiguration = base.pszType;
    SetVariable("EXE_BASEFOLDER", WithNativeSeparators(base.exe));
    SetVariable("DLL_BASEFOLDER", WithNativeSeparators(base.dll));
    SetVariable("DAT_BASEFOLDER", WithNativeSeparators(base.dat));
    for (u32 i = 0; i < PATH_ROWS; i++)
        CopyText(aszPath[i], EXPANSION_LIMIT + 1, WithNativeSeparators(ExpandVariables(apszInitial[i])));
}

const char16_t *FolderPath(PathRow eRow)
{
    return aszPath[eRow];
}

const char16_t *ConfigurationType()
{
    return pszConfiguration;
}

u32 FindDataFile(char16_t (&szPath)[NAME_CHARS])
{
    const std::u16string_view path(szPath, TextLength(szPath, NAME_CHARS));
    const std::u16string_view name = NameAndExtension(path);
    if (name.empty())
        return 0;
    for (PathRow eRow : aeDataFileFolders) {
        const std::u16string candidate = JoinPath(FolderPath(eRow), name);
        if (candidate.size() < NAME_CHARS && FileExists(candidate)) {
            CopyText(szPath, FromUtf8(NativePath(candidate)));
            return 1;
        }
    }
    return 0;
}

bool LiesInDataFolder(std::u16string_view path)
{
    return ContainsNoCase(WithNativeSeparators(std::u16string(path)), FolderPath(PATH_DATA) + std::u16string(u"/"));
}

u32 MakeDataFileRelative(char16_t (&szPath)[NAME_CHARS])
{
    const std::u16string path(szPath, TextLength(szPath, NAME_CHARS));
    if (!LiesInDataFolder(path))
        return 0;
    CopyText(szPath, NameAndExtension(path));
    return 1;
}
