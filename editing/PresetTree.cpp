// PresetTree.cpp -- nodes: made, found, moved, deleted, and what is told of it
#include "editing/PresetTree.h"

#include "controls/ControlManager.h"
#include "editing/TreeNodes.h"
#include "platform/MainThread.h"

#include <algorithm>
#include <new>

namespace {

void Tell(PresetTree &tree, TreeNewsKind eKind, TreeNode *pNode = nullptr, TreeNode *pParent = nullptr, u32 nRow = 0,
          TreeNode *pTo = nullptr, u32 nTo = 0)
{
    tree.TreeListeners.Tell({eKind, pNode, pParent, nRow, pTo, nTo});
}

void NumberRows(TreeNode *pParent, u32 nFrom)
{
    for (u32 i = nFrom; i < pParent->apChild.size(); i++)
        pParent->apChild[i]->nRow = i;
}

void Link(TreeNode *pParent, u32 nRow, TreeNode *pNode)
{
    pNode->pParent = pParent;
    pParent->apChild.insert(pParent->apChild.begin() + nRow, pNode);
    NumberRows(pParent, nRow);
}

void Unlink(TreeNode *pNode)
{
    TreeNode *pParent = pNode->pParent;
    pParent->apChild.erase(pParent->apChild.begin() + pNode->nRow);
    NumberRows(pParent, pNode->nRow);
    pNode->pParent = nullptr;
}

void TellGoing(PresetTree &tree, TreeNode *pNode)
{
    for (TreeNode *pChild : pNode->apChild)
        TellGoing(tree, pChild);
    tree.NodeListeners.Tell(pNode);
}

void FreeBranch(TreeNode *pNode)
{
    for (TreeNode *pChild : pNode->apChild)
        FreeBranch(pChild);
    if (pNode->Info.bOwnsObject)
        delete static_cast<ControlRecord *>(pNode->Info.pObject);
    delete pNode;
}

bool FitsType(const TreeNode *pNode, u32 dwType)
{
    return pNode->Info.dwType == dwType || (IsModuleType(dwType) && IsModuleType(pNode->Info.dwType));
}

// Only controls lie below modules: where something else is looked for, most of the tree is passed by.
TreeNode *FindInBranch(TreeNode *pNode, u32 dwType, const void *pObject)
{
    if (pNode->Info.pObject == pObject && FitsType(pNode, dwType))
        return pNode;
    if (IsModuleType(pNode->Info.dwType) && !IsControlType(dwType))
        return nullptr;
    for (TreeNode *pChild : pNode->apChild)
        if (TreeNode *pFound = FindInBranch(pChild, dwType, pObject))
            return pFound;
    return nullptr;
}

bool SetBranchExpanded(TreeNode *pNode, u32 bExpanded)
{
    bool bAny = pNode->bExpanded != bExpanded;
    pNode->bExpanded = bExpanded;
    for (TreeNode *pChild : pNode->apChild)
        bAny |= SetBranchExpanded(pChild, bExpanded);
    return bAny;
}

} // namespace

PresetTree::~PresetTree()
{
    DeleteNode(*this, pRoot);
}

TreeNode *NewNode(PresetTree &tree, u32 dwType, std::u16string_view text, void *pObject)
{
    auto *pNode = new (std::nothrow) TreeNode{};
    if (!pNode)
        return nullptr;
    pNode->sText = text;
    pNode->bExpanded = KindOf(dwType).bExpanded;
    pNode->Info.dwType = dwType;
    pNode->Info.hTree = &tree;
    pNode->Info.hItem = pNode;
    pNode->Info.pObject = pObject;
    return pNode;
}

void AppendChild(TreeNode *pParent, TreeNode *pNode)
{
    Link(pParent, static_cast<u32>(pParent->apChild.size()), pNode);
}

void InsertBranch(PresetTree &tree, TreeNode *pParent, TreeNode *pBranch)
{
    const u32 nRow = static_cast<u32>(pParent->apChild.size());
    BeginPaintTurn(tree);
    Tell(tree, TreeNewsKind::Inserting, pBranch, pParent, nRow);
    AppendChild(pParent, pBranch);
    Tell(tree, TreeNewsKind::Inserted, pBranch, pParent, nRow);
}

void BeginTreeReset(PresetTree &tree)
{
    BeginPaintTurn(tree);
    if (tree.pRoot)
        TellGoing(tree, tree.pRoot);
    Tell(tree, TreeNewsKind::Resetting);
    if (tree.pRoot)
        FreeBranch(tree.pRoot);
    tree.pRoot = nullptr;
    tree.lppsi = nullptr;
}

void EndTreeReset(PresetTree &tree)
{
    Tell(tree, TreeNewsKind::Reset);
}

TreeNode *FindNodeByObject(const PresetTree &tree, TreeNode *pStart, const void *pObject)
{
    TreeNode *pNode = pStart ? pStart : tree.pRoot;
    if (!pNode || pNode->Info.pObject == pObject)
        return pNode;
    for (TreeNode *pChild : pNode->apChild)
        if (TreeNode *pFound = FindNodeByObject(tree, pChild, pObject))
            return pFound;
    return nullptr;
}

TreeNode *FindNodeOfType(const PresetTree &tree, u32 dwType, const void *pObject)
{
    return tree.pRoot ? FindInBranch(tree.pRoot, dwType, pObject) : nullptr;
}

TreeNode *ChildOfType(const TreeNode *pParent, u32 dwType)
{
    for (TreeNode *pChild : pParent->apChild)
        if (pChild->Info.dwType == dwType)
            return pChild;
    return nullptr;
}

TreeNode *NthPlaneNode(const PresetTree &tree, u32 n)
{
    const TreeNode *pPlanes = tree.pRoot ? ChildOfType(tree.pRoot, OBJECT_PLANETREE) : nullptr;
    return pPlanes && n < pPlanes->apChild.size() ? pPlanes->apChild[n] : nullptr;
}

bool IsInBranch(const TreeNode *pNode, const TreeNode *pBranch)
{
    while (pNode && pNode != pBranch)
        pNode = pNode->pParent;
    return pNode != nullptr;
}

TreeNode *EnclosingNode(TreeNode *pNode, u32 dwType)
{
    while (pNode && !FitsType(pNode, dwType))
        pNode = pNode->pParent;
    return pNode;
}

ModuleSlot *SlotOf(const TreeNode *pNode)
{
    return IsModuleType(pNode->Info.dwType) ? static_cast<ModuleSlot *>(pNode->Info.pObject) : nullptr;
}

PlaneState *PlaneOf(const TreeNode *pNode)
{
    const u32 dwType = pNode->Info.dwType;
    const bool bHasPlane = dwType >= OBJECT_PLANE && dwType <= OBJECT_OVERLAYEFFECTTREE;
    return bHasPlane ? static_cast<PlaneState *>(pNode->Info.pObject) : nullptr;
}

ControlRecord *ControlOf(const TreeNode *pNode)
{
    return IsControlType(pNode->Info.dwType) ? static_cast<ControlRecord *>(pNode->Info.pObject) : nullptr;
}

void DeleteNode(PresetTree &tree, TreeNode *pNode)
{
    ASSERT_MAIN_THREAD();
    if (!pNode)
        return;
    if (pNode == tree.pRoot) {
        BeginTreeReset(tree);
        EndTreeReset(tree);
        return;
    }
    TreeNode *pParent = pNode->pParent;
    BeginPaintTurn(tree);
    TellGoing(tree, pNode);
    const u32 nRow = pNode->nRow;
    Tell(tree, TreeNewsKind::Removing, pNode, pParent, nRow);
    Unlink(pNode);
    Tell(tree, TreeNewsKind::Removed, pNode, pParent, nRow);
    FreeBranch(pNode);
}

bool MoveNode(PresetTree &tree, TreeNode *pNode, TreeNode *pParent, TreeNode *pAfter)
{
    ASSERT_MAIN_THREAD();
    if (pNode == tree.pRoot || IsInBranch(pParent, pNode) || (pAfter && pAfter->pParent != pParent))
        return false;
    TreeNode *pFrom = pNode->pParent;
    const u32 nRow = pNode->nRow;
    const u32 nTo = pAfter ? pAfter->nRow + 1 : 0;
    if (pFrom == pParent && (nTo == nRow || nTo == nRow + 1))
        return true;
    BeginPaintTurn(tree);
    Tell(tree, TreeNewsKind::Moving, pNode, pFrom, nRow, pParent, nTo);
    Unlink(pNode);
    Link(pParent, pFrom == pParent && nRow < nTo ? nTo - 1 : nTo, pNode);
    Tell(tree, TreeNewsKind::Moved, pNode, pFrom, nRow, pParent, nTo);
    return true;
}

void SetNodeText(PresetTree &tree, TreeNode *pNode, std::u16string_view text)
{
    ASSERT_MAIN_THREAD();
    if (pNode->sText == text)
        return;
    pNode->sText = text;
    Tell(tree, TreeNewsKind::Changed, pNode);
}

void SetExpanded(PresetTree &tree, TreeNode *pNode, bool bExpanded)
{
    ASSERT_MAIN_THREAD();
    if (pNode->bExpanded == static_cast<u32>(bExpanded))
        return;
    pNode->bExpanded = bExpanded;
    Tell(tree, TreeNewsKind::Expansion, pNode);
}

void ExpandBranch(PresetTree &tree, TreeNode *pNode, bool bExpanded)
{
    ASSERT_MAIN_THREAD();
    if (SetBranchExpanded(pNode, bExpanded))
        Tell(tree, TreeNewsKind::Expansion, pNode);
}

bool BranchHasChanges(PresetTree &tree, TreeNode *pNode)
{
    ASSERT_MAIN_THREAD();
    if (pNode->nTurn == tree.nTurn)
        return pNode->bChanged;
    const ControlRecord *pctl = pNode->Info.dwType == OBJECT_CONTROL ? ControlOf(pNode) : nullptr;
    pNode->bChanged = (pctl && !ControlIsDefault(pctl)) ||
                      std::any_of(pNode->apChild.begin(), pNode->apChild.end(),
                                  [&tree](TreeNode *pChild) { return BranchHasChanges(tree, pChild); });
    pNode->nTurn = tree.nTurn;
    return pNode->bChanged;
}

void BeginPaintTurn(PresetTree &tree)
{
    ASSERT_MAIN_THREAD();
    tree.nTurn++;
}

void RepaintBranch(PresetTree &tree, TreeNode *pNode)
{
    ASSERT_MAIN_THREAD();
    BeginPaintTurn(tree);
    Tell(tree, TreeNewsKind::BranchChanged, pNode);
}
