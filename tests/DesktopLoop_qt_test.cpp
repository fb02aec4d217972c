// DesktopLoop_qt_test.cpp -- tests MainLoop_qt.cpp and VisualsWindow_qt.cpp inside the process, without a display
#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "engine/PresetManager.h"
#include "output/Presenters.h"
#include "output/VisualsWindow_qt.h"
#include "state/Folders.h"
#include "tests/WindowFixture.h"
#include "toolkit/WindowEvents_qt.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>

#include <cstring>

namespace {

u32 nFrames = 0;

u32 CountFrame(const HostBitmap *, void *)
{
    nFrames++;
    return 1;
}

class Desktop : public WindowTest {
  protected:
    void SetUp() override
    {
        InitFolders({u"/nowhere/vorticade", {}, {}});
        WindowTest::SetUp();
        GlobalSettings.nBufferWidth = GlobalSettings.nBufferHeight = 128;
        GlobalSettings.ThreadedPlanes = 0;
        GlobalSettings.pSound = &Sound;
        SwitchPreset(MakeDefaultPreset, nullptr);
        InstallFrameTimers();
        AddPresenter(CountFrame, nullptr);
        nFrames = 0;
    }
    void TearDown() override
    {
        RemovePresenter(CountFrame, nullptr);
        SwitchPreset(nullptr, nullptr);
        WindowTest::TearDown();
    }

    SoundFrame Sound = {};
};

// Opens a modal box inside the main loop, and acts when five more frames have been shown under it.
template <typename Fn> void RunModalBox(Fn act)
{
    QMessageBox box;
    KeepFramesUnder(&box);
    const u32 nBefore = nFrames;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (nFrames >= nBefore + 5)
            act(&box);
    });
    watch.start(1);
    box.exec();
}

TEST_F(Desktop, FramesGoOnUnderAModalBoxAndTheEndOfTheProgramClosesIt)
{
    u32 nBoxesClosed = 0;
    QTimer::singleShot(0, [&] {
        RunModalBox([](QMessageBox *pBox) { pBox->accept(); });
        nBoxesClosed++;
        RunModalBox([](QMessageBox *) { RequestExit(); });
        nBoxesClosed++;
    });
    QTimer::singleShot(3 * GIVE_UP_MS, [] { RequestExit(); });
    RunMainLoop();
    EXPECT_EQ(2u, nBoxesClosed);
    EXPECT_GE(nFrames, 10u);
}

void SendMouse(QWidget *pWidget, QEvent::Type eType, const QPointF &place, Qt::MouseButtons buttons,
               Qt::MouseButton ePressed = Qt::NoButton)
{
    QMouseEvent event(eType, place, pWidget->mapToGlobal(place), ePressed, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(pWidget, &event);
}

// With two device pixels to a toolkit's pixel; see main.
TEST_F(Desktop, ModulesSeeTheWindowInDevicePixelsAndChangingBetweenFramesOnly)
{
    VisualsWindow window([] {});
    window.resize(300, 200);
    window.show();
    window.PublishWindow();
    const HostWindow before = GlobalSettings.hwndVisuals;
    EXPECT_EQ(600, before.nWidth);
    EXPECT_EQ(400, before.nHeight);
    EXPECT_EQ(1u, before.bVisible);

    window.resize(301, 220);
    SendMouse(&window, QEvent::MouseButtonPress, {10, 20.5}, Qt::LeftButton, Qt::LeftButton);
    SendMouse(&window, QEvent::MouseButtonPress, {10, 20.5}, Qt::LeftButton | Qt::MiddleButton, Qt::MiddleButton);
    EXPECT_EQ(0, std::memcmp(&before, &GlobalSettings.hwndVisuals, sizeof before));
    window.PublishWindow();
    EXPECT_EQ(602, GlobalSettings.hwndVisuals.nWidth);
    EXPECT_EQ(20, GlobalSettings.hwndVisuals.xMouse);
    EXPECT_EQ(440 - 1 - 41, GlobalSettings.hwndVisuals.yMouse);
    EXPECT_EQ(5u, GlobalSettings.hwndVisuals.dwButtons);

    SendMouse(&window, QEvent::MouseMove, {-0.5, 0}, Qt::NoButton);
    window.hide();
    window.PublishWindow();
    EXPECT_EQ(-1, GlobalSettings.hwndVisuals.xMouse) << "beyond the left edge";
    EXPECT_EQ(439, GlobalSettings.hwndVisuals.yMouse);
    EXPECT_EQ(0u, GlobalSettings.hwndVisuals.dwButtons);
    EXPECT_EQ(0u, GlobalSettings.hwndVisuals.bVisible);
}

TEST_F(Desktop, AHiddenWindowTakesNoFramesAndAMovingOnePutsTheBufferOff)
{
    VisualsWindow window([] {});
    const u32 adwPixel[4] = {};
    const HostBitmap bitmap = {sizeof(HostBitmap), 2, 2, 32, 8, const_cast<u32 *>(adwPixel)};
    PresentFrame(&bitmap);
    EXPECT_EQ(0u, window.FramesOnScreen());
    window.show();
    QCoreApplication::processEvents();
    PresentFrame(&bitmap);
    EXPECT_EQ(1u, window.FramesOnScreen());
    window.hide();
    PresentFrame(&bitmap);
    EXPECT_EQ(1u, window.FramesOnScreen());

    GlobalSettings.bResizePending = 1;
    window.move(40, 30);
    window.show();
    EXPECT_EQ(0u, GlobalSettings.bResizePending);
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "2");
}
