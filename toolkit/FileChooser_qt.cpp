// FileChooser_qt.cpp -- the routines that ask for a file to open or to save, for many files or for a folder
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

// The toolkit reads patterns between brackets behind the description, apart by blanks, and takes "*.*" to want a dot.
QStringList NameFilters(const FileQuestion &question)
{
    QStringList list;
    for (const FileFilter &filter : FileFilters(question.sPattern, question.sName)) {
        QString pattern = filter.sPattern == u"*.*" ? QStringLiteral("*") : Text(filter.sPattern);
        pattern.replace(u';', u' ');
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

QFileDialog *MakeChooser(QWidget *pParent, const std::u16string &sTitle, const std::u16string &sFolder)
{
    auto *pDialog = new QFileDialog(pParent, Text(sTitle), Text(sFolder));
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    KeepFramesUnder(pDialog);
    new PlainBoxes(pDialog);
    return pDialog;
}

// Any file: one to save.
QFileDialog *MakeFileChooser(QWidget *pParent, const FileQuestion &question, QFileDialog::FileMode eMode)
{
    QFileDialog *pDialog = MakeChooser(pParent, question.sTitle, question.sFolder);
    pDialog->setAcceptMode(eMode == QFileDialog::AnyFile ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    pDialog->setFileMode(eMode);
    pDialog->setOption(QFileDialog::HideNameFilterDetails); // they are the toolkit's, behind the description
    const QStringList filters = NameFilters(question);
    pDialog->setNameFilters(filters);
    if (question.iFilter > 0 && question.iFilter < static_cast<u32>(filters.size()))
        pDialog->selectNameFilter(filters[question.iFilter]);
    pDialog->setDefaultSuffix(Text(DefaultExtension(question.sPattern)));
    if (!question.sName.empty())
        pDialog->selectFile(Text(question.sName));
    return pDialog;
}

// With the one path that was chosen.
QDialog *OpenChooser(QFileDialog *pDialog, std::function<void(const std::u16string &path)> pfnChosen)
{
    QObject::connect(pDialog, &QFileDialog::fileSelected, pDialog,
                     [pfnChosen = std::move(pfnChosen)](const QString &path) { pfnChosen(path.toStdU16String()); });
    pDialog->open();
    return pDialog;
}

} // namespace

QDialog *AskForFile(QWidget *pParent, const FileQuestion &question,
                    std::function<void(const std::u16string &path)> pfnChosen)
{
    const QFileDialog::FileMode eMode = question.bSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile;
    return OpenChooser(MakeFileChooser(pParent, question, eMode), std::move(pfnChosen));
}

QDialog *AskForFiles(QWidget *pParent, const FileQuestion &question,
                     std::function<void(const std::vector<std::u16string> &paths)> pfnChosen)
{
    QFileDialog *pDialog = MakeFileChooser(pParent, question, QFileDialog::ExistingFiles);
    QObject::connect(pDialog, &QFileDialog::filesSelected, pDialog,
                     [pfnChosen = std::move(pfnChosen)](const QStringList &names) {
                         std::vector<std::u16string> paths;
                         for (const QString &name : names)
                             paths.push_back(name.toStdU16String());
                         pfnChosen(paths);
                     });
    pDialog->open();
    return pDialog;
}

QDialog *AskForFolder(QWidget *pParent, const std::u16string &sTitle, const std::u16string &sFolder,
                      std::function<void(const std::u16string &path)> pfnChosen)
{
    QFileDialog *pDialog = MakeChooser(pParent, sTitle, sFolder);
    pDialog->setFileMode(QFileDialog::Directory);
    pDialog->setOption(QFileDialog::ShowDirsOnly);
    return OpenChooser(pDialog, std::move(pfnChosen));
}
