// PlaneMixer_test.cpp -- rule lists through both paths of the mixer, the rules' own list, the tiling
#include "controls/ControlManager.h"
#include "engine/MixRules.h"
#include "output/mixer/MixPreparation.h"
#include "tests/InstructionSets.h"
#include "tests/MixerPreset.h"
#include "tests/RandomRules.h"

#include <algorithm>
#include <string_view>

namespace {

using Random = std::mt19937;

void ExpectSameAsOracle(OraclePreset ps, u32 bOnePass, u32 nFrames)
{
    MixerPreset preset(ps);
    for (u32 i = 0; i < nFrames; i++) {
        bOnePass ? OracleOnePass(ps) : OraclePerRule(ps);
        EXPECT_EQ(MixPlanes(&preset.state, bOnePass), 1u);
        EXPECT_EQ(preset.state.phbmOutput, &preset.state.hbmFinal);
        ASSERT_TRUE(SameAsOracle(preset, ps)) << "one pass " << bOnePass << ", frame " << i;
    }
}

OraclePreset Solid(i32 nWidth, i32 nHeight, std::vector<u32> planes, std::vector<OracleRule> rules)
{
    const size_t nPixels = static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight);
    OraclePreset ps;
    for (u32 n : planes)
        ps.planes.push_back({nWidth, nHeight, std::vector<u32>(nPixels, n)});
    for (size_t i = 0; i < rules.size(); i++)
        ps.metas.push_back({nWidth, nHeight, std::vector<u32>(nPixels)});
    ps.final = {nWidth, nHeight, std::vector<u32>(nPixels, 0x99999999u)};
    ps.rules = std::move(rules);
    return ps;
}

// The picture side by side with itself, each time with other bits turned over.
OraclePicture Enlarged(const OraclePicture &picture, i32 nWidth, i32 nHeight)
{
    OraclePicture large{nWidth, nHeight, std::vector<u32>(static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight))};
    for (i32 y = 0; y < nHeight; y++)
        for (i32 x = 0; x < nWidth; x++) {
            const u32 nTurned = static_cast<u32>(x / picture.nWidth * 77 + y / picture.nHeight * 12345);
            large.pixels[static_cast<size_t>(y * nWidth + x)] =
                picture.At(x % picture.nWidth, y % picture.nHeight) ^ nTurned;
        }
    return large;
}

class PlaneMixerOfEverySet : public InstructionSet {};
FOR_EVERY_INSTRUCTION_SET(PlaneMixerOfEverySet);

} // namespace

TEST_P(PlaneMixerOfEverySet, RandomRuleListsMakeWhatTheOracleMakesOnBothPaths)
{
    Random random(7);
    for (u32 i = 0; i < 150; i++) {
        const i32 nPlanes = Between(random, 1, 4), nRules = Between(random, 1, i % 10 == 0 ? 28 : 8);
        const i32 nWidth = Between(random, 1, 150), nHeight = Between(random, 1, 70);
        const OraclePreset ps = RandomOraclePreset(random, static_cast<u32>(nPlanes),
                                                   RandomRules(random, nPlanes, nRules, i % 3 == 0), nWidth, nHeight);
        for (u32 bOnePass : {0u, 1u}) {
            SCOPED_TRACE(testing::Message() << "list " << i);
            ExpectSameAsOracle(ps, bOnePass, 3);
            if (HasFatalFailure())
                return;
        }
    }
}

// Large enough to be written past the caches, by many tasks, with a rest behind the last whole block.
TEST_P(PlaneMixerOfEverySet, ALargeOddPictureComesOutOfAllCoresWhole)
{
    Random random(11);
    const std::vector<OracleRule> rules = {
        {1, 0, 0, MIXOP_INVERT_X, 0}, {2, 1, 0, MIXOP_BLEND, 33}, {0, 3, 0, MIXOP_DISPLACE, 0}};
    OraclePreset start = RandomOraclePreset(random, 2, rules, 191, 108);
    for (std::vector<OraclePicture> *pPictures : {&start.planes, &start.metas})
        for (OraclePicture &picture : *pPictures)
            picture = Enlarged(picture, 1921, 1081);
    start.final = Enlarged(start.final, 1921, 1081);
    ExpectSameAsOracle(start, 0, 1);
    start.rules.resize(2);
    start.metas.resize(2);
    ExpectSameAsOracle(start, 1, 1);
}

TEST(PlaneMixer, ASpatialRuleSeesTheWholeResultOfTheRuleBefore)
{
    Random random(3);
    const std::vector<OracleRule> rules = {{0, 1, 0, MIXOP_BLEND_XOR, 0},
                                           {2, 0, 0, MIXOP_INVERT_XY, 0},
                                           {3, 2, 0, MIXOP_DISPLACE, 0},
                                           {2, 4, 0, MIXOP_BLEND, 77},
                                           {5, 5, 0, MIXOP_INVERT_Y, 0}};
    ExpectSameAsOracle(RandomOraclePreset(random, 2, rules, 201, 97), 0, 2);
}

// Its own picture of the frame before, mirrored or displaced into itself, and that of a rule that comes later.
TEST(PlaneMixer, OwnAndLaterMetaPlanesShowTheFrameBefore)
{
    Random random(4);
    for (i32 nMixOp : {8, 9, 10, 16, 4}) {
        const std::vector<OracleRule> rules = {{2, 3, 0, nMixOp, 0}, {3, 2, 0, nMixOp, 0}, {2, 3, 0, MIXOP_BLEND, 99}};
        SCOPED_TRACE(nMixOp);
        ExpectSameAsOracle(RandomOraclePreset(random, 2, rules, 140, 90), 0, 4);
    }
    OraclePreset later = Solid(
        4, 4, {0x11u}, {{2, 0, 0, MIXOP_BLEND_XOR, 0}, {0, 0, 0, MIXOP_NEGATIVE, 0}, {1, 1, 0, MIXOP_GUN_SHIFT_1, 0}});
    MixerPreset preset(later);
    MixPlanes(&preset.state, 0);
    EXPECT_EQ(BitmapPixels(preset.state.asMixRule[0].hbmRule)[0], 0x11u);
    MixPlanes(&preset.state, 0);
    EXPECT_EQ(BitmapPixels(preset.state.asMixRule[0].hbmRule)[0], 0x11u ^ 0x00FFFFEEu);
}

TEST(PlaneMixer, TheLastRulesMetaPlaneIsWrittenOnceARuleStandsBehindIt)
{
    const OraclePreset ps = Solid(8, 8, {0x123456u}, {{0, 0, 0, MIXOP_NEGATIVE, 0}});
    MixerPreset preset(ps);
    MixPlanes(&preset.state, 0);
    EXPECT_EQ(BitmapPixels(preset.state.asMixRule[0].hbmRule)[0], 0u);
    EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0xEDCBA9u);
    MixerPreset::SetRule(AddMixRule(&preset.state), {1, 0, 0, MIXOP_NEGATIVE, 0});
    MixPlanes(&preset.state, 0);
    EXPECT_EQ(BitmapPixels(preset.state.asMixRule[0].hbmRule)[0], 0xEDCBA9u);
    EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0x123456u);
}

TEST(PlaneMixer, ASourceThatDoesNotExistKeepsThePictureOrReadsAsZero)
{
    for (const OracleRule &rule :
         {OracleRule{0, -1, 0, MIXOP_BLEND_XOR, 0}, OracleRule{0, 0, 99, MIXOP_BLEND_BOOLEAN, 0},
          OracleRule{INT32_MIN, 0, 0, MIXOP_INVERT_X, 0}, OracleRule{7, 0, 0, MIXOP_DISPLACE, 0}}) {
        const OraclePreset ps = Solid(5, 3, {0x00ABCDEFu}, {rule});
        MixerPreset preset(ps);
        MixPlanes(&preset.state, 0);
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0x99999999u) << rule.MixOp;
        MixPlanes(&preset.state, 1);
        const u32 nExpected = rule.MixOp == MIXOP_BLEND_XOR || rule.MixOp == MIXOP_BLEND_BOOLEAN ? 0x00ABCDEFu : 0;
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], nExpected) << rule.MixOp;
    }
}

TEST(PlaneMixer, InOnePassMirrorsAndDisplaceSeeNoMetaPlaneThatPassesAPlaneOn)
{
    for (i32 nOp : {MIXOP_INVERT_X, MIXOP_INVERT_Y, MIXOP_INVERT_XY, MIXOP_DISPLACE}) {
        const OraclePreset ps = Solid(5, 3, {0x00ABCDEFu}, {{0, 0, 0, MIXOP_TILE_PLANES, 0}, {1, 0, 0, nOp, 0}});
        MixerPreset preset(ps);
        MixPlanes(&preset.state, 1);
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0u) << nOp;
    }
}

TEST(PlaneMixer, APictureThatIsMissingOrOfAnotherSizeCountsAsNoSource)
{
    MixerPreset preset(Solid(64, 32, {0x1u, 0x2u}, {{0, 1, 0, MIXOP_BLEND_XOR, 0}}));
    HostBitmap *hbmWhole = preset.planes[1].Info.hbmResolved;
    HostBitmap *hbmSmall = CreateBitmap(2, 2);
    for (HostBitmap *hbm : {static_cast<HostBitmap *>(nullptr), hbmSmall}) {
        preset.planes[1].Info.hbmResolved = hbm;
        BitmapPixels(preset.state.hbmFinal)[0] = 0x77u;
        MixPlanes(&preset.state, 0);
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0x77u);
        MixPlanes(&preset.state, 1);
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0x1u);
    }
    preset.planes[1].Info.hbmResolved = hbmWhole;
    DeleteBitmap(hbmSmall);
}

TEST(PlaneMixer, TilePlanesShowsThePlanesInColumnsAndLeavesTheRest)
{
    OraclePreset ps = Solid(101, 4, {0x111111u, 0x222222u}, {{0, 1, 0, MIXOP_TILE_PLANES, 0}});
    ps.planes[0].pixels[2] = 0xFF00FF00u; // taken by column 1 of 50, since trunc(1 * 101 / 50) = 2
    MixerPreset preset(ps);
    MixPlanes(&preset.state, 0);
    const u32 *p = BitmapPixels(preset.state.hbmFinal);
    EXPECT_EQ(p[0], 0x111111u);
    EXPECT_EQ(p[1], 0xFF00FF00u);
    EXPECT_EQ(p[49], 0x111111u);
    EXPECT_EQ(p[50], 0x222222u);
    EXPECT_EQ(p[99], 0x222222u);
    EXPECT_EQ(p[100], 0x99999999u);
    MixPlanes(&preset.state, 1); // no tiling here: source #1 like any other rule
    EXPECT_EQ(p[1], 0x111111u);
    EXPECT_EQ(p[60], 0x111111u);
}

TEST(PlaneMixer, WithoutRulesTheFirstPlaneIsThePicture)
{
    MixerPreset preset(Solid(4, 4, {0x5u, 0x6u}, {}));
    for (u32 bOnePass : {0u, 1u}) {
        EXPECT_EQ(MixPlanes(&preset.state, bOnePass), 1u);
        EXPECT_EQ(preset.state.phbmOutput, &preset.planes[0].Info.hbmResolved);
        EXPECT_EQ(BitmapPixels(preset.state.hbmFinal)[0], 0x99999999u);
    }
    EXPECT_EQ(MixPlanes(nullptr, 0), 0u);
}

TEST(PlaneMixer, RulesEndAtThirtyOneAndAtThirtyTwoSources)
{
    for (i32 nPlanes = 1; nPlanes <= 4; nPlanes++) {
        MixerPreset preset(Solid(2, 2, std::vector<u32>(static_cast<size_t>(nPlanes)), {}));
        u32 nRules = 0;
        while (AddMixRule(&preset.state))
            nRules++;
        EXPECT_EQ(nRules, std::min(31u, 32u - static_cast<u32>(nPlanes)));
        EXPECT_EQ(preset.state.nMixRules, nRules);
        EXPECT_EQ(AddMixRule(&preset.state), nullptr);
        for (u32 bOnePass : {0u, 1u})
            EXPECT_EQ(MixPlanes(&preset.state, bOnePass), 1u);
    }
    EXPECT_EQ(AddMixRule(nullptr), nullptr);
}

// Weights move every frame; all else is a change, after which the picture is the new rules'.
TEST(PlaneMixer, RulesArePreparedOncePerChangeAndNeverStale)
{
    Random random(17);
    const std::vector<OracleRule> rules = {{0, 1, 2, MIXOP_BLEND, 10}, {2, 0, 1, MIXOP_BLEND_ALPHA, 0}};
    OraclePreset ps = RandomOraclePreset(random, 3, rules, 40, 30);
    MixerPreset preset(ps);
    for (u32 bOnePass : {0u, 1u}) {
        const auto expectPreparations = [&](u32 nExpected) {
            const u32 nBefore = nMixPreparations;
            preset.Fill(ps);
            OraclePreset expected = ps;
            bOnePass ? OracleOnePass(expected) : OraclePerRule(expected);
            MixPlanes(&preset.state, bOnePass);
            EXPECT_EQ(nMixPreparations - nBefore, nExpected);
            EXPECT_TRUE(SameAsOracle(preset, expected));
        };
        expectPreparations(1);
        for (i32 nWeight : {0, 255, 77}) {
            preset.state.asMixRule[0].BlendWeight.Integer.nValue = ps.rules[0].nWeight = nWeight;
            expectPreparations(0);
        }
        for (i32 OracleRule::*pField :
             {&OracleRule::SrcIdx1, &OracleRule::SrcIdx2, &OracleRule::AplhaIdx, &OracleRule::MixOp}) {
            ps.rules[1].*pField ^= 1;
            MixerPreset::SetRule(&preset.state.asMixRule[1], ps.rules[1]);
            expectPreparations(1);
            expectPreparations(0);
        }
        std::swap(ps.planes[0], ps.planes[1]);
        std::swap(preset.planes[0].Info.hbmResolved, preset.planes[1].Info.hbmResolved);
        expectPreparations(1);
        preset.state.nMixRules = 1;
        ps.rules.resize(1);
        ps.metas.resize(1);
        expectPreparations(1);
        preset.state.nMixRules = 2;
        ps.rules = rules;
        ps.metas.push_back(RandomPicture(random, 40, 30));
        for (u32 r = 0; r < 2; r++)
            MixerPreset::SetRule(&preset.state.asMixRule[r], rules[r]);
        expectPreparations(1);
    }
}

// Planes can come after the rules, so that more could be named than the table holds.
TEST(PlaneMixer, FourPlanesWithThirtyOneRulesStayInsideTheTable)
{
    Random random(18);
    std::vector<OracleRule> rules = RandomRules(random, 4, 31, false);
    rules[30] = {30, 31, 33, MIXOP_BLEND_XOR, 0};
    rules[29].MixOp = rules[28].MixOp = rules[27].MixOp = MIXOP_NEGATIVE; // the results from rule 28 on have no place
    rules[27].SrcIdx1 = rules[28].SrcIdx1 = rules[29].SrcIdx1 = 0;
    OraclePreset ps = RandomOraclePreset(random, 1, rules, 37, 21);
    MixerPreset preset(ps);
    for (u32 i = 1; i < 4; i++) {
        preset.AddBarePlane(37, 21);
        ps.planes.push_back(RandomPicture(random, 37, 21));
    }
    for (u32 bOnePass : {0u, 1u}) {
        preset.Fill(ps);
        OraclePreset expected = ps;
        bOnePass ? OracleOnePass(expected) : OraclePerRule(expected);
        MixPlanes(&preset.state, bOnePass);
        EXPECT_TRUE(SameAsOracle(preset, expected)) << bOnePass;
    }
}

TEST(PlaneMixer, ANewRuleHasZeroFieldsABlackPictureAndAWeightOf128)
{
    MixerPreset preset(Solid(6, 5, {0u}, {}));
    const MixRule *pRule = AddMixRule(&preset.state);
    ASSERT_NE(pRule, nullptr);
    EXPECT_EQ(pRule->SrcIdx1 | pRule->SrcIdx2 | pRule->AplhaIdx | pRule->MixOp, 0);
    EXPECT_EQ(pRule->hbmRule->nWidth, 6);
    EXPECT_EQ(pRule->hbmRule->nHeight, 5);
    EXPECT_EQ(BitmapPixels(pRule->hbmRule)[29], 0u);
    const ControlRecord &weight = pRule->BlendWeight;
    EXPECT_EQ(weight.Base.dwType, static_cast<u32>(CONTROLTYPE_INTEGER));
    EXPECT_EQ(std::u16string_view(weight.Base.szName), u"Mixer - Blend Weighting");
    EXPECT_EQ(weight.Base.dwSourceMask, 31u);
    EXPECT_EQ(weight.Base.dwSource, static_cast<u32>(FLUIDSOURCE_FIXED));
    const ControlInteger &value = weight.Integer;
    EXPECT_EQ(value.nAbsMin | value.nDefaultMin | value.nMin, 0);
    EXPECT_EQ(value.nAbsMax & value.nDefaultMax & value.nMax, 255);
    EXPECT_EQ(value.nValue, 128);
    EXPECT_EQ(value.nDefaultValue, 128);
}

TEST(PlaneMixer, RemovingARuleMovesTheLaterOnesDownWithTheirPictures)
{
    MixerPreset preset(Solid(2, 2, {0u}, {{0, 0, 0, 1, 10}, {0, 0, 0, 2, 20}, {0, 0, 0, 3, 30}}));
    PresetState &state = preset.state;
    HostBitmap *hbmThird = state.asMixRule[2].hbmRule;
    EXPECT_EQ(RemoveMixRule(&state, 3), 0u);
    EXPECT_EQ(RemoveMixRule(nullptr, 0), 0u);
    EXPECT_EQ(RemoveMixRule(&state, 1), 1u);
    EXPECT_EQ(state.nMixRules, 2u);
    EXPECT_EQ(state.asMixRule[0].MixOp, 1);
    EXPECT_EQ(state.asMixRule[1].MixOp, 3);
    EXPECT_EQ(state.asMixRule[1].BlendWeight.Integer.nValue, 30);
    EXPECT_EQ(state.asMixRule[1].hbmRule, hbmThird);
    EXPECT_EQ(state.asMixRule[2].hbmRule, nullptr);
    state.nMixRules = 0; // as when a plane goes: the pictures are still there, and the next rules replace them
    EXPECT_NE(AddMixRule(&state), nullptr);
    EXPECT_EQ(state.asMixRule[0].MixOp, 0);
    RemoveAllMixRules(&state);
    EXPECT_EQ(state.nMixRules, 0u);
    EXPECT_EQ(state.asMixRule[1].hbmRule, nullptr);
}

TEST(PlaneMixer, TheOperatorTableSaysWhichSourcesAreRead)
{
    for (i32 nMixOp = 0; nMixOp < MIXOP_COUNT; nMixOp++) {
        const MixOperatorInfo *pInfo = GetMixOperatorInfo(nMixOp);
        ASSERT_NE(pInfo, nullptr);
        EXPECT_EQ(pInfo->bSource2, oracle::ReadsSource2(nMixOp)) << nMixOp;
        EXPECT_EQ(pInfo->bMask, oracle::ReadsMask(nMixOp)) << nMixOp;
        EXPECT_EQ(pInfo->bWeight, nMixOp == MIXOP_BLEND) << nMixOp;
    }
    EXPECT_EQ(GetMixOperatorInfo(-1), nullptr);
    EXPECT_EQ(GetMixOperatorInfo(MIXOP_COUNT), nullptr);
}

TEST(PlaneMixer, WithoutAGraphicsCardTheProcessorMixesAndSaysSo)
{
    SetupMixAccelerator();
    EXPECT_EQ(bAccelEmulated != 0, szGpuDescription[0] == 0);
    ExpectSameAsOracle(Solid(3, 3, {0x10u, 0x20u}, {{0, 1, 0, MIXOP_BLEND, 128}}), 1, 1);
}
