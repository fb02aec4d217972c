// PaletteRows_qt.cpp -- the list of the palette browser: a model over its rows, and the view that paints their strips
#include "toolkit/PaletteRows_qt.h"

#include "platform/VectorState.h"
#include "toolkit/Commands.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/PaletteBrowser.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

constexpr int STRIP_HEIGHT_MAX = 16;
constexpr int ROW_PAD = 2; // above and below the strips together: there the selection shows

// The strip is fitted to the width with smoothing; all its pixel rows are alike.
void DrawStrip(QPainter *pPainter, const QRect &cell, const std::vector<u32> &pixels)
{
    const int nColors = static_cast<int>(pixels.size());
    const int nWidth = qRound(cell.width() * pPainter->device()->devicePixelRatioF());
    if (nColors == 0 || nWidth <= 0)
        return;
    const QImage strip(reinterpret_cast<const uchar *>(pixels.data()), nColors, 1, nColors * 4, QImage::Format_RGB32);
    QRect box(cell.topLeft(), QSize(cell.width(), std::min(cell.height(), STRIP_HEIGHT_MAX)));
    box.moveTop(cell.top() + (cell.height() - box.height()) / 2);
    pPainter->drawImage(box, strip.scaled(nWidth, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

class StripDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *pPainter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (index.column() != PALETTE_COLUMN_STRIP)
            return QStyledItemDelegate::paint(pPainter, option, index);
        option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, pPainter, option.widget);
        PaletteList *pList = static_cast<const PaletteRows *>(index.model())->List();
        ClearVectorState(); // much arithmetic between two strokes of the painter
        DrawStrip(pPainter, option.rect, PaletteStrip(pList, static_cast<u32>(index.row())));
    }
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, STRIP_HEIGHT_MAX + ROW_PAD));
    }
};

// What a screen reader says in the place of the strip.
QString ColorCount(PaletteList *pList, u32 iRow)
{
    const PaletteEntry *pEntry = ReadPaletteRow(pList, iRow);
    return pEntry ? QStringLiteral("%1 colors").arg(pEntry->nColors) : QStringLiteral("no colors");
}

QString RowName(const PaletteList &list, u32 iRow)
{
    return QString::fromStdU16String(OneLine(PaletteName(list, iRow)));
}

} // namespace

PaletteRows::PaletteRows(PaletteList *pShown, QObject *pParent) : QAbstractTableModel(pParent), pList(pShown)
{
}

int PaletteRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(pList->rows.size());
}

int PaletteRows::columnCount(const QModelIndex &) const
{
    return PALETTE_COLUMNS;
}

QVariant PaletteRows::data(const QModelIndex &index, int nRole) const
{
    const u32 iRow = static_cast<u32>(index.row());
    if (index.column() == PALETTE_COLUMN_STRIP)
        return nRole == Qt::AccessibleTextRole ? ColorCount(pList, iRow) : QVariant();
    if (nRole == Qt::ToolTipRole) // the column is narrow
        return PlainTip(RowName(*pList, iRow));
    return nRole == Qt::DisplayRole ? RowName(*pList, iRow) : QVariant();
}

QVariant PaletteRows::headerData(int iSection, Qt::Orientation eOrientation, int nRole) const
{
    if (eOrientation != Qt::Horizontal || nRole != Qt::DisplayRole)
        return QVariant();
    return iSection == PALETTE_COLUMN_NAME ? QStringLiteral("Name") : QStringLiteral("Palette");
}

PaletteListView::PaletteListView(PaletteRows *pRows)
    : RowListView(pRows, PALETTE_COLUMN_NAME, QStringLiteral("Palettes"))
{
    setItemDelegate(new StripDelegate(this));
    setContextMenuPolicy(Qt::DefaultContextMenu);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(1);
}

std::vector<u32> PaletteListView::SelectedRows() const
{
    std::vector<u32> rows;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        for (int i = range.top(); i <= range.bottom(); i++)
            rows.push_back(static_cast<u32>(i));
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void PaletteListView::mousePressEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::RightButton)
        RowListView::mousePressEvent(pEvent);
}

void PaletteListView::mouseReleaseEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::RightButton)
        RowListView::mouseReleaseEvent(pEvent);
}

void PaletteListView::mouseDoubleClickEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() == Qt::LeftButton)
        RowListView::mouseDoubleClickEvent(pEvent);
}

void PaletteListView::contextMenuEvent(QContextMenuEvent *pEvent)
{
    pEvent->accept();
}

void PaletteListView::resizeEvent(QResizeEvent *pEvent)
{
    RowListView::resizeEvent(pEvent);
    const PaletteColumns widths = PaletteColumnsOf(viewport()->width());
    header()->resizeSection(PALETTE_COLUMN_NAME, widths.nName);
    header()->resizeSection(PALETTE_COLUMN_STRIP, widths.nPalette);
}
