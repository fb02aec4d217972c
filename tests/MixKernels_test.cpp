// MixKernels_test.cpp -- the arithmetic of the mix operators, against the oracle and over all of their inputs
#include "output/mixer/ForRanges.h"
#include "output/mixer/remap.h"
#include "platform/Sanitizers.h"
#include "tests/InstructionSets.h"
#include "tests/MixerPreset.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>

#if HWY_ARCH_X86
#include <cpuid.h>
#endif

namespace {

struct Size {
    i32 nWidth, nHeight;
};

// From less than a vector to more than a few tiles; narrower and wider than the longest way of a displacement.
constexpr Size asSize[] = {{1, 1}, {1, 67}, {67, 1}, {3, 2}, {63, 64}, {64, 64}, {128, 128}, {333, 217}};

// A picture of 256 x 256 whose pixels run through all pairs of bytes: x in every channel, or y.
OraclePicture Ramp(bool bVertical)
{
    OraclePicture picture{256, 256, std::vector<u32>(65536)};
    for (u32 i = 0; i < 65536; i++)
        picture.pixels[i] = (bVertical ? i / 256 : i % 256) * 0x010101u;
    return picture;
}

// Runs one rule per path on single-pixel pictures.
u32 MixOne(i32 nMixOp, u32 p1, u32 p2, u32 m = 0, i32 nWeight = 128, u32 bOnePass = 0)
{
    OraclePreset ps;
    for (u32 p : {p1, p2, m})
        ps.planes.push_back({1, 1, {p}});
    ps.rules = {{0, 1, 2, nMixOp, nWeight}};
    ps.metas = {{1, 1, {0}}};
    ps.final = {1, 1, {0xDEADBEEFu}};
    MixerPreset preset(ps);
    MixPlanes(&preset.state, bOnePass);
    return BitmapPixels(preset.state.hbmFinal)[0];
}

#if HWY_ARCH_X86
bool ProcessorTellsWhatIsInUse()
{
    u32 a = 0, b, c, d;
    return __get_cpuid_count(13, 1, &a, &b, &c, &d) && a & 4;
}
#endif

// Whether the upper halves of the vector registers hold anything; false where the processor does not tell.
bool UpperHalvesAreFull()
{
    u32 dwInUse = 0;
#if HWY_ARCH_X86
    if (__builtin_cpu_supports("avx2") && ProcessorTellsWhatIsInUse()) {
        u32 dwHigh;
        asm volatile("xgetbv" : "=a"(dwInUse), "=d"(dwHigh) : "c"(1));
    }
#endif
    return dwInUse & 4;
}

class MixKernelsOfEverySet : public InstructionSet {};
FOR_EVERY_INSTRUCTION_SET(MixKernelsOfEverySet);

} // namespace

TEST_P(MixKernelsOfEverySet, EveryOperatorMakesWhatTheOracleMakesAtOddSizes)
{
    std::mt19937 random(1);
    for (const Size &size : asSize) {
        const OraclePreset start = RandomOraclePreset(random, 3, {{0, 1, 2, 0, 0}}, size.nWidth, size.nHeight);
        MixerPreset preset(start);
        for (i32 nMixOp = 0; nMixOp < MIXOP_COUNT; nMixOp++)
            for (u32 bOnePass : {0u, 1u}) {
                SCOPED_TRACE(testing::Message() << "operator " << nMixOp << ", one pass " << bOnePass);
                OraclePreset ps = start;
                ps.rules[0].MixOp = nMixOp;
                ps.rules[0].nWeight = static_cast<i32>(random() % 256);
                preset.Fill(start);
                MixerPreset::SetRule(&preset.state.asMixRule[0], ps.rules[0]);
                bOnePass ? OracleOnePass(ps) : OraclePerRule(ps);
                MixPlanes(&preset.state, bOnePass);
                ASSERT_TRUE(SameAsOracle(preset, ps));
            }
    }
}

// With full ones, whatever the thread runs next is several times slower.
TEST_P(MixKernelsOfEverySet, NoOperatorLeavesTheUpperHalvesOfVectorRegistersFull)
{
    std::mt19937 random(2);
    OraclePreset ps = RandomOraclePreset(random, 3, {{0, 1, 2, 0, 0}}, 333, 217);
    for (i32 nMixOp = 0; nMixOp < MIXOP_COUNT; nMixOp++)
        for (u32 bOnePass : {0u, 1u}) {
            ps.rules[0].MixOp = nMixOp;
            MixerPreset preset(ps);
            MixPlanes(&preset.state, bOnePass);
            EXPECT_FALSE(UpperHalvesAreFull()) << "operator " << nMixOp << ", one pass " << bOnePass;
        }
}

TEST_P(MixKernelsOfEverySet, BothBlendsDivideExactlyForAllInputs)
{
    OraclePreset ps;
    ps.planes = {Ramp(false), Ramp(true), Ramp(false)};
    ps.rules = {{0, 1, 2, MIXOP_BLEND, 0}, {0, 1, 2, MIXOP_BLEND_ALPHA, 0}, {3, 4, 0, MIXOP_BLEND_XOR, 0}};
    ps.metas = {Ramp(false), Ramp(false), Ramp(false)};
    ps.final = Ramp(false);
    MixerPreset preset(ps);
    OraclePicture expected = Ramp(false);
    for (u32 w = 0; w < 256; w++) {
        preset.state.asMixRule[0].BlendWeight.Integer.nValue = static_cast<i32>(w);
        std::fill_n(BitmapPixels(preset.planes[2].Info.hbmResolved), 65536, w * 0x010101u);
        MixPlanes(&preset.state, 0);
        for (u32 i = 0; i < 65536; i++)
            expected.pixels[i] = (w * (i % 256) + (255 - w) * (i / 256)) / 255 * 0x010101u;
        ASSERT_TRUE(SamePixels(preset.state.asMixRule[0].hbmRule, expected)) << "weight " << w;
        ASSERT_TRUE(SamePixels(preset.state.asMixRule[1].hbmRule, expected)) << "mask " << w;
    }
}

TEST_P(MixKernelsOfEverySet, BothIntensityScalesDivideExactlyForAllInputs)
{
    OraclePreset ps;
    for (i32 i = 0; i < 2; i++)
        ps.planes.push_back({256, 766, std::vector<u32>(256 * 766)});
    for (u32 i = 0; i < 256 * 766; i++) {
        const u32 nLevel = i / 256, b = std::min(nLevel / 2, 255u);
        ps.planes[0].pixels[i] = oracle::Colour(b, b, nLevel - 2 * b); // both measures are the level
        ps.planes[1].pixels[i] = oracle::Colour(i % 256, 255 - i % 256, (i % 256) ^ 0x55u);
    }
    ps.rules = {{0, 1, 0, MIXOP_INTENSITY_SCALE, 0}};
    ps.metas = {ps.planes[0]};
    ps.final = ps.planes[0];
    for (u32 bOnePass : {0u, 1u}) {
        MixerPreset preset(ps);
        OraclePreset expected = ps;
        bOnePass ? OracleOnePass(expected) : OraclePerRule(expected);
        MixPlanes(&preset.state, bOnePass);
        ASSERT_TRUE(SameAsOracle(preset, expected)) << "one pass " << bOnePass;
    }
}

TEST_P(MixKernelsOfEverySet, TheProductOfTwoBytesDividesExactlyForAllInputs)
{
    OraclePreset ps;
    ps.planes = {Ramp(false), Ramp(true)};
    for (u32 &dwPixel : ps.planes[0].pixels)
        dwPixel = (dwPixel & 0xFFFFu) | (255 - (dwPixel & 0xFFu)) << 16 | 0xFF000000u; // neighbours that could leak
    ps.rules = {{0, 1, 0, MIXOP_INTENSITY_SCALE_RGB, 0}};
    ps.metas = {Ramp(false)};
    ps.final = Ramp(false);
    MixerPreset preset(ps);
    OraclePerRule(ps);
    MixPlanes(&preset.state, 0);
    EXPECT_TRUE(SameAsOracle(preset, ps));
}

TEST(MixKernels, AlphaIsClearedCarriedOrLookedAtAsEachOperatorSays)
{
    EXPECT_EQ(MixOne(MIXOP_BLEND, 0xFFFFFFFFu, 0xFF000000u), 0x00808080u);
    EXPECT_EQ(MixOne(MIXOP_BLEND, 0xFF123456u, 0xFF654321u, 0, 255), 0x00123456u);
    EXPECT_EQ(MixOne(MIXOP_BLEND, 0xFF123456u, 0xFF654321u, 0, 0), 0x00654321u);
    EXPECT_EQ(MixOne(MIXOP_OVERWRITE_BACKGROUND, 0x12345678u, 0xFF000000u), 0x12345678u);
    EXPECT_EQ(MixOne(MIXOP_BLEND_BOOLEAN, 0x11111111u, 0x22222222u, 0xFF000000u), 0x11111111u);
    EXPECT_EQ(MixOne(MIXOP_BLEND_MAX, 0x0000FF00u, 0x77000000u), 0x77000000u);
    EXPECT_EQ(MixOne(MIXOP_NEGATIVE, 0xAB000000u, 0), 0xABFFFFFFu);
    EXPECT_EQ(MixOne(MIXOP_INTENSITY_SCALE, 0x00FFFFFFu, 0xFFFFFFFFu), 0x00FEFEFEu);
}

TEST(MixKernels, TheOnePassScaleRunsOverIntoTheNextByte)
{
    // 765 * 255 / 255 = 765 = 0x2FD in each of the three places
    EXPECT_EQ(MixOne(MIXOP_INTENSITY_SCALE, 0x00FFFFFFu, 0x00FFFFFFu, 0, 0, 1), 0x2FDu | 0x2FD00u | 0x2FD0000u);
}

TEST(MixKernels, AWeightBeyondItsRangeIsLimited)
{
    for (u32 bOnePass : {0u, 1u}) {
        EXPECT_EQ(MixOne(MIXOP_BLEND, 0x00FF0102u, 0x00030405u, 0, 70000, bOnePass), 0x00FF0102u);
        EXPECT_EQ(MixOne(MIXOP_BLEND, 0x00FF0102u, 0x00030405u, 0, -1, bOnePass), 0x00030405u);
    }
}

TEST(MixKernels, DisplaceReadsSixtyThreeColumnsAwayAndMirrorsAtTheEdges)
{
    OraclePreset ps;
    ps.planes = {{128, 1, std::vector<u32>(128, 0xFFFFFFFFu)}, {128, 1, std::vector<u32>(128, 0)}};
    for (u32 x = 0; x < 128; x++)
        ps.planes[0].pixels[x] = 0x00FFFFFFu | x << 24; // white everywhere, told apart by alpha
    ps.rules = {{0, 1, 0, MIXOP_DISPLACE, 0}};
    ps.metas = {ps.planes[0]};
    ps.final = ps.planes[0];
    MixerPreset preset(ps);
    MixPlanes(&preset.state, 0);
    const u32 *p = BitmapPixels(preset.state.hbmFinal);
    EXPECT_EQ(p[0] >> 24, 63u);
    EXPECT_EQ(p[64] >> 24, 127u);
    EXPECT_EQ(p[65] >> 24, 127u);
    EXPECT_EQ(p[127] >> 24, 65u);
}

TEST(MixKernels, ReflectionRepeatsTheHighEdgeAndNotTheLowOne)
{
    EXPECT_EQ(ReflectCoordinate(-1, 10), 1);
    EXPECT_EQ(ReflectCoordinate(10, 10), 9);
    EXPECT_EQ(ReflectCoordinate(-10, 10), 9);
    EXPECT_EQ(ReflectCoordinate(11, 10), 8);
    for (i32 v = -70; v < 70; v++)
        EXPECT_EQ(ReflectCoordinate(v, 1), 0);
}

TEST(MixKernels, TheDisplaceTablesHoldWhatDirectComputationGives)
{
    const DisplaceDirection *pDirections = GetDisplaceDirections();
    for (u32 i = 0; i < DISPLACE_LEVELS; i++) {
        const f32 fAngle = static_cast<f32>(i) * std::bit_cast<f32>(0x3C05F92Du);
        EXPECT_EQ(pDirections[i].fSin, static_cast<f32>(std::sin(static_cast<double>(fAngle))));
        EXPECT_EQ(pDirections[i].fCos, static_cast<f32>(std::cos(static_cast<double>(fAngle))));
    }
}

// What pins the tables down: the exact value of every entry, known far better than a double can hold it, rounds to
// the same single as anything within eight units of the last place of the double.
TEST(MixKernels, NoSineOrCosineOfTheTablesIsNearARoundingEdge)
{
    for (u32 i = 0; i < DISPLACE_LEVELS; i++) {
        const f32 fAngle = static_cast<f32>(i) * std::bit_cast<f32>(0x3C05F92Du);
        for (const double f : {std::sin(static_cast<double>(fAngle)), std::cos(static_cast<double>(fAngle))}) {
            double fLow = f, fHigh = f;
            for (u32 n = 0; n < 8 && f != 0 && f != 1; n++) {
                fLow = std::nextafter(fLow, -2);
                fHigh = std::nextafter(fHigh, 2);
            }
            EXPECT_EQ(static_cast<f32>(fLow), static_cast<f32>(fHigh)) << "level " << i;
        }
    }
}

#if !defined(VD_ADDRESS_SANITIZER) && !defined(VD_THREAD_SANITIZER) // they have a pthread_create of their own

static bool bRefuseThreads = false;

// Stands before the system's, for the libraries too.
extern "C" int pthread_create(pthread_t *pThread, const pthread_attr_t *pAttributes, void *(*pfn)(void *),
                              void *pv) noexcept
{
    using CreateFn = decltype(&pthread_create);
    static const auto pfnCreate = reinterpret_cast<CreateFn>(dlsym(RTLD_NEXT, "pthread_create"));
    return bRefuseThreads ? EAGAIN : pfnCreate(pThread, pAttributes, pfn, pv);
}

TEST(MixKernelsDeathTest, WithoutThreadsToBeHadTheWholePictureIsMixedHere)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // in a process that has no worker yet
    const auto mix = [] {
        std::vector<u32> picture(1000);
        bRefuseThreads = true;
        ForRanges(picture.size(), 1, [&](size_t iFirst, size_t iEnd) {
            for (size_t i = iFirst; i < iEnd; i++)
                picture[i]++;
        });
        std::_Exit(picture == std::vector<u32>(picture.size(), 1) ? 0 : 1);
    };
    EXPECT_EXIT(mix(), testing::ExitedWithCode(0), "");
}

#endif
