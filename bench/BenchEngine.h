// BenchEngine.h -- the engine as the windowless renderer starts it, for benchmarks that draw whole frames
#pragma once

#include "app/Startup.h"
#include "platform/Assert.h"
#include "platform/Clock.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "platform/Threads.h"
#include "state/GlobalSettings.h"

// With the stock data and modules, a fixed clock at 0 and a fixed seed; waits for slow planes as long as they take.
inline void StartBenchEngine(i32 nWidth, i32 nHeight)
{
    UseFixedClock(0);
    SeedAllRandom(1);
    VD_ASSERT(!StartHeadless({FromUtf8(SOURCE_FOLDER "/data"), FromUtf8(STOCK_MODULE_FOLDER), {}}));
    GlobalSettings.dwPlaneWaitMs = WAIT_FOREVER;
    GlobalSettings.nBufferWidth = nWidth;
    GlobalSettings.nBufferHeight = nHeight;
}
