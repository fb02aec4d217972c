// TreeMenu_qt.cpp -- the context menu of a node of the preset tree on the screen
#include "editing/TreeMenu_qt.h"

#include "platform/MainThread.h"
#include "toolkit/Commands.h"

#include <QMenu>
#include <QStack>

#include <utility>

namespace {

using RunFn = std::function<void(TreeNode *pNode, TreeCommand eCommand, u32 dwArgument)>;

// A menu that knows its node for as long as both are there.
class TreeMenu : public QMenu {
  public:
    TreeMenu(PresetTree *p, TreeNode *pWhose, RunFn pfn, QWidget *pParent)
        : QMenu(pParent), pTree(p), pNode(pWhose), pfnRun(std::move(pfn))
    {
        setAttribute(Qt::WA_DeleteOnClose);
        pTree->NodeListeners.Add(HearNode, this);
        Fill();
    }

    ~TreeMenu() override
    {
        pTree->NodeListeners.Remove(HearNode, this);
    }

  private:
    static void HearNode(TreeNode *pGone, void *pv)
    {
        auto *pMenu = static_cast<TreeMenu *>(pv);
        if (pGone != pMenu->pNode)
            return;
        pMenu->pNode = nullptr;
        pMenu->close();
    }

    void Fill()
    {
        QStack<QMenu *> menus;
        menus.push(this);
        for (const TreeMenuRow &row : BuildTreeMenu(pNode))
            switch (row.ePart) {
            case TreeMenuPart::Entry:
                AddEntry(menus.top(), row);
                break;
            case TreeMenuPart::Line:
                menus.top()->addSeparator();
                break;
            case TreeMenuPart::SubMenu:
                menus.push(menus.top()->addMenu(TextOf(row)));
                menus.top()->setEnabled(row.bEnabled);
                break;
            case TreeMenuPart::SubMenuEnd:
                menus.pop();
                break;
            }
    }

    static QString TextOf(const TreeMenuRow &row)
    {
        return QString::fromStdU16String(MenuTextOf(row.text));
    }

    void AddEntry(QMenu *pMenu, const TreeMenuRow &row)
    {
        QAction *pAction = pMenu->addAction(TextOf(row));
        pAction->setEnabled(row.bEnabled);
        connect(pAction, &QAction::triggered, this, [this, eCommand = row.eCommand, dwArgument = row.dwArgument] {
            if (pNode)
                pfnRun(std::exchange(pNode, nullptr), eCommand, dwArgument);
        });
    }

    PresetTree *pTree;
    TreeNode *pNode; // null: gone, or done
    RunFn pfnRun;
};

} // namespace

QMenu *MakeTreeMenu(PresetTree *pTree, TreeNode *pNode, QWidget *pParent, RunFn pfnRun)
{
    ASSERT_MAIN_THREAD();
    return new TreeMenu(pTree, pNode, std::move(pfnRun), pParent);
}
