// PresetInfo.h -- the record of one preset file in the table
#pragma once

#include "platform/BaseTypes.h"

#include <type_traits>

constexpr u32 PRESET_MODULES = 64; // modules that take part: the first ones of the module table

// One file of the preset folder. Never freed while the library runs, so that a pointer to it stays valid; an entry
// whose file is gone serves another file later. All fields are guarded by PresetTableLock.
struct PresetInfo {
    NameText szPath;                 // full path
    u64 ftLastWrite;                 // last write, UTC, in 100 ns units since 1601
    u32 dwSize;                      // size in bytes, low 32 bits
    u32 bSoundSync;                  // a control follows the sound
    i32 nFavor;                      // how often the user favored it, 0 and up
    u32 bModuleUsed[PRESET_MODULES]; // the preset uses the module at this place of the module table
    u32 bDeleted;                    // the file is gone: ignore the entry
    u32 bChanged;                    // since the browser last listed it: see MarkPresetChanged
    u32 bSummarized;                 // bSoundSync, bModuleUsed and bCompatible are valid
    u32 bFiltered;                   // the browser's alone: it does not match the search
    u32 bCompatible;                 // no used module is unavailable
};
static_assert(std::is_trivially_copyable_v<PresetInfo> && sizeof(PresetInfo) == 816);
