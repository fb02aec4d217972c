// EditRows.h -- what the files of the door of edits share; nobody else includes it
#pragma once

#include "editing/PresetEdit.h"
#include "engine/PresetNews.h"

// What stands at a place, to be changed.
struct EditTarget {
    PlaceKind eKind;
    PresetState *lppsi;
    PlaneState *pps;     // around it; null: post-processing or a rule
    ModuleSlot *pms;     // the module, or that of the control
    ControlRecord *pctl; // a control, or a rule's weight
    MixRule *pmr;        // a rule, or that of the weight
};

// False: there is nothing.
bool FindTarget(PresetState *lppsi, const EditPlace &place, EditTarget *pTarget);
// A late thread is inside the plane of the place.
bool TargetIsBusy(const EditTarget &target);
// News of what stands there: a plane, a module, a control, a rule.
void TellTarget(const EditTarget &target);
void TellMixer(PresetState *lppsi);

// One run of an edit. What a row's function refuses it has not begun.
struct EditRun {
    PresetState *lppsi;
    const PresetEdit *pEdit;
    EditTarget target; // of the edit's place
    PresetEdit *pInverse;
    bool bMark; // SetFields and PutBack: one of the fields is part of a preset file
};
using EditRunFn = EditResult (*)(EditRun *pRun);

// EditFields.cpp, EditKeeps.cpp
// Whether writing the field makes the module of the target start over.
bool WriteResets(const EditTarget &target, EditField eField);
bool AcceptWrite(const EditTarget &target, FieldWrite *pWrite);
bool CanPutBack(const EditTarget &target, const FieldWrite &write);
void RunWrite(const EditTarget &target, const FieldWrite &write);
void PutBackWrite(const EditTarget &target, const FieldWrite &write);
// Appends all fields of what stands at the place, as writes that put them back.
void KeepFields(PresetState *lppsi, const EditPlace &place, bool bFileList, std::vector<FieldWrite> *pKept);
// Leaves those that have another value now, what goes with such a list, and ResetPending of the places in resets, which
// are sorted.
void DropUnchanged(PresetState *lppsi, const std::vector<EditPlace> &resets, std::vector<FieldWrite> *pKept);

// The list of a file select control. SetLineCount puts back how many lines were counted, which counts them again.
void SetListText(ControlRecord *pctl, const std::u16string &sText);
void SetLineCount(ControlRecord *pctl, u32 nLines);
void SetCurrentFile(ControlRecord *pctl, const std::u16string &sText);

// EditRules.cpp
bool RuleSourceFits(const PresetState *lppsi, i64 nSource);
// The rules as they are, without their images.
std::vector<MixRule> KeepRules(const PresetState *lppsi);

// The functions of the rows.
EditResult RunSetFields(EditRun *pRun);
EditResult RunPutBack(EditRun *pRun);
EditResult RunPausePlane(EditRun *pRun);
EditResult RunPauseModule(EditRun *pRun);
EditResult RunRestoreItem(EditRun *pRun);
EditResult RunRestoreBranch(EditRun *pRun);
EditResult RunAddPlane(EditRun *pRun);
EditResult RunRemovePlane(EditRun *pRun);
EditResult RunTakePlane(EditRun *pRun);
EditResult RunInsertPlane(EditRun *pRun);
EditResult RunMovePlane(EditRun *pRun);
EditResult RunClearPlane(EditRun *pRun);
EditResult RunAddModule(EditRun *pRun);
EditResult RunRemoveModule(EditRun *pRun);
EditResult RunInsertModule(EditRun *pRun);
EditResult RunMoveModule(EditRun *pRun);
EditResult RunAddRule(EditRun *pRun);
EditResult RunRemoveRule(EditRun *pRun);
EditResult RunTakeRule(EditRun *pRun);
EditResult RunInsertRule(EditRun *pRun);
EditResult RunMoveRule(EditRun *pRun);
