// KeptLayout.cpp -- carries the window layout from one settings file to the next in programs without windows
#include "app/KeptLayout.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <vector>

namespace {

constexpr u32 WINDOWS_MAX = 64;
constexpr u32 WINDOW_NAME_CHARS = 64;
constexpr u32 PLACEMENT_DIGITS = 88; // 44 bytes in hexadecimal
constexpr u32 RECT_DIGITS = 32;      // 16 bytes

struct KeptWindow {
    char16_t szName[WINDOW_NAME_CHARS];
    char16_t szPosition[PLACEMENT_DIGITS + 1];
    i32 bOpen;
};

struct {
    u32 bPresent; // there was a layout
    char16_t szDesktop[RECT_DIGITS + 1];
    std::vector<KeptWindow> windows;
    i32 bLockWindows;
} Kept;

} // namespace

u32 KeepLayout(XmlContext *pxc)
{
    ASSERT_MAIN_THREAD();
    Kept = {};
    Kept.bPresent = XmlReadString(pxc, u"DTRect", Kept.szDesktop);
    for (u32 i = 1; i <= WINDOWS_MAX && XmlEnterTag(pxc, NumberedTag(u"Window", i)); i++) {
        KeptWindow window = {};
        window.bOpen = 1;
        XmlReadString(pxc, u"Name", window.szName);
        XmlReadInt(pxc, u"Open", &window.bOpen);
        XmlReadString(pxc, u"Position", window.szPosition);
        Kept.windows.push_back(window);
        XmlLeaveTag(pxc);
    }
    XmlReadInt(pxc, u"LockWin", &Kept.bLockWindows);
    return 1;
}

u32 WriteKeptLayout(XmlContext *pxc)
{
    ASSERT_MAIN_THREAD();
    if (!Kept.bPresent)
        return 1;
    XmlWriteString(pxc, u"DTRect", Kept.szDesktop);
    for (u32 i = 0; i < Kept.windows.size(); i++) {
        XmlBeginTag(pxc, NumberedTag(u"Window", i + 1));
        XmlWriteString(pxc, u"Name", Kept.windows[i].szName);
        XmlWriteInt(pxc, u"Open", Kept.windows[i].bOpen);
        XmlWriteString(pxc, u"Position", Kept.windows[i].szPosition);
        XmlEndTag(pxc);
    }
    XmlWriteInt(pxc, u"LockWin", Kept.bLockWindows);
    return 1;
}
