// PaletteRows_qt.h -- the list of the palette browser: a model over its rows, and the view that paints their strips
#pragma once

#include "platform/BaseTypes.h"
#include "toolkit/RowListView_qt.h"

#include <QAbstractTableModel>

#include <vector>

struct PaletteList;

enum PaletteColumn { PALETTE_COLUMN_NAME = 0, PALETTE_COLUMN_STRIP, PALETTE_COLUMNS };

class PaletteRows : public QAbstractTableModel {
  public:
    PaletteRows(PaletteList *pList, QObject *pParent); // the list outlives it
    PaletteList *List() const
    {
        return pList;
    }
    // All that adds or removes rows goes through here.
    template <typename Fn> void Change(Fn change)
    {
        beginResetModel();
        change();
        endResetModel();
    }

    int rowCount(const QModelIndex &parent) const override;
    int columnCount(const QModelIndex &parent) const override;
    QVariant data(const QModelIndex &index, int nRole) const override;
    QVariant headerData(int iSection, Qt::Orientation eOrientation, int nRole) const override;

  private:
    PaletteList *const pList;
};

class PaletteListView : public RowListView {
  public:
    explicit PaletteListView(PaletteRows *pRows);
    std::vector<u32> SelectedRows() const; // in list order

  protected:
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseReleaseEvent(QMouseEvent *pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent *pEvent) override;
    void contextMenuEvent(QContextMenuEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;
};
