// PMStars.cpp -- PMStars.dll, a painter: a flight through stars
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define STARS_MOST 1200
#define STARS_NEAR 0.03f // depth at which a star is behind us; the farthest ones stand at 1

enum { FIELD_SPACE, FIELD_TUNNEL, FIELD_PLAINS, FIELD_SPIRAL, FIELDS };

enum {
    CONTROL_FIELD,
    CONTROL_COUNT,
    CONTROL_SPEED,
    CONTROL_ROLL,
    CONTROL_STEER,
    CONTROL_LENS,
    CONTROL_THICKNESS,
    CONTROL_HARDNESS,
    CONTROL_STREAK,
    CONTROL_TWINKLE,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {0, 1.5f, 0.35f, 1, 1, 1, 0.1f, 0.5f, 0.5f, 0.5f, 0.4f, 1.5f, 0};

static const float afSteerSpeed[4] = {0.019f, 0.033f, 0.023f, 0.041f}; // turns per second

struct Star {
    float x, y, z; // beside the way and above it; depth
    float fTurns;  // color against the place
    float fSize;   // share of the thickness
    float fPhase;  // of its twinkle, turns
    float fFresh;  // 0 to 1: how far it has come out
};

struct Stars {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aFieldRow[FIELDS], aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    StockRandom random;
    Star aStar[STARS_MOST];
    float fRoll, fTwinkle, fArm, afSteer[4];
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Starfield",
                   u"A flight through stars that leave streaks, faster with the sound");
}

static void AddControls(Stars *pStars, const ControlMaker &maker)
{
    static const char16_t *const aszField[FIELDS] = {u"Open space", u"Tunnel", u"Floor and ceiling", u"Spiral arms"};
    ControlRecord **ap = pStars->apControl;
    ap[CONTROL_FIELD] = AddItemSelect(maker, u"Field\0Shape\0", u"How the stars lie along the way", pStars->aFieldRow,
                                      aszField, FIELD_SPACE, FromRandom());
    ap[CONTROL_COUNT] = AddInteger(maker, u"Field\0Stars\0", u"How many stars there are", {1, STARS_MOST}, {160, 520},
                                   300, FromWave(41000));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Flight\0Speed\0", u"Of the flight; below 0 it goes backwards", {-2, 2},
                                 {0.06f, 0.6f}, 0.2f, FromSound(20));
    ap[CONTROL_ROLL] =
        AddFloat(maker, u"Flight\0Roll\0", u"Turns around the way in a minute", {-30, 30}, {-3, 3}, 1, FromWave(37000));
    ap[CONTROL_STEER] = AddFloat(maker, u"Flight\0Steer\0", u"How far the way swings from the middle of the picture",
                                 {0, 1}, {0.05f, 0.5f}, 0.25f, FromWave(53000));
    ap[CONTROL_LENS] = AddFloat(maker, u"Flight\0Lens\0", u"Low values look far ahead, high ones wide around",
                                {0.1f, 2}, {0.35f, 0.8f}, 0.5f, FromWave(43000));
    ap[CONTROL_THICKNESS] =
        AddThickness(maker, u"Of a star close by, in percent of the picture's height", {1, 2.4f}, 1.5f, FromSound(5));
    ap[CONTROL_HARDNESS] = AddHardness(maker);
    ap[CONTROL_STREAK] = AddFloat(maker, u"Pen\0Streak\0", u"Seconds of its way that a star is drawn over", {0, 1},
                                  {0.02f, 0.16f}, 0.06f, FromWave(19000));
    ap[CONTROL_TWINKLE] =
        AddFloat(maker, u"Pen\0Twinkle\0", u"How much far stars flicker", {0, 1}, {0.1f, 0.6f}, 0.3f, FromWave(26000));
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette close stars lie");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far apart the colors of the stars lie");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pStars->aPaintRow, PAINT_LIGHTEN);
}

static void PlaceStar(Stars *pStars, Star *pStar)
{
    StockRandom *pRandom = &pStars->random;
    const float fTurn = RandomUnit(pRandom), fWide = RandomBetween(pRandom, -1, 1);
    switch (ReadItem(pStars->apControl[CONTROL_FIELD])) {
    case FIELD_TUNNEL:
        pStar->x = 0.15f * CosineTurn(fTurn);
        pStar->y = 0.15f * SineTurn(fTurn);
        break;
    case FIELD_PLAINS:
        pStar->x = 1.6f * fWide;
        pStar->y = fTurn < 0.5f ? -0.14f : 0.14f;
        break;
    case FIELD_SPIRAL: {
        const float fArm = pStars->fArm + (float)RandomBelow(pRandom, 3) / 3 + 0.05f * fWide;
        const float fAway = 0.1f + 0.5f * RandomUnit(pRandom) * RandomUnit(pRandom);
        pStar->x = fAway * CosineTurn(fArm);
        pStar->y = fAway * SineTurn(fArm);
        break;
    }
    default:
        pStar->x = fWide * 1.2f;
        pStar->y = RandomBetween(pRandom, -1, 1);
    }
    pStar->fTurns = RandomBetween(pRandom, -0.5f, 0.5f);
    pStar->fSize = 0.4f + 0.9f * RandomUnit(pRandom) * RandomUnit(pRandom);
    pStar->fPhase = RandomUnit(pRandom);
    pStar->fFresh = 0;
}

static void Start(Stars *pStars, PlaneInfo *ppi)
{
    pStars->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pStars->clock = {};
    SettleControls(pStars->apControl, pStars->afLook);
    pStars->fRoll = pStars->fTwinkle = 0;
    for (float &fPhase : pStars->afSteer)
        fPhase = RandomUnit(&pStars->random);
    for (Star &star : pStars->aStar) {
        star.z = RandomBetween(&pStars->random, STARS_NEAR, 1);
        pStars->fArm = star.z * 1.5f;
        PlaceStar(pStars, &star);
    }
    pStars->fArm = 0;
}

static void MoveFlight(Stars *pStars, float fSeconds)
{
    AdvancePhase(&pStars->fRoll, pStars->afLook[CONTROL_ROLL] / 60, fSeconds);
    AdvancePhase(&pStars->fTwinkle, 0.7f, fSeconds);
    AdvancePhase(&pStars->fArm, 1.5f * pStars->afLook[CONTROL_SPEED], fSeconds);
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pStars->afSteer[i], afSteerSpeed[i], fSeconds);
}

// The picture of a moment: where the way leads, and how the world is turned.
struct Eye {
    View view;
    float xAim, yAim, fCosine, fSine, fLens;
};

// fBefore: seconds before this frame. A streak runs to where the star was seen then, so that it follows every turn.
static Eye EyeOf(const Stars *pStars, const Canvas &canvas, float fBefore)
{
    const float *pfLook = pStars->afLook;
    const View view = ViewOf(canvas);
    const auto Swing = [&](int32_t i) { return SineTurn(pStars->afSteer[i] - afSteerSpeed[i] * fBefore); };
    const float fRoll = pStars->fRoll - pfLook[CONTROL_ROLL] / 60 * fBefore;
    const float fWide = std::hypot(view.xReach, view.yReach);
    return {view,
            pfLook[CONTROL_STEER] * view.xReach * (0.65f * Swing(0) + 0.35f * Swing(1)),
            pfLook[CONTROL_STEER] * view.yReach * (0.65f * Swing(2) + 0.35f * Swing(3)),
            CosineTurn(fRoll),
            SineTurn(fRoll),
            0.45f / std::max(pfLook[CONTROL_LENS], 0.1f) * fWide};
}

static StrokePoint PointOfStar(const Eye &eye, const Star &star, float z)
{
    const float fScale = eye.fLens / std::max(z, STARS_NEAR);
    const float x = star.x * eye.fCosine - star.y * eye.fSine, y = star.x * eye.fSine + star.y * eye.fCosine;
    return PointInView(eye.view, eye.xAim + x * fScale, eye.yAim + y * fScale, 0, 0, 0);
}

static bool OutOfSight(const Eye &eye, const StrokePoint &point)
{
    const float fMargin = 0.15f * eye.view.fSide;
    return std::fabs(point.x - eye.view.xMiddle) > eye.view.xReach * eye.view.fSide + fMargin ||
           std::fabs(point.y - eye.view.yMiddle) > eye.view.yReach * eye.view.fSide + fMargin;
}

// A star that has passed comes back at the far end; flying backwards, the other way round.
static void RenewStar(Stars *pStars, Star *pStar, float fSpeed)
{
    PlaceStar(pStars, pStar);
    pStar->z = fSpeed >= 0 ? 1 : RandomBetween(&pStars->random, 0.12f, 0.5f);
}

static void DrawStar(const Stars *pStars, const Canvas &canvas, const Paint &paint, const Star &star, StrokePoint tail,
                     StrokePoint head, float fWeight)
{
    const float *pfLook = pStars->afLook, fNear = 1 - star.z;
    const float fTwinkle = 1 - pfLook[CONTROL_TWINKLE] * star.z * FoldUnit(star.fPhase + pStars->fTwinkle);
    const float fSide = (float)std::min(canvas.nWidth, canvas.nHeight);
    head.fRadius = 0.01f * pfLook[CONTROL_THICKNESS] * star.fSize * (0.3f + 0.7f * fNear * fNear) * fSide;
    head.fWeight = fWeight * fTwinkle * star.fFresh * (0.4f + 0.6f * fNear);
    head.fPlace = PlaceOfTurns(pfLook[CONTROL_PLACE] + pfLook[CONTROL_SPREAD] * star.fTurns) * (0.75f + 0.25f * fNear);
    tail.fRadius = 0.7f * head.fRadius;
    tail.fWeight = 0.5f * head.fWeight;
    tail.fPlace = 0.85f * head.fPlace;
    PaintStreak(canvas, paint, tail, head, HardnessOf(pfLook[CONTROL_HARDNESS], 2.5f));
}

static void FlyThrough(Stars *pStars, const Canvas &canvas, const Paint &paint, float fSeconds)
{
    const float fSpeed = pStars->afLook[CONTROL_SPEED], fCount = std::max(pStars->afLook[CONTROL_COUNT], 1.0f);
    const float fBefore = std::max(fSeconds, pStars->afLook[CONTROL_STREAK]);
    const Eye now = EyeOf(pStars, canvas, 0), then = EyeOf(pStars, canvas, fBefore);
    for (int32_t i = 0; i < STARS_MOST && (float)i < fCount; i++) {
        Star &star = pStars->aStar[i];
        star.z -= fSpeed * fSeconds;
        star.fFresh = std::min(star.fFresh + fSeconds * (1 + 5 * std::fabs(fSpeed)), 1.0f);
        const bool bPassed = fSpeed >= 0 && OutOfSight(then, PointOfStar(then, star, star.z + fSpeed * fBefore));
        if (star.z <= STARS_NEAR || star.z > 1 || bPassed)
            RenewStar(pStars, &star, fSpeed);
        DrawStar(pStars, canvas, paint, star, PointOfStar(then, star, star.z + fSpeed * fBefore),
                 PointOfStar(now, star, star.z), std::min(fCount - (float)i, 1.0f));
    }
}

static uint32_t Draw(Stars *pStars, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pStars->clock, ppi);
    EaseControls(pStars->apControl, afEase, pStars->afLook, fSeconds);
    MoveFlight(pStars, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pStars->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers > 0) // else no time has passed: there is nothing to add
        FlyThrough(pStars, canvas, paint, fSeconds);
    return 0;
}

STOCK_DRAWING_MODULE(Stars)
