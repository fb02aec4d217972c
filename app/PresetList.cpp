// PresetList.cpp -- prints what the program knows of a folder of presets
#include "app/PresetList.h"

#include "app/RenderStats.h"
#include "library/PresetLibrary.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "modules/ModuleRegistry.h"
#include "platform/FileFacts.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

constexpr i64 SECONDS_1601_TO_1970 = 11644473600;
constexpr u64 UNITS_PER_SECOND = 10000000;

std::string NameOf(const PresetInfo *lppi)
{
    return ToUtf8(NameAndExtension({lppi->szPath, TextLength(lppi->szPath, NAME_CHARS)}));
}

// UTC, as "2026-11-24 17:03:09"; with bIso as "2026-11-24T17:03:09.1234567Z", which loses nothing.
std::string DateText(u64 ftLastWrite, bool bIso)
{
    const time_t nSeconds = static_cast<time_t>(ftLastWrite / UNITS_PER_SECOND) - SECONDS_1601_TO_1970;
    tm date = {};
    char sz[64] = {}, szFraction[16] = {};
    if (!gmtime_r(&nSeconds, &date))
        return "unknown";
    std::strftime(sz, sizeof sz, bIso ? "%Y-%m-%dT%H:%M:%S" : "%Y-%m-%d %H:%M:%S", &date);
    if (bIso)
        std::snprintf(szFraction, sizeof szFraction, ".%07uZ", static_cast<u32>(ftLastWrite % UNITS_PER_SECOND));
    return std::string(sz) + szFraction;
}

std::vector<std::string> ModulesOf(const PresetInfo *lppi)
{
    std::vector<std::string> asName;
    for (u32 i = 0; i < std::min(ModuleCount(), PRESET_MODULES); i++)
        if (lppi->bModuleUsed[i])
            asName.push_back(ToUtf8(GetModuleRecord(i)->szDll));
    return asName;
}

std::string Join(const std::vector<std::string> &asText, const char *pszBetween)
{
    std::string s;
    for (const std::string &sText : asText)
        s += (s.empty() ? "" : pszBetween) + sText;
    return s;
}

// A name on a terminal, one line and without control characters.
std::string Printable(std::string s)
{
    std::replace_if(
        s.begin(), s.end(), [](char ch) { return static_cast<u8>(ch) < 0x20 || ch == 0x7F; }, '?');
    return s;
}

const char *Known(const PresetInfo *lppi, u32 bValue, const char *pszYes, const char *pszNo, const char *pszUnknown)
{
    return !lppi->bSummarized ? pszUnknown : bValue ? pszYes : pszNo;
}

void PrintRow(const PresetInfo *lppi)
{
    std::printf("%s\t%s\t%u\t%s\t%d\t%s\t%s\n", Printable(NameOf(lppi)).c_str(),
                DateText(lppi->ftLastWrite, false).c_str(), lppi->dwSize,
                Known(lppi, lppi->bSoundSync, "Yes", "No", "?"), lppi->nFavor,
                Known(lppi, lppi->bCompatible, "Yes", "No", "?"), Printable(Join(ModulesOf(lppi), ",")).c_str());
}

std::string JsonModules(const PresetInfo *lppi)
{
    if (!lppi->bSummarized)
        return "null";
    std::vector<std::string> asName = ModulesOf(lppi);
    std::transform(asName.begin(), asName.end(), asName.begin(), JsonText);
    return "[" + Join(asName, ", ") + "]";
}

void PrintJson(const PresetInfo *lppi, const char *pszBefore)
{
    std::printf("%s  {\"name\": %s, \"date\": \"%s\", \"size\": %u, \"soundSync\": %s, \"favorites\": %d, "
                "\"compatible\": %s, \"modules\": %s}",
                pszBefore, JsonText(NameOf(lppi)).c_str(), DateText(lppi->ftLastWrite, true).c_str(), lppi->dwSize,
                Known(lppi, lppi->bSoundSync, "true", "false", "null"), lppi->nFavor,
                Known(lppi, lppi->bCompatible, "true", "false", "null"), JsonModules(lppi).c_str());
}

void PrintTable(u32 bJson)
{
    const char *pszBefore = "[\n";
    if (!bJson)
        std::puts("name\tdate\tsize\tsound sync\tfavorites\tcompatible\tmodules");
    ForEachPreset([&](i32, const PresetInfo *lppi) {
        if (bJson)
            PrintJson(lppi, pszBefore);
        else
            PrintRow(lppi);
        pszBefore = ",\n";
    });
    if (bJson)
        std::fputs(*pszBefore == '[' ? "[]\n" : "\n]\n", stdout);
}

void TellLeftOut()
{
    const std::string sLeftOut = DescribePresetsLeftOut();
    if (!sLeftOut.empty())
        std::fprintf(stderr, "vorticade-render: %s\n", sLeftOut.c_str());
}

// A reader that has seen enough needs no message.
int EndOutput()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return 0;
    if (errno != EPIPE)
        std::fprintf(stderr, "vorticade-render: the list cannot be written: %s\n", std::strerror(errno));
    return 1;
}

} // namespace

int ListPresets(const RenderOptions &ro)
{
    const std::u16string folder = AbsolutePath(FromUtf8(ro.list));
    if (!FolderExists(folder)) {
        std::fprintf(stderr, "vorticade-render: %s is not a folder\n", ro.list.c_str());
        return 1;
    }
    FolderListing probe;
    if (!ListFolder(folder, ".vd", 0, &probe)) {
        std::fprintf(stderr, "vorticade-render: the folder %s cannot be read\n", ro.list.c_str());
        return 1;
    }
    if (StartHeadless(ro.start))
        return EXIT_HEADLESS;
    OpenPresetLibrary(folder, JoinPath(JoinPath(folder, u".."), u"Favorites.XML"));
    TellLeftOut();
    ScanPresetFolder(1);
    PrintTable(ro.bJson);
    const int nExit = EndOutput();
    FreePresetLibrary();
    ShutDownHeadless();
    return nExit;
}
