// SoundMonitor_bench.cpp -- what a level costs the frame, and what a second of sound costs the capture thread
#include "bench/BenchReport.h"

#include "include/sound.h"
#include "platform/BaseTypes.h"
#include "stock/shared/LevelMeter.h"

#include <dlfcn.h>

#include <thread>

namespace {

constexpr unsigned ROUNDS = 501;
constexpr unsigned CALLS = 500; // a round shorter than a time slice, so that the median is free of other programs
constexpr u32 RATE = 48000;
constexpr f64 LEVEL_GOAL_NS = 1000;

template <typename Fn> Fn Find(void *pLibrary, const char *pszName)
{
    void *p = dlsym(pLibrary, pszName);
    if (!p) {
        std::fprintf(stderr, "the sound monitor library lacks %s\n", pszName);
        std::exit(1);
    }
    return reinterpret_cast<Fn>(p);
}

std::vector<f32> Noise(size_t nSamples)
{
    std::vector<f32> af(nSamples);
    u32 dw = 1;
    for (f32 &f : af) {
        dw = dw * 1664525 + 1013904223;
        f = static_cast<f32>(static_cast<i32>(dw)) * 0x1p-32f;
    }
    return af;
}

void ReportNanoseconds(const char *pszName, const std::vector<f64> &afMicros)
{
    ReportFigure(pszName, Median(afMicros) * 1000, LEVEL_GOAL_NS, "ns", BenchGoal::AT_MOST);
}

// The library as the host uses it, beside a bare look at the clock, which every level takes.
void MeasureLevels(void *pLibrary)
{
    void *hMonitor = Find<AMStartVolumeMonitorFn>(pLibrary, "AMStartVolumeMonitor")(20);
    const auto pfnGetLevel = Find<AMGetVolumeLevelFn>(pLibrary, "AMGetVolumeLevel");
    f32 fLevel = 0;
    const auto level = [&](i32 nVolumeType) {
        pfnGetLevel(hMonitor, nVolumeType, &fLevel);
        KeepResult(fLevel);
    };
    const auto [afClock, afRaw, afDynamic, afSimulated] = TimeInterleaved(
        ROUNDS, CALLS, [] { KeepResult(std::chrono::steady_clock::now()); }, [&] { level(VOLUMETYPE_RAW); },
        [&] { level(VOLUMETYPE_DYNAMIC); }, [&] { level(VOLUMETYPE_DYNAMIC_SIMULATED); });
    ReportNanoseconds("SoundMonitor/raw level", afRaw);
    ReportNanoseconds("SoundMonitor/dynamic level", afDynamic);
    ReportNanoseconds("SoundMonitor/simulated level", afSimulated);
    ReportFigure("SoundMonitor/raw level over a look at the clock", MedianRatio(afRaw, afClock), 0, "x",
                 BenchGoal::NONE);
    Find<AMStopVolumeMonitorFn>(pLibrary, "AMStopVolumeMonitor")(hMonitor);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::free(hMonitor);
}

// One core's share that a second of stereo takes, and the same beside a bare sum of squares.
void MeasureMeter()
{
    const std::vector<f32> af = Noise(2 * RATE);
    LevelMeter meter;
    InitLevelMeter(&meter, RATE, 2, METER_WINDOW_MS);
    f64 fNowMs = 0;
    const auto [afSum, afMeter] = TimeInterleaved(
        51, 1,
        [&] {
            f64 fSum = 0;
            for (f32 f : af)
                fSum += static_cast<f64>(f) * f;
            KeepResult(fSum);
        },
        [&] {
            for (u32 i = 0; i < RATE; i += RATE / 100)
                FeedLevelMeter(&meter, af.data() + 2 * i, RATE / 100, fNowMs += 10);
            KeepResult(meter);
        });
    ReportFigure("SoundMonitor/level meter over a sum of squares", MedianRatio(afMeter, afSum), 0, "x",
                 BenchGoal::NONE);
    ReportFigure("SoundMonitor/level meter, share of a core", Median(afMeter) / 1e6 * 100, 1, "%", BenchGoal::AT_MOST);
}

} // namespace

int main()
{
    void *pLibrary = dlopen(PROGRAM_FOLDER "/DLL/SoundLevelDLL.dll", RTLD_NOW | RTLD_LOCAL);
    if (!pLibrary) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    MeasureLevels(pLibrary);
    dlclose(pLibrary);
    MeasureMeter();
    return 0;
}
