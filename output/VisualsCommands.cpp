// VisualsCommands.cpp -- what can be asked of the visuals window, and the keys and menu entries that ask for it
#include "output/VisualsCommands.h"

#include "output/FrameRecorder.h"
#include "output/Overlays.h"
#include "output/RecordingSettings.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <bitset>

namespace {

constexpr i32 THICKNESS_MAX = 30;
constexpr i32 THICKNESS_FIRST = 6;
constexpr i32 THICKNESS_STORED_MAX = 32;
constexpr i32 RATE_MIN = 20, RATE_MAX = 480;
constexpr i32 SMALLEST_SIDE = 128; // without the frame
constexpr u32 RECORD_DELAY_MS = 3000;

using enum VisualsCommand;

// clang-format off
constexpr WindowSize asSize[] = {
    {u"640 x 480 (480p)", 640, 480},
    {u"720 x 480", 720, 480},
    {u"800 x 600", 800, 600},
    {u"1024 x 768", 1024, 768},
    {u"1280 x 720 (720p)", 1280, 720},
    {u"1280 x 800,", 1280, 800},
    {u"1280 x 1024", 1280, 1024},
    {u"1360 x 768,", 1360, 768},
    {u"1400 x 1050", 1400, 1050},
    {u"1600 x 1200", 1600, 1200},
    {u"1680 x 1050", 1680, 1050},
    {u"1920 x 1080 (1080p)", 1920, 1080},
    {u"1920 x 1200", 1920, 1200},
    {u"2560 x 1440 (1440p)", 2560, 1440},
};
constexpr u32 SIZES = std::size(asSize);

constexpr VisualsMenuRow asMenuHead[] = {
    {MenuRow::Entry, u"Maximize", FullScreenOn, 0},
    {MenuRow::Entry, u"Restore", FullScreenOff, 0},
    {MenuRow::SubMenu, u"Window Size", None, 0},
};
constexpr VisualsMenuRow asMenuTail[] = {
    {MenuRow::EndOfSubMenu, nullptr, None, 0},
    {MenuRow::Line, nullptr, None, 0},
    {MenuRow::Entry, u"Always on Top", AlwaysOnTop, 0},
    {MenuRow::Line, nullptr, None, 0},
    {MenuRow::Entry, u"Display frame rate\tF", ToggleOverlay, OVERLAY_FRAME_RATE},
    {MenuRow::Entry, u"Display backbuffer metrics\tR", ToggleOverlay, OVERLAY_METRICS},
    {MenuRow::Entry, u"Display preset name\tT", ToggleOverlay, OVERLAY_PRESET_NAME},
    {MenuRow::Entry, u"Display keyboard commands\tH", ToggleOverlay, OVERLAY_KEY_HELP},
    {MenuRow::Entry, u"Display preset info\tI", ToggleOverlay, OVERLAY_MESSAGES},
    {MenuRow::Line, nullptr, None, 0},
    {MenuRow::Entry, u"Screen Capture\tS", ScreenCapture, 0},
    {MenuRow::SubMenu, u"Recording", None, 0},
    {MenuRow::Entry, u"Record for 10 seconds", RecordSeconds, 10},
    {MenuRow::Entry, u"Record for 20 seconds", RecordSeconds, 20},
    {MenuRow::Entry, u"Record for 30 seconds", RecordSeconds, 30},
    {MenuRow::Entry, u"Record for 1 minute", RecordSeconds, 60},
    {MenuRow::Entry, u"Toggle frame recorder", RecordSeconds, RECORD_SECONDS_ENDLESS},
    {MenuRow::Entry, u"Recording Options...", RecordingOptions, 0},
    {MenuRow::EndOfSubMenu, nullptr, None, 0},
    {MenuRow::Line, nullptr, None, 0},
    {MenuRow::Entry, u"Exit Vorticade", Exit, 0},
};
constexpr u32 MENU_ROWS = std::size(asMenuHead) + SIZES + std::size(asMenuTail);

struct KeyRow {
    u32 dwKey;
    bool bUp;      // acts when it is released
    bool bRepeats; // acts again and again while it is held down
    VisualsCommand eCommand;
    u32 dwArgument;
};
constexpr KeyRow asKey[] = {
    {'F', false, false, ToggleOverlay, OVERLAY_FRAME_RATE},
    {'H', false, false, ToggleOverlay, OVERLAY_KEY_HELP},
    {'I', false, false, ToggleOverlay, OVERLAY_MESSAGES},
    {'R', false, false, ToggleOverlay, OVERLAY_METRICS},
    {'T', false, false, ToggleOverlay, OVERLAY_PRESET_NAME},
    {'S', false, false, ScreenCapture, 0},
    {KEY_PAGE_UP, false, true, FrameThicker, 0},
    {KEY_PAGE_DOWN, false, true, FrameThinner, 0},
    {KEY_RIGHT, true, false, NextPreset, 0},
    {KEY_LEFT, true, false, PreviousPreset, 0},
    {KEY_BACKSPACE, true, false, PreviousPreset, 0},
    {KEY_TAB, true, false, StartAutoplay, 0},
    {KEY_SPACE, true, false, Favor, 0},
    {KEY_PAD_PLUS, true, false, RaiseRate, 0},
    {KEY_PAD_MINUS, true, false, LowerRate, 0},
    {KEY_ESCAPE, true, false, FullScreenOff, 0},
};
// clang-format on

VisualsWindowHooks Hooks;

void SetFullScreen(u32 bOn)
{
    if (bFullScreen == bOn)
        return;
    bFullScreen = bOn;
    if (Hooks.pfnSetFullScreen)
        Hooks.pfnSetFullScreen(Hooks.pvWindow, bOn);
}

void SetClientSize(u32 iRow)
{
    SetFullScreen(0);
    if (iRow < SIZES && Hooks.pfnSetClientSize)
        Hooks.pfnSetClientSize(Hooks.pvWindow, asSize[iRow].nWidth, asSize[iRow].nHeight);
}

void ToggleTopmost(u32)
{
    bAlwaysOnTop = !bAlwaysOnTop;
    if (Hooks.pfnSetTopmost)
        Hooks.pfnSetTopmost(Hooks.pvWindow, bAlwaysOnTop);
}

void ChangeThickness(i32 nBy)
{
    GlobalSettings.FrameThickness = std::clamp(GlobalSettings.FrameThickness + nBy, 0, THICKNESS_MAX);
    if (Hooks.pfnFrameChanged)
        Hooks.pfnFrameChanged(Hooks.pvWindow);
    RelayoutOverlays();
}

void ChangeRate(i32 nBy)
{
    GlobalSettings.FPSTarget = std::clamp(GlobalSettings.FPSTarget + nBy, RATE_MIN, RATE_MAX);
}

void OpenRecordingOptions(u32)
{
    if (Hooks.pfnRecordingOptions)
        Hooks.pfnRecordingOptions(Hooks.pvWindow);
}

struct CommandRow {
    VisualsCommand eCommand;
    void (*pfnRun)(u32 dwArgument);
};

// clang-format off
constexpr CommandRow asCommand[] = {
    {FullScreenOn, [](u32) { SetFullScreen(1); }},
    {FullScreenOff, [](u32) { SetFullScreen(0); }},
    {ToggleFullScreen, [](u32) { SetFullScreen(!bFullScreen); }},
    {ClientSize, SetClientSize},
    {AlwaysOnTop, ToggleTopmost},
    {VisualsCommand::ToggleOverlay, ::ToggleOverlay},
    {ScreenCapture, [](u32) { bCaptureRequested = 1; }},
    {RecordSeconds, [](u32 dwSeconds) { ToggleFrameRecorder(RECORD_DELAY_MS, dwSeconds); }},
    {RecordingOptions, OpenRecordingOptions},
    {FrameThicker, [](u32) { ChangeThickness(1); }},
    {FrameThinner, [](u32) { ChangeThickness(-1); }},
    {RaiseRate, [](u32) { ChangeRate(1); }},
    {LowerRate, [](u32) { ChangeRate(-1); }},
    {NextPreset, [](u32) { bNextPending = 1; }},
    {PreviousPreset, [](u32) { bPrevPending = 1; }},
    {StartAutoplay, [](u32) { bStartPending = 1; }},
    {Favor, [](u32) { bFavorPending = 1; }},
    {Exit, [](u32) { CloseVisualsWindow(); }},
};
// clang-format on

std::bitset<256> abKeyDown; // keys whose press was seen here

// Notes a press; of a release, says whether its press was seen.
bool KeyCounts(const KeyEvent &event)
{
    if (event.dwKey >= abKeyDown.size() || event.bRepeat)
        return event.bRepeat && !event.bUp;
    const bool bWasDown = abKeyDown[event.dwKey];
    abKeyDown[event.dwKey] = !event.bUp && !event.bSystem;
    return !event.bUp || bWasDown;
}

} // namespace

u32 bFullScreen = 0;
u32 bAlwaysOnTop = 0;
u32 bCaptureRequested = 0;
u32 bNextPending = 0;
u32 bPrevPending = 0;
u32 bStartPending = 0;
u32 bFavorPending = 0;

std::span<const WindowSize> WindowSizes()
{
    return asSize;
}

std::span<const VisualsMenuRow> VisualsMenu()
{
    static VisualsMenuRow asMenu[MENU_ROWS];
    VisualsMenuRow *pTo = std::copy(std::begin(asMenuHead), std::end(asMenuHead), asMenu);
    for (u32 i = 0; i < SIZES; i++)
        *pTo++ = {MenuRow::Entry, asSize[i].pszName, ClientSize, i};
    std::copy(std::begin(asMenuTail), std::end(asMenuTail), pTo);
    return asMenu;
}

// Keystrokes to other programs are not there yet. A recording that runs can be stopped whatever was chosen meanwhile.
bool VisualsCommandIsEnabled(VisualsCommand eCommand)
{
    return eCommand != RecordSeconds || GlobalSettings.bRecording ||
           GlobalSettings.FrameRecordMethod == RECORD_METHOD_FRAMES;
}

bool VisualsCommandIsChecked(VisualsCommand eCommand)
{
    return eCommand == AlwaysOnTop && bAlwaysOnTop;
}

void SetVisualsWindowHooks(const VisualsWindowHooks &hooks)
{
    Hooks = hooks;
}

void RunVisualsCommand(VisualsCommand eCommand, u32 dwArgument)
{
    for (const CommandRow &row : asCommand)
        if (row.eCommand == eCommand)
            row.pfnRun(dwArgument);
}

bool HandleVisualsKey(const KeyEvent &event)
{
    const bool bCounts = KeyCounts(event);
    if (event.bSystem)
        return true;
    for (const KeyRow &row : asKey)
        if (row.dwKey == event.dwKey && row.bUp == event.bUp) {
            if (bCounts && (!event.bRepeat || row.bRepeats))
                RunVisualsCommand(row.eCommand, row.dwArgument);
            return true;
        }
    return false;
}

void ForgetVisualsKeys()
{
    abKeyDown.reset();
}

void CloseVisualsWindow()
{
    if (Hooks.pfnClose)
        Hooks.pfnClose(Hooks.pvWindow);
}

void HandleVisualsWheel(i32 nDelta)
{
    if (nDelta)
        RunVisualsCommand(nDelta >= 1 ? FrameThicker : FrameThinner, 0);
}

i32 SmallestVisualsSide()
{
    return 2 * GlobalSettings.FrameThickness + SMALLEST_SIDE;
}

void SetUpFrameThickness()
{
    if (GlobalSettings.FrameThickness == 0)
        GlobalSettings.FrameThickness = THICKNESS_FIRST;
    GlobalSettings.FrameThickness = std::clamp(GlobalSettings.FrameThickness, 0, THICKNESS_STORED_MAX);
}
