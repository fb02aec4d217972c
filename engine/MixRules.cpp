// MixRules.cpp -- the list of mixer rules: adding, removing
#include "engine/MixRules.h"

#include "controls/ControlManager.h"
#include "engine/PresetNews.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <cstring>

namespace {

constexpr i32 WEIGHT_MAX = 255;
constexpr i32 WEIGHT_DEFAULT = 128;
constexpr u32 ALL_SOURCES = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;

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

void TellRules(PresetState *lppsi)
{
    TellIfCurrent({NewsKind::Mixer, lppsi, nullptr, nullptr, nullptr});
}

} // namespace

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
    TellRules(lppsi);
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
    TellRules(lppsi);
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
    const u32 bAny = lppsi->nMixRules > 0;
    lppsi->nMixRules = 0;
    if (bAny)
        TellRules(lppsi);
}
