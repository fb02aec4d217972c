// PixelRows.cpp -- rows of bitmaps as the bytes that picture files hold
#include "output/pictures/PixelRows.h"

#include "output/pictures/PictureWriters.h"

#include <algorithm>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "output/pictures/PixelRows.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace rows {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <bool bRedFirst> static void DropAlpha(u8 *HWY_RESTRICT pTo, const u8 *HWY_RESTRICT pBgra, size_t nPixels)
{
    size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<u8> bytes;
    const size_t nLanes = hn::Lanes(bytes);
    for (; i + nLanes <= nPixels; i += nLanes) {
        hn::Vec<decltype(bytes)> b, g, r, a;
        hn::LoadInterleaved4(bytes, pBgra + i * 4, b, g, r, a);
        hn::StoreInterleaved3(bRedFirst ? r : b, g, bRedFirst ? b : r, bytes, pTo + i * 3);
    }
#endif
    for (; i < nPixels; i++) {
        pTo[i * 3] = pBgra[i * 4 + (bRedFirst ? 2 : 0)];
        pTo[i * 3 + 1] = pBgra[i * 4 + 1];
        pTo[i * 3 + 2] = pBgra[i * 4 + (bRedFirst ? 0 : 2)];
    }
}

static void ToRgb(u8 *pTo, const u8 *pBgra, size_t nPixels)
{
    DropAlpha<true>(pTo, pBgra, nPixels);
}

static void ToBgr(u8 *pTo, const u8 *pBgra, size_t nPixels)
{
    DropAlpha<false>(pTo, pBgra, nPixels);
}

} // namespace HWY_NAMESPACE
} // namespace rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rows {
HWY_EXPORT(ToRgb);
HWY_EXPORT(ToBgr);
} // namespace rows

namespace {
constexpr u64 BLOCK_BYTES = 256 * 1024;
} // namespace

void RowToRgb(u8 *pRgb, const u8 *pBgra, i32 nPixels)
{
    HWY_DYNAMIC_DISPATCH(rows::ToRgb)(pRgb, pBgra, static_cast<size_t>(nPixels));
}

void RowToBgr(u8 *pBgr, const u8 *pBgra, i32 nPixels)
{
    HWY_DYNAMIC_DISPATCH(rows::ToBgr)(pBgr, pBgra, static_cast<size_t>(nPixels));
}

i32 RowsInBlock(u64 cbRow, i32 nRows)
{
    return std::clamp(static_cast<i32>(BLOCK_BYTES / cbRow), 1, nRows);
}

bool WriteRowBlocks(const HostBitmap *hbm, FILE *pFile, size_t cbRow,
                    void (*pfnRow)(u8 *pTo, const u8 *pBgra, i32 nPixels))
{
    const i32 nRows = RowsInBlock(cbRow, hbm->nHeight);
    std::vector<u8> block(cbRow * static_cast<size_t>(nRows));
    for (i32 y = 0; y < hbm->nHeight;) {
        const i32 yEnd = std::min(y + nRows, hbm->nHeight);
        u8 *pTo = block.data();
        for (; y < yEnd; y++, pTo += cbRow)
            pfnRow(pTo, BitmapRow(hbm, y), hbm->nWidth);
        if (!WriteBytes(pFile, block.data(), static_cast<size_t>(pTo - block.data())))
            return false;
    }
    return true;
}
#endif
