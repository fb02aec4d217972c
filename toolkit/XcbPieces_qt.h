// XcbPieces_qt.h -- what all that asks the X server itself begins with
#pragma once

#include "platform/BaseTypes.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

// The toolkit's own connection; null on other systems than X11. [main-thread]
inline xcb_connection_t *XcbConnection()
{
    const auto *pX11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return pX11 ? pX11->connection() : nullptr;
}

struct XcbReplyDeleter {
    void operator()(void *pv) const
    {
        std::free(pv);
    }
};
// An answer of the server; null: it refused or is gone.
template <typename T> using XcbReply = std::unique_ptr<T, XcbReplyDeleter>;

// XCB_ATOM_NONE: nobody on this server has asked for such a name yet.
inline xcb_atom_t XcbAtom(xcb_connection_t *pConnection, const char *pszName)
{
    const XcbReply<xcb_intern_atom_reply_t> pReply(xcb_intern_atom_reply(
        pConnection, xcb_intern_atom(pConnection, 1, static_cast<u16>(std::strlen(pszName)), pszName), nullptr));
    return pReply ? pReply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// The first nWords words of a property; its type is whatever stands there.
inline XcbReply<xcb_get_property_reply_t> XcbProperty(xcb_connection_t *pConnection, xcb_window_t window,
                                                      xcb_atom_t atom, u32 nWords)
{
    return XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(
        pConnection, xcb_get_property(pConnection, 0, window, atom, XCB_ATOM_ANY, 0, nWords), nullptr));
}
