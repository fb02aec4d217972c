// PresetTreeView_qt.h -- the preset tree on the screen: colours, keys, expansion
#pragma once

#include "editing/PresetTreeModel_qt.h"

#include <QPersistentModelIndex>
#include <QTreeView>

#include <functional>

class PresetTreeView : public QTreeView {
  public:
    explicit PresetTreeView(PresetTree *pTree, QWidget *pParent = nullptr);
    ~PresetTreeView() override;

    TreeNode *SelectedNode() const;
    void SelectNode(const TreeNode *pNode);

    // Called with the node under the pointer, or the selected one for the menu key, and a place on the screen. The
    // selection stays as it is.
    std::function<void(TreeNode *pNode, const QPoint &place)> pfnContextMenu;
    std::function<void(TreeNode *pNode)> pfnRemove; // the Delete key
    // For panels. Neither is called while the left Shift key is down.
    std::function<void(TreeNode *pNode, TreeNode *pOld)> pfnClicked; // a click selected it; pOld null: none before
    std::function<void(TreeNode *pNode)> pfnBring;                   // a double click or Enter

    void doItemsLayout() override;

  protected:
    void paintEvent(QPaintEvent *pEvent) override;
    void drawBranches(QPainter *pPainter, const QRect &rect, const QModelIndex &index) const override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseMoveEvent(QMouseEvent *pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent *pEvent) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *pEvent) const override;
    void contextMenuEvent(QContextMenuEvent *pEvent) override;

  private:
    static void Hear(const TreeNews &news, void *pv);
    void Take(const TreeNews &news);
    void TakeOwnExpansion(const TreeNode *pNode);
    void TakeExpansion(const TreeNode *pBranch);
    void SelectInsteadOfHidden(const TreeNode *pCollapsed);
    void ExpandSelected(bool bExpanded);
    void EnterSelected();
    void Bring(TreeNode *pNode);
    void OpenMenuByKey();
    QPoint MenuPlace(const QModelIndex &index);

    PresetTreeModel *pModel;
    QPersistentModelIndex Top; // the uppermost row, as it was painted; invalid: it has been scrolled since
    bool bFollowing = false;   // the expansion comes from the tree
};
