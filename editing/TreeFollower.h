// TreeFollower.h -- keeps a preset tree true to the preset, whoever changed it
#pragma once

#include "editing/PresetTree.h"

// From now on the tree hears the preset's news: it is emptied before its preset goes and built anew when one comes;
// nodes go before their planes and modules are freed; after any change of planes or lists it is brought in line, and
// its root shows the name and the mark of changes. Once, for a tree that lives until UnfollowPreset. [main-thread]
void FollowPreset(PresetTree &tree);
void UnfollowPreset(PresetTree &tree);

// Brings the planes and modules of the tree in line with its preset: nodes whose object is gone are deleted, missing
// ones added, others moved into order; all that need no change stay as they are. Planes are renumbered, and their
// paused marks written, only where a number is wrong.
void SyncPresetTree(PresetTree &tree);
