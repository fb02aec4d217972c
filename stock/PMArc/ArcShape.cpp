// ArcShape.cpp -- rings turned in space and the strokes along them
#include "ArcShape.h"

#define ARC_POINTS 97    // along one ring
#define ARC_STEPS_MOST 4 // drawings in one frame

void SeedArcs(ArcMotion *pMotion, StockRandom *pRandom)
{
    *pMotion = {};
    float fSide = RandomBelow(pRandom, 2) ? 1.0f : -1.0f;
    for (ArcRing &ring : pMotion->aRing) {
        fSide = -fSide; // neighbours turn against each other
        ring.fStart = RandomUnit(pRandom);
        ring.fStartRatio = fSide * RandomBetween(pRandom, 0.6f, 1.5f);
        ring.fTilt = RandomUnit(pRandom);
        ring.fTiltRatio = RandomBetween(pRandom, 0.5f, 1.3f);
        ring.fAxis = RandomUnit(pRandom);
        ring.fAxisRatio = RandomBetween(pRandom, -0.5f, 0.5f);
    }
    pMotion->fGrowthPhase = RandomUnit(pRandom);
    for (float &fPhase : pMotion->afDrift)
        fPhase = RandomUnit(pRandom);
}

static void MoveArcs(ArcMotion *pMotion, const ArcLook &look, float fSeconds)
{
    static const float afDriftSpeed[4] = {0.023f, 0.041f, 0.029f, 0.043f};
    for (ArcRing &ring : pMotion->aRing) {
        AdvancePhase(&ring.fStart, look.fSpin * ring.fStartRatio, fSeconds);
        AdvancePhase(&ring.fTilt, look.fTumble * ring.fTiltRatio, fSeconds);
        AdvancePhase(&ring.fAxis, look.fTumble * ring.fAxisRatio, fSeconds);
    }
    const float fGrown = pMotion->fGrowthPhase + look.fGrowth * fSeconds;
    const int32_t nPlaces = (int32_t)std::floor(fGrown);
    pMotion->fGrowthPhase = WrapUnit(fGrown);
    pMotion->iFirstRing = (pMotion->iFirstRing + ARC_RINGS_MOST - nPlaces % ARC_RINGS_MOST) % ARC_RINGS_MOST;
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pMotion->afDrift[i], afDriftSpeed[i], fSeconds);
}

// A ring's plane in space: where its x and its y axis point.
struct RingFrame {
    float xMiddle, yMiddle; // pixels
    float fRadius;          // pixels
    float afX[3], afY[3];
    float fWeight;
    float fPlace;
};

static void TiltFrame(RingFrame *pFrame, const ArcRing &ring, float fTilt)
{
    const float fAngle = 0.25f * fTilt * SineTurn(ring.fTilt) + 0.04f * fTilt;
    const float xAxis = CosineTurn(ring.fAxis), yAxis = SineTurn(ring.fAxis);
    const float fFlat = CosineTurn(fAngle), fDeep = SineTurn(fAngle);
    // Rotation around an axis that lies in the picture (Rodrigues).
    pFrame->afX[0] = fFlat + xAxis * xAxis * (1 - fFlat);
    pFrame->afX[1] = xAxis * yAxis * (1 - fFlat);
    pFrame->afX[2] = -yAxis * fDeep;
    pFrame->afY[0] = xAxis * yAxis * (1 - fFlat);
    pFrame->afY[1] = fFlat + yAxis * yAxis * (1 - fFlat);
    pFrame->afY[2] = xAxis * fDeep;
}

// fTurn: where on the ring. What is nearer is larger, thicker and further up in the palette.
static StrokePoint PointOfRing(const RingFrame &frame, const ArcLook &look, float fTurn, float fThickness)
{
    const float c = CosineTurn(fTurn), s = SineTurn(fTurn);
    const float fDepth = c * frame.afX[2] + s * frame.afY[2];
    const float fNear = 1 / (1 - 0.35f * fDepth);
    StrokePoint point = {};
    point.x = frame.xMiddle + frame.fRadius * fNear * (c * frame.afX[0] + s * frame.afY[0]);
    point.y = frame.yMiddle + frame.fRadius * fNear * (c * frame.afX[1] + s * frame.afY[1]);
    point.fRadius = fThickness * fNear;
    point.fPlace = PlaceOfTurns(frame.fPlace + 0.4f * look.fSpread * fDepth);
    point.fWeight = frame.fWeight * (0.72f + 0.28f * fDepth);
    return point;
}

static void DrawRing(const Canvas &canvas, const Paint &paint, const ArcLook &look, const ArcRing &ring,
                     const RingFrame &frame)
{
    StrokePoint aPoint[ARC_POINTS];
    const bool bClosed = look.fSweep > 0.995f;
    const float fThickness = look.fThickness * (float)std::min(canvas.nWidth, canvas.nHeight);
    const float fSweep = bClosed ? 1 : look.fSweep;
    const float fTail = std::min((1 - fSweep) * 5, 1.0f); // an open arc thins out towards its tail
    for (int32_t i = 0; i < ARC_POINTS; i++) {
        const float fAlong = (float)i / (ARC_POINTS - 1);
        const float fHead = ring.fStartRatio > 0 ? fAlong : 1 - fAlong;
        const float fThin = 1 - fTail * (1 - fHead) * (1 - fHead);
        aPoint[i] = PointOfRing(frame, look, ring.fStart + fAlong * fSweep, fThickness * (0.35f + 0.65f * fThin));
        aPoint[i].fWeight *= fThin;
    }
    PaintCurve(canvas, paint, aPoint, ARC_POINTS, look.fHardness, bClosed ? ENDS_CLOSED : ENDS_ROUND);
}

static void DrawRings(const Canvas &canvas, const Paint &paint, const ArcLook &look, const ArcMotion &motion)
{
    RingFrame frame = {};
    const float fHalf = 0.5f * (float)std::min(canvas.nWidth, canvas.nHeight);
    frame.xMiddle = 0.5f * (float)canvas.nWidth * (1 + 0.16f * Stray(motion.afDrift));
    frame.yMiddle = 0.5f * (float)canvas.nHeight * (1 + 0.16f * Stray(motion.afDrift + 2));
    for (int32_t i = 0; i < ARC_RINGS_MOST; i++) {
        const float fPlace = ((float)i + motion.fGrowthPhase) / std::max(look.fRings, 1.0f);
        if (fPlace >= 1)
            break;
        const ArcRing &ring = motion.aRing[(motion.iFirstRing + i) % ARC_RINGS_MOST];
        frame.fRadius = fHalf * (look.fReach + look.fPulse) * (0.06f + 0.94f * fPlace);
        // A ring is born at the middle and dies at the rim without a jump.
        frame.fWeight = std::min(1.0f, std::min(fPlace * 5, (1 - fPlace) * 4));
        frame.fPlace = look.fPlace + look.fSpread * fPlace;
        TiltFrame(&frame, ring, look.fTilt);
        if (frame.fWeight > 0.01f)
            DrawRing(canvas, paint, look, ring, frame);
    }
}

static int32_t StepsOfFrame(const ArcLook &look, float fSeconds)
{
    const float fWay = 3.1f * look.fReach * (std::fabs(look.fTumble) + 0.5f * std::fabs(look.fSpin)) * fSeconds;
    return std::clamp((int32_t)(fWay / std::max(look.fThickness, 0.002f)) + 1, 1, ARC_STEPS_MOST);
}

void DrawArcs(const Canvas &canvas, const Paint &paint, const ArcLook &look, ArcMotion *pMotion, float fSeconds)
{
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return;
    const int32_t nSteps = StepsOfFrame(look, fSeconds);
    const Paint layer = {paint.dwMode, paint.fLayers / (float)nSteps};
    for (int32_t i = 0; i < nSteps; i++) {
        MoveArcs(pMotion, look, fSeconds / (float)nSteps);
        DrawRings(canvas, layer, look, *pMotion);
    }
}
