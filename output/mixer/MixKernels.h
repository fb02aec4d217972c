// MixKernels.h -- the kernels behind remap.h: stages that hand pixels on in registers, one table for each
// instruction set
#pragma once

#include "output/mixer/remap.h"

#include <cstddef>

constexpr size_t MIX_BLOCK_MAX = 128; // pixels that go through the stages at a time, at most

// Where a stage finds its pixels or puts them. For the block that starts at pixel i: pBase + (i & nMask), so a mask
// of all ones makes an image of it, and 0 a buffer that serves every block.
struct StageSource {
    const u32 *pBase;
    size_t nMask;
};

struct StageTarget {
    u32 *pBase;
    size_t nMask;
};

constexpr size_t STAGE_IMAGE = ~size_t{0};
constexpr size_t STAGE_BUFFER = 0;

// One link of a chain. It takes the block that the stage before has made in registers, changes, keeps or writes it,
// and calls the next stage with it. What the arguments are is known only where the instruction set is.
using StageFn = void (*)();

struct MixStage {
    StageFn pfn;
    StageSource asFrom[3]; // source #1, source #2, mask, as far as they do not come from the stage before
    StageTarget to;        // of those that write
    u32 nWeight;
    const u32 *pAhead; // of those that fetch: for the block at pixel i, what to fetch from memory begins at pAhead + i
    void (*pfnFill)(const MixStage &stage, size_t iPixel); // of the filling stage; fills the buffer `to`
    const void *pvContext;                                 // for pfnFill
};

struct DisplaceSpan {
    const u32 *pImage;
    const DisplaceDirection *pDirections;
    i32 nWidth;
    i32 nHeight;
    i32 x; // of the first pixel; the span does not leave its row
    i32 y;
};

struct KernelTable {
    size_t nBlock; // pixels; divides MIX_BLOCK_MAX
    // By MixKernel and by which sources are the block in the registers: 1 source #1, 2 source #2, 4 the mask, or any
    // of them; then by whether it fetches a block ahead, line by line between its arithmetic. Null for the mirrors and
    // Displace, whose blocks come from a filling stage and a Copy.
    StageFn apfnPoint[static_cast<size_t>(MixKernel::Count)][8][2];
    // A program of one step needs no chain: by MixKernel, and by whether it writes past the caches. Works off the
    // blocks that start at iFirst up to iEnd, with the step's sources and target in one stage.
    void (*apfnAlone[static_cast<size_t>(MixKernel::Count)][2])(const MixStage &stage, size_t iFirst, size_t iEnd);
    StageFn pfnFetch; // has the block at source #1 fetched from memory, and hands on what it got
    StageFn pfnFill;
    StageFn pfnStore;
    StageFn pfnStream; // writes past the caches; the target is aligned to 64 bytes
    StageFn pfnEnd;
    // Takes the blocks that start at iFirst up to iEnd through a chain.
    void (*pfnRun)(const MixStage *pChain, size_t iFirst, size_t iEnd);
    // Makes what was written visible to every thread that knows this one to be done.
    void (*pfnFence)();
    // Writes the nPixels in front of pFromEnd in reverse order.
    void (*pfnReverse)(u32 *pTo, const u32 *pFromEnd, size_t nPixels);
    void (*pfnDisplace)(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels);
};

// The table for the best instruction set that the processor has. [any-thread]
const KernelTable &GetKernelTable();
