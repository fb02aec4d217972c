// Icons_qt.h -- the program's own pictures for buttons and nodes, in the user's colours
#pragma once

#include "toolkit/UIColors.h"

#include <QIcon>

// The picture data/UI/NAME.svg with "currentColor" replaced by a user colour, crisp at every size and scale. It follows
// when the colour changes. Without such a file the icon is empty, which the log says. [main-thread]
QIcon UserIcon(const char *pszName, UIColor eColor = UICOLOR_WINDOW_TEXT);
