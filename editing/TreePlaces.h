// TreePlaces.h -- the place in its preset that a node of the preset tree stands for
#pragma once

#include "editing/EditPlaces.h"
#include "editing/PresetTree.h"

// Kind None where the node stands for nothing that edits know: the mixer, a group that the tree made itself, an object
// that is gone. [main-thread]
EditPlace PlaceOfNode(const TreeNode *pNode);
