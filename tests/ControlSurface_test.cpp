// ControlSurface_test.cpp -- tests ControlSurface.cpp and FluidSettings.cpp, pixel by pixel against a slow drawing
#include "controls/panels/ControlSurface.h"

#include "controls/FluidSources.h"
#include "controls/panels/FluidSettings.h"
#include "state/GlobalSettings.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <limits>
#include <memory>

namespace {

constexpr u32 BLACK = 0xFF000000, WHITE = 0xFFFFFFFF;
constexpr i32 W = 90, H = 41;

// What stands at each pixel, worked out one at a time.
struct Oracle {
    const ControlRecord *pctl;
    i32 w, h;
    std::deque<f32> levels; // of the history, newest last

    static i32 Byte(UIColor eColor, int iByte)
    {
        return static_cast<i32>(UIColorTable[eColor].dwColor >> (8 * iByte) & 0xFF);
    }
    static u32 Pixel(i32 nRed, i32 nGreen, i32 nBlue)
    {
        return BLACK | static_cast<u32>(nRed * 65536 + nGreen * 256 + nBlue);
    }
    u32 Lit(i32 y) const
    {
        i32 an[3];
        for (int i = 0; i < 3; i++)
            an[i] = (Byte(UICOLOR_METER_HIGH, i) * (h - y) + Byte(UICOLOR_METER_LOW, i) * y) / h;
        return Pixel(an[0], an[1], an[2]);
    }
    static u32 Background()
    {
        return Pixel(Byte(UICOLOR_TIMER_BACKGROUND, 0), Byte(UICOLOR_TIMER_BACKGROUND, 1),
                     Byte(UICOLOR_TIMER_BACKGROUND, 2));
    }
    f32 Level(i32 x) const
    {
        const ControlBase &Base = pctl->Base;
        if (Base.dwSource == FLUIDSOURCE_WAVE)
            return WaveValue(Base.dwWaveType, Base.fWavePhase, static_cast<u32>(w), static_cast<u64>(x));
        const i32 nAgo = (w - 1 - x) / 2; // steps
        const i32 i = static_cast<i32>(levels.size()) - 1 - nAgo;
        return i < 0 ? 0.0f : levels[static_cast<size_t>(i)];
    }
    // 0: not marked
    static u32 Marked(i32 i, i32 iMark)
    {
        return i == iMark ? WHITE : std::abs(i - iMark) == 1 ? BLACK : 0;
    }
    u32 At(i32 x, i32 y, u64 qwTick) const
    {
        if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN) {
            const i32 yMark = static_cast<i32>((1.0f - pctl->Boolean.fThreshold) * static_cast<f32>(h));
            if (const u32 dw = Marked(y, std::min(yMark, h - 1)))
                return dw;
        }
        if (pctl->Base.dwSource == FLUIDSOURCE_WAVE) {
            const u64 qwPeriod = pctl->Base.nWavePeriod;
            if (const u32 dw = Marked(x, static_cast<i32>(static_cast<u64>(w) * (qwTick % qwPeriod) / qwPeriod)))
                return dw;
        }
        return y < h - static_cast<i32>(static_cast<f32>(h) * Level(x)) ? Background() : Lit(y);
    }
};

class Monitor : public testing::Test {
  protected:
    void SetUp() override
    {
        SetDefaultUIColors();
        GlobalSettings = {};
        GlobalSettings.TimeScale = 1;
        pctl->Base.dwType = CONTROLTYPE_FLOAT;
        pctl->Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;
        pctl->Base.dwSource = FLUIDSOURCE_WAVE;
        pctl->Base.nWavePeriod = 8000;
    }
    void TearDown() override
    {
        GlobalSettings = {};
        SetDefaultUIColors();
    }
    void Draw(i32 w = W, i32 h = H)
    {
        DrawSurface(&surface, pctl.get(), w, h);
        oracle.w = w;
        oracle.h = h;
    }
    void Step(f32 fLevel)
    {
        Draw();
        StepSurface(&surface, pctl.get(), fLevel);
        oracle.levels.push_back(fLevel);
    }
    void Compare(u64 qwTick = 0)
    {
        std::vector<u32> picture(surface.pixels.size(), 0x12345678);
        ShowSurface(surface, pctl.get(), qwTick, picture);
        ASSERT_EQ(static_cast<size_t>(oracle.w) * static_cast<size_t>(oracle.h), picture.size());
        for (i32 y = 0; y < oracle.h; y++)
            for (i32 x = 0; x < oracle.w; x++)
                ASSERT_EQ(oracle.At(x, y, qwTick), picture[static_cast<size_t>(y * oracle.w + x)])
                    << "column " << x << ", row " << y << ", tick " << qwTick;
    }

    std::unique_ptr<ControlRecord> pctl = std::make_unique<ControlRecord>();
    ControlSurface surface = {};
    Oracle oracle{pctl.get(), W, H, {}};
};

TEST_F(Monitor, ShowsEachWaveWithItsPhaseAndThePositionInIt)
{
    for (const WaveTypeName &name : WaveTypeNames())
        for (const f32 fPhase : {0.0f, 0.3f, 1.0f})
            for (const u64 qwTick : {u64{0}, u64{4000}, u64{15999}}) {
                pctl->Base.dwWaveType = name.dwWaveType;
                pctl->Base.fWavePhase = fPhase;
                surface.bValid = 0;
                Draw();
                Compare(qwTick);
            }
}

TEST_F(Monitor, FollowsAPhaseThatMovedAndLeavesOneThatDidNotAlone)
{
    Draw();
    const std::vector<u32> before = surface.pixels;
    surface.pixels[0] = 0x12345678;
    pctl->Base.fWavePhase = 0.000005f;
    Draw();
    EXPECT_EQ(0x12345678u, surface.pixels[0]) << "nothing to draw anew";
    pctl->Base.fWavePhase = 0.5f;
    Draw();
    EXPECT_NE(before, surface.pixels);
    Compare();
}

TEST_F(Monitor, ScrollsTheHistoryTwoColumnsAStep)
{
    pctl->Base.dwSource = FLUIDSOURCE_SOUND;
    Draw();
    Compare();
    for (int i = 0; i < W; i++) {
        Step(static_cast<f32>(i * 37 % 101) / 100.0f);
        Compare();
    }
    Draw(W - 1, H + 3);
    oracle.levels.clear();
    Compare(); // another size starts empty
}

TEST_F(Monitor, LimitsLevelsThatAreOutsideOfThePicture)
{
    pctl->Base.dwSource = FLUIDSOURCE_PERIODIC;
    for (const f32 f : {1.7f, -3.0f, std::numeric_limits<f32>::quiet_NaN(), std::numeric_limits<f32>::infinity()}) {
        Step(f);
        oracle.levels.back() = f > 0 ? 1.0f : 0.0f;
        Compare();
    }
}

TEST_F(Monitor, MarksTheThresholdOfABooleanUnderEverySource)
{
    pctl->Base.dwType = CONTROLTYPE_BOOLEAN;
    for (const u32 dwSource : {FLUIDSOURCE_WAVE, FLUIDSOURCE_SOUND, FLUIDSOURCE_PERIODIC}) {
        pctl->Base.dwSource = dwSource;
        surface = {};
        Draw();
        for (const f32 f : {0.0f, 0.33f, 1.0f}) {
            pctl->Boolean.fThreshold = f;
            Compare(1234);
        }
    }
}

TEST_F(Monitor, SurvivesSizesAndPeriodsOfNothing)
{
    for (const i32 n : {0, -5, 1}) {
        Draw(n, 1);
        Draw(1, n);
        StepSurface(&surface, pctl.get(), 1);
        pctl->Base.dwSource ^= FLUIDSOURCE_WAVE ^ FLUIDSOURCE_SOUND;
    }
    pctl->Base.dwSource = FLUIDSOURCE_SOUND;
    Draw(1, 2);
    StepSurface(&surface, pctl.get(), 0.5f);
    EXPECT_EQ((std::vector<u32>{Oracle::Background(), oracle.Lit(1)}), surface.pixels);
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    pctl->Base.nWavePeriod = 0;
    std::vector<u32> picture(2), other(5, 7);
    ShowSurface(surface, pctl.get(), 99, picture);
    EXPECT_EQ(WHITE, picture[0]) << "the mark stands at the start";
    ShowSurface(surface, pctl.get(), 99, other);
    EXPECT_EQ(std::vector<u32>(5, 7), other) << "a picture of another size is left alone";
}

TEST_F(Monitor, TakesTheLevelFromTheSource)
{
    pctl->Base.fLastRandom = 0.625f;
    pctl->Base.dwSource = FLUIDSOURCE_PERIODIC;
    EXPECT_EQ(0.625f, SurfaceLevel(pctl.get()));
    SoundFrame sound = {};
    sound.fRawLevel = 0.5f;
    GlobalSettings.pSound = &sound;
    pctl->Base.dwSource = FLUIDSOURCE_SOUND;
    EXPECT_EQ(0.5f, SurfaceLevel(pctl.get()));
    ClearSoundHistory();
    pctl->Base.nSamples = 3;
    EXPECT_EQ(0.125f, SurfaceLevel(pctl.get())) << "averaged as the control is";
}

TEST(MonitorBars, StandAtTheDistanceFromOneAndCutOffFractions)
{
    EXPECT_EQ(10000, SurfaceBarPosition(0));
    EXPECT_EQ(0, SurfaceBarPosition(1));
    EXPECT_EQ(7500, SurfaceBarPosition(0.25f));
    EXPECT_EQ(3333, SurfaceBarPosition(0.66662f));
    EXPECT_EQ(0, SurfaceBarPosition(std::numeric_limits<f32>::quiet_NaN()));
    EXPECT_EQ(10000, SurfaceBarPosition(-4));
    EXPECT_EQ(1.0f, SurfaceBarValue(0));
    EXPECT_EQ(0.0f, SurfaceBarValue(10000));
    for (i32 n = 0; n <= SURFACE_BAR_MAX; n++)
        ASSERT_NEAR(n, SurfaceBarPosition(SurfaceBarValue(n)), 1);
}

TEST_F(Monitor, OffersTheGroupOfTheSourceThatTheControlCanFollow)
{
    const std::u16string asWanted[][2] = {
        {u"Waveform Settings", u"8000 ms"}, {u"Sound Settings", u"0"}, {u"Random Value Settings", u"1500 ms"}};
    pctl->Base.nNoisePeriod = 1500;
    size_t i = 0;
    for (const u32 dwSource : {FLUIDSOURCE_WAVE, FLUIDSOURCE_SOUND, FLUIDSOURCE_PERIODIC}) {
        pctl->Base.dwSource = dwSource;
        const FluidSetting *pSetting = FluidSettingOf(pctl.get());
        ASSERT_TRUE(pSetting);
        EXPECT_EQ(asWanted[i][0], pSetting->pszGroup);
        EXPECT_EQ(asWanted[i++][1], FluidReadout(*pSetting, pctl.get()));
    }
    for (const u32 dwSource : {u32{FLUIDSOURCE_FIXED}, u32{FLUIDSOURCE_RANDOM}, 3u, 0u}) {
        pctl->Base.dwSource = dwSource;
        EXPECT_FALSE(FluidSettingOf(pctl.get()));
    }
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    pctl->Base.dwSourceMask = FLUIDSOURCE_FIXED;
    EXPECT_FALSE(FluidSettingOf(pctl.get())) << "a file may name a source that the control does not have";
}

} // namespace
