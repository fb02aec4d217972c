// main_qt.cpp -- vorticade: the desktop program
#include "app/DesktopOptions.h"
#include "app/GlobalSettings.h"
#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "app/Startup.h"
#include "engine/PlaneThreads.h"
#include "modules/SoundMonitor.h"
#include "output/VisualsWindow_qt.h"
#include "platform/Display.h"
#include "platform/Signals.h"

#include <QApplication>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>

namespace {

struct ErrorText {
    QString title;
    QString text;
};
QList<ErrorText> Errors; // told before there was a window

void KeepError(const char16_t *pszTitle, const char16_t *pszText)
{
    Errors.append({QString::fromUtf16(pszTitle), QString::fromUtf16(pszText)});
    std::fprintf(stderr, "vorticade: %s %s\n", qPrintable(Errors.last().title), qPrintable(Errors.last().text));
}

// Message boxes beside the running picture: a show does not stop for them.
void ShowErrors(QWidget *pParent)
{
    for (const ErrorText &error : std::as_const(Errors)) {
        auto *pBox = new QMessageBox(QMessageBox::Critical, error.title, error.text, QMessageBox::Ok, pParent);
        pBox->setAttribute(Qt::WA_DeleteOnClose);
        RunDialogFrames(pBox, DialogMessage::Init, 0);
        QObject::connect(pBox, &QObject::destroyed, [pBox] { RunDialogFrames(pBox, DialogMessage::Destroy, 0); });
        pBox->setWindowModality(Qt::NonModal);
        pBox->show();
    }
    Errors.clear();
}

// The toolkit would end the process where there is no display, and prefers Wayland where X11 can do more.
bool ChoosePlatform()
{
    if (std::getenv("QT_QPA_PLATFORM"))
        return true;
    const DisplayKind eKind = FindDisplay();
    if (eKind == DisplayKind::X11)
        qputenv("QT_QPA_PLATFORM", "xcb");
    return eKind != DisplayKind::None;
}

int ListSound(const StartOptions &options)
{
    std::printf("%s\n", DescribeSound(options).c_str());
    return 0;
}

int RunDesktop(int argc, char **argv, const StartOptions &options)
{
    BlockTerminationSignals();
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    InstallFrameTimers();
    pfnShowError = KeepError;
    if (const int nExit = StartCore(options))
        return nExit;
    {
        VisualsWindow window;
        window.show();
        window.PublishWindow();
        StartPreset();
        ShowErrors(&window);
        RunMainLoop([&window] { return window.CloseRequested(); });
        SaveSettings();
    }
    ShutDown();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    DesktopOptions options;
    std::string sError;
    if (!ReadDesktopOptions(argc, argv, &options, &sError)) {
        std::fprintf(stderr, "vorticade: %s\n", sError.c_str());
        return 2;
    }
    if (options.bHelp || options.bVersion) {
        std::fputs(options.bHelp ? DesktopHelp().c_str() : "vorticade " VD_VERSION "\n", stdout);
        return 0;
    }
    if (options.bListSound)
        return ListSound(options.start);
    if (!ChoosePlatform()) {
        std::fputs("vorticade: there is no display; vorticade-render makes pictures without one\n", stderr);
        return 1;
    }
    const int nExit = RunDesktop(argc, argv, options.start);
    if (AnyThreadIsStuck())
        std::_Exit(nExit); // a thread that hangs in a module would be torn down under it
    return nExit;
}
