// PresetTreeView_qt_test.cpp -- tests PresetTreeModel_qt.cpp and PresetTreeView_qt.cpp over the tree of a real preset
#include "editing/PresetTreeView_qt.h"

#include "editing/TreeColors.h"
#include "editing/TreeTexts.h"
#include "tests/TreeFixture.h"
#include "tests/WindowFixture.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QScrollBar>
#include <QTest>
#include <QWindow>

#include <random>

namespace {

constexpr u32 TURNS = 2500;
constexpr size_t NODES_MIN = 30, NODES_MAX = 160;

// What the toolkit's tester of models complains about.
QStringList complaints;

void TakeMessage(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    if (context.category && QLatin1String(context.category) == QLatin1String("qt.modeltest"))
        complaints += text;
}

void Flatten(TreeNode *pNode, std::vector<TreeNode *> *pRows)
{
    pRows->push_back(pNode);
    for (TreeNode *pChild : pNode->apChild)
        if (pNode->bExpanded)
            Flatten(pChild, pRows);
}

std::string Texts(const std::vector<TreeNode *> &rows)
{
    std::string s;
    for (const TreeNode *pNode : rows)
        s += ToUtf8(pNode->sText) + "\n";
    return s;
}

class TreeView : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        SetDefaultUIColors();
        MakePreset(2);
        for (u32 i = 0; i < 4; i++) {
            ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL + i % 2, static_cast<i32>(i / 2), u"Idle.dll");
            GiveControls(pms, {{u"Group", u"Speed"}, {u"Group", u"Size"}, {u"Hue"}});
        }
        BuildPresetTree(tree, lppsi);
        pView = std::make_unique<PresetTreeView>(&tree);
        pView->pfnRemove = [this](TreeNode *pNode) { apRemoved.push_back(pNode); };
        pView->pfnContextMenu = [this](TreeNode *pNode, const QPoint &place) {
            apMenu.push_back(pNode);
            PlaceOfMenu = place;
        };
        pView->resize(320, 240);
        pView->show();
        pView->activateWindow();
        pView->setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowActive(pView.get()));
    }
    void TearDown() override
    {
        pView.reset();
        BuildPresetTree(tree, nullptr);
        TreeTest::TearDown();
    }

    ModuleSlot *Slot(u32 dwList = MODULEINDEX_DRAWFULL, u32 nPlane = 0) const
    {
        return lppsi->psPlane[nPlane]->apModule[dwList][0];
    }
    QModelIndex IndexOf(const TreeNode *pNode) const
    {
        return static_cast<PresetTreeModel *>(pView->model())->IndexOf(pNode);
    }
    TreeNode *AddRow()
    {
        return AddModuleBranch(tree, ListNode(OBJECT_DRAWEFFECTTREE), OBJECT_DRAWEFFECT, Slot());
    }
    // What the view shows, and what it is to show by the tree.
    std::vector<TreeNode *> Shown() const
    {
        std::vector<TreeNode *> rows;
        for (QModelIndex index = IndexOf(tree.pRoot); index.isValid(); index = pView->indexBelow(index))
            rows.push_back(PresetTreeModel::NodeOf(index));
        return rows;
    }
    std::vector<TreeNode *> Wanted() const
    {
        std::vector<TreeNode *> rows;
        if (tree.pRoot)
            Flatten(tree.pRoot, &rows);
        return rows;
    }
    void CheckRows() const
    {
        const auto shown = Shown(), wanted = Wanted();
        ASSERT_TRUE(shown == wanted) << "the view shows\n" << Texts(shown) << "instead of\n" << Texts(wanted);
    }
    QPoint PlaceOf(const TreeNode *pNode) const
    {
        return pView->visualRect(IndexOf(pNode)).center();
    }
    void Key(Qt::Key eKey, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(pView->windowHandle(), eKey, modifiers);
    }
    // Through the window system, which makes the menu events.
    void Click(Qt::MouseButton eButton, QPoint place)
    {
        QTest::mouseClick(pView->windowHandle(), eButton, {}, pView->viewport()->mapTo(pView.get(), place));
    }
    void ChangeAtRandom(std::mt19937 &random);

    std::unique_ptr<PresetTreeView> pView;
    std::vector<TreeNode *> apRemoved, apMenu;
    QPoint PlaceOfMenu;
};

// One letter each; as often as it happens.
constexpr std::string_view CHANGES = "iiiiiiddddmmmmmmttteeebbvvvsssp";

void TreeView::ChangeAtRandom(std::mt19937 &random)
{
    const auto apNode = AllNodes(tree.pRoot);
    TreeNode *pNode = apNode[random() % apNode.size()], *pTo = apNode[random() % apNode.size()];
    const size_t nTo = random() % (pTo->apChild.size() + 1);
    const bool bWant = random() % 2;
    if (apNode.size() < NODES_MIN || random() % 100 == 0)
        return BuildPresetTree(tree, lppsi);
    switch (CHANGES[random() % CHANGES.size()]) {
    case 'i':
        if (apNode.size() < NODES_MAX)
            bWant ? AddModuleBranch(tree, pTo, OBJECT_DRAWFULL, Slot()) : AddPlaneBranch(tree, pTo, *lppsi->psPlane);
        break;
    case 'd':
        if (pNode != tree.pRoot)
            DeleteNode(tree, pNode);
        break;
    case 'm':
        MoveNode(tree, pNode, pTo, nTo ? pTo->apChild[nTo - 1] : nullptr);
        break;
    case 't':
        SetNodeText(tree, pNode, PlaneText(static_cast<u32>(nTo)));
        break;
    case 'e':
        SetExpanded(tree, pNode, bWant);
        break;
    case 'b':
        ExpandBranch(tree, pNode, bWant);
        break;
    case 'v':
        pView->setExpanded(IndexOf(pNode), bWant);
        break;
    case 's':
        pView->SelectNode(pNode);
        break;
    default:
        QCoreApplication::processEvents();
    }
}

TEST_F(TreeView, AfterAnyChangesItShowsWhatTheTreeHasAndTheToolkitsTesterAgrees)
{
    complaints.clear();
    const QtMessageHandler pfnBefore = qInstallMessageHandler(TakeMessage);
    {
        const QAbstractItemModelTester tester(pView->model(), QAbstractItemModelTester::FailureReportingMode::Warning);
        std::mt19937 random(5);
        for (u32 i = 0; i < TURNS && !HasFatalFailure() && complaints.isEmpty(); i++) {
            ChangeAtRandom(random);
            CheckRows();
        }
    }
    qInstallMessageHandler(pfnBefore);
    EXPECT_TRUE(complaints.isEmpty()) << qPrintable(complaints.join('\n'));
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "1");
}
