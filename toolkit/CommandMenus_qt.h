// CommandMenus_qt.h -- menus, bars, buttons and shortcuts made of a table of commands
#pragma once

#include "toolkit/Commands.h"

class QMenu;
class QMenuBar;
class QToolBar;
class QToolButton;
class QWidget;

// A context menu, to be shown with popup(): that waits for nothing, so frames go on. Marks, grey entries and the
// sections of run time are those of the moment in which it, or a menu of it, opens. It belongs to the parent and
// deletes itself when it closes. [main-thread, like all of these]
QMenu *MakeCommandMenu(const CommandTable &table, QWidget *pParent);
// Every row with children becomes a menu of the bar.
void FillMenuBar(QMenuBar *pBar, const CommandTable &table);
// The keys of the table work in the window, whatever of it has the focus; a field that edits text keeps its own ones.
// Keys that act on release are for CommandKeys.
void AddCommandShortcuts(QWidget *pWindow, const CommandTable &table);

// A button with the row's icon, tool tip and accessible name. Without icon it shows its text.
QToolButton *MakeCommandButton(const Command &command, void *pvContext, QWidget *pParent);
// A button for each row, a line for each line.
QToolBar *MakeToolBar(const CommandTable &table, const char16_t *pszName, QWidget *pParent);

// Asks anew for the states of all that was made of tables in the window.
void RefreshCommands(QWidget *pWindow);
