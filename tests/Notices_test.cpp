// Notices_test.cpp -- tests Notices.cpp
#include "platform/Notices.h"

#include <gtest/gtest.h>

namespace {

u32 nTold = 0;

void CountChange(void *)
{
    nTold++;
}

class Notices : public testing::Test {
  protected:
    void SetUp() override
    {
        DismissNotices();
        nTold = 0;
        NoticeListeners.Add(CountChange);
    }
    void TearDown() override
    {
        NoticeListeners.Remove(CountChange);
        DismissNotices();
    }
};

TEST_F(Notices, ATextThatComesAgainIsShownAgainWithItsCountBehindTheOthers)
{
    AddNotice("the disk is full");
    AddNotice("a module hangs");
    EXPECT_EQ("the disk is full\na module hangs\n", NoticeText());
    AddNotice("the disk is full");
    EXPECT_EQ("a module hangs\nthe disk is full (2 times)\n", NoticeText());
    EXPECT_EQ(2u, NoticeCount());
    EXPECT_EQ(3u, nTold);
}

TEST_F(Notices, ATextThatEndsAnOlderOneIsAnother)
{
    AddNotice("no sound: no such file");
    AddNotice("no such file");
    EXPECT_EQ("no sound: no such file\nno such file\n", NoticeText());
}

TEST_F(Notices, ANewNoticeDoesNotBringDismissedOnesBack)
{
    AddNotice("old");
    DismissNotices();
    EXPECT_EQ("", NoticeText());
    EXPECT_EQ(0u, NoticeCount());
    AddNotice("new");
    EXPECT_EQ("new\n", NoticeText());
    AddNotice("old");
    EXPECT_EQ("new\nold (2 times)\n", NoticeText()) << "but one that comes again is shown";
    EXPECT_EQ(4u, nTold);
}

TEST_F(Notices, DismissingTellsTheWindowOnceAndNothingWhereNothingIsShown)
{
    AddNotice("read me");
    DismissNotices();
    DismissNotices();
    EXPECT_EQ(2u, nTold);
}

TEST_F(Notices, EveryTimeIsAlsoALineOnStandardError)
{
    testing::internal::CaptureStderr();
    AddNotice("lost");
    AddNotice("lost");
    EXPECT_EQ("Notices_test: lost\nNotices_test: lost (2 times)\n", testing::internal::GetCapturedStderr());
}

} // namespace
