// DarkViews_qt.cpp -- paints the rows of lists and trees, their branches and headers
#include "toolkit/ControlColors_qt.h"
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"
#include "toolkit/UIColors.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTreeView>

#include <algorithm>

namespace {

constexpr int BOX_SIDE = 9; // of a branch's plus and minus, odd: it has a middle
constexpr int TEXT_PAD = 2;

// Nothing leads up from the first item of all.
bool IsFirstRow(const DarkPiece &piece)
{
    const auto *pTree = qobject_cast<const QTreeView *>(piece.pWidget);
    if (!pTree || !(piece.pOption->state & QStyle::State_Item))
        return false;
    const QModelIndex index = pTree->indexAt(piece.pOption->rect.center());
    return index.isValid() && index.row() == 0 && !index.parent().isValid();
}

// A line from a plus box's middle: along the branch or to the item.
void DrawBranchLines(const DarkPiece &piece, const QPoint &middle, const QColor &line)
{
    const QRect &box = piece.pOption->rect;
    const QStyle::State s = piece.pOption->state;
    QPainter *p = piece.pPainter;
    if (s & QStyle::State_Item) {
        const bool bMirrored = piece.pOption->direction == Qt::RightToLeft;
        const int xFrom = bMirrored ? box.left() : middle.x();
        const int xTo = bMirrored ? middle.x() : box.right();
        DrawOutlinedRect(p, QRect(QPoint(xFrom, middle.y()), QPoint(xTo, middle.y())), {}, line);
        if (!IsFirstRow(piece))
            DrawOutlinedRect(p, QRect(QPoint(middle.x(), box.top()), middle), {}, line);
    }
    if (s & QStyle::State_Sibling) {
        const int yFrom = s & QStyle::State_Item ? middle.y() : box.top();
        DrawOutlinedRect(p, QRect(QPoint(middle.x(), yFrom), QPoint(middle.x(), box.bottom())), {}, line);
    }
}

void DrawPlusBox(const DarkPiece &piece, const QPoint &middle, const QColor &line)
{
    const QRect box(middle.x() - BOX_SIDE / 2, middle.y() - BOX_SIDE / 2, BOX_SIDE, BOX_SIDE);
    DrawOutlinedRect(piece.pPainter, box, line, piece.pOption->palette.color(QPalette::Base));
    const QColor sign = piece.pOption->palette.color(QPalette::Text);
    const int nArm = BOX_SIDE / 2 - 2;
    DrawOutlinedRect(piece.pPainter, QRect(middle.x() - nArm, middle.y(), 2 * nArm + 1, 1), {}, sign);
    if (!(piece.pOption->state & QStyle::State_Open))
        DrawOutlinedRect(piece.pPainter, QRect(middle.x(), middle.y() - nArm, 1, 2 * nArm + 1), {}, sign);
}

} // namespace

// Under an item: the selection, or a hint of it under the mouse. The current item of the view with the focus is framed.
void DrawItemPanel(const DarkPiece &piece)
{
    const auto *pItem = qstyleoption_cast<const QStyleOptionViewItem *>(piece.pOption);
    if (!pItem)
        return;
    const QPalette::ColorGroup eGroup = pItem->state & QStyle::State_Enabled ? QPalette::Normal : QPalette::Disabled;
    QColor fill;
    if (pItem->state & QStyle::State_Selected)
        fill = pItem->palette.color(eGroup, QPalette::Highlight);
    else if (pItem->backgroundBrush.style() != Qt::NoBrush)
        piece.pPainter->fillRect(pItem->rect, pItem->backgroundBrush);
    else if (StateOf(pItem).bHover) {
        fill = pItem->palette.color(eGroup, QPalette::Highlight);
        fill.setAlpha(90);
    }
    DrawOutlinedRect(piece.pPainter, pItem->rect, {}, fill);
}

void DrawItemTextBack(const DarkPiece &piece)
{
    const auto *pItem = qstyleoption_cast<const QStyleOptionViewItem *>(piece.pOption);
    if (!pItem || ViewColorsOf(piece.pWidget) != ViewColors::List || pItem->state & QStyle::State_Selected)
        return;
    const u32 dwBack = UIColorTable[UICOLOR_LIST_TEXT_BACKGROUND].dwColor;
    if (pItem->text.isEmpty() || dwBack == UIColorTable[UICOLOR_LIST_BACKGROUND].dwColor)
        return;
    const QRect area = piece.pStyle->subElementRect(QStyle::SE_ItemViewItemText, pItem, piece.pWidget);
    const QSize size = pItem->fontMetrics.size(0, pItem->text) + QSize(2 * TEXT_PAD + 2, 0);
    const QRect text =
        QStyle::alignedRect(pItem->direction, pItem->displayAlignment, size.boundedTo(area.size()), area);
    DrawOutlinedRect(piece.pPainter, text, {}, ColorOf(dwBack));
}

void DrawBranch(const DarkPiece &piece)
{
    const QColor line = ColorOf(UIColorTable[UICOLOR_TREE_LINE].dwColor);
    const QPoint middle = piece.pOption->rect.center();
    DrawBranchLines(piece, middle, line);
    if (piece.pOption->state & QStyle::State_Children)
        DrawPlusBox(piece, middle, line);
}

void DrawHeaderSection(const DarkPiece &piece)
{
    const ControlState state = StateOf(piece.pOption);
    const QRect &box = piece.pOption->rect;
    DrawOutlinedRect(piece.pPainter, box, {}, ButtonFillOf({state.bEnabled, state.bHover, false, state.bDown, false}));
    const QColor line = ColorOf(Look().dwFaint);
    DrawOutlinedRect(piece.pPainter, QRect(box.left(), box.bottom(), box.width(), 1), {}, line);
    const bool bMirrored = piece.pOption->direction == Qt::RightToLeft;
    DrawOutlinedRect(piece.pPainter, QRect(bMirrored ? box.left() : box.right(), box.top(), 1, box.height()), {}, line);
}

void DrawHeaderSpace(const DarkPiece &piece)
{
    const QRect &box = piece.pOption->rect;
    DrawOutlinedRect(piece.pPainter, box, {}, ColorOf(Look().dwButton));
    DrawOutlinedRect(piece.pPainter, QRect(box.left(), box.bottom(), box.width(), 1), {}, ColorOf(Look().dwFaint));
}

void DrawNothing(const DarkPiece &)
{
}
