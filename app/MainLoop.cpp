// MainLoop.cpp -- one turn of the frame loop, and the frame timer that stands in for it
#include "app/MainLoop.h"

#include "app/Startup.h"
#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "output/FrameRecorder.h"
#include "output/Presenters.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <vector>

namespace {

FrameTimerHooks Hooks;
std::vector<void *> ahwndHolder; // open dialogs, menus and drags; the first owns the frame timer
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

void *TimerOwner()
{
    return ahwndHolder.empty() ? nullptr : ahwndHolder.front();
}

void PassTimerOn(void *hwndBefore)
{
    if (TimerOwner() == hwndBefore)
        return;
    if (hwndBefore)
        KillFrameTimer(hwndBefore);
    if (TimerOwner())
        StartFrameTimer(TimerOwner());
}

void HoldLoop(void *hwnd)
{
    void *hwndBefore = TimerOwner();
    ahwndHolder.push_back(hwnd);
    PassTimerOn(hwndBefore);
}

// A dialog that is gone holds nothing more; the end of a menu or a drag takes back the last hold of its window.
void ReleaseLoop(void *hwnd, bool bGone)
{
    void *hwndBefore = TimerOwner();
    const auto itLast = std::find(ahwndHolder.rbegin(), ahwndHolder.rend(), hwnd);
    if (bGone)
        std::erase(ahwndHolder, hwnd);
    else if (itLast != ahwndHolder.rend())
        ahwndHolder.erase(std::next(itLast).base());
    PassTimerOn(hwndBefore);
}

} // namespace

Listeners<void()> BeforeFrameListeners;

u32 RunAndPresentFrame()
{
    ASSERT_MAIN_THREAD();
    BeforeFrameListeners.Tell();
    PaceRecorder();
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
    ASSERT_MAIN_THREAD();
    switch (eMessage) {
    case DialogMessage::Init:
        HoldLoop(hwnd);
        return 1;
    case DialogMessage::Destroy:
        ReleaseLoop(hwnd, true);
        return 1;
    case DialogMessage::Timer:
        if (dwTimerId != FrameTimerId())
            return 0;
        if (bFrameTimerRunning)
            RunAndPresentFrame();
        return 1;
    case DialogMessage::EnterMenuLoop:
    case DialogMessage::EnterSizeMove:
        HoldLoop(hwnd);
        return 0;
    case DialogMessage::ExitMenuLoop:
    case DialogMessage::ExitSizeMove:
        ReleaseLoop(hwnd, false);
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
