// PresetTreeView_qt.cpp -- the preset tree on the screen: colours, keys, expansion
#include "editing/PresetTreeView_qt.h"

#include "editing/TreeColors.h"
#include "toolkit/DialogPieces_qt.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>

namespace {

QColor ColorOf(u32 dwColor)
{
    return QColor(static_cast<int>(dwColor & 0xFF), static_cast<int>(dwColor >> 8 & 0xFF),
                  static_cast<int>(dwColor >> 16 & 0xFF));
}

// The row's colours stand for the selection too: the style's own is switched off.
class TreeDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem *pOption, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(pOption, index);
        const auto *pModel = static_cast<const PresetTreeModel *>(index.model());
        const bool bSelected = pOption->state & QStyle::State_Selected && !(pOption->state & QStyle::State_HasFocus);
        const TreeRowColors colors = ColorTreeNode(*pModel->Tree(), PresetTreeModel::NodeOf(index), bSelected);
        pOption->state &= ~(QStyle::State_Selected | QStyle::State_MouseOver);
        pOption->palette.setColor(QPalette::Text, ColorOf(colors.dwText));
        pOption->backgroundBrush = ColorOf(colors.dwBack);
    }
};

} // namespace

PresetTreeView::PresetTreeView(PresetTree *pTree, QWidget *pParent)
    : QTreeView(pParent), pModel(new PresetTreeModel(pTree, this))
{
    setModel(pModel);
    setItemDelegate(new TreeDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(false);
    setAccessibleName(QStringLiteral("Preset"));
    ZoomListFont(this);
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        if (!bFollowing)
            SetExpanded(*pModel->Tree(), PresetTreeModel::NodeOf(index), true);
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        if (!bFollowing)
            SetExpanded(*pModel->Tree(), PresetTreeModel::NodeOf(index), false);
        SelectInsteadOfHidden(PresetTreeModel::NodeOf(index));
    });
    pTree->TreeListeners.Add(Hear, this); // behind the model's, which the view has to know of first
    TakeExpansion(pTree->pRoot);
}

PresetTreeView::~PresetTreeView()
{
    pModel->Tree()->TreeListeners.Remove(Hear, this);
}

void PresetTreeView::Hear(const TreeNews &news, void *pv)
{
    static_cast<PresetTreeView *>(pv)->Take(news);
}

void PresetTreeView::Take(const TreeNews &news)
{
    switch (news.eKind) {
    case TreeNewsKind::Reset:
        TakeExpansion(pModel->Tree()->pRoot);
        break;
    case TreeNewsKind::Inserted:
    case TreeNewsKind::Moved:
    case TreeNewsKind::Expansion:
        TakeExpansion(news.pNode);
        break;
    case TreeNewsKind::BranchChanged:
        viewport()->update();
        break;
    default:
        break;
    }
}

// With a layout put off, an expansion is only noted: one layout serves them all. Nodes without children count too:
// what comes into an empty list is to be seen.
void PresetTreeView::TakeExpansion(const TreeNode *pBranch)
{
    if (!pBranch)
        return;
    const bool bWasFollowing = bFollowing;
    bFollowing = true;
    if (!pBranch->apChild.empty())
        scheduleDelayedItemsLayout();
    setExpanded(pModel->IndexOf(pBranch), pBranch->bExpanded != 0);
    for (const TreeNode *pChild : pBranch->apChild)
        TakeExpansion(pChild);
    bFollowing = bWasFollowing;
}

TreeNode *PresetTreeView::SelectedNode() const
{
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? nullptr : PresetTreeModel::NodeOf(selected.first());
}

void PresetTreeView::SelectNode(const TreeNode *pNode)
{
    setCurrentIndex(pModel->IndexOf(pNode));
}

// Keys must not act on what nobody sees.
void PresetTreeView::SelectInsteadOfHidden(const TreeNode *pCollapsed)
{
    const TreeNode *pSelected = SelectedNode();
    if (!pSelected || pSelected == pCollapsed || !IsInBranch(pSelected, pCollapsed))
        return;
    setAutoScroll(false); // which would open all that the node lies in
    SelectNode(pCollapsed);
    setAutoScroll(true);
}

void PresetTreeView::paintEvent(QPaintEvent *pEvent)
{
    BeginPaintTurn(*pModel->Tree());
    QTreeView::paintEvent(pEvent);
    Top = indexAt({0, 0});
}

void PresetTreeView::scrollContentsBy(int dx, int dy)
{
    if (dy)
        Top = QModelIndex();
    QTreeView::scrollContentsBy(dx, dy);
}

// What the user looks at stays where it is when rows come or go above.
void PresetTreeView::doItemsLayout()
{
    const QPersistentModelIndex wasTop = Top; // it is forgotten while the bar gets its new range
    QTreeView::doItemsLayout();
    if (const QRect row = visualRect(wasTop); row.isValid())
        verticalScrollBar()->setValue(verticalScrollBar()->value() + row.top() / row.height());
}

void PresetTreeView::ExpandSelected(bool bExpanded)
{
    TreeNode *pNode = SelectedNode();
    if (!pNode)
        return;
    ExpandBranch(*pModel->Tree(), pNode, bExpanded);
    SelectNode(pNode);
}

void PresetTreeView::ToggleExpansion()
{
    if (TreeNode *pNode = SelectedNode())
        SetExpanded(*pModel->Tree(), pNode, !pNode->bExpanded);
}

void PresetTreeView::keyPressEvent(QKeyEvent *pEvent)
{
    const bool bCtrl = pEvent->modifiers() & Qt::ControlModifier;
    if (bCtrl && pEvent->key() == Qt::Key_C)
        ExpandSelected(false);
    else if (bCtrl && pEvent->key() == Qt::Key_X)
        ExpandSelected(true);
    else if (pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter)
        ToggleExpansion();
    else if (pEvent->key() != Qt::Key_Delete)
        QTreeView::keyPressEvent(pEvent);
    else if (TreeNode *pNode = SelectedNode(); pNode && pfnRemove)
        pfnRemove(pNode);
}

// A right click opens the menu of what lies under it and selects nothing.
void PresetTreeView::mousePressEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::RightButton)
        QTreeView::mousePressEvent(pEvent);
}

void PresetTreeView::contextMenuEvent(QContextMenuEvent *pEvent)
{
    const bool bByKey = pEvent->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = bByKey ? currentIndex() : indexAt(pEvent->pos());
    if (!index.isValid() || !pfnContextMenu)
        return;
    const QPoint place = bByKey ? viewport()->mapToGlobal(visualRect(index).center()) : pEvent->globalPos();
    pfnContextMenu(PresetTreeModel::NodeOf(index), place);
}
