// HiddenGLWindows.cpp -- the table of hidden OpenGL windows, one per module instance that needs OpenGL
#include "modules/HiddenGLWindows.h"

#include "platform/GLWindow.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <iterator>

namespace {

HostGLWindow *ahwndGL[HIDDEN_GL_WINDOWS_MAX]; // null: empty

} // namespace

HostGLWindow *CreateHiddenGLWindow()
{
    ASSERT_MAIN_THREAD();
    const auto itEmpty = std::find(std::begin(ahwndGL), std::end(ahwndGL), nullptr);
    if (itEmpty == std::end(ahwndGL))
        return nullptr;
    return *itEmpty = CreateGLWindow(GlobalSettings.nBufferWidth, GlobalSettings.nBufferHeight);
}

void DestroyHiddenGLWindow(HostGLWindow *hwndGL)
{
    ASSERT_MAIN_THREAD();
    if (!hwndGL)
        return;
    std::replace(std::begin(ahwndGL), std::end(ahwndGL), hwndGL, static_cast<HostGLWindow *>(nullptr));
    DestroyGLWindow(hwndGL);
}

void ResizeHiddenGLWindows(i32 nWidth, i32 nHeight)
{
    ASSERT_MAIN_THREAD();
    for (HostGLWindow *hwndGL : ahwndGL)
        if (hwndGL)
            ResizeGLWindow(hwndGL, nWidth, nHeight);
}
