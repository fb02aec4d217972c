// GLCompute.cpp -- OpenGL contexts that compute on a graphics card, without any window or surface
#include "platform/GLCompute.h"

#include "platform/GLDisplay.h"
#include "platform/MainThread.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cctype>

namespace {

constexpr int VERSION_NEEDED = 43;

// Parts of the names that software renderers go by, also behind layers that pass their calls on.
constexpr const char *apszSoftware[] = {"llvmpipe", "softpipe", "swrast", "swiftshader", "software", "basic render"};

bool IsSoftwareName(std::string sName)
{
    std::transform(sName.begin(), sName.end(), sName.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::any_of(std::begin(apszSoftware), std::end(apszSoftware),
                       [&](const char *psz) { return sName.find(psz) != std::string::npos; });
}

// Any configuration will do: nothing is drawn.
EGLConfig AnyConfig(EGLDisplay pDisplay)
{
    constexpr EGLint anWanted[] = {EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig pConfig = nullptr;
    EGLint n = 0;
    return eglChooseConfig(pDisplay, anWanted, &pConfig, 1, &n) && n > 0 ? pConfig : nullptr;
}

EGLContext MakeContext(EGLDisplay pDisplay, bool bTellsReset)
{
    const EGLint anVersion[] = {EGL_CONTEXT_MAJOR_VERSION,
                                VERSION_NEEDED / 10,
                                EGL_CONTEXT_MINOR_VERSION,
                                VERSION_NEEDED % 10,
                                EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                bTellsReset ? EGL_CONTEXT_OPENGL_RESET_NOTIFICATION_STRATEGY : EGL_NONE,
                                EGL_LOSE_CONTEXT_ON_RESET,
                                EGL_CONTEXT_OPENGL_ROBUST_ACCESS,
                                EGL_TRUE,
                                EGL_NONE};
    const bool bNeedsNone = ListHasWord(eglQueryString(pDisplay, EGL_EXTENSIONS), "EGL_KHR_no_config_context");
    EGLConfig pConfig = bNeedsNone ? nullptr : AnyConfig(pDisplay);
    return bNeedsNone || pConfig ? eglCreateContext(pDisplay, pConfig, EGL_NO_CONTEXT, anVersion) : EGL_NO_CONTEXT;
}

GLBefore WhatIsCurrent()
{
    return {eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW), eglGetCurrentSurface(EGL_READ),
            eglGetCurrentContext(), eglQueryAPI()};
}

void BringBack(EGLDisplay pDisplay, const GLBefore &before)
{
    if (before.pContext)
        eglMakeCurrent(before.pDisplay, before.pDraw, before.pRead, before.pContext);
    else
        eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglBindAPI(before.nApi);
}

// Opens a context on the display, which has been counted; leaves *pCompute empty on failure.
bool TryDisplay(GLCompute *pCompute, EGLDisplay pDisplay)
{
    if (!ListHasWord(eglQueryString(pDisplay, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context"))
        return false;
    const EGLenum nApi = eglQueryAPI();
    if (!eglBindAPI(EGL_OPENGL_API))
        return false;
    bool bTellsReset = true;
    EGLContext pContext = MakeContext(pDisplay, true);
    if (!pContext) {
        bTellsReset = false;
        pContext = MakeContext(pDisplay, false);
    }
    eglBindAPI(nApi);
    if (pContext)
        *pCompute = {pDisplay, pContext, bTellsReset, false, {}};
    return pContext != nullptr;
}

// With the device's context open: whether it is what was asked for.
bool LooksRight(GLCompute *pCompute, bool bSoftware, std::string *psRenderer)
{
    if (!EnterGLCompute(pCompute))
        return false;
    const auto *psz = reinterpret_cast<const char *>(glGetString(GL_RENDERER));
    *psRenderer = psz ? psz : "";
    const bool bComputes = epoxy_gl_version() >= VERSION_NEEDED;
    pCompute->bTellsReset &= epoxy_gl_version() >= 45 || epoxy_has_gl_extension("GL_KHR_robustness");
    pCompute->bKeepsMapped = epoxy_gl_version() >= 44 || epoxy_has_gl_extension("GL_ARB_buffer_storage");
    LeaveGLCompute(pCompute);
    return psz && bComputes && IsSoftwareName(*psRenderer) == bSoftware;
}

bool TryDevice(GLCompute *pCompute, const GLDevice &device, bool bSoftware, std::string *psRenderer)
{
    EGLDisplay pDisplay = device.bSoftware == bSoftware ? UseGLDevice(device.pDevice) : EGL_NO_DISPLAY;
    if (!pDisplay)
        return false;
    if (!TryDisplay(pCompute, pDisplay)) {
        DropGLDisplay(pDisplay);
        return false;
    }
    if (LooksRight(pCompute, bSoftware, psRenderer))
        return true;
    DestroyGLCompute(pCompute);
    return false;
}

} // namespace

bool CreateGLCompute(GLCompute *pCompute, bool bSoftware, std::string *psRenderer)
{
    ASSERT_MAIN_THREAD();
    *pCompute = {};
    if (!OpenGLIsInstalled())
        return false;
    GLDevice asDevice[GL_DEVICES_MAX];
    const u32 nDevices = ListGLDevices(asDevice);
    return std::any_of(asDevice, asDevice + nDevices,
                       [&](const GLDevice &device) { return TryDevice(pCompute, device, bSoftware, psRenderer); });
}

void DestroyGLCompute(GLCompute *pCompute)
{
    ASSERT_MAIN_THREAD();
    if (pCompute->pContext)
        eglDestroyContext(pCompute->pDisplay, pCompute->pContext);
    DropGLDisplay(pCompute->pDisplay);
    *pCompute = {};
}

bool EnterGLCompute(GLCompute *pCompute)
{
    ASSERT_MAIN_THREAD();
    pCompute->before = WhatIsCurrent();
    if (eglBindAPI(EGL_OPENGL_API) &&
        eglMakeCurrent(pCompute->pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, pCompute->pContext))
        return true;
    eglBindAPI(pCompute->before.nApi);
    return false;
}

void LeaveGLCompute(GLCompute *pCompute)
{
    BringBack(pCompute->pDisplay, pCompute->before);
}
