// ShaderPasses.cpp -- the pictures that a shader draws for itself, one pass after the other, before its frame is done
#include "ShaderPasses.h"

#include "ShaderSize.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace {

#define TARGET_SIDE_MAX 8192
#define TARGETS_BYTES_MAX (1ll << 30) // of all together; larger ones are made coarser

struct Extent {
    int32_t nWidth, nHeight;
};

void FreeTarget(PassTarget *pTarget)
{
    glDeleteFramebuffers(2, pTarget->adwFrame);
    glDeleteTextures(2, pTarget->adwTexture);
    *pTarget = {};
}

// The texture unit of the target is the active one.
void NeedTarget(PassTarget *pTarget, Extent extent, bool bFloat)
{
    if (pTarget->adwFrame[0] && pTarget->nWidth == extent.nWidth && pTarget->nHeight == extent.nHeight &&
        pTarget->bFloat == bFloat)
        return;
    FreeTarget(pTarget);
    glGenFramebuffers(2, pTarget->adwFrame);
    glGenTextures(2, pTarget->adwTexture);
    for (int32_t i = 0; i < 2; i++) {
        glBindTexture(GL_TEXTURE_2D, pTarget->adwTexture[i]);
        for (const GLenum eName : std::initializer_list<GLenum>{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, eName, GL_LINEAR);
        for (const GLenum eName : std::initializer_list<GLenum>{GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glTexParameteri(GL_TEXTURE_2D, eName, GL_CLAMP_TO_EDGE);
        glTexImage2D(GL_TEXTURE_2D, 0, bFloat ? GL_RGBA32F : GL_RGBA16, extent.nWidth, extent.nHeight, 0, GL_RGBA,
                     GL_FLOAT, nullptr);
        glBindFramebuffer(GL_FRAMEBUFFER, pTarget->adwFrame[i]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pTarget->adwTexture[i], 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    pTarget->nWidth = extent.nWidth;
    pTarget->nHeight = extent.nHeight;
    pTarget->bFloat = bFloat;
}

int32_t WorkOutSide(const std::string &formula, const ShaderProgram &program, const UniformValues &values,
                    Extent picture, int32_t nUsual)
{
    const auto ValueOf = [&](std::string_view name, double *pdValue) {
        const auto it = std::find_if(program.aInput.begin(), program.aInput.end(),
                                     [&](const ShaderInput &input) { return input.name == name; });
        if (name == "WIDTH" || name == "HEIGHT")
            *pdValue = name == "WIDTH" ? picture.nWidth : picture.nHeight;
        else if (it != program.aInput.end())
            *pdValue = values.afInput[4 * (size_t)(it - program.aInput.begin())];
        else
            return false;
        return true;
    };
    double dSide = nUsual;
    if (!formula.empty())
        WorkOutSize(formula, ValueOf, &dSide);
    return (int32_t)std::clamp(dSide, 1.0, (double)TARGET_SIDE_MAX);
}

// Where several passes draw a target, the first one tells its size.
void FindExtents(const ShaderProgram &program, const UniformValues &values, Extent picture, Extent *pExtents)
{
    for (auto it = program.aPass.rbegin(); it != program.aPass.rend(); ++it)
        if (it->iTarget >= 0)
            pExtents[it->iTarget] = {WorkOutSide(it->width, program, values, picture, picture.nWidth),
                                     WorkOutSide(it->height, program, values, picture, picture.nHeight)};
    for (;;) {
        int64_t cb = 0;
        for (size_t i = 0; i < program.aTarget.size(); i++)
            cb += (int64_t)pExtents[i].nWidth * pExtents[i].nHeight * (program.aTarget[i].bFloat ? 32 : 16);
        if (cb <= TARGETS_BYTES_MAX)
            return;
        for (size_t i = 0; i < program.aTarget.size(); i++)
            pExtents[i] = {std::max(pExtents[i].nWidth / 2, 1), std::max(pExtents[i].nHeight / 2, 1)};
    }
}

void NeedTargets(PassTargets *pTargets, const ShaderProgram &program, const UniformValues &values, Extent picture)
{
    Extent asExtent[SHADER_TARGETS_MAX];
    std::fill_n(asExtent, SHADER_TARGETS_MAX, Extent{1, 1}); // of one that no pass draws
    FindExtents(program, values, picture, asExtent);
    for (size_t i = 0; i < SHADER_TARGETS_MAX; i++) {
        glActiveTexture(GL_TEXTURE0 + UNIT_TARGETS + (GLenum)i);
        if (i < program.aTarget.size())
            NeedTarget(&pTargets->as[i], asExtent[i], program.aTarget[i].bFloat);
        else if (pTargets->as[i].adwFrame[0])
            FreeTarget(&pTargets->as[i]); // of a version of the file that had more
    }
}

void BindTargets(const PassTargets &targets, const ShaderProgram &program)
{
    for (size_t i = 0; i < program.aTarget.size(); i++) {
        glActiveTexture(GL_TEXTURE0 + UNIT_TARGETS + (GLenum)i);
        glBindTexture(GL_TEXTURE_2D, targets.as[i].adwTexture[targets.as[i].iNow]);
    }
}

void DrawPass(const ShaderProgram &program, uint32_t dwFrame, Extent extent, int32_t iPass, UniformValues *pValues)
{
    float *pfSize = pValues->aafPlain[VALUE_RESOLUTION];
    pfSize[0] = (float)extent.nWidth;
    pfSize[1] = (float)extent.nHeight;
    pValues->aafPlain[VALUE_PASS][0] = (float)iPass;
    glBindFramebuffer(GL_FRAMEBUFFER, dwFrame);
    glViewport(0, 0, extent.nWidth, extent.nHeight);
    UseProgram(program, *pValues);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

void CopyTarget(const PassTarget &target, uint32_t dwPicture, Extent picture)
{
    const bool bSame = target.nWidth == picture.nWidth && target.nHeight == picture.nHeight;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, target.adwFrame[target.iNow]);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, dwPicture);
    glBlitFramebuffer(0, 0, target.nWidth, target.nHeight, 0, 0, picture.nWidth, picture.nHeight, GL_COLOR_BUFFER_BIT,
                      bSame ? GL_NEAREST : GL_LINEAR);
}

} // namespace

void DrawPasses(PassTargets *pTargets, const ShaderProgram &program, uint32_t dwPicture, int32_t nWidth,
                int32_t nHeight, UniformValues *pValues)
{
    const Extent picture = {nWidth, nHeight};
    NeedTargets(pTargets, program, *pValues, picture);
    for (size_t i = 0; i < program.aPass.size(); i++) {
        BindTargets(*pTargets, program);
        const int32_t iTarget = program.aPass[i].iTarget;
        if (iTarget < 0) {
            DrawPass(program, dwPicture, picture, (int32_t)i, pValues);
            continue;
        }
        PassTarget &target = pTargets->as[iTarget];
        DrawPass(program, target.adwFrame[target.iNow ^ 1], {target.nWidth, target.nHeight}, (int32_t)i, pValues);
        target.iNow ^= 1;
    }
    if (const int32_t iLast = program.aPass.back().iTarget; iLast >= 0)
        CopyTarget(pTargets->as[iLast], dwPicture, picture);
}

void FreePassTargets(PassTargets *pTargets)
{
    for (PassTarget &target : pTargets->as)
        if (target.adwFrame[0])
            FreeTarget(&target);
}
