// FluidSources_bench.cpp -- the evaluation of a full slot of controls against the bare sines in it
#include "bench/BenchReport.h"

#include "controls/ControlManager.h"
#include "controls/FluidSources.h"
#include "platform/Clock.h"
#include "state/GlobalSettings.h"

namespace {

constexpr unsigned ROUNDS = 101;
constexpr unsigned CALLS = 200;

ModuleSlot Slot;
f32 afAngle[CONTROLS_MAX];
f32 afSine[CONTROLS_MAX];
SoundFrame Sound;

// Integers, floats and booleans in turn, each on a sine of its own period and phase.
void BuildSlot()
{
    BeginControls(&Slot);
    for (u32 i = 0; i < CONTROLS_MAX; i++) {
        constexpr u32 adwType[] = {CONTROLTYPE_INTEGER, CONTROLTYPE_FLOAT, CONTROLTYPE_BOOLEAN};
        ControlRecord *pctl = AllocControl(&Slot.nControls);
        pctl->Base.dwType = adwType[i % 3];
        if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
            pctl->Integer.nMax = 255;
        else if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
            pctl->Float.fMax = 1.0f;
        else
            pctl->Boolean.fThreshold = 0.5f;
        pctl->Base.nWavePeriod = 400 + 900 * i;
        pctl->Base.fWavePhase = static_cast<f32>(i) / CONTROLS_MAX;
    }
    EndControls(&Slot);
}

void SetSources(u32 dwSource, u32 dwWaveType, u32 nSamples)
{
    for (ControlRecord *pctl : Slot.apControl) {
        pctl->Base.dwSource = dwSource;
        pctl->Base.dwWaveType = dwWaveType;
        pctl->Base.nSamples = nSamples;
    }
}

// The angles whose sines the controls take at this tick.
void TakeAngles(u64 qwTick)
{
    for (u32 i = 0; i < CONTROLS_MAX; i++) {
        const u32 nPeriod = EffectiveWavePeriod(Slot.apControl[i]);
        const u64 t = qwTick + static_cast<u64>(static_cast<f32>(nPeriod) * Slot.apControl[i]->Base.fWavePhase);
        afAngle[i] = static_cast<f32>(t % nPeriod) / static_cast<f32>(nPeriod) * 6.28f;
    }
}

void Evaluate()
{
    EvaluateControls(&Slot, false);
    KeepResult(Slot);
}

void BareSines()
{
    for (u32 i = 0; i < CONTROLS_MAX; i++)
        afSine[i] = std::sin(afAngle[i]);
    KeepResult(afSine);
    KeepResult(afAngle);
}

} // namespace

int main()
{
    GlobalSettings.TimeScale = 1;
    GlobalSettings.pSound = &Sound;
    UseSystemClock();
    BuildSlot();
    TakeAngles(TickCount());

    SetSources(FLUIDSOURCE_WAVE, WAVETYPE_SINE, 0);
    const auto [afWave, afBare] = TimeInterleaved(ROUNDS, CALLS, Evaluate, BareSines);
    ReportFigure("FluidSources/140 controls on a sine", Median(afWave), 10, "us", BenchGoal::AT_MOST);
    ReportFigure("FluidSources/140 controls over 140 bare sines", MedianRatio(afWave, afBare), 0, "x", BenchGoal::NONE);

    SetSources(FLUIDSOURCE_SOUND, WAVETYPE_SINE, SOUND_HISTORY);
    const auto [afSound] = TimeInterleaved(ROUNDS, CALLS, Evaluate);
    ReportFigure("FluidSources/140 controls on the smoothest sound", Median(afSound), 10, "us", BenchGoal::AT_MOST);

    SetSources(FLUIDSOURCE_FIXED, WAVETYPE_SINE, 0);
    const auto [afFixed] = TimeInterleaved(ROUNDS, CALLS, Evaluate);
    ReportFigure("FluidSources/140 fixed controls", Median(afFixed), 10, "us", BenchGoal::AT_MOST);

    for (ControlRecord *pctl : Slot.apControl)
        FreeControl(pctl);
    return 0;
}
