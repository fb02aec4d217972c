// FrameStep_bench.cpp -- what a frame costs beside the modules and the mixer
#include "bench/BenchReport.h"

#include "app/SettingsTable.h"
#include "engine/FrameStep.h"
#include "engine/ModuleSlots.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "platform/Clock.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"

#include <cstdlib>

namespace {

constexpr u32 ROUNDS = 60;
constexpr u32 CALLS = 200;
constexpr double STEP_GOAL_US = 50;

u32 GetSteadyLevel(void *, i32, f32 *pfLevel)
{
    static f32 fLevel = 0;
    *pfLevel = fLevel = fLevel < 1 ? fLevel + 0.01f : 0;
    return 1;
}

// Four planes with a module that does nothing, and no rule: the mixer only names the first plane's image.
PresetState *MakeIdlePreset()
{
    InitFolders({{}, {}, FromUtf8(TEST_MODULE_FOLDER)});
    SetDefaultSettings();
    UseFixedClock(1000);
    GlobalSettings.ThreadedPlanes = 0;
    GlobalSettings.nBufferWidth = 1920;
    GlobalSettings.nBufferHeight = 1080;
    GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
    GlobalSettings.Monitor.pfnGetLevel = GetSteadyLevel;
    LoadModule(FromUtf8(TEST_MODULE_FOLDER "/Idle.dll"));
    PresetState *lppsi = CreatePresetState(0);
    for (i32 i = 0; i < PLANES_MAX; i++) {
        AddPlane(lppsi, 1, 0);
        if (!AddModule(lppsi, u"Idle.dll", i, MODULEINDEX_DRAWPAINTER, 0, 1))
            std::abort();
    }
    return lppsi;
}

void StepOnce(PresetState *lppsi)
{
    SetFixedTick(TickCount() + 16);
    if (!RunFrameStep(lppsi))
        std::abort();
}

} // namespace

int main()
{
    PresetState *lppsi = MakeIdlePreset();
    u32 adwWord[68];
    // The reference: the 68 random numbers that a step draws.
    const auto times = TimeInterleaved(
        ROUNDS, CALLS, [&] { StepOnce(lppsi); },
        [&] {
            for (u32 &dw : adwWord)
                dw = RandomWord();
            KeepResult(adwWord);
        });
    ReportFigure("FrameStep/four idle planes at 1080p", Median(times[0]), STEP_GOAL_US, "us", BenchGoal::AT_MOST);
    ReportFigure("FrameStep/against its 68 random numbers alone", MedianRatio(times[0], times[1]), 0, "x",
                 BenchGoal::NONE);
    DestroyPresetState(lppsi);
    UnloadModules();
    return 0;
}
