// remap.cpp -- the mix kernels
#include "output/remap.h"

#include "platform/Assert.h"

#include <cstdlib>

namespace {

using Pixel = u32;
using Flag = bool;

struct Channels {
    u32 b, g, r;
};

Channels operator+(Channels x, Channels y)
{
    return {x.b + y.b, x.g + y.g, x.r + y.r};
}
Channels operator*(Channels x, Channels y)
{
    return {x.b * y.b, x.g * y.g, x.r * y.r};
}
Pixel Word(u32 n)
{
    return n;
}
Channels Split(Pixel p)
{
    return {p & 0xFF, (p >> 8) & 0xFF, (p >> 16) & 0xFF};
}
Channels Spread(Pixel p)
{
    return {p, p, p};
}
Channels Inverse(Channels c)
{
    return {255 - c.b, 255 - c.g, 255 - c.r};
}
Channels Over255(Channels c)
{
    return {c.b / 255, c.g / 255, c.r / 255};
}
Channels TimesOver255(Channels c, Channels s)
{
    return Over255(c * s);
}
Channels TimesOver768(Channels c, Channels s)
{
    const Channels product = c * s;
    return {product.b / 768, product.g / 768, product.r / 768};
}
Pixel AssembleWide(Channels c)
{
    return c.b | c.g << 8 | c.r << 16;
}
Pixel Assemble(Channels c)
{
    return AssembleWide(c);
}
Flag IsZero(Pixel p)
{
    return p == 0;
}
Flag Less(Pixel p, Pixel q)
{
    return p < q;
}
Pixel Select(Flag f, Pixel p, Pixel q)
{
    return f ? p : q;
}

#define VD_MIX_FUNCTION
#define VD_MIX_ARITHMETIC(...) __VA_ARGS__
#include "output/MixArithmetic.inc"

struct Position {
    i32 x, y;
    size_t i;
};

u32 Displaced(const MixProgram &prog, const MixStep &step, Position at, Pixel p1, Pixel p2)
{
    const DisplaceTables &tables = GetDisplaceTables();
    const f32 fFar = tables.afMagnitude[MixSum(p1)];
    const i32 x = ReflectCoordinate(at.x + static_cast<i32>(fFar * tables.afCos[MixSum(p2)]), prog.nWidth);
    const i32 y = ReflectCoordinate(at.y + static_cast<i32>(fFar * tables.afSin[MixSum(p2)]), prog.nHeight);
    return step.asFrom[0].pImage[static_cast<size_t>(y) * static_cast<size_t>(prog.nWidth) + static_cast<size_t>(x)];
}

u32 Mirrored(const MixProgram &prog, const MixStep &step, i32 x, i32 y)
{
    return step.asFrom[0].pImage[static_cast<size_t>(y) * static_cast<size_t>(prog.nWidth) + static_cast<size_t>(x)];
}

u32 RunStep(const MixProgram &prog, const MixStep &step, const u32 *anResult, Position at)
{
    const auto read = [&](u32 iFrom) {
        const MixOperand &from = step.asFrom[iFrom];
        return from.pImage ? from.pImage[at.i] : from.iStep >= 0 ? anResult[from.iStep] : 0;
    };
    switch (step.eKernel) {
    case MixKernel::Copy:
        return read(0);
    case MixKernel::Blend:
        return MixBlend(read(0), read(1), step.nWeight);
    case MixKernel::OverwriteBackground:
        return MixOverwriteBackground(read(0), read(1));
    case MixKernel::OnlyWriteForeground:
        return MixOnlyWriteForeground(read(0), read(1));
    case MixKernel::BlendXor:
        return MixBlendXor(read(0), read(1));
    case MixKernel::BlendMax:
        return MixBlendMax(read(0), read(1));
    case MixKernel::BlendAlpha:
        return MixBlendAlpha(read(0), read(1), read(2));
    case MixKernel::BlendBoolean:
        return MixBlendBoolean(read(0), read(1), read(2));
    case MixKernel::InvertX:
        return Mirrored(prog, step, prog.nWidth - 1 - at.x, at.y);
    case MixKernel::InvertY:
        return Mirrored(prog, step, at.x, prog.nHeight - 1 - at.y);
    case MixKernel::InvertXY:
        return Mirrored(prog, step, prog.nWidth - 1 - at.x, prog.nHeight - 1 - at.y);
    case MixKernel::GunShift1:
        return MixGunShift1(read(0));
    case MixKernel::GunShift2:
        return MixGunShift2(read(0));
    case MixKernel::Negative:
        return MixNegative(read(0));
    case MixKernel::IntensityScale:
        return MixIntensityScale(read(0), read(1));
    case MixKernel::IntensityScaleOnePass:
        return MixIntensityScaleOnePass(read(0), read(1));
    case MixKernel::IntensityScaleRgb:
        return MixIntensityScaleRgb(read(0), read(1));
    case MixKernel::Displace:
        return Displaced(prog, step, at, read(0), read(1));
    case MixKernel::Count:
        break;
    }
    return 0;
}

} // namespace

bool KernelIsSpatial(MixKernel eKernel)
{
    return eKernel == MixKernel::InvertX || eKernel == MixKernel::InvertY || eKernel == MixKernel::InvertXY ||
           eKernel == MixKernel::Displace;
}

i32 ReflectCoordinate(i32 v, i32 n)
{
    const i32 nQuotient = std::abs(v) / n;
    const i32 nRest = std::abs(v) % n;
    return nQuotient % 2 ? n - 1 - nRest : nRest;
}

void RunMixProgram(const MixProgram &prog)
{
    VD_ASSERT(prog.nSteps <= MIX_STEPS_MAX);
    u32 anResult[MIX_STEPS_MAX] = {};
    for (i32 y = 0; y < prog.nHeight; y++)
        for (i32 x = 0; x < prog.nWidth; x++) {
            const Position at = {x, y,
                                 static_cast<size_t>(y) * static_cast<size_t>(prog.nWidth) + static_cast<size_t>(x)};
            for (u32 i = 0; i < prog.nSteps; i++) {
                anResult[i] = RunStep(prog, prog.asStep[i], anResult, at);
                if (prog.asStep[i].pTo)
                    prog.asStep[i].pTo[at.i] = anResult[i];
            }
        }
}
