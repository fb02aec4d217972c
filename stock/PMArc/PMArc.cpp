// PMArc.cpp -- PMArc.dll, a painter: arcs and rings that tumble through space, grow and pulse
#include "ArcShape.h"

#include "../common/StockModule.h"

enum {
    CONTROL_RINGS,
    CONTROL_REACH,
    CONTROL_PULSE,
    CONTROL_SWEEP,
    CONTROL_TILT,
    CONTROL_SPIN,
    CONTROL_TUMBLE,
    CONTROL_GROWTH,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

struct Arcs {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aPaintRow[PAINT_MODES];
    DrawClock clock;
    ArcMotion motion;
    ArcLook look; // eased
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Arc",
                   u"Arcs and rings that tumble through space, grow, and pulse with the sound");
}

static void AddShapeControls(Arcs *pArcs, const ControlMaker &maker)
{
    ControlRecord **ap = pArcs->apControl;
    ap[CONTROL_RINGS] = AddInteger(maker, u"Shape\0Rings\0", u"How many rings lie within each other",
                                   {1, ARC_RINGS_MOST}, {3, 7}, 5, FromPeriodic(19000));
    ap[CONTROL_REACH] = AddFloat(maker, u"Shape\0Reach\0", u"Radius of the outermost ring, 1 for half the picture",
                                 {0.05f, 2}, {0.6f, 1.15f}, 0.9f, FromWave(26000));
    ap[CONTROL_PULSE] =
        AddFloat(maker, u"Shape\0Pulse\0", u"How far the rings swell", {0, 1}, {0, 0.28f}, 0, FromSound(5));
    ap[CONTROL_SWEEP] = AddFloat(maker, u"Shape\0Sweep\0", u"Part of the ring that is drawn, 1 for all of it",
                                 {0.02f, 1}, {0.12f, 1.0f}, 0.4f, FromWave(24000));
    ap[CONTROL_TILT] = AddFloat(maker, u"Shape\0Tilt\0", u"0 keeps the rings flat, 1 lets them turn all ways", {0, 1},
                                {0.3f, 1}, 0.8f, FromRandom());
}

static void AddMotionControls(Arcs *pArcs, const ControlMaker &maker)
{
    ControlRecord **ap = pArcs->apControl;
    ap[CONTROL_SPIN] = AddFloat(maker, u"Motion\0Spin\0", u"Turns of the arcs along their rings in a minute", {-90, 90},
                                {3, 22}, 8, FromSound(24));
    ap[CONTROL_TUMBLE] = AddFloat(maker, u"Motion\0Tumble\0", u"Turns of the rings through space in a minute", {0, 60},
                                  {1.5f, 7}, 4, FromWave(39000));
    ap[CONTROL_GROWTH] =
        AddFloat(maker, u"Motion\0Growth\0", u"Rings that leave the middle in a minute; below 0 they fall in",
                 {-120, 120}, {-6, 18}, 6, FromWave(47000));
}

static void AddPenControls(Arcs *pArcs, const ControlMaker &maker)
{
    ControlRecord **ap = pArcs->apControl;
    ap[CONTROL_THICKNESS] = AddFloat(maker, u"Pen\0Thickness\0", u"Of the arcs, in percent of the picture's height",
                                     {0.1f, 20}, {0.8f, 3}, 1.6f, FromSound(6));
    ap[CONTROL_HARDNESS] = AddHardness(maker, {0.1f, 0.6f}, 0.3f, FromWave(34000));
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette the inmost ring lies", {0.3f, 1}, FromWave(17000));
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far the color moves on towards the outermost ring", {0.2f, 0.9f}, 0.4f,
                                   FromPeriodic(8000));
    ap[CONTROL_PAINT] = AddPaintMode(maker, pArcs->aPaintRow, PAINT_OVER);
}

static void AddControls(Arcs *pArcs, const ControlMaker &maker)
{
    AddShapeControls(pArcs, maker);
    AddMotionControls(pArcs, maker);
    AddPenControls(pArcs, maker);
}

static const LookRow<ArcLook> asLook[] = {
    {&ArcLook::fRings, CONTROL_RINGS, ReadNumber, 1.2f},
    {&ArcLook::fReach, CONTROL_REACH, ReadNumber, 0.6f},
    {&ArcLook::fPulse, CONTROL_PULSE, ReadNumber, 0.08f},
    {&ArcLook::fSweep, CONTROL_SWEEP, ReadNumber, 0.8f},
    {&ArcLook::fSpin, CONTROL_SPIN, ReadPerMinute, 0.4f},
    {&ArcLook::fTumble, CONTROL_TUMBLE, ReadPerMinute, 0.6f},
    {&ArcLook::fGrowth, CONTROL_GROWTH, ReadPerMinute, 0.6f},
    {&ArcLook::fTilt, CONTROL_TILT, ReadNumber, 1.5f},
    {&ArcLook::fThickness, CONTROL_THICKNESS, ReadPercent, 0.06f},
    {&ArcLook::fHardness, CONTROL_HARDNESS, ReadHardness, 0.5f},
    {&ArcLook::fPlace, CONTROL_PLACE, ReadNumber, 0.3f},
    {&ArcLook::fSpread, CONTROL_SPREAD, ReadNumber, 1.5f},
};

static void Start(Arcs *pArcs, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    SeedArcs(&pArcs->motion, &random);
    pArcs->clock = {};
    SettleLook(asLook, pArcs->apControl, &pArcs->look);
}

static uint32_t Draw(Arcs *pArcs, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pArcs->clock, ppi);
    EaseLook(asLook, pArcs->apControl, &pArcs->look, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pArcs->apControl[CONTROL_PAINT]), fSeconds);
    DrawArcs(canvas, paint, pArcs->look, &pArcs->motion, fSeconds);
    return 0;
}

STOCK_DRAWING_MODULE(Arcs)
