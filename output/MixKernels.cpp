// MixKernels.cpp -- the kernels of the mix operators, compiled for each instruction set and chosen at run time
#include "output/MixKernels.h"

#include <cstring>

// Vectors stand in records here, which those of variable size cannot.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "output/MixKernels.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include "output/MixVectors-inl.h"
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace mix {
namespace HWY_NAMESPACE {

// One record per kernel: how many sources it reads and what it makes of their pixels.
#define VD_KERNEL(name, nSources, expression)                                                                          \
    struct name {                                                                                                      \
        static constexpr u32 SOURCES = nSources;                                                                       \
        static HWY_INLINE Pixel Run([[maybe_unused]] Pixel p1, [[maybe_unused]] Pixel p2, [[maybe_unused]] Pixel m,    \
                                    [[maybe_unused]] Pixel w)                                                          \
        {                                                                                                              \
            return expression;                                                                                         \
        }                                                                                                              \
    }

VD_KERNEL(CopyKernel, 1, p1);
VD_KERNEL(BlendKernel, 2, MixBlend(p1, p2, w));
VD_KERNEL(OverwriteBackgroundKernel, 2, MixOverwriteBackground(p1, p2));
VD_KERNEL(OnlyWriteForegroundKernel, 2, MixOnlyWriteForeground(p1, p2));
VD_KERNEL(BlendXorKernel, 2, MixBlendXor(p1, p2));
VD_KERNEL(BlendMaxKernel, 2, MixBlendMax(p1, p2));
VD_KERNEL(BlendAlphaKernel, 3, MixBlendAlpha(p1, p2, m));
VD_KERNEL(BlendBooleanKernel, 3, MixBlendBoolean(p1, p2, m));
VD_KERNEL(GunShift1Kernel, 1, MixGunShift1(p1));
VD_KERNEL(GunShift2Kernel, 1, MixGunShift2(p1));
VD_KERNEL(NegativeKernel, 1, MixNegative(p1));
VD_KERNEL(IntensityScaleKernel, 2, MixIntensityScale(p1, p2));
VD_KERNEL(IntensityScaleOnePassKernel, 2, MixIntensityScaleOnePass(p1, p2));
VD_KERNEL(IntensityScaleRgbKernel, 2, MixIntensityScaleRgb(p1, p2));
#undef VD_KERNEL

template <class Kernel> static HWY_INLINE Pixel RunAt(const u32 *const *apFrom, size_t i, Pixel w)
{
    const Words d;
    Pixel p[3] = {w, w, w};
    for (u32 n = 0; n < Kernel::SOURCES; n++)
        p[n].v = hn::LoadU(d, apFrom[n] + i);
    return Kernel::Run(p[0], p[1], p[2], w);
}

// The pixels behind the last whole vector, by way of vectors of their own: nothing reads or writes beyond an image.
template <class Kernel> void RunRest(u32 *pTo, const u32 *const *apFrom, size_t nPixels, Pixel w)
{
    const Words d;
    HWY_ALIGN u32 aadwFrom[3][hn::MaxLanes(d)] = {};
    HWY_ALIGN u32 adwTo[hn::MaxLanes(d)];
    const u32 *apPadded[3] = {aadwFrom[0], aadwFrom[1], aadwFrom[2]};
    for (u32 n = 0; n < Kernel::SOURCES; n++)
        std::memcpy(aadwFrom[n], apFrom[n], nPixels * sizeof(u32));
    hn::Store(RunAt<Kernel>(apPadded, 0, w).v, d, adwTo);
    std::memcpy(pTo, adwTo, nPixels * sizeof(u32));
}

template <class Kernel, bool bStream>
void RunKernel(u32 *pTo, const u32 *const *apFrom, size_t nPixels, u32 nWeight)
{
    const Words d;
    const size_t nLanes = hn::Lanes(d);
    const Pixel w = {hn::Set(d, nWeight)};
    const u32 *apAt[3] = {apFrom[0], apFrom[1], apFrom[2]};
    size_t i = 0;
    for (; i + nLanes <= nPixels; i += nLanes) {
        const Pixel p = RunAt<Kernel>(apAt, i, w);
        if constexpr (bStream)
            hn::Stream(p.v, d, pTo + i);
        else
            hn::StoreU(p.v, d, pTo + i);
    }
    for (const u32 *&p : apAt)
        p = p ? p + i : nullptr;
    if (i < nPixels)
        RunRest<Kernel>(pTo + i, apAt, nPixels - i, w);
}

void Reverse(u32 *pTo, const u32 *pFromEnd, size_t nPixels)
{
    const Words d;
    const size_t nLanes = hn::Lanes(d);
    size_t i = 0;
    for (; i + nLanes <= nPixels; i += nLanes)
        hn::StoreU(hn::Reverse(d, hn::LoadU(d, pFromEnd - i - nLanes)), d, pTo + i);
    for (; i < nPixels; i++)
        pTo[i] = *(pFromEnd - 1 - i);
}

// Mirrors into 0 to n - 1 what lies less than n outside of it on either side.
static HWY_INLINE hn::Vec<Integers> ReflectNear(hn::Vec<Integers> v, hn::Vec<Integers> n)
{
    const auto distance = hn::Abs(v);
    const auto mirrored = hn::Sub(hn::Sub(hn::Add(n, n), hn::Set(Integers(), 1)), distance);
    return hn::IfThenElse(hn::Lt(distance, n), distance, mirrored);
}

static HWY_INLINE hn::Vec<Integers> Offset(hn::Vec<Floats> far, const f32 *pTable, hn::Vec<Integers> direction)
{
    return hn::ConvertTo(Integers(), hn::Mul(far, hn::GatherIndex(Floats(), pTable, direction)));
}

// The displaced pixels of one vector; images at least as wide and high as the longest way.
static HWY_INLINE Pixel DisplaceAt(const DisplaceSpan &span, const DisplaceTables &tables, i32 x, Pixel p1, Pixel p2)
{
    const Integers d;
    const auto sum1 = hn::BitCast(d, MixSum(p1).v);
    const auto sum2 = hn::BitCast(d, MixSum(p2).v);
    const auto far = hn::Mul(hn::ConvertTo(Floats(), sum1), hn::Set(Floats(), DISPLACE_MAGNITUDE_UNIT));
    const auto x2 = hn::Add(hn::Iota(d, x), Offset(far, tables.afCos, sum2));
    const auto y2 = hn::Add(hn::Set(d, span.y), Offset(far, tables.afSin, sum2));
    const auto width = hn::Set(d, span.nWidth);
    const auto row = hn::Mul(ReflectNear(y2, hn::Set(d, span.nHeight)), width);
    return {hn::GatherIndex(Words(), span.pImage, hn::Add(row, ReflectNear(x2, width)))};
}

void Displace(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels)
{
    const Words d;
    const size_t nLanes = hn::Lanes(d);
    const DisplaceTables &tables = GetDisplaceTables();
    size_t i = 0;
    for (; i + nLanes <= nPixels; i += nLanes) {
        const Pixel p1 = {hn::LoadU(d, pFar + i)};
        const Pixel p2 = {hn::LoadU(d, pDirection + i)};
        hn::StoreU(DisplaceAt(span, tables, span.x + static_cast<i32>(i), p1, p2).v, d, pTo + i);
    }
    HWY_ALIGN u32 aadw[2][hn::MaxLanes(d)] = {};
    if (i == nPixels)
        return;
    std::memcpy(aadw[0], pFar + i, (nPixels - i) * sizeof(u32));
    std::memcpy(aadw[1], pDirection + i, (nPixels - i) * sizeof(u32));
    const Pixel p1 = {hn::Load(d, aadw[0])};
    const Pixel p2 = {hn::Load(d, aadw[1])};
    hn::Store(DisplaceAt(span, tables, span.x + static_cast<i32>(i), p1, p2).v, d, aadw[0]);
    std::memcpy(pTo + i, aadw[0], (nPixels - i) * sizeof(u32));
}

void Fence()
{
    hwy::FlushStream();
}

#define VD_PAIR(name)                                                                                                  \
    {                                                                                                                  \
        RunKernel<name##Kernel, false>, RunKernel<name##Kernel, true>                                                  \
    }

const KernelTable *TableOfTarget()
{
    static const KernelTable table = {
        {VD_PAIR(Copy),
         VD_PAIR(Blend),
         VD_PAIR(OverwriteBackground),
         VD_PAIR(OnlyWriteForeground),
         VD_PAIR(BlendXor),
         VD_PAIR(BlendMax),
         VD_PAIR(BlendAlpha),
         VD_PAIR(BlendBoolean),
         {},
         {},
         {},
         VD_PAIR(GunShift1),
         VD_PAIR(GunShift2),
         VD_PAIR(Negative),
         VD_PAIR(IntensityScale),
         VD_PAIR(IntensityScaleOnePass),
         VD_PAIR(IntensityScaleRgb),
         {}},
        Reverse,
        Displace,
        Fence,
    };
    return &table;
}

#undef VD_PAIR

} // namespace HWY_NAMESPACE
} // namespace mix
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace mix {
HWY_EXPORT(TableOfTarget);

static const KernelTable *TableOfProcessor()
{
    return HWY_DYNAMIC_DISPATCH(TableOfTarget)();
}
} // namespace mix

const KernelTable &GetKernelTable()
{
    return *mix::TableOfProcessor();
}
#endif
