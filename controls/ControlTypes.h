// ControlTypes.h -- the control types: a row each, and how other rooms key what they do with a control by its type
#pragma once

#include "include/control.h"
#include "platform/BaseTypes.h"

#include <iterator>

// Which member of the record holds the value.
enum class ControlValue { NONE, INTEGER, ITEM, FLOAT, BOOLEAN, FILES, TILES };

// One control type. What is done with it stands in the tables of the rooms that do it, which have a row a type too.
struct ControlType {
    u32 dwType;          // CONTROLTYPE_*
    const char *pszName; // in messages
    ControlValue eValue; // NONE: never stored, compared with defaults or limited
    u32 bFollowsSources; // wave, sound and periodic chance can drive it, where its source mask says so
};

constexpr ControlType asControlType[] = {
    {CONTROLTYPE_UNDEFINED, "undefined", ControlValue::NONE, 1},
    {CONTROLTYPE_GROUP, "group", ControlValue::NONE, 1}, // the host's own groups have all bits in their mask
    {CONTROLTYPE_INTEGER, "integer", ControlValue::INTEGER, 1},
    {CONTROLTYPE_ITEMSELECT, "item select", ControlValue::ITEM, 0},
    {CONTROLTYPE_FLOAT, "float", ControlValue::FLOAT, 1},
    {CONTROLTYPE_BOOLEAN, "boolean", ControlValue::BOOLEAN, 1},
    {CONTROLTYPE_FILESELECT, "file select", ControlValue::FILES, 1},
    {CONTROLTYPE_TILE, "tile", ControlValue::TILES, 1},
};
constexpr size_t CONTROL_TYPES = std::size(asControlType);

void RowsAreNotInTheOrderOfTheTypes(); // nowhere defined: the compiler names it where a table calls it

// What a room does with a control, a row for each type: Row begins with its dwType. A table that lacks a row, or has
// one in the place of another type, does not compile.
template <typename Row> class ControlTypeTable {
  public:
    template <size_t nRows> consteval explicit ControlTypeTable(const Row (&asFrom)[nRows])
    {
        static_assert(nRows == CONTROL_TYPES, "every control type needs a row");
        for (size_t i = 0; i < nRows; i++) {
            if (asFrom[i].dwType != i || asControlType[i].dwType != i)
                RowsAreNotInTheOrderOfTheTypes();
            asRow[i] = asFrom[i];
        }
    }
    // The row of a type; that of CONTROLTYPE_UNDEFINED for a number that is no type.
    constexpr const Row &operator[](u32 dwType) const
    {
        return asRow[dwType < CONTROL_TYPES ? dwType : u32{CONTROLTYPE_UNDEFINED}];
    }
    // Whether the types with a value are just those whose row has the function.
    template <typename Fn> consteval bool EveryValueHas(Fn Row::*ppfn) const
    {
        for (size_t i = 0; i < CONTROL_TYPES; i++)
            if ((asRow[i].*ppfn != nullptr) != (asControlType[i].eValue != ControlValue::NONE))
                return false;
        return true;
    }

  private:
    Row asRow[CONTROL_TYPES] = {};
};

// The type of a record; CONTROLTYPE_UNDEFINED for a number that is no type. [any-thread]
constexpr ControlTypeTable<ControlType> ControlTypes(asControlType);

inline const ControlType &TypeOf(const ControlRecord *pctl)
{
    return ControlTypes[pctl->Base.dwType];
}
