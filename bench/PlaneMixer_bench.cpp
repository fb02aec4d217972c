// PlaneMixer_bench.cpp -- the mixer against the bare traffic of its pictures, pixman, and the math library
#include "bench/BenchReport.h"
#include "bench/MemoryTraffic.h"

#include "engine/MixRules.h"
#include "output/mixer/MixAccelerator.h"
#include "output/mixer/PlaneMixer.h"
#include "output/mixer/remap.h"
#include "platform/Bitmap.h"

#include <pixman.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <random>
#include <string>

namespace {

constexpr unsigned ROUNDS = 41;

struct Format {
    const char *pszName;
    i32 nWidth;
    i32 nHeight;
};

constexpr Format asFormat[] = {{"1080p", 1920, 1080}, {"4K", 3840, 2160}};

// A preset of planes full of noise, and a picture beside it that the references write.
struct Stage {
    PresetState state;
    PlaneState asPlane[PLANES_MAX];
    HostBitmap *hbmReference;
};

HostBitmap *NoisePicture(const Format &format, u32 dwSeed)
{
    HostBitmap *hbm = CreateBitmap(format.nWidth, format.nHeight);
    std::minstd_rand random(dwSeed);
    for (u64 i = 0; i < BitmapBytes(hbm) / 4; i++)
        BitmapPixels(hbm)[i] = static_cast<u32>(random() >> 4) | 0xFF000000u;
    return hbm;
}

void SetUpStage(Stage *pStage, const Format &format)
{
    *pStage = {};
    pStage->state.hbmFinal = NoisePicture(format, 100);
    pStage->hbmReference = NoisePicture(format, 101);
    for (u32 i = 0; i < PLANES_MAX; i++) {
        pStage->asPlane[i].Info.hbmResolved = NoisePicture(format, i + 1);
        pStage->state.psPlane[i] = &pStage->asPlane[i];
    }
    pStage->state.nPlanes = PLANES_MAX;
}

void TearDownStage(Stage *pStage)
{
    RemoveAllMixRules(&pStage->state);
    for (PlaneState &plane : pStage->asPlane)
        DeleteBitmap(plane.Info.hbmResolved);
    DeleteBitmap(pStage->hbmReference);
    DeleteBitmap(pStage->state.hbmFinal);
}

struct Rule {
    i32 MixOp, SrcIdx1, SrcIdx2, AplhaIdx;
};

void SetRules(Stage *pStage, const std::vector<Rule> &rules)
{
    RemoveAllMixRules(&pStage->state);
    for (const Rule &rule : rules) {
        MixRule *pRule = AddMixRule(&pStage->state);
        pRule->MixOp = rule.MixOp;
        pRule->SrcIdx1 = rule.SrcIdx1;
        pRule->SrcIdx2 = rule.SrcIdx2;
        pRule->AplhaIdx = rule.AplhaIdx;
        pRule->BlendWeight.Integer.nValue = 77;
    }
}

Traffic TrafficOf(const Stage &stage, u32 nFrom)
{
    Traffic traffic = {BitmapPixels(stage.hbmReference), {}, nFrom, BitmapBytes(stage.hbmReference) / 4};
    for (u32 i = 0; i < nFrom; i++)
        traffic.apFrom[i] = BitmapPixels(stage.asPlane[i].Info.hbmResolved);
    return traffic;
}

// Times of a mix and of its reference, round by round.
struct Times {
    std::vector<double> afMix;
    std::vector<double> afReference;
};

// Returns when all threads of the arena are at work, or after a while. A sleeping thread can take longer to come than a
// mix lasts, and would then take its share of whatever is measured next.
void WakeThreads(tbb::task_arena *pArena)
{
    const int nThreads = pArena->max_concurrency();
    std::atomic<int> nHere = 0;
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
    const auto meet = [&](int) {
        nHere++;
        while (nHere < nThreads && std::chrono::steady_clock::now() < tEnd) {
        }
    };
    pArena->execute([&] { tbb::parallel_for(0, nThreads, meet, tbb::simple_partitioner()); });
}

// Both references are measured in turn with the mix alone, so that either finds memory as the other left it; the
// faster one counts, with the mixes measured between its own.
Times TimeMix(Stage *pStage, u32 bOnePass, u32 nFrom, int nThreads)
{
    const Traffic traffic = TrafficOf(*pStage, nFrom);
    tbb::task_arena arena(nThreads);
    const auto against = [&](void (*pfnMove)(const Traffic &)) {
        const auto [afMix, afReference] =
            TimeInterleavedAfter([&] { WakeThreads(&arena); }, ROUNDS, 1,
                                 [&] { arena.execute([&] { MixPlanes(&pStage->state, bOnePass); }); },
                                 [&] { arena.execute([&] { pfnMove(traffic); }); });
        return Times{afMix, afReference};
    };
    const Times through = against(MoveThroughCaches);
    const Times past = against(MovePastCaches);
    return Median(through.afReference) < Median(past.afReference) ? through : past;
}

std::string Label(const char *pszWhat, const Format &format, int nThreads)
{
    return std::string("PlaneMixer/") + pszWhat + ", " + format.pszName +
           (nThreads == 1 ? ", one thread" : ", all threads");
}

struct OperatorCase {
    const char *pszName;
    i32 nMixOp;
    u32 nFrom;
};

constexpr OperatorCase asOperator[] = {
    {"Blend", MIXOP_BLEND, 2},
    {"Overwrite Background", MIXOP_OVERWRITE_BACKGROUND, 2},
    {"Only Write Foreground", MIXOP_ONLY_WRITE_FOREGROUND, 2},
    {"Blend XOR", MIXOP_BLEND_XOR, 2},
    {"Blend Max", MIXOP_BLEND_MAX, 2},
    {"Blend using Alpha Channel", MIXOP_BLEND_ALPHA, 3},
    {"Blend using Boolean Channel", MIXOP_BLEND_BOOLEAN, 3},
    {"Color Gun Shift I", MIXOP_GUN_SHIFT_1, 1},
    {"Color Gun Shift II", MIXOP_GUN_SHIFT_2, 1},
    {"Negative", MIXOP_NEGATIVE, 1},
};

// Arithmetic without memory: what a second thread can bring at the most. On two threads of one core it is far from 2.
void RunArithmetic()
{
    constexpr size_t PIECES = 64;
    constexpr u32 TURNS = 20000;
    tbb::parallel_for(size_t{0}, PIECES, [](size_t iPiece) {
        u64 aqw[8];
        std::fill_n(aqw, 8, iPiece);
        for (u32 i = 0; i < TURNS; i++)
            for (u64 &qw : aqw)
                qw = (qw ^ qw >> 7) * 0x9E3779B97F4A7C15u + i;
        KeepResult(aqw);
    });
}

// What two threads take less than one does, round by round.
struct Gains {
    double fMix;
    double fReference;
    double fArithmetic;
};

Gains MeasureGains(Stage *pStage, u32 bOnePass, u32 nFrom)
{
    const Traffic traffic = TrafficOf(*pStage, nFrom);
    tbb::task_arena one(1), two(2);
    const auto on = [](tbb::task_arena &arena, auto fn) { return [&arena, fn] { arena.execute(fn); }; };
    const auto mix = [=] { MixPlanes(&pStage->state, bOnePass); };
    const auto move = [=] { MovePastCaches(traffic); };
    const auto aaf = TimeInterleavedAfter([&] { WakeThreads(&two); }, ROUNDS, 1, on(one, mix), on(two, mix),
                                          on(one, move), on(two, move), on(one, RunArithmetic), on(two, RunArithmetic));
    return {MedianRatio(aaf[0], aaf[1]), MedianRatio(aaf[2], aaf[3]), MedianRatio(aaf[4], aaf[5])};
}

// A rule cannot gain more than memory lets it.
void ReportRuleGain(Stage *pStage, const char *pszName, u32 nFrom)
{
    const Gains gains = MeasureGains(pStage, 0, nFrom);
    const std::string sLabel = std::string("PlaneMixer/two threads over one, 4K: ") + pszName;
    ReportFigure((sLabel + ", of the reference's gain").c_str(), gains.fMix / gains.fReference, 0.95, "x",
                 BenchGoal::AT_LEAST);
}

void MeasureOperators(Stage *pStage, const Format &format, bool bGain)
{
    for (const OperatorCase &op : asOperator) {
        SetRules(pStage, {{op.nMixOp, 0, 1, 2}});
        for (const int nThreads : {1, tbb::info::default_concurrency()}) {
            const Times times = TimeMix(pStage, 0, op.nFrom, nThreads);
            ReportFigure(Label(op.pszName, format, nThreads).c_str(), MedianRatio(times.afMix, times.afReference), 1.10,
                         "x", BenchGoal::AT_MOST);
        }
        if (bGain && op.nMixOp == MIXOP_BLEND)
            ReportRuleGain(pStage, op.pszName, op.nFrom);
    }
}

// Eight rules over four planes, each on the result of the one before.
std::vector<Rule> LightRules()
{
    return {{MIXOP_BLEND_XOR, 0, 1, 0},     {MIXOP_BLEND_MAX, 4, 2, 0},   {MIXOP_OVERWRITE_BACKGROUND, 5, 3, 0},
            {MIXOP_NEGATIVE, 6, 0, 0},      {MIXOP_GUN_SHIFT_1, 7, 0, 0}, {MIXOP_ONLY_WRITE_FOREGROUND, 8, 0, 0},
            {MIXOP_BLEND_BOOLEAN, 9, 1, 4}, {MIXOP_BLEND_XOR, 10, 6, 0}};
}

std::vector<Rule> HeavyRules()
{
    std::vector<Rule> rules = LightRules();
    rules[1].MixOp = MIXOP_BLEND;
    rules[4] = {MIXOP_INTENSITY_SCALE_RGB, 7, 2, 0};
    rules[7].MixOp = MIXOP_BLEND;
    return rules;
}

// As many rules as fit beside four planes, each of which multiplies: arithmetic takes longer than memory by far.
std::vector<Rule> ComputingRules()
{
    constexpr i32 anOperator[] = {MIXOP_BLEND, MIXOP_INTENSITY_SCALE_RGB, MIXOP_BLEND_ALPHA, MIXOP_BLEND};
    std::vector<Rule> rules;
    for (i32 i = 0; i < 28; i++)
        rules.push_back({anOperator[i % 4], i == 0 ? 0 : 3 + i, (i + 1) % 4, i % 4});
    return rules;
}

bool HasAvx512()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
#else
    return false;
#endif
}

void MeasureChains(Stage *pStage, const Format &format)
{
    const struct {
        const char *pszName;
        std::vector<Rule> rules;
        double fGoal;
    } asChain[] = {{"one pass, 8 rules without multiplies", LightRules(), 1.1},
                   {"one pass, 8 rules, 2 Blends and a scale", HeavyRules(), HasAvx512() ? 1.15 : 1.9}};
    for (const auto &chain : asChain) {
        SetRules(pStage, chain.rules);
        for (const int nThreads : {1, tbb::info::default_concurrency()}) {
            const Times times = TimeMix(pStage, 1, 4, nThreads);
            ReportFigure(Label(chain.pszName, format, nThreads).c_str(), MedianRatio(times.afMix, times.afReference),
                         chain.fGoal, "x", BenchGoal::AT_MOST);
        }
    }
}

// Nor can a chain that computes gain more than arithmetic does, which stands beside it.
void MeasureChainGain(Stage *pStage)
{
    SetRules(pStage, ComputingRules());
    const Gains gains = MeasureGains(pStage, 1, 4);
    ReportFigure("PlaneMixer/two threads over one, 4K: one pass, 28 rules that multiply", gains.fMix, 1.8, "x",
                 BenchGoal::AT_LEAST);
    ReportFigure("PlaneMixer/two threads over one: arithmetic alone", gains.fArithmetic, 0, "x", BenchGoal::NONE);
    ReportFigure("PlaneMixer/two threads over one, 4K: bare traffic of the chain", gains.fReference, 0, "x",
                 BenchGoal::NONE);
}

pixman_image_t *PixmanPicture(pixman_format_code_t eFormat, const HostBitmap *hbm)
{
    return pixman_image_create_bits(eFormat, hbm->nWidth, hbm->nHeight, BitmapPixels(hbm),
                                    static_cast<int>(hbm->cbRow));
}

// The same traffic: reads the source and the target, writes the target. OVER looks at the source's alpha too.
void MeasurePixman(Stage *pStage, const Format &format, double fGoal)
{
    SetRules(pStage, {{MIXOP_BLEND, 0, 1, 0}});
    const pixman_color_t colour = {0, 0, 0, 77 * 257};
    pixman_image_t *pMask = pixman_image_create_solid_fill(&colour);
    pixman_image_t *pFrom = PixmanPicture(PIXMAN_a8r8g8b8, pStage->asPlane[0].Info.hbmResolved);
    pixman_image_t *pTo = PixmanPicture(PIXMAN_a8r8g8b8, pStage->hbmReference);
    tbb::task_arena arena(1);
    const auto [afMix, afPixman] = TimeInterleaved(
        ROUNDS, 1, [&] { arena.execute([&] { MixPlanes(&pStage->state, 0); }); },
        [&] {
            pixman_image_composite32(PIXMAN_OP_OVER, pFrom, pMask, pTo, 0, 0, 0, 0, 0, 0, format.nWidth,
                                     format.nHeight);
        });
    for (pixman_image_t *pImage : {pMask, pFrom, pTo})
        pixman_image_unref(pImage);
    ReportFigure(Label("pixman's OVER over Blend", format, 1).c_str(), MedianRatio(afPixman, afMix), fGoal, "x",
                 BenchGoal::AT_LEAST);
}

i32 ByteSum(u32 dwPixel)
{
    return static_cast<i32>((dwPixel & 0xFF) + (dwPixel >> 8 & 0xFF) + (dwPixel >> 16 & 0xFF));
}

// Displace as it is described: a sine and a cosine a pixel.
void DisplaceByMathLibrary(HostBitmap *hbmTo, const HostBitmap *hbmFrom, const HostBitmap *hbmDirection)
{
    for (i32 y = 0; y < hbmTo->nHeight; y++)
        for (i32 x = 0; x < hbmTo->nWidth; x++) {
            const i32 i = y * hbmTo->nWidth + x;
            const f32 fFar = static_cast<f32>(ByteSum(BitmapPixels(hbmFrom)[i])) * DISPLACE_MAGNITUDE_UNIT;
            const f32 fAngle = static_cast<f32>(ByteSum(BitmapPixels(hbmDirection)[i])) * DISPLACE_ANGLE_UNIT;
            const i32 xFrom = ReflectCoordinate(x + static_cast<i32>(fFar * std::cos(fAngle)), hbmTo->nWidth);
            const i32 yFrom = ReflectCoordinate(y + static_cast<i32>(fFar * std::sin(fAngle)), hbmTo->nHeight);
            BitmapPixels(hbmTo)[i] = BitmapPixels(hbmFrom)[yFrom * hbmTo->nWidth + xFrom];
        }
}

void MeasureDisplace(Stage *pStage, const Format &format)
{
    SetRules(pStage, {{MIXOP_DISPLACE, 0, 1, 0}});
    tbb::task_arena arena(1);
    const auto [afMix, afMath] = TimeInterleaved(
        ROUNDS, 1, [&] { arena.execute([&] { MixPlanes(&pStage->state, 0); }); },
        [&] {
            DisplaceByMathLibrary(pStage->hbmReference, pStage->asPlane[0].Info.hbmResolved,
                                  pStage->asPlane[1].Info.hbmResolved);
        });
    ReportFigure(Label("the math library's Displace over ours", format, 1).c_str(), MedianRatio(afMath, afMix), 10, "x",
                 BenchGoal::AT_LEAST);
}

// One pass on the graphics card, with its ways there and back, against the processor. Nothing without a card.
void MeasureCard(Stage *pStage, const Format &format)
{
    SetupMixAccelerator();
    if (bAccelEmulated)
        return;
    SetRules(pStage, HeavyRules());
    const auto [afCard, afProcessor] = TimeInterleaved(
        ROUNDS, 1, [&] { MixPlanes(&pStage->state, 1); },
        [&] {
            bAccelEmulated = 1;
            MixPlanes(&pStage->state, 1);
            bAccelEmulated = 0;
        });
    const std::string sLabel = "PlaneMixer/one pass on the graphics card over all cores, ";
    ReportFigure((sLabel + format.pszName).c_str(), MedianRatio(afCard, afProcessor), 0, "x", BenchGoal::NONE);
    CloseMixAccelerator();
    bAccelEmulated = 1;
}

} // namespace

int main()
{
    static Stage stage;
    for (const Format &format : asFormat) {
        const bool bLarge = &format != asFormat;
        SetUpStage(&stage, format);
        MeasureOperators(&stage, format, bLarge);
        MeasureChains(&stage, format);
        if (bLarge)
            MeasureChainGain(&stage);
        MeasurePixman(&stage, format, bLarge ? 1.25 : 2);
        MeasureDisplace(&stage, format);
        MeasureCard(&stage, format);
        TearDownStage(&stage);
    }
    return 0;
}
