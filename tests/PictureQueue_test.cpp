// PictureQueue_test.cpp -- order, bounds, copies and errors of the queue behind which pictures are saved
#include "output/pictures/PictureQueue.h"
#include "platform/Bitmap.h"
#include "platform/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

// What the stand-in for SavePicture saw; reset by the fixture.
struct Seen {
    std::mutex mtx;
    std::vector<std::pair<std::string, u32>> saved; // path and the first pixel
    std::set<std::string> busy;
    bool bSamePathTwice = false;
    std::atomic<u32> nBusy{0};
    std::atomic<u32> nBusyMost{0};
    std::atomic<bool> bHold{false};
};
Seen *pSeen;

u32 SaveSlowly(const HostBitmap *hbm, const char16_t *pszPath, u32)
{
    const std::string sPath = ToUtf8(pszPath);
    {
        std::lock_guard lock(pSeen->mtx);
        pSeen->bSamePathTwice |= !pSeen->busy.insert(sPath).second;
    }
    pSeen->nBusyMost = std::max(pSeen->nBusyMost.load(), ++pSeen->nBusy);
    while (pSeen->bHold)
        std::this_thread::yield();
    std::this_thread::yield();
    std::lock_guard lock(pSeen->mtx);
    pSeen->nBusy--;
    pSeen->busy.erase(sPath);
    pSeen->saved.emplace_back(sPath, BitmapPixels(hbm)[0]);
    errno = sPath.find("bad") != std::string::npos ? ENOSPC : 0;
    return errno == 0;
}

class Pictures : public testing::Test {
  protected:
    void SetUp() override
    {
        pSeen = &seen;
        hbm = CreateBitmap(32, 16);
    }
    void TearDown() override
    {
        DeleteBitmap(hbm);
    }
    // Draws the number into the one bitmap that all frames share, and submits it.
    void Submit(PictureQueue *pQueue, u32 n, const std::string &sName)
    {
        BitmapPixels(hbm)[0] = n;
        SubmitPicture(pQueue, hbm, FromUtf8(sName), 95);
    }

    Seen seen;
    HostBitmap *hbm = nullptr;
};

} // namespace

TEST_F(Pictures, EveryPictureIsSavedAsItWasWhenSubmitted)
{
    std::vector<u64> orders;
    const auto done = [](const PictureResult &result, void *pv) {
        static_cast<std::vector<u64> *>(pv)->push_back(result.nOrder);
    };
    PictureQueue *pQueue = StartPictureQueue({3, 4, SaveSlowly, done, &orders});
    for (u32 n = 1; n <= 200; n++)
        Submit(pQueue, n, std::to_string(n));
    FinishPictures(pQueue);
    const PictureReport report = ReadPictureReport(pQueue);
    EXPECT_EQ(200u, report.nSubmitted);
    EXPECT_EQ(200u, report.nSaved);
    EXPECT_EQ(0u, report.nFailed);
    EXPECT_LE(seen.nBusyMost, 3u);
    Submit(pQueue, 201, "201"); // finishing is no end
    StopPictureQueue(pQueue);
    ASSERT_EQ(201u, seen.saved.size());
    for (const auto &[sPath, n] : seen.saved)
        EXPECT_EQ(std::to_string(n), sPath);
    std::sort(orders.begin(), orders.end());
    for (u64 n = 1; n <= 201; n++)
        EXPECT_EQ(n, orders[n - 1]);
}

TEST_F(Pictures, OneWorkerKeepsTheOrderAndAFullQueueHoldsTheCallerUp)
{
    seen.bHold = true;
    PictureQueue *pQueue = StartPictureQueue({1, 3, SaveSlowly, nullptr, nullptr});
    for (u32 n = 1; n <= 3; n++) {
        EXPECT_TRUE(PictureQueueHasRoom(pQueue, hbm, u"new"));
        Submit(pQueue, n, std::to_string(n));
        EXPECT_FALSE(PictureQueueHasRoom(pQueue, hbm, FromUtf8(std::to_string(n)))) << "its path is taken";
    }
    EXPECT_FALSE(PictureQueueHasRoom(pQueue, hbm, u"new"));
    std::atomic<bool> bIn = false;
    std::thread drawing([&] {
        Submit(pQueue, 4, "4");
        bIn = true;
    });
    while (seen.nBusy == 0)
        std::this_thread::yield();
    EXPECT_FALSE(bIn);
    EXPECT_EQ(3u, ReadPictureReport(pQueue).nSubmitted);
    seen.bHold = false;
    drawing.join();
    StopPictureQueue(pQueue);
    for (u32 n = 1; n <= 4; n++)
        EXPECT_EQ(n, seen.saved.at(n - 1).second);
}

TEST_F(Pictures, TwoPicturesOfOnePathAreNeverWrittenAtOnce)
{
    PictureQueue *pQueue = StartPictureQueue({4, 8, SaveSlowly, nullptr, nullptr});
    for (u32 n = 1; n <= 100; n++)
        Submit(pQueue, n, n % 2 ? "same" : std::to_string(n));
    StopPictureQueue(pQueue);
    EXPECT_FALSE(seen.bSamePathTwice);
    u32 nLast = 0;
    for (const auto &[sPath, n] : seen.saved)
        if (sPath == "same") {
            EXPECT_LT(nLast, n);
            nLast = n;
        }
    EXPECT_EQ(99u, nLast);
}

TEST_F(Pictures, TheFirstFailureIsKeptAndTheRestIsStillSaved)
{
    PictureQueue *pQueue = StartPictureQueue({4, 8, SaveSlowly, nullptr, nullptr});
    for (u32 n = 1; n <= 40; n++)
        Submit(pQueue, n, (n == 7 || n > 30 ? "bad" : "good") + std::to_string(n));
    FinishPictures(pQueue);
    const PictureReport report = ReadPictureReport(pQueue);
    StopPictureQueue(pQueue);
    EXPECT_EQ(40u, seen.saved.size());
    EXPECT_EQ(29u, report.nSaved);
    EXPECT_EQ(11u, report.nFailed);
    EXPECT_EQ(u"bad7", report.firstFailed);
    EXPECT_EQ("bad7 cannot be written: No space left on device",
              PictureFailureText(report.firstFailed, report.nFirstError));
}

TEST_F(Pictures, PicturesMayChangeTheirSizeOnTheWay)
{
    PictureQueue *pQueue = StartPictureQueue({2, 4, SaveSlowly, nullptr, nullptr});
    for (u32 n = 1; n <= 60; n++) {
        HostBitmap *hbmOther = CreateBitmap(static_cast<i32>(8 + n % 3 * 64), 8);
        BitmapPixels(hbmOther)[0] = n;
        SubmitPicture(pQueue, hbmOther, FromUtf8(std::to_string(n)), 95);
        DeleteBitmap(hbmOther);
    }
    StopPictureQueue(pQueue);
    ASSERT_EQ(60u, seen.saved.size());
    for (const auto &[sPath, n] : seen.saved)
        EXPECT_EQ(std::to_string(n), sPath);
}
