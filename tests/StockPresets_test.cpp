// StockPresets_test.cpp -- tests data/Presets with the stock modules: complete, stable, alive
#include "tests/StockPresetsFixture.h"
#include "tests/TempFolder.h"

#include <set>

namespace {

struct Usage {
    std::set<u32> sources, waveTypes;
    std::set<i32> operators;
};

void CountControl(const ControlRecord &ctl, Usage *pUsage)
{
    pUsage->sources.insert(ctl.Base.dwSource);
    if (ctl.Base.dwSource == FLUIDSOURCE_WAVE)
        pUsage->waveTypes.insert(ctl.Base.dwWaveType);
}

void CountSlots(ModuleSlot *const *apSlot, i32 nSlots, Usage *pUsage)
{
    for (i32 i = 0; i < nSlots; i++)
        for (i32 iControl = 0; iControl < apSlot[i]->nControls; iControl++)
            if (ControlIsStored(apSlot[i]->apControl[iControl]))
                CountControl(*apSlot[i]->apControl[iControl], pUsage);
}

// What the files ask for themselves; what a module does by default does not count.
void CountPreset(const PresetState *lppsi, Usage *pUsage)
{
    for (i32 iPlane = 0; iPlane < lppsi->nPlanes; iPlane++)
        for (u32 nKind = 0; nKind < MODULEINDEX_MIXER; nKind++)
            CountSlots(lppsi->psPlane[iPlane]->apModule[nKind], lppsi->psPlane[iPlane]->anModules[nKind], pUsage);
    CountSlots(lppsi->apPostProc, lppsi->nPostProc, pUsage);
    for (u32 i = 0; i < lppsi->nMixRules; i++) {
        pUsage->operators.insert(lppsi->asMixRule[i].MixOp);
        CountControl(lppsi->asMixRule[i].BlendWeight, pUsage);
    }
}

// Rules read planes and the results of earlier rules only: others would show the frame before, or nothing.
void ExpectRulesInOrder(const PresetState *lppsi)
{
    for (u32 i = 0; i < lppsi->nMixRules; i++) {
        const MixRule &rule = lppsi->asMixRule[i];
        for (i32 iSource : {rule.SrcIdx1, rule.SrcIdx2, rule.AplhaIdx}) {
            EXPECT_LE(0, iSource);
            EXPECT_GT(lppsi->nPlanes + static_cast<i32>(i), iSource) << "rule " << i + 1;
        }
    }
}

TEST_F(StockPresets, LoadWholeAndAreSavedAsTheyWere)
{
    const TempFolder folder;
    const std::u16string copy = folder.Wide("Copy.VD");
    for (const std::u16string &path : paths) {
        SCOPED_TRACE(ToUtf8(path));
        Load(path);
        ExpectRulesInOrder(CurrentPreset());
        // Also after it has run: animated values and drawn phases are no part of the file.
        for (i32 nFrames : {0, 3}) {
            Run(nFrames);
            ASSERT_TRUE(SavePresetFile(CurrentPreset(), copy));
            EXPECT_TRUE(BytesOf(path) == BytesOf(copy)) << nFrames << " frames";
        }
    }
}

TEST_F(StockPresets, UseBetweenThemWhatTheHostCanDo)
{
    Usage usage;
    std::set<i32> planeCounts;
    for (const std::u16string &path : paths) {
        Load(path);
        CountPreset(CurrentPreset(), &usage);
        planeCounts.insert(CurrentPreset()->nPlanes);
    }
    EXPECT_EQ((std::set<u32>{FLUIDSOURCE_FIXED, FLUIDSOURCE_RANDOM, FLUIDSOURCE_WAVE, FLUIDSOURCE_SOUND,
                             FLUIDSOURCE_PERIODIC}),
              usage.sources);
    EXPECT_EQ((std::set<u32>{WAVETYPE_SINE, WAVETYPE_TRIANGLE, WAVETYPE_SQUARE, WAVETYPE_RAMP}), usage.waveTypes);
    EXPECT_LE(8u, usage.operators.size());
    EXPECT_EQ((std::set<i32>{1, 2, 3, 4}), planeCounts);
}

} // namespace
