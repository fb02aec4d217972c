// MainLoop_qt.cpp -- the main loop on the toolkit's event queue
#include "app/MainLoop_qt.h"

#include "app/FramePacer.h"
#include "app/MainLoop.h"
#include "platform/Signals.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHash>
#include <QSocketNotifier>
#include <QTimer>

#include <unistd.h>

namespace {

QHash<void *, QTimer *> &FrameTimers()
{
    static QHash<void *, QTimer *> timers;
    return timers;
}

void KillFrameTimer(void *hwnd, u32)
{
    delete FrameTimers().take(hwnd);
}

void StartFrameTimer(void *hwnd, u32 dwTimerId, u32 nPeriodMs)
{
    KillFrameTimer(hwnd, dwTimerId);
    auto *pTimer = new QTimer(qApp);
    QObject::connect(pTimer, &QTimer::timeout, [=] { RunDialogFrames(hwnd, DialogMessage::Timer, dwTimerId); });
    pTimer->start(static_cast<int>(nPeriodMs));
    FrameTimers().insert(hwnd, pTimer);
}

} // namespace

void RunMainLoop(const std::function<bool()> &exitRequested)
{
    bool bSignalled = false;
    QSocketNotifier pacerNotifier(OpenPacer(), QSocketNotifier::Read);
    QObject::connect(&pacerNotifier, &QSocketNotifier::activated, DrainPacer);
    const int fdSignals = OpenTerminationSignals();
    QSocketNotifier signalNotifier(fdSignals, QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, [&] { bSignalled = true; });

    for (;;) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // a loop of our own must do this itself
        if (bSignalled || exitRequested())
            break;
        if (!RunAndPresentFrame() && ArmPacer())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    ClosePacer();
    close(fdSignals);
}

void InstallFrameTimers()
{
    SetFrameTimerHooks({StartFrameTimer, KillFrameTimer});
}
