// PresetFilter.h -- the browser's marks in the preset table: which entries the search leaves out, which it must list
// anew
//
// bFiltered is written here alone. bChanged is set by the table (MarkPresetChanged), and read and cleared here.
#pragma once

#include "library/PresetInfo.h"

#include <string_view>

// Marks every live entry that does not match as filtered and returns how many match: those whose name does, without
// extension. With bModuleNames a preset also matches by the name of a module that it uses; while one has changed, all
// match, and one without a summary matches in any case. [main-thread]
u32 ApplySearch(std::u16string_view text, u32 bModuleNames);

// The browser opens: it has listed nothing yet. [main-thread]
void ForgetListedPresets();
// The browser has listed the entry as it is now. Under the table's lock.
void MarkPresetListed(PresetInfo *lppi);
