// SummaryPool.h -- threads below normal priority that read presets beside the frames
#pragma once

#include "platform/FileFacts.h"

#include <functional>

// Runs pfnJob(iJob, pBuffer) for every number below nJobs, on a few threads at once, each with a buffer of its own, and
// returns when all is done. A handful of jobs runs on the calling thread. A job that returns false ends the run early;
// 0 then. [any-thread]
u32 RunSummaryJobs(u32 nJobs, const std::function<bool(u32 iJob, ReadBuffer *pBuffer)> &pfnJob);
