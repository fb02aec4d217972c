// FrameRecorder.cpp -- saves every frame to a numbered picture, cut loose from the clock; and the single-frame capture
#include "output/FrameRecorder.h"

#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "modules/SoundMonitor.h"
#include "output/VisualsCommands.h"
#include "output/pictures/NumberPattern.h"
#include "output/pictures/PictureFiles.h"
#include "output/pictures/PictureQueue.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>

namespace {

constexpr u32 CAPTURE_QUALITY = 90;
constexpr u32 FRAME_QUALITY = 95;
constexpr u64 TIME_SCALE_RESTORED_MAX = 99;
constexpr u32 SAMPLE_NUMBERS = 10000;
constexpr u32 CAPTURES_HELD = 4;
constexpr i64 ROOM_LOOK_MS = 2; // how often a full queue is looked at

NumberPattern Pattern;             // the last one that could be used
PictureQueue *pQueue = nullptr;    // of the recording that is armed or runs
PictureQueue *pEnding = nullptr;   // of the one before, while its last pictures are on their way
u32 nEndingFrames = 0;             // what that one recorded
PictureQueue *pCaptures = nullptr; // while captures are on their way
std::atomic<bool> bDiskFull;       // set by the encoders
std::string sTrouble;              // first failure of this recording; told once
HostBitmap LastFrame;              // size of the frame before, without pixels
u32 nLastGeneration = 0;           // of its bitmap
i64 nRestStart = 0;                // performance count; 0: no frame yet

void ShowStatus(std::u16string_view text)
{
    RecorderStatusListeners.Tell(std::u16string(text).c_str());
}

std::u16string Number(u64 n)
{
    return FromUtf8(std::to_string(n));
}

void SetTimeScale(u64 nScale)
{
    GlobalSettings.TimeScale = static_cast<u32>(nScale);
    SetMonitorTimeScale(GlobalSettings.TimeScale);
}

// On the encoders' threads.
void NoteResult(const PictureResult &result, void *)
{
    if (!result.bSaved && (result.nError == ENOSPC || result.nError == EDQUOT))
        bDiskFull = true;
}

bool AllIsWritten(PictureQueue *p)
{
    const PictureReport report = ReadPictureReport(p);
    return report.nSaved + report.nFailed == report.nSubmitted;
}

// The dialog may have stored another pattern meanwhile; one that cannot be used changes nothing.
void TakePattern()
{
    NumberPattern pattern;
    if (!ParseNumberPattern(GlobalSettings.FrameRecordFormat, &pattern))
        Pattern = pattern;
}

std::u16string FramePath(u32 nFrame)
{
    return JoinPath(WithoutTrailingSeparators(GlobalSettings.FrameRecordFolder), FormatNumberPattern(Pattern, nFrame));
}

// What keeps a recording from starting; empty: nothing.
std::string FindObstacle()
{
    if (!*GlobalSettings.FrameRecordFolder)
        return "no frame folder is set; the recording options choose one";
    if (const char *pszWrong = ParseNumberPattern(GlobalSettings.FrameRecordFormat, &Pattern))
        return pszWrong;
    if (!CanWritePicture(PictureFormatOf(FramePath(1).c_str())))
        return "the file name names no picture format that can be written";
    return {};
}

// It is the program's own and may be made.
void MakeScreenShotsFolder()
{
    std::error_code failed;
    std::filesystem::create_directories(NativePath(FolderPath(PATH_SCREENSHOTS)), failed);
}

// Waits for the last pictures. What failed is also told where it stays when the window is gone.
void ReportEnd(PictureQueue **ppQueue, u32 nFrames)
{
    FinishPictures(*ppQueue);
    const PictureReport report = ReadPictureReport(*ppQueue);
    std::u16string text = u"Recording complete: " + Number(nFrames) + u" frames.";
    if (report.nFailed) {
        text += u" " + Number(report.nFailed) + u" failed: " +
                FromUtf8(PictureFailureText(report.firstFailed, report.nFirstError));
        AddNotice(ToUtf8(text));
    }
    StopPictureQueue(*ppQueue); // its threads and pictures are not kept for hours
    *ppQueue = nullptr;
    ShowStatus(text);
}

void ServeEnding()
{
    if (pEnding && AllIsWritten(pEnding))
        ReportEnd(&pEnding, nEndingFrames);
}

void Start(u32 dwDelayMs, u32 dwSeconds)
{
    const std::string sObstacle = FindObstacle();
    if (!sObstacle.empty()) {
        ShowStatus(FromUtf8("Cannot record: " + sObstacle));
        return;
    }
    if (std::u16string_view(GlobalSettings.FrameRecordFolder) == FolderPath(PATH_SCREENSHOTS))
        MakeScreenShotsFolder();
    bDiskFull = false;
    PictureQueueOptions options = {};
    options.pfnSave = pfnRecorderSave;
    options.pfnDone = NoteResult;
    pQueue = StartPictureQueue(options);
    sTrouble.clear();
    LastFrame = {};
    nRestStart = 0;
    GlobalSettings.bResizePending = GlobalSettings.bRecording = 1;
    ShowStatus(u"Preparing to record...");
    qwSavedTimeScale = GlobalSettings.TimeScale;
    qwRecordStartTick = TickCount() + dwDelayMs;
    nRecordFrame = 1;
    nRecordLimit = std::min(dwSeconds, RECORD_SECONDS_ENDLESS) * RECORD_FRAMES_A_SECOND;
    SetTimeScale(RECORD_TIME_SCALE);
}

// The report follows when the last picture is written. While the recording before has not come so far, this one has
// recorded nothing.
void Stop()
{
    GlobalSettings.bResizePending = 1;
    GlobalSettings.bRecording = 0;
    HoldFrames(0);
    if (pEnding) {
        ReportEnd(&pQueue, nRecordFrame - 1);
    } else {
        std::swap(pEnding, pQueue);
        nEndingFrames = nRecordFrame - 1;
    }
    ServeEnding();
    if (qwSavedTimeScale >= 1 && qwSavedTimeScale <= TIME_SCALE_RESTORED_MAX)
        SetTimeScale(qwSavedTimeScale);
    nRecordLimit = 0;
    qwRecordStartTick = 0;
}

std::u16string Base36(u64 n)
{
    std::u16string digits;
    do
        digits.insert(digits.begin(), u"0123456789abcdefghijklmnopqrstuvwxyz"[n % 36]);
    while (n /= 36);
    return digits;
}

PictureQueue *StartCaptures()
{
    PictureQueueOptions options = {};
    options.nWorkers = 1;
    options.nHeld = CAPTURES_HELD;
    options.pfnSave = pfnRecorderSave;
    return StartPictureQueue(options);
}

void CloseCaptures()
{
    if (!pCaptures)
        return;
    FinishPictures(pCaptures);
    const PictureReport report = ReadPictureReport(pCaptures);
    StopPictureQueue(pCaptures);
    pCaptures = nullptr;
    if (report.nFailed)
        AddNotice(PictureFailureText(report.firstFailed, report.nFirstError));
}

// A capture is encoded beside the show, like a frame. The show does not wait for those before it.
void Capture(const HostBitmap *hbm)
{
    MakeScreenShotsFolder();
    if (!pCaptures)
        pCaptures = StartCaptures();
    const std::u16string path = CapturePath(TickCount());
    if (PictureQueueHasRoom(pCaptures, hbm, path))
        SubmitPicture(pCaptures, hbm, path, CAPTURE_QUALITY);
    else
        ShowStatus(u"No screen capture was made: those before it are still being written.");
}

// The first frame after the bitmaps were made anew may be an empty one.
bool IsSettled(const HostBitmap *hbm)
{
    const bool bSettled =
        hbm->nWidth == LastFrame.nWidth && hbm->nHeight == LastFrame.nHeight && nLastGeneration == BitmapGeneration();
    LastFrame = *hbm;
    LastFrame.pBits = nullptr;
    nLastGeneration = BitmapGeneration();
    return bSettled && hbm->nWidth == GlobalSettings.FrameRecordWidth &&
           hbm->nHeight == GlobalSettings.FrameRecordHeight;
}

// The rest is a time without frames in which the window goes on to live.
i64 RestEnd()
{
    return nRestStart + GlobalSettings.FrameRecordDelay * (PerfFrequency() / 1000);
}

std::u16string Progress()
{
    std::u16string text = u"Recording frame " + Number(nRecordFrame);
    text += nRecordLimit == RECORD_LIMIT_ENDLESS ? u" (manual stop)" : u" of " + Number(nRecordLimit);
    return sTrouble.empty() ? text : text + u" - " + FromUtf8(sTrouble);
}

void NoticeTrouble()
{
    const PictureReport report = ReadPictureReport(pQueue);
    if (!report.nFailed || !sTrouble.empty())
        return;
    sTrouble = PictureFailureText(report.firstFailed, report.nFirstError);
    AddNotice(sTrouble);
}

void RecordFrame(const HostBitmap *hbm)
{
    TakePattern();
    SubmitPicture(pQueue, hbm, FramePath(nRecordFrame), FRAME_QUALITY);
    nRecordFrame++;
    nRestStart = PerfCounter();
    HoldFrames(RestEnd());
    if (nRecordFrame <= nRecordLimit)
        ShowStatus(Progress());
    else
        Stop();
}

} // namespace

u64 qwRecordStartTick = 0;
u32 nRecordFrame = 1;
u32 nRecordLimit = 0;
u64 qwSavedTimeScale = 1;
Listeners<void(const char16_t *pszText)> RecorderStatusListeners;
SavePictureFn pfnRecorderSave = nullptr;

void ToggleFrameRecorder(u32 dwDelayMs, u32 dwSeconds)
{
    ASSERT_MAIN_THREAD();
    if (GlobalSettings.bRecording)
        Stop();
    else
        Start(dwDelayMs, dwSeconds);
}

void FinishFrameRecorder()
{
    ASSERT_MAIN_THREAD();
    if (GlobalSettings.bRecording)
        Stop();
    if (pEnding)
        ReportEnd(&pEnding, nEndingFrames);
    CloseCaptures();
}

void PaceRecorder()
{
    ASSERT_MAIN_THREAD();
    ServeEnding();
    if (pCaptures && AllIsWritten(pCaptures))
        CloseCaptures();
    if (!pQueue || !LastFrame.nHeight)
        return;
    TakePattern();
    if (!PictureQueueHasRoom(pQueue, &LastFrame, FramePath(nRecordFrame)))
        HoldFrames(std::max(RestEnd(), PerfCounter() + ROOM_LOOK_MS * (PerfFrequency() / 1000)));
}

void AdjustRest()
{
    ASSERT_MAIN_THREAD();
    if (GlobalSettings.bRecording && nRestStart)
        HoldFrames(RestEnd());
}

u32 RecordStep(const HostBitmap *hbm, void *)
{
    ASSERT_MAIN_THREAD();
    if (bCaptureRequested) {
        bCaptureRequested = 0;
        Capture(hbm);
    }
    const bool bSettled = IsSettled(hbm);
    if (!GlobalSettings.bRecording)
        return 0;
    NoticeTrouble();
    if (bDiskFull)
        Stop();
    else if (bSettled && !pEnding && TickCount() >= qwRecordStartTick)
        RecordFrame(hbm);
    return 0;
}

u32 CheckFramePath(std::u16string_view folder, std::u16string_view format, std::u16string *pText)
{
    NumberPattern pattern;
    const char *pszWrong = ParseNumberPattern(format, &pattern);
    const std::u16string root(WithoutTrailingSeparators(folder));
    const std::u16string sample =
        pszWrong ? std::u16string() : JoinPath(root, FormatNumberPattern(pattern, RandomWord() % SAMPLE_NUMBERS));
    if (JoinPath(root, format).size() >= NAME_CHARS || sample.size() >= NAME_CHARS)
        *pText = u"The resulting path is too long.";
    else if (pszWrong)
        *pText = FromUtf8(pszWrong);
    else if (!pattern.bHasNumber)
        *pText = u"The filename format doesn't contain a frame number format specifier (eg. %05d).";
    else if (folder.empty())
        *pText = u"No frame folder is set.";
    else
        *pText = sample;
    return !sample.empty() && *pText == sample;
}

std::u16string CapturePath(u64 qwTick)
{
    return JoinPath(FolderPath(PATH_SCREENSHOTS), u"ScreenCapture_" + Base36(qwTick) + u".png");
}
