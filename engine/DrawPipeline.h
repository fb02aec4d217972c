// DrawPipeline.h -- what running a step mask over a slot, a plane or a preset means
#pragma once

#include "state/PresetState.h"

// The tick that modules see in hdc->qwTick until the next call: the frame step sets it once a frame, whoever brings
// modules up sets it before. [main-thread, while no plane is being drawn]
void SetModuleTick(u64 qwTick);

// Renews what must be fresh in the head before any call for this slot: time scale, tick, OpenGL window, and nothing
// selected in the context. The steps below do it themselves.
void RefreshHead(PlaneInfo *ppi, const ModuleSlot *pms);

// Applies the step mask to one instance. ppi is what the module sees (see SlotPlaneInfo). Allocates nothing.
// [plane-thread, main-thread]
void RunModuleSlot(PlaneInfo *ppi, ModuleSlot *pms, u32 dwSteps);

// All lists of one plane in drawing order, with the resolve between drawing and overlays. [plane-thread, main-thread]
void RunPlaneModules(PlaneState *pps, u32 dwSteps);

// Every plane that is neither paused nor held by a late thread, the blend weights of the rules, and post-processing
// (pending resets only: its drawing comes after the mixer). [main-thread]
void RunPresetModules(PresetState *lppsi, u32 dwSteps);
// The parts of it, for those who run them apart.
void EvaluateRuleWeights(PresetState *lppsi, bool bReset);
void RunPostProcessing(PresetState *lppsi, u32 dwSteps);

// The head that an overlay module sees: a copy of the plane's with bIndexed 0 and hbmDraw the resolved picture.
PlaneInfo OverlayPlaneInfo(const PlaneState *pps);
// Runs the mask on one slot in a list of the kind (pps null: post-processing), with the head that belongs to it.
void RunSlotInPlace(PresetState *lppsi, PlaneState *pps, u32 dwModuleType, ModuleSlot *pms, u32 dwSteps);
