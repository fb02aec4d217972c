// PlaneThreads.h -- one thread for each plane, released and collected once a frame
#pragma once

#include "state/PresetState.h"

// Creates the four threads. Non-zero if this call made them, 0 if they already ran, or if the system has none to give;
// that is told once and tried again after a while. [main-thread]
u32 StartPlaneThreads();
bool PlaneThreadsRun();

// For threads that run: lets every one draw its plane of the preset and waits until the first nPlanes are done, at most
// nWaitMs in all. 0: a plane took longer; its thread goes on with it and does not count for a later frame.
// [main-thread]
u32 DrawPlanesOnThreads(PresetState *lppsi, u32 nWaitMs);

// Ends the threads and waits up to 1000 ms for them. One that is stuck in a module is left alone, with all that it
// may touch; it ends by itself when the module returns. No effect if none run. [main-thread]
void StopPlaneThreads();

// Call before planes or module instances are added, removed or exchanged. Nothing to do after a whole frame; after a
// dropped one, threads may be inside a plane or about to enter it: waits for them, and gives up those that hang, so
// that later frames do not wait for them. [main-thread]
void SettlePlaneThreads();

// A thread is inside a module of this plane: after a dropped frame. Nothing of the plane may then be freed, replaced
// or entered by another thread. [any-thread]
bool PlaneIsBusy(PlaneState *pps);
// A thread that was given up is still inside a module: no library may be unloaded. [main-thread]
bool AnyThreadIsStuck();
