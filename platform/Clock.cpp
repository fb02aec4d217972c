// Clock.cpp -- the millisecond tick and the performance counter, both replaceable
#include "platform/Clock.h"

#include <algorithm>
#include <atomic>
#include <ctime>

namespace {

constexpr i64 NS_PER_SECOND = 1000000000;

std::atomic<bool> bFixed{false};
std::atomic<u64> qwFixedTick{0};
std::atomic<i64> nFixedCounter{0};

} // namespace

i64 RealNanoseconds()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * NS_PER_SECOND + ts.tv_nsec;
}

u64 TickCount()
{
    if (bFixed.load(std::memory_order_relaxed))
        return qwFixedTick.load(std::memory_order_relaxed);
    return static_cast<u64>(RealNanoseconds() / 1000000);
}

i64 PerfCounter()
{
    if (bFixed.load(std::memory_order_relaxed))
        return nFixedCounter.load(std::memory_order_relaxed);
    return RealNanoseconds();
}

i64 PerfFrequency()
{
    return NS_PER_SECOND;
}

void UseFixedClock(u64 qwTick)
{
    qwFixedTick = qwTick;
    // Never behind a counter that somebody has read before, fixed or real.
    nFixedCounter = std::max<i64>(nFixedCounter, RealNanoseconds()) + 2 * NS_PER_SECOND;
    bFixed = true;
}

void SetFixedTick(u64 qwTick)
{
    qwFixedTick = qwTick;
    nFixedCounter += 2 * NS_PER_SECOND;
}

void AdvanceFixedCounter(i64 nCounts)
{
    nFixedCounter += nCounts;
}

void UseSystemClock()
{
    bFixed = false;
}

bool ClockIsFixed()
{
    return bFixed;
}
