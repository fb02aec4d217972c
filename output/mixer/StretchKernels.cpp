// StretchKernels.cpp -- the inner loops of the stretched copy, compiled for each instruction set
#include "output/mixer/StretchKernels.h"

#include <algorithm>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "output/mixer/StretchKernels.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace stretch {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<u32>;

void Widen(u32 *pTo, const u32 *pFrom, const StretchColumns &columns, size_t iFirst, size_t nPixels)
{
    const Words d;
    const size_t nGroup = hn::Lanes(d);
    size_t i = 0;
    for (; i + nGroup <= nPixels; i += nGroup) {
        const u32 *pWindow = pFrom + StretchWindow(columns, iFirst + i, nGroup);
        const auto lanes = hn::IndicesFromVec(d, hn::LoadU(d, columns.piLane + iFirst + i));
        hn::StoreU(hn::TableLookupLanes(hn::LoadU(d, pWindow), lanes), d, pTo + i);
    }
    for (; i < nPixels; i++)
        pTo[i] = pFrom[columns.piSource[iFirst + i]];
}

void Stream(u32 *pTo, const u32 *pFrom, size_t nPixels)
{
    const Words d;
    const size_t nLanes = hn::Lanes(d);
    size_t i = 0;
    for (; i < nPixels && reinterpret_cast<uintptr_t>(pTo + i) % (nLanes * sizeof(u32)) != 0; i++)
        pTo[i] = pFrom[i];
    for (; i + nLanes <= nPixels; i += nLanes)
        hn::Stream(hn::LoadU(d, pFrom + i), d, pTo + i);
    std::copy(pFrom + i, pFrom + nPixels, pTo + i);
}

void Fence()
{
    hwy::FlushStream();
}

const StretchKernels *TableOfTarget()
{
    static const StretchKernels table = {hn::Lanes(Words()), Widen, Stream, Fence};
    return &table;
}

} // namespace HWY_NAMESPACE
} // namespace stretch
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace stretch {
HWY_EXPORT(TableOfTarget);

static const StretchKernels *TableOfProcessor()
{
    return HWY_DYNAMIC_DISPATCH(TableOfTarget)();
}
} // namespace stretch

const StretchKernels &GetStretchKernels()
{
    return *stretch::TableOfProcessor();
}
#endif
