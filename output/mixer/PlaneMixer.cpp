// PlaneMixer.cpp -- turns planes and rules into the picture: rule by rule, or all at once
#include "output/mixer/PlaneMixer.h"

#include "output/mixer/MixAccelerator.h"
#include "output/mixer/MixPreparation.h"
#include "output/mixer/Stretch.h"
#include "platform/Assert.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"

#include <cstring>

namespace {

void RunPrepared(PreparedMix *pMix, const u32 *anWeight)
{
    const MixInput &input = pMix->input;
    for (u32 i = 0; i < pMix->nRuns; i++) {
        PreparedRun &run = pMix->asRun[i];
        if (run.pAside)
            std::memcpy(run.pAsideTo, run.pAside,
                        static_cast<size_t>(input.nWidth) * static_cast<size_t>(input.nHeight) * sizeof(u32));
        SetPlanWeights(&run.plan, anWeight);
        RunMixPlan(run.plan);
    }
}

// The picture that a column of the tiling shows: planes first, then the results of the rules. Null: none of this size.
const HostBitmap *TiledPicture(const PresetState *lppsi, i32 iColumn)
{
    const HostBitmap *hbm = nullptr;
    if (iColumn >= lppsi->nPlanes)
        hbm = lppsi->asMixRule[iColumn - lppsi->nPlanes].hbmRule;
    else if (iColumn < PLANES_MAX && lppsi->psPlane[iColumn])
        hbm = lppsi->psPlane[iColumn]->Info.hbmResolved;
    const HostBitmap *hbmFinal = lppsi->hbmFinal;
    return hbm && hbm->nWidth == hbmFinal->nWidth && hbm->nHeight == hbmFinal->nHeight ? hbm : nullptr;
}

// Every plane and meta-plane side by side in columns of equal width, over what the rules made.
void TilePlanes(const PresetState *lppsi)
{
    const HostBitmap *hbmFinal = lppsi->hbmFinal;
    const i32 nColumns = lppsi->nPlanes + static_cast<i32>(lppsi->nMixRules) - 1;
    if (nColumns < 1)
        return;
    const i32 nColumnWidth = hbmFinal->nWidth / nColumns;
    for (i32 i = 0; i < nColumns && nColumnWidth > 0; i++) {
        u32 *pdwColumn = BitmapPixels(hbmFinal) + i * nColumnWidth;
        if (const HostBitmap *hbm = TiledPicture(lppsi, i))
            StretchPicture({pdwColumn, nColumnWidth, hbmFinal->nHeight, hbmFinal->cbRow}, hbm, false);
    }
}

void MixPlanesPerRule(const PresetState *lppsi, const u32 *anWeight)
{
    PreparedMix *pMix = PrepareMix(lppsi, false);
    RunPrepared(pMix, anWeight);
    if (pMix->bTile)
        TilePlanes(lppsi);
}

void MixPlanesOnePass(const PresetState *lppsi, const u32 *anWeight)
{
    PreparedMix *pMix = PrepareMix(lppsi, true);
    if (!MixOnAccelerator(pMix->onePass, anWeight))
        RunPrepared(pMix, anWeight);
}

} // namespace

u32 MixPlanes(PresetState *lppsi, u32 bOnePass)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi)
        return 0;
    if (lppsi->nMixRules == 0) {
        lppsi->phbmOutput = lppsi->nPlanes ? &lppsi->psPlane[0]->Info.hbmResolved : &lppsi->hbmFinal;
        return 1;
    }
    VD_ASSERT(lppsi->hbmFinal && lppsi->nPlanes >= 0 && lppsi->nMixRules <= MIX_RULE_ENTRIES);
    lppsi->phbmOutput = &lppsi->hbmFinal;
    u32 anWeight[MIX_RULE_ENTRIES];
    CollectWeights(lppsi, anWeight);
    bOnePass ? MixPlanesOnePass(lppsi, anWeight) : MixPlanesPerRule(lppsi, anWeight);
    return 1;
}
