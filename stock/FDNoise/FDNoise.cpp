// FDNoise.cpp -- FDNoise.dll, a full image: smooth noise in octaves that flows and folds, with grain on demand
#include "NoiseField.h"

#include "../common/StockModule.h"

#define NOISE_FINENESS 180 // cells of the grid along the shorter side

enum {
    CONTROL_STYLE,
    CONTROL_SIZE,
    CONTROL_OCTAVES,
    CONTROL_ROUGHNESS,
    CONTROL_FOLD,
    CONTROL_BOIL,
    CONTROL_WIND,
    CONTROL_GRAIN,
    CONTROL_RATE,
    CONTROLS
};

struct Noise {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aStyleRow[NOISE_STYLES];
    DrawClock clock;
    NoiseLook look; // eased
    NoiseMotion motion;
    float fGrain, fWind, fBoil;
    float fGrainStep;      // part of the time to the next grain that has gone
    uint32_t dwGrainFrame; // which grain it is
    NoiseLayers layers;
    FieldGrid grid;
    FieldPalette palette;
};

// A host without OpenGL takes a module of this very name off its lists.
MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Noise",
                   u"Clouds, billows, veins and static: noise that flows and folds into itself");
}

static void AddShapeControls(Noise *pNoise, const ControlMaker &maker)
{
    static const char16_t *const aszStyle[NOISE_STYLES] = {u"Clouds", u"Billows", u"Veins"};
    ControlRecord **ap = pNoise->apControl;
    ap[CONTROL_STYLE] = AddItemSelect(maker, u"Shape\0Style\0", u"What becomes of hills and valleys", pNoise->aStyleRow,
                                      aszStyle, NOISE_CLOUDS, FromRandom());
    ap[CONTROL_SIZE] = AddFloat(maker, u"Shape\0Size\0", u"Of the largest hills, 1 for as high as the picture",
                                {0.05f, 3}, {0.45f, 1.1f}, 0.7f, FromWave(51000));
    ap[CONTROL_OCTAVES] = AddInteger(maker, u"Shape\0Octaves\0", u"Layers, each half the size of the one before",
                                     {1, NOISE_OCTAVES}, {3, 5}, 4, FromPeriodic(27000));
    ap[CONTROL_ROUGHNESS] = AddFloat(maker, u"Shape\0Roughness\0", u"How strong the smaller layers are", {0, 1},
                                     {0.35f, 0.6f}, 0.45f, FromWave(34000));
    SetDependsOn(ap[CONTROL_ROUGHNESS], ap[CONTROL_OCTAVES], DEPENDOP_GREATER, 1);
    ap[CONTROL_FOLD] = AddFloat(maker, u"Shape\0Fold\0", u"How far the noise is bent by itself", {0, 1}, {0.2f, 0.8f},
                                0.5f, FromWave(39000));
}

static void AddControls(Noise *pNoise, const ControlMaker &maker)
{
    AddShapeControls(pNoise, maker);
    ControlRecord **ap = pNoise->apControl;
    ap[CONTROL_BOIL] = AddFloat(maker, u"Motion\0Boil\0", u"How fast hills and valleys turn into each other", {0, 4},
                                {0.3f, 1.5f}, 0.6f, FromSound(22));
    ap[CONTROL_WIND] = AddFloat(maker, u"Motion\0Wind\0", u"How fast all of it drifts; it turns as it goes", {0, 2},
                                {0.1f, 0.5f}, 0.25f, FromWave(43000));
    ap[CONTROL_GRAIN] = AddFloat(maker, u"Grain\0Strength\0", u"0 is smooth, 1 is nothing but static", {0, 1},
                                 {0, 0.05f}, 0, FromSound(5));
    ap[CONTROL_RATE] = AddFloat(maker, u"Grain\0Rate\0", u"Times a second that the grain is drawn anew", {0, 60},
                                {6, 24}, 12, FromFixed());
    SetDependsOn(ap[CONTROL_RATE], ap[CONTROL_GRAIN], DEPENDOP_GREATER, 0);
    FieldPalette &palette = pNoise->palette;
    palette.pPlace = AddFieldPlace(maker, u"Where in the palette the valleys lie", {0, 0.25f}, 0, FromSound(9));
    palette.pCycle = AddFieldCycle(maker, {-1.5f, 1.5f}, 0.7f, FromWave(59000));
    palette.pSpread = AddFieldSpread(maker, u"How much of the palette lies between valley and hill", {0.05f, 4},
                                     {0.7f, 1.6f}, 1.1f, FromWave(31000));
}

static NoiseLook ReadLook(const Noise *pNoise)
{
    const auto Float = [&](int32_t iControl) { return ReadFloat(pNoise->apControl[iControl]); };
    NoiseLook look = {};
    look.afStyle[ReadItem(pNoise->apControl[CONTROL_STYLE])] = 1;
    look.fFineness = 1 / std::max(Float(CONTROL_SIZE), 0.05f);
    look.fOctaves = std::max(1.0f, (float)ReadInteger(pNoise->apControl[CONTROL_OCTAVES]));
    look.fRoughness = Float(CONTROL_ROUGHNESS);
    look.fFold = Float(CONTROL_FOLD);
    return look;
}

static void EaseLook(NoiseLook *pLook, const NoiseLook &target, float fSeconds)
{
    for (int32_t i = 0; i < NOISE_STYLES; i++)
        Approach(&pLook->afStyle[i], target.afStyle[i], fSeconds, 1);
    Approach(&pLook->fFineness, target.fFineness, fSeconds, 1.5f);
    Approach(&pLook->fOctaves, target.fOctaves, fSeconds, 1);
    Approach(&pLook->fRoughness, target.fRoughness, fSeconds, 1);
    Approach(&pLook->fFold, target.fFold, fSeconds, 1);
}

static void Start(Noise *pNoise, PlaneInfo *ppi)
{
    if (pNoise->clock.clock.bStarted) // a reset: the old style turns into the new one
        return;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pNoise->look = ReadLook(pNoise);
    SeedNoise(&pNoise->motion, &random);
    pNoise->dwGrainFrame = (uint32_t)NextRandom(&random);
    SettlePalette(&pNoise->palette);
    pNoise->fGrain = ReadFloat(pNoise->apControl[CONTROL_GRAIN]);
    pNoise->fWind = ReadFloat(pNoise->apControl[CONTROL_WIND]);
    pNoise->fBoil = ReadFloat(pNoise->apControl[CONTROL_BOIL]);
}

static void Move(Noise *pNoise, float fSeconds)
{
    const auto Follow = [&](float *pf, int32_t iControl, float fTimeConstant) {
        Approach(pf, ReadFloat(pNoise->apControl[iControl]), fSeconds, fTimeConstant);
    };
    Follow(&pNoise->fGrain, CONTROL_GRAIN, 0.06f);
    Follow(&pNoise->fWind, CONTROL_WIND, 0.7f);
    Follow(&pNoise->fBoil, CONTROL_BOIL, 0.3f);
    MovePalette(&pNoise->palette, fSeconds, 0.12f, 0.7f);
    pNoise->fGrainStep += ReadFloat(pNoise->apControl[CONTROL_RATE]) * fSeconds;
    if (pNoise->fGrainStep >= 1) {
        pNoise->fGrainStep = WrapUnit(pNoise->fGrainStep);
        pNoise->dwGrainFrame += 0x9E3779B9u;
    }
    MoveNoise(&pNoise->motion, pNoise->look.fFineness, pNoise->fWind, pNoise->fBoil, fSeconds);
}

// Mixes the steps of a row with white noise.
STOCK_WIDE static void AddGrain(uint16_t *pnSteps, int32_t nPixels, uint32_t dwRow, uint32_t nShare256)
{
    for (int32_t i = 0; i < nPixels; i++) {
        uint32_t h = (dwRow + (uint32_t)i) * 0x9E3779B1u;
        h = (h ^ (h >> 15)) * 0x85EBCA77u;
        const uint32_t dwWhite = (h ^ (h >> 13)) >> (32 - FIELD_BITS);
        pnSteps[i] = (uint16_t)((pnSteps[i] * (256 - nShare256) + dwWhite * nShare256) >> 8);
    }
}

static void PaintGrainy(const Canvas &canvas, Noise *pNoise, uint32_t nShare256)
{
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        InterpolateRow(pNoise->grid, y);
        const uint32_t dwRow = pNoise->dwGrainFrame + (uint32_t)y * 0xC2B2AE3Du;
        AddGrain(pNoise->grid.pnSteps, canvas.nWidth, dwRow, nShare256);
        StoreSteps(CanvasRow(canvas, y), pNoise->grid.pnSteps, canvas.nWidth, pNoise->palette.colors);
    }
}

static uint32_t Draw(Noise *pNoise, PlaneInfo *ppi, const Canvas &canvas)
{
    if (!FitGrid(&pNoise->grid, canvas, NOISE_FINENESS) || !FitLayers(&pNoise->layers, pNoise->grid))
        return 0;
    const float fSeconds = StepSeconds(&pNoise->clock, ppi);
    EaseLook(&pNoise->look, ReadLook(pNoise), fSeconds);
    Move(pNoise, fSeconds);
    FillNoise(pNoise->look, pNoise->motion, &pNoise->layers, pNoise->grid);
    MixPalette(&pNoise->palette, canvas);
    const uint32_t nShare256 = (uint32_t)(std::clamp(pNoise->fGrain, 0.0f, 1.0f) * 256 + 0.5f);
    if (nShare256 > 0)
        PaintGrainy(canvas, pNoise, nShare256);
    else
        PaintGrid(canvas, pNoise->grid, pNoise->palette.colors);
    return 0;
}

static void Release(Noise *pNoise)
{
    FreeLayers(&pNoise->layers);
    FreeGrid(&pNoise->grid);
}

STOCK_DRAWING_MODULE(Noise)
