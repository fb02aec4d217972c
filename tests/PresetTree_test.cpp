// PresetTree_test.cpp -- the tree of a preset: what it holds, what its nodes say, how it is moved about and given up
#include "tests/TreeFixture.h"

#include "editing/TreeTexts.h"
#include "tests/modules/HostileModes.h"

#include <cstring>
#include <random>
#include <set>

namespace {

using PresetTreeTest = TreeTest;

const char *const PLANE_BRANCH = "(Color Modules(Interpolator, Generator, Effects), "
                                 "Drawing Modules(Full Draw, Painter, Effects), "
                                 "Overlay Modules(Full Draw, Painter, Effects))";

// What the tree holds

TEST_F(PresetTreeTest, AnEmptyPresetShowsItsThreeBranches)
{
    MakePreset(0);
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(tree.pRoot), "Root(Drawing Planes, Plane Mixer, Effects)");
    CheckTree();
}

TEST_F(PresetTreeTest, EveryPlaneShowsItsNineListsAndTheirModulesInOrder)
{
    MakePreset(2);
    for (u32 i = 0; i <= MODULEINDEX_OVERLAYEFFECT; i++)
        Add(i, 1, u"Idle.dll");
    Add(MODULEINDEX_COLORGENERATOR, 1, u"RecorderColor.dll");
    Add(MODULEINDEX_NUMINDICIES, -1, u"Idle.dll");
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(NthPlaneNode(tree, 0)), std::string("Plane 1") + PLANE_BRANCH);
    EXPECT_EQ(Outline(NthPlaneNode(tree, 1)),
              "Plane 2(Color Modules(Interpolator(Idle), Generator(Idle, Recorder Color), Effects(Idle)), "
              "Drawing Modules(Full Draw(Idle), Painter(Idle), Effects(Idle)), "
              "Overlay Modules(Full Draw(Idle), Painter(Idle), Effects(Idle)))");
    EXPECT_EQ(NthPlaneNode(tree, 2), nullptr);
    EXPECT_EQ(Outline(ChildOfType(tree.pRoot, OBJECT_POSTPROC)), "Effects(Idle)");
    CheckTree();
}

TEST_F(PresetTreeTest, EveryNodeStandsForItsObject)
{
    MakePreset(2);
    ModuleSlot *pms = Add(MODULEINDEX_OVERLAYPAINTER, 1, u"Idle.dll");
    ModuleSlot *pmsPost = Add(MODULEINDEX_NUMINDICIES, -1, u"Idle.dll");
    BuildPresetTree(tree, lppsi);
    for (TreeNode *pNode : AllNodes(tree.pRoot)) {
        const u32 dwType = pNode->Info.dwType;
        const void *pExpected = IsModuleType(dwType) ? (pNode->pParent->Info.dwType == OBJECT_POSTPROC ? pmsPost : pms)
                                                     : static_cast<void *>(lppsi);
        if (dwType >= OBJECT_PLANE && dwType <= OBJECT_OVERLAYEFFECTTREE)
            pExpected = lppsi->psPlane[EnclosingNode(pNode, OBJECT_PLANE)->nRow];
        EXPECT_EQ(pNode->Info.pObject, pExpected) << dwType;
        EXPECT_EQ(pNode->Info.pOwnerSlot, IsModuleType(dwType) ? pExpected : nullptr);
        EXPECT_EQ(pNode->bExpanded, IsModuleType(dwType) ? 0u : 1u);
    }
    EXPECT_EQ(NodeOf(pms)->Info.dwType, OBJECT_OVERLAYPAINTER);
    EXPECT_EQ(NodeOf(pmsPost)->Info.dwType, OBJECT_OVERLAYEFFECT);
    EXPECT_EQ(NodeOf(lppsi), tree.pRoot);
    EXPECT_EQ(FindNodeByObject(tree, NthPlaneNode(tree, 0), pms), nullptr) << "from another branch";
    EXPECT_EQ(NodeOf(&tree), nullptr);
}

TEST_F(PresetTreeTest, TheIconsAreThoseOfTheKinds)
{
    const std::string sIcons = "7777777770123453334445556675";
    for (u32 i = 0; i < OBJECT_TYPES; i++)
        EXPECT_EQ(KindOf(i).nIcon, static_cast<u32>(sIcons[i] - '0')) << i;
}

// Controls and their groups

TEST_F(PresetTreeTest, AControlOfOneComponentSitsUnderItsModule)
{
    ModuleSlot *pms = MakeControls({{u"Speed"}, {u"Size"}});
    EXPECT_EQ(Outline(NodeOf(pms)), "Idle(Speed, Size)");
    const TVObjectInfo &Info = NodeOf(pms->apControl[1])->Info;
    EXPECT_EQ(Info.dwType, OBJECT_CONTROL);
    EXPECT_EQ(Info.pOwnerSlot, pms);
    EXPECT_EQ(Info.bOwnsObject, 0u);
}

TEST_F(PresetTreeTest, AGroupThatNobodyDeclaredIsMadeFromItsFirstControl)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Inner", u"Speed"}, {u"OUTER", u"Size"}});
    EXPECT_EQ(Outline(NodeOf(pms)), "Idle(Outer(Inner(Speed), Size))");
    const TreeNode *pInner = NodeOf(pms)->apChild[0]->apChild[0];
    EXPECT_EQ(pInner->Info.dwType, OBJECT_CONTROLTREE);
    EXPECT_EQ(pInner->Info.bOwnsObject, 1u);
    EXPECT_EQ(pInner->Info.pOwnerSlot, nullptr);
    EXPECT_EQ(pInner->bExpanded, 0u);
    ControlRecord expected = *pms->apControl[0];
    expected.Base.dwType = CONTROLTYPE_GROUP;
    expected.Base.dwSourceMask = ALL_ONES;
    WriteName(&expected, {u"Outer", u"Inner"});
    EXPECT_EQ(std::memcmp(ControlOf(pInner), &expected, sizeof expected), 0);
    EXPECT_EQ(pms->nControls, 2) << "it is no control of the module";
}

TEST_F(PresetTreeTest, ADeclaredGroupIsFoundByItsTextWhereItComesFirst)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    GiveControls(pms, {{u"Outer"}, {u"outer", u"Speed"}, {u"Late", u"Size"}, {u"Late"}, {u"Outer"}});
    for (i32 i : {0, 3, 4})
        pms->apControl[i]->Base.dwType = CONTROLTYPE_GROUP;
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(NodeOf(pms)), "Idle(Outer(Speed), Late(Size), Late, Outer)")
        << "late and twice: nodes of their own";
    const TreeNode *pOuter = NodeOf(pms->apControl[0]);
    EXPECT_EQ(pOuter->Info.dwType, OBJECT_CONTROLTREE);
    EXPECT_EQ(pOuter->Info.pOwnerSlot, pms);
    EXPECT_EQ(pOuter->Info.bOwnsObject, 0u);
}

TEST_F(PresetTreeTest, ControlsUnderAControlsNameSitUnderTheControl)
{
    ModuleSlot *pms = MakeControls({{u"Speed"}, {u"Speed", u"Limit"}, {u"Speed"}});
    EXPECT_EQ(Outline(NodeOf(pms)), "Idle(Speed(Limit), Speed)");
}

TEST_F(PresetTreeTest, AGroupWithoutDescriptionSaysFakeTooltip)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    GiveControls(pms, {{u"Declared"}, {u"Made", u"Speed"}, {u"Kept", u"Speed"}});
    pms->apControl[0]->Base.dwType = CONTROLTYPE_GROUP;
    for (i32 i : {0, 1})
        pms->apControl[i]->Base.szDescription[0] = 0;
    BuildPresetTree(tree, lppsi);
    const auto &apChild = NodeOf(pms)->apChild;
    EXPECT_EQ(TipText(apChild[0]), u"Fake Tooltip");
    EXPECT_EQ(TipText(apChild[1]), u"Fake Tooltip");
    EXPECT_EQ(TipText(apChild[1]->apChild[0]), u"") << "a control keeps what it has";
    EXPECT_EQ(TipText(apChild[2]), u"This is a text string.");
}

TEST_F(PresetTreeTest, ModulesOfOneKindHaveGroupsOfTheirOwn)
{
    MakePreset(1);
    ModuleSlot *apms[] = {Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll"), Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll")};
    for (ModuleSlot *pms : apms)
        GiveControls(pms, {{u"Outer", u"Speed"}});
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(ListNode(OBJECT_DRAWFULLTREE)), "Full Draw(Idle(Outer(Speed)), Idle(Outer(Speed)))");
}

// What modules may do wrong

TEST_F(PresetTreeTest, NamesWithoutComponentsOrWithoutAnEndHaveTheirPlace)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    GiveControls(pms, {{u""}, {u"", u"behind the end"}, {u"One", u"", u"behind the end"}, {u"x"}, {u"y"}});
    std::fill_n(pms->apControl[3]->Base.szName, CONTROL_TEXT, u'n'); // no 0 at all
    WriteName(pms->apControl[4], {u"G", std::u16string(CONTROL_TEXT - 3, u'm')});
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(NodeOf(pms)),
              "Idle(, , One, " + std::string(CONTROL_TEXT, 'n') + ", G(" + std::string(CONTROL_TEXT - 3, 'm') + "))");
}

TEST_F(PresetTreeTest, AHundredLevelsAndAHundredAndFortyControlsOfOneNameAreAllThere)
{
    Name deep(129, u"d");
    deep.back() = u"leaf";
    deep.resize(128);
    std::vector<Name> names(CONTROLS_MAX, Name(100, u"d"));
    names[0] = deep;
    ModuleSlot *pms = MakeControls(names);
    const TreeNode *pNode = NodeOf(pms);
    for (u32 i = 0; i < 98; i++) {
        ASSERT_EQ(pNode->apChild.size(), 1u);
        pNode = pNode->apChild[0];
        EXPECT_EQ(pNode->Info.bOwnsObject, 1u);
    }
    pNode = pNode->apChild[0];
    EXPECT_EQ(pNode->apChild.size(), CONTROLS_MAX + 0u)
        << "the 100th level: the first control's group and 139 controls";
    EXPECT_EQ(ObjPath(NodeOf(pms->apControl[0])).size(),
              std::u16string(u"\\\\\\Indexed\\Drawing Modules\\Full Draw\\Idle").size() + 2 * 128);
    CheckTree();
}

TEST_F(PresetTreeTest, TextsStayWhenAModuleRenamesItsControls)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}});
    std::fill_n(pms->apControl[0]->Base.szName, CONTROL_TEXT, u'z');
    EXPECT_EQ(Outline(NodeOf(pms)), "Idle(Outer(Speed))");
}

TEST_F(PresetTreeTest, AModuleThatGetsEveryNameWrongHasItsNodes)
{
    ASSERT_EQ(1u, LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/HostileControls.dll"));
    auto *pMode = Export<std::atomic<uint32_t> *>(u"HostileControls.dll", u"HostileMode");
    MakePreset(1);
    for (u32 dwMode : {u32{HOSTILE_NAME}, u32{HOSTILE_MANY}, u32{HOSTILE_TYPE}, HOSTILE_NAME | 0u | HOSTILE_DEPENDS}) {
        *pMode = dwMode;
        Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileControls.dll");
    }
    *pMode = 0;
    BuildPresetTree(tree, lppsi);
    for (i32 i = 0; i < 4; i++) {
        const ModuleSlot *pms = lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][i];
        for (i32 j = 0; j < pms->nControls; j++)
            EXPECT_TRUE(IsInBranch(NodeOf(pms->apControl[j]), NodeOf(pms))) << i << ' ' << j;
    }
    CheckTree();
    for (TreeNode *pNode : AllNodes(tree.pRoot))
        BranchHasChanges(tree, pNode), TipText(pNode), PanelTitle(pNode), ObjPath(pNode);
}

// What nodes say

TEST_F(PresetTreeTest, EveryKindHasItsTip)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL);
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(TipText(NodeOf(pms)), u"Module: Recorder - Writes down every call that it gets.");
    const char16_t *apszTip[] = {
        u"Preset:\n\nA configuration of planes, modules, controls, and mixing instructions that generate an output "
        u"image.",
        u"Drawing Planes:\n\nA set of planes that are combined in the mixer to create an output image.",
        u"Plane:\n\nA drawing surface (an image/picture) that you construct with color, drawing, and overlay modules.",
        u"Color Modules:\n\nManage the color palettes used by drawing modules when drawing on a plane.",
        u"Drawing Modules:\n\nDraw or modify the contents of a plane.  They are persistent and drawing accumulates "
        u"over frames.",
        u"Overlay Modules:\n\nDraw or modify the contents of a plane after color indices have been resolved by the "
        u"color interpolator.  They are transient and any/all drawing is per-frame.",
        u"Interpolator:\n\nManages transitions between color palettes and resolves palette indices to RGB values prior "
        u"to mixing.",
        u"Generator:\n\nManages the creation of color palettes.",
        u"Effects:\n\nManages modifications/tweaks applied to color palettes created by the color generator.",
        u"Full Draw:\n\nDrawing modules that generate a full image on every frame.",
        u"Painter:\n\nDrawing modules that add to/combine with the current contents of a plane.",
        u"Effects:\n\nDrawing modules that modify/tweak the current contents of a plane.",
        u"Full Draw:\n\nDrawing modules that generate a full image on every frame.",
        u"Painter:\n\nDrawing modules that add to/combine with the current contents of a plane.",
        u"Effects:\n\nDrawing modules that modify/tweak the current contents of a plane.",
        nullptr,
        nullptr,
        u"Mixer:\n\nConfigure a list of rules that control how one or more drawing planes are combined to produce a "
        u"single output image.",
        u"Effects:\n\nPost mixer effect modules are applied to the output image before it's displayed.",
    };
    std::set<u32> seen;
    for (TreeNode *pNode : AllNodes(tree.pRoot))
        if (!IsModuleType(pNode->Info.dwType)) {
            seen.insert(pNode->Info.dwType);
            EXPECT_EQ(TipText(pNode), apszTip[pNode->Info.dwType - OBJECT_ROOT]) << pNode->Info.dwType;
        }
    EXPECT_EQ(seen.size(), OBJECT_TYPES - OBJECT_ROOT - 2u) << "all but groups and controls";
}

TEST_F(PresetTreeTest, AShaderInstanceIsCalledByItsShader)
{
    static const NameText szShader = u"Waves";
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL);
    pms->lpszShader = szShader;
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(Outline(NodeOf(pms)), "Waves");
    EXPECT_EQ(TipText(NodeOf(pms)), u"Module: Recorder - Writes down every call that it gets.");
}

TEST_F(PresetTreeTest, PathsForFragmentsNameTheTypeOfThePlaneAndNotItsNumber)
{
    MakePreset(1);
    AddPlane(lppsi, 0, 0);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 1, u"Idle.dll");
    GiveControls(pms, {{u"Outer", u"Speed"}});
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(ObjPath(nullptr), u"");
    EXPECT_EQ(ObjPath(tree.pRoot), u"\\");
    EXPECT_EQ(ObjPath(tree.pRoot->apChild[0]), u"\\\\");
    EXPECT_EQ(ObjPath(ListNode(OBJECT_DRAWPAINTERTREE)), u"\\\\\\Indexed\\Drawing Modules\\Painter");
    EXPECT_EQ(ObjPath(NodeOf(pms->apControl[0])), u"\\\\\\RGB\\Drawing Modules\\Full Draw\\Idle\\Outer\\Speed");
    EXPECT_EQ(ObjPath(ChildOfType(tree.pRoot, OBJECT_MIXER)), u"\\\\Plane Mixer");
    EXPECT_EQ(ObjPath(ChildOfType(tree.pRoot, OBJECT_POSTPROC)), u"\\\\Effects");
}

TEST_F(PresetTreeTest, PanelsAreTitledFromTheModuleOrFromThePlane)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}, {u"The Plane Tilt"}});
    SetTreeTitle(tree, u"Sunset.vd", false);
    EXPECT_EQ(DisplayPath(NodeOf(pms->apControl[0])), u"Idle\\Outer\\Speed");
    EXPECT_EQ(PanelTitle(NodeOf(pms->apControl[0])), u"Idle\\Outer\\Speed");
    EXPECT_EQ(PanelTitle(NodeOf(pms->apControl[1])), u"Plane Tilt");
    EXPECT_EQ(DisplayPath(NodeOf(pms)), u"Idle");
    EXPECT_EQ(DisplayPath(ListNode(OBJECT_DRAWFULLTREE)),
              u"Sunset.vd\\Drawing Planes\\Plane 1\\Drawing Modules\\Full Draw");
    EXPECT_EQ(PanelTitle(ListNode(OBJECT_DRAWFULLTREE)), u"Plane 1\\Drawing Modules\\Full Draw");
    EXPECT_EQ(PanelTitle(tree.pRoot->apChild[0]), u"Sunset.vd\\Drawing Planes");
    EXPECT_EQ(PanelTitle(ChildOfType(tree.pRoot, OBJECT_MIXER)), u"Plane Mixer");
}

TEST_F(PresetTreeTest, TheRootIsCalledByThePresetAndKeepsItsNameWhenBuiltAnew)
{
    SetTreeTitle(tree, u"Early.vd", false);
    MakePreset(0);
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(tree.pRoot->sText, u"Early.vd");
    SetTreeTitle(tree, u"Early.vd", true);
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(tree.pRoot->sText, u"*Early.vd");
}

TEST_F(PresetTreeTest, PausedMarksAreCutAndSet)
{
    ModuleSlot *pms = MakeControls({});
    TreeNode *pNode = NodeOf(pms);
    for (u32 i = 0; i < 2; i++) {
        SetPausedMark(tree, pNode, true);
        EXPECT_EQ(pNode->sText, u"Idle - [ Paused ]");
    }
    SetPausedMark(tree, pNode, false);
    EXPECT_EQ(pNode->sText, u"Idle");
    SetNodeText(tree, pNode, u"Odd - [name] - [ Paused ]");
    SetPausedMark(tree, pNode, true);
    EXPECT_EQ(pNode->sText, u"Odd - [ Paused ]");
}

TEST_F(PresetTreeTest, PlanesAreRenumberedWithTheirMarks)
{
    MakePreset(3);
    lppsi->psPlane[1]->bPaused = 1;
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(NthPlaneNode(tree, 1)->sText, u"Plane 2") << "a new tree shows no marks";
    TreeNode *pLast = NthPlaneNode(tree, 2);
    const std::u16string path = ObjPath(pLast->apChild[0]);
    DeleteNode(tree, NthPlaneNode(tree, 0));
    RemovePlane(lppsi, lppsi->psPlane[0]);
    RenumberPlanes(tree, lppsi);
    EXPECT_EQ(NthPlaneNode(tree, 0)->sText, u"Plane 1 - [ Paused ]");
    EXPECT_EQ(pLast->sText, u"Plane 2");
    EXPECT_EQ(ObjPath(pLast->apChild[0]), path);
}

// Which branches have changes

TEST_F(PresetTreeTest, AGroupHasChangesWhereOneOfItsControlsHas)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}, {u"Outer", u"Size"}, {u"Hue"}});
    pms->apControl[1]->Float.fValue = 0.75f;
    EXPECT_TRUE(BranchHasChanges(tree, NodeOf(pms)->apChild[0]));
    EXPECT_FALSE(BranchHasChanges(tree, NodeOf(pms->apControl[0])));
    EXPECT_TRUE(BranchHasChanges(tree, NodeOf(pms->apControl[1])));
    EXPECT_FALSE(BranchHasChanges(tree, NodeOf(pms->apControl[2])));
    EXPECT_TRUE(BranchHasChanges(tree, tree.pRoot));
}

bool HasChangesTheSlowWay(const TreeNode *pNode)
{
    bool bAny = pNode->Info.dwType == OBJECT_CONTROL && !ControlIsDefault(ControlOf(pNode));
    for (const TreeNode *pChild : pNode->apChild)
        bAny |= HasChangesTheSlowWay(pChild);
    return bAny;
}

TEST_F(PresetTreeTest, EveryTurnAnswersWhatAWalkOverTheBranchWould)
{
    std::vector<Name> names;
    for (char16_t a : {u'a', u'b', u'c'})
        for (char16_t b : {u'a', u'b', u'c', u'd'})
            names.push_back({{a}, {b}, u"x"});
    ModuleSlot *pms = MakeControls(names);
    std::mt19937 random(7);
    for (u32 nTurn = 0; nTurn < 100; nTurn++) {
        ControlRecord *pctl = pms->apControl[random() % names.size()];
        pctl->Float.fValue = random() % 3 ? 0.5f : 0.25f;
        random() % 2 ? BeginPaintTurn(tree) : RepaintBranch(tree, NodeOf(pctl));
        auto apNode = AllNodes(tree.pRoot);
        std::shuffle(apNode.begin(), apNode.end(), random);
        for (TreeNode *pNode : apNode)
            ASSERT_EQ(BranchHasChanges(tree, pNode), HasChangesTheSlowWay(pNode)) << ToUtf8(ObjPath(pNode));
    }
}

TEST_F(PresetTreeTest, WithinATurnTheAnswerStays)
{
    ModuleSlot *pms = MakeControls({{u"Speed"}});
    TreeNode *pNode = NodeOf(pms->apControl[0]);
    EXPECT_FALSE(BranchHasChanges(tree, pNode));
    pms->apControl[0]->Float.fValue = 0.75f;
    EXPECT_FALSE(BranchHasChanges(tree, pNode));
    BeginPaintTurn(tree);
    EXPECT_TRUE(BranchHasChanges(tree, pNode));
    DeleteNode(tree, pNode);
    EXPECT_FALSE(BranchHasChanges(tree, tree.pRoot)) << "a change of the tree ends the turn";
}

// Moving and expanding

TEST_F(PresetTreeTest, AMovedNodeKeepsAddressRecordTextAndExpansion)
{
    MakePreset(3);
    BuildPresetTree(tree, lppsi);
    TreeNode *pPlanes = tree.pRoot->apChild[0];
    TreeNode *pNode = NthPlaneNode(tree, 0);
    SetExpanded(tree, pNode, false);
    pNode->Info.hPanel = this;
    EXPECT_TRUE(MoveNode(tree, pNode, pPlanes, NthPlaneNode(tree, 2)));
    EXPECT_EQ(NthPlaneNode(tree, 2), pNode);
    EXPECT_EQ(pNode->sText, u"Plane 1");
    EXPECT_EQ(pNode->Info.hPanel, this);
    EXPECT_EQ(pNode->bExpanded, 0u);
    EXPECT_EQ(pNode->apChild[0]->bExpanded, 1u);
    CheckTree();
}

TEST_F(PresetTreeTest, ANodeDoesNotMoveIntoItsOwnBranchOrBehindAStranger)
{
    MakePreset(2);
    BuildPresetTree(tree, lppsi);
    TreeNode *pPlane = NthPlaneNode(tree, 0);
    const std::string sBefore = Outline(tree.pRoot);
    const u32 nNews = Mirror.nNews;
    EXPECT_FALSE(MoveNode(tree, pPlane, pPlane, nullptr));
    EXPECT_FALSE(MoveNode(tree, pPlane, pPlane->apChild[1], nullptr));
    EXPECT_FALSE(MoveNode(tree, tree.pRoot, pPlane, nullptr));
    EXPECT_FALSE(MoveNode(tree, pPlane, pPlane->pParent, pPlane->apChild[0]));
    EXPECT_TRUE(MoveNode(tree, pPlane, pPlane->pParent, nullptr)) << "where it is";
    EXPECT_TRUE(MoveNode(tree, pPlane, pPlane->pParent, pPlane));
    EXPECT_EQ(Outline(tree.pRoot), sBefore);
    EXPECT_EQ(Mirror.nNews, nNews);
}

TEST_F(PresetTreeTest, WhoListensCanFollowAnyMovesInsertionsAndRemovals)
{
    MakePreset(2);
    for (u32 i = 0; i < 6; i++)
        GiveControls(Add(MODULEINDEX_DRAWFULL + i % 3, static_cast<i32>(i) % 2, u"Idle.dll"), {{u"G", u"a"}, {u"b"}});
    BuildPresetTree(tree, lppsi);
    std::mt19937 random(11);
    for (u32 i = 0; i < 400; i++) {
        const auto apNode = AllNodes(tree.pRoot);
        TreeNode *pNode = apNode[1 + random() % (apNode.size() - 1)];
        TreeNode *pTo = apNode[random() % apNode.size()];
        const size_t nTo = random() % (pTo->apChild.size() + 1);
        MoveNode(tree, pNode, pTo, nTo ? pTo->apChild[nTo - 1] : nullptr);
        if (random() % 8 == 0)
            AddModuleBranch(tree, pTo, OBJECT_DRAWFULL, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWFULL][0]);
        if (random() % 8 == 0)
            DeleteNode(tree, apNode[apNode.size() - 1]);
        if (random() % 16 == 0)
            BuildPresetTree(tree, lppsi);
        CheckTree();
    }
}

TEST_F(PresetTreeTest, ABranchIsExpandedAndCollapsedWithAllBelow)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}});
    ExpandBranch(tree, tree.pRoot, true);
    for (const TreeNode *pNode : AllNodes(tree.pRoot))
        EXPECT_EQ(pNode->bExpanded, 1u);
    const u32 nNews = Mirror.nNews;
    ExpandBranch(tree, tree.pRoot, true);
    EXPECT_EQ(Mirror.nNews, nNews) << "nothing changed";
    ExpandBranch(tree, NodeOf(pms), false);
    for (const TreeNode *pNode : AllNodes(tree.pRoot))
        EXPECT_EQ(pNode->bExpanded, IsInBranch(pNode, NodeOf(pms)) ? 0u : 1u);
}

// The end of nodes

struct Leaver {
    static void Hear(TreeNode *pNode, void *pv)
    {
        auto *p = static_cast<Leaver *>(pv);
        EXPECT_TRUE(p->gone.insert(pNode).second) << "told twice";
        for (const TreeNode *pChild : pNode->apChild)
            EXPECT_EQ(p->gone.count(pChild), 1u) << "children first";
        const ControlRecord *pctl = ControlOf(pNode);
        EXPECT_TRUE(!pctl || pctl->Base.dwType <= CONTROLTYPE_TILE) << "still there to be read";
        EXPECT_TRUE(IsInBranch(pNode, pNode->Info.hTree->pRoot)) << "the tree is still whole";
    }
    std::set<const TreeNode *> gone;
};

TEST_F(PresetTreeTest, EveryNodeOfADeletedBranchIsToldOfBeforeItGoes)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}, {u"Hue"}});
    Leaver leaver;
    tree.NodeListeners.Add(Leaver::Hear, &leaver);
    const size_t nAll = AllNodes(tree.pRoot).size();
    DeleteNode(tree, NodeOf(pms));
    EXPECT_EQ(leaver.gone.size(), 4u);
    EXPECT_EQ(AllNodes(tree.pRoot).size(), nAll - 4);
    CheckTree();
    BuildPresetTree(tree, lppsi);
    EXPECT_EQ(leaver.gone.size(), nAll) << "building anew gives up all that was there";
    leaver.gone.clear();
    BuildPresetTree(tree, nullptr);
    EXPECT_EQ(leaver.gone.size(), nAll);
    EXPECT_EQ(tree.pRoot, nullptr);
    EXPECT_EQ(tree.lppsi, nullptr);
    CheckTree();
}

TEST_F(PresetTreeTest, ATreeThatGoesGivesUpItsNodes)
{
    MakeControls({{u"Outer", u"Speed"}});
    Leaver leaver;
    {
        PresetTree other;
        other.NodeListeners.Add(Leaver::Hear, &leaver);
        BuildPresetTree(other, lppsi);
    }
    EXPECT_EQ(leaver.gone.size(), AllNodes(tree.pRoot).size());
}

TEST_F(PresetTreeTest, ABranchIsToldOfOnceWithAllItsNodes)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}, {u"Hue"}});
    const u32 nNews = Mirror.nNews;
    TreeNode *pNode = AddModuleBranch(tree, ListNode(OBJECT_DRAWPAINTERTREE), OBJECT_DRAWPAINTER, pms);
    EXPECT_EQ(Mirror.nNews, nNews + 2);
    EXPECT_EQ(Outline(pNode), "Idle(Outer(Speed), Hue)");
    TreeNode *pPlane = AddPlaneBranch(tree, tree.pRoot->apChild[0], AddPlane(lppsi, 1, 0));
    EXPECT_EQ(Mirror.nNews, nNews + 4);
    EXPECT_EQ(Outline(pPlane), std::string("Plane 2") + PLANE_BRANCH);
    CheckTree();
}

} // namespace
