// MixCard_test.cpp -- the one-pass kernel of graphics cards, run on Mesa's software renderer; cards that are lost
#include "output/mixer/MixAccelerator.h"
#include "output/mixer/MixCard.h"
#include "platform/GLWindow.h"
#include "platform/Notices.h"
#include "platform/Text.h"
#include "tests/MixerPreset.h"
#include "tests/RandomRules.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

namespace {

u32 nMixedThere; // frames that came from the card
CardStage eStageToLose;
u32 nToLose;
u32 anAsked[static_cast<size_t>(CardStage::Count)];
void (*pfnAtUpload)();

bool Watch(CardStage eStage)
{
    anAsked[static_cast<size_t>(eStage)]++;
    if (eStage == CardStage::Upload && pfnAtUpload)
        pfnAtUpload();
    if (nToLose > 0 && eStage == eStageToLose) {
        nToLose--;
        return true;
    }
    nMixedThere += eStage == CardStage::Reset;
    return false;
}

void SetUpAccelerator(bool bSoftware, bool bPlainBuffers)
{
    nMixedThere = nToLose = 0;
    pfnAtUpload = nullptr;
    pfnLoseCard = Watch;
    MixAcceleratorTest = {bSoftware, bPlainBuffers, true};
    SetupMixAccelerator();
}

void TearDownAccelerator()
{
    CloseMixAccelerator();
    pfnLoseCard = nullptr;
    MixAcceleratorTest = {};
    SetupMixAccelerator();
}

// With a software renderer in the place of a card, whose buffers stay mapped or are plain.
class MixCardOfBothKinds : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override
    {
        SetUpAccelerator(true, GetParam());
        if (bAccelEmulated)
            GTEST_SKIP() << "this machine has no software renderer: nothing of this test was run";
    }
    void TearDown() override
    {
        TearDownAccelerator();
    }
};
INSTANTIATE_TEST_SUITE_P(With, MixCardOfBothKinds, testing::Bool(),
                         [](const auto &kind) { return kind.param ? "PlainBuffers" : "MappedBuffers"; });

class MixCards : public testing::Test {
  protected:
    void SetUp() override
    {
        SetUpAccelerator(true, false);
        if (bAccelEmulated)
            GTEST_SKIP() << "this machine has no software renderer: nothing of this test was run";
    }
    void TearDown() override
    {
        TearDownAccelerator();
    }
};

// The frame has to come from the card, and be the oracle's.
void ExpectFromCard(MixerPreset &preset, OraclePreset ps)
{
    const u32 nBefore = nMixedThere;
    OracleOnePass(ps);
    MixPlanes(&preset.state, 1);
    ASSERT_EQ(nMixedThere, nBefore + 1);
    ASSERT_TRUE(SameAsOracle(preset, ps));
}

struct Size {
    i32 nWidth, nHeight;
};

OraclePreset TwoPlanes(u32 nSeed)
{
    std::mt19937 random(nSeed);
    return RandomOraclePreset(random, 2, {{0, 1, 0, MIXOP_BLEND, 99}, {2, 1, 1, MIXOP_BLEND_ALPHA, 0}}, 70, 45);
}

} // namespace

TEST_P(MixCardOfBothKinds, EveryOperatorMakesWhatTheOracleMakesAtOddSizes)
{
    std::mt19937 random(21);
    for (const Size &size : {Size{1, 1}, Size{1, 67}, Size{64, 1}, Size{128, 128}, Size{333, 217}}) {
        OraclePreset ps = RandomOraclePreset(random, 3, {{0, 1, 2, 0, 0}}, size.nWidth, size.nHeight);
        MixerPreset preset(ps);
        for (i32 nMixOp = -1; nMixOp <= MIXOP_COUNT; nMixOp++) {
            SCOPED_TRACE(testing::Message() << "operator " << nMixOp);
            ps.rules[0].MixOp = nMixOp;
            ps.rules[0].nWeight = Between(random, -10, 265);
            preset.Fill(ps);
            MixerPreset::SetRule(&preset.state.asMixRule[0], ps.rules[0]);
            ASSERT_NO_FATAL_FAILURE(ExpectFromCard(preset, ps));
        }
    }
}

TEST_P(MixCardOfBothKinds, RandomRuleListsMakeWhatTheOracleMakesWhileWeightsMove)
{
    std::mt19937 random(22);
    for (u32 i = 0; i < 40; i++) {
        const i32 nPlanes = Between(random, i % 10 == 5 ? 0 : 1, 4), nRules = i % 8 == 0 ? 28 : Between(random, 1, 8);
        OraclePreset ps =
            RandomOraclePreset(random, static_cast<u32>(nPlanes), RandomRules(random, nPlanes, nRules, i % 3 == 0),
                               Between(random, 1, 100), Between(random, 1, 70));
        MixerPreset preset(ps);
        for (u32 nFrame = 0; nFrame < 3; nFrame++) {
            SCOPED_TRACE(testing::Message() << "list " << i << ", frame " << nFrame);
            for (size_t r = 0; r < ps.rules.size(); r++)
                preset.state.asMixRule[r].BlendWeight.Integer.nValue = ps.rules[r].nWeight = Between(random, 0, 255);
            ASSERT_NO_FATAL_FAILURE(ExpectFromCard(preset, ps));
        }
    }
}

TEST_P(MixCardOfBothKinds, ALargeOddPictureIsWhole)
{
    std::mt19937 random(23);
    OraclePreset ps =
        RandomOraclePreset(random, 2, {{1, 0, 0, MIXOP_DISPLACE, 0}, {2, 0, 0, MIXOP_BLEND, 33}}, 1921, 1081);
    MixerPreset preset(ps);
    ASSERT_NO_FATAL_FAILURE(ExpectFromCard(preset, ps));
}

// Every pair of sums of colour bytes, at least once.
TEST_F(MixCards, DisplaceReadsEveryWayAsTheOracleDoes)
{
    OraclePreset ps;
    for (i32 i = 0; i < 2; i++)
        ps.planes.push_back({766 + 128, 766 + 128, std::vector<u32>(894 * 894)});
    for (u32 i = 0; i < 894 * 894; i++) {
        const u32 nFar = (i / 894 + 702) % 766, nDirection = (i % 894 + 702) % 766;
        for (const auto &[iPlane, n] : {std::pair(0u, nFar), std::pair(1u, nDirection)}) {
            const u32 b = std::min(n, 255u), g = std::min(n - b, 255u);
            ps.planes[iPlane].pixels[i] = oracle::Colour(b, g, n - b - g) | i << 24;
        }
    }
    ps.rules = {{0, 1, 0, MIXOP_DISPLACE, 0}};
    ps.metas = {ps.planes[0]};
    ps.final = ps.planes[1];
    MixerPreset preset(ps);
    ExpectFromCard(preset, ps);
}

TEST_F(MixCards, PausedMissingAndResizedPicturesAreTakenAsTheyAre)
{
    std::mt19937 random(24);
    const std::vector<OracleRule> rules = {{0, 1, 0, MIXOP_BLEND_XOR, 0}, {1, 0, 0, MIXOP_INVERT_X, 0}};
    OraclePreset ps = RandomOraclePreset(random, 2, rules, 50, 40);
    MixerPreset preset(ps);
    ExpectFromCard(preset, ps); // and again, with nothing drawn in between
    ExpectFromCard(preset, ps);
    HostBitmap *hbm = preset.planes[1].Info.hbmResolved;
    preset.planes[1].Info.hbmResolved = nullptr;
    MixPlanes(&preset.state, 1);
    EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0u); // the mirror of nothing
    preset.planes[1].Info.hbmResolved = hbm;
    for (const Size &size : {Size{51, 40}, Size{640, 360}, Size{8, 8}}) {
        const OraclePreset other = RandomOraclePreset(random, 2, rules, size.nWidth, size.nHeight);
        MixerPreset resized(other);
        ExpectFromCard(resized, other);
    }
    ExpectFromCard(preset, ps);
}

TEST_F(MixCards, ALossAtAnyStageCostsNoFrameAndTheCardIsTriedAgain)
{
    OraclePreset ps = TwoPlanes(25);
    for (u32 i = 0; i < static_cast<u32>(CardStage::Count); i++) {
        SCOPED_TRACE(i);
        SetUpAccelerator(true, false);
        MixerPreset preset(ps);
        if (static_cast<CardStage>(i) != CardStage::Open)
            ExpectFromCard(preset, ps);
        OraclePreset expected = ps;
        OracleOnePass(expected);
        const u32 nBefore = nMixedThere;
        eStageToLose = static_cast<CardStage>(i);
        nToLose = 2;
        for (u32 nFrame = 0; nFrame < 2; nFrame++) {
            preset.Fill(ps);
            MixPlanes(&preset.state, 1);
            EXPECT_TRUE(SameAsOracle(preset, expected));
        }
        EXPECT_EQ(nToLose, 0u);
        EXPECT_EQ(nMixedThere, nBefore);
        EXPECT_EQ(bAccelEmulated, 0u);
        ExpectFromCard(preset, ps);
    }
}

TEST_F(MixCards, AfterThreeLossesTheCardIsLeftAloneAndTheUserToldOnce)
{
    OraclePreset ps = TwoPlanes(26);
    MixerPreset preset(ps);
    const u32 nNotices = NoticeCount();
    eStageToLose = CardStage::Wait;
    nToLose = 5;
    OraclePreset expected = ps;
    OracleOnePass(expected);
    for (u32 nFrame = 0; nFrame < 6; nFrame++) {
        preset.Fill(ps);
        MixPlanes(&preset.state, 1);
        EXPECT_TRUE(SameAsOracle(preset, expected));
        EXPECT_EQ(NoticeCount(), nNotices + (nFrame >= 2));
    }
    EXPECT_EQ(nToLose, 2u); // not asked a fourth time
    EXPECT_EQ(bAccelEmulated, 1u);
    EXPECT_EQ(szGpuDescription[0], 0);
    EXPECT_NE(NoticeText().find("did not finish in time"), std::string::npos) << NoticeText();
}

// What a driver really says: an error that somebody raised, a context that is gone.
TEST_F(MixCards, RealErrorsAreNoticed)
{
    OraclePreset ps = TwoPlanes(27);
    MixerPreset preset(ps);
    ExpectFromCard(preset, ps);
    OraclePreset expected = ps;
    OracleOnePass(expected);
    static EGLDisplay pDisplay;
    static EGLContext pContext;
    pfnAtUpload = [] {
        pDisplay = eglGetCurrentDisplay();
        pContext = eglGetCurrentContext();
        glEnable(0xDEAD);
    };
    preset.Fill(ps);
    MixPlanes(&preset.state, 1);
    EXPECT_EQ(nMixedThere, 1u);
    EXPECT_TRUE(SameAsOracle(preset, expected));

    pfnAtUpload = [] {
        pDisplay = eglGetCurrentDisplay();
        pContext = eglGetCurrentContext();
    };
    ExpectFromCard(preset, ps);
    EXPECT_TRUE(eglDestroyContext(pDisplay, pContext));
    pfnAtUpload = nullptr;
    preset.Fill(ps);
    MixPlanes(&preset.state, 1);
    EXPECT_EQ(nMixedThere, 2u);
    EXPECT_TRUE(SameAsOracle(preset, expected));
    ExpectFromCard(preset, ps);
}

TEST_F(MixCards, WhatIsCurrentOnTheThreadStaysCurrent)
{
    OraclePreset ps = TwoPlanes(28);
    MixerPreset preset(ps);
    HostGLWindow *hwndGL = CreateGLWindow(16, 16);
    ASSERT_NE(hwndGL, nullptr);
    void *pContext = MakeTestContext(hwndGL);
    ExpectFromCard(preset, ps);
    EXPECT_EQ(eglGetCurrentContext(), pContext);
    EXPECT_EQ(eglGetCurrentSurface(EGL_DRAW), hwndGL->pSurface);
    DestroyTestContext(hwndGL, pContext);
    ExpectFromCard(preset, ps);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    DestroyGLWindow(hwndGL);
    CloseGLDisplay(); // the card's display, if it is the same, has a user left
    ExpectFromCard(preset, ps);
}

TEST(MixAccelerator, ASoftwareRendererIsNeverTakenAndTheRulesPathUsesNoCard)
{
    SetUpAccelerator(false, false);
    if (!bAccelEmulated) {
        TearDownAccelerator();
        GTEST_SKIP() << "this machine has a graphics card: " << ToUtf8(szGpuDescription);
    }
    EXPECT_EQ(szGpuDescription[0], 0);
    OraclePreset ps = TwoPlanes(29);
    MixerPreset preset(ps);
    MixPlanes(&preset.state, 1);
    SetUpAccelerator(true, false);
    MixPlanes(&preset.state, 0);
    EXPECT_EQ(nMixedThere, 0u);
    TearDownAccelerator();
}
