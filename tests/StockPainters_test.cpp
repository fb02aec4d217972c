// StockPainters_test.cpp -- tests stock/PMRotor, stock/PMArc and stock/PMGust through their entry points
#include "PainterHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <thread>

static const char *const aszDrawing[] = {"PMRotor.dll", "PMArc.dll", "PMGust.dll"};
static const char *const aszPainters[] = {"PMRotor.dll", "PMArc.dll"};

static int32_t ColorsOf(const TestPlane &plane)
{
    return plane.info.nColors > 0 ? plane.info.nColors : 256;
}

// The walls stand and, on an indexed plane, every pixel is an index of the palette.
static void ExpectSoundPlane(TestPlane &plane, const char *szWhat)
{
    EXPECT_TRUE(plane.WallsStand()) << szWhat;
    uint32_t dwHighest = 0;
    for (const uint32_t dwPixel : plane.Picture())
        dwHighest = std::max(dwHighest, dwPixel);
    if (plane.info.bIndexed) {
        EXPECT_LT(dwHighest, (uint32_t)ColorsOf(plane)) << szWhat;
    }
}

static void FillWithNoise(TestPlane &plane, uint32_t dwSeed, uint32_t dwMask)
{
    std::mt19937 random(dwSeed);
    for (size_t i = 0; i < plane.Pixels(); i++)
        plane.Bits()[i] = (uint32_t)random() & dwMask;
}

// A soft disc of a height of 200 (indices) or a grey (colours).
static void DrawDisc(TestPlane &plane, double xMiddle, double yMiddle, double fRadius)
{
    for (int32_t y = 0; y < plane.info.nHeight; y++)
        for (int32_t x = 0; x < plane.info.nWidth; x++) {
            const double f = 1 - std::hypot(x - xMiddle, y - yMiddle) / fRadius;
            const uint32_t dwLevel = (uint32_t)(200 * std::max(f, 0.0));
            plane.Bits()[y * plane.info.nWidth + x] = plane.info.bIndexed ? dwLevel : dwLevel * 0x010101u;
        }
}

struct Centroid {
    double x, y, fMass;
};

static Centroid CentroidOf(TestPlane &plane)
{
    Centroid c = {};
    for (int32_t y = 0; y < plane.info.nHeight; y++)
        for (int32_t x = 0; x < plane.info.nWidth; x++) {
            const uint32_t dwPixel = plane.Bits()[y * plane.info.nWidth + x];
            const double fLevel = plane.info.bIndexed ? dwPixel : (dwPixel >> 8 & 255);
            c = {c.x + x * fLevel, c.y + y * fLevel, c.fMass + fLevel};
        }
    return c.fMass > 0 ? Centroid{c.x / c.fMass, c.y / c.fMass, c.fMass} : Centroid{};
}

// A wind that only blows straight, as strong as told, and fades nothing.
static void LetBlow(TestModule &gust, TestPlane &plane, float fBreeze)
{
    for (const char *szName :
         {"Wind.Turning", "Vortex.Swirl", "Vortex.Outflow", "Vortex.Wander", "Eddies.Strength", "Trails.Decay"})
        gust.Set(szName, 0);
    gust.Set("Wind.Strength", 1);
    gust.Set("Wind.Breeze", fBreeze);
    gust.Reset(plane, 7);
}

static void Calm(TestModule &gust)
{
    gust.Set("Wind.Strength", 0);
    gust.Set("Trails.Decay", 0);
}

static void DrawOnNoise(const char *szDll, int32_t nWidth, int32_t nHeight, bool bIndexed, int32_t nColors)
{
    std::mt19937 random(3);
    TestPlane plane(nWidth, nHeight, bIndexed, nColors);
    FillWithNoise(plane, 1, 0xFFFFFFFF);
    TestModule gust("PMGust.dll", plane); // brings the noise down to the palette
    gust.Run(plane, 2);
    TestModule module(szDll, plane);
    for (int32_t i = 0; i < 3; i++) {
        module.Animate(random);
        module.Run(plane, 1);
    }
    ExpectSoundPlane(plane, szDll);
}

TEST(StockPainters, DrawInsideTheBitmapAtOddSizesOnBothKindsOfPlane)
{
    const int32_t anSmall[][2] = {{129, 131}, {128, 128}, {333, 187}};
    const int32_t anLong[][2] = {{8192, 129}, {128, 8191}};
    for (const char *szDll : aszDrawing)
        for (const bool bIndexed : {true, false}) {
            for (const auto &size : anSmall)
                for (const int32_t nColors : {0, 1, 2, 256, 2048})
                    DrawOnNoise(szDll, size[0], size[1], bIndexed, nColors);
            for (const auto &size : anLong)
                DrawOnNoise(szDll, size[0], size[1], bIndexed, 256);
        }
}

static void SetExtreme(ControlRecord *pctl, int32_t iExtreme)
{
    const float afValue[] = {pctl->Float.fAbsMin, pctl->Float.fAbsMax, -1e30f, 1e30f, INFINITY, NAN};
    const int32_t anValue[] = {pctl->Integer.nAbsMin, pctl->Integer.nAbsMax, INT32_MIN, INT32_MAX, 0, -1};
    if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
        pctl->Float.fValue = afValue[iExtreme];
    else if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
        pctl->Integer.nValue = anValue[iExtreme];
    else if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
        pctl->ItemSelect.nCurrentItemValue = (uint32_t)anValue[iExtreme];
    else
        pctl->Boolean.bState = iExtreme & 1;
}

TEST(StockPainters, BearEveryExtremeOfEveryControl)
{
    for (const char *szDll : aszDrawing)
        for (const bool bIndexed : {true, false}) {
            TestPlane plane(161, 129, bIndexed, 256);
            TestModule module(szDll, plane);
            for (int32_t iExtreme = 0; iExtreme < 6; iExtreme++) {
                for (auto &pctl : module.apControl) {
                    const ControlRecord kept = *pctl;
                    SetExtreme(pctl.get(), iExtreme);
                    module.Run(plane, 2, 12);
                    *pctl = kept;
                }
                for (auto &pctl : module.apControl)
                    SetExtreme(pctl.get(), iExtreme);
                FillWithNoise(plane, 5, 255);
                module.Run(plane, 3, 12);
                module.Reset(plane, ~0ull);
                module.Run(plane, 3, 12);
                ExpectSoundPlane(plane, szDll);
            }
        }
}

TEST(StockPainters, LiveWithoutRecordsPaletteOrSeed)
{
    for (const char *szDll : aszDrawing)
        for (const size_t nGranted : {0u, 1u, 5u}) {
            nRecordsGranted = nGranted;
            TestPlane plane(129, 131, nGranted == 1, 256);
            plane.info.lpColorTable = nullptr;
            plane.info.pSound = nullptr;
            TestModule module(szDll, plane, 0);
            module.Run(plane, 3);
            ExpectSoundPlane(plane, szDll);
        }
    nRecordsGranted = CONTROLS_MAX;
}

// A short film of one painter and the wind; everything that may influence it goes in as an argument.
static std::vector<uint32_t> RenderFilm(const char *szPainter, bool bIndexed, uint64_t qwSeed)
{
    TestPlane plane(320, 181, bIndexed, 256);
    TestModule painter(szPainter, plane, qwSeed), gust("PMGust.dll", plane, qwSeed + 1);
    std::mt19937 random(9);
    for (int32_t i = 0; i < 40; i++) {
        plane.context.qwTick += i % 3 ? 17 : 16;
        painter.Animate(random);
        gust.Animate(random);
        painter.Draw(plane);
        gust.Draw(plane);
    }
    return plane.Picture();
}

TEST(StockPainters, TheSeedFixesEveryByteOfAFilm)
{
    for (const char *szPainter : aszPainters)
        for (const bool bIndexed : {true, false}) {
            const auto film = RenderFilm(szPainter, bIndexed, 11);
            EXPECT_EQ(film, RenderFilm(szPainter, bIndexed, 11));
            EXPECT_NE(film, RenderFilm(szPainter, bIndexed, 12));
        }
}

TEST(StockPainters, InstancesOnTwoThreadsDoNotDisturbEachOther)
{
    for (const char *szDll : aszDrawing) {
        TestPlane alone(301, 200, true, 256), first(301, 200, true, 256), second(301, 200, true, 256);
        for (TestPlane *pPlane : {&alone, &first, &second})
            DrawDisc(*pPlane, 150, 100, 80);
        TestModule module(szDll, alone, 3), module1(szDll, first, 3), module2(szDll, second, 3);
        module.Run(alone, 60);
        std::thread thread1([&] { module1.Run(first, 60); }), thread2([&] { module2.Run(second, 60); });
        thread1.join();
        thread2.join();
        EXPECT_EQ(alone.Picture(), first.Picture()) << szDll;
        EXPECT_EQ(alone.Picture(), second.Picture()) << szDll;
    }
}

TEST(StockPainters, PaintersFillAGoodPartOfThePictureInSilence)
{
    for (const char *szPainter : aszPainters)
        for (const bool bIndexed : {true, false}) {
            TestPlane plane(480, 270, bIndexed, 256);
            TestModule painter(szPainter, plane), gust("PMGust.dll", plane, 2);
            for (int32_t i = 0; i < 360; i++) {
                plane.context.qwTick += 17;
                painter.Draw(plane);
                gust.Draw(plane);
            }
            size_t nLit = 0;
            for (const uint32_t dwPixel : plane.Picture())
                nLit += bIndexed ? dwPixel > 12 : (dwPixel & 0xFCFCFC) != 0;
            EXPECT_GT(nLit, plane.Pixels() / 10) << szPainter;
            const auto before = plane.Picture();
            plane.context.qwTick += 100;
            painter.Draw(plane);
            EXPECT_NE(before, plane.Picture()) << szPainter;
        }
}

TEST(StockPainters, ThinLayersAddUpAlikeAtEveryFrameRate)
{
    for (const char *szPainter : aszPainters) {
        double afMass[2];
        for (int32_t i = 0; i < 2; i++) {
            TestPlane plane(400, 300, true, 256);
            TestModule painter(szPainter, plane);
            painter.Run(plane, i ? 90 : 45, i ? 60 : 30);
            afMass[i] = CentroidOf(plane).fMass;
        }
        EXPECT_NEAR(afMass[0] / afMass[1], 1, 0.06) << szPainter;
    }
}

TEST(StockPainters, FurtherCallsInAFrameMoveOnAndNoTimeMovesNothing)
{
    for (const char *szPainter : aszPainters) {
        TestPlane plane(400, 300, true, 256);
        TestModule painter(szPainter, plane);
        painter.Draw(plane);
        EXPECT_EQ(CentroidOf(plane).fMass, 0) << szPainter;
        painter.Run(plane, 1);
        const auto once = plane.Picture();
        painter.Draw(plane);
        EXPECT_NE(once, plane.Picture()) << szPainter;
    }
}

TEST(StockGust, DecayEmptiesAPlaneWithoutResidue)
{
    for (const bool bIndexed : {true, false})
        for (const float fStrength : {0.0f, 0.7f})
            for (const float fDecay : {0.25f, 1.0f})
                for (const int32_t nColors : {2, 256, 2048}) {
                    TestPlane plane(163, 131, bIndexed, nColors);
                    FillWithNoise(plane, 2, bIndexed ? (uint32_t)nColors - 1 : 0xFFFFFF);
                    TestModule gust("PMGust.dll", plane);
                    gust.Set("Wind.Strength", fStrength);
                    gust.Set("Trails.Decay", fDecay);
                    gust.Set("Trails.Edges", 2);
                    gust.Run(plane, (int32_t)(60 * (0.8 / (fDecay * fDecay) + 1)));
                    EXPECT_EQ(plane.Picture(), std::vector<uint32_t>(plane.Pixels()))
                        << bIndexed << ' ' << fStrength << ' ' << fDecay << ' ' << nColors;
                }
}

TEST(StockGust, StillAirWithoutDecayKeepsThePicture)
{
    for (const bool bIndexed : {true, false}) {
        TestPlane plane(333, 187, bIndexed, 256);
        FillWithNoise(plane, 2, bIndexed ? 255 : 0xFFFFFF);
        const auto before = plane.Picture();
        TestModule gust("PMGust.dll", plane);
        Calm(gust);
        gust.Reset(plane, 5);
        gust.Run(plane, 30);
        EXPECT_EQ(before, plane.Picture());
    }
}

// An even picture is even under any wind: the weights of the neighbours add up to one everywhere.
TEST(StockGust, AnEvenPictureStaysEvenInAnyWind)
{
    for (const bool bIndexed : {true, false})
        for (const uint32_t dwEdges : {1u, 2u}) {
            TestPlane plane(517, 259, bIndexed, 256);
            plane.Fill(bIndexed ? 255 : 0x00FF8037);
            const auto before = plane.Picture();
            TestModule gust("PMGust.dll", plane);
            std::mt19937 random(4);
            for (int32_t i = 0; i < 20; i++) {
                gust.Animate(random);
                if (i >= 10) // a storm, at once: carries longer than any margin
                    for (auto &pctl : gust.apControl)
                        SetExtreme(pctl.get(), i & 1);
                gust.Set("Wind.Strength", 1);
                gust.Set("Trails.Decay", 0);
                gust.Set("Trails.Edges", (float)dwEdges);
                gust.Reset(plane, random());
                gust.Run(plane, 1, 10); // starts the clock
                gust.Run(plane, 1, 10);
            }
            EXPECT_EQ(before, plane.Picture()) << bIndexed << ' ' << dwEdges;
        }
}

TEST(StockGust, CarriesAsFarInASecondAtEveryFrameRateAndLessFarByTheTimeScale)
{
    for (const bool bIndexed : {true, false}) {
        double afWay[4];
        const int32_t anRate[] = {60, 30, 144, 60};
        for (int32_t i = 0; i < 4; i++) {
            TestPlane plane(400, 400, bIndexed, 256);
            plane.info.dwTimeScale = i == 3 ? 4 : 1;
            DrawDisc(plane, 200, 200, 40);
            TestModule gust("PMGust.dll", plane);
            LetBlow(gust, plane, 0.3f);
            gust.Run(plane, 1, anRate[i]); // the first call starts the clock
            const Centroid before = CentroidOf(plane);
            gust.Run(plane, anRate[i] / 2, anRate[i]);
            const Centroid after = CentroidOf(plane);
            afWay[i] = std::hypot(after.x - before.x, after.y - before.y);
            EXPECT_NEAR(after.fMass / before.fMass, 1, 0.03);
        }
        EXPECT_GT(afWay[0], 15);
        EXPECT_NEAR(afWay[1], afWay[0], 1.5);
        EXPECT_NEAR(afWay[2], afWay[0], 1.5);
        EXPECT_NEAR(afWay[3], afWay[0] / 4, 1.5);
    }
}

// A twentieth of a pixel a frame: rounding to whole indices or pixels would hold the picture where it is.
TEST(StockGust, ASlowWindStillMovesThePicture)
{
    for (const bool bIndexed : {true, false}) {
        TestPlane plane(256, 256, bIndexed, 256);
        DrawDisc(plane, 128, 128, 40);
        TestModule gust("PMGust.dll", plane);
        LetBlow(gust, plane, 0.02f);
        const Centroid before = CentroidOf(plane);
        gust.Run(plane, 240);
        const Centroid after = CentroidOf(plane);
        const double fExpected = 0.02 * 0.8 * 0.75 * 256 * 4; // least of the breeze's unsteady strength
        EXPECT_GT(std::hypot(after.x - before.x, after.y - before.y), 0.6 * fExpected) << bIndexed;
        EXPECT_NEAR(after.fMass / before.fMass, 1, 0.03) << bIndexed;
    }
}

TEST(StockGust, ALeapOfTheTickIsNoLeapOfThePicture)
{
    TestPlane plane(400, 400, true, 256);
    DrawDisc(plane, 200, 200, 60);
    TestModule gust("PMGust.dll", plane);
    LetBlow(gust, plane, 0.3f);
    gust.Run(plane, 2);
    for (const uint64_t qwTick : {(uint64_t)1 << 40, (uint64_t)1000, ~(uint64_t)0, (uint64_t)0}) {
        const Centroid before = CentroidOf(plane);
        plane.context.qwTick = qwTick;
        gust.Draw(plane);
        const Centroid after = CentroidOf(plane);
        EXPECT_LT(std::hypot(after.x - before.x, after.y - before.y), 14);
    }
    ExpectSoundPlane(plane, "PMGust.dll");
}

TEST(StockGust, FollowsThePlaneToAnotherSizeWithAndWithoutABringUp)
{
    TestPlane plane(301, 203, true, 256);
    TestModule gust("PMGust.dll", plane);
    const int32_t anSize[][2] = {{301, 700}, {640, 360}, {640, 360}, {129, 900}, {1280, 720}, {1280, 203}};
    for (int32_t i = 0; i < 6; i++) {
        if (i & 1)
            gust.CleanUp();
        plane.Resize(anSize[i][0], anSize[i][1]);
        plane.info.bIndexed = i != 3;
        if (i & 1)
            gust.BringUp(plane, 3);
        DrawDisc(plane, 60, 60, 50);
        gust.Run(plane, 3);
        ExpectSoundPlane(plane, "resized");
        EXPECT_GT(CentroidOf(plane).fMass, 1000);
    }
}

TEST(StockPainters, ControlsStartInsideTheirRangesAndSomeMoveByThemselves)
{
    uint32_t dwSources = 0;
    for (const char *szDll : aszDrawing) {
        TestPlane plane(128, 128, true, 256);
        TestModule module(szDll, plane);
        for (const auto &pctl : module.apControl) {
            const ControlBase &base = pctl->Base;
            const std::string name = DottedName(*pctl);
            dwSources |= base.dwSource;
            EXPECT_EQ(base.dwSource, base.dwDefaultSource) << name;
            EXPECT_TRUE(base.dwSource & base.dwSourceMask) << name;
            EXPECT_NE(base.szDescription[0], 0) << name;
            const ControlFloat &f = pctl->Float;
            if (base.dwType == CONTROLTYPE_FLOAT) {
                EXPECT_TRUE(f.fAbsMin <= f.fMin && f.fMin < f.fMax && f.fMax <= f.fAbsMax) << name;
                EXPECT_TRUE(f.fAbsMin <= f.fValue && f.fValue <= f.fAbsMax) << name;
            }
        }
    }
    EXPECT_EQ(dwSources & (FLUIDSOURCE_ANIMATED | FLUIDSOURCE_RANDOM),
              (uint32_t)(FLUIDSOURCE_ANIMATED | FLUIDSOURCE_RANDOM));
}
