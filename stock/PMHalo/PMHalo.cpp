// PMHalo.cpp -- PMHalo.dll, a painter: rings whose outline is how the sound went
//
// The newest level stands at the heads of the ring and runs down both sides of each to where it meets the oldest
// one of the other: so the outline closes, whatever the sound does.
#include "../common/StockHistory.h"
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define HALO_RINGS_MOST 8
#define HALO_POINTS 384 // around a ring; divides by all counts of bars
#define HALO_BARS 96

enum { SHAPE_LINE, SHAPE_BARS, SHAPE_BEADS, SHAPES };

enum {
    CONTROL_LEVEL,
    CONTROL_MEMORY,
    CONTROL_HEADS,
    CONTROL_SHAPE,
    CONTROL_RINGS,
    CONTROL_RADIUS,
    CONTROL_SWING,
    CONTROL_SPIN,
    CONTROL_DRIFT,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {0.05f, 1, 0, 0, 1.2f, 0.8f, 0.8f, 0.5f, 1, 0.1f, 0.5f, 0.4f, 1.5f, 0};

struct Halo {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aShapeRow[SHAPES], aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    LevelHistory history;
    float fHeads, fOldHeads; // an outline with other heads fades in over the old one
    float fHeadShare;        // 0 to 1: of the new one
    float fSpin, fRipple, afDrift[2];
    StrokePoint aPoint[HALO_POINTS + 1];
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Sound Ring",
                   u"Rings whose outline is how loud it was in the last seconds");
}

static void AddControls(Halo *pHalo, const ControlMaker &maker)
{
    static const char16_t *const aszShape[SHAPES] = {u"Line", u"Bars", u"Beads"};
    ControlRecord **ap = pHalo->apControl;
    ap[CONTROL_LEVEL] =
        AddFloat(maker, u"Sound\0Level\0", u"What the ring shows the course of", {0, 1}, {0, 1}, 0.3f, FromSound(6));
    ap[CONTROL_MEMORY] = AddFloat(maker, u"Sound\0Memory\0", u"Seconds from a head of the ring to its far end",
                                  {0.2f, 8}, {1, 3.5f}, 2, FromWave(31000));
    ap[CONTROL_HEADS] = AddInteger(maker, u"Ring\0Heads\0", u"Where the sound comes in, all around the ring", {1, 12},
                                   {1, 6}, 1, FromPeriodic(20000));
    ap[CONTROL_SHAPE] = AddItemSelect(maker, u"Ring\0Shape\0", u"What the ring is made of", pHalo->aShapeRow, aszShape,
                                      SHAPE_LINE, FromFixed());
    ap[CONTROL_RINGS] =
        AddInteger(maker, u"Ring\0Count\0", u"How many rings lie within each other; the inner ones follow",
                   {1, HALO_RINGS_MOST}, {1, 4}, 2, FromPeriodic(27000));
    ap[CONTROL_RADIUS] =
        AddFloat(maker, u"Ring\0Radius\0", u"Of the outermost ring when it is quiet, 1 for half the picture",
                 {0.05f, 2}, {0.4f, 0.75f}, 0.55f, FromWave(29000));
    ap[CONTROL_SWING] = AddFloat(maker, u"Ring\0Swing\0", u"How far a loud sound throws the outline; below 0 inwards",
                                 {-1, 2}, {0.35f, 0.8f}, 0.55f, FromWave(23000));
    ap[CONTROL_SPIN] = AddFloat(maker, u"Motion\0Spin\0", u"Turns of the ring in a minute", {-60, 60}, {-3, 3}, 1,
                                FromWave(53000, WAVETYPE_TRIANGLE));
    ap[CONTROL_DRIFT] = AddFloat(maker, u"Motion\0Drift\0", u"How far the ring strays from the middle", {0, 1},
                                 {0, 0.4f}, 0.15f, FromWave(61000));
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of the outline, in percent of the picture's height", {0.6f, 2}, 1, FromSound(6));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette the outermost ring lies");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far the color moves with the sound and from ring to ring");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pHalo->aPaintRow, PAINT_OVER);
}

static void Start(Halo *pHalo, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    SettleControls(pHalo->apControl, pHalo->afLook);
    pHalo->history = {};
    pHalo->clock = {};
    pHalo->fHeads = pHalo->fOldHeads = std::max(pHalo->afLook[CONTROL_HEADS], 1.0f);
    pHalo->fHeadShare = 1;
    pHalo->fSpin = 0.25f; // a single head stands at the top
    for (float *pfPhase : {&pHalo->fRipple, &pHalo->afDrift[0], &pHalo->afDrift[1]})
        *pfPhase = RandomUnit(&random);
}

static void MoveHalo(Halo *pHalo, float fSeconds)
{
    const float *pfLook = pHalo->afLook, fHeads = std::max(pfLook[CONTROL_HEADS], 1.0f);
    if (pHalo->fHeadShare >= 1 && fHeads != pHalo->fHeads) {
        pHalo->fOldHeads = pHalo->fHeads;
        pHalo->fHeads = fHeads;
        pHalo->fHeadShare = 0;
    }
    pHalo->fHeadShare = std::min(pHalo->fHeadShare + fSeconds / 1.5f, 1.0f);
    AdvancePhase(&pHalo->fSpin, pfLook[CONTROL_SPIN] / 60, fSeconds);
    AdvancePhase(&pHalo->fRipple, 0.09f, fSeconds);
    AdvancePhase(&pHalo->afDrift[0], 0.023f, fSeconds);
    AdvancePhase(&pHalo->afDrift[1], 0.031f, fSeconds);
    FeedHistory(&pHalo->history, pfLook[CONTROL_LEVEL], fSeconds);
}

// The level at an angle from the first head, both in turns.
static float LevelAround(const Halo *pHalo, float fTurn, float fHeads, float fDelay)
{
    const float fFrom = 1 - std::fabs(2 * WrapUnit(fTurn * fHeads) - 1); // 0 at a head, 1 between two
    return LevelAgo(pHalo->history, fFrom * pHalo->afLook[CONTROL_MEMORY] + fDelay);
}

static float OutlineLevel(const Halo *pHalo, float fTurn, float fDelay)
{
    const float fShare = FoldUnit(0.5f * pHalo->fHeadShare);
    const float fLevel = LevelAround(pHalo, fTurn, pHalo->fHeads, fDelay);
    return fShare >= 1 ? fLevel : fLevel * fShare + LevelAround(pHalo, fTurn, pHalo->fOldHeads, fDelay) * (1 - fShare);
}

// In silence the ring still breathes.
static float RadiusAt(const Halo *pHalo, float fTurn, float fBase, float fLevel)
{
    const float fRipple =
        0.03f * SineTurn(3 * fTurn + pHalo->fRipple) + 0.02f * SineTurn(5 * fTurn - 2 * pHalo->fRipple);
    return std::max(fBase * (1 + fRipple + pHalo->afLook[CONTROL_SWING] * fLevel), 0.0f);
}

struct Ring {
    float x, y, fBase, fDelay, fTurns, fWeight;
};

static StrokePoint PointOfRing(const Halo *pHalo, const View &view, const Ring &ring, float fTurn, bool bOutline)
{
    const float *pfLook = pHalo->afLook, fLevel = OutlineLevel(pHalo, fTurn, ring.fDelay);
    const float fRadius = bOutline ? RadiusAt(pHalo, fTurn, ring.fBase, fLevel) : RadiusAt(pHalo, fTurn, ring.fBase, 0);
    const float fAngle = fTurn + pHalo->fSpin;
    const float fPlace = PlaceOfTurns(pfLook[CONTROL_PLACE] + ring.fTurns + pfLook[CONTROL_SPREAD] * fLevel);
    const float fThickness = 0.01f * pfLook[CONTROL_THICKNESS] * (0.6f + 0.8f * fLevel);
    return PointInView(view, ring.x + fRadius * CosineTurn(fAngle), ring.y + fRadius * SineTurn(fAngle), fThickness,
                       fPlace, ring.fWeight * (0.55f + 0.45f * fLevel));
}

static void DrawOutline(Halo *pHalo, const Canvas &canvas, const Paint &paint, const View &view, const Ring &ring)
{
    for (int32_t i = 0; i <= HALO_POINTS; i++)
        pHalo->aPoint[i] = PointOfRing(pHalo, view, ring, (float)(i % HALO_POINTS) / HALO_POINTS, true);
    const float fHardness = HardnessOf(pHalo->afLook[CONTROL_HARDNESS], 3);
    PaintCurve(canvas, paint, pHalo->aPoint, HALO_POINTS + 1, fHardness, ENDS_CLOSED);
}

static void DrawMarks(const Halo *pHalo, const Canvas &canvas, const Paint &paint, const View &view, const Ring &ring,
                      bool bBars)
{
    const float fHardness = HardnessOf(pHalo->afLook[CONTROL_HARDNESS], 3);
    for (int32_t i = 0; i < HALO_BARS; i++) {
        const float fTurn = (float)i / HALO_BARS;
        StrokePoint top = PointOfRing(pHalo, view, ring, fTurn, true);
        top.fRadius *= bBars ? 1 : 1.5f;
        StrokePoint root = bBars ? PointOfRing(pHalo, view, ring, fTurn, false) : top;
        root.fPlace *= 0.75f;
        PaintStreak(canvas, paint, bBars ? root : top, top, fHardness);
    }
}

static void DrawHalo(Halo *pHalo, const Canvas &canvas, const Paint &paint)
{
    const float *pfLook = pHalo->afLook;
    const View view = ViewOf(canvas);
    const float fRings = std::max(pfLook[CONTROL_RINGS], 1.0f);
    const uint32_t dwShape = ReadItem(pHalo->apControl[CONTROL_SHAPE]);
    Ring ring = {pfLook[CONTROL_DRIFT] * view.xReach * SineTurn(pHalo->afDrift[0]),
                 pfLook[CONTROL_DRIFT] * view.yReach * SineTurn(pHalo->afDrift[1]),
                 0,
                 0,
                 0,
                 0};
    for (int32_t i = 0; i < HALO_RINGS_MOST && (float)i < fRings; i++) {
        const float fInwards = (float)i / std::max(fRings, 2.0f);
        ring.fBase = 0.5f * pfLook[CONTROL_RADIUS] * (1 - 0.85f * fInwards);
        ring.fDelay = 0.12f * (float)i * std::min(pfLook[CONTROL_MEMORY], 4.0f);
        ring.fTurns = pfLook[CONTROL_SPREAD] * fInwards;
        ring.fWeight = std::min(fRings - (float)i, 1.0f);
        if (dwShape == SHAPE_LINE)
            DrawOutline(pHalo, canvas, paint, view, ring);
        else
            DrawMarks(pHalo, canvas, paint, view, ring, dwShape == SHAPE_BARS);
    }
}

static uint32_t Draw(Halo *pHalo, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pHalo->clock, ppi);
    EaseControls(pHalo->apControl, afEase, pHalo->afLook, fSeconds);
    MoveHalo(pHalo, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pHalo->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers > 0)
        DrawHalo(pHalo, canvas, paint);
    return 0;
}

STOCK_DRAWING_MODULE(Halo)
