// NativeWindow_qt.h -- what only the window system knows of a window
#pragma once

#include "platform/BaseTypes.h"

#include <QByteArray>
#include <QSize>

class QWidget;

// What a native event says about a window.
struct NativeNews {
    bool bDestroyed = false;  // somebody else destroyed it
    bool bVisibility = false; // bCovered is news
    bool bCovered = false;    // no pixel of it can be seen
    bool bSizeHints = false;  // the toolkit has set the sizes that it asks the window manager for
    QSize size;               // of the client area in device pixels; invalid: no news
};

// Reads one event that came for the window with that id. Nothing on other systems than X11.
NativeNews ReadNativeEvent(const QByteArray &type, const void *pMessage, u64 qwWindow);
// Bits of a pixel in memory on screens of that colour depth.
u32 BitsPerPixel(int nDepth);
// Asks for notices when the window is covered and uncovered. Needs its native window.
void WatchVisibility(QWidget *pWindow);
// With a scale that is no whole number the toolkit asks for sizes in steps of two pixels; this allows every size. To be
// called again after every news of size hints.
void AllowEverySize(QWidget *pWindow);
// Sets the client area to exactly so many device pixels; false where only the toolkit can do it.
bool SetNativeClientSize(QWidget *pWindow, QSize size);
