// TreeCommands.cpp -- what the user does to a node of the preset tree, by menu, key or a panel's button
#include "editing/TreeCommands.h"

#include "editing/ModuleOffers.h"
#include "editing/PresetEdit.h"
#include "editing/TreeFollower.h"
#include "editing/TreePlaces.h"
#include "editing/TreeTexts.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "platform/MainThread.h"
#include "platform/OrderedRows.h"

#include <iterator>

namespace {

struct Target {
    PresetTree &tree;
    TreeNode *pNode;
    u32 dwArgument;

    u32 Type() const
    {
        return pNode->Info.dwType;
    }
    bool IsPlane() const
    {
        return Type() == OBJECT_PLANE;
    }
    bool IsModule() const
    {
        return IsModuleType(Type());
    }
};

EditResult RunEdit(const Target &target, EditKind eKind, i32 nArgument0 = 0, i32 nArgument1 = 0)
{
    return RunPresetEdit(MakeEdit(eKind, PlaceOfNode(target.pNode), nArgument0, nArgument1));
}

void AddModuleHere(const Target &target)
{
    const ModuleRecord *pmr = GetModuleRecord(ModuleOfKey(target.dwArgument));
    if (!IsListType(target.Type()) || !pmr)
        return;
    RunPresetEdit(
        MakeModuleEdit(PlaceOfNode(target.pNode), pmr->szDll, static_cast<i32>(ShaderOfKey(target.dwArgument))));
    SyncPresetTree(target.tree);
}

void RemoveThis(const Target &target)
{
    if (target.IsModule()) {
        RunEdit(target, EditKind::RemoveModule);
        SyncPresetTree(target.tree);
    } else if (target.IsPlane()) {
        RunEdit(target, EditKind::RemovePlane);
        SyncPresetTree(target.tree);
        RenumberPlanes(target.tree, target.tree.lppsi);
    }
}

void AddPlaneHere(const Target &target)
{
    RunPresetEdit(MakeEdit(EditKind::AddPlane, PresetPlace(), target.dwArgument != 0, 1));
    SyncPresetTree(target.tree);
}

void MoveThis(const Target &target, i32 nDirection)
{
    if (!target.IsPlane() && !target.IsModule())
        return;
    const EditKind eKind = target.IsPlane() ? EditKind::MovePlane : EditKind::MoveModule;
    if (RunEdit(target, eKind, nDirection) != EditResult::Done)
        return;
    SyncPresetTree(target.tree);
    if (target.IsPlane())
        RenumberPlanes(target.tree, target.tree.lppsi);
}

void MoveUp(const Target &target)
{
    MoveThis(target, -1);
}

void MoveDown(const Target &target)
{
    MoveThis(target, 1);
}

void PausePlaneHere(const Target &target)
{
    if (!target.IsPlane())
        return;
    RunEdit(target, EditKind::PausePlane);
    SetPausedMark(target.tree, target.pNode, PlaneOf(target.pNode)->bPaused != 0);
}

void PauseModuleHere(const Target &target)
{
    if (!target.IsModule())
        return;
    RunEdit(target, EditKind::PauseModule);
    SetPausedMark(target.tree, target.pNode, SlotOf(target.pNode)->bActive == 0);
}

void RestoreThis(const Target &target)
{
    RunEdit(target, EditKind::RestoreItem);
}

// A group is what stands below its node, whatever its module has renamed since, so each control is restored by itself.
void RestoreControls(const Target &target)
{
    RestoreThis(target);
    for (TreeNode *pChild : target.pNode->apChild)
        RestoreControls({target.tree, pChild, 0});
}

void RestoreAllBelow(const Target &target)
{
    if (IsControlType(target.Type()))
        RestoreControls(target);
    else
        RunEdit(target, EditKind::RestoreBranch);
}

void DoNothing(const Target &)
{
}

enum : u32 { REPAINT = 1, REFRESH = 2, MARK = 4 };

struct CommandRow {
    TreeCommand eCommand;
    void (*pfnRun)(const Target &target);
    u32 dwEnding;
};

constexpr CommandRow asCommand[] = {
    {TreeCommand::None, DoNothing, 0},
    {TreeCommand::AddModule, AddModuleHere, REFRESH | MARK},
    {TreeCommand::Remove, RemoveThis, REFRESH | MARK},
    {TreeCommand::AddPlane, AddPlaneHere, REFRESH | MARK},
    {TreeCommand::MoveUp, MoveUp, REFRESH | MARK},
    {TreeCommand::MoveDown, MoveDown, REFRESH | MARK},
    {TreeCommand::PausePlane, PausePlaneHere, REFRESH},
    {TreeCommand::PauseModule, PauseModuleHere, REFRESH},
    {TreeCommand::RestoreItem, RestoreThis, REPAINT | REFRESH | MARK},
    {TreeCommand::RestoreBranch, RestoreAllBelow, REPAINT | REFRESH | MARK},
    {TreeCommand::LoadControlSet, DoNothing, 0},
    {TreeCommand::SaveControlSet, DoNothing, 0},
    {TreeCommand::Copy, DoNothing, 0},
    {TreeCommand::Paste, DoNothing, 0},
};
static_assert(std::size(asCommand) == static_cast<size_t>(TreeCommand::Count));
static_assert(RowsStandInOrder(asCommand, &CommandRow::eCommand));

// Controls of the same module may show as active or not by what was restored.
void RepaintAround(PresetTree &tree, TreeNode *pNode)
{
    TreeNode *pModule = EnclosingNode(pNode, OBJECT_MODULELAST);
    RepaintBranch(tree, pModule ? pModule : pNode);
}

void EndCommand(const Target &target, u32 dwEnding)
{
    if (dwEnding & REPAINT)
        RepaintAround(target.tree, target.pNode);
    if (dwEnding & REFRESH)
        PanelRefresh.Tell();
    if (dwEnding & MARK)
        MarkPresetChanged();
}

} // namespace

void RunTreeCommand(PresetTree &tree, TreeNode *pNode, TreeCommand eCommand, u32 dwArgument)
{
    ASSERT_MAIN_THREAD();
    if (eCommand >= TreeCommand::Count || !pNode || tree.lppsi != CurrentPreset())
        return;
    const CommandRow &row = asCommand[static_cast<u32>(eCommand)];
    const Target target = {tree, pNode, dwArgument};
    row.pfnRun(target);
    EndCommand(target, row.dwEnding);
}
