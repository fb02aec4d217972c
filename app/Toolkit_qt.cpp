// Toolkit_qt.cpp -- brings the window toolkit up the way this program needs it
#include "app/Toolkit_qt.h"

#include "platform/Display.h"
#include "platform/MainThread.h"
#include "toolkit/DarkStyle_qt.h"

#include <QSettings>
#include <QStringList>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {

// The application object goes on to point at its arguments. The user's own are no business of the toolkit.
char szProgram[] = "vorticade";
char szOption[] = "-platform";
char szX11[] = "xcb";
char szWayland[] = "wayland";
char *apszArgument[] = {szProgram, nullptr, nullptr, nullptr};
int nArguments = 1;

std::mutex csMessages;
bool bStarting = false;       // guarded by csMessages, as is the list
QStringList HeldBackMessages; // while starting: a failure is told in one line

void PrintMessage(const QString &text)
{
    std::fprintf(stderr, "vorticade: %s\n", qUtf8Printable(text));
}

[[noreturn]] void FailToStart(const QString &text)
{
    const QString &why = HeldBackMessages.isEmpty() ? text : HeldBackMessages.first();
    PrintMessage(QStringLiteral("no window can be shown: ") + why.section(u'\n', 0, 0));
    std::_Exit(1);
}

void TakeMessage(QtMsgType eType, const QMessageLogContext &, const QString &text)
{
    if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR")))
        return; // machines without that folder are in order, and nothing of ours lies there
    const std::lock_guard lock(csMessages);
    if (!bStarting)
        PrintMessage(text);
    else if (eType == QtFatalMsg)
        FailToStart(text);
    else
        HeldBackMessages.append(text);
}

void SetStarting(bool b)
{
    const std::lock_guard lock(csMessages);
    bStarting = b;
    for (const QString &text : std::as_const(HeldBackMessages))
        PrintMessage(text);
    HeldBackMessages.clear();
}

// The toolkit's file and colour choosers would keep a file of their own among the user's settings.
void KeepNoChooserSettings()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
}

// A choice in the environment stands. Otherwise X11, where the program can do more, comes before Wayland.
bool ChoosePlatform()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return true;
    const DisplayKind eKind = FindDisplay();
    apszArgument[1] = szOption;
    apszArgument[2] = eKind == DisplayKind::X11 ? szX11 : szWayland;
    nArguments = 3;
    return eKind != DisplayKind::None;
}

} // namespace

std::unique_ptr<QApplication> StartToolkit()
{
    ASSERT_MAIN_THREAD();
    if (!ChoosePlatform()) {
        PrintMessage(QStringLiteral("there is no display; vorticade-render makes pictures without one"));
        return nullptr;
    }
    qInstallMessageHandler(TakeMessage);
    SetStarting(true);
    auto pApp = std::make_unique<QApplication>(nArguments, apszArgument);
    SetStarting(false);
    KeepNoChooserSettings();
    InstallDarkLook(pApp.get());
    QApplication::setQuitOnLastWindowClosed(false); // the main loop ends the program, in its order
    std::setlocale(LC_NUMERIC, "C");                // the toolkit took the user's: files would get decimal commas
    return pApp;
}
