// ShaderPasses.h -- the pictures that a shader draws for itself, one pass after the other, before its frame is done
#ifndef VORTICADE_SHADER_PASSES_H
#define VORTICADE_SHADER_PASSES_H

#include "ShaderProgram.h"

// A target as it stands on the current context. Zero-filled: not made yet.
struct PassTarget {
    uint32_t adwTexture[2], adwFrame[2]; // one to be read while the other is drawn
    int32_t iNow;                        // drawn last
    int32_t nWidth, nHeight;
    bool bFloat;
};

struct PassTargets {
    PassTarget as[SHADER_TARGETS_MAX];
};

// Draws every pass of the program, which has some. dwPicture: the framebuffer of the picture, nWidth x nHeight, into
// which passes without a target go, else the last target. Leaves another viewport and framebuffer behind.
void DrawPasses(PassTargets *pTargets, const ShaderProgram &program, uint32_t dwPicture, int32_t nWidth,
                int32_t nHeight, UniformValues *pValues);
void FreePassTargets(PassTargets *pTargets);

#endif
