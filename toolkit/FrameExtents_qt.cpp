// FrameExtents_qt.cpp -- the frame that the window manager puts around a window, before and after it is shown
#include "toolkit/FrameExtents_qt.h"

#include "toolkit/XcbPieces_qt.h"

#include <QElapsedTimer>
#include <QScreen>
#include <QThread>
#include <QWidget>
#include <QWindow>

namespace {

constexpr qint64 ANSWER_MS = 60; // a window manager that answers does so within a few
constexpr unsigned long ASK_AGAIN_MS = 2;
constexpr u32 EXTENTS = 4;           // left, right, top, bottom
constexpr u32 SUPPORTED_MOST = 1024; // names

xcb_window_t RootWindow(xcb_connection_t *pConnection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(pConnection)).data->root;
}

bool ReadExtents(xcb_connection_t *pConnection, xcb_window_t window, xcb_atom_t atom, QMargins *pExtents)
{
    const auto pReply = XcbProperty(pConnection, window, atom, EXTENTS);
    if (!pReply || pReply->format != 32 || pReply->value_len < EXTENTS)
        return false;
    const auto *pn = static_cast<const i32 *>(xcb_get_property_value(pReply.get()));
    *pExtents = QMargins(pn[0], pn[2], pn[1], pn[3]);
    return true;
}

// Whether a window manager says that it answers.
bool Answers(xcb_connection_t *pConnection, xcb_atom_t request)
{
    const auto pReply =
        XcbProperty(pConnection, RootWindow(pConnection), XcbAtom(pConnection, "_NET_SUPPORTED"), SUPPORTED_MOST);
    if (!pReply || pReply->format != 32)
        return false;
    const auto *pAtom = static_cast<const xcb_atom_t *>(xcb_get_property_value(pReply.get()));
    for (u32 i = 0; i < pReply->value_len; i++)
        if (pAtom[i] == request)
            return true;
    return false;
}

void AskForExtents(xcb_connection_t *pConnection, xcb_window_t window, xcb_atom_t request)
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = request;
    xcb_send_event(pConnection, 0, RootWindow(pConnection),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(pConnection);
}

// The toolkit's own rectangles in device pixels: its screens begin at whole device pixels.
QRect ToDevice(const QRect &rc, const QScreen *pScreen)
{
    const qreal fRatio = pScreen->devicePixelRatio();
    const QPoint origin = pScreen->geometry().topLeft();
    const QPoint place = origin + (QPointF(rc.topLeft() - origin) * fRatio).toPoint();
    return QRect(place, (QSizeF(rc.size()) * fRatio).toSize());
}

QRect FromDevice(const QRect &rc, const QScreen *pScreen)
{
    const qreal fRatio = pScreen->devicePixelRatio();
    const QPoint origin = pScreen->geometry().topLeft();
    const QPoint place = origin + (QPointF(rc.topLeft() - origin) / fRatio).toPoint();
    return QRect(place, (QSizeF(rc.size()) / fRatio).toSize());
}

} // namespace

QMargins FrameExtents(QWidget *pWindow)
{
    xcb_connection_t *pConnection = XcbConnection();
    if (!pConnection)
        return {};
    const auto window = static_cast<xcb_window_t>(pWindow->winId());
    const xcb_atom_t extents = XcbAtom(pConnection, "_NET_FRAME_EXTENTS");
    const xcb_atom_t request = XcbAtom(pConnection, "_NET_REQUEST_FRAME_EXTENTS");
    QMargins answer;
    if (extents == XCB_ATOM_NONE || ReadExtents(pConnection, window, extents, &answer))
        return answer;
    if (request == XCB_ATOM_NONE || !Answers(pConnection, request))
        return answer;
    AskForExtents(pConnection, window, request);
    QElapsedTimer timer;
    timer.start();
    while (!ReadExtents(pConnection, window, extents, &answer) && timer.elapsed() < ANSWER_MS)
        QThread::msleep(ASK_AGAIN_MS);
    return answer;
}

void SetFrameRect(QWidget *pWindow, const QRect &rcFrame)
{
    const QRect rcClient = rcFrame.marginsRemoved(FrameExtents(pWindow));
    const QScreen *pScreen = QGuiApplication::screenAt(rcFrame.center());
    pScreen = pScreen ? pScreen : pWindow->screen();
    pWindow->setGeometry(FromDevice(rcClient, pScreen));
}

QRect FrameRectOf(QWidget *pWindow)
{
    return ToDevice(pWindow->geometry(), pWindow->screen()).marginsAdded(FrameExtents(pWindow));
}

QRect WorkAreaOf(const QWidget *pWindow)
{
    return ToDevice(pWindow->screen()->availableGeometry(), pWindow->screen());
}
