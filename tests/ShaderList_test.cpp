// ShaderList_test.cpp -- the shader files of the data folder as numbered variants of the shader module
#include "modules/ShaderList.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

class ShaderFiles : public testing::Test {
  protected:
    void SetUp() override
    {
        fs::create_directories(folder / "Shaders" / "Folder.glsl"); // a folder is no shader
        InitFolders({u"/tmp/vorticade", folder.Wide(), {}});
        FreeShaderList();
    }
    void TearDown() override
    {
        FreeShaderList();
    }
    void Write(const std::string &sName)
    {
        folder.Write("Shaders/" + sName, "void main() {}\n");
    }

    TempFolder folder;
};

} // namespace

TEST_F(ShaderFiles, AreNumberedInTheOrderOfTheirNames)
{
    for (const char *psz : {"beta.glsl", "Alpha.Two.GLSL", "notes.txt", "old.glsl.bak",
                            "\xC3\x9C"
                            "ber.glsl"})
        Write(psz);
    const ShaderEntry *pse = GetShaderEntry(0);
    ASSERT_NE(pse, nullptr);
    EXPECT_EQ(std::u16string_view(pse->szName), u"Alpha.Two");
    EXPECT_EQ(ToUtf8(pse->szPath), (folder / "Shaders" / "Alpha.Two.GLSL").string());
    EXPECT_EQ(pse->dwClass, 1u);
    EXPECT_EQ(pse->dwCapabilities, 0x18008u);
    EXPECT_EQ(FindShaderByName(u"BETA"), 2u);
    EXPECT_EQ(FindShaderByName(u"\u00FCBER"), 3u);
    EXPECT_EQ(FindShaderByName(u"beta.glsl"), 0u);
    EXPECT_EQ(FindShaderByName(u"notes"), 0u);
    EXPECT_EQ(FindShaderByName(u""), 0u);
    EXPECT_EQ(GetShaderEntry(3), nullptr);
    EXPECT_EQ(GetShaderEntry(ALL_ONES), nullptr);
}

TEST_F(ShaderFiles, BeyondTwoHundredAndFiftySixAreLeftOutAndTheListIsNeverRebuilt)
{
    for (int i = 0; i < 300; i++)
        Write("s" + std::to_string(1000 + i) + ".glsl");
    EXPECT_EQ(FindShaderByName(u"s1255"), 256u);
    EXPECT_EQ(FindShaderByName(u"s1256"), 0u);
    EXPECT_EQ(GetShaderEntry(256), nullptr);

    const ShaderEntry *pse = GetShaderEntry(7); // slots keep pointers into the list
    fs::remove(folder / "Shaders" / "s1000.glsl");
    Write("a.glsl");
    EXPECT_EQ(FindShaderByName(u"a"), 0u);
    EXPECT_EQ(FindShaderByName(u"s1007"), 8u);
    EXPECT_EQ(GetShaderEntry(7), pse);
}

TEST_F(ShaderFiles, WithoutAnyFileThereIsNoListUntilThereIsOne)
{
    EXPECT_EQ(GetShaderEntry(0), nullptr);
    EXPECT_EQ(FindShaderByName(u"late"), 0u);
    Write("late.glsl");
    EXPECT_EQ(FindShaderByName(u"late"), 1u);
    FreeShaderList();
    fs::remove_all(folder / "Shaders");
    EXPECT_EQ(GetShaderEntry(0), nullptr);
}

TEST_F(ShaderFiles, APathThatDoesNotFitIsNamedAndLeftOut)
{
    Write("a" + std::string(249, 'x') + ".glsl");
    Write("b.glsl");
    testing::internal::CaptureStderr();
    EXPECT_EQ(FindShaderByName(u"b"), 1u);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("xxx.glsl: the path is too long"), std::string::npos);
    EXPECT_EQ(GetShaderEntry(1), nullptr);
}
