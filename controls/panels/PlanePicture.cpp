// PlanePicture.cpp -- a plane's bitmap, made smaller for a preview
#include "controls/panels/PlanePicture.h"

#include "engine/PlaneThreads.h"
#include "platform/VectorState.h"

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

// Bytes of ROWS rows, added up one below the other. The count is known here so that sums stay in registers.
template <i32 ROWS> void AddRows(const u8 *pFirst, u64 cbStep, u16 *pSum, size_t nBytes)
{
    for (size_t i = 0; i < nBytes; i++) {
        u16 nSum = 0;
        for (i32 iRow = 0; iRow < ROWS; iRow++)
            nSum = static_cast<u16>(nSum + pFirst[static_cast<u64>(iRow) * cbStep + i]);
        pSum[i] = nSum;
    }
}

constexpr void (*apfnAddRows[])(const u8 *, u64, u16 *, size_t) = {AddRows<1>, AddRows<2>, AddRows<3>, AddRows<4>,
                                                                   AddRows<5>, AddRows<6>, AddRows<7>, AddRows<8>};
static_assert(sizeof apfnAddRows == PICTURE_ROWS * sizeof apfnAddRows[0]);

u32 MeanOf(u64 qwSums, i32 nCount)
{
    const f32 fShare = 1.0f / static_cast<f32>(nCount);
    const auto channel = [&](u32 nShift) {
        return static_cast<u32>(static_cast<f32>(qwSums >> nShift & 0xFFFF) * fShare + 0.5f);
    };
    return 0xFF000000 | channel(32) << 16 | channel(16) << 8 | channel(0);
}

void ShrinkRow(u32 *pTo, i32 nWidth, const u16 *pSum, i32 nSourceWidth, i32 nRows)
{
    for (i32 x = 0; x < nWidth; x++) {
        const Part part = PartOf(x, nWidth, nSourceWidth, PICTURE_COLUMNS);
        u64 qwSums = 0;
        for (i32 i = 0; i < part.nCount; i++) {
            u64 qwPixel;
            std::memcpy(&qwPixel, pSum + static_cast<size_t>(part.nFirst + i * part.nStep) * 4, sizeof qwPixel);
            qwSums += qwPixel;
        }
        pTo[x] = MeanOf(qwSums, part.nCount * nRows);
    }
}

} // namespace

void ShrinkBitmap(const PictureTarget &target, const HostBitmap *hbm)
{
    ClearVectorState();
    const size_t nBytes = static_cast<size_t>(hbm->nWidth) * 4;
    std::vector<u16> sums(nBytes);
    for (i32 y = 0; y < target.nHeight; y++) {
        const Part part = PartOf(y, target.nHeight, hbm->nHeight, PICTURE_ROWS);
        const u8 *pFirst = static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(part.nFirst) * hbm->cbRow;
        apfnAddRows[part.nCount - 1](pFirst, static_cast<u64>(part.nStep) * hbm->cbRow, sums.data(), nBytes);
        u32 *pTo =
            target.pPixels + static_cast<u64>(target.nHeight - 1 - y) * target.nStride; // the bottom row is first
        ShrinkRow(pTo, target.nWidth, sums.data(), hbm->nWidth, part.nCount);
    }
}

bool PlaneCanBeShown(const PlaneState *pps)
{
    return !PlaneIsBusy(const_cast<PlaneState *>(pps)); // reads alone
}
