// VisualsWindow_qt.cpp -- the window that shows the picture
#include "output/VisualsWindow_qt.h"

#include "library/Favorites.h"
#include "output/FrameRecorder.h"
#include "output/NativeWindow_qt.h"
#include "output/Presenters.h"
#include "output/RecordingDialog_qt.h"
#include "output/VisualsCommands.h"
#include "platform/Notices.h"
#include "state/GlobalSettings.h"
#include "toolkit/WindowEvents_qt.h"
#include "toolkit/WindowLayouts_qt.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>

namespace {

constexpr int SETTLE_MS = 200;        // a size must rest for so long before the buffer follows it
constexpr int POINTER_REST_MS = 3000; // in full screen a pointer that rests is in the way
constexpr int TITLE_STATUS_MS = 10000;
constexpr QSize FIRST_SIZE(1280, 720);

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

constexpr WindowKind Kind = {u"Visuals", WindowUse::Main, nullptr, &WidgetFunctions};

void ShowStatusInTitle(const char16_t *pszText, void *pv)
{
    static_cast<VisualsWindow *>(pv)->ShowStatus(QString::fromUtf16(pszText));
}

} // namespace

VisualsWindow::VisualsWindow(void (*pfn)()) : pfnClosed(pfn)
{
    setWindowTitle(QLatin1String(VISUALS_TITLE));
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
    RegisterWindow(Kind);
    RegisterWindow(RecordingDialogKind);
    FollowWindow(Kind.pszName, this);
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
    connect(&StatusTimer, &QTimer::timeout, this, [this] { setWindowTitle(QLatin1String(VISUALS_TITLE)); });
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
        .pfnClose = [](void *pv) { static_cast<VisualsWindow *>(pv)->close(); },
    });
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

// Five times a second.
void VisualsWindow::Tick()
{
    ServeFavorPresses(&bFavorPending);
    TickOverlayTexts();
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
