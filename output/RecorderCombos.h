// RecorderCombos.h -- the named key combinations that start and stop external screen recorders
#pragma once

#include "platform/BaseTypes.h"

#include <string_view>

constexpr u32 RECORDER_COMBOS_MAX = 32;
constexpr u32 RECORDER_TEXT_CHARS = 42; // the terminating 0 included

struct RecorderCombo {
    char16_t szName[RECORDER_TEXT_CHARS];  // unique in the table without regard to case
    char16_t szStart[RECORDER_TEXT_CHARS]; // key names joined by "+"
    char16_t szStop[RECORDER_TEXT_CHARS];
};

struct RecorderComboTable {
    u32 bPrepared; // the built-in combinations have been entered
    u32 nCount;    // 0 to RECORDER_COMBOS_MAX
    RecorderCombo asCombo[RECORDER_COMBOS_MAX];
};

extern RecorderComboTable RecorderCombos; // [main-thread]
extern RecorderCombo CurrentCombo;        // the combination in use; outside the table

// Enters the built-in combinations and takes the first one as the current one, once; later calls do nothing.
u32 PrepareRecorderCombos();
// A combination of that name gets the new keys; otherwise it is appended. 0 when the table is full. Long texts are cut.
u32 AddRecorderCombo(std::u16string_view name, std::u16string_view start, std::u16string_view stop);
// Makes these keys the combination in use.
void SetCurrentCombo(std::u16string_view start, std::u16string_view stop);
