// StockRemap.h -- moves the pixels of a picture: a copy to read from, and reading it anywhere, over every edge
//
// An effect takes a copy of the canvas (TakeSource), lays a path for each stretch of a row, which says where the
// pixels of the stretch come from (StockPaths.h has lines, folds and grids), and reads the copy along it (ReadPath).
// Positions are pixels of the picture, whole numbers at pixel centres; any number will do, one that is none too.
//
// Between the pixels of an indexed plane lie the indices between theirs, but a palette is a loop: where two
// neighbours are nearer to each other over its end, the way leads over the end, not through every other color.
#ifndef VORTICADE_STOCK_REMAP_H
#define VORTICADE_STOCK_REMAP_H

#include "StockTrails.h"
#include "StockWide.h"

#include <cstdlib>

// What lies beyond the edges of the picture.
enum { EDGES_BLACK, EDGES_STRETCHED, EDGES_AROUND, EDGES_MIRRORED, EDGES_MODES };

inline const char16_t *const aszRemapEdges[EDGES_MODES] = {u"Black", u"Stretched", u"Around", u"Mirrored"};

// ---- The picture to read from

// The picture with a margin of one pixel on all sides. Indices stand in 16 bits with a fraction below the whole
// index. Zero it before its first use.
struct RemapSource {
    int32_t nWidth, nHeight; // of the picture; 0: nothing allocated
    bool bIndexed;
    int32_t nColors, nBits; // nBits: of the fraction
    size_t nStride;         // elements from row to row
    uint32_t *pColors;      // one of these two
    uint16_t *pIndices;
};

inline void FreeSource(RemapSource *pSource)
{
    free(pSource->pColors);
    free(pSource->pIndices);
    *pSource = {};
}

inline int32_t FractionBits(int32_t nColors)
{
    int32_t nBits = 7;
    while (nColors > 1 << (15 - nBits))
        nBits--;
    return nBits;
}

// Makes it fit the canvas; if it does not, what it held is gone. False if there is no memory: then none is held.
inline bool FitSource(RemapSource *pSource, const Canvas &canvas)
{
    const bool bFits =
        pSource->nWidth == canvas.nWidth && pSource->nHeight == canvas.nHeight && pSource->bIndexed == canvas.bIndexed;
    if (!bFits) {
        FreeSource(pSource);
        const size_t nStride = (size_t)canvas.nWidth + 2, nPixels = nStride * ((size_t)canvas.nHeight + 2);
        if (canvas.bIndexed)
            pSource->pIndices = (uint16_t *)calloc(nPixels, sizeof(uint16_t));
        else
            pSource->pColors = (uint32_t *)calloc(nPixels, sizeof(uint32_t));
        if (!pSource->pIndices && !pSource->pColors)
            return false;
        pSource->nWidth = canvas.nWidth;
        pSource->nHeight = canvas.nHeight;
        pSource->bIndexed = canvas.bIndexed;
        pSource->nStride = nStride;
    }
    pSource->nColors = canvas.nColors;
    pSource->nBits = FractionBits(canvas.nColors);
    return true;
}

// Fills the margin around a picture whose own pixels stand. pPicture: with its margin.
template <typename Pixel> inline void FillMargin(const RemapSource &source, Pixel *pPicture, uint32_t dwEdges)
{
    const size_t nStride = source.nStride, nLast = (size_t)source.nHeight;
    const int32_t nWidth = source.nWidth;
    const bool bAround = dwEdges == EDGES_AROUND;
    for (size_t y = 1; y <= nLast; y++) {
        Pixel *pRow = pPicture + y * nStride;
        pRow[0] = dwEdges == EDGES_BLACK ? Pixel(0) : pRow[bAround ? nWidth : 1];
        pRow[nWidth + 1] = dwEdges == EDGES_BLACK ? Pixel(0) : pRow[bAround ? 1 : nWidth];
    }
    Pixel *pBelow = pPicture, *pAbove = pPicture + (nLast + 1) * nStride;
    if (dwEdges == EDGES_BLACK) {
        std::fill_n(pBelow, nStride, Pixel(0));
        std::fill_n(pAbove, nStride, Pixel(0));
    } else {
        std::copy_n(pPicture + (bAround ? nLast : 1) * nStride, nStride, pBelow);
        std::copy_n(pPicture + (bAround ? 1 : nLast) * nStride, nStride, pAbove);
    }
}

// ---- Sharpening: against the blur of pictures that are read again and again
//
// A pixel moves away from the mean of its neighbours, but stays one step short of the lowest and the highest of them:
// edges stay edges, nothing builds up, and what fades is not made good again.

// fClarity: 0 to 1; about 0.7 undoes what reading at random places between the pixels blurs.
STOCK_WIDE static void SharpenBytes(const uint8_t *pbUp, const uint8_t *pbRow, const uint8_t *pbDown, int32_t nBytes,
                                    int16_t nFactor, uint8_t *pbOut)
{
    for (int32_t i = 0; i < nBytes; i++) {
        const int16_t nHere = pbRow[i], nLeft = pbRow[i - 4], nRight = pbRow[i + 4], nUp = pbUp[i], nDown = pbDown[i];
        const int16_t nLow = std::min(std::min(std::min(nLeft, nRight), std::min(nUp, nDown)), nHere);
        const int16_t nHigh = std::max(std::max(std::max(nLeft, nRight), std::max(nUp, nDown)), nHere);
        const int16_t nBend = (int16_t)(4 * nHere - nLeft - nRight - nUp - nDown);
        const int16_t nSharp = (int16_t)(nHere + ((int16_t)(nBend * nFactor + 128) >> 8));
        const int16_t nFloor = std::min((int16_t)(nLow + 1), nHere), nCeiling = std::max((int16_t)(nHigh - 1), nHere);
        pbOut[i] = (uint8_t)std::min(std::max(nSharp, nFloor), nCeiling);
    }
}

// The way from one index to another; none if the way over the end of the palette is far shorter.
inline int16_t IndexWay(uint16_t wFrom, uint16_t wTo, int32_t nLoop)
{
    const int16_t nFar = (int16_t)(nLoop - nLoop / 4 - 1), nWay = (int16_t)(wTo - wFrom);
    return (int16_t)(nWay > nFar || nWay < -nFar ? 0 : nWay);
}

STOCK_WIDE static void SharpenIndices(const uint16_t *pwUp, const uint16_t *pwRow, const uint16_t *pwDown,
                                      int32_t nPixels, float fClarity, int32_t nLoop, int32_t nStep, uint16_t *pwOut)
{
    const int16_t nFactor = (int16_t)(fClarity * -32767);
    for (int32_t i = 0; i < nPixels; i++) {
        const uint16_t wHere = pwRow[i];
        const int16_t nLeft = IndexWay(wHere, pwRow[i - 1], nLoop), nRight = IndexWay(wHere, pwRow[i + 1], nLoop);
        const int16_t nUp = IndexWay(wHere, pwUp[i], nLoop), nDown = IndexWay(wHere, pwDown[i], nLoop);
        const int16_t nBend = (int16_t)((nLeft >> 2) + (nRight >> 2) + (nUp >> 2) + (nDown >> 2));
        const int16_t nLow = std::min(std::min(std::min(nLeft, nRight), std::min(nUp, nDown)), (int16_t)0);
        const int16_t nHigh = std::max(std::max(std::max(nLeft, nRight), std::max(nUp, nDown)), (int16_t)0);
        const int16_t nSharp = (int16_t)((int32_t)nBend * nFactor >> 16);
        const int16_t nFloor = std::min((int16_t)(nLow + nStep), (int16_t)0);
        const int16_t nCeiling = std::max((int16_t)(nHigh - nStep), (int16_t)0);
        pwOut[i] = (uint16_t)(wHere + std::min(std::max(nSharp, nFloor), nCeiling));
    }
}

// ---- Taking the copy

inline void TakeColors(const RemapSource &source, const Canvas &canvas, float fClarity)
{
    const auto Take = [&](int32_t y) { return (const uint8_t *)CanvasRow(canvas, y); };
    const int16_t nFactor = (int16_t)(fClarity * 31);
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        uint32_t *pRow = source.pColors + (size_t)(y + 1) * source.nStride + 1;
        memcpy(pRow, CanvasRow(canvas, y), (size_t)canvas.nWidth * sizeof(uint32_t));
        if (nFactor > 0 && y > 0 && y < canvas.nHeight - 1 && canvas.nWidth > 2)
            SharpenBytes(Take(y + 1) + 4, Take(y) + 4, Take(y - 1) + 4, (canvas.nWidth - 2) * 4, nFactor,
                         (uint8_t *)(pRow + 1));
    }
}

STOCK_WIDE static void TakeIndexRow(const uint32_t *pdwPlane, int32_t nWidth, uint32_t dwTop, int32_t nBits,
                                    uint16_t *__restrict pwRow)
{
    for (int32_t x = 0; x < nWidth; x++)
        pwRow[x] = (uint16_t)((pdwPlane[x] < dwTop ? pdwPlane[x] : dwTop) << nBits);
}

// A row is sharpened as soon as the one above it stands; the plain rows below it wait in a buffer of two.
inline void TakeIndices(const RemapSource &source, const Canvas &canvas, float fClarity)
{
    const size_t nBytes = (size_t)canvas.nWidth * sizeof(uint16_t);
    const auto Row = [&](int32_t y) { return source.pIndices + (size_t)(y + 1) * source.nStride + 1; };
    uint16_t *pwPlain = fClarity > 0 && canvas.nWidth > 2 ? (uint16_t *)malloc(2 * nBytes) : nullptr;
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        TakeIndexRow(CanvasRow(canvas, y), canvas.nWidth, (uint32_t)canvas.nColors - 1, source.nBits, Row(y));
        if (!pwPlain)
            continue;
        uint16_t *pwBelow = pwPlain + (y & 1) * canvas.nWidth, *pwHere = pwPlain + (~y & 1) * canvas.nWidth;
        if (y >= 2)
            SharpenIndices(Row(y) + 1, pwHere + 1, pwBelow + 1, canvas.nWidth - 2, fClarity,
                           source.nColors << source.nBits, 1 << source.nBits, Row(y - 1) + 1);
        memcpy(pwBelow, Row(y), nBytes);
    }
    free(pwPlain);
}

// Copies the canvas. fClarity: 0 (as it is) to 1 sharpens the copy. False as FitSource.
inline bool TakeSource(RemapSource *pSource, const Canvas &canvas, uint32_t dwEdges, float fClarity = 0)
{
    if (!FitSource(pSource, canvas))
        return false;
    if (canvas.bIndexed) {
        TakeIndices(*pSource, canvas, fClarity);
        FillMargin(*pSource, pSource->pIndices, dwEdges);
    } else {
        TakeColors(*pSource, canvas, fClarity);
        FillMargin(*pSource, pSource->pColors, dwEdges);
    }
    return true;
}

// ---- Where pixels come from

#define REMAP_SPAN TRAIL_SPAN // pixels of a stretch at most

struct RemapPath {
    float afX[REMAP_SPAN], afY[REMAP_SPAN];
};

// A path in 1/256 pixel of the source with its margin, all of it inside.
struct RemapPlaces {
    int32_t anX[REMAP_SPAN], anY[REMAP_SPAN];
};

// Whether some position is beyond the margin.
inline bool LeavesPicture(const float *pf, int32_t nPixels, float fSide)
{
    int32_t bLeaves = 0;
    for (int32_t i = 0; i < nPixels; i++)
        bLeaves |= !(pf[i] >= -1) | !(pf[i] <= fSide);
    return bLeaves != 0;
}

inline float FloorNear(float f)
{
    const int32_t nWhole = (int32_t)f;
    return (float)(nWhole - ((float)nWhole > f));
}

// Brings positions home over the edges.
inline void FoldPositions(float *pf, int32_t nPixels, float fSide, uint32_t dwEdges)
{
    const float fFar = 1e6f;
    for (int32_t i = 0; i < nPixels; i++)
        pf[i] = std::min(pf[i] > -fFar ? pf[i] : -fFar, fFar);
    if (dwEdges == EDGES_AROUND)
        for (int32_t i = 0; i < nPixels; i++)
            pf[i] -= fSide * FloorNear(pf[i] / fSide);
    else if (dwEdges == EDGES_MIRRORED)
        for (int32_t i = 0; i < nPixels; i++) {
            const float f = pf[i] + 0.5f - 2 * fSide * FloorNear((pf[i] + 0.5f) / (2 * fSide));
            pf[i] = std::min(f, 2 * fSide - f) - 0.5f;
        }
    for (int32_t i = 0; i < nPixels; i++)
        pf[i] = std::min(std::max(pf[i], -1.0f), fSide);
}

STOCK_WIDE static void PlacePositions(float *pf, int32_t nPixels, int32_t nSide, uint32_t dwEdges, int32_t *pnPlaces)
{
    if (LeavesPicture(pf, nPixels, (float)nSide))
        FoldPositions(pf, nPixels, (float)nSide, dwEdges);
    // The last place is a hair inside, so that the neighbour beyond it exists.
    const int32_t nLast = (nSide + 1) * 256 - 1;
    for (int32_t i = 0; i < nPixels; i++) {
        const int32_t n = (int32_t)(pf[i] * 256 + 256.5f);
        pnPlaces[i] = n < nLast ? n : nLast;
    }
}

// ---- Reading

struct RemapLook {
    uint32_t dwEdges;
    bool bTrails;    // the result is read again next frame: rounded by a pattern that moves, and fading
    uint32_t nFrame; // moves the pattern
    TrailFade fade;
};

inline RemapLook PlainLook(uint32_t dwEdges)
{
    return {dwEdges, false, 0, {1, 0}};
}

inline RemapLook TrailLook(uint32_t dwEdges, uint32_t nFrame, const TrailFade &fade = {1, 0})
{
    return {dwEdges, true, nFrame, fade};
}

// Where the lower left neighbours lie in the source.
inline void LayPlaces(const RemapSource &source, const RemapPlaces &places, int32_t nPixels, int32_t *pnFrom)
{
    for (int32_t i = 0; i < nPixels; i++)
        pnFrom[i] = (places.anY[i] >> 8) * (int32_t)source.nStride + (places.anX[i] >> 8);
}

STOCK_WIDE static void ReadColors(const RemapSource &source, const RemapPlaces &places, const RemapLook &look,
                                  int32_t x, int32_t y, int32_t nPixels, uint32_t *pdwOut)
{
    int32_t anFrom[REMAP_SPAN];
    alignas(32) uint8_t abPattern[2 * REMAP_SPAN];
    const uint32_t nStart = (uint32_t)x * PATTERN_X + (uint32_t)y * PATTERN_Y + look.nFrame * PATTERN_FRAME;
    LayPlaces(source, places, nPixels, anFrom);
    for (int32_t i = 0; i < 2 * nPixels; i++)
        abPattern[i] = (uint8_t)(look.bTrails ? (i >> 1) * PATTERN_X : 0);
    MixedColors mixed;
    MixNeighbors(source.pColors, source.nStride, anFrom, places.anX, places.anY, nPixels, &mixed);
    FadeColors(mixed, nPixels, FadeOfColors(look.fade), abPattern, (uint8_t)(look.bTrails ? nStart : 128), pdwOut);
}

struct IndexNeighbors {
    uint32_t adwLower[REMAP_SPAN], adwUpper[REMAP_SPAN]; // pairs, the left one in the low word
};

inline void LoadNeighbors(const RemapSource &source, const int32_t *pnFrom, int32_t nPixels, IndexNeighbors *pPairs)
{
    for (int32_t i = 0; i < nPixels; i++) {
        memcpy(&pPairs->adwLower[i], source.pIndices + pnFrom[i], sizeof(uint32_t));
        memcpy(&pPairs->adwUpper[i], source.pIndices + pnFrom[i] + source.nStride, sizeof(uint32_t));
    }
}

// The way from one index to another, over the end of the palette if it is longer than nFar.
inline float ShortWay(int32_t nFrom, int32_t nTo, int32_t nLoop, int32_t nFar)
{
    const int32_t nWay = nTo - nFrom;
    return (float)(nWay - (nLoop & -(int32_t)(nWay > nFar)) + (nLoop & -(int32_t)(nWay < -nFar)));
}

inline float PartOf256(int32_t n)
{
    return (float)(n & 255) * (1 / 256.0f);
}

// Writes indices with their fractions.
inline void MixIndices(const RemapSource &source, const RemapPlaces &places, const IndexNeighbors &pairs,
                       int32_t nPixels, float *pfMixed)
{
    const int32_t nLoop = source.nColors << source.nBits, nFar = nLoop - nLoop / 4 - 1;
    for (int32_t i = 0; i < nPixels; i++) {
        const int32_t nFirst = (int32_t)(pairs.adwLower[i] & 0xFFFF);
        const float fRight = ShortWay(nFirst, (int32_t)(pairs.adwLower[i] >> 16), nLoop, nFar);
        const float fAbove = ShortWay(nFirst, (int32_t)(pairs.adwUpper[i] & 0xFFFF), nLoop, nFar);
        const float fBoth = ShortWay(nFirst, (int32_t)(pairs.adwUpper[i] >> 16), nLoop, nFar);
        const float fX = PartOf256(places.anX[i]), fY = PartOf256(places.anY[i]);
        const float f = (float)nFirst + fX * (fRight + fY * (fBoth - fRight - fAbove)) + fY * fAbove;
        const int32_t n = (int32_t)f;
        pfMixed[i] = f + (float)((nLoop & -(int32_t)(n < 0)) - (nLoop & -(int32_t)(n >= nLoop)));
    }
}

// Where trails fade, the first color is the dark: no way leads from it over the end to the last ones.
inline void MixFadingIndices(const RemapPlaces &places, const IndexNeighbors &pairs, int32_t nPixels, float *pfMixed)
{
    for (int32_t i = 0; i < nPixels; i++) {
        const int32_t nFirst = (int32_t)(pairs.adwLower[i] & 0xFFFF);
        const float fRight = (float)((int32_t)(pairs.adwLower[i] >> 16) - nFirst);
        const float fAbove = (float)((int32_t)(pairs.adwUpper[i] & 0xFFFF) - nFirst);
        const float fBoth = (float)((int32_t)(pairs.adwUpper[i] >> 16) - nFirst);
        const float fX = PartOf256(places.anX[i]), fY = PartOf256(places.anY[i]);
        pfMixed[i] = (float)nFirst + fX * (fRight + fY * (fBoth - fRight - fAbove)) + fY * fAbove;
    }
}

STOCK_WIDE static void ReadIndices(const RemapSource &source, const RemapPlaces &places, const RemapLook &look,
                                   int32_t x, int32_t y, int32_t nPixels, uint32_t *pdwOut)
{
    int32_t anFrom[REMAP_SPAN];
    IndexNeighbors pairs;
    float afMixed[REMAP_SPAN];
    LayPlaces(source, places, nPixels, anFrom);
    LoadNeighbors(source, anFrom, nPixels, &pairs);
    if (IsFading(look.fade))
        MixFadingIndices(places, pairs, nPixels, afMixed);
    else
        MixIndices(source, places, pairs, nPixels, afMixed);
    // Rounding up to a half could hold a faint trail for ever: fading takes more than that, if only just.
    const float fBurn = look.fade.fBurn * (float)(source.nColors << source.nBits), fKeep = look.fade.fKeep;
    const float fLess = IsFading(look.fade) ? std::max(fBurn, 0.55f) - 0.5f : -0.5f;
    const uint32_t nStart = (uint32_t)x * PATTERN_X + (uint32_t)y * PATTERN_Y + look.nFrame * PATTERN_FRAME;
    const int32_t nBits = source.nBits, nColors = source.nColors, bTrails = look.bTrails;
    for (int32_t i = 0; i < nPixels; i++) {
        const int32_t nMixed = (int32_t)std::max(afMixed[i] * fKeep - fLess, 0.0f);
        const int32_t nPattern = bTrails ? (int32_t)((nStart + (uint32_t)i * PATTERN_X) & 255) : 128;
        const int32_t nIndex = (nMixed + (nPattern >> (8 - nBits))) >> nBits;
        pdwOut[i] = (uint32_t)(nIndex < nColors ? nIndex : 0); // just past the last color comes the first
    }
}

// Reads the pixels that belong at x, y and to the right of it. pPath: used up.
inline void ReadPath(const RemapSource &source, RemapPath *pPath, const RemapLook &look, int32_t x, int32_t y,
                     int32_t nPixels, uint32_t *pdwOut)
{
    RemapPlaces places;
    PlacePositions(pPath->afX, nPixels, source.nWidth, look.dwEdges, places.anX);
    PlacePositions(pPath->afY, nPixels, source.nHeight, look.dwEdges, places.anY);
    if (source.bIndexed)
        ReadIndices(source, places, look, x, y, nPixels, pdwOut);
    else
        ReadColors(source, places, look, x, y, nPixels, pdwOut);
}

// Reads the whole canvas anew. LayPath(x, y, nPixels, &path) says where the pixels come from; false: they stay.
template <class LayPath>
inline void RemapCanvas(const Canvas &canvas, const RemapSource &source, const RemapLook &look, const LayPath &layPath)
{
    for (int32_t y = 0; y < canvas.nHeight; y++)
        for (int32_t x = 0; x < canvas.nWidth; x += REMAP_SPAN) {
            const int32_t nPixels = std::min(canvas.nWidth - x, REMAP_SPAN);
            RemapPath path;
            if (layPath(x, y, nPixels, &path))
                ReadPath(source, &path, look, x, y, nPixels, CanvasRow(canvas, y) + x);
        }
}

// ---- Fresh pictures and pictures that grow on themselves
//
// Overlays and post-processing see a fresh picture every frame: there an effect says how far things are moved.
// On a plane it sees what it left the frame before: there the same effect says how fast they move.

enum { PICTURE_BYLIST, PICTURE_GROWS, PICTURE_FRESH, PICTURE_KINDS };

inline ControlRecord *AddPictureKind(const ControlMaker &maker, ItemSelectRow (&aRows)[PICTURE_KINDS])
{
    static const char16_t *const aszKinds[PICTURE_KINDS] = {u"As the list says", u"Grows on itself",
                                                            u"Fresh every frame"};
    return AddItemSelect(maker, u"Picture\0Kind\0",
                         u"Choose Fresh on a plane that is drawn in full every frame; on any other plane the effect "
                         u"goes on from its own last picture",
                         aRows, aszKinds, PICTURE_BYLIST, FromFixed());
}

inline bool IsPictureFresh(const ControlRecord *pctl, const PlaneInfo *ppi)
{
    const uint32_t dwKind = ReadItem(pctl);
    if (dwKind != PICTURE_BYLIST)
        return dwKind == PICTURE_FRESH;
    return !ppi->hbmResolved || ppi->hbmResolved == ppi->hbmDraw;
}

#endif
