// ModuleRegistry.h -- the table of module libraries
#pragma once

#include "state/ModuleRecord.h"

#include <string_view>

// Adds the library at the path to the table. 0 ends the search: the library cannot be loaded or the table cannot
// grow. 1: go on; the library may still be no module (no ModuleGetDescription: passed over in silence; another
// entry point missing: named on standard error). Not after the first slot was made: slots point into the records.
// [main-thread]
u32 LoadModule(std::u16string_view path);
// Loads the files of the module folder in the order of their names, up to the first failure.
void LoadModuleFolder();
// Unloads every library and frees the table. After the last slot is gone.
void UnloadModules();

// The record of a library file name without regard to case, or null. The first of several wins.
ModuleRecord *FindModuleRecord(std::u16string_view dll);
// The record of a number, or null.
ModuleRecord *GetModuleRecord(u32 iModule);
u32 ModuleCount();

bool NeedsOpenGL(const ModuleDescription &md);
// Some module cannot work without OpenGL.
bool AnyModuleNeedsOpenGL();
// Marks the modules that cannot work without OpenGL.
void MarkOpenGLModulesUnavailable();
