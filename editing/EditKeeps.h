// EditKeeps.h -- what an inverse keeps of records that are gone: all of their fields but the pointers
#pragma once

#include "state/PresetState.h"

#include <string>
#include <vector>

struct KeptControl {
    ControlRecord Record; // its pointers mean nothing any more
    std::vector<u32> aTile;
    std::u16string sFileList;
};

struct KeptSlot {
    u32 iList;
    std::u16string sDll;
    std::u16string sShader; // empty: none
    i32 bResetPending;
    u32 nDuration;
    u64 qwNextReset;
    i32 bActive;
    i32 bClearOnReset;
    i32 nCallsPerFrame;
    RandomStream Random;
    std::vector<KeptControl> controls;
};

// The picture goes with the plane, and so does what its colour modules share among themselves.
struct KeptPlane {
    u32 bIndexed;
    u32 bPaused;
    i32 nColors;
    std::vector<u32> aColor;
    std::vector<KeptSlot> slots;
};

// What one inverse brings back: a plane, a module or rules.
struct EditKeep {
    KeptPlane plane;
    KeptSlot slot;
    std::vector<MixRule> rules; // without their images
};

KeptSlot KeepSlot(const ModuleSlot *pms, u32 iList);
KeptPlane KeepPlane(const PlaneState *pps);

// Makes a new instance with what was kept: it starts with the old values of its controls. iPlane: -1 for
// post-processing. Null, with the preset as it was: its library or the room for it is gone. [main-thread]
ModuleSlot *BringBackSlot(PresetState *lppsi, i32 iPlane, i32 iModule, const KeptSlot &kept);
// The same for a plane with its modules; the rules stay as they are.
PlaneState *BringBackPlane(PresetState *lppsi, i32 iPlane, const KeptPlane &kept);
