// DESwirl.cpp -- DESwirl.dll, a drawing effect: vortices that wander, wind the picture up and unwind it again
#include "../common/StockModule.h"
#include "../common/StockPaths.h"

#define VORTICES_MOST 6

enum {
    CONTROL_VORTICES,
    CONTROL_ALTERNATE,
    CONTROL_REACH,
    CONTROL_PACE,
    CONTROL_TWIST,
    CONTROL_BEAT,
    CONTROL_PULL,
    CONTROL_CLARITY,
    CONTROL_EDGES,
    CONTROL_KIND,
    CONTROLS
};

struct Vortex {
    float xPhase, yPhase; // turns
    float xPace, yPace;   // its share of the pace, each vortex its own
    float fWeight;        // eased: 0 is none
};

struct SwirlForces {
    float fTwist, fPull, fReach; // eased; turns, powers of e, heights
};

struct Swirl {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aEdgeRow[EDGES_MODES], aKindRow[PICTURE_KINDS];
    DrawClock clock;
    Vortex aVortex[VORTICES_MOST];
    SwirlForces forces;
    uint32_t nFrame;
    RemapSource source;
    RemapGrid grid;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Swirl",
                   u"Vortices that wander through the picture, wind it up and unwind it");
}

static void AddControls(Swirl *pSwirl, const ControlMaker &maker)
{
    ControlRecord **ap = pSwirl->apControl;
    ap[CONTROL_VORTICES] = AddInteger(maker, u"Vortices\0Number\0", u"How many vortices there are", {1, VORTICES_MOST},
                                      {2, 5}, 3, FromPeriodic(19000));
    ap[CONTROL_ALTERNATE] =
        AddBoolean(maker, u"Vortices\0Alternate\0", u"Every other vortex turns the other way", 0.3f, true, FromFixed());
    ap[CONTROL_REACH] = AddFloat(maker, u"Vortices\0Reach\0", u"Radius of a vortex in heights of the picture",
                                 {0.05f, 2}, {0.35f, 0.8f}, 0.5f, FromWave(27000));
    ap[CONTROL_PACE] = AddFloat(maker, u"Vortices\0Pace\0", u"Rounds that a vortex makes in a minute", {0, 20}, {1, 4},
                                2, FromPeriodic(13000));
    ap[CONTROL_TWIST] =
        AddFloat(maker, u"Force\0Twist\0", u"Turns in the middle of a vortex; of a picture that grows, in two seconds",
                 {-2, 2}, {-0.5f, 0.5f}, 0.3f, FromWave(17000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Force\0Beat\0", u"Turns that come on top, meant for sound", {-2, 2}, {0, 0.4f},
                                0, FromSound(8));
    ap[CONTROL_PULL] = AddFloat(maker, u"Force\0Pull\0", u"Draws the picture into the vortices; below 0 drives it out",
                                {-1, 1}, {-0.3f, 0.2f}, 0, FromWave(23000));
    ap[CONTROL_CLARITY] =
        AddFloat(maker, u"Picture\0Clarity\0", u"0 lets a picture that grows blur, 1 draws its edges sharp", {0, 1},
                 {0.4f, 0.9f}, 0.6f, FromFixed());
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Picture\0Edges\0", u"What is drawn in over the edges of the picture",
                                      pSwirl->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    ap[CONTROL_KIND] = AddPictureKind(maker, pSwirl->aKindRow);
    SetDependsOn(ap[CONTROL_ALTERNATE], ap[CONTROL_VORTICES], DEPENDOP_GREATER, 1);
    SetDependsOn(ap[CONTROL_CLARITY], ap[CONTROL_KIND], DEPENDOP_NOTEQUAL, PICTURE_FRESH);
}

static SwirlForces ReadForces(const Swirl *pSwirl)
{
    ControlRecord *const *ap = pSwirl->apControl;
    return {ReadFloat(ap[CONTROL_TWIST]) + ReadFloat(ap[CONTROL_BEAT]), ReadFloat(ap[CONTROL_PULL]),
            ReadFloat(ap[CONTROL_REACH])};
}

static void Start(Swirl *pSwirl, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pSwirl->clock = {};
    pSwirl->forces = ReadForces(pSwirl);
    for (Vortex &vortex : pSwirl->aVortex)
        vortex = {RandomUnit(&random), RandomUnit(&random), RandomBetween(&random, 0.6f, 1.3f),
                  RandomBetween(&random, 0.6f, 1.3f), 0};
}

static void Advance(Swirl *pSwirl, float fSeconds)
{
    const SwirlForces target = ReadForces(pSwirl);
    Approach(&pSwirl->forces.fTwist, target.fTwist, fSeconds, 0.15f);
    Approach(&pSwirl->forces.fPull, target.fPull, fSeconds, 0.3f);
    Approach(&pSwirl->forces.fReach, target.fReach, fSeconds, 1);
    const float fPace = ReadFloat(pSwirl->apControl[CONTROL_PACE]) / 60;
    const int32_t nVortices = ReadInteger(pSwirl->apControl[CONTROL_VORTICES]);
    for (int32_t i = 0; i < VORTICES_MOST; i++) {
        Vortex &vortex = pSwirl->aVortex[i];
        AdvancePhase(&vortex.xPhase, fPace * vortex.xPace, fSeconds);
        AdvancePhase(&vortex.yPhase, fPace * vortex.yPace, fSeconds);
        Approach(&vortex.fWeight, i < nVortices ? 1.0f : 0.0f, fSeconds, 1);
    }
}

// Everything in pixels; turns counter-clockwise.
struct VortexShape {
    float x, y, fRadius;
    float fTurns, fPull; // in the middle
};

static void AddVortexRow(const RemapGrid &grid, const VortexShape &shape, int32_t iRow)
{
    const float fCell = (float)(1 << grid.nCellBits), dy = (float)iRow * fCell - shape.y;
    const float fHalf2 = shape.fRadius * shape.fRadius - dy * dy;
    if (!(fHalf2 > 0))
        return;
    const float fHalf = std::sqrt(fHalf2), fPerRadius2 = 1 / (shape.fRadius * shape.fRadius);
    const float fLast = (float)(grid.nColumns - 1);
    const int32_t iFirst = (int32_t)std::clamp((shape.x - fHalf) / fCell, 0.0f, fLast);
    const int32_t iLast = (int32_t)std::clamp((shape.x + fHalf) / fCell + 1, 0.0f, fLast);
    float *pfX = grid.pfX + (size_t)iRow * (size_t)grid.nColumns, *pfY = grid.pfY + (pfX - grid.pfX);
    for (int32_t i = iFirst; i <= iLast; i++) {
        const float dx = (float)i * fCell - shape.x;
        const float fInside = std::max(1 - (dx * dx + dy * dy) * fPerRadius2, 0.0f), fBell = fInside * fInside;
        const float fScale = 1 + shape.fPull * fBell;
        const float fCosine = fScale * QuickCosine(shape.fTurns * fBell) - 1;
        const float fSine = fScale * QuickSine(shape.fTurns * fBell);
        pfX[i] += fCosine * dx + fSine * dy;
        pfY[i] += fCosine * dy - fSine * dx;
    }
}

// fShare: how much of the whole force acts in this frame.
static void FillGrid(const Swirl *pSwirl, float fShare)
{
    const RemapGrid &grid = pSwirl->grid;
    const bool bAlternate = ReadBoolean(pSwirl->apControl[CONTROL_ALTERNATE]);
    std::fill_n(grid.pfX, VerticesOf(grid), 0.0f);
    std::fill_n(grid.pfY, VerticesOf(grid), 0.0f);
    for (int32_t i = 0; i < VORTICES_MOST; i++) {
        const Vortex &vortex = pSwirl->aVortex[i];
        if (vortex.fWeight < 0.01f)
            continue;
        const float fSign = bAlternate && i % 2 ? -1.0f : 1.0f, fPart = fShare * vortex.fWeight;
        const VortexShape shape = {(0.5f + 0.4f * SineTurn(vortex.xPhase)) * (float)grid.nWidth,
                                   (0.5f + 0.4f * SineTurn(vortex.yPhase)) * (float)grid.nHeight,
                                   std::max(pSwirl->forces.fReach * (float)grid.nHeight, 1.0f),
                                   pSwirl->forces.fTwist * fSign * fPart, std::exp(pSwirl->forces.fPull * fPart) - 1};
        for (int32_t iRow = 0; iRow < grid.nRows; iRow++)
            AddVortexRow(grid, shape, iRow);
    }
}

static uint32_t Draw(Swirl *pSwirl, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pSwirl->clock, ppi);
    Advance(pSwirl, fSeconds);
    const bool bFresh = IsPictureFresh(pSwirl->apControl[CONTROL_KIND], ppi);
    const uint32_t dwEdges = ReadItem(pSwirl->apControl[CONTROL_EDGES]);
    const float fClarity = bFresh ? 0 : ReadFloat(pSwirl->apControl[CONTROL_CLARITY]);
    if ((!bFresh && fSeconds <= 0) || !FitGrid(&pSwirl->grid, canvas) ||
        !TakeSource(&pSwirl->source, canvas, dwEdges, fClarity))
        return 0;
    FillGrid(pSwirl, bFresh ? 1 : 0.5f * fSeconds);
    ShiftCanvas(canvas, pSwirl->source, bFresh ? PlainLook(dwEdges) : TrailLook(dwEdges, pSwirl->nFrame++),
                pSwirl->grid);
    return 0;
}

static void Release(Swirl *pSwirl)
{
    FreeSource(&pSwirl->source);
    FreeGrid(&pSwirl->grid);
}

STOCK_DRAWING_MODULE(Swirl)
