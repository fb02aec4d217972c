// PMPendulum.cpp -- PMPendulum.dll, a painter: the curves of a harmonograph, a pen on two pairs of pendulums that die
// away
//
// A curve lives twice as long as it takes to write: first the pen runs along it, then it goes the way it came
// while the next one is written. So there is always as much of a curve as one picture bears.
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define CURVE_STEPS_MOST 2000 // points of a whole curve
#define CURVE_CHUNK 128       // points painted at a time
#define STEPS_OF_SWING 36     // points for each swing of the quickest pendulum

enum { RATIO_ANY, RATIO_1TO1, RATIO_1TO2, RATIO_2TO3, RATIO_3TO4, RATIO_3TO5, RATIOS };

enum {
    CONTROL_RATIO,
    CONTROL_SWINGS,
    CONTROL_DAMPING,
    CONTROL_DETUNE,
    CONTROL_SECOND,
    CONTROL_SIZE,
    CONTROL_REDRAW,
    CONTROL_SECONDS,
    CONTROL_MORPH,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {0, 2, 1, 1.5f, 1.5f, 0.8f, 0, 0, 0.4f, 0.1f, 0.5f, 0.4f, 1.5f, 0};

// The four pendulums of a curve: two for x, two for y.
struct Curve {
    float afSwings[4]; // swings of each for one swing of the first
    float afPhase[4];  // turns
    float fTurns;      // color against the place
};

struct Pendulum {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aRatioRow[RATIOS], aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    StockRandom random;
    Curve aCurve[2];  // the one that goes and the one that comes
    float fWritten;   // 0 to 1: how far the pen is
    float afMorph[4]; // turns that the phases have moved on
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Harmonograph",
                   u"Curves of a pen that hangs on pendulums, written anew and morphing");
}

static void AddControls(Pendulum *pPendulum, const ControlMaker &maker)
{
    static const char16_t *const aszRatio[RATIOS] = {u"Any", u"1 : 1", u"1 : 2", u"2 : 3", u"3 : 4", u"3 : 5"};
    ControlRecord **ap = pPendulum->apControl;
    ap[CONTROL_RATIO] = AddItemSelect(maker, u"Pendulums\0Ratio\0", u"How quick the pendulums are to each other",
                                      pPendulum->aRatioRow, aszRatio, RATIO_ANY, FromFixed());
    ap[CONTROL_DETUNE] =
        AddFloat(maker, u"Pendulums\0Detune\0", u"How far the ratio is off: the curve turns as it shrinks", {0, 1},
                 {0.05f, 0.5f}, 0.2f, FromWave(47000));
    ap[CONTROL_SECOND] =
        AddFloat(maker, u"Pendulums\0Second pair\0", u"How much the second pair of pendulums shakes the first", {0, 1},
                 {0.1f, 0.6f}, 0.3f, FromWave(39000));
    ap[CONTROL_SWINGS] = AddFloat(maker, u"Curve\0Swings\0", u"Of the pendulums until the pen is lifted", {1, 40},
                                  {8, 18}, 10, FromWave(43000));
    ap[CONTROL_DAMPING] = AddFloat(maker, u"Curve\0Damping\0", u"How much smaller the swings are in the end", {0, 1},
                                   {0.25f, 0.7f}, 0.5f, FromWave(31000));
    ap[CONTROL_SIZE] = AddFloat(maker, u"Curve\0Size\0", u"Of the first swings, 1 to fill the picture", {0.05f, 2},
                                {0.9f, 1.2f}, 1, FromSound(12));
    ap[CONTROL_REDRAW] =
        AddBoolean(maker, u"Motion\0Redraw\0", u"The curve goes and another one comes", 0.5f, true, FromFixed());
    ap[CONTROL_SECONDS] = AddFloat(maker, u"Motion\0Seconds\0", u"From one curve to the next", {1, 120}, {8, 18}, 12,
                                   FromPeriodic(20000));
    ap[CONTROL_MORPH] = AddFloat(maker, u"Motion\0Morph\0", u"How fast the curve changes its form", {0, 60}, {1.5f, 9},
                                 3, FromSound(20));
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of the pen, in percent of the picture's height", {0.3f, 0.7f}, 0.5f, FromSound(6));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette the beginning of the curve lies");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far the color moves on towards its end");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pPendulum->aPaintRow, PAINT_OVER);
    SetDependsOn(ap[CONTROL_SECONDS], ap[CONTROL_REDRAW], DEPENDOP_NOTEQUAL, 0);
}

static Curve MakeCurve(const Pendulum *pPendulum, StockRandom *pRandom)
{
    static const float aafRatio[RATIOS][2] = {{0, 0}, {1, 1}, {1, 2}, {2, 3}, {3, 4}, {3, 5}};
    uint32_t dwRatio = ReadItem(pPendulum->apControl[CONTROL_RATIO]);
    if (dwRatio == RATIO_ANY)
        dwRatio = 1 + RandomBelow(pRandom, RATIOS - 1);
    const bool bSteep = RandomBelow(pRandom, 2) != 0;
    const float fOne = aafRatio[dwRatio][bSteep], fOther = aafRatio[dwRatio][!bSteep];
    Curve curve = {{1, fOther / fOne, 0, 0}, {}, RandomUnit(pRandom)};
    curve.afSwings[2] = curve.afSwings[RandomBelow(pRandom, 2)] * (float)(1 + RandomBelow(pRandom, 2));
    curve.afSwings[3] = curve.afSwings[RandomBelow(pRandom, 2)] * (float)(1 + RandomBelow(pRandom, 2));
    for (float &fPhase : curve.afPhase)
        fPhase = RandomUnit(pRandom);
    curve.afPhase[1] = curve.afPhase[0] + 0.25f + RandomBetween(pRandom, -0.15f, 0.15f); // no mere line at the start
    return curve;
}

static void Start(Pendulum *pPendulum, PlaneInfo *ppi)
{
    pPendulum->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pPendulum->clock = {};
    SettleControls(pPendulum->apControl, pPendulum->afLook);
    for (Curve &curve : pPendulum->aCurve)
        curve = MakeCurve(pPendulum, &pPendulum->random);
    pPendulum->fWritten = 0;
    for (float &fMorph : pPendulum->afMorph)
        fMorph = 0;
}

static void MovePen(Pendulum *pPendulum, float fSeconds)
{
    static const float afMorphRatio[4] = {0.21f, -0.34f, 1, -0.77f};
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pPendulum->afMorph[i], pPendulum->afLook[CONTROL_MORPH] / 60 * afMorphRatio[i], fSeconds);
    pPendulum->fWritten += fSeconds / std::max(pPendulum->afLook[CONTROL_SECONDS], 1.0f);
    if (pPendulum->fWritten < 1)
        return;
    if (!ReadBoolean(pPendulum->apControl[CONTROL_REDRAW])) {
        pPendulum->fWritten = 1;
        return;
    }
    pPendulum->fWritten = WrapUnit(pPendulum->fWritten);
    pPendulum->aCurve[0] = pPendulum->aCurve[1];
    pPendulum->aCurve[1] = MakeCurve(pPendulum, &pPendulum->random);
}

// A curve as it is in this frame.
struct Trace {
    View view;
    const Curve *pCurve;
    float afSpeed[4]; // turns of each pendulum over the curve
    float fFirst, fSecond;
    float fDecay;
};

static Trace TraceOf(const Pendulum *pPendulum, const View &view, const Curve &curve)
{
    const float *pfLook = pPendulum->afLook;
    static const float afOff[4] = {0, 0.021f, -0.034f, 0.013f};
    Trace trace = {view, &curve, {}, 0, 0, 4 * pfLook[CONTROL_DAMPING]};
    const float fQuick = std::max(1.0f, curve.afSwings[1]); // the quicker of the first pair makes the swings
    for (int32_t i = 0; i < 4; i++)
        trace.afSpeed[i] = pfLook[CONTROL_SWINGS] * (curve.afSwings[i] / fQuick + afOff[i] * pfLook[CONTROL_DETUNE]);
    trace.fFirst = 0.5f * pfLook[CONTROL_SIZE] / (1 + pfLook[CONTROL_SECOND]);
    trace.fSecond = trace.fFirst * pfLook[CONTROL_SECOND];
    return trace;
}

static StrokePoint PointOfTrace(const Pendulum *pPendulum, const Trace &trace, float fAlong)
{
    const auto Swing = [&](int32_t i) {
        return SineTurn(trace.pCurve->afPhase[i] + pPendulum->afMorph[i] + trace.afSpeed[i] * fAlong);
    };
    const float *pfLook = pPendulum->afLook, fLeft = std::exp(-trace.fDecay * fAlong);
    const float xWide = std::min(trace.view.xReach, 1.35f * trace.view.yReach) * 2; // somewhat into a wide picture
    const float yWide = std::min(trace.view.yReach, 1.35f * trace.view.xReach) * 2;
    const float x = xWide * fLeft * (trace.fFirst * Swing(0) + trace.fSecond * Swing(2));
    const float y = yWide * fLeft * (trace.fFirst * Swing(1) + trace.fSecond * Swing(3));
    const float fPlace =
        PlaceOfTurns(pfLook[CONTROL_PLACE] + trace.pCurve->fTurns + 1.5f * pfLook[CONTROL_SPREAD] * fAlong);
    return PointInView(trace.view, x, y, 0.01f * pfLook[CONTROL_THICKNESS] * (0.6f + 0.4f * fLeft), fPlace,
                       0.35f + 0.3f * fLeft);
}

// The part of a curve from fFrom to fTo, 0 to 1; thicker towards fPen, where the pen is. Pieces that share three points
// join without a seam.
static void DrawCurve(const Pendulum *pPendulum, const Canvas &canvas, const Paint &paint, const Curve &curve,
                      float fFrom, float fTo, float fPen)
{
    const Trace trace = TraceOf(pPendulum, ViewOf(canvas), curve);
    float fQuickest = 1;
    for (const float fSpeed : trace.afSpeed)
        fQuickest = std::max(fQuickest, std::fabs(fSpeed));
    const int32_t nWhole = std::min((int32_t)(fQuickest * STEPS_OF_SWING), CURVE_STEPS_MOST);
    const float fStep = (fTo - fFrom) / std::max((fTo - fFrom) * (float)nWhole, 4.0f);
    const int32_t nPoints = (int32_t)((fTo - fFrom) / std::max(fStep, 1e-6f) + 0.5f) + 1;
    const float fHardness = HardnessOf(pPendulum->afLook[CONTROL_HARDNESS], 3);
    StrokePoint aPoint[CURVE_CHUNK];
    for (int32_t iFirst = 0; iFirst == 0 || iFirst + 3 < nPoints; iFirst += CURVE_CHUNK - 3) {
        const int32_t nChunk = std::min(nPoints - iFirst, CURVE_CHUNK);
        for (int32_t i = 0; i < nChunk; i++) {
            const float fAlong = std::min(fFrom + (float)(iFirst + i) * fStep, fTo);
            aPoint[i] = PointOfTrace(pPendulum, trace, fAlong);
            const float fAway = std::fabs(fAlong - fPen) * pPendulum->afLook[CONTROL_SWINGS];
            aPoint[i].fRadius *= 1 + 1.5f * std::max(1 - 3 * fAway, 0.0f);
            aPoint[i].fWeight *= std::min((fAlong - fFrom) * 40 + 0.02f, 1.0f);
        }
        const uint32_t dwEnds = (iFirst > 0 ? ENDS_LED_START : 0) | (iFirst + nChunk < nPoints ? ENDS_LED_END : 0);
        PaintCurve(canvas, paint, aPoint, nChunk, fHardness, dwEnds);
    }
}

static uint32_t Draw(Pendulum *pPendulum, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pPendulum->clock, ppi);
    EaseControls(pPendulum->apControl, afEase, pPendulum->afLook, fSeconds);
    MovePen(pPendulum, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pPendulum->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return 0;
    const float fWritten = pPendulum->fWritten;
    if (fWritten < 1)
        DrawCurve(pPendulum, canvas, paint, pPendulum->aCurve[0], fWritten, 1, 2);
    DrawCurve(pPendulum, canvas, paint, pPendulum->aCurve[1], 0, fWritten, fWritten);
    return 0;
}

STOCK_DRAWING_MODULE(Pendulum)
