// PaletteFile.h -- palette files in their three formats, and the smooth resampling of a palette
//
// The stock module that plays palette files compiles this file too: nothing but platform/ below it.
#pragma once

#include "include/module.h"
#include "platform/BaseTypes.h"

#include <string_view>

// Reads a palette file: a full palette of up to 2048 colours, a short one of 236 or a raw 6-bit one of 256, told apart
// by the first bytes. The arrays have room for PALETTE_COLORS_MAX each; what stands in them beyond *pnColors is kept.
// Returns 0, with *pnColors 0 and the arrays as they were, for a file that cannot be read or is none of these. A full
// palette without colours is read well and gives *pnColors 0. [any-thread]
u32 ReadPaletteFile(std::u16string_view path, i32 *pnColors, u8 *pRed, u8 *pGreen, u8 *pBlue);

// The same for a file in memory: all of it, or its first PALETTE_FILE_BYTES + 1 bytes. [any-thread]
constexpr u32 PALETTE_FILE_BYTES = 8 + 3 * PALETTE_COLORS_MAX; // the longest that means something
u32 ReadPaletteBytes(std::string_view bytes, i32 *pnColors, u8 *pRed, u8 *pGreen, u8 *pBlue);

// Resamples one colour gun of a palette of nColors (1 to PALETTE_COLORS_MAX) to PALETTE_COLORS_MAX entries in place:
// straight at both ends, between them by parabolas through each colour and the middles to its neighbours.
// Returns 0 for another number of colours. [any-thread]
u32 InterpolatePalette(u8 *pGun, i32 nColors);
