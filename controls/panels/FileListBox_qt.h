// FileListBox_qt.h -- the text box of a list of files, which stays quick with millions of characters
#pragma once

#include "editing/EditFields.h"

#include <QPlainTextEdit>
#include <QTimer>

#include <functional>

// Holds so many characters at most, line breaks as two; what is typed or pasted beyond is dropped. Loads long
// lists in steps between which frames go on; until it is through, the text cannot be edited. Lines that are too long to
// be laid out as one are shown in pieces and given back whole. [main-thread]
class FileListBox : public QPlainTextEdit {
  public:
    explicit FileListBox(size_t nMaxChars = FILE_LIST_CHARS);

    void SetList(std::u16string_view list);
    // With CR LF.
    std::u16string List() const;
    // Something was typed since the text was set or taken, and the box has the focus.
    bool IsBeingTyped() const;
    void NoteTaken();

    std::function<void()> pfnLeft; // the focus went elsewhere, to another window too

  protected:
    void focusOutEvent(QFocusEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void insertFromMimeData(const QMimeData *pData) override;

  private:
    const qsizetype nMaxChars;
    bool IsLoading() const
    {
        return iNext < sSource.size();
    }
    void LoadStep(qint64 nNanoseconds);
    void EndLoading();
    qsizetype InsertPart(QTextCursor *pCursor, QStringView rest);
    bool BreakBetweenPieces();
    qsizetype Chars() const;
    QString WholeLines() const;
    void TextChanged();
    void LimitHistory();

    QString sSource; // what is being loaded, with LF
    qsizetype iNext = 0;
    QTimer LoadTimer;
    bool bPieces = false;             // there are blocks that continue the line of the one before
    qsizetype iAdded = 0, nAdded = 0; // what the latest change put in
};
