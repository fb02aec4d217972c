// MemoryTraffic.h -- what a picture operation costs at the least: reading its sources and writing its result
#pragma once

#include "platform/BaseTypes.h"

#include <cstddef>

constexpr u32 TRAFFIC_IMAGES_MAX = 4;

struct Traffic {
    u32 *pTo;
    const u32 *apFrom[TRAFFIC_IMAGES_MAX];
    u32 nFrom; // 1 to TRAFFIC_IMAGES_MAX
    size_t nPixels;
};

// Writes the exclusive or of the sources with the widest vectors of the processor, on as many threads as the caller's
// arena has. One writes through the caches, the other past them: which one is faster
// depends on the machine and on the size, and the faster one is the reference.
void MoveThroughCaches(const Traffic &traffic);
void MovePastCaches(const Traffic &traffic);
