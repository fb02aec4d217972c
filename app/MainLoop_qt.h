// MainLoop_qt.h -- the main loop on the toolkit's event queue
#pragma once

#include <functional>

// Takes events and runs frames until exitRequested answers true. Between frames it waits in the event queue, so that
// no core is burnt and no event waits; a termination signal counts as an exit request. [main-thread]
void RunMainLoop(const std::function<bool()> &exitRequested);

// Lets the toolkit's timers serve as frame timers while something else holds the event loop.
void InstallFrameTimers();
