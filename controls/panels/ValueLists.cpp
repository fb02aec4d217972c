// ValueLists.cpp -- the lists of the value panels
#include "controls/panels/ValueLists.h"

#include "platform/Text.h"

#include <algorithm>

namespace {

constexpr u32 ITEM_CHARS = 1024; // of a row's text; modules set no limit

struct SourceName {
    u32 dwSource;
    const char16_t *pszName;
};
constexpr SourceName asSource[] = {
    {FLUIDSOURCE_FIXED, u"Fixed Value"},
    {FLUIDSOURCE_RANDOM, u"Randomly Initialized"},
    {FLUIDSOURCE_WAVE, u"Wave"},
    {FLUIDSOURCE_SOUND, u"Sound"},
    {FLUIDSOURCE_PERIODIC, u"Periodically Randomized"},
};

std::u16string ItemText(const ItemSelectRow &row)
{
    return row.pszText ? std::u16string(row.pszText, TextLength(row.pszText, ITEM_CHARS)) : std::u16string();
}

} // namespace

bool SourceIsFixed(const ControlRecord *pctl)
{
    return pctl->Base.dwSource == FLUIDSOURCE_FIXED;
}

std::vector<ListRow> SourceRows(const ControlRecord *pctl)
{
    std::vector<ListRow> rows;
    for (const SourceName &source : asSource)
        if (pctl->Base.dwSourceMask & source.dwSource)
            rows.push_back({source.pszName, source.dwSource});
    return rows;
}

std::vector<ListRow> ItemRows(const ControlRecord *pctl)
{
    const ControlItemSelect &Items = pctl->ItemSelect;
    std::vector<ListRow> rows;
    rows.reserve(Items.pItems ? Items.nItems : 0);
    for (u32 i = 0; Items.pItems && i < Items.nItems; i++)
        rows.push_back({ItemText(Items.pItems[i]), Items.pItems[i].dwValue});
    return rows;
}

i32 RowOfValue(const std::vector<ListRow> &rows, u32 dwValue)
{
    const auto it = std::find_if(rows.begin(), rows.end(), [=](const ListRow &row) { return row.dwValue == dwValue; });
    return it == rows.end() ? NO_ROW : static_cast<i32>(it - rows.begin());
}

i32 ChosenItemRow(const std::vector<ListRow> &rows, const ControlRecord *pctl)
{
    const i32 iRow = RowOfValue(rows, pctl->ItemSelect.nCurrentItemValue);
    return iRow == NO_ROW && !rows.empty() ? 0 : iRow;
}

i32 LongestRow(const std::vector<ListRow> &rows)
{
    const auto it = std::max_element(
        rows.begin(), rows.end(), [](const ListRow &a, const ListRow &b) { return a.sText.size() < b.sText.size(); });
    return it == rows.end() ? NO_ROW : static_cast<i32>(it - rows.begin());
}
