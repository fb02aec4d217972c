// VisualsWindow_qt.h -- the window that shows the picture
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

// Shows every finished frame, stretched over its client area; keeps the modules' view of the window true; closing it
// ends the program. [main-thread]
class VisualsWindow : public QWidget {
public:
    VisualsWindow();
    ~VisualsWindow() override;
    // The window's state goes into GlobalSettings.hwndVisuals.
    void PublishWindow();
    // Takes a finished frame over to the screen.
    void Present(const HostBitmap *hbm);
    bool CloseRequested() const { return bCloseRequested; }

protected:
    void paintEvent(QPaintEvent *pEvent) override;
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
    QSize DeviceSize() const;

    QImage Picture;        // the last frame at the window's size in device pixels
    QTimer SettleTimer;    // runs while the size changes; its end asks for a new buffer size
    bool bCloseRequested = false;
    bool bNoticesRead = false;
};
