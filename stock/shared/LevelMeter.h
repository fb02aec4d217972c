// LevelMeter.h -- from samples to sound levels
#pragma once

#include "stock/shared/LevelRange.h"
#include "stock/shared/LevelReading.h"

#include <type_traits>

constexpr u32 METER_STEPS = 4; // the moving window advances by a quarter of its length
constexpr u32 METER_CHANNELS_MAX = 8;
constexpr u32 METER_WINDOW_MS = 20; // the usual window
constexpr u32 METER_WINDOW_MS_MIN = 4;
constexpr u32 METER_WINDOW_MS_MAX = 500;
constexpr u32 METER_RATE_MIN = 1000;
constexpr u32 METER_RATE_MAX = 768000;

// Turns a stream of samples into levels. Holds no clock and no memory of its own: the same samples at the same
// moments give the same levels, however they are cut into blocks. One thread at a time.
struct LevelMeter {
    u32 nRate;       // frames a second
    u32 nChannels;   // samples a frame
    u32 nWindowMs;   // length of the moving window
    u32 nStepFrames; // frames from one level to the next
    u32 nInStep;     // frames in the step so far
    u32 iStep;       // the step being filled
    f32 fDcPole;
    f32 afDcIn[METER_CHANNELS_MAX]; // the last sample before and after the constant part was taken out
    f32 afDcOut[METER_CHANNELS_MAX];
    f64 afEnergy[METER_STEPS]; // sum of the squares of each step
    f64 fFedMs;                // moment of the last frame; 0: none
    LevelRange Range;
    LevelReading Reading; // the result so far; copy it to ask for a level later
};
static_assert(std::is_trivially_copyable_v<LevelMeter>);

// nWindowMs: length of the moving window; 0: METER_WINDOW_MS. All arguments are limited to what is possible.
void InitLevelMeter(LevelMeter *pMeter, u32 nRate, u32 nChannels, u32 nWindowMs);

// Goes on with samples of another format. The gain and the reading stay.
void SetMeterFormat(LevelMeter *pMeter, u32 nRate, u32 nChannels);

// Takes nFrames frames of interleaved samples (full scale -1 to 1; null: so many frames of silence), the last of
// which belongs to the moment fEndMs. Samples that are no finite numbers count as 0.
void FeedLevelMeter(LevelMeter *pMeter, const f32 *pfSamples, u32 nFrames, f64 fEndMs);

// The expanded level of a raw level: 0 and 1 stay, and the lower half of the range takes three quarters of it.
f32 ExpandedLevel(f32 fRaw);
