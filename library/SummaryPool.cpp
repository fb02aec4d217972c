// SummaryPool.cpp -- threads below normal priority that read presets beside the frames
#include "library/SummaryPool.h"

#include "platform/Threads.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace {

constexpr u32 THREADS_MAX = 4;
constexpr u32 JOBS_WITHOUT_THREADS = 8;
constexpr u32 JOBS_AT_ONCE = 8; // taken together: the counter is shared

struct JobRun {
    u32 nJobs;
    const std::function<bool(u32, ReadBuffer *)> &pfnJob;
    std::atomic<u32> iNext{0};
    std::atomic<u32> bStopped{0};
};

void WorkOn(JobRun *pRun)
{
    ReadBuffer buffer = {};
    for (;;) {
        const u32 iFirst = pRun->iNext.fetch_add(JOBS_AT_ONCE);
        for (u32 i = iFirst; i < std::min(iFirst + JOBS_AT_ONCE, pRun->nJobs); i++)
            if (pRun->bStopped || !pRun->pfnJob(i, &buffer))
                pRun->bStopped = 1;
        if (iFirst >= pRun->nJobs || pRun->bStopped)
            return;
    }
}

} // namespace

u32 RunSummaryJobs(u32 nJobs, const std::function<bool(u32 iJob, ReadBuffer *pBuffer)> &pfnJob)
{
    JobRun run{nJobs, pfnJob};
    std::vector<std::thread> threads;
    const u32 nThreads =
        nJobs <= JOBS_WITHOUT_THREADS ? 0 : std::clamp(std::thread::hardware_concurrency(), 1u, THREADS_MAX);
    try {
        while (threads.size() < nThreads)
            threads.emplace_back([&run] {
                SetThisThread(ThreadPriority::BelowNormal, "vd-summary");
                WorkOn(&run);
            });
    } catch (const std::system_error &) {
        // The system has no thread to give: the jobs get done with those that there are.
    }
    if (threads.empty())
        WorkOn(&run);
    for (std::thread &thread : threads)
        thread.join();
    return !run.bStopped;
}
