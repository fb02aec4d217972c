// RecordingSettings.cpp -- what the dialog "Recording Settings" edits
#include "output/RecordingSettings.h"

#include "output/FrameRecorder.h"
#include "output/pictures/PictureFiles.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <filesystem>

namespace {

// clang-format off
constexpr RecordingSize asSize[] = {
    {u"480p", 720, 480},
    {u"720p", 1280, 720},
    {u"1080p", 1920, 1080},
    {u"1440p", 2560, 1440},
    {u"4K", 3840, 2160},
    {u"8K", 7680, 4320},
};
// clang-format on

} // namespace

std::span<const RecordingSize> RecordingSizes()
{
    return asSize;
}

RecordingChoice CurrentRecordingChoice()
{
    const GlobalSettingsRecord &gs = GlobalSettings;
    return {std::clamp(gs.FrameRecordMethod, RECORD_METHOD_KEYSTROKES, RECORD_METHOD_FRAMES),
            std::clamp(gs.FrameRecordWidth, RECORD_SIDE_MIN, RECORD_SIDE_MAX),
            std::clamp(gs.FrameRecordHeight, RECORD_SIDE_MIN, RECORD_SIDE_MAX),
            std::clamp(gs.FrameRecordDelay, 0, RECORD_DELAY_MAX_MS),
            gs.FrameRecordFolder,
            gs.FrameRecordFormat};
}

// Bitmaps are made anew, which resets every module, only where their size is another one.
void StoreRecordingChoice(const RecordingChoice &choice)
{
    ASSERT_MAIN_THREAD();
    const RecordingChoice before = CurrentRecordingChoice();
    GlobalSettings.FrameRecordMethod = std::clamp(choice.nMethod, RECORD_METHOD_KEYSTROKES, RECORD_METHOD_FRAMES);
    GlobalSettings.FrameRecordWidth = std::clamp(choice.nWidth, RECORD_SIDE_MIN, RECORD_SIDE_MAX);
    GlobalSettings.FrameRecordHeight = std::clamp(choice.nHeight, RECORD_SIDE_MIN, RECORD_SIDE_MAX);
    CopyText(GlobalSettings.FrameRecordFolder, choice.folder);
    CopyText(GlobalSettings.FrameRecordFormat, choice.format);
    StoreRecordingDelay(choice.nDelayMs);
    const bool bSameSize =
        before.nWidth == GlobalSettings.FrameRecordWidth && before.nHeight == GlobalSettings.FrameRecordHeight;
    if (GlobalSettings.bRecording && !bSameSize)
        GlobalSettings.bResizePending = 1;
}

void StoreRecordingDelay(i32 nDelayMs)
{
    ASSERT_MAIN_THREAD();
    GlobalSettings.FrameRecordDelay = std::clamp(nDelayMs, 0, RECORD_DELAY_MAX_MS);
    AdjustRest();
}

std::u16string DescribeRecordingTrouble(const RecordingChoice &choice)
{
    if (choice.folder.empty())
        return u"No frame folder is set.";
    if (!FolderExists(choice.folder))
        return u"The frame folder does not exist.";
    if (!CanWritePicture(PictureFormatOf(JoinPath(choice.folder, choice.format).c_str())))
        return u"The filename names no picture format (.jpg, .png, .gif, .tif, .ppm or .bmp).";
    return {};
}

u32 CreateFrameFolder(std::u16string_view folder)
{
    std::error_code failed;
    std::filesystem::create_directories(NativePath(folder), failed);
    return FolderExists(folder);
}
