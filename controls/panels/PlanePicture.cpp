// PlanePicture.cpp -- a plane's bitmap, made smaller for a preview
#include "controls/panels/PlanePicture.h"

#include "controls/panels/PictureRows.h"
#include "engine/PlaneThreads.h"
#include "platform/VectorState.h"

#include <array>
#include <cstring>
#include <vector>

namespace {

// Sums of channels stand side by side in words of 16 bits: the part of one pixel has to fit.
static_assert(PICTURE_ROWS * PICTURE_COLUMNS * 255 < 0x10000);

// What pixel i of n stands for in a side of nSource: every nStep-th of some.
struct Part {
    i32 nFirst, nCount, nStep;
};

Part PartOf(i32 i, i32 n, i32 nSource, i32 nMost)
{
    const i32 nFirst = static_cast<i32>(i64{i} * nSource / n);
    const i32 nLength = static_cast<i32>((i64{i} + 1) * nSource / n) - nFirst;
    const i32 nStep = (nLength + nMost - 1) / nMost;
    return {nFirst, (nLength + nStep - 1) / nStep, nStep};
}

std::vector<Part> PartsOf(i32 n, i32 nSource, i32 nMost)
{
    std::vector<Part> parts;
    parts.reserve(static_cast<size_t>(n));
    for (i32 i = 0; i < n; i++)
        parts.push_back(PartOf(i, n, nSource, nMost));
    return parts;
}

// 65536 over each number of pixels, rounded.
constexpr auto SHARES = [] {
    std::array<u32, PICTURE_ROWS *PICTURE_COLUMNS + 1> shares = {};
    for (u32 n = 1; n < shares.size(); n++)
        shares[n] = (0x10000 + n / 2) / n;
    return shares;
}();

// Two channels at a time, each in the lower half of 32 bits.
u32 MeanOf(u64 qwSums, u32 nShare)
{
    constexpr u64 LOWER = 0x0000FFFF0000FFFF, HALVES = 0x0000800000008000;
    const u64 qwEven = ((qwSums & LOWER) * nShare + HALVES) >> 16;
    const u64 qwOdd = ((qwSums >> 16 & LOWER) * nShare + HALVES) >> 16;
    return static_cast<u32>((qwEven & 0xFF) | (qwOdd & 0xFF) << 8 | (qwEven >> 16 & 0xFF0000)) | 0xFF000000;
}

void ShrinkRow(u32 *pTo, const std::vector<Part> &columns, const u16 *pSum, i32 nRows)
{
    for (const Part &part : columns) {
        const u16 *pFrom = pSum + static_cast<size_t>(part.nFirst) * 4;
        u64 qwSums = 0;
        for (i32 i = 0; i < part.nCount; i++, pFrom += part.nStep * 4) {
            u64 qwPixel;
            std::memcpy(&qwPixel, pFrom, sizeof qwPixel);
            qwSums += qwPixel;
        }
        *pTo++ = MeanOf(qwSums, SHARES[static_cast<size_t>(part.nCount * nRows)]);
    }
}

} // namespace

void ShrinkBitmap(const PictureTarget &target, const HostBitmap *hbm)
{
    ClearVectorState();
    const std::vector<Part> columns = PartsOf(target.nWidth, hbm->nWidth, PICTURE_COLUMNS);
    const AddRowsFn pfnAddRows = GetAddRows();
    std::vector<u16> sums(static_cast<size_t>(hbm->nWidth) * 4);
    for (i32 y = 0; y < target.nHeight; y++) {
        const Part part = PartOf(y, target.nHeight, hbm->nHeight, PICTURE_ROWS);
        const u8 *pFirst = static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(part.nFirst) * hbm->cbRow;
        const u64 cbStep = static_cast<u64>(part.nStep) * hbm->cbRow;
        pfnAddRows(sums.data(), pFirst, cbStep, part.nCount, sums.size());
        u32 *pTo =
            target.pPixels + static_cast<u64>(target.nHeight - 1 - y) * target.nStride; // the bottom row is first
        ShrinkRow(pTo, columns, sums.data(), part.nCount);
    }
}

bool PlaneCanBeShown(const PlaneState *pps)
{
    return !PlaneIsBusy(const_cast<PlaneState *>(pps)); // reads alone
}
