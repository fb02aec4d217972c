// SharedLibrary.h -- dynamic libraries
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

struct SharedLibrary; // opaque; null means none

// Loads the library at the path. Null on failure; *psError then says why in the system's words. [main-thread]
SharedLibrary *LoadSharedLibrary(std::u16string_view path, std::string *psError);
// Loads a library of the system by the name that the loader finds it under, such as libEGL.so.1. Null on failure.
SharedLibrary *LoadSystemLibrary(const char *pszName);
// The exported symbol of that name, or null. The name is wide text and is looked up in the 8-bit code page.
void *FindEntryPoint(SharedLibrary *pLibrary, std::u16string_view name);
void UnloadSharedLibrary(SharedLibrary *pLibrary);

// The entry point as a function pointer of the wanted type.
template <typename Fn> Fn FindEntryPointAs(SharedLibrary *pLibrary, std::u16string_view name)
{
    return reinterpret_cast<Fn>(FindEntryPoint(pLibrary, name));
}
