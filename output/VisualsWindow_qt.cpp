// VisualsWindow_qt.cpp -- the window that shows the picture
#include "output/VisualsWindow_qt.h"

#include "app/GlobalSettings.h"
#include "output/Presenters.h"
#include "output/Stretch.h"
#include "platform/Notices.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <QtMath>

#include <xcb/xcb.h>

namespace {

constexpr int SETTLE_MS = 200; // a size must rest for so long before the buffer follows it
constexpr int MIN_SIDE = 128;
constexpr QSize FIRST_SIZE(1280, 720);

void PresentToWindow(const HostBitmap *hbm, void *pv)
{
    static_cast<VisualsWindow *>(pv)->Present(hbm);
}

// A notice must also show while a module that hangs keeps frames from coming.
void RepaintWindows()
{
    for (QWidget *pWindow : QApplication::topLevelWidgets())
        pWindow->update();
}

} // namespace

VisualsWindow::VisualsWindow(void (*pfn)()) : pfnClosed(pfn)
{
    setWindowTitle(QStringLiteral("Visuals Window"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    setMinimumSize(MIN_SIDE, MIN_SIDE);
    resize(FIRST_SIZE.boundedTo(screen()->availableSize()));
    SettleTimer.setSingleShot(true);
    SettleTimer.setInterval(SETTLE_MS);
    connect(&SettleTimer, &QTimer::timeout, this, [] {
        if (GlobalSettings.AutoAdjustBuffer && !GlobalSettings.bRecorderRunning)
            GlobalSettings.bResizePending = 1;
    });
    AddPresenter(PresentToWindow, this);
    GlobalSettings.bVisualsWindow = 1;
    pfnNoticeAdded = RepaintWindows;
}

VisualsWindow::~VisualsWindow()
{
    pfnNoticeAdded = nullptr;
    GlobalSettings.bVisualsWindow = 0;
    GlobalSettings.hwndVisuals.bVisible = 0;
    GlobalSettings.hwndVisuals.qwNativeId = 0;
    RemovePresenter(PresentToWindow, this);
}

// The toolkit rounds its backing store likewise; with a fractional ratio this may be a pixel more than the window
// shows.
QSize VisualsWindow::DeviceSize() const
{
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

bool VisualsWindow::IsOnScreen() const
{
    return isVisible() && !isMinimized() && windowHandle() && windowHandle()->isExposed();
}

void VisualsWindow::PublishWindow() const
{
    const QSize size = DeviceSize();
    HostWindow *phw = &GlobalSettings.hwndVisuals;
    phw->bVisible = isVisible() && !isMinimized();
    phw->qwNativeId = static_cast<u64>(internalWinId());
    phw->nWidth = size.width();
    phw->nHeight = size.height();
    phw->xMouse = MousePlace.x();
    phw->yMouse = size.height() - 1 - MousePlace.y();
    phw->dwButtons = dwMouseButtons;
}

// The picture is made here and painted at once: a frame must not wait for the next turn of the event loop.
void VisualsWindow::Present(const HostBitmap *hbm)
{
    if (!IsOnScreen())
        return;
    if (Picture.size() != DeviceSize())
        Picture = QImage(DeviceSize(), QImage::Format_RGB32);
    if (Picture.isNull())
        return;
    Picture.setDevicePixelRatio(devicePixelRatioF());
    StretchPicture({Picture.bits(), Picture.width(), Picture.height(), static_cast<u64>(Picture.bytesPerLine())}, hbm,
                   true);
    repaint();
    nFramesOnScreen++;
}

void VisualsWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (Picture.isNull())
        painter.fillRect(rect(), Qt::black);
    else if (Picture.size() == DeviceSize())
        painter.drawImage(QPoint(0, 0), Picture); // pixel by pixel
    else
        painter.drawImage(rect(), Picture); // between a resize and the next frame
    PaintNotices(&painter);
}

// What the user must know stands at the bottom until a click or a key says that it was read.
void VisualsWindow::PaintNotices(QPainter *pPainter)
{
    if (nNoticesRead == NoticeCount())
        return;
    const QString text = QString::fromStdString(NoticeText()).trimmed();
    const QRect inner = rect().adjusted(24, 24, -24, -24);
    QRect box = pPainter->boundingRect(inner, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap, text);
    pPainter->fillRect(box.adjusted(-12, -10, 12, 10), QColor(0, 0, 0, 190));
    pPainter->setPen(QColor(235, 235, 235));
    pPainter->drawText(box, Qt::AlignLeft | Qt::TextWordWrap, text);
}

// The buffer follows when the window has come to rest.
void VisualsWindow::PlaceChanged()
{
    GlobalSettings.bResizePending = 0;
    SettleTimer.start();
}

void VisualsWindow::moveEvent(QMoveEvent *)
{
    PlaceChanged();
}

void VisualsWindow::resizeEvent(QResizeEvent *)
{
    PlaceChanged();
}

void VisualsWindow::closeEvent(QCloseEvent *pEvent)
{
    pEvent->ignore(); // the main loop takes it down in its order
    pfnClosed();
}

void VisualsWindow::keyPressEvent(QKeyEvent *pEvent)
{
    nNoticesRead = NoticeCount();
    QWidget::keyPressEvent(pEvent);
}

void VisualsWindow::mouseMoveEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
}

void VisualsWindow::mousePressEvent(QMouseEvent *pEvent)
{
    nNoticesRead = NoticeCount();
    TakeMouse(pEvent);
}

void VisualsWindow::mouseReleaseEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
}

void VisualsWindow::TakeMouse(const QMouseEvent *pEvent)
{
    const QPointF place = pEvent->position() * devicePixelRatioF();
    MousePlace = QPoint(qFloor(place.x()), qFloor(place.y()));
    // The toolkit's button bits are left 1, right 2, middle 4: those of the modules' record.
    dwMouseButtons = static_cast<u32>(pEvent->buttons().toInt()) & 7;
}

bool VisualsWindow::event(QEvent *pEvent)
{
    if (pEvent->type() == QEvent::ScreenChangeInternal)
        PlaceChanged(); // another screen may have another pixel ratio
    return QWidget::event(pEvent);
}

// A window that somebody else destroys (a window manager, a tool) is a closed one; the toolkit does not say so.
bool VisualsWindow::nativeEvent(const QByteArray &type, void *pMessage, qintptr *)
{
    if (type == "xcb_generic_event_t") {
        const auto *pDestroy = static_cast<const xcb_destroy_notify_event_t *>(pMessage);
        const bool bDestroyed = (pDestroy->response_type & 0x7F) == XCB_DESTROY_NOTIFY;
        if (bDestroyed && pDestroy->window == static_cast<xcb_window_t>(internalWinId()))
            pfnClosed();
    }
    return false;
}
