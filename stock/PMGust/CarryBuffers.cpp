// CarryBuffers.cpp -- the memory of the carry
#include "Carry.h"

#include <cstdlib>

// Beyond the last pixel of a row a whole cell is still read.
#define CARRY_OVERRUN WIND_CELL

static int32_t MarginFor(const Canvas &canvas)
{
    return 8 + std::min(canvas.nWidth, canvas.nHeight) / 16;
}

int32_t MostCarry(const CarryBuffers &buffers)
{
    return buffers.nMargin - 2;
}

static bool AllocatePictures(CarryBuffers *pBuffers)
{
    const size_t nElements = pBuffers->nStride * (size_t)(pBuffers->nHeight + 2 * pBuffers->nMargin) + CARRY_OVERRUN;
    if (!pBuffers->bIndexed) {
        pBuffers->pColors = (uint32_t *)calloc(nElements, sizeof(uint32_t));
        return pBuffers->pColors;
    }
    for (uint16_t *&pIndices : pBuffers->pIndices)
        pIndices = (uint16_t *)calloc(nElements, sizeof(uint16_t));
    return pBuffers->pIndices[0] && pBuffers->pIndices[1];
}

static bool AllocateGrid(CarryBuffers *pBuffers)
{
    WindGrid &grid = pBuffers->grid;
    grid.nColumns = WindVertices(pBuffers->nWidth);
    grid.nRows = WindVertices(pBuffers->nHeight);
    const size_t nVertices = (size_t)grid.nColumns * (size_t)grid.nRows;
    grid.pnCarryX = (int32_t *)calloc(nVertices, sizeof(int32_t));
    grid.pnCarryY = (int32_t *)calloc(nVertices, sizeof(int32_t));
    return grid.pnCarryX && grid.pnCarryY;
}

bool FitCarryBuffers(CarryBuffers *pBuffers, const Canvas &canvas)
{
    if (pBuffers->nWidth == canvas.nWidth && pBuffers->nHeight == canvas.nHeight &&
        pBuffers->bIndexed == (uint32_t)canvas.bIndexed)
        return true;
    FreeCarryBuffers(pBuffers);
    pBuffers->nWidth = canvas.nWidth;
    pBuffers->nHeight = canvas.nHeight;
    pBuffers->bIndexed = canvas.bIndexed;
    pBuffers->nMargin = MarginFor(canvas);
    pBuffers->nStride = (size_t)(canvas.nWidth + 2 * pBuffers->nMargin + CARRY_OVERRUN);
    if (AllocatePictures(pBuffers) && AllocateGrid(pBuffers))
        return true;
    FreeCarryBuffers(pBuffers);
    return false;
}

void FreeCarryBuffers(CarryBuffers *pBuffers)
{
    free(pBuffers->grid.pnCarryY);
    free(pBuffers->grid.pnCarryX);
    free(pBuffers->pColors);
    free(pBuffers->pIndices[1]);
    free(pBuffers->pIndices[0]);
    *pBuffers = {};
}
