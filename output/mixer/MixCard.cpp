// MixCard.cpp -- runs one-pass programs of the mix kernels on a graphics card
#include "output/mixer/MixCard.h"

#include "output/mixer/ForRanges.h"
#include "output/mixer/MixShader.h"
#include "platform/MainThread.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstring>
#include <iterator>

bool (*pfnLoseCard)(CardStage eStage) = nullptr;

namespace {

constexpr GLuint64 WAIT_NANOSECONDS = 2'000'000'000; // a card that takes longer hangs
constexpr u32 ERRORS_MAX = 16;                       // a lost context may report errors without end
constexpr size_t COPY_GRAIN = 256 * 1024;            // bytes that one core copies at a time
constexpr u32 RESULT = MIX_SHADER_IMAGES;
constexpr u32 IMAGES = std::size(MixCard().aiImage);
static_assert(RESULT + 1 == IMAGES);

constexpr const char *apszWhy[] = {"it could not be opened",
                                   "its context could not be made current",
                                   "its driver did not compile the kernel",
                                   "it had no memory for the pictures",
                                   "it refused the kernel",
                                   "it did not finish in time",
                                   "its result could not be read",
                                   "it was reset"};
static_assert(std::size(apszWhy) == static_cast<size_t>(CardStage::Count));

// What a program is to the shader.
struct CardProgram {
    u32 nImages;
    const u32 *apImage[MIX_SHADER_IMAGES];
    GLint anStep[MIX_STEPS_MAX][4];
    GLuint anWeight[MIX_STEPS_MAX];
    i32 iResult;
    u32 *pTo; // null: no step writes, or several
};

bool Loses(CardStage eStage)
{
    return pfnLoseCard && pfnLoseCard(eStage);
}

bool NoErrors()
{
    bool bNone = true;
    for (u32 i = 0; i < ERRORS_MAX && glGetError() != GL_NO_ERROR; i++)
        bNone = false;
    return bNone;
}

// --- Opening ---

u32 CompileShader()
{
    const std::string sText = MixShaderText();
    const char *pszText = sText.c_str();
    const u32 iProgram = glCreateShaderProgramv(GL_COMPUTE_SHADER, 1, &pszText);
    GLint bLinked = 0;
    if (iProgram)
        glGetProgramiv(iProgram, GL_LINK_STATUS, &bLinked);
    return bLinked ? iProgram : 0;
}

// With the context current.
bool PrepareCard(MixCard *pCard)
{
    pCard->iProgram = CompileShader();
    if (!pCard->iProgram)
        return false;
    glUseProgram(pCard->iProgram);
    pCard->iSize = glGetUniformLocation(pCard->iProgram, "vSize");
    pCard->iImages = glGetUniformLocation(pCard->iProgram, "nImages");
    pCard->iSteps = glGetUniformLocation(pCard->iProgram, "nSteps");
    pCard->iResult = glGetUniformLocation(pCard->iProgram, "iResult");
    pCard->iStep = glGetUniformLocation(pCard->iProgram, "avStep");
    pCard->iWeight = glGetUniformLocation(pCard->iProgram, "anWeight");
    const std::vector<u32> table = MixDisplacements();
    glGenBuffers(1, &pCard->iDisplacements);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, MIX_BINDING_DISPLACEMENTS, pCard->iDisplacements);
    glBufferData(GL_SHADER_STORAGE_BUFFER, static_cast<GLsizeiptr>(table.size() * sizeof(u32)), table.data(),
                 GL_STATIC_DRAW);
    GLint64 cbMax = 0;
    glGetInteger64v(GL_MAX_SHADER_STORAGE_BLOCK_SIZE, &cbMax);
    pCard->cbImageMax = static_cast<size_t>(std::max<GLint64>(cbMax, 0));
    return NoErrors();
}

// --- Buffers ---

void *MakeMapped(u32 iBuffer, size_t cb, GLbitfield fAccess, GLbitfield fStorage)
{
    constexpr GLbitfield fKept = GL_MAP_PERSISTENT_BIT | GL_MAP_COHERENT_BIT;
    glBindBuffer(GL_COPY_READ_BUFFER, iBuffer);
    glBufferStorage(GL_COPY_READ_BUFFER, static_cast<GLsizeiptr>(cb), nullptr, fAccess | fKept | fStorage);
    return glMapBufferRange(GL_COPY_READ_BUFFER, 0, static_cast<GLsizeiptr>(cb), fAccess | fKept);
}

void DeleteBuffers(MixCard *pCard)
{
    glDeleteBuffers(IMAGES, pCard->aiImage); // unmaps, too
    glDeleteBuffers(1, &pCard->iUpload);
    glDeleteBuffers(1, &pCard->iDownload);
    std::fill(std::begin(pCard->aiImage), std::end(pCard->aiImage), 0u);
    pCard->iUpload = pCard->iDownload = 0;
    pCard->pUpload = nullptr;
    pCard->pDownload = nullptr;
    pCard->cbImage = 0;
}

// Makes all buffers for pictures of this size; they are renewed when the size changes.
bool HaveBuffers(MixCard *pCard, size_t cbImage)
{
    if (pCard->cbImage == cbImage)
        return true;
    DeleteBuffers(pCard);
    glGenBuffers(IMAGES, pCard->aiImage);
    for (u32 i = 0; i < IMAGES; i++) {
        glBindBufferBase(GL_SHADER_STORAGE_BUFFER, i, pCard->aiImage[i]);
        glBufferData(GL_SHADER_STORAGE_BUFFER, static_cast<GLsizeiptr>(cbImage), nullptr,
                     pCard->bPersistent ? GL_DYNAMIC_COPY
                     : i == RESULT      ? GL_STREAM_READ
                                        : GL_STREAM_DRAW);
    }
    if (pCard->bPersistent) {
        glGenBuffers(1, &pCard->iUpload);
        glGenBuffers(1, &pCard->iDownload);
        pCard->pUpload = static_cast<u8 *>(
            MakeMapped(pCard->iUpload, cbImage * MIX_SHADER_IMAGES, GL_MAP_WRITE_BIT, GL_CLIENT_STORAGE_BIT));
        pCard->pDownload =
            static_cast<u8 *>(MakeMapped(pCard->iDownload, cbImage, GL_MAP_READ_BIT, GL_CLIENT_STORAGE_BIT));
    }
    if (!NoErrors() || (pCard->bPersistent && (!pCard->pUpload || !pCard->pDownload)))
        return false;
    pCard->cbImage = cbImage;
    return true;
}

void CopyOnAllCores(void *pTo, const void *pFrom, size_t cb)
{
    ForRanges(cb, COPY_GRAIN, [&](size_t iFirst, size_t iEnd) {
        std::memcpy(static_cast<u8 *>(pTo) + iFirst, static_cast<const u8 *>(pFrom) + iFirst, iEnd - iFirst);
    });
}

void CopyBetween(u32 iFrom, size_t cbOffset, u32 iTo, size_t cb)
{
    glBindBuffer(GL_COPY_READ_BUFFER, iFrom);
    glBindBuffer(GL_COPY_WRITE_BUFFER, iTo);
    glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, static_cast<GLintptr>(cbOffset), 0,
                        static_cast<GLsizeiptr>(cb));
}

// The card takes one picture while the next one is copied for it.
void Upload(const MixCard &card, const CardProgram &prog)
{
    for (u32 i = 0; i < prog.nImages; i++) {
        if (card.pUpload) {
            CopyOnAllCores(card.pUpload + i * card.cbImage, prog.apImage[i], card.cbImage);
            CopyBetween(card.iUpload, i * card.cbImage, card.aiImage[i], card.cbImage);
            glFlush();
        } else {
            glBindBuffer(GL_COPY_WRITE_BUFFER, card.aiImage[i]);
            glBufferSubData(GL_COPY_WRITE_BUFFER, 0, static_cast<GLsizeiptr>(card.cbImage), prog.apImage[i]);
        }
    }
}

// --- Running ---

i32 PlaceOf(CardProgram *pProg, const MixOperand &from)
{
    if (!from.pImage)
        return from.iStep < 0 ? MIX_PLACE_ZERO : MIX_PLACE_STEPS + from.iStep;
    u32 i = 0;
    while (i < pProg->nImages && pProg->apImage[i] != from.pImage)
        i++;
    if (i == MIX_SHADER_IMAGES)
        return -1;
    pProg->apImage[i] = from.pImage;
    pProg->nImages = std::max(pProg->nImages, i + 1);
    return MIX_PLACE_IMAGES + static_cast<i32>(i);
}

// Returns false when the program does not fit the shader: too many images, or not exactly one result.
bool TranslateProgram(CardProgram *pProg, const MixProgram &prog, const u32 *anWeight)
{
    *pProg = {};
    for (u32 s = 0; s < prog.nSteps; s++) {
        const MixStep &step = prog.asStep[s];
        GLint(&anStep)[4] = pProg->anStep[s];
        anStep[0] = static_cast<GLint>(step.eKernel);
        for (u32 n = 0; n < KernelSources(step.eKernel); n++) {
            anStep[n + 1] = PlaceOf(pProg, step.asFrom[n]);
            if (anStep[n + 1] < 0)
                return false;
        }
        pProg->anWeight[s] = anWeight[step.iWeight];
        if (step.pTo && pProg->pTo)
            return false;
        if (step.pTo) {
            pProg->pTo = step.pTo;
            pProg->iResult = MIX_PLACE_STEPS + static_cast<i32>(s);
        }
    }
    return pProg->pTo != nullptr;
}

void Dispatch(const MixCard &card, const CardProgram &cprog, const MixProgram &prog)
{
    const GLsizei nSteps = static_cast<GLsizei>(prog.nSteps);
    glUniform2i(card.iSize, prog.nWidth, prog.nHeight);
    glUniform1i(card.iImages, static_cast<GLint>(cprog.nImages));
    glUniform1i(card.iSteps, nSteps);
    glUniform1i(card.iResult, cprog.iResult);
    glUniform4iv(card.iStep, nSteps, cprog.anStep[0]);
    glUniform1uiv(card.iWeight, nSteps, cprog.anWeight);
    glDispatchCompute((static_cast<u32>(prog.nWidth) + MIX_GROUP_WIDTH - 1) / MIX_GROUP_WIDTH,
                      (static_cast<u32>(prog.nHeight) + MIX_GROUP_HEIGHT - 1) / MIX_GROUP_HEIGHT, 1);
    glMemoryBarrier(GL_BUFFER_UPDATE_BARRIER_BIT);
    if (card.bPersistent)
        CopyBetween(card.aiImage[RESULT], 0, card.iDownload, card.cbImage);
}

bool WaitForCard()
{
    GLsync pFence = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    const GLenum eResult = pFence ? glClientWaitSync(pFence, GL_SYNC_FLUSH_COMMANDS_BIT, WAIT_NANOSECONDS) : 0;
    glDeleteSync(pFence);
    return eResult == GL_ALREADY_SIGNALED || eResult == GL_CONDITION_SATISFIED;
}

void Download(const MixCard &card, u32 *pTo)
{
    if (card.pDownload) {
        CopyOnAllCores(pTo, card.pDownload, card.cbImage);
        return;
    }
    glBindBuffer(GL_COPY_READ_BUFFER, card.aiImage[RESULT]);
    glGetBufferSubData(GL_COPY_READ_BUFFER, 0, static_cast<GLsizeiptr>(card.cbImage), pTo);
}

bool WasReset(const MixCard &card)
{
    return card.compute.bTellsReset && glGetGraphicsResetStatus() != GL_NO_ERROR;
}

// With the context current and the kernel there: the stage at which the card was lost, or Count.
CardStage MixThere(MixCard *pCard, const CardProgram &cprog, const MixProgram &prog, size_t cbImage)
{
    if (Loses(CardStage::Upload) || !HaveBuffers(pCard, cbImage))
        return CardStage::Upload;
    Upload(*pCard, cprog);
    Dispatch(*pCard, cprog, prog);
    if (Loses(CardStage::Run) || !NoErrors())
        return CardStage::Run;
    if (Loses(CardStage::Wait) || !WaitForCard())
        return CardStage::Wait;
    Download(*pCard, cprog.pTo);
    if (Loses(CardStage::Download) || !NoErrors())
        return CardStage::Download;
    return Loses(CardStage::Reset) || WasReset(*pCard) ? CardStage::Reset : CardStage::Count;
}

CardOutcome LostAt(CardStage eStage, const char **pszWhy)
{
    *pszWhy = apszWhy[static_cast<size_t>(eStage)];
    return CardOutcome::Lost;
}

CardOutcome RunThere(MixCard *pCard, const CardProgram &cprog, const MixProgram &prog, const char **pszWhy)
{
    if (Loses(CardStage::Compile) || (!pCard->iProgram && !PrepareCard(pCard)))
        return LostAt(CardStage::Compile, pszWhy);
    const size_t cbImage = static_cast<size_t>(prog.nWidth) * static_cast<size_t>(prog.nHeight) * sizeof(u32);
    if (cbImage > pCard->cbImageMax)
        return CardOutcome::Refused;
    const CardStage eLost = MixThere(pCard, cprog, prog, cbImage);
    return eLost == CardStage::Count ? CardOutcome::Mixed : LostAt(eLost, pszWhy);
}

} // namespace

bool OpenMixCard(MixCard *pCard, bool bSoftware, bool bPlainBuffers, std::string *psRenderer)
{
    ASSERT_MAIN_THREAD();
    *pCard = {};
    if (Loses(CardStage::Open) || !CreateGLCompute(&pCard->compute, bSoftware, psRenderer))
        return false;
    pCard->bPersistent = !bPlainBuffers && pCard->compute.bKeepsMapped;
    return true;
}

void CloseMixCard(MixCard *pCard)
{
    ASSERT_MAIN_THREAD();
    DestroyGLCompute(&pCard->compute); // its objects go with the context
    *pCard = {};
}

CardOutcome RunOnMixCard(MixCard *pCard, const MixProgram &prog, const u32 *anWeight, const char **pszWhy)
{
    ASSERT_MAIN_THREAD();
    CardProgram cprog;
    if (!TranslateProgram(&cprog, prog, anWeight))
        return CardOutcome::Refused;
    if (Loses(CardStage::Enter) || !EnterGLCompute(&pCard->compute))
        return LostAt(CardStage::Enter, pszWhy);
    const CardOutcome eOutcome = RunThere(pCard, cprog, prog, pszWhy);
    LeaveGLCompute(&pCard->compute);
    return eOutcome;
}
