// HostControl.h -- what the host keeps of a control outside the record, where no module writes
#pragma once

#include "state/PresetState.h"

// Every record of a slot is the last part of one of these. What the host allocated is freed from here alone: the
// pointers in the record only tell the module where it stands.
struct HostControl {
    u32 *pTileMask;        // owned; null: no tile control
    char16_t *pszFileList; // owned; null: empty
    u32 *pLineOffsets;     // owned
    u32 nLines;            // entries of pLineOffsets with text; ALL_ONES: to be counted again

    // As the module left them when building ended.
    u32 bBuilt; // 0: still being built, the five below are not known yet
    u32 dwType;
    u32 nItems;
    ItemSelectRow *pItems;
    ControlRecord *pDependsOn;
    ModuleSlot *pOwner;
    u32 bOwnsItems;

    alignas(16) ControlRecord Record;
};

// Of a record that NewControl gave.
inline HostControl *HostPart(ControlRecord *pctl)
{
    return reinterpret_cast<HostControl *>(reinterpret_cast<u8 *>(pctl) - offsetof(HostControl, Record));
}

// Building has ended: prepares what the host allocates for the type, drops what the module may not leave there, and
// remembers the rest.
void TakeOverControl(ModuleSlot *pms, ControlRecord *pctl);

// Takes back, in every control of a slot, what a module may have changed after building and must not: its type, owner
// and dependency, and the fields that are the host's. After every call into the module. [plane-thread, main-thread]
void TakeBackControls(const ModuleSlot *pms);
