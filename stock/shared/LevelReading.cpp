// LevelReading.cpp -- what a level meter has found, and the level at any moment after that
#include "stock/shared/LevelReading.h"

#include <algorithm>
#include <cmath>

namespace {

// 1 while samples come, falling to 0 when they stay away (a suspended output, a lost server).
f32 FreshnessAt(const LevelReading *pReading, f64 fNowMs)
{
    const f64 fLate = fNowMs - pReading->fTimeMs - STALE_AFTER_MS;
    return static_cast<f32>(std::clamp(1 - fLate / STALE_FALL_MS, 0.0, 1.0));
}

f32 MeasuredLevelAt(const LevelReading *pReading, i32 nVolumeType, f64 fNowMs)
{
    if (IsQuietAt(pReading, fNowMs))
        return 0;
    const f32 fLevel = nVolumeType == VOLUMETYPE_RAW        ? pReading->fRaw
                       : nVolumeType == VOLUMETYPE_EXPANDED ? pReading->fExpanded
                                                            : pReading->fDynamic;
    return fLevel * FreshnessAt(pReading, fNowMs);
}

} // namespace

void NoteSound(LevelReading *pReading, f64 fNowMs)
{
    if (IsQuietAt(pReading, fNowMs)) {
        pReading->fShareAtStart = SimulatedShareAt(pReading, fNowMs);
        pReading->fSoundStartMs = fNowMs;
    }
    pReading->bHeard = 1;
    pReading->fLastSoundMs = fNowMs;
}

u32 IsQuietAt(const LevelReading *pReading, f64 fNowMs)
{
    return !pReading->bHeard || fNowMs - pReading->fLastSoundMs > QUIET_AFTER_MS;
}

f32 SimulatedShareAt(const LevelReading *pReading, f64 fNowMs)
{
    if (!pReading->bHeard)
        return 1;
    const f64 fFading = pReading->fShareAtStart - (fNowMs - pReading->fSoundStartMs) / FADE_OUT_MS;
    const f64 fRising = (fNowMs - pReading->fLastSoundMs - QUIET_AFTER_MS) / FADE_IN_MS;
    return static_cast<f32>(std::clamp(std::max(fFading, fRising), 0.0, 1.0));
}

f32 LevelAt(const LevelReading *pReading, const SimulatedTempo *pTempo, i32 nVolumeType, f64 fNowMs)
{
    const f32 fMeasured = MeasuredLevelAt(pReading, nVolumeType, fNowMs);
    if (nVolumeType >= VOLUMETYPE_RAW && nVolumeType <= VOLUMETYPE_DYNAMIC)
        return fMeasured;
    const f32 fShare = SimulatedShareAt(pReading, fNowMs);
    if (fShare <= 0)
        return fMeasured;
    return std::lerp(fMeasured, SimulatedLevelAt(pTempo, fNowMs), fShare);
}
