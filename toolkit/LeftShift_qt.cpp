// LeftShift_qt.cpp -- whether the left Shift key is down now, the right one notwithstanding
#include "toolkit/LeftShift_qt.h"

#include "toolkit/XcbPieces_qt.h"

namespace {

constexpr xcb_keysym_t SHIFT_LEFT = 0xFFE1;

// Whether one of the keys that are held down means the symbol.
bool AnyKeyMeans(const xcb_query_keymap_reply_t &down, const xcb_get_keyboard_mapping_reply_t &map, int nFirstKey,
                 xcb_keysym_t symbol)
{
    const xcb_keysym_t *pSymbol = xcb_get_keyboard_mapping_keysyms(&map);
    const int nSymbols = xcb_get_keyboard_mapping_keysyms_length(&map);
    for (int i = 0; i < nSymbols; i++) {
        const int nKey = nFirstKey + i / map.keysyms_per_keycode;
        if (pSymbol[i] == symbol && down.keys[nKey / 8] >> nKey % 8 & 1)
            return true;
    }
    return false;
}

} // namespace

bool LeftShiftIsDown()
{
    xcb_connection_t *pConnection = XcbConnection();
    if (!pConnection)
        return QGuiApplication::queryKeyboardModifiers() & Qt::ShiftModifier;
    const xcb_setup_t *pSetup = xcb_get_setup(pConnection);
    const u8 nFirst = pSetup->min_keycode;
    const auto nKeys = static_cast<u8>(pSetup->max_keycode - nFirst + 1);
    const auto ask = xcb_query_keymap(pConnection);
    const auto askMap = xcb_get_keyboard_mapping(pConnection, nFirst, nKeys);
    const XcbReply<xcb_query_keymap_reply_t> pDown(xcb_query_keymap_reply(pConnection, ask, nullptr));
    const XcbReply<xcb_get_keyboard_mapping_reply_t> pMap(xcb_get_keyboard_mapping_reply(pConnection, askMap, nullptr));
    return pDown && pMap && pMap->keysyms_per_keycode && AnyKeyMeans(*pDown, *pMap, nFirst, SHIFT_LEFT);
}
