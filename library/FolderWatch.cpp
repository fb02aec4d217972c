// FolderWatch.cpp -- a service that calls back for every file that changes in a folder
#include "library/FolderWatch.h"

#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "platform/Threads.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

constexpr u32 ROWS_PER_BLOCK = 64;
constexpr u32 BUFFER_BYTES = 32768;
constexpr i64 SETTLE_MAX_NS = 500000000; // a burst is waited for this long before the folder is looked at
constexpr u32 RENEW_DELAY_MS = 250;      // from one look for a folder that is gone to the next
constexpr u32 NOTIFY_ALL = 31;

// Written under csWatchTable. The thread of a watch reads its own record without it, so records never move.
struct FolderWatch {
    i32 nWatchId; // 0: free
    NameText szFolder;
    WatchChangeFn lpfnChange;
    WatchLostFn lpfnLost;
    u32 dwNotifyFilter; // names, attributes, sizes and dates
    u32 bWatchSubtree;  // 0
    FolderNotices *pNotices;
    std::thread *pThread;
    u32 dwBufferBytes;
    char *lpBuffer;
};
using WatchBlock = std::array<FolderWatch, ROWS_PER_BLOCK>;

std::mutex csWatchTable;
std::vector<std::unique_ptr<WatchBlock>> WatchTable;
i32 nWatchIds = 0; // handed out so far

void ReportError(const char16_t *pszText)
{
    if (lpfnWatchError)
        lpfnWatchError(pszText);
}

void EndNotices(WaitingChanges *pWaiting, const char16_t *pszWhy)
{
    ReportError(pszWhy);
    pWaiting->bEnded = 1;
}

void ReadNotices(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    if (pWaiting->bEnded)
        return;
    std::vector<FolderNotice> notices;
    const u32 bRead = ReadFolderNotices(pWatch->pNotices, {pWatch->lpBuffer, pWatch->dwBufferBytes}, &notices);
    for (const FolderNotice &notice : notices)
        TakeNotice(pWaiting, notice);
    if (pWaiting->bEnded)
        ReportError(u"A watched folder is gone.");
    else if (!bRead)
        EndNotices(pWaiting, u"The changes of a folder cannot be read.");
}

// Lets a burst come to its end, but not without limit. False on a stop.
bool WaitForBurst(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    const i64 nEnd = RealNanoseconds() + SETTLE_MAX_NS;
    for (;;) {
        const NoticeWait eWait = WaitFolderNotices(pWatch->pNotices, WATCH_DELAY_MS);
        if (eWait == NoticeWait::Stopped)
            return false;
        if (eWait != NoticeWait::Ready || RealNanoseconds() > nEnd || pWaiting->bEnded)
            return true;
        if (WaitNoticesStopped(pWatch->pNotices, WATCH_DELAY_MS / 10))
            return false;
        ReadNotices(pWatch, pWaiting);
    }
}

// One call for the whole folder takes the place of what waits. Notices that come during the call stay for later.
bool ServeLost(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    if (!WaitForBurst(pWatch, pWaiting))
        return false;
    ReadNotices(pWatch, pWaiting);
    if (pWaiting->bEnded)
        return true;
    pWaiting->bLost = 0;
    pWatch->lpfnLost();
    return true;
}

void ServeOne(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    const std::optional<WaitingChange> change = NextChange(pWaiting);
    if (!change)
        return;
    NameText szName;
    CopyText(szName, FromUtf8(change->sName));
    pWatch->lpfnChange(szName, change->dwAction);
}

// Nobody tells what happens meanwhile: the folder is looked at now and when there are notices again. False on a stop.
bool BeginAnew(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    pWatch->lpfnLost();
    do
        if (WaitNoticesStopped(pWatch->pNotices, RENEW_DELAY_MS))
            return false;
    while (!RenewFolderNotices(pWatch->pNotices, pWatch->szFolder));
    *pWaiting = {};
    pWaiting->bLost = 1;
    return true;
}

bool WaitForNotices(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    const NoticeWait eWait = WaitFolderNotices(pWatch->pNotices, WAIT_FOREVER);
    if (eWait == NoticeWait::Failed)
        EndNotices(pWaiting, u"The wait for changes of a folder failed.");
    return eWait != NoticeWait::Stopped;
}

// One turn of the watch thread; false: it ends.
bool WatchOnce(const FolderWatch *pWatch, WaitingChanges *pWaiting)
{
    if (pWaiting->bEnded)
        return BeginAnew(pWatch, pWaiting);
    if (pWaiting->queue.empty() && !pWaiting->bLost) {
        const bool bOn = WaitForNotices(pWatch, pWaiting);
        ReadNotices(pWatch, pWaiting);
        return bOn;
    }
    if (!pWaiting->bLost && WaitNoticesStopped(pWatch->pNotices, WATCH_DELAY_MS))
        return false;
    ReadNotices(pWatch, pWaiting);
    if (pWaiting->bLost && !pWaiting->bEnded)
        return ServeLost(pWatch, pWaiting);
    if (!pWaiting->bEnded)
        ServeOne(pWatch, pWaiting);
    return true;
}

void WatchThread(const FolderWatch *pWatch)
{
    // Reads presets, like the scan thread, and must not slow frames either.
    SetThisThread(ThreadPriority::BelowNormal, "vd-watch");
    WaitingChanges waiting = {};
    while (WatchOnce(pWatch, &waiting)) {
    }
}

FolderWatch *FindFreeRecord()
{
    for (const auto &pBlock : WatchTable)
        for (FolderWatch &watch : *pBlock)
            if (watch.nWatchId == 0)
                return &watch;
    WatchTable.push_back(std::make_unique<WatchBlock>());
    return &WatchTable.back()->front();
}

void CloseWatch(FolderWatch *pWatch)
{
    delete pWatch->pThread;
    CloseFolderNotices(pWatch->pNotices);
    delete[] pWatch->lpBuffer;
    *pWatch = {};
}

bool StartWatch(FolderWatch *pWatch)
{
    pWatch->lpBuffer = new (std::nothrow) char[BUFFER_BYTES];
    pWatch->pNotices = OpenFolderNotices(pWatch->szFolder);
    if (!pWatch->lpBuffer || !pWatch->pNotices)
        return false;
    try {
        pWatch->pThread = new std::thread(WatchThread, pWatch);
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

} // namespace

void (*lpfnWatchError)(const char16_t *pszText) = nullptr;

i32 WatchFolder(std::u16string_view folder, WatchChangeFn pfnChange, WatchLostFn pfnLost)
{
    ASSERT_MAIN_THREAD();
    const std::lock_guard lock(csWatchTable);
    FolderWatch *pWatch = FindFreeRecord();
    *pWatch = {};
    CopyText(pWatch->szFolder, folder);
    pWatch->lpfnChange = pfnChange;
    pWatch->lpfnLost = pfnLost;
    pWatch->dwNotifyFilter = NOTIFY_ALL;
    pWatch->dwBufferBytes = BUFFER_BYTES;
    if (folder.size() >= NAME_CHARS || !StartWatch(pWatch)) {
        CloseWatch(pWatch);
        return WATCH_ID_FAILED;
    }
    pWatch->nWatchId = ++nWatchIds;
    return pWatch->nWatchId;
}

void StopAllWatches()
{
    ASSERT_MAIN_THREAD();
    const std::lock_guard lock(csWatchTable);
    for (const auto &pBlock : WatchTable)
        for (FolderWatch &watch : *pBlock) {
            if (watch.nWatchId == 0)
                continue;
            StopFolderNotices(watch.pNotices);
            watch.pThread->join();
            CloseWatch(&watch);
        }
    WatchTable.clear();
}
