// DEColorShift.cpp -- DEColorShift.dll, a drawing effect: red, green and blue of the picture drift apart
#include "../common/StockModule.h"
#include "../common/StockPaths.h"

enum { APART_REDBLUE, APART_GREEN, APART_ALL, APARTS };

enum {
    CONTROL_COLORS,
    CONTROL_DISTANCE,
    CONTROL_BEAT,
    CONTROL_TURN,
    CONTROL_SPREAD,
    CONTROL_TWIST,
    CONTROL_EDGES,
    CONTROL_KIND,
    CONTROLS
};

struct ShiftMotion {
    float fDistance, fTurn, fSpread, fTwist; // eased; heights, turns a second, part of the size, turns
};

struct ColorShift {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aColorRow[APARTS], aEdgeRow[EDGES_MODES], aKindRow[PICTURE_KINDS];
    DrawClock clock;
    ShiftMotion motion;
    float fAngle; // turns
    uint32_t nFrame;
    RemapSource source;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_RGB, u"Color Shift",
                   u"Red, green and blue of the picture drift apart");
}

static void AddControls(ColorShift *pShift, const ControlMaker &maker)
{
    static const char16_t *const aszColors[APARTS] = {u"Red and blue", u"Green", u"All three"};
    ControlRecord **ap = pShift->apControl;
    ap[CONTROL_COLORS] = AddItemSelect(maker, u"Shift\0Colors\0", u"Which colors leave their place", pShift->aColorRow,
                                       aszColors, APART_REDBLUE, FromFixed());
    ap[CONTROL_DISTANCE] =
        AddFloat(maker, u"Shift\0Distance\0",
                 u"How far they go, in percent of the picture's height; where the picture grows, four times that a "
                 u"second",
                 {0, 20}, {0.1f, 1}, 0.5f, FromWave(13000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Shift\0Beat\0", u"Percent that come on top, meant for sound", {0, 20},
                                {0, 2.2f}, 0, FromSound(4));
    ap[CONTROL_TURN] = AddFloat(maker, u"Shift\0Turn\0", u"Turns of the direction in a minute", {-60, 60}, {-6, 6}, 4,
                                FromWave(37000));
    ap[CONTROL_SPREAD] = AddFloat(maker, u"Lens\0Spread\0", u"Percent by which one color is larger than the other",
                                  {-20, 20}, {-1.5f, 1.5f}, 0.8f, FromWave(17000));
    ap[CONTROL_TWIST] = AddFloat(maker, u"Lens\0Twist\0", u"Degrees by which the colors turn against each other",
                                 {-30, 30}, {-1, 1}, 0, FromWave(29000));
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Picture\0Edges\0", u"What comes in over the edges of the picture",
                                      pShift->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    ap[CONTROL_KIND] = AddPictureKind(maker, pShift->aKindRow);
}

static ShiftMotion ReadMotion(const ColorShift *pShift)
{
    ControlRecord *const *ap = pShift->apControl;
    return {(ReadFloat(ap[CONTROL_DISTANCE]) + ReadFloat(ap[CONTROL_BEAT])) * 0.01f, ReadFloat(ap[CONTROL_TURN]) / 60,
            ReadFloat(ap[CONTROL_SPREAD]) * 0.01f, ReadFloat(ap[CONTROL_TWIST]) / 360};
}

static void Start(ColorShift *pShift, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pShift->clock = {};
    pShift->motion = ReadMotion(pShift);
    pShift->fAngle = RandomUnit(&random);
}

static void Advance(ColorShift *pShift, float fSeconds)
{
    const ShiftMotion target = ReadMotion(pShift);
    Approach(&pShift->motion.fDistance, target.fDistance, fSeconds, 0.06f);
    Approach(&pShift->motion.fTurn, target.fTurn, fSeconds, 0.5f);
    Approach(&pShift->motion.fSpread, target.fSpread, fSeconds, 0.3f);
    Approach(&pShift->motion.fTwist, target.fTwist, fSeconds, 0.3f);
    AdvancePhase(&pShift->fAngle, pShift->motion.fTurn, fSeconds);
}

// A color that moves: where it goes, and how much larger and turned it gets, as parts of the whole.
struct ColorWay {
    uint32_t dwMask;
    float fAngle, fLens; // turns, -1 to 1
};

static const ColorWay aWays[APARTS][3] = {{{0x00FF0000, 0, 1}, {0x000000FF, 0.5f, -1}, {}},
                                          {{0x0000FF00, 0, 1}, {}, {}},
                                          {{0x00FF0000, 0, 1}, {0x0000FF00, 0.3333f, 0}, {0x000000FF, 0.6667f, -1}}};

// fShare: how much of the whole way is gone in this frame.
static RemapPlan PlanOf(const ColorShift *pShift, const Canvas &canvas, const ColorWay &way, float fShare)
{
    const ShiftMotion &motion = pShift->motion;
    const float fLens = way.fLens * fShare, fWay = motion.fDistance * fShare * (float)canvas.nHeight;
    RemapPlan plan = TurnPlan(0.5f * (float)(canvas.nWidth - 1), 0.5f * (float)(canvas.nHeight - 1),
                              motion.fTwist * fLens, 1 + motion.fSpread * fLens);
    plan.x0 -= fWay * CosineTurn(pShift->fAngle + way.fAngle);
    plan.y0 -= fWay * SineTurn(pShift->fAngle + way.fAngle);
    return plan;
}

STOCK_WIDE static void TakeColor(const uint32_t *pdwMoved, int32_t nPixels, uint32_t dwMask,
                                 uint32_t *__restrict pdwPixel)
{
    for (int32_t i = 0; i < nPixels; i++)
        pdwPixel[i] = (pdwPixel[i] & ~dwMask) | (pdwMoved[i] & dwMask);
}

static void MoveColor(const Canvas &canvas, const RemapSource &source, const RemapLook &look, const RemapPlan &plan,
                      uint32_t dwMask)
{
    for (int32_t y = 0; y < canvas.nHeight; y++)
        for (int32_t x = 0; x < canvas.nWidth; x += REMAP_SPAN) {
            const int32_t nPixels = std::min(canvas.nWidth - x, REMAP_SPAN);
            uint32_t adwMoved[REMAP_SPAN];
            RemapPath path;
            LayLine(plan, x, y, 0, nPixels, &path);
            ReadPath(source, &path, look, x, y, nPixels, adwMoved);
            TakeColor(adwMoved, nPixels, dwMask, CanvasRow(canvas, y) + x);
        }
}

static uint32_t Draw(ColorShift *pShift, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pShift->clock, ppi);
    Advance(pShift, fSeconds);
    const bool bFresh = IsPictureFresh(pShift->apControl[CONTROL_KIND], ppi);
    const uint32_t dwEdges = ReadItem(pShift->apControl[CONTROL_EDGES]);
    if (canvas.bIndexed || (!bFresh && fSeconds <= 0) ||
        !TakeSource(&pShift->source, canvas, dwEdges, bFresh ? 0 : 0.5f))
        return 0;
    const RemapLook look = bFresh ? PlainLook(dwEdges) : TrailLook(dwEdges, pShift->nFrame++);
    for (const ColorWay &way : aWays[ReadItem(pShift->apControl[CONTROL_COLORS])])
        if (way.dwMask)
            MoveColor(canvas, pShift->source, look, PlanOf(pShift, canvas, way, bFresh ? 1 : 4 * fSeconds), way.dwMask);
    return 0;
}

static void Release(ColorShift *pShift)
{
    FreeSource(&pShift->source);
}

STOCK_DRAWING_MODULE(ColorShift)
