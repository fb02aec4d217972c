// LevelMeter.cpp -- from samples to sound levels
#include "stock/shared/LevelMeter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr f32 DC_HZ = 8;         // below hearing: a constant offset is no sound
constexpr f32 EXPANSION = 15;    // the companding curve of telephony, with a gentler bend
constexpr f32 SAMPLE_MAX = 16;   // far beyond full scale; keeps broken input from overflowing
constexpr f32 DC_FLUSH = 1e-15f; // below it the filter would go on with slow denormal numbers
constexpr f64 GAP_MS = 200;      // a hole of this length in the stream empties the window

f32 UsableSample(f32 fSample)
{
    return std::isfinite(fSample) ? std::clamp(fSample, -SAMPLE_MAX, SAMPLE_MAX) : 0;
}

void EmptyWindow(LevelMeter *pMeter)
{
    std::fill(std::begin(pMeter->afDcIn), std::end(pMeter->afDcIn), 0.0f);
    std::fill(std::begin(pMeter->afDcOut), std::end(pMeter->afDcOut), 0.0f);
    std::fill(std::begin(pMeter->afEnergy), std::end(pMeter->afEnergy), 0.0);
    pMeter->nInStep = 0;
}

f64 FrameEnergy(LevelMeter *pMeter, const f32 *pfFrame)
{
    f64 fEnergy = 0;
    for (u32 i = 0; i < pMeter->nChannels; i++) {
        const f32 fIn = pfFrame ? UsableSample(pfFrame[i]) : 0;
        const f32 fOut = fIn - pMeter->afDcIn[i] + pMeter->fDcPole * pMeter->afDcOut[i];
        pMeter->afDcIn[i] = fIn;
        pMeter->afDcOut[i] = fOut;
        fEnergy += static_cast<f64>(fOut) * fOut;
    }
    return fEnergy;
}

f32 WindowLevel(const LevelMeter *pMeter)
{
    f64 fSum = 0;
    for (f64 fEnergy : pMeter->afEnergy)
        fSum += fEnergy;
    const f64 fCount = static_cast<f64>(METER_STEPS) * pMeter->nStepFrames * pMeter->nChannels;
    return std::min(static_cast<f32>(std::sqrt(fSum / fCount)), 1.0f);
}

void UpdateReading(LevelMeter *pMeter, f64 fNowMs)
{
    LevelReading *pReading = &pMeter->Reading;
    const f32 fRaw = WindowLevel(pMeter);
    FollowRange(&pMeter->Range, fRaw);
    pReading->fTimeMs = fNowMs;
    pReading->fRaw = fRaw;
    pReading->fExpanded = ExpandedLevel(fRaw);
    // The gain must not lift hiss that does not count as sound.
    const f32 fGate = std::clamp(fRaw / QUIET_LEVEL - 1, 0.0f, 1.0f);
    pReading->fDynamic = DynamicLevel(&pMeter->Range, fRaw) * fGate;
    if (fRaw >= QUIET_LEVEL)
        NoteSound(pReading, fNowMs);
}

void FinishStep(LevelMeter *pMeter, f64 fNowMs)
{
    for (f32 &fOut : pMeter->afDcOut)
        fOut = std::fabs(fOut) < DC_FLUSH ? 0 : fOut;
    UpdateReading(pMeter, fNowMs);
    pMeter->iStep = (pMeter->iStep + 1) % METER_STEPS;
    pMeter->afEnergy[pMeter->iStep] = 0;
    pMeter->nInStep = 0;
}

} // namespace

void InitLevelMeter(LevelMeter *pMeter, u32 nRate, u32 nChannels, u32 nWindowMs)
{
    *pMeter = {};
    pMeter->nWindowMs = nWindowMs ? std::clamp(nWindowMs, METER_WINDOW_MS_MIN, METER_WINDOW_MS_MAX) : METER_WINDOW_MS;
    InitLevelRange(&pMeter->Range, static_cast<f32>(pMeter->nWindowMs) / METER_STEPS);
    SetMeterFormat(pMeter, nRate, nChannels);
}

void SetMeterFormat(LevelMeter *pMeter, u32 nRate, u32 nChannels)
{
    pMeter->nRate = std::clamp(nRate, METER_RATE_MIN, METER_RATE_MAX);
    pMeter->nChannels = std::clamp(nChannels, 1u, METER_CHANNELS_MAX);
    const u32 nWindowFrames = pMeter->nRate * pMeter->nWindowMs / 1000;
    pMeter->nStepFrames = std::max((nWindowFrames + METER_STEPS / 2) / METER_STEPS, 1u);
    pMeter->fDcPole = 1 - 6.2831853f * DC_HZ / static_cast<f32>(pMeter->nRate);
    EmptyWindow(pMeter);
}

void FeedLevelMeter(LevelMeter *pMeter, const f32 *pfSamples, u32 nFrames, f64 fEndMs)
{
    const f64 fFrameMs = 1000.0 / pMeter->nRate;
    if (pMeter->fFedMs != 0 && fEndMs - nFrames * fFrameMs > pMeter->fFedMs + GAP_MS)
        EmptyWindow(pMeter);
    for (u32 i = 0; i < nFrames; i++) {
        const f32 *pfFrame = pfSamples ? pfSamples + static_cast<size_t>(i) * pMeter->nChannels : nullptr;
        pMeter->afEnergy[pMeter->iStep] += FrameEnergy(pMeter, pfFrame);
        if (++pMeter->nInStep == pMeter->nStepFrames)
            FinishStep(pMeter, fEndMs - (nFrames - 1 - i) * fFrameMs);
    }
    pMeter->fFedMs = fEndMs;
}

f32 ExpandedLevel(f32 fRaw)
{
    return std::log1p(EXPANSION * fRaw) / std::log1p(EXPANSION);
}
