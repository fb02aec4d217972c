// TreeCommands.h -- what the user does to a node of the preset tree, by menu, key or a panel's button
#pragma once

#include "editing/PresetTree.h"

enum class TreeCommand : u32 {
    None,
    AddModule, // argument: a ModuleKey
    Remove,    // a plane or a module; nothing else can be removed
    AddPlane,  // argument: non-zero for an indexed plane
    MoveUp,
    MoveDown,
    PausePlane, // or resume
    PauseModule,
    RestoreItem,
    RestoreBranch,
    LoadControlSet, // this one and those after it have no function yet
    SaveControlSet,
    Copy,
    Paste,
    Count
};

// Open panels read their records again.
inline Listeners<void()> PanelRefresh;

// Runs the command on a node of the tree, which is the current preset's. What the command ends with (panels refreshed,
// branch repainted, preset marked) happens also where it could do nothing: a move at the end of a list, a fifth plane,
// a node of another kind. The node may be gone afterwards. The tree should be following the preset, so that nodes go
// before their objects (FollowPreset). [main-thread]
void RunTreeCommand(PresetTree &tree, TreeNode *pNode, TreeCommand eCommand, u32 dwArgument = 0);
