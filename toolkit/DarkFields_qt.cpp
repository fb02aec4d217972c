// DarkFields_qt.cpp -- paints edit fields, combo boxes, spin boxes and frames
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

// The field inside of a combo box or a spin box stands in that one's frame.
bool IsInsideField(const QWidget *pWidget)
{
    const QWidget *pParent = pWidget ? pWidget->parentWidget() : nullptr;
    return qobject_cast<const QComboBox *>(pParent) || qobject_cast<const QAbstractSpinBox *>(pParent);
}

void DrawFieldBox(QPainter *pPainter, const QRect &box, const ControlState &state, const QColor &fill)
{
    DrawOutlinedRect(pPainter, box, OutlineOf(state), fill);
    if (state.bFocus)
        DrawFocusMark(pPainter, box.adjusted(1, 1, -1, -1));
}

// A button inside of a field: a line on the field's side, and a fill.
void DrawFieldButton(const DarkPiece &piece, const QRect &box, ControlState state, Qt::ArrowType eArrow)
{
    DrawOutlinedRect(piece.pPainter, box, {}, ButtonFillOf(state));
    const bool bRightToLeft = piece.pOption->direction == Qt::RightToLeft;
    const int xLine = bRightToLeft ? box.right() : box.left();
    state.bFocus = false;
    DrawOutlinedRect(piece.pPainter, QRect(xLine, box.top(), 1, box.height()), {}, OutlineOf(state));
    DrawArrow(piece.pPainter, box, eArrow, InkOf(state));
}

void DrawSpinButton(const DarkPiece &piece, const QStyleOptionSpinBox *pSpin, QStyle::SubControl ePart)
{
    const bool bUp = ePart == QStyle::SC_SpinBoxUp;
    const QAbstractSpinBox::StepEnabledFlag eStep =
        bUp ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled;
    ControlState state = StateOf(pSpin);
    const bool bActive = pSpin->activeSubControls & ePart;
    state.bEnabled = state.bEnabled && pSpin->stepEnabled & eStep;
    state.bHover = state.bHover && bActive && state.bEnabled;
    state.bDown = state.bDown && bActive && state.bEnabled;
    state.bOn = false;
    QRect box = piece.pStyle->subControlRect(QStyle::CC_SpinBox, pSpin, ePart, piece.pWidget);
    const QRect inner = pSpin->rect.adjusted(1, 1, -1, -1);
    box.setTop(bUp ? inner.top() : inner.center().y() + 1);
    box.setBottom(bUp ? inner.center().y() : inner.bottom());
    if (pSpin->direction == Qt::RightToLeft)
        box.setLeft(inner.left());
    else
        box.setRight(inner.right());
    DrawFieldButton(piece, box, state, bUp ? Qt::UpArrow : Qt::DownArrow);
}

} // namespace

void DrawFieldPanel(const DarkPiece &piece)
{
    if (IsInsideField(piece.pWidget))
        return;
    const auto *pFrame = qstyleoption_cast<const QStyleOptionFrame *>(piece.pOption);
    const QColor fill = piece.pOption->palette.color(QPalette::Base);
    if (pFrame && pFrame->lineWidth > 0)
        DrawFieldBox(piece.pPainter, piece.pOption->rect, StateOf(piece.pOption), fill);
    else
        DrawOutlinedRect(piece.pPainter, piece.pOption->rect, {}, fill);
}

void DrawFieldFrame(const DarkPiece &piece)
{
    if (!IsInsideField(piece.pWidget))
        DrawFieldBox(piece.pPainter, piece.pOption->rect, StateOf(piece.pOption), {});
}

void DrawFrame(const DarkPiece &piece)
{
    ControlState state = StateOf(piece.pOption);
    state.bHover = false; // a whole list that lights up under the mouse is unrest
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, OutlineOf(state), {});
}

void DrawComboBox(const DarkPiece &piece)
{
    const auto *pCombo = qstyleoption_cast<const QStyleOptionComboBox *>(piece.pOption);
    if (!pCombo)
        return;
    ControlState state = StateOf(pCombo);
    const QColor fill = pCombo->palette.color(QPalette::Base);
    if (pCombo->frame)
        DrawFieldBox(piece.pPainter, pCombo->rect, state, fill);
    else
        DrawOutlinedRect(piece.pPainter, pCombo->rect, {}, fill);
    state.bDown = state.bDown || (state.bEnabled && state.bOn);
    state.bOn = false;
    QRect arrow = piece.pStyle->subControlRect(QStyle::CC_ComboBox, pCombo, QStyle::SC_ComboBoxArrow, piece.pWidget);
    arrow &= pCombo->rect;
    arrow.setTop(pCombo->rect.top() + 1);
    arrow.setBottom(pCombo->rect.bottom() - 1);
    if (pCombo->direction == Qt::RightToLeft)
        arrow.setLeft(pCombo->rect.left() + 1);
    else
        arrow.setRight(pCombo->rect.right() - 1);
    DrawFieldButton(piece, arrow, state, Qt::DownArrow);
}

void DrawSpinBox(const DarkPiece &piece)
{
    const auto *pSpin = qstyleoption_cast<const QStyleOptionSpinBox *>(piece.pOption);
    if (!pSpin)
        return;
    const QColor fill = pSpin->palette.color(QPalette::Base);
    if (pSpin->frame)
        DrawFieldBox(piece.pPainter, pSpin->rect, StateOf(pSpin), fill);
    else
        DrawOutlinedRect(piece.pPainter, pSpin->rect, {}, fill);
    if (pSpin->buttonSymbols == QAbstractSpinBox::NoButtons)
        return;
    DrawSpinButton(piece, pSpin, QStyle::SC_SpinBoxUp);
    DrawSpinButton(piece, pSpin, QStyle::SC_SpinBoxDown);
}
