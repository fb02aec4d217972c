// StockField.h -- fields: a number 0 to 1 for every place of the picture, shown through the palette
//
// A field is worked out at the vertices of a grid, a row of them at a time, and interpolated between: so a picture
// of any size costs about the same arithmetic. Tables turn the numbers into pixels of either kind of plane.
#ifndef VORTICADE_STOCK_FIELD_H
#define VORTICADE_STOCK_FIELD_H

#include "StockDrawing.h"
#include "StockWide.h"

#include <cstdlib>

// ---- From numbers to pixels

#define FIELD_BITS 12
#define FIELD_STEPS (1 << FIELD_BITS) // numbers that a table tells apart

struct FieldColors {
    uint32_t adwPixel[FIELD_STEPS];
    uint32_t dwKept; // bits of the old pixel that stay
};

inline uint32_t MixPixels(uint32_t dwFrom, uint32_t dwTo, uint32_t nShare256)
{
    const uint32_t dwOuter = (dwFrom & 0xFF00FF) * (256 - nShare256) + (dwTo & 0xFF00FF) * nShare256;
    const uint32_t dwMiddle = (dwFrom & 0x00FF00) * (256 - nShare256) + (dwTo & 0x00FF00) * nShare256;
    return (dwOuter >> 8 & 0xFF00FF) | (dwMiddle >> 8 & 0x00FF00);
}

// The pixel at a place of the palette, 0 to below 1. A palette is a loop: its end runs into its start.
inline uint32_t PixelAt(const Canvas &canvas, float fPlace)
{
    const float f = fPlace * (float)canvas.nColors;
    const int32_t i = std::min((int32_t)f, canvas.nColors - 1);
    if (canvas.bIndexed)
        return (uint32_t)i;
    if (!canvas.pColors)
        return SpareColor(FoldUnit(fPlace));
    const uint32_t dwNext = canvas.pColors[i + 1 < canvas.nColors ? i + 1 : 0];
    return MixPixels(canvas.pColors[i], dwNext, (uint32_t)((f - (float)i) * 256));
}

// The field's 0 lies at fPlace of the palette; its 1 lies fSpread turns further.
inline void MakeFieldColors(FieldColors *pColors, const Canvas &canvas, float fPlace, float fSpread)
{
    for (int32_t i = 0; i < FIELD_STEPS; i++)
        pColors->adwPixel[i] = PixelAt(canvas, WrapUnit(fPlace + fSpread * (float)i / FIELD_STEPS));
    pColors->dwKept = canvas.bIndexed ? 0 : 0xFF000000u;
}

// ---- Where a field lies on the palette: the controls of it, eased

struct FieldPalette {
    ControlRecord *pPlace, *pCycle, *pSpread; // null: the module has none of these
    float fPlace, fSpread, fCycled;           // eased; what the cycle has turned so far
    FieldColors colors;
};

template <size_t nText>
inline ControlRecord *AddFieldPlace(const ControlMaker &maker, const char16_t (&szDescription)[nText], FloatRange range,
                                    float fValue, const FluidDefault &fd)
{
    return AddFloat(maker, u"Color\0Place\0", szDescription, {0, 1}, range, fValue, fd);
}

inline ControlRecord *AddFieldCycle(const ControlMaker &maker, FloatRange range, float fValue, const FluidDefault &fd)
{
    return AddFloat(maker, u"Color\0Cycle\0", u"Turns of the colors through the palette in a minute", {-60, 60}, range,
                    fValue, fd);
}

template <size_t nText>
inline ControlRecord *AddFieldSpread(const ControlMaker &maker, const char16_t (&szDescription)[nText],
                                     FloatRange absolute, FloatRange range, float fValue, const FluidDefault &fd)
{
    return AddFloat(maker, u"Color\0Spread\0", szDescription, absolute, range, fValue, fd);
}

inline void SettlePalette(FieldPalette *pPalette)
{
    pPalette->fPlace = ReadFloat(pPalette->pPlace);
    pPalette->fSpread = ReadFloat(pPalette->pSpread);
}

// The last two: how long the place and the spread take to follow, in seconds.
inline void MovePalette(FieldPalette *pPalette, float fSeconds, float fPlaceEase, float fSpreadEase)
{
    Approach(&pPalette->fPlace, ReadFloat(pPalette->pPlace), fSeconds, fPlaceEase);
    Approach(&pPalette->fSpread, ReadFloat(pPalette->pSpread), fSeconds, fSpreadEase);
    AdvancePhase(&pPalette->fCycled, ReadFloat(pPalette->pCycle) / 60, fSeconds);
}

inline void MixPalette(FieldPalette *pPalette, const Canvas &canvas)
{
    MakeFieldColors(&pPalette->colors, canvas, pPalette->fPlace + pPalette->fCycled, pPalette->fSpread);
}

// ---- From the numbers of a row to its pixels

// pnSteps: numbers times FIELD_STEPS; what lies beyond comes round again.
inline void StoreSteps(uint32_t *pPixel, const uint16_t *pnSteps, int32_t nPixels, const FieldColors &colors)
{
    for (int32_t i = 0; i < nPixels; i++)
        pPixel[i] = (pPixel[i] & colors.dwKept) | colors.adwPixel[pnSteps[i] & (FIELD_STEPS - 1)];
}

// ---- The grid

// Vertex (column, row) stands at pixel (column, row) << nCellBits. Zero it before its first use.
struct FieldGrid {
    float *pfValue;    // row by row, the bottom one first
    int32_t *pnRow;    // room for one interpolated row of vertices
    uint16_t *pnSteps; // room for one row of pixels
    int32_t nColumns, nRows, nCellBits;
    int32_t nWidth, nHeight; // of the picture; 0: nothing allocated
};

inline void FreeGrid(FieldGrid *pGrid)
{
    free(pGrid->pfValue);
    free(pGrid->pnRow);
    free(pGrid->pnSteps);
    *pGrid = {};
}

// Makes the grid fit: the widest cells that leave at least nFineness of them along the shorter side. False if there
// is no memory: then nothing is held.
inline bool FitGrid(FieldGrid *pGrid, const Canvas &canvas, int32_t nFineness)
{
    int32_t nCellBits = 0;
    while (nCellBits < 6 && std::min(canvas.nWidth, canvas.nHeight) >> (nCellBits + 1) >= nFineness)
        nCellBits++;
    if (pGrid->nWidth == canvas.nWidth && pGrid->nHeight == canvas.nHeight && pGrid->nCellBits == nCellBits)
        return true;
    FreeGrid(pGrid);
    const int32_t nCell = 1 << nCellBits;
    pGrid->nColumns = (canvas.nWidth + nCell - 1) / nCell + 1;
    pGrid->nRows = (canvas.nHeight + nCell - 1) / nCell + 1;
    pGrid->nCellBits = nCellBits;
    pGrid->pfValue = (float *)calloc((size_t)pGrid->nColumns * (size_t)pGrid->nRows, sizeof(float));
    pGrid->pnRow = (int32_t *)calloc((size_t)pGrid->nColumns, sizeof(int32_t));
    pGrid->pnSteps = (uint16_t *)calloc(((size_t)pGrid->nColumns) << nCellBits, sizeof(uint16_t));
    if (!pGrid->pfValue || !pGrid->pnRow || !pGrid->pnSteps) {
        FreeGrid(pGrid);
        return false;
    }
    pGrid->nWidth = canvas.nWidth;
    pGrid->nHeight = canvas.nHeight;
    return true;
}

inline float *GridRow(const FieldGrid &grid, int32_t iRow)
{
    return grid.pfValue + (size_t)iRow * (size_t)grid.nColumns;
}

// Where the vertices of a row stand, in shorter sides of the picture from its middle: column i at x + i * xStep.
struct GridPlace {
    float x, xStep, y;
};

inline GridPlace PlaceOfRow(const FieldGrid &grid, int32_t iRow)
{
    const float fUnit = (float)std::min(grid.nWidth, grid.nHeight);
    return {-0.5f * (float)grid.nWidth / fUnit, (float)(1 << grid.nCellBits) / fUnit,
            ((float)(iRow * (1 << grid.nCellBits)) - 0.5f * (float)grid.nHeight) / fUnit};
}

// ---- From the grid to the picture

#define FIELD_FINE_BITS 18 // of an interpolated number, below the steps

// Numbers outside 0 to 1, and what is no number, are brought inside.
inline void MixGridRows(const float *pfBelow, const float *pfAbove, float fShare, int32_t nColumns, int32_t *pnRow)
{
    const float fScale = (float)((FIELD_STEPS << FIELD_FINE_BITS) - 128);
    for (int32_t i = 0; i < nColumns; i++) {
        float f = pfBelow[i] + (pfAbove[i] - pfBelow[i]) * fShare;
        f = f > 0 ? f : 0;
        f = f < 1 ? f : 1;
        pnRow[i] = (int32_t)(f * fScale);
    }
}

template <int nBits> inline void SpreadCells(const int32_t *pnRow, int32_t nCells, uint16_t *pnSteps)
{
    constexpr int32_t nCell = 1 << nBits;
    for (int32_t i = 0; i < nCells; i++, pnSteps += nCell) {
        const int32_t nStart = pnRow[i], nStep = (pnRow[i + 1] - nStart) >> nBits;
        for (int32_t k = 0; k < nCell; k++)
            pnSteps[k] = (uint16_t)((nStart + nStep * k) >> FIELD_FINE_BITS);
    }
}

// The steps of the pixels of row y, at grid.pnSteps.
inline void InterpolateRow(const FieldGrid &grid, int32_t y)
{
    const int32_t iRow = y >> grid.nCellBits, nPast = y & ((1 << grid.nCellBits) - 1), nCells = grid.nColumns - 1;
    MixGridRows(GridRow(grid, iRow), GridRow(grid, iRow + 1), (float)nPast / (float)(1 << grid.nCellBits),
                grid.nColumns, grid.pnRow);
    static constexpr void (*apfnSpread[])(const int32_t *, int32_t, uint16_t *) = {
        SpreadCells<0>, SpreadCells<1>, SpreadCells<2>, SpreadCells<3>, SpreadCells<4>, SpreadCells<5>, SpreadCells<6>};
    apfnSpread[grid.nCellBits](grid.pnRow, nCells, grid.pnSteps);
}

inline void PaintGrid(const Canvas &canvas, const FieldGrid &grid, const FieldColors &colors)
{
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        InterpolateRow(grid, y);
        StoreSteps(CanvasRow(canvas, y), grid.pnSteps, canvas.nWidth, colors);
    }
}

// ---- Arithmetic that the compiler can run on several vertices at once

// sin(2 pi f) within 0.001, for f between -1e9 and 1e9.
inline float WaveOf(float f)
{
    f -= (float)(int32_t)(f + std::copysign(0.5f, f));
    const float fBow = 8 * f - 16 * f * std::fabs(f);
    return 0.775f * fBow + 0.225f * fBow * std::fabs(fBow);
}

// Angle of (x, y) in turns, -0.5 to 0.5, within 0.0003.
inline float TurnOf(float x, float y)
{
    const float fX = std::fabs(x), fY = std::fabs(y);
    const float fLong = fX > fY ? fX : fY, fShort = fX > fY ? fY : fX;
    const float r = fShort / (fLong + 1e-12f), r2 = r * r;
    float f = r * (0.15885f + r2 * (-0.0516f + r2 * (0.0262f - r2 * 0.0084f)));
    f = fY > fX ? 0.25f - f : f;
    f = x < 0 ? 0.5f - f : f;
    return y < 0 ? -f : f;
}

#endif
