// StockScratch.h -- memory that fits the picture: a copy for effects that read what they are about to overwrite, and
// tables of its columns
#ifndef VORTICADE_STOCK_SCRATCH_H
#define VORTICADE_STOCK_SCRATCH_H

#include "StockDrawing.h"

#include <cstdlib>

// Rows of nWidth pixels without gaps, bottom row first, as on the canvas. Zero it before its first use.
struct ScratchPicture {
    uint32_t *pPixels;
    int32_t nWidth, nHeight; // 0: nothing allocated
};

inline void FreeScratch(ScratchPicture *pScratch)
{
    free(pScratch->pPixels);
    *pScratch = {};
}

// Makes it fit the canvas; what it holds stays if it fits, else it is cleared. False if there is no memory: then
// nothing is held.
inline bool FitScratch(ScratchPicture *pScratch, const Canvas &canvas)
{
    if (pScratch->nWidth == canvas.nWidth && pScratch->nHeight == canvas.nHeight)
        return true;
    FreeScratch(pScratch);
    pScratch->pPixels = (uint32_t *)calloc((size_t)canvas.nWidth * (size_t)canvas.nHeight, sizeof(uint32_t));
    if (!pScratch->pPixels)
        return false;
    pScratch->nWidth = canvas.nWidth;
    pScratch->nHeight = canvas.nHeight;
    return true;
}

inline uint32_t *ScratchRow(const ScratchPicture &scratch, int32_t y)
{
    return scratch.pPixels + (size_t)y * (size_t)scratch.nWidth;
}

// The canvas as it is now. False as FitScratch.
inline bool CopyCanvas(ScratchPicture *pScratch, const Canvas &canvas)
{
    if (!FitScratch(pScratch, canvas))
        return false;
    for (int32_t y = 0; y < canvas.nHeight; y++)
        memcpy(ScratchRow(*pScratch, y), CanvasRow(canvas, y), (size_t)canvas.nWidth * sizeof(uint32_t));
    return true;
}

// ---- Tables of columns, in one block

// Zero it before its first use.
struct ColumnTables {
    void *pv;
    int32_t nColumns; // 0: nothing allocated
};

inline void FreeColumns(ColumnTables *pTables)
{
    free(pTables->pv);
    *pTables = {};
}

// Makes room for cbColumn bytes for each column, zeroed; what it holds stays if it fits. False if there is no memory:
// then nothing is held.
inline bool FitColumns(ColumnTables *pTables, int32_t nColumns, size_t cbColumn)
{
    if (pTables->nColumns == nColumns)
        return true;
    free(pTables->pv);
    pTables->pv = calloc((size_t)nColumns, cbColumn);
    pTables->nColumns = pTables->pv ? nColumns : 0;
    return pTables->pv != nullptr;
}

#endif
