// Carry.h -- moves a picture along a grid of carries and lets it fade, in place, through a buffer of its own
#ifndef VORTICADE_CARRY_H
#define VORTICADE_CARRY_H

#include "WindField.h"

#include "../common/StockTrails.h"

enum { EDGES_OPEN, EDGES_CLOSED, EDGES_AROUND, EDGES_MODES };

// Copies of the picture with a margin on all sides, wide enough for the longest carry, so that no pixel has to
// be checked. Indices are kept in 16 bits with a fraction below the whole index, in two buffers that change
// roles: the fractions live on from frame to frame, or slow trails would stand still at whole steps.
struct CarryBuffers {
    int32_t nWidth, nHeight; // of the picture; 0: nothing allocated
    uint32_t bIndexed;
    int32_t nMargin;       // pixels
    size_t nStride;        // elements from row to row
    uint16_t *pIndices[2]; // indexed: the picture in [0], the place of the next one in [1]
    uint32_t *pColors;     // RGB: the picture before the carry
    WindGrid grid;
};

// Makes the buffers fit the canvas, keeping them if they do. False if there is no memory: then none is held.
bool FitCarryBuffers(CarryBuffers *pBuffers, const Canvas &canvas);
void FreeCarryBuffers(CarryBuffers *pBuffers);

// The longest carry in pixels that the margin allows.
int32_t MostCarry(const CarryBuffers &buffers);

void CarryIndices(const Canvas &canvas, CarryBuffers *pBuffers, const TrailFade &fade, uint32_t dwEdges);

// nFrame: any number that goes up with the frames; turns the pattern that rounds the colours.
void CarryColors(const Canvas &canvas, CarryBuffers *pBuffers, const TrailFade &fade, uint32_t dwEdges,
                 uint32_t nFrame);

#endif
