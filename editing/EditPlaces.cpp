// EditPlaces.cpp -- places in a preset: what stands there, where a record stands, what a branch holds
#include "editing/EditPlaces.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr u32 FAMILY_LISTS = 3;

// Slots of a list, wherever it lives.
struct ListView {
    ModuleSlot *const *apSlot;
    i32 nCount; // -1: no such list
};

bool NamesPlane(const EditPlace &place)
{
    return place.eKind >= PlaceKind::Plane && place.eKind <= PlaceKind::Control;
}

bool NamesList(const EditPlace &place)
{
    return place.eKind >= PlaceKind::List && place.eKind <= PlaceKind::Control;
}

ListView ListAt(const PresetState *lppsi, const EditPlace &place)
{
    if (!lppsi || !NamesList(place))
        return {nullptr, -1};
    if (place.iPlane == POST_PROCESSING && place.iList == MODULEINDEX_NUMINDICIES)
        return {lppsi->apPostProc, lppsi->nPostProc};
    const PlaneState *pps = PlaneAt(lppsi, place);
    if (!pps || place.iList >= MODULEINDEX_MIXER)
        return {nullptr, -1};
    return {pps->apModule[place.iList], pps->anModules[place.iList]};
}

// The first nDepth parts of a control's name with the 0 behind each; empty: it has fewer.
std::u16string_view NameParts(const ControlRecord *pctl, u32 nDepth)
{
    const std::u16string_view name(pctl->Base.szName, CONTROL_TEXT);
    size_t nEnd = 0;
    for (; nDepth > 0; nDepth--) {
        const size_t nNext = name.find(u'\0', nEnd);
        if (nNext == name.npos || nNext == nEnd)
            return {};
        nEnd = nNext + 1;
    }
    return name.substr(0, nEnd);
}

bool ControlIsInGroup(const ControlRecord *pctl, std::u16string_view group)
{
    const std::u16string_view name(pctl->Base.szName, CONTROL_TEXT);
    return !group.empty() && name.starts_with(group) && group.size() < name.size() && name[group.size()] != 0;
}

void AppendControls(const PresetState *lppsi, const EditPlace &module, std::vector<EditPlace> *pPlaces)
{
    const ModuleSlot *pms = SlotAt(lppsi, module);
    for (i32 i = 0; i < pms->nControls; i++)
        pPlaces->push_back(ControlPlace(module, i));
}

void AppendGroup(const PresetState *lppsi, const EditPlace &group, std::vector<EditPlace> *pPlaces)
{
    const ModuleSlot *pms = SlotAt(lppsi, group);
    const EditPlace module = ModulePlace(ListPlace(group.iPlane, group.iList), group.iModule);
    const std::u16string_view parts = NameParts(pms->apControl[group.iControl], group.nDepth);
    for (i32 i = 0; i < pms->nControls; i++)
        if (ControlIsInGroup(pms->apControl[i], parts))
            pPlaces->push_back(ControlPlace(module, i));
}

void AppendModule(const PresetState *lppsi, const EditPlace &module, std::vector<EditPlace> *pPlaces)
{
    pPlaces->push_back(module);
    AppendControls(lppsi, module, pPlaces);
}

void AppendLists(const PresetState *lppsi, i32 iPlane, u32 iFirst, u32 nLists, std::vector<EditPlace> *pPlaces)
{
    for (u32 i = iFirst; i < iFirst + nLists; i++) {
        const EditPlace list = ListPlace(iPlane, i);
        for (i32 iModule = 0; iModule < ListLength(lppsi, list); iModule++)
            AppendModule(lppsi, ModulePlace(list, iModule), pPlaces);
    }
}

void AppendPlane(const PresetState *lppsi, i32 iPlane, std::vector<EditPlace> *pPlaces)
{
    pPlaces->push_back(PlanePlace(iPlane));
    AppendLists(lppsi, iPlane, 0, MODULEINDEX_MIXER, pPlaces);
}

void AppendPlanes(const PresetState *lppsi, std::vector<EditPlace> *pPlaces)
{
    for (i32 i = 0; i < lppsi->nPlanes; i++)
        AppendPlane(lppsi, i, pPlaces);
}

} // namespace

EditPlace ModulePlace(const EditPlace &list, i32 iModule)
{
    EditPlace place = ListPlace(list.iPlane, list.iList);
    place.eKind = PlaceKind::Module;
    place.iModule = iModule;
    return place;
}

EditPlace ControlPlace(const EditPlace &module, i32 iControl)
{
    EditPlace place = ModulePlace(module, module.iModule);
    place.eKind = PlaceKind::Control;
    place.iControl = iControl;
    return place;
}

EditPlace GroupPlace(const EditPlace &control, u32 nDepth)
{
    EditPlace place = control;
    place.eKind = PlaceKind::Group;
    place.nDepth = nDepth;
    return place;
}

const PlaneState *PlaneAt(const PresetState *lppsi, const EditPlace &place)
{
    const bool bThere = lppsi && NamesPlane(place) && place.iPlane >= 0 && place.iPlane < lppsi->nPlanes;
    return bThere ? lppsi->psPlane[place.iPlane] : nullptr;
}

const ModuleSlot *SlotAt(const PresetState *lppsi, const EditPlace &place)
{
    if (place.eKind < PlaceKind::Module)
        return nullptr;
    const ListView list = ListAt(lppsi, place);
    return place.iModule >= 0 && place.iModule < list.nCount ? list.apSlot[place.iModule] : nullptr;
}

const ControlRecord *ControlAt(const PresetState *lppsi, const EditPlace &place)
{
    if (place.eKind == PlaceKind::Weight) {
        const MixRule *pmr = RuleAt(lppsi, place);
        return pmr ? &pmr->BlendWeight : nullptr;
    }
    if (place.eKind != PlaceKind::Control && place.eKind != PlaceKind::Group)
        return nullptr;
    const ModuleSlot *pms = SlotAt(lppsi, place);
    return pms && place.iControl >= 0 && place.iControl < pms->nControls ? pms->apControl[place.iControl] : nullptr;
}

const MixRule *RuleAt(const PresetState *lppsi, const EditPlace &place)
{
    const bool bRule = place.eKind == PlaceKind::Rule || place.eKind == PlaceKind::Weight;
    return lppsi && bRule && place.iRule < lppsi->nMixRules ? &lppsi->asMixRule[place.iRule] : nullptr;
}

bool PlaceExists(const PresetState *lppsi, const EditPlace &place)
{
    switch (place.eKind) {
    case PlaceKind::Preset:
    case PlaceKind::Planes:
        return lppsi != nullptr;
    case PlaceKind::Plane:
        return PlaneAt(lppsi, place);
    case PlaceKind::Family:
        return PlaneAt(lppsi, place) && place.iList < MODULEINDEX_MIXER && place.iList % FAMILY_LISTS == 0;
    case PlaceKind::List:
        return ListLength(lppsi, place) >= 0;
    case PlaceKind::Module:
        return SlotAt(lppsi, place);
    case PlaceKind::Group:
    case PlaceKind::Control:
    case PlaceKind::Weight:
        return ControlAt(lppsi, place);
    case PlaceKind::Rule:
        return RuleAt(lppsi, place);
    default:
        return false;
    }
}

i32 ListLength(const PresetState *lppsi, const EditPlace &place)
{
    return ListAt(lppsi, place).nCount;
}

EditPlace PlaceOfPlane(const PresetState *lppsi, const PlaneState *pps)
{
    for (i32 i = 0; lppsi && pps && i < lppsi->nPlanes; i++)
        if (lppsi->psPlane[i] == pps)
            return PlanePlace(i);
    return {};
}

EditPlace PlaceOfSlot(const PresetState *lppsi, const ModuleSlot *pms)
{
    if (!lppsi || !pms)
        return {};
    for (const EditPlace &place : PlacesOfBranch(lppsi, PresetPlace()))
        if (place.eKind == PlaceKind::Module && SlotAt(lppsi, place) == pms)
            return place;
    return {};
}

EditPlace PlaceOfControl(const PresetState *lppsi, const ControlRecord *pctl)
{
    if (!lppsi || !pctl)
        return {};
    for (u32 i = 0; i < lppsi->nMixRules; i++)
        if (&lppsi->asMixRule[i].BlendWeight == pctl)
            return WeightPlace(i);
    for (const EditPlace &place : PlacesOfBranch(lppsi, PresetPlace()))
        if (place.eKind == PlaceKind::Control && ControlAt(lppsi, place) == pctl)
            return place;
    return {};
}

std::vector<EditPlace> PlacesOfBranch(const PresetState *lppsi, const EditPlace &branch)
{
    std::vector<EditPlace> places;
    if (!PlaceExists(lppsi, branch))
        return places;
    switch (branch.eKind) {
    case PlaceKind::Preset:
        AppendPlanes(lppsi, &places);
        AppendLists(lppsi, POST_PROCESSING, MODULEINDEX_NUMINDICIES, 1, &places);
        break;
    case PlaceKind::Planes:
        AppendPlanes(lppsi, &places);
        break;
    case PlaceKind::Plane:
        AppendPlane(lppsi, branch.iPlane, &places);
        break;
    case PlaceKind::Family:
        AppendLists(lppsi, branch.iPlane, branch.iList, FAMILY_LISTS, &places);
        break;
    case PlaceKind::List:
        AppendLists(lppsi, branch.iPlane, branch.iList, 1, &places);
        break;
    case PlaceKind::Module:
        AppendModule(lppsi, branch, &places);
        break;
    case PlaceKind::Group:
        AppendGroup(lppsi, branch, &places);
        break;
    case PlaceKind::Control:
        places.push_back(branch);
        break;
    default:
        break; // a rule has no defaults of its own
    }
    return places;
}
