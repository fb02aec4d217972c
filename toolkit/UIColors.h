// UIColors.h -- the table of the user's colours
#pragma once

#include "platform/BaseTypes.h"
#include "platform/Listeners.h"

enum UIColor : u32 {
    UICOLOR_METER_HIGH = 0,
    UICOLOR_METER_LOW,
    UICOLOR_TIMER_BACKGROUND,
    UICOLOR_TIMER,
    UICOLOR_TILE_ON,
    UICOLOR_TILE_OFF,
    UICOLOR_WINDOW_TEXT,
    UICOLOR_WINDOW_BACKGROUND,
    UICOLOR_TREE_BACKGROUND,
    UICOLOR_TREE_TEXT,
    UICOLOR_TREE_LINE,
    UICOLOR_TREE_ROOT_TEXT,
    UICOLOR_TREE_PLANES_TEXT,
    UICOLOR_TREE_PLANE_TEXT,
    UICOLOR_TREE_BRANCH_TEXT,
    UICOLOR_TREE_TYPE_TEXT,
    UICOLOR_TREE_MODULE_TEXT,
    UICOLOR_TREE_CONTROL_TEXT,
    UICOLOR_LIST_BACKGROUND,
    UICOLOR_LIST_TEXT,
    UICOLOR_LIST_TEXT_BACKGROUND,
    UICOLORS
};

struct UIColorRow {
    const char16_t *pszName; // shown to the user; with "_" for each blank the tag in the settings file
    u32 dwColor;             // 0x00BBGGRR
};

// In the order of the enumeration. Read by painting, written by the settings. [main-thread]
extern UIColorRow UIColorTable[UICOLORS];

// Told that a row has a new colour, and that what was made of the old one is to be made anew. [main-thread]
extern Listeners<void(u32 iRow)> UIColorListeners;

void SetDefaultUIColors();
// Writes the row, without the bits above 0x00FFFFFF. Returns the old colour; 0, and no change, beyond the table.
u32 SetUIColor(u32 iRow, u32 dwColor);
