// MixAccelerator.h -- the graphics card that mixes, while there is one and it can be relied on
#pragma once

#include "output/mixer/remap.h"

// Mixes on the card that the start found. Returns false when there is none, when it cannot take the program, or when
// it was lost over it: the processor has to mix this frame, then. A lost card is opened again a moment
// later (a driver that is being restarted needs one); after three losses it is left alone, which the user is told.
// [main-thread]
bool MixOnAccelerator(const MixProgram &prog, const u32 *anWeight);

// Closes the card. A later MixOnAccelerator would open it again. [main-thread]
void CloseMixAccelerator();

// For tests, to be set before SetupMixAccelerator.
struct AcceleratorTest {
    bool bSoftware;     // software renderers count as cards, and real cards do not
    bool bPlainBuffers; // as if buffers could not stay mapped
    bool bNoPause;      // a lost card is opened again with the next frame
};
extern AcceleratorTest MixAcceleratorTest;
