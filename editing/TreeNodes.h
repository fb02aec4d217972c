// TreeNodes.h -- making and linking of nodes, for those who build branches
#pragma once

#include "editing/PresetTree.h"

// A node without a place, in the starting state of its kind; null when out of memory.
TreeNode *NewNode(PresetTree &tree, u32 dwType, std::u16string_view text, void *pObject);
// Puts a node at the end of a parent's children, in silence: for branches that are not in the tree yet.
void AppendChild(TreeNode *pParent, TreeNode *pNode);
// Puts a whole branch at the end of a parent in the tree, and tells of it.
void InsertBranch(PresetTree &tree, TreeNode *pParent, TreeNode *pBranch);

// Removes every node, between the two notices that BuildPresetTree needs around the building.
void BeginTreeReset(PresetTree &tree);
void EndTreeReset(PresetTree &tree);
