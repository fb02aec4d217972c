// TreeMenu.h -- the context menu of a node of the preset tree, as data
#pragma once

#include "editing/TreeCommands.h"

#include <string_view>
#include <vector>

enum class TreeMenuPart : u32 { Entry, Line, SubMenu, SubMenuEnd };

struct TreeMenuRow {
    TreeMenuPart ePart;
    std::u16string_view text; // plain; lives as long as the modules and the shader list
    TreeCommand eCommand;
    u32 dwArgument;
    bool bEnabled;
};

// All rows, those of sub menus between SubMenu and SubMenuEnd. A line follows each section, the last one too. "Paste"
// is there if pfnMayPaste (null: never) says that the clipboard holds what can be put there.
std::vector<TreeMenuRow> BuildTreeMenu(const TreeNode *pNode, bool (*pfnMayPaste)(const TreeNode *pNode) = nullptr);
