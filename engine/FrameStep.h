// FrameStep.h -- the heartbeat: one frame, when one is due
#pragma once

#include "state/PresetState.h"

// Draws every plane, mixes them and runs the post-processing modules, if a frame is due. Call it as often as you can.
// Non-zero when a new picture stands at lppsi->phbmOutput; null for lppsi gives no frame. Carries out a pending resize
// where no plane is being drawn: after the frame with plane threads, before it without. Allocates nothing but in a
// resize. [main-thread]
u32 RunFrameStep(PresetState *lppsi);

// What the last frame spent its time on, in nanoseconds of the real clock.
struct FrameStages {
    i64 nDraw; // planes, and the controls of the rules
    i64 nMix;
    i64 nPost; // post-processing modules
};
const FrameStages &LastFrameStages();

// Performance count from which on the gate is open.
i64 NextFrameCount();
// Keeps the gate shut up to that performance count, whatever the rate: a rest in which events are served. 0: no more.
void HoldFrames(i64 nUntilCount);
