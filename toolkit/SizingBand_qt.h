// SizingBand_qt.h -- the thin band inside a window's left, right and lower edge by which it is sized
#pragma once

#include "platform/Listeners.h"

#include <QWidget>

// Makes the band of the window; it belongs to the window. [main-thread]
void MakeSizingBand(QWidget *pWindow);
bool IsSizingBand(const QWidget *pWidget);
// After the window was sized. yTop is where the band begins: below a menu bar.
void PlaceSizingBand(QWidget *pWindow, int yTop);

// Told when the user takes a window by its band, before the window manager does. [main-thread]
extern Listeners<void(QWidget *pWindow)> SizingBandListeners;
