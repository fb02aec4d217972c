// ControlManager.h -- the control record: defaults, limits, comparison, names, ownership
#pragma once

#include "state/PresetState.h"

#include <atomic>

// Set when something changed the preset without a command of the user; read and cleared by the main window.
extern std::atomic<u32> bPresetChanged;

// Allocates a zero-filled record with the defaults of a new control; null when out of memory.
ControlRecord *NewControl();
// Applies those defaults to a zero-filled record that lives elsewhere (the blend weight of a mixer rule).
void SetControlDefaults(ControlRecord *pctl);
// Frees the record with what it owns: tile mask, file list, and the rows of an item select that owns them.
void FreeControl(ControlRecord *pctl);

// Starts and ends the building of a slot: between the two, AllocControl appends to the slot. Ending it fixes the
// slot's count whatever the module wrote there, sets the owner of every record, prepares the tile controls and takes
// back what a module may not leave: unended texts, pointers in the host's fields, a dependency outside the slot, rows
// that do not exist. [main-thread]
void BeginControls(ModuleSlot *pms);
void EndControls(ModuleSlot *pms);
// The count that modules are shown while they build. Not the slot's own: a module may keep the address and write there
// whenever it likes.
extern i32 nControlsShown;
// The callback for modules. Null beyond CONTROLS_MAX, outside of building, on any thread but the building one, or when
// out of memory. Which count the module passes does not matter: it is the slot's own that grows.
ControlRecord *AllocControl(i32 *pnControls);

// Whether the control can be animated by wave, sound or periodic chance. Never for an item select.
bool ControlSupportsFluidSources(const ControlRecord *pctl);
// Brings the current fields into their absolute limits; a float that is no number goes to the lower one. Nothing
// orders nMin below nMax.
void ClampControl(ControlRecord *pctl);
bool ControlIsDefault(const ControlRecord *pctl);
i32 CountChangedControls(const ModuleSlot *pms);
// The wave's phase, and whether resets draw it, stay as they are.
void RestoreControlDefaults(ControlRecord *pctl);
// What the dependency says; only decides how the control is shown.
bool ControlIsActive(const ControlRecord *pctl);
// How the comparison of a dependency is called: "equal to". Never null.
const char16_t *DependWords(u32 dwDependOp);
// The components of the name joined with ".", cut at 259 characters. Copes with a list that lacks its second 0.
void ControlDottedName(const ControlRecord *pctl, NameText &szName);
