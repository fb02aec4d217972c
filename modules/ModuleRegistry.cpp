// ModuleRegistry.cpp -- the table of module libraries
#include "modules/ModuleRegistry.h"

#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"
#include "state/Folders.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr i32 FIRST_CAPACITY = 36;

struct ModuleTable {
    i32 nCapacity;
    i32 nCount;
    ModuleRecord *asRecord;
};

ModuleTable Table;

// One row per entry point: its name, its place in ModuleFunctions, and whether a module can do without it.
struct EntryPointRow {
    const char16_t *pszName;
    size_t cbOffset;
    bool bRequired;
};

constexpr EntryPointRow asEntryPoint[] = {
    {u"ModuleGetDescription", offsetof(ModuleFunctions, pfnGetDescription), true},
    {u"ModuleBuildControlStructure", offsetof(ModuleFunctions, pfnBuildControlStructure), true},
    {u"ModulePreInitialize", offsetof(ModuleFunctions, pfnPreInitialize), true},
    {u"ModuleInitialize", offsetof(ModuleFunctions, pfnInitialize), true},
    {u"ModuleDrawFrame", offsetof(ModuleFunctions, pfnDrawFrame), true},
    {u"ModuleCleanUp", offsetof(ModuleFunctions, pfnCleanUp), true},
    {u"ModuleDestroyControlStructure", offsetof(ModuleFunctions, pfnDestroyControlStructure), true},
    {u"ModuleResolveIndexedPlane", offsetof(ModuleFunctions, pfnResolveIndexedPlane), true},
    {u"ModuleMixPlanes", offsetof(ModuleFunctions, pfnMixPlanes), false},
};

u32 GrowTable()
{
    const i32 nCapacity = Table.nCapacity ? Table.nCapacity * 2 : FIRST_CAPACITY;
    auto *asNew = static_cast<ModuleRecord *>(std::calloc(static_cast<size_t>(nCapacity), sizeof(ModuleRecord)));
    if (!asNew)
        return 0;
    if (Table.nCount)
        std::memcpy(asNew, Table.asRecord, static_cast<size_t>(Table.nCount) * sizeof(ModuleRecord));
    std::free(Table.asRecord);
    Table.asRecord = asNew;
    Table.nCapacity = nCapacity;
    return 1;
}

// Tries the path as given, then its name in the module folder. Says on standard error why neither could be loaded.
SharedLibrary *LoadFromPathOrFolder(std::u16string_view path)
{
    std::string sError;
    SharedLibrary *pLibrary = LoadSharedLibrary(path, &sError);
    if (!pLibrary)
        pLibrary = LoadSharedLibrary(JoinPath(FolderPath(PATH_MODULES), NameAndExtension(path)), nullptr);
    if (!pLibrary)
        AddNotice(ToUtf8(path) + " cannot be loaded; no module after it was loaded either (" + sError + ")");
    return pLibrary;
}

// Looks up all entry points. Returns the name of the first required one that is missing, or null.
const char16_t *FindEntryPoints(SharedLibrary *pLibrary, ModuleFunctions *pmf)
{
    const char16_t *pszMissing = nullptr;
    pmf->pLibrary = pLibrary;
    for (const EntryPointRow &row : asEntryPoint) {
        void *pfn = FindEntryPoint(pLibrary, row.pszName);
        std::memcpy(reinterpret_cast<u8 *>(pmf) + row.cbOffset, &pfn, sizeof pfn);
        if (!pfn && row.bRequired && !pszMissing)
            pszMissing = row.pszName;
    }
    return pszMissing;
}

// What a module wrote beyond its texts is its own business; the host's flag is not the module's to set.
void SealDescription(ModuleDescription *pmd)
{
    pmd->szName[std::size(pmd->szName) - 1] = 0;
    pmd->szDescription[std::size(pmd->szDescription) - 1] = 0;
    pmd->szBuild[std::size(pmd->szBuild) - 1] = 0;
    pmd->bUnavailable = 0;
}

} // namespace

u32 LoadModule(std::u16string_view path)
{
    ASSERT_MAIN_THREAD();
    if (Table.nCount >= Table.nCapacity && !GrowTable())
        return 0;
    if (path.empty())
        return 0;
    SharedLibrary *pLibrary = LoadFromPathOrFolder(path);
    if (!pLibrary)
        return 0;
    const std::u16string_view name = NameAndExtension(path);
    ModuleRecord record = {};
    const char16_t *pszMissing = FindEntryPoints(pLibrary, &record.mf);
    if (pszMissing || name.size() >= MODULE_FILE_CHARS) {
        if (record.mf.pfnGetDescription)
            AddNotice(ToUtf8(path) + " is no usable module: " +
                      (pszMissing ? "it lacks " + ToUtf8(pszMissing) : "its name is too long"));
        UnloadSharedLibrary(pLibrary);
        return 1;
    }
    record.mf.pfnGetDescription(&record.md);
    SealDescription(&record.md);
    CopyText(record.szDll, name);
    record.iIndex = Table.nCount;
    Table.asRecord[Table.nCount++] = record;
    return 1;
}

void LoadModuleFolder()
{
    ASSERT_MAIN_THREAD();
    for (const std::u16string &path : ListFiles(FolderPath(PATH_MODULES_PATTERN)))
        if (!LoadModule(path))
            break;
}

void UnloadModules()
{
    for (i32 i = Table.nCount - 1; i >= 0; i--)
        UnloadSharedLibrary(Table.asRecord[i].mf.pLibrary);
    std::free(Table.asRecord);
    Table = {};
}

ModuleRecord *FindModuleRecord(std::u16string_view dll)
{
    for (i32 i = 0; i < Table.nCount; i++)
        if (EqualNoCase(Table.asRecord[i].szDll, dll))
            return &Table.asRecord[i];
    return nullptr;
}

ModuleRecord *GetModuleRecord(u32 iModule)
{
    return iModule < ModuleCount() ? &Table.asRecord[iModule] : nullptr;
}

u32 ModuleCount()
{
    return static_cast<u32>(Table.nCount);
}

bool NeedsOpenGL(const ModuleDescription &md)
{
    return md.bNeedsOpenGL || std::u16string_view(md.szName) == u"Noise";
}

bool AnyModuleNeedsOpenGL()
{
    return std::any_of(Table.asRecord, Table.asRecord + Table.nCount,
                       [](const ModuleRecord &record) { return NeedsOpenGL(record.md); });
}

void MarkOpenGLModulesUnavailable()
{
    for (i32 i = 0; i < Table.nCount; i++)
        if (NeedsOpenGL(Table.asRecord[i].md))
            Table.asRecord[i].md.bUnavailable = 1;
}
