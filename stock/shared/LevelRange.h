// LevelRange.h -- automatic gain: the range that the music fills now, mapped to 0 to 1
#pragma once

#include "platform/BaseTypes.h"

constexpr u32 RANGE_SPANS = 16;
constexpr u32 HOMING_SAMPLES_MIN = 100;
constexpr u32 HOMING_SAMPLES_MAX = 20000;

// Follows the loudest and the softest level of the last seconds. The range widens fast and narrows slowly: within
// steady music the loudest level of the last seconds does not change from beat to beat, so neither does the gain.
struct LevelRange {
    f32 fHighLog; // ends of the range in use, log2 of the level
    f32 fLowLog;
    f32 fSlow;    // the level, slowed so that a click does not move the range
    f32 fStepMs;  // time from one level to the next
    f32 fSlowing; // shares of the way gone in one step
    f32 fWiden;
    f32 fNarrow;
    u32 nHoming; // levels over which the range looks back
    u32 iSpan;   // the span being filled
    u32 nInSpan; // levels in it so far
    u32 nSpans;  // spans in use, this one included
    f32 afSpanHigh[RANGE_SPANS];
    f32 afSpanLow[RANGE_SPANS];
};

// Starts with the range of ordinary music and looks back over six seconds. fStepMs: time between two levels.
void InitLevelRange(LevelRange *pRange, f32 fStepMs);

// How many levels the range looks back over, HOMING_SAMPLES_MIN to HOMING_SAMPLES_MAX (limited to it). After music
// has become quieter, the gain has homed in on it about twice that time later.
void SetRangeHoming(LevelRange *pRange, u32 nSamples);

// Takes the next level. Levels without sound leave the range as it is, so a pause does not turn up the gain.
void FollowRange(LevelRange *pRange, f32 fRaw);

// The level within the range, 0 to 1; above 0 for any fRaw above 0. The gain is limited: music that is quieter than
// 48 dB below full scale stays low.
f32 DynamicLevel(const LevelRange *pRange, f32 fRaw);
