// OpenGLTest.cpp -- the start-up test that decides which modules can be used at all
#include <GL/glew.h> // before any other OpenGL header

#include "modules/OpenGLTest.h"

#include "modules/HiddenGLWindows.h"
#include "modules/ModuleRegistry.h"
#include "platform/GLWindow.h"
#include "platform/MainThread.h"
#include "platform/SharedLibrary.h"

#include <cstdio>

u32 bOpenGLAvailable = 0;
std::string OpenGLVersion = "Unknown";

namespace {

bool bTestPending = false; // [main-thread]

struct TestWindow {
    HostGLWindow *hwndGL;
    bool bFromTable;
};

TestWindow OpenTestWindow()
{
    if (HostGLWindow *hwndGL = CreateHiddenGLWindow())
        return {hwndGL, true};
    return {CreateGLWindow(1, 1), false};
}

void CloseTestWindow(const TestWindow &window)
{
    if (window.bFromTable)
        DestroyHiddenGLWindow(window.hwndGL);
    else
        DestroyGLWindow(window.hwndGL);
}

// The loader of OpenGL functions. It is found at run time: a program that is linked with it starts only where OpenGL
// is installed.
struct FunctionLoader {
    decltype(&glewInit) pfnInit;
    decltype(&glewGetExtension) pfnGetExtension;
    GLboolean *pbExperimental;
    void **ppfnCreateShader; // variables of the loader
    void **ppfnGenFramebuffers;
};

bool FindLoader(FunctionLoader *pLoader)
{
    SharedLibrary *pLibrary = LoadSystemLibrary(VD_GLEW_LIBRARY);
    pLoader->pfnInit = FindEntryPointAs<decltype(&glewInit)>(pLibrary, u"glewInit");
    pLoader->pfnGetExtension = FindEntryPointAs<decltype(&glewGetExtension)>(pLibrary, u"glewGetExtension");
    pLoader->pbExperimental = FindEntryPointAs<GLboolean *>(pLibrary, u"glewExperimental");
    pLoader->ppfnCreateShader = FindEntryPointAs<void **>(pLibrary, u"__glewCreateShader");
    pLoader->ppfnGenFramebuffers = FindEntryPointAs<void **>(pLibrary, u"__glewGenFramebuffers");
    return pLoader->pfnInit && pLoader->pfnGetExtension && pLoader->pbExperimental && pLoader->ppfnCreateShader &&
           pLoader->ppfnGenFramebuffers;
}

// Looks the functions up, and asks the version too: the loader of this platform gives an entry for every name that
// begins with "gl", whether or not the driver has the function.
bool DriverHasShadersAndFramebuffers(const FunctionLoader &loader)
{
    int nMajor = 0;
    if (std::sscanf(OpenGLVersion.c_str(), "%d", &nMajor) != 1 || !*loader.ppfnCreateShader ||
        !*loader.ppfnGenFramebuffers)
        return false;
    return nMajor >= 3 || (nMajor == 2 && loader.pfnGetExtension("GL_ARB_framebuffer_object"));
}

// With the test's context current.
bool TestCurrentContext()
{
    FunctionLoader loader;
    if (!FindLoader(&loader))
        return false;
    *loader.pbExperimental = GL_TRUE;
    const GLenum eResult = loader.pfnInit();
    const auto pfnGetString = reinterpret_cast<decltype(&glGetString)>(FindGLFunction("glGetString"));
    const void *pszVersion = pfnGetString ? pfnGetString(GL_VERSION) : nullptr;
    if (!pszVersion)
        return false;
    OpenGLVersion = static_cast<const char *>(pszVersion);
    // Without GLX, GLEW loads all functions and then misses the GLX display.
    const bool bLoaded = eResult == GLEW_OK || eResult == GLEW_ERROR_NO_GLX_DISPLAY;
    return bLoaded && DriverHasShadersAndFramebuffers(loader);
}

} // namespace

void ProbeOpenGL()
{
    ASSERT_MAIN_THREAD();
    bTestPending = false;
    const TestWindow window = OpenTestWindow();
    bool bPassed = false;
    if (window.hwndGL) {
        void *pContext = MakeTestContext(window.hwndGL);
        bPassed = pContext && TestCurrentContext();
        DestroyTestContext(window.hwndGL, pContext);
        CloseTestWindow(window);
    }
    bOpenGLAvailable = bPassed;
    if (!bPassed)
        MarkOpenGLModulesUnavailable();
}

void PutOffOpenGLTest()
{
    ASSERT_MAIN_THREAD();
    bTestPending = true;
}

void FinishOpenGLTest()
{
    ASSERT_MAIN_THREAD();
    if (bTestPending)
        ProbeOpenGL();
}

bool ModuleIsAvailable(const ModuleRecord &record)
{
    if (NeedsOpenGL(record.md))
        FinishOpenGLTest();
    return !record.md.bUnavailable;
}
