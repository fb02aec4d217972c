// PresetEdit.cpp -- the table of edits and the one function that runs them
#include "editing/EditRows.h"

#include "engine/PlaneThreads.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "platform/MainThread.h"
#include "platform/OrderedRows.h"

#include <iterator>

namespace {

enum class MarkWhen {
    Never,
    Done,   // where something was changed
    Ran,    // also where there was nothing to do or no room
    Fields, // where a field of a preset file was written
};

constexpr u32 At(PlaceKind eKind)
{
    return 1u << static_cast<u32>(eKind);
}

enum : u32 {
    SETTLES = 1, // plane threads have to be out of the modules
    INSERTS = 2, // the place need not be there yet
    STUCK = 4,   // also a plane that a thread hangs in
};

struct EditRow {
    EditKind eKind;
    const char16_t *pszName;
    u32 dwPlaces; // kinds of places it takes
    u32 dwFlags;
    MarkWhen eMark;
    EditRunFn pfnRun;
};

constexpr u32 ANY_PLACE = ~At(PlaceKind::None);

constexpr EditRow asEdit[] = {
    {EditKind::None, u"", 0, 0, MarkWhen::Never, nullptr},
    {EditKind::SetFields, u"Change Setting", At(PlaceKind::None), 0, MarkWhen::Fields, RunSetFields},
    {EditKind::AddPlane, u"Add Plane", At(PlaceKind::Preset), SETTLES, MarkWhen::Ran, RunAddPlane},
    {EditKind::RemovePlane, u"Remove Plane", At(PlaceKind::Plane), SETTLES | STUCK, MarkWhen::Ran, RunRemovePlane},
    {EditKind::MovePlane, u"Move Plane", At(PlaceKind::Plane), SETTLES, MarkWhen::Ran, RunMovePlane},
    {EditKind::PausePlane, u"Pause/Resume Plane Drawing", At(PlaceKind::Plane), 0, MarkWhen::Never, RunPausePlane},
    {EditKind::ClearPlane, u"Clear Plane", At(PlaceKind::Plane), SETTLES, MarkWhen::Never, RunClearPlane},
    {EditKind::AddModule, u"Add Module", At(PlaceKind::List), SETTLES, MarkWhen::Ran, RunAddModule},
    {EditKind::RemoveModule, u"Remove Module", At(PlaceKind::Module), SETTLES, MarkWhen::Ran, RunRemoveModule},
    {EditKind::MoveModule, u"Move Module", At(PlaceKind::Module), SETTLES, MarkWhen::Ran, RunMoveModule},
    {EditKind::PauseModule, u"Pause/Resume Module Drawing", At(PlaceKind::Module), 0, MarkWhen::Never, RunPauseModule},
    {EditKind::RestoreItem, u"Restore Defaults", ANY_PLACE, 0, MarkWhen::Ran, RunRestoreItem},
    {EditKind::RestoreBranch, u"Restore Defaults of Branch", ANY_PLACE, 0, MarkWhen::Ran, RunRestoreBranch},
    {EditKind::AddRule, u"New Rule", At(PlaceKind::Preset), 0, MarkWhen::Done, RunAddRule},
    {EditKind::RemoveRule, u"Delete Rule", At(PlaceKind::Rule), 0, MarkWhen::Done, RunRemoveRule},
    {EditKind::MoveRule, u"Move Rule", At(PlaceKind::Rule), 0, MarkWhen::Done, RunMoveRule},
    {EditKind::PutBack, u"Change Setting", At(PlaceKind::None), 0, MarkWhen::Fields, RunPutBack},
    {EditKind::TakePlane, u"Remove Plane", At(PlaceKind::Plane), SETTLES, MarkWhen::Done, RunTakePlane},
    {EditKind::InsertPlane, u"Add Plane", At(PlaceKind::Plane), SETTLES | INSERTS, MarkWhen::Done, RunInsertPlane},
    {EditKind::InsertModule, u"Add Module", At(PlaceKind::Module), SETTLES | INSERTS, MarkWhen::Done, RunInsertModule},
    {EditKind::TakeRule, u"Delete Rule", At(PlaceKind::Rule), 0, MarkWhen::Done, RunTakeRule},
    {EditKind::InsertRule, u"New Rule", At(PlaceKind::Rule), INSERTS, MarkWhen::Done, RunInsertRule},
};
static_assert(std::size(asEdit) == static_cast<size_t>(EditKind::Count));
static_assert(RowsStandInOrder(asEdit, &EditRow::eKind));

const EditRow &RowOf(EditKind eKind)
{
    return asEdit[eKind < EditKind::Count ? static_cast<u32>(eKind) : 0];
}

bool PlaceFits(const EditRow &row, EditRun *pRun)
{
    const EditPlace &place = pRun->pEdit->place;
    if (place.eKind >= PlaceKind::Count || !(row.dwPlaces & At(place.eKind)))
        return false;
    if (place.eKind == PlaceKind::None || (row.dwFlags & INSERTS))
        return true;
    return FindTarget(pRun->lppsi, place, &pRun->target) && ((row.dwFlags & STUCK) || !TargetIsBusy(pRun->target));
}

EditResult RunRow(const EditRow &row, EditRun *pRun)
{
    if (!pRun->lppsi || !row.pfnRun)
        return EditResult::Refused;
    if (row.dwFlags & SETTLES)
        SettlePlaneThreads();
    return PlaceFits(row, pRun) ? row.pfnRun(pRun) : EditResult::Refused;
}

bool MarkIsDue(const EditRow &row, const EditRun &run, EditResult eResult)
{
    if (eResult == EditResult::Refused)
        return false;
    switch (row.eMark) {
    case MarkWhen::Done:
        return eResult == EditResult::Done;
    case MarkWhen::Ran:
        return true;
    case MarkWhen::Fields:
        return run.bMark;
    default:
        return false;
    }
}

} // namespace

EditResult RunPresetEdit(const PresetEdit &edit, PresetEdit *pInverse)
{
    ASSERT_MAIN_THREAD();
    const EditRow &row = RowOf(edit.eKind);
    PresetEdit inverse = {};
    EditRun run = {CurrentPreset(), &edit, {}, &inverse, false};
    const EditResult eResult = RunRow(row, &run);
    if (MarkIsDue(row, run, eResult))
        MarkPresetChanged();
    if (pInverse)
        *pInverse = std::move(inverse);
    return eResult;
}

const char16_t *EditName(const PresetEdit &edit)
{
    const char16_t *pszField = edit.writes.empty() ? nullptr : FieldName(edit.writes[0].eField);
    return pszField ? pszField : RowOf(edit.eKind).pszName;
}

bool EditIsInverse(const PresetEdit &edit)
{
    return edit.eKind >= EditKind::PutBack;
}

PresetEdit MakeEdit(EditKind eKind, const EditPlace &place, i32 nArgument0, i32 nArgument1)
{
    PresetEdit edit = {};
    edit.eKind = eKind;
    edit.place = place;
    edit.anArgument[0] = nArgument0;
    edit.anArgument[1] = nArgument1;
    return edit;
}

PresetEdit MakeFieldEdit(FieldWrite write)
{
    PresetEdit edit = MakeEdit(EditKind::SetFields, {});
    edit.writes.push_back(std::move(write));
    return edit;
}

PresetEdit MakeModuleEdit(const EditPlace &list, std::u16string_view dll, i32 nShader)
{
    PresetEdit edit = MakeEdit(EditKind::AddModule, list, nShader);
    edit.sText = dll;
    return edit;
}

PresetEdit MakeRuleEdit(i32 nSource1, i32 nSource2, i32 nMask, i32 nMixOp)
{
    PresetEdit edit = MakeEdit(EditKind::AddRule, PresetPlace(), nSource1, nSource2);
    edit.anArgument[2] = nMask;
    edit.anArgument[3] = nMixOp;
    return edit;
}

bool FindTarget(PresetState *lppsi, const EditPlace &place, EditTarget *pTarget)
{
    if (!PlaceExists(lppsi, place))
        return false;
    *pTarget = {place.eKind,
                lppsi,
                const_cast<PlaneState *>(PlaneAt(lppsi, place)),
                const_cast<ModuleSlot *>(SlotAt(lppsi, place)),
                const_cast<ControlRecord *>(ControlAt(lppsi, place)),
                const_cast<MixRule *>(RuleAt(lppsi, place))};
    return true;
}

bool TargetIsBusy(const EditTarget &target)
{
    return target.pps && PlaneIsBusy(target.pps);
}

void TellTarget(const EditTarget &target)
{
    NewsKind eKind = NewsKind::Planes;
    if (target.pctl)
        eKind = NewsKind::Control;
    else if (target.pms)
        eKind = NewsKind::Slots;
    else if (target.pmr)
        eKind = NewsKind::Mixer;
    TellPresetNews({eKind, target.lppsi, target.pps, target.pms, target.pctl});
}

void TellMixer(PresetState *lppsi)
{
    TellPresetNews({NewsKind::Mixer, lppsi, nullptr, nullptr, nullptr});
}
