// PanelMakers_qt.h -- one maker a panel, for the table of panels
#pragma once

class Panel;
class QWidget;
struct TreeNode;

// All take the node and the window that the panel belongs to, and return it unshown.
Panel *MakeUnknownPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeDescriptionPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeTilePanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeFilePanel(TreeNode *pNode, QWidget *pOwner);
