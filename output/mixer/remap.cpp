// remap.cpp -- runs programs of mix kernels: block by block through all steps, over all cores
#include "output/mixer/remap.h"

#include "output/mixer/ForRanges.h"
#include "output/mixer/MixKernels.h"
#include "output/mixer/MixPlan.h"
#include "platform/Assert.h"
#include "platform/MainThread.h"

#include <algorithm>
#include <iterator>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t PIXELS_PER_TASK = 32768;
constexpr size_t FETCHED_AHEAD = 832; // pixels; much less comes too late, much more is gone again

// Up to this many bytes of sources and results it is faster to write through the caches, and the next reader finds
// the picture there. A thread alone waits for the lines that it is about to write, others work meanwhile.
constexpr size_t CACHED_BYTES_MAX = 36 * 1024 * 1024;
constexpr size_t CACHED_BYTES_MAX_ALONE = 28 * 1024 * 1024;
constexpr size_t CACHED_BYTES_MAX_DISPLACED = 20 * 1024 * 1024; // what is read all around needs the caches itself

// A displacement reads up to 63 rows above and below: in strips of this width they stay in the second level cache.
constexpr size_t STRIP_WIDTH = 512;
constexpr size_t STRIP_ROWS = 256; // of a task
constexpr size_t ROWS_AHEAD = 64;

constexpr u32 STAGES_MAX = (4 + 3) * MIX_STEPS_MAX + 1; // each step can fill, compute, keep and write; fetches

struct Block {
    alignas(64) u32 adw[MIX_BLOCK_MAX];
};

const Block Zeros = {};

// What the filling stage of a spatial step needs.
struct SpatialFill {
    const KernelTable *pKernels;
    const MixPlan *pPlan;
    const PlannedStep *pStep;
};

// A plan as a chain of stages, with the buffers of the thread that runs it.
struct Chain {
    u32 nStages;
    MixStage asStage[STAGES_MAX];
    SpatialFill asFill[MIX_STEPS_MAX];
    Block asSlot[MIX_STEPS_MAX];
};

// --- Spatial steps ---

// Images too small to be reflected by one mirroring.
void DisplaceSmall(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels)
{
    const auto sum = [](u32 p) { return (p & 0xFF) + (p >> 8 & 0xFF) + (p >> 16 & 0xFF); };
    for (size_t i = 0; i < nPixels; i++) {
        const f32 fFar = static_cast<f32>(sum(pFar[i])) * DISPLACE_MAGNITUDE_UNIT;
        const u32 nDirection = sum(pDirection[i]);
        const i32 x = span.x + static_cast<i32>(i) + static_cast<i32>(fFar * span.pDirections[nDirection].fCos);
        const i32 y = span.y + static_cast<i32>(fFar * span.pDirections[nDirection].fSin);
        pTo[i] = span.pImage[ReflectCoordinate(y, span.nHeight) * span.nWidth + ReflectCoordinate(x, span.nWidth)];
    }
}

// Pixels of one row.
struct RowSpan {
    size_t x;
    size_t y;
    size_t nPixels;
};

void FillSpan(const SpatialFill &fill, const RowSpan &span, const u32 *pFar, const u32 *pDirection, u32 *pTo)
{
    const size_t nWidth = static_cast<size_t>(fill.pPlan->nWidth);
    const size_t nHeight = static_cast<size_t>(fill.pPlan->nHeight);
    const u32 *pImage = fill.pStep->asFrom[0].pImage;
    if (fill.pStep->eKernel == MixKernel::InvertX) {
        fill.pKernels->pfnReverse(pTo, pImage + (span.y + 1) * nWidth - span.x, span.nPixels);
    } else if (fill.pStep->eKernel == MixKernel::InvertY) {
        std::copy_n(pImage + (nHeight - 1 - span.y) * nWidth + span.x, span.nPixels, pTo);
    } else {
        const bool bSmall = std::min(nWidth, nHeight) <= DISPLACE_WAY_MAX;
        const DisplaceSpan displace = {pImage,
                                       GetDisplaceDirections(),
                                       fill.pPlan->nWidth,
                                       fill.pPlan->nHeight,
                                       static_cast<i32>(span.x),
                                       static_cast<i32>(span.y)};
        (bSmall ? DisplaceSmall : fill.pKernels->pfnDisplace)(pTo, displace, pFar, pDirection, span.nPixels);
    }
}

// Makes the pixels of one block, row by row where it spans several.
void FillBlock(const MixStage &stage, size_t iPixel)
{
    const SpatialFill &fill = *static_cast<const SpatialFill *>(stage.pvContext);
    const MixPlan &plan = *fill.pPlan;
    const size_t nPixels = std::min(fill.pKernels->nBlock, plan.nPixels - iPixel);
    if (fill.pStep->eKernel == MixKernel::InvertXY) {
        fill.pKernels->pfnReverse(stage.to.pBase, fill.pStep->asFrom[0].pImage + plan.nPixels - iPixel, nPixels);
        return;
    }
    const u32 *pFar = stage.asFrom[0].pBase + (iPixel & stage.asFrom[0].nMask);
    const u32 *pDirection = stage.asFrom[1].pBase + (iPixel & stage.asFrom[1].nMask);
    const size_t nWidth = static_cast<size_t>(plan.nWidth);
    for (size_t i = 0; i < nPixels;) {
        const size_t x = (iPixel + i) % nWidth;
        const RowSpan span = {x, (iPixel + i) / nWidth, std::min(nPixels - i, nWidth - x)};
        FillSpan(fill, span, pFar + i, pDirection + i, stage.to.pBase + i);
        i += span.nPixels;
    }
}

// --- Chains ---

StageSource SourceOf(const PlannedSource &from, const Chain &chain)
{
    if (from.pImage)
        return {from.pImage, STAGE_IMAGE};
    return {from.iSlot != NO_SLOT ? chain.asSlot[from.iSlot].adw : Zeros.adw, STAGE_BUFFER};
}

MixStage *AddStage(Chain *pChain, StageFn pfn)
{
    MixStage &stage = pChain->asStage[pChain->nStages++];
    stage = {pfn, {}, {}, 0, nullptr, nullptr, nullptr};
    for (StageSource &from : stage.asFrom)
        from = {Zeros.adw, STAGE_BUFFER};
    return &stage;
}

void AddSpatialStages(Chain *pChain, const KernelTable &kernels, const MixPlan &plan, const PlannedStep &step)
{
    SpatialFill &fill = pChain->asFill[&step - plan.asStep];
    fill = {&kernels, &plan, &step};
    MixStage *pFill = AddStage(pChain, kernels.pfnFill);
    for (u32 n = 0; n < step.nSources; n++)
        pFill->asFrom[n] = SourceOf(step.asFrom[n], *pChain);
    pFill->to = {pChain->asSlot[step.iSlot].adw, STAGE_BUFFER};
    pFill->pfnFill = FillBlock;
    pFill->pvContext = &fill;
    MixStage *pTake = AddStage(pChain, kernels.apfnPoint[static_cast<size_t>(MixKernel::Copy)][0][0]);
    pTake->asFrom[0] = {pFill->to.pBase, STAGE_BUFFER};
}

void AddPointStages(Chain *pChain, const KernelTable &kernels, const PlannedStep &step, const u32 *pAhead)
{
    u32 fInRegisters = 0;
    for (u32 n = 0; n < step.nSources; n++)
        fInRegisters |= static_cast<u32>(step.asFrom[n].bRegisters) << n;
    const auto &apfn = kernels.apfnPoint[static_cast<size_t>(step.eKernel)][fInRegisters];
    MixStage *pPoint = AddStage(pChain, apfn[pAhead != nullptr]);
    pPoint->pAhead = pAhead;
    pPoint->nWeight = step.nWeight;
    for (u32 n = 0; n < step.nSources; n++)
        pPoint->asFrom[n] = SourceOf(step.asFrom[n], *pChain);
    if (step.iSlot != NO_SLOT)
        AddStage(pChain, kernels.pfnStore)->to = {pChain->asSlot[step.iSlot].adw, STAGE_BUFFER};
}

size_t CachedBytesMax(const MixPlan &plan)
{
    if (plan.bDisplaces)
        return CACHED_BYTES_MAX_DISPLACED;
    return ForRangesThreads() == 1 ? CACHED_BYTES_MAX_ALONE : CACHED_BYTES_MAX;
}

bool MayStream(const MixPlan &plan, const PlannedStep &step)
{
    return plan.cbTraffic > CachedBytesMax(plan) && reinterpret_cast<uintptr_t>(step.pTo) % 64 == 0;
}

// How far ahead of its use an image is fetched. In strips the next pixels are those of the next row, and the source
// of a displacement is read from so many rows on.
size_t DistanceAhead(const MixPlan &plan, const u32 *pImage)
{
    const auto displaces = [&](const PlannedStep &step) {
        return step.eKernel == MixKernel::Displace && step.asFrom[0].pImage == pImage;
    };
    if (!plan.bDisplaces)
        return FETCHED_AHEAD;
    const bool bDisplaced = std::any_of(plan.asStep, plan.asStep + plan.nSteps, displaces);
    return static_cast<size_t>(plan.nWidth) * (bDisplaced ? ROWS_AHEAD : 1);
}

const u32 *PlaceAhead(const MixPlan &plan, u32 iImage)
{
    return plan.apImage[iImage] + DistanceAhead(plan, plan.apImage[iImage]);
}

void AddStepStages(Chain *pChain, const KernelTable &kernels, const MixPlan &plan, const PlannedStep &step, bool bFetch)
{
    const bool bFetchesItself = bFetch && step.bFetchesItself;
    for (u32 i = step.iAhead + bFetchesItself; i < step.iAheadEnd && bFetch; i++)
        AddStage(pChain, kernels.pfnFetch)->asFrom[0] = {PlaceAhead(plan, i), STAGE_IMAGE};
    if (KernelIsSpatial(step.eKernel))
        AddSpatialStages(pChain, kernels, plan, step);
    else
        AddPointStages(pChain, kernels, step, bFetchesItself ? PlaceAhead(plan, step.iAhead) : nullptr);
    if (step.pTo)
        AddStage(pChain, MayStream(plan, step) ? kernels.pfnStream : kernels.pfnStore)->to = {step.pTo, STAGE_IMAGE};
}

void BuildChain(Chain *pChain, const KernelTable &kernels, const MixPlan &plan, bool bFetch)
{
    pChain->nStages = 0;
    for (u32 i = 0; i < plan.nSteps; i++)
        AddStepStages(pChain, kernels, plan, plan.asStep[i], bFetch);
    AddStage(pChain, kernels.pfnEnd);
}

// One step that reads nothing but images at their pixel.
bool IsAlone(const MixPlan &plan)
{
    const PlannedStep &step = plan.asStep[0];
    return plan.nSteps == 1 && !KernelIsSpatial(step.eKernel) &&
           std::all_of(step.asFrom, step.asFrom + step.nSources, [](const PlannedSource &from) { return from.pImage; });
}

void RunAlone(const KernelTable &kernels, const MixPlan &plan, size_t iFirst, size_t iEnd)
{
    const PlannedStep &step = plan.asStep[0];
    MixStage stage = {};
    for (u32 n = 0; n < step.nSources; n++)
        stage.asFrom[n] = {step.asFrom[n].pImage, STAGE_IMAGE};
    stage.to = {step.pTo, STAGE_IMAGE};
    stage.nWeight = step.nWeight;
    kernels.apfnAlone[static_cast<size_t>(step.eKernel)][MayStream(plan, step)](stage, iFirst * kernels.nBlock,
                                                                                iEnd * kernels.nBlock);
    kernels.pfnFence();
}

void RunBlocks(const KernelTable &kernels, const MixPlan &plan, size_t iFirst, size_t iEnd)
{
    Chain chain;
    BuildChain(&chain, kernels, plan, true);
    kernels.pfnRun(chain.asStage, iFirst * kernels.nBlock, iEnd * kernels.nBlock);
    kernels.pfnFence();
}

// The number of whole blocks that start before this pixel.
size_t BlocksBefore(const KernelTable &kernels, const MixPlan &plan, size_t iPixel)
{
    return std::min((iPixel + kernels.nBlock - 1) / kernels.nBlock, plan.nPixels / kernels.nBlock);
}

// The blocks that start in one strip of the rows from yFirst to yEnd.
void RunStrip(const KernelTable &kernels, const MixPlan &plan, size_t iStrip, size_t yFirst, size_t yEnd)
{
    Chain chain;
    BuildChain(&chain, kernels, plan, true);
    const size_t nWidth = static_cast<size_t>(plan.nWidth);
    const size_t xFirst = iStrip * STRIP_WIDTH;
    const size_t xEnd = std::min(xFirst + STRIP_WIDTH, nWidth);
    for (size_t y = yFirst; y < yEnd; y++)
        kernels.pfnRun(chain.asStage, BlocksBefore(kernels, plan, y * nWidth + xFirst) * kernels.nBlock,
                       BlocksBefore(kernels, plan, y * nWidth + xEnd) * kernels.nBlock);
    kernels.pfnFence();
}

void RunInStrips(const KernelTable &kernels, const MixPlan &plan)
{
    const size_t nStrips = (static_cast<size_t>(plan.nWidth) + STRIP_WIDTH - 1) / STRIP_WIDTH;
    const size_t nHeight = static_cast<size_t>(plan.nHeight);
    const size_t nBands = (nHeight + STRIP_ROWS - 1) / STRIP_ROWS;
    ForRanges(nStrips * nBands, 1, [&](size_t iFirst, size_t iEnd) {
        for (size_t i = iFirst; i < iEnd; i++) {
            const size_t yFirst = i % nBands * STRIP_ROWS;
            RunStrip(kernels, plan, i / nBands, yFirst, std::min(yFirst + STRIP_ROWS, nHeight));
        }
    });
}

// The pixels behind the last whole block, by way of buffers: nothing reads or writes beyond an image.
void RunRest(const KernelTable &kernels, const MixPlan &plan, size_t iFirst)
{
    Chain chain;
    BuildChain(&chain, kernels, plan, false);
    Block asFrom[MIX_IMAGES_MAX], asTo[MIX_STEPS_MAX];
    u32 *apTo[MIX_STEPS_MAX];
    u32 nFrom = 0, nTo = 0;
    const size_t cbRest = (plan.nPixels - iFirst) * sizeof(u32);
    for (u32 i = 0; i < chain.nStages; i++) {
        MixStage &stage = chain.asStage[i];
        for (StageSource &from : stage.asFrom) {
            if (from.nMask == STAGE_BUFFER)
                continue;
            std::memcpy(asFrom[nFrom].adw, from.pBase + iFirst, cbRest);
            from = {asFrom[nFrom++].adw, STAGE_BUFFER};
        }
        if (stage.to.nMask == STAGE_BUFFER)
            continue;
        apTo[nTo] = stage.to.pBase + iFirst;
        stage.to = {asTo[nTo++].adw, STAGE_BUFFER};
    }
    kernels.pfnRun(chain.asStage, iFirst, iFirst + 1);
    for (u32 i = 0; i < nTo; i++)
        std::memcpy(apTo[i], asTo[i].adw, cbRest);
}

} // namespace

bool KernelIsSpatial(MixKernel eKernel)
{
    return eKernel == MixKernel::InvertX || eKernel == MixKernel::InvertY || eKernel == MixKernel::InvertXY ||
           eKernel == MixKernel::Displace;
}

i32 ReflectCoordinate(i32 v, i32 n)
{
    const i32 nQuotient = std::abs(v) / n;
    const i32 nRest = std::abs(v) % n;
    return nQuotient % 2 ? n - 1 - nRest : nRest;
}

void RunMixPlan(const MixPlan &plan)
{
    ASSERT_MAIN_THREAD();
    if (plan.nSteps == 0)
        return;
    const KernelTable &kernels = GetKernelTable();
    const size_t nBlocks = plan.nPixels / kernels.nBlock;
    if (plan.bDisplaces)
        RunInStrips(kernels, plan);
    else
        ForRanges(nBlocks, PIXELS_PER_TASK / kernels.nBlock, [&](size_t iFirst, size_t iEnd) {
            (IsAlone(plan) ? RunAlone : RunBlocks)(kernels, plan, iFirst, iEnd);
        });
    if (nBlocks * kernels.nBlock < plan.nPixels)
        RunRest(kernels, plan, nBlocks * kernels.nBlock);
}
