// VisualsCommands.cpp -- what can be asked of the visuals window, and the keys and menu entries that ask for it
#include "output/VisualsCommands.h"

#include "output/FrameRecorder.h"
#include "output/Overlays.h"
#include "output/RecordingSettings.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"
#include "toolkit/WindowLayouts.h"

#include <algorithm>

namespace {

constexpr i32 THICKNESS_MAX = 30;
constexpr i32 THICKNESS_FIRST = 6;
constexpr i32 THICKNESS_STORED_MAX = 32;
constexpr i32 RATE_MIN = 20, RATE_MAX = 480;
constexpr i32 SMALLEST_SIDE = 128; // without the frame
constexpr u32 RECORD_DELAY_MS = 3000;

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
// clang-format on

VisualsWindowHooks Hooks;

void ToggleTopmost()
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

void AddSizes(std::vector<CommandItem> *pItems, u32, void *)
{
    for (u32 i = 0; i < SIZES; i++)
        pItems->push_back({asSize[i].pszName, i});
}

void RunFullScreen(u32 bOn, void *)
{
    SetVisualsFullScreen(bOn);
}

void RunSize(u32 iRow, void *)
{
    SetVisualsSize(iRow);
}

void RunTopmost(u32, void *)
{
    ToggleTopmost();
}

bool IsTopmost(u32, void *)
{
    return bAlwaysOnTop;
}

void RunOverlay(u32 iOverlay, void *)
{
    ToggleOverlay(iOverlay);
}

void RunCapture(u32, void *)
{
    bCaptureRequested = 1;
}

void RunRecording(u32 dwSeconds, void *)
{
    ToggleFrameRecorder(RECORD_DELAY_MS, dwSeconds);
}

bool CanRecord(u32, void *)
{
    return RecordingCanBeAsked();
}

// Where the program was started without it.
void AddMainWindow(std::vector<CommandItem> *pItems, u32, void *)
{
    if (FindWindowLayout(MAIN_WINDOW) && !WindowIsOpen(MAIN_WINDOW))
        pItems->push_back({u"Main Window", 0});
}

void BringMainWindow(u32, void *)
{
    OpenWindow(MAIN_WINDOW, nullptr, 1);
}

void RunExit(u32, void *)
{
    CloseVisualsWindow();
}

// clang-format off
constexpr Command asSizeMenu[] = {
    {.pfnRun = RunSize, .pfnItems = AddSizes},
};
constexpr Command asRecordingMenu[] = {
    {u"Record for 10 seconds", RunRecording, 10, CanRecord},
    {u"Record for 20 seconds", RunRecording, 20, CanRecord},
    {u"Record for 30 seconds", RunRecording, 30, CanRecord},
    {u"Record for 1 minute", RunRecording, 60, CanRecord},
    {u"Toggle frame recorder", RunRecording, RECORD_SECONDS_ENDLESS, CanRecord},
};
constexpr Command asMenu[] = {
    {u"Maximize", RunFullScreen, 1},
    {u"Restore", RunFullScreen, 0},
    {.pszText = u"Window Size", .children = asSizeMenu},
    COMMAND_LINE,
    {.pszText = u"Always on Top", .pfnRun = RunTopmost, .pfnChecked = IsTopmost},
    COMMAND_LINE,
    {.pszText = u"Display frame rate", .pfnRun = RunOverlay, .dwArgument = OVERLAY_FRAME_RATE, .key = {'F'}},
    {.pszText = u"Display backbuffer metrics", .pfnRun = RunOverlay, .dwArgument = OVERLAY_METRICS, .key = {'R'}},
    {.pszText = u"Display preset name", .pfnRun = RunOverlay, .dwArgument = OVERLAY_PRESET_NAME, .key = {'T'}},
    {.pszText = u"Display keyboard commands", .pfnRun = RunOverlay, .dwArgument = OVERLAY_KEY_HELP, .key = {'H'}},
    {.pszText = u"Display preset info", .pfnRun = RunOverlay, .dwArgument = OVERLAY_MESSAGES, .key = {'I'}},
    COMMAND_LINE,
    {.pszText = u"Screen Capture", .pfnRun = RunCapture, .key = {'S'}},
    {.pszText = u"Recording", .children = asRecordingMenu},
    COMMAND_LINE,
    {.pfnRun = BringMainWindow, .pfnItems = AddMainWindow},
    {u"Exit Vorticade", RunExit},
};

// What the menu does not show.
constexpr Command asKey[] = {
    {.children = asMenu},
    {.pfnRun = [](u32, void *) { ChangeThickness(1); }, .key = {.dwKey = KEY_PAGE_UP, .bRepeats = true}},
    {.pfnRun = [](u32, void *) { ChangeThickness(-1); }, .key = {.dwKey = KEY_PAGE_DOWN, .bRepeats = true}},
    {.pfnRun = [](u32, void *) { bNextPending = 1; }, .key = {.dwKey = KEY_RIGHT, .bUp = true}},
    {.pfnRun = [](u32, void *) { bPrevPending = 1; }, .key = {.dwKey = KEY_LEFT, .bUp = true}},
    {.pfnRun = [](u32, void *) { bPrevPending = 1; }, .key = {.dwKey = KEY_BACKSPACE, .bUp = true}},
    {.pfnRun = [](u32, void *) { bStartPending = 1; }, .key = {.dwKey = KEY_TAB, .bUp = true}},
    {.pfnRun = [](u32, void *) { bFavorPending = 1; }, .key = {.dwKey = KEY_SPACE, .bUp = true}},
    {.pfnRun = [](u32, void *) { ChangeRate(1); }, .key = {.dwKey = KEY_PAD_PLUS, .bUp = true}},
    {.pfnRun = [](u32, void *) { ChangeRate(-1); }, .key = {.dwKey = KEY_PAD_MINUS, .bUp = true}},
    {.pfnRun = RunFullScreen, .dwArgument = 0, .key = {.dwKey = KEY_ESCAPE, .bUp = true}},
};
// clang-format on

CommandKeys Keys;

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

CommandTable VisualsMenu()
{
    return {asMenu};
}

// Keystrokes to other programs are not there yet.
bool RecordingCanBeAsked()
{
    return GlobalSettings.bRecording || GlobalSettings.FrameRecordMethod == RECORD_METHOD_FRAMES;
}

void SetVisualsWindowHooks(const VisualsWindowHooks &hooks)
{
    ASSERT_MAIN_THREAD();
    Hooks = hooks;
}

void SetVisualsFullScreen(u32 bOn)
{
    ASSERT_MAIN_THREAD();
    if (bFullScreen == bOn)
        return;
    bFullScreen = bOn;
    if (Hooks.pfnSetFullScreen)
        Hooks.pfnSetFullScreen(Hooks.pvWindow, bOn);
}

void SetVisualsSize(u32 iRow)
{
    ASSERT_MAIN_THREAD();
    SetVisualsFullScreen(0);
    if (iRow < SIZES && Hooks.pfnSetClientSize)
        Hooks.pfnSetClientSize(Hooks.pvWindow, asSize[iRow].nWidth, asSize[iRow].nHeight);
}

bool HandleVisualsKey(const KeyEvent &event)
{
    ASSERT_MAIN_THREAD();
    return Keys.Handle({asKey}, event);
}

void ForgetVisualsKeys()
{
    ASSERT_MAIN_THREAD();
    Keys.Forget();
}

void CloseVisualsWindow()
{
    ASSERT_MAIN_THREAD();
    if (Hooks.pfnClose)
        Hooks.pfnClose(Hooks.pvWindow);
}

void HandleVisualsWheel(i32 nDelta)
{
    ASSERT_MAIN_THREAD();
    if (nDelta)
        ChangeThickness(nDelta >= 1 ? 1 : -1);
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
