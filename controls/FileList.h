// FileList.h -- the list of a file select control, of the host's making: its text, its line index, the next file
#pragma once

#include "include/control.h"
#include "platform/BaseTypes.h"

// Takes over a new list text from the global allocator, which becomes the record's; the old one is freed, and
// szCurrentFile is empty until the next evaluation. Null or an empty text clears the list. [main-thread]
void SetFileList(ControlRecord *pctl, char16_t *pszList);

// Counts the lines again if nLines is all ones, and marks the preset changed when it did. Runs of CR and LF count as
// one break; breaks before the first line count as none, so that every entry of the index names a line with text.
// Allocates. Non-zero if it did. [plane-thread, main-thread]
u32 RefreshLineIndex(ControlRecord *pctl);

// Moves to the next line, or to a random one under shuffle, and takes its file. Without a list nothing changes.
// [plane-thread, main-thread]
void TakeNextFile(ControlRecord *pctl);
// Puts the file of the current line into szCurrentFile: the full path where the data folders have it, else the text
// of the line. Needed only when the line or the list has changed: the search goes to the disk.
void TakeCurrentFile(ControlRecord *pctl);
