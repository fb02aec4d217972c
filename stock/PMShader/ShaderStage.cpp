// ShaderStage.cpp -- the OpenGL side of an instance: its context, its pictures, drawing, reading back
#include "ShaderStage.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

namespace {

#define NOISE_SIDE 256

// A pixel is a word whose lowest byte is blue: an index goes into blue and green.
constexpr const char *RESOLVE_SHADER = R"(#version 330 core
uniform sampler2D vd_Picture;
uniform int vd_nColors;
out vec4 vd_Out;
void main()
{
    vec3 color = texelFetch(vd_Picture, ivec2(gl_FragCoord.xy), 0).rgb;
    if (vd_nColors == 0) {
        vd_Out = vec4(color, 0.0);
        return;
    }
    int index = int(dot(color, vec3(0.2126, 0.7152, 0.0722)) * float(vd_nColors - 1) + 0.5);
    index = clamp(index, 0, vd_nColors - 1);
    vd_Out = vec4(0.0, float(index >> 8) / 255.0, float(index & 255) / 255.0, 0.0);
}
)";
constexpr const char *COVER_SHADER = R"(#version 330 core
void main()
{
    vec2 corner = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2);
    gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0);
}
)";

EGLContext MakeContext(EGLDisplay pDisplay, EGLConfig pConfig)
{
    static const EGLint anWanted[] = {EGL_CONTEXT_MAJOR_VERSION_KHR,
                                      3,
                                      EGL_CONTEXT_MINOR_VERSION_KHR,
                                      3,
                                      EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR,
                                      EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT_KHR,
                                      EGL_NONE};
    return eglBindAPI(EGL_OPENGL_API) ? eglCreateContext(pDisplay, pConfig, EGL_NO_CONTEXT, anWanted) : EGL_NO_CONTEXT;
}

GLuint MakeTexture(GLenum eFilter, GLenum eWrap)
{
    GLuint uTexture = 0;
    glGenTextures(1, &uTexture);
    glBindTexture(GL_TEXTURE_2D, uTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, (GLint)eFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, (GLint)eFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, (GLint)eWrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, (GLint)eWrap);
    return uTexture;
}

// The same in every instance and every run.
void MakeNoise(ShaderStage *pStage)
{
    std::vector<uint64_t> aqw(NOISE_SIDE * NOISE_SIDE / 2);
    StockRandom random = {1};
    for (uint64_t &qw : aqw)
        qw = NextRandom(&random);
    pStage->dwNoise = MakeTexture(GL_LINEAR, GL_REPEAT);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, NOISE_SIDE, NOISE_SIDE, 0, GL_RGBA, GL_UNSIGNED_BYTE, aqw.data());
}

void UploadSound(ShaderStage *pStage, const float *afSound)
{
    if (!pStage->dwSound) {
        pStage->dwSound = MakeTexture(GL_LINEAR, GL_CLAMP_TO_EDGE);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, SOUND_HISTORY, 2, 0, GL_RED, GL_FLOAT, nullptr);
    }
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, SOUND_HISTORY, 2, GL_RED, GL_FLOAT, afSound);
}

void FreeTargets(ShaderStage *pStage)
{
    glDeleteFramebuffers(pStage->nTargets, pStage->adwFrame);
    glDeleteTextures(pStage->nTargets, pStage->adwTarget);
    pStage->nTargets = 0;
    pStage->iTarget = 0;
}

// Sixteen bits a channel: palettes have more colours than a byte can number, and trails fade to black.
// Two only where one is drawn from the other: at the largest size each takes half a gibibyte.
void NeedTargets(ShaderStage *pStage, int32_t nTargets, int32_t nWidth, int32_t nHeight)
{
    if (pStage->nTargets == nTargets && pStage->nTargetWidth == nWidth && pStage->nTargetHeight == nHeight)
        return;
    FreeTargets(pStage);
    glActiveTexture(GL_TEXTURE0 + UNIT_LAST);
    glGenFramebuffers(nTargets, pStage->adwFrame);
    for (int32_t i = 0; i < nTargets; i++) {
        pStage->adwTarget[i] = MakeTexture(GL_LINEAR, GL_CLAMP_TO_EDGE);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA16, nWidth, nHeight, 0, GL_RGBA, GL_UNSIGNED_SHORT, nullptr);
        glBindFramebuffer(GL_FRAMEBUFFER, pStage->adwFrame[i]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pStage->adwTarget[i], 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    pStage->nTargets = nTargets;
    pStage->nTargetWidth = nWidth;
    pStage->nTargetHeight = nHeight;
}

void BindPictures(ShaderStage *pStage, const ShaderProgram &program, const float *afSound)
{
    if (program.bReadsSound) {
        glActiveTexture(GL_TEXTURE0 + UNIT_SOUND);
        glBindTexture(GL_TEXTURE_2D, pStage->dwSound);
        UploadSound(pStage, afSound);
    }
    if (program.bReadsNoise) {
        glActiveTexture(GL_TEXTURE0 + UNIT_NOISE);
        if (!pStage->dwNoise)
            MakeNoise(pStage);
        glBindTexture(GL_TEXTURE_2D, pStage->dwNoise);
    }
}

// bClear: first, for shaders that leave pixels out.
void DrawCover(bool bClear)
{
    if (bClear)
        glClear(GL_COLOR_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

// Into a target of its own, then from there into the window's surface.
void DrawThroughTarget(ShaderStage *pStage, const ShaderProgram &program, const Canvas &canvas, UniformValues *pValues)
{
    NeedTargets(pStage, program.bReadsLast ? 2 : 1, canvas.nWidth, canvas.nHeight);
    glActiveTexture(GL_TEXTURE0 + UNIT_LAST);
    if (program.bReadsLast) {
        glBindTexture(GL_TEXTURE_2D, pStage->adwTarget[pStage->iTarget]);
        pStage->iTarget ^= 1;
    }
    if (program.aPass.empty()) {
        glBindFramebuffer(GL_FRAMEBUFFER, pStage->adwFrame[pStage->iTarget]);
        UseProgram(program, *pValues);
        DrawCover(true);
    } else {
        DrawPasses(&pStage->passes, program, pStage->adwFrame[pStage->iTarget], canvas.nWidth, canvas.nHeight, pValues);
        glViewport(0, 0, canvas.nWidth, canvas.nHeight);
        glActiveTexture(GL_TEXTURE0 + UNIT_LAST);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, pStage->adwTarget[pStage->iTarget]);
    glUseProgram(pStage->dwResolve);
    glUniform1i(pStage->nColorsLocation, canvas.bIndexed ? canvas.nColors : 0);
    DrawCover(false);
}

void DrawDirectly(const ShaderProgram &program, const UniformValues &values)
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE); // the alpha byte of a pixel stays 0
    UseProgram(program, values);
    DrawCover(true);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void PrepareContext(ShaderStage *pStage)
{
    glGenVertexArrays(1, &pStage->dwVertexArray);
    glBindVertexArray(pStage->dwVertexArray);
    glDisable(GL_DITHER);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    pStage->dwResolve = LinkProgram(COVER_SHADER, RESOLVE_SHADER);
    pStage->nColorsLocation = glGetUniformLocation(pStage->dwResolve, "vd_nColors");
    glUseProgram(pStage->dwResolve);
    glUniform1i(glGetUniformLocation(pStage->dwResolve, "vd_Picture"), UNIT_LAST);
}

} // namespace

bool OpenStage(ShaderStage *pStage, const HostGLWindow *hwndGL)
{
    *pStage = {};
    if (!hwndGL || !hwndGL->pSurface)
        return false;
    pStage->pDisplay = hwndGL->pDisplay;
    pStage->pContext = MakeContext(hwndGL->pDisplay, hwndGL->pConfig);
    if (!pStage->pContext)
        return false;
    if (EnterStage(*pStage, hwndGL)) {
        PrepareContext(pStage);
        if (pStage->dwResolve)
            return true;
        eglMakeCurrent(pStage->pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
    eglDestroyContext(pStage->pDisplay, pStage->pContext);
    *pStage = {};
    return false;
}

bool EnterStage(const ShaderStage &stage, const HostGLWindow *hwndGL)
{
    return stage.pContext && hwndGL && hwndGL->pSurface && eglBindAPI(EGL_OPENGL_API) &&
           eglMakeCurrent(stage.pDisplay, hwndGL->pSurface, hwndGL->pSurface, stage.pContext);
}

void CloseStage(ShaderStage *pStage)
{
    // What the context holds goes with it.
    if (pStage->pContext) {
        eglMakeCurrent(pStage->pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(pStage->pDisplay, pStage->pContext);
    }
    *pStage = {};
}

void ForgetPictures(ShaderStage *pStage)
{
    FreeTargets(pStage);
    FreePassTargets(&pStage->passes);
}

void DrawOnStage(ShaderStage *pStage, const ShaderProgram &program, const float *afSound, const Canvas &canvas,
                 UniformValues *pValues)
{
    glViewport(0, 0, canvas.nWidth, canvas.nHeight);
    BindPictures(pStage, program, afSound);
    if (canvas.bIndexed || program.bReadsLast || !program.aPass.empty())
        DrawThroughTarget(pStage, program, canvas, pValues);
    else
        DrawDirectly(program, *pValues);
    if (program.aPass.empty())
        FreePassTargets(&pStage->passes); // of a version of the file that had some
    glPixelStorei(GL_PACK_ROW_LENGTH, (GLint)(canvas.cbRow / 4));
    glReadPixels(0, 0, canvas.nWidth, canvas.nHeight, GL_BGRA, GL_UNSIGNED_BYTE, canvas.pbBits);
}
