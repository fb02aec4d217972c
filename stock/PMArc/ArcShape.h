// ArcShape.h -- the figure of the arcs: rings in space that tumble, grow and open
#ifndef VORTICADE_ARC_SHAPE_H
#define VORTICADE_ARC_SHAPE_H

#include "../common/StockPen.h"

#define ARC_RINGS_MOST 10

// The controls, eased and in the units of the drawing.
struct ArcLook {
    float fRings;          // between whole numbers while it changes
    float fReach;          // 1: half the shorter side
    float fPulse;          // added to the reach
    float fSweep;          // part of the full ring that is drawn, 0 to 1
    float fSpin, fTumble;  // turns per second
    float fGrowth;         // ring distances per second, outwards
    float fTilt;           // 0: flat; 1: in all directions
    float fThickness;      // part of the shorter side
    float fHardness;       // of the strokes
    float fPlace, fSpread; // turns through the palette
};

// One ring's own way, from the seed.
struct ArcRing {
    float fStart, fStartRatio; // where its arc begins, and its speed to the spin
    float fTilt, fTiltRatio;   // how it tumbles
    float fAxis, fAxisRatio;   // around which axis in the plane of the picture
};

struct ArcMotion {
    ArcRing aRing[ARC_RINGS_MOST];
    float fGrowthPhase; // 0 to 1, from one ring's place to the next
    int32_t iFirstRing; // which ring is the innermost one
    float afDrift[4];
};

void SeedArcs(ArcMotion *pMotion, StockRandom *pRandom);
void DrawArcs(const Canvas &canvas, const Paint &paint, const ArcLook &look, ArcMotion *pMotion, float fSeconds);

#endif
