// FrameStep.cpp -- the heartbeat: one frame, when one is due
#include "engine/FrameStep.h"

#include "engine/DrawPipeline.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetManager.h"
#include "engine/SoundSampling.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>

namespace {

i64 qwLastFrameCount = 0; // start of the last step that passed the gate
i64 nHeldUntil = 0;       // performance count; no step passes before it
i64 nStepStart = 0;       // the same moment on the real clock
FrameStages Stages;

i64 FrameInterval()
{
    static const i64 qwPerfFrequency = PerfFrequency();
    return qwPerfFrequency / std::max(GlobalSettings.FPSTarget, 1);
}

// From start to start: a late frame does not make the next one come early.
bool FrameIsDue()
{
    const i64 qwNow = PerfCounter();
    if (qwNow - qwLastFrameCount <= FrameInterval() || qwNow < nHeldUntil)
        return false;
    qwLastFrameCount = qwNow;
    return true;
}

void ServePendingResize(PresetState *lppsi)
{
    if (!GlobalSettings.bResizePending)
        return;
    GlobalSettings.bResizePending = 0;
    StopPlaneThreads();
    ResizePresetBuffers(lppsi, GlobalSettings.DetailScale);
}

void MixAndPostProcess(PresetState *lppsi)
{
    const i64 nDrawn = RealNanoseconds();
    MixPlanes(lppsi, GlobalSettings.MixInParallel);
    const i64 nMixed = RealNanoseconds();
    RunPostProcessing(lppsi, MODSTEPS_FRAME);
    Stages = {nDrawn - nStepStart, nMixed - nDrawn, RealNanoseconds() - nMixed};
}

u32 StepHere(PresetState *lppsi)
{
    StopPlaneThreads();
    ServePendingResize(lppsi);
    if (lppsi->nPlanes == 0)
        return 0;
    RunPresetModules(lppsi, MODSTEPS_FRAME);
    MixAndPostProcess(lppsi);
    return 1;
}

u32 StepOnThreads(PresetState *lppsi)
{
    if (lppsi->nPlanes == 0)
        return 0;
    StartPlaneThreads();
    if (!PlaneThreadsRun())
        return StepHere(lppsi);
    if (!DrawPlanesOnThreads(lppsi, GlobalSettings.dwPlaneWaitMs))
        return 0;
    EvaluateRuleWeights(lppsi, false);
    MixAndPostProcess(lppsi);
    ServePendingResize(lppsi);
    return 1;
}

} // namespace

u32 RunFrameStep(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    if (!FrameIsDue() || !lppsi)
        return 0;
    nStepStart = RealNanoseconds();
    SetModuleTick(TickCount());
    SampleSound();
    return GlobalSettings.ThreadedPlanes ? StepOnThreads(lppsi) : StepHere(lppsi);
}

const FrameStages &LastFrameStages()
{
    return Stages;
}

i64 NextFrameCount()
{
    return std::max(qwLastFrameCount + FrameInterval() + 1, nHeldUntil);
}

void HoldFrames(i64 nUntilCount)
{
    nHeldUntil = nUntilCount;
}
