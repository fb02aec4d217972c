// EditPlaces.h -- places in a preset as data: what an edit is done to
//
// A place is made of numbers alone, so that it can be kept, sent and replayed. It may name nothing: the functions that
// look it up answer null then. Records come out as const: what changes them is the door of edits (PresetEdit.h).
#pragma once

#include "state/PresetState.h"

#include <compare>
#include <type_traits>
#include <vector>

enum class PlaceKind : u32 {
    None,
    Preset,  // all of it
    Planes,  // all planes
    Plane,   // iPlane
    Family,  // three lists of a plane: colour, drawing or overlay modules; iList is the first of them
    List,    // iPlane, iList
    Module,  // and iModule
    Group,   // and iControl, nDepth: the controls whose names begin with the first nDepth parts of that control's name
    Control, // and iControl
    Rule,    // iRule
    Weight,  // iRule: the blend weight of the rule
    Count
};

struct EditPlace {
    PlaceKind eKind;
    i32 iPlane;   // -1: post-processing
    u32 iList;    // ModuleIndex; MODULEINDEX_NUMINDICIES for post-processing
    i32 iModule;  // in the list
    i32 iControl; // in the module
    u32 nDepth;   // parts of a name
    u32 iRule;

    auto operator<=>(const EditPlace &) const = default;
};
static_assert(std::is_trivially_copyable_v<EditPlace>);

constexpr i32 POST_PROCESSING = -1; // for iPlane

inline EditPlace PresetPlace()
{
    return {PlaceKind::Preset, 0, 0, 0, 0, 0, 0};
}
inline EditPlace PlanesPlace()
{
    return {PlaceKind::Planes, 0, 0, 0, 0, 0, 0};
}
inline EditPlace PlanePlace(i32 iPlane)
{
    return {PlaceKind::Plane, iPlane, 0, 0, 0, 0, 0};
}
inline EditPlace FamilyPlace(i32 iPlane, u32 iFirstList)
{
    return {PlaceKind::Family, iPlane, iFirstList, 0, 0, 0, 0};
}
inline EditPlace ListPlace(i32 iPlane, u32 iList)
{
    return {PlaceKind::List, iPlane, iPlane == POST_PROCESSING ? u32{MODULEINDEX_NUMINDICIES} : iList, 0, 0, 0, 0};
}
EditPlace ModulePlace(const EditPlace &list, i32 iModule);
EditPlace ControlPlace(const EditPlace &module, i32 iControl);
EditPlace GroupPlace(const EditPlace &control, u32 nDepth);
inline EditPlace RulePlace(u32 iRule)
{
    return {PlaceKind::Rule, 0, 0, 0, 0, 0, iRule};
}
inline EditPlace WeightPlace(u32 iRule)
{
    return {PlaceKind::Weight, 0, 0, 0, 0, 0, iRule};
}

// What stands at a place or around it; null: nothing, as for the plane of a rule. Any numbers may stand in the place.
const PlaneState *PlaneAt(const PresetState *lppsi, const EditPlace &place);
const ModuleSlot *SlotAt(const PresetState *lppsi, const EditPlace &place);
const ControlRecord *ControlAt(const PresetState *lppsi, const EditPlace &place); // also a rule's weight
const MixRule *RuleAt(const PresetState *lppsi, const EditPlace &place);          // of a rule or of its weight
// Whether the place names something that is there.
bool PlaceExists(const PresetState *lppsi, const EditPlace &place);
// Slots in the list around the place; -1: there is no such list.
i32 ListLength(const PresetState *lppsi, const EditPlace &place);

// The place of a record, by its address alone, which is not followed: it may be gone. Kind None: not in this preset.
EditPlace PlaceOfPlane(const PresetState *lppsi, const PlaneState *pps);
EditPlace PlaceOfSlot(const PresetState *lppsi, const ModuleSlot *pms);
EditPlace PlaceOfControl(const PresetState *lppsi, const ControlRecord *pctl);

// The planes, modules and controls of a branch, itself included, in the order of the tree.
std::vector<EditPlace> PlacesOfBranch(const PresetState *lppsi, const EditPlace &branch);
