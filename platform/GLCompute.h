// GLCompute.h -- OpenGL contexts that compute on a graphics card, without any window or surface
#pragma once

#include "platform/BaseTypes.h"

#include <string>

// What a thread had current before it entered a context.
struct GLBefore {
    void *pDisplay;
    void *pDraw;
    void *pRead;
    void *pContext;
    u32 nApi;
};

// A context of OpenGL 4.3 core or later. Zero-filled: none.
struct GLCompute {
    void *pDisplay;
    void *pContext;
    bool bTellsReset;  // the driver says when the card was reset; it does not wait for the program to notice
    bool bKeepsMapped; // buffers may stay mapped while the card uses them (OpenGL 4.4)
    GLBefore before;
};

// Opens a context on the first device that EGL lists and that has OpenGL 4.3 on real hardware, or on a software
// renderer if such is asked for. It is current on no thread afterwards. *psRenderer: the driver's name for the device.
// Returns false where there is none. [main-thread]
bool CreateGLCompute(GLCompute *pCompute, bool bSoftware, std::string *psRenderer);
// Null-safe for a zero-filled record, which it leaves.
void DestroyGLCompute(GLCompute *pCompute);

// Makes the context current on this thread, until LeaveGLCompute brings back what was current before. Returns false,
// with nothing changed, when the driver refuses. [main-thread]
bool EnterGLCompute(GLCompute *pCompute);
void LeaveGLCompute(GLCompute *pCompute);
