// ItemPanel_qt.cpp -- the panel of a control that is one of a list of items
#include "controls/ControlManager.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/ValueLists.h"
#include "controls/panels/ValuePanel_qt.h"
#include "platform/Assert.h"

#include <QAbstractItemView>
#include <QBoxLayout>
#include <QComboBox>
#include <QListView>
#include <QStringListModel>

namespace {

constexpr int LIST_PADDING = 24; // beside the longest text of the dropped list
constexpr int CHARS_SEEN = 24;   // of a text in the closed list

class ItemPanel : public ValuePanel {
  public:
    ItemPanel(TreeNode *pNode, QWidget *pOwner);

  protected:
    void FillValue() override;
    void FollowValue() override;
    void SourceChanged() override;

  private:
    void FillRows();
    void ShowChosen();
    void TakeRow(int iRow);

    QComboBox *pSelect;
    QStringListModel *pTexts;
    std::vector<ListRow> Rows;
};

// Ten thousand rows are filled in at once and measured by one: the list asks for no more than it shows.
ItemPanel::ItemPanel(TreeNode *pNode, QWidget *pOwner)
    : ValuePanel(pNode, pOwner), pSelect(new QComboBox), pTexts(new QStringListModel(this))
{
    const ControlRecord *pctl = Control();
    VD_ASSERT(pctl->Base.dwType == CONTROLTYPE_ITEMSELECT);
    VD_ASSERT(!ControlSupportsFluidSources(pctl));
    auto *pList = new QListView;
    pList->setUniformItemSizes(true);
    pSelect->setView(pList);
    pSelect->setModel(pTexts);
    pSelect->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    pSelect->setMinimumContentsLength(CHARS_SEEN);
    connect(pSelect, &QComboBox::activated, this, [this](int iRow) { TakeRow(iRow); });
    pContent->addLayout(LabelledRow(QStringLiteral("Select:"), pSelect));
    FinishValue();
}

void ItemPanel::FillRows()
{
    std::vector<ListRow> rows = ItemRows(Control());
    if (rows == Rows)
        return;
    Rows = std::move(rows);
    QStringList texts;
    texts.reserve(static_cast<qsizetype>(Rows.size()));
    for (const ListRow &row : Rows)
        texts += QString::fromStdU16String(row.sText);
    pTexts->setStringList(texts);
    if (const i32 iLongest = LongestRow(Rows); iLongest != NO_ROW)
        pSelect->view()->setMinimumWidth(pSelect->fontMetrics().horizontalAdvance(texts[iLongest]) + LIST_PADDING);
}

void ItemPanel::ShowChosen()
{
    const i32 iRow = ChosenItemRow(Rows, Control());
    const i32 iNow = pSelect->currentIndex();
    // Of several rows with the value, the one that the user has picked stays.
    if (iNow >= 0 && iRow >= 0 && Rows[static_cast<u32>(iNow)].dwValue == Rows[static_cast<u32>(iRow)].dwValue)
        return;
    pSelect->setCurrentIndex(iRow);
}

void ItemPanel::FillValue()
{
    FillRows();
    pSelect->setEnabled(SourceIsFixed(Control()));
    ShowChosen();
}

// What a random source has drawn. A list in use is left alone.
void ItemPanel::FollowValue()
{
    if (!SourceIsFixed(Control()))
        ShowChosen();
}

void ItemPanel::SourceChanged()
{
    pSelect->setEnabled(SourceIsFixed(Control()));
}

void ItemPanel::TakeRow(int iRow)
{
    Write(WriteNumber(Place(), EditField::Item, Rows[static_cast<u32>(iRow)].dwValue));
    if (Control())
        ShowChosen(); // where the edit was refused, it is still the old one
}

} // namespace

Panel *MakeItemPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new ItemPanel(pNode, pOwner);
}
