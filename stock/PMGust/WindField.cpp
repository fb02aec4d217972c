// WindField.cpp -- the wind at the vertices of the grid
#include "WindField.h"

void SeedWind(WindState *pState, StockRandom *pRandom)
{
    // Each eddy is finer than the one before by an irrational step, so that the pattern never repeats.
    float fFineness = 0.6f;
    for (WindEddy &eddy : pState->aEddy) {
        eddy.fAngle = RandomUnit(pRandom);
        eddy.fTurning = RandomBetween(pRandom, -0.012f, 0.012f);
        eddy.fPhase = RandomUnit(pRandom);
        eddy.fDrift = RandomBetween(pRandom, 0.03f, 0.09f) * (RandomBelow(pRandom, 2) ? 1.0f : -1.0f);
        eddy.fFineness = fFineness;
        fFineness *= 1.381f;
    }
    pState->fHeading = RandomUnit(pRandom);
    pState->fVeer = RandomUnit(pRandom);
    for (float &fPhase : pState->afWander)
        fPhase = RandomUnit(pRandom);
}

void AdvanceWind(WindState *pState, const WindForces &forces, float fSeconds)
{
    for (WindEddy &eddy : pState->aEddy) {
        AdvancePhase(&eddy.fAngle, eddy.fTurning, fSeconds);
        AdvancePhase(&eddy.fPhase, eddy.fDrift, fSeconds);
    }
    AdvancePhase(&pState->fHeading, forces.fTurning, fSeconds);
    AdvancePhase(&pState->fVeer, 0.061f, fSeconds);
    static const float afWanderSpeed[4] = {0.0213f, 0.0337f, 0.0271f, 0.0419f};
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pState->afWander[i], afWanderSpeed[i], fSeconds);
}

// sin(2 pi f) within 0.001, in arithmetic that the compiler can run on several vertices at once.
static inline float WaveOf(float f)
{
    f -= (float)(int32_t)f;
    f = f > 0.5f ? f - 1 : f < -0.5f ? f + 1 : f;
    const float fBow = 8 * f - 16 * f * std::fabs(f);
    return 0.775f * fBow + 0.225f * fBow * std::fabs(fBow);
}

// One row of vertices; positions and speeds in heights, from the middle of the picture.
struct WindRow {
    float *pfX, *pfY; // speeds, summed up here
    int32_t nColumns;
    float xFirst, xStep, y;
};

static void AddVortex(const WindRow &row, const WindForces &forces, float xMiddle, float yMiddle)
{
    const float yr = row.y - yMiddle;
    for (int32_t i = 0; i < row.nColumns; i++) {
        const float xr = row.xFirst + (float)i * row.xStep - xMiddle;
        // The vortex turns fastest at its middle, so it winds trails up into spirals.
        const float fSwirl = forces.fSwirl / (0.35f + 2.2f * (xr * xr + yr * yr));
        row.pfX[i] += forces.fOutflow * xr - fSwirl * yr;
        row.pfY[i] += forces.fOutflow * yr + fSwirl * xr;
    }
}

static void AddEddies(const WindRow &row, const WindState &state, const WindForces &forces)
{
    for (const WindEddy &eddy : state.aEddy) {
        const float xAcross = CosineTurn(eddy.fAngle), yAcross = SineTurn(eddy.fAngle);
        const float fWaves = eddy.fFineness / forces.fEddySize;
        const float fSpeed = forces.fEddies / std::sqrt(1 + eddy.fFineness * eddy.fFineness);
        const float fStart = eddy.fPhase + fWaves * (row.xFirst * xAcross + row.y * yAcross);
        const float fStep = fWaves * row.xStep * xAcross;
        for (int32_t i = 0; i < row.nColumns; i++) {
            const float fWind = fSpeed * WaveOf(fStart + (float)i * fStep);
            row.pfX[i] -= fWind * yAcross;
            row.pfY[i] += fWind * xAcross;
        }
    }
}

// Speeds to carries; returns whether anything moves.
static bool StoreCarries(const WindRow &row, float fPixels, float fMost, int32_t *pnCarryX, int32_t *pnCarryY)
{
    int32_t nMoved = 0;
    for (int32_t i = 0; i < row.nColumns; i++) {
        const float xCarry = std::min(std::max(-row.pfX[i] * fPixels, -fMost), fMost);
        const float yCarry = std::min(std::max(-row.pfY[i] * fPixels, -fMost), fMost);
        pnCarryX[i] = (int32_t)(xCarry * 65536);
        pnCarryY[i] = (int32_t)(yCarry * 65536);
        nMoved |= pnCarryX[i] | pnCarryY[i];
    }
    return nMoved != 0;
}

bool SampleWind(const WindState &state, const WindForces &forces, float fSeconds, int32_t nWidth, int32_t nHeight,
                int32_t nMostPixels, WindGrid *pGrid)
{
    const float fUnit = (float)std::min(nWidth, nHeight);
    const float fBlow = forces.fBreeze * (0.75f + 0.25f * SineTurn(state.fVeer));
    const float fHeading = state.fHeading + 0.06f * SineTurn(state.fVeer * 2);
    const float xMiddle = forces.fWander * (0.7f * SineTurn(state.afWander[0]) + 0.3f * SineTurn(state.afWander[1]));
    const float yMiddle = forces.fWander * (0.7f * SineTurn(state.afWander[2]) + 0.3f * SineTurn(state.afWander[3]));
    float afX[WINDROW_MOST], afY[WINDROW_MOST];
    bool bMoved = false;
    for (int32_t iRow = 0; iRow < pGrid->nRows; iRow++) {
        std::fill_n(afX, pGrid->nColumns, fBlow * CosineTurn(fHeading));
        std::fill_n(afY, pGrid->nColumns, fBlow * SineTurn(fHeading));
        const WindRow row = {afX,
                             afY,
                             pGrid->nColumns,
                             -0.5f * (float)nWidth / fUnit,
                             (float)WIND_CELL / fUnit,
                             ((float)(iRow << WIND_CELL_BITS) - 0.5f * (float)nHeight) / fUnit};
        AddVortex(row, forces, xMiddle, yMiddle);
        if (forces.fEddies > 0)
            AddEddies(row, state, forces);
        const size_t iFirst = (size_t)iRow * (size_t)pGrid->nColumns;
        bMoved |=
            StoreCarries(row, fSeconds * fUnit, (float)nMostPixels, pGrid->pnCarryX + iFirst, pGrid->pnCarryY + iFirst);
    }
    return bMoved;
}
