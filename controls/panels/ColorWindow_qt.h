// ColorWindow_qt.h -- the colour window, "Color Palettes": what all planes of the preset make of their colours
#pragma once

#include "toolkit/WindowLayouts.h"

// Its row in the table of windows, PALETTE_WINDOW. One at most. It belongs to the window that it was opened from, and
// outlives presets and the nodes that open it.
extern const WindowKind ColorWindowKind;
