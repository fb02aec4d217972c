// Carry.cpp -- the inner loops of the carry: load four neighbours, interpolate, fade, store
#include "Carry.h"

#include "../common/StockWide.h"

// ---- What both kinds of plane share

// Fills the margin of a row of which the middle stands.
template <typename Pixel> static void FillRowEnds(Pixel *pRow, int32_t nWidth, int32_t nMargin, uint32_t dwEdges)
{
    Pixel *pFirst = pRow + nMargin, *pEnd = pFirst + nWidth;
    if (dwEdges == EDGES_AROUND)
        for (int32_t i = 0; i < nMargin; i++) {
            pFirst[-1 - i] = pFirst[nWidth - 1 - i % nWidth];
            pEnd[i] = pFirst[i % nWidth];
        }
    else {
        std::fill_n(pRow, nMargin, dwEdges == EDGES_CLOSED ? pFirst[0] : Pixel(0));
        std::fill_n(pEnd, nMargin, dwEdges == EDGES_CLOSED ? pEnd[-1] : Pixel(0));
    }
}

// Fills the rows above and below a picture whose own rows stand, ends included.
template <typename Pixel> static void FillMarginRows(Pixel *pPicture, const CarryBuffers &buffers, uint32_t dwEdges)
{
    const size_t nStride = buffers.nStride;
    const auto Row = [&](int32_t y) { return pPicture + (size_t)(y + buffers.nMargin) * nStride; };
    const int32_t nHeight = buffers.nHeight;
    for (int32_t i = 0; i < buffers.nMargin; i++) {
        const int32_t yBelow = dwEdges == EDGES_AROUND ? nHeight - 1 - i % nHeight : 0;
        const int32_t yAbove = dwEdges == EDGES_AROUND ? i % nHeight : nHeight - 1;
        if (dwEdges == EDGES_OPEN) {
            std::fill_n(Row(-1 - i), nStride, Pixel(0));
            std::fill_n(Row(nHeight + i), nStride, Pixel(0));
        } else {
            std::copy_n(Row(yBelow), nStride, Row(-1 - i));
            std::copy_n(Row(yAbove), nStride, Row(nHeight + i));
        }
    }
}

// The carries along one row of the picture, interpolated between two rows of vertices.
struct CarryRow {
    int32_t anX[WINDROW_MOST], anY[WINDROW_MOST];
};

static void InterpolateRow(const WindGrid &grid, int32_t y, CarryRow *pRow)
{
    const size_t iFirst = (size_t)(y >> WIND_CELL_BITS) * (size_t)grid.nColumns;
    const int32_t *pnX = grid.pnCarryX + iFirst, *pnY = grid.pnCarryY + iFirst;
    const int32_t nPart = y & (WIND_CELL - 1);
    for (int32_t i = 0; i < grid.nColumns; i++) {
        pRow->anX[i] = pnX[i] + (((pnX[i + grid.nColumns] - pnX[i]) * nPart) >> WIND_CELL_BITS);
        pRow->anY[i] = pnY[i] + (((pnY[i + grid.nColumns] - pnY[i]) * nPart) >> WIND_CELL_BITS);
    }
}

// Where a cell's pixels come from, in 1/65536 pixel of the buffer with its margin.
struct CellPath {
    int32_t x, y, xStep, yStep;
};

static CellPath PathOfCell(const CarryRow &row, int32_t iCell, int32_t y, int32_t nMargin)
{
    const int32_t nX = row.anX[iCell], nY = row.anY[iCell];
    return {((iCell * WIND_CELL + nMargin) << 16) + nX, ((y + nMargin) << 16) + nY,
            65536 + ((row.anX[iCell + 1] - nX) >> WIND_CELL_BITS), (row.anY[iCell + 1] - nY) >> WIND_CELL_BITS};
}

// A whole cell or, at the end of the row, what is left of the row.
template <typename Pixel> static inline void StoreCell(Pixel *pTo, const Pixel *pFrom, int32_t nLeft)
{
    if (nLeft >= WIND_CELL)
        memcpy(pTo, pFrom, WIND_CELL * sizeof(Pixel));
    else
        memcpy(pTo, pFrom, (size_t)nLeft * sizeof(Pixel));
}

// ---- Indexed planes

static int32_t FractionBits(const Canvas &canvas)
{
    return canvas.nColors <= 256 ? 8 : 5;
}

// What a fraction is rounded by: a fine pattern, not the nearest, so that slopes show no steps.
static inline uint32_t PatternAt(int32_t x, int32_t y, int32_t nBits)
{
    return (uint8_t)(x * PATTERN_X + y * PATTERN_Y) >> (8 - nBits);
}

// Takes over what the modules before have drawn. A pixel that shows what the last carry left keeps its fraction.
STOCK_WIDE static void TakeIndexRow(const uint32_t *pdwPlane, int32_t nWidth, int32_t y, uint32_t dwTop, int32_t nBits,
                                    uint16_t *__restrict pOld)
{
    for (int32_t x = 0; x < nWidth; x++) {
        const uint32_t dwNew = pdwPlane[x] < dwTop ? pdwPlane[x] : dwTop;
        const uint32_t dwShown = (pOld[x] + PatternAt(x, y, nBits)) >> nBits;
        pOld[x] = (uint16_t)(dwShown == dwNew ? pOld[x] : dwNew << nBits);
    }
}

static void TakeIndices(const Canvas &canvas, const CarryBuffers &buffers, int32_t nBits, uint32_t dwEdges)
{
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        uint16_t *pRow = buffers.pIndices[0] + (size_t)(y + buffers.nMargin) * buffers.nStride;
        TakeIndexRow(CanvasRow(canvas, y), canvas.nWidth, y, (uint32_t)canvas.nColors - 1, nBits,
                     pRow + buffers.nMargin);
        FillRowEnds(pRow, canvas.nWidth, buffers.nMargin, dwEdges);
    }
    FillMarginRows(buffers.pIndices[0], buffers, dwEdges);
}

// Two neighbours of a lower and of an upper row per pixel, and the place between them.
struct IndexCell {
    uint32_t adwLower[WIND_CELL], adwUpper[WIND_CELL];
    int32_t anX[WIND_CELL], anY[WIND_CELL];
};

static inline void LoadIndices(const uint16_t *pFrom, int32_t nStride, const CellPath &path, IndexCell *pCell)
{
    int32_t anFrom[WIND_CELL];
    for (int32_t i = 0; i < WIND_CELL; i++) {
        const int32_t x = path.x + i * path.xStep, y = path.y + i * path.yStep;
        anFrom[i] = (y >> 16) * nStride + (x >> 16);
        pCell->anX[i] = x & 0xFFFF;
        pCell->anY[i] = y & 0xFFFF;
    }
    for (int32_t i = 0; i < WIND_CELL; i++) {
        memcpy(&pCell->adwLower[i], pFrom + anFrom[i], sizeof(uint32_t));
        memcpy(&pCell->adwUpper[i], pFrom + anFrom[i] + nStride, sizeof(uint32_t));
    }
}

static inline float MixPair(uint32_t dwPair, float fPart)
{
    const float fFirst = (float)(int32_t)(dwPair & 0xFFFF), fSecond = (float)(int32_t)(dwPair >> 16);
    return fFirst + (fSecond - fFirst) * fPart;
}

// adwMixed: with its fraction.
static inline void MixIndices(const IndexCell &cell, float fKeep, float fLess, uint32_t *pdwMixed)
{
    for (int32_t i = 0; i < WIND_CELL; i++) {
        const float fX = (float)cell.anX[i] * (1 / 65536.0f), fY = (float)cell.anY[i] * (1 / 65536.0f);
        const float fLower = MixPair(cell.adwLower[i], fX), fUpper = MixPair(cell.adwUpper[i], fX);
        const float fMixed = (fLower + (fUpper - fLower) * fY) * fKeep - fLess;
        pdwMixed[i] = (uint32_t)(int32_t)(fMixed > 0 ? fMixed : 0);
    }
}

static inline void SplitIndices(const uint32_t *pdwMixed, int32_t x, int32_t y, int32_t nBits, uint16_t *pwKept,
                                uint32_t *pdwShown)
{
    for (int32_t i = 0; i < WIND_CELL; i++) {
        pwKept[i] = (uint16_t)pdwMixed[i];
        pdwShown[i] = (pdwMixed[i] + PatternAt(x + i, y, nBits)) >> nBits;
    }
}

struct IndexFade {
    float fKeep, fLess; // of indices with their fraction
    int32_t nBits;
};

STOCK_WIDE static void CarryIndexRow(const CarryBuffers &buffers, const CarryRow &row, int32_t y, int32_t nWidth,
                                     const IndexFade fade, uint32_t *pdwPlane)
{
    const int32_t nMargin = buffers.nMargin;
    uint16_t *pKept = buffers.pIndices[1] + (size_t)(y + nMargin) * buffers.nStride + nMargin;
    for (int32_t x = 0; x < nWidth; x += WIND_CELL) {
        IndexCell cell;
        uint32_t adwMixed[WIND_CELL], adwShown[WIND_CELL];
        uint16_t awKept[WIND_CELL];
        LoadIndices(buffers.pIndices[0], (int32_t)buffers.nStride, PathOfCell(row, x >> WIND_CELL_BITS, y, nMargin),
                    &cell);
        MixIndices(cell, fade.fKeep, fade.fLess, adwMixed);
        SplitIndices(adwMixed, x, y, fade.nBits, awKept, adwShown);
        StoreCell(pKept + x, awKept, nWidth - x);
        StoreCell(pdwPlane + x, adwShown, nWidth - x);
    }
}

void CarryIndices(const Canvas &canvas, CarryBuffers *pBuffers, const TrailFade &fade, uint32_t dwEdges)
{
    const int32_t nBits = FractionBits(canvas);
    TakeIndices(canvas, *pBuffers, nBits, dwEdges);
    // Rounding up to a half could hold a faint trail for ever: fading takes more than that, if only just.
    const float fFull = (float)(canvas.nColors << nBits);
    const float fLess = IsFading(fade) ? std::max(fade.fBurn * fFull, 0.55f) - 0.5f : -0.5f;
    CarryRow row;
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        InterpolateRow(pBuffers->grid, y, &row);
        CarryIndexRow(*pBuffers, row, y, canvas.nWidth, {fade.fKeep, fLess, nBits}, CanvasRow(canvas, y));
    }
    std::swap(pBuffers->pIndices[0], pBuffers->pIndices[1]);
}

// ---- RGB planes

static void TakeColors(const Canvas &canvas, const CarryBuffers &buffers, uint32_t dwEdges)
{
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        uint32_t *pRow = buffers.pColors + (size_t)(y + buffers.nMargin) * buffers.nStride;
        memcpy(pRow + buffers.nMargin, CanvasRow(canvas, y), (size_t)canvas.nWidth * sizeof(uint32_t));
        FillRowEnds(pRow, canvas.nWidth, buffers.nMargin, dwEdges);
    }
    FillMarginRows(buffers.pColors, buffers, dwEdges);
}

STOCK_WIDE static void CarryColorRow(const CarryBuffers &buffers, const CarryRow &row, int32_t y, int32_t nWidth,
                                     const ColorFade fade, uint32_t nPattern, uint32_t *pdwPlane)
{
    alignas(32) uint8_t abPattern[WIND_CELL * 2];
    for (uint32_t i = 0; i < WIND_CELL * 2; i++)
        abPattern[i] = (uint8_t)(i / 2 * PATTERN_X);
    for (int32_t x = 0; x < nWidth; x += WIND_CELL) {
        int32_t anFrom[WIND_CELL], anX[WIND_CELL], anY[WIND_CELL];
        alignas(32) uint32_t adwOut[WIND_CELL];
        const CellPath path = PathOfCell(row, x >> WIND_CELL_BITS, y, buffers.nMargin);
        for (int32_t i = 0; i < WIND_CELL; i++) {
            const int32_t xFrom = path.x + i * path.xStep, yFrom = path.y + i * path.yStep;
            anFrom[i] = (yFrom >> 16) * (int32_t)buffers.nStride + (xFrom >> 16);
            anX[i] = xFrom >> 8;
            anY[i] = yFrom >> 8;
        }
        MixedColors mixed;
        MixNeighbors(buffers.pColors, buffers.nStride, anFrom, anX, anY, WIND_CELL, &mixed);
        FadeColors(mixed, WIND_CELL, fade, abPattern, (uint8_t)(nPattern + (uint32_t)x * PATTERN_X), adwOut);
        StoreCell(pdwPlane + x, adwOut, nWidth - x);
    }
}

void CarryColors(const Canvas &canvas, CarryBuffers *pBuffers, const TrailFade &fade, uint32_t dwEdges, uint32_t nFrame)
{
    TakeColors(canvas, *pBuffers, dwEdges);
    CarryRow row;
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        InterpolateRow(pBuffers->grid, y, &row);
        CarryColorRow(*pBuffers, row, y, canvas.nWidth, FadeOfColors(fade),
                      (uint32_t)y * PATTERN_Y + nFrame * PATTERN_FRAME, CanvasRow(canvas, y));
    }
}
