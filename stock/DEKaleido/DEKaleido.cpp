// DEKaleido.cpp -- DEKaleido.dll, a drawing effect: one sector of the picture stands all around a middle
//
// The sector that is shown keeps its own pixels, so that a picture which is folded already is not changed again.
#include "../common/StockModule.h"
#include "../common/StockPaths.h"

#define SECTORS_MOST 24

enum {
    CONTROL_SECTORS,
    CONTROL_MIRROR,
    CONTROL_TURN,
    CONTROL_BEAT,
    CONTROL_WANDER,
    CONTROL_PACE,
    CONTROL_VIEWTURN,
    CONTROL_VIEWSIZE,
    CONTROL_EDGES,
    CONTROL_KIND,
    CONTROLS
};

struct KaleidoMotion {
    float fTurn, fWander, fViewTurn, fViewSize; // eased; turns a second, 0 to 1, turns a second, factor
};

struct Kaleido {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aEdgeRow[EDGES_MODES], aKindRow[PICTURE_KINDS];
    DrawClock clock;
    KaleidoMotion motion;
    float fAngle, fView, xPhase, yPhase; // turns
    RemapSource source;
};

// The sectors around the middle; sector 0 shows the picture itself.
struct KaleidoFold {
    float x, y;     // the middle
    float fAngle;   // where sector 0 begins, in turns
    float fSectors; // all of them, mirrored ones included
    RemapPlan aPlan[2 * SECTORS_MOST];
    FoldCut aCut[2 * SECTORS_MOST];
    int32_t nSectors;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Kaleidoscope",
                   u"Repeats one sector of the picture all around, with mirrors that turn");
}

static void AddViewControls(Kaleido *pKaleido, const ControlMaker &maker)
{
    ControlRecord **ap = pKaleido->apControl;
    ap[CONTROL_VIEWTURN] =
        AddFloat(maker, u"View\0Turn\0", u"Turns in a minute of the picture behind the mirrors, if it is fresh",
                 {-30, 30}, {-3, 3}, 1, FromWave(53000));
    ap[CONTROL_VIEWSIZE] = AddFloat(maker, u"View\0Size\0", u"Size of the picture behind the mirrors, if it is fresh",
                                    {0.25f, 4}, {0.8f, 1.8f}, 1, FromWave(29000));
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"View\0Edges\0", u"What is seen beyond the edges of the picture",
                                      pKaleido->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    ap[CONTROL_KIND] = AddPictureKind(maker, pKaleido->aKindRow);
    SetDependsOn(ap[CONTROL_VIEWTURN], ap[CONTROL_KIND], DEPENDOP_NOTEQUAL, PICTURE_GROWS);
    SetDependsOn(ap[CONTROL_VIEWSIZE], ap[CONTROL_KIND], DEPENDOP_NOTEQUAL, PICTURE_GROWS);
}

static void AddControls(Kaleido *pKaleido, const ControlMaker &maker)
{
    ControlRecord **ap = pKaleido->apControl;
    ap[CONTROL_SECTORS] = AddInteger(maker, u"Mirrors\0Sectors\0", u"How many times the figure stands around",
                                     {1, SECTORS_MOST}, {3, 8}, 6, FromRandom());
    ap[CONTROL_MIRROR] = AddBoolean(maker, u"Mirrors\0Mirrored\0",
                                    u"Every other sector is a mirror image, without "
                                    u"seams",
                                    0.1f, true, FromFixed());
    ap[CONTROL_TURN] = AddFloat(maker, u"Mirrors\0Turn\0", u"Turns of the mirrors in a minute", {-30, 30},
                                {-2.5f, 2.5f}, 1.5f, FromWave(47000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Mirrors\0Beat\0", u"Turns in a minute that come on top, meant for sound",
                                {-60, 60}, {0, 6}, 0, FromSound(8));
    ap[CONTROL_WANDER] = AddFloat(maker, u"Middle\0Wander\0", u"How far the middle strays from that of the picture",
                                  {0, 1}, {0, 0.22f}, 0.1f, FromWave(37000));
    ap[CONTROL_PACE] = AddFloat(maker, u"Middle\0Pace\0", u"Rounds of the middle in a minute", {0, 20}, {0.8f, 3}, 1.5f,
                                FromPeriodic(11000));
    AddViewControls(pKaleido, maker);
}

static KaleidoMotion ReadMotion(const Kaleido *pKaleido)
{
    ControlRecord *const *ap = pKaleido->apControl;
    return {(ReadFloat(ap[CONTROL_TURN]) + ReadFloat(ap[CONTROL_BEAT])) / 60, ReadFloat(ap[CONTROL_WANDER]),
            ReadFloat(ap[CONTROL_VIEWTURN]) / 60, std::max(ReadFloat(ap[CONTROL_VIEWSIZE]), 0.25f)};
}

static void Start(Kaleido *pKaleido, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pKaleido->clock = {};
    pKaleido->motion = ReadMotion(pKaleido);
    for (float *pf : {&pKaleido->fAngle, &pKaleido->fView, &pKaleido->xPhase, &pKaleido->yPhase})
        *pf = RandomUnit(&random);
}

static void Advance(Kaleido *pKaleido, float fSeconds)
{
    const KaleidoMotion target = ReadMotion(pKaleido);
    const float fPace = ReadFloat(pKaleido->apControl[CONTROL_PACE]) / 60;
    Approach(&pKaleido->motion.fTurn, target.fTurn, fSeconds, 0.15f);
    Approach(&pKaleido->motion.fWander, target.fWander, fSeconds, 2);
    Approach(&pKaleido->motion.fViewTurn, target.fViewTurn, fSeconds, 0.5f);
    Approach(&pKaleido->motion.fViewSize, target.fViewSize, fSeconds, 0.5f);
    AdvancePhase(&pKaleido->fAngle, pKaleido->motion.fTurn, fSeconds);
    AdvancePhase(&pKaleido->fView, pKaleido->motion.fViewTurn, fSeconds);
    AdvancePhase(&pKaleido->xPhase, fPace, fSeconds);
    AdvancePhase(&pKaleido->yPhase, fPace * 1.37f, fSeconds);
}

// A point in a turned or mirrored sector, brought back to sector 0: x' = c + M (x - c).
static RemapPlan PlanAround(float x, float y, float xx, float xy, float yx, float yy)
{
    return {xx, xy, x - xx * x - xy * y, yx, yy, y - yx * x - yy * y};
}

static RemapPlan Chain(const RemapPlan &a, const RemapPlan &b)
{
    return {b.xx * a.xx + b.xy * a.yx, b.xx * a.xy + b.xy * a.yy, b.xx * a.x0 + b.xy * a.y0 + b.x0,
            b.yx * a.xx + b.yy * a.yx, b.yx * a.xy + b.yy * a.yy, b.yx * a.x0 + b.yy * a.y0 + b.y0};
}

static void MakeFold(const Kaleido *pKaleido, const Canvas &canvas, const RemapPlan *pView, KaleidoFold *pFold)
{
    const bool bMirror = ReadBoolean(pKaleido->apControl[CONTROL_MIRROR]);
    const float fWander = 0.5f * pKaleido->motion.fWander;
    pFold->x = (0.5f + fWander * SineTurn(pKaleido->xPhase)) * (float)(canvas.nWidth - 1);
    pFold->y = (0.5f + fWander * SineTurn(pKaleido->yPhase)) * (float)(canvas.nHeight - 1);
    pFold->fAngle = pKaleido->fAngle;
    pFold->nSectors = std::max(ReadInteger(pKaleido->apControl[CONTROL_SECTORS]), 1) * (bMirror ? 2 : 1);
    pFold->fSectors = (float)pFold->nSectors;
    for (int32_t i = 0; i < pFold->nSectors; i++) {
        const float fFrom = (float)i / pFold->fSectors, fSum = 2 * pFold->fAngle + (float)(i + 1) / pFold->fSectors;
        const bool bMirrored = bMirror && i % 2;
        const float fCosine = CosineTurn(bMirrored ? fSum : fFrom), fSine = SineTurn(bMirrored ? fSum : fFrom);
        pFold->aPlan[i] = bMirrored ? PlanAround(pFold->x, pFold->y, fCosine, fSine, fSine, -fCosine)
                                    : PlanAround(pFold->x, pFold->y, fCosine, fSine, -fSine, fCosine);
        if (pView)
            pFold->aPlan[i] = Chain(pFold->aPlan[i], *pView);
        const float fEdge = pFold->fAngle + fFrom;
        pFold->aCut[i] = {pFold->x, pFold->y, CosineTurn(fEdge), SineTurn(fEdge)};
    }
}

static int32_t SectorAt(const KaleidoFold &fold, float x, float y)
{
    const float fTurns = std::atan2(y - fold.y, x - fold.x) * (1 / 6.2831853f);
    return std::min((int32_t)(WrapUnit(fTurns - fold.fAngle) * fold.fSectors), fold.nSectors - 1);
}

static uint32_t Draw(Kaleido *pKaleido, PlaneInfo *ppi, const Canvas &canvas)
{
    Advance(pKaleido, StepSeconds(&pKaleido->clock, ppi));
    const uint32_t dwEdges = ReadItem(pKaleido->apControl[CONTROL_EDGES]);
    if (!TakeSource(&pKaleido->source, canvas, dwEdges))
        return 0;
    const bool bFresh = IsPictureFresh(pKaleido->apControl[CONTROL_KIND], ppi);
    const RemapPlan view = TurnPlan(0.5f * (float)(canvas.nWidth - 1), 0.5f * (float)(canvas.nHeight - 1),
                                    pKaleido->fView, pKaleido->motion.fViewSize);
    KaleidoFold fold;
    MakeFold(pKaleido, canvas, bFresh ? &view : nullptr, &fold);
    FoldCanvas(canvas, pKaleido->source, PlainLook(dwEdges), fold.aCut, fold.nSectors, [&](float x, float y) {
        const int32_t iSector = SectorAt(fold, x, y);
        return iSector > 0 || bFresh ? &fold.aPlan[iSector] : nullptr;
    });
    return 0;
}

static void Release(Kaleido *pKaleido)
{
    FreeSource(&pKaleido->source);
}

STOCK_DRAWING_MODULE(Kaleido)
