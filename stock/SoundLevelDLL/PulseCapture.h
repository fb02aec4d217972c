// PulseCapture.h -- what the machine plays, as a stream of samples from the sound server
#pragma once

#include "stock/shared/LevelReading.h"

#include <string>

struct PulseCapture; // opaque

// Receives interleaved samples on the capture thread; pfSamples null: so many frames of silence.
typedef void (*CaptureSamplesFn)(void *pUser, const f32 *pfSamples, u32 nFrames, u32 nRate, u32 nChannels);

// Starts a thread that listens to the monitor of the server's default output, follows it when it changes, and looks
// for the server again every few seconds when there is none. Does not wait for the server. Null: no thread.
// [any-thread]
PulseCapture *StartPulseCapture(CaptureSamplesFn pfnSamples, void *pUser);

// Ends the thread and frees everything. No samples come after it has returned. Null is allowed. [any-thread]
void StopPulseCapture(PulseCapture *pCapture);

enum class CaptureState { Searching, NoServer, NoOutput, Listening };

// What is listened to now, and *psSource, one line about it. Searching: the server has not answered yet. [any-thread]
CaptureState DescribePulseCapture(PulseCapture *pCapture, std::string *psSource);
