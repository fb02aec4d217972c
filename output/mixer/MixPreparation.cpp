// MixPreparation.cpp -- a preset's rules made into programs of the mix kernels, once per change of the rules
#include "output/mixer/MixPreparation.h"

#include "output/mixer/PlaneMixer.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <type_traits>

u32 nMixPreparations = 0;

namespace {

static_assert(std::has_unique_object_representations_v<MixInput>); // compared byte by byte

struct OperatorKernels {
    MixKernel ePerRule;
    MixKernel eOnePass;
};

// By operator. The two paths differ at Intensity Scale, and at Tile planes, which per rule is no kernel at all.
constexpr OperatorKernels asKernel[MIXOP_COUNT] = {
    {MixKernel::Count, MixKernel::Copy},
    {MixKernel::Blend, MixKernel::Blend},
    {MixKernel::OverwriteBackground, MixKernel::OverwriteBackground},
    {MixKernel::OnlyWriteForeground, MixKernel::OnlyWriteForeground},
    {MixKernel::BlendXor, MixKernel::BlendXor},
    {MixKernel::BlendMax, MixKernel::BlendMax},
    {MixKernel::BlendAlpha, MixKernel::BlendAlpha},
    {MixKernel::BlendBoolean, MixKernel::BlendBoolean},
    {MixKernel::InvertX, MixKernel::InvertX},
    {MixKernel::InvertY, MixKernel::InvertY},
    {MixKernel::InvertXY, MixKernel::InvertXY},
    {MixKernel::GunShift1, MixKernel::GunShift1},
    {MixKernel::GunShift2, MixKernel::GunShift2},
    {MixKernel::Negative, MixKernel::Negative},
    {MixKernel::IntensityScale, MixKernel::IntensityScaleOnePass},
    {MixKernel::IntensityScaleRgb, MixKernel::IntensityScaleRgb},
    {MixKernel::Displace, MixKernel::Displace},
};

PreparedMix Prepared; // of the call before; no rules and no runs: none

// Source indices of a rule in the order of a step's operands, and how many of them its operator reads.
struct RuleSources {
    i32 anIndex[3];
    u32 nCount;
};

RuleSources SourcesOf(const RuleInput &rule)
{
    const MixOperatorInfo *pInfo = GetMixOperatorInfo(rule.MixOp);
    const u32 nCount = !pInfo ? 0u : pInfo->bMask ? 3u : pInfo->bSource2 ? 2u : 1u;
    return {{rule.SrcIdx1, rule.SrcIdx2, rule.AplhaIdx}, nCount};
}

// A picture of another size than the result counts as none, so that nothing reads beyond it.
u32 *PixelsOfSize(const HostBitmap *hbm, const HostBitmap *hbmFinal)
{
    return hbm && hbm->nWidth == hbmFinal->nWidth && hbm->nHeight == hbmFinal->nHeight ? BitmapPixels(hbm) : nullptr;
}

MixInput InputOf(const PresetState *lppsi, bool bOnePass)
{
    const HostBitmap *hbmFinal = lppsi->hbmFinal;
    MixInput input = {};
    input.bOnePass = bOnePass;
    input.nPlanes = lppsi->nPlanes;
    input.nMixRules = lppsi->nMixRules;
    input.nWidth = hbmFinal->nWidth;
    input.nHeight = hbmFinal->nHeight;
    input.pFinal = BitmapPixels(hbmFinal);
    for (i32 i = 0; i < std::min(lppsi->nPlanes, PLANES_MAX); i++)
        input.apPlane[i] = lppsi->psPlane[i] ? PixelsOfSize(lppsi->psPlane[i]->Info.hbmResolved, hbmFinal) : nullptr;
    for (u32 r = 0; r < lppsi->nMixRules; r++) {
        const MixRule &rule = lppsi->asMixRule[r];
        input.apRule[r] = PixelsOfSize(rule.hbmRule, hbmFinal);
        input.asRule[r] = {rule.SrcIdx1, rule.SrcIdx2, rule.AplhaIdx, rule.MixOp};
    }
    return input;
}

// --- Rule by rule ---

// The pixels that a source index names; null where there are none.
u32 *SourceAt(const MixInput &input, i32 iSource)
{
    if (iSource < 0 || iSource >= static_cast<i32>(MIX_SOURCES_MAX))
        return nullptr;
    if (iSource < input.nPlanes)
        return iSource < PLANES_MAX ? input.apPlane[iSource] : nullptr;
    const u32 iRule = static_cast<u32>(iSource - input.nPlanes);
    return iRule < input.nMixRules ? input.apRule[iRule] : nullptr;
}

bool AllSourcesExist(const MixInput &input, const RuleSources &sources)
{
    return std::all_of(sources.anIndex, sources.anIndex + sources.nCount,
                       [&](i32 iSource) { return SourceAt(input, iSource) != nullptr; });
}

// Rules that run together. A rule may join as long as no rule of the run reads all over an image that another one
// of the run writes: then running them tile by tile leaves every image as running them one after the other.
struct RuleRun {
    MixProgram prog;
    i32 anStepOf[MIX_SOURCES_MAX];       // step that makes this source in the run; below 0: none
    bool abReadAllOver[MIX_SOURCES_MAX]; // a spatial step reads it
    const u32 *pAside;
    u32 *pAsideTo;
};

void ClearRun(RuleRun *pRun, const MixInput &input)
{
    pRun->prog.nWidth = input.nWidth;
    pRun->prog.nHeight = input.nHeight;
    pRun->prog.nSteps = 0;
    pRun->pAside = nullptr;
    pRun->pAsideTo = nullptr;
    std::fill(std::begin(pRun->anStepOf), std::end(pRun->anStepOf), -1);
    std::fill(std::begin(pRun->abReadAllOver), std::end(pRun->abReadAllOver), false);
}

void FinishRun(PreparedMix *pMix, RuleRun *pRun)
{
    if (pRun->prog.nSteps > 0)
        pMix->asRun[pMix->nRuns++] = {pRun->pAside, pRun->pAsideTo, PlanProgram(pRun->prog)};
    ClearRun(pRun, pMix->input);
}

// Source index of what a rule writes; the last rule's result is no source.
i32 ResultIndex(const MixInput &input, u32 iRule)
{
    const u32 iSource = static_cast<u32>(input.nPlanes) + iRule;
    return iRule + 1 < input.nMixRules && iSource < MIX_SOURCES_MAX ? static_cast<i32>(iSource) : -1;
}

bool MayJoin(const RuleRun &run, MixKernel eKernel, i32 iSource1, i32 iResult)
{
    if (run.prog.nSteps == MIX_STEPS_MAX)
        return false;
    if (KernelIsSpatial(eKernel) && run.anStepOf[iSource1] >= 0)
        return false;
    return iResult < 0 || !run.abReadAllOver[iResult];
}

MixOperand OperandFor(const RuleRun &run, const MixInput &input, i32 iSource)
{
    if (run.anStepOf[iSource] >= 0)
        return {nullptr, run.anStepOf[iSource]};
    return {SourceAt(input, iSource), -1};
}

// Room for a copy of an image that a spatial rule both reads and writes; null when out of memory.
u32 *RoomAside(const MixInput &input)
{
    static HostBitmap *hbmAside = nullptr;
    if (!hbmAside || hbmAside->nWidth != input.nWidth || hbmAside->nHeight != input.nHeight) {
        DeleteBitmap(hbmAside);
        hbmAside = CreateBitmap(input.nWidth, input.nHeight);
    }
    return hbmAside ? BitmapPixels(hbmAside) : nullptr;
}

// Returns false when there is no memory for a copy aside; the rule is left out, then.
bool AppendRule(RuleRun *pRun, const MixInput &input, u32 iRule, i32 iResult, u32 *pTo)
{
    const RuleInput &rule = input.asRule[iRule];
    const RuleSources sources = SourcesOf(rule);
    MixStep &step = pRun->prog.asStep[pRun->prog.nSteps];
    step = {asKernel[rule.MixOp].ePerRule, iRule, {}, pTo};
    for (u32 i = 0; i < sources.nCount; i++)
        step.asFrom[i] = OperandFor(*pRun, input, sources.anIndex[i]);
    if (KernelIsSpatial(step.eKernel)) {
        pRun->abReadAllOver[rule.SrcIdx1] = true;
        if (rule.SrcIdx1 == iResult) {
            pRun->pAside = pTo;
            step.asFrom[0].pImage = pRun->pAsideTo = RoomAside(input);
            if (!pRun->pAsideTo)
                return false;
        }
    }
    if (iResult >= 0)
        pRun->anStepOf[iResult] = static_cast<i32>(pRun->prog.nSteps);
    pRun->prog.nSteps++;
    return true;
}

void AddRuleToRun(PreparedMix *pMix, RuleRun *pRun, u32 iRule)
{
    const MixInput &input = pMix->input;
    const RuleInput &rule = input.asRule[iRule];
    u32 *pTo = iRule + 1 == input.nMixRules ? input.pFinal : input.apRule[iRule];
    if (!GetMixOperatorInfo(rule.MixOp) || rule.MixOp == MIXOP_TILE_PLANES || !pTo ||
        !AllSourcesExist(input, SourcesOf(rule)))
        return;
    const MixKernel eKernel = asKernel[rule.MixOp].ePerRule;
    const i32 iResult = ResultIndex(input, iRule);
    const bool bAlone = KernelIsSpatial(eKernel) && rule.SrcIdx1 == iResult; // one copy aside at a time
    if (bAlone || !MayJoin(*pRun, eKernel, rule.SrcIdx1, iResult))
        FinishRun(pMix, pRun);
    pMix->bComplete &= AppendRule(pRun, input, iRule, iResult, pTo);
    if (bAlone)
        FinishRun(pMix, pRun);
}

void PreparePerRule(PreparedMix *pMix)
{
    RuleRun run;
    ClearRun(&run, pMix->input);
    for (u32 r = 0; r < pMix->input.nMixRules; r++) {
        pMix->bTile |= pMix->input.asRule[r].MixOp == MIXOP_TILE_PLANES;
        AddRuleToRun(pMix, &run, r);
    }
    FinishRun(pMix, &run);
}

// --- All rules at once ---

// What stands in each place of the per-pixel store: a plane, the result of a step, or zeros.
struct PixelStore {
    i32 nPlanes;
    MixOperand asEntry[MIX_SOURCES_MAX];
};

PixelStore StoreOfPlanes(const MixInput &input)
{
    PixelStore store;
    store.nPlanes = input.nPlanes;
    std::fill(std::begin(store.asEntry), std::end(store.asEntry), MIX_OPERAND_ZERO);
    for (i32 i = 0; i < input.nPlanes; i++)
        store.asEntry[i].pImage = input.apPlane[i];
    return store;
}

MixOperand StoredAt(const PixelStore &store, i32 iSource)
{
    return iSource >= 0 && iSource < static_cast<i32>(MIX_SOURCES_MAX) ? store.asEntry[iSource] : MIX_OPERAND_ZERO;
}

// The result of a rule, as a new step where one is needed. The mirrors and Displace see planes only.
MixOperand EvaluateRule(MixProgram *pProg, const PixelStore &store, const RuleInput &rule, u32 iRule,
                        const MixOperand &before)
{
    if (!GetMixOperatorInfo(rule.MixOp))
        return before;
    const MixKernel eKernel = asKernel[rule.MixOp].eOnePass;
    const MixOperand from = StoredAt(store, rule.SrcIdx1);
    if (eKernel == MixKernel::Copy)
        return from;
    if (KernelIsSpatial(eKernel) && (rule.SrcIdx1 < 0 || rule.SrcIdx1 >= store.nPlanes || !from.pImage))
        return MIX_OPERAND_ZERO;
    const RuleSources sources = SourcesOf(rule);
    MixStep &step = pProg->asStep[pProg->nSteps];
    step = {eKernel, iRule, {}, nullptr};
    for (u32 i = 0; i < sources.nCount; i++)
        step.asFrom[i] = StoredAt(store, sources.anIndex[i]);
    return {nullptr, static_cast<i32>(pProg->nSteps++)};
}

void WriteResult(MixProgram *pProg, const MixOperand &result, u32 *pFinal)
{
    if (result.pImage || result.iStep < 0)
        pProg->asStep[pProg->nSteps++] = {MixKernel::Copy, 0, {result}, pFinal};
    else
        pProg->asStep[result.iStep].pTo = pFinal;
}

void PrepareOnePass(PreparedMix *pMix)
{
    const MixInput &input = pMix->input;
    if (input.nPlanes > PLANES_MAX)
        return;
    MixProgram prog = {input.nWidth, input.nHeight, 0, {}};
    PixelStore store = StoreOfPlanes(input);
    MixOperand result = MIX_OPERAND_ZERO;
    for (u32 r = 0; r < input.nMixRules; r++) {
        result = EvaluateRule(&prog, store, input.asRule[r], r, result);
        const u32 iEntry = static_cast<u32>(input.nPlanes) + r;
        if (iEntry < MIX_SOURCES_MAX)
            store.asEntry[iEntry] = result;
    }
    WriteResult(&prog, result, input.pFinal);
    pMix->onePass = NeededSteps(prog);
    pMix->asRun[pMix->nRuns++] = {nullptr, nullptr, PlanProgram(prog)};
}

} // namespace

PreparedMix *PrepareMix(const PresetState *lppsi, bool bOnePass)
{
    ASSERT_MAIN_THREAD();
    const MixInput input = InputOf(lppsi, bOnePass);
    if (!Prepared.bComplete || std::memcmp(&Prepared.input, &input, sizeof input) != 0) {
        Prepared.input = input;
        Prepared.nRuns = 0;
        Prepared.onePass.nSteps = 0;
        Prepared.bTile = false;
        Prepared.bComplete = true;
        bOnePass ? PrepareOnePass(&Prepared) : PreparePerRule(&Prepared);
        nMixPreparations++;
    }
    return &Prepared;
}

void CollectWeights(const PresetState *lppsi, u32 *anWeight)
{
    for (u32 r = 0; r < lppsi->nMixRules; r++)
        anWeight[r] = static_cast<u32>(std::clamp(lppsi->asMixRule[r].BlendWeight.Integer.nValue, 0, 255));
    std::fill(anWeight + lppsi->nMixRules, anWeight + MIX_RULE_ENTRIES, 0u);
}
