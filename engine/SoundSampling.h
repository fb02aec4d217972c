// SoundSampling.h -- the sound level of the frame
#pragma once

// Asks the bound monitor for the level and fills the SoundFrame with it: raw, normalised and jittered. Draws 68 random
// numbers. Without a monitor, or when it has no level to give, the SoundFrame stays as it is. Then lets the sound
// history take the level. Once a frame, before the planes are drawn. [main-thread]
void SampleSound();

// Forgets the range of levels seen so far (tests; a run of the program never does).
void ForgetSoundRange();
