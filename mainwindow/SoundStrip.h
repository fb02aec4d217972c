// SoundStrip.h -- the sound meter under the status fields: its levels and its pixels
#pragma once

#include "platform/BaseTypes.h"

#include <span>

constexpr u32 SOUND_STRIP_TYPES = 4; // kinds of level, from raw to dynamic with a simulation

// What the meter shows at one moment.
struct SoundStrip {
    u32 bLevels; // 0: the monitor gives no level, nothing is drawn
    u32 bOneBar; // no sound, and the simulated level in use: one bar of that level over the whole strip
    f32 afLevel[SOUND_STRIP_TYPES];
};

// Asks the monitor. bQuiet as SoundIsQuiet says. [main-thread]
SoundStrip ReadSoundStrip(u32 bQuiet);

// Draws the meter into w times h pixels of the form 0xFFRRGGBB, top row first, in the user's meter colours, and takes
// the levels into the peak stores. Returns 0, with the pixels as they were, without a level. [main-thread]
u32 DrawSoundStrip(const SoundStrip &strip, std::span<u32> pixels, i32 w, i32 h, u64 qwTick);
