// GLTriangle.cpp -- test module: draws a triangle with OpenGL and never releases its context
//
// The lower left half of the picture gets a gradient (red grows to the right, green to the top, blue counts the
// frames since ModuleInitialize), the rest the clear colour 0x336699. That the next call may come on another thread
// is the host's care: whatever stays current after a call, the host must release.
#include "module.h"

#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdlib>
#include <cstring>

namespace {

#define GL_FUNCTIONS(X)                                                                                                \
    X(PFNGLCREATESHADERPROC, glCreateShader)                                                                           \
    X(PFNGLSHADERSOURCEPROC, glShaderSource)                                                                           \
    X(PFNGLCOMPILESHADERPROC, glCompileShader)                                                                         \
    X(PFNGLDELETESHADERPROC, glDeleteShader)                                                                           \
    X(PFNGLCREATEPROGRAMPROC, glCreateProgram)                                                                         \
    X(PFNGLATTACHSHADERPROC, glAttachShader)                                                                           \
    X(PFNGLLINKPROGRAMPROC, glLinkProgram)                                                                             \
    X(PFNGLGETPROGRAMIVPROC, glGetProgramiv)                                                                           \
    X(PFNGLUSEPROGRAMPROC, glUseProgram)                                                                               \
    X(PFNGLDELETEPROGRAMPROC, glDeleteProgram)                                                                         \
    X(PFNGLGETUNIFORMLOCATIONPROC, glGetUniformLocation)                                                               \
    X(PFNGLUNIFORM3FPROC, glUniform3f)                                                                                 \
    X(PFNGLGENVERTEXARRAYSPROC, glGenVertexArrays)                                                                     \
    X(PFNGLBINDVERTEXARRAYPROC, glBindVertexArray)                                                                     \
    X(PFNGLDELETEVERTEXARRAYSPROC, glDeleteVertexArrays)                                                               \
    X(PFNGLGENFRAMEBUFFERSPROC, glGenFramebuffers)                                                                     \
    X(PFNGLBINDFRAMEBUFFERPROC, glBindFramebuffer)                                                                     \
    X(PFNGLDELETEFRAMEBUFFERSPROC, glDeleteFramebuffers)                                                               \
    X(PFNGLCHECKFRAMEBUFFERSTATUSPROC, glCheckFramebufferStatus)                                                       \
    X(PFNGLFRAMEBUFFERRENDERBUFFERPROC, glFramebufferRenderbuffer)                                                     \
    X(PFNGLGENRENDERBUFFERSPROC, glGenRenderbuffers)                                                                   \
    X(PFNGLBINDRENDERBUFFERPROC, glBindRenderbuffer)                                                                   \
    X(PFNGLDELETERENDERBUFFERSPROC, glDeleteRenderbuffers)                                                             \
    X(PFNGLRENDERBUFFERSTORAGEPROC, glRenderbufferStorage)                                                             \
    X(decltype(&::glViewport), glViewport)                                                                             \
    X(decltype(&::glClearColor), glClearColor)                                                                         \
    X(decltype(&::glClear), glClear)                                                                                   \
    X(decltype(&::glDrawArrays), glDrawArrays)                                                                         \
    X(decltype(&::glPixelStorei), glPixelStorei)                                                                       \
    X(decltype(&::glReadPixels), glReadPixels)

struct Functions {
#define MEMBER(type, name) type name;
    GL_FUNCTIONS(MEMBER)
};

struct Instance {
    HostGLWindow *hwndGL;
    EGLContext pContext; // null: not brought up, or there is no OpenGL
    Functions gl;
    GLuint uProgram, uArray, uFramebuffer, uRenderbuffer;
    GLint nFrameUniform;
    uint32_t nFrames; // since ModuleInitialize
};

constexpr const char *pszVertex = R"(#version 330 core
void main() { gl_Position = vec4(gl_VertexID == 1 ? 1 : -1, gl_VertexID == 2 ? 1 : -1, 0, 1); }
)";

constexpr const char *pszFragment = R"(#version 330 core
uniform vec3 frame; // width, height, blue
out vec4 color;
void main() { color = vec4(gl_FragCoord.xy / frame.xy, frame.z, 1); }
)";

bool LoadFunctions(Functions *pgl)
{
    bool bAll = true;
#define LOAD(type, name) bAll &= (pgl->name = reinterpret_cast<type>(eglGetProcAddress(#name))) != nullptr;
    GL_FUNCTIONS(LOAD)
    return bAll;
}

bool MakeCurrent(const Instance *pi)
{
    const HostGLWindow *hwndGL = pi->hwndGL;
    return pi->pContext && eglBindAPI(EGL_OPENGL_API) &&
           eglMakeCurrent(hwndGL->pDisplay, hwndGL->pSurface, hwndGL->pSurface, pi->pContext);
}

void MakeContext(Instance *pi)
{
    constexpr EGLint anAttribute[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3, EGL_NONE};
    if (eglBindAPI(EGL_OPENGL_API))
        pi->pContext = eglCreateContext(pi->hwndGL->pDisplay, pi->hwndGL->pConfig, EGL_NO_CONTEXT, anAttribute);
}

void AttachShader(const Functions &gl, GLuint uProgram, GLenum eKind, const char *pszSource)
{
    const GLuint uShader = gl.glCreateShader(eKind);
    gl.glShaderSource(uShader, 1, &pszSource, nullptr);
    gl.glCompileShader(uShader);
    gl.glAttachShader(uProgram, uShader);
    gl.glDeleteShader(uShader);
}

bool MakeProgram(Instance *pi)
{
    const Functions &gl = pi->gl;
    GLint bLinked = 0;
    pi->uProgram = gl.glCreateProgram();
    AttachShader(gl, pi->uProgram, GL_VERTEX_SHADER, pszVertex);
    AttachShader(gl, pi->uProgram, GL_FRAGMENT_SHADER, pszFragment);
    gl.glLinkProgram(pi->uProgram);
    gl.glGetProgramiv(pi->uProgram, GL_LINK_STATUS, &bLinked);
    gl.glUseProgram(pi->uProgram);
    pi->nFrameUniform = gl.glGetUniformLocation(pi->uProgram, "frame");
    gl.glGenVertexArrays(1, &pi->uArray);
    gl.glBindVertexArray(pi->uArray);
    return bLinked;
}

bool MakeFramebuffer(Instance *pi, int nWidth, int nHeight)
{
    const Functions &gl = pi->gl;
    gl.glGenRenderbuffers(1, &pi->uRenderbuffer);
    gl.glBindRenderbuffer(GL_RENDERBUFFER, pi->uRenderbuffer);
    gl.glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, nWidth, nHeight);
    gl.glGenFramebuffers(1, &pi->uFramebuffer);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, pi->uFramebuffer);
    gl.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, pi->uRenderbuffer);
    return gl.glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void DropContext(Instance *pi)
{
    if (!MakeCurrent(pi))
        return;
    const Functions &gl = pi->gl;
    gl.glDeleteFramebuffers(1, &pi->uFramebuffer);
    gl.glDeleteRenderbuffers(1, &pi->uRenderbuffer);
    gl.glDeleteVertexArrays(1, &pi->uArray);
    gl.glDeleteProgram(pi->uProgram);
    eglDestroyContext(pi->hwndGL->pDisplay, pi->pContext); // still current: it goes when the host releases it
    pi->pContext = nullptr;
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_FULL | MODULECAP_RGB;
    pmd->bNeedsOpenGL = 1;
    std::memcpy(pmd->szName, u"Test GL Triangle", sizeof u"Test GL Triangle");
    std::memcpy(pmd->szBuild, u"1", sizeof u"1");
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = std::calloc(1, sizeof(Instance));
}

void ModulePreInitialize(void *, PlaneInfo *)
{
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    auto *pi = static_cast<Instance *>(pvContext);
    pi->nFrames = 0;
    pi->hwndGL = ppi->hwndGL;
    if (pi->pContext || !pi->hwndGL) // a reset keeps the context
        return;
    MakeContext(pi);
    if (MakeCurrent(pi) &&
        (!LoadFunctions(&pi->gl) || !MakeProgram(pi) || !MakeFramebuffer(pi, ppi->nWidth, ppi->nHeight)))
        DropContext(pi);
}

uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    auto *pi = static_cast<Instance *>(pvContext);
    if (!MakeCurrent(pi))
        return 0;
    const Functions &gl = pi->gl;
    pi->nFrames++;
    gl.glViewport(0, 0, ppi->nWidth, ppi->nHeight);
    gl.glClearColor(0x33 / 255.0f, 0x66 / 255.0f, 0x99 / 255.0f, 1);
    gl.glClear(GL_COLOR_BUFFER_BIT);
    gl.glUniform3f(pi->nFrameUniform, static_cast<float>(ppi->nWidth), static_cast<float>(ppi->nHeight),
                   static_cast<float>(pi->nFrames & 0xFF) / 255.0f);
    gl.glDrawArrays(GL_TRIANGLES, 0, 3);
    gl.glPixelStorei(GL_PACK_ROW_LENGTH, static_cast<GLint>(ppi->hbmDraw->cbRow / 4));
    gl.glReadPixels(0, 0, ppi->nWidth, ppi->nHeight, GL_BGRA, GL_UNSIGNED_BYTE, ppi->hbmDraw->pBits);
    return 0;
}

void ModuleResolveIndexedPlane(void *, PlaneInfo *, HostBitmap *)
{
}

void ModuleCleanUp(void *pvContext)
{
    DropContext(static_cast<Instance *>(pvContext));
}

void ModuleDestroyControlStructure(void *pvContext)
{
    std::free(pvContext);
}
