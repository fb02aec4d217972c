// WindField.h -- where the wind blows: a breeze, a vortex, an outflow and eddies, sampled on a coarse grid
#ifndef VORTICADE_WIND_FIELD_H
#define VORTICADE_WIND_FIELD_H

#include "../common/StockDrawing.h"

#define WIND_CELL_BITS 4
#define WIND_CELL (1 << WIND_CELL_BITS)                   // pixels from one vertex of the grid to the next
#define WINDROW_MOST (DRAWING_PIXELS_MAX / WIND_CELL + 1) // vertices in a row
#define WIND_EDDIES 7

// One wave of the eddies: a shear flow along its crests.
struct WindEddy {
    float fAngle;    // turns
    float fTurning;  // turns per second
    float fPhase;    // turns
    float fDrift;    // turns per second
    float fFineness; // waves per picture height at scale 1
};

// What moves on by itself, from the seed.
struct WindState {
    WindEddy aEddy[WIND_EDDIES];
    float fHeading;    // where the breeze blows to, in turns
    float fVeer;       // phase of its unsteadiness
    float afWander[4]; // phases of the middle's path
};

// Speeds in picture heights per second (the shorter side counts as height), eased copies of the controls.
struct WindForces {
    float fBreeze, fTurning; // fTurning: turns per second
    float fSwirl, fOutflow;
    float fEddies, fEddySize; // fEddySize: heights
    float fWander;            // heights
};

// Carries of one frame at the vertices, in 1/65536 pixel: where the picture at a vertex comes from, minus the
// vertex. No carry is longer than nMostPixels.
struct WindGrid {
    int32_t *pnCarryX, *pnCarryY;
    int32_t nColumns, nRows; // vertices
};

inline int32_t WindVertices(int32_t nPixels)
{
    return ((nPixels + WIND_CELL - 1) >> WIND_CELL_BITS) + 1;
}

void SeedWind(WindState *pState, StockRandom *pRandom);
void AdvanceWind(WindState *pState, const WindForces &forces, float fSeconds);

// Fills the grid for a picture of this size. Returns false if no vertex moves.
bool SampleWind(const WindState &state, const WindForces &forces, float fSeconds, int32_t nWidth, int32_t nHeight,
                int32_t nMostPixels, WindGrid *pGrid);

#endif
