// MixRules.cpp -- the list of mixer rules: adding, removing, exchanging
#include "engine/MixRules.h"

#include "controls/ControlManager.h"
#include "engine/PresetNews.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

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

HostBitmap *NewRuleBitmap(const PresetState *lppsi)
{
    return CreateBitmap(lppsi->hbmFinal->nWidth, lppsi->hbmFinal->nHeight);
}

// Empty: out of memory.
std::vector<HostBitmap *> NewRuleBitmaps(const PresetState *lppsi, size_t nRules)
{
    std::vector<HostBitmap *> bitmaps(nRules);
    std::generate(bitmaps.begin(), bitmaps.end(), [=] { return NewRuleBitmap(lppsi); });
    if (std::find(bitmaps.begin(), bitmaps.end(), nullptr) == bitmaps.end())
        return bitmaps;
    std::for_each(bitmaps.begin(), bitmaps.end(), DeleteBitmap);
    return {};
}

void FreeRules(PresetState *lppsi)
{
    for (MixRule &rule : lppsi->asMixRule) {
        DeleteBitmap(rule.hbmRule);
        rule = {};
    }
    lppsi->nMixRules = 0;
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
    HostBitmap *hbm = NewRuleBitmap(lppsi);
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

u32 SwapMixRules(PresetState *lppsi, u32 iRuleA, u32 iRuleB)
{
    ASSERT_MAIN_THREAD();
    if (std::max(iRuleA, iRuleB) >= lppsi->nMixRules)
        return 0;
    std::swap(lppsi->asMixRule[iRuleA], lppsi->asMixRule[iRuleB]);
    TellRules(lppsi);
    return 1;
}

u32 InsertMixRule(PresetState *lppsi, u32 iRule, const MixRule &rule)
{
    ASSERT_MAIN_THREAD();
    if (iRule > lppsi->nMixRules || lppsi->nMixRules >= MIX_RULES_MAX)
        return 0;
    HostBitmap *hbm = NewRuleBitmap(lppsi);
    if (!hbm)
        return 0;
    MixRule *pRule = &lppsi->asMixRule[iRule];
    MixRule *pEnd = &lppsi->asMixRule[lppsi->nMixRules++];
    DeleteBitmap(pEnd->hbmRule); // of a rule that went when the count alone was set to 0
    std::copy_backward(pRule, pEnd, pEnd + 1);
    *pRule = rule;
    pRule->hbmRule = hbm;
    TellRules(lppsi);
    return 1;
}

u32 ReplaceMixRules(PresetState *lppsi, std::span<const MixRule> rules)
{
    ASSERT_MAIN_THREAD();
    if (rules.size() > MIX_RULES_MAX)
        return 0;
    const std::vector<HostBitmap *> bitmaps = NewRuleBitmaps(lppsi, rules.size());
    if (bitmaps.size() != rules.size())
        return 0;
    FreeRules(lppsi);
    for (size_t i = 0; i < rules.size(); i++) {
        lppsi->asMixRule[i] = rules[i];
        lppsi->asMixRule[i].hbmRule = bitmaps[i];
    }
    lppsi->nMixRules = static_cast<u32>(rules.size());
    TellRules(lppsi);
    return 1;
}

void RemoveAllMixRules(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi)
        return;
    const u32 bAny = lppsi->nMixRules > 0;
    FreeRules(lppsi);
    if (bAny)
        TellRules(lppsi);
}
