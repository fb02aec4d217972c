// WindowEvents_qt.cpp -- the one place that knows how the toolkit's events become the program's
#include "toolkit/WindowEvents_qt.h"

#include "platform/MainThread.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>
#include <iterator>

namespace {

struct NamedKey {
    int nToolkitKey;
    u32 dwKey;
};

// clang-format off
constexpr NamedKey asNamed[] = {
    {Qt::Key_Backspace, KEY_BACKSPACE}, {Qt::Key_Tab, KEY_TAB}, {Qt::Key_Backtab, KEY_TAB},
    {Qt::Key_Return, KEY_RETURN}, {Qt::Key_Enter, KEY_RETURN}, {Qt::Key_Escape, KEY_ESCAPE},
    {Qt::Key_Space, KEY_SPACE}, {Qt::Key_PageUp, KEY_PAGE_UP}, {Qt::Key_PageDown, KEY_PAGE_DOWN},
    {Qt::Key_End, KEY_END}, {Qt::Key_Home, KEY_HOME}, {Qt::Key_Insert, KEY_INSERT}, {Qt::Key_Delete, KEY_DELETE},
    {Qt::Key_Left, KEY_LEFT}, {Qt::Key_Up, KEY_UP}, {Qt::Key_Right, KEY_RIGHT}, {Qt::Key_Down, KEY_DOWN},
};
constexpr NamedKey asPad[] = {
    {Qt::Key_Plus, KEY_PAD_PLUS}, {Qt::Key_Minus, KEY_PAD_MINUS},
};
// clang-format on

// X11 key codes of the three rows of letters begin here.
struct LetterRow {
    u32 dwFirstCode;
    const char *pszLetters;
};
constexpr LetterRow asLetterRow[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

template <size_t N> u32 FindKey(const NamedKey (&as)[N], int nToolkitKey)
{
    const auto *p = std::find_if(as, as + N, [&](const NamedKey &row) { return row.nToolkitKey == nToolkitKey; });
    return p == as + N ? static_cast<u32>(KEY_NONE) : p->dwKey;
}

u32 LetterByPlace(u32 dwCode)
{
    for (const LetterRow &row : asLetterRow)
        for (u32 i = 0; row.pszLetters[i]; i++)
            if (row.dwFirstCode + i == dwCode)
                return static_cast<u32>(row.pszLetters[i]);
    return KEY_NONE;
}

u32 KeyOf(const QKeyEvent &event)
{
    const int nKey = event.key();
    if (nKey >= Qt::Key_F1 && nKey < Qt::Key_F1 + static_cast<int>(F_KEYS))
        return KEY_F1 + static_cast<u32>(nKey - Qt::Key_F1);
    if (const u32 dwNamed = FindKey(asNamed, nKey))
        return dwNamed;
    if (event.modifiers() & Qt::KeypadModifier)
        return FindKey(asPad, nKey);
    if ((nKey >= Qt::Key_A && nKey <= Qt::Key_Z) || (nKey >= Qt::Key_0 && nKey <= Qt::Key_9))
        return static_cast<u32>(nKey);
    const bool bForeignLetter = nKey > 0xFF && nKey < Qt::Key_Escape;
    return bForeignLetter ? LetterByPlace(event.nativeScanCode()) : static_cast<u32>(KEY_NONE);
}

u32 ModifiersOf(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ControlModifier ? MODIFIER_CTRL : 0u) |
           (modifiers & Qt::ShiftModifier ? MODIFIER_SHIFT : 0u) | (modifiers & Qt::AltModifier ? MODIFIER_ALT : 0u);
}

} // namespace

Listeners<void(QObject *pDialog)> KeepFramesListeners;

void KeepFramesUnder(QObject *pDialog)
{
    ASSERT_MAIN_THREAD();
    KeepFramesListeners.Tell(pDialog);
}

KeyEvent KeyEventOf(const QKeyEvent &event)
{
    constexpr Qt::KeyboardModifiers SYSTEM = Qt::AltModifier | Qt::MetaModifier;
    return {KeyOf(event), event.type() == QEvent::KeyRelease, event.isAutoRepeat(),
            (event.modifiers() & SYSTEM) != Qt::NoModifier, ModifiersOf(event.modifiers())};
}

int ToolkitKeyOf(u32 dwKey)
{
    if (dwKey >= KEY_F1 && dwKey < KEY_F1 + F_KEYS)
        return Qt::Key_F1 + static_cast<int>(dwKey - KEY_F1);
    for (const NamedKey &row : asNamed)
        if (row.dwKey == dwKey)
            return row.nToolkitKey;
    const bool bPlain = (dwKey >= 'A' && dwKey <= 'Z') || (dwKey >= '0' && dwKey <= '9');
    return bPlain ? static_cast<int>(dwKey) : 0;
}

i32 WheelDeltaOf(const QWheelEvent &event)
{
    return event.angleDelta().y();
}
