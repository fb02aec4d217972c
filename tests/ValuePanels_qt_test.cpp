// ValuePanels_qt_test.cpp -- the panels of numbers, booleans and item selects over the controls of a real preset
#include "controls/panels/NumberBox_qt.h"
#include "controls/panels/PanelHost_qt.h"
#include "controls/panels/Panel_qt.h"
#include "editing/TreeFollower.h"
#include "engine/PresetDocument.h"
#include "tests/TreeFixture.h"
#include "tests/WindowFixture.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/RangeSlider_qt.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QTest>

#include <limits>

namespace {

constexpr u32 ALL_SOURCES = 31;
constexpr u32 ITEMS = 10000;
constexpr int GIVE_UP_MS = 20000;
constexpr f32 INF = std::numeric_limits<f32>::infinity();
constexpr f32 NOT_A_NUMBER = std::numeric_limits<f32>::quiet_NaN();

struct PaintCounter : QObject {
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        nPaints += pEvent->type() == QEvent::Paint;
        nLayouts += pEvent->type() == QEvent::LayoutRequest;
        return false;
    }
    int nPaints = 0, nLayouts = 0;
};

class ValuePanels : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        SetDefaultUIColors();
        FollowPreset(tree);
        MakePreset(1);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
        pSlot = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
        GiveControls(pSlot, {{u"Count"}, {u"Size"}, {u"On"}, {u"Kind"}});
        SetTypes();
        BuildPresetTree(tree, lppsi);
        pOwner = std::make_unique<QWidget>();
        pHost = std::make_unique<PanelHost>(&tree, pOwner.get());
        Unmark();
    }
    void TearDown() override
    {
        pHost.reset();
        pOwner.reset();
        BuildPresetTree(tree, nullptr);
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        UnfollowPreset(tree);
        TreeTest::TearDown();
    }
    void SetTypes()
    {
        pCount = pSlot->apControl[0];
        pCount->Base.dwType = CONTROLTYPE_INTEGER;
        pCount->Integer = {0, 100, 20, 80, 10, 90, 50, 25, 0, 0, 0};
        pSize = pSlot->apControl[1];
        pSize->Float = {-1, 1, -0.5f, 0.5f, 0.12345f, 0.75f, 0.5f, 0.25f, 0};
        pOn = pSlot->apControl[2];
        pOn->Base.dwType = CONTROLTYPE_BOOLEAN;
        pOn->Boolean = {0.5f, 0.5f, 0, 0};
        pKind = pSlot->apControl[3];
        pKind->Base.dwType = CONTROLTYPE_ITEMSELECT;
        for (u32 i = 0; i < ITEMS; i++)
            Names.push_back(FromUtf8("Item " + std::to_string(i)));
        for (u32 i = 0; i < ITEMS; i++)
            Items.push_back({Names[i].c_str(), i, 0});
        pKind->ItemSelect = {ITEMS, 0, 3, 0, Items.data()};
        for (ControlRecord *pctl : {pCount, pSize, pOn})
            pctl->Base.dwSourceMask = ALL_SOURCES;
        pKind->Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM;
    }
    void Unmark()
    {
        SetPresetChanged(u"Test.vd", 0);
        pSlot->bResetPending = 0;
    }
    // What edits have done since: "m" marked, "r" asked for a reset.
    std::string Effects()
    {
        const std::string s = std::string(bPresetChanged ? "m" : "") + (pSlot->bResetPending ? "r" : "");
        Unmark();
        return s;
    }
    void Open(const ControlRecord *pctl)
    {
        pNode = NodeOf(pctl);
        ASSERT_TRUE(pNode);
        pHost->BringPanel(pNode);
        pPanel = PanelOf(pNode);
        ASSERT_TRUE(pPanel);
        ASSERT_TRUE(QTest::qWaitForWindowActive(pPanel));
        pSlider = static_cast<RangeSelectSlider *>(pNode->Info.hSlider);
    }
    void OpenWith(ControlRecord *pctl, u32 dwSource)
    {
        pctl->Base.dwSource = dwSource;
        Open(pctl);
    }
    template <typename Kind> Kind *Find(const char *pszName) const
    {
        for (Kind *p : pPanel->findChildren<Kind *>())
            if (p->accessibleName() == QLatin1String(pszName))
                return p;
        ADD_FAILURE() << "no " << pszName;
        return nullptr;
    }
    NumberBox *Box(const char *pszName) const
    {
        for (auto *p : pPanel->findChildren<QLineEdit *>())
            if (p->accessibleName() == QLatin1String(pszName))
                return static_cast<NumberBox *>(p);
        ADD_FAILURE() << "no box " << pszName;
        return nullptr;
    }
    std::string TextIn(const char *pszName) const
    {
        return Box(pszName)->text().toStdString();
    }
    QAbstractButton *Button(const char *pszText) const
    {
        for (auto *p : pPanel->findChildren<QAbstractButton *>())
            if (p->text() == QLatin1String(pszText))
                return p;
        return nullptr;
    }
    void Key(Qt::Key eKey) const
    {
        QTest::keyClick(pPanel->windowHandle(), eKey);
    }
    void Type(const char *pszName, const char *pszText) const
    {
        NumberBox *pBox = Box(pszName);
        pBox->setFocus();
        pBox->selectAll();
        Key(Qt::Key_Delete);
        QTest::keyClicks(pBox, QLatin1String(pszText));
    }
    void Choose(const char *pszSource) const
    {
        auto *pSource = Find<QComboBox>("Source");
        pSource->setFocus();
        Key(Qt::Key_Home);
        for (int i = 0; i < pSource->count() && pSource->currentText() != QLatin1String(pszSource); i++)
            Key(Qt::Key_Down);
        EXPECT_EQ(pszSource, pSource->currentText().toStdString());
    }
    // The titles of the sub-panels in view.
    std::string SubPanels() const
    {
        std::string s;
        for (const QGroupBox *pGroup : pPanel->findChildren<QGroupBox *>())
            if (pGroup->isVisible())
                s += pGroup->title().toStdString();
        return s;
    }
    std::string ReadOuts() const
    {
        std::string s;
        for (const QLabel *pLabel : pPanel->findChildren<QLabel *>())
            if (pLabel->isVisible() && pLabel->accessibleName() == QLatin1String("Present Value"))
                s += pLabel->text().toStdString() + " ";
        return s;
    }
    int At(f64 fPart) const
    {
        return static_cast<int>(fPart * pSlider->width());
    }
    template <typename Fn> static bool ComesTrue(Fn isSo)
    {
        return QTest::qWaitFor(isSo, GIVE_UP_MS);
    }
    static void WaitUntilGone(const QPointer<Panel> &pGoing)
    {
        EXPECT_TRUE(ComesTrue([&] {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return pGoing.isNull();
        }));
    }
    void Drag(f64 fFrom, f64 fTo, int y) const
    {
        QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(At(fFrom), y));
        QTest::mouseMove(pSlider, QPoint(At(fTo), y));
        QTest::mouseRelease(pSlider, Qt::LeftButton, {}, QPoint(At(fTo), y));
    }

    std::vector<std::u16string> Names;
    std::vector<ItemSelectRow> Items;
    ModuleSlot *pSlot = nullptr;
    ControlRecord *pCount = nullptr, *pSize = nullptr, *pOn = nullptr, *pKind = nullptr;
    std::unique_ptr<QWidget> pOwner;
    std::unique_ptr<PanelHost> pHost;
    TreeNode *pNode = nullptr;
    Panel *pPanel = nullptr;
    RangeSelectSlider *pSlider = nullptr;
};

constexpr int UPPER = 3; // rows of a slider in which the low thumb alone can be hit

TEST_F(ValuePanels, ANumberBeyondTheRangeGoesToTheLimitAndStaysToBeSeen)
{
    Open(pCount);
    Type("Value", "9999");
    EXPECT_EQ(50, pCount->Integer.nValue) << "the focus is still there";
    Key(Qt::Key_Tab);
    EXPECT_EQ(100, pCount->Integer.nValue);
    EXPECT_EQ(100, pSlider->Info.fValue);
    EXPECT_EQ("9999", TextIn("Value"));
    EXPECT_EQ("m", Effects());
    PanelRefresh.Tell();
    EXPECT_EQ("100", TextIn("Value"));

    OpenWith(pSize, FLUIDSOURCE_WAVE);
    Type("Minimum", "-7,5");
    Key(Qt::Key_Return);
    EXPECT_EQ(-1, pSize->Float.fMin);
    EXPECT_EQ(-1, pSlider->Info.fRangeLow);
}

TEST_F(ValuePanels, WhatIsNoNumberAndAMereLookChangeNothing)
{
    Open(pCount);
    for (const char *psz : {"", "abc", "1.5", "0x10"}) {
        Type("Value", psz);
        Key(Qt::Key_Tab);
        EXPECT_EQ(50, pCount->Integer.nValue) << psz;
    }
    OpenWith(pSize, FLUIDSOURCE_SOUND);
    for (const char *psz : {"", "nan", "inf"}) {
        Type("Maximum", psz);
        Key(Qt::Key_Tab);
        EXPECT_EQ(0.75f, pSize->Float.fMax) << psz;
    }
    EXPECT_EQ("0.1", TextIn("Minimum"));
    Box("Minimum")->setFocus();
    Key(Qt::Key_Tab);
    EXPECT_EQ(0.12345f, pSize->Float.fMin) << "the box shows less than there is";
    EXPECT_EQ("", Effects());
}

TEST_F(ValuePanels, TheSourceSwapsBoxesReadOutAndSubPanel)
{
    Open(pSize);
    const auto check = [&](const char *pszSource, u32 dwSource, const char *pszSub) {
        const bool bFixed = dwSource == FLUIDSOURCE_FIXED;
        Choose(pszSource);
        EXPECT_EQ(dwSource, pSize->Base.dwSource);
        EXPECT_EQ(bFixed, Box("Value")->isVisible());
        EXPECT_NE(bFixed, Box("Minimum")->isVisible());
        EXPECT_NE(bFixed, Box("Maximum")->isVisible());
        EXPECT_NE(bFixed, Button("Min/Max")->isEnabled());
        EXPECT_NE(bFixed, pSlider->Info.bRangeMode != 0);
        EXPECT_EQ("0.500 ", ReadOuts());
        EXPECT_EQ(pszSub, SubPanels());
        EXPECT_EQ("m", Effects());
    };
    check("Wave", FLUIDSOURCE_WAVE, "Waveform Settings");
    check("Fixed Value", FLUIDSOURCE_FIXED, "");
    check("Periodically Randomized", FLUIDSOURCE_PERIODIC, "Random Value Settings");
    check("Randomly Initialized", FLUIDSOURCE_RANDOM, "");
    check("Sound", FLUIDSOURCE_SOUND, "Sound Settings");
    EXPECT_FALSE(Button("Only Even") || Button("Only Odd")) << "these are for integers";
}

TEST_F(ValuePanels, OnlyAControlThatCannotBeAnimatedRestartsItsModule)
{
    pCount->Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM;
    Open(pCount);
    Choose("Randomly Initialized");
    EXPECT_EQ("mr", Effects());
    Type("Minimum", "11");
    Key(Qt::Key_Tab);
    EXPECT_EQ("mr", Effects());
    Button("Min/Max")->click();
    EXPECT_EQ("m", Effects());
    EXPECT_EQ(1u, pCount->Integer.bMinMax);
}

TEST_F(ValuePanels, EvenAndOddExcludeEachOther)
{
    OpenWith(pCount, FLUIDSOURCE_WAVE);
    Button("Only Even")->click();
    EXPECT_EQ(1u, pCount->Integer.bOnlyEven);
    Button("Only Odd")->click();
    EXPECT_EQ(0u, pCount->Integer.bOnlyEven);
    EXPECT_EQ(1u, pCount->Integer.bOnlyOdd);
    EXPECT_FALSE(Button("Only Even")->isChecked());
    EXPECT_TRUE(Button("Only Odd")->isChecked());
}

TEST_F(ValuePanels, WhatDependsOnTheControlIsPaintedAnew)
{
    std::vector<TreeNode *> apPainted;
    const auto hear = [](const TreeNews &news, void *pv) {
        if (news.eKind == TreeNewsKind::BranchChanged)
            static_cast<std::vector<TreeNode *> *>(pv)->push_back(news.pNode);
    };
    const auto paintsAll = [&] {
        const auto holds = [&](const TreeNode *p) { return IsInBranch(pNode->pParent->pParent, p); };
        const bool bAll = std::any_of(apPainted.begin(), apPainted.end(), holds);
        apPainted.clear();
        return bAll;
    };
    Open(pCount);
    tree.TreeListeners.Add(hear, &apPainted);
    Type("Value", "40");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(paintsAll());
    Drag(0.4, 0.2, UPPER);
    EXPECT_EQ(20, pCount->Integer.nValue);
    EXPECT_TRUE(paintsAll());
    tree.TreeListeners.Remove(hear, &apPainted);
}

TEST_F(ValuePanels, ADragWritesAllThreeNumbersAndShowsThemInFull)
{
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    EXPECT_EQ("0.1", TextIn("Minimum"));
    Drag(0.5617, 0.75, UPPER);
    EXPECT_NEAR(0.5, static_cast<f64>(pSize->Float.fMin), 0.02);
    EXPECT_EQ(QString::number(static_cast<f64>(pSize->Float.fMin), 'f', 5).toStdString(), TextIn("Minimum"));
    EXPECT_EQ("0.75000", TextIn("Maximum"));
    EXPECT_EQ("0.50000", TextIn("Value"));
    EXPECT_EQ("m", Effects());
}

// A drag knows its record; a single edit would go to whatever stands at the place.
TEST_F(ValuePanels, ADragIsOneEditOfOneRecord)
{
    Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
    BuildPresetTree(tree, lppsi);
    Open(pCount);
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(At(0.5), UPPER));
    QTest::mouseMove(pSlider, QPoint(At(0.6), UPPER));
    EXPECT_NEAR(60, pCount->Integer.nValue, 1);
    const i32 nDragged = pCount->Integer.nValue;
    RunPresetEdit(MakeEdit(EditKind::MoveModule, ModulePlace(ListPlace(0, MODULEINDEX_DRAWFULL), 0), 1));
    QTest::mouseMove(pSlider, QPoint(At(0.8), UPPER));
    EXPECT_EQ(nDragged, pCount->Integer.nValue);
    QTest::mouseRelease(pSlider, Qt::LeftButton, {}, QPoint(At(0.8), UPPER));
    Drag(nDragged / 100.0, 0.9, UPPER);
    EXPECT_NEAR(90, pCount->Integer.nValue, 1) << "the next drag finds the record where it is now";
}

TEST_F(ValuePanels, ADragWritesEachStepAtOnceAndPaintsAtMostOnceAFrame)
{
    OpenWith(pCount, FLUIDSOURCE_WAVE);
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(At(0.1), UPPER));
    QCoreApplication::processEvents();
    PaintCounter slider, box, panel;
    pSlider->installEventFilter(&slider);
    Box("Minimum")->installEventFilter(&box);
    pPanel->installEventFilter(&panel);
    QElapsedTimer timer;
    timer.start();
    int nSteps = 0;
    for (; timer.elapsed() < 320; nSteps++) {
        const int x = At(0.2) + nSteps % At(0.5);
        QTest::mouseMove(pSlider, QPoint(x, UPPER));
        ASSERT_NEAR(100.0 * x / pSlider->width(), pCount->Integer.nMin, 0.5001);
        QCoreApplication::processEvents();
    }
    const i64 nFrames = timer.elapsed() / 16 + 4; // and some that the panel's own timer asks for
    EXPECT_GT(nSteps, nFrames);
    EXPECT_LE(slider.nPaints, nFrames + 4);
    EXPECT_LE(box.nPaints, nFrames);
    EXPECT_GE(box.nPaints, 2);
    EXPECT_EQ(0, panel.nLayouts);
    QTest::mouseMove(pSlider, QPoint(At(0.1), UPPER));
    QTest::mouseRelease(pSlider, Qt::LeftButton, {}, QPoint(At(0.1), UPPER));
    EXPECT_EQ(std::to_string(pCount->Integer.nMin), TextIn("Minimum"));
}

TEST_F(ValuePanels, ClosingTakesOverWhatIsBeingTyped)
{
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    Type("Maximum", "0,25");
    Key(Qt::Key_Escape);
    EXPECT_EQ(0.25f, pSize->Float.fMax);
    EXPECT_FALSE(PanelOf(pNode));
    EXPECT_FALSE(pNode->Info.hSlider);
}

TEST_F(ValuePanels, ARefreshKeepsWhatIsBeingTypedAndFillsTheRest)
{
    pCount->Base.dwDefaultSource = FLUIDSOURCE_WAVE;
    OpenWith(pCount, FLUIDSOURCE_WAVE);
    Type("Minimum", "4");
    RunTreeCommand(tree, pNode, TreeCommand::RestoreItem);
    EXPECT_EQ("4", TextIn("Minimum"));
    EXPECT_EQ("80", TextIn("Maximum"));
    Key(Qt::Key_Tab);
    EXPECT_EQ(4, pCount->Integer.nMin);
    RunTreeCommand(tree, pNode, TreeCommand::RestoreItem);
    EXPECT_EQ("20", TextIn("Minimum")) << "the focus has left it";
}

TEST_F(ValuePanels, TheSliderAndTheHiddenBoxesFollowTheRecord)
{
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    pSize->Float.fValue = -0.125f;
    pSize->Float.fMin = -0.75f;
    EXPECT_TRUE(ComesTrue([&] { return TextIn("Value") == "-0.12500"; }));
    EXPECT_EQ("-0.125 ", ReadOuts());
    EXPECT_EQ(-0.125f, pSlider->Info.fValue);
    EXPECT_EQ(-0.75f, pSlider->Info.fRangeLow);
    EXPECT_EQ("0.1", TextIn("Minimum")) << "a box in view is the user's";
}

TEST_F(ValuePanels, KeysStepABoxFromWhatStandsInIt)
{
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    Box("Minimum")->setFocus();
    Key(Qt::Key_Up);
    EXPECT_FLOAT_EQ(0.12545f, pSize->Float.fMin) << "of the record, of which the box shows less";
    Type("Minimum", "0.5");
    Key(Qt::Key_PageDown);
    EXPECT_FLOAT_EQ(0.48f, pSize->Float.fMin);
    EXPECT_EQ("0.48000", TextIn("Minimum"));
    Open(pCount);
    Type("Value", "98");
    Key(Qt::Key_Up);
    Key(Qt::Key_Up);
    Key(Qt::Key_Up);
    EXPECT_EQ("100", TextIn("Value"));
    pSlider->setFocus();
    Key(Qt::Key_Left);
    EXPECT_EQ(99, pCount->Integer.nValue);
}

TEST_F(ValuePanels, ADoubleClickOnAThumbRestoresItsDefault)
{
    OpenWith(pCount, FLUIDSOURCE_WAVE);
    QTest::mouseDClick(pSlider, Qt::LeftButton, {}, QPoint(At(0.9), pSlider->height() - 2));
    EXPECT_EQ(80, pCount->Integer.nMax);
    EXPECT_EQ("80", TextIn("Maximum"));
    EXPECT_EQ(10, pCount->Integer.nMin);
}

TEST_F(ValuePanels, APanelOutlivesItsModule)
{
    const PresetEdit remove = MakeEdit(EditKind::RemoveModule, ModulePlace(ListPlace(0, MODULEINDEX_DRAWFULL), 0));
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    pNode->Info.bPinned = 1;
    Open(pCount);
    Type("Value", "12");
    const QPointer<Panel> pTyped(pPanel);
    OpenWith(pSize, FLUIDSOURCE_WAVE);
    const QPointer<Panel> pDragged(pPanel);
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(At(0.5617), UPPER));
    QTest::mouseMove(pSlider, QPoint(At(0.7), UPPER));
    pTyped->activateWindow();
    EXPECT_EQ(EditResult::Done, RunPresetEdit(remove));
    if (pDragged)
        QTest::mouseMove(pSlider, QPoint(At(0.8), UPPER));
    WaitUntilGone(pTyped);
    WaitUntilGone(pDragged);
}

TEST_F(ValuePanels, APanelThatIsDraggedAndTypedInGoesWithItsHost)
{
    OpenWith(pCount, FLUIDSOURCE_WAVE);
    Type("Minimum", "55");
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(At(0.1), UPPER));
    for (int i = 0; i < 3; i++)
        QTest::mouseMove(pSlider, QPoint(At(0.2 + 0.1 * i), UPPER));
    Box("Maximum")->setFocus();
    QTest::keyClicks(Box("Maximum"), QStringLiteral("1"));
    pHost.reset();
    EXPECT_FALSE(PanelOf(pNode));
    EXPECT_EQ(90, pCount->Integer.nMax);
}

TEST_F(ValuePanels, StrangeRangesAreShownAndTakeWhatTheyCan)
{
    const ControlFloat aStrange[] = {
        {1, -1, 1, -1, 1, -1, 0, 0, 0},
        {3, 3, 3, 3, 3, 3, 3, 3, 0},
        {-INF, INF, 0, 1, -INF, INF, 5, 0, 0},
        {NOT_A_NUMBER, NOT_A_NUMBER, 0, 1, NOT_A_NUMBER, 0, NOT_A_NUMBER, NOT_A_NUMBER, 0},
        {-3e38f, 3e38f, 0, 1, -3e38f, 3e38f, 0, 0, 0},
    };
    for (const ControlFloat &strange : aStrange)
        for (const u32 dwSource : {u32{FLUIDSOURCE_FIXED}, u32{FLUIDSOURCE_SOUND}}) {
            pSize->Float = strange;
            OpenWith(pSize, dwSource);
            for (const f64 f : {0.0, 0.5, 0.99})
                Drag(f, 1 - f, pSlider->height() / 2);
            pSlider->setFocus();
            Key(Qt::Key_Right);
            const char *pszBox = dwSource == FLUIDSOURCE_FIXED ? "Value" : "Maximum";
            Type(pszBox, "2");
            Key(Qt::Key_Up);
            Key(Qt::Key_Tab);
            const f32 f = dwSource == FLUIDSOURCE_FIXED ? pSize->Float.fValue : pSize->Float.fMax;
            EXPECT_TRUE(std::isfinite(f));
            pPanel->ClosePanel();
        }
    pCount->Integer = {100, 0, 0, 0, 100, 0, 50, 50, 0, 0, 0};
    Open(pCount);
    Drag(0.5, 0.9, UPPER);
    Type("Value", "-3");
    Key(Qt::Key_Tab);
    EXPECT_EQ(0, pCount->Integer.nValue) << "the upper limit wins";
}

TEST_F(ValuePanels, ABooleanFollowsItsSourceAndIsSetWhereItIsFixed)
{
    Open(pOn);
    auto *pState = Find<QAbstractButton>("State");
    EXPECT_EQ("False/Off", pState->text().toStdString());
    QTest::mouseClick(pState, Qt::LeftButton);
    EXPECT_EQ(1u, pOn->Boolean.bState);
    EXPECT_EQ("True/On", pState->text().toStdString());
    EXPECT_EQ("m", Effects());
    Choose("Sound");
    EXPECT_FALSE(pState->isEnabled());
    EXPECT_EQ("Sound Settings", SubPanels());
    pOn->Boolean.bState = 0;
    EXPECT_TRUE(ComesTrue([&] { return pState->text() == QLatin1String("False/Off"); }));
    EXPECT_FALSE(pState->isChecked());
}

TEST_F(ValuePanels, AnItemIsChosenByItsValueFromTenThousand)
{
    Items[7].dwValue = 20000; // no item that can be stored
    Items[8].dwValue = 3;     // a value that is there twice
    Items[9].pszText = nullptr;
    Open(pKind);
    auto *pSelect = Find<QComboBox>("Select");
    EXPECT_EQ(static_cast<int>(ITEMS), pSelect->count());
    EXPECT_EQ("Item 3", pSelect->currentText().toStdString());
    pSelect->setFocus();
    const auto choose = [&](int iRow) {
        pSelect->setCurrentIndex(iRow - 1);
        Key(Qt::Key_Down);
    };
    choose(9998);
    EXPECT_EQ(9998u, pKind->ItemSelect.nCurrentItemValue);
    EXPECT_EQ("mr", Effects());
    for (const int iRow : {7, 9999}) {
        choose(iRow);
        EXPECT_EQ(9998u, pKind->ItemSelect.nCurrentItemValue);
        EXPECT_EQ(9998, pSelect->currentIndex()) << "what cannot be stored is not chosen";
    }
    choose(8);
    EXPECT_EQ(3u, pKind->ItemSelect.nCurrentItemValue);
    EXPECT_EQ(8, pSelect->currentIndex());
    Choose("Randomly Initialized");
    EXPECT_FALSE(pSelect->isEnabled());
    pKind->ItemSelect.nCurrentItemValue = 5;
    EXPECT_TRUE(ComesTrue([&] { return pSelect->currentIndex() == 5; }));
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
