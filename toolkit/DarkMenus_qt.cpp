// DarkMenus_qt.cpp -- paints menus, menu bars, tool tips and the icons of message boxes
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"

#include "toolkit/UIColors.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr int MARK_COLUMN = 22; // at least, for check marks and icons
constexpr int TEXT_MARGIN = 6;
constexpr int ARROW_COLUMN = 16;

int MarkColumn(const QStyleOptionMenuItem *pItem)
{
    return std::max(MARK_COLUMN, pItem->maxIconWidth + 4);
}

void DrawSeparator(const DarkPiece &piece, const QStyleOptionMenuItem *pItem)
{
    const QRect &box = pItem->rect;
    const QColor line = ColorOf(Look().dwFaint);
    int xLine = box.left() + 4;
    if (!pItem->text.isEmpty()) {
        piece.pPainter->setPen(ColorOf(Look().dwDisabled));
        piece.pPainter->drawText(box.adjusted(TEXT_MARGIN, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, pItem->text);
        xLine += pItem->fontMetrics.horizontalAdvance(pItem->text) + 2 * TEXT_MARGIN;
    }
    DrawOutlinedRect(piece.pPainter, QRect(xLine, box.center().y(), box.right() - 3 - xLine, 1), {}, line);
}

// In the column on the left: the icon if there is one, else the mark.
void DrawItemMark(const DarkPiece &piece, const QStyleOptionMenuItem *pItem, const ControlState &state)
{
    const QRect column(pItem->rect.left(), pItem->rect.top(), MarkColumn(pItem), pItem->rect.height());
    const QRect place = QStyle::visualRect(pItem->direction, pItem->rect, column);
    QRect box(0, 0, 16, 16);
    box.moveCenter(place.center());
    if (pItem->checked && !pItem->icon.isNull())
        DrawOutlinedRect(piece.pPainter, box.adjusted(-2, -2, 2, 2), OutlineOf(state), ColorOf(Look().dwButtonDown));
    if (!pItem->icon.isNull())
        pItem->icon.paint(piece.pPainter, box, Qt::AlignCenter, state.bEnabled ? QIcon::Normal : QIcon::Disabled);
    else if (pItem->checked && pItem->checkType == QStyleOptionMenuItem::Exclusive) {
        piece.pPainter->save();
        piece.pPainter->setRenderHint(QPainter::Antialiasing);
        piece.pPainter->setPen(Qt::NoPen);
        piece.pPainter->setBrush(InkOf(state));
        piece.pPainter->drawEllipse(QRectF(box).center(), 3.5, 3.5);
        piece.pPainter->restore();
    } else if (pItem->checked)
        DrawTick(piece.pPainter, box, InkOf(state));
}

void DrawItemTexts(const DarkPiece &piece, const QStyleOptionMenuItem *pItem, const QColor &color)
{
    const QRect area = pItem->rect.adjusted(MarkColumn(pItem) + TEXT_MARGIN, 0, -(ARROW_COLUMN + TEXT_MARGIN), 0);
    const QRect text = QStyle::visualRect(pItem->direction, pItem->rect, area);
    const bool bMnemonic = piece.pStyle->styleHint(QStyle::SH_UnderlineShortcut, pItem, piece.pWidget);
    const int nFlags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip |
                       (bMnemonic ? Qt::TextShowMnemonic : Qt::TextHideMnemonic);
    const auto align = [=](Qt::Alignment e) {
        return nFlags | static_cast<int>(QStyle::visualAlignment(pItem->direction, e));
    };
    piece.pPainter->save();
    piece.pPainter->setFont(pItem->font);
    piece.pPainter->setPen(color);
    piece.pPainter->drawText(text, align(Qt::AlignLeft), pItem->text.section(u'\t', 0, 0));
    piece.pPainter->drawText(text, align(Qt::AlignRight), pItem->text.section(u'\t', 1));
    piece.pPainter->restore();
}

struct MessageIcon {
    QStyle::StandardPixmap ePixmap;
    char chSign;
    u32 (*pfnColor)();
};

constexpr MessageIcon asMessageIcon[] = {
    {QStyle::SP_MessageBoxInformation, 'i', [] { return Look().dwLink; }},
    {QStyle::SP_MessageBoxQuestion, '?', [] { return Look().dwInk; }},
    {QStyle::SP_MessageBoxWarning, '!', [] { return ReadableColor(Look().dwWindow, 0x32B4FF, 4.5f); }},
    {QStyle::SP_MessageBoxCritical, 'x', [] { return ReadableColor(Look().dwWindow, 0x5050FA, 4.5f); }},
};

// A ring with a sign in it.
QPixmap PaintMessageIcon(const MessageIcon &icon, int nSide)
{
    QPixmap pixmap(nSide, nSide);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal fLine = nSide / 14.0;
    const QRectF ring = QRectF(0, 0, nSide, nSide).adjusted(fLine, fLine, -fLine, -fLine);
    const QColor color = ColorOf(icon.pfnColor());
    painter.setPen(QPen(color, fLine, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(ring);
    if (icon.chSign == 'x') {
        const QRectF cross = ring.adjusted(nSide * 0.24, nSide * 0.24, -nSide * 0.24, -nSide * 0.24);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
        return pixmap;
    }
    QFont font = painter.font();
    font.setPixelSize(nSide * 11 / 20);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(ring, Qt::AlignCenter, QString(QLatin1Char(icon.chSign)));
    return pixmap;
}

} // namespace

void DrawMenuPanel(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, ColorOf(Look().dwLine), ColorOf(Look().dwWindow));
}

void DrawMenuItem(const DarkPiece &piece)
{
    const auto *pItem = qstyleoption_cast<const QStyleOptionMenuItem *>(piece.pOption);
    if (!pItem)
        return;
    if (pItem->menuItemType == QStyleOptionMenuItem::Separator) {
        DrawSeparator(piece, pItem);
        return;
    }
    const ControlState state = StateOf(pItem);
    const bool bSelected = pItem->state & QStyle::State_Selected;
    if (bSelected)
        DrawOutlinedRect(piece.pPainter, pItem->rect, {},
                         ColorOf(state.bEnabled ? Look().dwSelected : Look().dwButton));
    DrawItemMark(piece, pItem, state);
    const QColor text = ColorOf(!state.bEnabled ? Look().dwDisabled
                                : bSelected     ? Look().dwSelectedText
                                                : Look().dwText);
    DrawItemTexts(piece, pItem, text);
    if (pItem->menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QRect arrow = pItem->rect.adjusted(pItem->rect.width() - ARROW_COLUMN - 4, 0, -4, 0);
        DrawArrow(piece.pPainter, QStyle::visualRect(pItem->direction, pItem->rect, arrow),
                  pItem->direction == Qt::RightToLeft ? Qt::LeftArrow : Qt::RightArrow, text);
    }
}

void DrawMenuBarItem(const DarkPiece &piece)
{
    const auto *pItem = qstyleoption_cast<const QStyleOptionMenuItem *>(piece.pOption);
    if (!pItem)
        return;
    const ControlState state = StateOf(pItem);
    const bool bOpen = state.bDown && pItem->state & QStyle::State_Selected;
    const bool bLit = state.bEnabled && pItem->state & QStyle::State_Selected;
    DrawOutlinedRect(piece.pPainter, pItem->rect, {},
                     ColorOf(bOpen  ? Look().dwSelected
                             : bLit ? Look().dwButtonHover
                                    : Look().dwWindow));
    const bool bMnemonic = piece.pStyle->styleHint(QStyle::SH_UnderlineShortcut, pItem, piece.pWidget);
    piece.pPainter->setPen(ColorOf(!state.bEnabled ? Look().dwDisabled
                                   : bOpen         ? Look().dwSelectedText
                                                   : Look().dwText));
    piece.pPainter->drawText(pItem->rect,
                             Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip |
                                 (bMnemonic ? Qt::TextShowMnemonic : Qt::TextHideMnemonic),
                             pItem->text);
}

void DrawMenuBarSpace(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, {}, ColorOf(Look().dwWindow));
}

void DrawTipPanel(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, ColorOf(Look().dwLineHover), ColorOf(Look().dwWindow));
}

// Room for the columns at both sides; a line takes less.
QSize MenuItemSize(const QStyleOption *pOption, const QSize &below)
{
    const auto *pItem = qstyleoption_cast<const QStyleOptionMenuItem *>(pOption);
    if (!pItem)
        return below;
    if (pItem->menuItemType == QStyleOptionMenuItem::Separator && pItem->text.isEmpty())
        return {below.width(), 9};
    return {below.width() + TEXT_MARGIN, std::max(below.height(), pItem->fontMetrics.height() + 8)};
}

QIcon MakeMessageIcon(QStyle::StandardPixmap eIcon)
{
    QIcon icon;
    for (const MessageIcon &row : asMessageIcon)
        for (int nSide = 16; row.ePixmap == eIcon && nSide <= 128; nSide += 16)
            icon.addPixmap(PaintMessageIcon(row, nSide));
    return icon;
}
