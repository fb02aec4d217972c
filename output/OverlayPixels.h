// OverlayPixels.h -- the pixels of an overlay's frame, and its blending over the picture
#pragma once

#include "output/mixer/Stretch.h"
#include "platform/BaseTypes.h"

#include <vector>

// Pixels 0xAARRGGBB, top row first, without gaps between the rows.
struct OverlayPicture {
    i32 nWidth = 0;
    i32 nHeight = 0;
    std::vector<u32> adwPixel;
};

// Fills the picture with opaque black and draws the frame: textured along the outermost four pixels, in mirrored tiles,
// shaded by a ramp; or a raised edge. An empty texture counts as a white one.
void DrawOverlayFrame(OverlayPicture *pPicture, u32 dwFrameStyle, const OverlayPicture &texture);
// Brings an opaque picture to the form that BlendOverlay wants: the constant alpha multiplied in, and nothing at all
// where the colour key (red 1, green 2, blue 3) stands. True: the key does stand somewhere.
bool MakeOverlayTranslucent(u32 *pdwPixel, u64 nPixels, u8 bAlpha);

// A translucent picture, ready to be blended. bAlpha is that of its pixels; with bKeyed some have 0.
struct TranslucentPicture {
    const u32 *pdwPixel; // 0xAARRGGBB, top row first
    i32 nWidth;
    i32 nHeight;
    u64 cbRow;
    u8 bAlpha;
    bool bKeyed;
};
// Blends it over the target, whose first row in memory is the top, with its top left at x, y. What lies outside is cut.
// Allocates nothing.
void BlendOverlay(const StretchTarget &target, i32 x, i32 y, const TranslucentPicture &picture);
