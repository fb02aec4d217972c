// GLDisplay.h -- what all users of OpenGL share: is it installed, which devices are there, displays and their users
#pragma once

#include "platform/BaseTypes.h"

#include <string_view>

constexpr u32 GL_DEVICES_MAX = 32;

// A device that EGL lists.
struct GLDevice {
    void *pDevice;
    bool bSoftware; // says itself that it is a software renderer; others may still turn out to be one
};

// Whether the libraries of EGL and OpenGL can be loaded. Nothing else here or of OpenGL may be called before this has
// said so; they are loaded on the first call. [any-thread]
bool OpenGLIsInstalled();

// Lists up to GL_DEVICES_MAX devices and returns their number; 0 also where EGL cannot list any. [main-thread]
u32 ListGLDevices(GLDevice *asDevice);
// The device's display, initialised, for one more user; null on failure. [main-thread]
void *UseGLDevice(void *pDevice);
// Initialises the display for one more user. Returns false, and counts none, when that fails. [main-thread]
bool UseGLDisplay(void *pDisplay);
// One user less; the last one closes it, unless the driver stays. [main-thread]
void DropGLDisplay(void *pDisplay);
// Whether displays stay open to the end: the leak checker of the address sanitizer, which a module can bring into a
// plain program, cannot place what a driver leaves behind when it is unloaded. [any-thread]
bool DriverStays();

// Whether the words between spaces contain this one. A null list has none.
bool ListHasWord(const char *pszList, std::string_view word);
