// VisualsWindow_qt.cpp -- the window that shows the picture
#include "output/VisualsWindow_qt.h"

#include "app/GlobalSettings.h"
#include "output/Presenters.h"
#include "output/Stretch.h"
#include "platform/Notices.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <xcb/xcb.h>

namespace {

constexpr int SETTLE_MS = 200; // a size must rest for so long before the buffer follows it
constexpr int MIN_SIDE = 128;
constexpr QSize FIRST_SIZE(1280, 720);

void PresentToWindow(const HostBitmap *hbm, void *pv)
{
    static_cast<VisualsWindow *>(pv)->Present(hbm);
}

} // namespace

VisualsWindow::VisualsWindow()
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
        if (GlobalSettings.AutoAdjustBuffer)
            GlobalSettings.bResizePending = 1;
    });
    AddPresenter(PresentToWindow, this);
    GlobalSettings.bVisualsWindow = 1;
}

VisualsWindow::~VisualsWindow()
{
    GlobalSettings.bVisualsWindow = 0;
    RemovePresenter(PresentToWindow, this);
}

QSize VisualsWindow::DeviceSize() const
{
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

void VisualsWindow::PublishWindow()
{
    HostWindow *phw = &GlobalSettings.hwndVisuals;
    phw->bVisible = isVisible() && !isMinimized();
    phw->qwNativeId = static_cast<u64>(winId());
    phw->nWidth = DeviceSize().width();
    phw->nHeight = DeviceSize().height();
}

// The picture is made here and painted at once: a frame must not wait for the next turn of the event loop.
void VisualsWindow::Present(const HostBitmap *hbm)
{
    if (!isVisible() || isMinimized())
        return;
    if (Picture.size() != DeviceSize())
        Picture = QImage(DeviceSize(), QImage::Format_RGB32);
    StretchPicture({Picture.bits(), Picture.width(), Picture.height(), static_cast<u64>(Picture.bytesPerLine())}, hbm,
                   true);
    repaint();
}

void VisualsWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (Picture.isNull())
        painter.fillRect(rect(), Qt::black);
    else
        painter.drawImage(rect(), Picture); // one to one except between a resize and the next frame
    PaintNotices(&painter);
}

// What the user must know stands at the bottom until a click or a key says that it was read.
void VisualsWindow::PaintNotices(QPainter *pPainter)
{
    if (bNoticesRead || NoticeText().empty())
        return;
    const QString text = QString::fromStdString(NoticeText()).trimmed();
    const QRect inner = rect().adjusted(24, 24, -24, -24);
    QRect box = pPainter->boundingRect(inner, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap, text);
    pPainter->fillRect(box.adjusted(-12, -10, 12, 10), QColor(0, 0, 0, 190));
    pPainter->setPen(QColor(235, 235, 235));
    pPainter->drawText(box, Qt::AlignLeft | Qt::TextWordWrap, text);
}

void VisualsWindow::resizeEvent(QResizeEvent *)
{
    PublishWindow();
    SettleTimer.start();
}

void VisualsWindow::closeEvent(QCloseEvent *pEvent)
{
    bCloseRequested = true;
    pEvent->ignore(); // the main loop takes it down in its order
}

void VisualsWindow::keyPressEvent(QKeyEvent *pEvent)
{
    bNoticesRead = true;
    QWidget::keyPressEvent(pEvent);
}

void VisualsWindow::mouseMoveEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
}

void VisualsWindow::mousePressEvent(QMouseEvent *pEvent)
{
    bNoticesRead = true;
    TakeMouse(pEvent);
}

void VisualsWindow::mouseReleaseEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
}

// Device pixels, bottom-up like the bitmaps.
void VisualsWindow::TakeMouse(const QMouseEvent *pEvent)
{
    const QPointF place = pEvent->position() * devicePixelRatioF();
    HostWindow *phw = &GlobalSettings.hwndVisuals;
    phw->xMouse = static_cast<i32>(place.x());
    phw->yMouse = phw->nHeight - 1 - static_cast<i32>(place.y());
    // Qt's button bits are left 1, right 2, middle 4: those of the record.
    phw->dwButtons = static_cast<u32>(pEvent->buttons().toInt()) & 7;
}

bool VisualsWindow::event(QEvent *pEvent)
{
    const bool bHandled = QWidget::event(pEvent);
    switch (pEvent->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
    case QEvent::ScreenChangeInternal:
        PublishWindow();
        break;
    default:
        break;
    }
    return bHandled;
}

// A window that somebody else destroys (a window manager, a tool) is a closed one; the toolkit does not say so.
bool VisualsWindow::nativeEvent(const QByteArray &type, void *pMessage, qintptr *)
{
    if (type == "xcb_generic_event_t") {
        const auto *pDestroy = static_cast<const xcb_destroy_notify_event_t *>(pMessage);
        const bool bDestroyed = (pDestroy->response_type & 0x7F) == XCB_DESTROY_NOTIFY;
        if (bDestroyed && pDestroy->window == static_cast<xcb_window_t>(internalWinId()))
            bCloseRequested = true;
    }
    return false;
}
