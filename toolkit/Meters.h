// Meters.h -- the pixels of level meters and progress bars, their peak markers, and the two colour helpers
#pragma once

#include "platform/BaseTypes.h"

#include <span>

// Colours have the form 0x00BBGGRR; the pixels of a strip the form 0xFFRRGGBB, which is the bitmaps' own.

constexpr i32 PEAK_SAMPLES = 30;
constexpr u32 PEAK_STORES = 4;

// The recent levels of one meter. Zero-filled: silence for as long as can be remembered.
struct PeakStore {
    i32 iHead; // oldest entry of the ring
    i32 iTail; // next entry to write; equal to iHead when the ring is empty
    f32 afLevel[PEAK_SAMPLES];
    u64 aqwTick[PEAK_SAMPLES]; // ms, of each level
};

// One a meter, shared by the windows that show the same one. [main-thread]
extern PeakStore PeakStores[PEAK_STORES];
void ClearPeakStores();

// Position k on the way of length n from one colour to the other, each byte for itself; the first colour for n = 0.
u32 LerpColor(u32 dwFrom, u32 dwTo, i32 k, i32 n);
// Each byte times the factor, which counts as 100 above that.
u32 ScaleColor(u32 dwColor, f32 fFactor);

constexpr u32 PixelOfColor(u32 dwColor)
{
    return 0xFF000000 | (dwColor & 0xFF) << 16 | (dwColor & 0xFF00) | (dwColor >> 16 & 0xFF);
}

// Enters the level when the entry in turn is at least 20 ms old, and returns the largest level in the store.
f32 KeepPeak(PeakStore *pps, f32 fLevel, u64 qwTick);

// One row of a level meter: black lines every fourth column, the colours from dwLow at the left to dwHigh at the right
// end. pps may be null: no marker. A level outside of 0 to 1 is limited to that. qwTick in ms, see TickCount.
void FillMeterStrip(std::span<u32> strip, f32 fLevel, PeakStore *pps, u32 dwLow, u32 dwHigh, u64 qwTick);
// One row of a progress bar: full at level 1, without a marker.
void FillProgressStrip(std::span<u32> strip, f32 fLevel, u32 dwLow, u32 dwHigh);
