// PresetLibrary.h -- what the program knows of the preset folder: start and end
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Fills the table with the presets of the folder: those that the cache knows come with their summaries, and with favor
// counts from the cache or, if there is none, from the favorites file. Reads no preset. After the last module was
// loaded. [main-thread]
void OpenPresetLibrary(std::u16string_view folder, std::u16string_view favorites);
// Follows changes of the folder from now on. 0 when the system does not let it.
u32 WatchPresets();
// Reads the presets that have no summary yet, on a thread of its own.
void ScanPresets();

// Ends both threads: the table changes no more by itself. Then writes the cache and frees everything; 0 when the cache
// could not be written, and *psWhy (may be null) says why.
void StopPresetThreads();
u32 ShutdownPresetLibrary(std::string *psWhy = nullptr);
// Ends the threads and frees everything, without writing.
void FreePresetLibrary();
