// PlaneMixer.h -- combines the planes of a preset into one picture by its list of rules
#pragma once

#include "state/PresetState.h"

// Result of the start-up look for accelerators, shown to the user.
extern u32 bAccelEmulated;        // non-zero: the processor mixes
extern NameText szGpuDescription; // empty when the processor mixes

// Lists the accelerators and takes the first that is no emulation. Once, at start. [main-thread]
void SetupMixAccelerator();

// Runs the rules and sets phbmOutput. bOnePass: all rules at once per pixel, without meta-planes. Returns 0 for
// a null preset, else 1. Needs at least one plane. [main-thread]
u32 MixPlanes(PresetState *lppsi, u32 bOnePass);

// Display name of an operator, or null beyond MIXOP_COUNT. Which sources it reads:
struct MixOperatorInfo {
    const char16_t *pszName;
    bool bSource2;
    bool bMask;
    bool bWeight;
};
const MixOperatorInfo *GetMixOperatorInfo(i32 nMixOp);
