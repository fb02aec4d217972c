// VisualsMenu_qt.cpp -- the context menu of the visuals window
#include "output/VisualsMenu_qt.h"

#include "output/VisualsCommands.h"

#include <QAction>
#include <QMenu>

namespace {

void AddEntry(QMenu *pMenu, const VisualsMenuRow &row)
{
    QAction *pAction = pMenu->addAction(QString::fromUtf16(row.pszText));
    pAction->setEnabled(VisualsCommandIsEnabled(row.eCommand));
    if (row.eCommand == VisualsCommand::AlwaysOnTop) {
        pAction->setCheckable(true);
        pAction->setChecked(VisualsCommandIsChecked(row.eCommand));
    }
    QObject::connect(pAction, &QAction::triggered, [eCommand = row.eCommand, dwArgument = row.dwArgument] {
        RunVisualsCommand(eCommand, dwArgument);
    });
}

} // namespace

QMenu *BuildVisualsMenu(QWidget *pParent)
{
    auto *pRoot = new QMenu(pParent);
    pRoot->setAttribute(Qt::WA_DeleteOnClose);
    QMenu *pMenu = pRoot; // the one that takes the next entry
    for (const VisualsMenuRow &row : VisualsMenu()) {
        switch (row.eRow) {
        case MenuRow::Entry:
            AddEntry(pMenu, row);
            break;
        case MenuRow::Line:
            pMenu->addSeparator();
            break;
        case MenuRow::SubMenu:
            pMenu = pRoot->addMenu(QString::fromUtf16(row.pszText));
            break;
        case MenuRow::EndOfSubMenu:
            pMenu = pRoot;
            break;
        }
    }
    return pRoot;
}
