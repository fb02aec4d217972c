// CommandMenus_qt.cpp -- menus, bars, buttons and shortcuts made of a table of commands
#include "toolkit/CommandMenus_qt.h"

#include "toolkit/DialogPieces_qt.h"
#include "toolkit/Icons_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QShortcut>
#include <QToolBar>
#include <QToolButton>

namespace {

QString Text(const std::u16string &text)
{
    return QString::fromStdU16String(text);
}

// An entry or a button that knows its row. The row's context outlives it.
class CommandAction : public QAction {
  public:
    CommandAction(const Command &row, u32 dwArgument, void *pvContext, QObject *pParent);
    void Refresh();

  private:
    void Run();

    const Command &row;
    const u32 dwArgument;
    void *const pvContext;
};

CommandAction::CommandAction(const Command &r, u32 dw, void *pv, QObject *pParent)
    : QAction(pParent), row(r), dwArgument(dw), pvContext(pv)
{
    setCheckable(row.pfnChecked != nullptr);
    setToolTip(PlainTip(Text(ToolTipOf(row))));
    if (row.pszIcon)
        setIcon(UserIcon(row.pszIcon));
    connect(this, &QAction::triggered, this, [this] { Run(); });
    Refresh();
}

void CommandAction::Refresh()
{
    setEnabled(CommandIsEnabled(row, dwArgument, pvContext));
    if (isCheckable())
        setChecked(CommandIsChecked(row, dwArgument, pvContext));
}

// The toolkit has flipped the mark of its own accord; whether it stands is the command's to say. What runs may delete
// the window.
void CommandAction::Run()
{
    const QPointer<CommandAction> pThis = this;
    RunCommand(row, dwArgument, pvContext);
    if (pThis)
        pThis->Refresh();
}

class CommandMenu : public QMenu {
  public:
    CommandMenu(const CommandTable &table, QWidget *pParent);
    void Refresh();

  private:
    void Fill();
    void AddRow(const Command &row);
    void AddItems(const Command &row);

    const CommandTable Table;
    bool bHasItems = false; // a section that may be another one by now
};

CommandMenu::CommandMenu(const CommandTable &table, QWidget *pParent) : QMenu(pParent), Table(table)
{
    connect(this, &QMenu::aboutToShow, this, [this] { Refresh(); });
    Fill();
}

void CommandMenu::Fill()
{
    for (const Command &row : Table.rows)
        AddRow(row);
}

void CommandMenu::AddRow(const Command &row)
{
    switch (KindOfCommand(row)) {
    case CommandKind::Line:
        addSeparator();
        break;
    case CommandKind::Items:
        AddItems(row);
        break;
    case CommandKind::SubMenu: {
        auto *pMenu = new CommandMenu({row.children, Table.pvContext}, this);
        pMenu->setTitle(Text(MenuTextOf(row)));
        addMenu(pMenu);
        break;
    }
    case CommandKind::Entry: {
        auto *pAction = new CommandAction(row, row.dwArgument, Table.pvContext, this);
        pAction->setText(Text(MenuTextOf(row)));
        addAction(pAction);
        break;
    }
    case CommandKind::KeyOnly:
        break;
    }
}

void CommandMenu::AddItems(const Command &row)
{
    bHasItems = true;
    std::vector<CommandItem> items;
    row.pfnItems(&items, row.dwArgument, Table.pvContext);
    for (const CommandItem &item : items) {
        auto *pAction = new CommandAction(row, item.dwArgument, Table.pvContext, this);
        pAction->setText(Text(MenuTextOf(item.text)));
        addAction(pAction);
    }
}

// A sub menu that has nothing in it cannot be opened.
void CommandMenu::Refresh()
{
    if (bHasItems) {
        clear();
        qDeleteAll(findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
        Fill();
    }
    for (QAction *pAction : actions()) {
        if (auto *pCommand = dynamic_cast<CommandAction *>(pAction))
            pCommand->Refresh();
        if (auto *pMenu = dynamic_cast<CommandMenu *>(pAction->menu())) {
            pMenu->Refresh();
            pAction->setEnabled(!pMenu->isEmpty());
        }
    }
}

void AddShortcut(QWidget *pWindow, const Command &row, void *pvContext)
{
    const int nKey = ToolkitKeyOf(row.key.dwKey);
    if (!nKey || row.key.bUp || !row.pfnRun)
        return;
    struct Pair {
        u32 dwModifier;
        Qt::KeyboardModifier eToolkit;
    };
    constexpr Pair asPair[] = {
        {MODIFIER_CTRL, Qt::ControlModifier}, {MODIFIER_SHIFT, Qt::ShiftModifier}, {MODIFIER_ALT, Qt::AltModifier}};
    Qt::KeyboardModifiers modifiers;
    for (const Pair &pair : asPair)
        modifiers.setFlag(pair.eToolkit, row.key.dwModifiers & pair.dwModifier);
    auto *pShortcut = new QShortcut(QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(nKey))), pWindow);
    pShortcut->setAutoRepeat(row.key.bRepeats);
    QObject::connect(pShortcut, &QShortcut::activated, pWindow, [&row, pvContext] { RunCommand(row, pvContext); });
}

} // namespace

QMenu *MakeCommandMenu(const CommandTable &table, QWidget *pParent)
{
    auto *pMenu = new CommandMenu(table, pParent);
    pMenu->setAttribute(Qt::WA_DeleteOnClose);
    return pMenu;
}

void FillMenuBar(QMenuBar *pBar, const CommandTable &table)
{
    for (const Command &row : table.rows)
        if (KindOfCommand(row) == CommandKind::SubMenu) {
            auto *pMenu = new CommandMenu({row.children, table.pvContext}, pBar);
            pMenu->setTitle(Text(MenuTextOf(row)));
            pBar->addMenu(pMenu);
        }
}

void AddCommandShortcuts(QWidget *pWindow, const CommandTable &table)
{
    for (const Command &row : table.rows) {
        AddShortcut(pWindow, row, table.pvContext);
        AddCommandShortcuts(pWindow, {row.children, table.pvContext});
    }
}

QToolButton *MakeCommandButton(const Command &command, void *pvContext, QWidget *pParent)
{
    auto *pButton = new QToolButton(pParent);
    auto *pAction = new CommandAction(command, command.dwArgument, pvContext, pButton);
    pAction->setText(Text(LabelOf(command)));
    pButton->setDefaultAction(pAction);
    pButton->setToolButtonStyle(command.pszIcon ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextOnly);
    pButton->setAccessibleName(Text(LabelOf(command)));
    return pButton;
}

QToolBar *MakeToolBar(const CommandTable &table, const char16_t *pszName, QWidget *pParent)
{
    auto *pBar = new QToolBar(QString::fromUtf16(pszName), pParent);
    pBar->setAccessibleName(QString::fromUtf16(pszName));
    for (const Command &row : table.rows) {
        const CommandKind eKind = KindOfCommand(row);
        if (eKind == CommandKind::Line)
            pBar->addSeparator();
        else if (eKind == CommandKind::Entry)
            pBar->addWidget(MakeCommandButton(row, table.pvContext, pBar));
    }
    return pBar;
}

void RefreshCommands(QWidget *pWindow)
{
    for (QAction *pAction : pWindow->findChildren<QAction *>())
        if (auto *pCommand = dynamic_cast<CommandAction *>(pAction))
            pCommand->Refresh();
}
