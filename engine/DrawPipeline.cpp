// DrawPipeline.cpp -- what running a step mask over a slot, a plane or a preset means
#include "engine/DrawPipeline.h"

#include "controls/FluidSources.h"
#include "engine/PlaneThreads.h"
#include "modules/ModuleCalls.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Random.h"
#include "state/GlobalSettings.h"

#include <atomic>

namespace {

// Written between frames. Atomic because a plane that missed its frame's time limit may still be reading.
std::atomic<u64> qwModuleTick{0};

u64 NextResetTick(const ModuleSlot *pms)
{
    return TickCount() + static_cast<u64>(pms->nDuration) * GlobalSettings.TimeScale * 1000;
}

// Turns a pending reset into an initialisation in this run.
u32 ServePendingReset(PlaneInfo *ppi, ModuleSlot *pms, u32 dwSteps)
{
    if (!pms->bResetPending)
        return dwSteps;
    pms->qwNextReset = NextResetTick(pms);
    if (pms->bClearOnReset && ppi->hbmDraw)
        ClearBitmap(ppi->hbmDraw);
    pms->bResetPending = 0;
    return dwSteps | MODSTEP_INIT;
}

void InitializeSlot(PlaneInfo *ppi, ModuleSlot *pms, u32 dwSteps)
{
    if (!(dwSteps & MODSTEP_KEEPVALUES))
        EvaluateControls(pms, true);
    if (ppi->hdc)
        ppi->hdc->qwSeed = RandomWord64();
    CallInitialize(pms, ppi);
}

// How often the slot is to be called in this frame.
u32 CallsInThisFrame(const ModuleSlot *pms)
{
    const i32 nCalls = pms->nCallsPerFrame;
    if (!pms->bActive)
        return 0;
    if (nCalls >= 0)
        return static_cast<u32>(nCalls);
    return GlobalSettings.dwFramesShown % (0u - static_cast<u32>(nCalls)) == 0 ? 1 : 0;
}

bool ResetFallsDue(const ModuleSlot *pms)
{
    if (pms->nDuration == DURATION_NEVER && pms->qwNextReset != 0)
        return false;
    return TickCount() > pms->qwNextReset;
}

// Time-outs count from a drawn frame: a slot fresh from a file (next reset at tick 0) draws once before it resets.
void DrawSlot(PlaneInfo *ppi, ModuleSlot *pms, u32 dwSteps)
{
    for (u32 nCalls = CallsInThisFrame(pms); nCalls > 0; nCalls--) {
        if (dwSteps & MODSTEP_CONTROLS)
            EvaluateControls(pms, false);
        if (!(dwSteps & MODSTEP_DRAW))
            continue;
        if (CallDrawFrame(pms, ppi) == MODULEDRAW_RESET || ResetFallsDue(pms))
            pms->bResetPending = 1;
    }
}

void RunList(PlaneInfo *ppi, PlaneState *pps, u32 dwModuleType, u32 dwSteps)
{
    for (ModuleSlot *pms : pps->apModule[dwModuleType]) {
        if (!pms)
            break;
        RunModuleSlot(ppi, pms, dwSteps);
    }
}

// Lets the first interpolator turn the drawing into the plane's output. A plane without one keeps its output.
void ResolvePlane(PlaneState *pps)
{
    PlaneInfo *ppi = &pps->Info;
    ModuleSlot *pms = pps->apModule[MODULEINDEX_COLORINTERPOLATOR][0];
    if (!pms)
        return;
    RefreshHead(ppi, pms);
    CallResolveIndexedPlane(pms, ppi, ppi->bIndexed ? ppi->hbmResolved : nullptr);
    if (!ppi->bIndexed)
        CopyBitmap(ppi->hbmResolved, ppi->hbmDraw);
}

} // namespace

void SetModuleTick(u64 qwTick)
{
    ASSERT_MAIN_THREAD();
    qwModuleTick.store(qwTick, std::memory_order_relaxed);
}

void RefreshHead(PlaneInfo *ppi, const ModuleSlot *pms)
{
    ppi->dwTimeScale = GlobalSettings.TimeScale;
    ppi->hwndGL = pms->hwndGL;
    if (!ppi->hdc)
        return;
    ppi->hdc->qwTick = qwModuleTick.load(std::memory_order_relaxed);
    ppi->hdc->pSelected = nullptr; // what another module left selected may be gone after a resize
}

void RunModuleSlot(PlaneInfo *ppi, ModuleSlot *pms, u32 dwSteps)
{
    const RandomStreamScope scope(&pms->Random);
    RefreshHead(ppi, pms);
    if (dwSteps & MODSTEP_PREINIT)
        CallPreInitialize(pms, ppi);
    dwSteps = ServePendingReset(ppi, pms, dwSteps);
    if (dwSteps & MODSTEP_INIT)
        InitializeSlot(ppi, pms, dwSteps);
    if (dwSteps & MODSTEPS_FRAME)
        DrawSlot(ppi, pms, dwSteps);
    if (dwSteps & MODSTEP_CLEANUP)
        CallCleanUp(pms);
    if (dwSteps & MODSTEP_DESTROY)
        CallDestroyControlStructure(pms);
}

void RunPlaneModules(PlaneState *pps, u32 dwSteps)
{
    for (u32 i = MODULEINDEX_COLORINTERPOLATOR; i <= MODULEINDEX_DRAWEFFECT; i++)
        RunList(&pps->Info, pps, i, dwSteps);
    if (dwSteps & MODSTEP_DRAW)
        ResolvePlane(pps);
    PlaneInfo piOverlay = OverlayPlaneInfo(pps);
    for (u32 i = MODULEINDEX_OVERLAYFULL; i <= MODULEINDEX_OVERLAYEFFECT; i++)
        RunList(&piOverlay, pps, i, dwSteps);
}

void RunPresetModules(PresetState *lppsi, u32 dwSteps)
{
    ASSERT_MAIN_THREAD();
    for (PlaneState *pps : lppsi->psPlane) {
        if (!pps)
            break;
        if (!pps->bPaused && !PlaneIsBusy(pps))
            RunPlaneModules(pps, dwSteps);
    }
    if (dwSteps & MODSTEP_INIT)
        EvaluateRuleWeights(lppsi, true);
    if (dwSteps & MODSTEP_CONTROLS)
        EvaluateRuleWeights(lppsi, false);
    RunPostProcessing(lppsi, dwSteps & ~static_cast<u32>(MODSTEPS_FRAME));
}

void EvaluateRuleWeights(PresetState *lppsi, bool bReset)
{
    ASSERT_MAIN_THREAD();
    for (u32 i = 0; i < lppsi->nMixRules; i++)
        EvaluateControl(&lppsi->asMixRule[i].BlendWeight, bReset);
}

void RunPostProcessing(PresetState *lppsi, u32 dwSteps)
{
    ASSERT_MAIN_THREAD();
    if (lppsi->phbmOutput)
        lppsi->piPostProc.hbmDraw = *lppsi->phbmOutput;
    for (i32 i = 0; i < lppsi->nPostProc; i++)
        RunModuleSlot(&lppsi->piPostProc, lppsi->apPostProc[i], dwSteps);
}

PlaneInfo OverlayPlaneInfo(const PlaneState *pps)
{
    PlaneInfo pi = pps->Info;
    pi.bIndexed = 0;
    pi.hbmDraw = pi.hbmResolved;
    return pi;
}

void RunSlotInPlace(PresetState *lppsi, PlaneState *pps, u32 dwModuleType, ModuleSlot *pms, u32 dwSteps)
{
    if (!pps) {
        RunModuleSlot(&lppsi->piPostProc, pms, dwSteps);
    } else if (dwModuleType >= MODULEINDEX_OVERLAYFULL) {
        PlaneInfo piOverlay = OverlayPlaneInfo(pps);
        RunModuleSlot(&piOverlay, pms, dwSteps);
    } else {
        RunModuleSlot(&pps->Info, pms, dwSteps);
    }
}
