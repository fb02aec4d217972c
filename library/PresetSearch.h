// PresetSearch.h -- which presets match what the user is looking for
#pragma once

#include "platform/BaseTypes.h"

#include <string_view>

// Marks every live entry whose name does not match as filtered and returns how many match. "*" stands for any run of
// characters, one is taken to stand at either end, and A to Z match without regard to case. With bModuleNames a preset
// also matches by the name of a module that it uses; while summaries are missing, those without one all match.
// [main-thread]
u32 ApplySearch(std::u16string_view text, u32 bModuleNames);
