// SharedLibrary.cpp -- dynamic libraries
#include "platform/SharedLibrary.h"

#include "platform/Files.h"
#include "platform/Text.h"

#include <dlfcn.h>

SharedLibrary *LoadSharedLibrary(std::u16string_view path, std::string *psError)
{
    std::string sPath = NativePath(path);
    if (sPath.find('/') == std::string::npos)
        sPath.insert(0, "./"); // a bare name would be searched for in the system's folders
    void *pHandle = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!pHandle && psError)
        *psError = dlerror();
    return static_cast<SharedLibrary *>(pHandle);
}

SharedLibrary *LoadSystemLibrary(const char *pszName)
{
    return static_cast<SharedLibrary *>(dlopen(pszName, RTLD_LAZY | RTLD_LOCAL));
}

void *FindEntryPoint(SharedLibrary *pLibrary, std::u16string_view name)
{
    return pLibrary ? dlsym(pLibrary, ToUtf8(name).c_str()) : nullptr;
}

void UnloadSharedLibrary(SharedLibrary *pLibrary)
{
    if (pLibrary)
        dlclose(pLibrary);
}
