// ModuleCalls.h -- the one place from which the host enters module code
#pragma once

#include "state/PresetState.h"

// Each calls the entry point of the slot's module and cleans up behind it: an OpenGL context that the module left
// current is released, since the next call may come on another thread. [main-thread, plane-thread]
void CallBuildControlStructure(ModuleSlot *pms, PlaneInfo *ppi); // between BeginControls and EndControls
void CallPreInitialize(ModuleSlot *pms, PlaneInfo *ppi);
void CallInitialize(ModuleSlot *pms, PlaneInfo *ppi);
u32 CallDrawFrame(ModuleSlot *pms, PlaneInfo *ppi); // MODULEDRAW_RESET or something without a meaning
void CallResolveIndexedPlane(ModuleSlot *pms, PlaneInfo *ppi, HostBitmap *hbmTarget);
void CallCleanUp(ModuleSlot *pms);
void CallDestroyControlStructure(ModuleSlot *pms);
