// RenderStats.h -- what a headless run tells of itself: progress, and the times of its stages
#pragma once

#include "engine/FrameStep.h"
#include "platform/BaseTypes.h"

#include <string>
#include <vector>

// Nanoseconds of each stage of each frame written.
struct RenderStats {
    std::vector<i64> anDraw, anMix, anPost;
    std::vector<i64> anWait;  // until the frame was handed over to be written
    std::vector<i64> anWrite; // one call of CountWrite at a time; in no order
    i64 nStart = 0;           // RealNanoseconds of the first frame counted
};

void CountFrame(RenderStats *prs, const FrameStages &stages, i64 nWait);
void CountWrite(RenderStats *prs, i64 nWrite);
// A bar on standard error, if that is a terminal, a few times a second: nDone of nFrames, speed, time left.
void ShowProgress(const RenderStats &rs, u64 nDone, u64 nFrames);
void EndProgress();
// Median and 99th percentile of each stage in milliseconds, on standard error.
void PrintStats(const RenderStats &rs);

// Seconds as a clock shows them: "0:07", "1:02:03".
std::string SpanText(double fSeconds);

// The text as a JSON string, quotes included.
std::string JsonText(const std::string &s);
