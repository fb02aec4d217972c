// Stretch.h -- nearest-pixel stretch of a whole picture
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

// Pixels to write to. cbRow is the distance from one row to the next in memory order.
struct StretchTarget {
    void *pBits;
    i32 nWidth;
    i32 nHeight;
    u64 cbRow;
};

// Stretches the whole bitmap over the target: target pixel (x, y) takes source pixel (x * source width / target width,
// likewise for y). With bFlip the target's first row in memory is the picture's top. Allocates nothing.
void StretchPicture(const StretchTarget &target, const HostBitmap *hbm, bool bFlip);
