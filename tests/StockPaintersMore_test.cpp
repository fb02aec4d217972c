// StockPaintersMore_test.cpp -- tests the painters from PMSparks to PMGlyphs for what each of them promises
#include "PainterHost.h"

#include <gtest/gtest.h>

static size_t CountLit(TestPlane &plane)
{
    size_t nLit = 0;
    for (const uint32_t dwPixel : plane.Picture())
        nLit += (dwPixel & 0xFFFFFF) > 8;
    return nLit;
}

// The next frame alone, on black.
static size_t LitByNextFrame(TestModule &painter, TestPlane &plane)
{
    plane.Fill(0);
    painter.Run(plane, 1);
    return CountLit(plane);
}

static double MiddleHeight(TestPlane &plane)
{
    double fSum = 0, fMass = 0;
    for (int32_t y = 0; y < plane.info.nHeight; y++)
        for (int32_t x = 0; x < plane.info.nWidth; x++) {
            const double fLevel = plane.Bits()[y * plane.info.nWidth + x];
            fSum += y * fLevel;
            fMass += fLevel;
        }
    return fMass > 0 ? fSum / fMass : -1;
}

struct Choice {
    const char *szDll, *szControl;
    uint32_t nItems;
};

static const Choice aChoice[] = {{"PMSparks.dll", "Color.Paint", 1},  {"PMPendulum.dll", "Pendulums.Ratio", 6},
                                 {"PMHalo.dll", "Ring.Shape", 3},     {"PMStars.dll", "Field.Shape", 4},
                                 {"PMWalkers.dll", "Color.Paint", 1}, {"PMTiles.dll", "Light.Course", 4},
                                 {"PMGlyphs.dll", "Script.Layout", 4}};

// Whatever a show leaves alone for minutes has to go on: nothing runs dry, leaves the picture or comes to rest.
TEST(PaintersMore, GoOnForMinutesInEveryForm)
{
    for (const Choice &choice : aChoice)
        for (uint32_t iItem = 0; iItem < choice.nItems; iItem++) {
            TestPlane plane(112, 63, true, 256);
            TestModule painter(choice.szDll, plane, 5 + iItem);
            painter.Set(choice.szControl, (float)iItem);
            painter.Reset(plane, 5 + iItem);
            for (int32_t iMinute = 0; iMinute < 2; iMinute++) {
                painter.Run(plane, 600, 10);
                plane.Fill(0);
                painter.Run(plane, 20, 10);
                EXPECT_GT(CountLit(plane), plane.Pixels() / 200) << choice.szDll << ' ' << iItem << ' ' << iMinute;
                const auto before = plane.Picture();
                painter.Run(plane, 5, 10);
                EXPECT_NE(before, plane.Picture()) << choice.szDll << ' ' << iItem << ' ' << iMinute;
            }
        }
}

static void LeaveOnlyBursts(TestModule &sparks, TestPlane &plane, float fLife, float fGravity)
{
    sparks.Set("Fountains.Count", 0);
    sparks.Set("Air.Wind", 0);
    sparks.Set("Sparks.Life", fLife);
    sparks.Set("Air.Gravity", fGravity);
    sparks.Set("Bursts.Trigger", 0);
    sparks.Reset(plane, 3);
    sparks.Run(plane, 10);
}

TEST(PaintersMore, ABurstOfSparksGoesOffOnceEachTimeItsSwitchTurnsOn)
{
    TestPlane plane(320, 180, true, 256);
    TestModule sparks("PMSparks.dll", plane);
    LeaveOnlyBursts(sparks, plane, 0.3f, 0.4f);
    EXPECT_EQ(CountLit(plane), 0u);
    for (int32_t i = 0; i < 2; i++) {
        sparks.Set("Bursts.Trigger", 1);
        sparks.Run(plane, 3);
        EXPECT_GT(LitByNextFrame(sparks, plane), 20u);
        sparks.Run(plane, 60); // longer than a spark lives
        EXPECT_EQ(LitByNextFrame(sparks, plane), 0u) << "a switch that stays on sets off nothing";
        sparks.Set("Bursts.Trigger", 0);
        sparks.Run(plane, 2);
    }
}

TEST(PaintersMore, SparksFallWithGravityAndRiseAgainstIt)
{
    for (const float fGravity : {0.8f, -0.8f}) {
        TestPlane plane(640, 360, true, 256);
        TestModule sparks("PMSparks.dll", plane);
        LeaveOnlyBursts(sparks, plane, 5, fGravity);
        sparks.Set("Bursts.Trigger", 1);
        sparks.Run(plane, 6);
        LitByNextFrame(sparks, plane);
        const double fFirst = MiddleHeight(plane);
        sparks.Run(plane, 30);
        LitByNextFrame(sparks, plane);
        EXPECT_GT((fFirst - MiddleHeight(plane)) * fGravity, 15);
    }
}

// How far from the middle the picture is lit, straight up or down.
static int32_t ReachOf(TestPlane &plane, int32_t nStep)
{
    const int32_t nMiddle = plane.info.nHeight / 2;
    int32_t nReach = 0;
    for (int32_t i = 0; i < nMiddle; i++)
        if (plane.Bits()[(nMiddle + i * nStep) * plane.info.nWidth + plane.info.nWidth / 2] > 8)
            nReach = i;
    return nReach;
}

TEST(PaintersMore, ASoundRunsFromTheHeadOfTheRingToItsFarEndAtEveryFrameRate)
{
    for (const int32_t nPerSecond : {60, 25}) {
        TestPlane plane(401, 401, true, 256);
        TestModule halo("PMHalo.dll", plane);
        for (const char *szName : {"Motion.Spin", "Motion.Drift", "Sound.Level"})
            halo.Set(szName, 0);
        halo.Set("Ring.Count", 1);
        halo.Set("Ring.Radius", 0.4f);
        halo.Set("Ring.Swing", 1);
        halo.Set("Sound.Memory", 2);
        halo.Reset(plane, 1);
        halo.Run(plane, 2 * nPerSecond, nPerSecond);
        halo.Set("Sound.Level", 1);
        halo.Run(plane, nPerSecond * 3 / 10, nPerSecond);
        LitByNextFrame(halo, plane);
        EXPECT_GT(ReachOf(plane, 1), ReachOf(plane, -1) * 14 / 10);
        halo.Set("Sound.Level", 0);
        halo.Run(plane, nPerSecond * 18 / 10, nPerSecond);
        LitByNextFrame(halo, plane);
        EXPECT_GT(ReachOf(plane, -1), ReachOf(plane, 1) * 14 / 10);
    }
}

TEST(PaintersMore, TilesStandWhereTheMaskHasThemWithItsFirstRowOnTop)
{
    TestPlane plane(256, 256, true, 256);
    TestModule tiles("PMTiles.dll", plane);
    std::vector<uint32_t> adwMask(CONTROL_TILES_MAX * CONTROL_TILES_MAX);
    for (uint32_t i = 0; i < CONTROL_TILES_MAX; i++)
        adwMask[i] = adwMask[i * CONTROL_TILES_MAX + 5] = 1; // the first row and the sixth column
    tiles.Find("Grid.Pattern")->Tile = {32, 32, 32, 32, adwMask.data()};
    tiles.Set("Grid.Count", 32);
    tiles.Set("Light.Dark", 1);
    tiles.Reset(plane, 1);
    plane.Fill(255); // brighter than anything that is painted
    tiles.Run(plane, 10);
    for (int32_t iRow = 0; iRow < 32; iRow++)
        for (int32_t iColumn = 0; iColumn < 32; iColumn++) {
            const uint32_t dwPixel = plane.Bits()[(255 - (iRow * 8 + 4)) * 256 + iColumn * 8 + 4];
            EXPECT_EQ(dwPixel != 255, adwMask[(size_t)(iRow * 32 + iColumn)] != 0) << iRow << ' ' << iColumn;
        }
}

TEST(PaintersMore, TheMiddleOfATileOrACornerLiesInTheMiddleOfThePicture)
{
    for (const bool bMiddle : {false, true}) {
        TestPlane plane(128, 128, true, 256);
        TestModule tiles("PMTiles.dll", plane);
        tiles.Set("Grid.Middle", bMiddle);
        tiles.Set("Grid.Count", 4);
        tiles.Set("Grid.Shape", 2); // a diamond is empty at its corners
        tiles.Set("Light.Level", 1);
        tiles.Reset(plane, 1);
        tiles.Run(plane, 10);
        EXPECT_EQ(bMiddle, plane.Bits()[64 * 128 + 64] != 0);
        EXPECT_EQ(!bMiddle, plane.Bits()[80 * 128 + 80] != 0);
        EXPECT_NE(0u, plane.Bits()[(bMiddle ? 64 : 80) * 128 + (bMiddle ? 1 : 16)]) << "the first tile of the row";
    }
}

// On a plane that keeps what is painted, every frame that moves a glyph adds to what is lit.
TEST(PaintersMore, GlyphsOfATurningCircleStayWhereTheyWereWrittenUnlessTheyAreCarried)
{
    size_t anLit[2] = {};
    for (const bool bCarry : {false, true}) {
        TestPlane plane(320, 180, true, 256);
        TestModule glyphs("PMGlyphs.dll", plane);
        glyphs.Set("Script.Layout", 2);
        glyphs.Set("Writing.Turn", 15);
        glyphs.Set("Writing.Carry", bCarry);
        glyphs.Reset(plane, 3);
        glyphs.Run(plane, 120, 30);
        anLit[bCarry] = CountLit(plane);
    }
    EXPECT_GT(anLit[0], 500u);
    EXPECT_GT(anLit[1], 2 * anLit[0]);
}

TEST(PaintersMore, AHarderPenCoversMore)
{
    for (const char *szDll :
         {"PMSparks.dll", "PMPendulum.dll", "PMHalo.dll", "PMStars.dll", "PMWalkers.dll", "PMGlyphs.dll"}) {
        uint64_t anSum[2] = {};
        for (const bool bHard : {false, true}) {
            TestPlane plane(320, 180, true, 256);
            TestModule painter(szDll, plane);
            painter.Set("Pen.Hardness", bHard);
            painter.Reset(plane, 3);
            painter.Run(plane, 60);
            plane.Fill(0);
            painter.Run(plane, 1);
            for (const uint32_t dwPixel : plane.Picture())
                anSum[bHard] += dwPixel;
        }
        EXPECT_GT(anSum[0], 0u) << szDll;
        EXPECT_GT(anSum[1] * 10, anSum[0] * 12) << szDll;
    }
}

TEST(PaintersMore, StarsComeAnewWhicheverWayTheFlightGoes)
{
    for (const float fSpeed : {2.0f, -2.0f, 0.0f}) {
        TestPlane plane(320, 180, true, 256);
        TestModule stars("PMStars.dll", plane);
        stars.Set("Flight.Speed", fSpeed);
        stars.Set("Field.Stars", 400);
        stars.Reset(plane, 2);
        stars.Run(plane, 300, 30);
        EXPECT_GT(LitByNextFrame(stars, plane), 150u) << fSpeed;
    }
}

TEST(PaintersMore, ACurveIsWrittenAsFastAsTheOneBeforeItGoes)
{
    TestPlane plane(320, 180, true, 256);
    TestModule pendulum("PMPendulum.dll", plane);
    pendulum.Set("Motion.Seconds", 6);
    pendulum.Set("Motion.Morph", 0);
    pendulum.Reset(plane, 4);
    size_t nLeast = SIZE_MAX, nMost = 0;
    for (int32_t i = 0; i < 60; i++) { // five curves
        pendulum.Run(plane, 15, 30);
        const size_t nLit = LitByNextFrame(pendulum, plane);
        nLeast = std::min(nLeast, nLit);
        nMost = std::max(nMost, nLit);
    }
    EXPECT_GT(nLeast, 500u);
    EXPECT_LT(nMost, 4 * nLeast);
}
