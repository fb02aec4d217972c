// TreeColors.cpp -- the colours in which the rows of the preset tree are painted
#include "editing/TreeColors.h"

#include "controls/ControlManager.h"
#include "platform/MainThread.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <algorithm>

static_assert(UICOLOR_TREE_ROOT_TEXT + TREE_LEVEL_MAX == UICOLOR_TREE_CONTROL_TEXT);

namespace {

constexpr f32 SELECTED_TEXT = 1.5f;
constexpr f32 SELECTED_BACK = 0.6f;
constexpr f32 CHANGED_BACK = 0.23f;
constexpr f32 INACTIVE = 0.5f;

// Byte 0 to byte 1, byte 1 to byte 2, byte 2 to byte 0.
u32 RotateUp(u32 dwColor)
{
    return (dwColor << 8 & 0xFFFF00) | (dwColor >> 16 & 0xFF);
}

u32 RotateDown(u32 dwColor)
{
    return (dwColor >> 8 & 0xFFFF) | (dwColor & 0xFF) << 16;
}

} // namespace

TreeRowColors ColorTreeRow(const TreeRowState &state)
{
    ASSERT_MAIN_THREAD();
    const bool bControl = IsControlType(state.dwType);
    TreeRowColors colors;
    colors.dwText = UIColorTable[UICOLOR_TREE_ROOT_TEXT + std::min(state.nLevel, TREE_LEVEL_MAX)].dwColor;
    colors.dwBack = UIColorTable[UICOLOR_TREE_BACKGROUND].dwColor;
    if (state.bSelected) {
        colors.dwText = ScaleColor(colors.dwText, SELECTED_TEXT);
        colors.dwBack = ScaleColor(RotateUp(colors.dwText), SELECTED_BACK);
    }
    if (bControl && state.bChanged)
        colors.dwBack = ScaleColor(RotateDown(colors.dwText), CHANGED_BACK);
    if (bControl && !state.bActive) {
        colors.dwText = ScaleColor(colors.dwText, INACTIVE);
        colors.dwBack = ScaleColor(colors.dwBack, INACTIVE);
    }
    return colors;
}

u32 NodeLevel(const TreeNode *pNode)
{
    u32 nLevel = 0;
    while (pNode->pParent && nLevel < TREE_LEVEL_MAX) {
        pNode = pNode->pParent;
        nLevel++;
    }
    return nLevel;
}

TreeRowColors ColorTreeNode(PresetTree &tree, TreeNode *pNode, bool bSelected)
{
    ASSERT_MAIN_THREAD();
    TreeRowState state = {NodeLevel(pNode), pNode->Info.dwType, false, true, bSelected};
    if (IsControlType(state.dwType)) {
        const ControlRecord *pctl = ControlOf(pNode);
        state.bChanged = BranchHasChanges(tree, pNode);
        state.bActive = pctl && ControlIsActive(pctl);
    }
    return ColorTreeRow(state);
}
