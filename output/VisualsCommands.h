// VisualsCommands.h -- what can be asked of the visuals window, and the keys and menu entries that ask for it
#pragma once

#include "platform/BaseTypes.h"
#include "toolkit/Commands.h"

#include <span>

struct WindowSize {
    const char16_t *pszName;
    i32 nWidth, nHeight; // of the client area in device pixels
};
std::span<const WindowSize> WindowSizes();

// The context menu from top to bottom.
CommandTable VisualsMenu();
// A recording that runs can be stopped whatever was chosen meanwhile.
bool RecordingCanBeAsked();

// What the window itself does, set by it. Null members: there is no window.
struct VisualsWindowHooks {
    void *pvWindow;
    void (*pfnSetFullScreen)(void *pvWindow, u32 bOn);
    void (*pfnSetClientSize)(void *pvWindow, i32 nWidth, i32 nHeight);
    void (*pfnSetTopmost)(void *pvWindow, u32 bOn);
    void (*pfnFrameChanged)(void *pvWindow); // the smallest size is another one
    void (*pfnRecordingOptions)(void *pvWindow);
    void (*pfnClose)(void *pvWindow);
};
void SetVisualsWindowHooks(const VisualsWindowHooks &hooks);

// All on the main thread.
void SetVisualsFullScreen(u32 bOn);
// Leaves full screen for it. iRow of WindowSizes(); nothing beyond.
void SetVisualsSize(u32 iRow);
void OpenRecordingOptions();
// True if the key means something here.
bool HandleVisualsKey(const KeyEvent &event);
// The window lost the keyboard: presses of before are forgotten.
void ForgetVisualsKeys();
// Ends the show; nothing where there is no window.
void CloseVisualsWindow();
// Vertical wheel delta: away from the user is above 0. 0: nothing.
void HandleVisualsWheel(i32 nDelta);
// Smallest client size in both directions, device pixels.
i32 SmallestVisualsSide();
// Brings the stored thickness to what the program starts with: 0 means 6.
void SetUpFrameThickness();

extern u32 bFullScreen;
extern u32 bAlwaysOnTop; // not stored

// Requests of the keys, taken by timers. Main thread.
extern u32 bCaptureRequested; // the next frame is saved as a picture
extern u32 bNextPending;      // autoplay: next preset
extern u32 bPrevPending;      // autoplay: the one before
extern u32 bStartPending;     // autoplay: on or off
extern u32 bFavorPending;     // one more favour for the preset that plays
