// FramePacing_qt_bench.cpp -- how late the main loop's frames begin, and what waiting for them costs
#include "bench/BenchReport.h"

#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "platform/Clock.h"
#include "state/GlobalSettings.h"

#include <QCoreApplication>

#include <ctime>
#include <sched.h>

namespace {

constexpr i32 FPS = 60;
constexpr i64 INTERVAL_NS = 1000000000 / FPS;
constexpr unsigned ROUNDS = 5;
constexpr unsigned SLICES = 10; // of each side in a round: what disturbs the machine meets both sides
constexpr i64 SLICE_NS = 1000000000;
constexpr i64 BARE_POLL_NS = 200000; // how long before a frame the bare pacer begins to poll

// One side of one round.
struct Pacing {
    std::vector<double> afLateMicros; // one entry per frame
    double fCpuNs = 0;
    double fWallNs = 0;
};

template <typename Fn> void Measure(Pacing *pp, Fn run)
{
    const double fCpu = ThreadSeconds();
    const i64 nStart = RealNanoseconds();
    run();
    pp->fWallNs += static_cast<double>(RealNanoseconds() - nStart);
    pp->fCpuNs += (ThreadSeconds() - fCpu) * 1e9;
}

void AddLateness(Pacing *pp, i64 nLateNs)
{
    pp->afLateMicros.push_back(static_cast<double>(nLateNs) / 1000);
}

// What the loop did is read off the gate: when it opened and when a step went through.
struct LoopWatch {
    Pacing *pp;
    i64 nDue; // when the gate opens; 0: a frame of before
    i64 nEnd;
};

void WatchTurn(void *pv)
{
    auto *pWatch = static_cast<LoopWatch *>(pv);
    const i64 nDue = NextFrameCount();
    if (nDue != pWatch->nDue) {
        if (pWatch->nDue)
            AddLateness(pWatch->pp, nDue - INTERVAL_NS - 1 - pWatch->nDue);
        pWatch->nDue = nDue;
    }
    if (RealNanoseconds() >= pWatch->nEnd)
        RequestExit();
}

void RunLoop(Pacing *pp)
{
    RunAndPresentFrame(); // opens the gate's next interval now
    LoopWatch watch = {pp, NextFrameCount(), RealNanoseconds() + SLICE_NS};
    BeforeFrameListeners.Add(WatchTurn, &watch);
    RunMainLoop();
    BeforeFrameListeners.Remove(WatchTurn, &watch);
}

void SleepUntil(i64 nNs)
{
    const timespec ts = {nNs / 1000000000, nNs % 1000000000};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &ts, nullptr);
}

// The least that any pacer does: sleep until shortly before, then look at the clock.
void RunBare(Pacing *pp)
{
    const i64 nEnd = RealNanoseconds() + SLICE_NS;
    for (i64 nNow = RealNanoseconds(); nNow < nEnd;) {
        const i64 nDue = nNow + INTERVAL_NS + 1;
        SleepUntil(nDue - BARE_POLL_NS);
        do
            nNow = RealNanoseconds();
        while (nNow < nDue);
        AddLateness(pp, nNow - nDue);
    }
}

double Percentile(std::vector<double> af, size_t nPercent)
{
    std::sort(af.begin(), af.end());
    return af.empty() ? 0 : af[(af.size() * nPercent + 99) / 100 - 1];
}

// Where the machine is shared, the turns of other programs are ten times what is compared here.
void ComeBeforeOtherPrograms()
{
    sched_param param = {};
    param.sched_priority = sched_get_priority_min(SCHED_FIFO);
    if (sched_setscheduler(0, SCHED_FIFO, &param) != 0)
        std::fprintf(stderr, "FramePacing: no real-time class for this user: other programs show in the figures\n");
}

PresetState *MakeEmptyPreset(const void *)
{
    return CreatePresetState(0); // no plane: a step without work
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    GlobalSettings.FPSTarget = FPS;
    GlobalSettings.nBufferWidth = GlobalSettings.nBufferHeight = 128;
    GlobalSettings.TimeScale = 1;
    static SoundFrame sound;
    GlobalSettings.pSound = &sound;
    SwitchPreset(MakeEmptyPreset, nullptr);
    ComeBeforeOtherPrograms();

    std::vector<double> afOver, afOverTypical, afLoop, afBare, afCpu, afBareCpu;
    for (unsigned iRound = 0; iRound < ROUNDS; iRound++) {
        Pacing loop, bare;
        for (unsigned iSlice = 0; iSlice < SLICES; iSlice++) {
            Measure(&loop, [&] { RunLoop(&loop); });
            Measure(&bare, [&] { RunBare(&bare); });
        }
        afLoop.push_back(Percentile(loop.afLateMicros, 99));
        afBare.push_back(Percentile(bare.afLateMicros, 99));
        afOverTypical.push_back(Percentile(loop.afLateMicros, 50) - Percentile(bare.afLateMicros, 50));
        afOver.push_back(afLoop.back() - afBare.back());
        afCpu.push_back(loop.fCpuNs / loop.fWallNs * 100);
        afBareCpu.push_back(bare.fCpuNs / bare.fWallNs * 100);
    }
    SwitchPreset(nullptr, nullptr);

    ReportFigure("FramePacing/lateness p99 over a bare pacer's", Median(afOver), 100, "us", BenchGoal::AT_MOST);
    ReportFigure("FramePacing/lateness p50 over a bare pacer's", Median(afOverTypical), 0, "us", BenchGoal::NONE);
    ReportFigure("FramePacing/lateness p99", Median(afLoop), 0, "us", BenchGoal::NONE);
    ReportFigure("FramePacing/lateness p99 of a bare pacer", Median(afBare), 0, "us", BenchGoal::NONE);
    ReportFigure("FramePacing/processor time for pacing", Median(afCpu), 2, "%", BenchGoal::AT_MOST);
    ReportFigure("FramePacing/processor time of a bare pacer", Median(afBareCpu), 0, "%", BenchGoal::NONE);
    return 0;
}
