// PresetWatch.h -- the library's reaction to changes in the preset folder
#pragma once

#include "platform/BaseTypes.h"

// One change of the file with this name in the preset folder, as WatchAction. [watch-thread]
void PresetFolderCallback(const char16_t *pszName, u32 dwAction);
// Forgets what earlier changes have told of names. Before the watch begins.
void ForgetPresetNames();
// In place of changes that nobody counted: one pass over the folder. [watch-thread]
void PresetFolderLost();
