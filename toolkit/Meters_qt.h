// Meters_qt.h -- paints level meters and progress bars
#pragma once

#include "toolkit/Meters.h"

#include <QRect>
#include <QString>

class QPainter;
class QWidget;

// All colours have the form 0x00BBGGRR: dwLow stands at the left end, dwHigh at the right one. Sizes are the painter's
// own pixels; an empty size paints nothing. [main-thread]

// A level meter over the rectangle at x 0, row y, w by h. With a store it takes the level into it and marks the peak.
void DrawMeterBar(QPainter *pPainter, int y, int w, int h, f32 fLevel, PeakStore *pps, u32 dwLow, u32 dwHigh);
void DrawProgressBar(QPainter *pPainter, const QRect &box, f32 fLevel, u32 dwLow, u32 dwHigh);
// A progress bar over the whole widget, with the text, if there is one, centred in white. Only from its paintEvent.
void ShowProgressBar(QWidget *pWidget, f32 fLevel, u32 dwLow, u32 dwHigh, const QString &text);
