// StockBlur.h -- box blur by running sums: the cost does not depend on the radius
//
// The picture is blurred along its rows into a scratch picture and from there along its columns, row by row, into
// the hands of a function. Windows of a broken width weigh their outermost pixels by the part, so a radius may glide.
// Results are rounded by a fine pattern; even areas stay exactly even.
#ifndef VORTICADE_STOCK_BLUR_H
#define VORTICADE_STOCK_BLUR_H

#include "StockLight.h"
#include "StockScratch.h"
#include "StockWide.h"

#define BLUR_RADIUS_MOST 127 /* pixels: 255 values of 255 and more just fit into 16 bits */

// ---- Windows and their weights

struct BlurWindow {
    int32_t nWhole; // neighbours at either side that count in full
    float fPart;    // of the next one at either side, 0 to below 1
};

inline BlurWindow BlurWindowOf(float fRadius)
{
    fRadius = fRadius > 0 ? std::min(fRadius, (float)BLUR_RADIUS_MOST) : 0;
    return {(int32_t)fRadius, fRadius - (float)(int32_t)fRadius};
}

// RGB planes: sums and weights in 16 bits, results in 1/128.
struct BlurColors {
    typedef uint8_t Element;
    typedef uint16_t Sum;
    typedef uint64_t Pixel; // the sums of a pixel, all at once
    static constexpr int32_t nElements = 4;
    uint16_t nShift, nSumWeight, nEndWeight;
};

// Indexed planes.
struct BlurIndices {
    typedef uint32_t Element, Sum, Pixel;
    static constexpr int32_t nElements = 1;
    float fSumWeight, fEndWeight;
    uint32_t dwTop;
};

inline void WeighWindow(BlurColors *pKind, const BlurWindow &window)
{
    const int32_t nWidth = 2 * window.nWhole + 1;
    const float fShare = 1 / ((float)nWidth + 2 * window.fPart);
    pKind->nShift = 0;
    while (255 * nWidth << (pKind->nShift + 1) <= 65535)
        pKind->nShift++;
    pKind->nSumWeight = (uint16_t)(65536 * 128 * fShare / (float)(1 << pKind->nShift) + 0.5f);
    pKind->nEndWeight = (uint16_t)(65536 * fShare * window.fPart + 0.5f);
}

inline void WeighWindow(BlurIndices *pKind, const BlurWindow &window)
{
    pKind->fSumWeight = 1 / ((float)(2 * window.nWhole + 1) + 2 * window.fPart);
    pKind->fEndWeight = window.fPart * pKind->fSumWeight;
}

// bPattern by 1/128, kept 3/128 away from both ends: so much the 16-bit weights may be wrong.
inline uint8_t WeighSum(const BlurColors &kind, uint16_t wSum, uint16_t wEnds, uint8_t bPattern)
{
    const uint16_t wMiddle = (uint16_t)((uint32_t)(uint16_t)(wSum << kind.nShift) * kind.nSumWeight >> 16);
    const uint16_t wEnd = (uint16_t)((uint32_t)(uint16_t)(wEnds << 7) * kind.nEndWeight >> 16);
    const uint16_t wRound = (uint16_t)(3 + (uint16_t)((uint16_t)(bPattern * 122) >> 8));
    return (uint8_t)((uint16_t)(wMiddle + wEnd + wRound) >> 7);
}

inline uint32_t WeighSum(const BlurIndices &kind, uint32_t dwSum, uint32_t dwEnds, uint8_t bPattern)
{
    const float fRound = ((float)bPattern * 0.95f + 6) * (1 / 256.0f);
    const float fMean = (float)(int32_t)dwSum * kind.fSumWeight + (float)(int32_t)dwEnds * kind.fEndWeight;
    return (uint32_t)(int32_t)(fMean + fRound);
}

// ---- The loops over the elements of a row

inline __attribute__((always_inline)) void WidenElements(BlurColors, const uint32_t *pdwFrom, int32_t nPixels,
                                                         uint16_t *__restrict pwTo)
{
    const uint8_t *pbFrom = PixelBytes(pdwFrom);
    for (int32_t i = 0; i < nPixels * 4; i++)
        pwTo[i] = pbFrom[i];
}

inline __attribute__((always_inline)) void WidenElements(BlurIndices kind, const uint32_t *pdwFrom, int32_t nPixels,
                                                         uint32_t *__restrict pdwTo)
{
    for (int32_t i = 0; i < nPixels; i++)
        pdwTo[i] = pdwFrom[i] < kind.dwTop ? pdwFrom[i] : kind.dwTop;
}

struct BlurRounding {
    const uint8_t *pbPattern; // one for each element
    uint8_t bStart;
};

template <class Kind, typename Sum, typename Element>
inline __attribute__((always_inline)) void ScaleElements(const Kind kind, const Sum *__restrict pSum, const Sum *pLow,
                                                         const Sum *pHigh, int32_t nElements,
                                                         const BlurRounding rounding, Element *__restrict pTo)
{
    const uint8_t *pbPattern = rounding.pbPattern;
    for (int32_t i = 0; i < nElements; i++)
        pTo[i] = WeighSum(kind, pSum[i], (Sum)(pLow[i] + pHigh[i]), (uint8_t)(pbPattern[i] + rounding.bStart));
}

// The rows around the window of one row of the picture.
template <typename Element> struct BlurRows {
    const Element *pBelow, *pLowest, *pAbove;
};

template <class Kind, typename Sum, typename Element>
inline __attribute__((always_inline)) void SlideElements(const Kind kind, Sum *__restrict pSum,
                                                         const BlurRows<Element> rows, int32_t nElements,
                                                         const BlurRounding rounding, Element *__restrict pTo)
{
    const uint8_t *pbPattern = rounding.pbPattern;
    for (int32_t i = 0; i < nElements; i++) {
        const uint8_t bPattern = (uint8_t)(pbPattern[i] + rounding.bStart);
        pTo[i] = WeighSum(kind, pSum[i], (Sum)(rows.pBelow[i] + rows.pAbove[i]), bPattern);
        pSum[i] = (Sum)(pSum[i] + rows.pAbove[i] - rows.pLowest[i]);
    }
}

STOCK_WIDE static void ScaleRow(BlurColors kind, const uint16_t *pSum, const uint16_t *pLow, const uint16_t *pHigh,
                                int32_t nElements, BlurRounding rounding, uint8_t *pTo)
{
    ScaleElements(kind, pSum, pLow, pHigh, nElements, rounding, pTo);
}

STOCK_WIDE static void ScaleRow(BlurIndices kind, const uint32_t *pSum, const uint32_t *pLow, const uint32_t *pHigh,
                                int32_t nElements, BlurRounding rounding, uint32_t *pTo)
{
    ScaleElements(kind, pSum, pLow, pHigh, nElements, rounding, pTo);
}

STOCK_WIDE static void SlideRow(BlurColors kind, uint16_t *pSum, BlurRows<uint8_t> rows, int32_t nElements,
                                BlurRounding rounding, uint8_t *pTo)
{
    SlideElements(kind, pSum, rows, nElements, rounding, pTo);
}

STOCK_WIDE static void SlideRow(BlurIndices kind, uint32_t *pSum, BlurRows<uint32_t> rows, int32_t nElements,
                                BlurRounding rounding, uint32_t *pTo)
{
    SlideElements(kind, pSum, rows, nElements, rounding, pTo);
}

// ---- The two passes

// Zero it before its first use.
struct BlurRoom {
    ScratchPicture along; // the picture, blurred along its rows
    ScratchPicture first; // after the first of two rounds
    uint8_t *pbLines;     // what FitBlurRoom shares out below
    int32_t nPixels;      // in a row of pbLines
    void *pPadded, *pSums;
    uint32_t *pdwRow;
    uint8_t *pbPattern;
};

inline void FreeBlurRoom(BlurRoom *pRoom)
{
    FreeScratch(&pRoom->along);
    FreeScratch(&pRoom->first);
    free(pRoom->pbLines);
    *pRoom = {};
}

#define BLUR_PIXEL 8 /* bytes for the sums of a pixel of either kind */
#define BLUR_MARGIN (BLUR_RADIUS_MOST + 1)

inline bool FitBlurLines(BlurRoom *pRoom, int32_t nPixels)
{
    if (pRoom->nPixels == nPixels)
        return true;
    free(pRoom->pbLines);
    const size_t n = (size_t)nPixels, cbPadded = (n + 2 * BLUR_MARGIN) * BLUR_PIXEL, cbSums = n * BLUR_PIXEL;
    pRoom->pbLines = (uint8_t *)calloc(cbPadded + cbSums + 8 * n, 1);
    pRoom->nPixels = pRoom->pbLines ? nPixels : 0;
    if (!pRoom->pbLines)
        return false;
    pRoom->pPadded = pRoom->pbLines;
    pRoom->pSums = pRoom->pbLines + cbPadded;
    pRoom->pdwRow = (uint32_t *)(void *)(pRoom->pbLines + cbPadded + cbSums);
    pRoom->pbPattern = pRoom->pbLines + cbPadded + cbSums + 4 * n;
    return true;
}

// Makes the room fit the canvas. False if there is no memory.
inline bool FitBlurRoom(BlurRoom *pRoom, const Canvas &canvas, bool bTwoRounds)
{
    return FitScratch(&pRoom->along, canvas) && (!bTwoRounds || FitScratch(&pRoom->first, canvas)) &&
           FitBlurLines(pRoom, canvas.nWidth);
}

inline void FillBlurPattern(BlurRoom *pRoom, int32_t nElementsOfPixel)
{
    for (int32_t x = 0, i = 0; x < pRoom->nPixels; x++)
        for (const int32_t iEnd = i + nElementsOfPixel; i < iEnd; i++)
            pRoom->pbPattern[i] = (uint8_t)((uint32_t)x * ROUNDING_X >> 8);
}

// A pixel's elements as one number and back, whatever type they have. Sums of one element never reach into the next.
template <class Kind> inline typename Kind::Pixel LoadPixel(const typename Kind::Sum *pSums, int32_t iPixel)
{
    typename Kind::Pixel pixel;
    memcpy(&pixel, pSums + iPixel * Kind::nElements, sizeof pixel);
    return pixel;
}

template <class Kind> inline void StorePixel(typename Kind::Sum *pSums, int32_t iPixel, typename Kind::Pixel pixel)
{
    memcpy(pSums + iPixel * Kind::nElements, &pixel, sizeof pixel);
}

// The window slides over a padded copy of the row, of which the middle begins nWhole + 1 pixels in.
template <class Kind> inline void SumRow(const BlurRoom &room, int32_t nWhole)
{
    typedef typename Kind::Sum Sum;
    Sum *pPadded = (Sum *)room.pPadded, *pSums = (Sum *)room.pSums;
    const int32_t nBefore = nWhole + 1, nAfter = nBefore + room.nPixels;
    for (int32_t i = 0; i < nBefore; i++) {
        StorePixel<Kind>(pPadded, i, LoadPixel<Kind>(pPadded, nBefore));
        StorePixel<Kind>(pPadded, nAfter + i, LoadPixel<Kind>(pPadded, nAfter - 1));
    }
    typename Kind::Pixel sum = 0;
    for (int32_t i = 1; i < 2 * nBefore; i++)
        sum += LoadPixel<Kind>(pPadded, i);
    for (int32_t x = 0; x < room.nPixels; x++) {
        StorePixel<Kind>(pSums, x, sum);
        sum += LoadPixel<Kind>(pPadded, x + 2 * nBefore) - LoadPixel<Kind>(pPadded, x + 1);
    }
}

STOCK_WIDE static void WidenRow(BlurColors kind, const uint32_t *pdwFrom, int32_t nPixels, uint16_t *__restrict pwTo)
{
    WidenElements(kind, pdwFrom, nPixels, pwTo);
}

STOCK_WIDE static void WidenRow(BlurIndices kind, const uint32_t *pdwFrom, int32_t nPixels, uint32_t *__restrict pdwTo)
{
    WidenElements(kind, pdwFrom, nPixels, pdwTo);
}

// rowOf(y): where row y of the picture begins. The result goes into room.along.
template <class Kind, class RowOf>
inline void BlurAlongRows(Kind kind, const BlurWindow &window, const BlurRoom &room, uint32_t nFrame, RowOf rowOf)
{
    typedef typename Kind::Sum Sum;
    WeighWindow(&kind, window);
    Sum *pPadded = (Sum *)room.pPadded;
    const int32_t nBefore = window.nWhole + 1;
    for (int32_t y = 0; y < room.along.nHeight; y++) {
        WidenRow(kind, rowOf(y), room.nPixels, pPadded + nBefore * Kind::nElements);
        SumRow<Kind>(room, window.nWhole);
        ScaleRow(kind, (const Sum *)room.pSums, pPadded, pPadded + 2 * nBefore * Kind::nElements,
                 room.nPixels * Kind::nElements, {room.pbPattern, RoundingByte(y, nFrame)},
                 (typename Kind::Element *)ScratchRow(room.along, y));
    }
}

// emit(y, pdwRow): takes over a finished row. It may write anywhere but into room.along.
template <class Kind, class Emit>
inline void BlurAlongColumns(Kind kind, const BlurWindow &window, const BlurRoom &room, uint32_t nFrame, Emit emit)
{
    typedef typename Kind::Sum Sum;
    typedef typename Kind::Element Element;
    WeighWindow(&kind, window);
    const int32_t nElements = room.nPixels * Kind::nElements, nTop = room.along.nHeight - 1;
    const auto Row = [&](int32_t y) { return (const Element *)ScratchRow(room.along, std::clamp(y, 0, nTop)); };
    Sum *pSums = (Sum *)room.pSums;
    std::fill_n(pSums, nElements, Sum(0));
    for (int32_t y = -window.nWhole; y <= window.nWhole; y++)
        for (int32_t i = 0; i < nElements; i++)
            pSums[i] = (Sum)(pSums[i] + Row(y)[i]);
    for (int32_t y = 0; y <= nTop; y++) {
        const BlurRows<Element> rows = {Row(y - window.nWhole - 1), Row(y - window.nWhole), Row(y + window.nWhole + 1)};
        SlideRow(kind, pSums, rows, nElements, {room.pbPattern, RoundingByte(y, nFrame + 1)}, (Element *)room.pdwRow);
        emit(y, (const uint32_t *)room.pdwRow);
    }
}

// ---- The whole blur

struct BlurSize {
    float fAcross, fUp; // radii in pixels
    bool bTwoRounds;    // soft: of the same width as one round
};

template <class Kind, class Emit>
inline void BlurKind(const Kind &kind, const Canvas &canvas, const BlurSize &size, BlurRoom *pRoom, uint32_t nFrame,
                     Emit emit)
{
    const float fRound = size.bTwoRounds ? 0.7071f : 1;
    const BlurWindow across = BlurWindowOf(size.fAcross * fRound), up = BlurWindowOf(size.fUp * fRound);
    FillBlurPattern(pRoom, Kind::nElements);
    BlurAlongRows(kind, across, *pRoom, nFrame, [&](int32_t y) { return CanvasRow(canvas, y); });
    if (size.bTwoRounds) {
        const size_t cbRow = (size_t)canvas.nWidth * sizeof(uint32_t);
        BlurAlongColumns(kind, up, *pRoom, nFrame, [&](int32_t y, const uint32_t *pdwRow) {
            memcpy(ScratchRow(pRoom->first, y), pdwRow, cbRow);
        });
        BlurAlongRows(kind, across, *pRoom, nFrame + 2, [&](int32_t y) { return ScratchRow(pRoom->first, y); });
    }
    BlurAlongColumns(kind, up, *pRoom, nFrame + 2, emit);
}

// Hands the blurred picture over, row by row from the bottom; emit(y, pdwRow) may write row y of the canvas, of which
// nothing is read any more. pdwRow's top bytes are blurred as well: keep the old ones. nFrame: a count of drawings.
template <class Emit>
inline void BlurCanvas(const Canvas &canvas, const BlurSize &size, BlurRoom *pRoom, uint32_t nFrame, Emit emit)
{
    if (canvas.bIndexed)
        BlurKind(BlurIndices{0, 0, (uint32_t)canvas.nColors - 1}, canvas, size, pRoom, nFrame * 4, emit);
    else
        BlurKind(BlurColors{}, canvas, size, pRoom, nFrame * 4, emit);
}

#endif
