// PMWalkers.cpp -- PMWalkers.dll, a painter: creatures that stroll about, alone or in flocks, some with tails
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define WALKERS_MOST 160
#define TAIL_POINTS 14

enum {
    CONTROL_COUNT,
    CONTROL_SPEED,
    CONTROL_RESTLESS,
    CONTROL_FLOCK,
    CONTROL_BOND,
    CONTROL_SIGHT,
    CONTROL_TAILS,
    CONTROL_LENGTH,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_PULSE,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {1.5f, 0.3f, 1, 1.5f, 0.8f, 0.8f, 1, 1, 0.5f, 0.5f, 0.1f, 0.4f, 1.5f, 0};

struct Walker {
    float x, y;                                     // units
    float xWay, yWay;                               // its direction, of length 1
    float fTurning;                                 // turns per second
    float fPace;                                    // share of the speed
    float fTurns;                                   // color against the place
    float fRank;                                    // 0 to 1: those below the share of tails have one
    float fPulsePhase;                              // turns
    float axTail[TAIL_POINTS], ayTail[TAIL_POINTS]; // where it was, newest first
};

struct Walkers {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    StockRandom random;
    Walker aWalker[WALKERS_MOST];
    float fTailStep; // 0 to 1: of the way to the next point of the tails
    float fPulse;    // turns
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Walkers",
                   u"Soft creatures that stroll about, alone or in flocks, some with tails");
}

static void AddControls(Walkers *pWalkers, const ControlMaker &maker)
{
    ControlRecord **ap = pWalkers->apControl;
    ap[CONTROL_COUNT] =
        AddInteger(maker, u"Walkers\0Count\0", u"How many there are", {1, WALKERS_MOST}, {18, 70}, 40, FromWave(49000));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Walkers\0Speed\0", u"Picture heights that they walk in a second", {0, 2},
                                 {0.08f, 0.5f}, 0.2f, FromSound(10));
    ap[CONTROL_RESTLESS] = AddFloat(maker, u"Walkers\0Restless\0", u"0 walks straight on, 1 turns all the time", {0, 1},
                                    {0.15f, 0.7f}, 0.4f, FromWave(27000));
    ap[CONTROL_FLOCK] =
        AddBoolean(maker, u"Flock\0Together\0", u"They keep to those that they see", 0.4f, true, FromPeriodic(17000));
    ap[CONTROL_BOND] = AddFloat(maker, u"Flock\0Bond\0", u"How firmly they keep together", {0, 1}, {0.3f, 0.9f}, 0.6f,
                                FromWave(33000));
    ap[CONTROL_SIGHT] = AddFloat(maker, u"Flock\0Sight\0", u"How far they see, in picture heights", {0.02f, 1},
                                 {0.15f, 0.4f}, 0.25f, FromWave(41000));
    ap[CONTROL_TAILS] = AddFloat(maker, u"Tails\0Share\0", u"How many of them draw a tail behind them", {0, 1},
                                 {0.4f, 1}, 0.7f, FromRandom());
    ap[CONTROL_LENGTH] = AddFloat(maker, u"Tails\0Length\0", u"Seconds of its way that a tail shows", {0.1f, 6},
                                  {0.5f, 1.7f}, 1.1f, FromWave(29000));
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of a walker, in percent of the picture's height", {0.8f, 1.8f}, 1.6f, FromWave(37000));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_PULSE] =
        AddFloat(maker, u"Pen\0Pulse\0", u"How much larger they are", {0, 3}, {0, 0.7f}, 0, FromSound(4));
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette they lie");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far apart their colors lie");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pWalkers->aPaintRow, PAINT_OVER);
    SetDependsOn(ap[CONTROL_BOND], ap[CONTROL_FLOCK], DEPENDOP_NOTEQUAL, 0);
    SetDependsOn(ap[CONTROL_SIGHT], ap[CONTROL_FLOCK], DEPENDOP_NOTEQUAL, 0);
    SetDependsOn(ap[CONTROL_LENGTH], ap[CONTROL_TAILS], DEPENDOP_GREATER, 0);
}

static void SeedWalker(Walker *pWalker, StockRandom *pRandom)
{
    *pWalker = {};
    pWalker->x = RandomBetween(pRandom, -0.8f, 0.8f);
    pWalker->y = RandomBetween(pRandom, -0.45f, 0.45f);
    const float fHeading = RandomUnit(pRandom);
    pWalker->xWay = CosineTurn(fHeading);
    pWalker->yWay = SineTurn(fHeading);
    pWalker->fPace = RandomBetween(pRandom, 0.6f, 1.3f);
    pWalker->fTurns = RandomBetween(pRandom, -0.5f, 0.5f);
    pWalker->fRank = RandomUnit(pRandom);
    pWalker->fPulsePhase = RandomUnit(pRandom);
    std::fill_n(pWalker->axTail, TAIL_POINTS, pWalker->x);
    std::fill_n(pWalker->ayTail, TAIL_POINTS, pWalker->y);
}

static void Start(Walkers *pWalkers, PlaneInfo *ppi)
{
    pWalkers->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pWalkers->clock = {};
    pWalkers->fTailStep = pWalkers->fPulse = 0;
    SettleControls(pWalkers->apControl, pWalkers->afLook);
    for (Walker &walker : pWalkers->aWalker)
        SeedWalker(&walker, &pWalkers->random);
}

struct Pull {
    float x, y;
};

// With the others' direction, towards them, and away from those too close: after Reynolds.
static Pull PullOfFlock(const Walkers *pWalkers, int32_t nWalkers, const Walker &walker)
{
    const float fSight = pWalkers->afLook[CONTROL_SIGHT], fClose = 0.3f * fSight;
    Pull pull = {};
    for (int32_t i = 0; i < nWalkers; i++) {
        const Walker &other = pWalkers->aWalker[i];
        const float dx = other.x - walker.x, dy = other.y - walker.y, fAway2 = dx * dx + dy * dy;
        if (fAway2 > fSight * fSight || fAway2 < 1e-9f)
            continue;
        const float fAway = std::sqrt(fAway2), fPush = fAway < fClose ? 4 * (1 - fAway / fClose) : -0.3f;
        pull.x += other.xWay - fPush * dx / fAway;
        pull.y += other.yWay - fPush * dy / fAway;
    }
    const float fBond = pWalkers->afLook[CONTROL_FLOCK] * pWalkers->afLook[CONTROL_BOND];
    const float fScale = fBond * std::min(1.0f, 1.5f / std::max(std::hypot(pull.x, pull.y), 1e-6f));
    return {pull.x * fScale, pull.y * fScale};
}

// Back into the picture, the more firmly the farther out.
static Pull PullOfEdges(const View &view, const Walker &walker)
{
    const auto Back = [](float f, float fReach) {
        const float fOut = std::max(std::fabs(f) - std::max(fReach - 0.12f, 0.0f), 0.0f);
        return std::copysign(12 * fOut, -f);
    };
    return {Back(walker.x, view.xReach), Back(walker.y, view.yReach)};
}

static void TurnWalker(Walkers *pWalkers, Walker *pWalker, const Pull &pull, float fSeconds)
{
    const float *pfLook = pWalkers->afLook;
    const float fNoise = RandomBetween(&pWalkers->random, -1, 1) * std::sqrt(fSeconds);
    Approach(&pWalker->fTurning, 0, fSeconds, 0.9f);
    pWalker->fTurning += 1.1f * pfLook[CONTROL_RESTLESS] * fNoise;
    // The quicker they walk, the quicker they have to turn to stay on the picture.
    const float fSteer = (pWalker->xWay * pull.y - pWalker->yWay * pull.x) * (0.25f + 1.2f * pfLook[CONTROL_SPEED]);
    const float fTurn = std::clamp(pWalker->fTurning + fSteer, -1.5f, 1.5f) * fSeconds;
    const float c = CosineTurn(fTurn), s = SineTurn(fTurn), x = pWalker->xWay, y = pWalker->yWay;
    const float fLength = std::max(std::hypot(x, y), 1e-3f); // stays 1 over the hours
    pWalker->xWay = (x * c - y * s) / fLength;
    pWalker->yWay = (x * s + y * c) / fLength;
}

static void MoveWalkers(Walkers *pWalkers, const View &view, int32_t nWalkers, float fSeconds)
{
    const float fSpeed = pWalkers->afLook[CONTROL_SPEED];
    const bool bFlock = pWalkers->afLook[CONTROL_FLOCK] > 0.01f;
    for (int32_t i = 0; i < nWalkers; i++) {
        Walker &walker = pWalkers->aWalker[i];
        const Pull flock = bFlock ? PullOfFlock(pWalkers, nWalkers, walker) : Pull{}, edge = PullOfEdges(view, walker);
        TurnWalker(pWalkers, &walker, {flock.x + edge.x, flock.y + edge.y}, fSeconds);
        const float fStep = fSpeed * walker.fPace * fSeconds;
        walker.x = std::clamp(walker.x + walker.xWay * fStep, -view.xReach - 0.3f, view.xReach + 0.3f);
        walker.y = std::clamp(walker.y + walker.yWay * fStep, -view.yReach - 0.3f, view.yReach + 0.3f);
    }
}

static void MoveTails(Walkers *pWalkers, float fSeconds)
{
    AdvancePhase(&pWalkers->fPulse, 0.8f, fSeconds);
    pWalkers->fTailStep += fSeconds * TAIL_POINTS / std::max(pWalkers->afLook[CONTROL_LENGTH], 0.1f);
    for (int32_t n = std::min((int32_t)pWalkers->fTailStep, TAIL_POINTS); n > 0; n--)
        for (Walker &walker : pWalkers->aWalker) {
            std::copy_backward(walker.axTail, walker.axTail + TAIL_POINTS - 1, walker.axTail + TAIL_POINTS);
            std::copy_backward(walker.ayTail, walker.ayTail + TAIL_POINTS - 1, walker.ayTail + TAIL_POINTS);
            walker.axTail[0] = walker.x;
            walker.ayTail[0] = walker.y;
        }
    pWalkers->fTailStep = WrapUnit(pWalkers->fTailStep);
}

// fTail: 0 to 1, how much of its tail shows.
static void DrawWalker(const Walkers *pWalkers, const Canvas &canvas, const Paint &paint, const View &view,
                       const Walker &walker, float fTail, float fWeight)
{
    const float *pfLook = pWalkers->afLook;
    const float fPulse = 1 + pfLook[CONTROL_PULSE] * (0.6f + 0.4f * SineTurn(pWalkers->fPulse + walker.fPulsePhase));
    const float fRadius = 0.01f * pfLook[CONTROL_THICKNESS] * (0.7f + 0.6f * walker.fRank) * fPulse;
    const float fPlace = pfLook[CONTROL_PLACE] + pfLook[CONTROL_SPREAD] * walker.fTurns;
    StrokePoint aPoint[TAIL_POINTS + 1];
    aPoint[0] = PointInView(view, walker.x, walker.y, fRadius, PlaceOfTurns(fPlace), fWeight);
    for (int32_t i = 0; i < TAIL_POINTS; i++) {
        const float fBack = std::min(((float)i + pWalkers->fTailStep) / (TAIL_POINTS - 1), 1.0f);
        const float fLeft = std::max(1 - fBack, 0.0f) * fTail;
        const float fTurns = fPlace + 0.3f * pfLook[CONTROL_SPREAD] * fBack;
        aPoint[i + 1] = PointInView(view, walker.axTail[i], walker.ayTail[i], fRadius * (0.15f + 0.65f * fLeft),
                                    PlaceOfTurns(fTurns), fWeight * fLeft);
    }
    if (fTail > 0)
        PaintCurve(canvas, paint, aPoint + 1, TAIL_POINTS, HardnessOf(pfLook[CONTROL_HARDNESS], 3), ENDS_ROUND);
    PaintStreak(canvas, paint, aPoint[0], aPoint[0], HardnessOf(pfLook[CONTROL_HARDNESS], 2));
}

static uint32_t Draw(Walkers *pWalkers, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pWalkers->clock, ppi);
    EaseControls(pWalkers->apControl, afEase, pWalkers->afLook, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pWalkers->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return 0;
    const View view = ViewOf(canvas);
    const float fCount = std::clamp(pWalkers->afLook[CONTROL_COUNT], 1.0f, (float)WALKERS_MOST);
    const int32_t nWalkers = (int32_t)std::ceil(fCount);
    MoveWalkers(pWalkers, view, nWalkers, fSeconds);
    MoveTails(pWalkers, fSeconds);
    for (int32_t i = 0; i < nWalkers; i++) {
        const Walker &walker = pWalkers->aWalker[i];
        const float fTail = std::clamp((pWalkers->afLook[CONTROL_TAILS] - walker.fRank) * 8, 0.0f, 1.0f);
        DrawWalker(pWalkers, canvas, paint, view, walker, fTail, 0.8f * std::min(fCount - (float)i, 1.0f));
    }
    return 0;
}

STOCK_DRAWING_MODULE(Walkers)
