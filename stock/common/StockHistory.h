// StockHistory.h -- the levels of the last sixteen seconds, for pictures that show how a sound went
#ifndef VORTICADE_STOCK_HISTORY_H
#define VORTICADE_STOCK_HISTORY_H

#include "StockDrawing.h"

#define HISTORY_SAMPLES 1024 // a power of two
#define HISTORY_PER_SECOND 64

struct LevelHistory {
    float afLevel[HISTORY_SAMPLES];
    uint32_t iNewest;
    float fSince; // samples since the newest one, 0 to 1
    float fLast;  // the level of the last frame
};

// Adds the time of a frame, over which the level went evenly from the last one to this one.
inline void FeedHistory(LevelHistory *pHistory, float fLevel, float fSeconds)
{
    const float fSamples = std::clamp(fSeconds * HISTORY_PER_SECOND, 0.0f, (float)HISTORY_SAMPLES);
    const float fFirst = 1 - pHistory->fSince; // until the next one is due
    const int32_t nDue = (int32_t)(fSamples + pHistory->fSince);
    for (int32_t i = 0; i < nDue; i++) {
        const float fShare = std::min((fFirst + (float)i) / fSamples, 1.0f);
        pHistory->iNewest = (pHistory->iNewest + 1) % HISTORY_SAMPLES;
        pHistory->afLevel[pHistory->iNewest] = pHistory->fLast + (fLevel - pHistory->fLast) * fShare;
    }
    pHistory->fSince = WrapUnit(pHistory->fSince + fSamples);
    pHistory->fLast = fLevel;
}

// The level so many seconds ago, 0 to 15.
inline float LevelAgo(const LevelHistory &history, float fSecondsAgo)
{
    const float f = fSecondsAgo * HISTORY_PER_SECOND - history.fSince;
    const auto Sample = [&](uint32_t i) { return history.afLevel[(history.iNewest - i) % HISTORY_SAMPLES]; };
    if (f < 0)
        return history.fLast + (Sample(0) - history.fLast) * (1 + f / std::max(history.fSince, 1e-6f));
    const uint32_t i = std::min((uint32_t)f, (uint32_t)HISTORY_SAMPLES - 2);
    return Sample(i) + (Sample(i + 1) - Sample(i)) * std::min(f - (float)i, 1.0f);
}

#endif
