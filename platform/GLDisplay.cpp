// GLDisplay.cpp -- what all users of OpenGL share: is it installed, which devices are there, displays and their users
#include "platform/GLDisplay.h"

#include "platform/MainThread.h"
#include "platform/SharedLibrary.h"

#include <dlfcn.h>
#include <epoxy/egl.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace {

// EGL keeps one state for a display, however often it is initialised, and closes it for everybody.
struct DisplayUse {
    EGLDisplay pDisplay; // null: entry is free
    u32 nUsers;
};

DisplayUse asUse[GL_DEVICES_MAX + 2]; // [main-thread]

DisplayUse *FindUse(EGLDisplay pDisplay)
{
    const auto it = std::find_if(std::begin(asUse), std::end(asUse),
                                 [&](const DisplayUse &use) { return use.pDisplay == pDisplay; });
    return it == std::end(asUse) ? nullptr : &*it;
}

template <typename Fn> Fn FindExtension(const char *pszName)
{
    return reinterpret_cast<Fn>(eglGetProcAddress(pszName));
}

} // namespace

bool OpenGLIsInstalled()
{
    static const bool bInstalled = [] {
        setenv("EGL_LOG_LEVEL", "fatal", 0); // what a driver misses is none of the user's business
        return LoadSystemLibrary("libEGL.so.1") &&
               (LoadSystemLibrary("libOpenGL.so.0") || LoadSystemLibrary("libGL.so.1")); // they stay loaded
    }();
    return bInstalled;
}

u32 ListGLDevices(GLDevice *asDevice)
{
    ASSERT_MAIN_THREAD();
    const char *pszClient = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const bool bLists =
        ListHasWord(pszClient, "EGL_EXT_device_base") ||
        (ListHasWord(pszClient, "EGL_EXT_device_enumeration") && ListHasWord(pszClient, "EGL_EXT_device_query"));
    if (!bLists || !ListHasWord(pszClient, "EGL_EXT_platform_device"))
        return 0;
    const auto pfnQueryDevices = FindExtension<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const auto pfnQueryString = FindExtension<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    EGLDeviceEXT apDevice[GL_DEVICES_MAX];
    EGLint n = 0;
    if (!pfnQueryDevices || !pfnQueryString || !pfnQueryDevices(GL_DEVICES_MAX, apDevice, &n))
        return 0;
    for (EGLint i = 0; i < n; i++)
        asDevice[i] = {apDevice[i],
                       ListHasWord(pfnQueryString(apDevice[i], EGL_EXTENSIONS), "EGL_MESA_device_software")};
    return static_cast<u32>(n);
}

void *UseGLDevice(void *pDevice)
{
    ASSERT_MAIN_THREAD();
    const auto pfnGetPlatformDisplay = FindExtension<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    EGLDisplay pDisplay =
        pfnGetPlatformDisplay ? pfnGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, pDevice, nullptr) : EGL_NO_DISPLAY;
    return UseGLDisplay(pDisplay) ? pDisplay : nullptr;
}

bool UseGLDisplay(void *pDisplay)
{
    ASSERT_MAIN_THREAD();
    if (!pDisplay)
        return false;
    DisplayUse *pUse = FindUse(pDisplay);
    if (!pUse)
        pUse = FindUse(EGL_NO_DISPLAY);
    if (!pUse || !eglInitialize(pDisplay, nullptr, nullptr))
        return false;
    *pUse = {pDisplay, pUse->nUsers + 1};
    return true;
}

bool DriverStays()
{
    static const bool bStays = dlsym(RTLD_DEFAULT, "__asan_init") != nullptr;
    return bStays;
}

void DropGLDisplay(void *pDisplay)
{
    ASSERT_MAIN_THREAD();
    DisplayUse *pUse = pDisplay ? FindUse(pDisplay) : nullptr;
    if (!pUse || --pUse->nUsers > 0)
        return;
    if (!DriverStays())
        eglTerminate(pDisplay);
    *pUse = {};
}

bool ListHasWord(const char *pszList, std::string_view word)
{
    std::string_view list = pszList ? pszList : "";
    while (!list.empty()) {
        const size_t cch = std::min(list.find(' '), list.size());
        if (list.substr(0, cch) == word)
            return true;
        list.remove_prefix(std::min(cch + 1, list.size()));
    }
    return false;
}
