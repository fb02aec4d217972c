// PlanePicture.h -- a plane's bitmap, made smaller for a preview
#pragma once

#include "state/PresetState.h"

constexpr i32 PICTURE_ROWS = 4, PICTURE_COLUMNS = 32;

// Pixels to write to, the top row first.
struct PictureTarget {
    u32 *pPixels; // 0xFFRRGGBB
    i32 nWidth;   // 1 to the bitmap's own
    i32 nHeight;
    u64 nStride; // pixels from row to row
};

// Each pixel is the mean of the part of the bitmap that it stands for, of at most PICTURE_ROWS by PICTURE_COLUMNS
// pixels evenly spread over it: of a large bitmap most rows are left alone. [any-thread]
void ShrinkBitmap(const PictureTarget &target, const HostBitmap *hbm);

// Whether its output holds still: no thread is inside of the plane. [main-thread]
bool PlaneCanBeShown(const PlaneState *pps);
