// FluidSources_test.cpp -- waves, chance, sound and file lists under a fixed clock and a fixed seed
#include "controls/FluidSources.h"

#include "controls/ControlManager.h"
#include "controls/FileList.h"
#include "platform/Clock.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"
#include "tests/TempFolder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr u64 FAR_TICK = 123456789000; // beyond what 32 bits or an f32 hold
constexpr f32 INF = std::numeric_limits<f32>::infinity();

class FluidSources : public testing::Test {
  protected:
    void SetUp() override
    {
        UseFixedClock(1000);
        SeedAllRandom(1);
        GlobalSettings.TimeScale = 1;
        GlobalSettings.pSound = &Sound;
        ClearSoundHistory();
        bPresetChanged = 0;
    }
    void TearDown() override
    {
        FreeControl(pctl);
        GlobalSettings.pSound = nullptr;
        UseStrongRandom();
        UseSystemClock();
    }
    ControlRecord *Make(u32 dwType, u32 dwSource)
    {
        FreeControl(pctl);
        pctl = NewControl();
        pctl->Base.dwType = dwType;
        pctl->Base.dwSource = dwSource;
        return pctl;
    }
    // The integer that a unit number leads to, through the sound level.
    i32 IntegerFor(f32 fUnit)
    {
        Sound.fRawLevel = fUnit;
        EvaluateControl(pctl, false);
        return pctl->Integer.nValue;
    }

    SoundFrame Sound = {};
    ControlRecord *pctl = nullptr;
};

// The waves as curves over a turn, in double; the tick and the phase are whole milliseconds.
double WaveOracle(u32 dwWaveType, u64 t, u32 nPeriod)
{
    const double fTurn = static_cast<double>(t % nPeriod) / nPeriod;
    switch (dwWaveType) {
    case WAVETYPE_SINE:
        return std::sin(fTurn * 6.28) * 0.5 + 0.5;
    case WAVETYPE_TRIANGLE:
        return fTurn < 0.25 ? 0.5 + 2 * fTurn : fTurn < 0.75 ? 1.5 - 2 * fTurn : 2 * fTurn - 1.5;
    case WAVETYPE_SQUARE:
        return fTurn < 0.5 ? 0.0000001 : 1.0;
    default:
        return 1 - fTurn;
    }
}

char16_t *CopyOfText(const std::u16string &s)
{
    char16_t *psz = static_cast<char16_t *>(malloc((s.size() + 1) * sizeof(char16_t)));
    memcpy(psz, s.c_str(), (s.size() + 1) * sizeof(char16_t));
    return psz;
}

// The lines that have text, cut out character by character.
std::vector<std::u16string> LinesOracle(const std::u16string &text)
{
    std::vector<std::u16string> lines(1);
    for (const char16_t ch : text) {
        if (ch != u'\r' && ch != u'\n')
            lines.back() += ch;
        else if (!lines.back().empty())
            lines.emplace_back();
    }
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

} // namespace

TEST_F(FluidSources, WavesFollowTheirCurvesAtEveryTickAndPhase)
{
    for (u32 dwWave = WAVETYPE_SINE; dwWave <= WAVETYPE_RAMP; dwWave++)
        for (const u32 nPeriod : {400u, 1000u, 120000u})
            for (const f32 fPhase : {0.0f, 0.25f, 0.5f, 1.0f})
                for (u64 qwTick = FAR_TICK; qwTick < FAR_TICK + 2 * nPeriod; qwTick += 1 + nPeriod / 97) {
                    const u64 t = qwTick + static_cast<u64>(fPhase * static_cast<f32>(nPeriod));
                    ASSERT_NEAR(WaveValue(dwWave, fPhase, nPeriod, qwTick), WaveOracle(dwWave, t, nPeriod), 1e-6)
                        << dwWave << " period " << nPeriod << " phase " << fPhase << " tick " << qwTick;
                }
    EXPECT_EQ(WaveValue(WAVETYPE_SINE, 0, 1000, 0), 0.5f);
    EXPECT_EQ(WaveValue(WAVETYPE_TRIANGLE, 0, 1000, 250), 1.0f);
    EXPECT_EQ(WaveValue(WAVETYPE_TRIANGLE, 0, 1000, 750), 0.0f);
    EXPECT_EQ(WaveValue(4, 0, 1000, 77), 0.01f);
    for (u64 r = 0; r < 5; r++)
        EXPECT_EQ(WaveValue(WAVETYPE_SQUARE, 0, 5, 50 + r), r < 2 ? 0.0000001f : 1.0f) << r;
}

TEST_F(FluidSources, WavesGiveDefinedNumbersForAnyPeriodAndPhase)
{
    const f32 afStart[] = {0.5f, 0.5f, 0.0000001f, 1.0f, 0.01f};
    for (u32 dwWave = 0; dwWave < std::size(afStart); dwWave++) {
        EXPECT_EQ(WaveValue(dwWave, 0.3f, 0, 12345), afStart[dwWave]) << dwWave;
        for (const f32 fPhase : {NAN, INF, -INF, -0.5f, 1e30f, -1e30f})
            EXPECT_EQ(WaveValue(dwWave, fPhase, 1000, 100), WaveValue(dwWave, 0, 1000, 100)) << dwWave << fPhase;
        for (const u32 nPeriod : {1u, 2u, 3u, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu})
            for (const u64 qwTick : {u64{0}, u64{1}, ~u64{0}}) {
                const f32 f = WaveValue(dwWave, 1.0f, nPeriod, qwTick);
                EXPECT_TRUE(f >= 0 && f <= 1) << dwWave << " " << nPeriod << " " << qwTick << ": " << f;
            }
    }
}

TEST_F(FluidSources, TheTimeScaleStretchesAWaveAndNeverWrapsIt)
{
    Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_WAVE);
    pctl->Float.fMax = 1;
    pctl->Base.dwWaveType = WAVETYPE_RAMP;
    pctl->Base.nWavePeriod = 1000;
    GlobalSettings.TimeScale = 4;
    SetFixedTick(5000);
    EvaluateControl(pctl, false);
    EXPECT_EQ(pctl->Float.fValue, 0.75f);
    GlobalSettings.TimeScale = 0;
    EXPECT_EQ(EffectiveWavePeriod(pctl), 1000u);
    GlobalSettings.TimeScale = 100;
    pctl->Base.nWavePeriod = 0xFFFFFFF0u;
    EXPECT_EQ(EffectiveWavePeriod(pctl), ALL_ONES);
    pctl->Base.nWavePeriod = 181;
    EXPECT_EQ(EffectiveWavePeriod(pctl), 4294967295u);
    pctl->Base.nWavePeriod = 182;
    EXPECT_EQ(EffectiveWavePeriod(pctl), 18200u);
}

TEST_F(FluidSources, AResetDrawsANewPhaseOnlyForAWaveWithARandomOne)
{
    Make(CONTROLTYPE_BOOLEAN, FLUIDSOURCE_SOUND);
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->Base.fWavePhase, 0.0f);
    pctl->Base.dwSource = FLUIDSOURCE_WAVE;
    EvaluateControl(pctl, false);
    EXPECT_EQ(pctl->Base.fWavePhase, 0.0f);
    EvaluateControl(pctl, true);
    const f32 fDrawn = pctl->Base.fWavePhase;
    EXPECT_GT(fDrawn, 0.0f);
    pctl->Base.bRandomPhase = 0;
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->Base.fWavePhase, fDrawn);
}

TEST_F(FluidSources, AThresholdOfOneStaysOffAndOneOfZeroStaysOnUnderASquareWave)
{
    Make(CONTROLTYPE_BOOLEAN, FLUIDSOURCE_WAVE);
    pctl->Base.dwWaveType = WAVETYPE_SQUARE;
    pctl->Base.nWavePeriod = 400;
    for (const bool bOn : {false, true})
        for (u64 qwTick = 0; qwTick < 800; qwTick += 50) {
            pctl->Boolean.fThreshold = bOn ? 0.0f : 1.0f;
            SetFixedTick(qwTick);
            EvaluateControl(pctl, false);
            ASSERT_EQ(pctl->Boolean.bState, u32{bOn}) << qwTick;
        }
}

TEST_F(FluidSources, IntegersAddOneHalfAndCutTowardZero)
{
    Make(CONTROLTYPE_INTEGER, FLUIDSOURCE_SOUND);
    pctl->Integer = {0, 10, 0, 10, 0, 10, 0, 0, 0, 0, 0};
    EXPECT_EQ(IntegerFor(0.449f), 4);
    EXPECT_EQ(IntegerFor(0.45f), 5);
    EXPECT_EQ(IntegerFor(-0.37f), -3);
    EXPECT_EQ(IntegerFor(2.5f), 25);
    EXPECT_EQ(IntegerFor(1e30f), std::numeric_limits<i32>::max());
    EXPECT_EQ(IntegerFor(-1e30f), std::numeric_limits<i32>::min());
    EXPECT_EQ(IntegerFor(NAN), 0);
    EXPECT_EQ(IntegerFor(INF), 0);
    pctl->Integer.nMin = std::numeric_limits<i32>::min();
    pctl->Integer.nMax = std::numeric_limits<i32>::max();
    pctl->Integer.bMinMax = 1;
    EXPECT_EQ(IntegerFor(0.25f), pctl->Integer.nMin);
    EXPECT_EQ(IntegerFor(0.75f), pctl->Integer.nMax);
}

// All small ranges, values and flags against a search for the value that the rules want.
TEST_F(FluidSources, IntegerConstraintsFindTheNearestLegalNumber)
{
    Make(CONTROLTYPE_INTEGER, FLUIDSOURCE_RANDOM);
    for (i32 n = 0; n < 8 * 8 * 8 * 8; n++) {
        ControlInteger Int = {};
        Int.nMin = n % 8 - 4;
        Int.nMax = n / 8 % 8 - 4;
        Int.nValue = n / 64 % 8 - 4;
        const u32 dwFlags = static_cast<u32>(n / 512);
        Int.bOnlyEven = dwFlags & 1 ? 7 : 0;
        Int.bOnlyOdd = dwFlags & 2;
        Int.bMinMax = dwFlags & 4;
        pctl->Integer = Int;
        EvaluateControl(pctl, false);

        i32 nWanted = Int.nValue;
        if (Int.bMinMax)
            nWanted = std::abs(nWanted - Int.nMin) < std::abs(nWanted - Int.nMax) ? Int.nMin : Int.nMax;
        const bool bParity = !Int.bOnlyEven != !Int.bOnlyOdd;
        const auto legal = [&](i32 i) {
            const bool bOdd = i % 2 != 0;
            return bOdd == (Int.bOnlyOdd != 0) && i >= Int.nMin && i <= Int.nMax;
        };
        if (bParity && (nWanted % 2 != 0) != (Int.bOnlyOdd != 0))
            nWanted = legal(nWanted + 1) ? nWanted + 1 : legal(nWanted - 1) ? nWanted - 1 : nWanted;
        ASSERT_EQ(pctl->Integer.nValue, nWanted) << n;
    }
}

TEST_F(FluidSources, FloatsSnapToTheNearerEndAndATieGoesUp)
{
    Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_SOUND);
    pctl->Float.fMin = -1;
    pctl->Float.fMax = 3;
    const auto floatFor = [&](f32 fUnit) {
        Sound.fRawLevel = fUnit;
        EvaluateControl(pctl, false);
        return pctl->Float.fValue;
    };
    EXPECT_EQ(floatFor(0.25f), 0.0f);
    EXPECT_EQ(floatFor(2.0f), 7.0f);
    pctl->Float.bMinMax = 1;
    EXPECT_EQ(floatFor(0.49f), -1.0f);
    EXPECT_EQ(floatFor(0.5f), 3.0f);
    pctl->Base.dwSource = FLUIDSOURCE_FIXED;
    pctl->Float.fValue = 0.2f;
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->Float.fValue, 0.2f);
}

TEST_F(FluidSources, RandomValuesHoldFromResetToResetButKeepTheirConstraints)
{
    Make(CONTROLTYPE_INTEGER, FLUIDSOURCE_RANDOM);
    pctl->Integer.nMax = 1000000;
    std::set<i32> seen;
    for (int i = 0; i < 20; i++) {
        EvaluateControl(pctl, true);
        const i32 nDrawn = pctl->Integer.nValue;
        EXPECT_NEAR(static_cast<f32>(nDrawn), pctl->Base.fLastRandom * 1000000.0f, 1.0f);
        seen.insert(nDrawn);
        SetFixedTick(TickCount() + 100000);
        EvaluateControl(pctl, false);
        ASSERT_EQ(pctl->Integer.nValue, nDrawn);
    }
    EXPECT_GT(seen.size(), 15u);
    pctl->Integer.nValue = 11;
    pctl->Integer.bOnlyEven = 1;
    EvaluateControl(pctl, false);
    EXPECT_EQ(pctl->Integer.nValue, 12);
}

TEST_F(FluidSources, UnitNumbersFillTheRangeFromZeroToOneEvenly)
{
    u32 anBucket[10] = {};
    for (int i = 0; i < 100000; i++) {
        const f32 f = UnitRandom();
        ASSERT_TRUE(f >= 0 && f <= 1);
        anBucket[std::min(static_cast<u32>(f * 10), 9u)]++;
    }
    for (const u32 n : anBucket)
        EXPECT_NEAR(n, 10000, 600);
}

TEST_F(FluidSources, ItemSelectsDrawAmongTheirRowsAndSurviveHavingNone)
{
    Make(CONTROLTYPE_ITEMSELECT, FLUIDSOURCE_RANDOM);
    pctl->ItemSelect.nCurrentItemValue = 42;
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->ItemSelect.nCurrentItemValue, 42u);
    pctl->ItemSelect.nItems = 3;
    EvaluateControl(pctl, false);
    EXPECT_EQ(pctl->ItemSelect.nCurrentItemValue, 42u);
    pctl->Base.dwSource = FLUIDSOURCE_FIXED;
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->ItemSelect.nCurrentItemValue, 42u);
    pctl->Base.dwSource = FLUIDSOURCE_RANDOM;
    std::set<u32> seen;
    for (int i = 0; i < 100; i++) {
        EvaluateControl(pctl, true);
        seen.insert(pctl->ItemSelect.nCurrentItemValue);
    }
    EXPECT_EQ(seen, (std::set<u32>{0, 1, 2}));
}

TEST_F(FluidSources, PeriodicValuesJumpWhenTheirPeriodTimesTheTimeScaleHasPassed)
{
    for (const u32 nPeriod : {0u, 1u, 180u, 181u, 182u, 1500u})
        for (const u32 dwScale : {1u, 3u}) {
            Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_PERIODIC);
            pctl->Float.fMax = 1;
            pctl->Base.nNoisePeriod = nPeriod;
            GlobalSettings.TimeScale = dwScale;
            std::vector<u64> jumps;
            for (u64 qwTick = 1000; qwTick < 10000; qwTick++) {
                const f32 fBefore = pctl->Float.fValue;
                SetFixedTick(qwTick);
                EvaluateControl(pctl, false);
                if (pctl->Float.fValue != fBefore)
                    jumps.push_back(qwTick);
            }
            ASSERT_GE(jumps.size(), 2u);
            EXPECT_EQ(jumps[0], 1000u);
            for (size_t i = 1; i < jumps.size(); i++)
                ASSERT_EQ(jumps[i] - jumps[i - 1], nPeriod * dwScale + 1) << nPeriod << " x " << dwScale;
        }
    Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_PERIODIC);
    pctl->Base.nNoisePeriod = ALL_ONES;
    GlobalSettings.TimeScale = 100;
    EvaluateControl(pctl, false);
    EXPECT_EQ(pctl->Base.qwNextNoiseTick, TickCount() + 429496729500u);
}

TEST_F(FluidSources, UnknownSourcesAndTypesLeaveARecordAlone)
{
    for (const u32 dwSource : {0u, 3u, 28u, 32u, ALL_ONES})
        for (u32 dwType = 0; dwType < 9; dwType++) {
            Make(dwType, dwSource);
            const ControlRecord ctlBefore = *pctl;
            EvaluateControl(pctl, true);
            EXPECT_EQ(memcmp(pctl, &ctlBefore, sizeof ctlBefore), 0) << dwType << " on " << dwSource;
            pctl->Base.dwType = CONTROLTYPE_UNDEFINED;
        }
}

TEST_F(FluidSources, TheSoundLevelIsTheMeanOfTheFrameAndTheNewestSamples)
{
    Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_SOUND);
    std::deque<f32> history(SOUND_HISTORY, 0.0f);
    u64 qwShifted = 0;
    for (u32 iFrame = 0; iFrame < 200; iFrame++) {
        const u64 qwTick = TickCount() + (iFrame % 3 ? 7 : iFrame % 2 ? 10 : 11); // some frames too close together
        SetFixedTick(qwTick);
        Sound.fRawLevel = UnitRandom() * 2;
        ShiftSoundHistory(qwTick);
        if (qwTick - qwShifted > 10) {
            history.push_front(Sound.fRawLevel);
            history.pop_back();
            qwShifted = qwTick;
        }
        for (const u32 nSamples : {0u, 1u, 17u, 43u, 44u, 45u, ALL_ONES}) {
            pctl->Base.nSamples = nSamples;
            const u32 n = std::min(nSamples, 44u);
            const double fMean =
                std::accumulate(history.begin(), history.begin() + n, double{Sound.fRawLevel}) / (n + 1);
            ASSERT_NEAR(SmoothedSoundLevel(pctl), fMean, 1e-5) << "frame " << iFrame << " samples " << nSamples;
        }
    }
}

TEST_F(FluidSources, WithoutASoundBlockTheLevelIsZeroAndTheControlRestsAtItsLowEnd)
{
    GlobalSettings.pSound = nullptr;
    ShiftSoundHistory(5000);
    Make(CONTROLTYPE_INTEGER, FLUIDSOURCE_SOUND);
    pctl->Base.nSamples = 44;
    pctl->Integer.nMin = 3;
    pctl->Integer.nMax = 9;
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->Integer.nValue, 3);
    GlobalSettings.pSound = &Sound;
    Sound.fRawLevel = NAN; // one broken level must not stay in the averages
    ShiftSoundHistory(6000);
    Sound.fRawLevel = 0;
    EXPECT_EQ(SmoothedSoundLevel(pctl), 0.0f);
}

// For the thread sanitizer: a plane that is late reads while the main thread shifts for the next frame.
TEST_F(FluidSources, ALatePlaneMayReadTheHistoryWhileItShifts)
{
    Make(CONTROLTYPE_FLOAT, FLUIDSOURCE_SOUND);
    pctl->Base.nSamples = 44;
    Sound.fRawLevel = 0.5f;
    std::thread plane([&] {
        for (int i = 0; i < 200; i++) {
            const f32 f = SmoothedSoundLevel(pctl);
            EXPECT_TRUE(f >= 0 && f <= 0.5f);
        }
    });
    for (u64 qwTick = 2000; qwTick < 6000; qwTick += 20)
        ShiftSoundHistory(qwTick);
    plane.join();
}

TEST_F(FluidSources, ASlotIsEvaluatedInOrderUpToItsFirstEmptyEntry)
{
    ModuleSlot slot = {};
    ControlRecord actl[3] = {};
    for (u32 i = 0; i < 3; i++) {
        SetControlDefaults(&actl[i]);
        actl[i].Base.dwType = CONTROLTYPE_FLOAT;
        actl[i].Base.dwSource = FLUIDSOURCE_RANDOM;
        actl[i].Float.fMax = 1;
    }
    slot.apControl[0] = &actl[0];
    slot.apControl[1] = &actl[1];
    slot.apControl[3] = &actl[2];
    slot.nControls = -1;
    EvaluateControls(&slot, true);
    SeedAllRandom(1);
    EXPECT_EQ(actl[0].Float.fValue, UnitRandom());
    EXPECT_EQ(actl[1].Float.fValue, UnitRandom());
    EXPECT_EQ(actl[2].Float.fValue, 0.0f);
}

TEST_F(FluidSources, FileListsAreWalkedLineByLineHoweverTheyAreBroken)
{
    const std::u16string aText[] = {
        u"a.x\r\nb.x\r\nc.x",        u"a.x\nb.x\n",  u"only.x", u"\r\n\r\na.x\n\r\n\rb.x\r\n",
        u"a b.x\r\n \r\n\u00E4.x\r", u"\n\r\n\r\n\n"};
    for (const std::u16string &text : aText) {
        Make(CONTROLTYPE_FILESELECT, FLUIDSOURCE_FIXED);
        SetFileList(pctl, CopyOfText(text));
        const std::vector<std::u16string> lines = LinesOracle(text);
        EvaluateControl(pctl, false);
        EXPECT_EQ(pctl->FileSelect.nLines, lines.size());
        EXPECT_EQ(std::u16string(pctl->FileSelect.szCurrentFile), lines.empty() ? u"" : lines[0])
            << "a new list shows its first file before any reset";
        for (size_t i = 1; i < 2 * lines.size() + 1; i++) {
            EvaluateControl(pctl, true);
            ASSERT_EQ(std::u16string(pctl->FileSelect.szCurrentFile), lines[i % lines.size()]);
            ASSERT_EQ(pctl->FileSelect.nCurrentLine, i % lines.size());
        }
    }
}

TEST_F(FluidSources, CountingTheLinesMarksThePresetAndHappensOnce)
{
    Make(CONTROLTYPE_FILESELECT, FLUIDSOURCE_FIXED);
    SetFileList(pctl, CopyOfText(u"a\r\nb"));
    EvaluateControl(pctl, false);
    EXPECT_EQ(bPresetChanged.exchange(0), 1u);
    EvaluateControl(pctl, true);
    EvaluateControl(pctl, false);
    EXPECT_EQ(bPresetChanged, 0u);
    pctl->FileSelect.nLines = ALL_ONES; // as a file read does, which may bring no text at all
    SetFileList(pctl, nullptr);
    EvaluateControl(pctl, true);
    EXPECT_EQ(pctl->FileSelect.nLines, 0u);
}

TEST_F(FluidSources, ShuffleReachesEveryLineAndAPeriodicListMovesOnByItself)
{
    Make(CONTROLTYPE_FILESELECT, FLUIDSOURCE_PERIODIC);
    SetFileList(pctl, CopyOfText(u"a\r\nb\r\nc"));
    pctl->FileSelect.bShuffle = 1;
    pctl->Base.nNoisePeriod = 10;
    std::set<std::u16string> seen;
    for (int i = 0; i < 100; i++) {
        SetFixedTick(TickCount() + 11);
        EvaluateControl(pctl, false);
        seen.insert(pctl->FileSelect.szCurrentFile);
        const u32 nLine = pctl->FileSelect.nCurrentLine;
        EvaluateControl(pctl, false);
        ASSERT_EQ(pctl->FileSelect.nCurrentLine, nLine);
    }
    EXPECT_EQ(seen, (std::set<std::u16string>{u"a", u"b", u"c"}));
}

TEST_F(FluidSources, ClearingAListEmptiesTheCurrentFileAndStopsTheWalk)
{
    Make(CONTROLTYPE_FILESELECT, FLUIDSOURCE_FIXED);
    for (char16_t *pszClear : {static_cast<char16_t *>(nullptr), CopyOfText(u"")}) {
        SetFileList(pctl, CopyOfText(u"a\r\nb"));
        EvaluateControl(pctl, true);
        ASSERT_EQ(pctl->FileSelect.nCurrentLine, 1u);
        SetFileList(pctl, pszClear);
        EvaluateControl(pctl, true);
        EXPECT_EQ(pctl->FileSelect.pszFileList, nullptr);
        EXPECT_EQ(pctl->FileSelect.szCurrentFile[0], 0);
        EXPECT_EQ(pctl->FileSelect.nCurrentLine, 0u);
        EXPECT_EQ(pctl->FileSelect.nLines, 2u);
    }
}

TEST_F(FluidSources, FilesAreFoundInTheDataFoldersAndOtherNamesStayAsTheyAre)
{
    const TempFolder folder;
    const std::filesystem::path there = folder.Write("Images/there.png");
    InitFolders({.program = {}, .data = folder.Wide(), .modules = {}});
    Make(CONTROLTYPE_FILESELECT, FLUIDSOURCE_FIXED);
    const std::u16string longName(300, u'n');
    SetFileList(pctl, CopyOfText(longName + u"\r\nC:\\moved\\there.png\r\n/elsewhere/not here.png"));
    EvaluateControl(pctl, true);
    EXPECT_EQ(std::u16string(pctl->FileSelect.szCurrentFile), there.u16string());
    EvaluateControl(pctl, true);
    EXPECT_EQ(std::u16string(pctl->FileSelect.szCurrentFile), u"/elsewhere/not here.png");
    EvaluateControl(pctl, true);
    EXPECT_EQ(std::u16string(pctl->FileSelect.szCurrentFile), longName.substr(0, 259));
}
