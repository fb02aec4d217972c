// StretchedCopy.h -- copies pixels to another size, each taken from the nearest one
#pragma once

#include "platform/BaseTypes.h"

// A rectangle of pixels; rows may lie further apart than they are wide.
struct PixelView {
    u32 *pPixels;
    size_t nStride; // pixels from row to row; at least nWidth
    i32 nWidth;
    i32 nHeight;
};

// Fills `to` from all of `from`: column x comes from column trunc(x * from.nWidth / to.nWidth), rows alike. No
// averaging. An empty rectangle on either side copies nothing. The two must not overlap. [any-thread]
void CopyStretched(const PixelView &to, const PixelView &from);
