// FileChooser_qt.cpp -- the routine that asks for a file to open or to save
#include "toolkit/FileChooser_qt.h"

#include "toolkit/FileFilter.h"
#include "toolkit/WindowEvents_qt.h"

#include <QChildEvent>
#include <QFileDialog>
#include <QMessageBox>

#include <utility>

namespace {

QString Text(const std::u16string &s)
{
    return QString::fromStdU16String(s);
}

// The toolkit reads patterns between brackets behind the description, and takes "*.*" to want a dot.
QStringList NameFilters(const FileQuestion &question)
{
    QStringList list;
    for (const FileFilter &filter : FileFilters(question.sPattern, question.sName)) {
        const QString pattern = filter.sPattern == u"*.*" ? QStringLiteral("*") : Text(filter.sPattern);
        list += Text(filter.sDescription) + QStringLiteral(" (") + pattern + QStringLiteral(")");
    }
    return list;
}

// The toolkit's own question before it overwrites a file reads the file's name as markup.
class PlainBoxes : public QObject {
  public:
    explicit PlainBoxes(QFileDialog *pDialog) : QObject(pDialog)
    {
        pDialog->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        if (pEvent->type() == QEvent::ChildPolished)
            if (auto *pBox = qobject_cast<QMessageBox *>(static_cast<QChildEvent *>(pEvent)->child()))
                pBox->setTextFormat(Qt::PlainText);
        return false;
    }
};

} // namespace

QDialog *AskForFile(QWidget *pParent, const FileQuestion &question,
                    std::function<void(const std::u16string &path)> pfnChosen)
{
    auto *pDialog = new QFileDialog(pParent, Text(question.sTitle), Text(question.sFolder));
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    KeepFramesUnder(pDialog);
    new PlainBoxes(pDialog);
    pDialog->setAcceptMode(question.bSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    pDialog->setFileMode(question.bSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    pDialog->setOption(QFileDialog::HideNameFilterDetails); // they are the toolkit's, behind the description
    pDialog->setNameFilters(NameFilters(question));
    pDialog->setDefaultSuffix(Text(DefaultExtension(question.sPattern)));
    if (!question.sName.empty())
        pDialog->selectFile(Text(question.sName));
    QObject::connect(pDialog, &QFileDialog::fileSelected, pDialog,
                     [pfnChosen = std::move(pfnChosen)](const QString &path) { pfnChosen(path.toStdU16String()); });
    pDialog->open();
    return pDialog;
}
