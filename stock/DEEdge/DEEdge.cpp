// DEEdge.cpp -- DEEdge.dll, a drawing effect: outlines or moving contour lines of the picture, with a glow
#include "EdgeMap.h"

#include "../common/StockModule.h"

enum { KIND_EDGES, KIND_CONTOURS, KINDS };
enum { INK_OWN, INK_PALETTE, INKS };

enum {
    CONTROL_KIND,
    CONTROL_THICKNESS,
    CONTROL_GAIN,
    CONTROL_CONTOURS,
    CONTROL_FLOW,
    CONTROL_GLOW,
    CONTROL_RADIUS,
    CONTROL_KEEP,
    CONTROL_INK,
    CONTROL_PLACE,
    CONTROL_UNFOLDS,
    CONTROLS
};

struct Edge {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aKindRow[KINDS], aInkRow[INKS], aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    float fThickness, fGain, fContours, fGlow, fRadius, fKeep, fPlace; // eased
    float fFlowPhase;
    uint32_t nFrame;
    EdgeMap map;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Edge",
                   u"Glowing outlines or moving contour lines of the picture");
}

static void AddLineControls(Edge *pEdge, const ControlMaker &maker)
{
    static const char16_t *const aszKind[KINDS] = {u"Edges", u"Contours"};
    ControlRecord **ap = pEdge->apControl;
    ap[CONTROL_KIND] = AddItemSelect(maker, u"Lines\0Kind\0", u"Edges of shapes, or lines of even brightness that move",
                                     pEdge->aKindRow, aszKind, KIND_EDGES, FromFixed());
    ap[CONTROL_THICKNESS] = AddFloat(maker, u"Lines\0Thickness\0", u"In percent of the picture's height", {0.05f, 3},
                                     {0.25f, 1}, 0.5f, FromSound(8));
    ap[CONTROL_GAIN] = AddFloat(maker, u"Lines\0Sensitivity\0", u"How faint an edge still gets a full line", {0, 1},
                                {0.35f, 0.7f}, 0.5f, FromWave(29000));
    ap[CONTROL_CONTOURS] = AddFloat(maker, u"Lines\0Contours\0", u"Contour lines from dark to bright", {1, 40}, {4, 12},
                                    7, FromWave(47000));
    ap[CONTROL_FLOW] = AddFloat(maker, u"Lines\0Flow\0", u"Contour lines that pass in a second", {-8, 8}, {-0.8f, 1.2f},
                                0.5f, FromWave(37000));
    SetDependsOn(ap[CONTROL_GAIN], ap[CONTROL_KIND], DEPENDOP_EQUAL, KIND_EDGES);
    SetDependsOn(ap[CONTROL_CONTOURS], ap[CONTROL_KIND], DEPENDOP_EQUAL, KIND_CONTOURS);
    SetDependsOn(ap[CONTROL_FLOW], ap[CONTROL_KIND], DEPENDOP_EQUAL, KIND_CONTOURS);
}

static void AddControls(Edge *pEdge, const ControlMaker &maker)
{
    static const char16_t *const aszInk[INKS] = {u"Of the picture", u"From the palette"};
    ControlRecord **ap = pEdge->apControl;
    AddLineControls(pEdge, maker);
    ap[CONTROL_GLOW] =
        AddFloat(maker, u"Glow\0Strength\0", u"Light around the lines", {0, 4}, {0.3f, 2}, 1, FromSound(5));
    ap[CONTROL_RADIUS] = AddFloat(maker, u"Glow\0Radius\0", u"How far it shines, in percent of the picture's height",
                                  {0.5f, 20}, {1.5f, 5}, 3, FromFixed());
    ap[CONTROL_KEEP] = AddFloat(maker, u"Picture\0Keep\0", u"How much is left of the picture between the lines", {0, 1},
                                {0, 0.6f}, 0.25f, FromWave(41000));
    ap[CONTROL_INK] = AddItemSelect(maker, u"Color\0Ink\0", u"Where the lines have their color from", pEdge->aInkRow,
                                    aszInk, INK_OWN, FromRandom());
    ap[CONTROL_PLACE] = AddFloat(maker, u"Color\0Place\0", u"Where in the palette the color of the lines lies", {0, 1},
                                 {0.5f, 1}, 0.85f, FromWave(19000));
    SetDependsOn(ap[CONTROL_PLACE], ap[CONTROL_INK], DEPENDOP_EQUAL, INK_PALETTE);
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Picture\0Unfolds\0", pEdge->aUnfoldsRow);
}

// fSeconds: infinite at the start, when there is nothing to glide from.
static void EaseControls(Edge *pEdge, float fSeconds)
{
    const auto Ease = [&](float *pfValue, int32_t iControl, float fTimeConstant) {
        Approach(pfValue, ReadFloat(pEdge->apControl[iControl]), fSeconds, fTimeConstant);
    };
    Ease(&pEdge->fThickness, CONTROL_THICKNESS, 0.1f);
    Ease(&pEdge->fGain, CONTROL_GAIN, 0.3f);
    Ease(&pEdge->fContours, CONTROL_CONTOURS, 1);
    Ease(&pEdge->fGlow, CONTROL_GLOW, 0.08f);
    Ease(&pEdge->fRadius, CONTROL_RADIUS, 0.3f);
    Ease(&pEdge->fKeep, CONTROL_KEEP, 0.3f);
    Ease(&pEdge->fPlace, CONTROL_PLACE, 0.3f);
}

static void Start(Edge *pEdge, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pEdge->fFlowPhase = RandomUnit(&random);
    pEdge->clock = {};
    EaseControls(pEdge, INFINITY);
}

static EdgeLook LookOf(const Edge *pEdge, const Canvas &canvas)
{
    const bool bContours = ReadItem(pEdge->apControl[CONTROL_KIND]) == KIND_CONTOURS;
    EdgeLook look = {};
    look.nReach = (int32_t)(0.5f * PercentOfHeight(canvas, pEdge->fThickness) + 0.5f);
    look.fGain = bContours ? 1.5f : 0.5f * std::exp2(7 * pEdge->fGain);
    look.fThreshold = bContours ? 40 : 2 + 14 * (1 - pEdge->fGain);
    for (int32_t i = 0; i < 256; i++) {
        // Between two contour lines the level is low or high, turn by turn, and steep where a line runs.
        const float fTurns = 0.5f * ((float)i * (1 / 255.0f) * pEdge->fContours + pEdge->fFlowPhase * 2);
        const float fSteep = std::clamp(0.5f + 2.5f * SineTurn(fTurns), 0.0f, 1.0f);
        look.abLevel[i] = (uint8_t)(bContours ? fSteep * 255 : (float)i);
    }
    return look;
}

// ---- Painting: what is kept of the picture, and the ink as far as it covers

struct EdgePaint {
    uint16_t awCover[256]; // in 1/256, for a cover of the map
    uint16_t wKeep;        // in 1/256
    bool bOwnInk;
    uint32_t dwInk; // index or color
};

static EdgePaint PaintOf(const Edge *pEdge, const Canvas &canvas, float fUnfolded)
{
    EdgePaint paint = {};
    for (int32_t i = 0; i < 256; i++)
        paint.awCover[i] = (uint16_t)(UnfoldShare((float)i * (1 / 255.0f), fUnfolded) * 256);
    paint.wKeep = (uint16_t)((1 - UnfoldShare(1 - pEdge->fKeep, fUnfolded)) * 256 + 0.5f);
    paint.bOwnInk = ReadItem(pEdge->apControl[CONTROL_INK]) == INK_OWN;
    paint.dwInk = canvas.bIndexed ? (uint32_t)(pEdge->fPlace * (float)(canvas.nColors - 1) + 0.5f)
                                  : ColorAt(canvas, pEdge->fPlace);
    return paint;
}

// pwCover: for each pixel, in 1/256.
STOCK_WIDE static void PaintIndexRow(const EdgePaint &paint, const uint16_t *pwCover, int32_t nWidth, uint32_t dwTop,
                                     uint32_t dwRounding, uint32_t *__restrict pdwRow)
{
    const uint32_t dwKeep = paint.wKeep, dwOtherInk = paint.dwInk;
    const bool bOwnInk = paint.bOwnInk;
    for (int32_t x = 0; x < nWidth; x++) {
        const uint32_t dwOld = pdwRow[x] < dwTop ? pdwRow[x] : dwTop, dwInk = bOwnInk ? dwOld : dwOtherInk;
        const uint32_t dwKept = dwOld * dwKeep * (256u - pwCover[x]);
        pdwRow[x] = (dwKept + (dwInk * pwCover[x] << 8) + ((dwRounding + (uint32_t)x * ROUNDING_X) & 65535)) >> 16;
    }
}

// A channel, or two with eight bits between them.
static inline uint32_t PaintedChannels(uint32_t dwOld, uint32_t dwInk, uint32_t dwKeep, uint32_t dwCover,
                                       uint32_t dwRounding, uint32_t dwMask)
{
    const uint32_t dwKept = (dwOld * dwKeep + dwRounding) >> 8 & dwMask;
    return (dwKept * (256 - dwCover) + dwInk * dwCover + dwRounding) >> 8 & dwMask;
}

STOCK_WIDE static void PaintColorRow(const EdgePaint &paint, const uint16_t *pwCover, int32_t nWidth,
                                     uint32_t dwRounding, uint32_t *__restrict pdwRow)
{
    const uint32_t dwKeep = paint.wKeep, dwOtherInk = paint.dwInk, dwTwo = dwRounding * 0x00010001u;
    const bool bOwnInk = paint.bOwnInk;
    for (int32_t x = 0; x < nWidth; x++) {
        const uint32_t dwOld = pdwRow[x], dwInk = bOwnInk ? dwOld : dwOtherInk, dwCover = pwCover[x];
        const uint32_t dwOuter = PaintedChannels(dwOld & 0xFF00FF, dwInk & 0xFF00FF, dwKeep, dwCover, dwTwo, 0xFF00FF);
        const uint32_t dwGreen = PaintedChannels(dwOld >> 8 & 255, dwInk >> 8 & 255, dwKeep, dwCover, dwRounding, 255);
        pdwRow[x] = (dwOld & 0xFF000000u) | dwOuter | dwGreen << 8;
    }
}

static uint32_t Draw(Edge *pEdge, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pEdge->clock, ppi);
    EaseControls(pEdge, fSeconds);
    AdvancePhase(&pEdge->fFlowPhase, 0.5f * ReadFloat(pEdge->apControl[CONTROL_FLOW]), fSeconds);
    const float fUnfolded = UnfoldSeconds(ppi, ReadItem(pEdge->apControl[CONTROL_UNFOLDS]), fSeconds);
    if (fUnfolded <= 0 || !FitEdgeMap(&pEdge->map, canvas))
        return 0;
    MarkEdges(&pEdge->map, canvas, LookOf(pEdge, canvas));
    if (pEdge->fGlow > 0.01f)
        AddEdgeGlow(&pEdge->map, PercentOfHeight(canvas, pEdge->fRadius), pEdge->fGlow, pEdge->nFrame);
    const EdgePaint paint = PaintOf(pEdge, canvas, fUnfolded);
    const uint8_t *pbCover = pEdge->map.pbCover;
    uint16_t *pwCover = pEdge->map.reduced.pwLine;
    for (int32_t y = 0; y < canvas.nHeight; y++, pbCover += canvas.nWidth) {
        for (int32_t x = 0; x < canvas.nWidth; x++)
            pwCover[x] = paint.awCover[pbCover[x]];
        if (canvas.bIndexed)
            PaintIndexRow(paint, pwCover, canvas.nWidth, (uint32_t)canvas.nColors - 1, RoundingStart(y, pEdge->nFrame),
                          CanvasRow(canvas, y));
        else
            PaintColorRow(paint, pwCover, canvas.nWidth, RoundingByte(y, pEdge->nFrame), CanvasRow(canvas, y));
    }
    pEdge->nFrame++;
    return 0;
}

static void Release(Edge *pEdge)
{
    FreeEdgeMap(&pEdge->map);
}

STOCK_DRAWING_MODULE(Edge)
