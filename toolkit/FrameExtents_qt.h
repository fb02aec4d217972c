// FrameExtents_qt.h -- the frame that the window manager puts around a window, before and after it is shown
#pragma once

#include "platform/BaseTypes.h"

#include <QMargins>
#include <QRect>

class QWidget;

// The frame's sides in device pixels. Asks the window manager where the window has not been shown yet, and waits a few
// moments for the answer; none where there is no window manager, and on other systems than X11. [main-thread]
QMargins FrameExtents(QWidget *pWindow);

// Puts the window's frame, as the user sees it, onto that rectangle of the screen in device pixels. Before or after the
// window is shown. [main-thread]
void SetFrameRect(QWidget *pWindow, const QRect &rcFrame);
// The frame as the user sees it, in device pixels.
QRect FrameRectOf(QWidget *pWindow);
// The part of the window's screen that panels and docks leave free, in device pixels.
QRect WorkAreaOf(const QWidget *pWindow);
