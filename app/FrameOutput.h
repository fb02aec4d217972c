// FrameOutput.h -- where the frames of a headless run go: numbered picture files, or raw bytes to standard output
#pragma once

#include "app/RenderOptions.h"
#include "app/RenderStats.h"
#include "output/pictures/PictureQueue.h"

// Starts the workers that write the frames; StopPictureQueue ends them. The times of writing go to the statistics,
// which may be read once the queue is finished or stopped. Both arguments must outlive the queue. [main-thread]
PictureQueue *StartFrameOutput(const RenderOptions &ro, RenderStats *prs);

// Hands over the frame of that number.
void SubmitFrame(PictureQueue *pQueue, const RenderOptions &ro, const HostBitmap *hbm, u32 dwNumber);
