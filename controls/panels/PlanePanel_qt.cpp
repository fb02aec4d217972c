// PlanePanel_qt.cpp -- the panel of one plane
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/PlaneColumn_qt.h"

#include <QVBoxLayout>

namespace {

class PlanePanel : public Panel {
  public:
    PlanePanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        pColumn = new PlaneColumn([this] { return Plane(); }, ButtonsOfPlane(),
                                  [this](PlaneButton eButton) { Click(eButton); });
        auto *pLayout = new QVBoxLayout;
        pLayout->addWidget(pColumn);
        Finish(pLayout);
    }

  protected:
    void Fill() override
    {
        pColumn->ShowState(Node()->Info.hTree->lppsi, Place().iPlane);
    }
    void Follow() override
    {
        Fill();
        pColumn->FollowPicture();
    }

  private:
    void Click(PlaneButton eButton)
    {
        if (Node() && !IsFilling())
            ClickOwnPlaneButton(Node(), eButton);
    }

    PlaneColumn *pColumn;
};

} // namespace

Panel *MakePlanePanel(TreeNode *pNode, QWidget *pOwner)
{
    return new PlanePanel(pNode, pOwner);
}
