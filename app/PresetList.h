// PresetList.h -- prints what the program knows of a folder of presets
#pragma once

#include "app/RenderOptions.h"

// Prints the table of ro.list to standard output, as text or as JSON: from the folder's cache, and by reading what the
// cache does not know. Writes nothing. Returns the exit status.
int ListPresets(const RenderOptions &ro);
