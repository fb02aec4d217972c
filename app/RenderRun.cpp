// RenderRun.cpp -- the headless renderer: a preset to numbered pictures
#include "app/RenderRun.h"

#include "app/GlobalSettings.h"
#include "app/PresetList.h"
#include "app/RenderSound.h"
#include "app/RenderStats.h"
#include "engine/FrameStep.h"
#include "engine/PresetFile.h"
#include "engine/PresetManager.h"
#include "output/PictureFiles.h"
#include "output/PlaneMixer.h"
#include "output/Presenters.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "platform/Threads.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

// What the presenter needs to know of the frame that it receives.
struct FrameWriter {
    const RenderOptions *pro;
    u32 dwNumber; // of the frame; 0: warming up, nothing is written
    std::string sError;
};

void Complain(const std::string &s)
{
    std::fprintf(stderr, "vorticade-render: %s\n", s.c_str());
}

bool WriteRawFrame(const HostBitmap *hbm)
{
    for (i32 y = hbm->nHeight - 1; y >= 0; y--) {
        const u8 *pRow = static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(y) * hbm->cbRow;
        if (std::fwrite(pRow, hbm->cbRow, 1, stdout) != 1)
            return false;
    }
    return std::fflush(stdout) == 0;
}

// Every frame counts as shown, those of the warm-up too.
u32 WriteFrame(const HostBitmap *hbm, void *pv)
{
    auto *pfw = static_cast<FrameWriter *>(pv);
    if (pfw->dwNumber == 0)
        return 1;
    errno = 0;
    if (pfw->pro->out == "-") {
        if (!WriteRawFrame(hbm))
            pfw->sError = std::string("frames cannot be written to standard output: ") + std::strerror(errno);
        return 1;
    }
    const std::u16string path = FormatNumberPattern(pfw->pro->pattern, pfw->dwNumber);
    if (!SavePicture(hbm, path.c_str(), 95))
        pfw->sError = ToUtf8(path) + " cannot be written" + (errno ? std::string(": ") + std::strerror(errno) : "");
    return 1;
}

void SetUpRun(const RenderOptions &ro)
{
    UseFixedClock(0);
    SeedAllRandom(ro.qwSeed);
    StartHeadless(ro.start);
    if (ro.bOnePass)
        SetupMixAccelerator();
    GlobalSettings.ThreadedPlanes = ro.bThreads;
    GlobalSettings.MixInParallel = ro.bOnePass;
    GlobalSettings.dwPlaneWaitMs = WAIT_FOREVER;
    GlobalSettings.nBufferWidth = static_cast<i32>(ro.nWidth);
    GlobalSettings.nBufferHeight = static_cast<i32>(ro.nHeight);
    GlobalSettings.hwndVisuals.nWidth = GlobalSettings.nBufferWidth;
    GlobalSettings.hwndVisuals.nHeight = GlobalSettings.nBufferHeight;
    BindRenderSound(&GlobalSettings.Monitor, ro.qwSeed);
}

// Runs the frames. Empty, or what went wrong.
std::string RunFrames(const RenderOptions &ro, RenderStats *prs)
{
    FrameWriter writer = {&ro, 0, {}};
    AddPresenter(WriteFrame, &writer);
    PresetState *lppsi = CurrentPreset();
    for (i64 k = 1; k <= ro.nWarmup + ro.nFrames && writer.sError.empty(); k++) {
        SetFixedTick(static_cast<u64>(static_cast<double>(k) * 1000.0 / ro.fFps));
        writer.dwNumber = static_cast<u32>(k > ro.nWarmup ? k - ro.nWarmup : 0);
        if (!RunFrameStep(lppsi)) {
            writer.sError = "the preset has no planes: there is no picture";
            break;
        }
        const i64 nStepped = RealNanoseconds();
        PresentFrame(lppsi->phbmOutput ? *lppsi->phbmOutput : nullptr);
        if (writer.dwNumber)
            CountFrame(prs, LastFrameStages(), RealNanoseconds() - nStepped);
        ShowProgress(*prs, static_cast<u64>(ro.nFrames));
    }
    EndProgress();
    RemovePresenter(WriteFrame, &writer);
    return writer.sError;
}

std::string LoadPreset(const RenderOptions &ro)
{
    if (ro.preset == "default") {
        SwitchPreset(MakeDefaultPreset, nullptr);
        return {};
    }
    PresetReport report = {};
    const std::u16string name = FromUtf8(ro.preset);
    const PresetRequest request = {name, &report};
    if (!SwitchPreset(MakeStoredPreset, &request))
        return DescribeFailure(name, report);
    ReportPassedOver(report);
    return {};
}

// Saves the preset and nothing else, or runs the frames. Empty, or what went wrong.
std::string RunJob(const RenderOptions &ro)
{
    std::string sError;
    if (!ro.save.empty()) {
        SavePresetFile(CurrentPreset(), FromUtf8(ro.save), &sError);
        return sError;
    }
    RenderStats stats;
    sError = RunFrames(ro, &stats);
    if (sError.empty() && ro.bStats)
        PrintStats(stats);
    return sError;
}

} // namespace

int RunRender(const RenderOptions &ro)
{
    if (!ro.list.empty())
        return ListPresets(ro);
    SetUpRun(ro);
    std::string sError = LoadPreset(ro);
    if (sError.empty())
        sError = RunJob(ro);
    ShutDownHeadless();
    if (!sError.empty())
        Complain(sError);
    return sError.empty() ? 0 : 1;
}
