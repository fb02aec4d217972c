/* hosttypes.h -- the records behind the handles that cross the module boundary
 *
 * A handle in a boundary record is a pointer to one of the records below. Each begins with its own size,
 * so that it can grow at its end without breaking a module: a module that needs a field which was added
 * later tests cbSize first. Integers are little-endian, pointers 64 bits wide, text is UTF-16 with a
 * terminating 0. Compiles as C11 and as C++20.
 */
#ifndef VORTICADE_HOSTTYPES_H
#define VORTICADE_HOSTTYPES_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

/* Asserts one field's place; a changed layout must not compile. */
#define VD_ASSERT_OFFSET(record, field, offset) \
    static_assert(offsetof(record, field) == (offset), #record "." #field)

/* A picture in memory. Handle names: hbmDraw, hbmResolved, hbmTarget.
 *
 * A pixel is a 32-bit word: byte 0 blue, byte 1 green, byte 2 red, byte 3 alpha: no meaning in pictures, but the
 * mixer can test the whole word, so write 0. Row 0 is the BOTTOM row of the picture; row y begins at
 * pBits + y * cbRow. The bits may be read and written from 0 to nHeight * cbRow - 1 and nowhere else.
 * Owned by the host. In the lists of a plane the record and its bits stay in place from ModulePreInitialize to
 * ModuleCleanUp. Post-processing may find another bitmap in each call. Take it from the call's PlaneInfo. */
typedef struct HostBitmap {
    uint32_t cbSize;        /* 32 */
    int32_t nWidth;         /* pixels */
    int32_t nHeight;        /* rows */
    uint32_t nBitsPerPixel; /* 32 */
    uint64_t cbRow;         /* bytes from row to row: nWidth x 4 */
    void *pBits;            /* first byte of the bottom row, aligned to 64 bytes */
} HostBitmap;

static_assert(sizeof(HostBitmap) == 32, "HostBitmap");
VD_ASSERT_OFFSET(HostBitmap, nWidth, 4);
VD_ASSERT_OFFSET(HostBitmap, nHeight, 8);
VD_ASSERT_OFFSET(HostBitmap, nBitsPerPixel, 12);
VD_ASSERT_OFFSET(HostBitmap, cbRow, 16);
VD_ASSERT_OFFSET(HostBitmap, pBits, 24);

/* A device context: each plane has one, and so has post-processing. Handle name: hdc.
 *
 * A module takes its time and its chance from here and from nowhere else: then a film rendered twice is
 * the same film, byte for byte. Owned by the host, used by one thread at a time. */
typedef struct HostContext {
    uint32_t cbSize;       /* 40 */
    uint32_t bFixedClock;  /* non-zero in a deterministic run: do not look at any clock of your own */
    HostBitmap *pSelected; /* the selected bitmap; null: nothing selected */

    /* Selects hbm (null: nothing) and returns the bitmap that was selected before. */
    HostBitmap *(*pfnSelectBitmap)(struct HostContext *hdc, HostBitmap *hbm);

    uint64_t qwTick; /* the frame's millisecond tick; the same for all modules of one frame */
    uint64_t qwSeed; /* seed for the module's own generator, read at ModuleInitialize; fresh for every
                        bring-up and every reset of every instance */
} HostContext;

static_assert(sizeof(HostContext) == 40, "HostContext");
VD_ASSERT_OFFSET(HostContext, bFixedClock, 4);
VD_ASSERT_OFFSET(HostContext, pSelected, 8);
VD_ASSERT_OFFSET(HostContext, pfnSelectBitmap, 16);
VD_ASSERT_OFFSET(HostContext, qwTick, 24);
VD_ASSERT_OFFSET(HostContext, qwSeed, 32);

/* A hidden drawing surface for OpenGL. Handle name: hwndGL.
 *
 * pDisplay, pConfig and pSurface are an initialised EGLDisplay, an EGLConfig (desktop OpenGL, RGBA 8888,
 * no depth buffer) and an EGLSurface (a pbuffer of nWidth x nHeight). The module calls
 * eglBindAPI(EGL_OPENGL_API), makes a context of its own on them in ModuleInitialize, makes it current at
 * the start of every call that draws, and destroys it in ModuleCleanUp. It need not release the context
 * at the end of a call: the host releases whatever is current after every call, since the next call may
 * come on another thread. The record stays at its address for the life of the instance; after a resize
 * its size and pSurface are new (they change between ModuleCleanUp and ModulePreInitialize). */
typedef struct HostGLWindow {
    uint32_t cbSize;     /* 40 */
    int32_t nWidth;      /* pixels: the buffer size */
    int32_t nHeight;
    uint32_t dwReserved; /* 0 */
    void *pDisplay;      /* EGLDisplay */
    void *pConfig;       /* EGLConfig */
    void *pSurface;      /* EGLSurface; null if a resize could not renew it: draw nothing then */
} HostGLWindow;

static_assert(sizeof(HostGLWindow) == 40, "HostGLWindow");
VD_ASSERT_OFFSET(HostGLWindow, nWidth, 4);
VD_ASSERT_OFFSET(HostGLWindow, nHeight, 8);
VD_ASSERT_OFFSET(HostGLWindow, dwReserved, 12);
VD_ASSERT_OFFSET(HostGLWindow, pDisplay, 16);
VD_ASSERT_OFFSET(HostGLWindow, pConfig, 24);
VD_ASSERT_OFFSET(HostGLWindow, pSurface, 32);

/* The visuals window, on which the finished picture is shown. Handle name: hwndVisuals.
 *
 * Refreshed by the host before each frame; constant during a frame. Mouse coordinates are client pixels
 * of the window, (0, 0) at its bottom left like in the bitmaps. The window is usually larger or smaller
 * than the bitmaps: scale xMouse by bitmap width / nWidth. */
typedef struct HostWindow {
    uint32_t cbSize;     /* 40 */
    uint32_t bVisible;   /* 0: hidden, minimised, or there is no window at all */
    uint64_t qwNativeId; /* window id of the window system; 0 when there is none */
    int32_t nWidth;      /* client size in device pixels */
    int32_t nHeight;
    int32_t xMouse;
    int32_t yMouse;
    uint32_t dwButtons;  /* pressed buttons: 1 left, 2 right, 4 middle */
    uint32_t dwReserved; /* 0 */
} HostWindow;

static_assert(sizeof(HostWindow) == 40, "HostWindow");
VD_ASSERT_OFFSET(HostWindow, bVisible, 4);
VD_ASSERT_OFFSET(HostWindow, qwNativeId, 8);
VD_ASSERT_OFFSET(HostWindow, nWidth, 16);
VD_ASSERT_OFFSET(HostWindow, nHeight, 20);
VD_ASSERT_OFFSET(HostWindow, xMouse, 24);
VD_ASSERT_OFFSET(HostWindow, yMouse, 28);
VD_ASSERT_OFFSET(HostWindow, dwButtons, 32);
VD_ASSERT_OFFSET(HostWindow, dwReserved, 36);

#endif
