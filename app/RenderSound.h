// RenderSound.h -- the sound monitor of the headless renderer: inside the program, on the fixed clock
#pragma once

#include "app/Song.h"
#include "state/GlobalSettings.h"

// Binds a monitor that gives the simulated level at the present tick, the same in every run with the same seed.
void BindRenderSound(SoundMonitorBinding *pMonitor, u64 qwSeed);
// Binds a monitor that gives the levels of the song, which begins at the tick qwStartTick. Silence in it is silence:
// nothing is simulated. The song must outlive the binding.
void BindRenderSong(SoundMonitorBinding *pMonitor, const Song *pSong, u64 qwStartTick);
