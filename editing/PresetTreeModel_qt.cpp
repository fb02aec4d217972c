// PresetTreeModel_qt.cpp -- the preset tree as the toolkit's views read it
#include "editing/PresetTreeModel_qt.h"

#include "editing/TreeTexts.h"
#include "toolkit/Commands.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/Icons_qt.h"

#include <QIcon>

#include <array>
#include <string>

namespace {

constexpr u32 NODE_ICONS = 8;

const QIcon &NodeIcon(u32 nIcon)
{
    static std::array<QIcon, NODE_ICONS> aIcon;
    QIcon &icon = aIcon.at(nIcon);
    if (icon.isNull())
        icon = UserIcon(("tree-" + std::to_string(nIcon)).c_str(), UICOLOR_TREE_TEXT);
    return icon;
}

QString Text(const std::u16string &s)
{
    return QString::fromStdU16String(s);
}

} // namespace

PresetTreeModel::PresetTreeModel(PresetTree *p, QObject *pParent) : QAbstractItemModel(pParent), pTree(p)
{
    pTree->TreeListeners.Add(Hear, this);
}

PresetTreeModel::~PresetTreeModel()
{
    pTree->TreeListeners.Remove(Hear, this);
}

void PresetTreeModel::Hear(const TreeNews &news, void *pv)
{
    static_cast<PresetTreeModel *>(pv)->Take(news);
}

void PresetTreeModel::Take(const TreeNews &news)
{
    const int nRow = static_cast<int>(news.nRow);
    switch (news.eKind) {
    case TreeNewsKind::Resetting:
        beginResetModel();
        break;
    case TreeNewsKind::Reset:
        endResetModel();
        break;
    case TreeNewsKind::Inserting:
        beginInsertRows(IndexOf(news.pParent), nRow, nRow);
        break;
    case TreeNewsKind::Inserted:
        endInsertRows();
        break;
    case TreeNewsKind::Removing:
        beginRemoveRows(IndexOf(news.pParent), nRow, nRow);
        break;
    case TreeNewsKind::Removed:
        endRemoveRows();
        break;
    case TreeNewsKind::Moving:
        beginMoveRows(IndexOf(news.pParent), nRow, nRow, IndexOf(news.pTo), static_cast<int>(news.nTo));
        break;
    case TreeNewsKind::Moved:
        endMoveRows();
        break;
    case TreeNewsKind::Changed:
        dataChanged(IndexOf(news.pNode), IndexOf(news.pNode));
        break;
    case TreeNewsKind::BranchChanged:
    case TreeNewsKind::Expansion:
        break; // how nodes are shown is the view's
    }
}

QModelIndex PresetTreeModel::IndexOf(const TreeNode *pNode) const
{
    return pNode ? createIndex(static_cast<int>(pNode->nRow), 0, pNode) : QModelIndex();
}

QModelIndex PresetTreeModel::index(int nRow, int nColumn, const QModelIndex &parentIndex) const
{
    if (nRow < 0 || nColumn != 0 || nRow >= rowCount(parentIndex))
        return {};
    return IndexOf(parentIndex.isValid() ? NodeOf(parentIndex)->apChild[static_cast<size_t>(nRow)] : pTree->pRoot);
}

QModelIndex PresetTreeModel::parent(const QModelIndex &child) const
{
    return child.isValid() ? IndexOf(NodeOf(child)->pParent) : QModelIndex();
}

int PresetTreeModel::rowCount(const QModelIndex &parentIndex) const
{
    if (!parentIndex.isValid())
        return pTree->pRoot ? 1 : 0;
    return static_cast<int>(NodeOf(parentIndex)->apChild.size());
}

int PresetTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant PresetTreeModel::data(const QModelIndex &index, int nRole) const
{
    if (!index.isValid())
        return {};
    const TreeNode *pNode = NodeOf(index);
    switch (nRole) {
    case Qt::DisplayRole:
        return Text(OneLine(pNode->sText));
    case Qt::DecorationRole:
        return NodeIcon(KindOf(pNode->Info.dwType).nIcon);
    case Qt::ToolTipRole:
        return PlainTip(Text(TipText(pNode)));
    default:
        return {};
    }
}
