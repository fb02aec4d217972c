// PlaneThreads.cpp -- one thread for each plane, released and collected once a frame
#include "engine/PlaneThreads.h"

#include "engine/DrawPipeline.h"
#include "platform/Clock.h"
#include "platform/GLWindow.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Threads.h"

#include <atomic>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr u32 START_POLL_MS = 30;      // longest time until a thread sees bStop
constexpr u32 STOP_WAIT_MS = 1000;     // longest wait for the threads to end
constexpr u32 CALLS_UNTIL_RETRY = 600; // from a system without threads to the next try: ten seconds of frames

// What a thread shares with the main thread. The atomics are written by the one and read by the other while both run:
// after a dropped frame a late thread may still be in an earlier frame when the next one is released.
struct PlaneThreadParms {
    u32 iPlane;
    u32 dwSteps; // MODSTEPS_FRAME
    std::atomic<PresetState *> lppsi{nullptr};
    std::atomic<u32> dwFrame{0};     // generation of the frame that was released last
    std::atomic<u32> dwFrameDone{0}; // generation that the thread finished last
    std::atomic<u32> bStop{0};
    Event evStart; // the frame may begin
    Event evDone;  // the plane is finished
    Event evEnded; // the thread has ended
    std::thread thread;
    bool bHangTold = false; // of the frame that it has been in ever since; the main thread's
};

std::unique_ptr<PlaneThreadParms> apParms[PLANES_MAX];      // the running threads; all or none
std::vector<std::unique_ptr<PlaneThreadParms>> apAbandoned; // stopped threads that are stuck in a module
u32 dwFrameGeneration = 0;
u32 nCallsToSkip = 0; // before threads are asked for again
bool bShortageTold = false;

u32 ThreadSeed(u32 i)
{
    return static_cast<u32>(TickCount() * (10000ull * i + 10567629) * (10000ull * i + 157)) & 0xFFFF;
}

// Enters the plane unless a thread that was given up is still inside.
void DrawThreadsPlane(const PlaneThreadParms *pParms, PresetState *lppsi)
{
    if (pParms->iPlane >= static_cast<u32>(lppsi->nPlanes))
        return;
    PlaneState *pps = lppsi->psPlane[pParms->iPlane];
    if (!pps || pps->bPaused)
        return;
    const std::atomic_ref<u32> busy(pps->dwBusy);
    u32 dwFree = 0;
    if (!busy.compare_exchange_strong(dwFree, 1))
        return;
    RunPlaneModules(pps, pParms->dwSteps);
    busy = 0;
}

void PlaneThreadBody(PlaneThreadParms *pParms)
{
    const char szName[] = {'v', 'd', '-', 'p', 'l', 'a', 'n', 'e', static_cast<char>('0' + pParms->iPlane), 0};
    SetThisThread(ThreadPriority::AboveNormal, szName);
    SeedFallbackRandom(ThreadSeed(pParms->iPlane));
    while (!pParms->bStop) {
        if (!pParms->evStart.Wait(START_POLL_MS) || pParms->bStop)
            continue; // a thread that was given up must not look at a preset that may be gone
        const u32 dwFrame = pParms->dwFrame;
        DrawThreadsPlane(pParms, pParms->lppsi);
        pParms->dwFrameDone = dwFrame;
        pParms->evDone.Signal();
    }
    ReleaseGLThread();
    pParms->evEnded.Signal();
}

void ReapAbandonedThreads()
{
    std::erase_if(apAbandoned, [](std::unique_ptr<PlaneThreadParms> &p) {
        if (!p->evEnded.Wait(0))
            return false;
        p->thread.join();
        return true;
    });
}

// Null when the system has no thread to give.
std::unique_ptr<PlaneThreadParms> StartThread(u32 iPlane)
{
    auto pParms = std::make_unique<PlaneThreadParms>();
    pParms->iPlane = iPlane;
    pParms->dwSteps = MODSTEPS_FRAME;
    pParms->dwFrameDone = dwFrameGeneration;
    try {
        pParms->thread = std::thread(PlaneThreadBody, pParms.get());
    } catch (const std::system_error &) {
        return nullptr;
    }
    return pParms;
}

// Milliseconds left of nWaitMs since nStart (RealNanoseconds).
u32 RemainingMs(i64 nStart, u32 nWaitMs)
{
    if (nWaitMs == WAIT_FOREVER)
        return WAIT_FOREVER;
    const i64 nPassed = (RealNanoseconds() - nStart) / 1000000;
    return nPassed >= nWaitMs ? 0 : nWaitMs - static_cast<u32>(nPassed);
}

// Once a hang, however many frames it takes.
void TellHang(PlaneThreadParms *pParms)
{
    if (pParms->bHangTold)
        return;
    pParms->bHangTold = true;
    AddNotice("plane " + std::to_string(pParms->iPlane + 1) +
              " hangs in a module: frames are dropped until it returns");
}

void TellShortage()
{
    if (!bShortageTold)
        AddNotice("the planes are drawn one after the other: the system has no threads to give");
    bShortageTold = true;
}

u32 WaitForPlanes(i32 nPlanes, u32 nWaitMs)
{
    const i64 nStart = RealNanoseconds();
    for (i32 i = 0; i < nPlanes; i++) {
        PlaneThreadParms *pParms = apParms[i].get();
        while (pParms->dwFrameDone != dwFrameGeneration)
            if (!pParms->evDone.Wait(RemainingMs(nStart, nWaitMs)) && RemainingMs(nStart, nWaitMs) == 0 &&
                pParms->dwFrameDone != dwFrameGeneration) {
                TellHang(pParms);
                return 0;
            }
        pParms->bHangTold = false;
    }
    return 1;
}

} // namespace

u32 StartPlaneThreads()
{
    ASSERT_MAIN_THREAD();
    if (apParms[0] || (nCallsToSkip && nCallsToSkip--))
        return 0;
    ReapAbandonedThreads();
    for (u32 i = 0; i < PLANES_MAX; i++) {
        apParms[i] = StartThread(i);
        if (apParms[i])
            continue;
        StopPlaneThreads();
        nCallsToSkip = CALLS_UNTIL_RETRY;
        TellShortage();
        return 0;
    }
    bShortageTold = false;
    return 1;
}

bool PlaneThreadsRun()
{
    return apParms[0] != nullptr;
}

u32 DrawPlanesOnThreads(PresetState *lppsi, u32 nWaitMs)
{
    ASSERT_MAIN_THREAD();
    dwFrameGeneration++;
    for (auto &pParms : apParms) {
        pParms->lppsi = lppsi;
        pParms->dwFrame = dwFrameGeneration;
        pParms->evDone.Reset();
        pParms->evStart.Signal();
    }
    return WaitForPlanes(lppsi->nPlanes, nWaitMs);
}

void StopPlaneThreads()
{
    ASSERT_MAIN_THREAD();
    for (auto &pParms : apParms)
        if (pParms)
            pParms->bStop = 1;
    const i64 nStart = RealNanoseconds();
    for (auto &pParms : apParms) {
        if (!pParms)
            continue;
        if (pParms->evEnded.Wait(RemainingMs(nStart, STOP_WAIT_MS))) {
            pParms->thread.join();
        } else {
            AddNotice("plane " + std::to_string(pParms->iPlane + 1) + " is stuck in a module; it is left alone");
            apAbandoned.push_back(std::move(pParms));
        }
        pParms.reset();
    }
}

void SettlePlaneThreads()
{
    ASSERT_MAIN_THREAD();
    if (apParms[0] && !WaitForPlanes(PLANES_MAX, STOP_WAIT_MS))
        StopPlaneThreads();
}

bool PlaneIsBusy(PlaneState *pps)
{
    return std::atomic_ref<u32>(pps->dwBusy) != 0;
}

bool AnyThreadIsStuck()
{
    ASSERT_MAIN_THREAD();
    ReapAbandonedThreads();
    return !apAbandoned.empty();
}
