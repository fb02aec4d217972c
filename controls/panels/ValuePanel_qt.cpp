// ValuePanel_qt.cpp -- what the panels of numbers, booleans and item selects share
#include "controls/panels/ValuePanel_qt.h"

#include "controls/ControlManager.h"
#include "controls/panels/FluidPanels_qt.h"
#include "controls/panels/ValueLists.h"
#include "platform/Assert.h"
#include "toolkit/DialogPieces_qt.h"

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

QBoxLayout *LabelledRow(const QString &label, QWidget *pControl)
{
    auto *pLabel = new QLabel(label);
    pLabel->setTextFormat(Qt::PlainText);
    pLabel->setBuddy(pControl);
    QString name = label;
    name.remove(u':');
    pControl->setAccessibleName(name);
    auto *pRow = new QHBoxLayout;
    pRow->addWidget(pLabel);
    pRow->addWidget(pControl, 1);
    return pRow;
}

ValuePanel::ValuePanel(TreeNode *pNode, QWidget *pOwner)
    : Panel(pNode, pOwner), pContent(new QVBoxLayout), pSource(new QComboBox)
{
    const TVObjectInfo *lptvoi = &pNode->Info;
    VD_ASSERT(lptvoi->dwType == OBJECT_CONTROL);
    pSourceRow = LabelledRow(QStringLiteral("Source:"), pSource);
    pContent->addWidget(MakeDescriptionBox());
    pContent->addLayout(pSourceRow);
    for (const ListRow &row : SourceRows(Control()))
        AddComboItem(pSource, QString::fromStdU16String(row.sText), row.dwValue, 0);
    connect(pSource, &QComboBox::activated, this, [this] { TakeSource(); });
}

void ValuePanel::FinishValue()
{
    if (ControlSupportsFluidSources(Control()))
        pFluid = new FluidPanels(this);
    Finish(pContent, Pin::Yes, pFluid);
}

void ValuePanel::FillSources()
{
    if (const ControlRecord *pctl = Control())
        pSource->setCurrentIndex(pSource->findData(QVariant::fromValue<qlonglong>(pctl->Base.dwSource)));
}

void ValuePanel::TakeSource()
{
    Write(WriteNumber(Place(), EditField::Source, ComboValue(pSource, 0)));
    if (!Control())
        return;
    FillSources(); // where the edit was refused, it is still the old one
    SourceChanged();
    if (pFluid)
        pFluid->ShowSource();
}

void ValuePanel::Fill()
{
    if (!Control())
        return;
    FillSources();
    FillValue();
    if (pFluid)
        pFluid->Fill();
}

void ValuePanel::Follow()
{
    if (!Control())
        return;
    FollowValue();
    if (pFluid)
        pFluid->Follow();
}
