// MixPlan.cpp -- a program of the mix kernels made ready
#include "output/mixer/MixPlan.h"

#include "output/mixer/MixKernelList.h"
#include "platform/Assert.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr u32 SPATIAL_INSTRUCTIONS = 10;
constexpr u32 INSTRUCTIONS_BETWEEN_FETCHES = 6; // with less between them it is better to fetch in one go

u32 SourcesOf(const MixStep &step)
{
    return KernelSources(step.eKernel);
}

void AssertReadsEarlier(const MixStep &step, i32 iStep)
{
    VD_ASSERT(step.eKernel < MixKernel::Count);
    VD_ASSERT(!KernelIsSpatial(step.eKernel) || step.asFrom[0].pImage);
    for (u32 n = 0; n < SourcesOf(step); n++)
        VD_ASSERT(step.asFrom[n].pImage || step.asFrom[n].iStep < iStep);
}

// Marks the steps that an image depends on, last to first.
void MarkNeeded(const MixProgram &prog, bool *abNeeded)
{
    for (i32 i = static_cast<i32>(prog.nSteps) - 1; i >= 0; i--) {
        const MixStep &step = prog.asStep[i];
        AssertReadsEarlier(step, i);
        abNeeded[i] |= step.pTo != nullptr;
        for (u32 n = 0; n < SourcesOf(step) && abNeeded[i]; n++)
            if (!step.asFrom[n].pImage && step.asFrom[n].iStep >= 0)
                abNeeded[step.asFrom[n].iStep] = true;
    }
}

// The block in the registers is the result of the step before; spatial steps take nothing from there.
bool ReadsRegisters(const MixProgram &prog, i32 iStep, u32 nSource)
{
    const MixStep &step = prog.asStep[iStep];
    return !step.asFrom[nSource].pImage && iStep > 0 && step.asFrom[nSource].iStep == iStep - 1 &&
           !KernelIsSpatial(step.eKernel);
}

// The last step that needs the result of iStep in a buffer, or -1.
i32 LastBufferUse(const MixProgram &prog, i32 iStep)
{
    for (i32 i = static_cast<i32>(prog.nSteps) - 1; i > iStep; i--)
        for (u32 n = 0; n < SourcesOf(prog.asStep[i]); n++)
            if (!prog.asStep[i].asFrom[n].pImage && prog.asStep[i].asFrom[n].iStep == iStep &&
                !ReadsRegisters(prog, i, n))
                return i;
    return -1;
}

struct Buffers {
    bool abTaken[MIX_STEPS_MAX];
    u32 aiSlotOf[MIX_STEPS_MAX]; // by step
    i32 anLastUse[MIX_STEPS_MAX];
};

u32 TakeSlot(Buffers *pBuffers)
{
    const u32 iSlot = static_cast<u32>(std::find(std::begin(pBuffers->abTaken), std::end(pBuffers->abTaken), false) -
                                       std::begin(pBuffers->abTaken));
    pBuffers->abTaken[iSlot] = true;
    return iSlot;
}

PlannedSource PlanSource(const MixProgram &prog, i32 iStep, u32 nSource, const Buffers &buffers)
{
    const MixOperand &from = prog.asStep[iStep].asFrom[nSource];
    const bool bRegisters = ReadsRegisters(prog, iStep, nSource);
    const bool bBuffer = !from.pImage && from.iStep >= 0 && !bRegisters;
    return {from.pImage, bRegisters, bBuffer ? buffers.aiSlotOf[from.iStep] : NO_SLOT};
}

// A buffer whose last reader this step is may take the step's own result: every kernel reads before it writes.
void FreeBuffers(Buffers *pBuffers, i32 iStep)
{
    for (i32 i = 0; i < iStep; i++)
        if (pBuffers->anLastUse[i] == iStep)
            pBuffers->abTaken[pBuffers->aiSlotOf[i]] = false;
}

PlannedStep PlanStep(const MixProgram &prog, i32 iStep, Buffers *pBuffers)
{
    const MixStep &step = prog.asStep[iStep];
    PlannedStep planned = {step.eKernel, step.iWeight, 0, {}, SourcesOf(step), NO_SLOT, step.pTo, 0, 0, false};
    for (u32 n = 0; n < planned.nSources; n++)
        planned.asFrom[n] = PlanSource(prog, iStep, n, *pBuffers);
    FreeBuffers(pBuffers, iStep);
    const i32 iLastUse = LastBufferUse(prog, iStep);
    pBuffers->anLastUse[iStep] = iLastUse;
    if (iLastUse >= 0 || KernelIsSpatial(step.eKernel))
        planned.iSlot = pBuffers->aiSlotOf[iStep] = TakeSlot(pBuffers);
    if (iLastUse < 0 && planned.iSlot != NO_SLOT)
        pBuffers->abTaken[planned.iSlot] = false;
    return planned;
}

void ListImages(MixPlan *pPlan, const MixProgram &prog)
{
    const u32 *const *const apEnd = pPlan->apImage;
    for (u32 i = 0; i < prog.nSteps; i++)
        for (u32 n = 0; n < SourcesOf(prog.asStep[i]); n++) {
            const u32 *p = prog.asStep[i].asFrom[n].pImage;
            if (p && std::find(apEnd, apEnd + pPlan->nImages, p) == apEnd + pPlan->nImages)
                pPlan->apImage[pPlan->nImages++] = p;
        }
}

size_t TrafficOf(const MixPlan &plan)
{
    const auto nWritten =
        std::count_if(plan.asStep, plan.asStep + plan.nSteps, [](const PlannedStep &step) { return step.pTo; });
    return (plan.nImages + static_cast<size_t>(nWritten)) * plan.nPixels * sizeof(u32);
}

u32 InstructionsOf(MixKernel eKernel)
{
    switch (eKernel) {
#define VD_INSTRUCTIONS(name, nSources, nInstructions, expression)                                                     \
    case MixKernel::name:                                                                                              \
        return nInstructions;
        VD_MIX_KERNELS(VD_INSTRUCTIONS)
#undef VD_INSTRUCTIONS
    default:
        return SPATIAL_INSTRUCTIONS;
    }
}

// Has the images fetched ahead evenly over the arithmetic, so that memory is as busy as the processor all along.
void SpreadFetches(MixPlan *pPlan)
{
    u32 nAll = 0, nDone = 0;
    for (u32 i = 0; i < pPlan->nSteps; i++)
        nAll += InstructionsOf(pPlan->asStep[i].eKernel);
    for (u32 i = 0; i < pPlan->nSteps; i++) {
        PlannedStep &step = pPlan->asStep[i];
        step.iAhead = nDone * pPlan->nImages / nAll;
        nDone += InstructionsOf(step.eKernel);
        step.iAheadEnd = nDone * pPlan->nImages / nAll;
        step.bFetchesItself = step.iAhead < step.iAheadEnd && !KernelIsSpatial(step.eKernel) &&
                              InstructionsOf(step.eKernel) >= INSTRUCTIONS_BETWEEN_FETCHES;
    }
}

} // namespace

u32 KernelSources(MixKernel eKernel)
{
    switch (eKernel) {
#define VD_SOURCES(name, nSources, nInstructions, expression)                                                          \
    case MixKernel::name:                                                                                              \
        return nSources;
        VD_MIX_KERNELS(VD_SOURCES)
#undef VD_SOURCES
    case MixKernel::Displace:
        return 2;
    default:
        return 1;
    }
}

MixProgram NeededSteps(const MixProgram &prog)
{
    bool abNeeded[MIX_STEPS_MAX] = {};
    MarkNeeded(prog, abNeeded);
    MixProgram needed = {prog.nWidth, prog.nHeight, 0, {}};
    i32 anNewPlace[MIX_STEPS_MAX] = {};
    for (u32 i = 0; i < prog.nSteps; i++) {
        if (!abNeeded[i])
            continue;
        MixStep &step = needed.asStep[needed.nSteps];
        step = prog.asStep[i];
        for (u32 n = 0; n < SourcesOf(step); n++)
            if (!step.asFrom[n].pImage && step.asFrom[n].iStep >= 0)
                step.asFrom[n].iStep = anNewPlace[step.asFrom[n].iStep];
        anNewPlace[i] = static_cast<i32>(needed.nSteps++);
    }
    return needed;
}

MixPlan PlanProgram(const MixProgram &prog)
{
    VD_ASSERT(prog.nSteps <= MIX_STEPS_MAX && prog.nWidth > 0 && prog.nHeight > 0);
    const MixProgram needed = NeededSteps(prog);
    MixPlan plan = {};
    plan.nWidth = prog.nWidth;
    plan.nHeight = prog.nHeight;
    plan.nPixels = static_cast<size_t>(prog.nWidth) * static_cast<size_t>(prog.nHeight);
    ListImages(&plan, needed);
    Buffers buffers = {};
    for (; plan.nSteps < needed.nSteps; plan.nSteps++) {
        PlannedStep &step = plan.asStep[plan.nSteps];
        step = PlanStep(needed, static_cast<i32>(plan.nSteps), &buffers);
        if (step.iSlot != NO_SLOT)
            plan.nSlots = std::max(plan.nSlots, step.iSlot + 1);
    }
    plan.bDisplaces = std::any_of(plan.asStep, plan.asStep + plan.nSteps,
                                  [](const PlannedStep &step) { return step.eKernel == MixKernel::Displace; });
    plan.cbTraffic = TrafficOf(plan);
    SpreadFetches(&plan);
    return plan;
}

void SetPlanWeights(MixPlan *pPlan, const u32 *anWeight)
{
    for (u32 i = 0; i < pPlan->nSteps; i++)
        pPlan->asStep[i].nWeight = anWeight[pPlan->asStep[i].iWeight];
}
