// ModuleRows_qt.cpp -- the two lists of the panel of a module list: a model over their rows, and the view
#include "controls/panels/ModuleRows_qt.h"

#include "toolkit/Commands.h"
#include "toolkit/ControlColors_qt.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

ModuleRows::ModuleRows(u32 n, QObject *pParent) : QAbstractTableModel(pParent), nColumns(static_cast<int>(n))
{
}

void ModuleRows::Replace(std::vector<ModuleRow> rows)
{
    if (rows == Shown)
        return;
    beginResetModel();
    Shown = std::move(rows);
    endResetModel();
}

int ModuleRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Shown.size());
}

int ModuleRows::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : nColumns;
}

QVariant ModuleRows::data(const QModelIndex &index, int nRole) const
{
    if (nRole != Qt::DisplayRole && nRole != Qt::ToolTipRole)
        return QVariant();
    const ModuleRow &row = Shown[static_cast<size_t>(index.row())];
    const QString text = QString::fromStdU16String(OneLine(row.asText[index.column()]));
    return nRole == Qt::ToolTipRole ? PlainTip(text) : text; // columns are narrow
}

QVariant ModuleRows::headerData(int iSection, Qt::Orientation eOrientation, int nRole) const
{
    if (eOrientation != Qt::Horizontal || nRole != Qt::DisplayRole)
        return QVariant();
    return QString::fromUtf16(ColumnTitle(static_cast<u32>(iSection)));
}

// What is selected stays so. Rows know each other again by their keys, which are all different.
void ModuleRows::sort(int iColumn, Qt::SortOrder eOrder)
{
    if (iColumn < 0)
        return;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<u32> keys;
    for (const QModelIndex &index : before)
        keys.push_back(Shown[static_cast<size_t>(index.row())].dwKey);
    SortModuleRows(&Shown, static_cast<u32>(iColumn), eOrder == Qt::DescendingOrder);
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); i++) {
        const auto it = std::ranges::find(Shown, keys[static_cast<size_t>(i)], &ModuleRow::dwKey);
        after.push_back(index(static_cast<int>(it - Shown.begin()), before[i].column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

ModuleListView::ModuleListView(ModuleRows *p, const QString &name) : RowListView(p, MODULE_COLUMN_NAME, name), pRows(p)
{
    ApplyListColors(this);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    header()->setStretchLastSection(pRows->columnCount() == 1);
    setHeaderHidden(pRows->columnCount() == 1);
}

std::vector<const ModuleRow *> ModuleListView::SelectedRows() const
{
    QModelIndexList selected = selectionModel()->selectedRows();
    std::ranges::sort(selected, {}, &QModelIndex::row);
    std::vector<const ModuleRow *> rows;
    for (const QModelIndex &index : selected)
        rows.push_back(&pRows->Rows()[static_cast<size_t>(index.row())]);
    return rows;
}

// The toolkit would keep Escape from the panel.
void ModuleListView::keyPressEvent(QKeyEvent *pEvent)
{
    const u32 dwKey = KeyEventOf(*pEvent).dwKey;
    if (dwKey == KEY_ESCAPE)
        return pEvent->ignore();
    if (pEvent->modifiers() & ~Qt::KeypadModifier || !pfnKey || !pfnKey(dwKey))
        RowListView::keyPressEvent(pEvent);
}

void ModuleListView::mouseDoubleClickEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return;
    RowListView::mouseDoubleClickEvent(pEvent);
    const QModelIndex under = indexAt(pEvent->position().toPoint());
    if (under.isValid() && pfnDoubleClick)
        pfnDoubleClick(pRows->Rows()[static_cast<size_t>(under.row())]);
}

// A quarter, a quarter, and a whole width that runs off to the right.
void ModuleListView::resizeEvent(QResizeEvent *pEvent)
{
    RowListView::resizeEvent(pEvent);
    if (pRows->columnCount() == 1)
        return;
    const int nWidth = viewport()->width();
    header()->resizeSection(MODULE_COLUMN_NAME, nWidth / 4);
    header()->resizeSection(MODULE_COLUMN_TYPE, nWidth / 4);
    header()->resizeSection(MODULE_COLUMN_DESCRIPTION, nWidth);
}
