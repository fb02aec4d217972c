// PMShader.cpp -- PMShader.dll, a full draw module: a text file in the OpenGL shading language draws the picture
#include "ShaderControls.h"
#include "ShaderMessage.h"
#include "ShaderStage.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace {

#define SHADER_STEP_MOST_MS 1000 // after a longer pause the picture goes on from where it stood
#define SHADER_LOOK_MS 250       // how often the file is looked at
#define SOUND_LEVELS_PER_SECOND 60

struct ShaderTime {
    StockClock clock;
    uint32_t nStepMs;
    double dSeconds, dSoundSeconds;
    int32_t nFrame;
};

struct ShaderSound {
    float afHistory[2 * SOUND_HISTORY]; // newest first; the second row is calmer
    float fLevel, fSlow;
    double dWritten; // in levels, since the reset
};

struct ShaderMouse {
    float x, y, xClick, yClick;
    bool bDown, bClicked;
};

struct Shader {
    std::string path; // empty: none
    std::vector<ShaderControl> aControl;
    ShaderStage stage;
    ShaderProgram program;
    std::vector<ShaderPart> aPart; // the files of the last attempt, as they stood then
    std::vector<FileStamp> aSeen;  // at the last look
    uint64_t qwNextLook;
    bool bTried, bFaultShown;
    ShaderTime time;
    ShaderSound sound;
    ShaderMouse mouse;
    float afSeed[4];
    UniformValues values;
};

// ---- Compiling

void ShowFault(Shader *pShader, const PlaneInfo *ppi, const std::string &faults, bool bDraws)
{
    const char *pszWhat = bDraws                    ? " asks for more than it gets"
                          : pShader->stage.pContext ? " does not compile"
                                                    : " cannot run";
    const std::string heading = NameOfPath(pShader->path) + pszWhat;
    pShader->bFaultShown = true;
    if (!ppi->pfnShowMessage || !ppi->pfnShowMessage(FaultMessage(heading, faults).c_str()))
        fprintf(stderr, "%s\n%s%s", heading.c_str(), faults.c_str(), faults.ends_with('\n') ? "" : "\n");
}

void ShowMended(Shader *pShader, const PlaneInfo *ppi)
{
    if (pShader->bFaultShown && ppi->pfnShowMessage)
        ppi->pfnShowMessage(u"");
    pShader->bFaultShown = false;
}

// Faults of the header, with the file's name before each line.
std::string HeaderFaults(const ShaderText &text, const std::string &faults)
{
    std::string named;
    for (size_t i = 0; i < faults.size(); i = faults.find('\n', i) + 1)
        named += text.aPart[0].name + ":" + faults.substr(i, faults.find('\n', i) + 1 - i);
    return named;
}

// The stage's context is current. A version that does not compile leaves the old one running.
void CompileFile(Shader *pShader, const PlaneInfo *ppi)
{
    ShaderText text;
    ShaderHeader header = {};
    std::string faults, headerFaults;
    bool bBuilt = ReadShaderText(pShader->path, &text, &faults);
    if (bBuilt && !text.header.empty() && !ReadShaderHeader(text.header, text.nHeaderLine, &header, &headerFaults))
        headerFaults = HeaderFaults(text, headerFaults);
    bBuilt = bBuilt && BuildProgram(text, header, &pShader->program, &faults);
    pShader->bTried = true;
    pShader->aPart = std::move(text.aPart);
    pShader->aSeen.clear();
    if (!bBuilt || !headerFaults.empty())
        ShowFault(pShader, ppi, headerFaults + faults, bBuilt);
    else
        ShowMended(pShader, ppi);
    if (bBuilt)
        pShader->values.afInput.assign(4 * header.aInput.size(), 0);
}

bool FilesChanged(Shader *pShader)
{
    std::vector<FileStamp> aNow;
    bool bChanged = false, bThere = true;
    for (const ShaderPart &part : pShader->aPart) {
        aNow.push_back(StampOfFile(part.path));
        bChanged |= aNow.back() != part.stamp;
        bThere &= aNow.back() != FileStamp{};
    }
    // An editor may still be writing: the same change twice counts, and a file that is gone for a moment does not.
    const bool bSettled = aNow == pShader->aSeen;
    pShader->aSeen = aNow;
    return bChanged && bThere && bSettled;
}

// In a deterministic run the file is what it was at the start.
void LookAtFile(Shader *pShader, const PlaneInfo *ppi)
{
    const uint64_t qwTick = ppi->hdc ? ppi->hdc->qwTick : 0;
    if (!ppi->hdc || ppi->hdc->bFixedClock || qwTick < pShader->qwNextLook)
        return;
    pShader->qwNextLook = qwTick + SHADER_LOOK_MS;
    if (FilesChanged(pShader))
        CompileFile(pShader, ppi);
}

// ---- What the shader is told

void StepTime(Shader *pShader, const PlaneInfo *ppi)
{
    ShaderTime &time = pShader->time;
    const uint64_t qwTick = ppi->hdc ? ppi->hdc->qwTick : 0;
    if (!time.clock.bStarted || qwTick != time.clock.qwLastTick)
        time.nStepMs = ElapsedMs(&time.clock, qwTick, SHADER_STEP_MOST_MS);
    time.dSeconds += time.nStepMs * 0.001 / ReadTimeScale(ppi);
    time.nFrame++;
}

float StepSeconds(const Shader *pShader, const PlaneInfo *ppi)
{
    return (float)pShader->time.nStepMs * 0.001f / (float)ReadTimeScale(ppi);
}

void PushLevel(ShaderSound *pSound)
{
    for (float *pfRow : {pSound->afHistory, pSound->afHistory + SOUND_HISTORY})
        std::copy_backward(pfRow, pfRow + SOUND_HISTORY - 1, pfRow + SOUND_HISTORY);
    pSound->afHistory[0] = pSound->fLevel;
    pSound->afHistory[SOUND_HISTORY] = pSound->fSlow;
}

void StepSound(Shader *pShader, const PlaneInfo *ppi)
{
    ShaderSound &sound = pShader->sound;
    const float fSeconds = (float)pShader->time.nStepMs * 0.001f, fRaw = ppi->pSound ? ppi->pSound->fRawLevel : 0;
    sound.fLevel = fRaw > 0 ? std::min(fRaw, 1.0f) : 0;
    sound.fSlow += (sound.fLevel - sound.fSlow) * (1 - std::exp(-fSeconds / 0.4f));
    pShader->time.dSoundSeconds += sound.fLevel * fSeconds / (float)ReadTimeScale(ppi);
    sound.dWritten += fSeconds * SOUND_LEVELS_PER_SECOND;
    for (; sound.dWritten >= 1; sound.dWritten--)
        PushLevel(&sound);
}

// xy: where the left button is or was last held; zw: where it went down, z negative while it is up, w negative but in
// the frame of the click.
void StepMouse(Shader *pShader, const PlaneInfo *ppi)
{
    ShaderMouse &mouse = pShader->mouse;
    const HostWindow *pWindow = ppi->hwndVisuals;
    const bool bDown = pWindow && pWindow->nWidth > 0 && pWindow->nHeight > 0 && (pWindow->dwButtons & 1);
    if (bDown) {
        mouse.x = (float)pWindow->xMouse * (float)ppi->nWidth / (float)pWindow->nWidth;
        mouse.y = (float)pWindow->yMouse * (float)ppi->nHeight / (float)pWindow->nHeight;
    }
    mouse.bClicked = bDown && !mouse.bDown;
    mouse.bDown = bDown;
    if (mouse.bClicked) {
        mouse.xClick = mouse.x;
        mouse.yClick = mouse.y;
    }
}

void PutValue(UniformValues *pValues, HostValue eValue, std::initializer_list<float> numbers)
{
    std::copy(numbers.begin(), numbers.end(), pValues->aafPlain[eValue]);
}

void PutPlace(Shader *pShader, const Canvas &canvas)
{
    const ShaderMouse &mouse = pShader->mouse;
    const float fWidth = (float)canvas.nWidth, fHeight = (float)canvas.nHeight;
    UniformValues *pValues = &pShader->values;
    PutValue(pValues, VALUE_RESOLUTION, {fWidth, fHeight, 1});
    PutValue(pValues, VALUE_PASS, {0});
    PutValue(pValues, VALUE_SIZES, {SOUND_HISTORY, 2, 1, 256, 256, 1, fWidth, fHeight, 1, 256, 256, 1});
    PutValue(
        pValues, VALUE_MOUSE,
        {mouse.x, mouse.y, mouse.bDown ? mouse.xClick : -mouse.xClick, mouse.bClicked ? mouse.yClick : -mouse.yClick});
    PutValue(pValues, VALUE_MOUSE_AT, {mouse.x, mouse.y});
    PutValue(pValues, VALUE_MOUSE_UNIT, {mouse.x / fWidth, mouse.y / fHeight});
}

void PutTime(Shader *pShader, float fSeconds)
{
    const ShaderTime &time = pShader->time;
    UniformValues *pValues = &pShader->values;
    const float fTime = (float)time.dSeconds;
    PutValue(pValues, VALUE_TIME, {fTime});
    PutValue(pValues, VALUE_TIME_DELTA, {fSeconds});
    PutValue(pValues, VALUE_FRAME, {(float)(time.nFrame - 1)});
    PutValue(pValues, VALUE_FRAME_RATE, {fSeconds > 0 ? 1 / fSeconds : 60});
    PutValue(pValues, VALUE_DATE, {2000, 0, 1, fTime}); // no clock but the host's: films repeat
    PutValue(pValues, VALUE_RATE, {44100});
    PutValue(pValues, VALUE_SOUND, {pShader->sound.fLevel});
    PutValue(pValues, VALUE_SOUND_SLOW, {pShader->sound.fSlow});
    PutValue(pValues, VALUE_SOUND_TIME, {(float)time.dSoundSeconds});
    PutValue(pValues, VALUE_SEED, {pShader->afSeed[0], pShader->afSeed[1], pShader->afSeed[2], pShader->afSeed[3]});
}

void PutInputs(Shader *pShader)
{
    for (size_t i = 0; i < pShader->program.aInput.size(); i++)
        ReadShaderInput(pShader->aControl, pShader->program.aInput[i], &pShader->values.afInput[4 * i]);
}

void StepAll(Shader *pShader, const PlaneInfo *ppi)
{
    StepTime(pShader, ppi);
    StepSound(pShader, ppi);
    StepMouse(pShader, ppi);
    StepShaderControls(&pShader->aControl, StepSeconds(pShader, ppi));
}

} // namespace

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"GLSL Shader",
                   u"Runs pixel shaders from text files");
    pmd->bNeedsOpenGL = 1;
}

MODULE_EXPORT void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl,
                                               int32_t *pnControls)
{
    Shader *pShader = new (std::nothrow) Shader();
    *ppvContext = pShader;
    if (!pShader || !ppi->lpszShaderPath)
        return;
    pShader->path = NarrowText(ppi->lpszShaderPath);
    // Faults are told when it is compiled.
    ShaderText text;
    ShaderHeader header = {};
    std::string faults;
    if (ReadShaderText(pShader->path, &text, &faults) || !text.header.empty())
        ReadShaderHeader(text.header, text.nHeaderLine, &header, &faults);
    AddShaderControls({pfnAllocControl, pnControls}, header.aInput, &pShader->aControl);
}

MODULE_EXPORT void ModulePreInitialize(void *, PlaneInfo *)
{
}

MODULE_EXPORT void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    Shader *pShader = (Shader *)pvContext;
    if (!pShader || pShader->path.empty())
        return;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    for (float &fSeed : pShader->afSeed)
        fSeed = RandomUnit(&random);
    pShader->time = {};
    pShader->sound = {};
    pShader->mouse = {};
    ResetShaderControls(&pShader->aControl);
    const bool bOpen =
        pShader->stage.pContext ? EnterStage(pShader->stage, ppi->hwndGL) : OpenStage(&pShader->stage, ppi->hwndGL);
    if (bOpen)
        ForgetPictures(&pShader->stage);
    if (!pShader->bTried && bOpen)
        CompileFile(pShader, ppi);
    else if (!pShader->bTried && ppi->hwndGL)
        ShowFault(pShader, ppi, "it needs OpenGL 3.3, which the driver does not offer", false);
    pShader->bTried = true;
}

MODULE_EXPORT uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    Shader *pShader = (Shader *)pvContext;
    Canvas canvas;
    if (!pShader || !pShader->stage.pContext || !OpenCanvas(&canvas, ppi) || !EnterStage(pShader->stage, ppi->hwndGL))
        return 0;
    if (canvas.nWidth > ppi->hwndGL->nWidth || canvas.nHeight > ppi->hwndGL->nHeight)
        return 0;
    LookAtFile(pShader, ppi);
    StepAll(pShader, ppi);
    if (!pShader->program.dwProgram)
        return 0;
    PutPlace(pShader, canvas);
    PutTime(pShader, StepSeconds(pShader, ppi));
    PutInputs(pShader);
    DrawOnStage(&pShader->stage, pShader->program, pShader->sound.afHistory, canvas, &pShader->values);
    return 0;
}

MODULE_EXPORT void ModuleResolveIndexedPlane(void *, PlaneInfo *, HostBitmap *)
{
}

MODULE_EXPORT void ModuleCleanUp(void *pvContext)
{
    Shader *pShader = (Shader *)pvContext;
    if (!pShader)
        return;
    CloseStage(&pShader->stage);
    pShader->program = {}; // went with the context
    pShader->bTried = false;
}

MODULE_EXPORT void ModuleDestroyControlStructure(void *pvContext)
{
    delete (Shader *)pvContext;
}
