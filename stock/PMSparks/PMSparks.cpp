// PMSparks.cpp -- PMSparks.dll, a painter: fountains of sparks and bursts with the sound, in gravity, wind and air
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define SPARKS_MOST 2048
#define FOUNTAINS_MOST 6
#define BURST_REST_SECONDS 0.25f // from one burst to the next at least

enum {
    CONTROL_FOUNTAINS,
    CONTROL_FLOW,
    CONTROL_SPEED,
    CONTROL_SPRAY,
    CONTROL_BURST,
    CONTROL_BURSTSIZE,
    CONTROL_GRAVITY,
    CONTROL_WIND,
    CONTROL_DRAG,
    CONTROL_LIFE,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {1.5f, 0.1f, 0.3f, 0.5f, 0, 0, 0.8f, 0.8f, 0.8f, 0.5f, 0.1f, 0.5f, 0.5f, 1.5f, 0};

struct Spark {
    float x, y, xSpeed, ySpeed; // units, units per second
    float fLife, fAge;          // seconds; no life: none is here
    float fTurns, fSize;        // color against the place; share of the thickness
};

struct Sparks {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    StockRandom random;
    Spark aSpark[SPARKS_MOST];
    int32_t iNext;                // the oldest place, which the next spark takes
    float afRoam[FOUNTAINS_MOST]; // turns
    float afSway[FOUNTAINS_MOST]; // turns
    float afDue[FOUNTAINS_MOST];  // sparks that wait to leave, 0 to 1
    float fUpwards;               // 1: against a gravity that falls; -1: that rises
    float fSinceBurst;            // seconds
    bool bBurst;                  // as the control was in the last frame
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Sparks",
                   u"Fountains of sparks, and bursts on loud sounds, in gravity and wind");
}

static void AddSourceControls(Sparks *pSparks, const ControlMaker &maker)
{
    ControlRecord **ap = pSparks->apControl;
    ap[CONTROL_FOUNTAINS] = AddInteger(maker, u"Fountains\0Count\0", u"How many fountains there are",
                                       {0, FOUNTAINS_MOST}, {1, 4}, 2, FromPeriodic(23000));
    ap[CONTROL_FLOW] = AddFloat(maker, u"Fountains\0Flow\0", u"Sparks a second from all fountains", {0, 600}, {30, 220},
                                90, FromSound(4));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Fountains\0Speed\0", u"How fast sparks leave, in picture heights a second",
                                 {0, 3}, {0.5f, 1.1f}, 0.8f, FromWave(21000));
    ap[CONTROL_SPRAY] = AddFloat(maker, u"Fountains\0Spray\0", u"0 for a jet, 1 for all directions", {0, 1},
                                 {0.06f, 0.3f}, 0.15f, FromWave(33000));
    ap[CONTROL_BURST] = AddBoolean(maker, u"Bursts\0Trigger\0", u"A burst goes off each time this switches on", 0.6f,
                                   false, FromSound(2));
    ap[CONTROL_BURSTSIZE] =
        AddInteger(maker, u"Bursts\0Size\0", u"Sparks of a burst", {1, 400}, {40, 160}, 80, FromPeriodic(3000));
}

static void AddControls(Sparks *pSparks, const ControlMaker &maker)
{
    AddSourceControls(pSparks, maker);
    ControlRecord **ap = pSparks->apControl;
    ap[CONTROL_GRAVITY] = AddFloat(maker, u"Air\0Gravity\0", u"Pull downwards; below 0 sparks rise", {-2, 2},
                                   {0.15f, 0.7f}, 0.4f, FromWave(47000));
    ap[CONTROL_WIND] = AddFloat(maker, u"Air\0Wind\0", u"Blows to the right, below 0 to the left", {-2, 2},
                                {-0.3f, 0.3f}, 0, FromWave(37000));
    ap[CONTROL_DRAG] = AddFloat(maker, u"Air\0Drag\0", u"How soon the air slows sparks down to the wind", {0, 6},
                                {0.3f, 1.4f}, 0.7f, FromWave(29000));
    ap[CONTROL_LIFE] = AddFloat(maker, u"Sparks\0Life\0", u"Seconds that a spark glows", {0.2f, 10}, {1.5f, 3.5f}, 2.4f,
                                FromPeriodic(7000));
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of a spark, in percent of the picture's height", {0.5f, 1.1f}, 0.7f, FromSound(8));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette fresh sparks lie");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far the colors of the fountains and bursts lie apart");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pSparks->aPaintRow, PAINT_LIGHTEN);
    SetDependsOn(ap[CONTROL_SPEED], ap[CONTROL_FOUNTAINS], DEPENDOP_GREATER, 0);
    SetDependsOn(ap[CONTROL_FLOW], ap[CONTROL_FOUNTAINS], DEPENDOP_GREATER, 0);
    SetDependsOn(ap[CONTROL_SPRAY], ap[CONTROL_FOUNTAINS], DEPENDOP_GREATER, 0);
}

static void Start(Sparks *pSparks, PlaneInfo *ppi)
{
    pSparks->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    for (int32_t i = 0; i < FOUNTAINS_MOST; i++) {
        pSparks->afRoam[i] = RandomUnit(&pSparks->random);
        pSparks->afSway[i] = RandomUnit(&pSparks->random);
        pSparks->afDue[i] = 0;
    }
    std::fill_n(pSparks->aSpark, SPARKS_MOST, Spark{});
    pSparks->iNext = 0;
    pSparks->fSinceBurst = BURST_REST_SECONDS;
    pSparks->bBurst = false;
    pSparks->clock = {};
    SettleControls(pSparks->apControl, pSparks->afLook);
    pSparks->fUpwards = pSparks->afLook[CONTROL_GRAVITY] < 0 ? -1.0f : 1.0f;
}

static void MoveSpark(Spark *pSpark, const float *pfLook, float fSeconds)
{
    // Towards the wind, as much of the way as the drag takes; the fall on top.
    const float fSlowed = 1 - std::exp(-pfLook[CONTROL_DRAG] * fSeconds);
    pSpark->xSpeed += (pfLook[CONTROL_WIND] - pSpark->xSpeed) * fSlowed;
    pSpark->ySpeed -= pSpark->ySpeed * fSlowed + pfLook[CONTROL_GRAVITY] * fSeconds;
    pSpark->x += pSpark->xSpeed * fSeconds;
    pSpark->y += pSpark->ySpeed * fSeconds;
    pSpark->fAge += fSeconds;
}

static void AddSpark(Sparks *pSparks, float x, float y, float fDirection, float fSpeed, float fTurns)
{
    StockRandom *pRandom = &pSparks->random;
    Spark *pSpark = &pSparks->aSpark[pSparks->iNext];
    pSparks->iNext = (pSparks->iNext + 1) % SPARKS_MOST;
    *pSpark = {x, y, fSpeed * CosineTurn(fDirection), fSpeed * SineTurn(fDirection), 0, 0, fTurns, 0};
    pSpark->fLife = pSparks->afLook[CONTROL_LIFE] * RandomBetween(pRandom, 0.5f, 1.2f);
    pSpark->fSize = RandomBetween(pRandom, 0.6f, 1.3f);
    pSpark->fTurns += RandomBetween(pRandom, -0.12f, 0.12f);
}

// Fountains stand low where sparks fall and high where they rise, and stroll sideways.
static void RunFountain(Sparks *pSparks, int32_t i, const View &view, float fShare, float fSeconds)
{
    const float *pfLook = pSparks->afLook, fSpeed = pfLook[CONTROL_SPEED], fUp = pSparks->fUpwards;
    StockRandom *pRandom = &pSparks->random;
    const float x = view.xReach * 0.75f * SineTurn(pSparks->afRoam[i]);
    const float y = -0.8f * view.yReach * fUp * (1 - 0.25f * FoldUnit(pSparks->afSway[i] * 2));
    const float fMiddle = 0.25f * fUp + 0.07f * SineTurn(pSparks->afSway[i]) - 0.04f * x / view.xReach * fUp;
    pSparks->afDue[i] += fShare * pfLook[CONTROL_FLOW] * fSeconds;
    for (; pSparks->afDue[i] >= 1; pSparks->afDue[i]--) {
        const float fSide = RandomUnit(pRandom) - RandomUnit(pRandom);
        AddSpark(pSparks, x, y, fMiddle + 0.5f * pfLook[CONTROL_SPRAY] * fSide,
                 fSpeed * RandomBetween(pRandom, 0.75f, 1.1f), pfLook[CONTROL_SPREAD] * (float)i * 0.6f);
    }
}

static void RunFountains(Sparks *pSparks, const View &view, float fSeconds)
{
    const float fCount = pSparks->afLook[CONTROL_FOUNTAINS];
    const float fTarget = std::clamp(pSparks->afLook[CONTROL_GRAVITY] * 8, -1.0f, 1.0f);
    Approach(&pSparks->fUpwards, fTarget, fSeconds, 1.5f);
    for (int32_t i = 0; i < FOUNTAINS_MOST; i++) {
        AdvancePhase(&pSparks->afRoam[i], 0.021f + 0.006f * (float)i, fSeconds);
        AdvancePhase(&pSparks->afSway[i], 0.11f - 0.013f * (float)i, fSeconds);
        const float fShare = std::clamp(fCount - (float)i, 0.0f, 1.0f) / std::max(fCount, 1.0f);
        RunFountain(pSparks, i, view, fShare, fSeconds);
    }
}

static void RunBursts(Sparks *pSparks, const View &view, float fSeconds)
{
    const bool bWas = pSparks->bBurst;
    pSparks->bBurst = ReadBoolean(pSparks->apControl[CONTROL_BURST]);
    pSparks->fSinceBurst += fSeconds;
    if (bWas || !pSparks->bBurst || pSparks->fSinceBurst < BURST_REST_SECONDS)
        return;
    pSparks->fSinceBurst = 0;
    StockRandom *pRandom = &pSparks->random;
    const float x = view.xReach * RandomBetween(pRandom, -0.75f, 0.75f);
    const float y = view.yReach * RandomBetween(pRandom, -0.4f, 0.75f);
    const float fTurns = pSparks->afLook[CONTROL_SPREAD] * RandomBetween(pRandom, -1, 1);
    const float fSpeed = RandomBetween(pRandom, 0.25f, 0.6f);
    for (int32_t i = ReadInteger(pSparks->apControl[CONTROL_BURSTSIZE]); i > 0; i--) {
        const float fFast = std::sqrt(RandomUnit(pRandom)); // an even disc; most near its rim
        AddSpark(pSparks, x, y, RandomUnit(pRandom), fSpeed * (0.25f + 0.75f * fFast), fTurns);
    }
}

static void RunSparks(Sparks *pSparks, const Canvas &canvas, const Paint &paint, const View &view, float fSeconds)
{
    const float *pfLook = pSparks->afLook, fHardness = HardnessOf(pfLook[CONTROL_HARDNESS], 2.5f);
    for (Spark &spark : pSparks->aSpark) {
        if (spark.fLife <= 0)
            continue;
        const bool bFresh = spark.fAge <= 0; // left at any moment of the frame
        const Spark before = spark;
        MoveSpark(&spark, pfLook, bFresh ? fSeconds * RandomUnit(&pSparks->random) : fSeconds);
        if (spark.fAge >= spark.fLife || std::fabs(spark.x) > view.xReach + 1 || std::fabs(spark.y) > view.yReach + 1)
            spark.fLife = 0;
        const float fGone = std::min(spark.fAge / std::max(before.fLife, 0.01f), 1.0f), fLeft = 1 - fGone * fGone;
        const float fRadius = 0.01f * pfLook[CONTROL_THICKNESS] * spark.fSize * (0.5f + 0.5f * fLeft);
        const float fPlace = PlaceOfTurns(pfLook[CONTROL_PLACE] + spark.fTurns) * (0.55f + 0.45f * fLeft);
        PaintStreak(canvas, paint, PointInView(view, before.x, before.y, fRadius * 0.8f, fPlace, 0.9f * fLeft),
                    PointInView(view, spark.x, spark.y, fRadius, fPlace, 0.9f * fLeft), fHardness);
    }
}

static uint32_t Draw(Sparks *pSparks, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pSparks->clock, ppi);
    EaseControls(pSparks->apControl, afEase, pSparks->afLook, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pSparks->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return 0;
    const View view = ViewOf(canvas);
    RunFountains(pSparks, view, fSeconds);
    RunBursts(pSparks, view, fSeconds);
    RunSparks(pSparks, canvas, paint, view, fSeconds);
    return 0;
}

STOCK_DRAWING_MODULE(Sparks)
