// MainCommands.h -- the menu bar and the tool buttons of the main window
#pragma once

#include "toolkit/Commands.h"

#include <string>

// What only the window can do, set by it: the context of both tables. All on the main thread.
struct MainActions {
    void *pvWindow;                    // also the owner of the windows that the commands open
    void (*pfnNew)(void *pvWindow);    // each of the first three asks before changes are lost
    void (*pfnOpen)(void *pvWindow);   //
    void (*pfnSaveAs)(void *pvWindow); // always shows the chooser
    void (*pfnExit)(void *pvWindow);   // at once
    void (*pfnOpenProgram)(void *pvWindow, const std::u16string &path);
};

// The menu bar from left to right, each a sub menu. Context: a MainActions.
CommandRows MainMenu();
// The tool buttons from left to right; the one of the update is hidden until it is needed.
CommandRows MainToolButtons();
constexpr size_t UPDATE_BUTTON = 3;
// The button beside the sound meter.
const Command &SoundButton();
