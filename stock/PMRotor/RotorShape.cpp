// RotorShape.cpp -- joints, copies and the strokes through them
#include "RotorShape.h"

#define ROTOR_ARM_POINTS 41 // along one arm, a curve through its joints
#define ROTOR_STEPS_MOST 12 // drawings in one frame
#define ROTOR_TRACE 4       // poses from one drawing to the next, through which the tip leaves its trace

void SeedRotor(RotorMotion *pMotion, StockRandom *pRandom)
{
    // Speeds near whole ratios draw figures that almost close and slowly turn.
    static const float afRatio[] = {-3, -2, -1.5f, -1, 1, 1.5f, 2, 3};
    *pMotion = {};
    pMotion->fSpinPhase = RandomUnit(pRandom);
    float fLength = 1;
    for (int32_t i = 0; i < ROTOR_JOINTS_MOST; i++) {
        pMotion->afPhase[i] = RandomUnit(pRandom);
        pMotion->afRatio[i] = i == 0 ? 0 : afRatio[RandomBelow(pRandom, 8)] * RandomBetween(pRandom, 0.93f, 1.07f);
        pMotion->afLength[i] = fLength;
        fLength *= RandomBetween(pRandom, 0.55f, 0.95f);
    }
    for (float &fPhase : pMotion->afDrift)
        fPhase = RandomUnit(pRandom);
}

static void MoveRotor(RotorMotion *pMotion, const RotorLook &look, float fSeconds)
{
    static const float afDriftSpeed[4] = {0.031f, 0.047f, 0.037f, 0.053f};
    AdvancePhase(&pMotion->fSpinPhase, look.fSpin, fSeconds);
    for (int32_t i = 1; i < ROTOR_JOINTS_MOST; i++)
        AdvancePhase(&pMotion->afPhase[i], look.fWhirl * pMotion->afRatio[i], fSeconds);
    for (int32_t i = 0; i < 4; i++)
        AdvancePhase(&pMotion->afDrift[i], afDriftSpeed[i], fSeconds);
}

// Joint positions against the middle at a reach of 1, before spin and copies. The last joints of a broken number
// fold in, which is how a joint comes and goes.
static void PlaceJoints(const RotorMotion &motion, const RotorLook &look, Joint *pJoint)
{
    float afLength[ROTOR_JOINTS_MOST], fSum = 0;
    for (int32_t i = 0; i < ROTOR_JOINTS_MOST; i++) {
        afLength[i] = motion.afLength[i] * std::clamp(look.fJoints - (float)i, 0.0f, 1.0f);
        fSum += afLength[i];
    }
    float fExtent = 0;
    pJoint[0] = {0, 0};
    for (int32_t i = 0; i < ROTOR_JOINTS_MOST; i++) {
        const float fLength = afLength[i] / std::max(fSum, 0.001f);
        pJoint[i + 1] = {pJoint[i].x + fLength * CosineTurn(motion.afPhase[i]),
                         pJoint[i].y + fLength * SineTurn(motion.afPhase[i])};
        fExtent = std::max(fExtent, std::hypot(pJoint[i + 1].x, pJoint[i + 1].y));
    }
    // A folded arm would leave nothing but a knot in the middle: it grows as it folds.
    const float fGrow = 1 / (0.35f + 0.65f * fExtent);
    for (int32_t i = 1; i <= ROTOR_JOINTS_MOST; i++)
        pJoint[i] = {pJoint[i].x * fGrow, pJoint[i].y * fGrow};
}

// The arm as a quadratic spline: starts at the root, ends at the tip, and leans towards the joints between.
static Joint PointOfArm(const Joint *pJoint, float fAlong)
{
    const float f = fAlong * (ROTOR_JOINTS_MOST + 1);
    const int32_t i = std::min((int32_t)f, ROTOR_JOINTS_MOST);
    const float t = f - (float)i;
    const auto Spline = [&](float a, float b, float c) {
        return 0.5f * ((a + b) + 2 * (b - a) * t + (a - 2 * b + c) * t * t);
    };
    const Joint &a = pJoint[std::max(i - 1, 0)], &b = pJoint[i], &c = pJoint[std::min(i + 1, ROTOR_JOINTS_MOST)];
    return {Spline(a.x, b.x, c.x), Spline(a.y, b.y, c.y)};
}

static Pose TakePose(const RotorLook &look, const RotorMotion &motion)
{
    Pose pose = {};
    PlaceJoints(motion, look, pose.aJoint);
    pose.fSpin = motion.fSpinPhase;
    pose.xMiddle = 0.5f * (1 + look.fDrift * Stray(motion.afDrift));
    pose.yMiddle = 0.5f * (1 + look.fDrift * Stray(motion.afDrift + 2));
    pose.fReach = look.fReach;
    pose.fCopies = std::max(look.fCopies, 1.0f);
    return pose;
}

// One of the symmetric copies. All have the same colors: where two tips travel together, neither shows stripes.
struct Copy {
    int32_t iCopy; // around the middle
    float fFlip;   // -1 for a mirror image
    float fWeight;
};

// A joint of the pose as a point of the copy, with the pen at this place along the arm (0 root, 1 tip).
static StrokePoint PenAt(const Canvas &canvas, const RotorLook &look, const Pose &pose, const Copy &copy,
                         const Joint &joint, float fAlong)
{
    const float fSide = (float)std::min(canvas.nWidth, canvas.nHeight), fReach = 0.5f * fSide * pose.fReach;
    const float fTurn = pose.fSpin + (float)copy.iCopy / pose.fCopies;
    const float c = fReach * CosineTurn(fTurn), s = fReach * SineTurn(fTurn), y = joint.y * copy.fFlip;
    StrokePoint point = {};
    point.x = pose.xMiddle * (float)canvas.nWidth + joint.x * c - y * s;
    point.y = pose.yMiddle * (float)canvas.nHeight + joint.x * s + y * c;
    point.fRadius = look.fThickness * fSide * (1 - look.fTaper * (fAlong - 0.5f) * 1.6f);
    point.fPlace = PlaceOfTurns(look.fPlace + look.fSpread * fAlong);
    point.fWeight = copy.fWeight;
    return point;
}

static void DrawArm(const Canvas &canvas, const Paint &paint, const RotorLook &look, const Pose &pose, const Copy &copy)
{
    StrokePoint aPoint[ROTOR_ARM_POINTS];
    for (int32_t i = 0; i < ROTOR_ARM_POINTS; i++) {
        const float fAlong = (float)i / (ROTOR_ARM_POINTS - 1);
        aPoint[i] = PenAt(canvas, look, pose, copy, PointOfArm(pose.aJoint, fAlong), fAlong);
        aPoint[i].fWeight *= look.fArm * std::min(fAlong * 6, 1.0f); // soft where all the roots meet
    }
    PaintCurve(canvas, paint, aPoint, ROTOR_ARM_POINTS, look.fHardness, ENDS_ROUND);
}

static void DrawTrace(const Canvas &canvas, const Paint &paint, const RotorLook &look, const Pose *pPoses,
                      const Copy &copy, uint32_t dwEnds)
{
    StrokePoint aPoint[ROTOR_LEAD + ROTOR_TRACE];
    for (int32_t i = 0; i < ROTOR_LEAD + ROTOR_TRACE; i++)
        aPoint[i] = PenAt(canvas, look, pPoses[i], copy, pPoses[i].aJoint[ROTOR_JOINTS_MOST], 1);
    // It passes once over a pixel, however many steps it takes: one layer.
    const int32_t iFirst = dwEnds & ENDS_LED_START ? 0 : 1;
    PaintCurve(canvas, {paint.dwMode, 1}, aPoint + iFirst, ROTOR_LEAD + ROTOR_TRACE - iFirst, look.fHardness, dwEnds);
}

static void DrawCopies(const Canvas &canvas, const Paint &paint, const RotorLook &look, const Pose *pPoses,
                       uint32_t dwTraceEnds)
{
    for (int32_t i = 0; i < ROTOR_COPIES_MOST && (float)i < look.fCopies; i++) {
        // Between whole numbers the fan opens or closes, and its last arm comes or goes.
        Copy copy = {i, 1, std::min(look.fCopies - (float)i, 1.0f)};
        for (; copy.fWeight > 0.01f && copy.fFlip > -2; copy.fFlip -= 2) {
            DrawArm(canvas, paint, look, pPoses[ROTOR_LEAD + ROTOR_TRACE - 1], copy);
            DrawTrace(canvas, paint, look, pPoses, copy, dwTraceEnds);
            copy.fWeight *= look.fMirror;
        }
    }
}

// Drawings that the frame needs for the tip to move by no more than half the pen's width between them.
static int32_t StepsOfFrame(const Canvas &canvas, const RotorLook &look, RotorMotion motion, float fSeconds)
{
    const Copy copy = {0, 1, 1};
    const auto Tip = [&] {
        const Pose pose = TakePose(look, motion);
        return PenAt(canvas, look, pose, copy, pose.aJoint[ROTOR_JOINTS_MOST], 1);
    };
    const StrokePoint before = Tip();
    MoveRotor(&motion, look, fSeconds);
    const StrokePoint after = Tip();
    const float fWay = std::hypot(after.x - before.x, after.y - before.y);
    return (int32_t)std::min(fWay / std::max(0.6f * before.fRadius, 0.8f), ROTOR_STEPS_MOST - 1.0f) + 1;
}

void DrawRotor(const Canvas &canvas, const Paint &paint, const RotorLook &look, RotorMotion *pMotion, float fSeconds)
{
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return;
    const int32_t nSteps = StepsOfFrame(canvas, look, *pMotion, fSeconds);
    const Paint layer = {paint.dwMode, paint.fLayers / (float)nSteps};
    Pose aPose[ROTOR_LEAD + ROTOR_TRACE];
    if (!pMotion->bTrail)
        std::fill_n(pMotion->aTrail, ROTOR_LEAD, TakePose(look, *pMotion));
    pMotion->bTrail = 1;
    for (int32_t iStep = 0; iStep < nSteps; iStep++) {
        std::copy_n(pMotion->aTrail, ROTOR_LEAD, aPose);
        for (int32_t i = 0; i < ROTOR_TRACE; i++) {
            MoveRotor(pMotion, look, fSeconds / (float)(nSteps * ROTOR_TRACE));
            aPose[ROTOR_LEAD + i] = TakePose(look, *pMotion);
        }
        // Between frames a wind may have moved the trace on: there a round end bridges the gap.
        DrawCopies(canvas, layer, look, aPose, iStep == 0 ? ENDS_LED_END : ENDS_LED);
        std::copy_n(aPose + ROTOR_TRACE, ROTOR_LEAD, pMotion->aTrail);
    }
}
