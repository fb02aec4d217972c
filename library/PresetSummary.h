// PresetSummary.h -- what a full read of a preset's text tells: sound, modules, and whether it can run here
#pragma once

#include "library/PresetInfo.h"
#include "platform/FileFacts.h"

#include <string_view>

struct PresetSummary {
    u32 bSoundSync;
    u64 qwModules; // one bit for each of the first PRESET_MODULES modules of the table
    i32 nFavor;    // as stored
    u32 bFavorKnown;
};

// What to look for, from the module table as it stands. Before the first summary, and not while one is being made.
void PrepareSummaries();

// Looks at the text of a preset: the probe for a control that follows the sound, and the file names of the modules,
// anywhere and without regard to case (A to Z). pText has READ_SLACK readable bytes behind it. [any-thread]
PresetSummary SummarizeText(const char *pText, u64 cb);

// From the cache if the file is as it was, else by reading it. *pFacts: the file's facts as known; those that belong to
// the text on return. The folder is a short cut. 0 when it cannot be read. [any-thread]
u32 SummarizePreset(const OpenedFolder &folder, std::u16string_view path, ReadBuffer *pBuffer, FileFacts *pFacts, PresetSummary *pSummary);
// The cache alone.
u32 FindCachedSummary(std::u16string_view path, const FileFacts &facts, PresetSummary *pSummary);

// Puts facts, and a summary unless it is null, into a record.
void FillPresetInfo(PresetInfo *lppi, const FileFacts &facts, const PresetSummary *pSummary);
