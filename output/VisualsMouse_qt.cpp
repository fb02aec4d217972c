// VisualsMouse_qt.cpp -- the mouse in the visuals window: the modules' view of it, links, the menu, the pointer
#include "output/VisualsWindow_qt.h"

#include "output/VisualsCommands.h"
#include "platform/Notices.h"
#include "toolkit/CommandMenus_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QMenu>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QtMath>

namespace {

// What a module writes is not trusted: only addresses for a browser or a mail program are opened, never files.
void OpenLink(const QString &text)
{
    const QUrl url = QUrl::fromUserInput(text);
    static const QStringList schemes = {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("ftp"),
                                        QStringLiteral("mailto")};
    if (schemes.contains(url.scheme()))
        pfnOpenAddress(url);
}

// The toolkit's button bits are left 1, right 2, middle 4: those of the modules' record.
u32 ButtonsOf(Qt::MouseButtons buttons)
{
    return static_cast<u32>(buttons.toInt()) & 7;
}

} // namespace

void (*pfnOpenAddress)(const QUrl &url) = [](const QUrl &url) { QDesktopServices::openUrl(url); };

void VisualsWindow::TakeMouse(const QMouseEvent *pEvent)
{
    const QPointF place = pEvent->position() * devicePixelRatioF();
    MousePlace = QPoint(qFloor(place.x()), qFloor(place.y()));
    dwMouseButtons &= ButtonsOf(pEvent->buttons()); // what was released; a press says itself that it is a module's
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
        SetVisualsFullScreen(!bFullScreen);
}

void VisualsWindow::wheelEvent(QWheelEvent *pEvent)
{
    HandleVisualsWheel(WheelDeltaOf(*pEvent));
    TickOverlayTexts();
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
    MakeCommandMenu(VisualsMenu(), this)->popup(place);
}
