// OpenGLTest.h -- the start-up test that decides which modules can be used at all
#pragma once

#include "state/ModuleRecord.h"

#include <string>

extern u32 bOpenGLAvailable;
extern std::string OpenGLVersion; // "Unknown" until the test has read it

// Makes a context on a hidden window, loads the entry points and looks for shaders and framebuffers. On failure the
// modules that need OpenGL are marked as unavailable. Once, after the modules are loaded. [main-thread]
void ProbeOpenGL();

// The test loads a graphics driver, which takes longer than the rest of the start together: it may be put off until
// FinishOpenGLTest, which does nothing where no test waits. [main-thread]
void PutOffOpenGLTest();
void FinishOpenGLTest();
// Whether the module can be used. Where that depends on a test that was put off, the test is made now. [main-thread]
bool ModuleIsAvailable(const ModuleRecord &record);
