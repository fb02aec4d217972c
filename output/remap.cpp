// remap.cpp -- runs programs of mix kernels: tile by tile through all steps, over all cores
#include "output/remap.h"

#include "output/MixKernels.h"
#include "platform/Assert.h"

#ifndef VD_SERIAL_LOOPS
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#endif

#include <algorithm>
#include <iterator>
#include <cstdlib>

namespace {

constexpr size_t TILES_PER_TASK = 16;
constexpr u32 NO_SLOT = ALL_ONES;

// A tile of pixels for each result that is still to be read; they are used again as soon as they can be.
struct TileSlots {
    alignas(64) u32 aadw[MIX_STEPS_MAX][MIX_TILE];
};

alignas(64) const u32 adwZeros[MIX_TILE] = {};

// An operand in place: an image, whose tile lies where the target's does, or a fixed tile.
struct PlannedOperand {
    const u32 *pImage; // null: iSlot, and with no slot the zeros
    u32 iSlot;
};

struct PlannedStep {
    MixKernel eKernel;
    u32 nWeight;
    PlannedOperand asFrom[3];
    u32 *pStream; // image that the kernel itself writes, past the caches; null: it writes the slot
    u32 *pCopyTo; // image that then receives the slot, past the caches; null: none
    u32 iSlot;
};

// A program made ready: operands in place, and only the steps whose results somebody reads.
struct MixPlan {
    size_t nPixels;
    i32 nWidth;
    i32 nHeight;
    u32 nSteps;
    PlannedStep asStep[MIX_STEPS_MAX];
};

constexpr u32 anSources[] = {1, 2, 2, 2, 2, 2, 3, 3, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2};
static_assert(std::size(anSources) == static_cast<size_t>(MixKernel::Count));

u32 SourcesOf(const MixStep &step)
{
    return anSources[static_cast<size_t>(step.eKernel)];
}

// The last step that reads each step's result; -1 for those that none reads and that write no image.
struct LastUses {
    i32 an[MIX_STEPS_MAX];
};

LastUses FindLastUses(const MixProgram &prog)
{
    LastUses uses;
    std::fill(std::begin(uses.an), std::end(uses.an), -1);
    for (i32 i = static_cast<i32>(prog.nSteps) - 1; i >= 0; i--) {
        const MixStep &step = prog.asStep[i];
        if (uses.an[i] < 0 && !step.pTo)
            continue;
        for (u32 n = 0; n < SourcesOf(step); n++) {
            const MixOperand &from = step.asFrom[n];
            VD_ASSERT(from.pImage || (from.iStep < i && !(n == 0 && KernelIsSpatial(step.eKernel))));
            if (!from.pImage && from.iStep >= 0)
                uses.an[from.iStep] = std::max(uses.an[from.iStep], i);
        }
    }
    return uses;
}

class SlotPool {
  public:
    u32 Take()
    {
        u32 iSlot = 0;
        while (abTaken[iSlot])
            iSlot++;
        abTaken[iSlot] = true;
        return iSlot;
    }
    void Release(u32 iSlot)
    {
        abTaken[iSlot] = false;
    }

  private:
    bool abTaken[MIX_STEPS_MAX] = {};
};

// Gives a step its operands and its target. A slot whose last reader this is may become its target at once.
PlannedStep PlanStep(const MixProgram &prog, i32 iStep, const LastUses &uses, u32 *aiSlot, SlotPool *pPool)
{
    const MixStep &step = prog.asStep[iStep];
    PlannedStep planned = {step.eKernel, step.nWeight, {}, nullptr, nullptr, NO_SLOT};
    for (u32 n = 0; n < SourcesOf(step); n++) {
        const MixOperand &from = step.asFrom[n];
        planned.asFrom[n] = {from.pImage, !from.pImage && from.iStep >= 0 ? aiSlot[from.iStep] : NO_SLOT};
    }
    for (i32 i = 0; i < iStep; i++)
        if (uses.an[i] == iStep)
            pPool->Release(aiSlot[i]);
    const bool bStreams = uses.an[iStep] < 0 && !KernelIsSpatial(step.eKernel);
    (bStreams ? planned.pStream : planned.pCopyTo) = step.pTo;
    if (!bStreams)
        aiSlot[iStep] = planned.iSlot = pPool->Take();
    if (uses.an[iStep] < 0 && !bStreams)
        pPool->Release(planned.iSlot);
    return planned;
}

MixPlan PlanProgram(const MixProgram &prog)
{
    MixPlan plan;
    plan.nPixels = static_cast<size_t>(prog.nWidth) * static_cast<size_t>(prog.nHeight);
    plan.nWidth = prog.nWidth;
    plan.nHeight = prog.nHeight;
    plan.nSteps = 0;
    const LastUses uses = FindLastUses(prog);
    SlotPool pool;
    u32 aiSlot[MIX_STEPS_MAX];
    for (i32 i = 0; i < static_cast<i32>(prog.nSteps); i++)
        if (uses.an[i] >= 0 || prog.asStep[i].pTo)
            plan.asStep[plan.nSteps++] = PlanStep(prog, i, uses, aiSlot, &pool);
    return plan;
}

struct Tile {
    size_t iFirst;
    size_t nPixels;
};

const u32 *TileOf(const PlannedOperand &from, const Tile &tile, const TileSlots &slots)
{
    return from.pImage ? from.pImage + tile.iFirst : from.iSlot == NO_SLOT ? adwZeros : slots.aadw[from.iSlot];
}

// Images too small for the reflection by one mirroring.
void DisplaceSmall(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels)
{
    const DisplaceTables &tables = GetDisplaceTables();
    const auto sum = [](u32 p) { return (p & 0xFF) + (p >> 8 & 0xFF) + (p >> 16 & 0xFF); };
    for (size_t i = 0; i < nPixels; i++) {
        const f32 fFar = static_cast<f32>(sum(pFar[i])) * DISPLACE_MAGNITUDE_UNIT;
        const i32 x = span.x + static_cast<i32>(i) + static_cast<i32>(fFar * tables.afCos[sum(pDirection[i])]);
        const i32 y = span.y + static_cast<i32>(fFar * tables.afSin[sum(pDirection[i])]);
        pTo[i] =
            span.pImage[static_cast<size_t>(ReflectCoordinate(y, span.nHeight)) * static_cast<size_t>(span.nWidth) +
                        static_cast<size_t>(ReflectCoordinate(x, span.nWidth))];
    }
}

// The part of a tile that lies in one row, or what is left of the tile.
struct RowSpan {
    size_t iOffset; // from the start of the tile
    size_t nPixels;
    size_t x;
    size_t y;
};

RowSpan SpanAt(const MixPlan &plan, const Tile &tile, size_t iOffset)
{
    const size_t nWidth = static_cast<size_t>(plan.nWidth);
    const size_t x = (tile.iFirst + iOffset) % nWidth;
    return {iOffset, std::min(tile.nPixels - iOffset, nWidth - x), x, (tile.iFirst + iOffset) / nWidth};
}

void RunSpan(const KernelTable &kernels, const MixPlan &plan, const PlannedStep &step, const RowSpan &span,
             const u32 *const *apFrom, u32 *pTo)
{
    const size_t nWidth = static_cast<size_t>(plan.nWidth);
    const u32 *pImage = step.asFrom[0].pImage;
    if (step.eKernel == MixKernel::InvertX) {
        kernels.pfnReverse(pTo, pImage + (span.y + 1) * nWidth - span.x, span.nPixels);
    } else if (step.eKernel == MixKernel::InvertY) {
        const size_t yFrom = static_cast<size_t>(plan.nHeight) - 1 - span.y;
        std::copy_n(pImage + yFrom * nWidth + span.x, span.nPixels, pTo);
    } else {
        const bool bSmall = std::min(plan.nWidth, plan.nHeight) <= DISPLACE_WAY_MAX;
        const DisplaceSpan displace = {pImage, plan.nWidth, plan.nHeight, static_cast<i32>(span.x),
                                       static_cast<i32>(span.y)};
        (bSmall ? DisplaceSmall : kernels.pfnDisplace)(pTo, displace, apFrom[0] + span.iOffset,
                                                       apFrom[1] + span.iOffset, span.nPixels);
    }
}

void RunSpatial(const KernelTable &kernels, const MixPlan &plan, const PlannedStep &step, const Tile &tile,
                const u32 *const *apFrom, u32 *pTo)
{
    if (step.eKernel == MixKernel::InvertXY) {
        kernels.pfnReverse(pTo, step.asFrom[0].pImage + plan.nPixels - tile.iFirst, tile.nPixels);
        return;
    }
    for (size_t iOffset = 0; iOffset < tile.nPixels;) {
        const RowSpan span = SpanAt(plan, tile, iOffset);
        RunSpan(kernels, plan, step, span, apFrom, pTo + iOffset);
        iOffset += span.nPixels;
    }
}

void RunTile(const KernelTable &kernels, const MixPlan &plan, const Tile &tile, TileSlots *pSlots)
{
    for (u32 i = 0; i < plan.nSteps; i++) {
        const PlannedStep &step = plan.asStep[i];
        const u32 *apFrom[3];
        for (u32 n = 0; n < 3; n++)
            apFrom[n] = TileOf(step.asFrom[n], tile, *pSlots);
        u32 *pSlot = step.iSlot == NO_SLOT ? nullptr : pSlots->aadw[step.iSlot];
        const auto *apfn = kernels.apfnPoint[static_cast<size_t>(step.eKernel)];
        if (!apfn[0])
            RunSpatial(kernels, plan, step, tile, apFrom, pSlot);
        else if (step.pStream)
            apfn[1](step.pStream + tile.iFirst, apFrom, tile.nPixels, step.nWeight);
        else
            apfn[0](pSlot, apFrom, tile.nPixels, step.nWeight);
        const u32 *apSlot[3] = {pSlot, nullptr, nullptr};
        if (step.pCopyTo)
            kernels.apfnPoint[static_cast<size_t>(MixKernel::Copy)][1](step.pCopyTo + tile.iFirst, apSlot, tile.nPixels,
                                                                       0);
    }
}

void RunTiles(const KernelTable &kernels, const MixPlan &plan, size_t iFirst, size_t iEnd)
{
    TileSlots slots;
    for (size_t i = iFirst; i < iEnd; i++)
        RunTile(kernels, plan, {i * MIX_TILE, std::min(MIX_TILE, plan.nPixels - i * MIX_TILE)}, &slots);
    kernels.pfnFence();
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

void RunMixProgram(const MixProgram &prog)
{
    VD_ASSERT(prog.nSteps <= MIX_STEPS_MAX && prog.nWidth > 0 && prog.nHeight > 0);
    const MixPlan plan = PlanProgram(prog);
    if (plan.nSteps == 0)
        return;
    const KernelTable &kernels = GetKernelTable();
    const size_t nTiles = (plan.nPixels + MIX_TILE - 1) / MIX_TILE;
#ifdef VD_SERIAL_LOOPS
    RunTiles(kernels, plan, 0, nTiles);
#else
    tbb::parallel_for(
        tbb::blocked_range<size_t>(0, nTiles, TILES_PER_TASK),
        [&](const tbb::blocked_range<size_t> &range) { RunTiles(kernels, plan, range.begin(), range.end()); });
#endif
}
