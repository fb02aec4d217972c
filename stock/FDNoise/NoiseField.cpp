// NoiseField.cpp -- gradient noise in space and time, a row of the lattice at a time
//
// Along a row of vertices y and time are constant. So the noise at every column of the lattice comes down to a
// height and a slope, mixed once from its four corners; the vertices between only mix two of those.
#include "NoiseField.h"

#define NOISE_LACUNARITY 2.03 // how much finer each octave is than the one before
#define NOISE_LATTICE 4096    // columns of the lattice in one row, at most
#define NOISE_RADIX 1024      // the lattice repeats after so many hills

void FreeLayers(NoiseLayers *pLayers)
{
    free(pLayers->pfWide);
    free(pLayers->pfBend);
    free(pLayers->pfSlope);
    *pLayers = {};
}

bool FitLayers(NoiseLayers *pLayers, const FieldGrid &grid)
{
    const int32_t nMargin = (std::min(grid.nWidth, grid.nHeight) >> grid.nCellBits) / 5 + 2;
    const int32_t nWide = grid.nColumns + 2 * nMargin, nHigh = grid.nRows + 2 * nMargin;
    if (pLayers->nWide == nWide && pLayers->nHigh == nHigh && pLayers->nMargin == nMargin)
        return true;
    FreeLayers(pLayers);
    pLayers->pfWide = (float *)calloc((size_t)nWide * (size_t)nHigh, sizeof(float));
    pLayers->pfBend = (float *)calloc((size_t)grid.nColumns * 2, sizeof(float));
    pLayers->pfSlope = (float *)calloc(2 * NOISE_LATTICE, sizeof(float));
    if (!pLayers->pfWide || !pLayers->pfBend || !pLayers->pfSlope) {
        FreeLayers(pLayers);
        return false;
    }
    pLayers->nMargin = nMargin;
    pLayers->nWide = nWide;
    pLayers->nHigh = nHigh;
    return true;
}

void SeedNoise(NoiseMotion *pMotion, StockRandom *pRandom)
{
    for (int32_t i = 0; i < NOISE_BENDS + NOISE_OCTAVES; i++) {
        pMotion->axDrift[i] = RandomBetween(pRandom, 0, NOISE_RADIX);
        pMotion->ayDrift[i] = RandomBetween(pRandom, 0, NOISE_RADIX);
    }
    pMotion->fTime = RandomBetween(pRandom, 0, NOISE_RADIX);
    pMotion->fHeading = RandomUnit(pRandom);
    pMotion->dwSeed = (uint32_t)NextRandom(pRandom);
}

void MoveNoise(NoiseMotion *pMotion, float fFineness, float fWind, float fBoil, float fSeconds)
{
    double fOctave = (double)fFineness;
    // Each octave goes its own way around the wind, so that the hills do not travel as one.
    for (int32_t i = 0; i < NOISE_BENDS + NOISE_OCTAVES; i++) {
        const float fHeading = pMotion->fHeading + 0.09f * (float)(i % 3 - 1);
        const double fHills = (double)(fWind * fSeconds) * (i < NOISE_BENDS ? NOISE_BEND_FINENESS : fOctave);
        pMotion->axDrift[i] += fHills * (double)CosineTurn(fHeading);
        pMotion->ayDrift[i] += fHills * (double)SineTurn(fHeading);
        if (i >= NOISE_BENDS)
            fOctave *= NOISE_LACUNARITY;
    }
    pMotion->fTime += (double)(0.35f * fBoil * fSeconds);
    AdvancePhase(&pMotion->fHeading, 0.006f, fSeconds);
}

// ---- The lattice

static inline uint32_t HashCorner(uint32_t x, uint32_t y, uint32_t t, uint32_t dwSeed)
{
    uint32_t h = (x * 0x9E3779B1u) ^ (y * 0x85EBCA77u) ^ (t * 0xC2B2AE3Du) ^ dwSeed;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

static inline float Fade(float f)
{
    return f * f * f * (f * (f * 6 - 15) + 10);
}

// The row of an octave: whole and broken parts of y and time.
struct LatticeRow {
    uint32_t y, t, dwSeed;
    float fY, fT;
};

// The corner's gradient: its slope along x, and what it adds at this row.
static inline void AddCorner(const LatticeRow &row, uint32_t x, uint32_t yStep, uint32_t tStep, float *pfHeight,
                             float *pfSlope)
{
    const uint32_t h = HashCorner(x, (row.y + yStep) % NOISE_RADIX, (row.t + tStep) % NOISE_RADIX, row.dwSeed);
    const auto Part = [&](uint32_t nShift) { return (float)(int32_t)(h >> nShift & 1023) * (2.0f / 1023) - 1; };
    const float fY = Fade(row.fY), fT = Fade(row.fT);
    const float fShare = (yStep ? fY : 1 - fY) * (tStep ? fT : 1 - fT);
    *pfSlope += fShare * Part(0);
    *pfHeight += fShare * (Part(10) * (row.fY - (float)yStep) + Part(20) * (row.fT - (float)tStep));
}

static LatticeRow RowOf(double y, double t, uint32_t dwSeed)
{
    const double yWhole = std::floor(y), tWhole = std::floor(t);
    return {(uint32_t)((int64_t)yWhole & (NOISE_RADIX - 1)), (uint32_t)((int64_t)tWhole & (NOISE_RADIX - 1)), dwSeed,
            (float)(y - yWhole), (float)(t - tWhole)};
}

STOCK_WIDE static void MixLattice(const float *pfHeight, const float *pfSlope, float x, float xStep, int32_t n,
                                  float fWeight, float *__restrict pfSum)
{
    for (int32_t i = 0; i < n; i++) {
        const float f = x + (float)i * xStep;
        const int32_t iLeft = (int32_t)f;
        const float fPast = f - (float)iLeft;
        const float fLeft = pfHeight[iLeft] + pfSlope[iLeft] * fPast;
        const float fRight = pfHeight[iLeft + 1] + pfSlope[iLeft + 1] * (fPast - 1);
        pfSum[i] += fWeight * (fLeft + (fRight - fLeft) * Fade(fPast));
    }
}

// One octave along a row of vertices: x, y and xStep in hills of the octave.
struct OctaveRow {
    double x, y, xStep, t;
    uint32_t dwSeed;
};

static void AddOctave(const OctaveRow &octave, const NoiseLayers &layers, int32_t n, float fWeight, float *pfSum)
{
    float *pfHeight = layers.pfSlope, *pfSlope = layers.pfSlope + NOISE_LATTICE;
    const double xWhole = std::floor(octave.x);
    const int32_t nLattice = (int32_t)std::min(octave.x - xWhole + octave.xStep * n, NOISE_LATTICE - 3.0) + 3;
    const LatticeRow row = RowOf(octave.y, octave.t, octave.dwSeed);
    for (int32_t i = 0; i < nLattice; i++) {
        const uint32_t x = (uint32_t)(((int64_t)xWhole + i) & (NOISE_RADIX - 1));
        pfHeight[i] = pfSlope[i] = 0;
        for (uint32_t iCorner = 0; iCorner < 4; iCorner++)
            AddCorner(row, x, iCorner & 1, iCorner >> 1, &pfHeight[i], &pfSlope[i]);
    }
    // A row that outgrows the lattice shows the rest flat rather than reading beyond it.
    const int32_t nInside = (int32_t)std::min((double)n, (nLattice - 2) / octave.xStep);
    MixLattice(pfHeight, pfSlope, (float)(octave.x - xWhole), (float)octave.xStep, nInside, fWeight, pfSum);
}

// ---- The picture

// A row of vertices. What is finer than half a hill from one to the next is left out.
struct NoiseRows {
    double x, xStep, y; // heights from the middle
};

static OctaveRow OctaveOf(const NoiseRows &rows, const NoiseMotion &motion, int32_t i, double fFineness, double fBoil)
{
    return {rows.x * fFineness + motion.axDrift[i], rows.y * fFineness + motion.ayDrift[i], rows.xStep * fFineness,
            motion.fTime * fBoil, motion.dwSeed + (uint32_t)i * 0x68E31DA4u};
}

static void FillOctaves(const NoiseLook &look, const NoiseMotion &motion, const NoiseLayers &layers,
                        const NoiseRows &rows, int32_t n, float *pfSum)
{
    std::fill_n(pfSum, n, 0.0f);
    float fWeight = 1.4f, fPower = 0;
    double fFineness = (double)look.fFineness;
    for (int32_t i = 0; i < NOISE_OCTAVES; i++, fWeight *= look.fRoughness, fFineness *= NOISE_LACUNARITY) {
        const float fShare = fWeight * std::clamp(look.fOctaves - (float)i, 0.0f, 1.0f);
        if (fShare < 0.002f || rows.xStep * fFineness > 0.5)
            break;
        AddOctave(OctaveOf(rows, motion, NOISE_BENDS + i, fFineness, 1 + 0.4 * i), layers, n, fShare, pfSum);
        fPower += fShare * fShare;
    }
    const float fScale = 1.7f / std::sqrt(std::max(fPower, 0.01f));
    for (int32_t i = 0; i < n; i++)
        pfSum[i] *= fScale;
}

// Hills and valleys to numbers 0 to 1, by style.
STOCK_WIDE static void StyleRow(const NoiseLook &given, float *__restrict pf, int32_t n)
{
    const float fClouds = given.afStyle[NOISE_CLOUDS], fBillows = given.afStyle[NOISE_BILLOWS];
    const float fVeins = given.afStyle[NOISE_VEINS];
    for (int32_t i = 0; i < n; i++) {
        const float f = pf[i], fSoft = f / std::sqrt(1 + f * f), fHigh = std::fabs(f);
        const float fBillow = 1.3f * fHigh / (1 + 0.5f * fHigh), fVein = 1 / (1 + 2.6f * fHigh + 5 * f * f);
        pf[i] = fClouds * (0.5f + 0.5f * fSoft) + fBillows * fBillow + fVeins * fVein;
    }
}

// Fetches a row from where the bends point, between four vertices of the wide noise.
STOCK_WIDE static void FetchRow(const NoiseLayers &given, int32_t iRow, float fReach, int32_t n,
                                float *__restrict pfValue)
{
    const NoiseLayers layers = given;
    const float *pxBend = layers.pfBend, *pyBend = layers.pfBend + n;
    const float fMost = (float)layers.nMargin - 1.5f;
    for (int32_t i = 0; i < n; i++) {
        const float xBend = std::min(std::max(pxBend[i] * fReach, -fMost), fMost);
        const float yBend = std::min(std::max(pyBend[i] * fReach, -fMost), fMost);
        const float x = (float)(i + layers.nMargin) + xBend, y = (float)(iRow + layers.nMargin) + yBend;
        const int32_t xWhole = (int32_t)x, yWhole = (int32_t)y;
        const float *pf = layers.pfWide + (ptrdiff_t)yWhole * layers.nWide + xWhole;
        const float xPast = x - (float)xWhole, yPast = y - (float)yWhole;
        const float fBelow = pf[0] + (pf[1] - pf[0]) * xPast;
        const float fAbove = pf[layers.nWide] + (pf[layers.nWide + 1] - pf[layers.nWide]) * xPast;
        pfValue[i] = fBelow + (fAbove - fBelow) * yPast;
    }
}

void FillNoise(const NoiseLook &look, const NoiseMotion &motion, NoiseLayers *pLayers, const FieldGrid &grid)
{
    const auto Place = [&](int32_t iRow, int32_t nBefore) {
        const GridPlace place = PlaceOfRow(grid, iRow);
        return NoiseRows{(double)place.x - nBefore * (double)place.xStep, (double)place.xStep, (double)place.y};
    };
    const int32_t nMargin = pLayers->nMargin;
    for (int32_t i = 0; i < pLayers->nHigh; i++) {
        float *pfRow = pLayers->pfWide + (size_t)i * (size_t)pLayers->nWide;
        FillOctaves(look, motion, *pLayers, Place(i - nMargin, nMargin), pLayers->nWide, pfRow);
        StyleRow(look, pfRow, pLayers->nWide);
    }
    const float fReach = look.fFold * (float)nMargin * 1.6f;
    for (int32_t iRow = 0; iRow < grid.nRows; iRow++) {
        std::fill_n(pLayers->pfBend, 2 * grid.nColumns, 0.0f);
        for (int32_t i = 0; i < NOISE_BENDS; i++)
            AddOctave(OctaveOf(Place(iRow, 0), motion, i, NOISE_BEND_FINENESS, 0.6), *pLayers, grid.nColumns, 1,
                      pLayers->pfBend + i * grid.nColumns);
        FetchRow(*pLayers, iRow, fReach, grid.nColumns, GridRow(grid, iRow));
    }
}
