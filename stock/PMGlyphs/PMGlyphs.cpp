// PMGlyphs.cpp -- PMGlyphs.dll, a painter: hands that write an invented script, stroke by stroke
#include "Script.h"

#include "../common/StockModule.h"

#define HANDS_MOST 4
#define WRITTEN_MOST 160 // glyphs that stay inked
#define STROKE_POINTS 25

enum {
    CONTROL_LAYOUT,
    CONTROL_HEIGHT,
    CONTROL_CURL,
    CONTROL_SLANT,
    CONTROL_HANDS,
    CONTROL_SPEED,
    CONTROL_HOLD,
    CONTROL_TURN,
    CONTROL_CARRY,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {0, 0, 1, 1.5f, 0, 0.2f, 0.5f, 1, 0, 0.1f, 0.5f, 0.4f, 1.5f, 0};

struct Written {
    int32_t iGlyph;
    Spot spot;
    float fHeight; // units
    float fDone;   // glyph heights of strokes that are written
    float fAge;    // seconds since it was finished
    float fTurns;  // color against the place
    float fTurn;   // of its round layout
    bool bStands;
};

struct Hand {
    Place place;
    int32_t iWritten; // the glyph that it writes
    bool bWrites;
};

struct Glyphs {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aLayoutRow[LAYOUTS], aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    StockRandom random;
    Glyph aGlyph[SCRIPT_GLYPHS];
    Hand aHand[HANDS_MOST];
    Written aWritten[WRITTEN_MOST];
    int32_t iNext;     // the oldest of them
    uint32_t dwLayout; // that the hands are in
    float fTurn;       // of round layouts, turns
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Glyphs",
                   u"Hands that write an invented script, on lines or in circles");
}

static void AddControls(Glyphs *pGlyphs, const ControlMaker &maker)
{
    static const char16_t *const aszLayout[LAYOUTS] = {u"Lines", u"Columns", u"Circles", u"Spiral"};
    ControlRecord **ap = pGlyphs->apControl;
    ap[CONTROL_LAYOUT] = AddItemSelect(maker, u"Script\0Layout\0", u"How the writing runs over the picture",
                                       pGlyphs->aLayoutRow, aszLayout, LAYOUT_LINES, FromRandom());
    ap[CONTROL_HEIGHT] = AddFloat(maker, u"Script\0Height\0", u"Of the glyphs, in percent of the picture's height",
                                  {2, 40}, {6, 13}, 8, FromPeriodic(9000));
    ap[CONTROL_CURL] = AddFloat(maker, u"Script\0Curl\0", u"0 for strokes with corners, 1 for round ones", {0, 1},
                                {0, 1}, 0.8f, FromWave(37000));
    ap[CONTROL_SLANT] = AddFloat(maker, u"Script\0Slant\0", u"How far the glyphs lean over", {-1, 1}, {-0.1f, 0.4f},
                                 0.15f, FromWave(29000));
    ap[CONTROL_HANDS] = AddInteger(maker, u"Writing\0Hands\0", u"How many write at a time", {1, HANDS_MOST}, {2, 4}, 3,
                                   FromPeriodic(23000));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Writing\0Speed\0", u"Glyphs that each hand writes in a second", {0, 20},
                                 {1.2f, 6}, 3, FromSound(8));
    ap[CONTROL_HOLD] = AddFloat(maker, u"Writing\0Hold\0", u"Seconds that the ink of a glyph stays fresh", {0, 12},
                                {2, 6}, 4, FromWave(41000));
    ap[CONTROL_TURN] = AddFloat(maker, u"Writing\0Turn\0", u"Turns of circles and spirals in a minute", {-20, 20},
                                {-2, 2}, 1, FromWave(47000));
    ap[CONTROL_CARRY] =
        AddBoolean(maker, u"Writing\0Carry\0",
                   u"What is written turns too; off, it stays where it was written and leaves clean traces", 0.5f, true,
                   FromFixed());
    SetDependsOn(ap[CONTROL_TURN], ap[CONTROL_LAYOUT], DEPENDOP_GREATEREQUAL, LAYOUT_CIRCLES);
    SetDependsOn(ap[CONTROL_CARRY], ap[CONTROL_LAYOUT], DEPENDOP_GREATEREQUAL, LAYOUT_CIRCLES);
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of the pen, in percent of the picture's height", {0.5f, 1.1f}, 0.8f, FromSound(6));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette fresh ink lies");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far apart the colors of the glyphs lie");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pGlyphs->aPaintRow, PAINT_OVER);
}

static void Start(Glyphs *pGlyphs, PlaneInfo *ppi)
{
    pGlyphs->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pGlyphs->clock = {};
    SettleControls(pGlyphs->apControl, pGlyphs->afLook);
    InventGlyphs(pGlyphs->aGlyph, &pGlyphs->random);
    std::fill_n(pGlyphs->aWritten, WRITTEN_MOST, Written{});
    pGlyphs->iNext = 0;
    pGlyphs->dwLayout = LAYOUTS; // the first frame places the hands
    pGlyphs->fTurn = 0;
}

static void PlaceHands(Glyphs *pGlyphs, const View &view, uint32_t dwLayout)
{
    pGlyphs->dwLayout = dwLayout;
    const float fFirst = RandomUnit(&pGlyphs->random);
    for (int32_t i = 0; i < HANDS_MOST; i++) // however many write, they are spread well
        pGlyphs->aHand[i] = {FirstPlace(view, dwLayout, WrapUnit(fFirst + 0.618f * (float)i)), 0, false};
}

static void BeginGlyph(Glyphs *pGlyphs, const View &view, Hand *pHand)
{
    StockRandom *pRandom = &pGlyphs->random;
    const float fHeight = 0.01f * ReadFloat(pGlyphs->apControl[CONTROL_HEIGHT]);
    if (RandomBelow(pRandom, 6) == 0) // between words
        AdvancePlace(view, pGlyphs->dwLayout, &pHand->place, 0.7f * fHeight, fHeight);
    Written glyph = {};
    glyph.iGlyph = (int32_t)RandomBelow(pRandom, SCRIPT_GLYPHS);
    glyph.fHeight = fHeight;
    glyph.spot = SpotOfPlace(view, pGlyphs->dwLayout, pHand->place);
    glyph.fTurns = RandomBetween(pRandom, -0.5f, 0.5f);
    glyph.fTurn = pGlyphs->fTurn;
    glyph.bStands = true;
    pHand->iWritten = pGlyphs->iNext;
    pHand->bWrites = true;
    pGlyphs->aWritten[pGlyphs->iNext] = glyph;
    pGlyphs->iNext = (pGlyphs->iNext + 1) % WRITTEN_MOST;
    const float fWidth = pGlyphs->aGlyph[glyph.iGlyph].fWidth + 0.4f;
    AdvancePlace(view, pGlyphs->dwLayout, &pHand->place, fWidth * fHeight, fHeight);
}

static void Write(Glyphs *pGlyphs, const View &view, Hand *pHand, float fSeconds)
{
    if (!pHand->bWrites)
        BeginGlyph(pGlyphs, view, pHand);
    Written *pWritten = &pGlyphs->aWritten[pHand->iWritten];
    const float fLength = pGlyphs->aGlyph[pWritten->iGlyph].fLength;
    pWritten->fDone += pGlyphs->afLook[CONTROL_SPEED] * fLength * fSeconds;
    pHand->bWrites = pWritten->fDone < fLength;
}

static Knot KnotOnPicture(const Glyphs *pGlyphs, const Written &written, const Knot &knot)
{
    const float fAngle = written.spot.fAngle, c = CosineTurn(fAngle), s = SineTurn(fAngle);
    const float x = written.fHeight * (knot.x + pGlyphs->afLook[CONTROL_SLANT] * knot.y), y = written.fHeight * knot.y;
    const bool bRound = pGlyphs->dwLayout == LAYOUT_CIRCLES || pGlyphs->dwLayout == LAYOUT_SPIRAL;
    const float fTurn = bRound ? written.fTurn : 0, cTurn = CosineTurn(fTurn), sTurn = SineTurn(fTurn);
    const float xAll = written.spot.x + x * c - y * s, yAll = written.spot.y + x * s + y * c;
    return {xAll * cTurn - yAll * sTurn, xAll * sTurn + yAll * cTurn};
}

// fShare: 0 to 1, how much of it is written.
static void DrawStroke(const Glyphs *pGlyphs, const Canvas &canvas, const Paint &paint, const View &view,
                       const Written &written, const Stroke &stroke, float fShare, float fWeight)
{
    const float *pfLook = pGlyphs->afLook;
    // The pen is as thick as it should be, but no thicker than small glyphs bear.
    const float fRadius = std::min(0.01f * pfLook[CONTROL_THICKNESS], 0.13f * written.fHeight);
    const float fTurns = pfLook[CONTROL_PLACE] + pfLook[CONTROL_SPREAD] * written.fTurns;
    const int32_t nPoints = std::clamp((int32_t)(fShare * (float)stroke.nKnots * 4) + 2, 2, STROKE_POINTS);
    StrokePoint aPoint[STROKE_POINTS];
    for (int32_t i = 0; i < nPoints; i++) {
        const float fAlong = fShare * (float)i / (float)(nPoints - 1);
        const Knot knot = KnotOnPicture(pGlyphs, written, PointOfStroke(stroke, fAlong, pfLook[CONTROL_CURL]));
        const float fPress = 0.75f + 0.5f * FoldUnit(fAlong) - 0.2f * fAlong; // a stroke swells and thins out
        aPoint[i] = PointInView(view, knot.x, knot.y, fRadius * fPress, PlaceOfTurns(fTurns + 0.15f * fAlong), fWeight);
    }
    PaintCurve(canvas, paint, aPoint, nPoints, HardnessOf(pfLook[CONTROL_HARDNESS], 3), ENDS_ROUND);
}

static void DrawGlyph(const Glyphs *pGlyphs, const Canvas &canvas, const Paint &paint, const View &view,
                      const Written &written)
{
    const Glyph &glyph = pGlyphs->aGlyph[written.iGlyph];
    const float fFresh = 1 - written.fAge / std::max(pGlyphs->afLook[CONTROL_HOLD], 0.05f);
    float fLeft = written.fDone;
    for (int32_t i = 0; i < glyph.nStrokes && fLeft > 0; i++) {
        const Stroke &stroke = glyph.aStroke[i];
        const float fShare = std::min(fLeft / stroke.fLength, 1.0f);
        DrawStroke(pGlyphs, canvas, paint, view, written, stroke, fShare, 0.75f * std::clamp(fFresh, 0.0f, 1.0f));
        fLeft -= stroke.fLength;
    }
}

static void Turn(Glyphs *pGlyphs, float fSeconds)
{
    const float fSpeed = pGlyphs->afLook[CONTROL_TURN] / 60;
    AdvancePhase(&pGlyphs->fTurn, fSpeed, fSeconds);
    if (ReadBoolean(pGlyphs->apControl[CONTROL_CARRY]))
        for (Written &written : pGlyphs->aWritten)
            AdvancePhase(&written.fTurn, fSpeed, fSeconds);
}

static uint32_t Draw(Glyphs *pGlyphs, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pGlyphs->clock, ppi);
    EaseControls(pGlyphs->apControl, afEase, pGlyphs->afLook, fSeconds);
    Turn(pGlyphs, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pGlyphs->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return 0;
    const View view = ViewOf(canvas);
    const uint32_t dwLayout = ReadItem(pGlyphs->apControl[CONTROL_LAYOUT]);
    if (dwLayout != pGlyphs->dwLayout)
        PlaceHands(pGlyphs, view, dwLayout);
    for (int32_t i = 0; i < std::clamp(ReadInteger(pGlyphs->apControl[CONTROL_HANDS]), 1, HANDS_MOST); i++)
        Write(pGlyphs, view, &pGlyphs->aHand[i], fSeconds);
    for (Written &written : pGlyphs->aWritten) {
        if (!written.bStands)
            continue;
        DrawGlyph(pGlyphs, canvas, paint, view, written);
        if (written.fDone >= pGlyphs->aGlyph[written.iGlyph].fLength)
            written.fAge += fSeconds;
        written.bStands = written.fAge < std::max(pGlyphs->afLook[CONTROL_HOLD], 0.05f);
    }
    return 0;
}

STOCK_DRAWING_MODULE(Glyphs)
