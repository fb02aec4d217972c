// TreeTexts.h -- what nodes of the preset tree are called: texts, marks, paths, titles, tips
#pragma once

#include "editing/PresetTree.h"

// "Plane %lu", from 1.
std::u16string PlaneText(u32 nPlane);
// The shader's name if the instance has one, else the module's. A view of the record.
std::u16string_view ModuleText(const ModuleSlot *pms);

// Name and mark of changes become the root's text, now and whenever the tree is built anew.
void SetTreeTitle(PresetTree &tree, std::u16string_view name, bool bChanged);
// The text up to " - [".
std::u16string_view UnmarkedText(std::u16string_view text);
// Cuts the node's text at " - [" and, for a paused one, appends the mark.
void SetPausedMark(PresetTree &tree, TreeNode *pNode, bool bPaused);
// Numbers the plane nodes by their planes' places in the preset, and gives the paused ones their mark.
void RenumberPlanes(PresetTree &tree, const PresetState *lppsi);

// The place of a node as fragments store it: plane numbers do not occur, the type of the plane does.
std::u16string ObjPath(const TreeNode *pNode);
// The place of a node as the user reads it: inside of a module from the module down, else from the root.
std::u16string DisplayPath(const TreeNode *pNode);
// The display path from "Plane " on, where that occurs.
std::u16string PanelTitle(const TreeNode *pNode);
std::u16string TipText(const TreeNode *pNode);
