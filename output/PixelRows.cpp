// PixelRows.cpp -- rows of bitmaps as the bytes that picture files hold
#include "output/PixelRows.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "output/PixelRows.cpp"
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
}

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
#endif
