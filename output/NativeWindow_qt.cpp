// NativeWindow_qt.cpp -- what only the window system knows of a window
#include "output/NativeWindow_qt.h"

#include "toolkit/XcbPieces_qt.h"

#include <QWidget>

#include <algorithm>

namespace {

xcb_window_t WindowOf(const QWidget *pWindow)
{
    return static_cast<xcb_window_t>(pWindow->internalWinId());
}

} // namespace

NativeNews ReadNativeEvent(const QByteArray &type, const void *pMessage, u64 qwWindow)
{
    NativeNews news;
    if (type != "xcb_generic_event_t")
        return news;
    const auto *pEvent = static_cast<const xcb_generic_event_t *>(pMessage);
    const auto window = static_cast<xcb_window_t>(qwWindow);
    switch (pEvent->response_type & 0x7F) {
    case XCB_DESTROY_NOTIFY:
        news.bDestroyed = static_cast<const xcb_destroy_notify_event_t *>(pMessage)->window == window;
        break;
    case XCB_VISIBILITY_NOTIFY: {
        const auto *p = static_cast<const xcb_visibility_notify_event_t *>(pMessage);
        news.bVisibility = p->window == window;
        news.bCovered = p->state == XCB_VISIBILITY_FULLY_OBSCURED;
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto *p = static_cast<const xcb_property_notify_event_t *>(pMessage);
        news.bSizeHints = p->window == window && p->atom == XCB_ATOM_WM_NORMAL_HINTS;
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto *p = static_cast<const xcb_configure_notify_event_t *>(pMessage);
        if (p->window == window)
            news.size = QSize(p->width, p->height);
        break;
    }
    default:
        break;
    }
    return news;
}

u32 BitsPerPixel(int nDepth)
{
    if (xcb_connection_t *pConnection = XcbConnection())
        for (auto it = xcb_setup_pixmap_formats_iterator(xcb_get_setup(pConnection)); it.rem; xcb_format_next(&it))
            if (it.data->depth == nDepth)
                return it.data->bits_per_pixel;
    return nDepth > 16 ? 32 : nDepth > 8 ? 16 : static_cast<u32>(std::max(nDepth, 1));
}

// The toolkit's own choice of events stays.
void WatchVisibility(QWidget *pWindow)
{
    xcb_connection_t *pConnection = XcbConnection();
    if (!pConnection || !pWindow->internalWinId())
        return;
    const xcb_window_t window = WindowOf(pWindow);
    const XcbReply<xcb_get_window_attributes_reply_t> pNow(
        xcb_get_window_attributes_reply(pConnection, xcb_get_window_attributes(pConnection, window), nullptr));
    if (!pNow)
        return;
    const u32 dwMask = pNow->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(pConnection, window, XCB_CW_EVENT_MASK, &dwMask);
    xcb_flush(pConnection);
}

void AllowEverySize(QWidget *pWindow)
{
    constexpr u32 HINT_WORDS = 18; // of the size hints; the first one holds flags
    constexpr u32 STEPS = 1u << 6, BASE = 1u << 8;
    xcb_connection_t *pConnection = XcbConnection();
    if (!pConnection || !pWindow->internalWinId())
        return;
    const xcb_window_t window = WindowOf(pWindow);
    const auto pReply = XcbProperty(pConnection, window, XCB_ATOM_WM_NORMAL_HINTS, HINT_WORDS);
    if (!pReply || pReply->type != XCB_ATOM_WM_SIZE_HINTS || pReply->format != 32 || pReply->value_len == 0)
        return;
    auto *pdwHint = static_cast<u32 *>(xcb_get_property_value(pReply.get()));
    if (!(pdwHint[0] & STEPS))
        return; // this is news of our own change
    pdwHint[0] &= ~(STEPS | BASE);
    xcb_change_property(pConnection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                        32, pReply->value_len, pdwHint);
    xcb_flush(pConnection);
}

bool SetNativeClientSize(QWidget *pWindow, QSize size)
{
    xcb_connection_t *pConnection = XcbConnection();
    if (!pConnection || !pWindow->internalWinId())
        return false;
    AllowEverySize(pWindow);
    const u32 adwSize[] = {static_cast<u32>(size.width()), static_cast<u32>(size.height())};
    xcb_configure_window(pConnection, WindowOf(pWindow), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, adwSize);
    xcb_flush(pConnection);
    return true;
}
