// NoiseField.h -- flowing gradient noise on the grid
#ifndef VORTICADE_NOISE_FIELD_H
#define VORTICADE_NOISE_FIELD_H

#include "../common/StockField.h"

#define NOISE_OCTAVES 5

enum { NOISE_CLOUDS, NOISE_BILLOWS, NOISE_VEINS, NOISE_STYLES };

// The controls, eased.
struct NoiseLook {
    float afStyle[NOISE_STYLES]; // shares
    float fFineness;             // hills of the first octave per height
    float fOctaves, fRoughness;
    float fFold; // 0 to 1
};

// Where each octave has drifted to; the first two bend the others. Counted in hills of the octave, so that hills that
// change their size grow from the middle of the picture.
#define NOISE_BENDS 2
#define NOISE_BEND_FINENESS 1.9
struct NoiseMotion {
    double axDrift[NOISE_BENDS + NOISE_OCTAVES], ayDrift[NOISE_BENDS + NOISE_OCTAVES];
    double fTime;   // hills gone by
    float fHeading; // turns
    uint32_t dwSeed;
};

// The noise beyond the picture too, from where folding fetches it.
struct NoiseLayers {
    float *pfWide;   // (nColumns + 2 nMargin) by (nRows + 2 nMargin) vertices
    float *pfBend;   // two rows of the grid: how far each vertex fetches
    float *pfSlope;  // room for the lattice of a row
    int32_t nMargin; // vertices
    int32_t nWide, nHigh;
};

void FreeLayers(NoiseLayers *pLayers);

// False if there is no memory: then nothing is held.
bool FitLayers(NoiseLayers *pLayers, const FieldGrid &grid);

void SeedNoise(NoiseMotion *pMotion, StockRandom *pRandom);
// fFineness: that of the look at this time.
void MoveNoise(NoiseMotion *pMotion, float fFineness, float fWind, float fBoil, float fSeconds);
void FillNoise(const NoiseLook &look, const NoiseMotion &motion, NoiseLayers *pLayers, const FieldGrid &grid);

#endif
