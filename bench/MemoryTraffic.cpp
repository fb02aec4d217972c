// MemoryTraffic.cpp -- what a picture operation costs at the least: reading its sources and writing its result
#include "bench/MemoryTraffic.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/MemoryTraffic.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

HWY_BEFORE_NAMESPACE();
namespace traffic {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Whole vectors only: the sizes measured are multiples of all of them.
template <u32 nFrom, bool bPast> void Move(u32 *pTo, const u32 *const *apFrom, size_t iFirst, size_t iEnd)
{
    const hn::ScalableTag<u32> d;
    for (size_t i = iFirst; i < iEnd; i += hn::Lanes(d)) {
        auto v = hn::Load(d, apFrom[0] + i);
        for (u32 n = 1; n < nFrom; n++)
            v = hn::Xor(v, hn::Load(d, apFrom[n] + i));
        if constexpr (bPast)
            hn::Stream(v, d, pTo + i);
        else
            hn::Store(v, d, pTo + i);
    }
    if constexpr (bPast)
        hwy::FlushStream();
}

void MoveRange(const Traffic &traffic, bool bPast, size_t iFirst, size_t iEnd)
{
    using MoveFn = void (*)(u32 *, const u32 *const *, size_t, size_t);
    constexpr MoveFn apfn[TRAFFIC_IMAGES_MAX][2] = {{Move<1, false>, Move<1, true>},
                                                    {Move<2, false>, Move<2, true>},
                                                    {Move<3, false>, Move<3, true>},
                                                    {Move<4, false>, Move<4, true>}};
    apfn[traffic.nFrom - 1][bPast](traffic.pTo, traffic.apFrom, iFirst, iEnd);
}

} // namespace HWY_NAMESPACE
} // namespace traffic
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace traffic {
HWY_EXPORT(MoveRange);

constexpr size_t PIXELS_PER_TASK = 32768;

template <class Fn> static void ForPieces(size_t nPixels, Fn fn)
{
    const size_t nPieces = (nPixels + PIXELS_PER_TASK - 1) / PIXELS_PER_TASK;
    tbb::parallel_for(tbb::blocked_range<size_t>(0, nPieces), [&](const tbb::blocked_range<size_t> &range) {
        const size_t iEnd = range.end() * PIXELS_PER_TASK;
        fn(range.begin() * PIXELS_PER_TASK, iEnd < nPixels ? iEnd : nPixels);
    });
}
} // namespace traffic

void MoveThroughCaches(const Traffic &traffic)
{
    traffic::ForPieces(traffic.nPixels, [&](size_t iFirst, size_t iEnd) {
        HWY_DYNAMIC_DISPATCH(traffic::MoveRange)(traffic, false, iFirst, iEnd);
    });
}

void MovePastCaches(const Traffic &traffic)
{
    traffic::ForPieces(traffic.nPixels, [&](size_t iFirst, size_t iEnd) {
        HWY_DYNAMIC_DISPATCH(traffic::MoveRange)(traffic, true, iFirst, iEnd);
    });
}
#endif
