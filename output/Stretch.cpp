// Stretch.cpp -- nearest-pixel stretch of a whole picture
#include "output/Stretch.h"

#include "platform/Bitmap.h"

#include <cstring>

namespace {

// Walks the source in 32.32 fixed point; the step is rounded up so that no pixel falls short of its exact place.
void StretchRow(u32 *pdwTo, i32 nTo, const u32 *pdwFrom, i32 nFrom)
{
    const u64 qwStep = ((static_cast<u64>(nFrom) << 32) + static_cast<u64>(nTo) - 1) / static_cast<u64>(nTo);
    u64 qwPlace = 0;
    for (i32 x = 0; x < nTo; x++, qwPlace += qwStep)
        pdwTo[x] = pdwFrom[qwPlace >> 32];
}

} // namespace

void StretchPicture(const StretchTarget &target, const HostBitmap *hbm, bool bFlip)
{
    i32 yCopied = -1; // source row that the target row before holds
    u32 *pdwBefore = nullptr;
    for (i32 y = 0; y < target.nHeight; y++) {
        const i32 ySource = static_cast<i32>(static_cast<i64>(y) * hbm->nHeight / target.nHeight);
        const i32 yFrom = bFlip ? hbm->nHeight - 1 - ySource : ySource;
        auto *pdwTo = reinterpret_cast<u32 *>(static_cast<u8 *>(target.pBits) + static_cast<u64>(y) * target.cbRow);
        const auto *pdwFrom =
            reinterpret_cast<const u32 *>(static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(yFrom) * hbm->cbRow);
        const u64 cbRow = static_cast<u64>(target.nWidth) * 4;
        if (yFrom == yCopied)
            std::memcpy(pdwTo, pdwBefore, cbRow);
        else if (target.nWidth == hbm->nWidth)
            std::memcpy(pdwTo, pdwFrom, cbRow);
        else
            StretchRow(pdwTo, target.nWidth, pdwFrom, hbm->nWidth);
        yCopied = yFrom;
        pdwBefore = pdwTo;
    }
}
