// ControlSurface.h -- the monitor of a fluid sub-panel: the pixels of its wave or of its history, its marks and its
// bars
//
// All on the main thread. Pixels have the form 0xFFRRGGBB, the top row first.
#pragma once

#include "include/control.h"
#include "platform/BaseTypes.h"

#include <span>
#include <vector>

// Zero-filled: nothing is drawn yet.
struct ControlSurface {
    i32 nWidth, nHeight; // of the drawing, in pixels
    std::vector<u32> pixels;
    u32 bValid;      // the background is up to date
    f32 fPhaseDrawn; // phase that the background shows
};

// What the source of a control without a wave gives now; it may lie outside of 0 to 1.
f32 SurfaceLevel(const ControlRecord *pctl);

// Brings the background to this size and to the control's wave; without a wave it is an empty history. A size without
// a pixel leaves nothing to draw.
void DrawSurface(ControlSurface *pcs, const ControlRecord *pctl, i32 nWidth, i32 nHeight);
// One step of the history: two columns. Nothing for a wave.
void StepSurface(ControlSurface *pcs, const ControlRecord *pctl, f32 fLevel);
// What is seen at a tick: the drawing, the position in the wave, the threshold of a boolean. The span has the
// drawing's size.
void ShowSurface(const ControlSurface &cs, const ControlRecord *pctl, u64 qwTick, std::span<u32> picture);

// The scroll bars, which stand at the phase and at the threshold: the far end is 0.
constexpr i32 SURFACE_BAR_MAX = 10000;
i32 SurfaceBarPosition(f32 fUnit);
f32 SurfaceBarValue(i32 nPosition);
