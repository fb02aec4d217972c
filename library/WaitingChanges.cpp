// WaitingChanges.cpp -- notices of a folder, merged by name into the changes that a watch calls back for
#include "library/FolderWatch.h"

#include <algorithm>

namespace {

using Queue = std::deque<WaitingChange>;

// The last change that waits for the name, or the end.
Queue::iterator LastOf(Queue *pQueue, const std::string &sName)
{
    const auto it =
        std::find_if(pQueue->rbegin(), pQueue->rend(), [&](const WaitingChange &c) { return c.sName == sName; });
    return it == pQueue->rend() ? pQueue->end() : std::next(it).base();
}

bool IsOneOf(const Queue *pQueue, Queue::iterator it, std::initializer_list<u32> actions)
{
    return it != pQueue->end() && std::find(actions.begin(), actions.end(), it->dwAction) != actions.end();
}

// In the place of the last change of the name if that is one of those given, else behind all others.
void Merge(Queue *pQueue, u32 dwAction, const std::string &sName, std::initializer_list<u32> replaced)
{
    const auto it = LastOf(pQueue, sName);
    if (IsOneOf(pQueue, it, replaced))
        it->dwAction = dwAction;
    else
        pQueue->push_back({dwAction, 0, sName});
}

// What waited for the old name is void now, but that the contents changed holds for the new one.
void TakeOldName(Queue *pQueue, const FolderNotice &notice)
{
    const auto it = LastOf(pQueue, notice.sName);
    const bool bModified = IsOneOf(pQueue, it, {WATCH_MODIFIED});
    if (bModified || IsOneOf(pQueue, it, {WATCH_ADDED}))
        pQueue->erase(it);
    pQueue->push_back({WATCH_OLD_NAME, notice.dwCookie, notice.sName});
    if (bModified)
        pQueue->push_back({WATCH_MODIFIED, notice.dwCookie, {}});
}

// A file that comes from another folder is added.
void TakeNewName(Queue *pQueue, const FolderNotice &notice)
{
    const auto it = std::find_if(pQueue->begin(), pQueue->end(), [&](const WaitingChange &c) {
        return c.dwCookie == notice.dwCookie && c.dwAction == WATCH_OLD_NAME;
    });
    if (notice.dwCookie == 0 || it == pQueue->end()) {
        Merge(pQueue, WATCH_ADDED, notice.sName, {WATCH_ADDED, WATCH_MODIFIED, WATCH_REMOVED});
        return;
    }
    it->dwCookie = 0;
    const auto itNew = pQueue->insert(std::next(it), {WATCH_NEW_NAME, 0, notice.sName});
    const auto itContents = std::next(itNew);
    if (itContents != pQueue->end() && itContents->dwCookie == notice.dwCookie) {
        itContents->dwCookie = 0;
        itContents->sName = notice.sName;
    }
}

} // namespace

void TakeNotice(WaitingChanges *pWaiting, const FolderNotice &notice)
{
    Queue *pQueue = &pWaiting->queue;
    if (pWaiting->bLost && notice.eKind != NoticeKind::Ended)
        return;
    switch (notice.eKind) {
    case NoticeKind::Created:
        Merge(pQueue, WATCH_ADDED, notice.sName, {WATCH_ADDED, WATCH_REMOVED});
        break;
    case NoticeKind::Written:
        if (!IsOneOf(pQueue, LastOf(pQueue, notice.sName), {WATCH_ADDED, WATCH_MODIFIED}))
            pQueue->push_back({WATCH_MODIFIED, 0, notice.sName});
        break;
    case NoticeKind::Removed:
        Merge(pQueue, WATCH_REMOVED, notice.sName, {WATCH_ADDED, WATCH_MODIFIED, WATCH_REMOVED});
        break;
    case NoticeKind::MovedFrom:
        TakeOldName(pQueue, notice);
        break;
    case NoticeKind::MovedTo:
        TakeNewName(pQueue, notice);
        break;
    case NoticeKind::Lost:
        pWaiting->bLost = 1;
        break;
    case NoticeKind::Ended:
        pWaiting->bEnded = 1;
        break;
    }
    if (pQueue->size() > WATCH_WAITING_MAX)
        pWaiting->bLost = 1;
    if (pWaiting->bLost)
        pQueue->clear();
}

WaitingChange NextChange(WaitingChanges *pWaiting)
{
    WaitingChange change = pWaiting->queue.front();
    pWaiting->queue.pop_front();
    if (change.dwAction == WATCH_OLD_NAME && change.dwCookie != 0) {
        // The contents of a file that is gone are nobody's business.
        if (!pWaiting->queue.empty() && pWaiting->queue.front().dwCookie == change.dwCookie)
            pWaiting->queue.pop_front();
        change = {WATCH_REMOVED, 0, change.sName};
    }
    return change;
}
