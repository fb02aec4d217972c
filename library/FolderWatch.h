// FolderWatch.h -- a service that calls back for every file that changes in a folder
#pragma once

#include "platform/BaseTypes.h"
#include "platform/FolderNotices.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum WatchAction : u32 {
    WATCH_ADDED = 1,
    WATCH_REMOVED,
    WATCH_MODIFIED,
    WATCH_OLD_NAME, // of a rename; WATCH_NEW_NAME comes next
    WATCH_NEW_NAME,
};

// What a watch calls, on its own thread: pfnChange for one file, and pfnLost in place of all waiting changes when they
// are too many or the system has dropped some; whoever is called then looks at the whole folder.
using WatchChangeFn = void (*)(const char16_t *pszName, u32 dwAction);
using WatchLostFn = void (*)();

constexpr i32 WATCH_ID_FAILED = -1;
constexpr u32 WATCH_DELAY_MS = 100; // before each callback
constexpr u32 WATCH_WAITING_MAX = 64;

// Watches the folder itself, not what lies below it. Returns the new id, counted from 1; WATCH_ID_FAILED when the
// folder cannot be watched. One that goes away, or of which the system no longer tells, is looked for until it can be
// watched again; pfnLost is called at both ends of that time. [main-thread]
i32 WatchFolder(std::u16string_view folder, WatchChangeFn pfnChange, WatchLostFn pfnLost);
// Ends all watches and their threads; no callback runs when it returns.
void StopAllWatches();

// Told of what goes wrong in a watch thread. Null: nobody. Set before the first watch.
extern void (*lpfnWatchError)(const char16_t *pszText);

// The changes that wait for their callbacks, merged by name.
struct WaitingChange {
    u32 dwAction;
    u32 dwCookie; // of an old name whose new name has not come yet, else 0
    std::string sName;
    u32 nRestTurns = 0; // turns that a file with its writer still at work has to lie still, from now
    u32 nHeldTurns = 0; // turns that the change was held back for that
};
struct WaitingChanges {
    std::deque<WaitingChange> queue;
    std::deque<WaitingChange> left; // the last old names that were taken for removals: the new one may come late
    u32 bLost;  // notices were dropped or were too many: the whole folder has to be looked at, and nothing waits
    u32 bEnded; // no further notice will come
};
constexpr u32 WATCH_REST_TURNS = 2;
constexpr u32 WATCH_HELD_TURNS_MAX = 8; // a file that is never at rest is looked at all the same

// Adds a notice. A save becomes one change, and so do the writes to a file that stays open; a file that went and came
// back is modified, not removed; a rename stays a pair.
void TakeNotice(WaitingChanges *pWaiting, const FolderNotice &notice);
// One turn of the watch: the next change, unless all of them are of files that are not at rest. An old name without a
// new one has left the folder.
std::optional<WaitingChange> NextChange(WaitingChanges *pWaiting);
