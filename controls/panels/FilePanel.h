// FilePanel.h -- what the panel of a file select does: its choosers, its list's text, what it writes
#pragma once

#include "editing/EditFields.h"
#include "state/Folders.h"

enum class ListChooser : u32 { Image, Palettes, Files };

// How "Add Files..." asks, by what the control's pszFileType contains.
struct ListChooserRow {
    const char16_t *pszContains; // without regard to case; empty: anything
    ListChooser eChooser;
    PathRow eFolder; // where it starts
};
const ListChooserRow &ChooserOf(std::u16string_view type);

// The filter of the file dialog for a pszFileType, and that of the image chooser.
std::u16string ListFilter(std::u16string_view type);
extern const char16_t *const pszImageFilter;
constexpr u32 IMAGE_FILTER_FIRST = 6; // the one it starts on

// The module's texts, whatever it left there.
std::u16string FileTypeOf(const ControlRecord *pctl);
std::u16string EditorOf(const ControlRecord *pctl);
// What "Edit/Create..." tries, in this order; empty: there is no editor.
std::vector<std::u16string> EditorPaths(std::u16string_view editor);

// Every line break of a text as CR LF, and nothing in it that would end the list early.
std::u16string ListWithBreaks(std::u16string_view text);

struct AddedFiles {
    std::u16string sList;
    u32 nAdded;
    u32 nBroken; // left out: their names hold a line break
    u32 nNoRoom; // left out: the list is full
};
// The list with the chosen files behind it, a line each; those of the data folder by their names alone. A single one
// has to exist.
AddedFiles AddFilesToList(std::u16string_view list, const std::vector<std::u16string> &paths);
// One line for the user, UTF-8; empty: none was left out.
std::string LeftOutText(const AddedFiles &added);

// A list that files were added to: its module starts over, unless wave, sound or periodic chance move the control.
std::vector<FieldWrite> AddedListWrites(const EditPlace &place, const ControlRecord *pctl, std::u16string sList);
