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
#include <cerrno>
#include <filesystem>
#include <memory>

namespace {

constexpr u32 CAPTURE_QUALITY = 90;
constexpr u32 FRAME_QUALITY = 95;
constexpr u64 TIME_SCALE_RESTORED_MAX = 99;
constexpr u32 SAMPLE_NUMBERS = 10000;

NumberPattern Pattern;          // of the recording that runs
PictureQueue *pQueue = nullptr; // from the first picture to the program's end
bool bTroubleTold = false;      // of this recording

void ShowStatus(std::u16string_view text)
{
    if (pfnRecorderStatus)
        pfnRecorderStatus(std::u16string(text).c_str());
}

std::u16string Number(u64 n)
{
    return FromUtf8(std::to_string(n));
}

PictureQueue *Queue()
{
    if (!pQueue)
        pQueue = StartPictureQueue({});
    return pQueue;
}

void SetTimeScale(u64 nScale)
{
    GlobalSettings.TimeScale = static_cast<u32>(nScale);
    SetMonitorTimeScale(GlobalSettings.TimeScale);
}

void Start(u32 dwDelayMs, u32 dwSeconds)
{
    if (const char *pszWrong = ParseNumberPattern(GlobalSettings.FrameRecordFormat, &Pattern)) {
        ShowStatus(FromUtf8(std::string("Cannot record: ") + pszWrong));
        return;
    }
    StopPictureQueue(pQueue); // its counts begin anew
    pQueue = nullptr;
    bTroubleTold = false;
    GlobalSettings.bResizePending = GlobalSettings.bRecording = 1;
    ShowStatus(u"Preparing to record...");
    qwSavedTimeScale = GlobalSettings.TimeScale;
    qwRecordStartTick = TickCount() + dwDelayMs;
    nRecordFrame = 1;
    nRecordLimit = std::min(dwSeconds, RECORD_SECONDS_ENDLESS) * RECORD_FRAMES_A_SECOND;
    SetTimeScale(RECORD_TIME_SCALE);
}

std::string FirstFailure(const PictureReport &report)
{
    return PictureFailureText(report.firstFailed, report.nFirstError);
}

std::u16string EndReport()
{
    std::u16string text = u"Recording complete: " + Number(nRecordFrame - 1) + u" frames.";
    const PictureReport report = pQueue ? ReadPictureReport(pQueue) : PictureReport{};
    if (report.nFailed)
        text += u" " + Number(report.nFailed) + u" failed: " + FromUtf8(FirstFailure(report));
    return text;
}

void Stop()
{
    GlobalSettings.bResizePending = 1;
    GlobalSettings.bRecording = 0;
    HoldFrames(0);
    if (pQueue)
        FinishPictures(pQueue);
    ShowStatus(EndReport());
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

// The folder is the program's own: it may be made. A capture is encoded beside the show, like a frame.
void Capture(const HostBitmap *hbm)
{
    std::error_code failed;
    std::filesystem::create_directories(NativePath(FolderPath(PATH_SCREENSHOTS)), failed);
    SubmitPicture(Queue(), hbm, CapturePath(TickCount()), CAPTURE_QUALITY);
}

bool IsRecordingSize(const HostBitmap *hbm)
{
    return hbm->nWidth == GlobalSettings.FrameRecordWidth && hbm->nHeight == GlobalSettings.FrameRecordHeight;
}

// The rest is a time without frames in which the window goes on to live.
void Rest()
{
    const i64 nCounts = GlobalSettings.FrameRecordDelay * (PerfFrequency() / 1000);
    HoldFrames(nCounts ? PerfCounter() + nCounts : 0);
}

std::u16string Progress()
{
    const std::u16string text = u"Recording frame " + Number(nRecordFrame);
    return nRecordLimit == RECORD_LIMIT_ENDLESS ? text + u" (manual stop)" : text + u" of " + Number(nRecordLimit);
}

// Pictures of the show or of a recording that could not be written are told once. True: no more will be.
bool DiskIsFull()
{
    if (!pQueue)
        return false;
    const PictureReport report = ReadPictureReport(pQueue);
    if (report.nFailed && !bTroubleTold) {
        AddNotice(FirstFailure(report));
        bTroubleTold = true;
    }
    return report.nFailed && (report.nFirstError == ENOSPC || report.nFirstError == EDQUOT);
}

void RecordFrame(const HostBitmap *hbm)
{
    const std::u16string folder(WithoutTrailingSeparators(GlobalSettings.FrameRecordFolder));
    SubmitPicture(Queue(), hbm, JoinPath(folder, FormatNumberPattern(Pattern, nRecordFrame)), FRAME_QUALITY);
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
    StopPictureQueue(pQueue);
    pQueue = nullptr;
}

u32 RecordStep(const HostBitmap *hbm, void *)
{
    const bool bFull = DiskIsFull();
    if (bCaptureRequested) {
        bCaptureRequested = 0;
        Capture(hbm);
    }
    if (!GlobalSettings.bRecording)
        return 0;
    if (bFull)
        Stop();
    else if (TickCount() >= qwRecordStartTick && IsRecordingSize(hbm))
        RecordFrame(hbm);
    return 0;
}

u32 CheckFramePath(std::u16string_view folder, std::u16string_view format, std::u16string *pText)
{
    constexpr const char16_t *TOO_LONG = u"The resulting path is too long.";
    const auto isTooLong = [](std::u16string_view path) { return path.size() >= NAME_CHARS; };
    NumberPattern pattern;
    const char *pszWrong = ParseNumberPattern(format, &pattern);
    const std::u16string root(WithoutTrailingSeparators(folder));
    if (isTooLong(JoinPath(root, format)))
        *pText = TOO_LONG;
    else if (pszWrong)
        *pText = FromUtf8(pszWrong);
    else if (!pattern.bHasNumber)
        *pText = u"The filename format doesn't contain a frame number format specifier (eg. %05d).";
    else
        *pText = JoinPath(root, FormatNumberPattern(pattern, RandomWord() % SAMPLE_NUMBERS));
    if (pszWrong || !pattern.bHasNumber || *pText == TOO_LONG)
        return 0;
    if (isTooLong(*pText)) {
        *pText = TOO_LONG;
        return 0;
    }
    return 1;
}

std::u16string CapturePath(u64 qwTick)
{
    return JoinPath(FolderPath(PATH_SCREENSHOTS), u"ScreenCapture_" + Base36(qwTick) + u".png");
}
