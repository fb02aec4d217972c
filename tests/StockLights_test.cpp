// StockLights_test.cpp -- blur, fade, automaton, edge and the effects for post-processing: what could break in them
#include "PainterHost.h"
#include "stock/DEAutomaton/CellGrid.h"

#include <gtest/gtest.h>

static const char *const aszLights[] = {"DEBlur.dll", "DEFade.dll",     "DEAutomaton.dll", "DEEdge.dll",
                                        "PPGlow.dll", "PPVignette.dll", "PPScanLines.dll", "PPSharpen.dll"};

static void FillAtRandom(TestPlane &plane, uint32_t nSeed, uint32_t dwMask)
{
    std::mt19937 random(nSeed);
    for (size_t i = 0; i < plane.Pixels(); i++)
        plane.Bits()[i] = (uint32_t)random() & dwMask;
}

static void SetEnd(ControlRecord *pctl, int32_t iEnd)
{
    const float afValue[] = {pctl->Float.fAbsMin, pctl->Float.fAbsMax, NAN, INFINITY};
    const int32_t anValue[] = {pctl->Integer.nAbsMin, pctl->Integer.nAbsMax, INT32_MIN, INT32_MAX};
    if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
        pctl->Float.fValue = afValue[iEnd];
    else if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
        pctl->Integer.nValue = anValue[iEnd];
    else if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
        pctl->ItemSelect.nCurrentItemValue =
            (uint32_t)(iEnd == 1 ? pctl->ItemSelect.nItems - 1 : (uint32_t)anValue[iEnd]);
    else
        pctl->Boolean.bState = iEnd & 1;
}

static void ExpectInsideThePalette(TestPlane &plane, const char *szDll)
{
    EXPECT_TRUE(plane.WallsStand()) << szDll;
    const uint32_t nColors = plane.info.nColors > 0 ? (uint32_t)plane.info.nColors : 256;
    for (const uint32_t dwPixel : plane.Picture())
        if (plane.info.bIndexed && dwPixel >= nColors)
            FAIL() << szDll << ' ' << dwPixel << " of " << nColors;
}

TEST(StockLights, BearOddSizesAndTheEndsOfEveryControl)
{
    const int32_t anSize[][3] = {{1, 1, 2}, {3, 130, 256}, {131, 5, 2048}, {167, 129, 1}};
    for (const char *szDll : aszLights)
        for (const auto &size : anSize)
            for (const int32_t iKind : {0, 1, 2}) {
                TestPlane plane(size[0], size[1], iKind == 0, size[2]);
                plane.info.hbmResolved = iKind == 2 ? nullptr : &plane.resolved;
                plane.info.pSound = nullptr;
                TestModule module(szDll, plane);
                for (int32_t iEnd = 0; iEnd < 4; iEnd++) {
                    for (auto &pctl : module.apControl)
                        SetEnd(pctl.get(), iEnd);
                    FillAtRandom(plane, 3, 0xFFFFFF);
                    module.Run(plane, 1, 12);
                    if (iEnd > 1)
                        module.Reset(plane, 5);
                    module.Run(plane, 2, 12);
                    if (iKind == 0 && std::string(szDll).rfind("DE", 0) == 0)
                        ExpectInsideThePalette(plane, szDll);
                    EXPECT_TRUE(plane.WallsStand()) << szDll;
                }
                plane.Resize(size[1], size[0]); // without a bring-up
                module.Run(plane, 2, 12);
                EXPECT_TRUE(plane.WallsStand()) << szDll;
            }
}

// Also under windows of a broken width that reach far beyond the picture, and with a top byte of its own.
TEST(StockLights, AnEvenPictureStaysEvenUnderBlurAndSharpen)
{
    for (const char *szDll : {"DEBlur.dll", "PPSharpen.dll"})
        for (const bool bIndexed : {true, false})
            for (const float fRadius : {0.3f, 1.7f, 7.9f})
                for (const uint32_t dwPixel : {0u, 1u, 0x7F0180FFu, 0xFFFFFFFFu}) {
                    TestPlane plane(211, 173, bIndexed, 256);
                    plane.info.hbmResolved = nullptr;
                    plane.Fill(bIndexed ? dwPixel & 255 : dwPixel);
                    const auto before = plane.Picture();
                    TestModule module(szDll, plane);
                    const bool bBlur = std::string(szDll) == "DEBlur.dll";
                    module.Set(bBlur ? "Blur.Radius" : "Sharpen.Radius", fRadius);
                    for (const float fShape : {0.0f, 1.0f}) {
                        if (bBlur)
                            module.Set("Blur.Shape", fShape);
                        module.Reset(plane, 1);
                        module.Run(plane, 3);
                        EXPECT_EQ(before, plane.Picture()) << szDll << ' ' << fRadius << ' ' << dwPixel;
                    }
                }
}

// The mean of a window, worked out the slow way, to the rounding.
TEST(StockLights, BlurGivesTheMeanOfItsWindow)
{
    for (const bool bIndexed : {true, false}) {
        const int32_t nSide = 100, nRadius = 6; // 6 % of 100 rows
        TestPlane plane(nSide, nSide, bIndexed, 2048);
        plane.info.hbmResolved = nullptr;
        FillAtRandom(plane, 8, bIndexed ? 2047 : 0xFFFFFFFF);
        const auto before = plane.Picture();
        TestModule blur("DEBlur.dll", plane);
        blur.Set("Blur.Radius", nRadius);
        blur.Set("Blur.Stretch", 0);
        blur.Set("Mix.Amount", 1);
        blur.Reset(plane, 1);
        blur.Draw(plane);
        for (const int32_t i : {0, 99, 5050, 4207, 9999}) {
            const int32_t xMiddle = i % nSide, yMiddle = i / nSide;
            double fSum = 0;
            for (int32_t y = yMiddle - nRadius; y <= yMiddle + nRadius; y++)
                for (int32_t x = xMiddle - nRadius; x <= xMiddle + nRadius; x++) {
                    const uint32_t dw = before[(size_t)(std::clamp(y, 0, 99) * nSide + std::clamp(x, 0, 99))];
                    fSum += bIndexed ? dw : dw >> 8 & 255;
                }
            const uint32_t dwNew = plane.Bits()[i];
            EXPECT_NEAR(bIndexed ? dwNew : dwNew >> 8 & 255, fSum / (13 * 13), 1.6) << bIndexed << ' ' << i;
            if (!bIndexed) {
                EXPECT_EQ(dwNew >> 24, before[(size_t)i] >> 24);
            }
        }
    }
}

static size_t CountLit(TestPlane &plane)
{
    size_t nLit = 0;
    for (size_t i = 0; i < plane.Pixels(); i++)
        nLit += plane.Bits()[i] != 0;
    return nLit;
}

// A drawing may take less than a tenth of a step from a value: it has to arrive all the same.
TEST(StockLights, AFadeEndsAtItsTargetInItsTimeAtAnyRate)
{
    for (const bool bIndexed : {true, false})
        for (const int32_t nColors : {2, 256, 2048})
            for (const float fTime : {1.0f, 20.0f}) {
                TestPlane plane(61, 33, bIndexed, nColors);
                plane.Fill(bIndexed ? (uint32_t)nColors - 1 : 0x00FFFFFF);
                TestModule fade("DEFade.dll", plane);
                fade.Set("Fade.Time", fTime);
                fade.Set("Fade.Curve", fTime > 1 ? 0.9f : 0);
                fade.Set("Target.Edges", 0);
                fade.Reset(plane, 1);
                const int32_t nRate = fTime > 1 ? 200 : 30;
                fade.Run(plane, (int32_t)(fTime * 0.5f * (float)nRate), nRate);
                EXPECT_GT(CountLit(plane), plane.Pixels() / 20) << bIndexed << ' ' << nColors;
                fade.Run(plane, (int32_t)(fTime * 0.75f * (float)nRate), nRate);
                EXPECT_LE(CountLit(plane), nColors == 2 && bIndexed ? plane.Pixels() / 3 : 0)
                    << bIndexed << ' ' << nColors << ' ' << fTime;
            }
}

TEST(StockLights, GlowNeverDarkensAndShinesBeyondItsSource)
{
    for (const float fMix : {0.0f, 1.0f}) {
        TestPlane plane(190, 143, false, 256);
        plane.info.hbmResolved = nullptr;
        FillAtRandom(plane, 2, 0xFF3F3F3F);
        for (int32_t y = 60; y < 80; y++)
            std::fill_n(plane.Bits() + y * 190 + 80, 20, 0x00FFF0E0u);
        const auto before = plane.Picture();
        TestModule glow("PPGlow.dll", plane);
        glow.Set("Glow.Mix", fMix);
        glow.Set("Glow.Strength", 2);
        glow.Reset(plane, 1);
        glow.Draw(plane);
        uint64_t qwBefore = 0, qwAfter = 0;
        for (int32_t i = 0; i < 190 * 143; i++) {
            const uint32_t dwOld = before[(size_t)i], dwNew = plane.Bits()[i];
            EXPECT_EQ(dwOld >> 24, dwNew >> 24);
            for (uint32_t n = 0; n < 24; n += 8)
                ASSERT_GE(dwNew >> n & 255, dwOld >> n & 255) << i;
            const bool bNear = std::hypot(i % 190 - 90, i / 190 - 70) < 22;
            qwBefore += bNear ? dwOld >> 8 & 255 : 0;
            qwAfter += bNear ? dwNew >> 8 & 255 : 0;
        }
        EXPECT_GT(qwAfter, qwBefore + qwBefore / 20) << fMix;
    }
}

static bool IsPushed(const std::vector<uint8_t> &cells, int32_t nColumns, int32_t nRows, int32_t i,
                     const CellRule &rule)
{
    const int32_t nReach = rule.dwNeighbours == NEIGHBOURS_24 ? 2 : 1;
    const uint8_t bCell = cells[(size_t)i];
    int32_t nCount = 0;
    for (int32_t yOff = -nReach; yOff <= nReach; yOff++)
        for (int32_t xOff = -nReach; xOff <= nReach; xOff++) {
            if ((!xOff && !yOff) || (rule.dwNeighbours == NEIGHBOURS_4 && xOff && yOff))
                continue;
            const int32_t x = (i % nColumns + xOff + 2 * nColumns) % nColumns;
            const int32_t y = (i / nColumns + yOff + 2 * nRows) % nRows;
            const uint8_t bOther = cells[(size_t)(y * nColumns + x)];
            nCount += rule.dwRule == RULE_CYCLIC ? bOther == (bCell + 1) % rule.bStates
                                                 : bOther >= 1 && bOther <= rule.bStates / 3;
        }
    return nCount >= rule.bThreshold || (rule.dwRule == RULE_EXCITABLE && bCell);
}

TEST(StockLights, TheAutomatonFollowsItsRuleOnATorus)
{
    const int32_t anSize[][2] = {{1, 1}, {2, 5}, {37, 19}};
    for (const auto &size : anSize)
        for (const uint32_t dwRule : {RULE_CYCLIC, RULE_EXCITABLE})
            for (const uint32_t dwNeighbours : {NEIGHBOURS_4, NEIGHBOURS_8, NEIGHBOURS_24}) {
                const CellRule rule = {dwRule, dwNeighbours, 5, (uint8_t)(1 + dwNeighbours)};
                CellGrid grid;
                ASSERT_TRUE(MakeCells(&grid, size[0], size[1]));
                StockRandom random = {4};
                std::vector<uint8_t> cells((size_t)(size[0] * size[1])), next = cells;
                for (size_t i = 0; i < cells.size(); i++) {
                    cells[i] = (uint8_t)RandomBelow(&random, 5);
                    PutCell(grid, (int32_t)i % size[0], (int32_t)i / size[0], cells[i]);
                }
                for (int32_t iGeneration = 0; iGeneration < 6; iGeneration++) {
                    for (size_t i = 0; i < cells.size(); i++)
                        next[i] = (uint8_t)(IsPushed(cells, size[0], size[1], (int32_t)i, rule) ? (cells[i] + 1) % 5
                                                                                                : cells[i]);
                    cells = next;
                    StepCells(&grid, rule);
                    for (size_t i = 0; i < cells.size(); i++)
                        ASSERT_EQ(CellRow(grid, grid.pbCells, (int32_t)i / size[0])[i % (size_t)size[0]], cells[i]);
                }
                FreeCells(&grid);
            }
}

// Without sound and without anything painted.
TEST(StockLights, TheAutomatonStaysAlive)
{
    for (const float fRule : {0.0f, 1.0f})
        for (const float fThreshold : {3.0f, 8.0f}) {
            TestPlane plane(160, 90, true, 256);
            TestModule automaton("DEAutomaton.dll", plane);
            automaton.Set("Rule.Rule", fRule);
            automaton.Set("Rule.Threshold", fThreshold);
            automaton.Set("Cells.Size", 2);
            automaton.Set("Life.Seeds", 0);
            automaton.Run(plane, 1500, 30);
            size_t nChanged = 0;
            for (int32_t i = 0; i < 4; i++) {
                const auto before = plane.Picture();
                automaton.Run(plane, 30, 30);
                for (size_t k = 0; k < before.size(); k++)
                    nChanged += before[k] != plane.Bits()[k];
            }
            EXPECT_GT(nChanged, plane.Pixels() / 100) << fRule << ' ' << fThreshold;
        }
}
