// FDGradient.cpp -- FDGradient.dll, a full image: gradients around poles that move through the picture and mix
#include "../common/StockField.h"
#include "../common/StockModule.h"

#define GRADIENT_POLES 4
#define GRADIENT_FINENESS 180 // cells of the grid along the shorter side
#define GRADIENT_BATCH 256    // vertices at a time

enum { SHAPE_LINEAR, SHAPE_RADIAL, SHAPE_CONIC, SHAPE_DIAMOND, SHAPE_SPIRAL, SHAPES };

enum {
    CONTROL_SHAPE,
    CONTROL_ARMS,
    CONTROL_BANDS,
    CONTROL_POLES,
    CONTROL_MELT,
    CONTROL_FLOW,
    CONTROL_SPIN,
    CONTROL_WANDER,
    CONTROLS
};

// The controls, eased.
struct GradientLook {
    float afShape[SHAPES]; // share of each shape, 1 in sum
    float fArms, fBands, fPoles, fMelt, fWander;
};

struct Gradient {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aShapeRow[SHAPES];
    DrawClock clock;
    GradientLook look;
    float afPath[2 * GRADIENT_POLES]; // phases of the poles' ways, in turns
    float fFlowed, fSpun, fFlow;
    FieldGrid grid;
    FieldPalette palette;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Gradient",
                   u"Linear, round, conic, diamond and spiral gradients around moving poles that melt together");
}

static void AddShapeControls(Gradient *pGradient, const ControlMaker &maker)
{
    static const char16_t *const aszShape[SHAPES] = {u"Linear", u"Radial", u"Conic", u"Diamond", u"Spiral"};
    ControlRecord **ap = pGradient->apControl;
    ap[CONTROL_SHAPE] = AddItemSelect(maker, u"Shape\0Shape\0", u"What the gradient looks like around a pole",
                                      pGradient->aShapeRow, aszShape, SHAPE_SPIRAL, FromRandom());
    ap[CONTROL_ARMS] = AddInteger(maker, u"Shape\0Arms\0", u"Beams of a conic gradient, arms of a spiral", {1, 12},
                                  {1, 4}, 2, FromPeriodic(23000));
    SetDependsOn(ap[CONTROL_ARMS], ap[CONTROL_SHAPE], DEPENDOP_NOTEQUAL, SHAPE_RADIAL);
    ap[CONTROL_BANDS] = AddFloat(maker, u"Shape\0Bands\0", u"Bands over the height of the picture", {0.1f, 10},
                                 {0.5f, 1.8f}, 1, FromWave(41000));
    ap[CONTROL_POLES] = AddInteger(maker, u"Poles\0Count\0", u"How many poles there are", {1, GRADIENT_POLES}, {1, 3},
                                   2, FromPeriodic(29000));
    ap[CONTROL_MELT] = AddFloat(maker, u"Poles\0Melt\0", u"0 keeps the poles' fields apart, 1 melts them together",
                                {0, 1}, {0.3f, 1}, 0.6f, FromWave(33000));
    SetDependsOn(ap[CONTROL_MELT], ap[CONTROL_POLES], DEPENDOP_GREATER, 1);
}

static void AddControls(Gradient *pGradient, const ControlMaker &maker)
{
    AddShapeControls(pGradient, maker);
    ControlRecord **ap = pGradient->apControl;
    ap[CONTROL_FLOW] =
        AddFloat(maker, u"Motion\0Flow\0", u"Bands that leave the poles in a minute; below 0 they sink in", {-120, 120},
                 {4, 22}, 9, FromSound(20));
    ap[CONTROL_SPIN] = AddFloat(maker, u"Motion\0Spin\0", u"Turns around the poles in a minute", {-30, 30}, {-3, 3}, 2,
                                FromWave(57000));
    ap[CONTROL_WANDER] = AddFloat(maker, u"Motion\0Wander\0", u"How far the poles stray through the picture", {0, 1},
                                  {0.3f, 0.9f}, 0.6f, FromWave(49000));
    FieldPalette &palette = pGradient->palette; // it flows; a cycle would do the same
    palette.pPlace = AddFieldPlace(maker, u"Where in the palette the bands begin", {0, 0.5f}, 0, FromWave(37000));
    palette.pSpread =
        AddFieldSpread(maker, u"How much of the palette a band holds", {0.05f, 3}, {0.55f, 1}, 0.8f, FromSound(10));
}

static GradientLook ReadLook(const Gradient *pGradient)
{
    const auto Float = [&](int32_t iControl) { return ReadFloat(pGradient->apControl[iControl]); };
    GradientLook look = {};
    look.afShape[ReadItem(pGradient->apControl[CONTROL_SHAPE])] = 1;
    look.fArms = std::max(1.0f, (float)ReadInteger(pGradient->apControl[CONTROL_ARMS]));
    look.fBands = Float(CONTROL_BANDS);
    look.fPoles = std::max(1.0f, (float)ReadInteger(pGradient->apControl[CONTROL_POLES]));
    look.fMelt = 0.01f + 0.6f * Float(CONTROL_MELT) * Float(CONTROL_MELT);
    look.fWander = 0.55f * Float(CONTROL_WANDER);
    return look;
}

static void EaseLook(GradientLook *pLook, const GradientLook &target, float fSeconds)
{
    for (int32_t i = 0; i < SHAPES; i++)
        Approach(&pLook->afShape[i], target.afShape[i], fSeconds, 1.2f);
    Approach(&pLook->fArms, target.fArms, fSeconds, 1.5f);
    Approach(&pLook->fBands, target.fBands, fSeconds, 1);
    Approach(&pLook->fPoles, target.fPoles, fSeconds, 2);
    Approach(&pLook->fMelt, target.fMelt, fSeconds, 0.7f);
    Approach(&pLook->fWander, target.fWander, fSeconds, 1.5f);
}

static void Start(Gradient *pGradient, PlaneInfo *ppi)
{
    if (pGradient->clock.clock.bStarted) // a reset: the old shape melts into the new one
        return;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pGradient->look = ReadLook(pGradient);
    SettlePalette(&pGradient->palette);
    pGradient->fFlow = ReadFloat(pGradient->apControl[CONTROL_FLOW]);
    for (float &fPhase : pGradient->afPath)
        fPhase = RandomUnit(&random);
    pGradient->fSpun = RandomUnit(&random);
}

static void Move(Gradient *pGradient, float fSeconds)
{
    static const float afPath[2 * GRADIENT_POLES] = {0.029f, 0.037f, -0.033f, 0.043f, 0.041f, -0.027f, 0.047f, 0.031f};
    for (int32_t i = 0; i < 2 * GRADIENT_POLES; i++)
        AdvancePhase(&pGradient->afPath[i], afPath[i], fSeconds);
    Approach(&pGradient->fFlow, ReadFloat(pGradient->apControl[CONTROL_FLOW]), fSeconds, 0.25f);
    AdvancePhase(&pGradient->fFlowed, pGradient->fFlow / 60, fSeconds);
    AdvancePhase(&pGradient->fSpun, ReadFloat(pGradient->apControl[CONTROL_SPIN]) / 60, fSeconds);
    MovePalette(&pGradient->palette, fSeconds, 0.3f, 0.15f);
}

struct Pole {
    float x, y, fWeight;
};

// What the vertices need to know, by value.
struct GradientTerms {
    Pole aPole[GRADIENT_POLES];
    float afShape[SHAPES];
    float fArms, fMoreArms; // whole number, and share of the next one
    float fBands, fMelt2, fFlowed, fSpun, fCosine, fSine;
};

static GradientTerms PrepareTerms(const Gradient &gradient)
{
    const GradientLook &look = gradient.look;
    GradientTerms terms = {};
    for (int32_t i = 0; i < GRADIENT_POLES; i++)
        terms.aPole[i] = {1.5f * look.fWander * SineTurn(gradient.afPath[2 * i]),
                          look.fWander * SineTurn(gradient.afPath[2 * i + 1]),
                          std::clamp(look.fPoles - (float)i, 0.0f, 1.0f)};
    std::copy_n(look.afShape, SHAPES, terms.afShape);
    terms.fArms = std::floor(look.fArms);
    terms.fMoreArms = look.fArms - terms.fArms;
    terms.fBands = look.fBands;
    terms.fMelt2 = look.fMelt * look.fMelt;
    terms.fFlowed = gradient.fFlowed;
    terms.fSpun = gradient.fSpun;
    terms.fCosine = CosineTurn(gradient.fSpun);
    terms.fSine = SineTurn(gradient.fSpun);
    return terms;
}

// Bands run to and fro through the palette, so that there is no seam.
static inline float BandOf(const GradientTerms &t, float x, float y)
{
    const float r = std::sqrt(x * x + y * y + 1e-4f), fTurn = TurnOf(x, y) + t.fSpun;
    const float xSpun = x * t.fCosine + y * t.fSine, ySpun = y * t.fCosine - x * t.fSine;
    const float fDiamond = 0.9f * (std::fabs(xSpun) + std::fabs(ySpun));
    const float fLess = t.fArms * fTurn, fMore = fLess + fTurn, fOut = t.fBands * r - t.fFlowed;
    const auto Wound = [&](float fOffset) {
        const float f = WaveOf(fLess + fOffset);
        return f + (WaveOf(fMore + fOffset) - f) * t.fMoreArms;
    };
    // Around a pole the beams would crowd into less than a pixel: there they fade.
    const float fCalm = r / (r + 0.02f * t.fArms);
    return t.afShape[SHAPE_LINEAR] * WaveOf(t.fBands * xSpun - t.fFlowed) + t.afShape[SHAPE_RADIAL] * WaveOf(fOut) +
           t.afShape[SHAPE_DIAMOND] * WaveOf(t.fBands * fDiamond - t.fFlowed) +
           fCalm * (t.afShape[SHAPE_CONIC] * Wound(-t.fFlowed) + t.afShape[SHAPE_SPIRAL] * Wound(fOut));
}

// Adds what a pole says, by how near it is; pfSum and pfWeight grow.
STOCK_WIDE static void AddPole(const GradientTerms &given, int32_t iPole, GridPlace place, int32_t n,
                               float *__restrict pfSum, float *__restrict pfWeight)
{
    const GradientTerms terms = given;
    const Pole pole = terms.aPole[iPole];
    for (int32_t i = 0; i < n; i++) {
        const float x = place.x + (float)i * place.xStep - pole.x, y = place.y - pole.y;
        const float fNear = 1 / (x * x + y * y + terms.fMelt2), fWeight = pole.fWeight * fNear * fNear;
        pfSum[i] += fWeight * BandOf(terms, x, y);
        pfWeight[i] += fWeight;
    }
}

static void FillBatch(const GradientTerms &terms, const GridPlace &place, int32_t n, float *pfValue)
{
    float afWeight[GRADIENT_BATCH] = {};
    std::fill_n(pfValue, n, 0.0f);
    for (int32_t iPole = 0; iPole < GRADIENT_POLES; iPole++)
        if (terms.aPole[iPole].fWeight > 0.003f)
            AddPole(terms, iPole, place, n, pfValue, afWeight);
    for (int32_t i = 0; i < n; i++)
        pfValue[i] = 0.5f + 0.5f * pfValue[i] / afWeight[i];
}

static void FillGrid(const Gradient &gradient, const FieldGrid &grid)
{
    const GradientTerms terms = PrepareTerms(gradient);
    for (int32_t iRow = 0; iRow < grid.nRows; iRow++)
        for (int32_t i = 0; i < grid.nColumns; i += GRADIENT_BATCH) {
            GridPlace place = PlaceOfRow(grid, iRow);
            place.x += (float)i * place.xStep;
            FillBatch(terms, place, std::min(grid.nColumns - i, GRADIENT_BATCH), GridRow(grid, iRow) + i);
        }
}

static uint32_t Draw(Gradient *pGradient, PlaneInfo *ppi, const Canvas &canvas)
{
    if (!FitGrid(&pGradient->grid, canvas, GRADIENT_FINENESS))
        return 0;
    const float fSeconds = StepSeconds(&pGradient->clock, ppi);
    EaseLook(&pGradient->look, ReadLook(pGradient), fSeconds);
    Move(pGradient, fSeconds);
    FillGrid(*pGradient, pGradient->grid);
    MixPalette(&pGradient->palette, canvas);
    PaintGrid(canvas, pGradient->grid, pGradient->palette.colors);
    return 0;
}

static void Release(Gradient *pGradient)
{
    FreeGrid(&pGradient->grid);
}

STOCK_DRAWING_MODULE(Gradient)
