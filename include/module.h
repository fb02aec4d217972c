/* module.h -- the boundary between the host and a module library: records, entry points, calling order
 *
 * A module is a shared object whose file name ends in ".dll", placed in the host's DLL folder. Its file name
 * is its identity in presets. It exports the entry points at the end of this file with C linkage and hides
 * everything else. This file, control.h, sound.h and hosttypes.h are all that a module needs.
 *
 * THE LIFE OF AN INSTANCE
 *   1. ModuleBuildControlStructure: make the instance block, ask for the controls.            [main-thread]
 *   2. The host puts stored values into the controls.
 *   3. Bring-up: ModulePreInitialize; the host gives every control its starting value;
 *      ModuleInitialize.                                                                       [main-thread]
 *   4. Every frame, once or several times: the host updates the controls; ModuleDrawFrame. The first
 *      colour interpolator of a plane then gets ModuleResolveIndexedPlane.      [plane-thread, main-thread]
 *   5. A reset: the host gives every control a new starting value; ModuleInitialize again, without
 *      ModuleCleanUp before it: release or reuse what the last one made.        [plane-thread, main-thread]
 *   6. A resize: ModuleCleanUp; new bitmaps; bring-up as in 3.                                 [main-thread]
 *   7. The end: ModuleCleanUp, ModuleDestroyControlStructure.                                  [main-thread]
 *
 * THREADS. The calls for one instance come one at a time, not always on the same thread. Instances of one
 * library on different planes run at the same time: no unguarded globals.
 *
 * MEMORY. What the module allocates it frees. The PlaneInfo, the bitmaps and the blocks it points to belong
 * to the host and are valid during the call; take them from the call's PlaneInfo each time.
 *
 * FAILURE. There is no error return. A module that cannot work does nothing in ModuleDrawFrame.
 *
 * A MINIMAL PAINTER sets dwClass MODULECLASS_DRAWING and MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB in
 * ModuleGetDescription, allocates its instance and controls in ModuleBuildControlStructure, and changes the
 * pixels of ppi->hbmDraw in ModuleDrawFrame: palette indices (0 to ppi->nColors - 1) when ppi->bIndexed is
 * set, colours otherwise. Everything else may return at once, but must be exported.
 */
#ifndef VORTICADE_MODULE_H
#define VORTICADE_MODULE_H

#include "control.h"
#include "hosttypes.h"
#include "sound.h"

#define PALETTE_COLORS_MAX 2048 /* entries of lpColorTable and of each palette in PaletteInfo */

/* ModuleDescription.dwClass */
enum {
    MODULECLASS_DRAWING = 1, /* drawing, overlay and post-processing */
    MODULECLASS_MIXER = 2,   /* no list of the host accepts it */
    MODULECLASS_COLOR = 4
};

/* ModuleDescription.dwCapabilities. A module is offered for a list when its class fits the list, the bit of
 * the kind is set and, for drawing modules, the bit of the plane's type. */
enum {
    MODULECAP_COLORINTERPOLATOR = 0x1,
    MODULECAP_COLORGENERATOR = 0x2,
    MODULECAP_COLOREFFECT = 0x4,
    MODULECAP_FULL = 0x8,     /* makes a whole image every frame */
    MODULECAP_PAINTER = 0x10, /* adds to what is there */
    MODULECAP_EFFECT = 0x20,  /* changes what is there; with MODULECAP_RGB also post-processing */
    MODULECAP_INDEXED = 0x8000,
    MODULECAP_RGB = 0x10000 /* also required for all overlay kinds: overlays always draw colours */
};

/* What a module says of itself. The host zeroes it, the module fills it once, at load. */
typedef struct ModuleDescription {
    uint32_t dwClass;                     /* MODULECLASS_* */
    uint32_t dwCapabilities;              /* MODULECAP_* bits */
    uint32_t adwReserved[2];              /* ignored by the host */
    char16_t szName[CONTROL_TEXT];        /* display name */
    char16_t szDescription[CONTROL_TEXT]; /* one line for the module picker */
    uint32_t bNeedsOpenGL;                /* non-zero: every instance gets a hidden window in hwndGL */
    uint32_t bUnavailable;                /* the host's: never set by a module */
    char16_t szBuild[66];                 /* version text */
} ModuleDescription;

static_assert(sizeof(ModuleDescription) == 1196, "ModuleDescription");
VD_ASSERT_OFFSET(ModuleDescription, dwCapabilities, 4);
VD_ASSERT_OFFSET(ModuleDescription, adwReserved, 8);
VD_ASSERT_OFFSET(ModuleDescription, szName, 16);
VD_ASSERT_OFFSET(ModuleDescription, szDescription, 536);
VD_ASSERT_OFFSET(ModuleDescription, bNeedsOpenGL, 1056);
VD_ASSERT_OFFSET(ModuleDescription, bUnavailable, 1060);
VD_ASSERT_OFFSET(ModuleDescription, szBuild, 1064);

/* What the colour modules of a plane share: the two palettes of a transition. Zero at plane creation. The host
 * reads the named fields for its colour window and writes none. The other bytes are the modules' own. */
typedef struct PaletteInfo {
    uint8_t abModules0[8];               /* for the modules */
    uint8_t abRed1[PALETTE_COLORS_MAX];  /* first palette */
    uint8_t abGreen1[PALETTE_COLORS_MAX];
    uint8_t abBlue1[PALETTE_COLORS_MAX];
    uint8_t abModules1[8];               /* for the modules */
    uint8_t abRed2[PALETTE_COLORS_MAX];  /* second palette */
    uint8_t abGreen2[PALETTE_COLORS_MAX];
    uint8_t abBlue2[PALETTE_COLORS_MAX];
    uint8_t abModules2[12];              /* for the modules */
    int32_t nStep;                       /* current step of the transition */
    int32_t nSteps;                      /* number of steps; under way while nStep < nSteps */
} PaletteInfo;

static_assert(sizeof(PaletteInfo) == 12324, "PaletteInfo");
VD_ASSERT_OFFSET(PaletteInfo, abRed1, 0x0008);
VD_ASSERT_OFFSET(PaletteInfo, abGreen1, 0x0808);
VD_ASSERT_OFFSET(PaletteInfo, abBlue1, 0x1008);
VD_ASSERT_OFFSET(PaletteInfo, abModules1, 0x1808);
VD_ASSERT_OFFSET(PaletteInfo, abRed2, 0x1810);
VD_ASSERT_OFFSET(PaletteInfo, abGreen2, 0x2010);
VD_ASSERT_OFFSET(PaletteInfo, abBlue2, 0x2810);
VD_ASSERT_OFFSET(PaletteInfo, abModules2, 0x3010);
VD_ASSERT_OFFSET(PaletteInfo, nStep, 0x301C);
VD_ASSERT_OFFSET(PaletteInfo, nSteps, 0x3020);

/* Shows a text of up to 4095 characters in the message overlay; an empty text clears it. The text may hold up
 * to nine numeric format fields that become colour values; write a percent sign as "%%".
 * Returns non-zero if there is an overlay. [any-thread] */
typedef uint32_t (*ShowModuleMessageFn)(const char16_t *lpszText);

/* What every call receives: the plane that is being drawn on. A module relies on these 104 bytes only.
 *
 * Kinds in the lists of a plane get the plane itself; overlay kinds get a copy of it in which bIndexed is 0
 * and hbmDraw is the resolved picture (writes into the copy do not reach the plane); post-processing gets a
 * pseudo-plane of the mixed picture: bIndexed 0, a grey ramp of 256 colours, and null hbmResolved, hwndVisuals,
 * pPaletteInfo and pfnShowMessage.
 *
 * Of the record itself a module writes nColors only; what hbmDraw, lpColorTable and pPaletteInfo point to is there to
 * be written by the modules that the comments name. After every call the host puts back what else was changed in the
 * record, its bitmaps, its context and its OpenGL window. */
typedef struct PlaneInfo {
    uint32_t *lpColorTable;            /* 2048 colours (blue, green, red; byte 3 is the colour modules'
                                          own: mask it); filled by the colour modules */
    int32_t nColors;                   /* colours in lpColorTable; set by the colour modules; 0 at first */
    uint32_t bIndexed;                 /* non-zero: hbmDraw holds palette indices, one per 32-bit pixel */
    int32_t nWidth;                    /* of all bitmaps here */
    int32_t nHeight;
    HostBitmap *hbmDraw;               /* the bitmap to draw on; in the drawing lists its contents
                                          persist from frame to frame */
    HostBitmap *hbmResolved;           /* the plane's output; for overlay calls equal to hbmDraw; null for
                                          post-processing */
    HostContext *hdc;                  /* time and chance; nothing selected */
    const SoundFrame *pSound;          /* the sound levels of the frame */
    const HostWindow *hwndVisuals;     /* the visuals window; null for post-processing */
    HostGLWindow *hwndGL;              /* this instance's hidden OpenGL window; null without bNeedsOpenGL */
    PaletteInfo *pPaletteInfo;         /* shared by the colour modules; null for post-processing */
    uint32_t dwTimeScale;              /* 1 to 100: all rates are to be divided, durations multiplied by it */
    uint32_t dwReserved;               /* 0 */
    const char16_t *lpszShaderPath;    /* shader file of the instance, during ModuleBuildControlStructure of a
                                          shader instance; meaningless at all other times */
    ShowModuleMessageFn pfnShowMessage; /* null for post-processing */
} PlaneInfo;

static_assert(sizeof(PlaneInfo) == 104, "PlaneInfo");
VD_ASSERT_OFFSET(PlaneInfo, lpColorTable, 0);
VD_ASSERT_OFFSET(PlaneInfo, nColors, 8);
VD_ASSERT_OFFSET(PlaneInfo, bIndexed, 12);
VD_ASSERT_OFFSET(PlaneInfo, nWidth, 16);
VD_ASSERT_OFFSET(PlaneInfo, nHeight, 20);
VD_ASSERT_OFFSET(PlaneInfo, hbmDraw, 24);
VD_ASSERT_OFFSET(PlaneInfo, hbmResolved, 32);
VD_ASSERT_OFFSET(PlaneInfo, hdc, 40);
VD_ASSERT_OFFSET(PlaneInfo, pSound, 48);
VD_ASSERT_OFFSET(PlaneInfo, hwndVisuals, 56);
VD_ASSERT_OFFSET(PlaneInfo, hwndGL, 64);
VD_ASSERT_OFFSET(PlaneInfo, pPaletteInfo, 72);
VD_ASSERT_OFFSET(PlaneInfo, dwTimeScale, 80);
VD_ASSERT_OFFSET(PlaneInfo, dwReserved, 84);
VD_ASSERT_OFFSET(PlaneInfo, lpszShaderPath, 88);
VD_ASSERT_OFFSET(PlaneInfo, pfnShowMessage, 96);

/* Gives a new control record with the defaults of control.h, or null beyond CONTROLS_MAX. pnControls is the
 * pointer that came with the same ModuleBuildControlStructure call; leave the count alone. Only during that
 * call. [main-thread] */
typedef ControlRecord *(*AllocControlFn)(int32_t *pnControls);

#define MODULEDRAW_RESET 2 /* result of ModuleDrawFrame: reset me before my next frame */

/* Entry points. pvContext is what ModuleBuildControlStructure stored; the host never looks into it. */
typedef void (*ModuleGetDescriptionFn)(ModuleDescription *pmd);
typedef void (*ModuleBuildControlStructureFn)(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl,
                                              int32_t *pnControls);
typedef void (*ModulePreInitializeFn)(void *pvContext, PlaneInfo *ppi);
typedef void (*ModuleInitializeFn)(void *pvContext, PlaneInfo *ppi);
typedef uint32_t (*ModuleDrawFrameFn)(void *pvContext, PlaneInfo *ppi);
typedef void (*ModuleCleanUpFn)(void *pvContext);
typedef void (*ModuleDestroyControlStructureFn)(void *pvContext);
typedef void (*ModuleResolveIndexedPlaneFn)(void *pvContext, PlaneInfo *ppi, HostBitmap *hbmTarget);
typedef void (*ModuleMixPlanesFn)(void); /* looked up, never called; need not be exported */

#ifdef __cplusplus
#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#else
#define MODULE_EXPORT __attribute__((visibility("default")))
#endif

/* Declared here so that a module's definitions are checked against the boundary. */
MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd);

/* Makes the instance: stores its pointer at ppvContext and asks for its controls. */
MODULE_EXPORT void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl,
                                               int32_t *pnControls);

/* At every bring-up, before the controls have their values. Mostly empty. */
MODULE_EXPORT void ModulePreInitialize(void *pvContext, PlaneInfo *ppi);

/* At every bring-up and every reset, after the controls have new values. Seed from ppi->hdc->qwSeed here. */
MODULE_EXPORT void ModuleInitialize(void *pvContext, PlaneInfo *ppi);

/* Draws. Returns MODULEDRAW_RESET to be reset before the next frame, anything else to go on. */
MODULE_EXPORT uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi);

/* Colour interpolators: on an indexed plane, write the colour of every index of ppi->hbmDraw into hbmTarget.
 * On an RGB plane hbmTarget is null and the host copies the plane afterwards. Others return at once. */
MODULE_EXPORT void ModuleResolveIndexedPlane(void *pvContext, PlaneInfo *ppi, HostBitmap *hbmTarget);

/* Before a resize and before the end: drop all that depends on the size. No PlaneInfo comes with it. */
MODULE_EXPORT void ModuleCleanUp(void *pvContext);

/* Last call: release the instance. The control records are the host's and still stand. */
MODULE_EXPORT void ModuleDestroyControlStructure(void *pvContext);

#endif
