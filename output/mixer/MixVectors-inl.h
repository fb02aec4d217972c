// MixVectors-inl.h -- the words of the mix arithmetic over vectors of pixels; once per instruction set
#if defined(VD_MIX_VECTORS) == defined(HWY_TARGET_TOGGLE)
#ifdef VD_MIX_VECTORS
#undef VD_MIX_VECTORS
#else
#define VD_MIX_VECTORS
#endif

#include "platform/BaseTypes.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace mix {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<u32>;
using Integers = hn::RebindToSigned<Words>;
using Floats = hn::RebindToFloat<Words>;

struct Pixel {
    hn::Vec<Words> v;
};

struct Flag {
    hn::Mask<Words> m;
};

#define VD_MIX_FUNCTION static HWY_INLINE HWY_MAYBE_UNUSED

VD_MIX_FUNCTION Pixel operator&(Pixel p, Pixel q)
{
    return {hn::And(p.v, q.v)};
}
VD_MIX_FUNCTION Pixel operator^(Pixel p, Pixel q)
{
    return {hn::Xor(p.v, q.v)};
}
VD_MIX_FUNCTION Pixel operator+(Pixel p, Pixel q)
{
    return {hn::Add(p.v, q.v)};
}
VD_MIX_FUNCTION Pixel operator>>(Pixel p, [[maybe_unused]] int nPlaces)
{
    return {hn::ShiftRight<8>(p.v)};
}
VD_MIX_FUNCTION Pixel Word(u32 n)
{
    return {hn::Set(Words(), n)};
}
VD_MIX_FUNCTION Flag IsZero(Pixel p)
{
    return {hn::Eq(p.v, hn::Zero(Words()))};
}
VD_MIX_FUNCTION Flag Less(Pixel p, Pixel q)
{
    return {hn::RebindMask(Words(), hn::Lt(hn::BitCast(Integers(), p.v), hn::BitCast(Integers(), q.v)))};
}
VD_MIX_FUNCTION Pixel Select(Flag f, Pixel p, Pixel q)
{
    return {hn::IfThenElse(f.m, p.v, q.v)};
}

#if HWY_TARGET == HWY_SCALAR

// The last resort knows one lane only, so a pair of bytes in one word does not work there.
struct Channels {
    u32 b, g, r;
};

VD_MIX_FUNCTION Channels Split(Pixel p)
{
    return {p.v.raw & 0xFF, (p.v.raw >> 8) & 0xFF, (p.v.raw >> 16) & 0xFF};
}
VD_MIX_FUNCTION Channels Spread(Pixel p)
{
    return {p.v.raw, p.v.raw, p.v.raw};
}
VD_MIX_FUNCTION Channels TimesOver255(Channels c, Channels s)
{
    return {c.b * s.b / 255, c.g * s.g / 255, c.r * s.r / 255};
}
VD_MIX_FUNCTION Channels TimesOver768(Channels c, Channels s)
{
    return {c.b * s.b / 768, c.g * s.g / 768, c.r * s.r / 768};
}
VD_MIX_FUNCTION Pixel AssembleWide(Channels c)
{
    return {hn::Set(Words(), c.b | c.g << 8 | c.r << 16)};
}
VD_MIX_FUNCTION Pixel BlueAndRed(Pixel p, u32 m, u32 n)
{
    return {hn::Set(Words(), m * (p.v.raw & 0xFF) + n * (p.v.raw >> 16 & 0xFF))};
}
VD_MIX_FUNCTION Pixel Bytes(Pixel p, u32 i, u32 j, u32 k)
{
    const auto byte = [&](u32 iByte) { return p.v.raw >> 8 * iByte & 0xFF; };
    return {hn::Set(Words(), byte(i) | byte(j) << 8 | byte(k) << 16)};
}
VD_MIX_FUNCTION Pixel Assemble(Channels c)
{
    return AssembleWide(c);
}
VD_MIX_FUNCTION Pixel EachByte(Pixel p)
{
    return {hn::Set(Words(), p.v.raw * 0x010101)};
}
VD_MIX_FUNCTION Pixel WeightedOver255(Pixel w, Pixel p1, Pixel p2)
{
    const Channels cw = Split(w), c1 = Split(p1), c2 = Split(p2);
    const auto mean = [](u32 nWeight, u32 n1, u32 n2) { return (nWeight * n1 + (255 - nWeight) * n2) / 255; };
    return Assemble({mean(cw.b, c1.b, c2.b), mean(cw.g, c1.g, c2.g), mean(cw.r, c1.r, c2.r)});
}
VD_MIX_FUNCTION Pixel ProductOver255(Pixel p1, Pixel p2)
{
    return Assemble(TimesOver255(Split(p1), Split(p2)));
}

#else

using Halves = hn::Repartition<u16, Words>;
using Octets = hn::Repartition<u8, Words>;

// Two colour bytes of each pixel in each, widened: blue and red; green and alpha, which Assemble drops.
struct Channels {
    hn::Vec<Halves> even;
    hn::Vec<Halves> odd;
};

VD_MIX_FUNCTION Channels Split(Pixel p)
{
    const auto halves = hn::BitCast(Halves(), p.v);
    return {hn::And(halves, hn::Set(Halves(), u16{0xFF})), hn::ShiftRight<8>(halves)};
}
VD_MIX_FUNCTION Channels Spread(Pixel p)
{
    const auto halves = hn::BitCast(Halves(), hn::Or(p.v, hn::ShiftLeft<16>(p.v)));
    return {halves, halves};
}
// Exact for every 16-bit number: 0x8081 / 2^23 is just above 1 / 255, by less than any of them can show.
VD_MIX_FUNCTION hn::Vec<Halves> HalvesOver255(hn::Vec<Halves> v)
{
    return hn::ShiftRight<7>(hn::MulHigh(v, hn::Set(Halves(), u16{0x8081})));
}
// The product can need 18 bits. With high = trunc(product / 256) and low the rest, it is 255 high + (high + low).
VD_MIX_FUNCTION hn::Vec<Halves> HalvesTimesOver255(hn::Vec<Halves> c, hn::Vec<Halves> s)
{
    const auto high = hn::MulHigh(hn::ShiftLeft<8>(c), s);
    const auto low = hn::And(hn::Mul(c, s), hn::Set(Halves(), u16{0xFF}));
    return hn::Add(high, HalvesOver255(hn::Add(high, low)));
}
VD_MIX_FUNCTION Channels TimesOver255(Channels c, Channels s)
{
    return {HalvesTimesOver255(c.even, s.even), HalvesTimesOver255(c.odd, s.odd)};
}
// Over 256 and then over 3, each exact: 0x5556 / 2^16 is above 1 / 3 by less than a number below 2^15 can show.
VD_MIX_FUNCTION hn::Vec<Halves> HalvesTimesOver768(hn::Vec<Halves> c, hn::Vec<Halves> s)
{
    return hn::MulHigh(hn::MulHigh(hn::ShiftLeft<8>(c), s), hn::Set(Halves(), u16{0x5556}));
}
VD_MIX_FUNCTION Channels TimesOver768(Channels c, Channels s)
{
    return {HalvesTimesOver768(c.even, s.even), HalvesTimesOver768(c.odd, s.odd)};
}
VD_MIX_FUNCTION Pixel Assemble(Channels c)
{
    const auto green = hn::BitCast(Words(), hn::ShiftLeft<8>(c.odd));
    return {hn::OrAnd(hn::BitCast(Words(), c.even), green, hn::Set(Words(), 0xFF00u))};
}
VD_MIX_FUNCTION Pixel BlueAndRed(Pixel p, u32 m, u32 n)
{
    using Signed = hn::RebindToSigned<Halves>;
    const auto bytes = hn::BitCast(Signed(), hn::And(p.v, hn::Set(Words(), 0x00FF00FFu)));
    const auto factors = hn::BitCast(Signed(), hn::Set(Words(), m | n << 16));
    auto rest = hn::Zero(Integers());
    const auto sum = hn::ReorderWidenMulAccumulate(Integers(), bytes, factors, rest, rest);
    return {hn::BitCast(Words(), hn::RearrangeToOddPlusEven(sum, rest))};
}
VD_MIX_FUNCTION Pixel EachByte(Pixel p)
{
    return {hn::Or(p.v, hn::Or(hn::ShiftLeft<8>(p.v), hn::ShiftLeft<16>(p.v)))};
}
// By shuffles within groups of four pixels. Each byte of nBytes, lowest first, is the number of a byte of the pixel;
// one with the high bit set gives a zero byte.
VD_MIX_FUNCTION Pixel Shuffled(Pixel p, u32 nBytes)
{
    HWY_ALIGN static constexpr u32 adwPixelOfGroup[4] = {0, 0x04040404, 0x08080808, 0x0C0C0C0C};
    const auto places = hn::Add(hn::Set(Words(), nBytes), hn::LoadDup128(Words(), adwPixelOfGroup));
    return {hn::BitCast(Words(), hn::TableLookupBytesOr0(hn::BitCast(Octets(), p.v), hn::BitCast(Octets(), places)))};
}
VD_MIX_FUNCTION Pixel Bytes(Pixel p, u32 i, u32 j, u32 k)
{
    return Shuffled(p, i | j << 8 | k << 16 | 0x80000000u);
}
// The high byte of (257 a)(256 b + 1) / 2^16 is a b / 255, truncated, for all bytes: the number before it is cut is
// above a b / 255 by less than 1 / 255. Takes a in both bytes and b in the high byte.
VD_MIX_FUNCTION hn::Vec<Halves> HighProducts(Pixel a, hn::Vec<Halves> b)
{
    return hn::MulHigh(hn::BitCast(Halves(), a.v), hn::Or(b, hn::Set(Halves(), u16{1})));
}
VD_MIX_FUNCTION Pixel ProductOver255(Pixel p1, Pixel p2)
{
    const auto halves = hn::BitCast(Halves(), p2.v);
    const auto even = HighProducts(Shuffled(p1, 0x02020000), hn::ShiftLeft<8>(halves));
    const auto odd = HighProducts(Shuffled(p1, 0x03030101), hn::And(halves, hn::Set(Halves(), u16{0xFF00})));
    const auto low = hn::BitCast(Words(), hn::ShiftRight<8>(even));
    return {hn::OrAnd(low, hn::BitCast(Words(), odd), hn::Set(Words(), 0xFF00u))};
}

#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128

#if HWY_TARGET <= HWY_AVX3
#define VD_MIX_INTRINSIC(name) _mm512_##name
#elif HWY_TARGET == HWY_AVX2
#define VD_MIX_INTRINSIC(name) _mm256_##name
#else
#define VD_MIX_INTRINSIC(name) _mm_##name
#endif

// (w v1 + (255 - w) v2) / 255 for bytes v that come as v - 128, with 255 - w in the low and w in the high byte. One
// instruction multiplies bytes and adds the pairs, if one factor has a sign; what is added then makes the sum
// s - 32640 to s + 1, since (257 (s + 1)) / 2^16 is s / 255, truncated, for all of them. Alpha has no weights, and gets
// nothing added: it stays 0.
VD_MIX_FUNCTION hn::Vec<Halves> MeansOver255(hn::Vec<Octets> weights, hn::Vec<Octets> values)
{
    const hn::Vec<Halves> sum = {VD_MIX_INTRINSIC(maddubs_epi16)(weights.raw, values.raw)};
    const auto more = hn::BitCast(Halves(), hn::Set(hn::Repartition<u64, Words>(), 0x00007F817F817F81u));
    return hn::MulHigh(hn::Add(sum, more), hn::Set(Halves(), u16{257}));
}
VD_MIX_FUNCTION Pixel WeightedOver255(Pixel w, Pixel p1, Pixel p2)
{
    const Octets d;
    const auto colour = hn::Set(Words(), 0x00FFFFFFu);
    const auto w1 = hn::BitCast(d, hn::And(w.v, colour));
    const auto w2 = hn::BitCast(d, hn::AndNot(w.v, colour));
    const auto v1 = hn::Xor(hn::BitCast(d, p1.v), hn::Set(d, u8{0x80}));
    const auto v2 = hn::Xor(hn::BitCast(d, p2.v), hn::Set(d, u8{0x80}));
    const auto lower = MeansOver255(hn::InterleaveLower(d, w2, w1), hn::InterleaveLower(d, v2, v1));
    const auto upper = MeansOver255(hn::InterleaveUpper(d, w2, w1), hn::InterleaveUpper(d, v2, v1));
    return {hn::Vec<Words>{VD_MIX_INTRINSIC(packus_epi16)(lower.raw, upper.raw)}};
}

#undef VD_MIX_INTRINSIC

#else

VD_MIX_FUNCTION hn::Vec<Halves> MeansOver255(hn::Vec<Halves> w, hn::Vec<Halves> c1, hn::Vec<Halves> c2)
{
    const auto rest = hn::Sub(hn::Set(Halves(), u16{255}), w);
    return HalvesOver255(hn::Add(hn::Mul(w, c1), hn::Mul(rest, c2)));
}
VD_MIX_FUNCTION Pixel WeightedOver255(Pixel w, Pixel p1, Pixel p2)
{
    const Channels cw = Split(w), c1 = Split(p1), c2 = Split(p2);
    return Assemble({MeansOver255(cw.even, c1.even, c2.even), MeansOver255(cw.odd, c1.odd, c2.odd)});
}

#endif

VD_MIX_FUNCTION Pixel AssembleWide(Channels c)
{
    const auto green = hn::And(hn::BitCast(Words(), c.odd), hn::Set(Words(), 0xFFFFu));
    return {hn::Or(hn::BitCast(Words(), c.even), hn::ShiftLeft<8>(green))};
}

#endif

#define VD_MIX_ARITHMETIC(...) __VA_ARGS__
#include "output/mixer/MixArithmetic-inl.h"
#undef VD_MIX_ARITHMETIC
#undef VD_MIX_FUNCTION

} // namespace HWY_NAMESPACE
} // namespace mix
HWY_AFTER_NAMESPACE();

#endif
