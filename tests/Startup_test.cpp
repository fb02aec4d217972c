// Startup_test.cpp -- tests Startup.cpp, SharedStatus.cpp and MainLoop.cpp
#include "app/MainLoop.h"
#include "app/RenderOptions.h"
#include "app/RenderRun.h"
#include "app/SharedStatus.h"
#include "app/Startup.h"
#include "app/Steps.h"
#include "platform/Sanitizers.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

static size_t cbToFail = 0;

#if defined(VD_ADDRESS_SANITIZER) || defined(VD_THREAD_SANITIZER)
constexpr bool CAN_FAIL_CALLOC = false;
#else
constexpr bool CAN_FAIL_CALLOC = true;
extern "C" {
void *__libc_calloc(size_t n, size_t cb);

// Takes the place of the system's, for one record of that size.
void *calloc(size_t n, size_t cb)
{
    return n == 1 && cb == cbToFail ? nullptr : __libc_calloc(n, cb);
}
}
#endif

namespace {

// A runtime folder of its own keeps the lock file of the test apart; the block's name stays the user's.
class SharedStatus : public testing::Test {
  protected:
    void SetUp() override
    {
        setenv("XDG_RUNTIME_DIR", folder.string().c_str(), 1);
    }

    static const u8 *Bytes()
    {
        return static_cast<const u8 *>(GlobalSettings.pSharedStatus);
    }
    static u32 Word(size_t cbOffset)
    {
        u32 dw;
        std::memcpy(&dw, Bytes() + cbOffset, sizeof dw);
        return dw;
    }
    // The answer of OpenSharedStatus in another process, while this one holds the block.
    static int OpenInChild()
    {
        const pid_t pid = fork();
        if (pid == 0)
            _exit(static_cast<int>(OpenSharedStatus()));
        int nStatus = 0;
        waitpid(pid, &nStatus, 0);
        return WEXITSTATUS(nStatus);
    }
    TempFolder folder;
};

TEST_F(SharedStatus, ANewBlockHoldsItsSizeVersionAndMarkAndZeroOtherwise)
{
    ASSERT_NE(0u, OpenSharedStatus());
    std::set<size_t> used;
    for (const auto &[cbOffset, dwValue] :
         std::vector<std::pair<size_t, u32>>{{0, 5922}, {4, 14}, {28, 1}, {640, 0x4F07D0}}) {
        EXPECT_EQ(dwValue, Word(cbOffset));
        for (size_t i = 0; i < 4; i++)
            used.insert(cbOffset + i);
    }
    for (size_t i = 0; i < 5922; i++)
        ASSERT_TRUE(used.count(i) || Bytes()[i] == 0) << i;
    CloseSharedStatus();
    EXPECT_EQ(nullptr, GlobalSettings.pSharedStatus);
}

TEST_F(SharedStatus, ASecondProgramOfTheSameVersionRunsBesideTheFirstAndClearsNothing)
{
    ASSERT_NE(0u, OpenSharedStatus());
    auto *pb = static_cast<u8 *>(GlobalSettings.pSharedStatus);
    pb[1000] = 7;
    EXPECT_EQ(1, OpenInChild());
    EXPECT_EQ(7, pb[1000]);
    CloseSharedStatus();
}

TEST_F(SharedStatus, AProgramOfAnotherVersionKeepsThisOneOut)
{
    ASSERT_NE(0u, OpenSharedStatus());
    auto *pssb = static_cast<SharedStatusBlock *>(GlobalSettings.pSharedStatus);
    pssb->dwVersion = 13;
    EXPECT_EQ(0, OpenInChild());
    pssb->dwVersion = 14;
    pssb->cbSize = 5921;
    EXPECT_EQ(0, OpenInChild());
    pssb->cbSize = 5922;
    EXPECT_EQ(1, OpenInChild());
    CloseSharedStatus();
}

// Exit code of the function in another process, and what it said on standard error.
template <typename Fn> std::pair<int, std::string> RunInChild(Fn run)
{
    testing::internal::CaptureStderr();
    const pid_t pid = fork();
    if (pid == 0)
        _exit(run());
    int nStatus = 0;
    waitpid(pid, &nStatus, 0);
    return {WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1, testing::internal::GetCapturedStderr()};
}

TEST_F(SharedStatus, TheStartSaysThatTheBlockKeptItOut)
{
    ASSERT_NE(0u, OpenSharedStatus());
    static_cast<SharedStatusBlock *>(GlobalSettings.pSharedStatus)->dwVersion = 13;
    const auto [nExit, sSaid] = RunInChild([&] {
        const std::u16string data = FromUtf8(folder.string());
        return StartCore({data, data, {}});
    });
    CloseSharedStatus();
    EXPECT_EQ(static_cast<u8>(EXIT_MAPPING), nExit);
    EXPECT_EQ("Startup_test: the start failed at this step: shared block\n", sSaid);
}

TEST_F(SharedStatus, ARendererWithoutMemoryForItsSoundEndsWithOneAndOneLine)
{
    if (!CAN_FAIL_CALLOC)
        GTEST_SKIP() << "the allocator is the sanitizer's";
    RenderOptions render;
    render.preset = "default";
    render.start.data = render.start.modules = FromUtf8(folder.string());
    RenderOptions list = render;
    list.list = folder.string();
    for (const RenderOptions &ro : {render, list}) {
        const auto [nExit, sSaid] = RunInChild([&] {
            cbToFail = sizeof(SoundFrame);
            return RunRender(ro);
        });
        EXPECT_EQ(1, nExit);
        EXPECT_EQ("Startup_test: the start failed at this step: sound block\n", sSaid);
    }
}

// What the frame timer was told, as text: "+7" started on window 7, "-7" killed.
std::string sTimerLog;
u32 nLastPeriod = 0;

void *Window(u64 n)
{
    return reinterpret_cast<void *>(n);
}

class DialogFrames : public testing::Test {
  protected:
    void SetUp() override
    {
        GlobalSettings = {};
        GlobalSettings.FPSTarget = 60;
        sTimerLog.clear();
        SetFrameTimerHooks({[](void *hwnd, u32, u32 nPeriodMs) {
                                sTimerLog += "+" + std::to_string(reinterpret_cast<u64>(hwnd));
                                nLastPeriod = nPeriodMs;
                            },
                            [](void *hwnd, u32) { sTimerLog += "-" + std::to_string(reinterpret_cast<u64>(hwnd)); }});
    }
    void TearDown() override
    {
        SetFrameTimerHooks({});
        GlobalSettings = {};
    }
    static u32 Send(u64 n, DialogMessage eMessage, u32 dwTimerId = 0)
    {
        return RunDialogFrames(Window(n), eMessage, dwTimerId);
    }
};

TEST_F(DialogFrames, TheFirstDialogOwnsTheTimerAndAnotherOnesClosingLeavesIt)
{
    EXPECT_EQ(1u, Send(1, DialogMessage::Init));
    EXPECT_EQ(1u, Send(2, DialogMessage::Init));
    Send(3, DialogMessage::EnterMenuLoop);
    Send(3, DialogMessage::ExitMenuLoop);
    EXPECT_EQ(1u, Send(2, DialogMessage::Destroy));
    EXPECT_EQ("+1", sTimerLog);
    EXPECT_EQ(1u, Send(1, DialogMessage::Timer, FrameTimerId()));
    Send(1, DialogMessage::Destroy);
    EXPECT_EQ("+1-1", sTimerLog);
}

TEST_F(DialogFrames, TheTimerPassesOnToWhatStillHoldsTheLoop)
{
    Send(1, DialogMessage::EnterMenuLoop);
    Send(2, DialogMessage::Init); // opened from the menu
    Send(2, DialogMessage::EnterSizeMove);
    Send(1, DialogMessage::ExitMenuLoop);
    EXPECT_EQ("+1-1+2", sTimerLog);
    Send(3, DialogMessage::Init);
    Send(2, DialogMessage::ExitSizeMove);
    EXPECT_EQ("+1-1+2", sTimerLog);
    Send(2, DialogMessage::Destroy);
    EXPECT_EQ("+1-1+2-2+3", sTimerLog);
    Send(3, DialogMessage::Destroy);
    Send(3, DialogMessage::Destroy);
    EXPECT_EQ("+1-1+2-2+3-3", sTimerLog);
}

TEST_F(DialogFrames, AMenuOrASizeLoopKeepsFramesRunningWhileItLasts)
{
    EXPECT_EQ(0u, Send(4, DialogMessage::EnterMenuLoop));
    EXPECT_EQ(0u, Send(4, DialogMessage::ExitMenuLoop));
    EXPECT_EQ(0u, Send(5, DialogMessage::EnterSizeMove));
    EXPECT_EQ(0u, Send(5, DialogMessage::ExitSizeMove));
    EXPECT_EQ("+4-4+5-5", sTimerLog);
    EXPECT_EQ(0u, Send(5, DialogMessage::Timer, FrameTimerId() + 1)) << "somebody else's timer";
    EXPECT_EQ(0u, Send(5, DialogMessage::Other));
}

TEST_F(DialogFrames, ThePeriodFollowsTheTargetWithinTenToAHundredMilliseconds)
{
    for (const auto &[nTarget, nPeriod] :
         std::vector<std::pair<i32, u32>>{{20, 50}, {60, 16}, {480, 10}, {5, 100}, {0, 100}}) {
        GlobalSettings.FPSTarget = nTarget;
        EXPECT_EQ(nPeriod, FrameTimerPeriodMs()) << nTarget;
    }
}

TEST(MainLoop, ATurnBeginsWithThoseWhoWaitForItAlsoWithoutAFrame)
{
    static std::string sTold;
    sTold.clear();
    constexpr auto pfnTell = [](void *pv) { sTold += static_cast<const char *>(pv); };
    char szA[] = "a", szB[] = "b";
    BeforeFrameListeners.Add(pfnTell, szA);
    BeforeFrameListeners.Add(pfnTell, szB);
    EXPECT_EQ(0u, RunAndPresentFrame()) << "there is no preset";
    BeforeFrameListeners.Remove(pfnTell, szA);
    RunAndPresentFrame();
    BeforeFrameListeners.Remove(pfnTell, szB);
    EXPECT_EQ("abb", sTold);
}

TEST(Startup, TimerNumbersAreNeverTheSameAndNeverZero)
{
    std::set<u32> ids;
    for (i32 i = 0; i < 1000; i++)
        ids.insert(NextTimerId());
    EXPECT_EQ(1000u, ids.size());
    EXPECT_EQ(0u, ids.count(0));
    EXPECT_GE(*ids.begin(), 70u);
}

TEST(Startup, StepsRunInOrderUpToTheFirstThatFails)
{
    static std::string sRun;
    sRun.clear();
    constexpr Step asStep[] = {
        {"one",
         [] {
             sRun += "1";
             return 1u;
         }},
        {"two",
         [] {
             sRun += "2";
             return 0u;
         }},
        {"three",
         [] {
             sRun += "3";
             return 1u;
         }},
    };
    EXPECT_STREQ("two", RunSteps(asStep));
    EXPECT_EQ("12", sRun);
    EXPECT_EQ(nullptr, RunSteps(std::span(asStep).first(1)));
}

} // namespace
