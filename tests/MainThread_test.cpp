// MainThread_test.cpp -- tests MainThread.cpp
#include "platform/MainThread.h"

#include "editing/PresetEdit.h"
#include "engine/PresetNews.h"
#include "output/Presenters.h"
#include "platform/Notices.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

bool OtherIsMain()
{
    bool bMain = true;
    std::thread([&] { bMain = OnMainThread(); }).join();
    return bMain;
}

TEST(MainThread, WhoClaimsFirstStaysIt)
{
    ClaimMainThread();
    EXPECT_TRUE(OnMainThread());
    EXPECT_FALSE(OtherIsMain());
    ClaimMainThread();
    EXPECT_TRUE(OnMainThread());
    EXPECT_DEATH(std::thread(ClaimMainThread).join(), "OnMainThread");
}

TEST(MainThread, WhereNobodyClaimedWhoAsksFirstIsIt)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own, in which nobody claimed
    EXPECT_EXIT(
        {
            const bool bOther = OtherIsMain();
            _exit(bOther && !OnMainThread() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(MainThread, AFunctionOfItsOwnStopsTheProgramOnAnotherThread)
{
    if (!MAIN_THREAD_IS_ASSERTED)
        GTEST_SKIP() << "a release build does not look";
    ClaimMainThread();
    EXPECT_DEATH(std::thread([] { AddNotice("from elsewhere"); }).join(), "OnMainThread.*Notices.cpp");
    EXPECT_DEATH(std::thread([] { PresentFrame(nullptr); }).join(), "OnMainThread.*Presenters.cpp");
    EXPECT_DEATH(std::thread([] { TellPresetNews({}); }).join(), "OnMainThread.*PresetNews.cpp");
    EXPECT_DEATH(std::thread([] { RunPresetEdit({}); }).join(), "OnMainThread.*PresetEdit.cpp");
}

} // namespace
