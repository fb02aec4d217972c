// Folders_test.cpp -- how the program finds its folders, and files in them
#include "platform/Text.h"
#include "state/Folders.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

const std::u16string typeBeforeInit = ConfigurationType();

std::string Row(PathRow eRow)
{
    return ToUtf8(FolderPath(eRow));
}

std::string Variable(const char *pszName)
{
    const char *psz = std::getenv(pszName);
    return psz ? psz : "(unset)";
}

class Folders : public testing::Test {
  protected:
    void SetUp() override
    {
        setenv("XDG_DATA_HOME", (folder / "share").c_str(), 1);
    }
    void UseData(const fs::path &data) const
    {
        InitFolders({u"/media/stick/vorticade", FromUtf8(data.string()), {}});
    }
    // The path that is found, or a note that the buffer was left as it was.
    std::string Find(std::u16string_view path) const
    {
        NameText sz;
        CopyText(sz, path);
        const u32 bFound = FindDataFile(sz);
        if (!bFound)
            return sz == std::u16string(path) ? "not found" : "changed";
        return fs::path(ToUtf8(sz)).lexically_relative(folder).string();
    }
    std::string Shorten(std::u16string_view path) const
    {
        NameText sz;
        CopyText(sz, path);
        const u32 bDone = MakeDataFileRelative(sz);
        return (bDone ? "" : "kept: ") + ToUtf8(sz);
    }

    TempFolder folder;
};

} // namespace

TEST_F(Folders, AProgramUnderTheProgramFilesUsesTheFixedFolderAndTheUsersData)
{
    EXPECT_EQ(typeBeforeInit, u"Unknown");
    InitFolders({u"/opt/Any/Name/vorticade", {}, {}});
    const std::string sData = (folder / "share/Ortolanics/Vorticade").string();
    EXPECT_EQ(std::u16string(ConfigurationType()), u"Installed\n");
    EXPECT_EQ(Row(PATH_PROGRAM), "/opt/Ortolanics/Vorticade");
    EXPECT_EQ(Row(PATH_MODULES), "/opt/Ortolanics/Vorticade/DLL");
    EXPECT_EQ(Row(PATH_PRESETS_PATTERN), sData + "/Presets/*.VD");
    EXPECT_EQ(Variable("EXE_BASEFOLDER"), "/opt/Ortolanics/Vorticade");
    EXPECT_EQ(Variable("DLL_BASEFOLDER"), "/opt/Ortolanics/Vorticade/DLL");
    EXPECT_EQ(Variable("DAT_BASEFOLDER"), sData);

    setenv("XDG_DATA_HOME", "relative/does/not/count", 1);
    setenv("HOME", "/home/somebody", 1);
    InitFolders({u"/OPT/vorticade", {}, {}});
    EXPECT_EQ(std::u16string(ConfigurationType()), u"Installed\n");
    EXPECT_EQ(Row(PATH_DATA), "/home/somebody/.local/share/Ortolanics/Vorticade");
}

TEST_F(Folders, AProgramElsewhereKeepsEverythingBesideItself)
{
    for (const char16_t *pszFolder : {u"/media/stick/Vorticade", u"/media/stick/opt/Vorticade", u"/options"}) {
        InitFolders({std::u16string(pszFolder) + u"/vorticade", {}, {}});
        const std::string sFolder = ToUtf8(pszFolder);
        EXPECT_EQ(std::u16string(ConfigurationType()), u"Portable\n");
        EXPECT_EQ(Row(PATH_PROGRAM), sFolder);
        EXPECT_EQ(Row(PATH_SOUND_LIBRARY), sFolder + "/DLL/SoundLevelDLL.dll");
        EXPECT_EQ(Row(PATH_GLOBALS), sFolder + "/Globals.XML");
        EXPECT_EQ(Row(PATH_SHADERTOY_PLAYLISTS_PATTERN), sFolder + "/ShaderToy/Playlists/*.playlist");
    }
    InitFolders({}); // this very program
    EXPECT_EQ(Row(PATH_PROGRAM), fs::read_symlink("/proc/self/exe").parent_path().string());
}

TEST_F(Folders, ADevelopersTreeHasTheModulesBesideTheProgram)
{
    InitFolders({u"/mnt/d:\\c\\projects\\Vorticade\\x64\\vorticade.exe", {}, {}});
    EXPECT_EQ(std::u16string(ConfigurationType()), u"Debugging");
    EXPECT_EQ(Row(PATH_PROGRAM), "/mnt/d:/c/projects/Vorticade/x64");
    EXPECT_EQ(Row(PATH_MODULES), Row(PATH_PROGRAM));
    EXPECT_EQ(Row(PATH_DATA), "D:/Vorticade");
}

TEST_F(Folders, TheCommandLineReplacesDataAndModuleFolders)
{
    const fs::path before = fs::current_path();
    fs::create_directories(folder / "My %HOME% data");
    fs::current_path(folder);
    InitFolders({u"/opt/vorticade", u"My %HOME% data//", u"."});
    fs::current_path(before);
    const std::string sFolder = fs::canonical(folder).string();
    EXPECT_EQ(Row(PATH_PROGRAM), "/opt/Ortolanics/Vorticade");
    EXPECT_EQ(Row(PATH_WINDOW_LAYOUTS), sFolder + "/My %HOME% data/UI");
    EXPECT_EQ(Row(PATH_MODULES_PATTERN), sFolder + "/*.DLL");
    EXPECT_EQ(Variable("DAT_BASEFOLDER"), sFolder + "/My %HOME% data");

    UseData("/" + std::string(300, 'x'));
    for (u32 i = PATH_PRESETS; i <= PATH_PRESETS_PATTERN; i++)
        EXPECT_EQ(Row(static_cast<PathRow>(i)).size(), 259u);
}

TEST_F(Folders, ADataFileIsFoundInTheFirstFolderThatHasIt)
{
    UseData(folder);
    for (const char *psz : {"Presets/a.png", "Shaders/a.png", "ScreenShots/a.png", "Palettes/a.png", "Images/a.png"}) {
        folder.Write(psz); // each later one comes before the others
        EXPECT_EQ(Find(u"C:\\Old\\Place\\a.png"), psz);
        EXPECT_EQ(Find(u"A.PNG"), psz);
    }
    folder.Write("Objects/b.png");
    fs::create_directories(folder / "Images/c.png");
    folder.Write("Presets/c.png");
    EXPECT_EQ(Find(u"b.png"), "not found");
    EXPECT_EQ(Find(u"/old/c.png"), "Presets/c.png"); // a folder of that name is no file
    EXPECT_EQ(Find(u"a.png/"), "not found");
    EXPECT_EQ(Find(u".."), "not found");
    EXPECT_EQ(Find(u""), "not found");
    EXPECT_EQ(Find(std::u16string(259, u'n')), "not found");
}

TEST_F(Folders, OnlyAPathInsideTheDataFolderIsShortened)
{
    UseData("/srv/Vorticade Data");
    EXPECT_EQ(Shorten(u"/srv/Vorticade Data/Images/a.png"), "a.png");
    EXPECT_EQ(Shorten(u"\\SRV\\vorticade data\\Images\\a.png"), "a.png");
    EXPECT_EQ(Shorten(u"/srv/Vorticade Data/a.b.c"), "a.b.c");
    EXPECT_EQ(Shorten(u"/srv/Pictures/a.png"), "kept: /srv/Pictures/a.png");
    EXPECT_EQ(Shorten(u"/srv/Vorticade Data 2/a.png"), "kept: /srv/Vorticade Data 2/a.png");
    EXPECT_EQ(Shorten(u"a.png"), "kept: a.png");
    EXPECT_EQ(Shorten(u""), "kept: ");
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    UseData(".");
    fs::current_path(before);
    EXPECT_EQ(Shorten(u"/srv/Pictures/a.png"), "kept: /srv/Pictures/a.png");
}
