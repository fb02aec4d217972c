// FDPlasma.cpp -- FDPlasma.dll, a full image: moving waves and rings, added up and bent by each other
#include "../common/StockField.h"
#include "../common/StockModule.h"

#define PLASMA_WAVES 5
#define PLASMA_RINGS 3
#define PLASMA_FINENESS 180 // cells of the grid along the shorter side

enum {
    CONTROL_WAVES,
    CONTROL_SIZE,
    CONTROL_RINGS,
    CONTROL_WARP,
    CONTROL_SPEED,
    CONTROL_TURNING,
    CONTROL_WANDER,
    CONTROLS
};

// The controls, eased.
struct PlasmaLook {
    float fWaves, fFineness, fRings, fWarp, fWander;
};

struct Plasma {
    ControlRecord *apControl[CONTROLS];
    DrawClock clock;
    PlasmaLook look;
    float afAngle[PLASMA_WAVES], afPhase[PLASMA_WAVES]; // turns
    float afRing[PLASMA_RINGS], afPath[2 * PLASMA_RINGS];
    float afWarp[4];
    float fTurned, fSpeed;
    FieldGrid grid;
    FieldPalette palette;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Plasma",
                   u"Waves and rings that flow through each other, bent and colored by the sound");
}

static void AddControls(Plasma *pPlasma, const ControlMaker &maker)
{
    ControlRecord **ap = pPlasma->apControl;
    ap[CONTROL_WAVES] = AddInteger(maker, u"Shape\0Waves\0", u"How many straight waves cross each other",
                                   {0, PLASMA_WAVES}, {2, 5}, 4, FromPeriodic(21000));
    ap[CONTROL_SIZE] = AddFloat(maker, u"Shape\0Size\0", u"Length of the longest wave, 1 for as high as the picture",
                                {0.2f, 4}, {0.8f, 1.8f}, 1.2f, FromWave(47000));
    ap[CONTROL_RINGS] = AddFloat(maker, u"Shape\0Rings\0", u"How strong the rings around wandering centers are", {0, 2},
                                 {0.2f, 1.2f}, 0.7f, FromWave(31000));
    ap[CONTROL_WARP] = AddFloat(maker, u"Shape\0Warp\0", u"How far everything is bent out of shape", {0, 1},
                                {0.15f, 0.7f}, 0.4f, FromWave(26000));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Motion\0Speed\0", u"How fast waves and rings travel", {0, 4}, {0.35f, 1.6f},
                                 0.7f, FromSound(24));
    ap[CONTROL_TURNING] = AddFloat(maker, u"Motion\0Turning\0", u"Turns of the whole picture in a minute", {-20, 20},
                                   {-1.5f, 1.5f}, 0.7f, FromWave(61000));
    ap[CONTROL_WANDER] = AddFloat(maker, u"Motion\0Wander\0", u"How far the centers of the rings stray", {0, 1},
                                  {0.3f, 0.9f}, 0.6f, FromRandom());
    SetDependsOn(ap[CONTROL_WANDER], ap[CONTROL_RINGS], DEPENDOP_GREATER, 0);
    FieldPalette &palette = pPlasma->palette;
    palette.pPlace = AddFieldPlace(maker, u"Where in the palette the valleys lie", {0, 0.35f}, 0, FromSound(8));
    palette.pCycle = AddFieldCycle(maker, {-2, 2}, 1, FromWave(53000));
    palette.pSpread = AddFieldSpread(maker, u"How much of the palette lies between valley and crest", {0.05f, 4},
                                     {0.45f, 1.2f}, 0.8f, FromWave(37000));
}

static PlasmaLook ReadLook(const Plasma *pPlasma)
{
    const auto Float = [&](int32_t iControl) { return ReadFloat(pPlasma->apControl[iControl]); };
    return {(float)ReadInteger(pPlasma->apControl[CONTROL_WAVES]), 1 / std::max(Float(CONTROL_SIZE), 0.2f),
            Float(CONTROL_RINGS), Float(CONTROL_WARP) * 0.3f, Float(CONTROL_WANDER) * 0.5f};
}

static void EaseLook(PlasmaLook *pLook, const PlasmaLook &target, float fSeconds)
{
    Approach(&pLook->fWaves, target.fWaves, fSeconds, 1.5f);
    Approach(&pLook->fFineness, target.fFineness, fSeconds, 1.5f);
    Approach(&pLook->fRings, target.fRings, fSeconds, 0.5f);
    Approach(&pLook->fWarp, target.fWarp, fSeconds, 0.5f);
    Approach(&pLook->fWander, target.fWander, fSeconds, 1.5f);
}

static void Start(Plasma *pPlasma, PlaneInfo *ppi)
{
    if (pPlasma->clock.clock.bStarted) // a reset: the waves glide into the new values
        return;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pPlasma->look = ReadLook(pPlasma);
    SettlePalette(&pPlasma->palette);
    pPlasma->fSpeed = ReadFloat(pPlasma->apControl[CONTROL_SPEED]);
    // Neighbours in the sum cross at a wide angle.
    for (int32_t i = 0; i < PLASMA_WAVES; i++)
        pPlasma->afAngle[i] = 0.382f * (float)i + RandomBetween(&random, -0.06f, 0.06f);
    for (float &fPhase : pPlasma->afPhase)
        fPhase = RandomUnit(&random);
    for (float &fPhase : pPlasma->afRing)
        fPhase = RandomUnit(&random);
    for (float &fPhase : pPlasma->afPath)
        fPhase = RandomUnit(&random);
    for (float &fPhase : pPlasma->afWarp)
        fPhase = RandomUnit(&random);
    pPlasma->fTurned = RandomUnit(&random);
}

static void Move(Plasma *pPlasma, float fSeconds)
{
    static const float afWave[PLASMA_WAVES] = {0.11f, -0.13f, 0.17f, -0.19f, 0.23f};
    static const float afRing[PLASMA_RINGS] = {0.21f, -0.16f, 0.27f};
    static const float afPath[2 * PLASMA_RINGS] = {0.031f, 0.041f, -0.037f, 0.029f, 0.047f, -0.034f};
    static const float afWarp[4] = {0.053f, -0.061f, 0.073f, -0.047f};
    Approach(&pPlasma->fSpeed, ReadFloat(pPlasma->apControl[CONTROL_SPEED]), fSeconds, 0.3f);
    const float fPath = fSeconds * pPlasma->fSpeed;
    for (int32_t i = 0; i < PLASMA_WAVES; i++)
        AdvancePhase(&pPlasma->afPhase[i], afWave[i], fPath);
    for (int32_t i = 0; i < PLASMA_RINGS; i++)
        AdvancePhase(&pPlasma->afRing[i], -afRing[i], fPath);
    for (int32_t i = 0; i < 2 * PLASMA_RINGS; i++)
        AdvancePhase(&pPlasma->afPath[i], afPath[i], fPath);
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pPlasma->afWarp[i], afWarp[i], fPath);
    AdvancePhase(&pPlasma->fTurned, ReadFloat(pPlasma->apControl[CONTROL_TURNING]) / 60, fSeconds);
    MovePalette(&pPlasma->palette, fSeconds, 0.12f, 0.7f);
}

// One wave or ring, ready for the vertices: a phase along the row, and a weight.
struct PlasmaTerm {
    float x, y, fFineness, fPhase, fWeight; // wave: (x, y) its direction; ring: its center
};

struct PlasmaTerms {
    PlasmaTerm aWave[PLASMA_WAVES], aRing[PLASMA_RINGS];
    float fCosine, fSine, fScale;
};

static PlasmaTerms PrepareTerms(const Plasma *pPlasma)
{
    PlasmaTerms terms = {};
    const PlasmaLook &look = pPlasma->look;
    float fPower = 0.3f;
    for (int32_t i = 0; i < PLASMA_WAVES; i++) {
        const float fWeight = std::clamp(look.fWaves - (float)i, 0.0f, 1.0f);
        const float fFineness = look.fFineness * (0.8f + 0.27f * (float)i);
        terms.aWave[i] = {fFineness * CosineTurn(pPlasma->afAngle[i]), fFineness * SineTurn(pPlasma->afAngle[i]), 1,
                          pPlasma->afPhase[i], fWeight};
        fPower += fWeight * fWeight;
    }
    for (int32_t i = 0; i < PLASMA_RINGS; i++) {
        terms.aRing[i] = {look.fWander * SineTurn(pPlasma->afPath[2 * i]) * 1.4f,
                          look.fWander * SineTurn(pPlasma->afPath[2 * i + 1]),
                          look.fFineness * (1.1f + 0.4f * (float)i), pPlasma->afRing[i], look.fRings};
        fPower += look.fRings * look.fRings;
    }
    terms.fCosine = CosineTurn(pPlasma->fTurned);
    terms.fSine = SineTurn(pPlasma->fTurned);
    terms.fScale = 1.1f / std::sqrt(fPower);
    return terms;
}

static inline void AddWave(PlasmaTerm wave, const float *px, const float *py, int32_t n, float *__restrict pfSum)
{
    for (int32_t i = 0; i < n; i++)
        pfSum[i] += wave.fWeight * WaveOf(wave.x * px[i] + wave.y * py[i] + wave.fPhase);
}

static inline void AddRing(PlasmaTerm ring, const float *px, const float *py, int32_t n, float *__restrict pfSum)
{
    for (int32_t i = 0; i < n; i++) {
        const float x = px[i] - ring.x, y = py[i] - ring.y;
        // Soft in the middle: a cone's tip would look like a fault.
        pfSum[i] += ring.fWeight * WaveOf(ring.fFineness * std::sqrt(x * x + y * y + 0.004f) + ring.fPhase);
    }
}

// The sum at each place, squeezed into 0 to 1.
STOCK_WIDE static void SumTerms(const PlasmaTerms &terms, const float *px, const float *py, int32_t n,
                                float *__restrict pfSum)
{
    std::fill_n(pfSum, n, 0.0f);
    for (const PlasmaTerm &wave : terms.aWave)
        if (wave.fWeight > 0)
            AddWave(wave, px, py, n, pfSum);
    for (const PlasmaTerm &ring : terms.aRing)
        if (ring.fWeight > 0)
            AddRing(ring, px, py, n, pfSum);
    const float fScale = terms.fScale;
    for (int32_t i = 0; i < n; i++) {
        const float f = pfSum[i] * fScale;
        pfSum[i] = 0.5f + 0.5f * f / std::sqrt(1 + f * f);
    }
}

// Places of a row of vertices, turned and bent.
STOCK_WIDE static void BendRow(const Plasma &plasma, const PlasmaTerms &terms, GridPlace place, int32_t n,
                               float *__restrict px, float *__restrict py)
{
    const float fWarp = plasma.look.fWarp, fCosine = terms.fCosine, fSine = terms.fSine;
    const float af[4] = {plasma.afWarp[0], plasma.afWarp[1], plasma.afWarp[2], plasma.afWarp[3]};
    for (int32_t i = 0; i < n; i++) {
        const float x = place.x + (float)i * place.xStep, y = place.y;
        const float xTurned = x * fCosine - y * fSine, yTurned = x * fSine + y * fCosine;
        const float xBent = xTurned + fWarp * WaveOf(1.1f * yTurned + 0.3f * xTurned + af[0]);
        const float yBent = yTurned + fWarp * WaveOf(1.3f * xBent - 0.2f * yTurned + af[1]);
        px[i] = xBent + 0.5f * fWarp * WaveOf(2.3f * yBent + af[2]);
        py[i] = yBent + 0.5f * fWarp * WaveOf(2.1f * xBent + af[3]);
    }
}

#define PLASMA_BATCH 256 // vertices at a time

static void FillGrid(const Plasma &plasma, const FieldGrid &grid)
{
    const PlasmaTerms terms = PrepareTerms(&plasma);
    float afX[PLASMA_BATCH], afY[PLASMA_BATCH];
    for (int32_t iRow = 0; iRow < grid.nRows; iRow++)
        for (int32_t i = 0; i < grid.nColumns; i += PLASMA_BATCH) {
            const int32_t n = std::min(grid.nColumns - i, PLASMA_BATCH);
            GridPlace place = PlaceOfRow(grid, iRow);
            place.x += (float)i * place.xStep;
            BendRow(plasma, terms, place, n, afX, afY);
            SumTerms(terms, afX, afY, n, GridRow(grid, iRow) + i);
        }
}

static uint32_t Draw(Plasma *pPlasma, PlaneInfo *ppi, const Canvas &canvas)
{
    if (!FitGrid(&pPlasma->grid, canvas, PLASMA_FINENESS))
        return 0;
    const float fSeconds = StepSeconds(&pPlasma->clock, ppi);
    EaseLook(&pPlasma->look, ReadLook(pPlasma), fSeconds);
    Move(pPlasma, fSeconds);
    FillGrid(*pPlasma, pPlasma->grid);
    MixPalette(&pPlasma->palette, canvas);
    PaintGrid(canvas, pPlasma->grid, pPlasma->palette.colors);
    return 0;
}

static void Release(Plasma *pPlasma)
{
    FreeGrid(&pPlasma->grid);
}

STOCK_DRAWING_MODULE(Plasma)
