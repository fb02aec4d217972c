// MixKernels.cpp -- the kernels of the mix operators, compiled for each instruction set and chosen at run time
#include "output/mixer/MixKernels.h"

#include "output/mixer/MixKernelList.h"

#include <algorithm>
#include <cstring>

// Vectors stand in records here, which those of variable size cannot.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "output/mixer/MixKernels.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include "output/mixer/MixVectors-inl.h"
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace mix {
namespace HWY_NAMESPACE {

// One record per kernel: how many sources it reads and what it makes of their pixels.
#define VD_KERNEL(name, nSources, nInstructions, expression)                                                           \
    struct name##Kernel {                                                                                              \
        static constexpr u32 SOURCES = nSources;                                                                       \
        static HWY_INLINE Pixel Run([[maybe_unused]] Pixel p1, [[maybe_unused]] Pixel p2, [[maybe_unused]] Pixel m,    \
                                    [[maybe_unused]] Pixel w)                                                          \
        {                                                                                                              \
            return expression;                                                                                         \
        }                                                                                                              \
    };
VD_MIX_KERNELS(VD_KERNEL)
#undef VD_KERNEL

// A block lies in eight registers: as many as calls pass on.
#ifndef VD_EACH
#define VD_EACH(m) m(0) m(1) m(2) m(3) m(4) m(5) m(6) m(7)
#define VD_REGISTERS Pixel a0, Pixel a1, Pixel a2, Pixel a3, Pixel a4, Pixel a5, Pixel a6, Pixel a7
#define VD_ARGUMENTS a0, a1, a2, a3, a4, a5, a6, a7
#endif

constexpr size_t LANES = hn::MaxLanes(Words());
constexpr size_t CACHE_LINE_PIXELS = 16;
constexpr size_t BLOCK = LANES * 8;
static_assert(MIX_BLOCK_MAX % BLOCK == 0);

using ChainFn = void (*)(const MixStage *, size_t, VD_REGISTERS);

static HWY_INLINE void CallNext(const MixStage *pStage, size_t i, VD_REGISTERS)
{
    reinterpret_cast<ChainFn>(pStage[1].pfn)(pStage + 1, i, VD_ARGUMENTS);
}

// Compilers fold a load into the masked move that uses it, which then waits for the mask: half the speed.
static HWY_INLINE Pixel LoadApart(const u32 *p)
{
    Pixel pixel = {hn::LoadU(Words(), p)};
#if HWY_TARGET == HWY_AVX3
    asm("" : "+v"(pixel.v.raw));
#endif
    return pixel;
}

static HWY_INLINE const u32 *PlaceAt(const StageSource &from, size_t i)
{
    return from.pBase + (i & from.nMask);
}

template <class Kernel, u32 fInRegisters, u32 iSource>
static HWY_INLINE Pixel Operand(const u32 *const *ap, size_t iPixel, Pixel a)
{
    if constexpr (iSource < Kernel::SOURCES && (fInRegisters >> iSource & 1) == 0)
        return LoadApart(ap[iSource] + iPixel);
    else
        return a;
}

template <class Kernel, u32 fInRegisters>
static HWY_INLINE Pixel RunOne(const u32 *const *ap, size_t iPixel, Pixel a, Pixel w)
{
    return Kernel::Run(Operand<Kernel, fInRegisters, 0>(ap, iPixel, a), Operand<Kernel, fInRegisters, 1>(ap, iPixel, a),
                       Operand<Kernel, fInRegisters, 2>(ap, iPixel, a), w);
}

template <class Kernel, u32 fInRegisters, bool bFetch> void PointStage(const MixStage *pStage, size_t i, VD_REGISTERS)
{
    const u32 *ap[3] = {PlaceAt(pStage->asFrom[0], i), PlaceAt(pStage->asFrom[1], i), PlaceAt(pStage->asFrom[2], i)};
    const Pixel w = Word(pStage->nWeight);
#define VD_RUN(k)                                                                                                      \
    if constexpr (bFetch && k * LANES % CACHE_LINE_PIXELS == 0)                                                        \
        hwy::Prefetch(pStage->pAhead + i + k * LANES);                                                                 \
    a##k = RunOne<Kernel, fInRegisters>(ap, k * LANES, a##k, w);
    VD_EACH(VD_RUN)
#undef VD_RUN
    CallNext(pStage, i, VD_ARGUMENTS);
}

template <class Kernel, bool bStream> void RunAlone(const MixStage &stage, size_t iFirst, size_t iEnd)
{
    const u32 *ap[3] = {stage.asFrom[0].pBase, stage.asFrom[1].pBase, stage.asFrom[2].pBase};
    const Pixel w = Word(stage.nWeight);
    u32 *pTo = stage.to.pBase;
    for (size_t i = iFirst; i < iEnd; i += LANES) {
        const Pixel pixel = RunOne<Kernel, 0>(ap, i, w, w);
        if constexpr (bStream)
            hn::Stream(pixel.v, Words(), pTo + i);
        else
            hn::StoreU(pixel.v, Words(), pTo + i);
    }
}

void FetchStage(const MixStage *pStage, size_t i, VD_REGISTERS)
{
    const u32 *pEnd = PlaceAt(pStage->asFrom[0], i) + BLOCK;
    ptrdiff_t iPixel = -static_cast<ptrdiff_t>(BLOCK);
    asm("" : "+r"(iPixel)); // keeps it a loop: fetching by one instruction, memory is better foreseen
    do {
        hwy::Prefetch(pEnd + iPixel);
        iPixel += static_cast<ptrdiff_t>(CACHE_LINE_PIXELS);
    } while (iPixel < 0);
    CallNext(pStage, i, VD_ARGUMENTS);
}

void FillStage(const MixStage *pStage, size_t i, VD_REGISTERS)
{
    pStage->pfnFill(*pStage, i);
#define VD_FORGET(k) a##k = Word(0);
    VD_EACH(VD_FORGET)
#undef VD_FORGET
    CallNext(pStage, i, VD_ARGUMENTS);
}

template <bool bStream> void WriteStage(const MixStage *pStage, size_t i, VD_REGISTERS)
{
    u32 *pTo = pStage->to.pBase + (i & pStage->to.nMask);
#define VD_WRITE(k)                                                                                                    \
    if constexpr (bStream)                                                                                             \
        hn::Stream(a##k.v, Words(), pTo + k * LANES);                                                                  \
    else                                                                                                               \
        hn::StoreU(a##k.v, Words(), pTo + k * LANES);
    VD_EACH(VD_WRITE)
#undef VD_WRITE
    CallNext(pStage, i, VD_ARGUMENTS);
}

void EndStage(const MixStage *, size_t, VD_REGISTERS)
{
#define VD_FORGET(k) (void)a##k;
    VD_EACH(VD_FORGET)
#undef VD_FORGET
}

// Stages leave with vectors in the registers that they pass on, so the compiler lets none of them clear the upper
// halves. Full ones would make all narrow code that this thread runs later, modules above all, several times slower.
static HWY_INLINE void ClearUpperHalves()
{
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
    _mm256_zeroupper();
#endif
}

void RunChain(const MixStage *pChain, size_t iFirst, size_t iEnd)
{
    const auto pfnFirst = reinterpret_cast<ChainFn>(pChain->pfn);
    for (size_t i = iFirst; i < iEnd; i += BLOCK) {
#define VD_START(k) const Pixel a##k = Word(0);
        VD_EACH(VD_START)
#undef VD_START
        pfnFirst(pChain, i, VD_ARGUMENTS);
    }
    ClearUpperHalves();
}

void Fence()
{
    hwy::FlushStream();
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
    return hn::Min(distance, hn::Sub(hn::Sub(hn::Add(n, n), hn::Set(Integers(), 1)), distance));
}

// Pixels that a displacement takes through its four passes at a time. Lookups are plain loads: gathering vectors
// are slower on most processors, and the passes lie far enough apart for what one stores to be there for the next.
constexpr size_t DISPLACE_CHUNK = BLOCK;

struct DisplaceChunk {
    HWY_ALIGN u32 adwDirection[DISPLACE_CHUNK]; // sums
    HWY_ALIGN f32 afFar[DISPLACE_CHUNK];
    HWY_ALIGN DisplaceDirection asDirection[DISPLACE_CHUNK];
    HWY_ALIGN u32 adwPlace[DISPLACE_CHUNK];
};

static HWY_INLINE void MeasureChunk(DisplaceChunk *pChunk, const u32 *pFar, const u32 *pDirection)
{
    for (size_t i = 0; i < DISPLACE_CHUNK; i += LANES) {
        const auto far = hn::BitCast(Integers(), MixSum({hn::LoadU(Words(), pFar + i)}).v);
        const auto length = hn::Mul(hn::ConvertTo(Floats(), far), hn::Set(Floats(), DISPLACE_MAGNITUDE_UNIT));
        hn::Store(length, Floats(), pChunk->afFar + i);
        hn::Store(MixSum({hn::LoadU(Words(), pDirection + i)}).v, Words(), pChunk->adwDirection + i);
    }
}

// Where the pixels of a chunk come from; images wider and higher than the longest way.
static HWY_INLINE void PlaceChunk(DisplaceChunk *pChunk, const DisplaceSpan &span, i32 x)
{
    const Integers d;
    const auto width = hn::Set(d, span.nWidth);
    const auto height = hn::Set(d, span.nHeight);
    const auto lanes = hn::Iota(d, 0); // a constant; from x on it would be put together in memory each time
    for (size_t i = 0; i < DISPLACE_CHUNK; i += LANES) {
        const auto far = hn::Load(Floats(), pChunk->afFar + i);
        hn::Vec<Floats> cosine, sine;
        hn::LoadInterleaved2(Floats(), &pChunk->asDirection[i].fCos, cosine, sine);
        const auto x2 =
            hn::Add(hn::Add(lanes, hn::Set(d, x + static_cast<i32>(i))), hn::ConvertTo(d, hn::Mul(far, cosine)));
        const auto y2 = hn::Add(hn::Set(d, span.y), hn::ConvertTo(d, hn::Mul(far, sine)));
        const auto place = hn::Add(hn::Mul(ReflectNear(y2, height), width), ReflectNear(x2, width));
        hn::Store(hn::BitCast(Words(), place), Words(), pChunk->adwPlace + i);
    }
}

static HWY_INLINE void DisplaceChunkAt(u32 *pTo, const DisplaceSpan &span, i32 x, const u32 *pFar,
                                       const u32 *pDirection, size_t nPixels)
{
    DisplaceChunk chunk;
    MeasureChunk(&chunk, pFar, pDirection);
    for (size_t i = 0; i < DISPLACE_CHUNK; i++)
        std::memcpy(&chunk.asDirection[i], span.pDirections + chunk.adwDirection[i], sizeof(DisplaceDirection));
    PlaceChunk(&chunk, span, x);
    for (size_t i = 0; i < nPixels; i++)
        pTo[i] = span.pImage[chunk.adwPlace[i]];
}

void Displace(u32 *pTo, const DisplaceSpan &span, const u32 *pFar, const u32 *pDirection, size_t nPixels)
{
    size_t i = 0;
    for (; i + DISPLACE_CHUNK <= nPixels; i += DISPLACE_CHUNK)
        DisplaceChunkAt(pTo + i, span, span.x + static_cast<i32>(i), pFar + i, pDirection + i, DISPLACE_CHUNK);
    if (i == nPixels)
        return;
    u32 adwFar[DISPLACE_CHUNK] = {};
    u32 adwDirection[DISPLACE_CHUNK] = {};
    std::copy_n(pFar + i, nPixels - i, adwFar);
    std::copy_n(pDirection + i, nPixels - i, adwDirection);
    DisplaceChunkAt(pTo + i, span, span.x + static_cast<i32>(i), adwFar, adwDirection, nPixels - i);
}

template <class Kernel, u32 fInRegisters = 0> void FillRow(StageFn (*apfn)[2])
{
    apfn[fInRegisters][0] = reinterpret_cast<StageFn>(PointStage<Kernel, fInRegisters, false>);
    apfn[fInRegisters][1] = reinterpret_cast<StageFn>(PointStage<Kernel, fInRegisters, true>);
    if constexpr (fInRegisters + 1 < 1u << Kernel::SOURCES)
        FillRow<Kernel, fInRegisters + 1>(apfn);
}

template <class Kernel> void FillRowOf(KernelTable *pTable, MixKernel eKernel)
{
    FillRow<Kernel>(pTable->apfnPoint[static_cast<size_t>(eKernel)]);
    pTable->apfnAlone[static_cast<size_t>(eKernel)][0] = RunAlone<Kernel, false>;
    pTable->apfnAlone[static_cast<size_t>(eKernel)][1] = RunAlone<Kernel, true>;
}

KernelTable MakeTable()
{
    KernelTable table = {};
    table.nBlock = BLOCK;
#define VD_ROW(name, nSources, nInstructions, expression) FillRowOf<name##Kernel>(&table, MixKernel::name);
    VD_MIX_KERNELS(VD_ROW)
#undef VD_ROW
    table.pfnFetch = reinterpret_cast<StageFn>(FetchStage);
    table.pfnFill = reinterpret_cast<StageFn>(FillStage);
    table.pfnStore = reinterpret_cast<StageFn>(WriteStage<false>);
    table.pfnStream = reinterpret_cast<StageFn>(WriteStage<true>);
    table.pfnEnd = reinterpret_cast<StageFn>(EndStage);
    table.pfnRun = RunChain;
    table.pfnFence = Fence;
    table.pfnReverse = Reverse;
    table.pfnDisplace = Displace;
    return table;
}

const KernelTable *TableOfTarget()
{
    static const KernelTable table = MakeTable();
    return &table;
}

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
