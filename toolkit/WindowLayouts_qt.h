// WindowLayouts_qt.h -- the toolkit's windows in the table of windows
#pragma once

#include "toolkit/WindowLayouts.h"

class QWidget;

// For the rows of windows that are QWidgets; pfnMake returns one as a QWidget, and gets its owner as one.
extern const WindowFunctions WidgetFunctions;

// Called by a window's making: from now on the table knows where it is and whether it is open, until it is deleted. It
// takes the place in which it stood last. [main-thread]
void FollowWindow(const char16_t *pszName, QWidget *pWindow);
