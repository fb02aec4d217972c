// DarkButtons_qt.cpp -- paints push buttons, tool buttons, check boxes, radio buttons and group boxes
#include "toolkit/ControlColors_qt.h"
#include "toolkit/ControlShapes.h"
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

namespace {

QRect RectOf(const ControlBox &box, const QStyleOption *pOption)
{
    const QRect placed = QRect(box.x, box.y, box.w, box.h).translated(pOption->rect.topLeft());
    return QStyle::visualRect(pOption->direction, pOption->rect, placed);
}

QString ToText(const std::u16string &text)
{
    return QString::fromStdU16String(text);
}

int TextWidth(const QStyleOption *pOption, const QString &text)
{
    return text.isEmpty() ? 0 : pOption->fontMetrics.size(Qt::TextShowMnemonic | Qt::TextSingleLine, text).width();
}

// The letter behind the "&" is underlined where the user's desktop wants that.
int MnemonicFlag(const DarkPiece &piece)
{
    const bool bShown = piece.pStyle->styleHint(QStyle::SH_UnderlineShortcut, piece.pOption, piece.pWidget);
    return bShown ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
}

QString CheckText(const QStyleOption *pOption)
{
    const auto *pButton = qstyleoption_cast<const QStyleOptionButton *>(pOption);
    return pButton ? ToText(CheckCaption(pButton->text.toStdU16String())) : QString();
}

CheckBoxShape ShapeOfCheckBox(const QStyleOption *pOption, const QWidget *pWidget)
{
    return PlaceCheckMark(CheckPlacementOf(pWidget), pOption->rect.width(), pOption->rect.height(),
                          pOption->fontMetrics.height(), TextWidth(pOption, CheckText(pOption)));
}

bool GroupHasCheck(const QStyleOptionGroupBox *pGroup)
{
    return pGroup->subControls & QStyle::SC_GroupBoxCheckBox;
}

// The check mark of a group box stands in front of its caption, a gap between them.
int GroupCheckWidth(const QStyleOptionGroupBox *pGroup)
{
    return GroupHasCheck(pGroup) ? CheckBoxWidth(CheckPlacement::MarkLeft, pGroup->fontMetrics.height(), 1) - 1 : 0;
}

QString GroupText(const QStyleOptionGroupBox *pGroup)
{
    return ToText(GroupCaption(pGroup->text.toStdU16String()));
}

int GroupCaptionWidth(const QStyleOptionGroupBox *pGroup)
{
    return GroupCheckWidth(pGroup) + TextWidth(pGroup, GroupText(pGroup));
}

GroupBoxShape ShapeOfGroupBox(const QStyleOptionGroupBox *pGroup)
{
    return PlaceGroupBox(pGroup->rect.width(), pGroup->rect.height(), pGroup->fontMetrics.height(),
                         GroupCaptionWidth(pGroup));
}

void DrawGroupCaption(const DarkPiece &piece, const QStyleOptionGroupBox *pGroup)
{
    const QColor back = pGroup->palette.color(QPalette::Window);
    const QRect caption = RectOf(ShapeOfGroupBox(pGroup).caption, pGroup);
    DrawOutlinedRect(piece.pPainter, caption, {}, back);
    const QRect text = GroupBoxRect(pGroup, QStyle::SC_GroupBoxLabel, {});
    piece.pPainter->setPen(pGroup->palette.color(QPalette::WindowText));
    piece.pPainter->drawText(text, MnemonicFlag(piece) | Qt::TextSingleLine | Qt::AlignLeft | Qt::AlignVCenter,
                             GroupText(pGroup));
    if (!GroupHasCheck(pGroup))
        return;
    ControlState state = StateOf(pGroup);
    state.bDown = state.bDown && pGroup->activeSubControls & QStyle::SC_GroupBoxCheckBox;
    DrawCheckMark(piece.pPainter, GroupBoxRect(pGroup, QStyle::SC_GroupBoxCheckBox, {}), state, CheckOf(pGroup));
    if (state.bFocus)
        DrawFocusMark(piece.pPainter, text);
}

} // namespace

// A flat button shows its panel only while something is done with it.
void DrawPushButton(const DarkPiece &piece)
{
    const auto *pButton = qstyleoption_cast<const QStyleOptionButton *>(piece.pOption);
    ControlState state = StateOf(piece.pOption);
    const bool bFlat = pButton && pButton->features & QStyleOptionButton::Flat;
    if (bFlat && !state.bDown && !state.bOn && !state.bHover && !state.bFocus)
        return;
    const bool bDefault = pButton && pButton->features & QStyleOptionButton::DefaultButton && state.bEnabled;
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, bDefault ? ColorOf(Look().dwInk) : OutlineOf(state),
                     ButtonFillOf(state));
    if (state.bFocus)
        DrawFocusMark(piece.pPainter, piece.pStyle->subElementRect(QStyle::SE_PushButtonFocusRect, piece.pOption));
}

void DrawToolButtonPanel(const DarkPiece &piece)
{
    const ControlState state = StateOf(piece.pOption);
    const bool bFlat = piece.pOption->state & QStyle::State_AutoRaise;
    if (!bFlat || state.bDown || state.bOn || state.bHover || state.bFocus)
        DrawOutlinedRect(piece.pPainter, piece.pOption->rect, OutlineOf(state), ButtonFillOf(state));
}

void DrawCheckIndicator(const DarkPiece &piece)
{
    DrawCheckMark(piece.pPainter, piece.pOption->rect, StateOf(piece.pOption), CheckOf(piece.pOption));
}

void DrawRadioIndicator(const DarkPiece &piece)
{
    ControlState state = StateOf(piece.pOption);
    const int nSide = std::min(piece.pOption->rect.width(), piece.pOption->rect.height());
    QRectF circle(0, 0, nSide - 1, nSide - 1);
    circle.moveCenter(QRectF(piece.pOption->rect).center());
    QPainter *p = piece.pPainter;
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    const QColor fill = ButtonFillOf({state.bEnabled, state.bHover, false, state.bDown, false});
    state.bHover = state.bHover || (state.bOn && state.bEnabled);
    p->setPen(OutlineOf(state));
    p->setBrush(fill);
    p->drawEllipse(circle);
    if (state.bOn) {
        p->setPen(Qt::NoPen);
        p->setBrush(InkOf(state));
        p->drawEllipse(circle.center(), nSide * 0.24, nSide * 0.24);
    }
    p->restore();
}

QRect CheckMarkRect(const QStyleOption *pOption, const QWidget *pWidget)
{
    return RectOf(ShapeOfCheckBox(pOption, pWidget).mark, pOption);
}

QRect CheckTextRect(const QStyleOption *pOption, const QWidget *pWidget)
{
    return RectOf(ShapeOfCheckBox(pOption, pWidget).text, pOption);
}

QSize CheckBoxSize(const QStyleOption *pOption, const QWidget *pWidget)
{
    const int nFont = pOption->fontMetrics.height();
    return {CheckBoxWidth(CheckPlacementOf(pWidget), nFont, TextWidth(pOption, CheckText(pOption))), nFont + 2};
}

void DrawCheckBox(const DarkPiece &piece)
{
    const QStyleOption *pOption = piece.pOption;
    const ControlState state = StateOf(pOption);
    DrawOutlinedRect(piece.pPainter, pOption->rect, {}, pOption->palette.color(QPalette::Window));
    DrawCheckMark(piece.pPainter, CheckMarkRect(pOption, piece.pWidget), state, CheckOf(pOption));
    const QRect text = CheckTextRect(pOption, piece.pWidget);
    const QString shown = CheckText(pOption);
    piece.pPainter->setPen(pOption->palette.color(QPalette::WindowText));
    const Qt::Alignment eLeft = QStyle::visualAlignment(pOption->direction, Qt::AlignLeft);
    piece.pPainter->drawText(
        text, MnemonicFlag(piece) | Qt::TextSingleLine | Qt::AlignVCenter | static_cast<int>(eLeft), shown);
    if (state.bFocus && !shown.isEmpty()) {
        const QSize size(std::min(TextWidth(pOption, shown) + 4, text.width() + 2), pOption->fontMetrics.height() + 2);
        const QRect mark =
            QStyle::alignedRect(pOption->direction, Qt::AlignLeft | Qt::AlignVCenter, size, text.adjusted(-2, 0, 2, 0));
        DrawFocusMark(piece.pPainter, mark.intersected(pOption->rect));
    }
}

QRect GroupBoxRect(const QStyleOption *pOption, QStyle::SubControl ePart, const QRect &other)
{
    const auto *pGroup = qstyleoption_cast<const QStyleOptionGroupBox *>(pOption);
    if (!pGroup)
        return other;
    const GroupBoxShape shape = ShapeOfGroupBox(pGroup);
    const int nCheck = GroupCheckWidth(pGroup);
    ControlBox part = shape.caption;
    switch (ePart) {
    case QStyle::SC_GroupBoxFrame:
        return RectOf(shape.outline, pOption);
    case QStyle::SC_GroupBoxContents:
        return RectOf(shape.contents, pOption);
    case QStyle::SC_GroupBoxCheckBox:
        part.w = part.h;
        return RectOf(part, pOption);
    case QStyle::SC_GroupBoxLabel:
        part.x += nCheck;
        part.w = std::max(part.w - nCheck, 0);
        return RectOf(part, pOption);
    default:
        return other;
    }
}

QSize GroupBoxSize(const QStyleOption *pOption, const QSize &contents)
{
    const auto *pGroup = qstyleoption_cast<const QStyleOptionGroupBox *>(pOption);
    if (!pGroup)
        return contents;
    const int nCaption = GroupCaptionWidth(pGroup);
    const GroupBoxShape shape = PlaceGroupBox(1000, 1000, pGroup->fontMetrics.height(), nCaption);
    return {std::max(contents.width() + 1000 - shape.contents.w, nCaption + 2 * shape.caption.x),
            contents.height() + 1000 - shape.contents.h};
}

void DrawGroupBox(const DarkPiece &piece)
{
    const auto *pGroup = qstyleoption_cast<const QStyleOptionGroupBox *>(piece.pOption);
    if (!pGroup)
        return;
    const ControlBox outline = ShapeOfGroupBox(pGroup).outline;
    const QRect box = RectOf(outline, pGroup);
    const QColor line = pGroup->palette.color(QPalette::WindowText);
    if (pGroup->features & QStyleOptionFrame::Flat)
        DrawOutlinedRect(piece.pPainter, QRect(box.left(), box.top(), box.width(), 1), {}, line);
    else
        DrawOutlinedRect(piece.pPainter, box, line, {});
    if (GroupCaptionWidth(pGroup))
        DrawGroupCaption(piece, pGroup);
}

void DrawFocusRect(const DarkPiece &piece)
{
    DrawFocusMark(piece.pPainter, piece.pOption->rect);
}

void DrawUpArrow(const DarkPiece &piece)
{
    DrawArrow(piece.pPainter, piece.pOption->rect, Qt::UpArrow, InkOf(StateOf(piece.pOption)));
}

void DrawDownArrow(const DarkPiece &piece)
{
    DrawArrow(piece.pPainter, piece.pOption->rect, Qt::DownArrow, InkOf(StateOf(piece.pOption)));
}

void DrawLeftArrow(const DarkPiece &piece)
{
    DrawArrow(piece.pPainter, piece.pOption->rect, Qt::LeftArrow, InkOf(StateOf(piece.pOption)));
}

void DrawRightArrow(const DarkPiece &piece)
{
    DrawArrow(piece.pPainter, piece.pOption->rect, Qt::RightArrow, InkOf(StateOf(piece.pOption)));
}

// A list sorted upwards has its arrow pointing up.
void DrawHeaderArrow(const DarkPiece &piece)
{
    const auto *pHeader = qstyleoption_cast<const QStyleOptionHeader *>(piece.pOption);
    if (!pHeader || pHeader->sortIndicator == QStyleOptionHeader::None)
        return;
    const bool bUp = pHeader->sortIndicator == QStyleOptionHeader::SortDown;
    DrawArrow(piece.pPainter, piece.pOption->rect, bUp ? Qt::UpArrow : Qt::DownArrow, InkOf(StateOf(piece.pOption)));
}

void DrawTabClose(const DarkPiece &piece)
{
    const ControlState state = StateOf(piece.pOption);
    QPainter *p = piece.pPainter;
    if (state.bHover)
        DrawOutlinedRect(p, piece.pOption->rect, OutlineOf(state), ButtonFillOf(state));
    const QRectF cross = QRectF(piece.pOption->rect).adjusted(5, 5, -5, -5);
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    p->setPen(QPen(InkOf(state), 1.3));
    p->drawLine(cross.topLeft(), cross.bottomRight());
    p->drawLine(cross.topRight(), cross.bottomLeft());
    p->restore();
}
