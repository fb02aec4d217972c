// ColorStrips.h -- the pixels of the colour window: a strip a plane with its colours, its transition and its progress
//
// All on the main thread. Pixels have the form 0xFFRRGGBB, the top row first.
#pragma once

#include "include/module.h"
#include "state/GlobalSettings.h"

#include <span>

constexpr i32 COLOR_TIMER_MS = 50; // how often the window follows what it shows

// The check boxes of the window, each with its setting.
struct ColorSwitch {
    const char16_t *pszText;
    u32 GlobalSettingsRecord::*pbOn;
};
std::span<const ColorSwitch> ColorSwitches();

// What a strip shows of a plane, copied: modules write the originals whenever they run. Zero-filled: no colours. The
// colours have the form 0x00RRGGBB.
struct ColorState {
    i32 nColors;
    u32 adwColor[PALETTE_COLORS_MAX]; // beyond nColors 0
    u32 adwFrom[PALETTE_COLORS_MAX];  // the two palettes of the transition
    u32 adwTo[PALETTE_COLORS_MAX];
    i32 nStep, nSteps; // under way while nStep < nSteps
};
// Non-zero: something is another than before.
u32 TakeColorState(ColorState *pcs, const PlaneInfo &pi);

// Rows of the window from yTop to before yBottom.
struct ColorStripPlace {
    i32 yTop, yBottom;
};
// Of strip i of nStrips in a window of nHeight rows: all of the same height but for one row, with nGap rows between.
ColorStripPlace PlaceColorStrip(i32 i, i32 nStrips, i32 nHeight, i32 nGap);

// Fills the picture, which is nWidth wide. The parts that it shows are those of the settings; the meter at the bottom
// leaves the bands the rest, so that it hides none. 0: there are no colours, and nothing is filled.
u32 DrawColorStrip(const ColorState &cs, const GlobalSettingsRecord &settings, i32 nWidth, std::span<u32> picture);
