// PresetFile_bench.cpp -- loading, switching and saving a full preset of four planes and 32 modules
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"

#include "app/SettingsTable.h"
#include "engine/DrawPipeline.h"
#include "engine/MixRules.h"
#include "engine/ModuleSlots.h"
#include "engine/PresetFile.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "platform/Clock.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

constexpr u32 ROUNDS = 30;
constexpr double PARSE_GOAL_US = 2000;
constexpr double SWITCH_GOAL_US = 16000;
constexpr double SAVE_GOAL_US = 5000;
constexpr i32 RULES = 3; // what joins four planes

struct KindedModule {
    u32 dwModuleType;
    const char16_t *pszDll;
};
constexpr KindedModule asModule[] = {
    {MODULEINDEX_COLORINTERPOLATOR, u"CMShift.dll"}, {MODULEINDEX_COLORGENERATOR, u"CMBreed.dll"},
    {MODULEINDEX_DRAWPAINTER, u"PMArc.dll"},         {MODULEINDEX_DRAWPAINTER, u"PMRotor.dll"},
    {MODULEINDEX_DRAWPAINTER, u"PMArc.dll"},         {MODULEINDEX_DRAWPAINTER, u"PMRotor.dll"},
    {MODULEINDEX_DRAWEFFECT, u"PMGust.dll"},         {MODULEINDEX_DRAWEFFECT, u"PMGust.dll"},
};

void SetSize(i32 nWidth, i32 nHeight)
{
    GlobalSettings.nBufferWidth = nWidth;
    GlobalSettings.nBufferHeight = nHeight;
}

void Start()
{
    InitFolders({{}, {}, FromUtf8(STOCK_MODULE_FOLDER)});
    SetDefaultSettings();
    UseFixedClock(1000);
    GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
    LoadModuleFolder();
}

// What loading does besides reading the file.
PresetState *BuildFullPreset()
{
    PresetState *lppsi = AllocatePresetState();
    for (i32 iPlane = 0; iPlane < PLANES_MAX; iPlane++) {
        AddPlane(lppsi, 1, 0);
        for (const KindedModule &row : asModule)
            if (!AddModule(lppsi, row.pszDll, iPlane, row.dwModuleType, 0, 1))
                std::abort();
    }
    for (i32 i = 0; i < RULES; i++)
        AddMixRule(lppsi)->MixOp = MIXOP_BLEND;
    SetUpPostProcessing(lppsi);
    return lppsi;
}

// Everything differs from its default, so that all of it stands in the file.
void ChangeEveryControl(PresetState *lppsi)
{
    const auto change = [](ModuleSlot *pms) {
        for (i32 i = 0; i < pms->nControls; i++)
            if (pms->apControl[i]->Base.dwType >= CONTROLTYPE_INTEGER)
                pms->apControl[i]->Base.dwSource = FLUIDSOURCE_WAVE;
    };
    for (i32 iPlane = 0; iPlane < lppsi->nPlanes; iPlane++)
        for (u32 iKind = 0; iKind < MODULEINDEX_MIXER; iKind++)
            for (i32 i = 0; i < lppsi->psPlane[iPlane]->anModules[iKind]; i++)
                change(lppsi->psPlane[iPlane]->apModule[iKind][i]);
}

std::string TextOf(PresetState *lppsi)
{
    XmlContext *pxc = XmlCreate();
    WritePreset(pxc, lppsi);
    const std::string s = ToUtf8(XmlDocumentText(pxc));
    XmlClose(pxc);
    return s;
}

void Require(bool b)
{
    if (!b)
        std::abort();
}

void BenchParsing(const std::string &sText)
{
    SetSize(16, 16);
    std::vector<double> afLoad, afBuild, afParse;
    for (u32 i = 0; i < 5 * ROUNDS; i++) {
        afLoad.push_back(CpuOfCalls(1, [&] { Require(DestroyPresetState(LoadPresetText(sText))); }));
        afBuild.push_back(CpuOfCalls(1, [] { DestroyPresetState(BuildFullPreset()); }));
        afParse.push_back(afLoad.back() - afBuild.back());
    }
    ReportFigure("PresetFile/parsing 32 modules, bring-up apart", Median(afParse), PARSE_GOAL_US, "us",
                 BenchGoal::AT_MOST);
    ReportFigure("PresetFile/loading against building the same", MedianRatio(afLoad, afBuild), 0, "x", BenchGoal::NONE);
}

void BenchSwitching(const std::u16string &path)
{
    SetSize(1920, 1080);
    const PresetRequest request = {path, nullptr};
    const auto times = TimeInterleaved(
        ROUNDS, 1, [&] { Require(SwitchPreset(MakeStoredPreset, &request)); },
        [] { SwitchPreset([](const void *) { return BuildFullPreset(); }, nullptr); });
    SwitchPreset(nullptr, nullptr);
    ReportFigure("PresetFile/switching at 1080p", Median(times[0]), SWITCH_GOAL_US, "us", BenchGoal::AT_MOST);
    ReportFigure("PresetFile/switching against building the same", MedianRatio(times[0], times[1]), 0, "x",
                 BenchGoal::NONE);
}

// The reference: the same bytes written to a file and flushed.
void BenchSaving(PresetState *lppsi, const std::string &sText, const std::u16string &path)
{
    const std::string sPlain = ToUtf8(path) + ".plain";
    const auto times = TimeInterleaved(
        ROUNDS, 5, [&] { Require(SavePresetFile(lppsi, path)); },
        [&] {
            const int fd = open(sPlain.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            Require(write(fd, sText.data(), sText.size()) > 0 && fsync(fd) == 0);
            close(fd);
        });
    ReportFigure("PresetFile/saving 32 modules, tmpfs", Median(times[0]), SAVE_GOAL_US, "us", BenchGoal::AT_MOST);
    ReportFigure("PresetFile/saving against a plain write", MedianRatio(times[0], times[1]), 0, "x", BenchGoal::NONE);
}

} // namespace

int main()
{
    Start();
    const BenchFolder folder(FolderPlace::Memory);
    const std::u16string path = FromUtf8((folder.Path() / "Full.VD").string());
    SetSize(16, 16);
    PresetState *lppsi = BuildFullPreset();
    ChangeEveryControl(lppsi);
    const std::string sText = TextOf(lppsi);
    std::printf("the file has %zu bytes\n", sText.size());
    BenchSaving(lppsi, sText, path);
    DestroyPresetState(lppsi);
    BenchParsing(sText);
    BenchSwitching(path);
    UnloadModules();
    return 0;
}
