// FileChooser_qt.h -- the routines that ask for a file to open or to save, for many files or for a folder
#pragma once

#include "platform/BaseTypes.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QWidget;

struct FileQuestion {
    std::u16string sTitle;
    std::u16string sFolder;  // where it starts
    std::u16string sName;    // filled in; empty: none
    std::u16string sPattern; // see FileFilters; its extension is added to names without one
    bool bSave;              // asks before an existing file is overwritten; else the file must exist
    u32 iFilter = 0;         // of the pattern's descriptions: the one it starts on
};

// Opens the toolkit's chooser, or the desktop's own, over the window; frames go on behind it. pfnChosen receives the
// full path; cancelling calls nothing. The dialog is returned so that the caller may close it. [main-thread]
QDialog *AskForFile(QWidget *pParent, const FileQuestion &question,
                    std::function<void(const std::u16string &path)> pfnChosen);

// The same for files to open, one or many, and for a folder; a question's bSave means nothing here. [main-thread]
QDialog *AskForFiles(QWidget *pParent, const FileQuestion &question,
                     std::function<void(const std::vector<std::u16string> &paths)> pfnChosen);
QDialog *AskForFolder(QWidget *pParent, const std::u16string &sTitle, const std::u16string &sFolder,
                      std::function<void(const std::u16string &path)> pfnChosen);
