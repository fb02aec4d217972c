// TreeMenu_qt.h -- the context menu of a node of the preset tree on the screen
#pragma once

#include "editing/TreeMenu.h"

#include <functional>

class QMenu;
class QWidget;

// Shows nothing yet: popup() does. It belongs to the parent, deletes itself when it closes, and closes by itself when
// its node goes, as when another preset comes meanwhile. [main-thread]
QMenu *MakeTreeMenu(PresetTree *pTree, TreeNode *pNode, QWidget *pParent,
                    std::function<void(TreeNode *pNode, TreeCommand eCommand, u32 dwArgument)> pfnRun);
