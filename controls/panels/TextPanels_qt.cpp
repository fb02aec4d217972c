// TextPanels_qt.cpp -- the panels that only say something: of a group, and of a control of an unknown type
#include "controls/panels/Description.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

constexpr QSize TEXT_SIZE(360, 220);

class UnknownPanel : public Panel {
  public:
    UnknownPanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        auto *pLayout = new QVBoxLayout;
        pLayout->addWidget(
            new QLabel(QStringLiteral("***** [ This control has not yet been implemented ] *****"), this));
        Finish(pLayout);
    }
};

class DescriptionPanel : public Panel {
  public:
    DescriptionPanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        auto *pText = new QPlainTextEdit;
        pText->setReadOnly(true);
        pText->setTabChangesFocus(true);
        pText->setAccessibleName(QStringLiteral("Description"));
        pText->setMinimumSize(TEXT_SIZE);
        pText->setPlainText(QString::fromStdU16String(GroupText(pNode)).remove(u'\r'));
        auto *pLayout = new QVBoxLayout;
        pLayout->addWidget(pText);
        Finish(pLayout, Pin::No);
    }
};

} // namespace

Panel *MakeUnknownPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new UnknownPanel(pNode, pOwner);
}

Panel *MakeDescriptionPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new DescriptionPanel(pNode, pOwner);
}
