// Resolve.cpp -- from palette indices to colours, over a whole picture
#include "Shift.h"

namespace {

const int32_t nBlock = 16;

// The table filled up to its end, round and round.
void FillUpTable(uint32_t (&adwFull)[PALETTE_COLORS_MAX], const uint32_t *pTable, uint32_t nColors)
{
    for (uint32_t i = 0, iColor = 0; i < PALETTE_COLORS_MAX; i++) {
        adwFull[i] = pTable[iColor] & 0x00FFFFFF;
        iColor = iColor + 1 < nColors ? iColor + 1 : 0;
    }
}

// A palette that fits into the table a whole number of times needs no remainder, whatever the index.
void ResolveRowWhole(const uint32_t (&adwFull)[PALETTE_COLORS_MAX], const uint32_t *pIndex, uint32_t *pPixel,
                     int32_t nWidth)
{
    for (int32_t x = 0; x < nWidth; x++)
        pPixel[x] = adwFull[pIndex[x] % PALETTE_COLORS_MAX];
}

// Remainders by one divisor without a division (Lemire, Kaser, Kurz 2019); exact for all 32-bit numbers.
struct Divisor {
    uint64_t qwInverse;
    uint32_t n;
};

Divisor MakeDivisor(uint32_t n)
{
    return {UINT64_MAX / n + 1, n};
}

uint32_t RemainderBy(const Divisor &divisor, uint32_t dw)
{
    return (uint32_t)(((unsigned __int128)(divisor.qwInverse * dw) * divisor.n) >> 64);
}

// Others need it beyond the table's end, which is looked for block by block.
void ResolveRow(const uint32_t (&adwFull)[PALETTE_COLORS_MAX], const Divisor &divisor, const uint32_t *pIndex,
                uint32_t *pPixel, int32_t nWidth)
{
    int32_t x = 0;
    for (; x + nBlock <= nWidth; x += nBlock) {
        uint32_t dwAny = 0;
        for (int32_t i = 0; i < nBlock; i++)
            dwAny |= pIndex[x + i];
        if (dwAny < PALETTE_COLORS_MAX) {
            for (int32_t i = 0; i < nBlock; i++)
                pPixel[x + i] = adwFull[pIndex[x + i]];
        } else {
            for (int32_t i = 0; i < nBlock; i++)
                pPixel[x + i] = adwFull[RemainderBy(divisor, pIndex[x + i])];
        }
    }
    for (; x < nWidth; x++)
        pPixel[x] = adwFull[RemainderBy(divisor, pIndex[x])];
}

} // namespace

void ResolveIndices(const uint32_t *pTable, int32_t nColors, const HostBitmap *pSource, HostBitmap *pTarget)
{
    nColors = pTable ? LimitColors(nColors) : 0;
    const uint32_t dwNone = 0;
    uint32_t adwFull[PALETTE_COLORS_MAX];
    const uint32_t nUsed = nColors ? (uint32_t)nColors : 1;
    FillUpTable(adwFull, nColors ? pTable : &dwNone, nUsed);

    const Divisor divisor = MakeDivisor(nUsed);
    const int32_t nWidth = pSource->nWidth < pTarget->nWidth ? pSource->nWidth : pTarget->nWidth;
    const int32_t nHeight = pSource->nHeight < pTarget->nHeight ? pSource->nHeight : pTarget->nHeight;
    const uint8_t *pFrom = (const uint8_t *)pSource->pBits;
    uint8_t *pTo = (uint8_t *)pTarget->pBits;
    for (int32_t y = 0; y < nHeight; y++) {
        const uint32_t *pIndex = (const uint32_t *)(pFrom + (uint64_t)y * pSource->cbRow);
        uint32_t *pPixel = (uint32_t *)(pTo + (uint64_t)y * pTarget->cbRow);
        if (PALETTE_COLORS_MAX % nUsed == 0)
            ResolveRowWhole(adwFull, pIndex, pPixel, nWidth);
        else
            ResolveRow(adwFull, divisor, pIndex, pPixel, nWidth);
    }
}
