// RotorShape.h -- the figure of the rotor: how it moves and how it is drawn
#ifndef VORTICADE_ROTOR_SHAPE_H
#define VORTICADE_ROTOR_SHAPE_H

#include "../common/StockPen.h"

#define ROTOR_COPIES_MOST 12
#define ROTOR_JOINTS_MOST 4
#define ROTOR_LEAD 3 // poses that a trace shares with the one before

// The controls, eased and in the units of the drawing.
struct RotorLook {
    float fCopies, fJoints; // between whole numbers while they change
    float fMirror;          // 0 to 1
    float fReach;           // 1: half the shorter side
    float fSpin, fWhirl;    // turns per second
    float fDrift;           // 1: half the picture
    float fThickness;       // part of the shorter side
    float fTaper;           // -1 to 1
    float fHardness;        // of the strokes
    float fArm;             // opacity of the arm, 0 to 1
    float fPlace, fSpread;  // turns through the palette
};

struct Joint {
    float x, y;
};

// The figure at one moment, in parts of the picture, so that it outlives a change of size.
struct Pose {
    Joint aJoint[ROTOR_JOINTS_MOST + 1]; // against the middle, at a reach of 1; the root first
    float fSpin;                         // turns
    float xMiddle, yMiddle;              // 0 to 1 over the picture
    float fReach, fCopies;
};

// What turns, in turns; from the seed.
struct RotorMotion {
    float fSpinPhase;
    float afPhase[ROTOR_JOINTS_MOST];  // of each joint against the whole
    float afRatio[ROTOR_JOINTS_MOST];  // of each joint's speed to the whirl
    float afLength[ROTOR_JOINTS_MOST]; // share of the reach
    float afDrift[4];
    uint32_t bTrail;
    Pose aTrail[ROTOR_LEAD]; // if bTrail: the last poses of the trace so far
};

void SeedRotor(RotorMotion *pMotion, StockRandom *pRandom);

// Moves the figure on and draws it all along the way, so that fast arms leave no gaps.
void DrawRotor(const Canvas &canvas, const Paint &paint, const RotorLook &look, RotorMotion *pMotion, float fSeconds);

#endif
