// PresetState.h -- records of a running preset: planes, module slots, mixer rules, post-processing
#pragma once

#include "include/module.h"
#include "platform/BaseTypes.h"
#include "platform/Random.h"
#include "state/MixRule.h"
#include "state/ModuleRecord.h"

constexpr i32 PLANES_MAX = 4;
constexpr i32 LIST_MODULES_MAX = 32; // modules in one list of a plane, and in post-processing
constexpr u32 MIX_RULES_MAX = 31;    // rules in use
constexpr u32 MIX_RULE_ENTRIES = 32; // entries of the array
constexpr u32 MIX_SOURCES_MAX = 32;  // planes and rules together
constexpr i32 BUFFER_SIDE_MIN = 128; // limits of the buffer size
constexpr i32 BUFFER_SIDE_MAX = 8192;
constexpr u32 DURATION_NEVER = 181; // a duration that never ends

// Kinds of module lists, in drawing order.
enum ModuleIndex : u32 {
    MODULEINDEX_COLORINTERPOLATOR = 0,
    MODULEINDEX_COLORGENERATOR = 1,
    MODULEINDEX_COLOREFFECT = 2,
    MODULEINDEX_DRAWFULL = 3,
    MODULEINDEX_DRAWPAINTER = 4,
    MODULEINDEX_DRAWEFFECT = 5,
    MODULEINDEX_OVERLAYFULL = 6,
    MODULEINDEX_OVERLAYPAINTER = 7,
    MODULEINDEX_OVERLAYEFFECT = 8,
    MODULEINDEX_MIXER = 9,        // the list exists in every plane and stays empty
    MODULEINDEX_NUMINDICIES = 10, // kind of the post-processing modules, which no plane holds
};

// What a run over modules does.
enum ModuleStep : u32 {
    MODSTEP_PREINIT = 2,
    MODSTEP_INIT = 4,
    MODSTEP_CONTROLS = 8,
    MODSTEP_DRAW = 16,
    MODSTEP_CLEANUP = 32,
    MODSTEP_DESTROY = 64,
    MODSTEP_KEEPVALUES = 128, // with MODSTEP_INIT: no control gets a new starting value

    MODSTEPS_BRINGUP = MODSTEP_PREINIT | MODSTEP_INIT,
    MODSTEPS_FRAME = MODSTEP_CONTROLS | MODSTEP_DRAW,
    MODSTEPS_TAKEDOWN = MODSTEP_CLEANUP | MODSTEP_DESTROY,
};

struct PlaneState;
struct PresetState;

// One instance of a module in a list. Made, removed and exchanged on the main thread between frames. The five plain
// words that the user edits may change while a frame runs; each is read once where it matters.
struct ModuleSlot {
    i32 bResetPending;    // the next run resets the module
    u32 nDuration;        // seconds between automatic resets, times TimeScale; DURATION_NEVER
    u64 qwNextReset;      // millisecond tick of the next automatic reset
    i32 bActive;          // 0: not drawn; also while it is being built
    i32 bClearOnReset;    // a reset zeroes hbmDraw
    i32 nCallsPerFrame;   // N calls a frame; 0 paused; -N one call in N frames
    ModuleFunctions *pmf; // inside the ModuleRecord
    ModuleDescription *pmd;
    void *pvContext;                        // the module's own instance pointer
    i32 nControls;                          // 0 to CONTROLS_MAX
    HostGLWindow *hwndGL;                   // owned; null unless the module needs OpenGL
    ControlRecord *apControl[CONTROLS_MAX]; // owned, with what they point to
    const char16_t *lpszShader;             // into the ShaderList; null unless an instance of the shader module
    PlaneState *ppsOwner;                   // null for post-processing
    const char16_t *pszDll;                 // into the ModuleRecord
    RandomStream Random;                    // of this instance, for seeded runs
};

// One plane. PlaneInfo stands first, so that a pointer to the plane is what module calls receive.
struct PlaneState {
    PlaneInfo Info;
    u32 bPaused; // the frame step skips the plane
    i32 anModules[MODULEINDEX_NUMINDICIES];
    ModuleSlot *apModule[MODULEINDEX_NUMINDICIES][LIST_MODULES_MAX]; // owned
    PresetState *lppsi;                                              // owner
    u32 dwBusy; // a plane thread is inside the plane's modules; atomic, see PlaneIsBusy
};
static_assert(offsetof(PlaneState, Info) == 0);

// Everything that a running preset is. At most one is the current one. Zero-filled is an empty preset.
struct PresetState {
    i32 nPlanes;                     // 0 to PLANES_MAX
    HostBitmap *hbmFinal;            // result of the mixer; owned
    HostBitmap **phbmOutput;         // where the frame's image stands: &hbmFinal or &plane 0's hbmResolved; set by
                                     // MixPlanes, null whenever it would point into something that is gone
    PlaneState *psPlane[PLANES_MAX]; // owned; no gaps
    u32 nMixRules;                   // written to files as NumMixerOps
    MixRule asMixRule[MIX_RULE_ENTRIES];
    i32 nPostProc;
    ModuleSlot *apPostProc[LIST_MODULES_MAX]; // owned
    PlaneInfo piPostProc; // pseudo-plane of the mixed image; its table and context are owned by the preset
};
