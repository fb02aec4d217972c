// RenderSound.cpp -- the sound monitor of the headless renderer: inside the program, on the fixed clock
#include "app/RenderSound.h"

#include "platform/Clock.h"
#include "stock/SoundLevelDLL/LevelReading.h"

namespace {

LevelReading Reading; // no sound ever: the levels fall back to the simulated one
SimulatedTempo Tempo;

u32 GetRenderLevel(void *, i32 nVolumeType, f32 *pfLevel)
{
    *pfLevel = LevelAt(&Reading, &Tempo, nVolumeType, static_cast<f64>(TickCount()));
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
