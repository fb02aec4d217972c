// StockPaint.h -- how the ink of a shape meets the pixels that are there: the loops over a span
//
// Every way to paint has loops of its own, without a question in them, so that they run over several pixels at once.
#ifndef VORTICADE_STOCK_PAINT_H
#define VORTICADE_STOCK_PAINT_H

#include "StockWide.h"

#include "module.h"

#include <algorithm>

#define DRAWING_SPAN 128 /* pixels that a shape hands to the paint at a time */

enum { PAINT_OVER, PAINT_LIGHTEN, PAINT_ADD, PAINT_MODES };

// What a shape says about the pixels of a span.
struct InkSpan {
    float afCoverage[DRAWING_SPAN]; // 0 to 1
    float afPlace[DRAWING_SPAN];    // 0 to 1 over the palette
};

#define PAINT_LOOP inline __attribute__((always_inline)) /* takes the width of the function that it stands in */

template <uint32_t dwMode> PAINT_LOOP float MixInk(float fOld, float fInk, float fCoverage, float fTop)
{
    if constexpr (dwMode == PAINT_ADD)
        return std::min(fOld + fInk * fCoverage, fTop);
    else if constexpr (dwMode == PAINT_LIGHTEN)
        return std::max(fOld, fInk * fCoverage);
    else
        return fOld + (fInk - fOld) * fCoverage;
}

template <uint32_t dwMode>
PAINT_LOOP void MixIndices(uint32_t *__restrict pPixel, int32_t nPixels, float fTop, const InkSpan &ink)
{
    for (int32_t i = 0; i < nPixels; i++) {
        const float fOld = std::min((float)(int32_t)(pPixel[i] & (PALETTE_COLORS_MAX - 1)), fTop);
        pPixel[i] = (uint32_t)(int32_t)(MixInk<dwMode>(fOld, ink.afPlace[i] * fTop, ink.afCoverage[i], fTop) + 0.5f);
    }
}

template <uint32_t dwMode> PAINT_LOOP uint32_t MixChannel(uint32_t dwOld, uint32_t dwInk, float fCoverage)
{
    const float fOld = (float)(int32_t)(dwOld & 255), fInk = (float)(int32_t)(dwInk & 255);
    return (uint32_t)(int32_t)(MixInk<dwMode>(fOld, fInk, fCoverage, 255) + 0.5f);
}

template <uint32_t dwMode>
PAINT_LOOP void MixColors(uint32_t *__restrict pPixel, int32_t nPixels, const uint32_t *pdwInk, const InkSpan &ink)
{
    for (int32_t i = 0; i < nPixels; i++) {
        const uint32_t dwOld = pPixel[i], dwInk = pdwInk[i];
        const float fCoverage = ink.afCoverage[i];
        pPixel[i] = (dwOld & 0xFF000000u) | MixChannel<dwMode>(dwOld, dwInk, fCoverage) |
                    MixChannel<dwMode>(dwOld >> 8, dwInk >> 8, fCoverage) << 8 |
                    MixChannel<dwMode>(dwOld >> 16, dwInk >> 16, fCoverage) << 16;
    }
}

STOCK_WIDE static void PaintIndices(uint32_t *pPixel, int32_t nPixels, uint32_t dwMode, int32_t nTop,
                                    const InkSpan &ink)
{
    if (dwMode == PAINT_OVER)
        MixIndices<PAINT_OVER>(pPixel, nPixels, (float)nTop, ink);
    else if (dwMode == PAINT_ADD)
        MixIndices<PAINT_ADD>(pPixel, nPixels, (float)nTop, ink);
    else
        MixIndices<PAINT_LIGHTEN>(pPixel, nPixels, (float)nTop, ink);
}

// pColors: nTop + 1 of them.
STOCK_WIDE static void PaintColors(uint32_t *pPixel, int32_t nPixels, uint32_t dwMode, const uint32_t *pColors,
                                   int32_t nTop, const InkSpan &ink)
{
    uint32_t adwInk[DRAWING_SPAN];
    for (int32_t i = 0; i < nPixels; i++) {
        const int32_t iColor = (int32_t)(ink.afPlace[i] * (float)nTop + 0.5f);
        adwInk[i] = pColors[std::min(std::max(iColor, 0), nTop)];
    }
    if (dwMode == PAINT_OVER)
        MixColors<PAINT_OVER>(pPixel, nPixels, adwInk, ink);
    else if (dwMode == PAINT_ADD)
        MixColors<PAINT_ADD>(pPixel, nPixels, adwInk, ink);
    else
        MixColors<PAINT_LIGHTEN>(pPixel, nPixels, adwInk, ink);
}

#endif
