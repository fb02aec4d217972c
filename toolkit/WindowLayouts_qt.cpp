// WindowLayouts_qt.cpp -- the toolkit's windows in the table of windows
#include "toolkit/WindowLayouts_qt.h"

#include <QEvent>
#include <QWidget>

namespace {

QWidget *Of(void *hWnd)
{
    return static_cast<QWidget *>(hWnd);
}

// Windows that come up beside the one in use leave the keyboard where it is.
void ShowWidget(void *hWnd, u32 bFocus)
{
    QWidget *pWindow = Of(hWnd);
    pWindow->setAttribute(Qt::WA_ShowWithoutActivating, !bFocus);
    pWindow->setWindowState(pWindow->windowState() & ~Qt::WindowMinimized);
    pWindow->show();
    if (!bFocus)
        return;
    pWindow->raise();
    pWindow->activateWindow();
}

void CloseWidget(void *hWnd)
{
    Of(hWnd)->close();
}

u32 GetWidgetRect(void *hWnd, WindowRect *prc)
{
    const QWidget *pWindow = Of(hWnd);
    if (pWindow->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen))
        return 0;
    const QRect frame = pWindow->frameGeometry();
    *prc = {frame.left(), frame.top(), frame.left() + frame.width(), frame.top() + frame.height()};
    return 1;
}

// The frame's thickness is known once the window system has made one; before that it is 0.
void SetWidgetRect(void *hWnd, const WindowRect &rc)
{
    QWidget *pWindow = Of(hWnd);
    const QSize frame = pWindow->frameGeometry().size() - pWindow->size();
    pWindow->move(rc.left, rc.top);
    pWindow->resize(QSize(rc.right - rc.left, rc.bottom - rc.top) - frame);
}

// Tells the table what happens to a window. Belongs to it.
class WindowFollower : public QObject {
  public:
    explicit WindowFollower(QWidget *pWindow) : QObject(pWindow)
    {
        pWindow->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject *pObject, QEvent *pEvent) override
    {
        if (pObject != parent())
            return false;
        if (pEvent->type() == QEvent::Move || pEvent->type() == QEvent::Resize)
            WindowMoved(static_cast<QWidget *>(pObject));
        // Not what the window system hides: a minimised window is open.
        if (pEvent->type() == QEvent::Hide && !pEvent->spontaneous())
            WindowClosed(static_cast<QWidget *>(pObject));
        return false;
    }
};

} // namespace

const WindowFunctions WidgetFunctions = {ShowWidget, CloseWidget, GetWidgetRect, SetWidgetRect};

void FollowWindow(const char16_t *pszName, QWidget *pWindow)
{
    new WindowFollower(pWindow);
    QObject::connect(pWindow, &QObject::destroyed, [pWindow] { WindowGone(pWindow); });
    WindowMade(pszName, pWindow);
}
