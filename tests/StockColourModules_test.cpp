// StockColourModules_test.cpp -- CMPalette's files and the colour effects
#include "tests/ColourHost.h"

#include "stock/common/PaletteColor.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include <unistd.h>

namespace {

std::vector<uint32_t> TableOf(const ColourHost &host)
{
    std::vector<uint32_t> adw(host.adwTable.begin(), host.adwTable.begin() + host.plane.nColors);
    for (uint32_t &dw : adw)
        dw &= 0xFFFFFF;
    return adw;
}

void SetBoolean(const ColourModule *pModule, std::u16string_view szName, bool bState)
{
    FindControl(pModule, szName)->Boolean.bState = bState;
}

// A plane on which Palette Files walks through a list as the host does: one file on at each reset.
class PaletteFiles : public ::testing::Test {
  protected:
    // A full palette of a few colours.
    std::u16string Write(const std::string &name, const std::vector<uint32_t> &adw) const
    {
        std::string bytes("\0i\0B", 4);
        bytes += {(char)adw.size(), 0, 0, 0};
        for (const uint32_t dw : adw)
            bytes += {(char)(dw >> 16), (char)(dw >> 8), (char)dw};
        return folder.Write(name, bytes).u16string();
    }
    void Start(std::vector<std::u16string> aList)
    {
        aFile = std::move(aList);
        AddPlainShift(&host, 1, 3);
        pFiles = host.Add("CMPalette.dll");
        for (const char16_t *psz : {u"Interpolate", u"Black Start"})
            SetBoolean(pFiles, psz, false);
        ResetFiles();
    }
    void ResetFiles()
    {
        ControlFileSelect &select = FindControl(pFiles, u"Files")->FileSelect;
        memset(select.szCurrentFile, 0, sizeof select.szCurrentFile);
        if (!aFile.empty())
            aFile[nResets % aFile.size()].copy(select.szCurrentFile, CONTROL_TEXT - 1);
        nResets++;
        host.Reset(pFiles);
    }
    void Frames(int n)
    {
        for (int i = 0; i < n; i++) {
            host.Frame(50);
            if (pFiles->dwResult == MODULEDRAW_RESET)
                ResetFiles();
        }
    }
    std::vector<uint32_t> First() const
    {
        std::vector<uint32_t> adw;
        for (int32_t i = 0; i < host.plane.nColors; i++)
            adw.push_back(
                (uint32_t)(host.pInfo->abRed1[i] << 16 | host.pInfo->abGreen1[i] << 8 | host.pInfo->abBlue1[i]));
        return adw;
    }

    TempFolder folder;
    std::vector<std::u16string> aFile;
    ColourHost host{4, 4, 3};
    ColourModule *pFiles = nullptr;
    size_t nResets = 0;
};

// Effects on a table that this test fills in the place of an interpolator.
struct EffectBench {
    ColourHost host{4, 4, 8};
    SoundFrame sound = {};
    std::vector<uint32_t> adw;

    explicit EffectBench(int32_t nColors = 256)
    {
        host.plane.nColors = nColors;
        for (int32_t i = 0; i < nColors; i++) {
            const uint32_t n = (uint32_t)(i * 255 / nColors), nHump = n < 128 ? n * 2 : 510 - 2 * n;
            adw.push_back(nHump << 16 | n << 8 | (255 - n) * nHump / 255);
        }
        host.plane.pSound = &sound;
    }
    std::vector<uint32_t> Frame(bool bFill = true, uint64_t nMs = 20)
    {
        if (bFill)
            std::copy(adw.begin(), adw.end(), host.adwTable.begin());
        host.Frame(nMs);
        return TableOf(host);
    }
};

int FarthestGun(const std::vector<uint32_t> &adw1, const std::vector<uint32_t> &adw2)
{
    int nMost = adw1.size() == adw2.size() ? 0 : 999;
    for (size_t i = 0; i < std::min(adw1.size(), adw2.size()); i++)
        for (int nShift = 0; nShift < 24; nShift += 8)
            nMost = std::max(nMost, std::abs((int)(adw1[i] >> nShift & 255) - (int)(adw2[i] >> nShift & 255)));
    return nMost;
}

} // namespace

TEST_F(PaletteFiles, TheFirstFrameShowsTheFileAndTheNextFollowsWhenItIsWanted)
{
    const std::vector<uint32_t> adwRed = {0, 0x300000, 0xF00000}, adwBlue = {0, 0x40, 0xA0, 0xF0};
    Start({Write("red.pal", adwRed), Write("blue.pal", adwBlue)});
    Frames(1);
    EXPECT_EQ(adwRed, First());
    EXPECT_EQ(1u, nResets);
    Frames(100); // 3 seconds of rest, 1 of transition
    EXPECT_EQ(adwBlue, First());
    EXPECT_EQ(2u, nResets);
    Frames(85);
    EXPECT_EQ(adwRed, First());
}

TEST_F(PaletteFiles, BrokenAndVanishedFilesArePassedOverAndThePaletteStays)
{
    const std::vector<uint32_t> adwRed = {0, 0x300000, 0xF00000}, adwBlue = {0, 0x40, 0xF0};
    folder.Write("bad.pal", "no palette");
    Start({Write("red.pal", adwRed), (folder / "bad.pal").u16string(), u"/nowhere/at all.pal", Write("none.pal", {}),
           Write("blue.pal", adwBlue)});
    Frames(70);
    EXPECT_EQ(adwRed, First());
    Frames(20);
    EXPECT_LT(nResets, 5u) << "a list of broken files is walked slowly";
    EXPECT_EQ(adwRed, First());
    Frames(70);
    EXPECT_EQ(adwBlue, First());
    std::filesystem::remove(folder / "red.pal");
    std::filesystem::remove(folder / "blue.pal");
    Frames(400);
    EXPECT_EQ(adwBlue, First());
}

TEST_F(PaletteFiles, WithoutAnyFileTheInterpolatorShowsItsOwnAndWaitsForAList)
{
    Start({});
    Frames(200);
    EXPECT_EQ(1u, nResets);
    ASSERT_EQ(256, host.plane.nColors);
    EXPECT_GT(std::set<uint32_t>(host.adwTable.begin(), host.adwTable.begin() + 256).size(), 60u);
    aFile = {Write("red.pal", {0, 0x300000, 0xF00000})};
    ResetFiles();
    Frames(60);
    EXPECT_EQ((std::vector<uint32_t>{0, 0x300000, 0xF00000}), First());
}

TEST_F(PaletteFiles, TheOptionsShapeThePalette)
{
    const std::vector<uint32_t> adw = {0x111111, 0x222222, 0x333333, 0x444444};
    Start({Write("steps.pal", adw)});
    const auto shaped = [this] {
        nResets = 0;
        host.pInfo = std::make_unique<PaletteInfo>(); // an empty plane
        host.plane.pPaletteInfo = host.pInfo.get();
        host.plane.nColors = 0;
        for (auto &pModule : host.apModule)
            host.BringUp(pModule.get());
        ResetFiles();
        Frames(1);
        return First();
    };
    SetBoolean(pFiles, u"Reverse", true);
    EXPECT_EQ((std::vector<uint32_t>{0x111111, 0x444444, 0x333333, 0x222222}), shaped());
    SetBoolean(pFiles, u"Reverse", false);
    SetFloat(pFiles, u"Turn", 0.5f);
    EXPECT_EQ((std::vector<uint32_t>{0x333333, 0x444444, 0x111111, 0x222222}), shaped());
    SetFloat(pFiles, u"Turn", 0);
    SetBoolean(pFiles, u"There and Back", true);
    const std::vector<uint32_t> folded = shaped();
    ASSERT_EQ(8u, folded.size());
    for (size_t i = 1; i < 8; i++)
        EXPECT_EQ(folded[i], folded[8 - i]);
    SetBoolean(pFiles, u"There and Back", false);
    SetBoolean(pFiles, u"Interpolate", true);
    SetBoolean(pFiles, u"Black Start", true);
    const std::vector<uint32_t> full = shaped();
    ASSERT_EQ(2048u, full.size());
    EXPECT_EQ(0u, full[0]);
    EXPECT_LT(full[2047] & 255, 0x20u);
    EXPECT_EQ(0x22u, full[683] & 255);
}

TEST(ColourEffects, AnInterpolatorThatSkipsFramesDoesNotMakeThemAddUp)
{
    EffectBench bench;
    ColourModule *pTint = bench.host.Add("CETint.dll"), *pPosterize = bench.host.Add("CEPosterize.dll");
    SetFloat(pTint, u"Hue Turn", 40);
    SetFloat(pTint, u"Brightness", 1.3f);
    SetFloat(pPosterize, u"Amount", 0.5f);
    const std::vector<uint32_t> once = bench.Frame();
    EXPECT_GT(FarthestGun(bench.adw, once), 40);
    for (const bool bFill : {true, false, false, true, false, false, false})
        EXPECT_EQ(once, bench.Frame(bFill));
    std::swap(bench.host.apModule[0], bench.host.apModule[1]); // as a user moves them in the list
    const std::vector<uint32_t> swapped = bench.Frame();
    for (const bool bFill : {false, true, false})
        EXPECT_EQ(swapped, bench.Frame(bFill));
    bench.adw.assign(256, 0xFF808080); // whoever fills the spare byte as well is no trouble
    EXPECT_NE(swapped, bench.Frame());
    bench.adw.assign(256, 0);
    EXPECT_EQ(bench.adw, bench.Frame());
}

TEST(ColourEffects, AtRestTheyLeaveThePaletteAloneAndBlackStaysBlack)
{
    for (const char *pszDll : {"CECycle.dll", "CETint.dll", "CEPosterize.dll", "CEInvert.dll"})
        for (const int32_t nColors : {1, 2, 256, 2048}) {
            EffectBench bench(nColors);
            ColourModule *pEffect = bench.host.Add(pszDll);
            for (int i = 0; i < 50; i++)
                EXPECT_EQ(0u, bench.Frame()[0]) << pszDll << nColors;
            EXPECT_EQ(nColors, bench.host.plane.nColors);
            bench.sound.fLevelA = 1;
            for (auto &pctl : pEffect->apctl)
                if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
                    pctl->Float.fValue = pctl->Float.fAbsMax;
            for (int i = 0; i < 50; i++)
                EXPECT_EQ(0u, bench.Frame()[0]) << pszDll << nColors;
        }
    EffectBench bench;
    ColourModule *apModule[] = {bench.host.Add("CECycle.dll"), bench.host.Add("CETint.dll"),
                                bench.host.Add("CEPosterize.dll"), bench.host.Add("CEInvert.dll")};
    SetFloat(apModule[0], u"Speed", 0);
    SetBoolean(apModule[0], u"Keep Black", false);
    SetBoolean(apModule[3], u"Keep Black", false);
    for (const char16_t *psz : {u"Saturation", u"Contrast"})
        SetFloat(apModule[1], psz, 1);
    for (ColourModule *pModule : {apModule[2], apModule[3]})
        SetFloat(pModule, u"Amount", 0);
    EXPECT_LE(FarthestGun(bench.adw, bench.Frame()), 3);
}

TEST(ColourEffects, TheCycleBringsEachColorRoundAndBackAgain)
{
    EffectBench bench;
    ColourModule *pCycle = bench.host.Add("CECycle.dll");
    SetFloat(pCycle, u"Speed", 30);
    SetFloat(pCycle, u"Push", 0);
    SetBoolean(pCycle, u"Keep Black", false);
    std::set<uint32_t> seen;
    int nAway = 0, nHome = 0;
    for (int i = 0; i < 400; i++) { // 8 seconds, somewhat less than four rounds
        const std::vector<uint32_t> table = bench.Frame();
        seen.insert(table[128] >> 8 & 255);
        const int nFar =
            FarthestGun({bench.adw.begin() + 8, bench.adw.end() - 8}, {table.begin() + 8, table.end() - 8});
        nAway += nFar > 100;
        nHome += i > 50 && nFar < 16;
    }
    EXPECT_GT(seen.size(), 100u) << "every colour passes";
    EXPECT_GT(nAway, 200);
    EXPECT_TRUE(nHome >= 3 && nHome < 30) << nHome;
    FindControl(pCycle, u"Travel")->ItemSelect.nCurrentItemValue = 1;
    SetFloat(pCycle, u"Span", 0.25f);
    for (int i = 0; i < 400; i++)
        bench.Frame();
    for (int i = 0; i < 200; i++) // colour 0 is led along the first quarter only
        EXPECT_LE(bench.Frame()[0] >> 8 & 255, 70u);
}

TEST(ColourEffects, PosterizeLeavesAsManyColorsAsItSaysAndDrawsLinesBetween)
{
    EffectBench bench;
    ColourModule *pPosterize = bench.host.Add("CEPosterize.dll");
    FindControl(pPosterize, u"Steps")->Integer.nValue = 5;
    SetFloat(pPosterize, u"Softness", 0);
    SetFloat(pPosterize, u"Lines", 0);
    const std::vector<uint32_t> hard = bench.Frame();
    EXPECT_EQ(5u, std::set<uint32_t>(hard.begin(), hard.end()).size());
    SetFloat(pPosterize, u"Lines", 0.4f);
    std::vector<uint32_t> lined;
    for (int i = 0; i < 200; i++)
        lined = bench.Frame();
    int nLines = 0;
    for (size_t i = 1; i < lined.size(); i++)
        nLines += lined[i] == 0 && lined[i - 1] != 0;
    EXPECT_EQ(4, nLines) << "three, and the black band with those beside it";
}

TEST(ColourEffects, InvertGoesAllTheWayToTheNegativeAndHuesToTheirOpposites)
{
    CodeTables tables;
    MakeCodeTables(&tables);
    for (const uint32_t dwKind : {0u, 1u}) {
        EffectBench bench(64);
        bench.adw.assign(64, 0x8A6E72); // a pale color, whose opposites a screen can show
        ColourModule *pInvert = bench.host.Add("CEInvert.dll");
        FindControl(pInvert, u"Kind")->ItemSelect.nCurrentItemValue = dwKind;
        SetFloat(pInvert, u"Amount", 1);
        SetBoolean(pInvert, u"Keep Black", false);
        std::vector<uint32_t> table;
        for (int i = 0; i < 1000; i++)
            table = bench.Frame();
        const Lab c = LabOfCodes(&tables, 0x8A, 0x6E, 0x72);
        const uint32_t dw = table[32];
        const Lab cNew = LabOfCodes(&tables, (uint8_t)(dw >> 16), (uint8_t)(dw >> 8), (uint8_t)dw);
        EXPECT_NEAR(dwKind ? 1 - c.L : c.L, cNew.L, 0.01);
        EXPECT_NEAR(dwKind ? c.a : -c.a, cNew.a, 0.01);
        EXPECT_NEAR(dwKind ? c.b : -c.b, cNew.b, 0.01);
    }
}
