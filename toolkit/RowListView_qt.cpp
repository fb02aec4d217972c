// RowListView_qt.cpp -- a list of several columns over a model of the program's own records
#include "toolkit/RowListView_qt.h"

#include <QHeaderView>
#include <QKeyEvent>

RowListView::RowListView(QAbstractItemModel *pModel, int iName, const QString &name) : iNameColumn(iName)
{
    setModel(pModel);
    setAccessibleName(name);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    header()->setSectionsMovable(false);
}

void RowListView::keyboardSearch(const QString &text)
{
    const QModelIndex name = currentIndex().siblingAtColumn(iNameColumn);
    if (name.isValid())
        selectionModel()->setCurrentIndex(name, QItemSelectionModel::NoUpdate);
    QTreeView::keyboardSearch(text);
}

void RowListView::keyPressEvent(QKeyEvent *pEvent)
{
    if (pEvent->matches(QKeySequence::Copy))
        pEvent->ignore();
    else
        QTreeView::keyPressEvent(pEvent);
}
