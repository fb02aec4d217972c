// RenderSound.cpp -- the sound monitor of the headless renderer: inside the program, on the fixed clock
#include "app/RenderSound.h"

#include "platform/Clock.h"
#include "stock/shared/LevelReading.h"

namespace {

LevelReading Reading; // no sound ever: the levels fall back to the simulated one
SimulatedTempo Tempo;

const Song *pSongPlayed = nullptr;
u64 qwSongStart = 0; // tick

u32 GetRenderLevel(void *, i32 nVolumeType, f32 *pfLevel)
{
    *pfLevel = LevelAt(&Reading, &Tempo, nVolumeType, static_cast<f64>(TickCount()));
    return 1;
}

u32 GetSongLevel(void *, i32 nVolumeType, f32 *pfLevel)
{
    const f64 fSongMs = static_cast<f64>(TickCount()) - static_cast<f64>(qwSongStart);
    const bool bMeasured = nVolumeType >= VOLUMETYPE_RAW && nVolumeType <= VOLUMETYPE_DYNAMIC;
    const LevelReading reading = SongReadingAt(*pSongPlayed, fSongMs);
    *pfLevel = LevelAt(&reading, &Tempo, bMeasured ? nVolumeType : VOLUMETYPE_DYNAMIC, fSongMs);
    return 1;
}

void SetRenderScale(void *, u32 nScale)
{
    SetSimulatedScale(&Tempo, nScale, static_cast<f64>(TickCount()));
}

} // namespace

void BindRenderSound(SoundMonitorBinding *pMonitor, u64 qwSeed)
{
    Reading = {};
    Tempo = {};
    Tempo.qwSeed = qwSeed;
    *pMonitor = {};
    pMonitor->pfnGetLevel = GetRenderLevel;
    pMonitor->pfnSetSimScale = SetRenderScale;
}

void BindRenderSong(SoundMonitorBinding *pMonitor, const Song *pSong, u64 qwStartTick)
{
    BindRenderSound(pMonitor, 0);
    pSongPlayed = pSong;
    qwSongStart = qwStartTick;
    pMonitor->pfnGetLevel = GetSongLevel;
}
