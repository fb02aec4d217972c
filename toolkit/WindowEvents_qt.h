// WindowEvents_qt.h -- the one place that knows how the toolkit's events become the program's
#pragma once

#include "platform/Listeners.h"
#include "toolkit/KeyCodes.h"

class QKeyEvent;
class QObject;
class QWheelEvent;

// The key, up or down by the event's type. A key of a layout without Latin letters counts by its place on the keyboard.
KeyEvent KeyEventOf(const QKeyEvent &event);
// The toolkit's key code of a KeyCode; 0: none.
int ToolkitKeyOf(u32 dwKey);
// Vertical delta of the wheel, above 0 away from the user; 0: it moved sideways.
i32 WheelDeltaOf(const QWheelEvent &event);

// Keeps frames running for as long as the dialog lives, whatever loop it brings. Every dialog calls it before it is
// shown. [main-thread]
void KeepFramesUnder(QObject *pDialog);
// Whoever runs the frames listens; nobody in most tests.
extern Listeners<void(QObject *pDialog)> KeepFramesListeners;
