// KeptLayout.h -- carries the window layout from one settings file to the next in programs without windows
#pragma once

#include "engine/XmlText.h"

// Keeps the layout elements of the current level as they stand, and writes them again. The window code puts its own
// functions in their place. Both return non-zero. [main-thread]
u32 KeepLayout(XmlContext *pxc);
u32 WriteKeptLayout(XmlContext *pxc);
