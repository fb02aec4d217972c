// WindowFixture.h -- what tests of windows share: the settings' defaults around each, and a program without a display
#pragma once

#include "app/SettingsTable.h"
#include "state/GlobalSettings.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>

class WindowTest : public testing::Test {
  protected:
    static constexpr int GIVE_UP_MS = 20000;

    void SetUp() override
    {
        SetDefaultSettings();
        SetDefaultUIColors();
    }
    void TearDown() override
    {
        SetDefaultUIColors();
        QCoreApplication::processEvents();
        GlobalSettings = {};
    }
    // Serves events until it holds or the time is over; whether it holds then.
    template <typename Fn> static bool HoldsWithin(int nMs, Fn isSo)
    {
        QElapsedTimer timer;
        timer.start();
        while (!isSo() && timer.elapsed() < nMs)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return isSo();
    }
    template <typename Fn> static void WaitFor(Fn isSo)
    {
        EXPECT_TRUE(HoldsWithin(GIVE_UP_MS, isSo));
    }
};

// Before the application object: no display, and so many device pixels to one of the toolkit's.
inline void UseNoDisplay(const char *pszScale)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", pszScale);
}

inline int RunWindowTests(int argc, char **argv, const char *pszScale)
{
    testing::InitGoogleTest(&argc, argv);
    UseNoDisplay(pszScale);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}

// The same in the program's own look.
inline int RunDarkWindowTests(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    UseNoDisplay("1");
    QApplication app(argc, argv);
    InstallDarkLook(&app);
    return RUN_ALL_TESTS();
}
