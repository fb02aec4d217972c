// DERipple.cpp -- DERipple.dll, a drawing effect: drops fall on the picture, of themselves and when it gets loud, and
// send rings of waves over it
#include "../common/StockModule.h"
#include "../common/StockPaths.h"

#define DROPS_MOST 12

enum {
    CONTROL_RAIN,
    CONTROL_BEAT,
    CONTROL_HEIGHT,
    CONTROL_LENGTH,
    CONTROL_SPEED,
    CONTROL_LIFE,
    CONTROL_EDGES,
    CONTROL_KIND,
    CONTROLS
};

struct Drop {
    float x, y;      // 0 to 1 over the picture
    float fAge;      // seconds
    float fRadius;   // heights: how far its ring has come
    float fStrength; // at the start; 0: no drop
};

struct Ripple {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aEdgeRow[EDGES_MODES], aKindRow[PICTURE_KINDS];
    DrawClock clock;
    StockRandom random;
    Drop aDrop[DROPS_MOST];
    float fHeight, fLength; // of the waves, eased; picture heights
    float fWait;            // mean waiting times until the next drop of the rain
    float fUsual, fQuiet;   // level that the beat had lately; seconds since its last drop
    uint32_t nFrame;
    RemapSource source;
    RemapGrid grid, before; // shifts of this frame and, where the picture grows, of the last one
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Ripple",
                   u"Drops send rings of waves over the picture, more of them when it gets loud");
}

static void AddControls(Ripple *pRipple, const ControlMaker &maker)
{
    ControlRecord **ap = pRipple->apControl;
    ap[CONTROL_RAIN] = AddFloat(maker, u"Drops\0Rain\0", u"Drops that fall in a minute whatever the sound", {0, 240},
                                {8, 40}, 20, FromPeriodic(9000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Drops\0Beat\0", u"A drop falls when this rises well above its usual level",
                                {0, 1}, {0, 1}, 0, FromSound(2));
    ap[CONTROL_HEIGHT] =
        AddFloat(maker, u"Waves\0Height\0", u"How far waves move the picture, in percent of its height", {0, 20},
                 {2, 5}, 3, FromWave(31000));
    ap[CONTROL_LENGTH] = AddFloat(maker, u"Waves\0Length\0", u"From crest to crest, in percent of the height", {4, 60},
                                  {9, 20}, 14, FromWave(43000));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Waves\0Speed\0", u"How fast rings widen, in heights a second", {0.05f, 3},
                                 {0.25f, 0.6f}, 0.4f, FromPeriodic(17000));
    ap[CONTROL_LIFE] = AddFloat(maker, u"Waves\0Life\0", u"Seconds until a ring has faded to a third", {0.1f, 10},
                                {0.8f, 2.5f}, 1.5f, FromRandom());
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Picture\0Edges\0", u"What waves bring in over the edges of the picture",
                                      pRipple->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    ap[CONTROL_KIND] = AddPictureKind(maker, pRipple->aKindRow);
}

static float ReadPercent(const Ripple *pRipple, int32_t iControl)
{
    return ReadFloat(pRipple->apControl[iControl]) * 0.01f;
}

static void Start(Ripple *pRipple, PlaneInfo *ppi)
{
    pRipple->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pRipple->clock = {};
    for (Drop &drop : pRipple->aDrop)
        drop = {};
    pRipple->fHeight = ReadPercent(pRipple, CONTROL_HEIGHT);
    pRipple->fLength = ReadPercent(pRipple, CONTROL_LENGTH);
    pRipple->fWait = pRipple->fQuiet = 0;
    pRipple->fUsual = ReadFloat(pRipple->apControl[CONTROL_BEAT]);
    FreeGrid(&pRipple->before);
}

// Takes the place of the oldest drop if there is no other.
static void LetFall(Ripple *pRipple, float fStrength)
{
    Drop *pDrop = pRipple->aDrop;
    for (Drop &drop : pRipple->aDrop)
        if (pDrop->fStrength > 0 && (drop.fStrength <= 0 || drop.fAge > pDrop->fAge))
            pDrop = &drop;
    *pDrop = {RandomUnit(&pRipple->random), RandomUnit(&pRipple->random), 0, 0, fStrength};
}

static void LetRain(Ripple *pRipple, float fSeconds)
{
    pRipple->fWait -= fSeconds * ReadFloat(pRipple->apControl[CONTROL_RAIN]) / 60;
    if (pRipple->fWait > 0 || fSeconds <= 0)
        return;
    pRipple->fWait = -std::log(1 - 0.95f * RandomUnit(&pRipple->random));
    LetFall(pRipple, RandomBetween(&pRipple->random, 0.4f, 0.8f));
}

static void FollowBeat(Ripple *pRipple, float fSeconds)
{
    const float fLevel = ReadFloat(pRipple->apControl[CONTROL_BEAT]);
    pRipple->fQuiet += fSeconds;
    if (fLevel > pRipple->fUsual + 0.12f && pRipple->fQuiet > 0.2f) {
        LetFall(pRipple, std::min(0.6f + 2 * (fLevel - pRipple->fUsual), 1.4f));
        pRipple->fQuiet = 0;
        pRipple->fUsual = fLevel;
    }
    Approach(&pRipple->fUsual, fLevel, fSeconds, fLevel < pRipple->fUsual ? 0.4f : 1.5f);
}

// What is left of a drop's waves.
static float StrengthOf(const Ripple *pRipple, const Drop &drop)
{
    const float fLife = std::max(ReadFloat(pRipple->apControl[CONTROL_LIFE]), 0.1f);
    return drop.fStrength * std::exp(-drop.fAge / fLife) * std::min(drop.fAge * 5, 1.0f);
}

static void Advance(Ripple *pRipple, float fSeconds)
{
    Approach(&pRipple->fHeight, ReadPercent(pRipple, CONTROL_HEIGHT), fSeconds, 0.5f);
    Approach(&pRipple->fLength, ReadPercent(pRipple, CONTROL_LENGTH), fSeconds, 1);
    const float fSpeed = ReadFloat(pRipple->apControl[CONTROL_SPEED]);
    for (Drop &drop : pRipple->aDrop) {
        drop.fAge += fSeconds;
        drop.fRadius += fSpeed * fSeconds;
        if (drop.fAge > 0.5f && StrengthOf(pRipple, drop) < 0.01f)
            drop = {};
    }
    LetRain(pRipple, fSeconds);
    FollowBeat(pRipple, fSeconds);
}

// A ring of waves; all in pixels.
struct Ring {
    float x, y, fRadius, fWidth;
    float fPerLength, fHeight;
};

static void AddRingRow(const RemapGrid &grid, const Ring &ring, int32_t iRow)
{
    const float fCell = (float)(1 << grid.nCellBits), dy = (float)iRow * fCell - ring.y;
    const float fOuter = ring.fRadius + ring.fWidth, fHalf2 = fOuter * fOuter - dy * dy;
    if (!(fHalf2 > 0))
        return;
    const float fHalf = std::sqrt(fHalf2), fLast = (float)(grid.nColumns - 1);
    const int32_t iFirst = (int32_t)std::clamp((ring.x - fHalf) / fCell, 0.0f, fLast);
    const int32_t iLast = (int32_t)std::clamp((ring.x + fHalf) / fCell + 1, 0.0f, fLast);
    for (int32_t i = iFirst; i <= iLast; i++) {
        const float dx = (float)i * fCell - ring.x, fFar = std::sqrt(dx * dx + dy * dy) + 1e-3f;
        const float fPlace = (fFar - ring.fRadius) / ring.fWidth, fInside = 1 - fPlace * fPlace;
        if (fInside <= 0)
            continue;
        // In the middle, where the direction turns over, the waves vanish.
        const float fWave = ring.fHeight * fInside * fInside * QuickSine((fFar - ring.fRadius) * ring.fPerLength) /
                            (fFar + 0.25f * ring.fWidth);
        const size_t iVertex = (size_t)iRow * (size_t)grid.nColumns + (size_t)i;
        grid.pfX[iVertex] += fWave * dx;
        grid.pfY[iVertex] += fWave * dy;
    }
}

static void FillGrid(const Ripple *pRipple, const RemapGrid &grid)
{
    const float fUnit = (float)grid.nHeight, fLength = std::max(pRipple->fLength * fUnit, 2.0f);
    std::fill_n(grid.pfX, VerticesOf(grid), 0.0f);
    std::fill_n(grid.pfY, VerticesOf(grid), 0.0f);
    for (const Drop &drop : pRipple->aDrop) {
        if (drop.fStrength <= 0)
            continue;
        const Ring ring = {drop.x * (float)grid.nWidth,
                           drop.y * fUnit,
                           drop.fRadius * fUnit,
                           1.8f * fLength,
                           1 / fLength,
                           pRipple->fHeight * fUnit * StrengthOf(pRipple, drop)};
        for (int32_t iRow = 0; iRow < grid.nRows; iRow++)
            AddRingRow(grid, ring, iRow);
    }
}

// A picture that grows has been moved by the last frame's shifts already: only the difference moves it on.
static bool KeepDifference(Ripple *pRipple, const Canvas &canvas)
{
    const RemapGrid &grid = pRipple->grid;
    if (!FitGrid(&pRipple->before, canvas))
        return false;
    for (size_t i = 0; i < VerticesOf(grid); i++) {
        const float x = grid.pfX[i], y = grid.pfY[i];
        grid.pfX[i] -= pRipple->before.pfX[i];
        grid.pfY[i] -= pRipple->before.pfY[i];
        pRipple->before.pfX[i] = x;
        pRipple->before.pfY[i] = y;
    }
    return true;
}

static uint32_t Draw(Ripple *pRipple, PlaneInfo *ppi, const Canvas &canvas)
{
    Advance(pRipple, StepSeconds(&pRipple->clock, ppi));
    const bool bFresh = IsPictureFresh(pRipple->apControl[CONTROL_KIND], ppi);
    const uint32_t dwEdges = ReadItem(pRipple->apControl[CONTROL_EDGES]);
    if (!FitGrid(&pRipple->grid, canvas))
        return 0;
    FillGrid(pRipple, pRipple->grid);
    if ((!bFresh && !KeepDifference(pRipple, canvas)) ||
        !TakeSource(&pRipple->source, canvas, dwEdges, bFresh ? 0 : 0.6f))
        return 0;
    ShiftCanvas(canvas, pRipple->source, bFresh ? PlainLook(dwEdges) : TrailLook(dwEdges, pRipple->nFrame++),
                pRipple->grid);
    return 0;
}

static void Release(Ripple *pRipple)
{
    FreeSource(&pRipple->source);
    FreeGrid(&pRipple->grid);
    FreeGrid(&pRipple->before);
}

STOCK_DRAWING_MODULE(Ripple)
