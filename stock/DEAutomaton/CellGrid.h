// CellGrid.h -- a cellular automaton on a torus: cells, rules, generations, seeds
#ifndef VORTICADE_CELL_GRID_H
#define VORTICADE_CELL_GRID_H

#include "../common/StockControls.h"
#include "../common/StockWide.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#define CELL_MARGIN 2 /* copies of the other side around the grid, as far as neighbours reach */
#define CELL_STATES_MOST 48

enum { RULE_CYCLIC, RULE_EXCITABLE, RULES };
enum { NEIGHBOURS_4, NEIGHBOURS_8, NEIGHBOURS_24, NEIGHBOURS_KINDS };

struct CellRule {
    uint32_t dwRule, dwNeighbours;
    uint8_t bStates;    // 3 to CELL_STATES_MOST
    uint8_t bThreshold; // neighbours that it takes
};

// Zero it before its first use.
struct CellGrid {
    uint8_t *pbCells, *pbNext; // with margins; nStride bytes a row
    uint8_t *pbMoved;          // 1: the last generation changed the cell; without margins
    uint8_t *pbCount;          // of one row
    int32_t nColumns, nRows;
    size_t nStride;
};

inline void FreeCells(CellGrid *pGrid)
{
    free(pGrid->pbCells);
    free(pGrid->pbNext);
    free(pGrid->pbMoved);
    *pGrid = {};
}

inline uint8_t *CellRow(const CellGrid &grid, uint8_t *pbCells, int32_t y)
{
    return pbCells + (size_t)(y + CELL_MARGIN) * grid.nStride + CELL_MARGIN;
}

inline uint8_t *MovedRow(const CellGrid &grid, int32_t y)
{
    return grid.pbMoved + (size_t)y * (size_t)grid.nColumns;
}

// All cells 0. False if there is no memory.
inline bool MakeCells(CellGrid *pGrid, int32_t nColumns, int32_t nRows)
{
    *pGrid = {};
    const size_t nStride = (size_t)nColumns + 2 * CELL_MARGIN, cbCells = nStride * ((size_t)nRows + 2 * CELL_MARGIN);
    CellGrid grid = {(uint8_t *)calloc(cbCells, 1),
                     (uint8_t *)calloc(cbCells, 1),
                     (uint8_t *)calloc((size_t)nColumns * ((size_t)nRows + 1), 1),
                     nullptr,
                     nColumns,
                     nRows,
                     nStride};
    if (!grid.pbCells || !grid.pbNext || !grid.pbMoved) {
        FreeCells(&grid);
        return false;
    }
    grid.pbCount = grid.pbMoved + (size_t)nColumns * (size_t)nRows;
    *pGrid = grid;
    return true;
}

// Another size: the picture stays, cells are taken from where they were. False as MakeCells; the old ones stay then.
inline bool ResizeCells(CellGrid *pGrid, int32_t nColumns, int32_t nRows)
{
    CellGrid grid;
    if (!MakeCells(&grid, nColumns, nRows))
        return false;
    for (int32_t y = 0; y < nRows && pGrid->pbCells; y++) {
        const uint8_t *pbFrom = CellRow(*pGrid, pGrid->pbCells, (int32_t)((int64_t)y * pGrid->nRows / nRows));
        for (int32_t x = 0; x < nColumns; x++)
            CellRow(grid, grid.pbCells, y)[x] = pbFrom[(int64_t)x * pGrid->nColumns / nColumns];
    }
    FreeCells(pGrid);
    *pGrid = grid;
    return true;
}

// ---- One generation

// The margins repeat the other side; a grid narrower than a margin goes around several times.
inline void WrapCells(const CellGrid &grid)
{
    for (int32_t y = 0; y < grid.nRows; y++) {
        uint8_t *pb = CellRow(grid, grid.pbCells, y);
        for (int32_t i = 1; i <= CELL_MARGIN; i++) {
            pb[-i] = pb[grid.nColumns - 1 - (i - 1) % grid.nColumns];
            pb[grid.nColumns - 1 + i] = pb[(i - 1) % grid.nColumns];
        }
    }
    for (int32_t i = 1; i <= CELL_MARGIN; i++) {
        const int32_t yTop = grid.nRows - 1 - (i - 1) % grid.nRows, yBottom = (i - 1) % grid.nRows;
        memcpy(CellRow(grid, grid.pbCells, -i) - CELL_MARGIN, CellRow(grid, grid.pbCells, yTop) - CELL_MARGIN,
               grid.nStride);
        memcpy(CellRow(grid, grid.pbCells, grid.nRows - 1 + i) - CELL_MARGIN,
               CellRow(grid, grid.pbCells, yBottom) - CELL_MARGIN, grid.nStride);
    }
}

// Cyclic: a neighbour counts if it is one state ahead. Excitable: if it is excited, the first third of the states.
STOCK_WIDE static void CountNeighbours(const uint8_t *pbCells, const uint8_t *pbNeighbours, int32_t nColumns,
                                       const CellRule rule, uint8_t *__restrict pbCount)
{
    const uint8_t bLast = (uint8_t)(rule.bStates - 1), bExcited = (uint8_t)(rule.bStates / 3);
    if (rule.dwRule == RULE_CYCLIC)
        for (int32_t x = 0; x < nColumns; x++) {
            const uint8_t bAhead = (uint8_t)(pbCells[x] == bLast ? 0 : pbCells[x] + 1);
            pbCount[x] = (uint8_t)(pbCount[x] + (pbNeighbours[x] == bAhead ? 1 : 0));
        }
    else
        for (int32_t x = 0; x < nColumns; x++)
            pbCount[x] = (uint8_t)(pbCount[x] + ((uint8_t)(pbNeighbours[x] - 1) < bExcited ? 1 : 0));
}

// A cell moves on to the next state; excitable ones do so by themselves, except from rest.
STOCK_WIDE static void MoveCells(const uint8_t *pbCells, const uint8_t *pbCount, int32_t nColumns, const CellRule rule,
                                 uint8_t *__restrict pbNext, uint8_t *__restrict pbMoved)
{
    const uint8_t bLast = (uint8_t)(rule.bStates - 1), bByThemselves = rule.dwRule == RULE_EXCITABLE ? 1 : 0;
    for (int32_t x = 0; x < nColumns; x++) {
        const uint8_t bAhead = (uint8_t)(pbCells[x] == bLast ? 0 : pbCells[x] + 1);
        const uint8_t bPushed = pbCount[x] >= rule.bThreshold ? 1 : 0, bAwake = pbCells[x] != 0 ? 1 : 0;
        const uint8_t bMoves = bPushed | (uint8_t)(bByThemselves & bAwake);
        pbNext[x] = bMoves ? bAhead : pbCells[x];
        pbMoved[x] = bMoves;
    }
}

// Returns how many cells changed.
inline int32_t StepCells(CellGrid *pGrid, const CellRule &rule)
{
    const int32_t nReach = rule.dwNeighbours == NEIGHBOURS_24 ? 2 : 1;
    int32_t nMoved = 0;
    WrapCells(*pGrid);
    for (int32_t y = 0; y < pGrid->nRows; y++) {
        const uint8_t *pbCells = CellRow(*pGrid, pGrid->pbCells, y);
        memset(pGrid->pbCount, 0, (size_t)pGrid->nColumns);
        for (int32_t yOff = -nReach; yOff <= nReach; yOff++)
            for (int32_t xOff = -nReach; xOff <= nReach; xOff++)
                if ((xOff || yOff) && (rule.dwNeighbours != NEIGHBOURS_4 || !xOff || !yOff))
                    CountNeighbours(pbCells, CellRow(*pGrid, pGrid->pbCells, y + yOff) + xOff, pGrid->nColumns, rule,
                                    pGrid->pbCount);
        MoveCells(pbCells, pGrid->pbCount, pGrid->nColumns, rule, CellRow(*pGrid, pGrid->pbNext, y),
                  MovedRow(*pGrid, y));
        for (int32_t x = 0; x < pGrid->nColumns; x++)
            nMoved += MovedRow(*pGrid, y)[x];
    }
    std::swap(pGrid->pbCells, pGrid->pbNext);
    return nMoved;
}

// ---- What is put into the grid

inline void PutCell(const CellGrid &grid, int32_t x, int32_t y, uint8_t bState)
{
    CellRow(grid, grid.pbCells, y)[x] = bState;
    MovedRow(grid, y)[x] = 0;
}

// The state at an angle around the core of a spiral, for both rules: all states, once around.
inline uint8_t StateAround(float fUp, float fAcross, float fTurn, float fSense, uint8_t bStates)
{
    const float fAngle = fSense * std::atan2(fUp, fAcross) * 0.15915494f + fTurn;
    const int32_t nState = (int32_t)((fAngle - std::floor(fAngle)) * (float)bStates);
    return (uint8_t)(nState < bStates ? nState : 0);
}

#define CORES 12

// Every cell belongs to the nearest of some cores: the grid is full of spirals from the first generation on.
inline void FillCells(const CellGrid &grid, StockRandom *pRandom, uint8_t bStates)
{
    float axCore[CORES], ayCore[CORES], afTurn[CORES];
    for (int32_t i = 0; i < CORES; i++) {
        axCore[i] = RandomUnit(pRandom) * (float)grid.nColumns;
        ayCore[i] = RandomUnit(pRandom) * (float)grid.nRows;
        afTurn[i] = RandomUnit(pRandom);
    }
    for (int32_t y = 0; y < grid.nRows; y++)
        for (int32_t x = 0; x < grid.nColumns; x++) {
            int32_t iNearest = 0;
            float fNearest = INFINITY;
            for (int32_t i = 0; i < CORES; i++) {
                const float fAcross = (float)x - axCore[i], fUp = (float)y - ayCore[i];
                const float fDistance = fAcross * fAcross + fUp * fUp;
                iNearest = fDistance < fNearest ? i : iNearest;
                fNearest = fDistance < fNearest ? fDistance : fNearest;
            }
            PutCell(grid, x, y,
                    StateAround((float)y - ayCore[iNearest], (float)x - axCore[iNearest], afTurn[iNearest],
                                iNearest & 1 ? 1.0f : -1.0f, bStates));
        }
}

// Fewer states than before: those beyond the last one start over.
inline void LimitCells(const CellGrid &grid, uint8_t bStates)
{
    for (int32_t y = 0; y < grid.nRows; y++)
        for (int32_t x = 0; x < grid.nColumns; x++)
            if (CellRow(grid, grid.pbCells, y)[x] >= bStates)
                PutCell(grid, x, y, 0);
}

// The core of a spiral in a disc.
inline void PutSeed(const CellGrid &grid, StockRandom *pRandom, float fRadius, uint8_t bStates)
{
    const int32_t xMiddle = (int32_t)RandomBelow(pRandom, (uint32_t)grid.nColumns);
    const int32_t yMiddle = (int32_t)RandomBelow(pRandom, (uint32_t)grid.nRows);
    const float fTurn = RandomUnit(pRandom), fSense = RandomBelow(pRandom, 2) ? 1.0f : -1.0f;
    const int32_t nRadius = (int32_t)fRadius + 1;
    for (int32_t yOff = -nRadius; yOff <= nRadius; yOff++)
        for (int32_t xOff = -nRadius; xOff <= nRadius; xOff++) {
            if ((float)(xOff * xOff + yOff * yOff) > fRadius * fRadius)
                continue;
            const int32_t x = ((xMiddle + xOff) % grid.nColumns + grid.nColumns) % grid.nColumns;
            const int32_t y = ((yMiddle + yOff) % grid.nRows + grid.nRows) % grid.nRows;
            PutCell(grid, x, y, StateAround((float)yOff, (float)xOff, fTurn, fSense, bStates));
        }
}

#endif
