// MainCommands.cpp -- the menu bar and the tool buttons of the main window
#include "mainwindow/MainCommands.h"

#include "mainwindow/SiblingPrograms.h"
#include "output/Overlays.h"
#include "output/VisualsCommands.h"
#include "toolkit/WindowLayouts.h"

namespace {

const MainActions &Actions(void *pvContext)
{
    return *static_cast<const MainActions *>(pvContext);
}

template <void (*MainActions::*pfn)(void *pvWindow)> void Do(u32, void *pvContext)
{
    const MainActions &actions = Actions(pvContext);
    (actions.*pfn)(actions.pvWindow);
}

// Windows go by their names alone: what the command does, the table of windows knows.
template <const char16_t *const &pszName> void RunWindow(u32, void *pvContext)
{
    RunWindowCommand(pszName, Actions(pvContext).pvWindow);
}

template <const char16_t *const &pszName> bool WindowMarked(u32, void *)
{
    return WindowIsMarked(pszName) != 0;
}

void OpenSibling(u32 eRow, void *pvContext)
{
    const std::u16string path = FindSiblingProgram(static_cast<PathRow>(eRow));
    if (!path.empty())
        Actions(pvContext).pfnOpenProgram(Actions(pvContext).pvWindow, path);
}

// The overlays of the visuals window, by the key that stands for each there.
struct OverlayKey {
    u32 dwKey;
    OverlayId eOverlay;
};
constexpr OverlayKey asOverlayKey[] = {
    {'F', OVERLAY_FRAME_RATE}, {'R', OVERLAY_METRICS}, {'T', OVERLAY_PRESET_NAME}, {'H', OVERLAY_KEY_HELP}};

void PressVisualsKey(u32 dwKey, void *)
{
    HandleVisualsKey({dwKey, false, false, false});
}

bool OverlayIsShown(u32 dwKey, void *)
{
    for (const OverlayKey &row : asOverlayKey)
        if (row.dwKey == dwKey)
            return asOverlay[row.eOverlay].bShown != 0;
    return false;
}

// Its window does not exist yet.
bool NotYet(u32, void *)
{
    return false;
}

void DoNothing(u32, void *)
{
}

constexpr CommandKey Ctrl(char cKey)
{
    return {static_cast<u32>(cKey), MODIFIER_CTRL};
}

// clang-format off
constexpr Command asFileMenu[] = {
    {.pszText = u"&New", .pfnRun = Do<&MainActions::pfnNew>, .key = Ctrl('N')},
    {.pszText = u"Open", .pfnRun = Do<&MainActions::pfnOpen>, .key = Ctrl('O')},
    {.pszText = u"&Save", .pfnRun = Do<&MainActions::pfnSaveAs>, .key = Ctrl('S')},
    {.pszText = u"Save as...", .pfnRun = Do<&MainActions::pfnSaveAs>},
    {.pszText = u"&Exit", .pfnRun = Do<&MainActions::pfnExit>, .key = Ctrl('Q')},
};

constexpr Command asSettingsMenu[] = {
    {.pszText = u"Performance Options...", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"User Interface Options...", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Recording Options...", .pfnRun = RunWindow<RECORDING_DIALOG>},
};

constexpr Command asVisualsMenu[] = {
    {.pszText = u"Display frame rate", .pfnRun = PressVisualsKey, .dwArgument = 'F', .pfnChecked = OverlayIsShown},
    {.pszText = u"Display backbuffer metrics", .pfnRun = PressVisualsKey, .dwArgument = 'R', .pfnChecked = OverlayIsShown},
    {.pszText = u"Display preset name", .pfnRun = PressVisualsKey, .dwArgument = 'T', .pfnChecked = OverlayIsShown},
    {.pszText = u"Display keyboard commands", .pfnRun = PressVisualsKey, .dwArgument = 'H', .pfnChecked = OverlayIsShown},
};

constexpr Command asLayoutsMenu[] = {
    {.pszText = u"Load Layout", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Save Layout", .pfnRun = DoNothing, .pfnEnabled = NotYet},
};

constexpr Command asViewMenu[] = {
    {.pszText = u"Visuals Window", .children = asVisualsMenu},
    {.pszText = u"Color Monitor...", .pfnRun = RunWindow<PALETTE_WINDOW>, .pfnChecked = WindowMarked<PALETTE_WINDOW>},
    {.pszText = u"Sound Monitor...", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Preset Browser...", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Palette Editor...", .pfnRun = OpenSibling, .dwArgument = PATH_PALETTE_EDITOR},
    {.pszText = u"Shader Editor...", .pfnRun = OpenSibling, .dwArgument = PATH_SHADER_EDITOR},
    {.pszText = u"&Move/Size Windows Together", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Window &Snap-to-Edge", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"Window Layouts", .children = asLayoutsMenu},
};

constexpr Command asHelpMenu[] = {
    {.pszText = u"&Check for Updates", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"&License", .pfnRun = DoNothing, .pfnEnabled = NotYet},
    {.pszText = u"&About...", .pfnRun = DoNothing, .pfnEnabled = NotYet, .key = {KEY_F1}},
};

constexpr Command asMenuBar[] = {
    {.pszText = u"&File", .children = asFileMenu},
    {.pszText = u"Settings", .children = asSettingsMenu},
    {.pszText = u"&View", .children = asViewMenu},
    {.pszText = u"&Help", .children = asHelpMenu},
};

constexpr Command asToolButton[] = {
    {.pszText = u"New", .pfnRun = Do<&MainActions::pfnNew>, .pszToolTip = u"Begin New Preset", .pszIcon = "new"},
    {.pszText = u"Open", .pfnRun = Do<&MainActions::pfnOpen>, .pszToolTip = u"Open a Preset File", .pszIcon = "open"},
    {.pszText = u"Save As", .pfnRun = Do<&MainActions::pfnSaveAs>, .pszToolTip = u"Save to Preset File", .pszIcon = "saveas"},
    {.pszText = u"Update Available", .pfnRun = DoNothing, .pfnEnabled = NotYet, .pszIcon = "update"},
    {.pszText = u"Shader Editor", .pfnRun = OpenSibling, .dwArgument = PATH_SHADER_EDITOR,
     .pszToolTip = u"Launch the GLSL Pixel Shader Editor", .pszIcon = "shadereditor"},
    {.pszText = u"Palette Editor", .pfnRun = OpenSibling, .dwArgument = PATH_PALETTE_EDITOR,
     .pszToolTip = u"Launch the Palette Editor", .pszIcon = "paletteeditor"},
    {.pszText = u"Colors Window", .pfnRun = RunWindow<PALETTE_WINDOW>,
     .pszToolTip = u"Display the Colors window", .pszIcon = "colors"},
    {.pszText = u"Preset Browser", .pfnRun = DoNothing, .pfnEnabled = NotYet,
     .pszToolTip = u"Display the Preset Browser window", .pszIcon = "browser"},
};

constexpr Command sSoundButton = {.pszText = u"Sound Options", .pfnRun = DoNothing, .pfnEnabled = NotYet,
    .pszToolTip = u"Current sound detection status. Press to launch Sound Options.", .pszIcon = "quiet"};
// clang-format on

} // namespace

CommandRows MainMenu()
{
    return asMenuBar;
}

CommandRows MainToolButtons()
{
    return asToolButton;
}

const Command &SoundButton()
{
    return sSoundButton;
}
