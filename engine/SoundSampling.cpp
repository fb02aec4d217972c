// SoundSampling.cpp -- the sound level of the frame
#include "engine/SoundSampling.h"

#include "controls/FluidSources.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Random.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 LEVEL_MIN_START = 1000000.0f;
constexpr f32 LEVEL_MAX_START = -1000000.0f;
constexpr f32 JITTER_SCALE = 4.656613e-11f; // 0.2 / 2^32

f32 fLevelMin = LEVEL_MIN_START; // the range only widens during a run
f32 fLevelMax = LEVEL_MAX_START;

// Up to a fifth of the range of raw levels, either way.
f32 Jitter(f32 fRange)
{
    const f32 fSize = static_cast<f32>(RandomWord());
    const f32 fSign = RandomWord() & 1 ? -1.0f : 1.0f;
    return fSign * fSize * fRange * JITTER_SCALE;
}

void FillSoundFrame(SoundFrame *psf, f32 fLevel)
{
    fLevelMin = std::min(fLevelMin, fLevel);
    fLevelMax = std::max(fLevelMax, fLevel);
    const f32 fRange = fLevelMax - fLevelMin;
    const f32 fNormal = fRange > 0 ? (fLevel - fLevelMin) / fRange : 0.0f; // no range yet: any finite number will do
    psf->fRawLevel = fLevel;
    psf->fLevelA = fNormal + Jitter(fRange);
    psf->fLevelB = fNormal + Jitter(fRange);
    for (u32 i = 0; i < SOUND_SAMPLES; i++) {
        psf->afSampleA[i] = psf->fLevelA + Jitter(fRange);
        psf->afSampleB[i] = psf->fLevelB + Jitter(fRange);
        psf->afSampleMean[i] = (psf->afSampleA[i] + psf->afSampleB[i]) * 0.5f;
    }
}

} // namespace

void SampleSound()
{
    ASSERT_MAIN_THREAD();
    const SoundMonitorBinding &monitor = GlobalSettings.Monitor;
    f32 fLevel = 0;
    if (monitor.pfnGetLevel && GlobalSettings.pSound &&
        monitor.pfnGetLevel(monitor.hMonitor, GlobalSettings.VolumeType, &fLevel) && std::isfinite(fLevel))
        FillSoundFrame(GlobalSettings.pSound, fLevel);
    ShiftSoundHistory(TickCount());
}

void ForgetSoundRange()
{
    fLevelMin = LEVEL_MIN_START;
    fLevelMax = LEVEL_MAX_START;
}
