// AtomicFile_test.cpp -- tests AtomicFile.cpp and WholeFile.cpp
#include "platform/AtomicFile.h"

#include "platform/Text.h"
#include "platform/WholeFile.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

class AtomicFile : public ::testing::TestWithParam<bool> {
  protected:
    TempFolder folder;
    std::string sWhy;

    // With and without a folder for what is being written.
    void SetUp() override
    {
        fs::create_directory(folder / "Presets");
        SetSaveFolder(GetParam() ? folder.Wide(".saving") : u"");
    }
    void TearDown() override
    {
        SetSaveFolder(u"");
    }
    u32 Save(const fs::path &path, std::string_view bytes)
    {
        return SaveFileAtomically(FromUtf8(path.string()), bytes, &sWhy);
    }
    std::string Read(const fs::path &path)
    {
        std::string s;
        EXPECT_TRUE(ReadWholeFile(FromUtf8(path.string()), 1u << 30, &s));
        return s;
    }
    // Nothing half-written lies anywhere.
    void ExpectOnly(std::vector<std::string> asName)
    {
        std::vector<std::string> asFound;
        for (const auto &entry : fs::recursive_directory_iterator(folder))
            if (!entry.is_directory())
                asFound.push_back(entry.path().filename().string());
        std::sort(asFound.begin(), asFound.end());
        EXPECT_EQ(asFound, asName);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder / "Presets"), fs::directory_iterator()),
                  static_cast<ptrdiff_t>(asName.size()));
    }
};

INSTANTIATE_TEST_SUITE_P(WithAndWithoutAFolder, AtomicFile, ::testing::Bool());

} // namespace

TEST_P(AtomicFile, CreatesAndReplacesAndKeepsThePermissions)
{
    const fs::path path = folder / "Presets" / "A.VD";
    ASSERT_TRUE(Save(path, "first, the longer one"));
    EXPECT_EQ(fs::status(path).permissions() & fs::perms::owner_write, fs::perms::owner_write);
    fs::permissions(path, fs::perms(0640));
    ASSERT_TRUE(Save(path, std::string("second\0", 7)));
    EXPECT_EQ(Read(path), std::string("second\0", 7));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    ASSERT_TRUE(Save(path, ""));
    EXPECT_EQ(Read(path), "");
    ExpectOnly({"A.VD"});
}

TEST_P(AtomicFile, AFullDiskLeavesTheOldFileWholeAndIsReported)
{
    const fs::path path = folder / "Presets" / "A.VD";
    ASSERT_TRUE(Save(path, "old"));
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {4096, before.rlim_max};
    const auto pfnBefore = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const u32 bSaved = Save(path, std::string(100000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, pfnBefore);
    EXPECT_FALSE(bSaved);
    EXPECT_NE(sWhy.find("A.VD"), std::string::npos);
    EXPECT_EQ(Read(path), "old");
    ExpectOnly({"A.VD"});
}

TEST_P(AtomicFile, WhatCannotBeWrittenStaysAsItIs)
{
    EXPECT_FALSE(Save(folder / "missing" / "A.VD", "x"));
    EXPECT_FALSE(Save(folder / "Presets", "x"));
    EXPECT_FALSE(SaveFileAtomically(u"", "x", &sWhy));
    const fs::path pipe = folder / "Presets" / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(Save(pipe, "x"));
    std::string s;
    EXPECT_FALSE(ReadWholeFile(FromUtf8(pipe.string()), 100, &s, &sWhy));
    EXPECT_TRUE(fs::is_fifo(pipe));
    ExpectOnly({"pipe"});
    if (geteuid() == 0)
        return; // nothing is read-only for root
    const fs::path locked = folder / "Presets" / "locked";
    std::ofstream(locked) << "mine";
    fs::permissions(locked, fs::perms(0444));
    EXPECT_FALSE(Save(locked, "x"));
    EXPECT_EQ(Read(locked), "mine");
}

TEST_P(AtomicFile, ALinkStaysALink)
{
    const fs::path path = folder / "Presets" / "A.VD";
    std::ofstream(folder / "Real.VD") << "old";
    fs::create_symlink(folder / "Real.VD", path);
    ASSERT_TRUE(Save(path, "new"));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(Read(folder / "Real.VD"), "new");

    const fs::path dangling = folder / "Presets" / "B.VD", ring = folder / "Presets" / "C.VD";
    fs::create_symlink("../later.VD", folder / "Presets" / "hop");
    fs::create_symlink("hop", dangling);
    ASSERT_TRUE(Save(dangling, "made")) << sWhy;
    EXPECT_TRUE(fs::is_symlink(dangling));
    EXPECT_EQ(Read(folder / "later.VD"), "made");
    fs::create_symlink("C.VD", ring);
    EXPECT_FALSE(Save(ring, "x"));
    EXPECT_TRUE(fs::is_symlink(ring));
}

TEST_P(AtomicFile, WhatAKilledSaveLeftIsRemovedADayLater)
{
    const fs::path left = GetParam() ? folder / ".saving" : folder / "Presets" / ".saving-abcdef";
    fs::create_directory(left);
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(25);
    for (const char *pszName : {"12-0.tmp", "13-1.tmp", "mine.tmp"}) {
        std::ofstream(left / pszName) << "half";
        if (*pszName != '1' || pszName[1] != '3')
            fs::last_write_time(left / pszName, old);
    }
    fs::last_write_time(left, old);
    ASSERT_TRUE(Save(folder / "Presets" / "A.VD", "x"));
    EXPECT_FALSE(fs::exists(left / "12-0.tmp"));
    EXPECT_TRUE(fs::exists(left / "13-1.tmp")) << "another program may be at it";
    EXPECT_TRUE(fs::exists(left / "mine.tmp")) << "no name of ours";
    if (GetParam())
        return;
    for (const char *pszName : {"13-1.tmp", "mine.tmp"})
        fs::remove(left / pszName);
    fs::last_write_time(left, old);
    ASSERT_TRUE(Save(folder / "Presets" / "A.VD", "y"));
    ExpectOnly({"A.VD"});
}

TEST_P(AtomicFile, AReaderSeesOneOfTheTwoContentsAtEveryMoment)
{
    const fs::path path = folder / "Presets" / "A.VD";
    const std::string as[2] = {std::string(50000, 'a'), std::string(70000, 'b')};
    ASSERT_TRUE(Save(path, as[0]));
    std::atomic<bool> bDone{false};
    std::thread reader([&] {
        while (!bDone) {
            const std::string s = Read(path);
            EXPECT_TRUE(s == as[0] || s == as[1]) << s.size();
        }
    });
    for (int i = 0; i < 50; i++)
        EXPECT_TRUE(Save(path, as[i % 2]));
    bDone = true;
    reader.join();
    ExpectOnly({"A.VD"});
}

TEST(WholeFile, RefusesMoreThanItsCallerCanTake)
{
    const TempFolder folder;
    const std::u16string path = FromUtf8(folder.Write("a", "12345678").string());
    std::string bytes, sWhy;
    EXPECT_TRUE(ReadWholeFile(path, 8, &bytes, &sWhy));
    EXPECT_EQ(bytes, "12345678");
    EXPECT_FALSE(ReadWholeFile(path, 7, &bytes, &sWhy));
    EXPECT_NE(sWhy, "");
    EXPECT_EQ(bytes, "");
    fs::remove(folder / "a");
    sWhy.clear();
    EXPECT_FALSE(ReadWholeFile(path, 7, &bytes, &sWhy));
    EXPECT_EQ(sWhy, "");
}
