// StructurePanels_test.cpp -- what the panels of modules, planes and module lists say and do, without their windows
#include "tests/StructureFixture.h"

#include "controls/panels/ModuleLists.h"
#include "controls/panels/ModulePanel.h"
#include "controls/panels/PlanePanels.h"
#include "controls/panels/PlanePicture.h"
#include "editing/ModuleOffers.h"
#include "editing/TreeCommands.h"
#include "modules/OpenGLTest.h"
#include "toolkit/Meters.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace {

// A module's panel

TEST(ModulePanelTexts, NeverIsASecondBeyondThreeMinutes)
{
    EXPECT_EQ(u"1", DurationText(1));
    EXPECT_EQ(u"180", DurationText(180));
    EXPECT_EQ(u"Never", DurationText(181));
}

TEST(ModulePanelTexts, TheCallsReadAsTheyRun)
{
    for (i32 n = -CALLS_MOST; n <= CALLS_MOST; n++) {
        char sz[64];
        const i32 nTimes = n == -1 ? 1 : n;
        if (n == 0)
            std::snprintf(sz, sizeof sz, "Paused");
        else if (nTimes < 0)
            std::snprintf(sz, sizeof sz, "1 in every %d frames", -n);
        else
            std::snprintf(sz, sizeof sz, "%d time%s per frame", nTimes, nTimes == 1 ? "" : "s");
        EXPECT_EQ(sz, ToUtf8(CallsText(n)));
    }
}

TEST(ModulePanelMeter, FillsFromOneResetToTheNext)
{
    constexpr u32 LOW = 0x50FA50, HIGH = 0x5050FA;
    constexpr i32 COLUMNS = 100;
    ModuleSlot slot = {};
    slot.nDuration = 20;
    slot.qwNextReset = 100000;
    for (u64 qwTick : {20000, 40000, 59999, 60000, 80000, 99999, 100000, 500000}) { // two seconds of time to one
        u32 adwStrip[COLUMNS];
        FillProgressStrip(adwStrip, ResetProgress(&slot, 2, qwTick), LOW, HIGH);
        const f64 fLeft = qwTick < 100000 ? static_cast<f64>(100000 - qwTick) : 0;
        const i32 nLit = std::max(1, static_cast<i32>(COLUMNS * (1 - fLeft / 40000) + 1e-5));
        for (i32 x = 0; x < COLUMNS; x++)
            EXPECT_EQ(x < nLit && x % 4 ? PixelOfColor(LerpColor(LOW, HIGH, x, COLUMNS)) : 0xFF000000, adwStrip[x])
                << qwTick << " " << x;
    }
}

TEST(ModulePanelMeter, IsBlackForAModuleThatNeverResetsAndKnowsNoOddNumbers)
{
    ModuleSlot slot = {};
    slot.nDuration = DURATION_NEVER;
    EXPECT_EQ(0, ResetProgress(&slot, 1, 1000));
    slot.nDuration = 0;
    EXPECT_EQ(1, ResetProgress(&slot, 1, 1000));
    slot.qwNextReset = ~u64{0};
    EXPECT_EQ(0, ResetProgress(&slot, 0, 1000));
    slot.nDuration = ~0u;
    EXPECT_EQ(0, ResetProgress(&slot, 100, 1000));
}

// A preview

// The mean of the same pixels, one after the other.
u32 SlowMean(const HostBitmap *hbm, i32 x0, i32 x1, i32 y0, i32 y1)
{
    u32 adwSum[3] = {}, nPixels = 0;
    const i32 nColumnStep = (x1 - x0 + PICTURE_COLUMNS - 1) / PICTURE_COLUMNS;
    const i32 nRowStep = (y1 - y0 + PICTURE_ROWS - 1) / PICTURE_ROWS;
    for (i32 y = y0; y < y1; y += nRowStep)
        for (i32 x = x0; x < x1; x += nColumnStep, nPixels++)
            for (u32 i = 0; i < 3; i++)
                adwSum[i] += BitmapPixels(hbm)[y * hbm->nWidth + x] >> (8 * i) & 0xFF;
    u32 dw = 0;
    for (u32 i = 0; i < 3; i++)
        dw |= (adwSum[i] + nPixels / 2) / nPixels << (8 * i);
    return dw;
}

TEST(PlanePictures, EachPixelIsTheMeanOfItsPartWithTheTopRowFirst)
{
    std::mt19937 random(1);
    const i32 aanSize[][4] = {{131, 129, 131, 129}, {640, 360, 176, 99}, {501, 300, 176, 1}, {7, 5, 1, 1},
                              {1300, 17, 9, 3},     {3, 900, 2, 7},      {8000, 40, 64, 10}};
    for (const auto &[nFromWidth, nFromHeight, w, h] : aanSize) {
        HostBitmap *hbm = CreateBitmap(nFromWidth, nFromHeight);
        for (i32 i = 0; i < nFromWidth * nFromHeight; i++)
            BitmapPixels(hbm)[i] = static_cast<u32>(random());
        const i32 nStride = w + 3;
        std::vector<u32> picture(static_cast<size_t>(nStride * h), 0x12345678);
        ShrinkBitmap({picture.data(), w, h, static_cast<u64>(nStride)}, hbm);
        for (i32 y = 0; y < h; y++)
            for (i32 x = 0; x < nStride; x++) {
                const u32 dw = picture[static_cast<size_t>((h - 1 - y) * nStride + x)];
                if (x >= w) {
                    ASSERT_EQ(0x12345678u, dw) << "behind the row";
                    continue;
                }
                ASSERT_EQ(0xFFu, dw >> 24);
                const u32 dwMean = SlowMean(hbm, x * nFromWidth / w, (x + 1) * nFromWidth / w, y * nFromHeight / h,
                                            (y + 1) * nFromHeight / h);
                for (u32 i = 0; i < 24; i += 8)
                    ASSERT_NEAR(static_cast<int>(dwMean >> i & 0xFF), static_cast<int>(dw >> i & 0xFF), 1) << w;
            }
        DeleteBitmap(hbm);
    }
}

TEST(PlanePictures, BlackStaysBlackAndWhiteStaysWhiteAtEverySize)
{
    for (i32 nSide = 1; nSide <= 130; nSide++) {
        HostBitmap *hbm = CreateBitmap(nSide, nSide);
        u32 dw = 1;
        ShrinkBitmap({&dw, 1, 1, 1}, hbm);
        EXPECT_EQ(0xFF000000, dw) << nSide;
        std::fill_n(BitmapPixels(hbm), nSide * nSide, 0xFFFFFFFF);
        ShrinkBitmap({&dw, 1, 1, 1}, hbm);
        EXPECT_EQ(0xFFFFFFFF, dw) << nSide;
        DeleteBitmap(hbm);
    }
}

// The panels of planes

class PlanePanels : public StructureTest {};

TEST_F(PlanePanels, TheBoxSaysWhereThePlaneStandsAndWhatItIs)
{
    UsePlanes(1);
    AddPlane(lppsi, 0, 0);
    EXPECT_EQ(u"Plane 1\t [Indexed]", PlaneBoxText(lppsi, 0));
    EXPECT_EQ(u"Plane 2\t [RGB]", PlaneBoxText(lppsi, 1));
    EXPECT_EQ(u"Plane 3\t [Unused]", PlaneBoxText(lppsi, 2));
    EXPECT_EQ(u"Plane 1\t [Unused]", PlaneBoxText(nullptr, 0));
}

TEST_F(PlanePanels, BothArrowsBetweenTwoColumnsExchangeThem)
{
    UsePlanes(3);
    PlaneState *const pps = lppsi->psPlane[1];
    for (const auto &[iColumn, eButton] : {std::pair{1, PlaneButton::MoveRight}, std::pair{2, PlaneButton::MoveLeft}}) {
        const i32 iBefore = lppsi->psPlane[1] == pps ? 1 : 2;
        ClickPlaneButton(tree, iColumn, eButton);
        EXPECT_EQ(pps, lppsi->psPlane[3 - iBefore]);
        EXPECT_EQ(NodeOf(pps)->nRow, static_cast<u32>(3 - iBefore));
        EXPECT_TRUE(TakeMark());
    }
    CheckTree();
}

// Clicks of every button on every column, over all numbers of planes.
TEST_F(PlanePanels, AButtonThatDoesNotActChangesAndMarksNothing)
{
    for (i32 nPlanes = 0; nPlanes <= PLANES_MAX; nPlanes++)
        for (i32 iColumn = 0; iColumn < PLANES_MAX; iColumn++)
            for (const PlaneButton eButton : ButtonsOfColumn(iColumn)) {
                UsePlanes(nPlanes);
                const std::vector<PlaneState *> before(lppsi->psPlane, lppsi->psPlane + PLANES_MAX);
                const bool bActs = PlaneButtonActs(lppsi, iColumn, eButton);
                EXPECT_EQ(bActs, iColumn < nPlanes && (eButton != PlaneButton::MoveRight || iColumn + 1 < nPlanes));
                ClickPlaneButton(tree, iColumn, eButton);
                const bool bMarks = eButton != PlaneButton::Pause && eButton != PlaneButton::Clear;
                EXPECT_EQ(bActs && bMarks, TakeMark());
                const std::vector<PlaneState *> after(lppsi->psPlane, lppsi->psPlane + PLANES_MAX);
                EXPECT_TRUE(bActs || before == after);
                CheckTree();
            }
}

TEST_F(PlanePanels, ClearMakesThePictureBlackAtOnceWithoutAMark)
{
    UsePlanes(2);
    BitmapPixels(lppsi->psPlane[0]->Info.hbmDraw)[5] = BitmapPixels(lppsi->psPlane[1]->Info.hbmDraw)[5] = 7;
    ClickPlaneButton(tree, 1, PlaneButton::Clear);
    EXPECT_EQ(7u, BitmapPixels(lppsi->psPlane[0]->Info.hbmDraw)[5]);
    EXPECT_EQ(0u, BitmapPixels(lppsi->psPlane[1]->Info.hbmDraw)[5]);
    EXPECT_FALSE(TakeMark());
}

TEST_F(PlanePanels, RemovingByItsOwnPanelBuildsTheWholeTreeAnew)
{
    UsePlanes(3);
    std::vector<TreeNode *> gone;
    const auto hear = [](TreeNode *p, void *pv) { static_cast<std::vector<TreeNode *> *>(pv)->push_back(p); };
    const size_t nNodes = AllNodes(tree.pRoot).size();
    tree.NodeListeners.Add(hear, &gone);
    ClickOwnPlaneButton(NthPlaneNode(tree, 1), PlaneButton::Remove);
    tree.NodeListeners.Remove(hear, &gone);
    EXPECT_EQ(nNodes, gone.size()) << "panels of all nodes close";
    EXPECT_EQ(2, lppsi->nPlanes);
    EXPECT_EQ(u"Plane 2", NthPlaneNode(tree, 1)->sText);
    EXPECT_TRUE(TakeMark());
    CheckTree();
}

// The panel of a module list

class ModuleListsTest : public StructureTest {
  protected:
    static std::string Names(const std::vector<ModuleRow> &rows)
    {
        std::string s;
        for (const ModuleRow &row : rows)
            s += ToUtf8(row.asText[MODULE_COLUMN_NAME]) + "|";
        return s;
    }
    // As a menu would offer it, straight from the rules.
    static std::string Offer(const TreeNode *pList, bool bIndexed)
    {
        std::string s;
        const bool bPost = pList->Info.dwType == OBJECT_POSTPROC;
        const u32 dwType = bPost ? u32{OBJECT_OVERLAYEFFECT} : ModuleTypeOfList(pList->Info.dwType);
        for (u32 i = 0; i < ModuleCount(); i++)
            if (ListAccepts(GetModuleRecord(i)->md, dwType, bIndexed))
                s += ToUtf8(GetModuleRecord(i)->md.szName) + "|";
        return s;
    }
    void WriteShaders(const std::vector<std::string> &names)
    {
        for (const std::string &name : names)
            std::ofstream(Folder / "Shaders" / (name + ".glsl")) << "void main(){}";
        InitFolders({u"/nowhere/vorticade", FromUtf8(Folder.string()), FromUtf8(TEST_MODULE_FOLDER)});
    }
    void SetUp() override
    {
        StructureTest::SetUp();
        Folder = std::filesystem::temp_directory_path() / ("lists-" + std::to_string(getpid()));
        std::filesystem::create_directories(Folder / "Shaders");
    }
    void TearDown() override
    {
        StructureTest::TearDown();
        std::filesystem::remove_all(Folder);
    }

    std::filesystem::path Folder;
};

TEST_F(ModuleListsTest, EveryListOffersWhatItAcceptsWithItsTypeWord)
{
    MakePreset(1);
    AddPlane(lppsi, 0, 0);
    UsePreset(lppsi);
    Described(u"Idle.dll").dwCapabilities &= ~u32{MODULECAP_INDEXED};
    const std::u16string expected[] = {u"Interpolator ", u"Generator ", u"Effect ",  u"Full Draw ", u"Painter ",
                                       u"Effect ",       u"Full Draw ", u"Painter ", u"Effect "};
    for (u32 nPlane = 0; nPlane < 2; nPlane++)
        for (u32 dwType = OBJECT_COLORINTERPOLATORTREE; dwType <= OBJECT_OVERLAYEFFECTTREE; dwType++) {
            const auto rows = RowsOnOffer(ListNode(dwType, nPlane));
            EXPECT_EQ(Offer(ListNode(dwType, nPlane), nPlane == 0), Names(rows));
            for (const ModuleRow &row : rows)
                EXPECT_EQ(expected[ModuleTypeOfList(dwType)], row.asText[MODULE_COLUMN_TYPE]);
        }
    EXPECT_EQ(Offer(PostProcNode(), false), Names(RowsOnOffer(PostProcNode())));
    EXPECT_EQ(u"Effect ", std::u16string(ListTypeText(OBJECT_POSTPROC)));
}

TEST_F(ModuleListsTest, ModulesWithOpenGLAreOfferedOnlyWhereThereIsOne)
{
    UsePlanes(1);
    const u32 bBefore = bOpenGLAvailable;
    Described(u"Idle.dll").bNeedsOpenGL = 1;
    bOpenGLAvailable = 0;
    EXPECT_EQ("Recorder|", Names(RowsOnOffer(ListNode(OBJECT_DRAWFULLTREE))));
    bOpenGLAvailable = 1;
    EXPECT_EQ("Recorder|Idle|", Names(RowsOnOffer(ListNode(OBJECT_DRAWFULLTREE))));
    bOpenGLAvailable = bBefore;
}

TEST_F(ModuleListsTest, ShadersStandInTheirModulesPlaceUnlessItCannotBeUsed)
{
    UsePlanes(1);
    WriteShaders({"Amber", "Blue & <b>bold"});
    ModuleDescription &md = Described(u"Recorder.dll");
    CopyText(md.szName, u"My glsl SHADER module");
    const auto rows = RowsOnOffer(ListNode(OBJECT_DRAWFULLTREE));
    EXPECT_EQ("Amber|Blue & <b>bold|Idle|", Names(rows));
    EXPECT_EQ(u"Pixel Shader: Amber", rows[0].asText[MODULE_COLUMN_DESCRIPTION]);
    AddModulesTo(ListNode(OBJECT_DRAWFULLTREE), std::vector{rows[1].dwKey, rows[2].dwKey});
    EXPECT_EQ("Blue & <b>bold|Idle|", Names(RowsInUse(ListNode(OBJECT_DRAWFULLTREE))));
    md.bUnavailable = 1;
    EXPECT_EQ("My glsl SHADER module|Idle|", Names(RowsOnOffer(ListNode(OBJECT_DRAWFULLTREE))));
}

TEST_F(ModuleListsTest, SlotsWithoutANameAreSkippedAndCanStillBeMovedPast)
{
    UsePlanes(1);
    ModuleSlot *pmsFirst = AddIdle(MODULEINDEX_DRAWPAINTER);
    Add(MODULEINDEX_DRAWPAINTER);
    SyncPresetTree(tree);
    Described(u"Recorder.dll").szName[0] = 0;
    TreeNode *pList = ListNode(OBJECT_DRAWPAINTERTREE);
    EXPECT_EQ("Idle|", Names(RowsInUse(pList)));
    EXPECT_EQ(pmsFirst, RowsInUse(pList)[0].pms);
    ClickSlotButton(pList, pmsFirst, SlotButton::MoveDown);
    EXPECT_EQ(pmsFirst, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][1]);
}

TEST_F(ModuleListsTest, SortingIsStableBothWays)
{
    std::mt19937 random(2);
    std::vector<ModuleRow> rows;
    for (u32 i = 0; i < 200; i++)
        rows.push_back({{std::u16string(1, static_cast<char16_t>(u'A' + random() % 40)), u"x", u""}, i, nullptr});
    for (const bool bDescending : {false, true}) {
        auto sorted = rows;
        SortModuleRows(&sorted, MODULE_COLUMN_NAME, bDescending);
        for (size_t i = 1; i < sorted.size(); i++) {
            const auto &a = sorted[i - 1].asText[0], &b = sorted[i].asText[0];
            EXPECT_TRUE(bDescending ? a >= b : a <= b);
            EXPECT_TRUE(a != b || sorted[i - 1].dwKey < sorted[i].dwKey);
        }
        SortModuleRows(&sorted, MODULE_COLUMN_NAME, bDescending);
        SortModuleRows(&sorted, 99, bDescending);
        auto again = rows;
        SortModuleRows(&again, MODULE_COLUMN_TYPE, bDescending);
        EXPECT_EQ(rows, again) << "equal rows stay";
    }
}

TEST_F(ModuleListsTest, RowsAreAddedMovedAndRemovedInAPlaneAndBehindTheMixer)
{
    UsePlanes(1);
    for (TreeNode *pList : {ListNode(OBJECT_OVERLAYEFFECTTREE), PostProcNode()}) {
        const auto offer = RowsOnOffer(pList);
        ASSERT_EQ("Recorder|Idle|", Names(offer));
        AddModulesTo(pList, {});
        EXPECT_FALSE(TakeMark()) << "nothing was chosen";
        AddModulesTo(pList, std::vector{offer[0].dwKey, offer[1].dwKey});
        EXPECT_TRUE(TakeMark());
        EXPECT_EQ("Recorder|Idle|", Names(RowsInUse(pList)));
        EXPECT_EQ(2u, pList->apChild.size());
        const ModuleSlot *pms = RowsInUse(pList)[1].pms;
        ClickSlotButton(pList, pms, SlotButton::MoveUp);
        EXPECT_TRUE(TakeMark());
        EXPECT_EQ("Idle|Recorder|", Names(RowsInUse(pList)));
        ClickSlotButton(pList, pms, SlotButton::Remove);
        EXPECT_TRUE(TakeMark());
        EXPECT_EQ("Recorder|", Names(RowsInUse(pList)));
        for (const SlotButton eButton : {SlotButton::MoveUp, SlotButton::Remove, SlotButton::MoveDown}) {
            ClickSlotButton(pList, nullptr, eButton);
            ClickSlotButton(pList, pms, eButton);
        }
        EXPECT_FALSE(TakeMark()) << "nothing was selected, or it is gone";
        CheckTree();
    }
}

} // namespace
