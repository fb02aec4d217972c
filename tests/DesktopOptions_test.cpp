// DesktopOptions_test.cpp -- tests DesktopOptions.cpp
#include "app/DesktopOptions.h"

#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class Options : public testing::Test {
  protected:
    // A file whose path has that many characters.
    std::string FileOfLength(size_t cch) const
    {
        fs::path path = folder.string();
        while (cch - path.string().size() > 120)
            path /= std::string(99, 'd');
        fs::create_directories(path);
        path /= std::string(cch - path.string().size() - 1, 'f');
        std::ofstream(path) << "x";
        return path.string();
    }
    bool Read(std::string sArgument)
    {
        char szProgram[] = "vorticade";
        char *apsz[] = {szProgram, sArgument.data(), nullptr};
        options = {};
        sError.clear();
        return ReadDesktopOptions(2, apsz, &options, &sError);
    }

    TempFolder folder;
    DesktopOptions options;
    std::string sError;
};

TEST_F(Options, AFirstArgumentThatNamesAFileIsThePresetAndAnyOtherIsIgnored)
{
    const std::string sFile = FileOfLength(100);
    EXPECT_TRUE(Read(sFile));
    EXPECT_EQ(sFile, ToUtf8(options.start.preset));
    for (const std::string &sArgument :
         {folder.string(), sFile + ".missing", std::string("no.VD"), "/" + std::string(500, 'x')}) {
        EXPECT_TRUE(Read(sArgument)) << sError;
        EXPECT_EQ(u"", options.start.preset) << sArgument;
    }
}

TEST_F(Options, APathThatDoesNotFitIsRefusedWithOneLine)
{
    EXPECT_TRUE(Read(FileOfLength(259))) << sError;
    EXPECT_EQ(259u, options.start.preset.size());
    EXPECT_FALSE(Read(FileOfLength(260)));
    EXPECT_EQ("the path of the preset has 260 characters; move the file to where it has fewer than 260", sError);
}

} // namespace
