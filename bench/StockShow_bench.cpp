// StockShow_bench.cpp -- what the stock modules cost a frame at 720p on one core, and the stock presets on all
//
// A module is hosted as in a show: a plane with the default colour modules, a painter that gives effects something to
// work on, its own controls at their default sources, a simulated sound. Only its draw call is timed, each time next
// to a copy of the plane. Modules and shaders that need OpenGL are left out.
//
// StockShow_bench PART... measures only what has one of the parts in the name of its module or preset.
#include "app/RenderSound.h"
#include "bench/BenchEngine.h"
#include "bench/BenchReport.h"
#include "engine/FrameStep.h"
#include "engine/ModuleSlots.h"
#include "engine/PresetFile.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <string>

namespace {

constexpr i32 WIDTH = 1280;
constexpr i32 HEIGHT = 720;
constexpr u32 FRAME_MS = 17;
constexpr u32 WARMUP_FRAMES = 30;
constexpr u32 MODULE_FRAMES = 90;
constexpr u32 PRESET_FRAMES = 120;
constexpr double MODULE_GOAL_MS = 4;
constexpr double EFFECT_GOAL_COPIES = 3;
constexpr double PRESET_GOAL_MS = 1000.0 / 60;

// The parts of names that were asked for; none: everything.
std::span<char *> aszParts;

bool IsAskedFor(const std::u16string &sName)
{
    return aszParts.empty() || std::any_of(aszParts.begin(), aszParts.end(),
                                           [&](const char *szPart) { return ContainsNoCase(sName, FromUtf8(szPart)); });
}

// The draw calls of the module under test, in milliseconds.
std::vector<double> afDrawMs;
ModuleDrawFrameFn pfnDrawUntimed;

u32 DrawTimed(void *pvContext, PlaneInfo *ppi)
{
    const double fStart = ThreadSeconds();
    const u32 dwResult = pfnDrawUntimed(pvContext, ppi);
    afDrawMs.push_back(1000 * (ThreadSeconds() - fStart));
    return dwResult;
}

void StartEngine()
{
    StartBenchEngine(WIDTH, HEIGHT);
    BindRenderSound(&GlobalSettings.Monitor, 1);
}

void DrawFrame(PresetState *lppsi)
{
    SetFixedTick(TickCount() + FRAME_MS);
    if (!RunFrameStep(lppsi)) {
        std::fprintf(stderr, "there was no frame\n");
        std::exit(1);
    }
}

// ---- Modules

struct Kind {
    u32 dwModuleType;
    u32 dwClass;
    u32 dwBit;
    const char *pszName;
};
constexpr Kind asKind[] = {
    {MODULEINDEX_COLORINTERPOLATOR, MODULECLASS_COLOR, MODULECAP_COLORINTERPOLATOR, "interpolator"},
    {MODULEINDEX_COLORGENERATOR, MODULECLASS_COLOR, MODULECAP_COLORGENERATOR, "generator"},
    {MODULEINDEX_COLOREFFECT, MODULECLASS_COLOR, MODULECAP_COLOREFFECT, "colour effect"},
    {MODULEINDEX_DRAWFULL, MODULECLASS_DRAWING, MODULECAP_FULL, "full"},
    {MODULEINDEX_DRAWPAINTER, MODULECLASS_DRAWING, MODULECAP_PAINTER, "painter"},
    {MODULEINDEX_DRAWEFFECT, MODULECLASS_DRAWING, MODULECAP_EFFECT, "effect"},
};

// Milliseconds of every draw call, and of a copy of the plane after each frame.
struct ModuleTimes {
    std::vector<double> afDraw, afCopy;
};

ModuleSlot *HostModule(PresetState *lppsi, const ModuleRecord &mr, const Kind &kind)
{
    if (kind.dwModuleType != MODULEINDEX_COLORINTERPOLATOR)
        AddModule(lppsi, u"CMShift.dll", 0, MODULEINDEX_COLORINTERPOLATOR, 0, 1);
    if (kind.dwModuleType != MODULEINDEX_COLORGENERATOR)
        AddModule(lppsi, u"CMBreed.dll", 0, MODULEINDEX_COLORGENERATOR, 0, 1);
    if (kind.dwModuleType == MODULEINDEX_DRAWEFFECT)
        AddModule(lppsi, u"PMRotor.dll", 0, MODULEINDEX_DRAWPAINTER, 0, 1);
    return AddModule(lppsi, mr.szDll, 0, kind.dwModuleType, 0, 1);
}

ModuleTimes TimeModule(const ModuleRecord &mr, const Kind &kind, u32 bIndexed)
{
    ModuleTimes times;
    PresetState *lppsi = CreatePresetState(0);
    AddPlane(lppsi, bIndexed, 0);
    ModuleSlot *pms = HostModule(lppsi, mr, kind);
    if (pms) {
        ModuleFunctions timed = *pms->pmf;
        pfnDrawUntimed = timed.pfnDrawFrame;
        timed.pfnDrawFrame = DrawTimed;
        ModuleFunctions *pmf = pms->pmf;
        pms->pmf = &timed;
        HostBitmap *hbmCopy = CreateBitmap(WIDTH, HEIGHT);
        for (u32 i = 0; i < WARMUP_FRAMES + MODULE_FRAMES; i++) {
            if (i == WARMUP_FRAMES)
                afDrawMs.clear();
            DrawFrame(lppsi);
            const HostBitmap *hbmDraw = lppsi->psPlane[0]->Info.hbmDraw;
            const double fStart = ThreadSeconds();
            CopyBitmap(hbmCopy, hbmDraw);
            if (i >= WARMUP_FRAMES)
                times.afCopy.push_back(1000 * (ThreadSeconds() - fStart));
        }
        times.afDraw.swap(afDrawMs);
        DeleteBitmap(hbmCopy);
        pms->pmf = pmf;
    }
    DestroyPresetState(lppsi);
    return times;
}

void ReportModule(const ModuleRecord &mr, const Kind &kind, u32 bIndexed)
{
    const bool bColor = kind.dwClass == MODULECLASS_COLOR;
    const ModuleTimes times = TimeModule(mr, kind, bIndexed);
    const std::string sName = "StockShow/" + ToUtf8(mr.szDll) + " " + kind.pszName +
                              (bColor     ? ""
                               : bIndexed ? ", indexed"
                                          : ", colours");
    ReportFigure(sName.c_str(), Median(times.afDraw), MODULE_GOAL_MS, "ms", BenchGoal::AT_MOST);
    if (kind.dwModuleType == MODULEINDEX_DRAWEFFECT)
        ReportFigure((sName + ", over a copy").c_str(), MedianRatio(times.afDraw, times.afCopy), EFFECT_GOAL_COPIES,
                     "x", BenchGoal::AT_MOST);
}

void ReportModules()
{
    GlobalSettings.ThreadedPlanes = 0;
    for (const Kind &kind : asKind)
        for (u32 iModule = 0; iModule < ModuleCount(); iModule++) {
            const ModuleRecord &mr = *GetModuleRecord(iModule);
            if (mr.md.dwClass != kind.dwClass || !(mr.md.dwCapabilities & kind.dwBit) || mr.md.bNeedsOpenGL ||
                !IsAskedFor(mr.szDll))
                continue;
            const bool bColor = kind.dwClass == MODULECLASS_COLOR;
            if (bColor || mr.md.dwCapabilities & MODULECAP_INDEXED)
                ReportModule(mr, kind, 1);
            if (!bColor && mr.md.dwCapabilities & MODULECAP_RGB)
                ReportModule(mr, kind, 0);
        }
}

// ---- Presets

void ReportPreset(const std::u16string &path)
{
    const PresetRequest request = {path, nullptr};
    if (!SwitchPreset(MakeStoredPreset, &request))
        return;
    std::vector<double> afMs;
    for (u32 i = 0; i < WARMUP_FRAMES + PRESET_FRAMES; i++) {
        const double fMicros = TimeCalls(1, [] { DrawFrame(CurrentPreset()); });
        if (i >= WARMUP_FRAMES)
            afMs.push_back(fMicros / 1000);
    }
    const std::string sName = "StockShow/" + std::filesystem::path(ToUtf8(path)).stem().string();
    ReportFigure(sName.c_str(), Median(afMs), PRESET_GOAL_MS, "ms", BenchGoal::AT_MOST);
}

void ReportPresets()
{
    GlobalSettings.ThreadedPlanes = 1;
    for (const std::u16string &path : ListFiles(FromUtf8(SOURCE_FOLDER "/data/Presets/*.VD")))
        if (!ContainsNoCase(path, u"/Shader - ") && IsAskedFor(path.substr(path.rfind(u'/') + 1)))
            ReportPreset(path);
}

} // namespace

int main(int nArguments, char **aszArgument)
{
    aszParts = {aszArgument + 1, (size_t)nArguments - 1};
    StartEngine();
    ReportModules();
    ReportPresets();
    ShutDownHeadless();
    return 0;
}
