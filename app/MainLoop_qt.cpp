// MainLoop_qt.cpp -- the main loop on the toolkit's event queue
#include "app/MainLoop_qt.h"

#include "app/FramePacer.h"
#include "app/MainLoop.h"
#include "platform/MainThread.h"
#include "platform/Signals.h"
#include "toolkit/WindowEvents_qt.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHash>
#include <QSocketNotifier>
#include <QTimer>

#include <unistd.h>

namespace {

bool bExitRequested = false;

QHash<void *, QTimer *> &FrameTimers()
{
    static QHash<void *, QTimer *> timers;
    return timers;
}

// The timer itself may be what ends its dialog: it must outlive its own call.
void KillFrameTimer(void *hwnd, u32)
{
    if (QTimer *pTimer = FrameTimers().take(hwnd)) {
        pTimer->stop();
        pTimer->deleteLater();
    }
}

void StartFrameTimer(void *hwnd, u32 dwTimerId, u32 nPeriodMs)
{
    KillFrameTimer(hwnd, dwTimerId);
    auto *pTimer = new QTimer(qApp);
    pTimer->setTimerType(Qt::PreciseTimer);
    QObject::connect(pTimer, &QTimer::timeout, [=] { RunDialogFrames(hwnd, DialogMessage::Timer, dwTimerId); });
    pTimer->start(static_cast<int>(nPeriodMs));
    FrameTimers().insert(hwnd, pTimer);
}

void HoldLoopFor(QObject *pDialog, void *)
{
    RunDialogFrames(pDialog, DialogMessage::Init, 0);
    QObject::connect(pDialog, &QObject::destroyed,
                     [](QObject *pGone) { RunDialogFrames(pGone, DialogMessage::Destroy, 0); });
}

void ServeEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // a loop of our own must do this itself
}

} // namespace

void RunMainLoop()
{
    ASSERT_MAIN_THREAD();
    QSocketNotifier pacerNotifier(OpenPacer(), QSocketNotifier::Read);
    QObject::connect(&pacerNotifier, &QSocketNotifier::activated, DrainPacer);
    const int fdSignals = OpenTerminationSignals();
    QSocketNotifier signalNotifier(fdSignals, QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, [&] {
        signalNotifier.setEnabled(false); // the signal stays unread: one is enough
        RequestExit();
    });

    for (ServeEvents(); !bExitRequested; ServeEvents())
        if (!RunAndPresentFrame() && ArmPacer())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ClosePacer();
    close(fdSignals);
    bExitRequested = false;
}

void RequestExit()
{
    ASSERT_MAIN_THREAD();
    bExitRequested = true;
    QCoreApplication::exit(); // ends the loops inside; the main loop is none of the toolkit's
}

void InstallFrameTimers()
{
    ASSERT_MAIN_THREAD();
    SetFrameTimerHooks({StartFrameTimer, KillFrameTimer});
    KeepFramesListeners.Remove(HoldLoopFor);
    KeepFramesListeners.Add(HoldLoopFor);
}
