// TreeCommands.h -- what the user does to a node of the preset tree
#pragma once

#include "editing/PresetTree.h"

enum class TreeCommand : u32 {
    None,
    AddModule, // argument: a ModuleKey
    Remove,
    AddPlane, // argument: non-zero for an indexed plane
    MoveUp,
    MoveDown,
    PausePlane,
    PauseModule,
    RestoreItem,
    RestoreBranch,
    LoadControlSet,
    SaveControlSet,
    Copy,
    Paste,
};
