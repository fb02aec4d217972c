// StockPresets_test.cpp -- tests data/Presets with the stock modules: complete, stable, alive
#include "app/GlobalSettings.h"
#include "app/RenderSound.h"
#include "app/Startup.h"
#include "engine/FrameStep.h"
#include "engine/PresetFile.h"
#include "engine/PresetManager.h"
#include "modules/OpenGLTest.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Random.h"
#include "platform/Text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string BytesOf(std::u16string_view path)
{
    std::ifstream file(NativePath(path), std::ios::binary);
    std::stringstream s;
    s << file.rdbuf();
    return s.str();
}

class StockPresets : public testing::Test {
  protected:
    void SetUp() override
    {
        UseFixedClock(0);
        SeedAllRandom(3);
        StartHeadless({FromUtf8(SOURCE_FOLDER "/data"), FromUtf8(STOCK_MODULE_FOLDER), {}});
        GlobalSettings.ThreadedPlanes = 0;
        GlobalSettings.nBufferWidth = GlobalSettings.hwndVisuals.nWidth = 160;
        GlobalSettings.nBufferHeight = GlobalSettings.hwndVisuals.nHeight = 120;
        BindRenderSound(&GlobalSettings.Monitor, 3);
        paths = ListFiles(FromUtf8(SOURCE_FOLDER "/data/Presets/*.VD"));
        ASSERT_EQ(20u, paths.size());
        if (!bOpenGLAvailable)
            std::erase_if(paths, [](const std::u16string &path) { return ContainsNoCase(path, u"/Shader - "); });
    }
    void TearDown() override
    {
        ShutDownHeadless();
    }

    // Makes it the running preset; nothing of the file may be passed over.
    static void Load(const std::u16string &path)
    {
        PresetReport report = {};
        const PresetRequest request = {path, &report};
        ASSERT_TRUE(SwitchPreset(MakeStoredPreset, &request));
        EXPECT_EQ(std::vector<std::string>(), report.asLine);
    }
    // So many frames at 30 a second.
    void Run(i32 nFrames)
    {
        for (i32 i = 0; i < nFrames; i++) {
            nTick += 33;
            SetFixedTick(nTick);
            ASSERT_TRUE(RunFrameStep(CurrentPreset()));
        }
    }
    static std::vector<u32> Picture()
    {
        const HostBitmap *hbm = *CurrentPreset()->phbmOutput;
        return {BitmapPixels(hbm), BitmapPixels(hbm) + BitmapBytes(hbm) / 4};
    }

    std::vector<std::u16string> paths;
    u64 nTick = 0;
};

i32 Channel(u32 nPixel, u32 nShift)
{
    return static_cast<i32>(nPixel >> nShift & 255);
}

// Share of the pixels of which a channel differs by more than nStep; against black where there is no other picture.
f64 ShareThatDiffers(const std::vector<u32> &first, const std::vector<u32> &second, i32 nStep)
{
    size_t nDiffer = 0;
    for (size_t i = 0; i < first.size(); i++) {
        bool bDiffers = false;
        for (u32 nShift = 0; nShift < 24; nShift += 8)
            bDiffers |= std::abs(Channel(first[i], nShift) - Channel(second.empty() ? 0 : second[i], nShift)) > nStep;
        nDiffer += bDiffers;
    }
    return static_cast<f64>(nDiffer) / static_cast<f64>(first.size());
}

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
    const auto copy = std::filesystem::path(testing::TempDir()) / "StockPresets_test.VD";
    for (const std::u16string &path : paths) {
        SCOPED_TRACE(ToUtf8(path));
        Load(path);
        ExpectRulesInOrder(CurrentPreset());
        // Also after it has run: animated values and drawn phases are no part of the file.
        for (i32 nFrames : {0, 3}) {
            Run(nFrames);
            ASSERT_TRUE(SavePresetFile(CurrentPreset(), FromUtf8(copy.string())));
            EXPECT_TRUE(BytesOf(path) == BytesOf(FromUtf8(copy.string()))) << nFrames << " frames";
        }
    }
    std::filesystem::remove(copy);
}

TEST_F(StockPresets, ShowAMovingPictureWithinASecond)
{
    for (const std::u16string &path : paths) {
        SCOPED_TRACE(ToUtf8(path));
        Load(path);
        Run(15);
        const std::vector<u32> before = Picture();
        Run(15);
        const std::vector<u32> after = Picture();
        EXPECT_LT(0.01, ShareThatDiffers(after, {}, 24)) << "black";
        EXPECT_LT(0.005, ShareThatDiffers(before, after, 8)) << "still";
        EXPECT_LT(0.02, ShareThatDiffers(after, std::vector<u32>(after.size(), after[0]), 24)) << "one color";
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
