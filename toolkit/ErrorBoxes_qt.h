// ErrorBoxes_qt.h -- errors that the user must see, in message boxes beside the running picture
#pragma once

class QWidget;

// From now on an error (ErrorListeners) is told on standard error and kept until there is a window. Call once.
// [main-thread]
void KeepErrors();
// Shows the kept errors over the window, and every later one at once for as long as the window lives.
void ShowErrorsOver(QWidget *pWindow);
