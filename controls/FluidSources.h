// FluidSources.h -- the evaluation of controls: fixed, random, wave, sound, periodic
#pragma once

#include "state/PresetState.h"

constexpr u32 SOUND_HISTORY = 44; // samples kept, newest first

// Brings one control up to date at the present tick. bReset draws new starting values. A source or a type that does
// not exist leaves the control alone. Allocates only when a file list is new. [plane-thread, main-thread]
void EvaluateControl(ControlRecord *pctl, bool bReset);
// The same for all controls of a slot, in order up to the first empty entry, at one reading of the tick.
void EvaluateControls(const ModuleSlot *pms, bool bReset);

// The period in milliseconds that a wave runs with: stretched by the time scale, DURATION_NEVER as good as endless.
// Stays at the largest number where the product would not fit. [any-thread]
u32 EffectiveWavePeriod(const ControlRecord *pctl);

// Unit number of a wave; fPhase is a fraction of the period. A period of 0 gives the value at the wave's start, and a
// phase that is negative or no number counts as 0. [any-thread]
f32 WaveValue(u32 dwWaveType, f32 fPhase, u32 nPeriod, u64 qwTick);

// The frame's sound level averaged with the nSamples newest entries of the history, at most 44. Without a sound block,
// or when its level is no finite number, the level is 0. [any-thread]
f32 SmoothedSoundLevel(const ControlRecord *pctl);

// Puts the frame's level into the history if more than 10 ms have passed since the last time. Called once a frame,
// before the planes are drawn, by nobody else: this is what keeps the history free of races. [main-thread]
void ShiftSoundHistory(u64 qwTick);
void ClearSoundHistory();

// A number from 0 to 1.
f32 UnitRandom();
