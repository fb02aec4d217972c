// FrameRecorder_test.cpp -- tests FrameRecorder.cpp and RecordingSettings.cpp on a running preset
#include "output/FrameRecorder.h"

#include "output/RecordingSettings.h"
#include "output/VisualsCommands.h"
#include "platform/Files.h"
#include "platform/Notices.h"
#include "tests/EngineFixture.h"
#include "tests/TempFolder.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> asStatus;

void KeepStatus(const char16_t *psz, void *)
{
    asStatus.push_back(ToUtf8(psz));
}

class FrameRecorder : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        fs::create_directories(folder / "100% of it");
        GlobalSettings.bVisualsWindow = 1;
        GlobalSettings.hwndVisuals.nWidth = 150;
        GlobalSettings.hwndVisuals.nHeight = 140;
        GlobalSettings.AutoAdjustBuffer = 1;
        StoreRecordingChoice({RECORD_METHOD_FRAMES, 160, 128, 0, Folder("100% of it//\\"), u"f-%03d.ppm"});
        asStatus.clear();
        RecorderStatusListeners.Add(KeepStatus);
        MakePreset(1);
        Add(MODULEINDEX_DRAWPAINTER);
    }
    void TearDown() override
    {
        FinishFrameRecorder();
        RecorderStatusListeners.Remove(KeepStatus);
        EngineTest::TearDown();
    }
    std::u16string Folder(const char *pszName) const
    {
        return folder.Wide(pszName);
    }
    // One frame that goes the way of the show.
    void Show(u64 nMs = 16)
    {
        if (Step(nMs))
            RecordStep(*lppsi->phbmOutput);
    }
    // One turn of the main loop.
    void Turn()
    {
        SetFixedTick(TickCount() + 16);
        PaceRecorder();
        if (RunFrameStep(lppsi))
            RecordStep(*lppsi->phbmOutput);
    }
    // Stops by hand and waits for the report.
    static std::string StopAndRead()
    {
        ToggleFrameRecorder(0, 0);
        FinishFrameRecorder();
        return asStatus.back();
    }
    std::vector<std::string> Files(const char *pszFolder) const
    {
        std::vector<std::string> as;
        for (const auto &entry : fs::directory_iterator(folder / pszFolder))
            as.push_back(entry.path().filename());
        std::sort(as.begin(), as.end());
        return as;
    }

    TempFolder folder;
};

TEST_F(FrameRecorder, TenSecondsAreSixHundredFramesOfTheRecordingsOwnSize)
{
    GlobalSettings.TimeScale = 5;
    ToggleFrameRecorder(3000, 10);
    EXPECT_EQ(20u, GlobalSettings.TimeScale);
    const u64 qwStart = TickCount();
    while (TickCount() < qwStart + 2990)
        Show();
    EXPECT_EQ(1u, nRecordFrame) << "not before the delay is over";
    EXPECT_EQ(160, GlobalSettings.nBufferWidth);
    for (u32 i = 0; i < 700 && GlobalSettings.bRecording; i++)
        Show();
    EXPECT_FALSE(GlobalSettings.bRecording);
    FinishFrameRecorder();
    EXPECT_EQ(5u, GlobalSettings.TimeScale);
    EXPECT_EQ("Preparing to record...", asStatus.front());
    EXPECT_EQ("Recording frame 2 of 600", asStatus.at(1));
    EXPECT_EQ("Recording complete: 600 frames.", asStatus.back());
    const std::vector<std::string> files = Files("100% of it");
    ASSERT_EQ(600u, files.size());
    EXPECT_EQ("f-001.ppm", files.front());
    EXPECT_EQ("f-600.ppm", files.back());
    EXPECT_EQ(15u + 160 * 128 * 3, fs::file_size(folder / "100% of it" / "f-001.ppm"));
    Show();
    Show();
    EXPECT_EQ(150, GlobalSettings.nBufferWidth) << "the window's size again";
}

TEST_F(FrameRecorder, AFrameOfAnotherSizePutsOffTheRecordingAndTheHandStopsIt)
{
    GlobalSettings.TimeScale = 100;
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    EXPECT_EQ("Recording complete: 0 frames.", StopAndRead());
    EXPECT_EQ(20u, GlobalSettings.TimeScale) << "a scale of 100 is not restored";
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    HostBitmap *hbmOther = CreateBitmap(131, 129);
    RecordStep(hbmOther);
    DeleteBitmap(hbmOther);
    EXPECT_EQ(1u, nRecordFrame);
    for (u32 i = 0; i < 6; i++)
        Show();
    EXPECT_EQ("Recording frame 6 (manual stop)", asStatus.back())
        << "the first frame of the new size may be an empty one";
    RecordingChoice choice = CurrentRecordingChoice(); // another size in the middle, as the dialog's OK brings it
    choice.nWidth = 200;
    choice.nHeight = 130;
    StoreRecordingChoice(choice);
    for (u32 i = 0; i < 4; i++)
        Show();
    EXPECT_EQ("Recording complete: 8 frames.", StopAndRead());
    EXPECT_EQ(15u + 200 * 130 * 3, fs::file_size(folder / "100% of it" / "f-008.ppm"));
}

TEST_F(FrameRecorder, TheRestKeepsTheGateShutInsteadOfSleeping)
{
    StoreRecordingDelay(500);
    ToggleFrameRecorder(0, 1);
    Show();
    Show();
    const i64 nNext = NextFrameCount();
    EXPECT_GE(nNext, PerfCounter() + PerfFrequency() / 2 - 1);
    AdvanceFixedCounter(PerfFrequency() / 4);
    EXPECT_EQ(0u, RunFrameStep(lppsi));
    AdvanceFixedCounter(PerfFrequency() / 4);
    EXPECT_EQ(1u, RunFrameStep(lppsi));
    RecordStep(*lppsi->phbmOutput);
    EXPECT_GE(NextFrameCount(), PerfCounter() + PerfFrequency() / 2 - 1);
    StoreRecordingDelay(100);
    EXPECT_LT(NextFrameCount(), PerfCounter() + PerfFrequency() / 8) << "the slider shortens the rest that runs";
    ToggleFrameRecorder(0, 1);
    EXPECT_LT(NextFrameCount(), PerfCounter() + PerfFrequency() / 2) << "the end of a recording ends the rest";
}

TEST_F(FrameRecorder, PicturesThatCannotBeWrittenAreCountedAndTheRecordingGoesOn)
{
    CopyText(GlobalSettings.FrameRecordFolder, Folder("nowhere"));
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    for (u32 i = 0; i < 5; i++)
        Show();
    EXPECT_EQ("Recording complete: 4 frames. 4 failed: " + (folder / "nowhere/f-001.ppm").string() +
                  " cannot be written: No such file or directory",
              StopAndRead());
    EXPECT_NE(std::string::npos, NoticeText().find(asStatus.back())) << "it also outlives the window";

    const u32 dwTimeScale = GlobalSettings.TimeScale;
    for (const char16_t *pszFormat :
         {u"%s.png", u"%n.png", u"%*d.png", u"%d-%d.png", u"f-%05.png", u"f-%d.fst", u"f-%d"}) {
        CopyText(GlobalSettings.FrameRecordFormat, pszFormat);
        ToggleFrameRecorder(0, 10);
        EXPECT_FALSE(GlobalSettings.bRecording) << ToUtf8(pszFormat);
        EXPECT_EQ(0u, asStatus.back().find("Cannot record: ")) << asStatus.back();
    }
    EXPECT_EQ(dwTimeScale, GlobalSettings.TimeScale);
    StoreRecordingChoice({RECORD_METHOD_FRAMES, 160, 128, 0, u"", u"f-%d.ppm"});
    ToggleFrameRecorder(0, 10);
    EXPECT_EQ("Cannot record: no frame folder is set; the recording options choose one", asStatus.back());
}

TEST_F(FrameRecorder, NothingWaitsForPicturesThatAreStillBeingWritten)
{
    static std::atomic<bool> bHold;
    bHold = true;
    InitFolders({u"/nowhere/vorticade", folder.Wide(), {}});
    pfnRecorderSave = [](const HostBitmap *, const char16_t *, u32) -> u32 {
        while (bHold)
            usleep(100);
        return 1;
    };
    for (u32 i = 0; i < 8; i++) {
        bCaptureRequested = 1;
        Turn();
    }
    EXPECT_EQ(0u, asStatus.back().find("No screen capture was made")) << asStatus.back();
    CopyText(GlobalSettings.FrameRecordFormat, u"always-the-same.ppm");
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    for (u32 i = 0; i < 20; i++)
        Turn();
    EXPECT_EQ(2u, nRecordFrame) << "the next picture has the path of the first";
    GlobalSettings.FrameRecordMethod = RECORD_METHOD_KEYSTROKES;
    EXPECT_TRUE(RecordingCanBeAsked()) << "or nobody could stop it";
    ToggleFrameRecorder(0, 0);
    EXPECT_FALSE(RecordingCanBeAsked());
    CopyText(GlobalSettings.FrameRecordFormat, u"f-%d.ppm");
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    Turn();
    Turn();
    EXPECT_EQ(1u, nRecordFrame) << "after the pictures of the recording before";
    bHold = false;
    const std::string sFirst = "Recording complete: 1 frames.";
    while (std::count(asStatus.begin(), asStatus.end(), sFirst) == 0)
        PaceRecorder();
    Turn();
    Turn();
    EXPECT_EQ("Recording complete: 2 frames.", StopAndRead());
    pfnRecorderSave = nullptr;
}

TEST_F(FrameRecorder, ACaptureAndAFrameOfOneMomentAreBothSaved)
{
    InitFolders({u"/nowhere/vorticade", folder.Wide(), {}});
    ToggleFrameRecorder(0, 10);
    Show();
    Show();
    bCaptureRequested = 1;
    Show();
    FinishFrameRecorder();
    EXPECT_EQ(0u, bCaptureRequested);
    ASSERT_EQ(1u, Files("ScreenShots").size());
    EXPECT_EQ("ScreenCapture_sx.png", ToUtf8(NameAndExtension(CapturePath(1041))));
    EXPECT_EQ(0u, Files("ScreenShots")[0].find("ScreenCapture_"));
    EXPECT_EQ(2u, Files("100% of it").size());
}

TEST_F(FrameRecorder, AFullDiskStopsTheRecordingAndSaysSo)
{
    static std::atomic<u32> nSaved;
    nSaved = 0;
    pfnRecorderSave = [](const HostBitmap *, const char16_t *, u32) -> u32 {
        const u32 n = nSaved++;
        errno = n >= 12 ? ENOSPC : n == 1 ? EACCES : 0;
        return errno == 0;
    };
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    pfnRecorderSave = nullptr;
    for (u32 i = 0; i < 5000 && GlobalSettings.bRecording; i++) {
        Show();
        PaceRecorder();
    }
    EXPECT_FALSE(GlobalSettings.bRecording);
    const bool bTold = std::any_of(asStatus.begin(), asStatus.end(), [](const std::string &s) {
        return s.find("Recording frame ") == 0 && s.find(" cannot be written") != s.npos;
    });
    EXPECT_TRUE(bTold) << "also while it went on";
    FinishFrameRecorder();
    EXPECT_NE(std::string::npos, asStatus.back().find(" failed: ")) << asStatus.back();
}

TEST_F(FrameRecorder, NoEmptyPictureIsRecordedWhereThePlanesHaveThreads)
{
    GlobalSettings.ThreadedPlanes = 1;
    DestroyPresetState(lppsi);
    MakePreset(1, 0);
    ASSERT_EQ(1u, LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/MinimalPainter.dll"));
    ASSERT_TRUE(Add(MODULEINDEX_OVERLAYPAINTER, 0, u"MinimalPainter.dll"));
    ToggleFrameRecorder(0, RECORD_SECONDS_ENDLESS);
    for (u32 i = 0; i < 9; i++) {
        Show();
        if (i == 2)
            StoreRecordingChoice({RECORD_METHOD_FRAMES, 180, 128, 0, Folder("100% of it"), u"f-%03d.ppm"});
        if (i == 5)
            GlobalSettings.bResizePending = 1; // anew at the same size
    }
    EXPECT_EQ("Recording complete: 6 frames.", StopAndRead());
    for (const std::string &sName : Files("100% of it")) {
        std::ifstream file(folder / "100% of it" / sName, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        EXPECT_NE(std::string::npos, bytes.find_first_not_of('\0', 15)) << sName;
    }
    StopPlaneThreads();
}

TEST_F(FrameRecorder, TheCheckOfAPathSaysWhatIsWrong)
{
    std::u16string text;
    const auto check = [&](std::u16string_view at, std::u16string_view format) {
        const u32 bValid = CheckFramePath(at, format, &text);
        return (bValid ? "+" : "-") + ToUtf8(text);
    };
    const std::string sNoNumber = "-The filename format doesn't contain a frame number format specifier (eg. %05d).";
    EXPECT_EQ(0u, check(u"/a/b//", u"x%05i.jpg").find("+/a/b/x0"));
    EXPECT_EQ(sNoNumber, check(u"/a", u"x.jpg"));
    EXPECT_EQ(sNoNumber, check(u"/100%d", u"x%%.jpg")) << "the folder's percent sign is one";
    EXPECT_EQ("-The resulting path is too long.", check(std::u16string(250, u'a'), u"longname%d.png"));
    EXPECT_EQ("-The resulting path is too long.", check(std::u16string(242, u'a'), u"x%020d.png"));
    EXPECT_NE(std::string::npos, check(u"/a", u"%s.png").find("must be of the form %d"));
    EXPECT_EQ("-No frame folder is set.", check(u"", u"x%d.png"));
    EXPECT_EQ("-The resulting path is too long.", check(u"/a", u"%300d.png"));
    EXPECT_EQ(std::string(40, '0'), check(u"/a", u"%044d.png").substr(4, 40));
    EXPECT_EQ(u"The frame folder does not exist.",
              DescribeRecordingTrouble({1, 640, 480, 0, u"/no/where", u"x%d.png"}));
    EXPECT_NE(u"", DescribeRecordingTrouble({1, 640, 480, 0, u"/tmp", u"x%d.fst"}));
    StoreRecordingChoice({7, 10, 99999, -3, u"", u""});
    const RecordingChoice stored = CurrentRecordingChoice();
    EXPECT_TRUE(stored.nMethod == 1 && stored.nWidth == 128 && stored.nHeight == 8192 && stored.nDelayMs == 0);
}

} // namespace
