// Platform_test.cpp -- the operating-system layer: text, files, chance, clock, events, shared memory, bitmaps
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Random.h"
#include "platform/SharedMemory.h"
#include "platform/Text.h"
#include "platform/Threads.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <semaphore.h>
#include <set>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

// ---- text ----

TEST(Text, BytesThatAreNoUtf8AreReadAsWindows1252)
{
    EXPECT_EQ(FromUtf8("caf\xC3\xA9"), u"caf\u00E9");
    EXPECT_EQ(FromUtf8("caf\xE9"), u"caf\u00E9");                         // old file
    EXPECT_EQ(FromUtf8("\x80 \x99s \x81"), u"\u20AC \u2122s \u0081");     // the euro block
    EXPECT_EQ(FromUtf8("\xE2\x82"), u"\u00E2\u201A");                     // cut in the middle of a character
    EXPECT_EQ(FromUtf8("\xC0\xAF"), u"\u00C0\u00AF");                     // overlong
    EXPECT_EQ(FromUtf8("\xED\xA0\x80"), u"\u00ED\u00A0\u20AC");           // a surrogate
    EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), u"\u00F4\u0090\u20AC\u20AC"); // beyond the last character
    EXPECT_EQ(FromUtf8(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(Text, EveryCharacterSurvivesTheWayOutAndBack)
{
    std::u16string text;
    for (char32_t ch = 0; ch < 0x110000; ch += ch < 0x10000 ? 1 : 0x95)
        if (ch >= 0x10000) {
            text += static_cast<char16_t>(0xD7C0 + (ch >> 10));
            text += static_cast<char16_t>(0xDC00 + (ch & 0x3FF));
        } else if (ch < 0xD800 || ch > 0xDFFF) {
            text += static_cast<char16_t>(ch);
        }
    EXPECT_TRUE(FromUtf8(ToUtf8(text)) == text);
    const char16_t aBroken[] = {u'a', 0xDC00, u'b', 0xD83D, u'c', 0xD83D};
    EXPECT_EQ(ToUtf8({aBroken, 6}), "a\xEF\xBF\xBD"
                                    "b\xEF\xBF\xBD"
                                    "c\xEF\xBF\xBD");
}

TEST(Text, CaseIsIgnoredAlsoBeyondAscii)
{
    EXPECT_TRUE(EqualNoCase(u"PMRotor.DLL", u"pmrotor.dll"));
    EXPECT_TRUE(EqualNoCase(u"\u00C4RGER \u0416", u"\u00E4rger \u0436"));
    EXPECT_FALSE(EqualNoCase(u"abc", u"abcd"));
    EXPECT_FALSE(EqualNoCase(u"@[", u"`{")); // a plain bit trick would take these for letters
    EXPECT_EQ(FindNoCase(u"My GLSL Shader", u"glsl shader"), 3u);
    EXPECT_EQ(FindNoCase(u"abc", u"abcd"), std::u16string_view::npos);
    EXPECT_TRUE(ContainsNoCase(u"", u""));
    EXPECT_FALSE(ContainsNoCase(u"", u"x"));
}

TEST(Text, CopiesStayInsideTheirFieldAndEndIt)
{
    char16_t sz[6];
    std::fill(std::begin(sz), std::end(sz), u'#');
    EXPECT_EQ(CopyText(sz, 5, u"abcdefgh"), 4u);
    EXPECT_EQ(std::u16string_view(sz, 6), std::u16string_view(u"abcd\0#", 6));
    EXPECT_EQ(CopyText(sz, u""), 0u);
    EXPECT_EQ(sz[0], 0);
    EXPECT_EQ(CopyText(sz, u"abcd\U0001F600"), 4u); // no half character
    EXPECT_EQ(std::u16string_view(sz), u"abcd");
    const char16_t aOpen[3] = {u'a', u'b', u'c'};
    EXPECT_EQ(TextLength(aOpen, 3), 3u);
    EXPECT_EQ(TextLength(u"ab", 3), 2u);
}

// ---- files ----

namespace {

class Files : public testing::Test {
  protected:
    void Write(const fs::path &name)
    {
        folder.Write(name, name.string());
    }
    std::u16string Path(std::u16string_view tail) const
    {
        return folder.Wide() + u"/" + std::u16string(tail);
    }
    std::vector<std::string> Names(std::u16string_view pattern) const
    {
        std::vector<std::string> asName;
        for (const std::u16string &path : ListFiles(Path(pattern))) {
            EXPECT_TRUE(FileExists(path)) << ToUtf8(path);
            asName.push_back(ToUtf8(NameAndExtension(path)));
        }
        return asName;
    }

    TempFolder folder;
};

using Strings = std::vector<std::string>;

} // namespace

TEST_F(Files, AListFollowsThePatternWithoutCaseAndIsSorted)
{
    for (const char *psz : {"b.vd", "a.VD", "Z.Vd", "c.vdf", "vd", "a.vd.bak", "\xC3\xA4.vd", "x\\y.vd"})
        Write(psz);
    Write("inside.vd/deep.vd");
    mkfifo((folder / "pipe.vd").c_str(), 0600); // opening one would never return
    fs::create_symlink("nowhere", folder / "dangling.vd");
    fs::create_symlink("b.vd", folder / "link.vd");
    EXPECT_EQ(Names(u"*.VD"), (Strings{"Z.Vd", "a.VD", "b.vd", "link.vd", "\xC3\xA4.vd"}));
    EXPECT_EQ(Names(u"\\*.vdf"), Strings{"c.vdf"});
    EXPECT_EQ(Names(u"*.*").size(), 8u);
    EXPECT_EQ(Names(u"B.VD"), Strings{"b.vd"});
    EXPECT_EQ(Names(u"*.none"), Strings{});
    EXPECT_EQ(Names(u"missing/*.*"), Strings{});
}

TEST_F(Files, NamesThatAreNoUtf8CanStillBeOpened)
{
    Write("caf\xE9.vd");
    EXPECT_EQ(Names(u"*.vd"), Strings{"caf\xC3\xA9.vd"});
    FILE *f = OpenFile(Path(u"caf\u00E9.vd"), "rb");
    ASSERT_NE(f, nullptr);
    std::fclose(f);
}

TEST_F(Files, APathThatMissesByCaseAloneFindsTheFile)
{
    Write("Presets/Deep/Fire.VD");
    const std::string sWanted = (folder / "Presets/Deep/Fire.VD").string();
    EXPECT_EQ(NativePath(Path(u"Presets\\Deep\\Fire.VD")), sWanted);
    EXPECT_EQ(NativePath(Path(u"presets\\DEEP/fire.vd")), sWanted);
    EXPECT_TRUE(FileExists(Path(u"PRESETS/deep/FIRE.vd")));
    EXPECT_FALSE(FileExists(Path(u"presets/deep")));
    EXPECT_TRUE(FolderExists(Path(u"presets/deep")));
    EXPECT_TRUE(FolderExists(Path(u"presets/deep/")));

    Write("Presets/Deep/fire.vd"); // both exist now: each is found by its own name
    EXPECT_EQ(NativePath(Path(u"Presets/Deep/fire.vd")), (folder / "Presets/Deep/fire.vd").string());
    EXPECT_EQ(NativePath(Path(u"presets/Deep/Fire.VD")), sWanted);
    // What does not exist keeps the name that it was given, in the folder that there is.
    EXPECT_EQ(NativePath(Path(u"presets/New.VD")), (folder / "Presets/New.VD").string());
    EXPECT_EQ(NativePath(Path(u"Presets/None/x.vd")), (folder / "Presets/None/x.vd").string());
    EXPECT_EQ(NativePath(u""), "");
    std::u16string deep;
    for (int i = 0; i < 200000; i++)
        deep += u"a/";
    EXPECT_FALSE(FileExists(deep + u"b")); // and nothing overflows
}

TEST_F(Files, PathsAreTakenApartAtBothSeparators)
{
    EXPECT_EQ(NameAndExtension(u"C:\\a/b\\c.d.e"), u"c.d.e");
    EXPECT_EQ(NameAndExtension(u"a/b/"), u"");
    EXPECT_EQ(NameWithoutExtension(u"a.b/c.d.e"), u"c.d");
    EXPECT_EQ(NameWithoutExtension(u"a.b/c"), u"c");
    EXPECT_EQ(WithoutTrailingSeparators(u"a\\/\\"), u"a");
    EXPECT_EQ(WithoutTrailingSeparators(u"//"), u"/");
    EXPECT_EQ(JoinPath(u"a/", u"b"), u"a/b");
    EXPECT_EQ(JoinPath(u"/", u"b"), u"/b");
    EXPECT_EQ(JoinPath(u"", u"b"), u"b"); // not the root folder
}

TEST(Variables, AreExpandedOnceAndUnknownNamesStay)
{
    SetVariable("VD_TEST_FOLDER", u"/d\u00E4t%HOME%a");
    unsetenv("VD_TEST_NONE");
    EXPECT_EQ(ExpandVariables(u"%VD_TEST_FOLDER%\\*.VD"), u"/d\u00E4t%HOME%a\\*.VD");
    EXPECT_EQ(ExpandVariables(u"%VD_TEST_NONE%/%VD_TEST_FOLDER%"), u"%VD_TEST_NONE%//d\u00E4t%HOME%a");
    EXPECT_EQ(ExpandVariables(u"50%VD_TEST_FOLDER%"), u"50/d\u00E4t%HOME%a");
    EXPECT_EQ(ExpandVariables(u"100% and %%"), u"100% and %%");
    unsetenv("VD_TEST_FOLDER");
}

// ---- chance ----

namespace {

std::vector<u32> Draw(RandomStream *pStream, int n)
{
    const RandomStreamScope scope(pStream);
    std::vector<u32> adw;
    for (int i = 0; i < n; i++)
        adw.push_back(RandomWord());
    return adw;
}

struct SeededRun {
    std::vector<u32> adwMain, adwFirst, adwSecond;
    bool operator==(const SeededRun &) const = default;
};

SeededRun RunSeeded(u64 qwSeed, bool bOnThreads)
{
    SeedAllRandom(qwSeed);
    RandomStream rsFirst = NewRandomStream(), rsSecond = NewRandomStream();
    SeededRun run;
    if (bOnThreads) {
        std::thread second([&] { run.adwSecond = Draw(&rsSecond, 1000); });
        std::thread first([&] { run.adwFirst = Draw(&rsFirst, 1000); });
        first.join();
        second.join();
    } else {
        run.adwFirst = Draw(&rsFirst, 1000);
        run.adwSecond = Draw(&rsSecond, 1000);
    }
    run.adwMain = Draw(nullptr, 1000);
    UseStrongRandom();
    return run;
}

double SetBits(const std::vector<u32> &adw, const std::vector<u32> &adwOther)
{
    int n = 0;
    for (size_t i = 0; i < adw.size(); i++)
        n += std::popcount(adw[i] ^ adwOther[i]);
    return n / (32.0 * static_cast<double>(adw.size()));
}

} // namespace

TEST(Random, ASeedFixesTheWordsWhateverTheThread)
{
    const SeededRun run = RunSeeded(7, false);
    EXPECT_TRUE(run == RunSeeded(7, true));
    EXPECT_FALSE(run == RunSeeded(8, false));
}

TEST(Random, StreamsAndSeedsAreUnrelated)
{
    const SeededRun run = RunSeeded(7, false), next = RunSeeded(8, false);
    const std::vector<u32> adwZero(1000);
    for (const auto &[pA, pB] : {std::pair(&run.adwFirst, &adwZero), std::pair(&run.adwFirst, &run.adwSecond),
                                 std::pair(&run.adwMain, &run.adwFirst), std::pair(&run.adwFirst, &next.adwFirst),
                                 std::pair(&run.adwMain, &next.adwMain)})
        EXPECT_NEAR(SetBits(*pA, *pB), 0.5, 0.02); // 14 standard deviations
    // Neither does one stream walk behind another.
    const std::set<u32> words(run.adwFirst.begin(), run.adwFirst.end());
    int nShared = 0;
    for (const u32 dw : run.adwSecond)
        nShared += static_cast<int>(words.count(dw));
    EXPECT_LT(nShared, 3);
}

TEST(Random, TheStrongSourceRepeatsNeitherItselfNorAnotherThread)
{
    std::vector<u32> adwHere = Draw(nullptr, 2000), adwThere; // several blocks
    std::thread([&] { adwThere = Draw(nullptr, 2000); }).join();
    EXPECT_NEAR(SetBits(adwHere, adwThere), 0.5, 0.02);
    std::set<u32> words(adwHere.begin(), adwHere.end());
    words.insert(adwThere.begin(), adwThere.end());
    EXPECT_GT(words.size(), 3990u);
    SeedFallbackRandom(1); // only matters when the strong source fails
    const u32 dwFirst = RandomWord();
    SeedFallbackRandom(1);
    EXPECT_NE(dwFirst, RandomWord());
}

// ---- clock ----

TEST(Clock, AFixedClockMovesOnlyWhenItIsMoved)
{
    UseFixedClock(5000);
    EXPECT_TRUE(ClockIsFixed());
    const i64 nCounter = PerfCounter();
    EXPECT_EQ(TickCount(), 5000u);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(TickCount(), 5000u);
    EXPECT_EQ(PerfCounter(), nCounter);
    SetFixedTick(5001);
    EXPECT_EQ(TickCount(), 5001u);
    EXPECT_GE(PerfCounter() - nCounter, PerfFrequency()); // the gate of any frame rate opens
    const i64 nMoved = PerfCounter();
    AdvanceFixedCounter(3);
    EXPECT_EQ(PerfCounter(), nMoved + 3);
    UseSystemClock();
    EXPECT_FALSE(ClockIsFixed());
}

TEST(Clock, BothClocksRunForwardAtOneRate)
{
    const u64 qwTick = TickCount();
    const i64 nCounter = PerfCounter();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const i64 nCounterMs = (PerfCounter() - nCounter) * 1000 / PerfFrequency();
    const i64 nTickMs = static_cast<i64>(TickCount() - qwTick);
    EXPECT_GE(nCounterMs, 30);
    EXPECT_GE(nTickMs, nCounterMs - 1); // it was read later, and counts whole milliseconds
}

// ---- events ----

TEST(Events, OneSignalLetsExactlyOneWaitPass)
{
    Event event;
    EXPECT_FALSE(event.Wait(0));
    event.Signal();
    event.Signal(); // signals do not add up
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(event.Wait(1));
    event.Signal();
    event.Reset();
    EXPECT_FALSE(event.Wait(0));

    Event evGo, evPassed;
    std::atomic<int> nPassed{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++)
        threads.emplace_back([&] {
            if (evGo.Wait(WAIT_FOREVER)) {
                nPassed++;
                evPassed.Signal();
            }
        });
    for (int i = 1; i <= 4; i++) {
        evGo.Signal();
        EXPECT_TRUE(evPassed.Wait(WAIT_FOREVER));
        EXPECT_FALSE(evPassed.Wait(5));
        EXPECT_EQ(nPassed, i);
    }
    for (std::thread &thread : threads)
        thread.join();
}

TEST(Events, AWaitEndsAfterItsTime)
{
    Event event;
    const i64 nStart = RealNanoseconds();
    EXPECT_FALSE(event.Wait(25));
    EXPECT_GE(RealNanoseconds() - nStart, 25000000);
}

// ---- shared memory ----

namespace {

constexpr u64 BLOCK_BYTES = 5922;

// A name of this process's own, so that tests side by side do not meet.
std::string BlockName(const char *pszPart)
{
    return std::string("VDTest") + pszPart + std::to_string(getpid());
}

bool ObjectExists(const std::string &sName)
{
    const int fd = shm_open(sName.c_str(), O_RDONLY, 0);
    if (fd >= 0)
        close(fd);
    return fd >= 0;
}

bool AnythingIsLeft(const SharedMapping &sm)
{
    sem_t *pSemaphore = sm.szEvent[0] ? sem_open(sm.szEvent, 0) : SEM_FAILED;
    const bool bEvent = pSemaphore != SEM_FAILED;
    if (bEvent)
        sem_close(pSemaphore);
    return bEvent || ObjectExists(sm.szName) || ObjectExists(sm.szLock);
}

// Runs fn in a process of its own and gives its exit code; -1: it was killed.
int InProcess(const std::function<int()> &fn)
{
    const pid_t pid = fork();
    if (pid == 0)
        _exit(fn());
    int nStatus = 0;
    waitpid(pid, &nStatus, 0);
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

} // namespace

TEST(SharedMemory, ASecondProcessSeesTheBlockAndTheLastOneOutRemovesTheNames)
{
    const std::string sName = BlockName("Shared"), sEvent = BlockName("Event");
    SharedMapping sm;
    ASSERT_TRUE(OpenSharedMapping(&sm, sName.c_str(), BLOCK_BYTES));
    ASSERT_TRUE(CreateNamedEvent(&sm, sEvent.c_str()));
    EXPECT_TRUE(sm.bCreated);
    EXPECT_EQ(sm.cbExisting, BLOCK_BYTES);
    EXPECT_EQ(static_cast<u8 *>(sm.pView)[BLOCK_BYTES - 1], 0);
    std::strcpy(static_cast<char *>(sm.pView), "first");
    sem_post(static_cast<sem_t *>(sm.pEvent));

    const auto second = [&] {
        setenv("XDG_RUNTIME_DIR", "/var/tmp", 1); // another session of the same user
        SharedMapping smSecond;
        if (!OpenSharedMapping(&smSecond, sName.c_str(), BLOCK_BYTES) || smSecond.bCreated ||
            smSecond.cbExisting != BLOCK_BYTES)
            return 1;
        auto *psz = static_cast<char *>(smSecond.pView);
        if (std::strcmp(psz, "first") != 0)
            return 2;
        if (!CreateNamedEvent(&smSecond, sEvent.c_str()) || sem_trywait(static_cast<sem_t *>(smSecond.pEvent)) != 0)
            return 3;
        std::strcpy(psz, "second");
        CloseSharedMapping(&smSecond);
        return smSecond.pView ? 4 : 0;
    };
    EXPECT_EQ(InProcess(second), 0);
    EXPECT_STREQ(static_cast<char *>(sm.pView), "second");
    EXPECT_TRUE(AnythingIsLeft(sm)); // the first process is still in

    const SharedMapping smNames = sm;
    CloseSharedMapping(&sm);
    EXPECT_FALSE(AnythingIsLeft(smNames));
    CloseSharedMapping(&sm); // zero-filled: nothing to close
}

TEST(SharedMemory, WhatACrashLeftBehindCountsAsGone)
{
    const std::string sName = BlockName("Crash"), sEvent = BlockName("CrashEvent");
    const int nResult = InProcess([&] {
        SharedMapping sm;
        OpenSharedMapping(&sm, sName.c_str(), 2 * BLOCK_BYTES);
        CreateNamedEvent(&sm, sEvent.c_str());
        std::memset(sm.pView, 0xFF, 2 * BLOCK_BYTES);
        sem_post(static_cast<sem_t *>(sm.pEvent));
        raise(SIGKILL);
        return 0;
    });
    EXPECT_EQ(nResult, -1);
    SharedMapping sm;
    ASSERT_TRUE(OpenSharedMapping(&sm, sName.c_str(), BLOCK_BYTES));
    EXPECT_TRUE(sm.bCreated);
    EXPECT_EQ(sm.cbExisting, BLOCK_BYTES);
    EXPECT_EQ(static_cast<u8 *>(sm.pView)[0], 0);
    ASSERT_TRUE(CreateNamedEvent(&sm, sEvent.c_str()));
    EXPECT_NE(sem_trywait(static_cast<sem_t *>(sm.pEvent)), 0); // its signal is gone too
    const SharedMapping smNames = sm;
    CloseSharedMapping(&sm);
    EXPECT_FALSE(AnythingIsLeft(smNames));
}

TEST(SharedMemory, ABlockOfAnotherSizeIsReportedOrRefused)
{
    const std::string sName = BlockName("Size");
    SharedMapping sm;
    ASSERT_TRUE(OpenSharedMapping(&sm, sName.c_str(), BLOCK_BYTES));
    SharedMapping smLarger, smSmaller;
    EXPECT_FALSE(OpenSharedMapping(&smLarger, sName.c_str(), 3 * 4096)); // its end would not be there
    EXPECT_EQ(smLarger.pView, nullptr);
    ASSERT_TRUE(OpenSharedMapping(&smSmaller, sName.c_str(), 100));
    EXPECT_EQ(smSmaller.cbExisting, BLOCK_BYTES);
    CloseSharedMapping(&smSmaller);
    EXPECT_TRUE(ObjectExists(sm.szName));
    CloseSharedMapping(&sm);
}

// ---- bitmaps ----

TEST(Bitmaps, AreZeroFilledAlignedAndOfTheSizeAsked)
{
    // A second one of a large size takes the memory of the first, with the pixels in it.
    for (const auto &[nWidth, nHeight] :
         {std::pair(1, 1), std::pair(129, 3), std::pair(16384, 1), std::pair(1024, 512), std::pair(1024, 512)}) {
        HostBitmap *hbm = CreateBitmap(nWidth, nHeight);
        ASSERT_NE(hbm, nullptr);
        EXPECT_EQ(hbm->cbSize, 32u);
        EXPECT_EQ(hbm->nBitsPerPixel, 32u);
        EXPECT_EQ(hbm->cbRow, static_cast<u64>(nWidth) * 4);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(hbm->pBits) % 64, 0u);
        u32 *pdw = BitmapPixels(hbm);
        const size_t n = static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight);
        EXPECT_EQ(BitmapBytes(hbm), n * 4);
        EXPECT_TRUE(std::all_of(pdw, pdw + n, [](u32 dw) { return dw == 0; }));
        pdw[n - 1] = 0x01020304;
        HostBitmap *hbmCopy = CreateBitmap(nWidth, nHeight);
        CopyBitmap(hbmCopy, hbm);
        EXPECT_EQ(BitmapPixels(hbmCopy)[n - 1], 0x01020304u);
        ClearBitmap(hbmCopy);
        EXPECT_EQ(BitmapPixels(hbmCopy)[n - 1], 0u);
        DeleteBitmap(hbmCopy);
        DeleteBitmap(hbm);
    }
    for (const auto &[nWidth, nHeight] : {std::pair(0, 5), std::pair(5, -1), std::pair(32768, 1), std::pair(1, 32768)})
        EXPECT_EQ(CreateBitmap(nWidth, nHeight), nullptr);
    DeleteBitmap(nullptr);
}

TEST(Bitmaps, AContextGivesBackWhatWasSelectedBefore)
{
    HostContext *hdc = CreateContext();
    HostBitmap *hbm = CreateBitmap(2, 2);
    EXPECT_EQ(hdc->cbSize, 40u);
    EXPECT_EQ(hdc->pfnSelectBitmap(hdc, hbm), nullptr);
    EXPECT_EQ(hdc->pSelected, hbm);
    EXPECT_EQ(hdc->pfnSelectBitmap(hdc, nullptr), hbm);
    EXPECT_EQ(hdc->pSelected, nullptr);
    DeleteBitmap(hbm);
    DeleteContext(hdc);
}
