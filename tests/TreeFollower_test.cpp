// TreeFollower_test.cpp -- a tree that stays true to the preset, whoever changes it
#include "tests/TreeFixture.h"

#include "editing/TreeFollower.h"
#include "editing/TreeTexts.h"
#include "engine/PresetDocument.h"
#include "engine/PresetNews.h"
#include "tests/TempFolder.h"

#include <random>

namespace {

class TreeFollowerTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        FollowPreset(tree);
    }
    void TearDown() override
    {
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        UnfollowPreset(tree);
        TreeTest::TearDown();
    }
    void UsePreset(i32 nPlanes)
    {
        MakePreset(nPlanes);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
    }
    std::string FreshOutline()
    {
        PresetTree fresh;
        fresh.sTitle = tree.sTitle;
        BuildPresetTree(fresh, lppsi);
        return Outline(fresh.pRoot);
    }

    u32 nRead = 0; // objects that stood when their nodes went
};

// Reads what the node stands for; memory that is gone shows in a run with the address sanitizer.
void ReadObject(TreeNode *pNode, void *pv)
{
    auto *pnRead = static_cast<u32 *>(pv);
    if (const ModuleSlot *pms = SlotOf(pNode))
        *pnRead += pms->nControls >= 0;
    if (const PlaneState *pps = PlaneOf(pNode))
        *pnRead += pps->lppsi->nPlanes > 0;
    if (const ControlRecord *pctl = ControlOf(pNode))
        *pnRead += pctl->Base.dwType <= CONTROLTYPE_TILE;
}

TEST_F(TreeFollowerTest, APresetThatComesIsShownAndOneThatGoesIsGivenUpFirst)
{
    UsePreset(2);
    EXPECT_EQ(Outline(tree.pRoot), FreshOutline());
    EXPECT_EQ(tree.lppsi, lppsi);
    GiveControls(Add(MODULEINDEX_DRAWFULL, 1, u"Idle.dll"), {{u"Outer", u"Speed"}});
    BuildPresetTree(tree, lppsi);
    tree.NodeListeners.Add(ReadObject, &nRead);
    SwitchPreset(nullptr, nullptr);
    lppsi = nullptr;
    EXPECT_EQ(nRead, 2u * 13 + 1 + 2);
    EXPECT_EQ(tree.pRoot, nullptr);
    UsePreset(1);
    EXPECT_EQ(Outline(tree.pRoot), FreshOutline());
    CheckTree();
}

TEST_F(TreeFollowerTest, WhateverTheEngineDoesTheTreeShowsItAndKeepsTheOtherNodes)
{
    UsePreset(2);
    std::mt19937 random(5);
    tree.NodeListeners.Add(ReadObject, &nRead);
    for (u32 i = 0; i < 300; i++) {
        const i32 iPlane = static_cast<i32>(random() % 5) - 1;
        const u32 dwList = static_cast<u32>(random() % 3) * 4;
        ModuleSlot **apms =
            iPlane < 0 || iPlane >= lppsi->nPlanes ? lppsi->apPostProc : lppsi->psPlane[iPlane]->apModule[dwList];
        ModuleSlot *pmsKept = apms[0];
        const TreeNode *pKept = pmsKept ? NodeOf(pmsKept) : nullptr;
        switch (random() % 8) {
        case 0:
            AddPlane(lppsi, 1, 0);
            break;
        case 1:
            if (iPlane == 2 && lppsi->nPlanes > 2)
                RemovePlane(lppsi, lppsi->psPlane[0]);
            break;
        case 2:
            if (apms[1])
                RemoveModule(lppsi, apms[1]);
            break;
        case 3:
            SwapModuleSlots(lppsi, apms[0], apms[1]);
            break;
        default:
            Add(iPlane < 0 ? MODULEINDEX_NUMINDICIES : dwList, std::min(iPlane, lppsi->nPlanes - 1), u"Idle.dll");
        }
        ASSERT_EQ(Outline(tree.pRoot), FreshOutline()) << i;
        EXPECT_TRUE(!pKept || !NodeOf(pmsKept) || NodeOf(pmsKept) == pKept);
        CheckTree();
    }
    EXPECT_GT(nRead, 0u);
}

TEST_F(TreeFollowerTest, ModulesInAnotherOrderAreMovedAndNotMadeAnew)
{
    UsePreset(1);
    ModuleSlot *apms[3];
    TreeNode *apNode[3];
    for (u32 i = 0; i < 3; i++) {
        apms[i] = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
        apNode[i] = NodeOf(apms[i]);
    }
    SwapModuleSlots(lppsi, apms[0], apms[2]);
    const std::vector<TreeNode *> expected = {apNode[2], apNode[1], apNode[0]};
    EXPECT_EQ(ListNode(OBJECT_DRAWFULLTREE)->apChild, expected);
    CheckTree();
}

TEST_F(TreeFollowerTest, PlanesAreRenumberedWhereANumberIsWrongAndOtherwiseKeepTheirMarks)
{
    UsePreset(3);
    SetPausedMark(tree, NthPlaneNode(tree, 2), true);
    lppsi->psPlane[1]->bPaused = 1;
    TellPresetNews({NewsKind::Planes, lppsi, nullptr, nullptr, nullptr});
    EXPECT_EQ(NthPlaneNode(tree, 1)->sText, u"Plane 2");
    EXPECT_EQ(NthPlaneNode(tree, 2)->sText, u"Plane 3 - [ Paused ]");
    RemovePlane(lppsi, lppsi->psPlane[0]);
    EXPECT_EQ(NthPlaneNode(tree, 0)->sText, u"Plane 1 - [ Paused ]");
    EXPECT_EQ(NthPlaneNode(tree, 1)->sText, u"Plane 2");
}

TEST_F(TreeFollowerTest, NewsOfAnotherPresetChangesNothing)
{
    UsePreset(1);
    PresetState *lppsiOther = CreatePresetState(0);
    const u32 nNews = Mirror.nNews;
    TellPresetNews({NewsKind::Going, lppsiOther, nullptr, nullptr, nullptr});
    TellPresetNews({NewsKind::Planes, lppsiOther, nullptr, nullptr, nullptr});
    EXPECT_EQ(Mirror.nNews, nNews);
    DestroyPresetState(lppsiOther);
}

TEST_F(TreeFollowerTest, TheRootShowsNameAndMark)
{
    UsePreset(1);
    SetPresetChanged(u"/some/where/Sunset.vd", 0);
    EXPECT_EQ(tree.pRoot->sText, u"Sunset.vd");
    MarkPresetChanged();
    EXPECT_EQ(tree.pRoot->sText, u"*Sunset.vd");
    SetPresetChanged(u"Sunset.vd", 0);
    EXPECT_EQ(tree.pRoot->sText, u"Sunset.vd");
}

TEST_F(TreeFollowerTest, AFileThatCannotBeReadLeavesNoNodesAndTheNextPresetHasItsName)
{
    const TempFolder folder;
    folder.Write("Broken.VD", "this is no preset");
    folder.Write("Good.VD", "<?xml?>\n<Preset><NumPlanes>1</NumPlanes><Plane0></Plane0></Preset>");
    UsePreset(2);
    MarkPresetChanged();
    lppsi = nullptr; // the document's from here on
    LoadPresetByName(folder.Wide("Broken.VD"));
    EXPECT_EQ(tree.pRoot, nullptr);
    EXPECT_EQ(tree.sTitle, u"Tempname.VD");
    LoadPresetByName(folder.Wide("Good.VD"));
    ASSERT_NE(tree.pRoot, nullptr);
    EXPECT_EQ(tree.pRoot->sText, u"Good.VD");
    EXPECT_NE(NthPlaneNode(tree, 0), nullptr);
    MarkPresetChanged();
    NewPreset();
    EXPECT_EQ(Outline(tree.pRoot), "Tempname.VD(Drawing Planes, Plane Mixer, Effects)");
    CheckTree();
}

TEST_F(TreeFollowerTest, AnEditedControlEndsThePaintTurn)
{
    UsePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    GiveControls(pms, {{u"Speed"}});
    BuildPresetTree(tree, lppsi);
    TreeNode *pNode = NodeOf(pms->apControl[0]);
    EXPECT_FALSE(BranchHasChanges(tree, pNode));
    pms->apControl[0]->Float.fValue = 0.75f;
    TellPresetNews({NewsKind::Control, lppsi, pms->ppsOwner, pms, pms->apControl[0]});
    EXPECT_TRUE(BranchHasChanges(tree, pNode));
}

} // namespace
