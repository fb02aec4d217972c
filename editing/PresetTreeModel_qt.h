// PresetTreeModel_qt.h -- the preset tree as the toolkit's views read it
#pragma once

#include "editing/PresetTree.h"

#include <QAbstractItemModel>

// Follows the tree, which outlives it. An index points at its node.
class PresetTreeModel : public QAbstractItemModel {
  public:
    explicit PresetTreeModel(PresetTree *pTree, QObject *pParent = nullptr);
    ~PresetTreeModel() override;

    PresetTree *Tree() const
    {
        return pTree;
    }
    static TreeNode *NodeOf(const QModelIndex &index)
    {
        return static_cast<TreeNode *>(index.internalPointer());
    }
    // Invalid for null.
    QModelIndex IndexOf(const TreeNode *pNode) const;

    QModelIndex index(int nRow, int nColumn, const QModelIndex &parent) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent) const override;
    int columnCount(const QModelIndex &parent) const override;
    QVariant data(const QModelIndex &index, int nRole) const override;

  private:
    static void Hear(const TreeNews &news, void *pv);
    void Take(const TreeNews &news);

    PresetTree *pTree;
};
