// SharedMemory.h -- named shared memory and named events, private to the user
#pragma once

#include "platform/BaseTypes.h"

// A named mapping that all processes of one user share, with a named auto-reset event beside it. Both vanish with
// the last process that holds them, also when an earlier one crashed. Zero-filled means none.
struct SharedMapping {
    void *pView;     // cb bytes, read and write; null: none
    u64 cb;          // bytes in use by this program
    u64 cbExisting;  // bytes that the block had when it was found; cb if this process made it
    u32 bCreated;    // non-zero: this process made it
    int fdLock;      // lock beside the block, held shared for as long as the mapping lives
    void *pEvent;    // the named event (a POSIX semaphore); null until CreateNamedEvent
    char szName[96]; // names in the system, for removal
    char szEvent[96];
    char szLock[104];
};

// Creates the mapping, or opens it when another process of this user holds it. Returns 0 on failure. A block that
// a crashed process left behind counts as gone. [main-thread]
u32 OpenSharedMapping(SharedMapping *psm, const char *pszName, u64 cb);
u32 CreateNamedEvent(SharedMapping *psm, const char *pszName);
// Closes the event, unmaps and closes; the last process out removes the names.
void CloseSharedMapping(SharedMapping *psm);
