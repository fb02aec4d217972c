// FrameRecorder.h -- saves every frame to a numbered picture, cut loose from the clock; and the single-frame capture
#pragma once

#include "include/hosttypes.h"
#include "output/pictures/PictureQueue.h"
#include "platform/BaseTypes.h"
#include "platform/Listeners.h"

#include <string>
#include <string_view>

constexpr u32 RECORD_SECONDS_ENDLESS = 0xFFFFFF; // until stopped by hand
constexpr u32 RECORD_FRAMES_A_SECOND = 60;
constexpr u32 RECORD_TIME_SCALE = 20; // during a recording; the level and the controls move so much slower
constexpr u32 RECORD_LIMIT_ENDLESS = RECORD_SECONDS_ENDLESS * RECORD_FRAMES_A_SECOND;

// All on the main thread. GlobalSettings.bRecording says whether the recorder is armed or runs.
extern u64 qwRecordStartTick; // no frame is saved before this tick
extern u32 nRecordFrame;      // number of the next frame, from 1
extern u32 nRecordLimit;      // last frame number; RECORD_LIMIT_ENDLESS: none
extern u64 qwSavedTimeScale;  // the time scale before the recording

// Told how it goes; the text is valid during the call.
extern Listeners<void(const char16_t *pszText)> RecorderStatusListeners;
// Saves the pictures of the next recording; null: SavePicture. For tests.
extern SavePictureFn pfnRecorderSave;

// Starts a recording of so many seconds that begins after the delay, or stops the one that runs. A name pattern that
// cannot be used is told in the status, and nothing starts.
void ToggleFrameRecorder(u32 dwDelayMs, u32 dwSeconds);
// Stops a recording that runs and waits for the last pictures. For the program's end.
void FinishFrameRecorder();
// Gives the rest that runs the length that the settings say now.
void AdjustRest();
// Before every turn of the main loop: keeps the next frame back while the encoders have no room for it, and reports the
// end of a recording when its last picture is written. One that was started meanwhile begins only then.
void PaceRecorder();
// Serves a requested screen capture and a running recording with a finished frame. A presenter.
u32 RecordStep(const HostBitmap *hbm, void *pvContext = nullptr);

// Checks folder and name pattern of the frames. *pText receives a sample path, or what is wrong. Non-zero when valid.
u32 CheckFramePath(std::u16string_view folder, std::u16string_view format, std::u16string *pText);
// Path of a screen capture at that tick.
std::u16string CapturePath(u64 qwTick);
