// VisualsPlace_qt.cpp -- the visuals window's size, screen and state, and what follows from them
#include "output/VisualsWindow_qt.h"

#include "output/FrameStats.h"
#include "output/NativeWindow_qt.h"
#include "output/VisualsCommands.h"
#include "platform/Clock.h"
#include "state/GlobalSettings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <QtMath>

namespace {

constexpr u64 LEAVING_MS = 1000; // a window manager that maximises so soon after full screen was not asked to

} // namespace

// The toolkit rounds its backing store likewise; with a fractional ratio this may be a pixel more than the window
// shows, so what the window system said comes first.
QSize VisualsWindow::DeviceSize() const
{
    const QSize rounded = (QSizeF(size()) * devicePixelRatioF()).toSize();
    const QSize apart = NativeSize - rounded;
    const bool bSameSize = NativeSize.isValid() && qAbs(apart.width()) <= 1 && qAbs(apart.height()) <= 1;
    return bSameSize ? NativeSize : rounded;
}

bool VisualsWindow::IsOnScreen() const
{
    return isVisible() && !isMinimized() && windowHandle() && windowHandle()->isExposed() && !bCovered;
}

// The buffer follows when the window has come to rest. What else wanted it made anew is not forgotten over that.
void VisualsWindow::PlaceChanged()
{
    bResizeOwed |= GlobalSettings.bResizePending && (GlobalSettings.bRecording || !GlobalSettings.AutoAdjustBuffer);
    GlobalSettings.bResizePending = 0;
    RelayoutOverlays();
    TickOverlayTexts();
    SettleTimer.start();
}

void VisualsWindow::Settled()
{
    AskForSizeAgain();
    const bool bFollow = GlobalSettings.AutoAdjustBuffer && !GlobalSettings.bRecording;
    if (bFollow)
        ResetFrameStats();
    if (bFollow || bResizeOwed)
        GlobalSettings.bResizePending = 1;
    bResizeOwed = false;
}

// A window manager that was still busy with the end of full screen may have set another size afterwards.
void VisualsWindow::AskForSizeAgain()
{
    const QSize asked = AskedSize;
    AskedSize = QSize();
    if (asked.isValid() && asked != DeviceSize() && !isFullScreen())
        SetNativeClientSize(this, asked);
}

void VisualsWindow::SetFullScreen(bool bOn)
{
    if (bOn)
        showFullScreen();
    else
        showNormal();
    qwLeftFullScreen = bOn ? 0 : TickCount();
    unsetCursor();
    PointerTimer.start();
}

void VisualsWindow::SetClientSize(QSize size)
{
    if (isMaximized())
        showNormal();
    AskedSize = size;
    SettleTimer.start();
    if (!SetNativeClientSize(this, size))
        resize((QSizeF(size) / devicePixelRatioF()).toSize());
}

// The widget's own flags would make the window anew; those of the native window do not.
void VisualsWindow::SetTopmost(bool bOn)
{
    if (windowHandle())
        windowHandle()->setFlag(Qt::WindowStaysOnTopHint, bOn);
    WatchVisibility(this); // the toolkit has set its own choice of events anew
}

void VisualsWindow::FrameChanged()
{
    const int nSide = qCeil(SmallestVisualsSide() / devicePixelRatioF());
    setMinimumSize(nSide, nSide);
}

// The toolkit moves the windows of a screen after it has told of its end.
void VisualsWindow::ScreenRemoved(QScreen *pGone)
{
    if (bFullScreen && screen() == pGone)
        QTimer::singleShot(0, this, [this] { MoveToFirstScreen(); });
}

void VisualsWindow::MoveToFirstScreen()
{
    const QScreen *pFirst = QGuiApplication::primaryScreen();
    if (!pFirst || !bFullScreen)
        return;
    showNormal();
    setGeometry(pFirst->geometry());
    showFullScreen();
}

// Another screen may have another pixel ratio and depth.
void VisualsWindow::ScreenChanged()
{
    nDisplayBits = BitsPerPixel(screen()->depth());
    FrameChanged();
    PlaceChanged();
}

void VisualsWindow::showEvent(QShowEvent *pEvent)
{
    QWidget::showEvent(pEvent);
    WatchVisibility(this);
}

void VisualsWindow::moveEvent(QMoveEvent *)
{
    PlaceChanged();
}

void VisualsWindow::resizeEvent(QResizeEvent *)
{
    PlaceChanged();
}

// The window manager owns the caption: a double click there arrives as "maximised", and that is full screen here. What
// else it does to the window is taken over as it is.
void VisualsWindow::changeEvent(QEvent *pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() != QEvent::WindowStateChange || isMinimized())
        return;
    const bool bJustLeft = qwLeftFullScreen && TickCount() - qwLeftFullScreen < LEAVING_MS;
    if (isMaximized() && !bFullScreen && !bJustLeft)
        SetVisualsFullScreen(1);
    else
        bFullScreen = isFullScreen();
}

bool VisualsWindow::event(QEvent *pEvent)
{
    if (pEvent->type() == QEvent::ScreenChangeInternal)
        ScreenChanged();
    if (pEvent->type() == QEvent::WinIdChange) {
        bCovered = false;
        WatchVisibility(this);
    }
    return QWidget::event(pEvent);
}

// The toolkit keeps some events from its windows, those of visibility among them. A window that somebody else destroys
// (a window manager, a tool) is a closed one; the toolkit does not say so.
bool VisualsWindow::nativeEventFilter(const QByteArray &type, void *pMessage, qintptr *)
{
    const NativeNews news = ReadNativeEvent(type, pMessage, static_cast<u64>(internalWinId()));
    if (news.bDestroyed)
        pfnClosed();
    if (news.bVisibility)
        bCovered = news.bCovered;
    if (news.bSizeHints)
        AllowEverySize(this);
    if (news.size.isValid())
        NativeSize = news.size;
    return false;
}
