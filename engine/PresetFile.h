// PresetFile.h -- presets as files: save, load, and the parts of them that fragments share
//
// A file holds differences: settings and controls stand in it only where they differ from their defaults. Modules are
// named by their library file, controls by their dotted name, so that neither order nor number ties a file to a build.
#pragma once

#include "engine/XmlText.h"
#include "state/PresetState.h"

#include <string>
#include <string_view>
#include <vector>

// What a reader passed over because it could not be used here, one line each for the user, in the order of the file.
struct PresetReport {
    std::string sFailure;            // why there is no preset; empty if there is one, or no such file
    std::vector<std::string> asLine; // at most REPORT_LINES_MAX
    u32 nMore;                       // lines beyond them
};
constexpr u32 REPORT_LINES_MAX = 64;

// For iPlane of ReadPlane: the first plane that the document has.
constexpr u32 FIRST_STORED_PLANE = ALL_ONES;

// Tag word of a module kind, such as "DPainter". Null beyond MODULEINDEX_NUMINDICIES.
const char16_t *ModuleKindWord(u32 dwModuleType);

// Writes the preset to the file. Non-zero on success; 0 without a preset, or when the old file stands as it was, and
// *psWhy (may be null) then says why. Brings the controls that it writes into their limits. [main-thread]
u32 SavePresetFile(PresetState *lppsi, std::u16string_view path, std::string *psWhy = nullptr);

// Reads the file of that name or, if there is none, the one in the preset folder. Every module is brought up. Null if
// neither can be read as a preset. pReport may be null, here and below. [main-thread]
PresetState *LoadPresetFile(std::u16string_view name, PresetReport *pReport = nullptr);
// The same for SwitchPreset: pvArgument is a PresetRequest.
struct PresetRequest {
    std::u16string_view name;
    PresetReport *pReport;
};
PresetState *MakeStoredPreset(const void *pvArgument);
// From the bytes of a file.
PresetState *LoadPresetText(std::string_view bytes, PresetReport *pReport = nullptr);

// The parts, at the level of what holds them. A reader leaves the level as it found it, but for ReadControl.
void WritePreset(XmlContext *pxc, PresetState *lppsi);
void WritePlane(XmlContext *pxc, const PlaneState *pps, u32 iPlane);
void WriteModule(XmlContext *pxc, const ModuleSlot *pms, u32 dwModuleType, u32 iModule);
// The body of a control; the caller makes the level around it. Brings the control into its limits.
void WriteControl(XmlContext *pxc, ControlRecord *pctl);
// Whether a module's file holds the control: it is changed, and the change is one that the format can tell.
bool ControlIsStored(const ControlRecord *pctl);

// Adds the plane with its modules to the preset. Null if the document has no such plane or the preset no room.
PlaneState *ReadPlane(XmlContext *pxc, PresetState *lppsi, u32 iPlane, PresetReport *pReport = nullptr);
// Adds the module to plane iPlane of the preset (-1: post-processing) and brings it up. Null if the document has no
// such module or it cannot be added.
ModuleSlot *ReadModule(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 iModule, u32 dwModuleType,
                       PresetReport *pReport = nullptr);
// The same for a module whose level the caller has entered, or that stands in the level around it. iModule is what the
// report calls it.
ModuleSlot *ReadEnteredModule(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 iModule, u32 dwModuleType,
                              PresetReport *pReport = nullptr);
// Inside the level of a stored control, which it leaves in any case: if the stored name is the control's own, without
// regard to case, non-zero, and the stored fields take the place of the control's. bClamp limits them to the control's
// range. A file list that the control had is freed: a copy of a control must not share one.
u32 ReadControl(XmlContext *pxc, ControlRecord *pctl, u32 bClamp, PresetReport *pReport = nullptr);
// The control of the slot that the n-th stored control of this level names, or null.
ControlRecord *FindStoredControl(XmlContext *pxc, const ModuleSlot *pms, u32 n);

void AddToReport(PresetReport *pReport, std::string sLine);
// Why the preset of that name could not be loaded, as one line for the user.
std::string DescribeFailure(std::u16string_view name, const PresetReport &report);
