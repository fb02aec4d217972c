// Script.cpp -- invents glyphs out of stems, bowls, bars and waves, and lays them out in lines and circles
#include "Script.h"

#define LINE_PITCH 1.75f // glyph heights from line to line
#define MARGIN 0.08f     // units that lines keep from the edges

static void AddKnot(Stroke *pStroke, float x, float y)
{
    if (pStroke->nKnots < STROKE_KNOTS_MOST)
        pStroke->aKnot[pStroke->nKnots++] = {x, y};
}

static float PickHeight(StockRandom *pRandom)
{
    static const float afHeight[] = {0, 0.33f, 0.5f, 0.67f, 1};
    return afHeight[RandomBelow(pRandom, 5)];
}

// Upright, with a hook at the foot or at the head.
static void MakeStem(Stroke *pStroke, StockRandom *pRandom, float fWidth)
{
    const float x = fWidth * 0.5f * (float)RandomBelow(pRandom, 3);
    const float yTop = RandomBelow(pRandom, 4) ? 1 : 1.35f, yFoot = RandomBelow(pRandom, 4) ? 0 : -0.35f;
    const float xHook = RandomBelow(pRandom, 2) ? 0.28f : -0.28f;
    if (RandomBelow(pRandom, 2))
        AddKnot(pStroke, x + xHook, yTop - 0.05f);
    AddKnot(pStroke, x, yTop);
    AddKnot(pStroke, x, 0.5f);
    AddKnot(pStroke, x, yFoot);
    if (RandomBelow(pRandom, 2))
        AddKnot(pStroke, x - xHook, yFoot + 0.05f);
}

// Part of an oval.
static void MakeBowl(Stroke *pStroke, StockRandom *pRandom, float fWidth)
{
    const bool bSmall = RandomBelow(pRandom, 2) != 0;
    const float fTall = bSmall ? 0.3f : 0.5f, yMiddle = bSmall && RandomBelow(pRandom, 2) ? 0.7f : fTall;
    const float fStart = 0.25f * (float)RandomBelow(pRandom, 4), fSweep = RandomBelow(pRandom, 2) ? 0.85f : 0.6f;
    const float fHand = RandomBelow(pRandom, 3) ? 1.0f : -1.0f;
    for (int32_t i = 0; i < STROKE_KNOTS_MOST; i++) {
        const float fTurn = fStart + fHand * fSweep * (float)i / (STROKE_KNOTS_MOST - 1);
        AddKnot(pStroke, fWidth * (0.5f + 0.5f * CosineTurn(fTurn)), yMiddle + fTall * SineTurn(fTurn));
    }
}

static void MakeBar(Stroke *pStroke, StockRandom *pRandom, float fWidth)
{
    const float y = PickHeight(pRandom), yEnd = RandomBelow(pRandom, 3) ? y : PickHeight(pRandom);
    AddKnot(pStroke, -0.05f, y);
    AddKnot(pStroke, 0.5f * fWidth, 0.5f * (y + yEnd) + RandomBetween(pRandom, -0.12f, 0.12f));
    AddKnot(pStroke, fWidth + 0.05f, yEnd);
}

static void MakeWave(Stroke *pStroke, StockRandom *pRandom, float fWidth)
{
    const float y = PickHeight(pRandom), fSwing = RandomBelow(pRandom, 2) ? 0.35f : -0.35f;
    for (int32_t i = 0; i < 5; i++)
        AddKnot(pStroke, fWidth * 0.25f * (float)i, y + (i % 2 ? fSwing : -0.4f * fSwing) * (i == 3 ? -1.0f : 1.0f));
}

static void MakeDot(Stroke *pStroke, StockRandom *pRandom, float fWidth)
{
    const float x = fWidth * RandomUnit(pRandom), y = RandomBelow(pRandom, 3) ? 1.3f : 0.5f;
    AddKnot(pStroke, x, y);
    AddKnot(pStroke, x + 0.03f, y - 0.05f);
}

static void MeasureStroke(Stroke *pStroke)
{
    pStroke->fLength = 0.15f; // to set the pen down
    for (int32_t i = 1; i < pStroke->nKnots; i++)
        pStroke->fLength +=
            std::hypot(pStroke->aKnot[i].x - pStroke->aKnot[i - 1].x, pStroke->aKnot[i].y - pStroke->aKnot[i - 1].y);
}

typedef void (*MakeStrokeFn)(Stroke *pStroke, StockRandom *pRandom, float fWidth);

static Glyph InventGlyph(StockRandom *pRandom)
{
    // A glyph begins with a body; what follows is lighter.
    static const MakeStrokeFn apfnBody[] = {MakeStem, MakeStem, MakeBowl, MakeBowl, MakeWave};
    static const MakeStrokeFn apfnMore[] = {MakeBar, MakeBar, MakeBowl, MakeStem, MakeDot, MakeWave};
    Glyph glyph = {};
    glyph.fWidth = RandomBetween(pRandom, 0.45f, 0.85f);
    glyph.nStrokes = 2 + (int32_t)RandomBelow(pRandom, GLYPH_STROKES_MOST - 1);
    for (int32_t i = 0; i < glyph.nStrokes; i++) {
        const MakeStrokeFn pfnMake = i == 0 ? apfnBody[RandomBelow(pRandom, 5)] : apfnMore[RandomBelow(pRandom, 6)];
        pfnMake(&glyph.aStroke[i], pRandom, glyph.fWidth);
        MeasureStroke(&glyph.aStroke[i]);
        glyph.fLength += glyph.aStroke[i].fLength;
    }
    return glyph;
}

void InventGlyphs(Glyph (&aGlyph)[SCRIPT_GLYPHS], StockRandom *pRandom)
{
    for (Glyph &glyph : aGlyph)
        glyph = InventGlyph(pRandom);
}

Knot PointOfStroke(const Stroke &stroke, float fAlong, float fCurl)
{
    const float f = std::clamp(fAlong, 0.0f, 1.0f) * (float)(stroke.nKnots - 1);
    const int32_t i = std::min((int32_t)f, stroke.nKnots - 2);
    const float t = f - (float)i;
    const Knot &b = stroke.aKnot[i], &c = stroke.aKnot[i + 1];
    const Knot &a = stroke.aKnot[std::max(i - 1, 0)], &d = stroke.aKnot[std::min(i + 2, stroke.nKnots - 1)];
    // Catmull and Rom's curve through the knots; the straight line has no bends but those at the knots.
    const auto Through = [&](float fA, float fB, float fC, float fD) {
        return fB + 0.5f * t * (fC - fA + t * (2 * fA - 5 * fB + 4 * fC - fD + t * (3 * (fB - fC) + fD - fA)));
    };
    const Knot curve = {Through(a.x, b.x, c.x, d.x), Through(a.y, b.y, c.y, d.y)};
    const Knot line = {b.x + (c.x - b.x) * t, b.y + (c.y - b.y) * t};
    return {line.x + (curve.x - line.x) * fCurl, line.y + (curve.y - line.y) * fCurl};
}

// ---- Layouts

static bool IsRound(uint32_t dwLayout)
{
    return dwLayout == LAYOUT_CIRCLES || dwLayout == LAYOUT_SPIRAL;
}

// Lines run from the left to the right and go down; columns run down and go to the left.
static Spot SpotOfLine(const View &view, bool bColumns, const Place &place)
{
    if (bColumns)
        return {view.xReach - MARGIN - place.fLine, view.yReach - MARGIN - place.fAlong, -0.25f};
    return {-view.xReach + MARGIN + place.fAlong, view.yReach - MARGIN - place.fLine, 0};
}

Spot SpotOfPlace(const View &view, uint32_t dwLayout, const Place &place)
{
    if (!IsRound(dwLayout))
        return SpotOfLine(view, dwLayout == LAYOUT_COLUMNS, place);
    const float fTurn = 0.25f - place.fAlong;
    return {place.fLine * CosineTurn(fTurn), place.fLine * SineTurn(fTurn), -place.fAlong};
}

static float OutermostCircle(const View &view, float fHeight)
{
    return std::max(std::max(view.xReach, view.yReach) * 0.95f - fHeight, fHeight);
}

static void AdvanceAround(const View &view, bool bSpiral, Place *pPlace, float fWidth, float fHeight)
{
    const float fInnermost = 1.2f * fHeight, fTurn = fWidth / (6.2831853f * std::max(pPlace->fLine, fInnermost));
    pPlace->fAlong += fTurn;
    if (bSpiral)
        pPlace->fLine -= LINE_PITCH * fHeight * fTurn;
    else if (pPlace->fAlong >= 1)
        pPlace->fLine -= LINE_PITCH * fHeight;
    pPlace->fAlong = WrapUnit(pPlace->fAlong);
    if (pPlace->fLine < fInnermost)
        pPlace->fLine = OutermostCircle(view, fHeight);
}

void AdvancePlace(const View &view, uint32_t dwLayout, Place *pPlace, float fWidth, float fHeight)
{
    if (IsRound(dwLayout)) {
        AdvanceAround(view, dwLayout == LAYOUT_SPIRAL, pPlace, fWidth, fHeight);
        return;
    }
    const bool bColumns = dwLayout == LAYOUT_COLUMNS;
    const float fLong = 2 * (bColumns ? view.yReach : view.xReach) - 2 * MARGIN;
    const float fDeep = 2 * (bColumns ? view.xReach : view.yReach) - 2 * MARGIN;
    pPlace->fAlong += fWidth;
    if (pPlace->fAlong + fHeight > fLong) {
        pPlace->fAlong = 0;
        pPlace->fLine += LINE_PITCH * fHeight;
    }
    if (pPlace->fLine > fDeep || pPlace->fLine < fHeight)
        pPlace->fLine = fHeight;
}

Place FirstPlace(const View &view, uint32_t dwLayout, float fShare)
{
    if (IsRound(dwLayout))
        return {WrapUnit(fShare), (0.85f - 0.5f * fShare) * std::min(view.xReach, view.yReach)};
    const bool bColumns = dwLayout == LAYOUT_COLUMNS;
    return {WrapUnit(3 * fShare) * (bColumns ? view.yReach : view.xReach),
            1.7f * fShare * (bColumns ? view.xReach : view.yReach)};
}
