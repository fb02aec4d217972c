// LevelRange.cpp -- automatic gain: the range that the music fills now, mapped to 0 to 1
#include "stock/shared/LevelRange.h"

#include "stock/shared/LevelReading.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 HIGH_MIN = 0.004f;  // 48 dB below full scale: limits the gain
constexpr f32 HIGH_START = 0.15f; // ordinary music
constexpr f32 LOW_START = 0.03f;
constexpr f32 LOW_SHARE_MAX = 0.6f;  // the low end as a share of the high end: limits the stretching
constexpr f32 LOW_SHARE_MIN = 0.05f; // and how steeply the level rises from nothing
constexpr f32 LOW_LEVEL = 0.15f;     // what the low end maps to
constexpr f32 KNEE = 0.8f;           // above it the dynamic level bends towards 1
constexpr f32 HOMING_MS = 6000;
constexpr f32 SLOWING_MS = 30;
constexpr f32 WIDEN_MS = 150;

// The share of the way that a first-order lag goes in one step.
f32 LagShare(f32 fStepMs, f32 fLagMs)
{
    return 1 - std::exp(-fStepMs / fLagMs);
}

void OpenSpan(LevelRange *pRange)
{
    if (pRange->nSpans > 0)
        pRange->iSpan = (pRange->iSpan + 1) % RANGE_SPANS;
    pRange->nSpans = std::min(pRange->nSpans + 1, RANGE_SPANS);
    pRange->nInSpan = 0;
    pRange->afSpanHigh[pRange->iSpan] = pRange->fSlow;
    pRange->afSpanLow[pRange->iSpan] = pRange->fSlow;
}

void FillSpan(LevelRange *pRange)
{
    if (pRange->nSpans == 0 || pRange->nInSpan >= pRange->nHoming / RANGE_SPANS)
        OpenSpan(pRange);
    pRange->nInSpan++;
    f32 &fHigh = pRange->afSpanHigh[pRange->iSpan];
    f32 &fLow = pRange->afSpanLow[pRange->iSpan];
    fHigh = std::max(fHigh, pRange->fSlow);
    fLow = std::min(fLow, pRange->fSlow);
}

// The spans in use are the first nSpans until the ring is full, and all of them from then on.
void MoveEnds(LevelRange *pRange)
{
    const f32 fHigh = *std::max_element(pRange->afSpanHigh, pRange->afSpanHigh + pRange->nSpans);
    const f32 fLow = *std::min_element(pRange->afSpanLow, pRange->afSpanLow + pRange->nSpans);
    const f32 fHighWay = std::log2(std::max(fHigh, HIGH_MIN)) - pRange->fHighLog;
    const f32 fLowWay = std::log2(std::max(fLow, QUIET_LEVEL)) - pRange->fLowLog;
    pRange->fHighLog += fHighWay * (fHighWay > 0 ? pRange->fWiden : pRange->fNarrow);
    pRange->fLowLog += fLowWay * (fLowWay < 0 ? pRange->fWiden : pRange->fNarrow);
}

} // namespace

void InitLevelRange(LevelRange *pRange, f32 fStepMs)
{
    *pRange = {};
    pRange->fStepMs = fStepMs;
    pRange->fHighLog = std::log2(HIGH_START);
    pRange->fLowLog = std::log2(LOW_START);
    pRange->fSlowing = LagShare(fStepMs, SLOWING_MS);
    pRange->fWiden = LagShare(fStepMs, WIDEN_MS);
    SetRangeHoming(pRange, static_cast<u32>(HOMING_MS / fStepMs));
}

void SetRangeHoming(LevelRange *pRange, u32 nSamples)
{
    pRange->nHoming = std::clamp(nSamples, HOMING_SAMPLES_MIN, HOMING_SAMPLES_MAX);
    pRange->fNarrow = LagShare(pRange->fStepMs, static_cast<f32>(pRange->nHoming) * pRange->fStepMs / 3);
}

void FollowRange(LevelRange *pRange, f32 fRaw)
{
    pRange->fSlow += (fRaw - pRange->fSlow) * pRange->fSlowing;
    if (fRaw < QUIET_LEVEL)
        return;
    FillSpan(pRange);
    MoveEnds(pRange);
}

f32 DynamicLevel(const LevelRange *pRange, f32 fRaw)
{
    const f32 fHigh = std::exp2(pRange->fHighLog);
    const f32 fLow = std::clamp(std::exp2(pRange->fLowLog), LOW_SHARE_MIN * fHigh, LOW_SHARE_MAX * fHigh);
    if (fRaw <= fLow)
        return LOW_LEVEL * fRaw / fLow;
    const f32 fLevel = LOW_LEVEL + (1 - LOW_LEVEL) * (fRaw - fLow) / (fHigh - fLow);
    if (fLevel <= KNEE)
        return fLevel;
    return KNEE + (1 - KNEE) * (1 - std::exp(-(fLevel - KNEE) / (1 - KNEE)));
}
