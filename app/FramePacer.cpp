// FramePacer.cpp -- the wait between frames: asleep until shortly before the gate opens, then polling
#include "app/FramePacer.h"

#include "engine/FrameStep.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"

#include <sys/timerfd.h>
#include <unistd.h>

namespace {

int fdTimer = -1;
i64 nArmedFor = 0;

} // namespace

int OpenPacer()
{
    ASSERT_MAIN_THREAD();
    if (fdTimer < 0)
        fdTimer = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    nArmedFor = 0;
    return fdTimer;
}

void ClosePacer()
{
    ASSERT_MAIN_THREAD();
    if (fdTimer >= 0)
        close(fdTimer);
    fdTimer = -1;
}

u32 ArmPacer()
{
    ASSERT_MAIN_THREAD();
    // The performance counter counts nanoseconds of the clock that the timer runs on.
    const i64 nWake = NextFrameCount() - PACER_POLL_NS;
    if (fdTimer < 0 || PerfCounter() >= nWake)
        return 0;
    if (nWake != nArmedFor) {
        itimerspec its = {};
        its.it_value.tv_sec = nWake / 1000000000;
        its.it_value.tv_nsec = nWake % 1000000000;
        if (timerfd_settime(fdTimer, TFD_TIMER_ABSTIME, &its, nullptr) != 0)
            return 0;
        nArmedFor = nWake;
    }
    return 1;
}

void DrainPacer()
{
    ASSERT_MAIN_THREAD();
    u64 qwExpirations;
    const ssize_t cb = read(fdTimer, &qwExpirations, sizeof qwExpirations);
    (void)cb; // nothing to read is fine
}
