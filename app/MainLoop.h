// MainLoop.h -- one turn of the frame loop, and the frame timer that stands in for it
#pragma once

#include "platform/BaseTypes.h"
#include "platform/Listeners.h"

// Runs the frame step on the current preset and presents the picture if there is a new one. Non-zero if there was.
// [main-thread]
u32 RunAndPresentFrame();

// Told at the start of every turn, so that a window can bring the modules' view of it up to date: during the frame that
// view stays as it is. [main-thread]
extern Listeners<void()> BeforeFrameListeners;

// What a dialog or the main window reports to RunDialogFrames.
enum class DialogMessage { Init, Destroy, Timer, EnterMenuLoop, EnterSizeMove, ExitMenuLoop, ExitSizeMove, Other };

// The window system's timers, set once by the desktop program. hwnd is whatever identifies a window there.
struct FrameTimerHooks {
    void (*pfnStart)(void *hwnd, u32 dwTimerId, u32 nPeriodMs);
    void (*pfnKill)(void *hwnd, u32 dwTimerId);
};
void SetFrameTimerHooks(const FrameTimerHooks &hooks);

// Keeps frames running while a dialog, a menu or a size or move loop holds the event loop. Called first by every
// dialog with what happens to it. The first holder owns the timer; when it is done, the next one that still holds the
// loop does. Returns 1 when the message was the frame loop's, else 0. [main-thread]
u32 RunDialogFrames(void *hwnd, DialogMessage eMessage, u32 dwTimerId);
u32 FrameTimerId();
// 1000 / FPSTarget ms, within 10 to 100.
u32 FrameTimerPeriodMs();
