// StartPlacement.h -- where the windows stand at the start
#pragma once

#include "platform/BaseTypes.h"

struct FrameRect {
    i32 xLeft, yTop, xRight, yBottom; // device pixels of the screen; right and bottom lie outside
};

// The visuals window beside the main window's frame: its left edge at the frame's right edge, with as much room at the
// right end of the work area as the frame has at the left, and twice the frame's height, also where that is more than
// the work area has. Where too little room is left it has the smallest side that it may have, within the work area.
FrameRect VisualsStartRect(const FrameRect &rcMain, const FrameRect &rcWork, i32 nSmallestSide);
