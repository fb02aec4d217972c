// MixKernelList.h -- the mix kernels that look at their own pixel only, as one list for processors and graphics cards
#pragma once

// K(name in MixKernel, sources that it reads, roughly how many instructions it takes, what it makes of their pixels p1,
// p2, m and the weight w)
// clang-format off
#define VD_MIX_KERNELS(K)                                                \
    K(Copy, 1, 1, p1)                                                    \
    K(Blend, 2, 11, MixBlend(p1, p2, w))                                 \
    K(OverwriteBackground, 2, 3, MixOverwriteBackground(p1, p2))         \
    K(OnlyWriteForeground, 2, 3, MixOnlyWriteForeground(p1, p2))         \
    K(BlendXor, 2, 2, MixBlendXor(p1, p2))                               \
    K(BlendMax, 2, 6, MixBlendMax(p1, p2))                               \
    K(BlendAlpha, 3, 15, MixBlendAlpha(p1, p2, m))                       \
    K(BlendBoolean, 3, 4, MixBlendBoolean(p1, p2, m))                    \
    K(GunShift1, 1, 1, MixGunShift1(p1))                                 \
    K(GunShift2, 1, 1, MixGunShift2(p1))                                 \
    K(Negative, 1, 1, MixNegative(p1))                                   \
    K(IntensityScale, 2, 18, MixIntensityScale(p1, p2))                  \
    K(IntensityScaleOnePass, 2, 18, MixIntensityScaleOnePass(p1, p2))    \
    K(IntensityScaleRgb, 2, 9, MixIntensityScaleRgb(p1, p2))
// clang-format on
