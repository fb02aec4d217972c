// ErrorBoxes_qt.cpp -- errors that the user must see, in message boxes beside the running picture
#include "toolkit/ErrorBoxes_qt.h"

#include "modules/SoundMonitor.h"
#include "platform/MainThread.h"
#include "toolkit/WindowEvents_qt.h"

#include <QList>
#include <QMessageBox>
#include <QPointer>

#include <cstdio>

namespace {

struct ErrorText {
    QString title;
    QString text;
};
QList<ErrorText> KeptErrors;
QPointer<QWidget> pErrorWindow;

// Not modal: a show does not stop for it.
void ShowErrorBox(const ErrorText &error)
{
    auto *pBox = new QMessageBox(QMessageBox::Critical, error.title, error.text, QMessageBox::Ok, pErrorWindow);
    pBox->setTextFormat(Qt::PlainText); // a path is no markup
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    pBox->setWindowModality(Qt::NonModal);
    KeepFramesUnder(pBox);
    pBox->show();
}

void TakeError(const char16_t *pszTitle, const char16_t *pszText, void *)
{
    const ErrorText error = {QString::fromUtf16(pszTitle), QString::fromUtf16(pszText)};
    std::fprintf(stderr, "vorticade: %s %s\n", qUtf8Printable(error.title), qUtf8Printable(error.text));
    if (pErrorWindow)
        ShowErrorBox(error);
    else
        KeptErrors.append(error);
}

} // namespace

void KeepErrors()
{
    ASSERT_MAIN_THREAD();
    ErrorListeners.Add(TakeError);
}

void ShowErrorsOver(QWidget *pWindow)
{
    ASSERT_MAIN_THREAD();
    pErrorWindow = pWindow;
    for (const ErrorText &error : std::as_const(KeptErrors))
        ShowErrorBox(error);
    KeptErrors.clear();
}
