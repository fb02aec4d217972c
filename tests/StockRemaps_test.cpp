// StockRemaps_test.cpp -- tests the stock effects that move pixels, through their entry points
#include "PainterHost.h"

#include <gtest/gtest.h>

static const char *const aszRemaps[] = {"DEZoom.dll",   "DEKaleido.dll",  "DEMirror.dll",    "DESwirl.dll",
                                        "DERipple.dll", "DEPixelate.dll", "DEColorShift.dll"};

static uint32_t PixelAt(TestPlane &plane, int32_t x, int32_t y)
{
    return plane.Bits()[y * plane.info.nWidth + x];
}

static void FillWithNoise(TestPlane &plane, uint32_t dwSeed)
{
    std::mt19937 random(dwSeed);
    for (size_t i = 0; i < plane.Pixels(); i++)
        plane.Bits()[i] = plane.info.bIndexed ? (uint32_t)random() % (uint32_t)plane.info.nColors : (uint32_t)random();
}

// Brings the controls to one end of what they can be, at random.
static void SetEnds(TestModule &module, std::mt19937 &random)
{
    for (auto &pctl : module.apControl) {
        const bool bHigh = random() & 1;
        if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
            pctl->Float.fValue = bHigh ? pctl->Float.fAbsMax : pctl->Float.fAbsMin;
        else if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
            pctl->Integer.nValue = bHigh ? pctl->Integer.nAbsMax : pctl->Integer.nAbsMin;
        else if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
            pctl->ItemSelect.nCurrentItemValue = (uint32_t)random() % (pctl->ItemSelect.nItems + 1);
        else
            pctl->Boolean.bState = bHigh;
    }
}

TEST(StockRemaps, StayInsideEveryBitmapAndPaletteWithControlsAtTheirEnds)
{
    const int32_t anSize[][2] = {{1, 1}, {2, 1}, {1, 3}, {3, 7}, {129, 2}, {257, 131}, {8192, 5}};
    for (const char *szDll : aszRemaps)
        for (const bool bIndexed : {true, false})
            for (const auto &size : anSize) {
                std::mt19937 random(5);
                TestPlane plane(size[0], size[1], bIndexed, bIndexed && size[0] > 200 ? 2048 : 3);
                FillWithNoise(plane, 1);
                TestModule module(szDll, plane);
                for (int32_t i = 0; i < 12; i++) {
                    SetEnds(module, random);
                    module.Run(plane, 2, 12);
                }
                uint32_t dwHighest = 0;
                for (const uint32_t dwPixel : plane.Picture())
                    dwHighest = std::max(dwHighest, dwPixel);
                EXPECT_TRUE(plane.WallsStand()) << szDll;
                if (bIndexed) {
                    EXPECT_LT(dwHighest, (uint32_t)plane.info.nColors) << szDll;
                }
            }
}

// The weights of the neighbours add up to one, and every edge mode but black leads back into the picture.
TEST(StockRemaps, AnEvenPictureStaysEven)
{
    for (const char *szDll : aszRemaps)
        for (const bool bIndexed : {true, false})
            for (const int32_t nEdges : {1, 2, 3}) {
                if (!strcmp(szDll, "DEPixelate.dll"))
                    continue;
                TestPlane plane(211, 133, bIndexed, 256);
                plane.Fill(bIndexed ? 255 : 0x40FF8037);
                const auto before = plane.Picture();
                TestModule module(szDll, plane);
                std::mt19937 random(4);
                for (int32_t i = 0; i < 20; i++) {
                    SetEnds(module, random);
                    for (auto &pctl : module.apControl) {
                        const std::string name = DottedName(*pctl);
                        if (name == "Trails.Fade")
                            module.Set("Trails.Fade", 0);
                        else if (name.find("Edges") != std::string::npos)
                            pctl->ItemSelect.nCurrentItemValue = (uint32_t)nEdges;
                    }
                    module.Run(plane, 1, 30);
                }
                EXPECT_EQ(before, plane.Picture()) << szDll << ' ' << bIndexed << ' ' << nEdges;
            }
}

TEST(StockRemaps, AMirroredPictureIsSymmetricToTheByteAndStaysAsItIs)
{
    for (const bool bIndexed : {true, false})
        for (const int32_t nShows : {0, 1, 2, 3, 4}) {
            TestPlane plane(256, 143, bIndexed, 256);
            FillWithNoise(plane, 3);
            const auto before = plane.Picture();
            TestModule mirror("DEMirror.dll", plane);
            mirror.Set("Mirror.Shows", (float)nShows);
            mirror.Reset(plane, 1);
            mirror.Run(plane, 1);
            const auto once = plane.Picture();
            EXPECT_NE(before, once);
            const bool bAcross = nShows < 2 || nShows == 4, bUp = nShows >= 2;
            for (int32_t y = 0; y < 143; y++)
                for (int32_t x = 0; x < 256; x++) {
                    const int32_t xTwin = bAcross ? 255 - x : x, yTwin = bUp ? 142 - y : y;
                    ASSERT_EQ(PixelAt(plane, x, y), PixelAt(plane, xTwin, yTwin)) << nShows << ' ' << x << ' ' << y;
                }
            mirror.Run(plane, 5);
            EXPECT_EQ(once, plane.Picture());
        }
}

// Sector 0 is kept, so a folded picture folds into itself, but for what the others show of beyond the edges.
TEST(StockRemaps, AKaleidoscopeSettlesOnAStillPlane)
{
    for (const bool bIndexed : {true, false}) {
        TestPlane plane(240, 180, bIndexed, 256);
        FillWithNoise(plane, 3);
        TestModule kaleido("DEKaleido.dll", plane);
        for (const char *szName : {"Mirrors.Turn", "Mirrors.Beat", "Middle.Wander", "Middle.Pace"})
            kaleido.Set(szName, 0);
        kaleido.Reset(plane, 1);
        kaleido.Run(plane, 20);
        const auto settled = plane.Picture();
        kaleido.Run(plane, 30);
        size_t nChanged = 0;
        for (size_t i = 0; i < settled.size(); i++)
            nChanged += settled[i] != plane.Bits()[i];
        EXPECT_LT(nChanged, settled.size() / 50);
    }
}

// Between two ends of the palette lies the end of the loop, not its middle.
TEST(StockRemaps, NeighborsOverThePaletteEndMakeNoForeignColors)
{
    TestPlane plane(300, 200, true, 256);
    for (int32_t y = 0; y < 200; y++)
        for (int32_t x = 0; x < 300; x++)
            plane.Bits()[y * 300 + x] = (x / 20 + y / 20) % 2 ? 250 : 6;
    TestModule swirl("DESwirl.dll", plane);
    swirl.Set("Force.Twist", 1);
    swirl.Reset(plane, 2);
    swirl.Run(plane, 60);
    for (const uint32_t dwPixel : plane.Picture())
        ASSERT_TRUE(dwPixel >= 249 || dwPixel <= 7) << dwPixel;
}

TEST(StockRemaps, FadingTrailsOfTheZoomLeaveNoResidue)
{
    for (const bool bIndexed : {true, false}) {
        TestPlane plane(160, 120, bIndexed, 256);
        FillWithNoise(plane, 9);
        if (!bIndexed)
            for (size_t i = 0; i < plane.Pixels(); i++)
                plane.Bits()[i] &= 0xFFFFFF;
        TestModule zoom("DEZoom.dll", plane);
        zoom.Set("Trails.Fade", 0.4f);
        zoom.Run(plane, 60 * 7);
        EXPECT_EQ(plane.Picture(), std::vector<uint32_t>(plane.Pixels())) << bIndexed;
    }
}

TEST(StockRemaps, OnAPlaneTheZoomGoesAsFarInASecondAtEveryFrameRate)
{
    double afReach[2];
    for (int32_t i = 0; i < 2; i++) {
        TestPlane plane(300, 300, false, 256);
        for (int32_t y = 0; y < 300; y++)
            for (int32_t x = 0; x < 300; x++)
                plane.Bits()[y * 300 + x] = std::hypot(x - 149.5, y - 149.5) < 40 ? 0xFFFFFF : 0;
        TestModule zoom("DEZoom.dll", plane);
        for (const char *szName : {"Motion.Beat", "Motion.Slide", "Motion.Wander", "Trails.Fade"})
            zoom.Set(szName, 0);
        zoom.Set("Motion.Zoom", 1);
        zoom.Reset(plane, 1);
        zoom.Run(plane, i ? 60 : 24, i ? 60 : 24);
        double fArea = 0;
        for (const uint32_t dwPixel : plane.Picture())
            fArea += (dwPixel >> 8 & 255) / 255.0;
        afReach[i] = std::sqrt(fArea / 3.14159265);
    }
    EXPECT_NEAR(afReach[0], 79, 4); // a step short of a second: the first call starts the clock
    EXPECT_NEAR(afReach[1], afReach[0], 3);
}

TEST(StockRemaps, ColorShiftLeavesGreenAndAlphaWhereTheyAre)
{
    TestPlane plane(200, 100, false, 256);
    FillWithNoise(plane, 8);
    plane.info.hbmResolved = nullptr;
    const auto before = plane.Picture();
    TestModule shift("DEColorShift.dll", plane);
    shift.Set("Shift.Distance", 5);
    shift.Reset(plane, 1);
    shift.Run(plane, 1);
    size_t nMoved = 0;
    for (size_t i = 0; i < before.size(); i++) {
        ASSERT_EQ(plane.Bits()[i] & 0xFF00FF00u, before[i] & 0xFF00FF00u);
        nMoved += plane.Bits()[i] != before[i];
    }
    EXPECT_GT(nMoved, before.size() / 2);
}
