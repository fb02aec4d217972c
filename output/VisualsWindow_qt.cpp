// VisualsWindow_qt.cpp -- the window that shows the picture
#include "output/VisualsWindow_qt.h"

#include "engine/PresetManager.h"
#include "library/Favorites.h"
#include "output/FrameRecorder.h"
#include "output/FrameStats.h"
#include "output/NativeWindow_qt.h"
#include "output/Presenters.h"
#include "output/RecordingDialog_qt.h"
#include "output/VisualsCommands.h"
#include "output/VisualsMenu_qt.h"
#include "output/mixer/Stretch.h"
#include "platform/Clock.h"
#include "platform/Notices.h"
#include "state/GlobalSettings.h"
#include "toolkit/WindowEvents_qt.h"

#include <QApplication>
#include <QBackingStore>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int SETTLE_MS = 200;        // a size must rest for so long before the buffer follows it
constexpr int POINTER_REST_MS = 3000; // in full screen a pointer that rests is in the way
constexpr u64 FRAMES_STAY_AWAY_MS = 100;
constexpr u64 LEAVING_MS = 1000; // a window manager that maximises so soon after full screen was not asked to
constexpr int TITLE_STATUS_MS = 10000;
constexpr QSize FIRST_SIZE(1280, 720);
constexpr char TITLE[] = "Visuals Window";

u32 PresentToWindow(const HostBitmap *hbm, void *pv)
{
    return static_cast<VisualsWindow *>(pv)->Present(hbm);
}

// A notice must also show while a module that hangs keeps frames from coming.
void RepaintWindows(void *)
{
    for (QWidget *pWindow : QApplication::topLevelWidgets())
        pWindow->update();
}

void ShowStatusInTitle(const char16_t *pszText, void *pv)
{
    static_cast<VisualsWindow *>(pv)->ShowStatus(QString::fromUtf16(pszText));
}

// What a module writes is not trusted: only addresses for a browser or a mail program are opened, never files.
void OpenLink(const QString &text)
{
    const QUrl url = QUrl::fromUserInput(text);
    static const QStringList schemes = {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("ftp"),
                                        QStringLiteral("mailto")};
    if (schemes.contains(url.scheme()))
        pfnOpenAddress(url);
}

const HostBitmap *CurrentPicture()
{
    const PresetState *lppsi = CurrentPreset();
    return lppsi && lppsi->phbmOutput ? *lppsi->phbmOutput : nullptr;
}

// The toolkit's button bits are left 1, right 2, middle 4: those of the modules' record.
u32 ButtonsOf(Qt::MouseButtons buttons)
{
    return static_cast<u32>(buttons.toInt()) & 7;
}

bool HasPlainPixels(const QImage &image)
{
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied ||
           image.format() == QImage::Format_ARGB32;
}

StretchTarget TargetOf(QImage *pImage, QSize size)
{
    return {pImage->bits(), std::min(size.width(), pImage->width()), std::min(size.height(), pImage->height()),
            static_cast<u64>(pImage->bytesPerLine())};
}

} // namespace

void (*pfnOpenAddress)(const QUrl &url) = [](const QUrl &url) { QDesktopServices::openUrl(url); };

VisualsWindow::VisualsWindow(void (*pfn)()) : pfnClosed(pfn)
{
    setWindowTitle(QLatin1String(TITLE));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    FrameChanged();
    resize(FIRST_SIZE.boundedTo(screen()->availableSize()));
    nDisplayBits = BitsPerPixel(screen()->depth());
    ResetOverlays();
    qApp->installNativeEventFilter(this);
    ConnectTimers();
    InstallHooks();
    AddPresenter(PresentToWindow, this);
    GlobalSettings.bVisualsWindow = 1;
    NoticeListeners.Add(RepaintWindows);
    RecorderStatusListeners.Add(ShowStatusInTitle, this);
}

VisualsWindow::~VisualsWindow()
{
    qApp->removeNativeEventFilter(this);
    NoticeListeners.Remove(RepaintWindows);
    RecorderStatusListeners.Remove(ShowStatusInTitle, this);
    GlobalSettings.bVisualsWindow = 0;
    GlobalSettings.hwndVisuals.bVisible = 0;
    GlobalSettings.hwndVisuals.qwNativeId = 0;
    RemovePresenter(PresentToWindow, this);
    SetVisualsWindowHooks({});
}

void VisualsWindow::ConnectTimers()
{
    SettleTimer.setSingleShot(true);
    SettleTimer.setInterval(SETTLE_MS);
    connect(&SettleTimer, &QTimer::timeout, this, [this] { Settled(); });
    PointerTimer.setSingleShot(true);
    PointerTimer.setInterval(POINTER_REST_MS);
    connect(&PointerTimer, &QTimer::timeout, this, [this] {
        if (bFullScreen)
            setCursor(Qt::BlankCursor);
    });
    StatusTimer.setSingleShot(true);
    StatusTimer.setInterval(TITLE_STATUS_MS);
    connect(&StatusTimer, &QTimer::timeout, this, [this] { setWindowTitle(QLatin1String(TITLE)); });
    connect(&OverlayTimer, &QTimer::timeout, this, [this] { Tick(); });
    OverlayTimer.start(OVERLAY_TICK_MS);
    connect(qApp, &QGuiApplication::screenRemoved, this, [this](QScreen *pGone) { ScreenRemoved(pGone); });
}

void VisualsWindow::InstallHooks()
{
    SetVisualsWindowHooks({
        .pvWindow = this,
        .pfnSetFullScreen = [](void *pv, u32 bOn) { static_cast<VisualsWindow *>(pv)->SetFullScreen(bOn); },
        .pfnSetClientSize =
            [](void *pv, i32 w, i32 h) {
                static_cast<VisualsWindow *>(pv)->SetClientSize({w, h});
            },
        .pfnSetTopmost = [](void *pv, u32 bOn) { static_cast<VisualsWindow *>(pv)->SetTopmost(bOn); },
        .pfnFrameChanged = [](void *pv) { static_cast<VisualsWindow *>(pv)->FrameChanged(); },
        .pfnRecordingOptions = [](void *pv) { ShowRecordingDialog(static_cast<VisualsWindow *>(pv)); },
        .pfnClose = [](void *pv) { static_cast<VisualsWindow *>(pv)->close(); },
    });
}

// The last status leaves after a while.
void VisualsWindow::ShowStatus(const QString &text)
{
    setWindowTitle(QLatin1String(TITLE) + QStringLiteral(" - ") + text);
    StatusTimer.start();
}

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

// The picture is painted at once: a frame must not wait for the next turn of the event loop.
u32 VisualsWindow::Present(const HostBitmap *hbm)
{
    qwPresented = TickCount();
    if (!IsOnScreen())
        return 1;
    hbmPresented = hbm;
    bDrawn = false;
    repaint();
    hbmPresented = nullptr;
    nFramesOnScreen += bDrawn;
    return bDrawn;
}

void VisualsWindow::Compose(const StretchTarget &target, const HostBitmap *hbm)
{
    StretchPicture(target, hbm, true);
    Overlays.Paint(target, devicePixelRatioF());
}

// Straight into the pixels that the toolkit hands to the window system: one copy less for every frame.
bool VisualsWindow::ComposeDirectly()
{
    QPaintDevice *pDevice = backingStore() ? backingStore()->paintDevice() : nullptr;
    if (!hbmPresented || !pDevice || pDevice->devType() != QInternal::Image)
        return false;
    auto *pImage = static_cast<QImage *>(pDevice);
    if (!HasPlainPixels(*pImage))
        return false;
    Compose(TargetOf(pImage, DeviceSize()), hbmPresented);
    return true;
}

// Where the toolkit's own pixels are out of reach, and for paint requests between frames.
bool VisualsWindow::ComposeAside(QPainter *pPainter)
{
    const HostBitmap *hbm = hbmPresented ? hbmPresented : CurrentPicture();
    if (Picture.size() != DeviceSize())
        Picture = QImage(DeviceSize(), QImage::Format_RGB32);
    if (!hbm || Picture.isNull())
        return false;
    Compose(TargetOf(&Picture, DeviceSize()), hbm);
    Picture.setDevicePixelRatio(devicePixelRatioF());
    pPainter->drawImage(QPoint(0, 0), Picture);
    return true;
}

void VisualsWindow::paintEvent(QPaintEvent *)
{
    bDrawn = ComposeDirectly();
    if (bDrawn && NoticeText().empty())
        return;
    QPainter painter(this);
    if (!bDrawn)
        bDrawn = ComposeAside(&painter);
    if (!bDrawn)
        painter.fillRect(rect(), Qt::black);
    PaintNotices(&painter);
}

// What the user must know stands at the bottom until a click or a key says that it was read.
void VisualsWindow::PaintNotices(QPainter *pPainter)
{
    if (NoticeText().empty())
        return;
    const QString text = QString::fromStdString(NoticeText()).trimmed();
    const QRect inner = rect().adjusted(24, 24, -24, -24);
    QRect box = pPainter->boundingRect(inner, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap, text);
    pPainter->fillRect(box.adjusted(-12, -10, 12, 10), QColor(0, 0, 0, 190));
    pPainter->setPen(QColor(235, 235, 235));
    pPainter->drawText(box, Qt::AlignLeft | Qt::TextWordWrap, text);
}

// Five times a second.
void VisualsWindow::Tick()
{
    ServeFavorPresses(&bFavorPending);
    TickOverlayTexts();
}

void VisualsWindow::TickOverlayTexts()
{
    TickOverlays({width(), height(), &Overlays, OverlayPainter::Measure});
    Overlays.Prepare(devicePixelRatioF());
    if (Overlays.IsOutOfDate(devicePixelRatioF()) && TickCount() - qwPresented > FRAMES_STAY_AWAY_MS)
        update(); // no frame comes that would bring them along
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

void VisualsWindow::closeEvent(QCloseEvent *pEvent)
{
    pEvent->ignore(); // the main loop takes it down in its order
    pfnClosed();
}

void VisualsWindow::keyPressEvent(QKeyEvent *pEvent)
{
    DismissNotices();
    if (HandleVisualsKey(KeyEventOf(*pEvent)))
        TickOverlayTexts();
}

void VisualsWindow::keyReleaseEvent(QKeyEvent *pEvent)
{
    HandleVisualsKey(KeyEventOf(*pEvent));
}

void VisualsWindow::focusOutEvent(QFocusEvent *pEvent)
{
    ForgetVisualsKeys();
    QWidget::focusOutEvent(pEvent);
}

// The tabulator is a key of ours, not a way to the next field.
bool VisualsWindow::focusNextPrevChild(bool)
{
    return false;
}

void VisualsWindow::wheelEvent(QWheelEvent *pEvent)
{
    HandleVisualsWheel(WheelDeltaOf(*pEvent));
    TickOverlayTexts();
}

void VisualsWindow::ShowPointer(const QPointF &place)
{
    if (Overlays.LinkAt(place).isEmpty())
        unsetCursor();
    else
        setCursor(Qt::PointingHandCursor);
    PointerTimer.start();
}

void VisualsWindow::mouseMoveEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
    ShowPointer(pEvent->position());
}

// A press on an overlay is no module's.
void VisualsWindow::mousePressEvent(QMouseEvent *pEvent)
{
    DismissNotices();
    TakeMouse(pEvent);
    if (OverlayPainter::OverlayAt(pEvent->position()) == OVERLAYS)
        dwMouseButtons |= ButtonsOf(pEvent->button());
    else if (pEvent->button() == Qt::LeftButton)
        OpenLink(Overlays.LinkAt(pEvent->position()));
    if (pEvent->button() == Qt::RightButton)
        OpenMenu(pEvent->globalPosition().toPoint());
}

void VisualsWindow::mouseReleaseEvent(QMouseEvent *pEvent)
{
    TakeMouse(pEvent);
}

void VisualsWindow::mouseDoubleClickEvent(QMouseEvent *pEvent)
{
    const bool bOnPicture = OverlayPainter::OverlayAt(pEvent->position()) == OVERLAYS;
    if (pEvent->button() != Qt::LeftButton)
        mousePressEvent(pEvent);
    else if (bOnPicture)
        RunVisualsCommand(VisualsCommand::ToggleFullScreen, 0);
}

// The menu key; the mouse's right button was seen before.
void VisualsWindow::contextMenuEvent(QContextMenuEvent *pEvent)
{
    if (pEvent->reason() != QContextMenuEvent::Mouse)
        OpenMenu(pEvent->globalPos());
}

// Its own loop is none: frames go on under it. The release of the button that opened it goes to the menu.
void VisualsWindow::OpenMenu(const QPoint &place)
{
    dwMouseButtons = 0;
    unsetCursor();
    BuildVisualsMenu(this)->popup(place);
}

void VisualsWindow::TakeMouse(const QMouseEvent *pEvent)
{
    const QPointF place = pEvent->position() * devicePixelRatioF();
    MousePlace = QPoint(qFloor(place.x()), qFloor(place.y()));
    dwMouseButtons &= ButtonsOf(pEvent->buttons()); // what was released; a press says itself that it is a module's
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
        RunVisualsCommand(VisualsCommand::FullScreenOn, 0);
    else
        bFullScreen = isFullScreen();
}

// Another screen may have another pixel ratio and depth.
void VisualsWindow::ScreenChanged()
{
    nDisplayBits = BitsPerPixel(screen()->depth());
    FrameChanged();
    PlaceChanged();
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
