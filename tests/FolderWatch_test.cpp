// FolderWatch_test.cpp -- tests WaitingChanges.cpp and FolderWatch.cpp: how notices are merged, and the service itself
#include "library/FolderWatch.h"

#include "platform/Text.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace {

using enum NoticeKind;

// What is called back for the notices, in the order in which it is: "+a" added, "-a" removed, "*a" modified, "a>b".
std::string Changes(const std::vector<FolderNotice> &notices)
{
    WaitingChanges waiting = {};
    for (const FolderNotice &notice : notices)
        TakeNotice(&waiting, notice);
    std::string s;
    while (!waiting.queue.empty()) {
        const WaitingChange change = NextChange(&waiting);
        if (change.dwAction == WATCH_OLD_NAME)
            s += " " + change.sName;
        else
            s += std::string(change.dwAction == WATCH_NEW_NAME ? "" : " ") + "?+-*.>"[change.dwAction] + change.sName;
    }
    return s;
}

TEST(WaitingChanges, ASaveIsOneChange)
{
    EXPECT_EQ(" +a", Changes({{Created, 0, "a"}, {Written, 0, "a"}, {Written, 0, "a"}}));
    EXPECT_EQ(" *a *b", Changes({{Written, 0, "a"}, {Written, 0, "b"}, {Written, 0, "a"}}));
    EXPECT_EQ(" -a", Changes({{Written, 0, "a"}, {Removed, 0, "a"}}));
    EXPECT_EQ(" +a", Changes({{Removed, 0, "a"}, {Created, 0, "a"}, {Written, 0, "a"}})) << "it went and came back";
    EXPECT_EQ(" -a", Changes({{Created, 0, "a"}, {Removed, 0, "a"}}));
}

TEST(WaitingChanges, ARenameIsAPairAndLeavingTheFolderARemoval)
{
    EXPECT_EQ(" a>b", Changes({{MovedFrom, 1, "a"}, {MovedTo, 1, "b"}}));
    EXPECT_EQ(" a>b *c", Changes({{MovedFrom, 1, "a"}, {Written, 0, "c"}, {MovedTo, 1, "b"}}));
    EXPECT_EQ(" a>b *b", Changes({{Written, 0, "a"}, {MovedFrom, 1, "a"}, {MovedTo, 1, "b"}}))
        << "with its new contents";
    EXPECT_EQ(" tmp>b", Changes({{Created, 0, "tmp"}, {Written, 0, "tmp"}, {MovedFrom, 2, "tmp"}, {MovedTo, 2, "b"}}));
    EXPECT_EQ(" a>b b>c", Changes({{MovedFrom, 1, "a"}, {MovedTo, 1, "b"}, {MovedFrom, 2, "b"}, {MovedTo, 2, "c"}}));
    EXPECT_EQ(" -a +a", Changes({{MovedFrom, 1, "a"}, {Created, 0, "a"}}));
    EXPECT_EQ(" -a", Changes({{Written, 0, "a"}, {MovedFrom, 1, "a"}}));
    EXPECT_EQ(" +a", Changes({{Written, 0, "a"}, {MovedTo, 7, "a"}})) << "saved through another folder";
}

TEST(WaitingChanges, TooManyOfThemCountAsLost)
{
    WaitingChanges waiting = {};
    for (i32 i = 0; i < 64; i++)
        TakeNotice(&waiting, {Written, 0, std::to_string(i)});
    EXPECT_EQ(0u, waiting.bLost);
    EXPECT_EQ(64u, waiting.queue.size());
    TakeNotice(&waiting, {Written, 0, "one more"});
    TakeNotice(&waiting, {Written, 0, "and another"});
    EXPECT_EQ(1u, waiting.bLost);
    EXPECT_TRUE(waiting.queue.empty());
}

std::mutex mtxLog;
std::string sLog;
std::atomic<u32> nLost{0};

class FolderWatch : public testing::Test {
  protected:
    void SetUp() override
    {
        char szFolder[] = "/tmp/vd-watch-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(szFolder));
        folder = szFolder;
        sLog.clear();
        nLost = 0;
    }
    void TearDown() override
    {
        StopAllWatches();
        fs::remove_all(folder);
    }
    i32 Watch(const fs::path &path)
    {
        return WatchFolder(
            FromUtf8(path.string()),
            [](const char16_t *pszName, u32 dwAction) {
                const std::lock_guard lock(mtxLog);
                sLog += std::string(" ") + "?+-*<>"[dwAction] + ToUtf8(pszName);
            },
            [] { nLost++; });
    }
    static std::string Log()
    {
        const std::lock_guard lock(mtxLog);
        return sLog;
    }
    template <typename Fn> static bool Soon(Fn &&fn)
    {
        for (i32 i = 0; i < 3000 && !fn(); i++)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return fn();
    }
    void Touch(const std::string &sName) const
    {
        std::ofstream(folder / sName) << "x";
    }
    fs::path folder;
};

TEST_F(FolderWatch, CallsBackForEachKindOfChangeAndNotForFolders)
{
    ASSERT_GT(Watch(folder), 0);
    Touch("a");
    fs::create_directory(folder / "folder.VD");
    EXPECT_TRUE(Soon([] { return Log() == " +a"; })) << Log();
    fs::rename(folder / "a", folder / "\u00e4");
    EXPECT_TRUE(Soon([] { return Log() == " +a <a >\u00e4"; })) << Log();
    Touch("\u00e4");
    EXPECT_TRUE(Soon([] { return Log() == " +a <a >\u00e4 *\u00e4"; })) << Log();
    fs::remove(folder / "\u00e4");
    EXPECT_TRUE(Soon([] { return Log() == " +a <a >\u00e4 *\u00e4 -\u00e4"; })) << Log();
}

TEST_F(FolderWatch, OneCallTakesThePlaceOfTooManyChanges)
{
    ASSERT_GT(Watch(folder), 0);
    for (i32 i = 0; i < 500; i++)
        Touch(std::to_string(i));
    EXPECT_TRUE(Soon([] { return nLost > 0; }));
    StopAllWatches();
    EXPECT_LT(Log().size(), 50u) << Log();
}

TEST_F(FolderWatch, MoreWatchesThanTheFirstTableHoldsEachHaveANumberAndAThread)
{
    for (i32 i = 0; i < 70; i++)
        fs::create_directory(folder / std::to_string(i));
    const i32 nFirst = Watch(folder / "0");
    for (i32 i = 1; i < 70; i++)
        ASSERT_EQ(nFirst + i, Watch(folder / std::to_string(i)));
    Touch("0/first");
    Touch("69/last");
    EXPECT_TRUE(Soon([] { return Log() == " +first +last" || Log() == " +last +first"; })) << Log();
    EXPECT_EQ(WATCH_ID_FAILED, Watch(folder / "nowhere"));
    StopAllWatches();
    Touch("0/late");
    EXPECT_EQ(nFirst + 70, Watch(folder / "0")) << "numbers are not given twice";
}

TEST_F(FolderWatch, AFolderThatGoesAwayEndsItsWatchWithAReport)
{
    static std::atomic<u32> nErrors;
    nErrors = 0;
    lpfnWatchError = [](const char16_t *) { nErrors++; };
    fs::create_directory(folder / "sub");
    ASSERT_GT(Watch(folder / "sub"), 0);
    fs::remove(folder / "sub");
    EXPECT_TRUE(Soon([] { return nErrors == 1; }));
    EXPECT_EQ(1u, nLost) << "what was in it is gone too";
    StopAllWatches();
    lpfnWatchError = nullptr;
}

} // namespace
