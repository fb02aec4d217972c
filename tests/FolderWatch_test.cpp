// FolderWatch_test.cpp -- tests WaitingChanges.cpp and FolderWatch.cpp: how notices are merged, and the service itself
#include "library/FolderWatch.h"

#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

using enum NoticeKind;

// What one turn calls back: "+a" added, "-a" removed, "*a" modified, "a>b"; "_" nothing yet.
std::string Turn(WaitingChanges *pWaiting)
{
    const std::optional<WaitingChange> change = NextChange(pWaiting);
    if (!change)
        return " _";
    if (change->dwAction == WATCH_OLD_NAME)
        return " " + change->sName;
    return std::string(change->dwAction == WATCH_NEW_NAME ? "" : " ") + "?+-*.>"[change->dwAction] + change->sName;
}

void Take(WaitingChanges *pWaiting, const std::vector<FolderNotice> &notices)
{
    for (const FolderNotice &notice : notices)
        TakeNotice(pWaiting, notice);
}

// What is called back for the notices, in the order in which it is.
std::string Changes(const std::vector<FolderNotice> &notices)
{
    WaitingChanges waiting = {};
    Take(&waiting, notices);
    std::string s;
    while (!waiting.queue.empty())
        s += Turn(&waiting);
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

TEST(WaitingChanges, AFileThatStaysOpenIsLookedAtWhenItIsAtRestAndFromTimeToTimeBefore)
{
    EXPECT_EQ(" _ *a", Changes({{Touched, 0, "a"}, {Touched, 0, "a"}, {Touched, 0, "a"}}));
    EXPECT_EQ(" *b *a", Changes({{Touched, 0, "a"}, {Written, 0, "b"}})) << "others do not wait for it";
    EXPECT_EQ(" *a", Changes({{Touched, 0, "a"}, {Written, 0, "a"}, {Touched, 0, "a"}})) << "closed is at rest";
    EXPECT_EQ(" +a", Changes({{Created, 0, "a"}, {Touched, 0, "a"}}));
    EXPECT_EQ(" a>b *b", Changes({{Touched, 0, "a"}, {MovedFrom, 1, "a"}, {MovedTo, 1, "b"}}));
    WaitingChanges waiting = {};
    u32 nLooks = 0;
    for (u32 i = 0; i < 1000; i++) {
        Take(&waiting, {{Touched, 0, "a"}, {Touched, 0, "b"}});
        nLooks += Turn(&waiting) == " *a";
    }
    EXPECT_EQ(1000u / WATCH_HELD_TURNS_MAX, nLooks);
}

TEST(WaitingChanges, ANewNameThatComesLateStillTellsTheOldOne)
{
    WaitingChanges waiting = {};
    Take(&waiting, {{MovedFrom, 5, "tmp"}});
    EXPECT_EQ(" -tmp", Turn(&waiting));
    Take(&waiting, {{MovedTo, 6, "other"}, {MovedTo, 5, "a"}});
    for (const char *pszExpected : {" +other", " tmp", ">a"})
        EXPECT_EQ(pszExpected, Turn(&waiting));
    Take(&waiting, {{MovedTo, 5, "b"}});
    EXPECT_EQ(" +b", Turn(&waiting)) << "one rename has one new name";
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
        sLog.clear();
        nLost = 0;
    }
    void TearDown() override
    {
        StopAllWatches();
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
        folder.Write(sName);
    }
    TempFolder folder;
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

TEST_F(FolderWatch, AFileThatStaysOpenIsToldOfWhileItIsWritten)
{
    Touch("a");
    std::ofstream writer(folder / "a", std::ios::app);
    ASSERT_GT(Watch(folder), 0);
    for (u32 i = 0; i < 1000; i++)
        writer << "x" << std::flush;
    EXPECT_TRUE(Soon([] { return Log() == " *a"; })) << Log();
    writer << "x" << std::flush;
    EXPECT_TRUE(Soon([] { return Log() == " *a *a"; })) << Log();
}

class WatchWithErrors : public FolderWatch {
  protected:
    static inline std::atomic<u32> nErrors;
    void SetUp() override
    {
        FolderWatch::SetUp();
        nErrors = 0;
        lpfnWatchError = [](const char16_t *) { nErrors++; };
    }
    void TearDown() override
    {
        FolderWatch::TearDown();
        lpfnWatchError = nullptr;
    }
};

TEST_F(WatchWithErrors, AFolderThatComesBackIsWatchedAgain)
{
    fs::create_directory(folder / "sub");
    ASSERT_GT(Watch(folder / "sub"), 0);
    fs::remove(folder / "sub");
    EXPECT_TRUE(Soon([] { return nErrors == 1 && nLost == 1; })) << "what was in it is gone too";
    fs::create_directory(folder / "sub");
    EXPECT_TRUE(Soon([] { return nLost == 2; })) << "and what is in it now is new";
    Touch("sub/a");
    EXPECT_TRUE(Soon([] { return Log() == " +a"; })) << Log();
    fs::rename(folder / "sub", folder / "moved");
    EXPECT_TRUE(Soon([] { return nErrors == 2 && nLost == 3; }));
}

// The first open file of this process that is what the link says.
int FindOpenFile(const std::string &sLink)
{
    for (const auto &entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (fs::read_symlink(entry, ignored) == sLink)
            return std::stoi(entry.path().filename().string());
    }
    return -1;
}

TEST_F(WatchWithErrors, NoticesThatCannotBeReadDoNotEndTheWatch)
{
    ASSERT_GT(Watch(folder), 0);
    const int fdNotify = FindOpenFile("anon_inode:inotify");
    const int fdFolder = open(folder.string().c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(fdNotify, 0);
    ASSERT_GE(syscall(SYS_dup3, fdFolder, fdNotify, 0), 0); // always ready, and never to be read
    close(fdFolder);
    Touch("wakes nobody");
    EXPECT_TRUE(Soon([] { return nErrors == 1 && nLost >= 2; })) << nErrors << " " << nLost;
    Touch("a");
    EXPECT_TRUE(Soon([] { return Log() == " +a"; })) << Log();
}

} // namespace
