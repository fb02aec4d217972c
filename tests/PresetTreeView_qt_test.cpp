// PresetTreeView_qt_test.cpp -- tests PresetTreeModel_qt.cpp and PresetTreeView_qt.cpp over the tree of a real preset
#include "editing/PresetTreeView_qt.h"

#include "editing/TreeColors.h"
#include "editing/TreeMenu_qt.h"
#include "editing/TreeTexts.h"
#include "tests/TreeFixture.h"
#include "tests/WindowFixture.h"
#include "toolkit/DarkStyle_qt.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QClipboard>
#include <QMenu>
#include <QPointer>
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

QRgb RgbOf(u32 dwColor)
{
    return qRgb(dwColor & 0xFF, dwColor >> 8 & 0xFF, dwColor >> 16 & 0xFF);
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

TEST_F(TreeView, SelectionPlaceAndExpansionStayWhenSomethingElseChanges)
{
    ExpandBranch(tree, tree.pRoot, true);
    TreeNode *pSpeed = FindNodeByObject(tree, nullptr, Slot(MODULEINDEX_DRAWPAINTER, 1)->apControl[0]);
    SetExpanded(tree, NodeOf(Slot(MODULEINDEX_DRAWPAINTER, 1)), true);
    pView->SelectNode(pSpeed);
    pView->verticalScrollBar()->setValue(25);
    const auto top = [this] { return PresetTreeModel::NodeOf(pView->indexAt({5, 5})); };
    const TreeNode *const pTop = top();
    ASSERT_TRUE(IsInBranch(pTop, NthPlaneNode(tree, 1)));
    const auto expectSame = [&](const char *pszAfter) {
        QCoreApplication::processEvents();
        CheckRows();
        EXPECT_EQ(pSpeed, pView->SelectedNode()) << pszAfter;
        EXPECT_EQ(pTop, top()) << pszAfter;
    };
    TreeNode *pBelow = AddModuleBranch(tree, tree.pRoot->apChild.back(), OBJECT_OVERLAYEFFECT, Slot());
    expectSame("a row more below");
    DeleteNode(tree, pBelow);
    expectSame("a row less below");
    const int nTop = pView->verticalScrollBar()->value();
    TreeNode *pAbove = AddRow();
    expectSame("rows more above");
    EXPECT_GT(pView->verticalScrollBar()->value(), nTop);
    DeleteNode(tree, pAbove);
    expectSame("rows less above");
    AddRow();
    pView->verticalScrollBar()->setValue(3); // and the user's scrolling meanwhile is no change of rows
    QCoreApplication::processEvents();
    EXPECT_EQ(3, pView->verticalScrollBar()->value());
    SetExpanded(tree, NodeOf(Slot()), false);
    MoveNode(tree, NthPlaneNode(tree, 1), tree.pRoot->apChild[0], nullptr);
    CheckRows();
    EXPECT_EQ(pSpeed, pView->SelectedNode()) << "it went along with its plane";
    SetNodeText(tree, tree.pRoot, u"*two\nlines");
    EXPECT_EQ("*two lines", pView->model()->data(IndexOf(tree.pRoot), Qt::DisplayRole).toString());
}

TEST_F(TreeView, ABranchClosesAndOpensByKeysAndItsNodeStaysSelected)
{
    TreeNode *pPlane = NthPlaneNode(tree, 0);
    pView->SelectNode(pPlane);
    QApplication::clipboard()->setText(QStringLiteral("a fragment"));
    Key(Qt::Key_X, Qt::ControlModifier);
    CheckRows();
    for (const TreeNode *pNode : AllNodes(pPlane))
        EXPECT_TRUE(pNode->bExpanded) << ToUtf8(pNode->sText);
    EXPECT_FALSE(NodeOf(Slot(MODULEINDEX_DRAWFULL, 1))->bExpanded) << "the other plane's";
    Key(Qt::Key_C, Qt::ControlModifier);
    CheckRows();
    for (const TreeNode *pNode : AllNodes(pPlane))
        EXPECT_FALSE(pNode->bExpanded) << ToUtf8(pNode->sText);
    EXPECT_EQ(pPlane, pView->SelectedNode());
    Key(Qt::Key_Return);
    EXPECT_TRUE(pPlane->bExpanded && Shown()[3] == pPlane->apChild[0]);
    Key(Qt::Key_Left);
    EXPECT_FALSE(pPlane->bExpanded) << "the toolkit's own keys arrive in the tree";
    EXPECT_EQ("a fragment", QApplication::clipboard()->text());
    Key(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(std::vector<TreeNode *>{pPlane}, apMenu);
}

TEST_F(TreeView, AClickThatSelectsAndADoubleClickOrEnterAskForPanels)
{
    std::vector<std::pair<TreeNode *, TreeNode *>> clicks, none;
    std::vector<TreeNode *> brought;
    pView->pfnClicked = [&](TreeNode *pNode, TreeNode *pOld) { clicks.push_back({pNode, pOld}); };
    pView->pfnBring = [&](TreeNode *pNode) { brought.push_back(pNode); };
    TreeNode *pPlane = NthPlaneNode(tree, 0), *pBranch = tree.pRoot->apChild[0];
    pView->SelectNode(pBranch);
    Key(Qt::Key_Down);
    EXPECT_TRUE(pView->SelectedNode() == pPlane && clicks == none) << "a selection by key opens nothing";
    Click(Qt::LeftButton, PlaceOf(pBranch));
    Click(Qt::LeftButton, PlaceOf(pBranch));
    clicks.resize(1); // the toolkit may take the two for a double click
    EXPECT_EQ(clicks[0], std::pair(pBranch, pPlane));
    Click(Qt::LeftButton, PlaceOf(pPlane));
    brought.clear();
    QTest::mouseDClick(pView->viewport(), Qt::LeftButton, {}, PlaceOf(pPlane));
    EXPECT_EQ(std::vector<TreeNode *>{pPlane}, brought);
    EXPECT_FALSE(pPlane->bExpanded);
    QTest::mouseDClick(pView->viewport(), Qt::RightButton, {}, PlaceOf(pPlane));
    EXPECT_EQ(1u, brought.size());
    EXPECT_FALSE(pPlane->bExpanded);
    pView->SelectNode(pBranch);
    Key(Qt::Key_Return);
    EXPECT_EQ(pBranch, brought.back());
}

TEST_F(TreeView, OnlyAPressOnANodesTextSelectsAndNothingTakesItBack)
{
    std::vector<TreeNode *> brought;
    pView->pfnBring = [&](TreeNode *pNode) { brought.push_back(pNode); };
    TreeNode *pPlane = NthPlaneNode(tree, 0), *pBranch = tree.pRoot->apChild[0];
    QTest::mousePress(pView->viewport(), Qt::LeftButton, {}, PlaceOf(pPlane));
    QTest::mouseMove(pView->viewport(), PlaceOf(pBranch));
    QMouseEvent move(QEvent::MouseMove, PlaceOf(pBranch), pView->viewport()->mapToGlobal(PlaceOf(pBranch)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(pView->viewport(), &move);
    EXPECT_EQ(pPlane, pView->SelectedNode()) << "a press that is drawn on";
    QTest::mouseRelease(pView->viewport(), Qt::LeftButton, {}, PlaceOf(pBranch));
    QTest::mouseClick(pView->viewport(), Qt::LeftButton, Qt::ControlModifier, PlaceOf(pPlane));
    EXPECT_EQ(pPlane, pView->SelectedNode());
    const QPoint arrow(pView->visualRect(IndexOf(pPlane)).left() - pView->indentation() / 2, PlaceOf(pPlane).y());
    QTest::mouseClick(pView->viewport(), Qt::LeftButton, {}, arrow);
    QTest::mouseDClick(pView->viewport(), Qt::LeftButton, {}, arrow);
    EXPECT_TRUE(brought.empty()) << "the arrow of a node";
}

TEST_F(TreeView, AMenuClosesWhenItsNodeGoesAndStaysWhenAnotherDoes)
{
    u32 nRuns = 0;
    const QPointer<QMenu> pMenu =
        MakeTreeMenu(&tree, NthPlaneNode(tree, 0), pView.get(), [&](TreeNode *, TreeCommand, u32) { nRuns++; });
    pMenu->popup(QPoint(10, 10));
    DeleteNode(tree, NthPlaneNode(tree, 1));
    EXPECT_TRUE(pMenu->isVisible());
    QAction *pRemove = pMenu->actions().first();
    BuildPresetTree(tree, nullptr);
    EXPECT_FALSE(pMenu && pMenu->isVisible());
    if (pMenu)
        pRemove->trigger();
    EXPECT_EQ(nRuns, 0u);
}

TEST_F(TreeView, TheSelectedNodeIsAlwaysOneThatIsShown)
{
    TreeNode *pPlane = NthPlaneNode(tree, 1);
    pView->SelectNode(NodeOf(Slot(MODULEINDEX_DRAWFULL, 1)));
    pView->setExpanded(IndexOf(pPlane), false); // by the mouse, which selects nothing there
    EXPECT_EQ(pPlane, pView->SelectedNode());
    Key(Qt::Key_Delete);
    EXPECT_EQ(std::vector<TreeNode *>{pPlane}, apRemoved) << "and no module that nobody sees";
    pView->SelectNode(NodeOf(Slot(MODULEINDEX_DRAWFULL, 0)));
    ExpandBranch(tree, tree.pRoot, false);
    EXPECT_EQ(tree.pRoot, pView->SelectedNode());
    CheckRows();
    BuildPresetTree(tree, nullptr);
    for (Qt::Key eKey : {Qt::Key_Delete, Qt::Key_Return, Qt::Key_Down, Qt::Key_Menu})
        Key(eKey);
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_TRUE(!pView->SelectedNode() && apRemoved.size() == 1 && apMenu.empty()) << "an empty tree";
}

TEST_F(TreeView, ARightClickGivesTheNodeUnderItAndTheMenuKeyTheSelectedOne)
{
    TreeNode *pPlane = NthPlaneNode(tree, 0);
    pView->SelectNode(tree.pRoot);
    Click(Qt::RightButton, PlaceOf(pPlane));
    EXPECT_EQ(std::vector<TreeNode *>{pPlane}, apMenu);
    EXPECT_EQ(pView->viewport()->mapToGlobal(PlaceOf(pPlane)), PlaceOfMenu);
    EXPECT_EQ(tree.pRoot, pView->SelectedNode());
    EXPECT_TRUE(pPlane->bExpanded);
    ExpandBranch(tree, tree.pRoot, false);
    Click(Qt::RightButton, {100, 200});
    EXPECT_EQ(1u, apMenu.size()) << "nothing is there";
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(pView->viewport(), &key);
    EXPECT_EQ(tree.pRoot, apMenu.back());
    const int yBeside = pView->viewport()->mapFromGlobal(PlaceOfMenu).y();
    EXPECT_LE(std::abs(yBeside - PlaceOf(tree.pRoot).y()), pView->visualRect(pView->currentIndex()).height() / 2 + 1);
    Click(Qt::LeftButton, PlaceOf(tree.pRoot));
    EXPECT_EQ(2u, apMenu.size());
}

TEST_F(TreeView, RowsAreInTheColoursOfTheirNodesAsTheyAreNow)
{
    ModuleSlot *pms = Slot();
    pms->apControl[0]->Base.dwSource = pms->apControl[0]->Base.dwDefaultSource = FLUIDSOURCE_FIXED;
    pms->apControl[2]->Base.pDependsOn = pms->apControl[0];
    pms->apControl[2]->Base.dwDependOp = DEPENDOP_GREATER;
    pms->apControl[2]->Base.fDependValue = 0.9f;
    ExpandBranch(tree, NthPlaneNode(tree, 0), true);
    pView->resize(900, 1500);
    pView->setFont(QFont(pView->font().family(), 30)); // letters with pixels that are not rounded
    const auto check = [&](TreeNode *pNode, bool bSelected) {
        QCoreApplication::processEvents();
        const QImage image = pView->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const TreeRowColors colors = ColorTreeNode(tree, pNode, bSelected);
        const QRect row = pView->visualRect(IndexOf(pNode));
        EXPECT_EQ(RgbOf(colors.dwBack), image.pixel(row.topLeft() + QPoint(3, 3))) << ToUtf8(pNode->sText);
        u32 nText = 0;
        for (int x = row.left(); x < row.right(); x++)
            for (int y = row.top(); y < row.bottom(); y++)
                nText += image.pixel(x, y) == RgbOf(colors.dwText);
        EXPECT_GT(nText, 20u) << ToUtf8(pNode->sText);
        return colors;
    };
    TreeNode *pSpeed = NodeOf(pms->apControl[0]), *pHue = NodeOf(pms->apControl[2]), *pGroup = pSpeed->pParent;
    const TreeRowColors plain = check(pSpeed, false), inactive = check(pHue, false);
    EXPECT_NE(plain.dwText, inactive.dwText);
    pms->apControl[0]->Float.fValue = 0.95f; // nobody says a word of it
    const TreeRowColors changed = check(pSpeed, false);
    EXPECT_NE(plain.dwBack, changed.dwBack);
    EXPECT_NE(plain.dwBack, check(pGroup, false).dwBack) << "the group of a changed control";
    EXPECT_EQ(plain.dwText, check(pHue, false).dwText) << "active now";
    for (TreeNode *pNode : {tree.pRoot, NthPlaneNode(tree, 0), NodeOf(pms)})
        check(pNode, false);
    pView->SelectNode(pHue);
    check(pHue, false); // the frame of the focus shows it
    pView->clearFocus();
    EXPECT_NE(plain.dwBack, check(pHue, true).dwBack);
    pView->SelectNode(tree.pRoot);
    SetUIColor(UICOLOR_TREE_BACKGROUND, 0x00102030);
    EXPECT_EQ(0x00102030u, check(pHue, false).dwBack);
}

TEST_F(TreeView, AScreenReaderHearsTheNameAndEveryRow)
{
    QAccessibleInterface *pReader = QAccessible::queryAccessibleInterface(pView.get());
    ASSERT_TRUE(pReader && pReader->tableInterface());
    EXPECT_EQ("Preset", pReader->text(QAccessible::Name));
    EXPECT_EQ(QAccessible::Tree, pReader->role());
    SetExpanded(tree, NthPlaneNode(tree, 0), false);
    QCoreApplication::processEvents();
    const auto wanted = Wanted();
    ASSERT_EQ(static_cast<int>(wanted.size()), pReader->tableInterface()->rowCount());
    for (int i = 0; i < pReader->tableInterface()->rowCount(); i++) {
        const TreeNode *pNode = wanted[static_cast<size_t>(i)];
        const QAccessibleInterface *pRow = pReader->tableInterface()->cellAt(i, 0);
        EXPECT_EQ(QString::fromStdU16String(pNode->sText), pRow->text(QAccessible::Name));
        EXPECT_EQ(!pNode->apChild.empty(), pRow->state().expandable == 1) << ToUtf8(pNode->sText);
        EXPECT_EQ(pNode->bExpanded == 1, pRow->state().expanded == 1) << ToUtf8(pNode->sText);
    }
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
