// MainLoop_qt.h -- the main loop on the toolkit's event queue
#pragma once

// Takes events and runs frames until RequestExit. Between frames it waits in the event queue, so that no core is burnt
// and no event waits; a termination signal counts as a request to end. [main-thread]
void RunMainLoop();

// Ends the main loop, and before it the loops of whatever dialogs and menus are open. [main-thread]
void RequestExit();

// Lets the toolkit's timers serve as frame timers while something else holds the event loop: a menu, a drag, or a
// dialog that called KeepFramesUnder. Once is enough, more do no harm.
void InstallFrameTimers();
