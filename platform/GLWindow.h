// GLWindow.h -- hidden OpenGL surfaces through EGL
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

// Makes a hidden surface (an EGL pbuffer, RGBA 8888, no depth buffer) of the size. The record stays at its address
// until DestroyGLWindow. Opens the EGL display on first use: a device or surfaceless one, which needs no window
// system. Null when there is no OpenGL. [main-thread]
HostGLWindow *CreateGLWindow(i32 nWidth, i32 nHeight);
// Renews the surface at the new size; on failure pSurface is null. A pbuffer cannot be resized. [main-thread]
void ResizeGLWindow(HostGLWindow *hwndGL, i32 nWidth, i32 nHeight);
// [main-thread]
void DestroyGLWindow(HostGLWindow *hwndGL);

// Releases whatever context a module left current on this thread: one that stays current here could not be made
// current on the next thread. Cheap when none is. [any-thread]
void ReleaseCurrentGL();
// Call when a thread ends that may have used OpenGL. [any-thread]
void ReleaseGLThread();
// Closes the display at the end of the process, after the last window. [main-thread]
void CloseGLDisplay();

// A context of the host's own on the surface, made current (for the start-up test), and its removal.
void *MakeTestContext(HostGLWindow *hwndGL);
void DestroyTestContext(HostGLWindow *hwndGL, void *pContext);
// The OpenGL function of that name; null: unknown. A driver that lacks it may be given an entry all the same.
void *FindGLFunction(const char *pszName);
