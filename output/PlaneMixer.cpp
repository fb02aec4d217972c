// PlaneMixer.cpp -- turns a preset's rules into programs of the mix kernels and runs them
#include "output/PlaneMixer.h"

#include "output/Stretch.h"
#include "output/remap.h"
#include "platform/Assert.h"
#include "platform/Bitmap.h"

#include <algorithm>
#include <iterator>

u32 bAccelEmulated = 1;
NameText szGpuDescription = {};

namespace {

// The images that a rule can name, by source index; null where there is none.
struct SourceTable {
    HostBitmap *ahbm[MIX_SOURCES_MAX];
};

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

// Source indices of a rule in the order of a step's operands, and how many of them its operator reads.
struct RuleSources {
    i32 anIndex[3];
    u32 nCount;
};

RuleSources SourcesOf(const MixRule &rule)
{
    const MixOperatorInfo *pInfo = GetMixOperatorInfo(rule.MixOp);
    const u32 nCount = !pInfo ? 0u : pInfo->bMask ? 3u : pInfo->bSource2 ? 2u : 1u;
    return {{rule.SrcIdx1, rule.SrcIdx2, rule.AplhaIdx}, nCount};
}

u32 LimitedWeight(const MixRule &rule)
{
    return static_cast<u32>(std::clamp(rule.BlendWeight.Integer.nValue, 0, 255));
}

const u32 *PixelsOrNull(const HostBitmap *hbm)
{
    return hbm ? BitmapPixels(hbm) : nullptr;
}

// A picture of another size than the result counts as none, so that nothing reads beyond it.
HostBitmap *OfSize(HostBitmap *hbm, const HostBitmap *hbmFinal)
{
    return hbm && hbm->nWidth == hbmFinal->nWidth && hbm->nHeight == hbmFinal->nHeight ? hbm : nullptr;
}

SourceTable BuildSourceTable(const PresetState *lppsi)
{
    SourceTable table = {};
    const u32 nPlanes = static_cast<u32>(lppsi->nPlanes);
    for (u32 i = 0; i < nPlanes && i < PLANES_MAX; i++)
        table.ahbm[i] = OfSize(lppsi->psPlane[i] ? lppsi->psPlane[i]->Info.hbmResolved : nullptr, lppsi->hbmFinal);
    for (u32 r = 0; r < lppsi->nMixRules && nPlanes + r < MIX_SOURCES_MAX; r++)
        table.ahbm[nPlanes + r] = OfSize(lppsi->asMixRule[r].hbmRule, lppsi->hbmFinal);
    return table;
}

HostBitmap *SourceAt(const SourceTable &table, i32 iSource)
{
    return iSource >= 0 && iSource < static_cast<i32>(MIX_SOURCES_MAX) ? table.ahbm[iSource] : nullptr;
}

bool AllSourcesExist(const SourceTable &table, const RuleSources &sources)
{
    return std::all_of(sources.anIndex, sources.anIndex + sources.nCount,
                       [&](i32 iSource) { return SourceAt(table, iSource) != nullptr; });
}

// --- Rule by rule ---

// Rules that run together. A rule may join as long as no rule of the run reads all over an image that another one
// of the run writes: then running them tile by tile leaves every image as running them one after the other.
struct RuleRun {
    MixProgram prog;
    i32 anStepOf[MIX_SOURCES_MAX];       // step that makes this source in the run; below 0: none
    bool abReadAllOver[MIX_SOURCES_MAX]; // a spatial step reads it
};

void ClearRun(RuleRun *pRun, const HostBitmap *hbmFinal)
{
    pRun->prog.nWidth = hbmFinal->nWidth;
    pRun->prog.nHeight = hbmFinal->nHeight;
    pRun->prog.nSteps = 0;
    std::fill(std::begin(pRun->anStepOf), std::end(pRun->anStepOf), -1);
    std::fill(std::begin(pRun->abReadAllOver), std::end(pRun->abReadAllOver), false);
}

void FinishRun(RuleRun *pRun, const HostBitmap *hbmFinal)
{
    RunMixProgram(pRun->prog);
    ClearRun(pRun, hbmFinal);
}

// Source index of what a rule writes; the last rule's result is no source.
i32 ResultIndex(const PresetState *lppsi, u32 iRule)
{
    const u32 iSource = static_cast<u32>(lppsi->nPlanes) + iRule;
    return iRule + 1 < lppsi->nMixRules && iSource < MIX_SOURCES_MAX ? static_cast<i32>(iSource) : -1;
}

bool MayJoin(const RuleRun &run, MixKernel eKernel, i32 iSource1, i32 iResult)
{
    if (run.prog.nSteps == MIX_STEPS_MAX)
        return false;
    if (KernelIsSpatial(eKernel) && run.anStepOf[iSource1] >= 0)
        return false;
    return iResult < 0 || !run.abReadAllOver[iResult];
}

MixOperand OperandFor(const RuleRun &run, const SourceTable &table, i32 iSource)
{
    if (run.anStepOf[iSource] >= 0)
        return {nullptr, run.anStepOf[iSource]};
    return {BitmapPixels(table.ahbm[iSource]), -1};
}

// A copy of an image that a spatial rule both reads and writes. Kept between frames, since such rules come every
// frame; null when out of memory.
const u32 *CopyAside(const HostBitmap *hbm)
{
    static HostBitmap *hbmAside = nullptr;
    if (!OfSize(hbmAside, hbm)) {
        DeleteBitmap(hbmAside);
        hbmAside = CreateBitmap(hbm->nWidth, hbm->nHeight);
    }
    if (hbmAside)
        CopyBitmap(hbmAside, hbm);
    return PixelsOrNull(hbmAside);
}

void AppendRule(RuleRun *pRun, const SourceTable &table, const MixRule &rule, i32 iResult, HostBitmap *hbmTo)
{
    const RuleSources sources = SourcesOf(rule);
    MixStep &step = pRun->prog.asStep[pRun->prog.nSteps];
    step = {asKernel[rule.MixOp].ePerRule, LimitedWeight(rule), {}, BitmapPixels(hbmTo)};
    for (u32 i = 0; i < sources.nCount; i++)
        step.asFrom[i] = OperandFor(*pRun, table, sources.anIndex[i]);
    if (KernelIsSpatial(step.eKernel)) {
        pRun->abReadAllOver[rule.SrcIdx1] = true;
        if (rule.SrcIdx1 == iResult) {
            step.asFrom[0].pImage = CopyAside(hbmTo);
            if (!step.asFrom[0].pImage)
                return;
        }
    }
    if (iResult >= 0)
        pRun->anStepOf[iResult] = static_cast<i32>(pRun->prog.nSteps);
    pRun->prog.nSteps++;
}

void AddRuleToRun(RuleRun *pRun, const PresetState *lppsi, const SourceTable &table, u32 iRule)
{
    const MixRule &rule = lppsi->asMixRule[iRule];
    const bool bLast = iRule + 1 == lppsi->nMixRules;
    HostBitmap *hbmTo = bLast ? lppsi->hbmFinal : OfSize(rule.hbmRule, lppsi->hbmFinal);
    if (!GetMixOperatorInfo(rule.MixOp) || rule.MixOp == MIXOP_TILE_PLANES || !hbmTo ||
        !AllSourcesExist(table, SourcesOf(rule)))
        return;
    const MixKernel eKernel = asKernel[rule.MixOp].ePerRule;
    const i32 iResult = ResultIndex(lppsi, iRule);
    const bool bAlone = KernelIsSpatial(eKernel) && rule.SrcIdx1 == iResult; // one copy aside at a time
    if (bAlone || !MayJoin(*pRun, eKernel, rule.SrcIdx1, iResult))
        FinishRun(pRun, lppsi->hbmFinal);
    AppendRule(pRun, table, rule, iResult, hbmTo);
    if (bAlone)
        FinishRun(pRun, lppsi->hbmFinal);
}

// Every plane and meta-plane side by side in columns of equal width, over what the rules made.
void TilePlanes(const PresetState *lppsi, const SourceTable &table)
{
    const HostBitmap *hbmFinal = lppsi->hbmFinal;
    const i32 nColumns = lppsi->nPlanes + static_cast<i32>(lppsi->nMixRules) - 1;
    if (nColumns < 1)
        return;
    const i32 nColumnWidth = hbmFinal->nWidth / nColumns;
    for (i32 i = 0; i < nColumns && nColumnWidth > 0; i++) {
        u32 *pdwColumn = BitmapPixels(hbmFinal) + i * nColumnWidth;
        if (const HostBitmap *hbm = SourceAt(table, i))
            StretchPicture({pdwColumn, nColumnWidth, hbmFinal->nHeight, hbmFinal->cbRow}, hbm, false);
    }
}

void MixPlanesPerRule(const PresetState *lppsi)
{
    const SourceTable table = BuildSourceTable(lppsi);
    RuleRun run;
    ClearRun(&run, lppsi->hbmFinal);
    bool bTile = false;
    for (u32 r = 0; r < lppsi->nMixRules; r++) {
        bTile |= lppsi->asMixRule[r].MixOp == MIXOP_TILE_PLANES;
        AddRuleToRun(&run, lppsi, table, r);
    }
    FinishRun(&run, lppsi->hbmFinal);
    if (bTile)
        TilePlanes(lppsi, table);
}

// --- All rules at once ---

// What stands in each place of the per-pixel store: a plane, the result of a step, or zeros.
struct PixelStore {
    MixOperand asEntry[MIX_SOURCES_MAX];
};

PixelStore StoreOfPlanes(const PresetState *lppsi, const SourceTable &table)
{
    PixelStore store;
    std::fill(std::begin(store.asEntry), std::end(store.asEntry), MIX_OPERAND_ZERO);
    for (i32 i = 0; i < lppsi->nPlanes; i++)
        store.asEntry[i].pImage = PixelsOrNull(table.ahbm[i]);
    return store;
}

MixOperand StoredAt(const PixelStore &store, i32 iSource)
{
    return iSource >= 0 && iSource < static_cast<i32>(MIX_SOURCES_MAX) ? store.asEntry[iSource] : MIX_OPERAND_ZERO;
}

// The result of a rule, as a new step where one is needed. The mirrors and Displace see planes only.
MixOperand EvaluateRule(MixProgram *pProg, const PixelStore &store, const MixRule &rule, const MixOperand &before)
{
    if (!GetMixOperatorInfo(rule.MixOp))
        return before;
    const MixKernel eKernel = asKernel[rule.MixOp].eOnePass;
    const MixOperand from = StoredAt(store, rule.SrcIdx1);
    if (eKernel == MixKernel::Copy)
        return from;
    if (KernelIsSpatial(eKernel) && !from.pImage)
        return MIX_OPERAND_ZERO;
    const RuleSources sources = SourcesOf(rule);
    MixStep &step = pProg->asStep[pProg->nSteps];
    step = {eKernel, LimitedWeight(rule), {}, nullptr};
    for (u32 i = 0; i < sources.nCount; i++)
        step.asFrom[i] = StoredAt(store, sources.anIndex[i]);
    return {nullptr, static_cast<i32>(pProg->nSteps++)};
}

void WriteResult(MixProgram *pProg, const MixOperand &result, const HostBitmap *hbmFinal)
{
    if (result.pImage || result.iStep < 0)
        pProg->asStep[pProg->nSteps++] = {MixKernel::Copy, 0, {result}, BitmapPixels(hbmFinal)};
    else
        pProg->asStep[result.iStep].pTo = BitmapPixels(hbmFinal);
}

void MixPlanesOnePass(const PresetState *lppsi)
{
    if (lppsi->nPlanes > PLANES_MAX)
        return;
    MixProgram prog = {lppsi->hbmFinal->nWidth, lppsi->hbmFinal->nHeight, 0, {}};
    PixelStore store = StoreOfPlanes(lppsi, BuildSourceTable(lppsi));
    MixOperand result = MIX_OPERAND_ZERO;
    for (u32 r = 0; r < lppsi->nMixRules; r++) {
        result = EvaluateRule(&prog, store, lppsi->asMixRule[r], result);
        const u32 iEntry = static_cast<u32>(lppsi->nPlanes) + r;
        if (iEntry < MIX_SOURCES_MAX)
            store.asEntry[iEntry] = result;
    }
    WriteResult(&prog, result, lppsi->hbmFinal);
    RunMixProgram(prog);
}

} // namespace

void SetupMixAccelerator()
{
    bAccelEmulated = 1;
    szGpuDescription[0] = 0;
}

u32 MixPlanes(PresetState *lppsi, u32 bOnePass)
{
    if (!lppsi)
        return 0;
    if (lppsi->nMixRules == 0) {
        lppsi->phbmOutput = lppsi->nPlanes ? &lppsi->psPlane[0]->Info.hbmResolved : &lppsi->hbmFinal;
        return 1;
    }
    VD_ASSERT(lppsi->hbmFinal && lppsi->nPlanes >= 0 && lppsi->nMixRules <= MIX_RULE_ENTRIES);
    lppsi->phbmOutput = &lppsi->hbmFinal;
    if (bOnePass)
        MixPlanesOnePass(lppsi);
    else
        MixPlanesPerRule(lppsi);
    return 1;
}
