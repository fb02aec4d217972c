// PanelMakers_qt.h -- one maker a panel, for the table of panels
#pragma once

class Panel;
class QWidget;
struct TreeNode;

// All take the node and the window that the panel belongs to, and return it unshown.
Panel *MakeUnknownPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeDescriptionPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeNumberPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeBooleanPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeItemPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeModulePanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakePlanePanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakePlanesPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeModuleListPanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeTilePanel(TreeNode *pNode, QWidget *pOwner);
Panel *MakeFilePanel(TreeNode *pNode, QWidget *pOwner);
