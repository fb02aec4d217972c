// ListPanel_qt.cpp -- the panel of a list of modules
#include "controls/panels/ModuleRows_qt.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/PictureButtons_qt.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/KeyCodes.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QToolButton>

#include <algorithm>
#include <iterator>

namespace {

constexpr QSize IN_USE_SIZE(180, 240), ON_OFFER_SIZE(420, 240);

struct ButtonRow {
    SlotButton eButton;
    const char *pszIcon;
    const char16_t *pszText;
};
constexpr ButtonRow asButton[] = {
    {SlotButton::MoveUp, "up", u"Move Up"},
    {SlotButton::Add, "add", u"Add Module"},
    {SlotButton::Remove, "remove", u"Remove Module"},
    {SlotButton::MoveDown, "down", u"Move Down"},
};
static_assert(std::size(asButton) == static_cast<size_t>(SlotButton::Count));

class ListPanel : public Panel {
  public:
    ListPanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        auto *pLayout = new QHBoxLayout;
        pLayout->addLayout(MakeInUse());
        pLayout->addLayout(MakeOnOffer(), 1);
        Finish(pLayout);
    }

  protected:
    // What is selected stays so, wherever it stands now.
    void Fill() override
    {
        const ModuleSlot *pms = SelectedSlot();
        pInUse->Replace(RowsInUse(Node()));
        const auto it = std::ranges::find(pInUse->Rows(), pms, &ModuleRow::pms);
        if (pms && it != pInUse->Rows().end() && SelectedSlot() != pms)
            pInUseView->setCurrentIndex(pInUse->index(static_cast<int>(it - pInUse->Rows().begin()), 0));
    }
    void Follow() override
    {
        Fill();
    }

  private:
    QLayout *MakeInUse()
    {
        pInUse = new ModuleRows(1, this);
        pInUseView = new ModuleListView(pInUse, QStringLiteral("Using"));
        pInUseView->setMinimumSize(IN_USE_SIZE);
        pInUseView->setSelectionMode(QAbstractItemView::SingleSelection);
        pInUseView->pfnKey = [this](u32 dwKey) { return dwKey == KEY_DELETE && (Click(SlotButton::Remove), true); };
        auto *pButtons = new QHBoxLayout;
        for (const ButtonRow &row : asButton) {
            QToolButton *pButton = MakePictureButton(row.pszIcon, QString::fromUtf16(row.pszText));
            connect(pButton, &QToolButton::clicked, this, [this, eButton = row.eButton] { Click(eButton); });
            pButtons->addWidget(pButton);
        }
        pButtons->addStretch();
        QVBoxLayout *pColumn = MakeColumn(u"Using:", pInUseView);
        pColumn->addLayout(pButtons);
        return pColumn;
    }
    QLayout *MakeOnOffer()
    {
        pOnOffer = new ModuleRows(MODULE_COLUMNS, this);
        pOnOffer->Replace(RowsOnOffer(Node()));
        pOnOfferView = new ModuleListView(pOnOffer, QStringLiteral("Available"));
        pOnOfferView->setMinimumSize(ON_OFFER_SIZE);
        pOnOfferView->setSelectionMode(QAbstractItemView::ExtendedSelection);
        ListColumnClickSort(pOnOfferView, -1, false);
        ZoomListFont(pOnOfferView);
        pOnOfferView->pfnDoubleClick = [this](const ModuleRow &row) { Add({row.dwKey}); };
        pOnOfferView->pfnKey = [this](u32 dwKey) {
            return (dwKey == KEY_RETURN || dwKey == KEY_INSERT) && (Click(SlotButton::Add), true);
        };
        return MakeColumn(u"Available:", pOnOfferView);
    }
    static QVBoxLayout *MakeColumn(const char16_t *pszTitle, QWidget *pView)
    {
        auto *pColumn = new QVBoxLayout;
        pColumn->addWidget(new QLabel(QString::fromUtf16(pszTitle)));
        pColumn->addWidget(pView, 1);
        return pColumn;
    }

    const ModuleSlot *SelectedSlot() const
    {
        const auto rows = pInUseView->SelectedRows();
        return rows.empty() ? nullptr : rows[0]->pms;
    }
    void Click(SlotButton eButton)
    {
        if (eButton == SlotButton::Add)
            return AddSelected();
        if (Node() && !IsFilling())
            ClickSlotButton(Node(), SelectedSlot(), eButton);
    }
    void AddSelected()
    {
        std::vector<u32> keys;
        for (const ModuleRow *pRow : pOnOfferView->SelectedRows())
            keys.push_back(pRow->dwKey);
        Add(keys);
    }
    void Add(const std::vector<u32> &keys)
    {
        if (Node() && !IsFilling())
            AddModulesTo(Node(), keys);
    }

    ModuleRows *pInUse, *pOnOffer;
    ModuleListView *pInUseView, *pOnOfferView;
};

} // namespace

Panel *MakeModuleListPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new ListPanel(pNode, pOwner);
}
