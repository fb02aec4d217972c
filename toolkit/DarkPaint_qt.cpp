// DarkPaint_qt.cpp -- lines, marks and fills that the painting of all controls is made of
#include "toolkit/DarkPaint_qt.h"

#include "toolkit/UIColors.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

#include <algorithm>

namespace {

LookShades CurrentLook;

// The box in the painter's pixels whose edges are the nearest device pixels.
QRectF SnapToDevice(const QPainter *pPainter, const QRectF &box)
{
    const QTransform toDevice = pPainter->deviceTransform();
    const QRectF device = toDevice.mapRect(box);
    const QRectF snapped(QPointF(qRound(device.left()), qRound(device.top())),
                         QPointF(qRound(device.right()), qRound(device.bottom())));
    return toDevice.inverted().mapRect(snapped);
}

// As thick as a pixel of the painter, in whole device pixels.
qreal LineWidth(const QPainter *pPainter)
{
    const QTransform t = pPainter->deviceTransform();
    const qreal fScale = std::max(std::hypot(t.m11(), t.m12()), 0.001);
    return std::max(std::floor(fScale), 1.0) / fScale;
}

void FillFrame(QPainter *pPainter, const QRectF &box, const QColor &color)
{
    const qreal t = std::min({LineWidth(pPainter), box.width(), box.height()});
    pPainter->fillRect(QRectF(box.left(), box.top(), box.width(), t), color);
    pPainter->fillRect(QRectF(box.left(), box.bottom() - t, box.width(), t), color);
    pPainter->fillRect(QRectF(box.left(), box.top(), t, box.height()), color);
    pPainter->fillRect(QRectF(box.right() - t, box.top(), t, box.height()), color);
}

void FillSmooth(QPainter *pPainter, const QPainterPath &path, const QColor &color)
{
    pPainter->save();
    pPainter->setRenderHint(QPainter::Antialiasing);
    pPainter->fillPath(path, color);
    pPainter->restore();
}

void SetTextColors(QPalette *pPalette, QPalette::ColorGroup eGroup, u32 dwText)
{
    for (QPalette::ColorRole eRole :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText, QPalette::BrightText})
        pPalette->setColor(eGroup, eRole, ColorOf(dwText));
}

} // namespace

const LookShades &Look()
{
    return CurrentLook;
}

void RefreshLook()
{
    CurrentLook =
        MakeLookShades(UIColorTable[UICOLOR_WINDOW_BACKGROUND].dwColor, UIColorTable[UICOLOR_WINDOW_TEXT].dwColor);
}

QPalette MakeLookPalette()
{
    const LookShades &look = Look();
    QPalette palette(ColorOf(look.dwButton), ColorOf(look.dwWindow));
    for (QPalette::ColorRole eRole : {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase})
        palette.setColor(eRole, ColorOf(look.dwWindow));
    palette.setColor(QPalette::Button, ColorOf(look.dwButton));
    palette.setColor(QPalette::Light, ColorOf(look.dwLineHover));
    palette.setColor(QPalette::Midlight, ColorOf(look.dwLine));
    palette.setColor(QPalette::Mid, ColorOf(look.dwLine));
    palette.setColor(QPalette::Dark, ColorOf(look.dwFaint));
    palette.setColor(QPalette::Shadow, ColorOf(look.dwFaint));
    palette.setColor(QPalette::Highlight, ColorOf(look.dwSelected));
    palette.setColor(QPalette::HighlightedText, ColorOf(look.dwSelectedText));
    palette.setColor(QPalette::Link, ColorOf(look.dwLink));
    palette.setColor(QPalette::LinkVisited, ColorOf(look.dwLinkVisited));
    SetTextColors(&palette, QPalette::Active, look.dwText);
    SetTextColors(&palette, QPalette::Inactive, look.dwText);
    SetTextColors(&palette, QPalette::Disabled, look.dwDisabled);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, ColorOf(look.dwDisabled));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, ColorOf(look.dwFaint));
    palette.setColor(QPalette::PlaceholderText, ColorOf(look.dwDisabled));
    return palette;
}

ControlState StateOf(const QStyleOption *pOption)
{
    const QStyle::State s = pOption->state;
    const bool bEnabled = s & QStyle::State_Enabled;
    return {bEnabled, bEnabled && (s & QStyle::State_MouseOver), bEnabled && (s & QStyle::State_HasFocus),
            bEnabled && (s & QStyle::State_Sunken), bool(s & QStyle::State_On)};
}

QColor OutlineOf(const ControlState &state)
{
    const LookShades &look = Look();
    if (!state.bEnabled)
        return ColorOf(look.dwFaint);
    if (state.bFocus)
        return ColorOf(look.dwInk);
    return ColorOf(state.bHover ? look.dwLineHover : look.dwLine);
}

QColor InkOf(const ControlState &state)
{
    return ColorOf(state.bEnabled ? Look().dwInk : Look().dwDisabled);
}

QColor ButtonFillOf(const ControlState &state)
{
    const LookShades &look = Look();
    if (!state.bEnabled)
        return ColorOf(state.bOn ? look.dwButton : look.dwWindow);
    if (state.bDown || state.bOn)
        return ColorOf(look.dwButtonDown);
    return ColorOf(state.bHover ? look.dwButtonHover : look.dwButton);
}

u32 DrawOutlinedRect(QPainter *pPainter, const QRect &box, const QColor &outline, const QColor &fill)
{
    if (box.isEmpty())
        return 0;
    const QRectF snapped = SnapToDevice(pPainter, box);
    if (fill.isValid())
        pPainter->fillRect(snapped, fill);
    if (outline.isValid())
        FillFrame(pPainter, snapped, outline);
    return 1;
}

void DrawFocusMark(QPainter *pPainter, const QRect &box)
{
    DrawOutlinedRect(pPainter, box, ColorOf(Look().dwLine), {});
}

void DrawTick(QPainter *pPainter, const QRect &box, const QColor &color)
{
    const qreal fSide = std::min(box.width(), box.height());
    const QPointF corner = QRectF(box).center() - QPointF(fSide / 2, fSide / 2);
    QPainterPath path;
    path.moveTo(corner + QPointF(0.22, 0.50) * fSide);
    path.lineTo(corner + QPointF(0.43, 0.72) * fSide);
    path.lineTo(corner + QPointF(0.79, 0.27) * fSide);
    QPainterPathStroker stroker;
    stroker.setWidth(std::max(fSide * 0.13, 1.4));
    FillSmooth(pPainter, stroker.createStroke(path), color);
}

void DrawDash(QPainter *pPainter, const QRect &box, const QColor &color)
{
    const int nInset = box.width() / 4;
    const int nHeight = std::max(box.height() / 6, 2);
    DrawOutlinedRect(
        pPainter,
        QRect(box.left() + nInset, box.top() + (box.height() - nHeight) / 2, box.width() - 2 * nInset, nHeight), {},
        color);
}

void DrawArrow(QPainter *pPainter, const QRect &box, Qt::ArrowType eArrow, const QColor &color)
{
    const qreal fHalf = std::clamp(std::min(box.width(), box.height()) * 0.3, 2.5, 4.0);
    QPainterPath path;
    path.moveTo(-fHalf, -fHalf / 2);
    path.lineTo(fHalf, -fHalf / 2);
    path.lineTo(0, fHalf / 2);
    path.closeSubpath();
    static constexpr qreal afAngle[] = {0, 180, 0, 90,
                                        -90}; // in the order of Qt::ArrowType: none, up, down, left, right
    QTransform turn;
    turn.translate(QRectF(box).center().x(), QRectF(box).center().y());
    turn.rotate(eArrow <= Qt::RightArrow ? afAngle[eArrow] : 0);
    FillSmooth(pPainter, turn.map(path), color);
}

void DrawCheckMark(QPainter *pPainter, const QRect &box, const ControlState &state, Qt::CheckState eCheck)
{
    ControlState framed = state;
    framed.bHover = state.bHover || (state.bEnabled && eCheck != Qt::Unchecked);
    DrawOutlinedRect(pPainter, box, OutlineOf(framed),
                     ColorOf(state.bDown      ? Look().dwButtonDown
                             : state.bEnabled ? Look().dwButton
                                              : Look().dwWindow));
    if (eCheck == Qt::Checked)
        DrawTick(pPainter, box, InkOf(state));
    else if (eCheck == Qt::PartiallyChecked)
        DrawDash(pPainter, box, InkOf(state));
}

Qt::CheckState CheckOf(const QStyleOption *pOption)
{
    if (pOption->state & QStyle::State_NoChange)
        return Qt::PartiallyChecked;
    return pOption->state & QStyle::State_On ? Qt::Checked : Qt::Unchecked;
}
