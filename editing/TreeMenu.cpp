// TreeMenu.cpp -- the context menu of a node of the preset tree, as data
#include "editing/TreeMenu.h"

#include "editing/ModuleOffers.h"
#include "modules/ModuleRegistry.h"
#include "modules/ShaderList.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <span>

namespace {

constexpr u32 MODULE_KEYS = 0x10000; // modules that a key can name

constexpr TreeMenuRow Entry(std::u16string_view text, TreeCommand eCommand, u32 dwArgument = 0)
{
    return {TreeMenuPart::Entry, text, eCommand, dwArgument, true};
}
// Shown, but without a function so far.
constexpr TreeMenuRow NotYet(std::u16string_view text, TreeCommand eCommand)
{
    return {TreeMenuPart::Entry, text, eCommand, 0, false};
}
constexpr TreeMenuRow SubMenu(std::u16string_view text)
{
    return {TreeMenuPart::SubMenu, text, TreeCommand::None, 0, true};
}
constexpr TreeMenuRow SUBMENU_END = {TreeMenuPart::SubMenuEnd, {}, TreeCommand::None, 0, true};
constexpr TreeMenuRow LINE = {TreeMenuPart::Line, {}, TreeCommand::None, 0, true};

constexpr u32 Kinds(u32 dwFirst, u32 dwLast)
{
    return (1u << (dwLast + 1)) - (1u << dwFirst);
}
static_assert(OBJECT_TYPES < 32);

constexpr u32 MODULE_KINDS = Kinds(0, OBJECT_MODULELAST);
constexpr u32 LIST_KINDS = Kinds(OBJECT_COLORINTERPOLATORTREE, OBJECT_OVERLAYEFFECTTREE);
constexpr u32 PLANE_KIND = Kinds(OBJECT_PLANE, OBJECT_PLANE);
constexpr u32 PLANES_KIND = Kinds(OBJECT_PLANETREE, OBJECT_PLANETREE);
constexpr u32 CONTROL_KINDS = Kinds(OBJECT_CONTROLTREE, OBJECT_CONTROL);
constexpr u32 ALL_KINDS = Kinds(0, OBJECT_TYPES - 1);

constexpr TreeMenuRow asPlane[] = {Entry(u"Remove Plane", TreeCommand::Remove), LINE,
                                   Entry(u"Pause/Resume Plane Drawing", TreeCommand::PausePlane)};
constexpr TreeMenuRow asModule[] = {Entry(u"Remove Module", TreeCommand::Remove), LINE,
                                    Entry(u"Pause/Resume Module Drawing", TreeCommand::PauseModule)};
constexpr TreeMenuRow asMove[] = {Entry(u"Move Up", TreeCommand::MoveUp), Entry(u"Move Down", TreeCommand::MoveDown)};
constexpr TreeMenuRow asAddPlane[] = {SubMenu(u"Add Plane"), Entry(u"RGB", TreeCommand::AddPlane, 0),
                                      Entry(u"Indexed", TreeCommand::AddPlane, 1), SUBMENU_END};
constexpr TreeMenuRow asRestore[] = {SubMenu(u"Restore defaults"), Entry(u"This Item", TreeCommand::RestoreItem),
                                     Entry(u"Entire Branch", TreeCommand::RestoreBranch), SUBMENU_END};
constexpr TreeMenuRow asControlSet[] = {SubMenu(u"Control Set"), NotYet(u"Load", TreeCommand::LoadControlSet),
                                        NotYet(u"Save", TreeCommand::SaveControlSet), SUBMENU_END};
constexpr TreeMenuRow asCopy[] = {NotYet(u"Copy", TreeCommand::Copy)};
constexpr TreeMenuRow asPaste[] = {Entry(u"Paste", TreeCommand::Paste)};

using Rows = std::vector<TreeMenuRow>;

void AppendShaders(u32 iModule, Rows *pRows)
{
    pRows->push_back(SubMenu(u"Shaders"));
    for (u32 i = 0; i < SHADERS_MAX; i++)
        if (const ShaderEntry *pse = GetShaderEntry(i))
            pRows->push_back(Entry(pse->szName, TreeCommand::AddModule, ModuleKey(iModule, i + 1)));
        else
            break;
    pRows->push_back(SUBMENU_END);
}

void AppendModule(const TreeNode *pNode, u32 iModule, const ModuleDescription &md, Rows *pRows)
{
    const std::u16string_view name(md.szName, TextLength(md.szName, CONTROL_TEXT));
    const PlaneState *pps = PlaneOf(pNode);
    // One that cannot be used has no shaders to offer, but is listed like others that cannot.
    if (ContainsNoCase(name, u"Shader") && !md.bUnavailable)
        AppendShaders(iModule, pRows);
    else if (ListAccepts(md, ModuleTypeOfList(pNode->Info.dwType), pps && pps->Info.bIndexed))
        pRows->push_back(Entry(name, TreeCommand::AddModule, ModuleKey(iModule, 0)));
}

void AppendModules(const TreeNode *pNode, Rows *pRows)
{
    pRows->push_back(SubMenu(u"Add Module"));
    for (u32 i = 0; i < MODULE_KEYS; i++)
        if (const ModuleRecord *pmr = GetModuleRecord(i))
            AppendModule(pNode, i, pmr->md, pRows);
        else
            break;
    pRows->push_back(SUBMENU_END);
}

struct Section {
    u32 dwKinds; // a bit for each kind that has it
    std::span<const TreeMenuRow> rows;
    bool bLine;                                            // one follows
    void (*pfnAppend)(const TreeNode *pNode, Rows *pRows); // null: the rows are all
};

constexpr Section asSection[] = {
    {LIST_KINDS, {}, true, AppendModules},        {PLANE_KIND, asPlane, true, nullptr},
    {MODULE_KINDS, asModule, true, nullptr},      {PLANE_KIND | MODULE_KINDS, asMove, false, nullptr},
    {PLANES_KIND, asAddPlane, true, nullptr},     {ALL_KINDS, asRestore, true, nullptr},
    {CONTROL_KINDS, asControlSet, true, nullptr}, {PLANE_KIND | MODULE_KINDS | CONTROL_KINDS, asCopy, true, nullptr},
};
constexpr Section sPaste = {ALL_KINDS, asPaste, true, nullptr};

void AppendSection(const Section &section, const TreeNode *pNode, Rows *pRows)
{
    if (!(section.dwKinds >> pNode->Info.dwType & 1))
        return;
    pRows->insert(pRows->end(), section.rows.begin(), section.rows.end());
    if (section.pfnAppend)
        section.pfnAppend(pNode, pRows);
    if (section.bLine)
        pRows->push_back(LINE);
}

} // namespace

std::vector<TreeMenuRow> BuildTreeMenu(const TreeNode *pNode, bool (*pfnMayPaste)(const TreeNode *pNode))
{
    ASSERT_MAIN_THREAD();
    Rows rows;
    for (const Section &section : asSection)
        AppendSection(section, pNode, &rows);
    if (pfnMayPaste && pfnMayPaste(pNode))
        AppendSection(sPaste, pNode, &rows);
    return rows;
}
