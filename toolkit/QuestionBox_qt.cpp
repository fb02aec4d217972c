// QuestionBox_qt.cpp -- message boxes that neither stop the show nor hold up their caller
#include "toolkit/QuestionBox_qt.h"

#include "engine/PresetDocument.h"
#include "engine/PresetNews.h"
#include "toolkit/WindowEvents_qt.h"

#include <QMessageBox>
#include <QPointer>

#include <utility>

namespace {

QPointer<QMessageBox> pQuestion;

QMessageBox *MakeBox(QWidget *pParent, QMessageBox::Icon eIcon, const QString &title, const QString &text,
                     QMessageBox::StandardButtons buttons)
{
    auto *pBox = new QMessageBox(eIcon, title, text, buttons, pParent);
    pBox->setTextFormat(Qt::PlainText); // names are no markup
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    KeepFramesUnder(pBox);
    return pBox;
}

// The question was about that preset: a yes must not cost the one that comes.
void DropQuestion(const PresetNews &news, void *)
{
    if (news.eKind == NewsKind::Going && pQuestion)
        pQuestion->reject();
}

} // namespace

void ConfirmDiscard(QWidget *pParent, std::function<void()> proceed)
{
    if (!DiscardNeedsQuestion()) {
        proceed();
        return;
    }
    if (pQuestion) {
        pQuestion->raise();
        pQuestion->activateWindow();
        return;
    }
    pQuestion =
        MakeBox(pParent, QMessageBox::Warning, QString::fromUtf16(sDiscardQuestion.pszTitle),
                QString::fromUtf16(sDiscardQuestion.pszText), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    pQuestion->setDefaultButton(QMessageBox::No);
    pQuestion->setEscapeButton(QMessageBox::Cancel);
    QObject::connect(pQuestion, &QMessageBox::finished, pQuestion, [proceed = std::move(proceed)](int nButton) {
        pQuestion = nullptr;
        PresetListeners.Remove(DropQuestion);
        if (nButton == QMessageBox::Yes)
            proceed();
    });
    PresetListeners.Add(DropQuestion);
    pQuestion->open();
}

void ShowErrorBox(QWidget *pParent, const QString &title, const QString &text)
{
    MakeBox(pParent, QMessageBox::Critical, title, text, QMessageBox::Ok)->open();
}
