// RecordingSettings.h -- what the dialog "Recording Settings" edits
#pragma once

#include "platform/BaseTypes.h"

#include <span>
#include <string>
#include <string_view>

constexpr i32 RECORD_METHOD_KEYSTROKES = 0; // an external screen recorder
constexpr i32 RECORD_METHOD_FRAMES = 1;     // the program's own frame recorder
constexpr i32 RECORD_DELAY_MAX_MS = 10000;
constexpr i32 RECORD_SIDE_MIN = 128, RECORD_SIDE_MAX = 8192;

struct RecordingChoice {
    i32 nMethod; // RECORD_METHOD_*
    i32 nWidth, nHeight;
    i32 nDelayMs;
    std::u16string folder;
    std::u16string format;
};

struct RecordingSize {
    const char16_t *pszName;
    i32 nWidth, nHeight;
};
std::span<const RecordingSize> RecordingSizes();

// What the settings say now, within limits.
RecordingChoice CurrentRecordingChoice();
// Stores all of it, within limits. A recording that runs takes another size with its next frame. [main-thread]
void StoreRecordingChoice(const RecordingChoice &choice);
// The rest takes effect at once. [main-thread]
void StoreRecordingDelay(i32 nDelayMs);
// What stands in the way of a recording into that folder beside the name pattern; empty: nothing.
std::u16string DescribeRecordingTrouble(const RecordingChoice &choice);
// Makes the folder and those above it. Non-zero when it is there.
u32 CreateFrameFolder(std::u16string_view folder);
