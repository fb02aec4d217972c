// PMRotor.cpp -- PMRotor.dll, a painter: arms of several joints that turn within each other, in symmetric copies
#include "RotorShape.h"

#include "../common/StockModule.h"

enum {
    CONTROL_COPIES,
    CONTROL_MIRROR,
    CONTROL_JOINTS,
    CONTROL_REACH,
    CONTROL_SPIN,
    CONTROL_WHIRL,
    CONTROL_DRIFT,
    CONTROL_THICKNESS,
    CONTROL_TAPER,
    CONTROL_HARDNESS,
    CONTROL_ARM,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

struct Rotor {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aPaintRow[PAINT_MODES];
    DrawClock clock;
    RotorMotion motion;
    RotorLook look; // eased
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Rotor",
                   u"Jointed arms that turn within each other, in symmetric copies");
}

static void AddShapeControls(Rotor *pRotor, const ControlMaker &maker)
{
    ControlRecord **ap = pRotor->apControl;
    ap[CONTROL_COPIES] = AddInteger(maker, u"Shape\0Copies\0", u"How many times the arm stands around the middle",
                                    {1, ROTOR_COPIES_MOST}, {2, 6}, 3, FromPeriodic(17000));
    ap[CONTROL_MIRROR] =
        AddBoolean(maker, u"Shape\0Mirror\0", u"Every copy gets its mirror image", 0.6f, false, FromRandom());
    ap[CONTROL_JOINTS] = AddInteger(maker, u"Shape\0Joints\0", u"How many arms stand on each other's ends",
                                    {1, ROTOR_JOINTS_MOST}, {2, 4}, 3, FromRandom());
    ap[CONTROL_REACH] = AddFloat(maker, u"Shape\0Reach\0", u"Length of the outstretched arm, 1 for half the picture",
                                 {0.05f, 2}, {0.6f, 1.3f}, 0.9f, FromWave(21000));
}

static void AddMotionControls(Rotor *pRotor, const ControlMaker &maker)
{
    ControlRecord **ap = pRotor->apControl;
    ap[CONTROL_SPIN] = AddFloat(maker, u"Motion\0Spin\0", u"Turns of the whole figure in a minute", {-60, 60}, {-7, 7},
                                4, FromWave(43000, WAVETYPE_TRIANGLE));
    ap[CONTROL_WHIRL] = AddFloat(maker, u"Motion\0Whirl\0", u"Turns of the outer joints in a minute", {0, 120}, {4, 22},
                                 10, FromSound(30));
    ap[CONTROL_DRIFT] = AddFloat(maker, u"Motion\0Drift\0", u"How far the middle strays through the picture", {0, 1},
                                 {0, 0.45f}, 0.2f, FromWave(59000));
}

static void AddPenControls(Rotor *pRotor, const ControlMaker &maker)
{
    ControlRecord **ap = pRotor->apControl;
    ap[CONTROL_THICKNESS] = AddFloat(maker, u"Pen\0Thickness\0", u"Of the arm, in percent of the picture's height",
                                     {0.1f, 20}, {1.2f, 4.5f}, 2, FromSound(6));
    ap[CONTROL_TAPER] = AddFloat(maker, u"Pen\0Taper\0", u"1 thins the arm out towards its tip, -1 towards its root",
                                 {-1, 1}, {-0.6f, 0.8f}, 0.3f, FromRandom());
    ap[CONTROL_HARDNESS] = AddHardness(maker, {0.1f, 0.6f}, 0.3f, FromWave(27000));
    ap[CONTROL_ARM] = AddFloat(maker, u"Pen\0Arm\0", u"How much of the arm shows besides its tip", {0, 1}, {0.15f, 1},
                               0.6f, FromWave(33000));
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette the root of the arm lies", {0.35f, 1}, FromWave(13000));
    ap[CONTROL_SPREAD] =
        AddSpread(maker, u"How far the color moves on towards the tip", {0.1f, 0.7f}, 0.3f, FromPeriodic(7000));
    ap[CONTROL_PAINT] = AddPaintMode(maker, pRotor->aPaintRow, PAINT_OVER);
}

static void AddControls(Rotor *pRotor, const ControlMaker &maker)
{
    AddShapeControls(pRotor, maker);
    AddMotionControls(pRotor, maker);
    AddPenControls(pRotor, maker);
}

static const LookRow<RotorLook> asLook[] = {
    {&RotorLook::fCopies, CONTROL_COPIES, ReadNumber, 1.2f},
    {&RotorLook::fJoints, CONTROL_JOINTS, ReadNumber, 1.2f},
    {&RotorLook::fMirror, CONTROL_MIRROR, ReadNumber, 1.2f},
    {&RotorLook::fReach, CONTROL_REACH, ReadNumber, 0.5f},
    {&RotorLook::fSpin, CONTROL_SPIN, ReadPerMinute, 0.5f},
    {&RotorLook::fWhirl, CONTROL_WHIRL, ReadPerMinute, 0.3f},
    {&RotorLook::fDrift, CONTROL_DRIFT, ReadNumber, 0.8f},
    {&RotorLook::fThickness, CONTROL_THICKNESS, ReadPercent, 0.06f},
    {&RotorLook::fTaper, CONTROL_TAPER, ReadNumber, 0.8f},
    {&RotorLook::fHardness, CONTROL_HARDNESS, ReadHardness, 0.5f},
    {&RotorLook::fArm, CONTROL_ARM, ReadNumber, 0.5f},
    {&RotorLook::fPlace, CONTROL_PLACE, ReadNumber, 0.3f},
    {&RotorLook::fSpread, CONTROL_SPREAD, ReadNumber, 1.5f},
};

static void Start(Rotor *pRotor, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    SeedRotor(&pRotor->motion, &random);
    pRotor->clock = {};
    SettleLook(asLook, pRotor->apControl, &pRotor->look);
}

static uint32_t Draw(Rotor *pRotor, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pRotor->clock, ppi);
    EaseLook(asLook, pRotor->apControl, &pRotor->look, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pRotor->apControl[CONTROL_PAINT]), fSeconds);
    DrawRotor(canvas, paint, pRotor->look, &pRotor->motion, fSeconds);
    return 0;
}

STOCK_DRAWING_MODULE(Rotor)
