// PaletteBrowser_qt.h -- the window "Palette Browser", in which palettes are chosen by eye
#pragma once

#include "platform/BaseTypes.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QAbstractItemView;
class QDialog;
class QWidget;

struct PaletteBrowserParms {
    std::u16string lpszFolder; // start folder; one that does not exist gives an empty list
    u32 bMultiple;             // several rows may be selected
    u32 bSelectFiles;          // the selection button reads "Files..." and asks for files
    u32 bSelectFolder; // without bSelectFiles: it reads "Folder..." and asks for a folder; with neither it is away
    void (*lpfnInitList)(QAbstractItemView *pList); // called with the list when the window opens; may be null
};

// Receives the full paths in list order, one at least. Called once at most, when the window is on its way out: it may
// delete the window's owner.
using PalettesChosen = std::function<void(const std::vector<std::u16string> &paths)>;

// Opens the window over its owner, which waits for the choice; frames go on behind it. Cancelling, or accepting without
// a selected row, calls nothing; nor does the end of the owner. The window is returned so that the caller may close it.
// [main-thread]
QDialog *OpenPaletteBrowser(QWidget *pOwner, const PaletteBrowserParms &parms, PalettesChosen pfnChosen);

// The browser as the program uses it: many palettes of a folder, which starts with the given one or where that does not
// exist with the program's own palettes.
QDialog *BrowsePalettes(QWidget *pOwner, std::u16string_view folder, PalettesChosen pfnChosen);
