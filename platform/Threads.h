// Threads.h -- auto-reset events and threads with a priority
#pragma once

#include "platform/BaseTypes.h"

#include <condition_variable>
#include <mutex>
#include <thread>

constexpr u32 WAIT_FOREVER = ALL_ONES;

// An auto-reset event: a signal lets one wait pass and is then gone. Starts unsignalled. [any-thread]
class Event {
  public:
    void Signal();
    void Reset();
    // True once signalled; false when nWaitMs have passed first.
    bool Wait(u32 nWaitMs);

  private:
    std::mutex mtx;
    std::condition_variable cv;
    bool bSignalled = false; // guarded by mtx
};

enum class ThreadPriority { BelowNormal, Normal, AboveNormal };

// Sets the calling thread's priority and its name in debuggers. Above normal needs a privilege: without it the
// thread goes on as it is. Below normal cannot be undone by an ordinary user.
void SetThisThread(ThreadPriority ePriority, const char *pszName);
