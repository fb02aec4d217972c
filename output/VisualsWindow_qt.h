// VisualsWindow_qt.h -- the window that shows the picture
#pragma once

#include "include/hosttypes.h"
#include "output/OverlayPainter_qt.h"
#include "platform/BaseTypes.h"

#include <QAbstractNativeEventFilter>
#include <QImage>
#include <QPoint>
#include <QTimer>
#include <QUrl>
#include <QWidget>

inline constexpr char VISUALS_TITLE[] = "Visuals Window";

// Opens an address in the user's browser or mail program; exchanged by tests.
extern void (*pfnOpenAddress)(const QUrl &url);

// Shows every finished frame, stretched over its client area, with the overlays over it; turns keys and the mouse into
// commands; keeps the modules' view of the window true. [main-thread]
class VisualsWindow : public QWidget, private QAbstractNativeEventFilter {
  public:
    // pfnClosed is called when the window is closed, or destroyed from outside; it may be called more than once.
    explicit VisualsWindow(void (*pfnClosed)());
    ~VisualsWindow() override;
    // The window's state goes into GlobalSettings.hwndVisuals. Between frames only.
    void PublishWindow() const;
    // Takes a finished frame over to the screen; nothing is drawn while no part of the window can be seen. Non-zero:
    // the frame counts as shown.
    u32 Present(const HostBitmap *hbm);
    // Shows for a while in the title how a recording goes.
    void ShowStatus(const QString &text);
    // Frames that went to the screen.
    u64 FramesOnScreen() const
    {
        return nFramesOnScreen;
    }

  protected:
    void paintEvent(QPaintEvent *pEvent) override;
    void showEvent(QShowEvent *pEvent) override;
    void moveEvent(QMoveEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;
    void closeEvent(QCloseEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void keyReleaseEvent(QKeyEvent *pEvent) override;
    void wheelEvent(QWheelEvent *pEvent) override;
    void mouseMoveEvent(QMouseEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseReleaseEvent(QMouseEvent *pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent *pEvent) override;
    void contextMenuEvent(QContextMenuEvent *pEvent) override;
    void changeEvent(QEvent *pEvent) override;
    bool event(QEvent *pEvent) override;
    bool focusNextPrevChild(bool bNext) override;
    void focusOutEvent(QFocusEvent *pEvent) override;
    bool nativeEventFilter(const QByteArray &type, void *pMessage, qintptr *pResult) override;

  private:
    void ConnectTimers();
    void InstallHooks();
    void Tick();
    // VisualsPicture_qt.cpp
    bool ComposeDirectly();
    bool ComposeAside(QPainter *pPainter);
    void Compose(const StretchTarget &target, const HostBitmap *hbm);
    void TickOverlayTexts();
    // VisualsNotices_qt.cpp
    void PaintNotices(QPainter *pPainter);
    // VisualsMouse_qt.cpp
    void TakeMouse(const QMouseEvent *pEvent);
    void ShowPointer(const QPointF &place);
    void OpenMenu(const QPoint &place);
    // VisualsPlace_qt.cpp
    QSize DeviceSize() const;
    bool IsOnScreen() const;
    void PlaceChanged();
    void Settled();
    void AskForSizeAgain();
    void SetFullScreen(bool bOn);
    void SetClientSize(QSize size);
    void SetTopmost(bool bOn);
    void FrameChanged();
    void ScreenRemoved(QScreen *pGone);
    void MoveToFirstScreen();
    void ScreenChanged();

    void (*pfnClosed)();
    OverlayPainter Overlays;
    const HostBitmap *hbmPresented = nullptr; // during Present
    QImage Picture;                           // for paint requests that do not come from Present
    QSize NativeSize;                         // client area as the window system told it; invalid: unknown
    QTimer SettleTimer; // runs while the window is moved or sized; its end asks for a new buffer size
    QTimer OverlayTimer;
    QTimer StatusTimer;
    QTimer PointerTimer; // its end hides the pointer in full screen
    QPoint MousePlace;   // device pixels from the top left
    u32 dwMouseButtons = 0;
    u64 nFramesOnScreen = 0;
    u64 qwLeftFullScreen = 0; // tick
    QSize AskedSize;          // by the menu, until it has been looked at; invalid: none
    bool bResizeOwed = false; // a resize of the buffer that a move of the window put off
    u64 qwPresented = 0;      // tick of the last frame
    bool bCovered = false;
    bool bDrawn = false; // the frame that is being presented
};
