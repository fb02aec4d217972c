// TreeBuild.cpp -- builds the branches of a preset, and places controls by their names
#include "editing/TreeNodes.h"
#include "editing/TreeTexts.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace {

// Walks the components of a control's name, which may lack its second 0.
struct NameParts {
    explicit NameParts(const ControlRecord *pctl) : rest(pctl->Base.szName, CONTROL_TEXT)
    {
    }
    std::u16string_view Next()
    {
        const std::u16string_view part = rest.substr(0, rest.find(u'\0'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        return part;
    }
    bool AtEnd() const
    {
        return rest.empty() || !rest[0];
    }
    u32 Taken() const
    {
        return CONTROL_TEXT - static_cast<u32>(rest.size());
    }
    std::u16string_view rest;
};

TreeNode *ChildByText(const TreeNode *pParent, std::u16string_view text)
{
    for (TreeNode *pChild : pParent->apChild)
        if (EqualNoCase(pChild->sText, text))
            return pChild;
    return nullptr;
}

// A group without a description of its own says so where it is shown: in tips and in panels.
void DescribeGroup(ControlRecord *pctl)
{
    if (!pctl->Base.szDescription[0])
        CopyText(pctl->Base.szDescription, u"Fake Tooltip");
}

// A group that no module declared, made from the first control that needs it.
ControlRecord *MakeGroup(const ControlRecord *pctl, u32 cchName)
{
    auto *pctlGroup = new (std::nothrow) ControlRecord(*pctl);
    if (!pctlGroup)
        return nullptr;
    ControlBase &Base = pctlGroup->Base;
    Base.dwType = CONTROLTYPE_GROUP;
    Base.dwSourceMask = ALL_ONES;
    std::fill(Base.szName + cchName, std::end(Base.szName), u'\0');
    DescribeGroup(pctlGroup);
    return pctlGroup;
}

TreeNode *AddGroup(PresetTree &tree, TreeNode *pParent, const ControlRecord *pctl, u32 cchName,
                   std::u16string_view text)
{
    ControlRecord *pctlGroup = MakeGroup(pctl, cchName);
    if (!pctlGroup)
        return nullptr;
    TreeNode *pNode = NewNode(tree, OBJECT_CONTROLTREE, text, pctlGroup);
    if (!pNode) {
        delete pctlGroup;
        return nullptr;
    }
    pNode->Info.bOwnsObject = 1;
    AppendChild(pParent, pNode);
    return pNode;
}

void AddControl(PresetTree &tree, TreeNode *pParent, ModuleSlot *pms, ControlRecord *pctl, std::u16string_view text)
{
    const bool bGroup = pctl->Base.dwType == CONTROLTYPE_GROUP;
    TreeNode *pNode = NewNode(tree, bGroup ? OBJECT_CONTROLTREE : OBJECT_CONTROL, text, pctl);
    if (!pNode)
        return;
    pNode->Info.pOwnerSlot = pms;
    if (bGroup)
        DescribeGroup(pctl);
    AppendChild(pParent, pNode);
}

void PlaceControl(PresetTree &tree, TreeNode *pModule, ModuleSlot *pms, ControlRecord *pctl)
{
    TreeNode *pParent = pModule;
    NameParts parts(pctl);
    for (;;) {
        const std::u16string_view part = parts.Next();
        if (part.empty() || parts.AtEnd()) // a name may have no component at all
            return AddControl(tree, pParent, pms, pctl, part);
        TreeNode *pGroup = ChildByText(pParent, part);
        if (!pGroup)
            pGroup = AddGroup(tree, pParent, pctl, parts.Taken(), part);
        if (!pGroup)
            return;
        pParent = pGroup;
    }
}

TreeNode *MakeModuleBranch(PresetTree &tree, u32 dwType, ModuleSlot *pms)
{
    TreeNode *pModule = NewNode(tree, dwType, ModuleText(pms), pms);
    if (!pModule)
        return nullptr;
    pModule->Info.pOwnerSlot = pms;
    for (i32 i = 0; i < pms->nControls; i++)
        if (ControlRecord *pctl = pms->apControl[i])
            PlaceControl(tree, pModule, pms, pctl);
    return pModule;
}

void AppendModules(PresetTree &tree, TreeNode *pList, u32 dwType, ModuleSlot *const *apModule, i32 nModules)
{
    for (i32 i = 0; i < nModules; i++)
        if (TreeNode *pModule = MakeModuleBranch(tree, dwType, apModule[i]))
            AppendChild(pList, pModule);
}

// A node with the children that all of its kind have, and theirs. All of them stand for the same object.
TreeNode *MakeFixedBranch(PresetTree &tree, u32 dwType, std::u16string_view text, void *pObject)
{
    TreeNode *pNode = NewNode(tree, dwType, text, pObject);
    if (!pNode)
        return nullptr;
    for (ObjectType eChild : KindOf(dwType).children)
        if (TreeNode *pChild = MakeFixedBranch(tree, eChild, KindOf(eChild).pszText, pObject))
            AppendChild(pNode, pChild);
    return pNode;
}

TreeNode *MakePlaneBranch(PresetTree &tree, u32 nPlane, PlaneState *pps)
{
    TreeNode *pPlane = MakeFixedBranch(tree, OBJECT_PLANE, PlaneText(nPlane), pps);
    if (!pPlane)
        return nullptr;
    for (TreeNode *pCategory : pPlane->apChild)
        for (TreeNode *pList : pCategory->apChild) {
            const u32 dwType = ModuleTypeOfList(pList->Info.dwType);
            AppendModules(tree, pList, dwType, pps->apModule[dwType], pps->anModules[dwType]);
        }
    return pPlane;
}

TreeNode *MakePresetBranch(PresetTree &tree, PresetState *lppsi)
{
    TreeNode *pRoot = MakeFixedBranch(tree, OBJECT_ROOT, tree.sTitle, lppsi);
    if (!pRoot)
        return nullptr;
    if (TreeNode *pPlanes = ChildOfType(pRoot, OBJECT_PLANETREE))
        for (i32 i = 0; i < lppsi->nPlanes; i++)
            if (TreeNode *pPlane = MakePlaneBranch(tree, static_cast<u32>(i) + 1, lppsi->psPlane[i]))
                AppendChild(pPlanes, pPlane);
    if (TreeNode *pPostProc = ChildOfType(pRoot, OBJECT_POSTPROC))
        AppendModules(tree, pPostProc, OBJECT_OVERLAYEFFECT, lppsi->apPostProc, lppsi->nPostProc);
    return pRoot;
}

} // namespace

void BuildPresetTree(PresetTree &tree, PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    BeginTreeReset(tree);
    tree.lppsi = lppsi;
    tree.pRoot = lppsi ? MakePresetBranch(tree, lppsi) : nullptr;
    EndTreeReset(tree);
}

TreeNode *AddPlaneBranch(PresetTree &tree, TreeNode *pParent, PlaneState *pps)
{
    ASSERT_MAIN_THREAD();
    TreeNode *pPlane = MakePlaneBranch(tree, static_cast<u32>(pParent->apChild.size()) + 1, pps);
    if (pPlane)
        InsertBranch(tree, pParent, pPlane);
    return pPlane;
}

TreeNode *AddModuleBranch(PresetTree &tree, TreeNode *pParent, u32 dwType, ModuleSlot *pms)
{
    ASSERT_MAIN_THREAD();
    TreeNode *pModule = MakeModuleBranch(tree, dwType, pms);
    if (pModule)
        InsertBranch(tree, pParent, pModule);
    return pModule;
}
