// StartPlacement.h -- where the windows stand at the start
#pragma once

#include "platform/BaseTypes.h"

struct FrameRect {
    i32 xLeft, yTop, xRight, yBottom; // device pixels of the screen; right and bottom lie outside
};

// The visuals window beside the main window's frame: from its right edge to the right edge of the work area, and twice
// its height. Limited so that at least the smallest side that the window may have remains, on the work area.
FrameRect VisualsStartRect(const FrameRect &rcMain, const FrameRect &rcWork, i32 nSmallestSide);
