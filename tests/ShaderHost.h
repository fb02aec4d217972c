// ShaderHost.h -- a host for the shader module: files in a folder of the test's own, a hidden window, a message overlay
#pragma once

#include "output/ModuleMessages.h"
#include "platform/GLWindow.h"
#include "platform/Text.h"
#include "tests/PainterHost.h"
#include "tests/TempFolder.h"
#include "toolkit/RichText.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

inline std::vector<std::u16string> ShaderMessages;

inline uint32_t KeepShaderMessage(const char16_t *pszText)
{
    ShaderMessages.push_back(pszText);
    return 1;
}

// What the overlay would show of a message.
inline std::string ShownText(const std::u16string &message)
{
    EXPECT_LE(message.size(), 4095u);
    return ToUtf8(TextOf(ReadRichText(ExpandColorFields(message, 0x102030, 0xA0B0C0))));
}

// One instance on one plane.
class ShaderInstance {
  public:
    ShaderInstance(const std::string &path, int32_t nWidth, int32_t nHeight, bool bIndexed, int32_t nColors)
        : plane(nWidth, nHeight, bIndexed, nColors), wide(FromUtf8(path))
    {
        plane.info.hwndGL = hwndGL = CreateGLWindow(nWidth, nHeight);
        plane.info.lpszShaderPath = wide.c_str();
        plane.info.pfnShowMessage = KeepShaderMessage;
        pModule = std::make_unique<TestModule>("PMShader.dll", plane, 7);
        plane.info.lpszShaderPath = nullptr;
    }
    ~ShaderInstance()
    {
        pModule.reset();
        ReleaseCurrentGL();
        if (hwndGL)
            DestroyGLWindow(hwndGL);
    }
    ShaderInstance(const ShaderInstance &) = delete;
    ShaderInstance &operator=(const ShaderInstance &) = delete;

    // Frames at a distance; the picture is the last one.
    std::vector<uint32_t> Draw(int32_t nFrames = 1, uint64_t nMs = 20)
    {
        for (int32_t i = 0; i < nFrames; i++) {
            plane.context.qwTick += nMs;
            pModule->Draw(plane);
            ReleaseCurrentGL();
        }
        EXPECT_TRUE(plane.WallsStand());
        return plane.Picture();
    }
    uint32_t Middle()
    {
        return plane.Bits()[plane.info.nHeight / 2 * plane.info.nWidth + plane.info.nWidth / 2];
    }
    void Resize(int32_t nWidth, int32_t nHeight)
    {
        pModule->CleanUp();
        plane.Resize(nWidth, nHeight);
        ResizeGLWindow(hwndGL, nWidth, nHeight);
        pModule->BringUp(plane, 7);
    }

    TestPlane plane;
    std::u16string wide;
    HostGLWindow *hwndGL = nullptr;
    std::unique_ptr<TestModule> pModule;
};

class ShaderTest : public testing::Test {
  protected:
    void SetUp() override
    {
        std::filesystem::create_directories(folder / "Include");
        setenv("FOLDER_SHADERINCLUDE", (folder / "Include").c_str(), 1);
        ShaderMessages.clear();
    }
    void TearDown() override
    {
        unsetenv("FOLDER_SHADERINCLUDE");
        CloseGLDisplay();
    }
    std::string Write(const std::string &name, const std::string &text)
    {
        return folder.Write(name, text).string();
    }
    std::unique_ptr<ShaderInstance> Open(const std::string &text, int32_t nWidth = 16, int32_t nHeight = 8,
                                         bool bIndexed = false, int32_t nColors = 256)
    {
        return std::make_unique<ShaderInstance>(Write("Test.glsl", text), nWidth, nHeight, bIndexed, nColors);
    }

    TempFolder folder;
};

// Where drawing is what is tested.
class ShaderDrawing : public ShaderTest {
  protected:
    void SetUp() override
    {
        ShaderTest::SetUp();
        HostGLWindow *hwndGL = CreateGLWindow(1, 1);
        if (!hwndGL)
            GTEST_SKIP() << "there is no OpenGL";
        DestroyGLWindow(hwndGL);
    }
};
