// VisualsWindow_qt_test.cpp -- tests VisualsWindow_qt.cpp, its overlays and its menu with simulated keys and mouse
#include "output/VisualsWindow_qt.h"

#include "engine/PresetDocument.h"
#include "output/FrameStats.h"
#include "output/Presenters.h"
#include "output/RecordingSettings.h"
#include "output/VisualsCommands.h"
#include "platform/Bitmap.h"
#include "platform/Text.h"
#include "tests/WindowFixture.h"
#include "toolkit/CommandMenus_qt.h"
#include "toolkit/WindowLayouts.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QBackingStore>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QSlider>
#include <QThread>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>

namespace {

constexpr u32 PICTURE_COLOR = 0xFF4080C0;

u32 nClosed = 0;

class Visuals : public WindowTest {
  protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        SetPresetChanged(u"Some Preset.VD", 0);
        bFullScreen = bAlwaysOnTop = 0;
        nClosed = 0;
        pWindow = std::make_unique<VisualsWindow>([] { nClosed++; });
        pWindow->resize(400, 300);
        pWindow->show();
        hbm = CreateBitmap(200, 150);
        std::fill_n(BitmapPixels(hbm), 200 * 150, PICTURE_COLOR);
        WaitFor([&] { return pWindow->windowHandle()->isExposed(); });
    }
    void TearDown() override
    {
        pWindow.reset();
        DeleteBitmap(hbm);
        WindowTest::TearDown();
    }
    void Key(int nKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier, bool bRepeat = false)
    {
        QKeyEvent press(QEvent::KeyPress, nKey, modifiers, QString(), bRepeat);
        QKeyEvent release(QEvent::KeyRelease, nKey, modifiers, QString(), bRepeat);
        QCoreApplication::sendEvent(pWindow.get(), &press);
        QCoreApplication::sendEvent(pWindow.get(), &release);
    }
    void Mouse(QEvent::Type eType, QPointF place, Qt::MouseButton eButton, Qt::MouseButtons held)
    {
        QMouseEvent event(eType, place, pWindow->mapToGlobal(place), eButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(pWindow.get(), &event);
    }
    // What the screen shows after one frame.
    QImage Shown()
    {
        PresentFrame(hbm);
        return static_cast<QImage *>(pWindow->backingStore()->paintDevice())->convertToFormat(QImage::Format_RGB32);
    }

    std::unique_ptr<VisualsWindow> pWindow;
    HostBitmap *hbm = nullptr;
};

TEST_F(Visuals, OverlaysLieOverThePictureInTheirCornersAndLeaveWithTheirKeys)
{
    EXPECT_EQ(PICTURE_COLOR, Shown().pixel(30, 10));
    for (int nKey : {Qt::Key_F, Qt::Key_R, Qt::Key_T, Qt::Key_H})
        Key(nKey);
    const QImage image = Shown();
    ASSERT_EQ(QSize(800, 600), image.size()) << "two device pixels to one of the toolkit's";
    const u32 dwDark = 0xFF000000 | (0x40 * 75 / 255) << 16 | (0x80 * 75 / 255) << 8 | (0xC0 * 75 / 255);
    EXPECT_EQ(dwDark, image.pixel(30, 16)) << "inside the metrics";
    EXPECT_EQ(PICTURE_COLOR, image.pixel(30, 580)) << "no message: nothing at the bottom left";
    const OverlayRect &name = asOverlay[OVERLAY_PRESET_NAME].rect;
    u32 nLit = 0;
    for (int x = name.x * 2; x < (name.x + name.nWidth) * 2; x++)
        for (int y = 30; y < (name.nHeight - 15) * 2; y++)
            nLit += qRed(image.pixel(x, y)) > 150;
    EXPECT_GT(nLit, 100u) << "letters in the colour of window text";

    Key(Qt::Key_F, Qt::NoModifier, true);
    Key(Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(asOverlay[OVERLAY_FRAME_RATE].bShown && asOverlay[OVERLAY_METRICS].bShown);
    for (int nKey : {Qt::Key_F, Qt::Key_R, Qt::Key_T, Qt::Key_H})
        Key(nKey);
    EXPECT_EQ(PICTURE_COLOR, Shown().pixel(30, 16));
}

TEST_F(Visuals, EveryKindOfKeyArrivesAsTheProgramKnowsIt)
{
    const i32 nRate = GlobalSettings.FPSTarget;
    Key(Qt::Key_Plus);
    EXPECT_EQ(nRate, GlobalSettings.FPSTarget);
    Key(Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_EQ(nRate + 1, GlobalSettings.FPSTarget);
    Key(Qt::Key_Tab);
    Key(Qt::Key_Space, Qt::NoModifier, true);
    EXPECT_TRUE(bStartPending && !bFavorPending);
    QKeyEvent cyrillic(QEvent::KeyPress, 0x0410, Qt::NoModifier, 41, 0, 0, QStringLiteral("а"));
    QCoreApplication::sendEvent(pWindow.get(), &cyrillic);
    EXPECT_TRUE(asOverlay[OVERLAY_FRAME_RATE].bShown) << "the key where F lies";
    Key(Qt::Key_PageUp);
    EXPECT_EQ((2 * 1 + 128) / 2, pWindow->minimumWidth());
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(pWindow.get(), &wheel);
    EXPECT_EQ(0, GlobalSettings.FrameThickness);
    bStartPending = 0;
}

TEST_F(Visuals, ADoubleClickAndEscapeTurnFullScreenOnAndOff)
{
    Mouse(QEvent::MouseButtonDblClick, {200, 150}, Qt::LeftButton, Qt::LeftButton);
    EXPECT_TRUE(bFullScreen && pWindow->isFullScreen());
    Key(Qt::Key_Escape);
    EXPECT_FALSE(bFullScreen || pWindow->isFullScreen());
    EXPECT_EQ(QSize(400, 300), pWindow->size());
    Key(Qt::Key_Escape);
    EXPECT_FALSE(pWindow->isFullScreen());
    QThread::msleep(1100);
    pWindow->showMaximized(); // as a window manager does after a double click on the caption
    WaitFor([&] { return pWindow->isFullScreen() && bFullScreen; });
    SetVisualsSize(4);
    EXPECT_EQ(QSize(640, 360), pWindow->size());
}

TEST_F(Visuals, AClickInAnOverlayIsNoModulesAndALinkOpens)
{
    static QStringList opened;
    opened.clear();
    pfnOpenAddress = [](const QUrl &url) { opened += url.toString(); };
    Key(Qt::Key_I);
    const auto sendLink = [](const char16_t *pszTarget) {
        const std::u16string text = std::u16string(u"{\\rtf1\\fs60{\\field{\\*\\fldinst HYPERLINK \"") + pszTarget +
                                    u"\"}{\\fldrslt XXXXXXXX}}}";
        ShowModuleMessage(text.c_str());
        WaitFor([&] { return text == asOverlay[OVERLAY_MESSAGES].szLastText; });
    };
    sendLink(u"http://x.y/?z=1");
    Shown();
    const OverlayRect &rect = asOverlay[OVERLAY_MESSAGES].rect;
    const QPointF onLink(rect.x + 30, rect.y + rect.nHeight / 2.0);
    Mouse(QEvent::MouseMove, onLink, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(Qt::PointingHandCursor, pWindow->cursor().shape());
    Mouse(QEvent::MouseButtonPress, onLink, Qt::LeftButton, Qt::LeftButton);
    pWindow->PublishWindow();
    EXPECT_EQ(0u, GlobalSettings.hwndVisuals.dwButtons);
    Mouse(QEvent::MouseMove, onLink, Qt::NoButton, Qt::LeftButton);
    pWindow->PublishWindow();
    EXPECT_EQ(0u, GlobalSettings.hwndVisuals.dwButtons) << "nor when it is dragged";
    Mouse(QEvent::MouseButtonDblClick, onLink, Qt::LeftButton, Qt::LeftButton);
    sendLink(u"file:///bin/true");
    Shown();
    Mouse(QEvent::MouseButtonPress, onLink, Qt::LeftButton, Qt::LeftButton);
    EXPECT_EQ(QStringList(QStringLiteral("http://x.y/?z=1")), opened) << "and never a file";
    Mouse(QEvent::MouseButtonDblClick, onLink, Qt::LeftButton, Qt::LeftButton);
    EXPECT_FALSE(bFullScreen);
    Mouse(QEvent::MouseButtonPress, {390, 10}, Qt::LeftButton, Qt::LeftButton);
    pWindow->PublishWindow();
    EXPECT_EQ(1u, GlobalSettings.hwndVisuals.dwButtons);
    Key(Qt::Key_H);
    EXPECT_TRUE(asOverlay[OVERLAY_KEY_HELP].bShown) << "keys work after a click in an overlay";
}

TEST_F(Visuals, TheMenuHasItsEntriesAndRunsThem)
{
    QMenu *pMenu = MakeCommandMenu(VisualsMenu(), pWindow.get());
    QStringList entries;
    QAction *pTop = nullptr, *pExit = nullptr;
    for (QAction *pAction : pMenu->actions()) {
        entries += pAction->isSeparator() ? QStringLiteral("-") : pAction->text();
        if (pAction->text() == QLatin1String("Always on Top"))
            pTop = pAction;
        pExit = pAction;
    }
    EXPECT_EQ(QStringLiteral("Maximize|Restore|Window Size|-|Always on Top|-|Display frame rate\tF|Display backbuffer "
                             "metrics\tR|Display preset name\tT|Display keyboard commands\tH|Display preset info\tI|-|"
                             "Screen Capture\tS|Recording|-|Exit Vorticade"),
              entries.join(QLatin1Char('|')));
    EXPECT_EQ(14, pMenu->actions()[2]->menu()->actions().size());
    ASSERT_TRUE(pTop && pExit);
    EXPECT_FALSE(pTop->isChecked());
    pTop->trigger();
    EXPECT_TRUE(bAlwaysOnTop && (pWindow->windowHandle()->flags() & Qt::WindowStaysOnTopHint));
    pExit->trigger();
    EXPECT_EQ(1u, nClosed);
    delete pMenu;
}

TEST_F(Visuals, FramesCountAlsoWhileNothingIsToBeSeenAndNotWithoutPicture)
{
    ResetFrameStats();
    const u64 nOnScreen = pWindow->FramesOnScreen();
    PresentFrame(hbm);
    pWindow->hide();
    PresentFrame(hbm);
    PresentFrame(nullptr);
    EXPECT_EQ(2u, qwFramesTotal);
    EXPECT_EQ(nOnScreen + 1, pWindow->FramesOnScreen());
}

TEST_F(Visuals, TheBufferFollowsAWindowThatRestsButNotDuringARecording)
{
    const auto settle = [&] {
        pWindow->resize(pWindow->width() + 2, 300);
        EXPECT_EQ(0u, GlobalSettings.bResizePending);
        HoldsWithin(700, [] { return GlobalSettings.bResizePending != 0; });
        const u32 bAsked = GlobalSettings.bResizePending;
        GlobalSettings.bResizePending = 0;
        return bAsked;
    };
    qwFramesTotal = 5;
    EXPECT_TRUE(settle());
    EXPECT_EQ(0u, qwFramesTotal);
    GlobalSettings.AutoAdjustBuffer = 0;
    EXPECT_FALSE(settle());
    GlobalSettings.AutoAdjustBuffer = GlobalSettings.bRecording = 1;
    EXPECT_FALSE(settle());
    GlobalSettings.bResizePending = 1; // the recorder's own
    EXPECT_TRUE(settle()) << "put off, not forgotten";
    GlobalSettings.bRecording = 0;
}

TEST_F(Visuals, TheRecordingDialogStoresWithOkAndItsSliderAtOnce)
{
    StoreRecordingChoice({RECORD_METHOD_KEYSTROKES, 640, 480, 500, u"/no/such/folder", u"a-%03d.png"});
    RunWindowCommand(u"RecordingOptions", static_cast<QWidget *>(pWindow.get()));
    auto *pDialog = pWindow->findChild<QDialog *>();
    RunWindowCommand(u"RecordingOptions", static_cast<QWidget *>(pWindow.get()));
    ASSERT_EQ(1, pWindow->findChildren<QDialog *>().size());
    EXPECT_TRUE(pDialog->findChild<QLineEdit *>("demo")->text().startsWith("/no/such/folder/a-"));
    EXPECT_EQ("The frame folder does not exist.", pDialog->findChild<QLabel *>("trouble")->text());
    const auto click = [&](const char *pszText) {
        for (QAbstractButton *pButton : pDialog->findChildren<QAbstractButton *>())
            if (pButton->text() == QLatin1String(pszText))
                return pButton->click();
        ADD_FAILURE() << pszText;
    };
    click("Record animations using Vorticade Frame Recorder");
    click("4K");
    click("Rotate");
    pDialog->findChild<QLineEdit *>("format")->setText("b-%s.png");
    click("Demo");
    EXPECT_TRUE(pDialog->findChild<QLineEdit *>("demo")->text().contains("%d"));
    pDialog->findChild<QSlider *>()->setValue(40);
    EXPECT_EQ(40, GlobalSettings.FrameRecordDelay);
    EXPECT_EQ(640, GlobalSettings.FrameRecordWidth);
    click("OK");
    EXPECT_EQ(2160, GlobalSettings.FrameRecordWidth);
    EXPECT_EQ(3840, GlobalSettings.FrameRecordHeight);
    EXPECT_EQ(RECORD_METHOD_FRAMES, GlobalSettings.FrameRecordMethod);
    EXPECT_EQ("b-%s.png", ToUtf8(GlobalSettings.FrameRecordFormat));
    EXPECT_TRUE(RecordingCanBeAsked());
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "2");
}
