// ModulePanel.h -- what the panel of a module says: read-outs of its two sliders, and its meter
#pragma once

#include "state/PresetState.h"

#include <string>

constexpr i32 CALLS_MOST = 32; // of the slider of calls, to both sides

// "Never" for DURATION_NEVER, else the seconds.
std::u16string DurationText(u32 nDuration);
// "1 in every %d frames" below -1, "Paused" at 0, else "%d time%s per frame"; -1 reads as 1.
std::u16string CallsText(i32 nCallsPerFrame);

// How much of the way to the module's next reset lies behind, 0 to 1, for FillProgressStrip; 0, which is all black,
// where none will come.
f32 ResetProgress(const ModuleSlot *pms, u32 dwTimeScale, u64 qwTick);
