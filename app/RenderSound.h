// RenderSound.h -- the sound monitor of the headless renderer: inside the program, on the fixed clock
#pragma once

#include "app/GlobalSettings.h"

// Binds a monitor that gives the simulated level at the present tick, the same in every run with the same seed.
void BindRenderSound(SoundMonitorBinding *pMonitor, u64 qwSeed);
