// FluidSettings.h -- what the sub-panels of the animated sources offer: a row each
#pragma once

#include "editing/EditFields.h"
#include "editing/PresetTree.h"

#include <span>
#include <string>

// One animated source: the group of its settings and its slider.
struct FluidSetting {
    u32 dwSource; // FLUIDSOURCE_*
    PanelWindow *TVObjectInfo::*phPanel;
    const char16_t *pszGroup;
    const char16_t *pszSlider;
    const char16_t *pszLow, *pszHigh; // words at the slider's ends
    const char16_t *pszUnit;          // of the read-out; empty: none
    EditField eField;                 // that the slider writes
    u32 ControlBase::*pnValue;
    i32 nMin, nMax;
    i32 nLine, nPage; // steps of the arrow keys and of the page keys
};
std::span<const FluidSetting> FluidSettings();
// The row of the control's source; null: the source has none, or the control cannot follow it.
const FluidSetting *FluidSettingOf(const ControlRecord *pctl);
// What is written beside the slider: the control's value, also where the slider cannot stand at it.
std::u16string FluidReadout(const FluidSetting &setting, const ControlRecord *pctl);

struct WaveTypeName {
    u32 dwWaveType;
    const char16_t *pszName;
};
std::span<const WaveTypeName> WaveTypeNames();
