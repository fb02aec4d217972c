// FrameRecorder.cpp -- saves every frame to a numbered picture, cut loose from the clock; and the single-frame capture
#include "output/FrameRecorder.h"

#include "app/Folders.h"
#include "app/GlobalSettings.h"
#include "engine/FrameStep.h"
#include "modules/SoundMonitor.h"
#include "output/NumberPattern.h"
#include "output/PictureFiles.h"
#include "output/PictureQueue.h"
#include "output/VisualsCommands.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Notices.h"
#include "platform/Random.h"
#include "platform/Text.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>

namespace {

constexpr u32 CAPTURE_QUALITY = 90;
constexpr u32 FRAME_QUALITY = 95;
constexpr u64 TIME_SCALE_RESTORED_MAX = 99;
constexpr u32 SAMPLE_NUMBERS = 10000;
constexpr i64 ROOM_LOOK_MS = 2; // how often a full queue is looked at

NumberPattern Pattern;             // the last one that could be used
PictureQueue *pQueue = nullptr;    // of the recording that runs, or whose last pictures are on their way
PictureQueue *pCaptures = nullptr; // from the first capture on
std::atomic<bool> bDiskFull;       // set by the encoders
std::string sTrouble;              // first failure of this recording; told once
HostBitmap LastFrame;              // size of the frame before, without pixels
i64 nRestEnd = 0;                  // performance count

void ShowStatus(std::u16string_view text)
{
    if (pfnRecorderStatus)
        pfnRecorderStatus(std::u16string(text).c_str());
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

PictureQueue *OpenQueue(u32 nWorkers, PictureDoneFn pfnDone)
{
    PictureQueueOptions options = {};
    options.nWorkers = nWorkers;
    options.pfnSave = pfnRecorderSave;
    options.pfnDone = pfnDone;
    return StartPictureQueue(options);
}

std::u16string FramePath(u32 nFrame)
{
    return JoinPath(WithoutTrailingSeparators(GlobalSettings.FrameRecordFolder), FormatNumberPattern(Pattern, nFrame));
}

// What keeps a recording from starting; empty: nothing.
std::string FindObstacle()
{
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

void ReportEnd()
{
    FinishPictures(pQueue);
    const PictureReport report = ReadPictureReport(pQueue);
    std::u16string text = u"Recording complete: " + Number(nRecordFrame - 1) + u" frames.";
    if (report.nFailed)
        text += u" " + Number(report.nFailed) + u" failed: " +
                FromUtf8(PictureFailureText(report.firstFailed, report.nFirstError));
    StopPictureQueue(pQueue); // its threads and pictures are not kept for hours
    pQueue = nullptr;
    ShowStatus(text);
}

// The last pictures are waited for.
void Finish()
{
    if (pQueue)
        ReportEnd();
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
    Finish();
    bDiskFull = false;
    pQueue = OpenQueue(0, NoteResult);
    sTrouble.clear();
    LastFrame = {};
    GlobalSettings.bResizePending = GlobalSettings.bRecording = 1;
    ShowStatus(u"Preparing to record...");
    qwSavedTimeScale = GlobalSettings.TimeScale;
    qwRecordStartTick = TickCount() + dwDelayMs;
    nRecordFrame = 1;
    nRecordLimit = std::min(dwSeconds, RECORD_SECONDS_ENDLESS) * RECORD_FRAMES_A_SECOND;
    SetTimeScale(RECORD_TIME_SCALE);
}

bool AllIsWritten()
{
    const PictureReport report = ReadPictureReport(pQueue);
    return report.nSaved + report.nFailed == report.nSubmitted;
}

// The report follows when the last picture is written.
void Stop()
{
    GlobalSettings.bResizePending = 1;
    GlobalSettings.bRecording = 0;
    HoldFrames(0);
    if (AllIsWritten())
        ReportEnd();
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

// A capture is encoded beside the show, like a frame.
void Capture(const HostBitmap *hbm)
{
    MakeScreenShotsFolder();
    if (!pCaptures)
        pCaptures = OpenQueue(1, nullptr);
    SubmitPicture(pCaptures, hbm, CapturePath(TickCount()), CAPTURE_QUALITY);
}

// The first frame after the bitmaps were made anew may be an empty one.
bool IsSettled(const HostBitmap *hbm)
{
    const bool bSettled = hbm->nWidth == LastFrame.nWidth && hbm->nHeight == LastFrame.nHeight;
    LastFrame = *hbm;
    LastFrame.pBits = nullptr;
    return bSettled && hbm->nWidth == GlobalSettings.FrameRecordWidth &&
           hbm->nHeight == GlobalSettings.FrameRecordHeight;
}

// The rest is a time without frames in which the window goes on to live.
void Rest()
{
    const i64 nCounts = GlobalSettings.FrameRecordDelay * (PerfFrequency() / 1000);
    nRestEnd = nCounts ? PerfCounter() + nCounts : 0;
    HoldFrames(nRestEnd);
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

// The dialog may have stored another pattern meanwhile.
void RecordFrame(const HostBitmap *hbm)
{
    NumberPattern pattern;
    if (!ParseNumberPattern(GlobalSettings.FrameRecordFormat, &pattern))
        Pattern = pattern;
    SubmitPicture(pQueue, hbm, FramePath(nRecordFrame), FRAME_QUALITY);
    nRecordFrame++;
    Rest();
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
void (*pfnRecorderStatus)(const char16_t *pszText) = nullptr;
SavePictureFn pfnRecorderSave = nullptr;

void ToggleFrameRecorder(u32 dwDelayMs, u32 dwSeconds)
{
    if (GlobalSettings.bRecording)
        Stop();
    else
        Start(dwDelayMs, dwSeconds);
}

void FinishFrameRecorder()
{
    if (GlobalSettings.bRecording)
        Stop();
    Finish();
    StopPictureQueue(pCaptures);
    pCaptures = nullptr;
}

void PaceRecorder()
{
    if (!pQueue)
        return;
    if (!GlobalSettings.bRecording) {
        if (AllIsWritten())
            ReportEnd();
    } else if (LastFrame.nHeight && !PictureQueueHasRoom(pQueue, &LastFrame)) {
        HoldFrames(std::max(nRestEnd, PerfCounter() + ROOM_LOOK_MS * (PerfFrequency() / 1000)));
    }
}

u32 RecordStep(const HostBitmap *hbm, void *)
{
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
    else if (bSettled && TickCount() >= qwRecordStartTick)
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
    else
        *pText = sample;
    return !sample.empty() && *pText == sample;
}

std::u16string CapturePath(u64 qwTick)
{
    return JoinPath(FolderPath(PATH_SCREENSHOTS), u"ScreenCapture_" + Base36(qwTick) + u".png");
}
