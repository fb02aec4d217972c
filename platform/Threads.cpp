// Threads.cpp -- auto-reset events and threads with a priority
#include "platform/Threads.h"

#include <chrono>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

void Event::Signal()
{
    {
        std::lock_guard lock(mtx);
        bSignalled = true;
    }
    cv.notify_one();
}

void Event::Reset()
{
    std::lock_guard lock(mtx);
    bSignalled = false;
}

bool Event::Wait(u32 nWaitMs)
{
    std::unique_lock lock(mtx);
    const auto signalled = [this] { return bSignalled; };
    if (nWaitMs == WAIT_FOREVER)
        cv.wait(lock, signalled);
    else if (!cv.wait_for(lock, std::chrono::milliseconds(nWaitMs), signalled))
        return false;
    bSignalled = false;
    return true;
}

void SetThisThread(ThreadPriority ePriority, const char *pszName)
{
    pthread_setname_np(pthread_self(), pszName);
    // Linux keeps a nice value for each thread; a refused change leaves the thread as it is.
    const int nNice = ePriority == ThreadPriority::AboveNormal ? -5 : ePriority == ThreadPriority::BelowNormal ? 5 : 0;
    if (nNice != 0)
        setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), nNice);
}
