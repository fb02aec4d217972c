// EditFieldRows.h -- the table of fields; only the door of edits includes it
#pragma once

#include "editing/EditRows.h"

#include <span>

constexpr u32 ANY_TYPE = 0; // a control of any type that has a value
constexpr u32 TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;

enum class FieldType { I32, U32, F32, Tile, List, Text };

enum : u32 {
    MARKS = 1,   // a preset file holds the field
    RESETS = 2,  // the module starts over, unless it is a control that can be animated
    KEPT = 4,    // only put back
    NEAREST = 8, // a number beyond the limits is taken too: pfnAccept brings it to the nearer one
};

// Brings a value that came from outside into its limits; false: it cannot be taken.
using AcceptFn = bool (*)(const EditTarget &target, FieldWrite *pWrite);
// What else a write from outside does.
using AfterFn = void (*)(const EditTarget &target);

struct FieldRow {
    EditField eField;
    const char16_t *pszName;
    PlaceKind eHome; // Control, Module, Plane or Rule
    u32 dwControlType;
    FieldType eType;
    size_t cbOffset; // from the start of the record
    u32 dwFlags;
    i64 nMin; // limits of whole numbers; a number beyond them is refused, but for NEAREST
    i64 nMax;
    AcceptFn pfnAccept; // null: the limits alone
    AfterFn pfnAfter;   // null: nothing
};

// In the order of EditField.
std::span<const FieldRow> FieldRows();
// Null: no such field.
const FieldRow *FieldRowOf(EditField eField);
