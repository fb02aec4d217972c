// NumberBox_qt.cpp -- a box for a number that knows what was typed into it and has not been read yet
#include "controls/panels/NumberBox_qt.h"

#include "controls/panels/ValueTexts.h"

#include <QKeyEvent>

namespace {

constexpr int PAGE_STEPS = 10;

struct KeyStep {
    int nKey;
    int nSteps;
};
constexpr KeyStep asKeyStep[] = {
    {Qt::Key_Up, 1},
    {Qt::Key_Down, -1},
    {Qt::Key_PageUp, PAGE_STEPS},
    {Qt::Key_PageDown, -PAGE_STEPS},
};

} // namespace

NumberBox::NumberBox(const QString &name)
{
    setMaxLength(NUMBER_CHARS);
    setAccessibleName(name);
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (pfnRead)
            pfnRead();
    });
}

void NumberBox::Show(const std::u16string &text)
{
    if (const QString s = QString::fromStdU16String(text); s != this->text()) {
        setText(s);
        setCursorPosition(0);
    }
    SetRead();
}

void NumberBox::Refill(const std::u16string &text)
{
    if (!hasFocus() || !IsUnread())
        Show(text);
}

void NumberBox::SetRead()
{
    sKnown = text();
    setModified(false);
}

bool NumberBox::IsUnread() const
{
    return isModified() || text() != sKnown;
}

void NumberBox::keyPressEvent(QKeyEvent *pEvent)
{
    for (const KeyStep &row : asKeyStep)
        if (pfnStep && !isReadOnly() && row.nKey == pEvent->key())
            return pfnStep(row.nSteps);
    QLineEdit::keyPressEvent(pEvent);
}
