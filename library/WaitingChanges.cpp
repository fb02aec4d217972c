// WaitingChanges.cpp -- notices of a folder, merged by name into the changes that a watch calls back for
#include "library/FolderWatch.h"

#include <algorithm>

namespace {

using Queue = std::deque<WaitingChange>;

constexpr size_t LEFT_MAX = 16;

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
        *it = {dwAction, 0, sName};
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

Queue::iterator OldNameOf(Queue *pQueue, u32 dwCookie)
{
    return std::find_if(pQueue->begin(), pQueue->end(), [&](const WaitingChange &c) {
        return dwCookie != 0 && c.dwCookie == dwCookie && c.dwAction == WATCH_OLD_NAME;
    });
}

// The second half of a rename that came after the first was taken for a removal. What the file was called before still
// tells whether it is to be added.
bool TakeLateName(WaitingChanges *pWaiting, const FolderNotice &notice)
{
    const auto it = OldNameOf(&pWaiting->left, notice.dwCookie);
    if (it == pWaiting->left.end())
        return false;
    pWaiting->queue.push_back({WATCH_OLD_NAME, 0, it->sName});
    pWaiting->queue.push_back({WATCH_NEW_NAME, 0, notice.sName});
    pWaiting->left.erase(it);
    return true;
}

// A file that comes from another folder is added.
void TakeNewName(WaitingChanges *pWaiting, const FolderNotice &notice)
{
    Queue *pQueue = &pWaiting->queue;
    const auto it = OldNameOf(pQueue, notice.dwCookie);
    if (it == pQueue->end()) {
        if (TakeLateName(pWaiting, notice))
            return;
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

// Each further write lets the file rest anew.
void TakeTouched(Queue *pQueue, const std::string &sName)
{
    const auto it = LastOf(pQueue, sName);
    if (!IsOneOf(pQueue, it, {WATCH_ADDED, WATCH_MODIFIED}))
        pQueue->push_back({WATCH_MODIFIED, 0, sName, WATCH_REST_TURNS});
    else if (it->nRestTurns)
        it->nRestTurns = WATCH_REST_TURNS;
}

void TakeWritten(Queue *pQueue, const std::string &sName)
{
    const auto it = LastOf(pQueue, sName);
    if (IsOneOf(pQueue, it, {WATCH_ADDED, WATCH_MODIFIED}))
        it->nRestTurns = 0;
    else
        pQueue->push_back({WATCH_MODIFIED, 0, sName});
}

void LetRest(Queue *pQueue)
{
    for (WaitingChange &change : *pQueue)
        if (change.nRestTurns && ++change.nHeldTurns < WATCH_HELD_TURNS_MAX)
            change.nRestTurns--;
        else
            change.nRestTurns = 0;
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
    case NoticeKind::Touched:
        TakeTouched(pQueue, notice.sName);
        break;
    case NoticeKind::Written:
        TakeWritten(pQueue, notice.sName);
        break;
    case NoticeKind::Removed:
        Merge(pQueue, WATCH_REMOVED, notice.sName, {WATCH_ADDED, WATCH_MODIFIED, WATCH_REMOVED});
        break;
    case NoticeKind::MovedFrom:
        TakeOldName(pQueue, notice);
        break;
    case NoticeKind::MovedTo:
        TakeNewName(pWaiting, notice);
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

std::optional<WaitingChange> NextChange(WaitingChanges *pWaiting)
{
    Queue *pQueue = &pWaiting->queue;
    LetRest(pQueue);
    const auto it = std::find_if(pQueue->begin(), pQueue->end(), [](const auto &c) { return c.nRestTurns == 0; });
    if (it == pQueue->end())
        return std::nullopt;
    WaitingChange change = *it;
    const auto itNext = pQueue->erase(it);
    if (change.dwAction != WATCH_OLD_NAME || change.dwCookie == 0)
        return change;
    // The contents of a file that is gone are nobody's business.
    if (itNext != pQueue->end() && itNext->dwCookie == change.dwCookie)
        pQueue->erase(itNext);
    pWaiting->left.push_back(change);
    if (pWaiting->left.size() > LEFT_MAX)
        pWaiting->left.pop_front();
    return WaitingChange{WATCH_REMOVED, 0, change.sName};
}
