// RowListView_qt.h -- a list of several columns over a model of the program's own records
#pragma once

#include <QTreeView>

// Whole rows are selected; what is typed searches the column of names, whichever was clicked last. The clipboard is
// left alone: the toolkit would put a name in the place of what it holds. [main-thread]
class RowListView : public QTreeView {
  public:
    // pModel belongs to somebody else.
    RowListView(QAbstractItemModel *pModel, int iNameColumn, const QString &name);

    void keyboardSearch(const QString &text) override;

  protected:
    void keyPressEvent(QKeyEvent *pEvent) override;

  private:
    const int iNameColumn;
};
