// ColorStrips_test.cpp -- tests ColorStrips.cpp, pixel by pixel against a slow drawing
#include "controls/panels/ColorStrips.h"

#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

constexpr u32 UNTOUCHED = 0x12345678;

class ColorStrip : public testing::Test {
  protected:
    void SetUp() override
    {
        SetDefaultUIColors();
        pi.lpColorTable = table.data();
        pi.pPaletteInfo = pInfo.get();
        std::mt19937 rng(7);
        for (u32 &dw : table)
            dw = static_cast<u32>(rng());
        for (u32 i = 0; i < PALETTE_COLORS_MAX; i++)
            for (u8 *pab :
                 {pInfo->abRed1, pInfo->abGreen1, pInfo->abBlue1, pInfo->abRed2, pInfo->abGreen2, pInfo->abBlue2})
                pab[i] = static_cast<u8>(rng());
    }
    // The pixel, found from the table alone: which band, which of its rows, which colour.
    u32 Wanted(i32 x, i32 y, i32 w, i32 h) const
    {
        const bool bMeter = settings.ShowPrg && pInfo->nSteps > 0 && pInfo->nStep < pInfo->nSteps;
        const i32 hBands = h - (bMeter ? std::min(h, std::max(h / 6, 8)) : 0);
        if (y >= hBands)
            return Meter(x, w);
        const std::string bands = std::string("t") + (settings.ShowMP ? "12" : "") + (settings.ShowRGB ? "rgb" : "");
        i32 nRows = 1;
        while (!settings.ShowOneRow && nRows * w < pi.nColors)
            nRows++;
        const i32 iRow = y * nRows * static_cast<i32>(bands.size()) / hBands;
        const i32 i = (iRow % nRows * w + x) * pi.nColors / (w * nRows);
        return 0xFF000000 | Color(bands[static_cast<size_t>(iRow / nRows)], static_cast<size_t>(i));
    }
    u32 Color(char cBand, size_t i) const
    {
        const u32 dw = table[i] & 0xFFFFFF;
        switch (cBand) {
        case '1':
            return pInfo->abRed1[i] * 65536u + pInfo->abGreen1[i] * 256u + pInfo->abBlue1[i];
        case '2':
            return pInfo->abRed2[i] * 65536u + pInfo->abGreen2[i] * 256u + pInfo->abBlue2[i];
        case 'r':
            return dw / 65536 * 65536;
        case 'g':
            return dw / 256 % 256 * 256;
        case 'b':
            return dw % 256;
        default:
            return dw;
        }
    }
    u32 Meter(i32 x, i32 w) const
    {
        std::vector<u32> row(static_cast<size_t>(w));
        FillProgressStrip(row, static_cast<f32>(pInfo->nStep) / static_cast<f32>(pInfo->nSteps),
                          UIColorTable[UICOLOR_METER_LOW].dwColor, UIColorTable[UICOLOR_METER_HIGH].dwColor);
        return row[static_cast<size_t>(x)];
    }
    void Compare(i32 w, i32 h)
    {
        std::vector<u32> picture(static_cast<size_t>(w * h), UNTOUCHED);
        TakeColorState(pState.get(), pi);
        ASSERT_EQ(1u, DrawColorStrip(*pState, settings, w, picture));
        for (i32 y = 0; y < h; y++)
            for (i32 x = 0; x < w; x++)
                ASSERT_EQ(Wanted(x, y, w, h), picture[static_cast<size_t>(y * w + x)])
                    << "column " << x << ", row " << y << " of " << w << " x " << h << ", " << pi.nColors << " colours";
    }

    std::vector<u32> table = std::vector<u32>(PALETTE_COLORS_MAX);
    std::unique_ptr<PaletteInfo> pInfo = std::make_unique<PaletteInfo>();
    std::unique_ptr<ColorState> pState = std::make_unique<ColorState>();
    PlaneInfo pi = {};
    std::unique_ptr<GlobalSettingsRecord> pSettings = std::make_unique<GlobalSettingsRecord>();
    GlobalSettingsRecord &settings = *pSettings;
};

TEST_F(ColorStrip, ShowsTheBandsThatAreSwitchedOnAtAnySize)
{
    pInfo->nSteps = 100;
    for (u32 dwSwitches = 0; dwSwitches < 16; dwSwitches++) {
        for (u32 i = 0; i < 4; i++)
            settings.*ColorSwitches()[i].pbOn = dwSwitches >> i & 1;
        for (const i32 nColors : {1, 2, 255, 256, 700, 2048})
            for (const auto &[w, h] : {std::pair{256, 90}, {97, 33}, {1, 7}, {300, 1}}) {
                pi.nColors = nColors;
                pInfo->nStep = 30 + nColors % 100;
                Compare(w, h);
            }
    }
}

TEST_F(ColorStrip, MetersATransitionOnlyWhileOneIsUnderWay)
{
    settings.ShowPrg = settings.ShowOneRow = 1;
    pi.nColors = 256;
    const std::pair<i32, i32> aStep[] = {{0, 10}, {9, 10}, {10, 10}, {11, 10}, {0, 0}, {-5, -1}};
    for (const auto &[nStep, nSteps] : aStep) {
        pInfo->nStep = nStep;
        pInfo->nSteps = nSteps;
        Compare(120, 60);
    }
}

TEST_F(ColorStrip, ShowsNothingOfAPlaneWithoutColours)
{
    std::vector<u32> picture(50, UNTOUCHED);
    for (const i32 nColors : {0, -1}) {
        pi.nColors = nColors;
        TakeColorState(pState.get(), pi);
        EXPECT_EQ(0u, DrawColorStrip(*pState, settings, 10, picture));
    }
    pi.nColors = 5;
    TakeColorState(pState.get(), pi);
    EXPECT_EQ(0u, DrawColorStrip(*pState, settings, 0, {}));
    pi.lpColorTable = nullptr;
    TakeColorState(pState.get(), pi);
    EXPECT_EQ(0u, DrawColorStrip(*pState, settings, 10, picture));
    EXPECT_EQ(std::vector<u32>(50, UNTOUCHED), picture);
}

TEST_F(ColorStrip, HearsOfEachChangeOnceAndOfNoneInWhatItDoesNotShow)
{
    pi.nColors = 300;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    EXPECT_EQ(0u, TakeColorState(pState.get(), pi));
    table[5] ^= 0x77000000; // the modules' own byte
    table[300] ^= 1;        // not in use
    pInfo->abModules0[0]++;
    EXPECT_EQ(0u, TakeColorState(pState.get(), pi));
    table[299] ^= 1;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    pInfo->nStep++;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    pInfo->abBlue2[0]++;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    pi.nColors = 100000;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    EXPECT_EQ(PALETTE_COLORS_MAX, pState->nColors) << "no more than the table holds";
    pi.pPaletteInfo = nullptr;
    EXPECT_EQ(1u, TakeColorState(pState.get(), pi));
    EXPECT_EQ(0u, pState->adwTo[0] | pState->adwFrom[1]);
}

TEST(ColorStripPlaces, DivideTheHeightEvenlyFromEdgeToEdge)
{
    for (i32 nStrips = 1; nStrips <= 4; nStrips++)
        for (const i32 nHeight : {100, 101, 103, 1080}) {
            i32 yNext = 0;
            for (i32 i = 0; i < nStrips; i++) {
                const ColorStripPlace place = PlaceColorStrip(i, nStrips, nHeight, 2);
                EXPECT_NEAR((nHeight + 2) / nStrips - 2, place.yBottom - place.yTop, 1);
                EXPECT_EQ(yNext, place.yTop);
                yNext = place.yBottom + 2;
            }
            EXPECT_EQ(nHeight + 2, yNext);
        }
}

TEST(ColorStripPlaces, StayInOrderWhereThereIsNoRoom)
{
    for (const i32 nHeight : {0, 1, 3, 8})
        for (i32 i = 0; i < 4; i++) {
            const ColorStripPlace place = PlaceColorStrip(i, 4, nHeight, 2);
            EXPECT_LE(place.yTop, place.yBottom);
            EXPECT_LE(place.yBottom, std::max(nHeight, 2));
        }
}

} // namespace
