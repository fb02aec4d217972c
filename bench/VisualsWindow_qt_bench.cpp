// VisualsWindow_qt_bench.cpp -- what showing a frame costs, with overlays and without, and whether a show misses frames
#include "bench/BenchReport.h"

#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "app/SettingsTable.h"
#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "output/Overlays.h"
#include "output/VisualsWindow_qt.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"
#include "toolkit/UIColors.h"

#include <QApplication>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr unsigned ROUNDS = 60;
constexpr unsigned CALLS = 5;
constexpr int WIDTH = 1920, HEIGHT = 1080;
constexpr double FPS = 60;
constexpr i64 SHOW_NS = 60ll * 1000000000;
constexpr double LATE_FRAMES = 1.5; // an interval longer than so many frames has missed one

void SetOverlays(bool bOn)
{
    for (u32 i = 0; i < OVERLAYS; i++)
        if (static_cast<bool>(asOverlay[i].bShown) != bOn)
            ToggleOverlay(i);
}

void Settle()
{
    for (u32 i = 0; i < 3; i++)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// The same window with all overlays and without any, frame by frame in turn, against a plain copy of the picture.
void MeasurePresent(VisualsWindow *pWindow)
{
    HostBitmap *hbm = CreateBitmap(WIDTH, HEIGHT);
    std::vector<u32> adwCopy(static_cast<size_t>(WIDTH) * HEIGHT);
    const auto present = [&] { KeepResult(pWindow->Present(hbm)); };
    ShowModuleMessage(u"A message of a module that says what its shader does");
    SetOverlays(true);
    Settle();
    std::vector<double> afWith, afWithout, afCopy;
    for (unsigned i = 0; i <= ROUNDS; i++) {
        for (VWWindowParms &vw : asOverlay)
            vw.bShown = 1;
        const double fWith = CpuOfCalls(CALLS, present);
        for (VWWindowParms &vw : asOverlay)
            vw.bShown = 0;
        const double fWithout = CpuOfCalls(CALLS, present);
        const double fCopy = CpuOfCalls(CALLS, [&] {
            std::memcpy(adwCopy.data(), hbm->pBits, adwCopy.size() * 4);
            KeepResult(adwCopy);
        });
        if (i == 0)
            continue;
        afWith.push_back(fWith - fWithout);
        afWithout.push_back(fWithout);
        afCopy.push_back(fCopy);
    }
    ReportFigure("VisualsWindow/1080p frame at equal size", MedianRatio(afWithout, afCopy), 1.1, "x copy",
                 BenchGoal::AT_MOST);
    ReportFigure("VisualsWindow/all overlays at 60 FPS", Median(afWith) * FPS / 1e6 * 100, 2, "% core",
                 BenchGoal::AT_MOST);
    OverlayPainter painter;
    const OverlayHost host = {WIDTH, HEIGHT, &painter, OverlayPainter::Measure};
    const double fTick = CpuOfCalls(200, [&] { TickOverlays(host); });
    ReportFigure("VisualsWindow/overlay tick, 5 a second", fTick * 1000 / OVERLAY_TICK_MS / 1e6 * 100, 0.1, "% core",
                 BenchGoal::AT_MOST);
    DeleteBitmap(hbm);
}

i64 nShowEnd = 0, nDueBefore = 0;
u32 nMissed = 0, nTurns = 0;

// What the loop did is read off the gate.
void WatchShow(void *)
{
    const i64 nDue = NextFrameCount();
    if (nDueBefore && nDue != nDueBefore) {
        const double fFrames = static_cast<double>(nDue - nDueBefore) * FPS / 1e9;
        nMissed += fFrames > LATE_FRAMES && nTurns > 0 ? static_cast<u32>(fFrames + 0.5) - 1 : 0;
        nTurns++;
    }
    nDueBefore = nDue;
    if (RealNanoseconds() >= nShowEnd)
        RequestExit();
}

void MeasureShow(VisualsWindow *pWindow)
{
    pWindow->resize(1280, 720);
    GlobalSettings.nBufferWidth = 1280;
    GlobalSettings.nBufferHeight = 720;
    SwitchPreset(MakeDefaultPreset, nullptr);
    nShowEnd = RealNanoseconds() + SHOW_NS;
    BeforeFrameListeners.Add(WatchShow);
    RunMainLoop();
    BeforeFrameListeners.Remove(WatchShow);
    SwitchPreset(nullptr, nullptr);
    ReportFigure("VisualsWindow/frames missed in a minute, 720p", nMissed, 0, "frames", BenchGoal::AT_MOST);
    ReportFigure("VisualsWindow/frames shown in that minute", nTurns, 0, "frames", BenchGoal::NONE);
}

} // namespace

int main(int argc, char **argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    InitFolders({{}, {}, FromUtf8(STOCK_MODULE_FOLDER)});
    SetDefaultSettings();
    SetDefaultUIColors();
    GlobalSettings.FPSTarget = static_cast<i32>(FPS);
    GlobalSettings.AutoAdjustBuffer = 0;
    GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
    LoadModuleFolder();
    VisualsWindow window([] {});
    window.resize(WIDTH, HEIGHT);
    window.show();
    Settle();
    MeasurePresent(&window);
    MeasureShow(&window);
    return 0;
}
