// remap.h -- the mix kernels and programs of them, which run over whole images
#pragma once

#include "platform/BaseTypes.h"

#include <bit>

constexpr u32 MIX_STEPS_MAX = 32;

// What a step computes. The four that stand beside their twins are how both paths of the mixer get their results
// from one engine: Tile planes is a Copy in one pass, and Intensity Scale has another measure there.
enum class MixKernel : u8 {
    Copy,
    Blend,
    OverwriteBackground,
    OnlyWriteForeground,
    BlendXor,
    BlendMax,
    BlendAlpha,
    BlendBoolean,
    InvertX,
    InvertY,
    InvertXY,
    GunShift1,
    GunShift2,
    Negative,
    IntensityScale,
    IntensityScaleOnePass,
    IntensityScaleRgb,
    Displace,
    Count
};

// Where a step reads: an image, the result of an earlier step, or zeros.
struct MixOperand {
    const u32 *pImage; // width x height pixels; null: not an image
    i32 iStep;         // with pImage null: the earlier step; below 0: zeros
};

constexpr MixOperand MIX_OPERAND_ZERO = {nullptr, -1};

struct MixStep {
    MixKernel eKernel;
    u32 iWeight;          // Blend only: place of its weight in a list that changes more often than the steps
    MixOperand asFrom[3]; // source #1, source #2, mask; those that the kernel does not use are not looked at
    u32 *pTo;             // image that receives the result; null: only later steps read it
};

// Steps that run together, pixel by pixel in their order: a step sees what earlier steps made at its pixel, and in
// images what stood there before the program ran. Images are all of one size, rows without gaps, aligned to 64
// bytes. The mirrors and Displace read elsewhere than at their pixel, so their source #1 has to be an image, and
// one that no step of the program writes.
struct MixProgram {
    i32 nWidth;
    i32 nHeight;
    u32 nSteps;
    MixStep asStep[MIX_STEPS_MAX];
};

// True for the mirrors and Displace.
bool KernelIsSpatial(MixKernel eKernel);
// How many of a step's operands the kernel reads.
u32 KernelSources(MixKernel eKernel);

// Mirrors a coordinate into 0 to n - 1: the low edge without repeating its pixel, the high edge with it.
i32 ReflectCoordinate(i32 v, i32 n);

// What Displace makes of a sum of colour bytes, 0 to 765: how far (a twelfth of it, in pixels), and in which direction
// (in radians).
constexpr u32 DISPLACE_LEVELS = 766;
constexpr f32 DISPLACE_MAGNITUDE_UNIT = std::bit_cast<f32>(0x3DAAAAABu); // 1 / 12
constexpr f32 DISPLACE_ANGLE_UNIT = std::bit_cast<f32>(0x3C05F92Du);     // 6.28 / 768
constexpr i32 DISPLACE_WAY_MAX = 63;

// Cosine and sine of a direction. Made from the double functions and rounded to single: none of these angles has a
// cosine or sine so close to the middle between two single numbers that two sound math libraries could round it
// differently, so the pictures are the same everywhere. The functions of single precision do differ.
struct DisplaceDirection {
    f32 fCos;
    f32 fSin;
};

// By the sum of colour bytes: DISPLACE_LEVELS entries.
const DisplaceDirection *GetDisplaceDirections();
