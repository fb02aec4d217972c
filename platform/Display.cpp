// Display.cpp -- is there a screen to show windows on
#include "platform/Display.h"

#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <xcb/xcb.h>

namespace {

bool X11Answers()
{
    const char *pszDisplay = std::getenv("DISPLAY");
    if (!pszDisplay || !*pszDisplay)
        return false;
    xcb_connection_t *pConnection = xcb_connect(nullptr, nullptr);
    const bool bAnswers = xcb_connection_has_error(pConnection) == 0;
    xcb_disconnect(pConnection);
    return bAnswers;
}

bool WaylandSocketExists()
{
    const char *pszDisplay = std::getenv("WAYLAND_DISPLAY");
    const char *pszRuntime = std::getenv("XDG_RUNTIME_DIR");
    if (!pszDisplay || !*pszDisplay)
        return false;
    const std::string sPath = *pszDisplay == '/' ? pszDisplay : std::string(pszRuntime ? pszRuntime : "") + "/" + pszDisplay;
    struct stat st;
    return stat(sPath.c_str(), &st) == 0;
}

} // namespace

DisplayKind FindDisplay()
{
    if (X11Answers())
        return DisplayKind::X11;
    return WaylandSocketExists() ? DisplayKind::Wayland : DisplayKind::None;
}
