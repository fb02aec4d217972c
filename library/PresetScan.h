// PresetScan.h -- from files to entries: one file, one pass over the folder, the scan thread
#pragma once

#include "library/PresetInfo.h"
#include "platform/FileFacts.h"

#include <string>
#include <string_view>

// The folder whose presets stand in the table, as the system spells it. Set before everything else. [main-thread]
void SetPresetFolder(std::u16string_view folder);
const std::u16string &PresetFolder();

// A record made from a file, before it stands in the table.
struct FoundPreset {
    PresetInfo info;
    u64 qwFileId;
    u32 bFavorKnown; // the cache knew the favor count
};
// Date and size of the file, with bDetails its summary too. 0 when it is no regular file or cannot be read.
// [any-thread]
u32 NewPresetInfo(std::u16string_view path, u32 bDetails, FoundPreset *pNew);
// Brings an entry of the table up to date; its file is read without the lock. 0, and no change, as above, and when the
// entry has another path by then. [any-thread]
u32 RefreshPresetInfo(const PresetInfo *lppi, u32 bDetails);
// Enters a file whose name holds ".vd" into the table, or brings the entry that it has there up to date. [any-thread]
u32 AddPresetInfo(std::u16string_view path, u32 bDetails);
// Whether AddPresetInfo takes a name.
bool IsPresetName(std::u16string_view name);

// One pass over the *.VD files of the folder: enters those that are new, refreshes those with another date and, with
// bDetails, those without a summary. Never removes. Non-zero if anything changed. [any-thread]
u32 ScanPresetFolder(u32 bDetails);
// The pass that takes the place of notices: notices removals and renames too, and leaves the scan state alone.
u32 RescanPresetFolder();
// Gives the entries without a summary the one that the cache has. Reads no file. [main-thread]
void SummarizeFromCache();
// Files of the last pass whose paths are too long for an entry, and those whose names are no valid UTF-8 or hold a
// separator. The user's words for both; empty: there are none.
std::string DescribePresetsLeftOut();

// The thread that runs one detail pass, below normal priority. [main-thread]
void StartPresetScanThread();
// Ends it, and any pass, soon; returns when the thread is gone.
void StopPresetScans();
void AllowPresetScans();
