// EditStructure.cpp -- edits of planes and modules: add, remove, move, bring back
#include "editing/EditRows.h"

#include "engine/DrawPipeline.h"
#include "engine/MixRules.h"
#include "engine/ModuleSlots.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetManager.h"
#include "modules/ShaderList.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"

#include <algorithm>

namespace {

bool IsFlag(i32 n)
{
    return n == 0 || n == 1;
}

bool IsDirection(i32 n)
{
    return n == -1 || n == 1;
}

void TellPlanes(PresetState *lppsi)
{
    TellPresetNews({NewsKind::Planes, lppsi, nullptr, nullptr, nullptr});
}

std::shared_ptr<EditKeep> KeepOfPlane(const PlaneState *pps)
{
    auto pKeep = std::make_shared<EditKeep>();
    pKeep->plane = KeepPlane(pps);
    return pKeep;
}

// All planes from there on have to make room.
bool PlanesAreBusyFrom(const PresetState *lppsi, i32 iPlane)
{
    return std::any_of(lppsi->psPlane + iPlane, lppsi->psPlane + lppsi->nPlanes, PlaneIsBusy);
}

EditPlace ListOf(const EditPlace &place)
{
    return ListPlace(place.iPlane, place.iList);
}

// Which of a plane and its rules cannot be brought back decides: both or neither.
bool BringBackPlaneAndRules(PresetState *lppsi, i32 iPlane, const EditKeep &keep, bool bRules)
{
    PlaneState *pps = BringBackPlane(lppsi, iPlane, keep.plane);
    if (!pps)
        return false;
    if (!bRules || ReplaceMixRules(lppsi, keep.rules))
        return true;
    TakePlane(lppsi, pps);
    return false;
}

} // namespace

EditResult RunAddPlane(EditRun *pRun)
{
    const auto &anArgument = pRun->pEdit->anArgument;
    if (!IsFlag(anArgument[0]) || !IsFlag(anArgument[1]))
        return EditResult::Refused;
    if (!AddPlane(pRun->lppsi, static_cast<u32>(anArgument[0]), static_cast<u32>(anArgument[1])))
        return EditResult::Unchanged;
    *pRun->pInverse = MakeEdit(EditKind::TakePlane, PlanePlace(pRun->lppsi->nPlanes - 1));
    return EditResult::Done;
}

EditResult RunRemovePlane(EditRun *pRun)
{
    auto pKeep = KeepOfPlane(pRun->target.pps);
    pKeep->rules = KeepRules(pRun->lppsi);
    RemovePlane(pRun->lppsi, pRun->target.pps);
    *pRun->pInverse = MakeEdit(EditKind::InsertPlane, pRun->pEdit->place, 1);
    pRun->pInverse->pKeep = std::move(pKeep);
    return EditResult::Done;
}

EditResult RunTakePlane(EditRun *pRun)
{
    auto pKeep = KeepOfPlane(pRun->target.pps);
    TakePlane(pRun->lppsi, pRun->target.pps);
    *pRun->pInverse = MakeEdit(EditKind::InsertPlane, pRun->pEdit->place);
    pRun->pInverse->pKeep = std::move(pKeep);
    return EditResult::Done;
}

EditResult RunInsertPlane(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const i32 iPlane = pRun->pEdit->place.iPlane;
    const bool bRules = pRun->pEdit->anArgument[0] != 0;
    if (!pRun->pEdit->pKeep || iPlane < 0 || iPlane > lppsi->nPlanes || PlanesAreBusyFrom(lppsi, iPlane))
        return EditResult::Refused;
    if (!BringBackPlaneAndRules(lppsi, iPlane, *pRun->pEdit->pKeep, bRules))
        return EditResult::Unchanged;
    TellPlanes(lppsi); // it may have been paused
    *pRun->pInverse = MakeEdit(bRules ? EditKind::RemovePlane : EditKind::TakePlane, pRun->pEdit->place);
    return EditResult::Done;
}

EditResult RunMovePlane(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const i32 nDirection = pRun->pEdit->anArgument[0];
    const i32 iPlane = pRun->pEdit->place.iPlane;
    const i32 iOther = iPlane + nDirection;
    if (!IsDirection(nDirection))
        return EditResult::Refused;
    if (iOther < 0 || iOther >= lppsi->nPlanes)
        return EditResult::Unchanged;
    if (!SwapPlanes(lppsi, iPlane, iOther))
        return EditResult::Refused;
    *pRun->pInverse = MakeEdit(EditKind::MovePlane, PlanePlace(iOther), -nDirection);
    return EditResult::Done;
}

EditResult RunClearPlane(EditRun *pRun)
{
    ClearBitmap(pRun->target.pps->Info.hbmDraw);
    return EditResult::Done;
}

EditResult RunAddModule(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const PresetEdit &edit = *pRun->pEdit;
    const i32 nShader = edit.anArgument[0];
    if (edit.sText.empty() || edit.sText.size() >= MODULE_FILE_CHARS || edit.sText.find(u'\0') != edit.sText.npos ||
        nShader < 0 || (nShader > 0 && !GetShaderEntry(static_cast<u32>(nShader) - 1)))
        return EditResult::Refused;
    SetModuleTick(TickCount());
    if (!AddModule(lppsi, edit.sText, edit.place.iPlane, edit.place.iList, static_cast<u32>(nShader), 1))
        return EditResult::Unchanged;
    *pRun->pInverse = MakeEdit(EditKind::RemoveModule, ModulePlace(edit.place, ListLength(lppsi, edit.place) - 1));
    return EditResult::Done;
}

EditResult RunRemoveModule(EditRun *pRun)
{
    auto pKeep = std::make_shared<EditKeep>();
    pKeep->slot = KeepSlot(pRun->target.pms, pRun->pEdit->place.iList);
    RemoveModule(pRun->lppsi, pRun->target.pms);
    *pRun->pInverse = MakeEdit(EditKind::InsertModule, pRun->pEdit->place);
    pRun->pInverse->pKeep = std::move(pKeep);
    return EditResult::Done;
}

EditResult RunInsertModule(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const EditPlace &place = pRun->pEdit->place;
    const EditPlace list = ListOf(place);
    EditTarget target;
    if (!pRun->pEdit->pKeep || !FindTarget(lppsi, list, &target) || TargetIsBusy(target) || place.iModule < 0 ||
        place.iModule > ListLength(lppsi, list) || pRun->pEdit->pKeep->slot.iList != list.iList)
        return EditResult::Refused;
    if (!BringBackSlot(lppsi, place.iPlane, place.iModule, pRun->pEdit->pKeep->slot))
        return EditResult::Unchanged;
    TellPresetNews({NewsKind::Slots, lppsi, target.pps, nullptr, nullptr});
    *pRun->pInverse = MakeEdit(EditKind::RemoveModule, place);
    return EditResult::Done;
}

EditResult RunMoveModule(EditRun *pRun)
{
    const EditPlace &place = pRun->pEdit->place;
    const i32 nDirection = pRun->pEdit->anArgument[0];
    if (!IsDirection(nDirection))
        return EditResult::Refused;
    const EditPlace otherPlace = ModulePlace(ListOf(place), place.iModule + nDirection);
    EditTarget other;
    if (!FindTarget(pRun->lppsi, otherPlace, &other))
        return EditResult::Unchanged;
    SwapModuleSlots(pRun->lppsi, pRun->target.pms, other.pms);
    *pRun->pInverse = MakeEdit(EditKind::MoveModule, otherPlace, -nDirection);
    return EditResult::Done;
}
