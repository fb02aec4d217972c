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

VD_MIX_FUNCTION Channels operator+(Channels c, Channels s)
{
    return {c.b + s.b, c.g + s.g, c.r + s.r};
}
VD_MIX_FUNCTION Channels operator*(Channels c, Channels s)
{
    return {c.b * s.b, c.g * s.g, c.r * s.r};
}
VD_MIX_FUNCTION Channels Split(Pixel p)
{
    return {p.v.raw & 0xFF, (p.v.raw >> 8) & 0xFF, (p.v.raw >> 16) & 0xFF};
}
VD_MIX_FUNCTION Channels Spread(Pixel p)
{
    return {p.v.raw, p.v.raw, p.v.raw};
}
VD_MIX_FUNCTION Channels Inverse(Channels c)
{
    return {255 - c.b, 255 - c.g, 255 - c.r};
}
VD_MIX_FUNCTION Channels Over255(Channels c)
{
    return {c.b / 255, c.g / 255, c.r / 255};
}
VD_MIX_FUNCTION Channels TimesOver255(Channels c, Channels s)
{
    return Over255(c * s);
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

#else

using Halves = hn::Repartition<u16, Words>;

// Two colour bytes of each pixel in each, widened: blue and red; green and alpha, which Assemble drops.
struct Channels {
    hn::Vec<Halves> even;
    hn::Vec<Halves> odd;
};

VD_MIX_FUNCTION Channels operator+(Channels c, Channels s)
{
    return {hn::Add(c.even, s.even), hn::Add(c.odd, s.odd)};
}
VD_MIX_FUNCTION Channels operator*(Channels c, Channels s)
{
    return {hn::Mul(c.even, s.even), hn::Mul(c.odd, s.odd)};
}
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
VD_MIX_FUNCTION Channels Inverse(Channels c)
{
    const auto all = hn::Set(Halves(), u16{255});
    return {hn::Sub(all, c.even), hn::Sub(all, c.odd)};
}
// Quotients by 255 that still stand 7 bits too high, with the rest of the division below.
struct Quotients {
    hn::Vec<Halves> even;
    hn::Vec<Halves> odd;
};

// Exact for every 16-bit number: 0x8081 / 2^23 is just above 1 / 255, by less than any of them can show.
VD_MIX_FUNCTION hn::Vec<Halves> HalvesOver255High(hn::Vec<Halves> v)
{
    return hn::MulHigh(v, hn::Set(Halves(), u16{0x8081}));
}
VD_MIX_FUNCTION hn::Vec<Halves> HalvesOver255(hn::Vec<Halves> v)
{
    return hn::ShiftRight<7>(HalvesOver255High(v));
}
VD_MIX_FUNCTION Quotients Over255(Channels c)
{
    return {HalvesOver255High(c.even), HalvesOver255High(c.odd)};
}
VD_MIX_FUNCTION Pixel Assemble(Quotients q)
{
    const auto green = hn::BitCast(Words(), hn::ShiftLeft<1>(q.odd));
    const auto even = hn::BitCast(Words(), hn::ShiftRight<7>(q.even));
    return {hn::OrAnd(even, green, hn::Set(Words(), 0xFF00u))};
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
// Over 256 and then over 3, each exact: 0xAAAB / 2^17 does for 3 what the other factor does for 255.
VD_MIX_FUNCTION hn::Vec<Halves> HalvesTimesOver768(hn::Vec<Halves> c, hn::Vec<Halves> s)
{
    return hn::ShiftRight<1>(hn::MulHigh(hn::MulHigh(hn::ShiftLeft<8>(c), s), hn::Set(Halves(), u16{0xAAAB})));
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
// By shuffles within groups of four pixels; a number with the high bit set gives a zero byte.
VD_MIX_FUNCTION Pixel Bytes(Pixel p, u32 i, u32 j, u32 k)
{
    using Octets = hn::Repartition<u8, Words>;
    HWY_ALIGN static constexpr u32 adwPixelOfGroup[4] = {0, 0x040404, 0x080808, 0x0C0C0C};
    const auto places =
        hn::Add(hn::Set(Words(), i | j << 8 | k << 16 | 0x80000000u), hn::LoadDup128(Words(), adwPixelOfGroup));
    return {hn::BitCast(Words(), hn::TableLookupBytesOr0(hn::BitCast(Octets(), p.v), hn::BitCast(Octets(), places)))};
}
VD_MIX_FUNCTION Pixel AssembleWide(Channels c)
{
    const auto green = hn::And(hn::BitCast(Words(), c.odd), hn::Set(Words(), 0xFFFFu));
    return {hn::Or(hn::BitCast(Words(), c.even), hn::ShiftLeft<8>(green))};
}

#endif

#define VD_MIX_ARITHMETIC(...) __VA_ARGS__
#include "output/MixArithmetic-inl.h"
#undef VD_MIX_ARITHMETIC
#undef VD_MIX_FUNCTION

} // namespace HWY_NAMESPACE
} // namespace mix
HWY_AFTER_NAMESPACE();

#endif
