// Commands.cpp -- one kind of table for menus, tool bars, buttons and keys
#include "toolkit/Commands.h"

#include "platform/MainThread.h"

#include <algorithm>
#include <iterator>

namespace {

struct KeyName {
    u32 dwKey;
    const char16_t *pszName;
};

// As desktop programs write them. Letters, digits and the F keys are made.
constexpr KeyName asKeyName[] = {
    {KEY_BACKSPACE, u"Backspace"}, {KEY_TAB, u"Tab"},       {KEY_RETURN, u"Enter"},    {KEY_ESCAPE, u"Esc"},
    {KEY_SPACE, u"Space"},         {KEY_PAGE_UP, u"Pg-Up"}, {KEY_PAGE_DOWN, u"Pg-Dn"}, {KEY_END, u"End"},
    {KEY_HOME, u"Home"},           {KEY_LEFT, u"Left"},     {KEY_UP, u"Up"},           {KEY_RIGHT, u"Right"},
    {KEY_DOWN, u"Down"},           {KEY_INSERT, u"Ins"},    {KEY_DELETE, u"Del"},      {KEY_PAD_PLUS, u"Num +"},
    {KEY_PAD_MINUS, u"Num -"},
};

struct ModifierName {
    u32 dwModifier;
    const char16_t *pszName;
};
constexpr ModifierName asModifierName[] = {
    {MODIFIER_CTRL, u"Ctrl+"}, {MODIFIER_ALT, u"Alt+"}, {MODIFIER_SHIFT, u"Shift+"}};

std::u16string NameOfKey(u32 dwKey)
{
    if (dwKey >= KEY_F1 && dwKey < KEY_F1 + F_KEYS) {
        const u32 nKey = dwKey - KEY_F1 + 1;
        std::u16string text = u"F";
        if (nKey >= 10)
            text += static_cast<char16_t>(u'0' + nKey / 10);
        return text += static_cast<char16_t>(u'0' + nKey % 10);
    }
    const auto *p = std::find_if(std::begin(asKeyName), std::end(asKeyName),
                                 [&](const KeyName &row) { return row.dwKey == dwKey; });
    return p == std::end(asKeyName) ? std::u16string(1, static_cast<char16_t>(dwKey)) : std::u16string(p->pszName);
}

std::u16string_view TextOf(const Command &command)
{
    return command.pszText ? std::u16string_view(command.pszText) : std::u16string_view();
}

bool KeyFits(const CommandKey &key, const KeyEvent &event, u32 dwModifiers)
{
    return key.dwKey != KEY_NONE && key.dwKey == event.dwKey && key.bUp == event.bUp && key.dwModifiers == dwModifiers;
}

const Command *FindKey(CommandRows rows, const KeyEvent &event, u32 dwModifiers)
{
    for (const Command &command : rows) {
        if (command.pfnRun && KeyFits(command.key, event, dwModifiers))
            return &command;
        if (const Command *pFound = FindKey(command.children, event, dwModifiers))
            return pFound;
    }
    return nullptr;
}

} // namespace

CommandKind KindOfCommand(const Command &command)
{
    if (command.pfnItems)
        return CommandKind::Items;
    if (command.pszText)
        return command.children.nRows ? CommandKind::SubMenu : CommandKind::Entry;
    return command.key.dwKey || command.children.nRows ? CommandKind::KeyOnly : CommandKind::Line;
}

bool CommandIsEnabled(const Command &command, u32 dwArgument, void *pvContext)
{
    return !command.pfnEnabled || command.pfnEnabled(dwArgument, pvContext);
}

bool CommandIsChecked(const Command &command, u32 dwArgument, void *pvContext)
{
    return command.pfnChecked && command.pfnChecked(dwArgument, pvContext);
}

bool RunCommand(const Command &command, u32 dwArgument, void *pvContext)
{
    if (!command.pfnRun || !CommandIsEnabled(command, dwArgument, pvContext))
        return false;
    command.pfnRun(dwArgument, pvContext);
    return true;
}

bool RunCommand(const Command &command, void *pvContext)
{
    return RunCommand(command, command.dwArgument, pvContext);
}

std::u16string MenuTextOf(const Command &command)
{
    std::u16string text(TextOf(command));
    const bool bHasKey = text.find(u'\t') != text.npos;
    return bHasKey || !command.key.dwKey ? text : text + u'\t' + KeyTextOf(command.key);
}

std::u16string MenuTextOf(std::u16string_view plain)
{
    std::u16string text;
    for (const char16_t ch : OneLine(plain))
        text.append(ch == u'&' ? 2 : 1, ch);
    return text;
}

std::u16string LabelOf(const Command &command)
{
    std::u16string_view rest = TextOf(command);
    rest = rest.substr(0, rest.find(u'\t'));
    if (rest.ends_with(u"..."))
        rest.remove_suffix(3);
    std::u16string text;
    for (size_t i = 0; i < rest.size(); i++) {
        if (rest[i] == u'&')
            i++; // a doubled one leaves one
        if (i < rest.size())
            text += rest[i];
    }
    return text;
}

std::u16string ToolTipOf(const Command &command)
{
    return command.pszToolTip ? std::u16string(command.pszToolTip) : LabelOf(command);
}

std::u16string KeyTextOf(const CommandKey &key)
{
    if (!key.dwKey)
        return {};
    std::u16string text;
    for (const ModifierName &row : asModifierName)
        if (key.dwModifiers & row.dwModifier)
            text += row.pszName;
    return text + NameOfKey(key.dwKey);
}

std::u16string OneLine(std::u16string_view text)
{
    constexpr char16_t DELETED = 0x7F, NEXT_LINE = 0x85, LINE_SEPARATOR = 0x2028, PARAGRAPH_SEPARATOR = 0x2029;
    std::u16string line;
    bool bInRun = false;
    for (const char16_t ch : text) {
        const bool bBreaks =
            ch < u' ' || ch == DELETED || ch == NEXT_LINE || ch == LINE_SEPARATOR || ch == PARAGRAPH_SEPARATOR;
        if (!bBreaks || !bInRun)
            line += bBreaks ? u' ' : ch;
        bInRun = bBreaks;
    }
    return line;
}

const Command *FindKeyCommand(CommandRows rows, const KeyEvent &event)
{
    if (event.dwKey == KEY_NONE)
        return nullptr;
    const Command *pExact = FindKey(rows, event, event.dwModifiers);
    return pExact || event.bSystem ? pExact : FindKey(rows, event, 0);
}

// Notes a press; of a release, says whether its press was seen.
bool CommandKeys::Counts(const KeyEvent &event)
{
    if (event.dwKey >= abDown.size() || event.bRepeat)
        return event.bRepeat && !event.bUp;
    const bool bWasDown = abDown[event.dwKey];
    abDown[event.dwKey] = !event.bUp && !event.bSystem;
    return !event.bUp || bWasDown;
}

bool CommandKeys::Handle(const CommandTable &table, const KeyEvent &event)
{
    ASSERT_MAIN_THREAD();
    const bool bCounts = Counts(event);
    const Command *pCommand = FindKeyCommand(table.rows, event);
    if (pCommand && event.bSystem && !(pCommand->key.dwModifiers & MODIFIER_ALT))
        pCommand = nullptr;
    if (pCommand && bCounts && (!event.bRepeat || pCommand->key.bRepeats))
        RunCommand(*pCommand, table.pvContext);
    return pCommand || event.bSystem;
}

void CommandKeys::Forget()
{
    ASSERT_MAIN_THREAD();
    abDown.reset();
}
