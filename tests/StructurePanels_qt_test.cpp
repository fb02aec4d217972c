// StructurePanels_qt_test.cpp -- the panels of modules, planes and module lists on the screen, by mouse and keys
#include "tests/StructureFixture.h"
#include "tests/WindowFixture.h"

#include "controls/panels/ModuleRows_qt.h"
#include "controls/panels/PanelHost_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/PlanePreview_qt.h"
#include "editing/TreeCommands.h"
#include "engine/DrawPipeline.h"
#include "toolkit/DarkStyle_qt.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QSlider>
#include <QTest>

namespace {

class StructurePanels : public StructureTest {
  protected:
    void SetUp() override
    {
        StructureTest::SetUp();
        pOwner = std::make_unique<QWidget>();
        pOwner->show();
        pHost = std::make_unique<PanelHost>(&tree, pOwner.get());
    }
    void TearDown() override
    {
        pHost.reset();
        pOwner.reset();
        StructureTest::TearDown();
        Turn();
    }

    template <typename Fn> static bool HoldsWithin(int nMs, Fn isSo)
    {
        return QTest::qWaitFor(isSo, nMs);
    }
    static void Turn()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    Panel *Open(TreeNode *pNode)
    {
        pHost->NodeClicked(pNode, nullptr);
        QWidget *pPanel = static_cast<Panel *>(pNode->Info.hPanel);
        if (!pPanel || !QTest::qWaitForWindowExposed(pPanel))
            ADD_FAILURE() << "no panel of " << ToUtf8(pNode->sText);
        return static_cast<Panel *>(pPanel);
    }
    // By the name that a screen reader says, or the text that is shown; n of those that have the same.
    template <typename Widget> static Widget *Find(const QWidget *pPanel, const char *psz, qsizetype n = 0)
    {
        for (auto *p : pPanel->findChildren<Widget *>())
            if ((p->accessibleName() == QLatin1String(psz) || TextOf(p) == QLatin1String(psz)) && n-- == 0)
                return p;
        ADD_FAILURE() << "no " << psz;
        return nullptr;
    }
    static QString TextOf(const QWidget *p)
    {
        const auto *pButton = qobject_cast<const QAbstractButton *>(p);
        return pButton ? pButton->text() : QString();
    }
    static void Click(const QWidget *pPanel, const char *pszButton, qsizetype n = 0)
    {
        QTest::mouseClick(Find<QAbstractButton>(pPanel, pszButton, n), Qt::LeftButton);
    }
    static std::vector<QString> Texts(const ModuleListView *pView)
    {
        std::vector<QString> texts;
        for (int i = 0; i < pView->model()->rowCount(); i++)
            texts.push_back(pView->model()->index(i, 0).data().toString());
        return texts;
    }
    static void ClickRow(ModuleListView *pView, int iRow, Qt::KeyboardModifiers modifiers = {})
    {
        const QRect rect = pView->visualRect(pView->model()->index(iRow, 0));
        QTest::mouseClick(pView->viewport(), Qt::LeftButton, modifiers, rect.topLeft() + QPoint(3, rect.height() / 2));
    }
    static ModuleListView *InUse(const QWidget *pPanel)
    {
        return Find<ModuleListView>(pPanel, "Using");
    }
    static ModuleListView *OnOffer(const QWidget *pPanel)
    {
        return Find<ModuleListView>(pPanel, "Available");
    }

    std::unique_ptr<QWidget> pOwner;
    std::unique_ptr<PanelHost> pHost;
};

// A module's panel

class ModulePanelTest : public StructurePanels {
  protected:
    void SetUp() override
    {
        StructurePanels::SetUp();
        UsePlanes(1);
        pms = AddIdle(MODULEINDEX_DRAWPAINTER);
        pms->bResetPending = 0;
        pPanel = Open(NodeOf(pms));
        TakeMark();
    }
    bool TakeReset()
    {
        return std::exchange(pms->bResetPending, 0) != 0;
    }

    ModuleSlot *pms = nullptr;
    Panel *pPanel = nullptr;
};

TEST_F(ModulePanelTest, ItsBoxesPauseByTheCommandAndClearWithoutAMark)
{
    auto *pBox = Find<QCheckBox>(pPanel, "Included in rendering");
    EXPECT_TRUE(pBox->isChecked());
    QTest::keyClick(pBox, Qt::Key_Space);
    EXPECT_FALSE(pms->bActive);
    EXPECT_NE(NodeOf(pms)->sText.find(u"Paused"), std::u16string::npos);
    RunTreeCommand(tree, NodeOf(pms), TreeCommand::PauseModule);
    EXPECT_TRUE(pBox->isChecked()) << "the panel follows";
    Click(pPanel, "Clear plane on reset");
    EXPECT_TRUE(pms->bClearOnReset);
    EXPECT_FALSE(TakeMark());
    EXPECT_FALSE(TakeReset());
}

TEST_F(ModulePanelTest, TheResetSliderMarksAndResetsAndTheOneOfCallsMarksAlone)
{
    auto *pReset = Find<QSlider>(pPanel, "Module reset frequency in seconds");
    QTest::keyClick(pReset, Qt::Key_End);
    EXPECT_EQ(DURATION_NEVER, pms->nDuration);
    EXPECT_EQ("Never", pReset->accessibleDescription());
    EXPECT_TRUE(TakeMark());
    EXPECT_TRUE(TakeReset());
    QTest::keyClick(pReset, Qt::Key_Left);
    EXPECT_EQ("180", pReset->accessibleDescription());
    EXPECT_TRUE(TakeMark() && TakeReset());
    auto *pCalls = Find<QSlider>(pPanel, "Number of calls per frame");
    for (const int nWanted : {0, -1}) {
        QTest::keyClick(pCalls, Qt::Key_Left);
        EXPECT_EQ(nWanted, pms->nCallsPerFrame);
        EXPECT_EQ(nWanted ? "1 time per frame" : "Paused", pCalls->accessibleDescription());
        EXPECT_TRUE(TakeMark());
    }
    EXPECT_FALSE(TakeReset());
    EXPECT_EQ("180", pReset->accessibleDescription());
}

TEST_F(ModulePanelTest, EachMovementOfADragActsAtOnceAndAnEndOfTheNodeEndsIt)
{
    auto *pReset = Find<QSlider>(pPanel, "Module reset frequency in seconds");
    pReset->setSliderDown(true);
    for (const int n : {40, 70, 100}) {
        pReset->setSliderPosition(n);
        EXPECT_EQ(static_cast<u32>(n), pms->nDuration);
        EXPECT_TRUE(TakeReset());
    }
    RunTreeCommand(tree, NodeOf(pms), TreeCommand::Remove);
    pReset->setSliderPosition(120);
    pReset->setSliderDown(false);
    Turn();
    EXPECT_EQ(0, lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER]);
}

// The panels of planes

TEST_F(StructurePanels, APlanesOwnButtonRemovesItAndClosesEveryPanelOfThePreset)
{
    UsePlanes(2);
    ModuleSlot *pms = AddIdle(MODULEINDEX_DRAWPAINTER);
    std::vector<QPointer<Panel>> panels = {Open(PlanesNode()), Open(NodeOf(pms)), Open(NthPlaneNode(tree, 0)),
                                           Open(NthPlaneNode(tree, 1)), Open(ListNode(OBJECT_DRAWPAINTERTREE))};
    for (Panel *pPanel : panels)
        Click(pPanel, "Pin");
    EXPECT_FALSE(TakeMark());
    Click(panels[3], "Remove Plane");
    EXPECT_EQ(1, lppsi->nPlanes);
    EXPECT_TRUE(TakeMark());
    for (Panel *pPanel : panels) {
        ASSERT_TRUE(pPanel) << "deleted under its own button";
        EXPECT_EQ(nullptr, pPanel->Node());
        EXPECT_FALSE(pPanel->isVisible());
    }
    Turn();
    for (const auto &pPanel : panels)
        EXPECT_FALSE(pPanel);
    CheckTree();
}

TEST_F(StructurePanels, ThePlanesPanelShowsFourColumnsAndFollowsWhatItsButtonsDo)
{
    UsePlanes(1);
    Panel *pPanel = Open(PlanesNode());
    const auto boxes = [&] {
        QString s;
        for (i32 i = 1; i <= PLANES_MAX; i++)
            s += Find<QLineEdit>(pPanel, qPrintable(QStringLiteral("Plane %1").arg(i)))->text() + u'|';
        return s;
    };
    EXPECT_EQ("Plane 1\t [Indexed]|Plane 2\t [Unused]|Plane 3\t [Unused]|Plane 4\t [Unused]|", boxes());
    Click(pPanel, "Add RGB Plane");
    EXPECT_EQ("Plane 1\t [Indexed]|Plane 2\t [RGB]|Plane 3\t [Unused]|Plane 4\t [Unused]|", boxes());
    Click(pPanel, "Move Right");
    EXPECT_EQ("Plane 1\t [RGB]|Plane 2\t [Indexed]|Plane 3\t [Unused]|Plane 4\t [Unused]|", boxes());
    Click(pPanel, "Add Indexed Plane");
    Click(pPanel, "Add Indexed Plane");
    TakeMark();
    Click(pPanel, "Add Indexed Plane");
    EXPECT_EQ(PLANES_MAX, lppsi->nPlanes);
    EXPECT_FALSE(TakeMark()) << "a fifth plane";
    Click(pPanel, "Pause Plane Drawing");
    EXPECT_TRUE(lppsi->psPlane[0]->bPaused);
    EXPECT_NE(nullptr, Find<QAbstractButton>(pPanel, "Resume Plane Drawing"));
    EXPECT_FALSE(TakeMark());
    Click(pPanel, "Remove Plane");
    EXPECT_EQ("Plane 1\t [Indexed]|Plane 2\t [Indexed]|Plane 3\t [Indexed]|Plane 4\t [Unused]|", boxes());
    EXPECT_FALSE(Find<QAbstractButton>(pPanel, "Remove Plane", 3)->isEnabled());
    EXPECT_TRUE(TakeMark());
    EXPECT_EQ(pPanel, PlanesNode()->Info.hPanel) << "it stays";
}

TEST_F(StructurePanels, APreviewShowsThePlanesOutputWithItsTopAboveAndFollowsAResize)
{
    UsePlanes(1);
    Panel *pPanel = Open(NthPlaneNode(tree, 0));
    auto *pPreview = Find<PlanePreview>(pPanel, "Picture of plane 1");
    const auto fill = [&](u32 dwBelow, u32 dwAbove) {
        const HostBitmap *hbm = lppsi->psPlane[0]->Info.hbmResolved;
        const i32 nHalf = hbm->nWidth * (hbm->nHeight / 2);
        std::fill_n(BitmapPixels(hbm), nHalf, dwBelow);
        std::fill_n(BitmapPixels(hbm) + nHalf, hbm->nWidth * hbm->nHeight - nHalf, dwAbove);
    };
    const auto shows = [&](QRgb below, QRgb above) {
        return [=] {
            const QImage picture = pPreview->window()
                                       ->grab(QRect(pPreview->mapTo(pPreview->window(), QPoint()), pPreview->size()))
                                       .toImage();
            return picture.pixel(picture.width() / 2, 3) == above &&
                   picture.pixel(picture.width() / 2, picture.height() - 4) == below;
        };
    };
    fill(0x00FF0000, 0x000000FF);
    EXPECT_TRUE(HoldsWithin(2000, shows(qRgb(255, 0, 0), qRgb(0, 0, 255))));
    GlobalSettings.nBufferWidth = 640;
    HostBitmap *&hbm = lppsi->psPlane[0]->Info.hbmResolved;
    DeleteBitmap(hbm);
    hbm = CreateBitmap(640, 360);
    fill(0x0000FF00, 0x00FFFFFF);
    EXPECT_TRUE(HoldsWithin(2000, shows(qRgb(0, 255, 0), qRgb(255, 255, 255))));
    DeleteBitmap(hbm);
    hbm = CreateBitmap(131, 129);
}

TEST_F(StructurePanels, AThreadThatHangsInAPlaneLeavesItsPanelsInPeace)
{
    UsePlanes(2);
    Hang();
    Panel *pPlane = Open(NthPlaneNode(tree, 0));
    Panel *pList = Open(ListNode(OBJECT_DRAWPAINTERTREE));
    Panel *pModule = Open(NodeOf(pmsHanging));
    BitmapPixels(lppsi->psPlane[0]->Info.hbmDraw)[0] = 7;
    Click(pPlane, "Clear Plane");
    EXPECT_EQ(7u, BitmapPixels(lppsi->psPlane[0]->Info.hbmDraw)[0]) << "refused";
    ClickRow(InUse(pList), 0);
    QTest::keyClick(InUse(pList), Qt::Key_Delete);
    EXPECT_EQ(1u, Texts(InUse(pList)).size());
    auto *pReset = Find<QSlider>(pModule, "Module reset frequency in seconds");
    QTest::keyClick(pReset, Qt::Key_Home);
    HoldsWithin(250, [] { return false; });
    EXPECT_EQ(static_cast<int>(pmsHanging->nDuration), pReset->value()) << "it says what stands";
    LetGo();
    Click(pPlane, "Clear Plane");
    EXPECT_EQ(0u, BitmapPixels(lppsi->psPlane[0]->Info.hbmDraw)[0]);
}

// The panel of a module list

TEST_F(StructurePanels, SelectedRowsAreAddedByButtonKeyAndDoubleClick)
{
    UsePlanes(1);
    Panel *pPanel = Open(ListNode(OBJECT_DRAWPAINTERTREE));
    ModuleListView *pOnOffer = OnOffer(pPanel);
    Click(pPanel, "Add Module");
    EXPECT_FALSE(TakeMark()) << "nothing is selected";
    QTest::keyClick(pOnOffer, Qt::Key_A, Qt::ControlModifier);
    Click(pPanel, "Add Module");
    EXPECT_EQ((std::vector<QString>{"Recorder", "Idle"}), Texts(InUse(pPanel)));
    ClickRow(pOnOffer, 0);
    QTest::keyClick(pOnOffer, Qt::Key_Return);
    QTest::keyClick(pOnOffer, Qt::Key_Insert);
    const QRect rect = pOnOffer->visualRect(pOnOffer->model()->index(1, 0));
    QTest::mouseDClick(pOnOffer->viewport(), Qt::LeftButton, {}, rect.topLeft() + QPoint(3, 3));
    EXPECT_EQ((std::vector<QString>{"Recorder", "Idle", "Recorder", "Recorder", "Idle"}), Texts(InUse(pPanel)));
    QTest::mouseDClick(pOnOffer->viewport(), Qt::LeftButton, {}, pOnOffer->viewport()->rect().bottomLeft());
    EXPECT_EQ(5u, Texts(InUse(pPanel)).size()) << "there is no row";
    EXPECT_TRUE(TakeMark());
    EXPECT_EQ(5u, ListNode(OBJECT_DRAWPAINTERTREE)->apChild.size());
}

TEST_F(StructurePanels, AMovedSlotStaysSelectedAndARemovedOneIsNot)
{
    UsePlanes(1);
    Add(MODULEINDEX_DRAWPAINTER);
    Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pms = AddIdle(MODULEINDEX_DRAWPAINTER);
    Panel *pPanel = Open(ListNode(OBJECT_DRAWPAINTERTREE));
    ModuleListView *pInUse = InUse(pPanel);
    Click(pPanel, "Remove Module");
    EXPECT_EQ(3u, Texts(pInUse).size()) << "nothing is selected";
    ClickRow(pInUse, 2);
    for (int iRow = 1; iRow >= 0; iRow--) {
        Click(pPanel, "Move Up");
        ASSERT_EQ(1u, pInUse->SelectedRows().size());
        EXPECT_EQ(pms, pInUse->SelectedRows()[0]->pms);
        EXPECT_EQ(iRow, pInUse->currentIndex().row());
    }
    Click(pPanel, "Move Down");
    RunTreeCommand(tree, NodeOf(pms), TreeCommand::MoveDown); // by somebody else
    EXPECT_EQ(2, pInUse->currentIndex().row());
    QTest::keyClick(pInUse, Qt::Key_Delete);
    EXPECT_EQ(nullptr, NodeOf(pms));
    EXPECT_TRUE(pInUse->SelectedRows().empty());
}

TEST_F(StructurePanels, AHeadingSortsAndFlipsAndKeepsTheSelection)
{
    UsePlanes(1);
    Panel *pPanel = Open(ListNode(OBJECT_DRAWPAINTERTREE));
    ModuleListView *pOnOffer = OnOffer(pPanel);
    ClickRow(pOnOffer, 0);
    const auto clickHeading = [&] {
        QTest::mouseClick(pOnOffer->header()->viewport(), Qt::LeftButton, {}, QPoint(10, 5));
        return Texts(pOnOffer);
    };
    EXPECT_EQ((std::vector<QString>{"Idle", "Recorder"}), clickHeading());
    EXPECT_EQ(1, pOnOffer->currentIndex().row());
    EXPECT_EQ((std::vector<QString>{"Recorder", "Idle"}), clickHeading());
    EXPECT_EQ(0, pOnOffer->SelectedRows()[0] - &static_cast<ModuleRows *>(pOnOffer->model())->Rows()[0]);
    const int nWidth = pOnOffer->viewport()->width();
    EXPECT_EQ(nWidth / 4, pOnOffer->header()->sectionSize(MODULE_COLUMN_NAME));
    EXPECT_EQ(nWidth / 4, pOnOffer->header()->sectionSize(MODULE_COLUMN_TYPE));
    EXPECT_EQ(nWidth, pOnOffer->header()->sectionSize(MODULE_COLUMN_DESCRIPTION));
}

TEST_F(StructurePanels, NamesAreShownAsTheyAreAndEscapeClosesFromEverywhere)
{
    CopyText(Described(u"Idle.dll").szName, u"<b>A</b> & B\tC");
    UsePlanes(1);
    AddIdle(MODULEINDEX_DRAWPAINTER);
    TreeNode *pNode = ListNode(OBJECT_DRAWPAINTERTREE);
    QPointer<Panel> pPanel = Open(pNode);
    EXPECT_TRUE(Texts(InUse(pPanel))[0].startsWith("<b>A</b> & B"));
    EXPECT_TRUE(Texts(OnOffer(pPanel))[1].startsWith("<b>A</b> & B"));
    QTest::keyClick(OnOffer(pPanel), Qt::Key_Escape);
    Turn();
    EXPECT_FALSE(pPanel);
    EXPECT_EQ(nullptr, pNode->Info.hPanel);
}

// All of them

TEST_F(StructurePanels, EveryControlSaysItsNameAndTakesTheKeyboard)
{
    UsePlanes(4);
    ModuleSlot *pms = AddIdle(MODULEINDEX_DRAWPAINTER);
    for (TreeNode *pNode :
         {PlanesNode(), NthPlaneNode(tree, 0), NodeOf(pms), ListNode(OBJECT_DRAWPAINTERTREE), PostProcNode()}) {
        const Panel *pPanel = Open(pNode);
        for (const QWidget *p : pPanel->findChildren<QWidget *>()) {
            const bool bControl = qobject_cast<const QAbstractButton *>(p) || qobject_cast<const QSlider *>(p) ||
                                  qobject_cast<const QLineEdit *>(p) || dynamic_cast<const ModuleListView *>(p);
            if (!bControl || p->objectName().startsWith(QStringLiteral("qt_")))
                continue;
            EXPECT_FALSE(p->accessibleName().isEmpty() && TextOf(p).isEmpty()) << p->metaObject()->className();
            EXPECT_TRUE(p->focusPolicy() & Qt::TabFocus) << qPrintable(p->accessibleName());
        }
    }
}

TEST_F(StructurePanels, ASwitchOfPresetsUnderAllPanelsClosesThem)
{
    for (int i = 0; i < 3; i++) {
        UsePlanes(4);
        ModuleSlot *pms = AddIdle(MODULEINDEX_DRAWPAINTER);
        std::vector<QPointer<Panel>> panels;
        for (TreeNode *pNode : AllNodes(tree.pRoot))
            if (pNode != tree.pRoot && PanelKindOf(pNode) >= PanelKind::Module &&
                PanelKindOf(pNode) < PanelKind::Colors)
                panels.push_back(Open(pNode));
        ASSERT_EQ(1u + 4 + 4 * 9 + 1 + 1, panels.size()) << ToUtf8(pms->pszDll);
        UsePreset(nullptr);
        Turn();
        for (const auto &pPanel : panels)
            EXPECT_FALSE(pPanel);
    }
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
