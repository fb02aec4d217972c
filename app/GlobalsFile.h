// GlobalsFile.h -- the settings file
#pragma once

#include "state/GlobalSettings.h"

#include <string>
#include <string_view>

// Overlays the settings, which hold the defaults, with those of the settings file. Returns 0
// if the file is absent or unreadable; the defaults then stay. A file that is there and holds no settings is told to
// the user and kept under another name, since the end of the run writes a new one. [main-thread]
u32 ReadGlobals(GlobalSettingsRecord *pgs);
// The same from a document's bytes.
u32 ReadGlobalsText(GlobalSettingsRecord *pgs, std::string_view bytes);
// Writes all settings to the settings file. 0: the old file stands as it was, and *psWhy (may be null) says why.
u32 WriteGlobals(const GlobalSettingsRecord *pgs, std::string *psWhy = nullptr);
