// Description.h -- what the description panel of a group of controls says
#pragma once

#include "editing/PresetTree.h"

constexpr u32 DESCRIPTION_CHARS = 64000; // the terminating 0 included

// The group's description with the sentence about its dependency, then the controls below it with theirs. Cut at
// DESCRIPTION_CHARS - 1.
std::u16string GroupText(const TreeNode *pGroup);
