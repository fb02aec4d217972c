// ValueLists.h -- the lists of the value panels: the sources that a control offers, the rows of an item select
#pragma once

#include "include/control.h"
#include "platform/BaseTypes.h"

#include <string>
#include <vector>

struct ListRow {
    std::u16string sText;
    u32 dwValue;

    bool operator==(const ListRow &) const = default;
};

constexpr i32 NO_ROW = -1;

// The source stays as the user set it; all others move the value.
bool SourceIsFixed(const ControlRecord *pctl);
// The sources of the control's mask, in their fixed order. What else the mask holds is no source.
std::vector<ListRow> SourceRows(const ControlRecord *pctl);
// Copies: the rows may belong to a module that goes.
std::vector<ListRow> ItemRows(const ControlRecord *pctl);
// The first row of that value; NO_ROW if none has it.
i32 RowOfValue(const std::vector<ListRow> &rows, u32 dwValue);
// The row that the control has chosen, or the first one where none has its value; NO_ROW without rows.
i32 ChosenItemRow(const std::vector<ListRow> &rows, const ControlRecord *pctl);
// Of the text with the most characters; NO_ROW without rows.
i32 LongestRow(const std::vector<ListRow> &rows);
