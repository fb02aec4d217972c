// ModuleLists.cpp -- what the panel of a module list says and does: the slots in use and the modules on offer
#include "controls/panels/ModuleLists.h"

#include "editing/ModuleOffers.h"
#include "editing/PresetEdit.h"
#include "editing/TreeCommands.h"
#include "editing/TreeFollower.h"
#include "editing/TreePlaces.h"
#include "editing/TreeTexts.h"
#include "engine/PresetDocument.h"
#include "modules/ModuleRegistry.h"
#include "modules/OpenGLTest.h"
#include "modules/ShaderList.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char16_t *apszColumn[] = {u"Name", u"Type", u"Description"};
static_assert(std::size(apszColumn) == MODULE_COLUMNS);

constexpr const char16_t *apszType[] = {u"Interpolator ", u"Generator ", u"Effect ",  u"Full Draw ", u"Painter ",
                                        u"Effect ",       u"Full Draw ", u"Painter ", u"Effect ",    u"Mixer "};
static_assert(std::size(apszType) == MODULEINDEX_NUMINDICIES);

constexpr u32 MODULE_KEYS = 0x10000; // modules that a key can name

u32 OfferedType(u32 dwListType)
{
    return dwListType == OBJECT_POSTPROC ? u32{MODULEINDEX_OVERLAYEFFECT} : ModuleTypeOfList(dwListType);
}

std::span<ModuleSlot *const> SlotsOf(const TreeNode *pList)
{
    const PresetState *lppsi = pList->Info.hTree->lppsi;
    if (pList->Info.dwType == OBJECT_POSTPROC)
        return {lppsi->apPostProc, static_cast<size_t>(lppsi->nPostProc)};
    const PlaneState *pps = PlaneOf(pList);
    const u32 dwType = ModuleTypeOfList(pList->Info.dwType);
    return pps ? std::span(pps->apModule[dwType], static_cast<size_t>(pps->anModules[dwType]))
               : std::span<ModuleSlot *const>();
}

bool CanBeUsed(const ModuleDescription &md)
{
    if (!md.bNeedsOpenGL)
        return true;
    FinishOpenGLTest();
    return bOpenGLAvailable != 0;
}

void AppendShaders(const char16_t *pszType, u32 iModule, std::vector<ModuleRow> *pRows)
{
    for (u32 i = 0; i < SHADERS_MAX; i++) {
        const ShaderEntry *pse = GetShaderEntry(i);
        if (!pse)
            return;
        const std::u16string name(pse->szName, TextLength(pse->szName, NAME_CHARS));
        pRows->push_back({{name, pszType, u"Pixel Shader: " + name}, ModuleKey(iModule, i + 1), nullptr});
    }
}

void AppendModule(const char16_t *pszType, u32 iModule, const ModuleDescription &md, std::vector<ModuleRow> *pRows)
{
    const std::u16string name(md.szName, TextLength(md.szName, CONTROL_TEXT));
    const std::u16string description(md.szDescription, TextLength(md.szDescription, CONTROL_TEXT));
    if (ContainsNoCase(name, u"GLSL Shader") && !md.bUnavailable)
        return AppendShaders(pszType, iModule, pRows);
    pRows->push_back({{name, pszType, description}, ModuleKey(iModule, 0), nullptr});
}

struct SlotCommand {
    SlotButton eButton;
    TreeCommand eCommand;
};
constexpr SlotCommand asCommand[] = {
    {SlotButton::MoveUp, TreeCommand::MoveUp},
    {SlotButton::Remove, TreeCommand::Remove},
    {SlotButton::MoveDown, TreeCommand::MoveDown},
};

} // namespace

const char16_t *ColumnTitle(u32 iColumn)
{
    return apszColumn[iColumn];
}

const char16_t *ListTypeText(u32 dwListType)
{
    return apszType[OfferedType(dwListType)];
}

std::vector<ModuleRow> RowsInUse(const TreeNode *pList)
{
    std::vector<ModuleRow> rows;
    for (const ModuleSlot *pms : SlotsOf(pList))
        if (const std::u16string_view name = ModuleText(pms); !name.empty())
            rows.push_back({{std::u16string(name)}, 0, pms});
    return rows;
}

std::vector<ModuleRow> RowsOnOffer(const TreeNode *pList)
{
    const u32 dwListType = pList->Info.dwType;
    const PlaneState *pps = PlaneOf(pList);
    const bool bIndexed = pps && pps->Info.bIndexed;
    std::vector<ModuleRow> rows;
    for (u32 i = 0; i < std::min(ModuleCount(), MODULE_KEYS); i++) {
        const ModuleDescription &md = GetModuleRecord(i)->md;
        if (ListAccepts(md, OfferedType(dwListType), bIndexed) && CanBeUsed(md))
            AppendModule(ListTypeText(dwListType), i, md, &rows);
    }
    return rows;
}

void SortModuleRows(std::vector<ModuleRow> *pRows, u32 iColumn, bool bDescending)
{
    if (iColumn >= MODULE_COLUMNS)
        return;
    std::stable_sort(pRows->begin(), pRows->end(), [=](const ModuleRow &a, const ModuleRow &b) {
        return bDescending ? b.asText[iColumn] < a.asText[iColumn] : a.asText[iColumn] < b.asText[iColumn];
    });
}

void AddModulesTo(TreeNode *pList, std::span<const u32> keys)
{
    PresetTree &tree = *pList->Info.hTree;
    for (const u32 dwKey : keys)
        if (const ModuleRecord *pmr = GetModuleRecord(ModuleOfKey(dwKey)))
            RunPresetEdit(MakeModuleEdit(PlaceOfNode(pList), pmr->szDll, static_cast<i32>(ShaderOfKey(dwKey))));
    SyncPresetTree(tree);
    PanelRefresh.Tell();
    if (!keys.empty())
        MarkPresetChanged(); // also where a hanging thread let nothing happen
}

void ClickSlotButton(TreeNode *pList, const ModuleSlot *pms, SlotButton eButton)
{
    PresetTree &tree = *pList->Info.hTree;
    const auto slots = SlotsOf(pList);
    if (!pms || std::find(slots.begin(), slots.end(), pms) == slots.end())
        return;
    TreeNode *pNode = FindNodeOfType(tree, 0, pms);
    for (const SlotCommand &row : asCommand)
        if (row.eButton == eButton && pNode)
            return RunTreeCommand(tree, pNode, row.eCommand);
}
