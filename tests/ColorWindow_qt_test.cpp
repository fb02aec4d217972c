// ColorWindow_qt_test.cpp -- tests ColorWindow_qt.cpp over the planes of a real preset, opened from menu and tree
#include "controls/panels/ColorWindow_qt.h"

#include "controls/panels/ColorStrips.h"
#include "controls/panels/PanelHost_qt.h"
#include "engine/PresetDocument.h"
#include "tests/TreeFixture.h"
#include "tests/WindowFixture.h"
#include "toolkit/DarkStyle_qt.h"

#include <QCheckBox>
#include <QTest>

namespace {

class PaintCounter : public QObject {
  public:
    int nPaints = 0;

  protected:
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        nPaints += pEvent->type() == QEvent::Paint;
        return false;
    }
};

class ColorWindowTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        SetDefaultUIColors();
        RegisterWindow(ColorWindowKind);
        MakePreset(2);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
        BuildPresetTree(tree, lppsi);
        for (i32 i = 0; i < 2; i++)
            Color(i, i ? 0xFF0000 : 0x00FF00);
        owner.show();
    }
    void TearDown() override
    {
        for (QWidget *pChild : owner.findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
            delete pChild;
        BuildPresetTree(tree, nullptr);
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        ForgetWindowLayouts();
        TreeTest::TearDown();
    }
    void Color(i32 iPlane, u32 dwColor)
    {
        PlaneInfo &pi = lppsi->psPlane[iPlane]->Info;
        std::fill_n(pi.lpColorTable, 256, dwColor);
        pi.nColors = 256;
    }
    QWidget *Window() const
    {
        const WindowLayout *pLayout = FindWindowLayout(PALETTE_WINDOW);
        return pLayout && pLayout->bOpen ? static_cast<QWidget *>(pLayout->hWnd) : nullptr;
    }
    QWidget *Open()
    {
        auto *pWindow = static_cast<QWidget *>(OpenWindow(PALETTE_WINDOW, &owner, 1));
        EXPECT_TRUE(QTest::qWaitForWindowActive(pWindow));
        return pWindow;
    }
    QWidget *View() const
    {
        for (QWidget *p : Window()->findChildren<QWidget *>())
            if (p->accessibleName() == QLatin1String("Colors of the planes"))
                return p;
        return nullptr;
    }
    // The colours down the middle of the view, each run of one colour once: "00ff00 000000 ff0000".
    std::string Down() const
    {
        const QImage picture = View()->grab().toImage();
        std::string s, sLast;
        for (int y = 0; y < picture.height(); y++) {
            const std::string sPixel = picture.pixelColor(picture.width() / 2, y).name().mid(1).toStdString();
            if (sPixel != sLast)
                s += (s.empty() ? "" : " ") + sPixel;
            sLast = sPixel;
        }
        return s;
    }
    static void WaitTimer()
    {
        QTest::qWait(4 * COLOR_TIMER_MS);
    }
    const TreeNode *ColorNode(u32 nPlane) const
    {
        return ChildOfType(NthPlaneNode(tree, nPlane), OBJECT_COLORTREE);
    }

    QWidget owner;
};

TEST_F(ColorWindowTest, ShowsAStripForEachPlaneAndFollowsThem)
{
    GlobalSettings.ShowMP = 0;
    QWidget *pWindow = Open();
    EXPECT_EQ("Color Palettes", pWindow->windowTitle().toStdString());
    EXPECT_EQ("00ff00 000000 ff0000", Down());
    Color(0, 0xFF0000FF);
    WaitTimer();
    EXPECT_EQ("0000ff 000000 ff0000", Down());
    AddPlane(lppsi, 1, 0);
    Color(2, 0xFFFFFF);
    lppsi->psPlane[1]->Info.nColors = 0;
    WaitTimer();
    EXPECT_EQ("0000ff 000000 ffffff", Down()) << "a plane without colours leaves its place empty";
    BuildPresetTree(tree, nullptr);
    SwitchPreset(nullptr, nullptr);
    lppsi = nullptr;
    WaitTimer();
    EXPECT_EQ("000000", Down());
}

TEST_F(ColorWindowTest, EachBoxSwitchesItsSettingAndShowsItAtOnce)
{
    RemovePlane(lppsi, lppsi->psPlane[1]);
    Color(0, 0x3366CC);
    PaletteInfo &info = *lppsi->psPlane[0]->Info.pPaletteInfo;
    std::fill_n(info.abRed1, PALETTE_COLORS_MAX, u8{0x80});
    std::fill_n(info.abBlue2, PALETTE_COLORS_MAX, u8{0x90});
    QWidget *pWindow = Open();
    std::string sTexts, sDefaults;
    for (const QCheckBox *pBox : pWindow->findChildren<QCheckBox *>()) {
        sTexts += pBox->text().toStdString() + ", ";
        sDefaults += pBox->isChecked() ? '1' : '0';
    }
    EXPECT_EQ("Show Transition Palettes, Separate RGB Components, Display Transition Progress, Show On Single Row, ",
              sTexts);
    EXPECT_EQ("1011", sDefaults);
    EXPECT_EQ("3366cc 800000 000090", Down());
    const auto apBox = pWindow->findChildren<QCheckBox *>();
    QTest::keyClick(apBox[0], Qt::Key_Space);
    EXPECT_EQ(0u, GlobalSettings.ShowMP);
    EXPECT_EQ("3366cc", Down());
    QTest::keyClick(apBox[1], Qt::Key_Space);
    EXPECT_EQ(1u, GlobalSettings.ShowRGB);
    EXPECT_EQ("3366cc 330000 006600 0000cc", Down());
    QTest::keyClick(apBox[2], Qt::Key_Space);
    QTest::keyClick(apBox[3], Qt::Key_Space);
    EXPECT_EQ(0u, GlobalSettings.ShowPrg | GlobalSettings.ShowOneRow);
}

TEST_F(ColorWindowTest, RepaintsOnlyWhatHasChangedAndNothingWhileHidden)
{
    Open();
    PaintCounter counter;
    View()->installEventFilter(&counter);
    WaitTimer();
    counter.nPaints = 0;
    WaitTimer();
    EXPECT_EQ(0, counter.nPaints);
    Color(1, 0x112233);
    WaitTimer();
    EXPECT_EQ(1, counter.nPaints);
    Window()->close();
    Color(1, 0x445566);
    WaitTimer();
    EXPECT_EQ(1, counter.nPaints);
    GlobalSettings.ShowMP = 0;
    Open();
    EXPECT_EQ("00ff00 000000 445566", Down());
}

TEST_F(ColorWindowTest, EachColourNodeOpensTheOneWindowAndNoPanelClosesIt)
{
    owner.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&owner));
    PanelHost host(&tree, &owner);
    auto *pFirst = const_cast<TreeNode *>(ColorNode(0)), *pSecond = const_cast<TreeNode *>(ColorNode(1));
    host.NodeClicked(pFirst, nullptr);
    QWidget *pWindow = Window();
    ASSERT_TRUE(pWindow && pWindow->isVisible());
    host.NodeClicked(pSecond, pFirst);
    host.NodeClicked(tree.pRoot, pSecond);
    EXPECT_EQ(pWindow, Window());
    EXPECT_TRUE(pWindow->isVisible());
    EXPECT_TRUE(pWindow->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_FALSE(pFirst->Info.hPanel) << "it dies with no node";
    host.BringPanel(pSecond);
    EXPECT_TRUE(QTest::qWaitForWindowActive(pWindow));
    QTest::keyClick(pWindow, Qt::Key_Escape);
    EXPECT_FALSE(pWindow->isVisible());
    EXPECT_FALSE(Window());
    host.NodeClicked(pFirst, nullptr);
    EXPECT_TRUE(Window() && Window()->isVisible());
}

TEST_F(ColorWindowTest, TheMarkOfItsCommandStaysWhenItsOwnButtonClosesIt)
{
    RunWindowCommand(PALETTE_WINDOW, &owner);
    EXPECT_TRUE(WindowIsMarked(PALETTE_WINDOW) && WindowIsOpen(PALETTE_WINDOW));
    RunWindowCommand(PALETTE_WINDOW, &owner);
    EXPECT_FALSE(WindowIsMarked(PALETTE_WINDOW) || WindowIsOpen(PALETTE_WINDOW));
    RunWindowCommand(PALETTE_WINDOW, &owner);
    Window()->close();
    EXPECT_TRUE(WindowIsMarked(PALETTE_WINDOW));
    EXPECT_FALSE(WindowIsOpen(PALETTE_WINDOW));
    RunWindowCommand(PALETTE_WINDOW, &owner);
    EXPECT_TRUE(WindowIsOpen(PALETTE_WINDOW)) << "the next use opens it again";
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
