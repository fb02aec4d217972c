// ColourReduction.h -- a picture in at most 256 colours
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <vector>

constexpr u32 REDUCED_COLOURS_MAX = 256;

struct ReducedPicture {
    u32 nColours;
    u8 abRgb[REDUCED_COLOURS_MAX * 3]; // red, green, blue of each colour
    std::vector<u8> indexes;           // a byte for each pixel, top row first
};

// The picture's own colours if there are at most 256 of them. Else the colours that serve it best, with the error of
// each pixel spread over its neighbours (Floyd and Steinberg), so that areas keep their mean colour. The same picture
// gives the same bytes. [any-thread]
void ReduceColours(ReducedPicture *pReduced, const HostBitmap *hbm);
