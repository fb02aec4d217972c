// StockReduced.h -- a picture at a quarter of its width and height: blurred there, it is spread over the picture again
//
// So a wide glow costs little more than a narrow one. The reduced picture has colors, or a single number from 0 to 255
// for each pixel. Row by row: ReduceRows, BlurReduced, SpreadRow.
#ifndef VORTICADE_STOCK_REDUCED_H
#define VORTICADE_STOCK_REDUCED_H

#include "StockBlur.h"

#define REDUCED_BY 4

// Zero it before its first use.
struct ReducedPicture {
    ScratchPicture pixels;
    BlurRoom room;
    bool bColors;     // else a number for each pixel
    uint16_t *pwLine; // four words for each pixel of a row of the whole picture: room for the user, too
    uint16_t *pwMix;  // a row between two rows of the reduced picture, in 1/8
};

inline void FreeReduced(ReducedPicture *pReduced)
{
    FreeScratch(&pReduced->pixels);
    FreeBlurRoom(&pReduced->room);
    free(pReduced->pwLine);
    *pReduced = {};
}

// False if there is no memory: then none is held.
inline bool FitReduced(ReducedPicture *pReduced, const Canvas &canvas, bool bColors)
{
    Canvas small = canvas;
    small.nWidth = (canvas.nWidth + REDUCED_BY - 1) / REDUCED_BY;
    small.nHeight = (canvas.nHeight + REDUCED_BY - 1) / REDUCED_BY;
    pReduced->bColors = bColors;
    if (pReduced->pixels.nWidth == small.nWidth && pReduced->pixels.nHeight == small.nHeight)
        return true;
    const size_t nWords = (size_t)small.nWidth * 4;
    FreeReduced(pReduced);
    pReduced->bColors = bColors;
    pReduced->pwLine = (uint16_t *)calloc(nWords * (REDUCED_BY + 1), sizeof(uint16_t));
    pReduced->pwMix = pReduced->pwLine + nWords * REDUCED_BY;
    if (pReduced->pwLine && FitScratch(&pReduced->pixels, small) && FitBlurRoom(&pReduced->room, small, true))
        return true;
    FreeReduced(pReduced);
    return false;
}

// ---- Down: the mean of each block

STOCK_WIDE static void SumFourRows(const uint8_t *const *apbRow, int32_t nBytes, uint16_t *__restrict pwSums)
{
    const uint8_t *pb0 = apbRow[0], *pb1 = apbRow[1], *pb2 = apbRow[2], *pb3 = apbRow[3];
    for (int32_t i = 0; i < nBytes; i++)
        pwSums[i] = (uint16_t)(pb0[i] + pb1[i] + pb2[i] + pb3[i]);
}

// Four words at once.
inline uint64_t LoadWords(const uint16_t *pw)
{
    uint64_t qw;
    memcpy(&qw, pw, sizeof qw);
    return qw;
}

inline void StoreWords(uint16_t *pw, uint64_t qw)
{
    memcpy(pw, &qw, sizeof qw);
}

inline uint32_t MeanOfColors(const uint16_t *pwSums)
{
    uint64_t qw = LoadWords(pwSums) + LoadWords(pwSums + 4) + LoadWords(pwSums + 8) + LoadWords(pwSums + 12);
    qw = (qw + 0x0008000800080008u) >> 4 & 0x00FF00FF00FF00FFu;
    qw = (qw | qw >> 8) & 0x0000FFFF0000FFFFu;
    return (uint32_t)(qw | qw >> 16);
}

inline uint32_t MeanOfNumbers(const uint16_t *pwSums)
{
    return (uint32_t)(pwSums[0] + pwSums[1] + pwSums[2] + pwSums[3]) >> 4;
}

// Fills row y of the reduced picture. bytesOf(y): row y of the whole picture, which is nWidth x nHeight.
template <class BytesOf>
inline void ReduceRow(const ReducedPicture &reduced, int32_t y, int32_t nWidth, int32_t nHeight, BytesOf bytesOf)
{
    const uint8_t *apbRow[REDUCED_BY];
    for (int32_t i = 0; i < REDUCED_BY; i++)
        apbRow[i] = bytesOf(std::min(y * REDUCED_BY + i, nHeight - 1));
    const int32_t nElements = reduced.bColors ? 4 : 1, nReduced = reduced.pixels.nWidth;
    const int32_t nEnd = nWidth * nElements, nAll = nReduced * REDUCED_BY * nElements;
    SumFourRows(apbRow, nEnd, reduced.pwLine);
    for (int32_t i = nEnd; i < nAll; i++) // the last block may reach over the edge
        reduced.pwLine[i] = reduced.pwLine[i - nElements];
    uint32_t *pdwTo = ScratchRow(reduced.pixels, y);
    for (int32_t x = 0; x < nReduced; x++)
        pdwTo[x] = reduced.bColors ? MeanOfColors(reduced.pwLine + x * REDUCED_BY * 4)
                                   : MeanOfNumbers(reduced.pwLine + x * REDUCED_BY);
}

// ---- The blur

// size: in pixels of the whole picture.
inline void BlurReduced(ReducedPicture *pReduced, BlurSize size, uint32_t nFrame)
{
    const ScratchPicture &pixels = pReduced->pixels;
    const size_t cbRow = (size_t)pixels.nWidth * sizeof(uint32_t);
    const Canvas canvas = {PixelBytes(pixels.pPixels), pixels.nWidth, pixels.nHeight, cbRow,
                           !pReduced->bColors,         256,           nullptr};
    size.fAcross /= REDUCED_BY;
    size.fUp /= REDUCED_BY;
    BlurCanvas(canvas, size, &pReduced->room, nFrame,
               [&](int32_t y, const uint32_t *pdwRow) { memcpy(ScratchRow(pixels, y), pdwRow, cbRow); });
}

// ---- Up: between the middles of the reduced pixels, in eighths

STOCK_WIDE static void MixReducedColors(const uint8_t *pbLower, const uint8_t *pbUpper, uint16_t wUpper,
                                        int32_t nElements, uint16_t *__restrict pwTo)
{
    for (int32_t i = 0; i < nElements; i++)
        pwTo[i] = (uint16_t)(pbLower[i] * (8 - wUpper) + pbUpper[i] * wUpper);
}

STOCK_WIDE static void MixReducedNumbers(const uint32_t *pdwLower, const uint32_t *pdwUpper, uint32_t dwUpper,
                                         int32_t nPixels, uint16_t *__restrict pwTo)
{
    for (int32_t i = 0; i < nPixels; i++)
        pwTo[i] = (uint16_t)(pdwLower[i] * (8 - dwUpper) + pdwUpper[i] * dwUpper);
}

// Four pixels from each reduced one; its ends are repeated.
inline void SpreadColors(const uint16_t *pwFrom, int32_t nReduced, uint16_t *__restrict pwTo)
{
    uint64_t qwLeft = LoadWords(pwFrom), qwHere = qwLeft;
    for (int32_t x = 0; x < nReduced; x++, pwTo += 4 * REDUCED_BY) {
        const uint64_t qwRight = LoadWords(pwFrom + std::min(x + 1, nReduced - 1) * 4);
        StoreWords(pwTo, qwLeft * 3 + qwHere * 5);
        StoreWords(pwTo + 4, qwLeft + qwHere * 7);
        StoreWords(pwTo + 8, qwHere * 7 + qwRight);
        StoreWords(pwTo + 12, qwHere * 5 + qwRight * 3);
        qwLeft = qwHere;
        qwHere = qwRight;
    }
}

inline void SpreadNumbers(const uint16_t *pwFrom, int32_t nReduced, uint16_t *__restrict pwTo)
{
    uint64_t qwLeft = pwFrom[0], qwHere = qwLeft;
    for (int32_t x = 0; x < nReduced; x++) {
        const uint64_t qwRight = pwFrom[std::min(x + 1, nReduced - 1)];
        StoreWords(pwTo + x * REDUCED_BY,
                   qwLeft * 0x0000000000010003u + qwHere * 0x0005000700070005u + qwRight * 0x0003000100000000u);
        qwLeft = qwHere;
        qwHere = qwRight;
    }
}

// The words of row y of the whole picture, in 1/64: four for each pixel, or one. They last until the next call.
inline const uint16_t *SpreadRow(const ReducedPicture &reduced, int32_t y)
{
    static const uint16_t awUpper[REDUCED_BY] = {5, 7, 1, 3};
    const int32_t yUpper = (y + REDUCED_BY / 2) / REDUCED_BY, nReduced = reduced.pixels.nWidth;
    const uint32_t *pdwLower = ScratchRow(reduced.pixels, std::max(yUpper - 1, 0));
    const uint32_t *pdwUpper = ScratchRow(reduced.pixels, std::min(yUpper, reduced.pixels.nHeight - 1));
    const uint16_t wUpper = awUpper[y % REDUCED_BY];
    if (reduced.bColors) {
        MixReducedColors(PixelBytes(pdwLower), PixelBytes(pdwUpper), wUpper, nReduced * 4, reduced.pwMix);
        SpreadColors(reduced.pwMix, nReduced, reduced.pwLine);
    } else {
        MixReducedNumbers(pdwLower, pdwUpper, wUpper, nReduced, reduced.pwMix);
        SpreadNumbers(reduced.pwMix, nReduced, reduced.pwLine);
    }
    return reduced.pwLine;
}

#endif
