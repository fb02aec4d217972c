// ModuleSlots.h -- makes, removes and exchanges module instances
#pragma once

#include "state/PresetState.h"

#include <string_view>

// Adds an instance of the library to the list of the kind in plane iPlane, or to post-processing (-1). dwShader is the
// number of a shader plus one, 0 for none. With bInitialize it is brought up at once. Null, with the preset as it was:
// no such library, an unavailable one, no such plane, one that a thread hangs in, or a list of LIST_MODULES_MAX.
// [main-thread]
ModuleSlot *AddModule(PresetState *lppsi, std::u16string_view dll, i32 iPlane, u32 dwModuleType, u32 dwShader,
                      u32 bInitialize);

// Takes the instance down, frees it and closes the gap in its list; null: all instances of the preset. Non-zero if
// something was removed. What stands in a plane that a thread hangs in stays where it is.
u32 RemoveModule(PresetState *lppsi, ModuleSlot *pms);
// All instances of one plane, which no thread may be inside of. Tells nobody: the plane itself goes, or is not in the
// list yet.
void RemovePlaneModules(PlaneState *pps);

// Exchanges two instances of one owner wherever they stand in its lists. 0 for different owners.
u32 SwapModuleSlots(PresetState *lppsi, ModuleSlot *pmsA, ModuleSlot *pmsB);
