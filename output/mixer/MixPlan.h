// MixPlan.h -- a program of the mix kernels made ready: only what is needed, and where each result stays until then
#pragma once

#include "output/mixer/remap.h"

#include <cstddef>

constexpr u32 NO_SLOT = ALL_ONES;
constexpr u32 MIX_IMAGES_MAX = 3 * MIX_STEPS_MAX;

// Exactly one of the four: an image, the block in the registers, a buffer that holds an earlier result, zeros.
struct PlannedSource {
    const u32 *pImage;
    bool bRegisters;
    u32 iSlot; // NO_SLOT: not in a buffer
};

struct PlannedStep {
    MixKernel eKernel;
    u32 iWeight;
    u32 nWeight; // set before each run
    PlannedSource asFrom[3];
    u32 nSources; // entries of asFrom that count
    u32 iSlot;    // buffer that keeps the result for later steps, and that a spatial step fills; NO_SLOT: none
    u32 *pTo;     // image that receives the result; null: none
    u32 iAhead;   // images from here to iAheadEnd are fetched ahead while this step runs
    u32 iAheadEnd;
    bool bFetchesItself; // one of them between its arithmetic; otherwise they are fetched before it
};

struct MixPlan {
    i32 nWidth;
    i32 nHeight;
    size_t nPixels;
    u32 nSlots;
    u32 nImages; // that are read pixel by pixel, each once in apImage
    const u32 *apImage[MIX_IMAGES_MAX];
    size_t cbTraffic; // of all images that are read or written
    bool bDisplaces;  // reads around each pixel
    u32 nSteps;
    PlannedStep asStep[MIX_STEPS_MAX];
};

// Leaves out the steps whose results reach no image. [any-thread]
MixProgram NeededSteps(const MixProgram &prog);

// Leaves out the steps whose results reach no image. Asserts that steps read earlier steps only, and spatial ones
// an image. [any-thread]
MixPlan PlanProgram(const MixProgram &prog);

// Gives every step its weight, 0 to 255, from the list that iWeight counts in.
void SetPlanWeights(MixPlan *pPlan, const u32 *anWeight);

// Runs the plan over all pixels, on all cores; returns when it is done. [main-thread]
void RunMixPlan(const MixPlan &plan);
