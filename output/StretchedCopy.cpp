// StretchedCopy.cpp -- copies pixels to another size, each taken from the nearest one
#include "output/StretchedCopy.h"

namespace {

i32 NearestPlace(i32 nTo, i32 nFromSize, i32 nToSize)
{
    return static_cast<i32>(static_cast<i64>(nTo) * nFromSize / nToSize);
}

} // namespace

void CopyStretched(const PixelView &to, const PixelView &from)
{
    if (from.nWidth < 1 || from.nHeight < 1)
        return;
    for (i32 y = 0; y < to.nHeight; y++) {
        const u32 *pFrom = from.pPixels + static_cast<size_t>(NearestPlace(y, from.nHeight, to.nHeight)) * from.nStride;
        u32 *pTo = to.pPixels + static_cast<size_t>(y) * to.nStride;
        for (i32 x = 0; x < to.nWidth; x++)
            pTo[x] = pFrom[NearestPlace(x, from.nWidth, to.nWidth)];
    }
}
