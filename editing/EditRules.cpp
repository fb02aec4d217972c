// EditRules.cpp -- edits of the mixer's list of rules
#include "editing/EditRows.h"

#include "engine/MixRules.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Bitmap.h"

#include <algorithm>
#include <utility>

namespace {

HostBitmap *NewRuleBitmap(const PresetState *lppsi)
{
    return CreateBitmap(lppsi->hbmFinal->nWidth, lppsi->hbmFinal->nHeight);
}

// Null bitmaps do not count: they are what could not be made.
bool MakeRuleBitmaps(const PresetState *lppsi, size_t nRules, std::vector<HostBitmap *> *pBitmaps)
{
    for (size_t i = 0; i < nRules; i++)
        pBitmaps->push_back(NewRuleBitmap(lppsi));
    if (std::find(pBitmaps->begin(), pBitmaps->end(), nullptr) == pBitmaps->end())
        return true;
    std::for_each(pBitmaps->begin(), pBitmaps->end(), DeleteBitmap);
    return false;
}

bool RuleArgumentsFit(const PresetState *lppsi, const i32 (&anArgument)[4])
{
    return std::all_of(anArgument, anArgument + 3, [=](i32 n) { return RuleSourceFits(lppsi, n); }) &&
           GetMixOperatorInfo(anArgument[3]);
}

} // namespace

bool RuleSourceFits(const PresetState *lppsi, i64 nSource)
{
    return nSource >= -1 && nSource < i64{lppsi->nPlanes} + lppsi->nMixRules;
}

std::vector<MixRule> KeepRules(const PresetState *lppsi)
{
    std::vector<MixRule> rules(lppsi->asMixRule, lppsi->asMixRule + lppsi->nMixRules);
    for (MixRule &rule : rules)
        rule.hbmRule = nullptr;
    return rules;
}

bool PutBackRules(PresetState *lppsi, const std::vector<MixRule> &rules)
{
    std::vector<HostBitmap *> bitmaps;
    if (rules.size() > MIX_RULES_MAX || !MakeRuleBitmaps(lppsi, rules.size(), &bitmaps))
        return false;
    RemoveAllMixRules(lppsi);
    for (size_t i = 0; i < rules.size(); i++) {
        lppsi->asMixRule[i] = rules[i];
        lppsi->asMixRule[i].hbmRule = bitmaps[i];
    }
    lppsi->nMixRules = static_cast<u32>(rules.size());
    return true;
}

EditResult RunAddRule(EditRun *pRun)
{
    const auto &anArgument = pRun->pEdit->anArgument;
    if (!RuleArgumentsFit(pRun->lppsi, anArgument))
        return EditResult::Refused;
    MixRule *pmr = AddMixRule(pRun->lppsi);
    if (!pmr)
        return EditResult::Unchanged;
    pmr->SrcIdx1 = anArgument[0];
    pmr->SrcIdx2 = anArgument[1];
    pmr->AplhaIdx = anArgument[2];
    pmr->MixOp = anArgument[3];
    TellMixer(pRun->lppsi);
    *pRun->pInverse = MakeEdit(EditKind::TakeRule, RulePlace(pRun->lppsi->nMixRules - 1));
    return EditResult::Done;
}

EditResult RunRemoveRule(EditRun *pRun)
{
    return pRun->lppsi->nMixRules < 2 ? EditResult::Unchanged : RunTakeRule(pRun);
}

EditResult RunTakeRule(EditRun *pRun)
{
    const u32 iRule = pRun->pEdit->place.iRule;
    auto pKeep = std::make_shared<EditKeep>();
    pKeep->rules = {*pRun->target.pmr};
    pKeep->rules[0].hbmRule = nullptr;
    RemoveMixRule(pRun->lppsi, iRule);
    TellMixer(pRun->lppsi);
    *pRun->pInverse = MakeEdit(EditKind::InsertRule, RulePlace(iRule));
    pRun->pInverse->pKeep = std::move(pKeep);
    return EditResult::Done;
}

EditResult RunInsertRule(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const u32 iRule = pRun->pEdit->place.iRule;
    const EditKeep *pKeep = pRun->pEdit->pKeep.get();
    if (!pKeep || pKeep->rules.size() != 1 || iRule > lppsi->nMixRules)
        return EditResult::Refused;
    HostBitmap *hbm = lppsi->nMixRules < MIX_RULES_MAX ? NewRuleBitmap(lppsi) : nullptr;
    if (!hbm)
        return EditResult::Unchanged;
    MixRule *pmr = &lppsi->asMixRule[iRule];
    std::copy_backward(pmr, lppsi->asMixRule + lppsi->nMixRules, lppsi->asMixRule + lppsi->nMixRules + 1);
    *pmr = pKeep->rules[0];
    pmr->hbmRule = hbm;
    lppsi->nMixRules++;
    TellMixer(lppsi);
    *pRun->pInverse = MakeEdit(EditKind::TakeRule, RulePlace(iRule));
    return EditResult::Done;
}

EditResult RunMoveRule(EditRun *pRun)
{
    PresetState *lppsi = pRun->lppsi;
    const i32 nDirection = pRun->pEdit->anArgument[0];
    if (nDirection != -1 && nDirection != 1)
        return EditResult::Refused;
    const i64 iOther = i64{pRun->pEdit->place.iRule} + nDirection;
    if (iOther < 0 || iOther >= lppsi->nMixRules)
        return EditResult::Unchanged;
    std::swap(*pRun->target.pmr, lppsi->asMixRule[iOther]);
    TellMixer(lppsi);
    *pRun->pInverse = MakeEdit(EditKind::MoveRule, RulePlace(static_cast<u32>(iOther)), -nDirection);
    return EditResult::Done;
}
