// Panels.h -- panels of the preset tree's nodes: which one a node gets, where it opens, what it says, how it edits
//
// A panel edits one node and has no data of its own: each edit goes through the door of edits at once. All of this on
// the main thread.
#pragma once

#include "editing/PresetEdit.h"
#include "editing/PresetTree.h"
#include "toolkit/WindowLayouts.h"

constexpr i32 PANEL_TIMER_MS = 100; // how often an open panel follows what it shows

enum class PanelKind : u32 {
    None,
    Unknown, // of a control whose type the program does not know
    Description,
    Number,
    Boolean,
    Item,
    Tile,
    FileSelect,
    Module,
    Plane,
    Planes,
    ModuleList,
    Colors,
    Mixer,
    Count
};
PanelKind PanelKindOf(const TreeNode *pNode);

// All in device pixels of the screen, rectangles of frames as the user sees them; right and bottom lie outside.
struct PanelPlace {
    WindowRect rcMain; // the main window
    WindowRect rcWork; // what docks leave free of the panel's screen
    i32 nWidth, nHeight;
    i32 yPointer;
};
// Beside the main window: to its right if the panel ends left of the work area's edge there, else to its left; its
// middle at the pointer's height as far as it stays between the main window's top and bottom, and within the work area.
WindowRect PlacePanel(const PanelPlace &place);

// What the description box of a control says: its description and the sentence about its dependency.
std::u16string DescriptionText(const ControlRecord *pctl);
