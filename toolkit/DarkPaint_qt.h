// DarkPaint_qt.h -- lines, marks and fills that the painting of all controls is made of
#pragma once

#include "toolkit/LookShades.h"

#include <QColor>
#include <QPalette>
#include <QRect>

class QPainter;
class QStyleOption;

// The shades in force. [main-thread]
const LookShades &Look();
// Makes them anew from the user's colours.
void RefreshLook();
QPalette MakeLookPalette();

inline QColor ColorOf(u32 dwColor)
{
    return QColor(static_cast<int>(dwColor & 0xFF), static_cast<int>(dwColor >> 8 & 0xFF),
                  static_cast<int>(dwColor >> 16 & 0xFF));
}

inline u32 ColorFrom(const QColor &color)
{
    return static_cast<u32>(color.red() | color.green() << 8 | color.blue() << 16);
}

struct ControlState {
    bool bEnabled;
    bool bHover;
    bool bFocus;
    bool bDown;
    bool bOn;
};
ControlState StateOf(const QStyleOption *pOption);

QColor OutlineOf(const ControlState &state);
QColor InkOf(const ControlState &state);
QColor ButtonFillOf(const ControlState &state);

// A rectangle with an outline of one pixel, whole device pixels at every scale. An invalid colour leaves out what it is
// for. Returns 0, and paints nothing, for an empty rectangle.
u32 DrawOutlinedRect(QPainter *pPainter, const QRect &box, const QColor &outline, const QColor &fill);
// Inside of the outline of what has the focus.
void DrawFocusMark(QPainter *pPainter, const QRect &box);
void DrawTick(QPainter *pPainter, const QRect &box, const QColor &color);
void DrawDash(QPainter *pPainter, const QRect &box, const QColor &color);
// A triangle in the middle of the box.
void DrawArrow(QPainter *pPainter, const QRect &box, Qt::ArrowType eArrow, const QColor &color);
// A check mark's box; eCheck as the controls have it.
void DrawCheckMark(QPainter *pPainter, const QRect &box, const ControlState &state, Qt::CheckState eCheck);
Qt::CheckState CheckOf(const QStyleOption *pOption);
