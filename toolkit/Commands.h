// Commands.h -- one kind of table for menus, tool bars, buttons and keys
#pragma once

#include "platform/BaseTypes.h"
#include "toolkit/KeyCodes.h"

#include <bitset>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct Command;

// The rows of a table, which live as long as the program: `constexpr Command asFileMenu[] = {...}` becomes one of
// itself.
struct CommandRows {
    constexpr CommandRows() = default;
    template <typename Row, size_t N> constexpr CommandRows(const Row (&as)[N]) : pFirst(as), nRows(N)
    {
    }
    constexpr const Command *begin() const;
    constexpr const Command *end() const;

    const Command *pFirst = nullptr;
    size_t nRows = 0;
};

// A table as it is used: what its functions are given beside each row's argument must outlive all that is built of it.
struct CommandTable {
    CommandRows rows;
    void *pvContext = nullptr;
};

struct CommandKey {
    u32 dwKey = KEY_NONE;  // KeyCode; none: the row has no key
    u32 dwModifiers = 0;   // KeyModifier. None: Ctrl and Shift do not matter, unless another row wants just them
    bool bUp = false;      // acts when it is released
    bool bRepeats = false; // acts again and again while it is held down
};

// One row of a section whose rows are known only at run time.
struct CommandItem {
    std::u16string text; // plain: "&" is an ampersand, and whatever would break the line becomes a blank
    u32 dwArgument = 0;  // takes the place of the row's
};

// A row: an entry; a line between entries, when it has neither text nor key; a sub menu, when it has children; a
// section of entries made when a menu opens, when it has pfnItems (and no text). Functions run on the main thread
// between frames.
struct Command {
    const char16_t *pszText = nullptr; // "&" marks a letter; a key behind a tab is shown instead of the row's
    void (*pfnRun)(u32 dwArgument, void *pvContext) = nullptr;
    u32 dwArgument = 0;
    bool (*pfnEnabled)(u32 dwArgument, void *pvContext) = nullptr; // null: always
    bool (*pfnChecked)(u32 dwArgument, void *pvContext) = nullptr; // null: has no check mark
    CommandKey key = {};
    const char16_t *pszToolTip = nullptr; // null: the text, where one is needed
    const char *pszIcon = nullptr;        // data/UI/NAME.svg
    CommandRows children = {};
    // Appends the items, each of which is run, enabled and checked by the functions of this row.
    void (*pfnItems)(std::vector<CommandItem> *pItems, u32 dwArgument, void *pvContext) = nullptr;
};

constexpr const Command *CommandRows::begin() const
{
    return pFirst;
}
constexpr const Command *CommandRows::end() const
{
    return pFirst + nRows;
}

constexpr Command COMMAND_LINE = {}; // a separator

enum class CommandKind : u32 { Line, Entry, SubMenu, Items, KeyOnly };
CommandKind KindOfCommand(const Command &command);

bool CommandIsEnabled(const Command &command, u32 dwArgument, void *pvContext);
bool CommandIsChecked(const Command &command, u32 dwArgument, void *pvContext);
// Nothing while it is not enabled. True if it ran. For an item of a section, with the item's argument.
bool RunCommand(const Command &command, u32 dwArgument, void *pvContext);
// With the row's own argument.
bool RunCommand(const Command &command, void *pvContext);

// What a menu shows: the text, and behind a tab the key.
std::u16string MenuTextOf(const Command &command);
// A text from outside, ready for a menu: on one line, with every "&" doubled.
std::u16string MenuTextOf(std::u16string_view plain);
// What a screen reader says and a tool button without tip shows: the text without marks, key and dots.
std::u16string LabelOf(const Command &command);
std::u16string ToolTipOf(const Command &command);
// "Ctrl+Shift+S"; empty: none.
std::u16string KeyTextOf(const CommandKey &key);
// Tabs, line breaks and other control characters become blanks, a run of them one.
std::u16string OneLine(std::u16string_view text);

// The row, children included, that this key event asks for; null: none. Presses of before are not looked at.
const Command *FindKeyCommand(CommandRows rows, const KeyEvent &event);

// The keys of one window: runs rows by them. A release counts only where its press was seen here too: one that closed a
// menu or a dialog is none of the window's. [main-thread]
class CommandKeys {
  public:
    // True if the key means something here; one with Alt does always, since the toolkit's own meaning is not wanted.
    bool Handle(const CommandTable &table, const KeyEvent &event);
    // The window lost the keyboard: presses of before are forgotten.
    void Forget();

  private:
    bool Counts(const KeyEvent &event);

    std::bitset<256> abDown; // keys whose press was seen here
};
