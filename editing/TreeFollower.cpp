// TreeFollower.cpp -- keeps a preset tree true to the preset, whoever changed it
#include "editing/TreeFollower.h"

#include "controls/ControlManager.h"
#include "editing/TreeTexts.h"
#include "engine/PresetDocument.h"
#include "engine/PresetNews.h"
#include "platform/MainThread.h"

#include <algorithm>
#include <span>

namespace {

template <typename Object> void DeleteStrangers(PresetTree &tree, TreeNode *pParent, std::span<Object *const> apObject)
{
    for (size_t i = pParent->apChild.size(); i-- > 0;)
        if (std::find(apObject.begin(), apObject.end(), pParent->apChild[i]->Info.pObject) == apObject.end())
            DeleteNode(tree, pParent->apChild[i]);
}

// Adding appends a branch to the parent.
template <typename Object, typename Add>
void SyncChildren(PresetTree &tree, TreeNode *pParent, std::span<Object *const> apObject, const Add &add)
{
    DeleteStrangers(tree, pParent, apObject);
    TreeNode *pBefore = nullptr;
    for (Object *pObject : apObject) {
        const auto &apChild = pParent->apChild;
        const auto it = std::find_if(apChild.begin(), apChild.end(),
                                     [pObject](const TreeNode *p) { return p->Info.pObject == pObject; });
        TreeNode *pNode = it != apChild.end() ? *it : add(pObject);
        if (!pNode)
            return; // out of memory
        MoveNode(tree, pNode, pParent, pBefore);
        pBefore = pNode;
    }
}

void SyncModules(PresetTree &tree, TreeNode *pList, u32 dwType, std::span<ModuleSlot *const> apModule)
{
    SyncChildren(tree, pList, apModule, [&](ModuleSlot *pms) { return AddModuleBranch(tree, pList, dwType, pms); });
}

void SyncPlaneLists(PresetTree &tree, const TreeNode *pPlane)
{
    const PlaneState *pps = PlaneOf(pPlane);
    for (const TreeNode *pCategory : pPlane->apChild)
        for (TreeNode *pList : pCategory->apChild) {
            const u32 dwType = ModuleTypeOfList(pList->Info.dwType);
            SyncModules(tree, pList, dwType, {pps->apModule[dwType], static_cast<size_t>(pps->anModules[dwType])});
        }
}

bool NumbersAreRight(const TreeNode *pPlanes)
{
    return std::all_of(pPlanes->apChild.begin(), pPlanes->apChild.end(), [](const TreeNode *pPlane) {
        return UnmarkedText(pPlane->sText) == PlaneText(pPlane->nRow + 1);
    });
}

void SyncPlanes(PresetTree &tree, TreeNode *pPlanes)
{
    const std::span apPlane(tree.lppsi->psPlane, static_cast<size_t>(tree.lppsi->nPlanes));
    SyncChildren(tree, pPlanes, std::span<PlaneState *const>(apPlane),
                 [&](PlaneState *pps) { return AddPlaneBranch(tree, pPlanes, pps); });
    for (const TreeNode *pPlane : pPlanes->apChild)
        SyncPlaneLists(tree, pPlane);
    if (!NumbersAreRight(pPlanes))
        RenumberPlanes(tree, tree.lppsi);
}

struct NewsRow {
    NewsKind eKind;
    void (*pfnHear)(PresetTree &tree, const PresetNews &news); // of the tree's own preset
};

constexpr NewsRow asRow[] = {
    {NewsKind::Going, [](PresetTree &tree, const PresetNews &) { BuildPresetTree(tree, nullptr); }},
    {NewsKind::Planes, [](PresetTree &tree, const PresetNews &) { SyncPresetTree(tree); }},
    {NewsKind::Slots, [](PresetTree &tree, const PresetNews &) { SyncPresetTree(tree); }},
    {NewsKind::PlaneGoes,
     [](PresetTree &tree, const PresetNews &news) { DeleteNode(tree, FindNodeOfType(tree, OBJECT_PLANE, news.pps)); }},
    {NewsKind::SlotGoes,
     [](PresetTree &tree, const PresetNews &news) { DeleteNode(tree, FindNodeOfType(tree, 0, news.pms)); }},
    {NewsKind::Control, [](PresetTree &tree, const PresetNews &) { RepaintBranch(tree, tree.pRoot); }},
};

void Hear(const PresetNews &news, void *pvTree)
{
    PresetTree &tree = *static_cast<PresetTree *>(pvTree);
    if (news.eKind == NewsKind::Came)
        return BuildPresetTree(tree, news.lppsi);
    if (news.eKind == NewsKind::Marked)
        return SetTreeTitle(tree, PresetName(), bPresetChanged != 0);
    for (const NewsRow &row : asRow)
        if (row.eKind == news.eKind && tree.pRoot && tree.lppsi == news.lppsi)
            return row.pfnHear(tree, news);
}

} // namespace

void FollowPreset(PresetTree &tree)
{
    ASSERT_MAIN_THREAD();
    PresetListeners.Add(Hear, &tree);
}

void UnfollowPreset(PresetTree &tree)
{
    ASSERT_MAIN_THREAD();
    PresetListeners.Remove(Hear, &tree);
}

void SyncPresetTree(PresetTree &tree)
{
    ASSERT_MAIN_THREAD();
    if (!tree.pRoot)
        return;
    if (TreeNode *pPlanes = ChildOfType(tree.pRoot, OBJECT_PLANETREE))
        SyncPlanes(tree, pPlanes);
    if (TreeNode *pPostProc = ChildOfType(tree.pRoot, OBJECT_POSTPROC))
        SyncModules(tree, pPostProc, OBJECT_OVERLAYEFFECT,
                    {tree.lppsi->apPostProc, static_cast<size_t>(tree.lppsi->nPostProc)});
}
