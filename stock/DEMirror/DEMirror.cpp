// DEMirror.cpp -- DEMirror.dll, a drawing effect: one side of the picture is seen in a mirror that moves
#include "../common/StockModule.h"
#include "../common/StockPaths.h"

enum {
    MIRROR_LEFT,
    MIRROR_RIGHT,
    MIRROR_TOP,
    MIRROR_BOTTOM,
    MIRROR_QUARTERS,
    MIRROR_DIAGONAL,
    MIRROR_TURNING,
    MIRRORS
};

enum { CONTROL_MIRROR, CONTROL_SHIFT, CONTROL_BEAT, CONTROL_TURN, CONTROL_SWAP, CONTROL_EDGES, CONTROLS };

struct Mirror {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aMirrorRow[MIRRORS], aEdgeRow[EDGES_MODES];
    DrawClock clock;
    float fShift; // eased
    float fAngle; // of the turning mirror, in turns
    RemapSource source;
};

// The side that x * dx + y * dy - fFar is positive on is the picture, the other one shows its mirror image.
struct Axis {
    float dx, dy, fFar;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Mirror",
                   u"Shows one side or quarter of the picture in a mirror that moves");
}

static void AddControls(Mirror *pMirror, const ControlMaker &maker)
{
    static const char16_t *const aszMirrors[MIRRORS] = {u"Left side",   u"Right side", u"Upper half", u"Lower half",
                                                        u"One quarter", u"Diagonal",   u"Turning"};
    ControlRecord **ap = pMirror->apControl;
    ap[CONTROL_MIRROR] = AddItemSelect(maker, u"Mirror\0Shows\0", u"The part of the picture that is seen twice",
                                       pMirror->aMirrorRow, aszMirrors, MIRROR_LEFT, FromFixed());
    ap[CONTROL_SWAP] =
        AddBoolean(maker, u"Mirror\0Other side\0", u"Shows the opposite part instead", 0.5f, false, FromFixed());
    ap[CONTROL_SHIFT] = AddFloat(maker, u"Axis\0Shift\0", u"Where the mirror stands: 0 in the middle, 1 at an edge",
                                 {-1, 1}, {-0.25f, 0.25f}, 0, FromWave(23000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Axis\0Beat\0", u"Pushes the mirror further, meant for sound", {-1, 1},
                                {0, 0.15f}, 0, FromSound(8));
    ap[CONTROL_TURN] = AddFloat(maker, u"Axis\0Turn\0", u"Turns of the turning mirror in a minute", {-30, 30}, {-4, 4},
                                2, FromWave(41000));
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Axis\0Edges\0", u"What the mirror shows of beyond the picture",
                                      pMirror->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    SetDependsOn(ap[CONTROL_TURN], ap[CONTROL_MIRROR], DEPENDOP_EQUAL, MIRROR_TURNING);
}

static float ReadShift(const Mirror *pMirror)
{
    return ReadFloat(pMirror->apControl[CONTROL_SHIFT]) + ReadFloat(pMirror->apControl[CONTROL_BEAT]);
}

static void Start(Mirror *pMirror, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pMirror->clock = {};
    pMirror->fShift = ReadShift(pMirror);
    pMirror->fAngle = RandomUnit(&random);
}

// Level and upright mirrors stand on or half-way between pixels, so that the image is exact.
static float WholeHalf(float f)
{
    return std::floor(2 * f + 0.5f) * 0.5f;
}

static int32_t MakeAxes(const Mirror *pMirror, const Canvas &canvas, Axis *pAxes)
{
    const uint32_t dwMirror = ReadItem(pMirror->apControl[CONTROL_MIRROR]);
    const float fShift = std::clamp(pMirror->fShift, -1.0f, 1.0f);
    const float fSign = ReadBoolean(pMirror->apControl[CONTROL_SWAP]) ? -1.0f : 1.0f;
    const float xMiddle = 0.5f * (float)(canvas.nWidth - 1), yMiddle = 0.5f * (float)(canvas.nHeight - 1);
    const float x = WholeHalf(xMiddle * (1 + fShift)), y = WholeHalf(yMiddle * (1 + fShift));
    const bool bPositive = dwMirror == MIRROR_RIGHT || dwMirror == MIRROR_TOP || dwMirror == MIRROR_QUARTERS;
    const float fSide = bPositive ? fSign : -fSign;
    const Axis upright = {fSide, 0, fSide * x}, level = {0, fSide, fSide * y};
    if (dwMirror == MIRROR_LEFT || dwMirror == MIRROR_RIGHT || dwMirror == MIRROR_QUARTERS)
        *pAxes++ = upright;
    if (dwMirror == MIRROR_TOP || dwMirror == MIRROR_BOTTOM || dwMirror == MIRROR_QUARTERS)
        *pAxes++ = level;
    if (dwMirror <= MIRROR_QUARTERS)
        return dwMirror == MIRROR_QUARTERS ? 2 : 1;
    const float fAngle = dwMirror == MIRROR_DIAGONAL ? 0.125f : pMirror->fAngle;
    const float dx = fSign * CosineTurn(fAngle), dy = fSign * SineTurn(fAngle);
    *pAxes = {dx, dy,
              dx * xMiddle + dy * yMiddle + fSign * fShift * (std::fabs(dx) * xMiddle + std::fabs(dy) * yMiddle)};
    return 1;
}

static RemapPlan Reflect(const RemapPlan &plan, const Axis &axis)
{
    const float xx = 1 - 2 * axis.dx * axis.dx, xy = -2 * axis.dx * axis.dy, yy = 1 - 2 * axis.dy * axis.dy;
    return {xx * plan.xx + xy * plan.yx,
            xx * plan.xy + xy * plan.yy,
            xx * plan.x0 + xy * plan.y0 + 2 * axis.fFar * axis.dx,
            xy * plan.xx + yy * plan.yx,
            xy * plan.xy + yy * plan.yy,
            xy * plan.x0 + yy * plan.y0 + 2 * axis.fFar * axis.dy};
}

static uint32_t Draw(Mirror *pMirror, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pMirror->clock, ppi);
    Approach(&pMirror->fShift, ReadShift(pMirror), fSeconds, 0.15f);
    AdvancePhase(&pMirror->fAngle, ReadFloat(pMirror->apControl[CONTROL_TURN]) / 60, fSeconds);
    const uint32_t dwEdges = ReadItem(pMirror->apControl[CONTROL_EDGES]);
    if (!TakeSource(&pMirror->source, canvas, dwEdges))
        return 0;
    Axis aAxis[2];
    FoldCut aCut[2];
    const int32_t nAxes = MakeAxes(pMirror, canvas, aAxis);
    for (int32_t i = 0; i < nAxes; i++)
        aCut[i] = {aAxis[i].dx * aAxis[i].fFar, aAxis[i].dy * aAxis[i].fFar, -aAxis[i].dy, aAxis[i].dx};
    RemapPlan plan;
    FoldCanvas(canvas, pMirror->source, PlainLook(dwEdges), aCut, nAxes, [&](float x, float y) {
        const RemapPlan *pPlan = nullptr;
        plan = SamePlan();
        for (int32_t i = 0; i < nAxes; i++)
            if (x * aAxis[i].dx + y * aAxis[i].dy < aAxis[i].fFar) {
                plan = Reflect(plan, aAxis[i]);
                pPlan = &plan;
            }
        return pPlan;
    });
    return 0;
}

static void Release(Mirror *pMirror)
{
    FreeSource(&pMirror->source);
}

STOCK_DRAWING_MODULE(Mirror)
