// PresetTreeKeys_qt_test.cpp -- the preset tree by keys and the mouse, and the menus of its nodes
#include "editing/PresetTreeView_qt.h"

#include "editing/TreeMenu_qt.h"
#include "tests/TreeFixture.h"
#include "toolkit/DarkStyle_qt.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPointer>
#include <QTest>

namespace {

class TreeViewTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        lppsi = CreatePresetState(0);
        BuildPresetTree(tree, lppsi);
        pView = std::make_unique<PresetTreeView>(&tree);
        pView->resize(400, 600);
        pView->show();
        pView->SelectNode(tree.pRoot);
        pView->pfnContextMenu = [this](TreeNode *pNode, const QPoint &) { pMenuNode = pNode; };
    }
    void TearDown() override
    {
        pView.reset();
        TreeTest::TearDown();
    }

    TreeNode *AddPlaneNode()
    {
        return AddPlaneBranch(tree, Planes(), AddPlane(lppsi, 1, 0));
    }
    TreeNode *Planes()
    {
        return ChildOfType(tree.pRoot, OBJECT_PLANETREE);
    }
    QRect RectOf(const TreeNode *pNode)
    {
        return pView->visualRect(static_cast<PresetTreeModel *>(pView->model())->IndexOf(pNode));
    }

    std::unique_ptr<PresetTreeView> pView;
    TreeNode *pMenuNode = nullptr;
};

TEST_F(TreeViewTest, TheFirstChildOfAnExpandedNodeIsSeen)
{
    const TreeNode *pPlane = AddPlaneNode();
    EXPECT_TRUE(RectOf(pPlane).isValid());
    DeleteNode(tree, Planes()->apChild[0]);
    SetExpanded(tree, Planes(), false);
    pPlane = AddPlaneNode();
    EXPECT_FALSE(RectOf(pPlane).isValid()) << "of a node that was closed it is not";
}

TEST_F(TreeViewTest, OnlyTheLeftButtonSelectsAndOpens)
{
    const TreeNode *pPlane = AddPlaneNode();
    const QPoint place = RectOf(pPlane).center();
    QTest::mouseClick(pView->viewport(), Qt::RightButton, {}, place);
    QTest::mouseDClick(pView->viewport(), Qt::RightButton, {}, place);
    EXPECT_EQ(pView->SelectedNode(), tree.pRoot);
    EXPECT_TRUE(pPlane->bExpanded);
    QTest::mouseClick(pView->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(pView->SelectedNode(), pPlane);
    QTest::mouseDClick(pView->viewport(), Qt::LeftButton, {}, place);
    EXPECT_FALSE(pPlane->bExpanded);
}

TEST_F(TreeViewTest, KeysCloseOpenAndOfferTheMenuAndLeaveTheClipboardAlone)
{
    const TreeNode *pPlane = AddPlaneNode();
    QApplication::clipboard()->setText(QStringLiteral("a fragment"));
    QTest::keyClick(pView.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(tree.pRoot->bExpanded);
    EXPECT_FALSE(pPlane->bExpanded);
    QTest::keyClick(pView.get(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_TRUE(pPlane->bExpanded);
    EXPECT_EQ(pView->SelectedNode(), tree.pRoot);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("a fragment"));
    QTest::keyClick(pView.get(), Qt::Key_Return);
    EXPECT_FALSE(tree.pRoot->bExpanded);
    QTest::keyClick(pView.get(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(pMenuNode, tree.pRoot);
}

TEST_F(TreeViewTest, AMenuClosesWhenItsNodeGoesAndStaysWhenAnotherDoes)
{
    TreeNode *pPlane = AddPlaneNode();
    TreeNode *pOther = AddPlaneNode();
    u32 nRuns = 0;
    const QPointer<QMenu> pMenu =
        MakeTreeMenu(&tree, pPlane, pView.get(), [&](TreeNode *, TreeCommand, u32) { nRuns++; });
    pMenu->popup(QPoint(10, 10));
    DeleteNode(tree, pOther);
    EXPECT_TRUE(pMenu->isVisible());
    QAction *pRemove = pMenu->actions().first();
    BuildPresetTree(tree, nullptr);
    EXPECT_FALSE(pMenu && pMenu->isVisible());
    if (pMenu)
        pRemove->trigger();
    EXPECT_EQ(nRuns, 0u);
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    InstallDarkLook(&app);
    return RUN_ALL_TESTS();
}
