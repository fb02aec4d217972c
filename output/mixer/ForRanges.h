// ForRanges.h -- loops over all cores
#pragma once

#ifndef VD_SERIAL_LOOPS
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#endif

#include <atomic>
#include <cstddef>
#include <stdexcept>

// Calls fn(first, end) for ranges of nGrain or a little more that together are 0 to n, on all cores; returns when all
// are done. [any-thread]
template <class Fn> void ForRanges(size_t n, size_t nGrain, Fn fn)
{
#ifdef VD_SERIAL_LOOPS
    (void)nGrain;
    fn(size_t{0}, n);
#else
    if (n <= nGrain) {
        fn(size_t{0}, n);
        return;
    }
    std::atomic<bool> bAny{false};
    try {
        tbb::parallel_for(tbb::blocked_range<size_t>(0, n, nGrain), [&](const tbb::blocked_range<size_t> &range) {
            bAny.store(true, std::memory_order_relaxed);
            fn(range.begin(), range.end());
        });
    } catch (const std::runtime_error &) {
        // The system has no thread to give, which shows before the first range. Later than that, a picture with a
        // piece missing is better than none ever after.
        if (!bAny)
            fn(size_t{0}, n);
    }
#endif
}

// The threads, at most, that share a loop which this thread begins. [any-thread]
inline int ForRangesThreads()
{
#ifdef VD_SERIAL_LOOPS
    return 1;
#else
    return tbb::this_task_arena::max_concurrency();
#endif
}
