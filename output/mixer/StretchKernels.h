// StretchKernels.h -- the inner loops of the stretched copy
#pragma once

#include "platform/BaseTypes.h"

#include <cstddef>

// For each target pixel of a row, where it comes from. Pixels go in groups, each taken from a window of the source as
// long as a group, if the target is no narrower than the source and the source no narrower than a group.
struct StretchColumns {
    const u32 *piSource; // by target pixel
    const u32 *piLane;   // by target pixel: place in the window of its group
    size_t nSource;      // pixels of a source row
};

struct StretchKernels {
    size_t nGroup; // pixels
    // Writes the nPixels target pixels from iFirst on, which is a multiple of nGroup.
    void (*pfnWiden)(u32 *pTo, const u32 *pFrom, const StretchColumns &columns, size_t iFirst, size_t nPixels);
    // Copies past the caches. Call pfnFence before another thread may look.
    void (*pfnStream)(u32 *pTo, const u32 *pFrom, size_t nPixels);
    void (*pfnFence)();
};

// Where the window of the group that begins with target pixel i starts: never so that it ends behind the row.
inline size_t StretchWindow(const StretchColumns &columns, size_t i, size_t nGroup)
{
    const size_t iSource = columns.piSource[i];
    return iSource + nGroup <= columns.nSource ? iSource : columns.nSource - nGroup;
}

// The loops for the best instruction set that the processor has. [any-thread]
const StretchKernels &GetStretchKernels();
