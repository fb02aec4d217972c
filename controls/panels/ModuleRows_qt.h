// ModuleRows_qt.h -- the two lists of the panel of a module list: a model over their rows, and the view
#pragma once

#include "controls/panels/ModuleLists.h"
#include "toolkit/RowListView_qt.h"

#include <QAbstractTableModel>

#include <functional>

class ModuleRows : public QAbstractTableModel {
  public:
    ModuleRows(u32 nColumns, QObject *pParent);
    const std::vector<ModuleRow> &Rows() const
    {
        return Shown;
    }
    // Loses the selection, unless nothing has changed.
    void Replace(std::vector<ModuleRow> rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int nRole) const override;
    QVariant headerData(int iSection, Qt::Orientation eOrientation, int nRole) const override;
    void sort(int iColumn, Qt::SortOrder eOrder) override;

  private:
    std::vector<ModuleRow> Shown;
    const int nColumns;
};

class ModuleListView : public RowListView {
  public:
    ModuleListView(ModuleRows *pRows, const QString &name);
    // From the top to the bottom.
    std::vector<const ModuleRow *> SelectedRows() const;

    std::function<bool(u32 dwKey)> pfnKey;                    // whether it took the key
    std::function<void(const ModuleRow &row)> pfnDoubleClick; // may be empty, as the other one

  protected:
    void keyPressEvent(QKeyEvent *pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;

  private:
    ModuleRows *const pRows;
};
