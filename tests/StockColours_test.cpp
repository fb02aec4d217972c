// StockColours_test.cpp -- CMShift and CMBreed: palettes, transitions, the resolve, the protocol between them
#include "tests/ColourHost.h"

#include "stock/common/PaletteProtocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <thread>

namespace {

struct Chance {
    std::mt19937 engine;
    uint32_t operator()()
    {
        return (uint32_t)engine();
    }
};

// ---- An oracle of its own: Oklab in double precision with the mathematics library

struct Color {
    double L, a, b;
    double Chroma() const
    {
        return std::hypot(a, b);
    }
};

Color ColorOf(uint32_t dwPixel)
{
    double af[3];
    for (int i = 0; i < 3; i++) {
        const double f = ((dwPixel >> (16 - 8 * i)) & 255) / 255.0;
        af[i] = f <= 0.04045 ? f / 12.92 : std::pow((f + 0.055) / 1.055, 2.4);
    }
    const double l = std::cbrt(0.4122214708 * af[0] + 0.5363325363 * af[1] + 0.0514459929 * af[2]);
    const double m = std::cbrt(0.2119034982 * af[0] + 0.6806995451 * af[1] + 0.1073969566 * af[2]);
    const double s = std::cbrt(0.0883024619 * af[0] + 0.2817188376 * af[1] + 0.6299787005 * af[2]);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

double Distance(uint32_t dwPixel1, uint32_t dwPixel2)
{
    const Color c1 = ColorOf(dwPixel1), c2 = ColorOf(dwPixel2);
    return std::hypot(c1.L - c2.L, c1.a - c2.a, c1.b - c2.b);
}

std::vector<uint32_t> FirstPalette(const PaletteInfo &info, int32_t nColors)
{
    std::vector<uint32_t> adw;
    for (int32_t i = 0; i < nColors; i++)
        adw.push_back((uint32_t)(info.abRed1[i] << 16 | info.abGreen1[i] << 8 | info.abBlue1[i]));
    return adw;
}

std::vector<uint32_t> SecondPalette(const PaletteInfo &info, int32_t nColors)
{
    std::vector<uint32_t> adw;
    for (int32_t i = 0; i < nColors; i++)
        adw.push_back((uint32_t)(info.abRed2[i] << 16 | info.abGreen2[i] << 8 | info.abBlue2[i]));
    return adw;
}

std::vector<uint32_t> TableOf(const ColourHost &host)
{
    return {host.adwTable.begin(), host.adwTable.begin() + host.plane.nColors};
}

double MeanDistance(const std::vector<uint32_t> &adw1, const std::vector<uint32_t> &adw2)
{
    double fSum = 0;
    for (size_t i = 0; i < adw1.size(); i++)
        fSum += Distance(adw1[i], adw2[i]);
    return fSum / (double)adw1.size();
}

// Any value of its range for each control.
void SetAnywhere(ColourModule *pModule, Chance *pRandom)
{
    for (auto &pctl : pModule->apctl) {
        const float f = (float)((*pRandom)() % 1001) / 1000;
        if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
            pctl->Float.fValue = pctl->Float.fMin + f * (pctl->Float.fMax - pctl->Float.fMin);
        if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
            pctl->ItemSelect.nCurrentItemValue = (*pRandom)() % pctl->ItemSelect.nItems;
        if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN)
            pctl->Boolean.bState = (*pRandom)() & 1;
        if (pctl->Base.dwType == CONTROLTYPE_INTEGER && pctl->Base.dwSource != FLUIDSOURCE_FIXED)
            pctl->Integer.nValue =
                pctl->Integer.nMin + (int32_t)((*pRandom)() % (uint32_t)(pctl->Integer.nMax - pctl->Integer.nMin + 1));
    }
}

// What sound levels and files can put into a record.
void SetSpoiled(ColourModule *pModule, Chance *pRandom)
{
    const float af[] = {std::numeric_limits<float>::quiet_NaN(),
                        std::numeric_limits<float>::infinity(),
                        -std::numeric_limits<float>::infinity(),
                        -1e30f,
                        1e30f,
                        -0.0f};
    for (auto &pctl : pModule->apctl) {
        if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
            pctl->Float.fValue = af[(*pRandom)() % std::size(af)];
        if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
            pctl->Integer.nValue = (int32_t)(*pRandom)();
        if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
            pctl->ItemSelect.nCurrentItemValue = (*pRandom)();
        if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN)
            pctl->Boolean.bState = (*pRandom)();
    }
}

struct PaletteFigures {
    double fDarkest = 1, fBrightest = 0, fSharpest = 0, fMud = 0, fChroma = 0;
};

PaletteFigures MeasurePalette(const std::vector<uint32_t> &adw)
{
    PaletteFigures figures;
    const double fShare = 1.0 / (double)adw.size();
    for (size_t i = 0; i < adw.size(); i++) {
        const Color c = ColorOf(adw[i]);
        figures.fDarkest = std::min(figures.fDarkest, c.L);
        figures.fBrightest = std::max(figures.fBrightest, c.L);
        figures.fSharpest = std::max(figures.fSharpest, Distance(adw[i], adw[(i + 1) % adw.size()]));
        figures.fChroma += c.Chroma() * fShare;
        figures.fMud += c.L > 0.35 && c.L < 0.75 && c.Chroma() < 0.05 ? fShare : 0;
    }
    return figures;
}

uint64_t FilmOf(uint64_t qwSeed, std::initializer_list<const char *> apszDll)
{
    ColourHost host(7, 5, qwSeed);
    for (const char *psz : apszDll)
        host.Add(psz);
    uint64_t qwSum = 0;
    for (int i = 0; i < 1500; i++) {
        host.Frame(40);
        for (int32_t k = 0; k < host.plane.nColors; k++)
            qwSum = (qwSum ^ host.adwTable[(size_t)k]) * 0x100000001B3u;
    }
    return qwSum;
}

} // namespace

TEST(StockColours, ControlsStartUnchangedAndExplainThemselves)
{
    ColourHost host(8, 8, 1);
    uint32_t dwSources = 0;
    for (const char *pszDll : {"CMShift.dll", "CMBreed.dll"}) {
        const ColourModule *pModule = host.Add(pszDll);
        std::set<std::u16string> names;
        EXPECT_GE(pModule->apctl.size(), 4u);
        for (auto &pctl : pModule->apctl) {
            const ControlBase &base = pctl->Base;
            names.insert(std::u16string(base.szName, CONTROL_TEXT));
            const std::u16string_view szText = base.szDescription;
            EXPECT_TRUE(szText.size() > 20 && szText.back() == u'.');
            EXPECT_EQ(base.dwDefaultSource, base.dwSource);
            EXPECT_EQ(base.dwSource, base.dwSource & base.dwSourceMask);
            EXPECT_EQ(base.nDefaultWavePeriod, base.nWavePeriod);
            EXPECT_EQ(base.nDefaultNoisePeriod, base.nNoisePeriod);
            EXPECT_EQ(base.bDefaultRandomPhase, base.bRandomPhase);
            EXPECT_EQ(base.dwDefaultWaveType, base.dwWaveType);
            EXPECT_EQ(base.nDefaultSamples, base.nSamples);
            dwSources |= base.dwSource;
            if (base.dwType == CONTROLTYPE_FLOAT) {
                const ControlFloat &f = pctl->Float;
                EXPECT_TRUE(f.fDefaultMin == f.fMin && f.fDefaultMax == f.fMax && f.fDefaultValue == f.fValue);
                EXPECT_TRUE(f.fAbsMin <= f.fMin && f.fMin < f.fMax && f.fMax <= f.fAbsMax);
                EXPECT_TRUE(f.fAbsMin <= f.fValue && f.fValue <= f.fAbsMax);
            }
        }
        EXPECT_EQ(pModule->apctl.size(), names.size());
    }
    EXPECT_EQ(FLUIDSOURCE_WAVE | FLUIDSOURCE_SOUND | FLUIDSOURCE_PERIODIC, (int)(dwSources & FLUIDSOURCE_ANIMATED));
}

TEST(StockColours, BredPalettesRunSmoothlyFromBlackToLightAndAreNeverMuddy)
{
    Chance random{std::mt19937(7)};
    double fMeanChroma = 0;
    int nPalettes = 0;
    for (uint64_t qwSeed = 1; qwSeed <= 12; qwSeed++) {
        ColourHost host(4, 4, qwSeed);
        AddPlainShift(&host, 0, 0);
        ColourModule *pBreed = host.Add("CMBreed.dll");
        std::set<std::vector<uint32_t>> seen;
        for (int i = 0; i < 12; i++) {
            SetAnywhere(pBreed, &random);
            host.Frame(600);
            host.Frame(600);
            ASSERT_EQ(256, host.plane.nColors);
            const std::vector<uint32_t> adw = FirstPalette(*host.pInfo, 256);
            const PaletteFigures figures = MeasurePalette(adw);
            EXPECT_EQ(0u, adw[0]);
            EXPECT_GT(figures.fBrightest, 0.75);
            EXPECT_LT(figures.fDarkest, 0.01);
            EXPECT_LT(figures.fSharpest, 0.13);
            EXPECT_LT(figures.fMud, 0.05);
            EXPECT_GT(figures.fChroma, 0.06);
            fMeanChroma += figures.fChroma;
            nPalettes++;
            seen.insert(adw);
        }
        EXPECT_GE(seen.size(), 10u) << "a new palette each time it is asked for";
    }
    EXPECT_GT(fMeanChroma / nPalettes, 0.11);
}

TEST(StockColours, ATransitionLeadsFromTheFirstPaletteToTheSecondWithoutALeap)
{
    for (uint32_t dwOrder = 0; dwOrder < 5; dwOrder++) {
        ColourHost host(4, 4, 40 + dwOrder);
        AddPlainShift(&host, 4, 1, dwOrder);
        host.Add("CMBreed.dll");
        host.Frame(0);
        while (!TransitionUnderWay(host.pInfo.get()))
            host.Frame(20);
        const std::vector<uint32_t> from = FirstPalette(*host.pInfo, 256), to = SecondPalette(*host.pInfo, 256);
        EXPECT_GT(MeanDistance(from, to), 0.05);
        EXPECT_LT(MeanDistance(from, TableOf(host)), 0.03);

        std::vector<uint32_t> last = TableOf(host);
        int32_t nStep = host.pInfo->nStep;
        int nFrames = 0;
        double fMud = 0;
        while (TransitionUnderWay(host.pInfo.get())) {
            host.Frame(20);
            EXPECT_GE(host.pInfo->nStep, nStep);
            nStep = host.pInfo->nStep;
            EXPECT_LT(MeanDistance(last, TableOf(host)), 0.03);
            last = TableOf(host);
            fMud = std::max(fMud, MeasurePalette(last).fMud);
            nFrames++;
        }
        EXPECT_NEAR(200, nFrames, 2);
        EXPECT_LT(fMud, 0.2) << "order " << dwOrder;
        EXPECT_EQ(to, FirstPalette(*host.pInfo, 256));
        EXPECT_LT(MeanDistance(to, TableOf(host)), 0.03);
    }
}

TEST(StockColours, EmptyPlacesStayBlackAndTheLoopClosesWhateverTheControlsDo)
{
    Chance random{std::mt19937(11)};
    ColourHost host(4, 4, 5);
    ColourModule *pShift = host.Add("CMShift.dll"), *pBreed = host.Add("CMBreed.dll");
    for (int i = 0; i < 600; i++) {
        if (i % 20 == 0) {
            SetAnywhere(pShift, &random);
            SetAnywhere(pBreed, &random);
        }
        host.Frame(50);
        ASSERT_EQ(256, host.plane.nColors);
        EXPECT_EQ(0u, host.adwTable[0]);
        EXPECT_LT(MeasurePalette(TableOf(host)).fSharpest, 0.3) << i;
    }
}

TEST(StockColours, AnyIndexResolvesToTheColourThatACountRoundThePaletteGives)
{
    Chance random{std::mt19937(3)};
    const std::pair<int32_t, int32_t> aSize[] = {{1, 1}, {3, 7}, {15, 2}, {16, 1}, {17, 3}, {131, 129}};
    for (const auto &[nWidth, nHeight] : aSize)
        for (int32_t nColors : {1, 2, 255, 256, 1000, 2048, 0, -5, 1 << 30}) {
            ColourHost host(nWidth, nHeight, 1);
            const ColourModule *pShift = host.Add("CMShift.dll");
            host.plane.nColors = nColors;
            for (uint32_t &dw : host.adwTable)
                dw = random();
            for (uint32_t &dw : host.apvBits[0])
                dw = random() % 4 ? random() % 256 : random();
            pShift->pfnResolve(pShift->pvContext, &host.plane, &host.resolved);
            const uint32_t nUsed = (uint32_t)std::min(nColors, 2048);
            for (size_t i = 0; i < host.apvBits[0].size(); i++) {
                const uint32_t dwColor = nColors > 0 ? host.adwTable[host.apvBits[0][i] % nUsed] & 0xFFFFFF : 0;
                ASSERT_EQ(dwColor, host.apvBits[1][i]) << nWidth << " " << nColors << " " << i;
            }
        }
}

TEST(StockColours, AFilmRepeatsByteForByteAndAnotherSeedIsAnotherFilm)
{
    const uint64_t qwPair = FilmOf(1, {"CMShift.dll", "CMBreed.dll"}), qwShift = FilmOf(1, {"CMShift.dll"}),
                   qwBreed = FilmOf(1, {"CMBreed.dll"});
    EXPECT_NE(qwPair, FilmOf(2, {"CMShift.dll", "CMBreed.dll"}));
    EXPECT_NE(qwShift, FilmOf(2, {"CMShift.dll"}));
    EXPECT_NE(qwBreed, FilmOf(2, {"CMBreed.dll"}));

    uint64_t aqw[3] = {};
    std::thread aThread[] = {std::thread([&] {
                                 aqw[0] = FilmOf(1, {"CMShift.dll", "CMBreed.dll"});
                             }),
                             std::thread([&] { aqw[1] = FilmOf(1, {"CMShift.dll"}); }),
                             std::thread([&] { aqw[2] = FilmOf(1, {"CMBreed.dll"}); })};
    for (std::thread &thread : aThread)
        thread.join();
    EXPECT_EQ(qwPair, aqw[0]);
    EXPECT_EQ(qwShift, aqw[1]);
    EXPECT_EQ(qwBreed, aqw[2]);
}

TEST(StockColours, EachModuleMakesALivingColourTableWithoutTheOther)
{
    for (const char *pszDll : {"CMShift.dll", "CMBreed.dll"}) {
        ColourHost host(4, 4, 9);
        host.Add(pszDll);
        host.Frame(0);
        std::set<std::vector<uint32_t>> palettes;
        std::vector<uint32_t> last = TableOf(host);
        for (int i = 0; i < 3000; i++) {
            host.Frame(40);
            ASSERT_EQ(256, host.plane.nColors) << pszDll;
            EXPECT_LT(MeanDistance(last, TableOf(host)), 0.05) << pszDll << i;
            last = TableOf(host);
            palettes.insert(FirstPalette(*host.pInfo, 256));
        }
        EXPECT_GE(palettes.size(), 4u) << pszDll;
    }
}

TEST(StockColours, TheVeryFirstFrameShowsABredPaletteAndAnEarlyResetOnlyReplacesIt)
{
    ColourHost host(4, 4, 21);
    AddPlainShift(&host, 4, 5);
    ColourModule *pBreed = host.Add("CMBreed.dll");
    host.Frame(0);
    EXPECT_LT(MeanDistance(FirstPalette(*host.pInfo, 256), TableOf(host)), 0.03);
    const std::vector<uint32_t> first = TableOf(host);

    host.Reset(pBreed); // as for a slot that comes from a file
    for (int i = 0; i < 20; i++) {
        host.Frame(20);
        EXPECT_FALSE(TransitionUnderWay(host.pInfo.get()));
    }
    EXPECT_NE(first, TableOf(host));

    host.Frame(900);
    host.Reset(pBreed); // now somebody has seen the palette: the new one is eased to
    host.Frame(20);
    host.Frame(20);
    EXPECT_TRUE(TransitionUnderWay(host.pInfo.get()));
}

TEST(StockColours, AResetOrAResizeInATransitionLetsItEndFirst)
{
    ColourHost host(4, 4, 23);
    AddPlainShift(&host, 4, 1);
    ColourModule *pBreed = host.Add("CMBreed.dll");
    while (host.pInfo->nStep * 2 < host.pInfo->nSteps || !TransitionUnderWay(host.pInfo.get()))
        host.Frame(50);
    const std::vector<uint32_t> second = SecondPalette(*host.pInfo, 256);
    const std::vector<uint32_t> table = TableOf(host);
    host.Reset(pBreed);
    for (auto &pModule : host.apModule)
        host.BringUp(pModule.get());
    host.Frame(50);
    EXPECT_LT(MeanDistance(table, TableOf(host)), 0.05);
    int nFrames = 0;
    for (; TransitionUnderWay(host.pInfo.get()); nFrames++) {
        EXPECT_EQ(second, SecondPalette(*host.pInfo, 256));
        host.Frame(50);
    }
    EXPECT_NEAR(39, nFrames, 2);
    for (int i = 0; i < 3; i++)
        host.Frame(50);
    EXPECT_TRUE(TransitionUnderWay(host.pInfo.get())) << "the offer of the reset follows at once";
}

TEST(StockColours, APausedGeneratorLeavesItsPaletteAndAPausedInterpolatorItsTable)
{
    ColourHost host(4, 4, 30);
    AddPlainShift(&host, 1, 1);
    const ColourModule *pBreed = host.Add("CMBreed.dll");
    for (int i = 0; i < 40; i++)
        host.Frame(100);
    while (TransitionUnderWay(host.pInfo.get()))
        host.Frame(100, pBreed);
    const std::vector<uint32_t> palette = TableOf(host);
    for (int i = 0; i < 200; i++)
        host.Frame(100, pBreed);
    EXPECT_EQ(palette, TableOf(host));

    const std::vector<uint32_t> table = TableOf(host);
    for (int i = 0; i < 400; i++)
        host.Frame(100, host.apModule[0].get());
    EXPECT_EQ(table, TableOf(host));

    host.Remove(0); // with the interpolator gone the generator moves on by itself
    for (int i = 0; i < 400; i++)
        host.Frame(100);
    EXPECT_NE(table, TableOf(host));
}

TEST(StockColours, OnlyTheFirstOfTwoInterpolatorsDrivesThePlane)
{
    ColourHost one(4, 4, 50), two(4, 4, 50);
    AddPlainShift(&one, 2, 2);
    AddPlainShift(&two, 2, 2);
    one.Add("CMBreed.dll");
    two.Add("CMBreed.dll");
    one.Frame(0);
    two.Frame(0);
    SetFloat(two.Add("CMShift.dll"), u"Saturation", 0);
    one.Frame(30);
    two.Frame(30);
    for (int i = 0; i < 300; i++) {
        one.Frame(30);
        two.Frame(30);
        ASSERT_EQ(TableOf(one), TableOf(two)) << i;
    }
}

TEST(StockColours, AStrangersInterpolatorGetsPalettesAndKeepsItsTable)
{
    ColourHost host(4, 4, 60);
    SetFloat(host.Add("CMBreed.dll"), u"Lifetime", 3);
    std::set<std::vector<uint32_t>> palettes;
    for (int i = 0; i < 1000; i++) {
        PaletteInfo &info = *host.pInfo;
        if (TransitionUnderWay(&info) && ++info.nStep == info.nSteps)
            info.nSteps = info.nStep = 50; // the stranger's own pace
        if (i > 200)
            host.adwTable.assign(host.adwTable.size(), 0xABCDEF);
        const std::vector<uint32_t> second = SecondPalette(info, 256);
        const bool bUnderWay = TransitionUnderWay(&info);
        host.Frame(40);
        if (bUnderWay && i > 200) {
            EXPECT_EQ(second, SecondPalette(info, 256)) << "a palette changed in the middle of a transition";
        }
        if (i > 200) {
            EXPECT_EQ(0xABCDEFu, host.adwTable[100]);
        }
        palettes.insert(second);
    }
    EXPECT_GE(palettes.size(), 5u);
}

TEST(StockColours, AStrangersGeneratorIsFollowed)
{
    ColourHost host(4, 4, 70);
    AddPlainShift(&host, 1, 3);
    host.Frame(0);
    for (uint32_t dwRed : {60u, 120u, 250u}) {
        memset(host.pInfo->abRed2, (int)dwRed, sizeof host.pInfo->abRed2);
        memset(host.pInfo->abGreen2, 20, sizeof host.pInfo->abGreen2);
        memset(host.pInfo->abBlue2, 10, sizeof host.pInfo->abBlue2);
        for (int i = 0; i < 300; i++) // far beyond the hold time: no palette of the module's own comes between
            host.Frame(50);
        EXPECT_EQ(dwRed << 16 | 20 << 8 | 10, host.adwTable[128]);
    }
}

TEST(StockColours, GarbageInTheBlockAndInTheControlsDoesNoHarm)
{
    Chance random{std::mt19937(99)};
    for (uint64_t qwSeed = 0; qwSeed < 30; qwSeed++) {
        ColourHost host(5, 3, qwSeed);
        host.plane.dwTimeScale = random();
        if (qwSeed % 3 != 1)
            host.Add("CMShift.dll");
        if (qwSeed % 3 != 2)
            host.Add("CMBreed.dll");
        for (int i = 0; i < 60; i++) {
            for (auto &pModule : host.apModule)
                if (random() % 3)
                    SetSpoiled(pModule.get(), &random);
            uint8_t *pBytes = (uint8_t *)host.pInfo.get();
            for (size_t k = 0; random() % 2 && k < sizeof(PaletteInfo); k++)
                pBytes[k] = (uint8_t)random();
            if (random() % 2) {
                WriteSizes(host.pInfo.get(), (int32_t)random(), (int32_t)random());
                WriteOffer(host.pInfo.get(), {0, (uint16_t)random(), (uint16_t)random()});
                WriteDesk(host.pInfo.get(), {0, (uint16_t)random(), (uint16_t)random()});
            }
            if (random() % 4 == 0)
                host.plane.nColors = (int32_t)random();
            if (random() % 8 == 0)
                host.context.qwTick = ((uint64_t)random() << 32 | random()) << (random() % 2 * 20);
            host.plane.bIndexed = random() % 2;
            host.Frame(random() % 100);
            if (random() % 8 == 0)
                for (auto &pModule : host.apModule)
                    host.BringUp(pModule.get());
        }
    }
}

TEST(StockColours, APauseOfADayIsNoLeapAndTheTimeScaleStretchesAllTimes)
{
    int anFrames[2] = {};
    for (int iRun = 0; iRun < 2; iRun++) {
        ColourHost host(4, 4, 80);
        host.plane.dwTimeScale = iRun ? 3 : 1;
        AddPlainShift(&host, 10, 1);
        host.Add("CMBreed.dll");
        while (!TransitionUnderWay(host.pInfo.get()))
            host.Frame(50);
        const int32_t nStep = host.pInfo->nStep;
        host.Frame(86400000);
        EXPECT_TRUE(TransitionUnderWay(host.pInfo.get()));
        EXPECT_LE(host.pInfo->nStep - nStep, host.pInfo->nSteps / 10 + 1);
        while (TransitionUnderWay(host.pInfo.get())) {
            host.Frame(50);
            anFrames[iRun]++;
        }
    }
    EXPECT_NEAR(180, anFrames[0], 3); // nine of the ten seconds were left
    EXPECT_NEAR(580, anFrames[1], 3); // twenty-nine of thirty
}

TEST(StockColours, TheNumberOfColoursCanChangeWhileItRuns)
{
    ColourHost host(4, 4, 90);
    AddPlainShift(&host, 0.5f, 0.2f);
    ColourModule *pBreed = host.Add("CMBreed.dll");
    for (int32_t nColors : {16, 2048, 17, 300, 2048, 64}) {
        FindControl(pBreed, u"Colors")->Integer.nValue = nColors;
        for (int i = 0; i < 100; i++) {
            host.Frame(50);
            ASSERT_GE(host.plane.nColors, 16);
            EXPECT_EQ(0u, host.adwTable[0]);
        }
        EXPECT_EQ(nColors, host.plane.nColors);
    }
}
