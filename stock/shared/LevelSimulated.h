// LevelSimulated.h -- a made-up sound level that breathes like music
#pragma once

#include "platform/BaseTypes.h"

constexpr u32 SIMULATED_SCALE_MAX = 99;

// Where the made-up music stands. Zero-filled is valid: it begins at 0 ms, with the scale 1 and the seed 0.
struct SimulatedTempo {
    f64 fAnchorMs;   // the music stood at fAnchorBeat at this moment of the caller's clock
    f64 fAnchorBeat; // in beats
    u64 qwSeed;      // another seed is another piece
    u32 nScale;      // 1 to SIMULATED_SCALE_MAX: so many times slower; 0 counts as 1
    u32 dwReserved;
};

// Changes the scale from this moment on. The music goes on from where it stands, so the level does not jump. A scale
// outside 1 to SIMULATED_SCALE_MAX changes nothing. Returns non-zero if it was taken. Not while another thread uses
// the same record.
u32 SetSimulatedScale(SimulatedTempo *pTempo, u32 nScale, f64 fNowMs);

// The place in the music, in beats.
f64 SimulatedBeatAt(const SimulatedTempo *pTempo, f64 fNowMs);

// The level at that moment, 0 to 1. A pure function: the same record and moment give the same level. It is steady:
// it moves by less than 0.12 in a hundredth of a beat. [any-thread]
f32 SimulatedLevelAt(const SimulatedTempo *pTempo, f64 fNowMs);
