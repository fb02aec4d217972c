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

#include <QEvent>

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

MainWindow *FindMainWindow()
{
    const WindowLayout *pLayout = FindWindowLayout(MAIN_WINDOW);
    return pLayout ? static_cast<MainWindow *>(static_cast<QWidget *>(pLayout->hWnd)) : nullptr;
}

// What becomes of the windows after the start: notes whether the main window has been painted, if there is one.
class FirstPaint : public QObject {
  public:
    explicit FirstPaint(VisualsWindow *p) : pVisuals(p), bMainPainted(!FindMainWindow())
    {
        if (!bMainPainted)
            FindMainWindow()->installEventFilter(this);
    }
    // Asked behind the window's presenter. A window may be hidden from the start on: then waiting has an end.
    bool IsOver()
    {
        return (pVisuals->FramesOnScreen() && bMainPainted) || ++nFrames >= FRAMES_MAX;
    }

  protected:
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        bMainPainted |= pEvent->type() == QEvent::Paint;
        return false;
    }

  private:
    static constexpr u32 FRAMES_MAX = 120;
    const VisualsWindow *const pVisuals;
    bool bMainPainted;
    u32 nFrames = 0;
};

// For the start-up benchmark: says on standard output when all windows stand on the screen, and ends.
bool EndIfAsked()
{
    if (!std::getenv("VD_END_AT_FIRST_FRAME"))
        return false;
    std::puts("first frame");
    std::fflush(stdout);
    RequestExit();
    return true;
}

// What is called here comes after the first sight of the windows.
u32 FinishStart(const HostBitmap *, void *pvPaint)
{
    if (!static_cast<FirstPaint *>(pvPaint)->IsOver())
        return 0;
    RemovePresenter(FinishStart, pvPaint);
    if (!EndIfAsked())
        RunPendingSteps();
    return 0;
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
    FirstPaint paint(&window);
    AddPresenter(FinishStart, &paint);
    StartPreset(options.preset);
    if (MainWindow *pMain = FindMainWindow())
        pMain->SelectRoot();
    ShowErrorsOver(FindMainWindow() ? static_cast<QWidget *>(FindMainWindow()) : &window);
    RunMainLoop();
    FinishFrameRecorder();
    SaveSettings();
    BeforeFrameListeners.Remove(PublishWindow, &window);
    RemovePresenter(FinishStart, &paint);
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
