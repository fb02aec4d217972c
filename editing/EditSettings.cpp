// EditSettings.cpp -- edits of fields: set, pause, restore defaults, put back, drag
#include "editing/EditRows.h"

#include "controls/ControlManager.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetManager.h"
#include "platform/MainThread.h"

#include <algorithm>

namespace {

constexpr u32 DEFAULT_DURATION = 16; // seconds

using WriteFn = void (*)(const EditTarget &target, const FieldWrite &write);

void SortPlaces(std::vector<EditPlace> *pPlaces)
{
    std::sort(pPlaces->begin(), pPlaces->end());
    pPlaces->erase(std::unique(pPlaces->begin(), pPlaces->end()), pPlaces->end());
}

bool IsList(const FieldWrite &write)
{
    return write.eField == EditField::FileList;
}

bool AnyList(const std::vector<FieldWrite> &writes)
{
    return std::any_of(writes.begin(), writes.end(), IsList);
}

// A list is freed when it is set: no thread may be about to read it. Plain words may change at any time.
void SettleForLists(const std::vector<FieldWrite> &writes)
{
    if (AnyList(writes))
        SettlePlaneThreads();
}

// Where writes go and what they make start over; each list is sorted.
struct WritePlaces {
    std::vector<EditPlace> written;
    std::vector<EditPlace> asked;  // modules that a control or setting makes start over
    std::vector<EditPlace> resets; // these, and those whose reset is written itself
};

// bResets: what the writes change makes modules start over; what is put back says itself which ones do.
WritePlaces PlacesOfWrites(PresetState *lppsi, const std::vector<FieldWrite> &writes, bool bResets)
{
    WritePlaces places;
    EditTarget target;
    for (const FieldWrite &write : writes) {
        places.written.push_back(write.place);
        if (write.eField == EditField::ResetPending)
            places.resets.push_back(write.place);
        else if (bResets && FindTarget(lppsi, write.place, &target) && WriteResets(target, write.eField))
            places.asked.push_back(ModulePlace(write.place, write.place.iModule));
    }
    SortPlaces(&places.written);
    SortPlaces(&places.asked);
    places.resets.insert(places.resets.end(), places.asked.begin(), places.asked.end());
    SortPlaces(&places.resets);
    return places;
}

std::vector<FieldWrite> KeepBefore(PresetState *lppsi, const WritePlaces &places, bool bLists)
{
    std::vector<EditPlace> all = places.written;
    all.insert(all.end(), places.asked.begin(), places.asked.end());
    SortPlaces(&all);
    std::vector<FieldWrite> kept;
    for (const EditPlace &place : all)
        KeepFields(lppsi, place, bLists, &kept);
    return kept;
}

void TellPlaces(PresetState *lppsi, const std::vector<EditPlace> &places)
{
    EditTarget target;
    for (const EditPlace &place : places)
        if (FindTarget(lppsi, place, &target))
            TellTarget(target);
}

EditResult GiveBack(EditRun *pRun, std::vector<FieldWrite> kept)
{
    if (kept.empty())
        return EditResult::Unchanged;
    *pRun->pInverse = MakeEdit(EditKind::PutBack, {});
    pRun->pInverse->writes = std::move(kept);
    return EditResult::Done;
}

// Writes that have been found good.
EditResult RunWrites(EditRun *pRun, const std::vector<FieldWrite> &writes, WriteFn pfnWrite, bool bResets)
{
    PresetState *lppsi = pRun->lppsi;
    const WritePlaces places = PlacesOfWrites(lppsi, writes, bResets);
    std::vector<FieldWrite> kept = KeepBefore(lppsi, places, AnyList(writes));
    EditTarget target;
    for (const FieldWrite &write : writes) {
        FindTarget(lppsi, write.place, &target);
        pfnWrite(target, write);
        pRun->bMark |= FieldMarks(write.eField);
    }
    for (const EditPlace &module : places.asked)
        if (FindTarget(lppsi, module, &target))
            target.pms->bResetPending = 1;
    DropUnchanged(lppsi, places.resets, &kept);
    TellPlaces(lppsi, places.written);
    return GiveBack(pRun, std::move(kept));
}

// The defaults of one node.
void RestoreSlotDefaults(ModuleSlot *pms)
{
    pms->nDuration = DEFAULT_DURATION;
    pms->bClearOnReset = 0;
    pms->nCallsPerFrame = 1;
    pms->bActive = 1;
    pms->bResetPending = 1;
}

// A group is a record too, but has no values of its own.
bool HasDefaults(const EditTarget &target)
{
    const bool bValue = target.eKind == PlaceKind::Control || target.eKind == PlaceKind::Weight;
    return bValue && target.pctl->Base.dwType != CONTROLTYPE_GROUP;
}

void RestoreTarget(const EditTarget &target)
{
    if (target.eKind == PlaceKind::Plane)
        target.pps->bPaused = 0;
    else if (target.eKind == PlaceKind::Module)
        RestoreSlotDefaults(target.pms);
    else if (HasDefaults(target))
        RestoreControlDefaults(target.pctl);
}

void RestorePlace(PresetState *lppsi, const EditPlace &place, std::vector<FieldWrite> *pAllKept)
{
    EditTarget target;
    if (!FindTarget(lppsi, place, &target))
        return;
    std::vector<FieldWrite> kept;
    KeepFields(lppsi, place, false, &kept);
    RestoreTarget(target);
    DropUnchanged(lppsi, {place}, &kept);
    if (kept.empty())
        return;
    TellTarget(target);
    std::move(kept.begin(), kept.end(), std::back_inserter(*pAllKept));
}

EditResult RestorePlaces(EditRun *pRun, const std::vector<EditPlace> &places)
{
    EditTarget target;
    for (const EditPlace &place : places)
        if (FindTarget(pRun->lppsi, place, &target) && TargetIsBusy(target))
            return EditResult::Refused;
    std::vector<FieldWrite> kept;
    for (const EditPlace &place : places)
        RestorePlace(pRun->lppsi, place, &kept);
    return GiveBack(pRun, std::move(kept));
}

EditResult Toggle(EditRun *pRun, EditField eField, bool bNow)
{
    return RunWrites(pRun, {WriteNumber(pRun->pEdit->place, eField, bNow ? 0 : 1)}, RunWrite, true);
}

// The record that a drag changes; null: there is none.
const void *DraggedRecord(const EditPlace &place)
{
    EditTarget target;
    if (!FindTarget(CurrentPreset(), place, &target))
        return nullptr;
    switch (place.eKind) {
    case PlaceKind::Plane:
        return target.pps;
    case PlaceKind::Module:
        return target.pms;
    case PlaceKind::Control:
    case PlaceKind::Weight:
        return target.pctl;
    case PlaceKind::Rule:
        return target.pmr;
    default:
        return nullptr;
    }
}

bool DragGoesOn(const EditDrag &drag)
{
    return drag.pvRecord && CurrentPreset() == drag.pvPreset && DraggedRecord(drag.place) == drag.pvRecord;
}

// Of a field that was written before, the first value counts.
void MergeBefore(std::vector<FieldWrite> *pBefore, std::vector<FieldWrite> kept)
{
    const size_t nBefore = pBefore->size();
    for (FieldWrite &write : kept) {
        const bool bKnown = std::any_of(
            pBefore->begin(), pBefore->begin() + static_cast<std::ptrdiff_t>(nBefore), [&](const FieldWrite &w) {
                return w.place == write.place && w.eField == write.eField && w.iElement == write.iElement;
            });
        if (!bKnown)
            pBefore->push_back(std::move(write));
    }
}

} // namespace

EditResult RunSetFields(EditRun *pRun)
{
    std::vector<FieldWrite> writes = pRun->pEdit->writes;
    if (writes.empty() || writes.size() > FIELD_WRITES_MAX)
        return EditResult::Refused;
    SettleForLists(writes);
    EditTarget target;
    for (FieldWrite &write : writes)
        if (!FindTarget(pRun->lppsi, write.place, &target) || TargetIsBusy(target) || !AcceptWrite(target, &write))
            return EditResult::Refused;
    return RunWrites(pRun, writes, RunWrite, true);
}

EditResult RunPutBack(EditRun *pRun)
{
    const std::vector<FieldWrite> &writes = pRun->pEdit->writes;
    if (writes.empty())
        return EditResult::Refused;
    SettleForLists(writes);
    EditTarget target;
    for (const FieldWrite &write : writes)
        if (!FindTarget(pRun->lppsi, write.place, &target) || TargetIsBusy(target) || !CanPutBack(target, write))
            return EditResult::Refused;
    return RunWrites(pRun, writes, PutBackWrite, false);
}

EditResult RunPausePlane(EditRun *pRun)
{
    return Toggle(pRun, EditField::Paused, pRun->target.pps->bPaused != 0);
}

EditResult RunPauseModule(EditRun *pRun)
{
    return Toggle(pRun, EditField::Active, pRun->target.pms->bActive != 0);
}

EditResult RunRestoreItem(EditRun *pRun)
{
    return RestorePlaces(pRun, {pRun->pEdit->place});
}

EditResult RunRestoreBranch(EditRun *pRun)
{
    return RestorePlaces(pRun, PlacesOfBranch(pRun->lppsi, pRun->pEdit->place));
}

bool BeginDrag(EditDrag *pDrag, const EditPlace &place)
{
    ASSERT_MAIN_THREAD();
    *pDrag = {place, CurrentPreset(), DraggedRecord(place), {}};
    if (pDrag->pvRecord)
        return true;
    *pDrag = {};
    return false;
}

EditResult DragValue(EditDrag *pDrag, std::vector<FieldWrite> writes)
{
    ASSERT_MAIN_THREAD();
    const bool bHere =
        std::all_of(writes.begin(), writes.end(), [=](const FieldWrite &write) { return write.place == pDrag->place; });
    if (!bHere || !DragGoesOn(*pDrag))
        return EditResult::Refused;
    PresetEdit edit = MakeEdit(EditKind::SetFields, {});
    edit.writes = std::move(writes);
    const EditResult eResult = RunPresetEdit(edit, &edit);
    MergeBefore(&pDrag->before, std::move(edit.writes));
    return eResult;
}

void EndDrag(EditDrag *pDrag, PresetEdit *pInverse)
{
    ASSERT_MAIN_THREAD();
    *pInverse = {};
    if (DragGoesOn(*pDrag)) {
        const EditPlace &place = pDrag->place;
        DropUnchanged(CurrentPreset(), {ModulePlace(place, place.iModule)}, &pDrag->before);
        if (!pDrag->before.empty()) {
            pInverse->eKind = EditKind::PutBack;
            pInverse->writes = std::move(pDrag->before);
        }
    }
    *pDrag = {};
}
