// Clock.h -- the millisecond tick and the performance counter, both replaceable
#pragma once

#include "platform/BaseTypes.h"

// Milliseconds since some fixed moment. Drives modules, controls and timers. [any-thread]
u64 TickCount();

// Counts of the high-resolution counter, PerfFrequency() of them a second. Drives the frame gate. [any-thread]
i64 PerfCounter();
i64 PerfFrequency();

// Nanoseconds of the real clock, also while the two above are fixed: for time-outs and measurements. [any-thread]
i64 RealNanoseconds();

// Replaces both clocks by fixed ones that stand still until they are moved: for deterministic runs and tests.
// Moving the tick moves the counter by at least a second, so that the frame gate opens once for each move
// whatever the frame rate target. [main-thread]
void UseFixedClock(u64 qwTick);
void SetFixedTick(u64 qwTick);
// Moves the fixed counter alone, for tests of the gate.
void AdvanceFixedCounter(i64 nCounts);
void UseSystemClock();
bool ClockIsFixed();
