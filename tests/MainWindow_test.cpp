// MainWindow_test.cpp -- tests the main window's logic: commands, sound meter, status texts, file filters, start placement
#include "mainwindow/MainCommands.h"
#include "mainwindow/SoundStrip.h"
#include "mainwindow/StartPlacement.h"
#include "mainwindow/StatusStrip.h"

#include "include/sound.h"
#include "output/FrameStats.h"
#include "platform/Clock.h"
#include "state/GlobalSettings.h"
#include "toolkit/FileFilter.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"
#include "toolkit/WindowLayouts.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr i32 W = 61;
constexpr u32 UNTOUCHED = 0x12345678;
constexpr u32 BLACK = 0xFF000000;

class SoundStripTest : public testing::Test {
  protected:
    void SetUp() override
    {
        SetDefaultUIColors();
        ClearPeakStores();
        GlobalSettings = {};
    }
    void TearDown() override
    {
        GlobalSettings = {};
        ClearPeakStores();
    }

    // What one bar looks like by itself, with a store of its own.
    static std::vector<u32> Bar(f32 fLevel)
    {
        std::vector<u32> row(W);
        PeakStore store = {};
        FillMeterStrip(row, fLevel, &store, UIColorTable[UICOLOR_METER_LOW].dwColor,
                       UIColorTable[UICOLOR_METER_HIGH].dwColor, 1000);
        return row;
    }

    std::vector<u32> Draw(const SoundStrip &strip, i32 h)
    {
        pixels.assign(static_cast<size_t>(W) * static_cast<size_t>(h), UNTOUCHED);
        bDrawn = DrawSoundStrip(strip, pixels, W, h, 1000);
        return pixels;
    }

    std::vector<u32> RowOf(i32 y) const
    {
        const auto it = pixels.begin() + static_cast<std::ptrdiff_t>(y) * W;
        return {it, it + W};
    }

    std::vector<u32> pixels;
    u32 bDrawn = 0;
};

TEST_F(SoundStripTest, FourBarsOfTwoRowsLieOnBlackOnePixelBelowTheTop)
{
    const SoundStrip strip = {1, 0, {0.2f, 0.4f, 0.6f, 0.8f}};
    Draw(strip, 12);
    ASSERT_TRUE(bDrawn);
    EXPECT_EQ(RowOf(0), std::vector<u32>(W, UNTOUCHED));
    for (i32 y = 1; y < 12; y++) {
        const i32 iRow = y - 1;
        if (iRow % 3 == 2)
            EXPECT_EQ(RowOf(y), std::vector<u32>(W, BLACK)) << y;
        else
            EXPECT_EQ(RowOf(y), Bar(strip.afLevel[iRow / 3])) << y;
    }
}

TEST_F(SoundStripTest, ATallStripStretchesTheTwelveRows)
{
    const SoundStrip strip = {1, 0, {0.2f, 0.4f, 0.6f, 0.8f}};
    Draw(strip, 36);
    for (i32 y = 1; y < 36; y++)
        EXPECT_EQ(RowOf(y) == std::vector<u32>(W, BLACK), ((y - 1) / 3) % 3 == 2) << y;
    EXPECT_EQ(RowOf(1), Bar(0.2f));
    EXPECT_EQ(RowOf(33), Bar(0.8f));
}

TEST_F(SoundStripTest, TheQuietSimulationFillsTheWholeStripWithOneBar)
{
    Draw({1, 1, {0.2f, 0.4f, 0.6f, 0.8f}}, 9);
    for (i32 y = 0; y < 9; y++)
        EXPECT_EQ(RowOf(y), Bar(0.8f)) << y;
}

TEST_F(SoundStripTest, EveryTypeKeepsItsOwnPeak)
{
    const SoundStrip low = {1, 0, {0.1f, 0.1f, 0.1f, 0.1f}};
    Draw({1, 0, {0.9f, 0.1f, 0.1f, 0.7f}}, 12);
    Draw(low, 12);
    EXPECT_EQ(RowOf(4), Bar(0.1f)) << "one without a peak of before";
    EXPECT_NE(RowOf(1), RowOf(4)) << "its peak still stands";
    const std::vector<u32> last = RowOf(10);
    EXPECT_NE(last, RowOf(4));
    EXPECT_NE(last, RowOf(1));
    Draw({1, 1, {0.1f, 0.1f, 0.1f, 0.1f}}, 12);
    EXPECT_EQ(RowOf(0), last) << "one bar over all goes on with the peak of its type";
}

u32 GiveLevel(void *, i32 nType, f32 *pfLevel)
{
    *pfLevel = static_cast<f32>(nType + 1) / 10;
    return 1;
}

TEST_F(SoundStripTest, WithoutALevelNothingIsDrawn)
{
    Draw(ReadSoundStrip(1), 12);
    EXPECT_FALSE(bDrawn);
    EXPECT_EQ(pixels, std::vector<u32>(pixels.size(), UNTOUCHED));
    EXPECT_FALSE(DrawSoundStrip({1, 0, {}}, pixels, 0, 12, 0));
}

TEST_F(SoundStripTest, OneBarNeedsSilenceAndTheSimulatedLevel)
{
    GlobalSettings.Monitor.pfnGetLevel = GiveLevel;
    for (i32 nType = 0; nType < 4; nType++)
        for (u32 bQuiet : {0u, 1u}) {
            GlobalSettings.VolumeType = nType;
            const SoundStrip strip = ReadSoundStrip(bQuiet);
            EXPECT_TRUE(strip.bLevels);
            EXPECT_EQ(strip.bOneBar != 0, bQuiet && nType == VOLUMETYPE_DYNAMIC_SIMULATED);
            EXPECT_FLOAT_EQ(strip.afLevel[2], 0.3f);
        }
}

TEST(StatusTextsTest, ChangeNoMoreOftenThanEvery300Ms)
{
    GlobalSettings = {};
    GlobalSettings.nBufferWidth = 640;
    GlobalSettings.nBufferHeight = 360;
    GlobalSettings.hwndVisuals.nWidth = 1280;
    GlobalSettings.hwndVisuals.nHeight = 720;
    dwStatusTick = 5000;
    StatusTexts texts;
    EXPECT_FALSE(TakeStatusTexts(5300, &texts));
    ASSERT_TRUE(TakeStatusTexts(5301, &texts));
    EXPECT_EQ(texts.sBuffer, u"640 x 360");
    EXPECT_EQ(texts.sWindow, u"1280 x 720");
    EXPECT_FALSE(TakeStatusTexts(5301, &texts));
    UseFixedClock(1000);
    ResetFrameStats();
    qwFramesRecent = 120; // of the last seconds; the overall figure would be another
    qwFramesTotal = 7;
    SetFixedTick(2999);
    ASSERT_TRUE(TakeStatusTexts(6000, &texts));
    EXPECT_EQ(texts.sFps, u"60.000");
    UseSystemClock();
    GlobalSettings = {};
}

std::u16string Told(std::u16string_view pattern, std::u16string_view name)
{
    std::u16string s;
    for (const FileFilter &filter : FileFilters(pattern, name))
        s += filter.sDescription + u"=" + filter.sPattern + u"|";
    return s;
}

TEST(FileFilterTest, ComesFromThePatternElseFromTheNameElseShowsAll)
{
    EXPECT_EQ(Told(u"*.VD", u"Some.txt"), u"*.VD Files=*.VD|");
    EXPECT_EQ(Told(u"Layouts\t*.VDL\tAll\t*.*\t\t", u""), u"Layouts=*.VDL|All=*.*|");
    EXPECT_EQ(Told(u"Broken\t", u""), u"");
    EXPECT_EQ(Told(u"", u"Folder.d/Some.txt"), u"*.txt Files=*.txt|");
    EXPECT_EQ(Told(u"", u"Folder.d/Some"), u"All Files (*.*)=*.*|");
    EXPECT_EQ(Told(u"", u"ends."), u"All Files (*.*)=*.*|");
}

TEST(FileFilterTest, TheDefaultExtensionGoesToNamesWithoutOne)
{
    EXPECT_EQ(DefaultExtension(u"*.VD"), u"VD");
    EXPECT_EQ(DefaultExtension(u"*.*"), u"");
    EXPECT_EQ(DefaultExtension(u""), u"");
}

TEST(StartPlacementTest, TheVisualsWindowStandsBesideTheMainWindowAndIsTwiceAsHigh)
{
    const FrameRect rcWork = {0, 0, 1600, 1000};
    const FrameRect rc = VisualsStartRect({0, 0, 300, 450}, rcWork, 64);
    EXPECT_EQ(rc.xLeft, 300);
    EXPECT_EQ(rc.yTop, 0);
    EXPECT_EQ(rc.xRight, 1600);
    EXPECT_EQ(rc.yBottom, 900);
    const FrameRect rcInset = VisualsStartRect({20, 30, 300, 450}, rcWork, 64);
    EXPECT_EQ(rcInset.xRight, 1580); // as much room at the right as the main window has at the left
    EXPECT_EQ(rcInset.yBottom, 870);
    const FrameRect rcTall = VisualsStartRect({0, 100, 300, 900}, rcWork, 64);
    EXPECT_EQ(rcTall.yTop, 100);
    EXPECT_EQ(rcTall.yBottom, 1700); // whatever the work area has
    const FrameRect rcWide = VisualsStartRect({900, 0, 1590, 450}, rcWork, 64);
    EXPECT_EQ(rcWide.xRight - rcWide.xLeft, 64);
    EXPECT_EQ(rcWide.xRight, 1600);
}

const Command *FindByText(CommandRows rows, std::u16string_view text)
{
    for (const Command &command : rows) {
        if (command.pszText && text == command.pszText)
            return &command;
        if (const Command *pFound = FindByText(command.children, text))
            return pFound;
    }
    return nullptr;
}

TEST(MainCommandsTest, AWindowsEntryOpensItByItsNameUnderTheMainWindow)
{
    static void *pvOwner;
    pvOwner = nullptr;
    constexpr auto pfnMake = [](void *pv) -> void * { return pvOwner = pv; };
    static constexpr WindowFunctions functions = {[](void *, u32) {}, [](void *) {}, nullptr, nullptr};
    static constexpr WindowKind kind = {RECORDING_DIALOG, WindowUse::Dialog, pfnMake, &functions};
    MainActions actions = {};
    actions.pvWindow = &actions;
    const Command *pCommand = FindByText(MainMenu(), u"Recording Options...");
    ASSERT_NE(nullptr, pCommand);
    EXPECT_TRUE(RunCommand(*pCommand, &actions)) << "nothing where there is no such window";
    EXPECT_EQ(nullptr, pvOwner);
    RegisterWindow(kind);
    RunCommand(*pCommand, &actions);
    EXPECT_EQ(&actions, pvOwner);
    EXPECT_TRUE(WindowIsOpen(RECORDING_DIALOG));
    ForgetWindowLayouts();
}

} // namespace
