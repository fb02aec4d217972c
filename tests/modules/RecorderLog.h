// RecorderLog.h -- what the modules Recorder.dll and RecorderColor.dll write down, and how a test steers them
#pragma once

#include "../../include/module.h"

constexpr uint32_t RECORDER_VALUES = 8; // controls whose values an entry carries

enum RecorderCall : uint32_t {
    RECORDERCALL_BUILD = 1,
    RECORDERCALL_PREINITIALIZE,
    RECORDERCALL_INITIALIZE,
    RECORDERCALL_DRAW,
    RECORDERCALL_RESOLVE,
    RECORDERCALL_CLEANUP,
    RECORDERCALL_DESTROY,
};

// One call, as it stood at its entry; build: at its end. Calls without a PlaneInfo leave the fields from ppi on zero.
struct RecorderEntry {
    uint32_t dwCall;    // RecorderCall
    uint32_t nInstance; // 1, 2, ... in the order in which the library's instances were built
    uint64_t qwOrder;   // place among all calls, over both libraries once they share a counter
    uint64_t qwThread;  // hash of the calling thread's id
    void *pvContext;    // the instance: what the host keeps as its context

    int32_t nControls;              // at build: controls that the host gave
    int32_t nRefused;               // at build: null answers of AllocControl
    float afValue[RECORDER_VALUES]; // what a module reads of its first controls: value, item, state, first tile

    const PlaneInfo *ppi; // the address alone; overlays get a copy's
    const HostBitmap *hbmDraw;
    const HostBitmap *hbmResolved;
    const HostBitmap *hbmTarget; // of a resolve call
    int32_t nWidth;
    int32_t nHeight;
    int32_t nColors;
    uint32_t bIndexed;
    uint32_t bDrawIsResolved; // hbmDraw and hbmResolved are the same bitmap
    uint32_t dwFirstPixel;    // of hbmDraw
    uint32_t dwTimeScale;
    uint32_t bMessage; // pfnShowMessage is there; so for the next four
    uint32_t bVisuals;
    uint32_t bPalette;
    uint32_t bOpenGL;
    uint32_t bShaderPath; // looked at during build only
    uint32_t bFixedClock;
    uint64_t qwTick;
    uint64_t qwSeed;
    float fRawLevel;
};

// What an instance does. Zero-filled: no controls, draws nothing, returns 0 at once.
struct RecorderBehaviour {
    uint32_t nControls;             // asked for at build, each with legal ranges and defaults
    uint32_t adwType[CONTROLS_MAX]; // their types; those beyond the array are integers
    uint32_t dwDrawResult;          // what ModuleDrawFrame returns
    uint32_t nSleepMs;              // how long a draw sleeps
    uint32_t bHold;                 // a draw waits until this is cleared
    uint32_t bWriteIndexed;         // a draw stores dwIndexed at ppi->bIndexed
    uint32_t dwIndexed;
    uint32_t bFill; // a draw fills hbmDraw with dwFill
    uint32_t dwFill;
};

// Exports beside the entry points of a module; all [any-thread].

// How an instance behaves from now on; null: the instances that are built from now on. Building reads the controls.
using RecorderSetBehaviourFn = void (*)(void *pvContext, const RecorderBehaviour *pBehaviour);
// Moves up to nMax entries out of the log, oldest first, and returns how many. Null: throws all of them away.
using RecorderTakeFn = uint32_t (*)(RecorderEntry *pEntry, uint32_t nMax);
// Numbers the calls from this counter, which must outlive the library's use; null: from the library's own.
using RecorderShareOrderFn = void (*)(uint64_t *pqwNext);
