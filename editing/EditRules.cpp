// EditRules.cpp -- edits of the mixer's list of rules
#include "editing/EditRows.h"

#include "engine/MixRules.h"
#include "output/mixer/PlaneMixer.h"

#include <algorithm>

namespace {

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
    *pRun->pInverse = MakeEdit(EditKind::InsertRule, RulePlace(iRule));
    pRun->pInverse->pKeep = std::move(pKeep);
    return EditResult::Done;
}

EditResult RunInsertRule(EditRun *pRun)
{
    const u32 iRule = pRun->pEdit->place.iRule;
    const EditKeep *pKeep = pRun->pEdit->pKeep.get();
    if (!pKeep || pKeep->rules.size() != 1 || iRule > pRun->lppsi->nMixRules)
        return EditResult::Refused;
    if (!InsertMixRule(pRun->lppsi, iRule, pKeep->rules[0]))
        return EditResult::Unchanged;
    *pRun->pInverse = MakeEdit(EditKind::TakeRule, RulePlace(iRule));
    return EditResult::Done;
}

EditResult RunMoveRule(EditRun *pRun)
{
    const i32 nDirection = pRun->pEdit->anArgument[0];
    if (nDirection != -1 && nDirection != 1)
        return EditResult::Refused;
    const u32 iRule = pRun->pEdit->place.iRule;
    const u32 iOther = iRule + static_cast<u32>(nDirection); // before the first one: beyond the last
    if (!SwapMixRules(pRun->lppsi, iRule, iOther))
        return EditResult::Unchanged;
    *pRun->pInverse = MakeEdit(EditKind::MoveRule, RulePlace(iOther), -nDirection);
    return EditResult::Done;
}
