// ShellOpen_qt.h -- opens programs, files and addresses the way the desktop does on a double click
#pragma once

#include <string_view>

// Starts a program without arguments, named by its path or found where the system looks for programs; opens a document
// or a folder with the desktop's program for it, and an address with the browser. Waits for none of them. False: there
// is no such thing, or it could not be started. [main-thread]
bool OpenWithShell(std::u16string_view text);
