// VisualsWindow_qt.h -- the window that shows the picture
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <QImage>
#include <QPoint>
#include <QTimer>
#include <QWidget>

// Shows every finished frame, stretched over its client area; keeps the modules' view of the window true. [main-thread]
class VisualsWindow : public QWidget {
  public:
    // pfnClosed is called when the window is closed, or destroyed from outside; it may be called more than once.
    explicit VisualsWindow(void (*pfnClosed)());
    ~VisualsWindow() override;
    // The window's state goes into GlobalSettings.hwndVisuals. Between frames only.
    void PublishWindow() const;
    // Takes a finished frame over to the screen; nothing while no part of the window can be seen.
    void Present(const HostBitmap *hbm);
    // Frames that went to the screen.
    u64 FramesOnScreen() const
    {
        return nFramesOnScreen;
    }

  protected:
    void paintEvent(QPaintEvent *pEvent) override;
    void moveEvent(QMoveEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;
    void closeEvent(QCloseEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void mouseMoveEvent(QMouseEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseReleaseEvent(QMouseEvent *pEvent) override;
    bool event(QEvent *pEvent) override;
    bool nativeEvent(const QByteArray &type, void *pMessage, qintptr *pResult) override;

  private:
    void PaintNotices(QPainter *pPainter);
    void TakeMouse(const QMouseEvent *pEvent);
    void PlaceChanged();
    QSize DeviceSize() const;
    bool IsOnScreen() const;

    void (*pfnClosed)();
    QImage Picture;     // the last frame at the window's size in device pixels
    QTimer SettleTimer; // runs while the window is moved or sized; its end asks for a new buffer size
    QPoint MousePlace;  // device pixels from the top left
    u32 dwMouseButtons = 0;
    u64 nFramesOnScreen = 0;
    u32 nNoticesRead = 0; // notices that stood there when the user last pressed something
};
