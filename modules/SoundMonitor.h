// SoundMonitor.h -- the binding of the sound monitor library
#pragma once

#include "platform/BaseTypes.h"
#include "platform/Listeners.h"
#include "state/GlobalSettings.h"

#include <string>

constexpr i32 MONITOR_ARGUMENT = 20;       // what the library is started with
constexpr u32 MONITOR_STOP_MS = 10;        // from the stop until the library's block is freed
constexpr f32 SILENT_LEVEL = 0.0003f;      // dynamic level below which there is no sound
constexpr u32 SILENT_AFTER_MS = 1000;      // and for how long until that counts
constexpr u32 MONITOR_TIME_SCALE_MAX = 99; // a larger time scale is not passed on

// They show an error to the user. Where nobody listens it becomes a notice.
extern Listeners<void(const char16_t *pszTitle, const char16_t *pszText)> ErrorListeners;

// Loads the library that the path table names, starts it and completes the binding. On failure the binding is all
// zero again, the cause stands on standard error (a missing file: in a message), and the program goes on without
// sound. A complete binding stays as it is. [main-thread]
void BindSoundMonitor(SoundMonitorBinding *pBinding);

// Stops the monitor, frees its block, unloads the library and clears the binding. Nothing if it is not complete.
// Takes the 10 ms that the library's threads are given to end. [main-thread]
void UnbindSoundMonitor(SoundMonitorBinding *pBinding);

// Non-zero when no level can be had, or when the dynamic level has been too low for more than a second, counted from
// the first call that found it so. [main-thread]
u32 SoundIsQuiet();

// Passes the time scale on to the simulated level of the bound monitor when it lies from 1 to 99. [main-thread]
void SetMonitorTimeScale(u32 nScale);

// One line of UTF-8 text: what the library listens to, or why nothing. Non-zero if there is something. Works with and
// without a bound monitor; without one it may wait two seconds for the sound server. [main-thread]
u32 DescribeSoundSource(std::string *psText);
