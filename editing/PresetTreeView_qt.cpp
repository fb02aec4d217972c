// PresetTreeView_qt.cpp -- the preset tree on the screen: colours, keys, expansion
#include "editing/PresetTreeView_qt.h"

#include "editing/TreeColors.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/LeftShift_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QContextMenuEvent>
#include <QHash>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

namespace {

constexpr u32 KEY_F10 = KEY_F1 + 9;

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
        pOption->palette = PaletteOf(pOption->palette, colors.dwText);
        pOption->backgroundBrush = ColorOf(colors.dwBack);
    }

  private:
    // Rows have few colours, and a palette made anew for each costs more than its text.
    const QPalette &PaletteOf(const QPalette &base, u32 dwText) const
    {
        if (nBaseKey != base.cacheKey())
            Palettes.clear();
        nBaseKey = base.cacheKey();
        const auto i = Palettes.find(dwText);
        if (i != Palettes.end())
            return *i;
        QPalette palette = base;
        palette.setColor(QPalette::Text, ColorOf(dwText));
        return *Palettes.insert(dwText, palette);
    }

    mutable QHash<u32, QPalette> Palettes; // by the colour of their text
    mutable qint64 nBaseKey = 0;           // of the palette that they are made from
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
        TakeOwnExpansion(news.pNode->pParent); // the view forgets that of a node without children
        [[fallthrough]];
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

// With a layout put off, an expansion is only noted: one layout serves them all.
void PresetTreeView::TakeOwnExpansion(const TreeNode *pNode)
{
    if (!pNode)
        return;
    const bool bWasFollowing = bFollowing;
    bFollowing = true;
    if (!pNode->apChild.empty())
        scheduleDelayedItemsLayout();
    setExpanded(pModel->IndexOf(pNode), pNode->bExpanded != 0);
    bFollowing = bWasFollowing;
}

void PresetTreeView::TakeExpansion(const TreeNode *pBranch)
{
    if (!pBranch)
        return;
    TakeOwnExpansion(pBranch);
    for (const TreeNode *pChild : pBranch->apChild)
        if (!pChild->apChild.empty() || pChild->bExpanded)
            TakeExpansion(pChild);
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

// What a double click does.
void PresetTreeView::EnterSelected()
{
    TreeNode *pNode = SelectedNode();
    if (!pNode)
        return;
    SetExpanded(*pModel->Tree(), pNode, !pNode->bExpanded);
    Bring(pNode);
}

void PresetTreeView::Bring(TreeNode *pNode)
{
    if (pNode && pfnBring && !LeftShiftIsDown())
        pfnBring(pNode);
}

// The lines before a node are no part of what is selected.
void PresetTreeView::drawBranches(QPainter *pPainter, const QRect &rect, const QModelIndex &index) const
{
    pPainter->fillRect(rect, palette().color(QPalette::Base));
    QTreeView::drawBranches(pPainter, rect, index);
}

// Letters by their place on keyboards without Latin ones. What the view itself has for these keys must not run: it
// would copy the node's text over what lies on the clipboard.
void PresetTreeView::keyPressEvent(QKeyEvent *pEvent)
{
    const KeyEvent event = KeyEventOf(*pEvent);
    const bool bCtrl = event.dwModifiers & MODIFIER_CTRL;
    if (bCtrl && event.dwKey == 'C')
        ExpandSelected(false);
    else if (bCtrl && event.dwKey == 'X')
        ExpandSelected(true);
    else if (event.dwKey == KEY_RETURN)
        EnterSelected();
    else if (event.dwKey == KEY_F10 && event.dwModifiers == MODIFIER_SHIFT)
        OpenMenuByKey();
    else if (event.dwKey != KEY_DELETE)
        QTreeView::keyPressEvent(pEvent);
    else if (TreeNode *pNode = SelectedNode(); pNode && pfnRemove)
        pfnRemove(pNode);
}

// A right click opens the menu of what lies under it and selects nothing.
void PresetTreeView::mousePressEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return;
    TreeNode *pOld = SelectedNode();
    QTreeView::mousePressEvent(pEvent);
    TreeNode *pNode = SelectedNode();
    if (pNode && pNode != pOld && pfnClicked && !LeftShiftIsDown())
        pfnClicked(pNode, pOld);
}

// A press selects; the toolkit would go on selecting what the pointer is drawn over.
void PresetTreeView::mouseMoveEvent(QMouseEvent *pEvent)
{
    if (!(pEvent->buttons() & Qt::LeftButton))
        QTreeView::mouseMoveEvent(pEvent);
}

// Ctrl takes no selection back.
QItemSelectionModel::SelectionFlags PresetTreeView::selectionCommand(const QModelIndex &index,
                                                                     const QEvent *pEvent) const
{
    const auto flags = QTreeView::selectionCommand(index, pEvent);
    return flags & QItemSelectionModel::Deselect ? QItemSelectionModel::ClearAndSelect : flags;
}

void PresetTreeView::mouseDoubleClickEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return;
    QTreeView::mouseDoubleClickEvent(pEvent);
    if (const QModelIndex index = indexAt(pEvent->pos()); visualRect(index).contains(pEvent->pos())) // not its arrow
        Bring(PresetTreeModel::NodeOf(index));
}

// Under the node, or as near to it as the view shows.
QPoint PresetTreeView::MenuPlace(const QModelIndex &index)
{
    scrollTo(index);
    const QRect seen = visualRect(index).intersected(viewport()->rect());
    return viewport()->mapToGlobal(seen.isEmpty() ? viewport()->rect().topLeft() : seen.bottomLeft());
}

// Shift and F10 do it too: many keyboards have no menu key.
void PresetTreeView::OpenMenuByKey()
{
    const QModelIndex index = currentIndex();
    if (index.isValid() && pfnContextMenu)
        pfnContextMenu(PresetTreeModel::NodeOf(index), MenuPlace(index));
}

void PresetTreeView::contextMenuEvent(QContextMenuEvent *pEvent)
{
    if (pEvent->reason() == QContextMenuEvent::Keyboard)
        return OpenMenuByKey();
    const QModelIndex index = indexAt(pEvent->pos());
    if (index.isValid() && pfnContextMenu)
        pfnContextMenu(PresetTreeModel::NodeOf(index), pEvent->globalPos());
}
