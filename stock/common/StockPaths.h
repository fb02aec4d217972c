// StockPaths.h -- paths through a picture for StockRemap.h: straight lines, folds at mirrors, a grid of shifts
#ifndef VORTICADE_STOCK_PATHS_H
#define VORTICADE_STOCK_PATHS_H

#include "StockRemap.h"

// cos(2 pi f) within 4e-6 for any f within 1000 turns, in arithmetic that the compiler runs on several numbers at once.
inline float QuickCosine(float f)
{
    f -= (float)((int32_t)(f + 1024.5f) - 1024);
    const float y = (0.25f - std::fabs(f)) * 6.2831853f, y2 = y * y;
    return y * (1 + y2 * (-1.6666667e-1f + y2 * (8.3333333e-3f + y2 * (-1.9841270e-4f + y2 * 2.7557319e-6f))));
}

inline float QuickSine(float f)
{
    return QuickCosine(f - 0.25f);
}

// ---- Straight lines

// Where a pixel comes from: x * xx + y * xy + x0, x * yx + y * yy + y0.
struct RemapPlan {
    float xx, xy, x0, yx, yy, y0;
};

inline RemapPlan SamePlan()
{
    return {1, 0, 0, 0, 1, 0};
}

// Turns counter-clockwise and enlarges around a place of the picture.
inline RemapPlan TurnPlan(float x, float y, float fTurns, float fScale)
{
    const float fCosine = CosineTurn(fTurns) / fScale, fSine = SineTurn(fTurns) / fScale;
    return {fCosine, fSine, x - fCosine * x - fSine * y, -fSine, fCosine, y + fSine * x - fCosine * y};
}

STOCK_WIDE static void LayLine(const RemapPlan plan, int32_t x, int32_t y, int32_t iFirst, int32_t iEnd,
                               RemapPath *__restrict pPath)
{
    const float xRow = plan.xy * (float)y + plan.x0, yRow = plan.yy * (float)y + plan.y0;
    for (int32_t i = iFirst; i < iEnd; i++) {
        pPath->afX[i] = plan.xx * (float)(x + i) + xRow;
        pPath->afY[i] = plan.yx * (float)(x + i) + yRow;
    }
}

// ---- Folds: lines cut a row into pieces, each of which comes from a straight line

#define FOLD_CUTS_MOST 48

struct FoldCut {
    float x, y;   // a point of the line
    float dx, dy; // its direction
};

// The places where cuts meet a row, in order. Returns how many lie inside it.
inline int32_t CutRow(const FoldCut *pCuts, int32_t nCuts, int32_t y, int32_t nWidth, int32_t *pxCut)
{
    int32_t n = 0;
    for (int32_t i = 0; i < nCuts; i++) {
        const float x = pCuts[i].x + ((float)y - pCuts[i].y) * pCuts[i].dx / pCuts[i].dy;
        if (x > 0 && x <= (float)(nWidth - 1)) // a level line, and what is no number, cuts nothing
            pxCut[n++] = (int32_t)std::ceil(x);
    }
    std::sort(pxCut, pxCut + n);
    return n;
}

// Reads the canvas folded. planAt(x, y): the plan that holds around a point; null: the pixels stay as they are.
template <class PlanAt>
inline void FoldCanvas(const Canvas &canvas, const RemapSource &source, const RemapLook &look, const FoldCut *pCuts,
                       int32_t nCuts, const PlanAt &planAt)
{
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        int32_t axCut[FOLD_CUTS_MOST + 1];
        const int32_t n = CutRow(pCuts, nCuts, y, canvas.nWidth, axCut);
        axCut[n] = canvas.nWidth;
        for (int32_t i = 0, xFirst = 0; i <= n; xFirst = axCut[i++]) {
            const RemapPlan *pPlan = planAt(0.5f * (float)(xFirst + axCut[i] - 1), (float)y);
            for (int32_t x = xFirst; pPlan && x < axCut[i]; x += REMAP_SPAN) {
                const int32_t nPixels = std::min(axCut[i] - x, REMAP_SPAN);
                RemapPath path;
                LayLine(*pPlan, x, y, 0, nPixels, &path);
                ReadPath(source, &path, look, x, y, nPixels, CanvasRow(canvas, y) + x);
            }
        }
    }
}

// ---- A grid of shifts

// How far away each pixel comes from, in pixels at the vertices; between them it is interpolated.
struct RemapGrid {
    float *pfX, *pfY; // nRows + 1 rows of nColumns: the last one is the row being read
    int32_t nColumns, nRows, nCellBits;
    int32_t nWidth, nHeight; // of the picture; 0: nothing allocated
};

inline void FreeGrid(RemapGrid *pGrid)
{
    free(pGrid->pfX);
    free(pGrid->pfY);
    *pGrid = {};
}

inline size_t VerticesOf(const RemapGrid &grid)
{
    return (size_t)grid.nColumns * (size_t)grid.nRows;
}

// Makes it fit the canvas; if it does not, all shifts are 0. False if there is no memory: then none is held.
inline bool FitGrid(RemapGrid *pGrid, const Canvas &canvas)
{
    if (pGrid->nWidth == canvas.nWidth && pGrid->nHeight == canvas.nHeight)
        return true;
    FreeGrid(pGrid);
    // Cells are about as fine a part of the picture at every size.
    const int32_t nSide = std::min(canvas.nWidth, canvas.nHeight);
    pGrid->nCellBits = nSide < 320 ? 2 : nSide < 1440 ? 3 : 4;
    pGrid->nColumns = (canvas.nWidth >> pGrid->nCellBits) + 2;
    pGrid->nRows = (canvas.nHeight >> pGrid->nCellBits) + 2;
    const size_t nFloats = (size_t)pGrid->nColumns * (size_t)(pGrid->nRows + 1);
    pGrid->pfX = (float *)calloc(nFloats, sizeof(float));
    pGrid->pfY = (float *)calloc(nFloats, sizeof(float));
    if (!pGrid->pfX || !pGrid->pfY) {
        FreeGrid(pGrid);
        return false;
    }
    pGrid->nWidth = canvas.nWidth;
    pGrid->nHeight = canvas.nHeight;
    return true;
}

// Interpolates the row of the canvas between two rows of vertices.
inline void ReadGridRow(const RemapGrid &grid, int32_t y)
{
    const size_t nColumns = (size_t)grid.nColumns, iFirst = (size_t)(y >> grid.nCellBits) * nColumns;
    const int32_t nCell = 1 << grid.nCellBits;
    const float fPart = (float)(y & (nCell - 1)) / (float)nCell;
    for (float *pf : {grid.pfX, grid.pfY}) {
        const float *pfBelow = pf + iFirst, *pfAbove = pfBelow + nColumns;
        float *pfRow = pf + (size_t)grid.nRows * nColumns;
        for (size_t i = 0; i < nColumns; i++)
            pfRow[i] = pfBelow[i] + (pfAbove[i] - pfBelow[i]) * fPart;
    }
}

// pfShift: at the vertices from the first one of the stretch on. fStart: where its first pixel stands; fStep: 1 along
// the row, 0 for places across it.
STOCK_WIDE static void LayShifts(const float *pfShift, int32_t nCellBits, int32_t nPixels, float fStart, float fStep,
                                 float *__restrict pfPlace)
{
    const int32_t nCell = 1 << nCellBits;
    const float fPart = 1.0f / (float)nCell;
    for (int32_t i = 0; i < nPixels; i += nCell) { // a span is a multiple of every cell
        const float fFirst = pfShift[i >> nCellBits], fMore = (pfShift[(i >> nCellBits) + 1] - fFirst) * fPart;
        for (int32_t j = 0; j < nCell; j++)
            pfPlace[i + j] = fStart + fStep * (float)(i + j) + fFirst + (float)j * fMore;
    }
}

// A stretch that begins at a multiple of REMAP_SPAN. False if nothing moves there.
inline bool LayGrid(const RemapGrid &grid, int32_t x, int32_t y, int32_t nPixels, RemapPath *pPath)
{
    const size_t iFirst = (size_t)grid.nRows * (size_t)grid.nColumns + (size_t)(x >> grid.nCellBits);
    const float *pfX = grid.pfX + iFirst, *pfY = grid.pfY + iFirst;
    bool bMoves = false;
    for (int32_t i = 0; i <= (nPixels - 1) >> grid.nCellBits; i++)
        bMoves |= pfX[i] != 0 || pfX[i + 1] != 0 || pfY[i] != 0 || pfY[i + 1] != 0;
    if (!bMoves)
        return false;
    LayShifts(pfX, grid.nCellBits, nPixels, (float)x, 1, pPath->afX);
    LayShifts(pfY, grid.nCellBits, nPixels, (float)y, 0, pPath->afY);
    return true;
}

// Reads the canvas with every pixel shifted.
inline void ShiftCanvas(const Canvas &canvas, const RemapSource &source, const RemapLook &look, const RemapGrid &grid)
{
    RemapCanvas(canvas, source, look, [&](int32_t x, int32_t y, int32_t nPixels, RemapPath *pPath) {
        if (x == 0)
            ReadGridRow(grid, y);
        return LayGrid(grid, x, y, nPixels, pPath);
    });
}

#endif
