// FileListBox_qt.cpp -- the text box of a list of files, which stays quick with millions of characters
#include "controls/panels/FileListBox_qt.h"

#include "controls/panels/FilePanel.h"

#include <QElapsedTimer>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>

namespace {

constexpr qsizetype PART_CHARS = 2048;       // inserted at once; of a longer line, laid out as one
constexpr qsizetype HISTORY_CHARS = 1000000; // longer texts are edited without Undo, which would double them
constexpr qint64 FIRST_STEP_NS = 30000000;   // usual lists are through by then
constexpr qint64 STEP_NS = 4000000;          // for the others the frames go on in between
constexpr int BEGINS = -1;                   // the state of a block that begins a line
constexpr int CONTINUES = 1;                 // the state of a block that goes on with the line before

// In one pass: Qt's replacing goes over millions of places slowly.
QString WithLineFeeds(QStringView text)
{
    QString s;
    s.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); i++)
        if (text[i] != u'\r')
            s += text[i];
        else if (i + 1 == text.size() || text[i + 1] != u'\n')
            s += u'\n';
    return s;
}

// The end of what is inserted next: behind a line break, else in the middle of a long line.
qsizetype EndOfPart(QStringView rest)
{
    if (rest.size() <= PART_CHARS)
        return rest.size();
    const qsizetype iBreak = rest.first(PART_CHARS).lastIndexOf(u'\n');
    if (iBreak >= 0)
        return iBreak + 1;
    return rest[PART_CHARS - 1].isHighSurrogate() ? PART_CHARS - 1 : PART_CHARS;
}

} // namespace

FileListBox::FileListBox(size_t nMax) : nMaxChars(static_cast<qsizetype>(nMax))
{
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabChangesFocus(true);
    connect(&LoadTimer, &QTimer::timeout, this, [this] { LoadStep(STEP_NS); });
    connect(document(), &QTextDocument::contentsChange, this, [this](int iAt, int, int nNew) {
        iAdded = iAt;
        nAdded = nNew;
    });
    connect(this, &QPlainTextEdit::textChanged, this, [this] { TextChanged(); });
}

void FileListBox::SetList(std::u16string_view list)
{
    EndLoading();
    bPieces = false;
    sSource = WithLineFeeds(QStringView(list.data(), static_cast<qsizetype>(list.size())));
    iNext = 0;
    setUndoRedoEnabled(false);
    setReadOnly(true);
    clear();
    LoadStep(FIRST_STEP_NS);
}

void FileListBox::LoadStep(qint64 nNanoseconds)
{
    QElapsedTimer timer;
    timer.start();
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock(); // laid out once, at its end
    while (IsLoading() && timer.nsecsElapsed() < nNanoseconds)
        iNext += InsertPart(&cursor, QStringView(sSource).sliced(iNext));
    cursor.endEditBlock();
    if (IsLoading())
        return LoadTimer.start(0);
    EndLoading();
    moveCursor(QTextCursor::Start);
}

void FileListBox::EndLoading()
{
    LoadTimer.stop();
    sSource.clear();
    iNext = 0;
    setReadOnly(false);
    setUndoRedoEnabled(true);
    LimitHistory();
    NoteTaken();
}

// Returns how much it was.
qsizetype FileListBox::InsertPart(QTextCursor *pCursor, QStringView rest)
{
    const qsizetype n = EndOfPart(rest);
    const QStringView part = rest.first(n);
    pCursor->insertText(part.toString());
    if (n < rest.size() && part.back() != u'\n') {
        pCursor->insertBlock();
        pCursor->block().setUserState(CONTINUES);
        bPieces = true;
    }
    return n;
}

QString FileListBox::WholeLines() const
{
    QString s;
    for (QTextBlock block = document()->firstBlock(); block.isValid(); block = block.next()) {
        if (block.blockNumber() > 0 && block.userState() != CONTINUES)
            s += u'\n';
        s += block.text();
    }
    return s;
}

std::u16string FileListBox::List() const
{
    // The document's own plain text would turn unbreakable blanks into plain ones.
    const QString s = IsLoading() ? sSource : bPieces ? WholeLines() : document()->toRawText();
    return ListWithBreaks({reinterpret_cast<const char16_t *>(s.utf16()), static_cast<size_t>(s.size())});
}

bool FileListBox::IsBeingTyped() const
{
    return hasFocus() && document()->isModified();
}

void FileListBox::NoteTaken()
{
    document()->setModified(false);
}

qsizetype FileListBox::Chars() const
{
    const qsizetype n = document()->characterCount() - 1 + document()->blockCount() - 1;
    if (n <= nMaxChars || !bPieces)
        return n;
    const QString s = WholeLines();
    return s.size() + s.count(u'\n');
}

void FileListBox::LimitHistory()
{
    if (isUndoRedoEnabled() && (bPieces || document()->characterCount() > HISTORY_CHARS))
        setUndoRedoEnabled(false);
}

void FileListBox::TextChanged()
{
    if (isReadOnly()) // being loaded
        return;
    LimitHistory();
    const qsizetype iEnd = qMin(iAdded + nAdded, qsizetype{document()->characterCount()} - 1);
    const qsizetype nExcess = qMin(Chars() - nMaxChars, iEnd - iAdded);
    nAdded = 0;
    if (nExcess <= 0)
        return;
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(iEnd - nExcess));
    cursor.setPosition(static_cast<int>(iEnd), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
}

// A line break where one piece ends and the next begins is there to the eye already; a block of its own would let
// Backspace take the wrong one away.
bool FileListBox::BreakBetweenPieces()
{
    const QTextCursor cursor = textCursor();
    QTextBlock block = cursor.block();
    if (isReadOnly() || cursor.hasSelection() || !cursor.atBlockStart() || block.userState() != CONTINUES)
        return false;
    block.setUserState(BEGINS);
    document()->setModified(true);
    return true;
}

void FileListBox::keyPressEvent(QKeyEvent *pEvent)
{
    const bool bReturn = pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter;
    if (!bReturn || !BreakBetweenPieces())
        QPlainTextEdit::keyPressEvent(pEvent);
}

void FileListBox::insertFromMimeData(const QMimeData *pData)
{
    if (isReadOnly() || !pData->hasText())
        return;
    const QString text = WithLineFeeds(pData->text().left(nMaxChars));
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (qsizetype i = 0; i < text.size();)
        i += InsertPart(&cursor, QStringView(text).sliced(i));
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
}

void FileListBox::focusOutEvent(QFocusEvent *pEvent)
{
    QPlainTextEdit::focusOutEvent(pEvent);
    if (pEvent->reason() != Qt::PopupFocusReason && pfnLeft) // its own menu leaves the focus with it
        pfnLeft();
}
