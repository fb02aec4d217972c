// FrameStats.h -- how many frames a second are shown
#pragma once

#include "platform/BaseTypes.h"

constexpr u64 STATS_NOT_STARTED = 42; // value of both starts until the first reset

extern u64 qwFramesTotal;  // frames shown since qwStatsStart
extern u64 qwFramesRecent; // frames shown since qwRecentStart; shrinks with its window
extern u64 qwStatsStart;   // ticks
extern u64 qwRecentStart;

// Raises all counters of shown frames by one. [main-thread]
void CountShownFrame();
// Both windows begin now, without frames.
void ResetFrameStats();
// From now on, whenever a preset was opened, or one could not be. Once, at start; more often is as good.
void ResetFrameStatsWithPresets();
// Frames per second over the last 0.5 to 5 seconds: a window that has grown above five seconds shrinks to a tenth when
// it is read.
f32 GetRecentFps();
// Frames per second since the last reset. The very first call resets and answers 1.
f32 GetOverallFps();
