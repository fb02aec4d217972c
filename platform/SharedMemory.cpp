// SharedMemory.cpp -- named shared memory and named events, private to the user
#include "platform/SharedMemory.h"

#include "platform/MainThread.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The lock lies beside the block, so that whoever finds the one finds the other, whatever their environments say.
void MakeNames(SharedMapping *psm, const char *pszName)
{
    const unsigned uid = getuid();
    std::snprintf(psm->szName, sizeof psm->szName, "/%s-%u", pszName, uid);
    std::snprintf(psm->szLock, sizeof psm->szLock, "/%s-%u.lock", pszName, uid);
}

bool LockStillHasItsName(const SharedMapping *psm)
{
    const int fdNamed = shm_open(psm->szLock, O_RDWR | O_CLOEXEC, 0600);
    struct stat stHeld, stNamed;
    const bool bSame = fdNamed >= 0 && fstat(psm->fdLock, &stHeld) == 0 && fstat(fdNamed, &stNamed) == 0 &&
                       stHeld.st_ino == stNamed.st_ino;
    if (fdNamed >= 0)
        close(fdNamed);
    return bSame;
}

int LockFile(int fd, int nOperation)
{
    int nResult;
    do
        nResult = flock(fd, nOperation);
    while (nResult != 0 && errno == EINTR);
    return nResult;
}

// Takes the lock, shared. *pbAlone: nobody else held it, so whatever stands under the names is a leftover; then the
// lock is exclusive until the caller shares it.
u32 TakeSharedLock(SharedMapping *psm, bool *pbAlone)
{
    for (;;) {
        psm->fdLock = shm_open(psm->szLock, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (psm->fdLock < 0)
            return 0;
        *pbAlone = LockFile(psm->fdLock, LOCK_EX | LOCK_NB) == 0;
        if (!*pbAlone && LockFile(psm->fdLock, LOCK_SH) != 0) {
            close(psm->fdLock);
            return 0;
        }
        // The last one out may have removed the name between our opening and our locking: then take the new one.
        if (LockStillHasItsName(psm))
            return 1;
        close(psm->fdLock);
    }
}

u32 MapBlock(SharedMapping *psm, u64 cb)
{
    const int fd = shm_open(psm->szName, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0)
        return 0;
    struct stat st;
    u32 bOk = fstat(fd, &st) == 0;
    psm->bCreated = bOk && st.st_size == 0;
    psm->cbExisting = psm->bCreated ? cb : static_cast<u64>(st.st_size);
    psm->cb = cb;
    if (bOk && psm->cbExisting < cb)
        bOk = 0; // another program's block: mapping past its end would fault
    if (bOk && psm->bCreated)
        bOk = ftruncate(fd, static_cast<off_t>(cb)) == 0;
    void *pView = bOk ? mmap(nullptr, cb, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0) : MAP_FAILED;
    close(fd);
    psm->pView = pView == MAP_FAILED ? nullptr : pView;
    return psm->pView != nullptr;
}

} // namespace

u32 OpenSharedMapping(SharedMapping *psm, const char *pszName, u64 cb)
{
    ASSERT_MAIN_THREAD();
    *psm = {};
    MakeNames(psm, pszName);
    bool bAlone = false;
    if (!TakeSharedLock(psm, &bAlone)) {
        *psm = {};
        return 0;
    }
    if (bAlone)
        shm_unlink(psm->szName);
    const u32 bOk = MapBlock(psm, cb);
    LockFile(psm->fdLock, LOCK_SH);
    if (!bOk)
        CloseSharedMapping(psm);
    return bOk;
}

u32 CreateNamedEvent(SharedMapping *psm, const char *pszName)
{
    std::snprintf(psm->szEvent, sizeof psm->szEvent, "/%s-%u", pszName, static_cast<unsigned>(getuid()));
    if (psm->bCreated)
        sem_unlink(psm->szEvent); // whoever held it is gone, and its signals with it
    sem_t *pSemaphore = sem_open(psm->szEvent, O_CREAT, 0600, 0);
    psm->pEvent = pSemaphore == SEM_FAILED ? nullptr : pSemaphore;
    return psm->pEvent != nullptr;
}

void CloseSharedMapping(SharedMapping *psm)
{
    ASSERT_MAIN_THREAD();
    if (psm->pEvent)
        sem_close(static_cast<sem_t *>(psm->pEvent));
    if (psm->pView)
        munmap(psm->pView, psm->cb);
    if (psm->szLock[0] && psm->fdLock >= 0) {
        if (LockFile(psm->fdLock, LOCK_EX | LOCK_NB) == 0) { // the last one out
            shm_unlink(psm->szName);
            if (psm->szEvent[0])
                sem_unlink(psm->szEvent);
            shm_unlink(psm->szLock);
        }
        close(psm->fdLock);
    }
    *psm = {};
}
