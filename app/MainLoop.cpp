// MainLoop.cpp -- one turn of the frame loop, and the frame timer that stands in for it
#include "app/MainLoop.h"

#include "app/GlobalSettings.h"
#include "app/Startup.h"
#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "output/Presenters.h"

#include <algorithm>

namespace {

FrameTimerHooks Hooks;
void *hwndTimerOwner = nullptr; // the dialog that owns the frame timer
u32 bFrameTimerRunning = 0;

void StartFrameTimer(void *hwnd)
{
    if (Hooks.pfnStart)
        Hooks.pfnStart(hwnd, FrameTimerId(), FrameTimerPeriodMs());
    bFrameTimerRunning = 1;
}

void KillFrameTimer(void *hwnd)
{
    if (Hooks.pfnKill)
        Hooks.pfnKill(hwnd, FrameTimerId());
    bFrameTimerRunning = 0;
}

void OwnTimer(void *hwnd)
{
    if (hwndTimerOwner)
        return;
    hwndTimerOwner = hwnd;
    StartFrameTimer(hwnd);
}

void DisownTimer(void *hwnd)
{
    if (hwndTimerOwner != hwnd)
        return;
    hwndTimerOwner = nullptr;
    KillFrameTimer(hwnd);
}

} // namespace

u32 RunAndPresentFrame()
{
    PresetState *lppsi = CurrentPreset();
    if (!RunFrameStep(lppsi))
        return 0;
    PresentFrame(lppsi->phbmOutput ? *lppsi->phbmOutput : nullptr);
    return 1;
}

void SetFrameTimerHooks(const FrameTimerHooks &hooks)
{
    Hooks = hooks;
}

u32 RunDialogFrames(void *hwnd, DialogMessage eMessage, u32 dwTimerId)
{
    switch (eMessage) {
    case DialogMessage::Init:
        OwnTimer(hwnd);
        return 1;
    case DialogMessage::Destroy:
        DisownTimer(hwnd);
        return 1;
    case DialogMessage::Timer:
        if (dwTimerId != FrameTimerId())
            return 0;
        if (bFrameTimerRunning)
            RunAndPresentFrame();
        return 1;
    case DialogMessage::EnterMenuLoop:
    case DialogMessage::EnterSizeMove:
        if (!hwndTimerOwner)
            StartFrameTimer(hwnd);
        return 0;
    case DialogMessage::ExitMenuLoop:
    case DialogMessage::ExitSizeMove:
        if (!hwndTimerOwner)
            KillFrameTimer(hwnd);
        return 0;
    case DialogMessage::Other:
        break;
    }
    return 0;
}

u32 FrameTimerId()
{
    static const u32 dwId = NextTimerId();
    return dwId;
}

u32 FrameTimerPeriodMs()
{
    return static_cast<u32>(std::clamp(1000 / std::max(GlobalSettings.FPSTarget, 1), 10, 100));
}
