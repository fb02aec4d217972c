// Meters_test.cpp -- tests Meters.cpp
#include "toolkit/Meters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

constexpr u32 LOW = 0x50FA50;
constexpr u32 HIGH = 0x5050FA;
constexpr u32 BLACK = 0xFF000000;
constexpr u32 HIGH_PIXEL = 0xFFFA5050;

constexpr f32 NAN_LEVEL = std::numeric_limits<f32>::quiet_NaN();
constexpr f32 INF = std::numeric_limits<f32>::infinity();

std::vector<u32> Meter(size_t w, f32 fLevel, PeakStore *pps = nullptr, u64 qwTick = 1000)
{
    std::vector<u32> strip(w, 0x12345678);
    FillMeterStrip(strip, fLevel, pps, LOW, HIGH, qwTick);
    return strip;
}

std::vector<u32> Progress(size_t w, f32 fLevel)
{
    std::vector<u32> strip(w, 0x12345678);
    FillProgressStrip(strip, fLevel, LOW, HIGH);
    return strip;
}

// Columns that are not black, as text: "1 2 3 5".
std::string Lit(const std::vector<u32> &strip)
{
    std::string s;
    for (size_t x = 0; x < strip.size(); x++)
        if (strip[x] != BLACK)
            s += (s.empty() ? "" : " ") + std::to_string(x);
    return s;
}

TEST(MeterColors, LerpMixesEachByteInWholeNumbers)
{
    EXPECT_EQ(0x123456u, LerpColor(0x123456, 0xFFFFFF, 5, 0)) << "a length of nothing is the first colour";
    EXPECT_EQ(0x007F7Fu, LerpColor(0x0000FF, 0x00FF00, 1, 2));
    EXPECT_EQ(HIGH, LerpColor(LOW, HIGH, 7, 7));
    EXPECT_EQ(0xFF00FFu, LerpColor(0x8000FF, 0xFF00FF, 3, 1)) << "beyond the end each byte stays within its range";
    EXPECT_EQ(0u, LerpColor(0x000001, 0xFFFFFF, -9, 1));
    EXPECT_EQ(0x7F7F7Fu, LerpColor(0, 0xFFFFFF, 1 << 30, std::numeric_limits<i32>::max()));
}

TEST(MeterColors, ScaleLimitsTheFactorAndEachByteAndCutsOffFractions)
{
    EXPECT_EQ(0x0064FFu, ScaleColor(0x000103, 200)) << "a factor of 200 acts as 100";
    EXPECT_EQ(0x463838u, ScaleColor(0x645050, 0.7f) & 0xFFFFFFu);
    EXPECT_EQ(0x010203u, ScaleColor(0x020406, 0.66f));
    EXPECT_EQ(0u, ScaleColor(0xFFFFFF, -1));
    EXPECT_EQ(0u, ScaleColor(0xFFFFFF, NAN_LEVEL));
    EXPECT_EQ(0xFFC864u, ScaleColor(0xFF030201, INF)) << "the byte above the colour is dropped";
}

TEST(Meters, ABarIsLitUpToTheLevelButForEveryFourthColumn)
{
    EXPECT_EQ("1 2 3 5 6 7", Lit(Meter(17, 0.5f)));
    EXPECT_EQ("1 2 3 5 6 7 9 10 11 13 14 15", Lit(Meter(17, 1))) << "a meter's last column never lights";
    EXPECT_EQ("1 2 3 5", Lit(Progress(6, 1)));
    EXPECT_EQ("1 2 3 5", Lit(Progress(17, 0.3531f)));
    const std::vector<u32> strip = Progress(100, 1);
    for (i32 x : {1, 50, 99})
        EXPECT_EQ(PixelOfColor(LerpColor(LOW, HIGH, x, 100)), strip[static_cast<size_t>(x)]) << x;
    EXPECT_EQ(0xFF0000FFu, PixelOfColor(0xFF0000)) << "blue stays blue";
}

TEST(Meters, LevelsThatAreNoLevelsAreLimited)
{
    for (f32 fLow : {0.0f, -1.0f, -INF, NAN_LEVEL}) {
        EXPECT_EQ("", Lit(Meter(17, fLow))) << fLow;
        EXPECT_EQ("", Lit(Progress(17, fLow))) << fLow;
    }
    EXPECT_EQ(Meter(17, 1), Meter(17, INF));
    EXPECT_EQ(Progress(17, 1), Progress(17, 3e38f));
    PeakStore store = {};
    Meter(17, INF, &store);
    EXPECT_EQ(1.0f, store.afLevel[0]) << "the marker comes back into the bar";
}

TEST(Meters, StripsOfNoOrOneColumnAreWrittenWithinTheirBounds)
{
    PeakStore store = {};
    for (size_t w : {0u, 1u, 2u, 3u})
        for (f32 fLevel : {0.0f, 1.0f}) {
            EXPECT_EQ(w, Meter(w, fLevel, &store).size());
            EXPECT_EQ(w, Progress(w, fLevel).size());
        }
    EXPECT_EQ(BLACK, Meter(1, 0)[0]);
}

TEST(Meters, InSilenceTheMarkerStandsAtTheFirstTwoColumns)
{
    PeakStore store = {};
    const std::vector<u32> strip = Meter(40, 0, &store);
    EXPECT_EQ("0 1", Lit(strip));
    EXPECT_EQ(HIGH_PIXEL, strip[0]);
}

TEST(Meters, TheMarkerIsThreeColumnsOfTheHighColourThatEndAtThePeak)
{
    PeakStore store = {};
    Meter(41, 0.75f, &store, 1000);
    const std::vector<u32> strip = Meter(41, 0.1f, &store, 1020);
    EXPECT_EQ("1 2 3 28 29 30", Lit(strip));
    for (size_t x : {28u, 29u, 30u})
        EXPECT_EQ(HIGH_PIXEL, strip[x]);
}

TEST(Meters, APeakIsHeldForTwentyNineSamplesAndMoreThanHalfASecond)
{
    PeakStore store = {};
    KeepPeak(&store, 0.9f, 5000);
    u64 qwTick = 5000;
    i32 nHeld = 0;
    while (KeepPeak(&store, 0.2f, qwTick += 20) == 0.9f)
        nHeld++;
    EXPECT_EQ(28, nHeld);
    EXPECT_EQ(5580u, qwTick);
    EXPECT_EQ(0.2f, KeepPeak(&store, 0.1f, qwTick + 20));
}

TEST(Meters, AFullStoreTakesALevelOnlyInPlaceOfOneThatIsTwentyMillisecondsOld)
{
    PeakStore store = {};
    for (i32 i = 0; i < PEAK_SAMPLES; i++)
        KeepPeak(&store, 0.5f, 1000);
    EXPECT_EQ(0, store.iTail) << "the ring has gone round";
    EXPECT_EQ(0.5f, KeepPeak(&store, 0.9f, 1019));
    EXPECT_EQ(0, store.iTail);
    EXPECT_EQ(0.9f, KeepPeak(&store, 0.9f, 1020));
    EXPECT_EQ(1, store.iTail);
    EXPECT_EQ(2, store.iHead);
}

TEST(Meters, TheStoresStartEmptyAndEachIsAMeterOfItsOwn)
{
    KeepPeak(&PeakStores[3], 1, 1000);
    EXPECT_EQ(0.25f, KeepPeak(&PeakStores[2], 0.25f, 1000));
    ClearPeakStores();
    for (PeakStore &store : PeakStores)
        EXPECT_EQ(0, store.iHead | store.iTail | static_cast<i32>(store.aqwTick[0]));
}

} // namespace
