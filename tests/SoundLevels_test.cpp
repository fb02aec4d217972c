// SoundLevels_test.cpp -- the arithmetic of the sound levels and the simulated level
#include "stock/SoundLevelDLL/Snapshot.h"
#include "stock/shared/LevelMeter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr u32 RATE = 48000;
constexpr double PI = 3.14159265358979323846;

// Mono samples whose loudness is told by a function of the second.
template <typename Fn> std::vector<f32> Tone(double fSeconds, double fHz, Fn amplitude)
{
    std::vector<f32> af(static_cast<size_t>(fSeconds * RATE));
    for (size_t i = 0; i < af.size(); i++) {
        const double fSecond = static_cast<double>(i) / RATE;
        af[i] = static_cast<f32>(amplitude(fSecond) * std::sin(2 * PI * fHz * fSecond));
    }
    return af;
}

std::vector<f32> SteadyTone(double fSeconds, double fAmplitude)
{
    return Tone(fSeconds, 1000, [fAmplitude](double) { return fAmplitude; });
}

// A kick twice a second over a softer bed, like the loudness of dance music.
double BeatShape(double fSecond)
{
    return 0.25 + 0.75 * std::exp(-8 * std::fmod(fSecond, 0.5));
}

struct Player {
    LevelMeter meter;
    double fNowMs = 0;

    explicit Player(u32 nRate = RATE, u32 nChannels = 1, u32 nWindowMs = 20)
    {
        InitLevelMeter(&meter, nRate, nChannels, nWindowMs);
    }

    void Play(const f32 *pf, size_t nFrames)
    {
        fNowMs += static_cast<double>(nFrames) * 1000 / meter.nRate;
        FeedLevelMeter(&meter, pf, static_cast<u32>(nFrames), fNowMs);
    }

    void Play(const std::vector<f32> &af)
    {
        Play(af.data(), af.size() / meter.nChannels);
    }

    void PlaySilence(double fSeconds)
    {
        Play(nullptr, static_cast<size_t>(fSeconds * meter.nRate));
    }

    // Plays in blocks of 10 ms and collects a level after each.
    std::vector<f32> PlayAndRead(const std::vector<f32> &af, i32 nVolumeType)
    {
        std::vector<f32> afLevel;
        for (size_t i = 0; i + RATE / 100 <= af.size(); i += RATE / 100) {
            Play(af.data() + i, RATE / 100);
            afLevel.push_back(Level(nVolumeType));
        }
        return afLevel;
    }

    f32 Level(i32 nVolumeType, const SimulatedTempo &tempo = {}) const
    {
        return LevelAt(&meter.Reading, &tempo, nVolumeType, fNowMs);
    }
};

f32 LargestStep(const std::vector<f32> &af)
{
    f32 fStep = 0;
    for (size_t i = 1; i < af.size(); i++)
        fStep = std::max(fStep, std::fabs(af[i] - af[i - 1]));
    return fStep;
}

f32 Largest(const std::vector<f32> &af)
{
    return *std::max_element(af.begin(), af.end());
}

f32 Smallest(const std::vector<f32> &af)
{
    return *std::min_element(af.begin(), af.end());
}

std::vector<f32> SimulatedLevels(const SimulatedTempo &tempo, double fFromMs, double fStepMs, size_t nCount)
{
    std::vector<f32> af(nCount);
    for (size_t i = 0; i < nCount; i++)
        af[i] = SimulatedLevelAt(&tempo, fFromMs + fStepMs * static_cast<double>(i));
    return af;
}

} // namespace

TEST(SoundLevels, RawLevelOfASineIsItsRootMeanSquareAtAnyRateAndChannelCount)
{
    for (u32 nRate : {8000u, 44100u, 48000u, 192000u}) {
        for (u32 nChannels : {1u, 2u, 6u}) {
            Player player(nRate, nChannels);
            std::vector<f32> af(nRate * nChannels);
            for (size_t i = 0; i < af.size(); i++)
                af[i] = static_cast<f32>(0.5 * std::sin(2 * PI * 500 * static_cast<double>(i / nChannels) / nRate));
            player.Play(af);
            EXPECT_NEAR(player.Level(VOLUMETYPE_RAW), 0.5 / std::sqrt(2.0), 0.004) << nRate << " x " << nChannels;
        }
    }
}

TEST(SoundLevels, RawLevelFollowsWithinItsWindow)
{
    Player player;
    player.Play(SteadyTone(1, 0.8));
    player.PlaySilence(0.025);
    EXPECT_LT(player.Level(VOLUMETYPE_RAW), 0.01f);
    player.Play(SteadyTone(0.025, 0.8));
    EXPECT_NEAR(player.Level(VOLUMETYPE_RAW), 0.8 / std::sqrt(2.0), 0.02);
}

TEST(SoundLevels, CuttingTheStreamIntoOtherBlocksChangesNothing)
{
    const std::vector<f32> af = Tone(3, 440, BeatShape);
    Player whole, cut;
    whole.Play(af);
    const size_t anBlock[] = {1, 7, 480, 3000, 239, 240, 241};
    for (size_t i = 0, iBlock = 0; i < af.size(); iBlock++) {
        const size_t n = std::min(anBlock[iBlock % std::size(anBlock)], af.size() - i);
        cut.Play(af.data() + i, n);
        i += n;
    }
    for (i32 nType : {VOLUMETYPE_RAW, VOLUMETYPE_EXPANDED, VOLUMETYPE_DYNAMIC})
        EXPECT_EQ(whole.Level(nType), cut.Level(nType)) << nType;
}

TEST(SoundLevels, ExpandedLevelStretchesTheQuietHalf)
{
    EXPECT_EQ(ExpandedLevel(0), 0);
    EXPECT_FLOAT_EQ(ExpandedLevel(1), 1);
    EXPECT_GT(ExpandedLevel(0.5f), 0.7f);
    for (f32 f = 0; f < 1; f += 0.01f)
        EXPECT_GT(ExpandedLevel(f + 0.01f), ExpandedLevel(f));
}

TEST(SoundLevels, BrokenSamplesNeitherSpreadNorOverflow)
{
    Player player;
    std::vector<f32> af = SteadyTone(0.5, 0.3);
    af[100] = std::numeric_limits<f32>::quiet_NaN();
    af[200] = std::numeric_limits<f32>::infinity();
    af[300] = -3e38f;
    player.Play(af);
    player.Play(SteadyTone(0.5, 0.3));
    for (i32 nType : {VOLUMETYPE_RAW, VOLUMETYPE_EXPANDED, VOLUMETYPE_DYNAMIC}) {
        const f32 f = player.Level(nType);
        EXPECT_TRUE(std::isfinite(f) && f > 0 && f <= 1) << nType << ": " << f;
    }
    EXPECT_NEAR(player.Level(VOLUMETYPE_RAW), 0.3 / std::sqrt(2.0), 0.004);
}

TEST(SoundLevels, AConstantOffsetIsNoSound)
{
    Player player;
    player.Play(std::vector<f32>(3 * RATE, 0.25f));
    EXPECT_TRUE(IsQuietAt(&player.meter.Reading, player.fNowMs));
    EXPECT_EQ(player.Level(VOLUMETYPE_RAW), 0);
}

TEST(SoundLevels, ImpossibleFormatsAreLimited)
{
    for (u32 n : {0u, 1u, 0xFFFFFFFFu}) {
        Player player(n, n, n);
        EXPECT_GE(player.meter.nStepFrames, 1u);
        EXPECT_LE(player.meter.nChannels, METER_CHANNELS_MAX);
        const std::vector<f32> af(4000 * METER_CHANNELS_MAX, 0.1f);
        player.Play(af.data(), 4000);
        EXPECT_TRUE(std::isfinite(player.Level(VOLUMETYPE_DYNAMIC)));
    }
}

TEST(SoundLevels, QuietAndLoudMusicFillTheSameRange)
{
    std::vector<std::vector<f32>> aafLevel;
    for (double fLoudness : {0.9, 0.1, 0.02}) {
        Player player;
        player.Play(Tone(30, 440, [=](double f) { return fLoudness * BeatShape(f); }));
        aafLevel.push_back(
            player.PlayAndRead(Tone(4, 440, [=](double f) { return fLoudness * BeatShape(f); }), VOLUMETYPE_DYNAMIC));
    }
    for (const std::vector<f32> &af : aafLevel) {
        EXPECT_GT(Largest(af), 0.85f);
        EXPECT_LT(Smallest(af), 0.3f);
        EXPECT_NEAR(Largest(af), Largest(aafLevel[0]), 0.03);
        EXPECT_NEAR(Smallest(af), Smallest(aafLevel[0]), 0.03);
    }
}

TEST(SoundLevels, TheGainIsLimited)
{
    Player player;
    player.Play(SteadyTone(60, 0.001));
    EXPECT_GT(player.Level(VOLUMETYPE_DYNAMIC), 0.02f);
    EXPECT_LT(player.Level(VOLUMETYPE_DYNAMIC), 0.4f);
}

// Pumping would show as a gain that differs between the beats of steady music.
TEST(SoundLevels, TheGainRestsWithinSteadyMusic)
{
    Player player;
    player.Play(Tone(30, 440, BeatShape));
    f32 fLow = 1e9f, fHigh = -1e9f;
    const std::vector<f32> af = Tone(10, 440, BeatShape);
    for (size_t i = 0; i < af.size(); i += 480) {
        player.Play(af.data() + i, 480);
        const f32 fGain = DynamicLevel(&player.meter.Range, 0.3f);
        fLow = std::min(fLow, fGain);
        fHigh = std::max(fHigh, fGain);
    }
    EXPECT_LT(fHigh - fLow, 0.03f);
}

TEST(SoundLevels, TheGainFallsFastAndRisesSlowly)
{
    Player player;
    player.Play(SteadyTone(20, 0.05));
    const f32 fBefore = DynamicLevel(&player.meter.Range, 0.03f);
    player.Play(SteadyTone(0.6, 0.8));
    const f32 fLoud = DynamicLevel(&player.meter.Range, 0.03f);
    EXPECT_LT(fLoud, 0.4f * fBefore);
    player.Play(SteadyTone(2, 0.05));
    EXPECT_LT(DynamicLevel(&player.meter.Range, 0.03f), 0.5f * fBefore);
    player.Play(SteadyTone(18, 0.05));
    EXPECT_NEAR(DynamicLevel(&player.meter.Range, 0.03f), fBefore, 0.05);
}

TEST(SoundLevels, AClickOrAPauseDoesNotMoveTheGain)
{
    Player player;
    player.Play(Tone(20, 440, [](double f) { return 0.1 * BeatShape(f); }));
    const f32 fBefore = DynamicLevel(&player.meter.Range, 0.03f);
    player.Play(std::vector<f32>(20, 0.5f));
    player.Play(Tone(1, 440, [](double f) { return 0.1 * BeatShape(f); }));
    EXPECT_GT(DynamicLevel(&player.meter.Range, 0.03f), 0.7f * fBefore);
    player.Play(Tone(20, 440, [](double f) { return 0.1 * BeatShape(f); }));
    const f32 fSettled = DynamicLevel(&player.meter.Range, 0.03f);
    player.PlaySilence(60);
    EXPECT_NEAR(DynamicLevel(&player.meter.Range, 0.03f), fSettled, 0.02);
}

TEST(SoundLevels, FewerHomingSamplesHomeInFaster)
{
    Player slow, fast;
    SetRangeHoming(&fast.meter.Range, 200); // a second of levels
    for (Player *pPlayer : {&slow, &fast}) {
        pPlayer->Play(SteadyTone(10, 0.8));
        pPlayer->Play(SteadyTone(4, 0.02));
    }
    EXPECT_GT(fast.Level(VOLUMETYPE_DYNAMIC), 0.6f);
    EXPECT_LT(slow.Level(VOLUMETYPE_DYNAMIC), 0.2f);
}

TEST(SoundLevels, WithoutSoundAllButTheSimulatedKindAreZero)
{
    Player player;
    player.Play(SteadyTone(5, 0.3));
    EXPECT_FALSE(IsQuietAt(&player.meter.Reading, player.fNowMs));
    std::vector<f32> af = SteadyTone(4, 0.0001); // hiss far below hearing
    player.Play(af);
    EXPECT_TRUE(IsQuietAt(&player.meter.Reading, player.fNowMs));
    for (i32 nType : {VOLUMETYPE_RAW, VOLUMETYPE_EXPANDED, VOLUMETYPE_DYNAMIC})
        EXPECT_EQ(player.Level(nType), 0) << nType;
    const SimulatedTempo tempo = {};
    for (i32 nType : {i32{VOLUMETYPE_DYNAMIC_SIMULATED}, 4, -1})
        EXPECT_EQ(player.Level(nType), SimulatedLevelAt(&tempo, player.fNowMs)) << nType;
}

TEST(SoundLevels, AReadingThatNeverHeardAnythingGivesTheSimulatedLevel)
{
    const LevelReading reading = {};
    const SimulatedTempo tempo = {0, 0, 5, 1, 0};
    for (double fMs : {0.0, 1.0, 500.0, 5e9}) {
        EXPECT_TRUE(IsQuietAt(&reading, fMs));
        EXPECT_EQ(LevelAt(&reading, &tempo, VOLUMETYPE_DYNAMIC, fMs), 0);
        EXPECT_EQ(LevelAt(&reading, &tempo, VOLUMETYPE_DYNAMIC_SIMULATED, fMs), SimulatedLevelAt(&tempo, fMs));
    }
}

// A hard switch would jump by the whole difference of the two levels; a slow simulated level lets only the cross-over
// show. The sound itself is faded, so that it does not jump either.
TEST(SoundLevels, SimulatedAndRealSoundCrossOverWithoutAJump)
{
    SimulatedTempo tempo = {};
    SetSimulatedScale(&tempo, 99, 0);
    const auto fade = [](double f) { return 0.3 * std::min({1.0, f / 0.5, (3 - f) / 0.5}); };
    const std::vector<f32> afSound = Tone(3, 440, fade);
    const std::vector<f32> afSilence(6 * RATE, 0.0f);
    Player player;
    std::vector<f32> afLevel, afShare;
    for (int nRound = 0; nRound < 3; nRound++) {
        for (const std::vector<f32> *paf : {&afSilence, &afSound}) {
            for (size_t i = 0; i < paf->size(); i += 480) {
                player.Play(paf->data() + i, 480);
                afLevel.push_back(player.Level(VOLUMETYPE_DYNAMIC_SIMULATED, tempo));
                afShare.push_back(SimulatedShareAt(&player.meter.Reading, player.fNowMs));
            }
        }
    }
    EXPECT_LT(LargestStep(afShare), 0.05f);
    EXPECT_LT(LargestStep(afLevel), 0.1f);
    EXPECT_EQ(Smallest(afShare), 0);
    EXPECT_EQ(Largest(afShare), 1);
}

TEST(SoundLevels, ASoundWithinTheCrossOverTurnsItRoundWhereItStands)
{
    Player player;
    player.Play(SteadyTone(2, 0.3));
    player.PlaySilence((QUIET_AFTER_MS + FADE_IN_MS / 2) / 1000);
    const f32 fBefore = SimulatedShareAt(&player.meter.Reading, player.fNowMs);
    EXPECT_NEAR(fBefore, 0.5, 0.05);
    player.Play(SteadyTone(0.01, 0.3));
    EXPECT_NEAR(SimulatedShareAt(&player.meter.Reading, player.fNowMs), fBefore, 0.06);
    player.Play(SteadyTone(0.3, 0.3));
    EXPECT_EQ(SimulatedShareAt(&player.meter.Reading, player.fNowMs), 0);
}

TEST(SoundLevels, LevelsFallWhenSamplesStayAway)
{
    Player player;
    player.Play(SteadyTone(5, 0.5));
    const f32 fBefore = player.Level(VOLUMETYPE_RAW);
    player.fNowMs += STALE_AFTER_MS - 1;
    EXPECT_EQ(player.Level(VOLUMETYPE_RAW), fBefore);
    player.fNowMs += STALE_FALL_MS / 2;
    EXPECT_NEAR(player.Level(VOLUMETYPE_RAW), fBefore / 2, 0.05 * fBefore);
    player.fNowMs += STALE_FALL_MS;
    EXPECT_EQ(player.Level(VOLUMETYPE_RAW), 0);
    player.fNowMs += 5000; // and what comes after the hole starts from nothing
    player.Play(std::vector<f32>(480, 0.0f));
    EXPECT_EQ(player.meter.Reading.fRaw, 0);
}

TEST(SimulatedLevel, StaysInRangeUsesItAndIsSteady)
{
    for (u64 qwSeed = 0; qwSeed < 20; qwSeed++) {
        const SimulatedTempo tempo = {0, 0, qwSeed, 1, 0};
        const std::vector<f32> af = SimulatedLevels(tempo, 0, 5, 60000); // five minutes
        EXPECT_GE(Smallest(af), 0);
        EXPECT_LE(Largest(af), 1);
        EXPECT_LT(Smallest(af), 0.15f) << qwSeed;
        EXPECT_GT(Largest(af), 0.75f) << qwSeed;
        EXPECT_LT(LargestStep(af), 0.12f) << qwSeed;
    }
}

TEST(SimulatedLevel, IsFixedByItsSeedAndNeverRepeats)
{
    const SimulatedTempo tempo = {0, 0, 77, 1, 0}, other = {0, 0, 78, 1, 0};
    const std::vector<f32> af = SimulatedLevels(tempo, 0, 50, 400); // a phrase
    EXPECT_EQ(af, SimulatedLevels(tempo, 0, 50, 400));
    EXPECT_NE(af, SimulatedLevels(other, 0, 50, 400));
    for (double fMs = 10000; fMs < 3600000; fMs += 17003) {
        const std::vector<f32> afLater = SimulatedLevels(tempo, fMs, 50, 400);
        f32 fApart = 0;
        for (size_t i = 0; i < af.size(); i++)
            fApart = std::max(fApart, std::fabs(af[i] - afLater[i]));
        EXPECT_GT(fApart, 0.1f) << fMs;
    }
}

// The beats are the swings of the level through its slow mean.
TEST(SimulatedLevel, HasABeatWhoseTempoFollowsTheScale)
{
    const auto upward = [](u32 nScale) {
        SimulatedTempo tempo = {0, 0, 3, 1, 0};
        SetSimulatedScale(&tempo, nScale, 0);
        const std::vector<f32> af = SimulatedLevels(tempo, 0, 20, 60000); // twenty minutes
        int nSwings = 0;
        for (size_t i = 1; i < af.size(); i++)
            nSwings += af[i - 1] < 0.45f && af[i] >= 0.45f;
        return nSwings;
    };
    const int nNormal = upward(1);
    EXPECT_GT(nNormal, 800);
    EXPECT_LT(nNormal, 4000);
    EXPECT_NEAR(static_cast<double>(nNormal) / upward(20), 20, 6);
}

TEST(SimulatedLevel, ScaleTwentyIsTwentyTimesSlower)
{
    SimulatedTempo normal = {1000, 0, 9, 1, 0}, slow = normal;
    EXPECT_TRUE(SetSimulatedScale(&slow, 20, 1000));
    for (double fMs = 0; fMs < 60000; fMs += 333)
        EXPECT_NEAR(SimulatedLevelAt(&normal, 1000 + fMs), SimulatedLevelAt(&slow, 1000 + 20 * fMs), 1e-6);
}

TEST(SimulatedLevel, AChangeOfTheScaleDoesNotJump)
{
    SimulatedTempo tempo = {0, 0, 4, 1, 0};
    double fMs = 0;
    for (u32 nScale : {20u, 1u, 99u, 1u, 2u, 50u}) {
        fMs += 123456.7;
        const f32 fBefore = SimulatedLevelAt(&tempo, fMs);
        const double fBeat = SimulatedBeatAt(&tempo, fMs);
        ASSERT_TRUE(SetSimulatedScale(&tempo, nScale, fMs));
        EXPECT_FLOAT_EQ(SimulatedLevelAt(&tempo, fMs), fBefore);
        EXPECT_NEAR(SimulatedBeatAt(&tempo, fMs), fBeat, 1e-9);
        EXPECT_GT(SimulatedBeatAt(&tempo, fMs + 1), fBeat);
    }
    const SimulatedTempo before = tempo;
    for (u32 nScale : {0u, 100u, 0xFFFFFFFFu})
        EXPECT_FALSE(SetSimulatedScale(&tempo, nScale, fMs + 5));
    EXPECT_EQ(std::memcmp(&tempo, &before, sizeof tempo), 0);
}

TEST(Snapshot, NobodySeesAHalfWrittenRecord)
{
    struct Record {
        u64 aqw[9];
    };
    constexpr u64 LAST = 100000;
    const auto snapshot = std::make_unique<Snapshot<Record>>();
    const auto read = [&] {
        for (u64 qwBefore = 0; qwBefore < LAST;) {
            const Record record = snapshot->Read();
            for (u64 qw : record.aqw)
                ASSERT_EQ(qw, record.aqw[0]);
            ASSERT_GE(record.aqw[0], qwBefore);
            qwBefore = record.aqw[0];
        }
    };
    std::thread first(read), second(read);
    for (u64 qw = 1; qw <= LAST; qw++) {
        Record record;
        std::fill(std::begin(record.aqw), std::end(record.aqw), qw);
        snapshot->Publish(record);
    }
    first.join();
    second.join();
}
