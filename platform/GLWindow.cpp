// GLWindow.cpp -- hidden OpenGL surfaces through EGL
#include "platform/GLWindow.h"

#include "platform/GLDisplay.h"
#include "platform/MainThread.h"
#include "platform/Sanitizers.h"

#include <epoxy/egl.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

// Graphics drivers are not instrumented: the thread sanitizer does not see the locks inside them.
#ifdef VD_THREAD_SANITIZER
extern "C" const char *__tsan_default_suppressions()
{
    return "race:_dri.so\nrace:libgallium\nrace:libLLVM\n";
}
#endif

namespace {

constexpr EGLint CONFIGS_MAX = 256;

struct GLDisplay {
    EGLDisplay pDisplay; // initialised; null: none
    EGLConfig pConfig;
    bool bTried; // a failed search is not repeated before CloseGLDisplay
};

GLDisplay Display;            // [main-thread]
std::atomic<u32> nWindows{0}; // without a window no module has anything to make current
std::atomic<bool> bEverOpened{false};

bool IsColor8888(EGLDisplay pDisplay, EGLConfig pConfig)
{
    for (const EGLint nAttribute : {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE, EGL_ALPHA_SIZE}) {
        EGLint nBits = 0;
        if (!eglGetConfigAttrib(pDisplay, pConfig, nAttribute, &nBits) || nBits != 8)
            return false;
    }
    return true;
}

// EGL sorts deeper colours to the front, and among equals those without samples, depth and stencil.
EGLConfig ChooseConfig(EGLDisplay pDisplay)
{
    constexpr EGLint anWanted[] = {EGL_SURFACE_TYPE,
                                   EGL_PBUFFER_BIT,
                                   EGL_RENDERABLE_TYPE,
                                   EGL_OPENGL_BIT,
                                   EGL_RED_SIZE,
                                   8,
                                   EGL_GREEN_SIZE,
                                   8,
                                   EGL_BLUE_SIZE,
                                   8,
                                   EGL_ALPHA_SIZE,
                                   8,
                                   EGL_NONE};
    EGLConfig apConfig[CONFIGS_MAX];
    EGLint n = 0;
    if (!eglChooseConfig(pDisplay, anWanted, apConfig, CONFIGS_MAX, &n))
        return nullptr;
    for (EGLint i = 0; i < n; i++)
        if (IsColor8888(pDisplay, apConfig[i]))
            return apConfig[i];
    return nullptr;
}

// Some drivers open a display and then cannot make a context on it (a card without its kernel part, say).
bool CanMakeContext(EGLDisplay pDisplay, EGLConfig pConfig)
{
    EGLContext pContext =
        eglBindAPI(EGL_OPENGL_API) ? eglCreateContext(pDisplay, pConfig, EGL_NO_CONTEXT, nullptr) : EGL_NO_CONTEXT;
    if (!pContext)
        return false;
    eglDestroyContext(pDisplay, pContext);
    return true;
}

bool TryDisplay(EGLDisplay pDisplay)
{
    if (!UseGLDisplay(pDisplay))
        return false;
    EGLConfig pConfig = ChooseConfig(pDisplay);
    if (!pConfig || !CanMakeContext(pDisplay, pConfig)) {
        DropGLDisplay(pDisplay);
        return false;
    }
    Display.pDisplay = pDisplay;
    Display.pConfig = pConfig;
    return true;
}

bool TryHardwareDevices(PFNEGLGETPLATFORMDISPLAYEXTPROC pfnGetPlatformDisplay)
{
    GLDevice asDevice[GL_DEVICES_MAX];
    const u32 nDevices = ListGLDevices(asDevice);
    return std::any_of(asDevice, asDevice + nDevices, [&](const GLDevice &device) {
        return !device.bSoftware && TryDisplay(pfnGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device.pDevice, nullptr));
    });
}

// A graphics card first, then whatever draws without a window system, then the window system's display.
void OpenDisplay()
{
    if (!OpenGLIsInstalled())
        return;
    const char *pszClient = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto pfnGetPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (pfnGetPlatformDisplay && TryHardwareDevices(pfnGetPlatformDisplay))
        return;
    if (pfnGetPlatformDisplay && ListHasWord(pszClient, "EGL_MESA_platform_surfaceless") &&
        TryDisplay(pfnGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)))
        return;
    TryDisplay(eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

bool DisplayIsOpen()
{
    if (!Display.bTried) {
        Display.bTried = true;
        OpenDisplay();
        if (Display.pDisplay)
            bEverOpened = true;
    }
    return Display.pDisplay != nullptr;
}

void RenewSurface(HostGLWindow *hwndGL, i32 nWidth, i32 nHeight)
{
    if (hwndGL->pSurface)
        eglDestroySurface(hwndGL->pDisplay, hwndGL->pSurface);
    hwndGL->nWidth = std::max(nWidth, 1);
    hwndGL->nHeight = std::max(nHeight, 1);
    const EGLint anSize[] = {EGL_WIDTH, hwndGL->nWidth, EGL_HEIGHT, hwndGL->nHeight, EGL_NONE};
    hwndGL->pSurface = eglCreatePbufferSurface(hwndGL->pDisplay, hwndGL->pConfig, anSize);
}

// The module may have made a context current on a display of its own; its display is asked for, then, and one
// question tells both: without a current context there is no current display.
void ReleaseWhatIsCurrent()
{
    EGLDisplay pDisplay = eglGetCurrentDisplay();
    if (pDisplay)
        eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

} // namespace

HostGLWindow *CreateGLWindow(i32 nWidth, i32 nHeight)
{
    ASSERT_MAIN_THREAD();
    if (!DisplayIsOpen())
        return nullptr;
    auto *hwndGL = static_cast<HostGLWindow *>(std::calloc(1, sizeof(HostGLWindow)));
    if (!hwndGL)
        return nullptr;
    hwndGL->cbSize = sizeof(HostGLWindow);
    hwndGL->pDisplay = Display.pDisplay;
    hwndGL->pConfig = Display.pConfig;
    RenewSurface(hwndGL, nWidth, nHeight);
    if (!hwndGL->pSurface) {
        std::free(hwndGL);
        return nullptr;
    }
    nWindows++;
    return hwndGL;
}

void ResizeGLWindow(HostGLWindow *hwndGL, i32 nWidth, i32 nHeight)
{
    ASSERT_MAIN_THREAD();
    RenewSurface(hwndGL, nWidth, nHeight);
}

void DestroyGLWindow(HostGLWindow *hwndGL)
{
    ASSERT_MAIN_THREAD();
    if (!hwndGL)
        return;
    if (hwndGL->pSurface)
        eglDestroySurface(hwndGL->pDisplay, hwndGL->pSurface);
    std::free(hwndGL);
    nWindows--;
}

void ReleaseCurrentGL()
{
    if (nWindows.load(std::memory_order_relaxed) != 0)
        ReleaseWhatIsCurrent();
}

void ReleaseGLThread()
{
    if (!bEverOpened)
        return;
    ReleaseWhatIsCurrent();
    eglReleaseThread();
}

void CloseGLDisplay()
{
    ASSERT_MAIN_THREAD();
    if (!Display.pDisplay || DriverStays())
        return;
    ReleaseGLThread();
    DropGLDisplay(Display.pDisplay);
    Display = {};
}

void *MakeTestContext(HostGLWindow *hwndGL)
{
    if (!eglBindAPI(EGL_OPENGL_API))
        return nullptr;
    EGLContext pContext = eglCreateContext(hwndGL->pDisplay, hwndGL->pConfig, EGL_NO_CONTEXT, nullptr);
    if (pContext && !eglMakeCurrent(hwndGL->pDisplay, hwndGL->pSurface, hwndGL->pSurface, pContext)) {
        eglDestroyContext(hwndGL->pDisplay, pContext);
        return nullptr;
    }
    return pContext;
}

void DestroyTestContext(HostGLWindow *hwndGL, void *pContext)
{
    if (!pContext)
        return;
    if (eglGetCurrentContext() == pContext)
        eglMakeCurrent(hwndGL->pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(hwndGL->pDisplay, pContext);
}

void *FindGLFunction(const char *pszName)
{
    return reinterpret_cast<void *>(eglGetProcAddress(pszName));
}
