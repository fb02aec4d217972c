// PPVignette.cpp -- PPVignette.dll, an effect for colors: a frame of dark or of a color that breathes with the sound
#include "../common/StockLight.h"
#include "../common/StockModule.h"
#include "../common/StockScratch.h"

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
    ColumnTables across; // of floats: a column's part of the distance from the middle
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

// What the frame covers of a pixel, in 1/256.
static inline uint32_t CoveredShare(const Slope &slope, float fAway)
{
    const float fWay = (fAway - slope.fBegin) * slope.fPerWay;
    const float fBegun = fWay > 0 ? fWay : 0, f = fBegun < 1 ? fBegun : 1;
    return (uint32_t)(int32_t)(slope.fMiddle + slope.fOutwards * (f * f * (3 - 2 * f)));
}

// dwRounding: for the first and the third channel, which are mixed together.
STOCK_WIDE static void TintRow(const float *pfAcross, float fUp, int32_t nColumns, const Slope slope, uint32_t dwTint,
                               uint32_t dwRounding, uint32_t *__restrict pdwRow)
{
    for (int32_t x = 0; x < nColumns; x++) {
        const uint32_t dwOld = pdwRow[x], dwShare = CoveredShare(slope, pfAcross[x] + fUp), dwKept = 256 - dwShare;
        const uint32_t dwOuter = (dwOld & 0xFF00FF) * dwKept + (dwTint & 0xFF00FF) * dwShare + dwRounding;
        const uint32_t dwGreen = (dwOld & 0x00FF00) * dwKept + (dwTint & 0x00FF00) * dwShare + (dwRounding << 8);
        pdwRow[x] = (dwOld & 0xFF000000u) | (dwOuter >> 8 & 0xFF00FF) | (dwGreen >> 8 & 0x00FF00);
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
    if (canvas.bIndexed || fAmount <= 0 || !FitColumns(&pVignette->across, canvas.nWidth, sizeof(float)))
        return 0;
    const float xMiddle = look.fDrift * SineTurn(pVignette->afDrift[0]);
    const float yMiddle = look.fDrift * SineTurn(pVignette->afDrift[1]);
    const uint32_t dwTint = look.fPlace > 0.001f ? ColorAt(canvas, look.fPlace) : 0;
    float *pfAcross = (float *)pVignette->across.pv;
    for (int32_t x = 0; x < canvas.nWidth; x++)
        pfAcross[x] = PartOf(x, canvas.nWidth, xMiddle, look.fShape);
    const Slope slope = SlopeOf(look, fAmount, ReadBoolean(pVignette->apControl[CONTROL_INVERT]));
    for (int32_t y = 0; y < canvas.nHeight; y++)
        TintRow(pfAcross, PartOf(y, canvas.nHeight, yMiddle, look.fShape), canvas.nWidth, slope, dwTint,
                RoundingByte(y, pVignette->nFrame) * 0x00010001u, CanvasRow(canvas, y));
    pVignette->nFrame++;
    return 0;
}

static void Release(Vignette *pVignette)
{
    FreeColumns(&pVignette->across);
}

STOCK_DRAWING_MODULE(Vignette)
