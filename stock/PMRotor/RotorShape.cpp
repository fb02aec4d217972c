// RotorShape.cpp -- joints, copies and the strokes through them
#include "RotorShape.h"

#define ROTOR_ARM_POINTS 25 // along one arm, a curve through its joints
#define ROTOR_STEPS_MOST 5  // drawings in one frame
#define ROTOR_TRACE 5       // poses from one drawing to the next, through which the tip leaves its trace

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

void EaseLook(RotorLook *pLook, const RotorLook &target, float fSeconds)
{
    Approach(&pLook->fCopies, target.fCopies, fSeconds, 1.2f);
    Approach(&pLook->fJoints, target.fJoints, fSeconds, 1.2f);
    Approach(&pLook->fMirror, target.fMirror, fSeconds, 1.2f);
    Approach(&pLook->fReach, target.fReach, fSeconds, 0.5f);
    Approach(&pLook->fSpin, target.fSpin, fSeconds, 0.5f);
    Approach(&pLook->fWhirl, target.fWhirl, fSeconds, 0.3f);
    Approach(&pLook->fDrift, target.fDrift, fSeconds, 0.8f);
    Approach(&pLook->fThickness, target.fThickness, fSeconds, 0.06f);
    Approach(&pLook->fTaper, target.fTaper, fSeconds, 0.8f);
    Approach(&pLook->fHardness, target.fHardness, fSeconds, 0.5f);
    Approach(&pLook->fArm, target.fArm, fSeconds, 0.5f);
    Approach(&pLook->fPlace, target.fPlace, fSeconds, 0.3f);
    Approach(&pLook->fSpread, target.fSpread, fSeconds, 1.5f);
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

struct Joint {
    float x, y;
};

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

// The figure at one moment.
struct Pose {
    Joint aJoint[ROTOR_JOINTS_MOST + 1];
    float fSpin;            // turns
    float xMiddle, yMiddle; // pixels
};

static Pose TakePose(const Canvas &canvas, const RotorLook &look, const RotorMotion &motion)
{
    Pose pose = {};
    PlaceJoints(motion, look, pose.aJoint);
    pose.fSpin = motion.fSpinPhase;
    const float xDrift = 0.7f * SineTurn(motion.afDrift[0]) + 0.3f * SineTurn(motion.afDrift[1]);
    const float yDrift = 0.7f * SineTurn(motion.afDrift[2]) + 0.3f * SineTurn(motion.afDrift[3]);
    pose.xMiddle = 0.5f * (float)canvas.nWidth * (1 + look.fDrift * xDrift);
    pose.yMiddle = 0.5f * (float)canvas.nHeight * (1 + look.fDrift * yDrift);
    return pose;
}

// One of the symmetric copies.
struct Copy {
    float fTurn; // against the first one
    float fFlip; // -1 for a mirror image
    float fWeight;
    float fPlaceShift;
};

// A joint of the pose as a point of the copy, with the pen at this place along the arm (0 root, 1 tip).
static StrokePoint PenAt(const Canvas &canvas, const RotorLook &look, const Pose &pose, const Copy &copy,
                         const Joint &joint, float fAlong)
{
    const float fSide = (float)std::min(canvas.nWidth, canvas.nHeight), fReach = 0.5f * fSide * look.fReach;
    const float c = fReach * CosineTurn(pose.fSpin + copy.fTurn), s = fReach * SineTurn(pose.fSpin + copy.fTurn);
    const float y = joint.y * copy.fFlip;
    StrokePoint point = {};
    point.x = pose.xMiddle + joint.x * c - y * s;
    point.y = pose.yMiddle + joint.x * s + y * c;
    point.fRadius = look.fThickness * fSide * (1 - look.fTaper * (fAlong - 0.5f) * 1.6f);
    point.fPlace = 0.28f + 0.66f * FoldUnit(0.5f * (look.fPlace + look.fSpread * fAlong) + copy.fPlaceShift);
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
    PaintCurve(canvas, paint, aPoint, ROTOR_ARM_POINTS, look.fHardness, false);
}

static void DrawTrace(const Canvas &canvas, const Paint &paint, const RotorLook &look, const Pose *pPoses,
                      const Copy &copy)
{
    StrokePoint aPoint[ROTOR_TRACE];
    for (int32_t i = 0; i < ROTOR_TRACE; i++)
        aPoint[i] = PenAt(canvas, look, pPoses[i], copy, pPoses[i].aJoint[ROTOR_JOINTS_MOST], 1);
    PaintCurve(canvas, paint, aPoint, ROTOR_TRACE, look.fHardness, false);
}

static void DrawCopies(const Canvas &canvas, const Paint &paint, const RotorLook &look, const Pose *pPoses)
{
    for (int32_t i = 0; i < ROTOR_COPIES_MOST && (float)i < look.fCopies; i++) {
        // Between whole numbers the fan opens or closes, and its last arm comes or goes.
        Copy copy = {(float)i / std::max(look.fCopies, 1.0f), 1, std::min(look.fCopies - (float)i, 1.0f), 0};
        for (; copy.fWeight > 0.01f && copy.fFlip > -2; copy.fFlip -= 2) {
            DrawArm(canvas, paint, look, pPoses[ROTOR_TRACE - 1], copy);
            DrawTrace(canvas, paint, look, pPoses, copy);
            copy.fWeight *= look.fMirror;
            copy.fPlaceShift = 0.12f;
        }
    }
}

// Drawings that the frame needs for the tip to move by no more than about the pen's width between them.
static int32_t StepsOfFrame(const RotorLook &look, const RotorMotion &motion, float fSeconds)
{
    float fFastest = 0;
    for (int32_t i = 1; i < ROTOR_JOINTS_MOST; i++)
        fFastest = std::max(fFastest, std::fabs(motion.afRatio[i]) * look.fWhirl);
    const float fWay = 3.1f * look.fReach * (std::fabs(look.fSpin) + 0.5f * fFastest) * fSeconds;
    return std::clamp((int32_t)(fWay / std::max(look.fThickness, 0.002f)) + 1, 1, ROTOR_STEPS_MOST);
}

void DrawRotor(const Canvas &canvas, const Paint &paint, const RotorLook &look, RotorMotion *pMotion, float fSeconds)
{
    const int32_t nSteps = StepsOfFrame(look, *pMotion, fSeconds);
    const Paint layer = {paint.dwMode, paint.fLayers / (float)nSteps};
    Pose aPose[ROTOR_TRACE];
    for (int32_t iStep = 0; iStep < nSteps; iStep++) {
        aPose[0] = TakePose(canvas, look, *pMotion);
        for (int32_t i = 1; i < ROTOR_TRACE; i++) {
            MoveRotor(pMotion, look, fSeconds / (float)(nSteps * (ROTOR_TRACE - 1)));
            aPose[i] = TakePose(canvas, look, *pMotion);
        }
        DrawCopies(canvas, layer, look, aPose);
    }
}
