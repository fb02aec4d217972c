// PaletteFile.cpp -- palette files in their three formats, and the smooth resampling of a palette
#include "stock/shared/PaletteFile.h"

#include "platform/WholeFile.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr u32 MARK_FULL = 0x42006900;
constexpr u32 MARK_SHORT = 0x42004200;
constexpr u32 SHORT_COLORS = 236;
constexpr u32 SHORT_BYTES = SHORT_COLORS * 4;
constexpr u32 RAW_BYTES = 768;
constexpr u32 RAW_COLORS = 256;
constexpr u32 RAW_RECORDS = 254;             // behind the four bytes that told the format
constexpr f32 STEP_OF_ENTRY = 0.0004885198f; // 1 / 2047

// Where a palette is read to.
struct Guns {
    u8 *pRed;
    u8 *pGreen;
    u8 *pBlue;
};

u8 ByteAt(std::string_view bytes, size_t i)
{
    return static_cast<u8>(bytes[i]);
}

u32 WordAt(std::string_view bytes, size_t i)
{
    return ByteAt(bytes, i) | static_cast<u32>(ByteAt(bytes, i + 1)) << 8 |
           static_cast<u32>(ByteAt(bytes, i + 2)) << 16 | static_cast<u32>(ByteAt(bytes, i + 3)) << 24;
}

// Red, green, blue, and cbRecord bytes on to the next.
void TakeRecords(std::string_view bytes, size_t iFirst, u32 cbRecord, u32 nColors, const Guns &guns)
{
    for (u32 i = 0; i < nColors; i++) {
        const size_t iRecord = iFirst + size_t{cbRecord} * i;
        guns.pRed[i] = ByteAt(bytes, iRecord);
        guns.pGreen[i] = ByteAt(bytes, iRecord + 1);
        guns.pBlue[i] = ByteAt(bytes, iRecord + 2);
    }
}

// A count that the arrays cannot hold means a damaged file: half a palette would not be the palette.
u32 ReadFull(std::string_view bytes, i32 *pnColors, const Guns &guns)
{
    if (bytes.size() < 8)
        return 0;
    const i32 nColors = static_cast<i32>(WordAt(bytes, 4));
    if (nColors <= 0)
        return 1;
    if (nColors > PALETTE_COLORS_MAX || bytes.size() < 8 + 3 * static_cast<size_t>(nColors))
        return 0;
    TakeRecords(bytes, 8, 3, static_cast<u32>(nColors), guns);
    *pnColors = nColors;
    return 1;
}

u32 ReadShort(std::string_view bytes, i32 *pnColors, const Guns &guns)
{
    if (bytes.size() < 8 + SHORT_BYTES || WordAt(bytes, 4) != SHORT_BYTES)
        return 0;
    TakeRecords(bytes, 8, 4, SHORT_COLORS, guns);
    *pnColors = SHORT_COLORS;
    return 1;
}

// The records lie one byte off the colours, so each begins with green.
u32 ReadRaw(std::string_view bytes, i32 *pnColors, const Guns &guns)
{
    if (bytes.size() != RAW_BYTES)
        return 0;
    for (u32 i = 0; i < RAW_COLORS; i++) {
        const size_t iRecord = 4 + 3 * size_t{i * RAW_RECORDS / RAW_COLORS};
        guns.pGreen[i] = static_cast<u8>(ByteAt(bytes, iRecord) * 4);
        guns.pBlue[i] = static_cast<u8>(ByteAt(bytes, iRecord + 1) * 4);
        guns.pRed[i] = static_cast<u8>(ByteAt(bytes, iRecord + 2) * 4);
    }
    *pnColors = RAW_COLORS;
    return 1;
}

f32 Straight(const f32 *x, i32 n, f32 p)
{
    if (p <= 0)
        return x[0];
    if (p >= static_cast<f32>(n - 1))
        return x[n - 1];
    const i32 j = static_cast<i32>(p);
    return x[j] + (x[j + 1] - x[j]) * (p - static_cast<f32>(j));
}

// Around colour k, from halfway to its left neighbour to halfway to its right one.
f32 Smooth(const f32 *x, f32 p)
{
    const i32 k = static_cast<i32>(p + 0.5f);
    const f32 c = x[k];
    const f32 t = 2 * (p - static_cast<f32>(k));
    const f32 fLeft = (c + x[k - 1]) / 2;
    const f32 fRight = (c + x[k + 1]) / 2;
    if (t <= -1)
        return fLeft;
    if (t >= 1)
        return fRight;
    const f32 u = (fRight - c) * t + c;
    const f32 v = c - (fLeft - c) * t;
    return ((u - v) * t + (u + v)) / 2;
}

} // namespace

u32 ReadPaletteBytes(std::string_view bytes, i32 *pnColors, u8 *pRed, u8 *pGreen, u8 *pBlue)
{
    *pnColors = 0;
    if (bytes.size() < 4)
        return 0;
    const Guns guns = {pRed, pGreen, pBlue};
    switch (WordAt(bytes, 0)) {
    case MARK_FULL:
        return ReadFull(bytes, pnColors, guns);
    case MARK_SHORT:
        return ReadShort(bytes, pnColors, guns);
    default:
        return ReadRaw(bytes, pnColors, guns);
    }
}

u32 ReadPaletteFile(std::u16string_view path, i32 *pnColors, u8 *pRed, u8 *pGreen, u8 *pBlue)
{
    std::string bytes;
    *pnColors = 0;
    return ReadFileStart(path, PALETTE_FILE_BYTES + 1, &bytes) &&
           ReadPaletteBytes(bytes, pnColors, pRed, pGreen, pBlue);
}

u32 InterpolatePalette(u8 *pGun, i32 nColors)
{
    if (nColors < 1 || nColors > PALETTE_COLORS_MAX)
        return 0;
    f32 x[PALETTE_COLORS_MAX];
    for (i32 j = 0; j < nColors; j++)
        x[j] = static_cast<f32>(pGun[j]) / 255;
    for (i32 i = 0; i < PALETTE_COLORS_MAX; i++) {
        const f32 p = static_cast<f32>(i * (nColors - 1)) * STEP_OF_ENTRY;
        const bool bStraight = p <= 0.5f || p >= static_cast<f32>(nColors) - 1.5f;
        const f32 y = bStraight ? Straight(x, nColors, p) : Smooth(x, p);
        pGun[i] = static_cast<u8>(std::min(std::fabs(y) * 255, 255.0f));
    }
    return 1;
}
