// HiddenGLWindows.h -- the table of hidden OpenGL windows, one per module instance that needs OpenGL
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

constexpr u32 HIDDEN_GL_WINDOWS_MAX = 80;

// A hidden window at the buffer size; null if the table is full or there is no OpenGL. [main-thread]
HostGLWindow *CreateHiddenGLWindow();
void DestroyHiddenGLWindow(HostGLWindow *hwndGL);
// Gives every hidden window of the process the buffer size. Modules must have been cleaned up before.
void ResizeHiddenGLWindows(i32 nWidth, i32 nHeight);
