// OpenGLTest.h -- the start-up test that decides which modules can be used at all
#pragma once

#include "platform/BaseTypes.h"

#include <string>

extern u32 bOpenGLAvailable;
extern std::string OpenGLVersion; // "Unknown" until the test has read it

// Makes a context on a hidden window, loads the entry points and looks for shaders and framebuffers. On failure the
// modules that need OpenGL are marked as unavailable. Once, after the modules are loaded. [main-thread]
void ProbeOpenGL();
