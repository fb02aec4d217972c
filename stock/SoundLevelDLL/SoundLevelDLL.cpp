// SoundLevelDLL.cpp -- the exports of the sound monitor library
#include "include/sound.h"
#include "stock/SoundLevelDLL/PulseCapture.h"
#include "stock/SoundLevelDLL/Snapshot.h"
#include "stock/shared/LevelMeter.h"

#include <sys/random.h>
#include <time.h>

#include <cstdlib>
#include <new>
#include <string>

#define VD_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr u32 MONITOR_MARK = 0x534D4F4E;
constexpr u32 DESCRIBE_WAIT_MS = 2000; // how long the server may take to answer when nothing is running
constexpr u32 DESCRIBE_STEP_MS = 10;

// What AMStartVolumeMonitor returns. Its host frees it with free() after the stop.
struct SoundMonitor {
    u32 dwMark;                     // MONITOR_MARK from start to stop
    std::atomic<u32> nHoming;       // wanted homing samples; 0: as the meter has it
    Snapshot<LevelReading> Reading; // published by the capture thread
    Snapshot<SimulatedTempo> Tempo; // published by the host's thread
    PulseCapture *pCapture;

    LevelMeter Meter; // the capture thread's own
    u32 nHomingSet;   // likewise
};
static_assert(std::is_trivially_destructible_v<SoundMonitor>);

// The clock of all moments in here.
f64 NowMs()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<f64>(ts.tv_sec) * 1e3 + static_cast<f64>(ts.tv_nsec) * 1e-6;
}

void SleepMs(u32 nMs)
{
    const timespec ts = {0, static_cast<long>(nMs) * 1000000};
    nanosleep(&ts, nullptr);
}

u64 FreshSeed()
{
    u64 qwSeed = 0;
    if (getrandom(&qwSeed, sizeof qwSeed, GRND_NONBLOCK) != sizeof qwSeed)
        qwSeed = static_cast<u64>(NowMs() * 1e3);
    return qwSeed;
}

SoundMonitor *RunningMonitor(void *hMonitor)
{
    SoundMonitor *pMonitor = static_cast<SoundMonitor *>(hMonitor);
    return pMonitor && pMonitor->dwMark == MONITOR_MARK ? pMonitor : nullptr;
}

void TakeSamples(void *pUser, const f32 *pfSamples, u32 nFrames, u32 nRate, u32 nChannels)
{
    SoundMonitor *pMonitor = static_cast<SoundMonitor *>(pUser);
    LevelMeter *pMeter = &pMonitor->Meter;
    if (pMeter->nRate != nRate || pMeter->nChannels != nChannels)
        SetMeterFormat(pMeter, nRate, nChannels);
    const u32 nHoming = pMonitor->nHoming.load(std::memory_order_relaxed);
    if (nHoming != pMonitor->nHomingSet)
        SetRangeHoming(&pMeter->Range, pMonitor->nHomingSet = nHoming);
    FeedLevelMeter(pMeter, pfSamples, nFrames, NowMs());
    pMonitor->Reading.Publish(pMeter->Reading);
}

void PrepareMonitor(SoundMonitor *pMonitor, i32 nWindowMs)
{
    InitLevelMeter(&pMonitor->Meter, 48000, 2, nWindowMs > 0 ? static_cast<u32>(nWindowMs) : 0);
    pMonitor->Reading.Publish(pMonitor->Meter.Reading);
    SimulatedTempo tempo = {};
    tempo.fAnchorMs = NowMs();
    tempo.qwSeed = FreshSeed();
    tempo.nScale = 1;
    pMonitor->Tempo.Publish(tempo);
}

// What a monitor would listen to if it were started now.
CaptureState DescribeWithoutMonitor(std::string *psSource)
{
    PulseCapture *pCapture = StartPulseCapture([](void *, const f32 *, u32, u32, u32) {}, nullptr);
    if (!pCapture) {
        *psSource = "nothing: no thread for it";
        return CaptureState::NoServer;
    }
    CaptureState eState = CaptureState::Searching;
    for (u32 nMs = 0; nMs < DESCRIBE_WAIT_MS && eState == CaptureState::Searching; nMs += DESCRIBE_STEP_MS) {
        SleepMs(DESCRIBE_STEP_MS);
        eState = DescribePulseCapture(pCapture, psSource);
    }
    StopPulseCapture(pCapture);
    return eState;
}

// Copies as much as fits without cutting a character apart.
void CopyUtf8(char *pszTo, u32 cbTo, const std::string &sText)
{
    size_t cb = std::min<size_t>(sText.size(), cbTo - 1);
    while (cb > 0 && cb < sText.size() && (static_cast<u8>(sText[cb]) & 0xC0) == 0x80)
        cb--;
    sText.copy(pszTo, cb);
    pszTo[cb] = 0;
}

} // namespace

// nWindowMs: length of the moving window of the level in milliseconds, METER_WINDOW_MS_MIN to METER_WINDOW_MS_MAX;
// 0 or below: the usual one. Returns without waiting for a sound server. [any-thread]
VD_EXPORT void *AMStartVolumeMonitor(i32 nWindowMs)
{
    void *pBlock = std::malloc(sizeof(SoundMonitor));
    if (!pBlock)
        return nullptr;
    SoundMonitor *pMonitor = new (pBlock) SoundMonitor{};
    PrepareMonitor(pMonitor, nWindowMs);
    pMonitor->pCapture = StartPulseCapture(TakeSamples, pMonitor);
    if (!pMonitor->pCapture) {
        std::free(pBlock);
        return nullptr;
    }
    pMonitor->dwMark = MONITOR_MARK;
    return pMonitor;
}

// No thread of the monitor is left when this returns, and the block holds nothing but its own memory.
VD_EXPORT void AMStopVolumeMonitor(void *hMonitor)
{
    SoundMonitor *pMonitor = RunningMonitor(hMonitor);
    if (!pMonitor)
        return;
    pMonitor->dwMark = 0;
    StopPulseCapture(pMonitor->pCapture);
    pMonitor->pCapture = nullptr;
}

// Waits for nobody. Between start and stop on any thread. [any-thread]
VD_EXPORT u32 AMGetVolumeLevel(void *hMonitor, i32 nVolumeType, f32 *pfLevel)
{
    const SoundMonitor *pMonitor = RunningMonitor(hMonitor);
    if (!pMonitor || !pfLevel)
        return 0;
    const LevelReading reading = pMonitor->Reading.Read();
    const SimulatedTempo tempo = pMonitor->Tempo.Read();
    *pfLevel = LevelAt(&reading, &tempo, nVolumeType, NowMs());
    return 1;
}

// Non-zero while no sound is detected. [any-thread]
VD_EXPORT u32 AMIsQuiet(void *hMonitor)
{
    const SoundMonitor *pMonitor = RunningMonitor(hMonitor);
    if (!pMonitor)
        return 1;
    const LevelReading reading = pMonitor->Reading.Read();
    return IsQuietAt(&reading, NowMs());
}

// nSamples: levels (one each quarter of the window) over which the automatic gain looks back. [any-thread]
VD_EXPORT void AMSetHomingSamples(void *hMonitor, u32 nSamples)
{
    if (SoundMonitor *pMonitor = RunningMonitor(hMonitor))
        pMonitor->nHoming.store(std::max(nSamples, HOMING_SAMPLES_MIN), std::memory_order_relaxed);
}

// dwScale: so many times slower; outside 1 to 99 nothing changes. One thread at a time.
VD_EXPORT void AMSetSimSoundTickScale(void *hMonitor, u32 dwScale)
{
    SoundMonitor *pMonitor = RunningMonitor(hMonitor);
    if (!pMonitor)
        return;
    SimulatedTempo tempo = pMonitor->Tempo.Read();
    if (SetSimulatedScale(&tempo, dwScale, NowMs()))
        pMonitor->Tempo.Publish(tempo);
}

// Non-zero if there is something to listen to; the text is written in any case. With a null monitor it asks the
// server, and waits up to two seconds for its answer.
VD_EXPORT u32 AMDescribeSource(void *hMonitor, char *pszText, u32 cbText)
{
    if (!pszText || cbText == 0)
        return 0;
    std::string sSource;
    const SoundMonitor *pMonitor = RunningMonitor(hMonitor);
    const CaptureState eState =
        pMonitor ? DescribePulseCapture(pMonitor->pCapture, &sSource) : DescribeWithoutMonitor(&sSource);
    CopyUtf8(pszText, cbText, sSource);
    return eState == CaptureState::Listening;
}

// The host calls these through the types of the boundary.
static_assert(std::is_same_v<decltype(&AMStartVolumeMonitor), AMStartVolumeMonitorFn>);
static_assert(std::is_same_v<decltype(&AMStopVolumeMonitor), AMStopVolumeMonitorFn>);
static_assert(std::is_same_v<decltype(&AMGetVolumeLevel), AMGetVolumeLevelFn>);
static_assert(std::is_same_v<decltype(&AMIsQuiet), AMIsQuietFn>);
static_assert(std::is_same_v<decltype(&AMSetHomingSamples), AMSetHomingSamplesFn>);
static_assert(std::is_same_v<decltype(&AMSetSimSoundTickScale), AMSetSimSoundTickScaleFn>);
static_assert(std::is_same_v<decltype(&AMDescribeSource), AMDescribeSourceFn>);
