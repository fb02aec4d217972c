// TreeCommands_test.cpp -- the commands of the tree's menu: what they do to preset and tree, and how they end
#include "tests/TreeFixture.h"

#include "editing/ModuleOffers.h"
#include "editing/TreeCommands.h"
#include "editing/TreeFollower.h"
#include "editing/TreeTexts.h"
#include "engine/PresetDocument.h"
#include "modules/ShaderList.h"

#include <filesystem>
#include <fstream>

namespace {

// With and without a follower, which must make no difference to what a command leaves behind.
class TreeCommandsTest : public TreeTest, public testing::WithParamInterface<bool> {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        if (GetParam())
            FollowPreset(tree);
        PanelRefresh.Add(CountRefresh, this);
    }
    void TearDown() override
    {
        BuildPresetTree(tree, nullptr);
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        if (GetParam())
            UnfollowPreset(tree);
        PanelRefresh.Remove(CountRefresh, this);
        FreeShaderList();
        TreeTest::TearDown();
    }
    static void CountRefresh(void *pv)
    {
        static_cast<TreeCommandsTest *>(pv)->nRefreshes++;
    }
    void UsePreset(i32 nPlanes)
    {
        MakePreset(nPlanes);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
        BuildPresetTree(tree, lppsi);
        SetPresetChanged(u"Test.vd", 0);
    }
    // A module whose branch has its controls.
    ModuleSlot *AddWith(u32 dwList, i32 iPlane, const std::vector<Name> &names)
    {
        ModuleSlot *pms = Add(dwList, iPlane, u"Idle.dll");
        GiveControls(pms, names);
        BuildPresetTree(tree, lppsi);
        return pms;
    }
    // Runs it and says how it ended: "r" refreshed, "m" marked, "p" repainted, with pRepainted what.
    std::string Run(TreeNode *pNode, TreeCommand eCommand, u32 dwArgument = 0)
    {
        SetPresetChanged(u"Test.vd", 0);
        nRefreshes = 0;
        Listener listener = {};
        tree.TreeListeners.Add(Listener::Hear, &listener);
        RunTreeCommand(tree, pNode, eCommand, dwArgument);
        tree.TreeListeners.Remove(Listener::Hear, &listener);
        CheckTree();
        pRepainted = listener.pRepainted;
        return std::string(listener.pRepainted ? "p" : "") + (nRefreshes == 1 ? "r" : "") + (bPresetChanged ? "m" : "");
    }
    TreeNode *PlanesNode() const
    {
        return ChildOfType(tree.pRoot, OBJECT_PLANETREE);
    }
    ModuleSlot **List(u32 dwList, i32 iPlane = 0) const
    {
        return lppsi->psPlane[iPlane]->apModule[dwList];
    }
    static u32 KeyOf(const char16_t *pszDll, u32 dwShader = 0)
    {
        return ModuleKey(static_cast<u32>(FindModuleRecord(pszDll)->iIndex), dwShader);
    }

    struct Listener {
        static void Hear(const TreeNews &news, void *pv)
        {
            if (news.eKind == TreeNewsKind::BranchChanged)
                static_cast<Listener *>(pv)->pRepainted = news.pNode;
        }
        TreeNode *pRepainted; // the last one
    };
    TreeNode *pRepainted = nullptr;
    u32 nRefreshes = 0;
};

INSTANTIATE_TEST_SUITE_P(Following, TreeCommandsTest, testing::Values(true));
INSTANTIATE_TEST_SUITE_P(Alone, TreeCommandsTest, testing::Values(false));

// Adding

TEST_P(TreeCommandsTest, AModuleIsAddedToTheListOfItsNodeAndBroughtUp)
{
    UsePreset(2);
    TakeLog();
    TreeNode *pList = ListNode(OBJECT_DRAWPAINTERTREE, 1);
    EXPECT_EQ(Run(pList, TreeCommand::AddModule, KeyOf(u"Recorder.dll")), "rm");
    ModuleSlot *pms = List(MODULEINDEX_DRAWPAINTER, 1)[0];
    ASSERT_NE(pms, nullptr);
    EXPECT_EQ(Outline(pList), "Painter(Recorder)");
    EXPECT_EQ(NodeOf(pms)->pParent, pList);
    EXPECT_EQ(NodeOf(pms)->Info.dwType, OBJECT_DRAWPAINTER);
    EXPECT_EQ(CallsOf(TakeLog(), pms->pvContext), "BPI");
}

TEST_P(TreeCommandsTest, AShaderIsAddedByItsNumber)
{
    const auto folder = std::filesystem::temp_directory_path() / ("vd-tree-commands-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder / "Shaders");
    for (const char *psz : {"Alpha.glsl", "Beta.glsl"})
        std::ofstream(folder / "Shaders" / psz) << "x";
    InitFolders({u"/nowhere/vorticade", FromUtf8(folder.string()), FromUtf8(TEST_MODULE_FOLDER)});
    UsePreset(1);
    TreeNode *pList = ListNode(OBJECT_DRAWFULLTREE);
    EXPECT_EQ(Run(pList, TreeCommand::AddModule, KeyOf(u"Recorder.dll", 2)), "rm");
    EXPECT_EQ(Outline(pList), "Full Draw(Beta)");
    EXPECT_EQ(List(MODULEINDEX_DRAWFULL)[0]->lpszShader, GetShaderEntry(1)->szName);
    std::filesystem::remove_all(folder);
}

TEST_P(TreeCommandsTest, WhatCannotBeAddedChangesNothingButMarks)
{
    UsePreset(4);
    FindModuleRecord(u"Idle.dll")->md.bUnavailable = 1;
    const std::string sBefore = Outline(PlanesNode());
    EXPECT_EQ(Run(ListNode(OBJECT_DRAWFULLTREE), TreeCommand::AddModule, KeyOf(u"Idle.dll")), "rm");
    EXPECT_EQ(Run(ListNode(OBJECT_DRAWFULLTREE), TreeCommand::AddModule, 0xFFFF), "rm") << "no such module";
    EXPECT_EQ(Run(ListNode(OBJECT_DRAWFULLTREE), TreeCommand::AddModule, KeyOf(u"Recorder.dll", 9)), "rm")
        << "no such shader";
    EXPECT_EQ(Run(tree.pRoot, TreeCommand::AddModule, KeyOf(u"Recorder.dll")), "rm") << "not a list";
    EXPECT_EQ(Run(PlanesNode(), TreeCommand::AddPlane, 1), "rm") << "a fifth plane";
    EXPECT_EQ(Outline(PlanesNode()), sBefore);
    EXPECT_EQ(lppsi->nPlanes, 4);
}

TEST_P(TreeCommandsTest, APlaneComesWithItsDefaultModules)
{
    UsePreset(0);
    CopyText(FindModuleRecord(u"RecorderColor.dll")->szDll, u"CMShift.dll");
    EXPECT_EQ(Run(PlanesNode(), TreeCommand::AddPlane, 1), "rm");
    EXPECT_EQ(Outline(ListNode(OBJECT_COLORINTERPOLATORTREE)), "Interpolator(Recorder Color)");
    SwitchPreset(nullptr, nullptr);
    lppsi = nullptr;
    CopyText(FindModuleRecord(u"CMShift.dll")->szDll, u"RecorderColor.dll");
}

TEST_P(TreeCommandsTest, PlanesOfBothTypesAreAdded)
{
    UsePreset(0);
    EXPECT_EQ(Run(PlanesNode(), TreeCommand::AddPlane, 0), "rm");
    EXPECT_EQ(Run(PlanesNode(), TreeCommand::AddPlane, 1), "rm");
    ASSERT_EQ(lppsi->nPlanes, 2);
    EXPECT_EQ(lppsi->psPlane[0]->Info.bIndexed, 0u);
    EXPECT_EQ(lppsi->psPlane[1]->Info.bIndexed, 1u);
    EXPECT_EQ(NthPlaneNode(tree, 1)->Info.pObject, lppsi->psPlane[1]);
    EXPECT_EQ(NthPlaneNode(tree, 1)->sText, u"Plane 2");
}

// Removing

TEST_P(TreeCommandsTest, ModulesAndPlanesAreRemovedAndPlanesRenumbered)
{
    UsePreset(3);
    AddWith(MODULEINDEX_DRAWFULL, 1, {{u"Outer", u"Speed"}});
    lppsi->psPlane[2]->bPaused = 1;
    TreeNode *pList = ListNode(OBJECT_DRAWFULLTREE, 1);
    EXPECT_EQ(Run(pList->apChild[0], TreeCommand::Remove), "rm");
    EXPECT_EQ(Outline(pList), "Full Draw");
    EXPECT_EQ(List(MODULEINDEX_DRAWFULL, 1)[0], nullptr);
    EXPECT_EQ(Run(NthPlaneNode(tree, 0), TreeCommand::Remove), "rm");
    EXPECT_EQ(lppsi->nPlanes, 2);
    EXPECT_EQ(NthPlaneNode(tree, 0)->sText, u"Plane 1");
    EXPECT_EQ(NthPlaneNode(tree, 1)->sText, u"Plane 2 - [ Paused ]");
    EXPECT_EQ(NthPlaneNode(tree, 2), nullptr);
    SetPausedMark(tree, NthPlaneNode(tree, 0), true);
    EXPECT_EQ(Run(NthPlaneNode(tree, 1), TreeCommand::Remove), "rm");
    EXPECT_EQ(NthPlaneNode(tree, 0)->sText, u"Plane 1") << "numbered anew, also where every number was right";
}

TEST_P(TreeCommandsTest, ARemovedPlaneTakesTheMixerRulesAlong)
{
    UsePreset(3);
    AddMixRule(lppsi)->SrcIdx2 = 2;
    AddMixRule(lppsi);
    EXPECT_EQ(Run(NthPlaneNode(tree, 0), TreeCommand::Remove), "rm");
    EXPECT_EQ(lppsi->nPlanes, 2);
    EXPECT_EQ(lppsi->nMixRules, 0u);
}

TEST_P(TreeCommandsTest, PostProcessingModulesAreRemovedToo)
{
    UsePreset(1);
    Add(MODULEINDEX_NUMINDICIES, -1, u"Idle.dll");
    BuildPresetTree(tree, lppsi);
    TreeNode *pPost = ChildOfType(tree.pRoot, OBJECT_POSTPROC);
    EXPECT_EQ(Run(pPost->apChild[0], TreeCommand::Remove), "rm");
    EXPECT_EQ(Outline(pPost), "Effects");
    EXPECT_EQ(lppsi->nPostProc, 0);
}

TEST_P(TreeCommandsTest, WhatCannotBeRemovedStaysAndMarks)
{
    UsePreset(1);
    AddWith(MODULEINDEX_DRAWFULL, 0, {{u"Outer", u"Speed"}});
    const auto apNode = AllNodes(tree.pRoot);
    for (TreeNode *pNode : apNode) {
        if (IsModuleType(pNode->Info.dwType) || pNode->Info.dwType == OBJECT_PLANE)
            continue;
        EXPECT_EQ(Run(pNode, TreeCommand::Remove), "rm");
    }
    EXPECT_EQ(AllNodes(tree.pRoot), apNode);
}

// Moving

TEST_P(TreeCommandsTest, ModulesMoveWithinTheirListAndStopAtItsEnds)
{
    UsePreset(1);
    ModuleSlot *apms[3];
    for (ModuleSlot *&pms : apms)
        pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    BuildPresetTree(tree, lppsi);
    TreeNode *pFirst = NodeOf(apms[0]);
    SetExpanded(tree, pFirst, true);
    EXPECT_EQ(Run(pFirst, TreeCommand::MoveUp), "rm");
    EXPECT_EQ(List(MODULEINDEX_DRAWFULL)[0], apms[0]);
    EXPECT_EQ(Run(pFirst, TreeCommand::MoveDown), "rm");
    EXPECT_EQ(Run(pFirst, TreeCommand::MoveDown), "rm");
    EXPECT_EQ(Run(pFirst, TreeCommand::MoveDown), "rm");
    EXPECT_EQ(pFirst->nRow, 2u);
    EXPECT_EQ(pFirst->bExpanded, 1u);
    EXPECT_EQ(pFirst, NodeOf(apms[0]));
    EXPECT_EQ(List(MODULEINDEX_DRAWFULL)[2], apms[0]);
    EXPECT_EQ(Run(pFirst, TreeCommand::MoveUp), "rm");
    EXPECT_EQ(List(MODULEINDEX_DRAWFULL)[1], apms[0]);
    EXPECT_EQ(ListNode(OBJECT_DRAWFULLTREE)->apChild[1], pFirst);
}

TEST_P(TreeCommandsTest, PlanesExchangeTheirPlacesAndNumbers)
{
    UsePreset(3);
    PlaneState *pps = lppsi->psPlane[0];
    TreeNode *pNode = NthPlaneNode(tree, 0);
    EXPECT_EQ(Run(pNode, TreeCommand::MoveDown), "rm");
    EXPECT_EQ(lppsi->psPlane[1], pps);
    EXPECT_EQ(pNode->nRow, 1u);
    EXPECT_EQ(pNode->sText, u"Plane 2");
    EXPECT_EQ(NthPlaneNode(tree, 0)->sText, u"Plane 1");
    TreeNode *pLast = NthPlaneNode(tree, 2);
    EXPECT_EQ(Run(pLast, TreeCommand::MoveDown), "rm") << "nothing moves, but the preset is marked";
    EXPECT_EQ(pLast->nRow, 2u);
}

// Pausing

TEST_P(TreeCommandsTest, PausingMarksTheNodeAndNotThePreset)
{
    UsePreset(1);
    ModuleSlot *pms = AddWith(MODULEINDEX_DRAWFULL, 0, {});
    EXPECT_EQ(Run(NodeOf(pms), TreeCommand::PauseModule), "r");
    EXPECT_EQ(pms->bActive, 0);
    EXPECT_EQ(NodeOf(pms)->sText, u"Idle - [ Paused ]");
    EXPECT_EQ(Run(NodeOf(pms), TreeCommand::PauseModule), "r");
    EXPECT_EQ(pms->bActive, 1);
    EXPECT_EQ(NodeOf(pms)->sText, u"Idle");
    TreeNode *pPlane = NthPlaneNode(tree, 0);
    EXPECT_EQ(Run(pPlane, TreeCommand::PausePlane), "r");
    EXPECT_EQ(lppsi->psPlane[0]->bPaused, 1u);
    EXPECT_EQ(pPlane->sText, u"Plane 1 - [ Paused ]");
    EXPECT_EQ(Run(pPlane, TreeCommand::RestoreItem), "prm");
    EXPECT_EQ(lppsi->psPlane[0]->bPaused, 0u);
    EXPECT_EQ(pPlane->sText, u"Plane 1 - [ Paused ]") << "until it is paused again or renumbered";
    EXPECT_EQ(Run(NodeOf(pms), TreeCommand::PausePlane), "r") << "no plane";
    EXPECT_EQ(Run(pPlane, TreeCommand::PauseModule), "r") << "no module";
    EXPECT_EQ(pms->bActive, 1);
    EXPECT_EQ(lppsi->psPlane[0]->bPaused, 0u);
}

// Restoring

void Spoil(ModuleSlot *pms)
{
    pms->nDuration = 3;
    pms->bClearOnReset = 1;
    pms->nCallsPerFrame = -4;
    pms->bActive = 0;
    pms->bResetPending = 0;
    for (i32 i = 0; i < pms->nControls; i++)
        pms->apControl[i]->Float.fValue = 0.9f;
}

// "M" restored module, "m" spoiled one, then a letter for each control.
std::string StateOf(const ModuleSlot *pms)
{
    const bool bDefault = pms->nDuration == 16 && !pms->bClearOnReset && pms->nCallsPerFrame == 1 &&
                          pms->bActive == 1 && pms->bResetPending == 1;
    std::string s = bDefault ? "M" : "m";
    for (i32 i = 0; i < pms->nControls; i++)
        s += ControlIsDefault(pms->apControl[i]) ? "C" : "c";
    return s;
}

TEST_P(TreeCommandsTest, RestoringTakesTheItemAloneOrAllBelowIt)
{
    UsePreset(2);
    ModuleSlot *pms = AddWith(MODULEINDEX_DRAWFULL, 0, {{u"G", u"a"}, {u"G", u"b"}, {u"c"}});
    ModuleSlot *pmsOther = AddWith(MODULEINDEX_DRAWEFFECT, 1, {{u"G", u"a"}});
    const auto state = [&](TreeNode *pNode, TreeCommand eCommand) {
        Spoil(pms);
        Spoil(pmsOther);
        lppsi->psPlane[0]->bPaused = lppsi->psPlane[1]->bPaused = 1;
        EXPECT_EQ(Run(pNode, eCommand), "prm");
        return StateOf(pms) + " " + StateOf(pmsOther) + " " + std::to_string(lppsi->psPlane[0]->bPaused) +
               std::to_string(lppsi->psPlane[1]->bPaused);
    };
    const auto item = [&](TreeNode *pNode) { return state(pNode, TreeCommand::RestoreItem); };
    const auto branch = [&](TreeNode *pNode) { return state(pNode, TreeCommand::RestoreBranch); };
    const std::string nothing = "mccc mc 11";
    TreeNode *pModule = NodeOf(pms), *pPlane = NthPlaneNode(tree, 0);
    EXPECT_EQ(item(NodeOf(pms->apControl[0])), "mCcc mc 11");
    EXPECT_EQ(branch(NodeOf(pms->apControl[2])), "mccC mc 11");
    EXPECT_EQ(item(pModule->apChild[0]), nothing) << "a group by itself has nothing to restore";
    EXPECT_EQ(branch(pModule->apChild[0]), "mCCc mc 11");
    EXPECT_EQ(item(pModule), "Mccc mc 11");
    EXPECT_EQ(branch(pModule), "MCCC mc 11");
    EXPECT_EQ(item(pModule->pParent), nothing);
    EXPECT_EQ(branch(pModule->pParent), "MCCC mc 11");
    EXPECT_EQ(branch(ListNode(OBJECT_DRAWEFFECTTREE, 0)), nothing);
    EXPECT_EQ(branch(pModule->pParent->pParent), "MCCC mc 11");
    EXPECT_EQ(branch(pPlane->apChild[0]), nothing) << "the colour modules";
    EXPECT_EQ(item(pPlane), "mccc mc 01");
    EXPECT_EQ(branch(pPlane), "MCCC mc 01");
    EXPECT_EQ(item(PlanesNode()), nothing);
    EXPECT_EQ(branch(PlanesNode()), "MCCC MC 00");
    EXPECT_EQ(item(tree.pRoot), nothing);
    EXPECT_EQ(branch(tree.pRoot), "MCCC MC 00");
    EXPECT_EQ(branch(ChildOfType(tree.pRoot, OBJECT_MIXER)), nothing);
    EXPECT_EQ(branch(ChildOfType(tree.pRoot, OBJECT_POSTPROC)), nothing);
}

TEST_P(TreeCommandsTest, WhatIsRestoredIsRepaintedWithWhatMayDependOnIt)
{
    UsePreset(1);
    ModuleSlot *pms = AddWith(MODULEINDEX_DRAWFULL, 0, {{u"a"}, {u"b"}});
    for (TreeCommand eCommand : {TreeCommand::RestoreItem, TreeCommand::RestoreBranch}) {
        Run(NodeOf(pms->apControl[0]), eCommand);
        EXPECT_EQ(pRepainted, NodeOf(pms)) << "the controls beside it may have become active";
        Run(NthPlaneNode(tree, 0), eCommand);
        EXPECT_EQ(pRepainted, NthPlaneNode(tree, 0));
    }
}

TEST_P(TreeCommandsTest, ADeclaredGroupHasNoDefaultsOfItsOwn)
{
    UsePreset(1);
    ModuleSlot *pms = AddWith(MODULEINDEX_DRAWFULL, 0, {{u"G"}, {u"G", u"a"}});
    ControlRecord *pctlGroup = pms->apControl[0];
    pctlGroup->Base.dwType = CONTROLTYPE_GROUP;
    BuildPresetTree(tree, lppsi);
    pctlGroup->Base.nSamples = 7;
    EXPECT_EQ(Run(NodeOf(pctlGroup), TreeCommand::RestoreItem), "prm");
    for (TreeNode *pNode : {NodeOf(pctlGroup), NodeOf(pms), tree.pRoot}) {
        Spoil(pms);
        Run(pNode, TreeCommand::RestoreBranch);
        EXPECT_TRUE(ControlIsDefault(pms->apControl[1]));
    }
    EXPECT_EQ(pctlGroup->Base.nSamples, 7u);
}

TEST_P(TreeCommandsTest, PostProcessingIsRestoredFromItsNodeAndFromTheRoot)
{
    UsePreset(1);
    ModuleSlot *pms = AddWith(MODULEINDEX_NUMINDICIES, -1, {{u"a"}});
    for (TreeNode *pNode : {tree.pRoot, ChildOfType(tree.pRoot, OBJECT_POSTPROC), NodeOf(pms)}) {
        Spoil(pms);
        Run(pNode, TreeCommand::RestoreBranch);
        EXPECT_EQ(StateOf(pms), "MC");
    }
}

TEST_P(TreeCommandsTest, ATreeOfAnotherPresetIsLeftAlone)
{
    UsePreset(1);
    PresetState *lppsiOther = CreatePresetState(0);
    PresetTree other;
    BuildPresetTree(other, lppsiOther);
    RunTreeCommand(other, other.pRoot->apChild[0], TreeCommand::AddPlane, 1);
    EXPECT_EQ(lppsi->nPlanes, 1);
    EXPECT_EQ(lppsiOther->nPlanes, 0);
    EXPECT_EQ(bPresetChanged, 0u);
    DestroyPresetState(lppsiOther);
}

} // namespace
