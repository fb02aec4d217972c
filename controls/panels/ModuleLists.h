// ModuleLists.h -- what the panel of a module list says and does: the slots in use and the modules on offer
#pragma once

#include "editing/PresetTree.h"

#include <span>

enum ModuleColumn : u32 { MODULE_COLUMN_NAME = 0, MODULE_COLUMN_TYPE, MODULE_COLUMN_DESCRIPTION, MODULE_COLUMNS };

// One row of either list.
struct ModuleRow {
    std::u16string asText[MODULE_COLUMNS]; // in use: the name alone
    u32 dwKey;                             // on offer: its ModuleKey
    const ModuleSlot *pms;                 // in use: compared, not followed

    bool operator==(const ModuleRow &) const = default;
};

const char16_t *ColumnTitle(u32 iColumn);
// "Interpolator ", "Generator " and so on, by the kind of the list, an OBJECT_POSTPROC too.
const char16_t *ListTypeText(u32 dwListType);

// The slots of the list in order, without those that have no name.
std::vector<ModuleRow> RowsInUse(const TreeNode *pList);
// The modules that the list accepts in the order of the table, those with OpenGL only where there is one; in the place
// of the shader module its shaders.
std::vector<ModuleRow> RowsOnOffer(const TreeNode *pList);
// By the plain text of a column; what is equal stays in order, whatever the direction.
void SortModuleRows(std::vector<ModuleRow> *pRows, u32 iColumn, bool bDescending);

enum class SlotButton : u32 { MoveUp, Add, Remove, MoveDown, Count };

// A module for each key at the end of the list. The preset is marked, unless there is no key.
void AddModulesTo(TreeNode *pList, std::span<const u32> keys);
// Moves or removes the slot; nothing happens where the list does not hold it.
void ClickSlotButton(TreeNode *pList, const ModuleSlot *pms, SlotButton eButton);
