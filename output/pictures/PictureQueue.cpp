// PictureQueue.cpp -- saves pictures on worker threads behind a bounded queue, while the next frame is drawn
#include "output/pictures/PictureQueue.h"

#include "output/pictures/PictureFiles.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "platform/Threads.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace {

constexpr u32 WORKERS_MAX = 64;
constexpr u64 PIXEL_BYTES_MAX = 1024ull * 1024 * 1024; // of the pictures held: large frames must not eat the memory

struct PictureJob {
    HostBitmap *hbm;
    std::u16string path;
    u32 nQuality;
    u64 nOrder;
};

} // namespace

struct PictureQueue {
    PictureQueueOptions options;
    std::vector<std::thread> workers;

    std::mutex mtx;
    std::condition_variable cvWork; // something waits, or the end has come
    std::condition_variable cvDone; // a picture is done
    // Guarded by mtx:
    std::deque<PictureJob> waiting;
    std::vector<std::u16string> held;    // paths of all pictures waiting or being saved
    std::vector<HostBitmap *> aphbmFree; // for the next pictures
    u64 cbHeld = 0;
    u64 nFirstFailedOrder = 0;
    bool bStop = false;
    PictureReport report = {};

    std::mutex mtxDone; // keeps calls of pfnDone apart
};

namespace {

bool HasRoom(const PictureQueue &queue, const HostBitmap *hbm, std::u16string_view path)
{
    if (queue.held.empty())
        return true;
    return queue.held.size() < queue.options.nHeld && queue.cbHeld + BitmapBytes(hbm) <= PIXEL_BYTES_MAX &&
           std::find(queue.held.begin(), queue.held.end(), path) == queue.held.end();
}

void CountResult(PictureQueue *pQueue, const PictureResult &result)
{
    PictureReport &report = pQueue->report;
    if (result.bSaved) {
        report.nSaved++;
        return;
    }
    report.nFailed++;
    if (pQueue->nFirstFailedOrder == 0 || result.nOrder < pQueue->nFirstFailedOrder) {
        pQueue->nFirstFailedOrder = result.nOrder;
        report.firstFailed = result.path;
        report.nFirstError = result.nError;
    }
}

PictureResult SaveNow(const PictureQueue &queue, const HostBitmap *hbm, const std::u16string &path, u32 nQuality,
                      u64 nOrder)
{
    const i64 nStart = RealNanoseconds();
    errno = 0;
    const u32 bSaved = queue.options.pfnSave(hbm, path.c_str(), nQuality);
    const int nError = bSaved ? 0 : errno;
    return {path, nOrder, bSaved, nError, RealNanoseconds() - nStart};
}

void TellDone(PictureQueue *pQueue, const PictureResult &result)
{
    std::lock_guard lock(pQueue->mtxDone);
    if (pQueue->options.pfnDone)
        pQueue->options.pfnDone(result, pQueue->options.pvContext);
}

void ReleaseJob(PictureQueue *pQueue, const PictureJob &job, const PictureResult &result)
{
    std::lock_guard lock(pQueue->mtx);
    CountResult(pQueue, result);
    pQueue->held.erase(std::find(pQueue->held.begin(), pQueue->held.end(), job.path));
    pQueue->cbHeld -= BitmapBytes(job.hbm);
    pQueue->aphbmFree.push_back(job.hbm);
    pQueue->cvDone.notify_all();
}

bool TakeJob(PictureQueue *pQueue, PictureJob *pJob)
{
    std::unique_lock lock(pQueue->mtx);
    pQueue->cvWork.wait(lock, [&] { return pQueue->bStop || !pQueue->waiting.empty(); });
    if (pQueue->waiting.empty())
        return false;
    *pJob = std::move(pQueue->waiting.front());
    pQueue->waiting.pop_front();
    return true;
}

void RunWorker(PictureQueue *pQueue)
{
    SetThisThread(ThreadPriority::Normal, "pictures");
    for (PictureJob job; TakeJob(pQueue, &job);) {
        const PictureResult result = SaveNow(*pQueue, job.hbm, job.path, job.nQuality, job.nOrder);
        TellDone(pQueue, result);
        ReleaseJob(pQueue, job, result);
    }
}

// A bitmap of that size: one that is free, else a new one; those of another size go. Null: out of memory.
HostBitmap *TakeBitmap(PictureQueue *pQueue, const HostBitmap *hbmLike)
{
    std::vector<HostBitmap *> &free = pQueue->aphbmFree;
    while (!free.empty()) {
        HostBitmap *hbm = free.back();
        free.pop_back();
        if (hbm->nWidth == hbmLike->nWidth && hbm->nHeight == hbmLike->nHeight)
            return hbm;
        DeleteBitmap(hbm);
    }
    return CreateBitmap(hbmLike->nWidth, hbmLike->nHeight);
}

// Waits for room and claims it, so that the copy can be made without the lock. Null: no worker or no memory.
HostBitmap *ClaimRoom(PictureQueue *pQueue, const HostBitmap *hbm, std::u16string_view path, u64 *pnOrder)
{
    std::unique_lock lock(pQueue->mtx);
    pQueue->cvDone.wait(lock, [&] { return HasRoom(*pQueue, hbm, path); });
    *pnOrder = ++pQueue->report.nSubmitted;
    HostBitmap *hbmCopy = pQueue->workers.empty() ? nullptr : TakeBitmap(pQueue, hbm);
    if (hbmCopy) {
        pQueue->held.emplace_back(path);
        pQueue->cbHeld += BitmapBytes(hbmCopy);
    }
    return hbmCopy;
}

void StartWorkers(PictureQueue *pQueue)
{
    try {
        while (pQueue->workers.size() < pQueue->options.nWorkers)
            pQueue->workers.emplace_back(RunWorker, pQueue);
    } catch (const std::system_error &) {
        // As many as the system gives.
    }
}

} // namespace

PictureQueue *StartPictureQueue(const PictureQueueOptions &options)
{
    ASSERT_MAIN_THREAD();
    auto *pQueue = new PictureQueue;
    pQueue->options = options;
    PictureQueueOptions &own = pQueue->options;
    if (own.nWorkers == 0)
        own.nWorkers = std::thread::hardware_concurrency();
    own.nWorkers = std::clamp(own.nWorkers, 1u, WORKERS_MAX);
    if (own.nHeld == 0)
        own.nHeld = own.nWorkers * 2;
    if (!own.pfnSave)
        own.pfnSave = SavePicture;
    pQueue->workers.reserve(own.nWorkers);
    StartWorkers(pQueue);
    return pQueue;
}

void SubmitPicture(PictureQueue *pQueue, const HostBitmap *hbm, std::u16string_view path, u32 nQuality)
{
    PictureJob job = {nullptr, std::u16string(path), nQuality, 0};
    job.hbm = ClaimRoom(pQueue, hbm, path, &job.nOrder);
    if (!job.hbm) {
        const PictureResult result = SaveNow(*pQueue, hbm, job.path, nQuality, job.nOrder);
        TellDone(pQueue, result);
        std::lock_guard lock(pQueue->mtx);
        CountResult(pQueue, result);
        return;
    }
    CopyBitmap(job.hbm, hbm);
    {
        std::lock_guard lock(pQueue->mtx);
        pQueue->waiting.push_back(std::move(job));
    }
    pQueue->cvWork.notify_one();
}

u32 PictureQueueHasRoom(PictureQueue *pQueue, const HostBitmap *hbm, std::u16string_view path)
{
    std::lock_guard lock(pQueue->mtx);
    return HasRoom(*pQueue, hbm, path);
}

PictureReport ReadPictureReport(PictureQueue *pQueue)
{
    std::lock_guard lock(pQueue->mtx);
    return pQueue->report;
}

void FinishPictures(PictureQueue *pQueue)
{
    std::unique_lock lock(pQueue->mtx);
    pQueue->cvDone.wait(lock, [&] { return pQueue->held.empty(); });
}

void StopPictureQueue(PictureQueue *pQueue)
{
    if (!pQueue)
        return;
    FinishPictures(pQueue);
    {
        std::lock_guard lock(pQueue->mtx);
        pQueue->bStop = true;
    }
    pQueue->cvWork.notify_all();
    for (std::thread &worker : pQueue->workers)
        worker.join();
    for (HostBitmap *hbm : pQueue->aphbmFree)
        DeleteBitmap(hbm);
    delete pQueue;
}

std::string PictureFailureText(std::u16string_view path, int nError)
{
    std::string s = ToUtf8(path) + " cannot be written";
    // strerror is not safe on several threads.
    return nError ? s + ": " + std::system_category().message(nError) : s;
}
