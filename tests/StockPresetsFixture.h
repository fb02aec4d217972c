// StockPresetsFixture.h -- the engine with the stock modules and the presets of data/Presets, at a small size
#pragma once

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
#include "state/GlobalSettings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

inline std::string BytesOf(std::u16string_view path)
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
        ASSERT_EQ(0, StartHeadless({FromUtf8(SOURCE_FOLDER "/data"), FromUtf8(STOCK_MODULE_FOLDER), {}}));
        GlobalSettings.ThreadedPlanes = 0;
        GlobalSettings.nBufferWidth = GlobalSettings.hwndVisuals.nWidth = 160;
        GlobalSettings.nBufferHeight = GlobalSettings.hwndVisuals.nHeight = 120;
        BindRenderSound(&GlobalSettings.Monitor, 3);
        paths = ListFiles(FromUtf8(SOURCE_FOLDER "/data/Presets/*.VD"));
        ASSERT_FALSE(paths.empty());
        if (!bOpenGLAvailable)
            std::erase_if(paths, [](const auto &path) { return BytesOf(path).find("PMShader") != std::string::npos; });
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
    void Run(i32 nFrames, u32 nMsEach = 33)
    {
        for (i32 i = 0; i < nFrames; i++) {
            nTick += nMsEach;
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

inline i32 Channel(u32 nPixel, u32 nShift)
{
    return static_cast<i32>(nPixel >> nShift & 255);
}

// Share of the pixels of which a channel differs by more than nStep; against black where there is no other picture.
inline f64 ShareThatDiffers(const std::vector<u32> &first, const std::vector<u32> &second, i32 nStep)
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
