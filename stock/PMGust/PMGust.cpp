// PMGust.cpp -- PMGust.dll, a drawing effect: a slowly turning wind carries the picture along and wears it away
#include "Carry.h"

#include "../common/StockModule.h"

enum {
    CONTROL_STRENGTH,
    CONTROL_BREEZE,
    CONTROL_TURNING,
    CONTROL_SWIRL,
    CONTROL_OUTFLOW,
    CONTROL_WANDER,
    CONTROL_EDDIES,
    CONTROL_EDDYSIZE,
    CONTROL_DECAY,
    CONTROL_EDGES,
    CONTROLS
};

struct Gust {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aEdgeRow[EDGES_MODES];
    DrawClock clock;
    WindState state;
    WindForces forces; // eased
    uint32_t nFrame;
    CarryBuffers buffers;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Gust",
                   u"Carries the picture along a turning wind with swirls and eddies, and lets trails fade");
}

static void AddControls(Gust *pGust, const ControlMaker &maker)
{
    static const char16_t *const aszEdges[EDGES_MODES] = {u"Open", u"Closed", u"Around"};
    ControlRecord **ap = pGust->apControl;
    ap[CONTROL_STRENGTH] = AddFloat(maker, u"Wind\0Strength\0", u"How fast all of the wind moves the picture", {0, 1},
                                    {0.3f, 0.8f}, 0.5f, FromSound(16));
    ap[CONTROL_BREEZE] = AddFloat(maker, u"Wind\0Breeze\0", u"Share of the wind that blows straight across", {0, 1},
                                  {0, 0.3f}, 0.15f, FromWave(37000));
    ap[CONTROL_TURNING] = AddFloat(maker, u"Wind\0Turning\0", u"Turns of the breeze in a minute", {-12, 12}, {-3, 3},
                                   1.5f, FromWave(53000));
    ap[CONTROL_SWIRL] = AddFloat(maker, u"Vortex\0Swirl\0", u"Rotation around the middle; below 0 clockwise", {-1, 1},
                                 {-0.4f, 0.4f}, 0.2f, FromWave(41000));
    ap[CONTROL_OUTFLOW] = AddFloat(maker, u"Vortex\0Outflow\0", u"Flow away from the middle; below 0 towards it",
                                   {-1, 1}, {0.02f, 0.5f}, 0.25f, FromWave(29000));
    ap[CONTROL_WANDER] = AddFloat(maker, u"Vortex\0Wander\0", u"How far the middle strays from that of the picture",
                                  {0, 1}, {0, 0.4f}, 0.2f, FromRandom());
    ap[CONTROL_EDDIES] =
        AddFloat(maker, u"Eddies\0Strength\0", u"Turbulence", {0, 1}, {0.1f, 0.6f}, 0.3f, FromWave(23000));
    ap[CONTROL_EDDYSIZE] = AddFloat(maker, u"Eddies\0Size\0", u"Size of the eddies, 1 for as high as the picture",
                                    {0.2f, 3}, {0.6f, 1.6f}, 1, FromPeriodic(9000));
    ap[CONTROL_DECAY] = AddFloat(maker, u"Trails\0Decay\0", u"How fast trails fade; 0 keeps them for ever", {0, 1},
                                 {0.2f, 0.4f}, 0.3f, FromWave(31000));
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Trails\0Edges\0", u"What blows in over the edges of the picture",
                                      pGust->aEdgeRow, aszEdges, EDGES_OPEN, FromFixed());
}

static float ReadControl(const Gust *pGust, int32_t iControl)
{
    return ReadFloat(pGust->apControl[iControl]);
}

static WindForces ReadForces(const Gust *pGust)
{
    const float fStrength = ReadControl(pGust, CONTROL_STRENGTH);
    WindForces forces = {};
    forces.fBreeze = fStrength * ReadControl(pGust, CONTROL_BREEZE) * 0.8f;
    forces.fTurning = ReadControl(pGust, CONTROL_TURNING) / 60;
    forces.fSwirl = fStrength * ReadControl(pGust, CONTROL_SWIRL) * 1.2f;
    forces.fOutflow = fStrength * ReadControl(pGust, CONTROL_OUTFLOW) * 1.6f;
    forces.fEddies = fStrength * ReadControl(pGust, CONTROL_EDDIES) * 0.5f;
    forces.fEddySize = ReadControl(pGust, CONTROL_EDDYSIZE);
    forces.fWander = ReadControl(pGust, CONTROL_WANDER) * 0.5f;
    return forces;
}

static void EaseForces(WindForces *pForces, const WindForces &target, float fSeconds)
{
    Approach(&pForces->fBreeze, target.fBreeze, fSeconds, 0.25f);
    Approach(&pForces->fSwirl, target.fSwirl, fSeconds, 0.25f);
    Approach(&pForces->fOutflow, target.fOutflow, fSeconds, 0.25f);
    Approach(&pForces->fEddies, target.fEddies, fSeconds, 0.25f);
    Approach(&pForces->fTurning, target.fTurning, fSeconds, 1.0f);
    Approach(&pForces->fEddySize, target.fEddySize, fSeconds, 2.5f);
    Approach(&pForces->fWander, target.fWander, fSeconds, 2.5f);
}

static void Start(Gust *pGust, PlaneInfo *ppi)
{
    Canvas canvas;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    SeedWind(&pGust->state, &random);
    pGust->clock = {};
    pGust->forces = ReadForces(pGust);
    if (OpenCanvas(&canvas, ppi))
        FitCarryBuffers(&pGust->buffers, canvas);
}

static uint32_t Draw(Gust *pGust, PlaneInfo *ppi, const Canvas &canvas)
{
    // A plane that was paused during a resize comes back with another size and without a bring-up.
    if (!FitCarryBuffers(&pGust->buffers, canvas))
        return 0;
    const float fSeconds = StepSeconds(&pGust->clock, ppi);
    EaseForces(&pGust->forces, ReadForces(pGust), fSeconds);
    AdvanceWind(&pGust->state, pGust->forces, fSeconds);
    const TrailFade fade = FadeFor(ReadControl(pGust, CONTROL_DECAY), fSeconds);
    const bool bMoves = SampleWind(pGust->state, pGust->forces, fSeconds, canvas.nWidth, canvas.nHeight,
                                   MostCarry(pGust->buffers), &pGust->buffers.grid);
    if (!bMoves && !IsFading(fade))
        return 0;
    const uint32_t dwEdges = ReadItem(pGust->apControl[CONTROL_EDGES]);
    if (canvas.bIndexed)
        CarryIndices(canvas, &pGust->buffers, fade, dwEdges);
    else
        CarryColors(canvas, &pGust->buffers, fade, dwEdges, pGust->nFrame++);
    return 0;
}

static void Release(Gust *pGust)
{
    FreeCarryBuffers(&pGust->buffers);
}

STOCK_DRAWING_MODULE(Gust)
