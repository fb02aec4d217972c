// MixRules.cpp -- the list of mixer rules: operators, adding, removing
#include "output/mixer/PlaneMixer.h"

#include "controls/ControlManager.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <cstring>

namespace {

constexpr i32 WEIGHT_MAX = 255;
constexpr i32 WEIGHT_DEFAULT = 128;
constexpr u32 ALL_SOURCES = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;

const MixOperatorInfo asOperator[MIXOP_COUNT] = {
    {u"Tile planes", false, false, false},
    {u"Blend", true, false, true},
    {u"Overwrite Background", true, false, false},
    {u"Only Write Foreground", true, false, false},
    {u"Blend XOR", true, false, false},
    {u"Blend Max", true, false, false},
    {u"Blend using Alpha Channel", true, true, false},
    {u"Blend using Boolean Channel", true, true, false},
    {u"Invert X", false, false, false},
    {u"Invert Y", false, false, false},
    {u"Invert XY", false, false, false},
    {u"Color Gun Shift I", false, false, false},
    {u"Color Gun Shift II", false, false, false},
    {u"Negative", false, false, false},
    {u"Intensity Scale", true, false, false},
    {u"Intensity Scale RGB", true, false, false},
    {u"Displace", true, false, false},
};

void InitBlendWeight(ControlRecord *pctl)
{
    SetControlDefaults(pctl);
    pctl->Base.dwType = CONTROLTYPE_INTEGER;
    CopyText(pctl->Base.szName, u"Mixer - Blend Weighting");
    CopyText(pctl->Base.szDescription, u"Set the source #1 vs source #2 weighting for the blend operation.");
    pctl->Base.dwSourceMask = ALL_SOURCES;
    ControlInteger &value = pctl->Integer;
    value.nAbsMax = value.nDefaultMax = value.nMax = WEIGHT_MAX;
    value.nDefaultValue = value.nValue = WEIGHT_DEFAULT;
}

bool RuleFits(const PresetState *lppsi)
{
    return lppsi->nMixRules < MIX_RULES_MAX && static_cast<u32>(lppsi->nPlanes) + lppsi->nMixRules < MIX_SOURCES_MAX;
}

} // namespace

const MixOperatorInfo *GetMixOperatorInfo(i32 nMixOp)
{
    return nMixOp >= 0 && nMixOp < MIXOP_COUNT ? &asOperator[nMixOp] : nullptr;
}

MixRule *AddMixRule(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi || !lppsi->hbmFinal || !RuleFits(lppsi))
        return nullptr;
    HostBitmap *hbm = CreateBitmap(lppsi->hbmFinal->nWidth, lppsi->hbmFinal->nHeight);
    if (!hbm)
        return nullptr;
    MixRule &rule = lppsi->asMixRule[lppsi->nMixRules++];
    DeleteBitmap(rule.hbmRule); // of a rule that went when the count alone was set to 0
    rule = {};
    rule.hbmRule = hbm;
    InitBlendWeight(&rule.BlendWeight);
    return &rule;
}

u32 RemoveMixRule(PresetState *lppsi, u32 iRule)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi || iRule >= lppsi->nMixRules)
        return 0;
    DeleteBitmap(lppsi->asMixRule[iRule].hbmRule);
    lppsi->nMixRules--;
    MixRule *pRule = &lppsi->asMixRule[iRule];
    std::memmove(pRule, pRule + 1, (lppsi->nMixRules - iRule) * sizeof(MixRule));
    lppsi->asMixRule[lppsi->nMixRules] = {};
    return 1;
}

void RemoveAllMixRules(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi)
        return;
    for (MixRule &rule : lppsi->asMixRule) {
        DeleteBitmap(rule.hbmRule);
        rule = {};
    }
    lppsi->nMixRules = 0;
}
