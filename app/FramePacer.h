// FramePacer.h -- the wait between frames: asleep until shortly before the gate opens, then polling
#pragma once

#include "platform/BaseTypes.h"

// How long before the gate opens the polling begins: longer than a wake-up is late, short enough to cost under 2 % of a
// core at 60 frames a second.
constexpr i64 PACER_POLL_NS = 300000;

// Opens the timer. Its descriptor becomes readable when polling is to begin; watch it in the event loop, so that a
// wait for events ends in time. -1 on failure: then poll all the time. [main-thread]
int OpenPacer();
void ClosePacer();
// Sets the timer for the next opening of the gate. Non-zero: there is time to sleep; 0: poll now.
u32 ArmPacer();
// Takes the timer's notice off the descriptor.
void DrainPacer();
