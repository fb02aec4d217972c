// RenderRun.cpp -- the headless renderer: a preset to numbered pictures
#include "app/RenderRun.h"

#include "app/FrameOutput.h"
#include "app/PresetList.h"
#include "app/RenderSound.h"
#include "app/RenderStats.h"
#include "engine/FrameStep.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "output/Presenters.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Random.h"
#include "platform/Signals.h"
#include "platform/Text.h"
#include "platform/Threads.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// What the presenter needs to know of the frame that it receives.
struct FrameWriter {
    const RenderOptions *pro;
    PictureQueue *pQueue;
    u32 dwNumber; // of the frame; 0: warming up, nothing is written
};

void Complain(const std::string &s)
{
    std::fprintf(stderr, "vorticade-render: %s\n", s.c_str());
}

// Every frame counts as shown, those of the warm-up too.
u32 WriteFrame(const HostBitmap *hbm, void *pv)
{
    const auto *pfw = static_cast<FrameWriter *>(pv);
    if (pfw->dwNumber)
        SubmitFrame(pfw->pQueue, *pfw->pro, hbm, pfw->dwNumber);
    return 1;
}

u64 TickOfFrame(const RenderOptions &ro, i64 k)
{
    return static_cast<u64>(static_cast<double>(k) * 1000.0 / ro.fFps);
}

// Reads the song, if one is named; its length gives the number of frames unless the command line does. Empty, or what
// is wrong with it.
std::string LoadSong(RenderOptions *pro, Song *pSong)
{
    if (pro->sound.empty())
        return {};
    std::string sError;
    if (!ReadSong(pSong, pro->sound, &sError))
        return pro->sound + ": " + sError;
    const std::string sDamage = SongDamage(*pSong);
    if (!sDamage.empty() && !pro->bFramesGiven)
        return pro->sound + ": " + sDamage + "; with --seconds S it is taken as it is";
    if (!sDamage.empty() && SongSeconds(*pSong) * pro->fFps < static_cast<f64>(pro->nFrames))
        Complain(pro->sound + ": " + sDamage + "; the rest is silence");
    if (!pro->bFramesGiven)
        pro->nFrames = std::max<i64>(std::llround(SongSeconds(*pSong) * pro->fFps), 1);
    return {};
}

// False: the start has failed and said why.
bool SetUpRun(const RenderOptions &ro, const Song &song)
{
    UseFixedClock(0);
    SeedAllRandom(ro.qwSeed);
    if (StartHeadless(ro.start))
        return false;
    if (ro.bOnePass)
        SetupMixAccelerator();
    GlobalSettings.ThreadedPlanes = ro.bThreads;
    GlobalSettings.MixInParallel = ro.bOnePass;
    GlobalSettings.dwPlaneWaitMs = WAIT_FOREVER;
    GlobalSettings.nBufferWidth = static_cast<i32>(ro.nWidth);
    GlobalSettings.nBufferHeight = static_cast<i32>(ro.nHeight);
    GlobalSettings.hwndVisuals.nWidth = GlobalSettings.nBufferWidth;
    GlobalSettings.hwndVisuals.nHeight = GlobalSettings.nBufferHeight;
    if (!ro.sound.empty()) // the warm-up is over when it begins
        BindRenderSong(&GlobalSettings.Monitor, &song, TickOfFrame(ro, ro.nWarmup));
    else
        BindRenderSound(&GlobalSettings.Monitor, ro.qwSeed);
    return true;
}

std::string CountText(const PictureReport &report)
{
    return "; " + std::to_string(report.nSaved) + (report.nSaved == 1 ? " frame was" : " frames were") + " written";
}

// Why the run must end before its last frame, or empty.
std::string FindReasonToStop(PictureQueue *pQueue)
{
    const PictureReport report = ReadPictureReport(pQueue);
    if (report.nFailed)
        return PictureFailureText(report.firstFailed, report.nFirstError);
    return TerminationWasAsked() ? "interrupted" : "";
}

// Draws frame k and hands it over. False: there is nothing to draw.
bool RunOneFrame(FrameWriter *pWriter, i64 k, RenderStats *prs)
{
    const RenderOptions &ro = *pWriter->pro;
    PresetState *lppsi = CurrentPreset();
    SetFixedTick(TickOfFrame(ro, k));
    pWriter->dwNumber = static_cast<u32>(std::max<i64>(k - ro.nWarmup, 0));
    if (!RunFrameStep(lppsi))
        return false;
    const i64 nStepped = RealNanoseconds();
    PresentFrame(lppsi->phbmOutput ? *lppsi->phbmOutput : nullptr);
    if (pWriter->dwNumber)
        CountFrame(prs, LastFrameStages(), RealNanoseconds() - nStepped);
    return true;
}

// Runs the frames. Empty, or what went wrong.
std::string RunFrames(const RenderOptions &ro, RenderStats *prs)
{
    FrameWriter writer = {&ro, StartFrameOutput(ro, prs), 0};
    AddPresenter(WriteFrame, &writer);
    const u64 nFrames = static_cast<u64>(ro.nFrames);
    std::string sError;
    for (i64 k = 1; k <= ro.nWarmup + ro.nFrames && sError.empty(); k++) {
        if (!RunOneFrame(&writer, k, prs)) {
            sError = "the preset has no planes: there is no picture";
            break;
        }
        ShowProgress(*prs, ReadPictureReport(writer.pQueue).nSaved, nFrames);
        sError = FindReasonToStop(writer.pQueue);
    }
    FinishPictures(writer.pQueue);
    const PictureReport report = ReadPictureReport(writer.pQueue);
    ShowProgress(*prs, report.nSaved, nFrames);
    EndProgress();
    if (report.nFailed)
        sError = FindReasonToStop(writer.pQueue);
    else if (report.nSaved == nFrames)
        sError.clear(); // asked to end when all was done
    RemovePresenter(WriteFrame, &writer);
    StopPictureQueue(writer.pQueue);
    return sError.empty() || report.nSaved == 0 ? sError : sError + CountText(report);
}

std::string LoadPreset(const RenderOptions &ro)
{
    if (ro.preset == "default") {
        OpenDefaultPreset();
        return {};
    }
    PresetReport report = {};
    const std::u16string name = FromUtf8(ro.preset);
    if (!LoadPresetByName(name, &report) || !CurrentPreset())
        return DescribeFailure(name, report);
    ReportPassedOver(report);
    return {};
}

// Saves the preset and nothing else, or runs the frames. Empty, or what went wrong.
std::string RunJob(const RenderOptions &ro)
{
    std::string sError;
    if (!ro.save.empty()) {
        SavePresetAs(FromUtf8(ro.save), &sError);
        return sError;
    }
    RenderStats stats;
    sError = RunFrames(ro, &stats);
    if (sError.empty() && ro.bStats)
        PrintStats(stats);
    return sError;
}

} // namespace

int RunRender(const RenderOptions &given)
{
    ASSERT_MAIN_THREAD();
    if (!given.list.empty())
        return ListPresets(given);
    RenderOptions ro = given;
    Song song = {};
    std::string sError = LoadSong(&ro, &song);
    if (sError.empty()) {
        if (!SetUpRun(ro, song))
            return EXIT_HEADLESS;
        sError = LoadPreset(ro);
        if (sError.empty())
            sError = RunJob(ro);
        ShutDownHeadless();
    }
    if (!sError.empty())
        Complain(sError);
    return sError.empty() ? 0 : 1;
}
