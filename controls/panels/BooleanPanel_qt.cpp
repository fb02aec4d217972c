// BooleanPanel_qt.cpp -- the panel of a control that is on or off
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/ValueLists.h"
#include "controls/panels/ValuePanel_qt.h"
#include "platform/Assert.h"

#include <QBoxLayout>
#include <QPushButton>

namespace {

class BooleanPanel : public ValuePanel {
  public:
    BooleanPanel(TreeNode *pNode, QWidget *pOwner) : ValuePanel(pNode, pOwner), pState(new QPushButton)
    {
        VD_ASSERT(Control()->Base.dwType == CONTROLTYPE_BOOLEAN);
        pState->setCheckable(true);
        connect(pState, &QPushButton::clicked, this, [this](bool bOn) { WriteState(bOn); });
        pContent->addLayout(LabelledRow(QStringLiteral("State:"), pState));
        FinishValue();
    }

  protected:
    void FillValue() override
    {
        pState->setEnabled(SourceIsFixed(Control()));
        FollowValue();
    }
    void FollowValue() override
    {
        const bool bOn = Control()->Boolean.bState != 0;
        const QString text = bOn ? QStringLiteral("True/On") : QStringLiteral("False/Off");
        pState->setChecked(bOn);
        if (pState->text() != text)
            pState->setText(text);
    }
    void SourceChanged() override
    {
        FillValue();
    }

  private:
    void WriteState(bool bOn)
    {
        Write(WriteNumber(Place(), EditField::State, bOn));
        if (Control())
            FollowValue(); // where the edit was refused, the click is taken back
    }

    QPushButton *pState;
};

} // namespace

Panel *MakeBooleanPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new BooleanPanel(pNode, pOwner);
}
