// PresetDocument.h -- the document: which preset is open, where it lies, whether it has changes
#pragma once

#include "engine/PresetFile.h"

#include <string>
#include <string_view>

constexpr const char16_t *UNTITLED_PRESET = u"Tempname.VD";

// All on the main thread. bPresetChanged (controls/ControlManager.h) is the mark of changes. Whatever replaces the
// current preset goes through here, and tells Going, Came and Marked in this order; at Came name, path and mark are the
// new ones.

// File name and extension of the current preset, without a path. GlobalSettings.Preset is a copy of it, but for a
// preset that could not be read at start: the stored choice stays there until another preset was opened or saved.
const char16_t *PresetName();
// The path that the preset was read from or saved to; empty: none yet.
const char16_t *PresetPath();

// Sets the mark, reduces the name to file name and extension, stores it as the current preset's name and tells Marked.
void SetPresetChanged(std::u16string_view name, u32 bChanged);
// What every editing path calls: the same with the present name, if the mark is not set yet. A module's list of files
// that is counted anew sets it too, without any news.
void MarkPresetChanged();

// Replaces the current preset by one without planes and rules, named UNTITLED_PRESET, unmarked.
void NewPreset();
// The same with the default preset, untitled.
void OpenDefaultPreset();
// Takes the name as a path or, where no such file exists, as a file of the preset folder; 0, with nothing changed, if
// neither exists. The old preset goes first. Where the file cannot be read there is no preset afterwards, named
// UNTITLED_PRESET, and *pReport tells why; the result is non-zero all the same.
u32 LoadPresetByName(std::u16string_view name, PresetReport *pReport = nullptr);
// What the program starts with: the file of the command line or, if path is empty, the stored choice; where that cannot
// be read, the default preset, untitled. Says on *psTrouble what could not be read; a first start, where nobody has
// chosen a preset yet, is no trouble. pReport and psTrouble may be null.
void OpenFirstPreset(std::u16string_view path, PresetReport *pReport, std::string *psTrouble);
// Writes the current preset there; 0 with *psWhy, and nothing changed, on failure. On success it takes the file's name,
// is unmarked, and Saved is told.
u32 SavePresetAs(std::u16string_view path, std::string *psWhy = nullptr);

// What must be asked before the current preset goes while it has changes.
struct DiscardQuestion {
    const char16_t *pszTitle;
    const char16_t *pszText;
};
extern const DiscardQuestion sDiscardQuestion;
// Whether the question is due.
bool DiscardNeedsQuestion();
