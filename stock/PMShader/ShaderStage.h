// ShaderStage.h -- the OpenGL side of an instance: its context, its pictures, drawing, reading back
#ifndef VORTICADE_SHADER_STAGE_H
#define VORTICADE_SHADER_STAGE_H

#include "ShaderPasses.h"
#include "../common/StockDrawing.h"

#define SOUND_HISTORY 512 // levels, one for every sixtieth of a second

// Zero-filled: closed.
struct ShaderStage {
    void *pDisplay, *pContext; // EGL
    uint32_t dwVertexArray, dwResolve;
    int32_t nColorsLocation;
    uint32_t dwSound, dwNoise; // pictures; 0: not made yet
    uint32_t adwTarget[2], adwFrame[2];
    int32_t nTargets, nTargetWidth, nTargetHeight;
    int32_t iTarget; // drawn last
    PassTargets passes;
};

// Makes a context of OpenGL 3.3 on the window and makes it current. False if there is none.
bool OpenStage(ShaderStage *pStage, const HostGLWindow *hwndGL);
// Makes its context current on this thread.
bool EnterStage(const ShaderStage &stage, const HostGLWindow *hwndGL);
// Null-safe for a closed one. The context has to be current, and the program freed.
void CloseStage(ShaderStage *pStage);
// The last picture becomes black.
void ForgetPictures(ShaderStage *pStage);
// afSound: two rows of SOUND_HISTORY. Draws the shader's picture onto the canvas: colours, or the palette index that
// belongs to their brightness. What differs from pass to pass is put into *pValues.
void DrawOnStage(ShaderStage *pStage, const ShaderProgram &program, const float *afSound, const Canvas &canvas,
                 UniformValues *pValues);

#endif
