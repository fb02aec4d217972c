// main_qt.cpp -- vorticade: the desktop program
#include "app/DesktopOptions.h"
#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "app/Startup.h"
#include "app/Toolkit_qt.h"
#include "engine/PlaneThreads.h"
#include "mainwindow/MainWindow_qt.h"
#include "mainwindow/StartPlacement.h"
#include "output/FrameRecorder.h"
#include "output/Presenters.h"
#include "output/VisualsCommands.h"
#include "output/VisualsWindow_qt.h"
#include "platform/MainThread.h"
#include "platform/Signals.h"
#include "toolkit/ErrorBoxes_qt.h"
#include "toolkit/FrameExtents_qt.h"
#include "toolkit/WindowLayouts.h"

#include <cstdio>
#include <cstdlib>

namespace {

int ListSound(const StartOptions &options)
{
    std::printf("%s\n", DescribeSound(options).c_str());
    return 0;
}

void PublishWindow(void *pvWindow)
{
    static_cast<VisualsWindow *>(pvWindow)->PublishWindow();
}

// For the start-up benchmark: says on standard output when the first frame stands on the screen, and ends.
u32 EndAtFirstFrame(const HostBitmap *, void *)
{
    std::puts("first frame");
    std::fflush(stdout);
    RequestExit();
    return 0;
}

// Behind the window's presenter: what is called here comes after the first frame.
u32 FinishStart(const HostBitmap *, void *)
{
    RemovePresenter(FinishStart, nullptr);
    RunPendingSteps();
    return 0;
}

MainWindow *FindMainWindow()
{
    const WindowLayout *pLayout = FindWindowLayout(MAIN_WINDOW);
    return pLayout ? static_cast<MainWindow *>(static_cast<QWidget *>(pLayout->hWnd)) : nullptr;
}

FrameRect RectOf(const QRect &rc)
{
    return {rc.left(), rc.top(), rc.left() + rc.width(), rc.top() + rc.height()};
}

// The main window at the top left of the work area, the picture beside it.
void PlaceWindows(QWidget *pMain, QWidget *pVisuals)
{
    const QRect rcWork = WorkAreaOf(pMain);
    SetFrameRect(pMain, QRect(rcWork.topLeft(), FrameRectOf(pMain).size()));
    const FrameRect rc = VisualsStartRect(RectOf(FrameRectOf(pMain)), RectOf(rcWork), SmallestVisualsSide());
    SetFrameRect(pVisuals, QRect(rc.xLeft, rc.yTop, rc.xRight - rc.xLeft, rc.yBottom - rc.yTop));
}

void OpenWindows(const StartOptions &options, VisualsWindow *pVisuals)
{
    RegisterMainWindow(RequestExit);
    if (!options.bNoMain) {
        auto *pMain = static_cast<QWidget *>(OpenWindow(MAIN_WINDOW, nullptr, 1));
        PlaceWindows(pMain, pVisuals);
    }
    pVisuals->show();
    pVisuals->PublishWindow();
}

void RunShow(const StartOptions &options)
{
    AddPresenter(RecordStep, nullptr); // before the window: what is saved is what is shown next
    VisualsWindow window(RequestExit);
    OpenWindows(options, &window);
    BeforeFrameListeners.Add(PublishWindow, &window);
    if (std::getenv("VD_END_AT_FIRST_FRAME"))
        AddPresenter(EndAtFirstFrame, nullptr);
    AddPresenter(FinishStart, nullptr);
    StartPreset(options.preset);
    if (MainWindow *pMain = FindMainWindow())
        pMain->SelectRoot();
    ShowErrorsOver(FindMainWindow() ? static_cast<QWidget *>(FindMainWindow()) : &window);
    RunMainLoop();
    FinishFrameRecorder();
    SaveSettings();
    BeforeFrameListeners.Remove(PublishWindow, &window);
    delete FindMainWindow();
}

int RunDesktop(const StartOptions &options)
{
    BlockTerminationSignals();
    IgnoreWriteSignals(); // a full disk is an error of the file, not the end of the show
    const std::unique_ptr<QApplication> pApp = StartToolkit();
    if (!pApp)
        return 1;
    InstallFrameTimers();
    KeepErrors();
    if (const int nExit = StartCore(options))
        return nExit;
    RunShow(options);
    ShutDown();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    ClaimMainThread();
    DesktopOptions options;
    std::string sError;
    if (!ReadDesktopOptions(argc, argv, &options, &sError)) {
        std::fprintf(stderr, "vorticade: %s\n", sError.c_str());
        return 2;
    }
    if (options.bHelp || options.bVersion) {
        std::fputs(options.bHelp ? DesktopHelp().c_str() : "vorticade " VD_VERSION "\n", stdout);
        return 0;
    }
    if (options.bListSound)
        return ListSound(options.start);
    const int nExit = RunDesktop(options.start);
    if (AnyThreadIsStuck())
        std::_Exit(nExit); // a thread that hangs in a module would be torn down under it
    return nExit;
}
