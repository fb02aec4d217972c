// FluidPanels_qt_test.cpp -- tests FluidPanels_qt.cpp and ControlSurface_qt.cpp in a panel over a real control
#include "controls/panels/FluidPanels_qt.h"

#include "controls/panels/ControlSurface_qt.h"
#include "controls/panels/Panel_qt.h"
#include "engine/PresetDocument.h"
#include "tests/TreeFixture.h"
#include "tests/WindowFixture.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/Meters.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

namespace {

constexpr u32 ALL_SOURCES = 31;

// The least that a panel of a control is made of.
class SourcePanel : public Panel {
  public:
    explicit SourcePanel(TreeNode *pNode) : Panel(pNode, nullptr)
    {
        auto *pLayout = new QVBoxLayout;
        pLayout->addWidget(new QLabel(QStringLiteral("Source:")));
        pFluid = new FluidPanels(this);
        pLayout->addWidget(pFluid);
        Finish(pLayout);
    }
    void Choose(u32 dwSource)
    {
        EXPECT_EQ(EditResult::Done, Write(WriteNumber(Place(), EditField::Source, dwSource)));
        pFluid->ShowSource();
    }
    void Fill() override
    {
        pFluid->Fill();
    }
    void Follow() override
    {
        nFollows++;
        pFluid->Follow();
    }

    FluidPanels *pFluid;
    int nFollows = 0;
};

class FluidPanelsTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        SetDefaultUIColors();
        MakePreset(1);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
        ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
        GiveControls(pms, {{u"Speed"}, {u"On"}});
        pctl = pms->apControl[0];
        pctlOn = pms->apControl[1];
        pctlOn->Base.dwType = CONTROLTYPE_BOOLEAN;
        pctlOn->Boolean = {};
        for (ControlRecord *p : {pctl, pctlOn})
            p->Base.dwSourceMask = ALL_SOURCES;
        BuildPresetTree(tree, lppsi);
        pSlot = pms;
        SetPresetChanged(u"Test.vd", 0);
    }
    void TearDown() override
    {
        pPanel.reset();
        BuildPresetTree(tree, nullptr);
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        TreeTest::TearDown();
    }
    void Open(const ControlRecord *p)
    {
        pNode = NodeOf(p);
        ASSERT_TRUE(pNode);
        pPanel = std::make_unique<SourcePanel>(pNode);
        pPanel->setAttribute(Qt::WA_DeleteOnClose, false);
        pPanel->show();
        pPanel->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(pPanel.get()));
    }
    // The titles of the groups in view.
    std::string Shown() const
    {
        std::string s;
        for (const QGroupBox *pGroup : pPanel->findChildren<QGroupBox *>())
            if (pGroup->isVisible())
                s += pGroup->title().toStdString();
        return s;
    }
    template <typename Kind> Kind *Find(const char *pszName) const
    {
        for (Kind *p : pPanel->findChildren<Kind *>())
            if (p->isVisible() && p->accessibleName() == QLatin1String(pszName))
                return p;
        ADD_FAILURE() << "no " << pszName;
        return nullptr;
    }
    QAbstractButton *RandomPhase() const
    {
        for (auto *p : pPanel->findChildren<QAbstractButton *>())
            if (p->text() == QLatin1String("Randomize Wave Phase"))
                return p;
        return nullptr;
    }
    bool Says(const char *pszText) const
    {
        const auto apLabel = pPanel->findChildren<QLabel *>();
        return std::any_of(apLabel.begin(), apLabel.end(),
                           [=](auto *p) { return p->isVisible() && p->text() == QLatin1String(pszText); });
    }
    // Whether the preset was marked since the last question.
    static bool TakeMark()
    {
        const bool bMarked = bPresetChanged != 0;
        SetPresetChanged(u"Test.vd", 0);
        return bMarked;
    }

    std::unique_ptr<SourcePanel> pPanel;
    TreeNode *pNode = nullptr;
    ModuleSlot *pSlot = nullptr;
    ControlRecord *pctl = nullptr, *pctlOn = nullptr;
};

TEST_F(FluidPanelsTest, MakesTheThreeTogetherAndShowsTheOneOfTheSource)
{
    Open(pctl);
    EXPECT_EQ("", Shown());
    EXPECT_FALSE(pNode->Info.hWavePanel || pNode->Info.hSoundPanel || pNode->Info.hRandomPanel);
    const std::pair<u32, const char *> aWanted[] = {
        {FLUIDSOURCE_SOUND, "Sound Settings"},           {FLUIDSOURCE_WAVE, "Waveform Settings"},
        {FLUIDSOURCE_PERIODIC, "Random Value Settings"}, {FLUIDSOURCE_RANDOM, ""},
        {FLUIDSOURCE_WAVE, "Waveform Settings"},         {FLUIDSOURCE_FIXED, ""}};
    for (const auto &[dwSource, pszGroup] : aWanted) {
        pPanel->Choose(dwSource);
        EXPECT_EQ(pszGroup, Shown());
        EXPECT_TRUE(pNode->Info.hWavePanel && pNode->Info.hSoundPanel && pNode->Info.hRandomPanel);
    }
    pPanel->close();
    EXPECT_FALSE(pNode->Info.hWavePanel || pNode->Info.hSoundPanel || pNode->Info.hRandomPanel);
}

TEST_F(FluidPanelsTest, TheWindowGrowsAndShrinksWithTheSourceAtAnySize)
{
    for (const double fScale : {1.0, 1.6, 0.7}) {
        Open(pctl);
        pPanel->resize(pPanel->size() * fScale);
        const QSize size = pPanel->size();
        QSize grown;
        for (const u32 dwSource : {FLUIDSOURCE_WAVE, FLUIDSOURCE_SOUND, FLUIDSOURCE_PERIODIC}) {
            pPanel->Choose(dwSource);
            grown = grown.isValid() ? grown : pPanel->size();
            EXPECT_NEAR(grown.width(), pPanel->width(), 2) << "all take the same room";
            EXPECT_NEAR(grown.height(), pPanel->height(), 2);
            EXPECT_GT(pPanel->height(), size.height() + static_cast<int>(60 * fScale)) << fScale;
            EXPECT_EQ(pPanel->pFluid->width(), pPanel->findChild<QGroupBox *>()->parentWidget()->width());
            pPanel->Choose(FLUIDSOURCE_FIXED);
            EXPECT_NEAR(size.height(), pPanel->height(), 2) << fScale;
            EXPECT_NEAR(size.width(), pPanel->width(), 2) << fScale;
        }
        pPanel.reset();
    }
}

TEST_F(FluidPanelsTest, AWindowThatGrowsOverTheEdgeOfTheWorkAreaMovesInside)
{
    Open(pctl);
    const QRect work = pPanel->screen()->availableGeometry();
    for (const QPoint from : {work.bottomRight() - QPoint(90, 90), work.topLeft() + QPoint(5, 7)}) {
        pPanel->move(from);
        pPanel->Choose(FLUIDSOURCE_WAVE);
        EXPECT_TRUE(work.contains(pPanel->geometry()));
        EXPECT_EQ(from.x() > 50, pPanel->pos() != from) << "not without need";
        pPanel->Choose(FLUIDSOURCE_FIXED);
    }
}

TEST_F(FluidPanelsTest, APanelThatOpensOnAnAnimatedControlHasItsSubPanelAtOnce)
{
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    pctl->Base.nWavePeriod = 1234;
    Open(pctl);
    EXPECT_EQ("Waveform Settings", Shown());
    EXPECT_TRUE(Says("1234 ms"));
    EXPECT_FALSE(TakeMark()) << "filling is no edit";
    EXPECT_EQ(1234u, pctl->Base.nWavePeriod);
    const int nHeight = pPanel->height();
    pPanel->Choose(FLUIDSOURCE_FIXED);
    EXPECT_LT(pPanel->height(), nHeight - 60);
}

TEST_F(FluidPanelsTest, EachSliderStoresEveryMovementAndSaysIt)
{
    struct {
        u32 dwSource;
        const char *pszName;
        u32 ControlBase::*pnValue;
        int nMin, nMax;
        const char *pszAtMin;
    } const asSlider[] = {
        {FLUIDSOURCE_WAVE, "Wave Period", &ControlBase::nWavePeriod, 400, 120000, "400 ms"},
        {FLUIDSOURCE_SOUND, "Sensitivity", &ControlBase::nSamples, 1, 44, "1"},
        {FLUIDSOURCE_PERIODIC, "Reset Frequency", &ControlBase::nNoisePeriod, 0, 16000, "0 ms"},
    };
    Open(pctl);
    for (const auto &row : asSlider) {
        pPanel->Choose(row.dwSource);
        TakeMark();
        pSlot->bResetPending = 0;
        auto *pSlider = Find<QSlider>(row.pszName);
        ASSERT_TRUE(pSlider);
        EXPECT_EQ(row.nMin, pSlider->minimum());
        EXPECT_EQ(row.nMax, pSlider->maximum());
        pSlider->setSliderDown(true);
        for (const int n : {row.nMax, row.nMin + 1, row.nMax / 2}) {
            pSlider->setSliderPosition(n);
            EXPECT_EQ(static_cast<u32>(n), pctl->Base.*row.pnValue) << row.pszName;
        }
        pSlider->setSliderDown(false);
        EXPECT_TRUE(TakeMark());
        QTest::keyClick(pSlider, Qt::Key_Home);
        EXPECT_EQ(static_cast<u32>(row.nMin), pctl->Base.*row.pnValue);
        EXPECT_TRUE(Says(row.pszAtMin)) << row.pszName;
        EXPECT_TRUE(TakeMark());
        EXPECT_FALSE(pSlot->bResetPending) << "an animated control does not reset its module";
    }
}

TEST_F(FluidPanelsTest, RandomizingThePhaseDrawsOneAndStoppingKeepsIt)
{
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    pctl->Base.bRandomPhase = 0;
    pctl->Base.fWavePhase = 0.25f;
    Open(pctl);
    auto *pBar = Find<QScrollBar>("Wave Phase");
    ASSERT_TRUE(pBar && RandomPhase());
    EXPECT_EQ(7500, pBar->value());
    EXPECT_TRUE(pBar->isEnabled());

    QTest::keyClick(RandomPhase(), Qt::Key_Space);
    EXPECT_EQ(1u, pctl->Base.bRandomPhase);
    const f32 fDrawn = pctl->Base.fWavePhase;
    EXPECT_NE(0.25f, fDrawn);
    EXPECT_FALSE(pBar->isEnabled());
    EXPECT_TRUE(TakeMark());

    QTest::keyClick(RandomPhase(), Qt::Key_Space);
    EXPECT_EQ(0u, pctl->Base.bRandomPhase);
    EXPECT_EQ(fDrawn, pctl->Base.fWavePhase);
    EXPECT_TRUE(pBar->isEnabled());
    EXPECT_EQ(SurfaceBarPosition(fDrawn), pBar->value());
    EXPECT_TRUE(TakeMark());

    pBar->setValue(2000);
    EXPECT_FLOAT_EQ(0.8f, pctl->Base.fWavePhase);
    EXPECT_EQ(2000, pBar->value());
    EXPECT_TRUE(TakeMark());
}

TEST_F(FluidPanelsTest, ABooleanHasAThresholdBarInAllThreeAndMovingItMarksThePreset)
{
    Open(pctlOn);
    for (const u32 dwSource : {FLUIDSOURCE_WAVE, FLUIDSOURCE_SOUND, FLUIDSOURCE_PERIODIC}) {
        pctlOn->Boolean.fThreshold = 0.5f;
        pPanel->Choose(dwSource);
        TakeMark();
        auto *pBar = Find<QScrollBar>("Threshold");
        ASSERT_TRUE(pBar);
        EXPECT_EQ(5000, pBar->value());
        pBar->setFocus();
        QTest::keyClick(pBar, Qt::Key_Home);
        EXPECT_EQ(1.0f, pctlOn->Boolean.fThreshold) << "1 is at the top";
        EXPECT_TRUE(TakeMark());
    }
    pPanel.reset();
    Open(pctl);
    pPanel->Choose(FLUIDSOURCE_SOUND);
    for (const QScrollBar *pBar : pPanel->findChildren<QScrollBar *>())
        EXPECT_NE(QLatin1String("Threshold"), pBar->accessibleName());
}

TEST_F(FluidPanelsTest, AnotherWaveIsDrawnAtOnceWithTheSamePhase)
{
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    pctl->Base.bRandomPhase = 0;
    pctl->Base.fWavePhase = 0.125f;
    Open(pctl);
    auto *pArea = Find<QWidget>("Monitor");
    auto *pTypes = Find<QComboBox>("Wave Type");
    ASSERT_TRUE(pArea && pTypes);
    for (u32 dwType = WAVETYPE_SINE; dwType <= WAVETYPE_RAMP; dwType++) {
        QTest::keyClick(pTypes, dwType ? Qt::Key_Down : Qt::Key_Home);
        EXPECT_EQ(dwType, pctl->Base.dwWaveType);
        EXPECT_EQ(0.125f, pctl->Base.fWavePhase);
        const QImage seen = pArea->grab().toImage().convertToFormat(QImage::Format_RGB32);
        ControlSurface surface = {};
        DrawSurface(&surface, pctl, seen.width(), seen.height());
        QImage wanted(seen.width(), seen.height(), QImage::Format_RGB32);
        ShowSurface(surface, pctl, TickCount(), {reinterpret_cast<u32 *>(wanted.bits()), surface.pixels.size()});
        EXPECT_TRUE(seen == wanted) << dwType;
    }
}

TEST_F(FluidPanelsTest, TheHistoryMovesWithThePanelsTimerOnly)
{
    pctl->Base.dwSource = FLUIDSOURCE_PERIODIC;
    pctl->Base.fLastRandom = 1;
    Open(pctl);
    auto *pArea = Find<QWidget>("Monitor");
    ASSERT_TRUE(pArea);
    const auto lit = [=] {
        const QImage picture = pArea->grab().toImage();
        int n = 0;
        for (int x = 0; x < picture.width(); x++)
            n += picture.pixel(x, 0) == PixelOfColor(UIColorTable[UICOLOR_METER_HIGH].dwColor);
        return n;
    };
    for (int i = 0; i < 20; i++)
        lit(); // each of them paints
    EXPECT_EQ(2 * pPanel->nFollows, lit());
    QElapsedTimer timer;
    timer.start();
    while (pPanel->nFollows < 3 && timer.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(2 * pPanel->nFollows, lit());
    SetUIColor(UICOLOR_TIMER_BACKGROUND, 0x123456);
    EXPECT_EQ(0, lit()) << "in the new colours from the start";
}

TEST_F(FluidPanelsTest, TheKeyboardReachesEverything)
{
    pctlOn->Base.dwSource = FLUIDSOURCE_WAVE;
    pctlOn->Base.bRandomPhase = 0;
    Open(pctlOn);
    QStringList reached;
    QWidget *pFirst = pPanel->focusWidget();
    for (int i = 0; i < 20; i++) {
        QTest::keyClick(pPanel.get(), Qt::Key_Tab);
        QWidget *pFocus = pPanel->focusWidget();
        const auto *pButton = qobject_cast<QAbstractButton *>(pFocus);
        reached += pButton ? pButton->text() : pFocus->accessibleName();
        if (pFocus == pFirst && i)
            break;
    }
    for (const char *psz : {"Wave Type", "Wave Period", "Randomize Wave Phase", "Wave Phase", "Threshold"})
        EXPECT_TRUE(reached.contains(QLatin1String(psz))) << psz << " is not in " << reached.join(u", ").toStdString();
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
