// PPVignette.cpp -- PPVignette.dll, an effect for colors: a frame of dark or of a color that breathes with the sound
#include "../common/StockLight.h"
#include "../common/StockModule.h"

#include <cstdlib>

enum {
    CONTROL_AMOUNT,
    CONTROL_SIZE,
    CONTROL_SOFTNESS,
    CONTROL_SHAPE,
    CONTROL_DRIFT,
    CONTROL_PLACE,
    CONTROL_INVERT,
    CONTROL_UNFOLDS,
    CONTROLS
};

struct VignetteLook {
    float fAmount, fSize, fSoftness, fShape, fDrift, fPlace;
};

struct Vignette {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    VignetteLook look;   // eased
    float afDrift[2];    // phases of the middle's way
    float *pfAcross;     // per column, its part of the distance from the middle
    uint16_t *pwShares;  // per column, what the frame covers of a row, in 1/256
    uint16_t *pwWeights; // the same per element
    uint8_t *pbTint;     // per element
    int32_t nColumns;
    uint32_t nFrame;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_RGB, u"Vignette",
                   u"Darkens or colors the picture towards its edges, and opens with the sound");
}

static void AddControls(Vignette *pVignette, const ControlMaker &maker)
{
    ControlRecord **ap = pVignette->apControl;
    ap[CONTROL_AMOUNT] = AddFloat(maker, u"Vignette\0Amount\0", u"How much of the picture goes outside", {0, 1},
                                  {0.6f, 0.95f}, 0.8f, FromWave(33000));
    ap[CONTROL_SIZE] = AddFloat(maker, u"Vignette\0Size\0", u"Of what stays clear; 1 reaches the edges of the picture",
                                {0.05f, 2}, {0.75f, 1.1f}, 0.9f, FromSound(14));
    ap[CONTROL_SOFTNESS] = AddFloat(maker, u"Vignette\0Softness\0", u"0 cuts sharply, 1 fades over half the picture",
                                    {0, 1}, {0.4f, 0.9f}, 0.6f, FromFixed());
    ap[CONTROL_SHAPE] = AddFloat(maker, u"Vignette\0Shape\0", u"0 is a diamond, 0.3 an oval, 1 a rectangle", {0, 1},
                                 {0.2f, 0.7f}, 0.35f, FromWave(61000));
    ap[CONTROL_DRIFT] =
        AddFloat(maker, u"Vignette\0Drift\0", u"How far the clear part strays", {0, 1}, {0, 0.3f}, 0.1f, FromRandom());
    ap[CONTROL_PLACE] = AddFloat(maker, u"Color\0Place\0", u"Where in the palette the frame's color lies; 0 is black",
                                 {0, 1}, {0, 0.3f}, 0, FromFixed());
    ap[CONTROL_INVERT] =
        AddBoolean(maker, u"Vignette\0Invert\0", u"Hides the middle instead of the edges", 0.9f, false, FromFixed());
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Vignette\0Unfolds\0", pVignette->aUnfoldsRow);
}

static VignetteLook ReadLook(const Vignette *pVignette)
{
    const auto Float = [&](int32_t iControl) { return ReadFloat(pVignette->apControl[iControl]); };
    const float fShape = Float(CONTROL_SHAPE);
    return {Float(CONTROL_AMOUNT),   std::max(Float(CONTROL_SIZE), 0.05f),
            Float(CONTROL_SOFTNESS), 1 + 9 * fShape * fShape,
            Float(CONTROL_DRIFT),    Float(CONTROL_PLACE)};
}

static void EaseLook(VignetteLook *pLook, const VignetteLook &target, float fSeconds)
{
    Approach(&pLook->fAmount, target.fAmount, fSeconds, 0.2f);
    Approach(&pLook->fSize, target.fSize, fSeconds, 0.12f);
    Approach(&pLook->fSoftness, target.fSoftness, fSeconds, 0.4f);
    Approach(&pLook->fShape, target.fShape, fSeconds, 0.6f);
    Approach(&pLook->fDrift, target.fDrift, fSeconds, 1);
    Approach(&pLook->fPlace, target.fPlace, fSeconds, 0.3f);
}

static void Start(Vignette *pVignette, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    for (float &fPhase : pVignette->afDrift)
        fPhase = RandomUnit(&random);
    pVignette->clock = {};
    pVignette->look = ReadLook(pVignette);
}

static void Release(Vignette *pVignette)
{
    free(pVignette->pfAcross);
    pVignette->pfAcross = nullptr;
    pVignette->pwWeights = nullptr;
    pVignette->nColumns = 0;
}

static bool FitColumns(Vignette *pVignette, int32_t nColumns)
{
    if (pVignette->nColumns == nColumns)
        return true;
    Release(pVignette);
    pVignette->pfAcross = (float *)calloc((size_t)nColumns, sizeof(float) + 5 * sizeof(uint16_t) + 4);
    if (!pVignette->pfAcross)
        return false;
    pVignette->pwWeights = (uint16_t *)(void *)(pVignette->pfAcross + nColumns);
    pVignette->pwShares = pVignette->pwWeights + (size_t)nColumns * 4;
    pVignette->pbTint = (uint8_t *)(pVignette->pwShares + nColumns);
    pVignette->nColumns = nColumns;
    return true;
}

// The part that a column or a row has in the distance from the middle, to the power of the shape.
static float PartOf(int32_t i, int32_t nCount, float fMiddle, float fShape)
{
    const float fAway = std::fabs(2 * ((float)i + 0.5f) / (float)nCount - 1 - fMiddle);
    return std::pow(fAway, fShape);
}

// Where the frame begins, and one over the way to where it is complete, as distances to the power of the shape; what it
// covers in the middle and how much more outside, in 1/256.
struct Slope {
    float fBegin, fPerWay, fMiddle, fOutwards;
};

static Slope SlopeOf(const VignetteLook &look, float fAmount, bool bInvert)
{
    const float fInner = look.fSize * (1 - 0.8f * look.fSoftness), fOuter = look.fSize * (1.001f + look.fSoftness);
    const float fBegin = std::pow(fInner, look.fShape), fEnd = std::pow(fOuter, look.fShape);
    const float fCovered = fAmount * 256;
    return {fBegin, 1 / std::max(fEnd - fBegin, 1e-6f), bInvert ? fCovered : 0, bInvert ? -fCovered : fCovered};
}

STOCK_WIDE static void WeighRow(const float *pfAcross, float fUp, int32_t nColumns, const Slope slope,
                                uint16_t *__restrict pwShares)
{
    for (int32_t x = 0; x < nColumns; x++) {
        const float fWay = (pfAcross[x] + fUp - slope.fBegin) * slope.fPerWay;
        const float fBegun = fWay > 0 ? fWay : 0, f = fBegun < 1 ? fBegun : 1;
        const float fShare = slope.fMiddle + slope.fOutwards * (f * f * (3 - 2 * f));
        pwShares[x] = (uint16_t)(int32_t)fShare;
    }
}

static void SpreadShares(const uint16_t *pwShares, int32_t nColumns, uint16_t *__restrict pwWeights)
{
    for (int32_t x = 0; x < nColumns; x++) {
        const uint64_t qwWeights = ColorWords(pwShares[x]);
        memcpy(pwWeights + x * 4, &qwWeights, sizeof qwWeights);
    }
}

STOCK_WIDE static void TintRow(const uint16_t *pwWeights, const uint8_t *pbTint, int32_t nElements, uint16_t wRounding,
                               uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nElements; i++) {
        const uint16_t wKept = (uint16_t)(pbRow[i] * (256 - pwWeights[i]));
        const uint16_t wTint = (uint16_t)(pbTint[i] * pwWeights[i]);
        pbRow[i] = (uint8_t)((uint16_t)(wKept + wTint + wRounding) >> 8);
    }
}

static uint32_t Draw(Vignette *pVignette, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pVignette->clock, ppi);
    VignetteLook &look = pVignette->look;
    EaseLook(&look, ReadLook(pVignette), fSeconds);
    AdvancePhase(&pVignette->afDrift[0], 0.043f, fSeconds);
    AdvancePhase(&pVignette->afDrift[1], 0.059f, fSeconds);
    const float fUnfolded = UnfoldSeconds(ppi, ReadItem(pVignette->apControl[CONTROL_UNFOLDS]), fSeconds);
    const float fAmount = UnfoldShare(look.fAmount, fUnfolded);
    if (canvas.bIndexed || fAmount <= 0 || !FitColumns(pVignette, canvas.nWidth))
        return 0;
    const float xMiddle = look.fDrift * SineTurn(pVignette->afDrift[0]);
    const float yMiddle = look.fDrift * SineTurn(pVignette->afDrift[1]);
    const uint32_t dwTint = look.fPlace > 0.001f ? ColorAt(canvas, look.fPlace) : 0;
    for (int32_t x = 0; x < canvas.nWidth; x++) {
        pVignette->pfAcross[x] = PartOf(x, canvas.nWidth, xMiddle, look.fShape);
        memcpy(pVignette->pbTint + x * 4, &dwTint, sizeof dwTint);
    }
    const Slope slope = SlopeOf(look, fAmount, ReadBoolean(pVignette->apControl[CONTROL_INVERT]));
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        const float fUp = PartOf(y, canvas.nHeight, yMiddle, look.fShape);
        WeighRow(pVignette->pfAcross, fUp, canvas.nWidth, slope, pVignette->pwShares);
        SpreadShares(pVignette->pwShares, canvas.nWidth, pVignette->pwWeights);
        TintRow(pVignette->pwWeights, pVignette->pbTint, canvas.nWidth * 4, RoundingByte(y, pVignette->nFrame),
                PixelBytes(CanvasRow(canvas, y)));
    }
    pVignette->nFrame++;
    return 0;
}

STOCK_DRAWING_MODULE(Vignette)
