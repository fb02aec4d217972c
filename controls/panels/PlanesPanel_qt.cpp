// PlanesPanel_qt.cpp -- the panel of all planes
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/PlaneColumn_qt.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

struct AddRow {
    const char16_t *pszText;
    bool bIndexed;
};
constexpr AddRow asAdd[] = {{u"Add Indexed Plane", true}, {u"Add RGB Plane", false}};

class PlanesPanel : public Panel {
  public:
    PlanesPanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        auto *pLayout = new QVBoxLayout;
        pLayout->addLayout(MakeColumns(), 1);
        pLayout->addLayout(MakeAddButtons());
        Finish(pLayout);
    }

  protected:
    void Fill() override
    {
        for (i32 i = 0; i < PLANES_MAX; i++)
            apColumn[i]->ShowState(Preset(), i);
    }
    void Follow() override
    {
        Fill();
        for (PlaneColumn *pColumn : apColumn)
            pColumn->FollowPicture();
    }

  private:
    const PresetState *Preset() const
    {
        return Node() ? Node()->Info.hTree->lppsi : nullptr;
    }
    const PlaneState *PlaneOfColumn(i32 i) const
    {
        return Preset() && i < Preset()->nPlanes ? Preset()->psPlane[i] : nullptr;
    }
    QLayout *MakeColumns()
    {
        auto *pRow = new QHBoxLayout;
        for (i32 i = 0; i < PLANES_MAX; i++) {
            apColumn[i] = new PlaneColumn([this, i] { return PlaneOfColumn(i); }, ButtonsOfColumn(i),
                                          [this, i](PlaneButton eButton) { Click(i, eButton); });
            pRow->addWidget(apColumn[i]);
        }
        return pRow;
    }
    QLayout *MakeAddButtons()
    {
        auto *pRow = new QHBoxLayout;
        for (const AddRow &row : asAdd) {
            auto *pButton = new QPushButton(QString::fromUtf16(row.pszText));
            connect(pButton, &QPushButton::clicked, this, [this, bIndexed = row.bIndexed] {
                if (Node() && !IsFilling())
                    AddPlaneTo(Node(), bIndexed);
            });
            pRow->addWidget(pButton);
        }
        pRow->addStretch();
        return pRow;
    }
    void Click(i32 iPlane, PlaneButton eButton)
    {
        if (Node() && !IsFilling())
            ClickPlaneButton(*Node()->Info.hTree, iPlane, eButton);
    }

    PlaneColumn *apColumn[PLANES_MAX];
};

} // namespace

Panel *MakePlanesPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new PlanesPanel(pNode, pOwner);
}
