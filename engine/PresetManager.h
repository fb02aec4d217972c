// PresetManager.h -- the preset and its planes: make, change, resize, destroy
#pragma once

#include "state/PresetState.h"

// Makes a preset at the present buffer size; with bDefaults the default one, else an empty one. [main-thread]
PresetState *CreatePresetState(u32 bDefaults);
// Makes it without working out the buffer size and without bring-up, for a reader that brings up each module itself.
PresetState *AllocatePresetState();
// Sets up the pseudo-plane of the mixed picture.
void SetUpPostProcessing(PresetState *lppsi);

// Stops the plane threads, takes every module down and frees all that the preset owns. Non-zero if given a preset. The
// current one goes by SwitchPreset only. [main-thread]
u32 DestroyPresetState(PresetState *lppsi);

// Adds a plane, indexed or of colours, with or without the default colour modules (brought up at once). It becomes
// visible to the frame step when it is complete. Null at PLANES_MAX planes or when out of memory. [main-thread]
PlaneState *AddPlane(PresetState *lppsi, u32 bIndexed, u32 bDefaultModules);

// Removes one plane (and then all mixer rules, whose numbers no longer fit) or, for null, all planes. Non-zero if
// something was removed. [main-thread]
u32 RemovePlane(PresetState *lppsi, PlaneState *pps);

// Removes one plane and leaves the rules as they are, for whoever puts one back that fits them. [main-thread]
u32 TakePlane(PresetState *lppsi, PlaneState *pps);

// Exchanges two planes; the rules keep their numbers. 0, with nothing changed: no such planes, or a thread hangs in one
// of them. [main-thread]
u32 SwapPlanes(PresetState *lppsi, i32 iPlaneA, i32 iPlaneB);

// Works the buffer size out anew and, if it changed, gives every bitmap and hidden window the new size. Modules are
// cleaned up before and brought up anew after; planes start from zero. A plane that a late thread is inside of puts
// the resize off: bResizePending is set again. Non-zero if given a preset. [main-thread]
u32 ResizePresetBuffers(PresetState *lppsi, i32 nDetailScale);

// Counts how often ResizePresetBuffers has given a preset empty bitmaps. [main-thread]
u32 BitmapGeneration();

// The running preset; null while one is being switched. [main-thread]
PresetState *CurrentPreset();

// Replaces the running preset by what pfnMake returns (null: none). The old one is gone before the new one is made.
// Every change of preset goes through here, below engine/PresetDocument.h. [main-thread]
PresetState *SwitchPreset(PresetState *(*pfnMake)(const void *pvArgument), const void *pvArgument);
PresetState *MakeDefaultPreset(const void *pvUnused);
