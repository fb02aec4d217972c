// PanelHost_qt.h -- opens and closes the panels of a preset tree
#pragma once

#include "controls/panels/Panels.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class Panel;

// Gives the window its size, and its place beside the owner if the pointer is over that. [main-thread]
void PutBeside(QWidget *pWindow, QWidget *pOwner);

// The panels of one tree, owned by one window, beside which they open. Deletes them with itself. [main-thread]
class PanelHost {
  public:
    PanelHost(PresetTree *pTree, QWidget *pOwner);
    PanelHost(const PanelHost &) = delete;
    PanelHost &operator=(const PanelHost &) = delete;
    ~PanelHost();

    // A click selected pNode in place of pOld (may be null): the old one's panel is closed unless it is pinned, the new
    // one's is opened without the focus. Where it has one already, that stays as it is.
    void NodeClicked(TreeNode *pNode, TreeNode *pOld);
    // A double click or a key: the node's panel comes to the front with the focus, made if there is none.
    void BringPanel(TreeNode *pNode);

    // A panel became the active window.
    std::function<void(TreeNode *pNode)> pfnActivated;

  private:
    static void HearNode(TreeNode *pNode, void *pv);
    static void HearActivation(TreeNode *pNode, void *pv);
    Panel *OpenPanel(TreeNode *pNode, u32 bFocus);

    PresetTree *pTree;
    QWidget *pOwner;
};
