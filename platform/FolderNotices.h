// FolderNotices.h -- what the system tells of changes in a folder
#pragma once

#include "platform/BaseTypes.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct FolderNotices; // opaque; null means none

enum class NoticeKind {
    Created, // a file, pipe or link stands there under a new name
    Touched, // its contents were changed by a writer that still has it open
    Written, // a writer has closed it, or its attributes or date were changed
    Removed,
    MovedFrom, // the two halves of a rename inside the folder share a cookie
    MovedTo,
    Lost,  // the system dropped notices: anything may have happened
    Ended, // the folder itself is gone or has another place now
};

struct FolderNotice {
    NoticeKind eKind;
    u32 dwCookie;
    std::string sName; // as on disk; empty for Lost and Ended
};

enum class NoticeWait { Ready, Stopped, TimedOut, Failed };

// Begins to collect the changes of the files that lie directly in the folder; of folders in it nothing is told. Null
// when the folder is none or the system has no more watches to give. [any-thread]
FolderNotices *OpenFolderNotices(std::u16string_view folder);
void CloseFolderNotices(FolderNotices *pNotices); // null is fine
// Begins anew with the folder that has the path now, after notices have ended or could not be read. 0, and no change,
// as above. A stop stays.
u32 RenewFolderNotices(FolderNotices *pNotices, std::u16string_view folder);

// Waits for notices, for StopFolderNotices or until the time is over (WAIT_FOREVER: no limit). A stop comes first and
// stays.
NoticeWait WaitFolderNotices(const FolderNotices *pNotices, u32 nWaitMs);
// Waits for a stop alone; true when it came.
bool WaitNoticesStopped(const FolderNotices *pNotices, u32 nWaitMs);
// Appends what stands there without waiting, read through the caller's buffer. 0 when the reading failed.
u32 ReadFolderNotices(const FolderNotices *pNotices, std::span<char> buffer, std::vector<FolderNotice> *pTo);
// [any-thread]
void StopFolderNotices(const FolderNotices *pNotices);
