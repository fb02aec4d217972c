// EditFields.h -- the fields that edits write, as a table: where they stand, what they take, what else they do
#pragma once

#include "editing/EditPlaces.h"

#include <string>
#include <vector>

enum class EditField : u32 {
    // Of a control of any type that has a value, and of a rule's weight
    Source,
    WavePeriod,
    RandomPhase, // switched on, it draws a phase at once
    WavePhase,
    WaveType,
    Samples,
    NoisePeriod,
    // Of an integer; the three numbers go to the nearer absolute limit
    IntegerValue,
    IntegerMin,
    IntegerMax,
    OnlyEven, // clears OnlyOdd, and the other way round
    OnlyOdd,
    IntegerMinMax,
    // Of a float
    FloatValue,
    FloatMin,
    FloatMax,
    FloatMinMax,
    // Of an item select, a boolean
    Item,
    State,
    Threshold,
    // Of a file select. A list that is set starts at its first line, without a file until the next reset. Whoever adds
    // files to it asks for the reset in the same edit: ResetPending.
    FileList,
    LineCount, // the last three are put back only
    CurrentLine,
    CurrentFile,
    Shuffle,
    // Of a tile control; iElement is row x nXTiles + column. The sizes are put back only.
    Tile,
    TileColumns,
    TileRows,
    TileColumnLimit,
    TileRowLimit,
    // Of a module
    Duration, // asks for a reset as well
    ClearOnReset,
    CallsPerFrame,
    Active,
    ResetPending,
    // Of a plane
    Paused,
    // Of a rule
    Source1,
    Source2,
    Mask,
    Operator,
    Count
};

// One value for one field. Which of the three it is, the field's row says.
struct FieldWrite {
    EditPlace place; // of the control, module, plane or rule itself
    EditField eField;
    u32 iElement;    // of Tile; 0
    i64 nValue;      // whole numbers and flags
    f32 fValue;      // floats
    u64 qwNextReset; // of a ResetPending that is put back: the slot's qwNextReset when it was kept
    std::u16string sText;
};
constexpr size_t FIELD_WRITES_MAX = 2048; // in one edit from outside: a whole tile mask and some more
constexpr size_t FILE_LIST_CHARS = 16000000;

inline FieldWrite WriteNumber(const EditPlace &place, EditField eField, i64 nValue, u32 iElement = 0)
{
    return {place, eField, iElement, nValue, 0, 0, {}};
}
inline FieldWrite WriteFloat(const EditPlace &place, EditField eField, f32 fValue)
{
    return {place, eField, 0, 0, fValue, 0, {}};
}
inline FieldWrite WriteText(const EditPlace &place, EditField eField, std::u16string sText)
{
    return {place, eField, 0, 0, 0, 0, std::move(sText)};
}

// The name of the field for the user; null: no such field.
const char16_t *FieldName(EditField eField);
// Whether writing it is a change of what a preset file holds.
bool FieldMarks(EditField eField);
// What stands in the field at the place now, as a write that would put it back. False: there is no such field there.
bool ReadField(const PresetState *lppsi, const EditPlace &place, EditField eField, u32 iElement, FieldWrite *pWrite);
