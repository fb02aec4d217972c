// MixPreparation.h -- a preset's rules made into programs of the mix kernels, once per change of the rules
#pragma once

#include "output/mixer/MixPlan.h"
#include "state/PresetState.h"

struct RuleInput {
    i32 SrcIdx1;
    i32 SrcIdx2;
    i32 AplhaIdx;
    i32 MixOp;
};

// All that the preparation depends on, and so what tells whether it still holds. Pixels are null where there is no
// picture of the size of the result. The weights are not in it: they may change every frame.
struct MixInput {
    u32 bOnePass;
    i32 nPlanes;
    u32 nMixRules;
    i32 nWidth;
    i32 nHeight;
    u32 dwReserved;
    u32 *pFinal;
    u32 *apPlane[PLANES_MAX];
    u32 *apRule[MIX_RULE_ENTRIES];
    RuleInput asRule[MIX_RULE_ENTRIES];
};

// Rules that run together.
struct PreparedRun {
    const u32 *pAside; // picture that is copied to pAsideTo first; null: none
    u32 *pAsideTo;
    MixPlan plan;
};

struct PreparedMix {
    MixInput input;
    u32 nRuns;
    PreparedRun asRun[MIX_RULE_ENTRIES];
    MixProgram onePass; // in one pass: the program of the one run
    bool bTile;         // per rule: the planes are tiled over the result afterwards
    bool bComplete;     // everything could be had that is needed; if not, the next frame tries again
};

// How often rules were prepared so far, for tests.
extern u32 nMixPreparations;

// The preset's rules, ready to run: what the call before returned if nothing that matters has changed since, with the
// weights of now. Valid until the next call. Needs at most MIX_RULE_ENTRIES rules, and hbmFinal. [main-thread]
PreparedMix *PrepareMix(const PresetState *lppsi, bool bOnePass);

// The weight of each rule, limited to 0 to 255, into MIX_RULE_ENTRIES places.
void CollectWeights(const PresetState *lppsi, u32 *anWeight);
