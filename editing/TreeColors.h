// TreeColors.h -- the colours in which the rows of the preset tree are painted
#pragma once

#include "editing/PresetTree.h"

constexpr u32 TREE_LEVEL_MAX = 6; // deeper rows look like those of this level

struct TreeRowState {
    u32 nLevel; // 0: the root
    u32 dwType; // ObjectType; changed and active count for groups and controls only
    bool bChanged;
    bool bActive;
    bool bSelected; // and in no other state, such as having the focus or the pointer
};

// Of the form 0x00BBGGRR.
struct TreeRowColors {
    u32 dwText;
    u32 dwBack;
};

// From the user's colours as they are now. [main-thread]
TreeRowColors ColorTreeRow(const TreeRowState &state);

// 0 to TREE_LEVEL_MAX.
u32 NodeLevel(const TreeNode *pNode);
// The same for a node, as the present paint turn sees it. A group or control without a record is inactive.
TreeRowColors ColorTreeNode(PresetTree &tree, TreeNode *pNode, bool bSelected);
