// MixKernels.h -- the kernels behind remap.h, one table for each instruction set
#pragma once

#include "output/remap.h"

#include <cstddef>

// Pixels that a program takes through all of its steps at a time: what lies between the steps stays in the first
// level cache. A multiple of every vector.
constexpr size_t MIX_TILE = 512;

// Reads nPixels from each source that the kernel uses and writes as many. The target may be one of the sources.
using PointKernelFn = void (*)(u32 *pTo, const u32 *const *apFrom, size_t nPixels, u32 nWeight);

struct DisplaceSpan {
    const u32 *pImage;
    i32 nWidth;
    i32 nHeight;
    i32 x; // of the first pixel; the span does not leave its row
    i32 y;
};

struct KernelTable {
    // By MixKernel; null for the mirrors and Displace. The second of each pair writes past the caches: its target
    // is aligned to 64 bytes.
    PointKernelFn apfnPoint[static_cast<size_t>(MixKernel::Count)][2];
    // Writes the nPixels in front of pFromEnd in reverse order.
    void (*pfnReverse)(u32 *pTo, const u32 *pFromEnd, size_t nPixels);
    void (*pfnDisplace)(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels);
    // Makes what was written past the caches visible to other threads, once they know that this one is done.
    void (*pfnFence)();
};

// The table for the best instruction set that the processor has. [any-thread]
const KernelTable &GetKernelTable();
