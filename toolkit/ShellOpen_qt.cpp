// ShellOpen_qt.cpp -- opens programs, files and addresses the way the desktop does on a double click
#include "toolkit/ShellOpen_qt.h"

#include "platform/Files.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace {

// Where the program of that name lies; empty: nowhere.
QString FindProgram(const QString &name)
{
    if (!name.contains(u'/'))
        return QStandardPaths::findExecutable(name);
    const QFileInfo info(name);
    return info.isFile() && info.isExecutable() ? info.absoluteFilePath() : QString();
}

bool StartProgram(const QString &name)
{
    const QString program = FindProgram(name);
    return !program.isEmpty() && QProcess::startDetached(program, {});
}

bool OpenDocument(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && QDesktopServices::openUrl(QUrl::fromLocalFile(info.absoluteFilePath()));
}

bool OpenAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return text.contains(QStringLiteral("://")) && url.isValid() && !url.isLocalFile() &&
           QDesktopServices::openUrl(url);
}

} // namespace

bool OpenWithShell(std::u16string_view text)
{
    if (text.empty())
        return false;
    const QString path = QString::fromStdString(NativePath(text));
    return StartProgram(path) || OpenDocument(path) ||
           OpenAddress(QString::fromUtf16(text.data(), qsizetype(text.size())));
}
