// LevelReading.h -- what a level meter has found, and the level at any moment after that
#pragma once

#include "include/sound.h"
#include "platform/BaseTypes.h"
#include "stock/shared/LevelSimulated.h"

constexpr f32 QUIET_LEVEL = 0.0003f; // raw level below which there is no sound, 70 dB below full scale
constexpr f64 QUIET_AFTER_MS = 1000; // and for how long until that counts
constexpr f64 FADE_IN_MS = 1500;     // from no sound to the simulated level
constexpr f64 FADE_OUT_MS = 250;     // and back
constexpr f64 STALE_AFTER_MS = 250;  // without samples for longer, the levels fall
constexpr f64 STALE_FALL_MS = 250;   // to 0 in this time

// The levels at one moment. Moments are milliseconds of the caller's clock, the same one for all calls.
// Zero-filled is valid: no sound so far.
struct LevelReading {
    f64 fTimeMs;       // end of the last samples
    f64 fLastSoundMs;  // last moment with sound
    f64 fSoundStartMs; // moment from which there was sound without a long pause
    f32 fShareAtStart; // share of the simulated level at fSoundStartMs
    f32 fRaw;          // 0 to 1
    f32 fExpanded;     // 0 to 1
    f32 fDynamic;      // 0 to 1
    u32 bHeard;        // there was sound at some time
    u32 dwReserved;
};

// Notes that there is sound at this moment.
void NoteSound(LevelReading *pReading, f64 fNowMs);

// Non-zero when there has been no sound for QUIET_AFTER_MS. [any-thread]
u32 IsQuietAt(const LevelReading *pReading, f64 fNowMs);

// Share of the simulated level in VOLUMETYPE_DYNAMIC_SIMULATED, 0 to 1, steady over time. [any-thread]
f32 SimulatedShareAt(const LevelReading *pReading, f64 fNowMs);

// The level of a kind, 0 to 1. A kind outside VOLUMETYPE_* counts as VOLUMETYPE_DYNAMIC_SIMULATED. The other kinds
// are 0 while it is quiet. A pure function of its arguments. [any-thread]
f32 LevelAt(const LevelReading *pReading, const SimulatedTempo *pTempo, i32 nVolumeType, f64 fNowMs);
