// NumberPanel_qt.cpp -- the panel of an integer or a float
#include "controls/panels/NumberBox_qt.h"
#include "controls/panels/NumberPanel.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/ValueLists.h"
#include "controls/panels/ValuePanel_qt.h"
#include "platform/Assert.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/FramePace_qt.h"
#include "toolkit/RangeSlider_qt.h"
#include "toolkit/UIColors.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>

#include <cstring>

namespace {

QString Text(const std::u16string &text)
{
    return QString::fromStdU16String(text);
}

struct BoxRow {
    NumberPart ePart;
    const char *pszName;
    int yCell, xCell;
    bool bTyped; // else it is only read
};
constexpr BoxRow asBox[] = {
    {NumberPart::AbsMin, "Lowest Value", 0, 0, false}, {NumberPart::AbsMax, "Highest Value", 0, 2, false},
    {NumberPart::Min, "Minimum", 1, 0, true},          {NumberPart::Value, "Value", 1, 1, true},
    {NumberPart::Max, "Maximum", 1, 2, true},
};
constexpr int SLIDER_STRETCH = 2; // of the slider beside a box

class NumberPanel : public ValuePanel {
  public:
    NumberPanel(TreeNode *pNode, QWidget *pOwner);
    ~NumberPanel() override;

  protected:
    void FillValue() override;
    void FollowValue() override;
    void SourceChanged() override;
    void TakeOver() override;

  private:
    static void HearColor(u32 iRow, void *pv);
    void MakeFlags();
    void MakeSlider();
    void MakeBoxes(QGridLayout *pGrid);
    QLabel *MakeReadOut();

    void FillFlags();
    void ShowParts();
    void ShowReadOut();
    bool PlaceThumbs();
    void ShowSlider();
    void ShowEdited();
    void WriteFlag(const NumberFlag &flag, bool bOn);
    void ReadBox(u32 iBox);
    void StepBox(u32 iBox, i32 nSteps);
    void TakeSlider();
    void EndSliderDrag();
    void TakeDefault(u32 dwThumb);

    QCheckBox *apFlag[3] = {}; // null: not of this kind of number
    NumberBox *apBox[std::size(asBox)] = {};
    RangeSelectSlider *pSlider;
    FramePace DragPace;                 // of what the boxes show
    SliderInfo Shown = {};              // the slider as the panel has put it
    QLabel *pReadOut, *pReadOutOfFixed; // between the ends of the range; beside the value
};

NumberPanel::NumberPanel(TreeNode *pNode, QWidget *pOwner)
    : ValuePanel(pNode, pOwner), DragPace([this] { ShowEdited(); })
{
    const ControlRecord *pctl = Control();
    VD_ASSERT((pctl->Base.dwType == CONTROLTYPE_INTEGER) || (pctl->Base.dwType == CONTROLTYPE_FLOAT));
    auto *pGrid = new QGridLayout;
    pGrid->setColumnStretch(0, 1);
    pGrid->setColumnStretch(1, SLIDER_STRETCH);
    pGrid->setColumnStretch(2, 1);
    MakeFlags();
    MakeSlider();
    MakeBoxes(pGrid);
    pReadOut = MakeReadOut();
    pReadOutOfFixed = MakeReadOut();
    pGrid->addWidget(pSlider, 0, 1);
    pGrid->addWidget(pReadOut, 1, 1);
    pGrid->addWidget(pReadOutOfFixed, 1, 2);
    pContent->addLayout(pGrid);
    FinishValue();
    setTabOrder(apBox[0], pSlider); // as the eye goes
    setTabOrder(pSlider, apBox[1]);
}

NumberPanel::~NumberPanel()
{
    UIColorListeners.Remove(HearColor, this);
}

void NumberPanel::HearColor(u32, void *pv)
{
    TakeUserSliderColors();
    static_cast<NumberPanel *>(pv)->pSlider->update();
}

void NumberPanel::MakeFlags()
{
    u32 i = 0;
    for (const NumberFlag &flag : NumberFlags()) {
        QCheckBox *&pFlag = apFlag[i++];
        if (FlagField(Control(), flag) == EditField::Count)
            continue;
        pFlag = new QCheckBox(QString::fromUtf16(flag.pszText));
        connect(pFlag, &QCheckBox::clicked, this, [this, &flag](bool bOn) { WriteFlag(flag, bOn); });
        pSourceRow->addWidget(pFlag);
    }
}

void NumberPanel::MakeSlider()
{
    TakeUserSliderColors();
    UIColorListeners.Add(HearColor, this);
    ShowInSlider(Control(), &Shown);
    pSlider = new RangeSelectSlider(Shown);
    pSlider->setAccessibleName(QStringLiteral("Value and Range"));
    pSlider->pfnChanged = [this] { TakeSlider(); };
    pSlider->pfnDrag = [this](bool bBegins) { bBegins ? BeginFieldDrag() : EndSliderDrag(); };
    pSlider->pfnDefault = [this](u32 dwThumb) { TakeDefault(dwThumb); };
    Node()->Info.hSlider = pSlider;
}

void NumberPanel::MakeBoxes(QGridLayout *pGrid)
{
    for (u32 i = 0; i < std::size(asBox); i++) {
        NumberBox *pBox = apBox[i] = new NumberBox(QString::fromLatin1(asBox[i].pszName));
        pBox->setReadOnly(!asBox[i].bTyped);
        if (asBox[i].bTyped) {
            pBox->pfnRead = [this, i] { ReadBox(i); };
            pBox->pfnStep = [this, i](i32 nSteps) { StepBox(i, nSteps); };
            KeepPlaceWhenHidden(pBox);
        }
        pGrid->addWidget(pBox, asBox[i].yCell, asBox[i].xCell);
    }
}

QLabel *NumberPanel::MakeReadOut()
{
    auto *pLabel = new QLabel(QStringLiteral("--"));
    pLabel->setTextFormat(Qt::PlainText);
    pLabel->setAlignment(Qt::AlignCenter);
    pLabel->setAccessibleName(QStringLiteral("Present Value"));
    KeepPlaceWhenHidden(pLabel);
    return pLabel;
}

void NumberPanel::FillValue()
{
    FillFlags();
    ShowParts();
    ShowSlider();
    ShowReadOut();
    for (u32 i = 0; i < std::size(asBox); i++)
        apBox[i]->Refill(NumberFillText(Control(), asBox[i].ePart));
}

void NumberPanel::FollowValue()
{
    const ControlRecord *pctl = Control();
    ShowSlider();
    ShowReadOut();
    for (u32 i = 0; i < std::size(asBox); i++)
        if (asBox[i].bTyped && !PartIsShown(pctl, asBox[i].ePart))
            apBox[i]->Show(NumberText(pctl, asBox[i].ePart));
}

void NumberPanel::SourceChanged()
{
    FillFlags();
    ShowParts();
    ShowSlider();
    ShowReadOut();
}

// Before the panel closes with what is being typed.
void NumberPanel::TakeOver()
{
    for (u32 i = 0; i < std::size(asBox); i++)
        ReadBox(i);
}

void NumberPanel::FillFlags()
{
    const ControlRecord *pctl = Control();
    u32 i = 0;
    for (const NumberFlag &flag : NumberFlags())
        if (QCheckBox *pFlag = apFlag[i++]) {
            pFlag->setChecked(FlagIsSet(pctl, flag));
            pFlag->setEnabled(!SourceIsFixed(pctl));
        }
}

void NumberPanel::ShowParts()
{
    const ControlRecord *pctl = Control();
    for (u32 i = 0; i < std::size(asBox); i++)
        if (asBox[i].bTyped)
            apBox[i]->setVisible(PartIsShown(pctl, asBox[i].ePart));
    pReadOut->setVisible(!SourceIsFixed(pctl));
    pReadOutOfFixed->setVisible(SourceIsFixed(pctl));
}

void NumberPanel::ShowReadOut()
{
    const QString text = Text(ReadOutText(Control()));
    for (QLabel *pLabel : {pReadOut, pReadOutOfFixed})
        if (pLabel->text() != text)
            pLabel->setText(text);
}

// The thumbs as the record has them. Whether any of them stood elsewhere.
bool NumberPanel::PlaceThumbs()
{
    const SliderInfo before = Shown;
    ShowInSlider(Control(), &Shown);
    ShowInSlider(Control(), &pSlider->Info);
    return std::memcmp(&before, &Shown, sizeof before) != 0;
}

// Painted only where something has changed.
void NumberPanel::ShowSlider()
{
    if (PlaceThumbs())
        pSlider->update();
}

// After an edit by slider or keys: the boxes in full.
void NumberPanel::ShowEdited()
{
    if (!Control())
        return;
    ShowSlider();
    ShowReadOut();
    for (u32 i = 0; i < std::size(asBox); i++)
        if (asBox[i].bTyped)
            apBox[i]->Show(NumberText(Control(), asBox[i].ePart));
}

void NumberPanel::WriteFlag(const NumberFlag &flag, bool bOn)
{
    if (const ControlRecord *pctl = Control())
        Write(WriteNumber(Place(), FlagField(pctl, flag), bOn));
    if (Control())
        FillFlags();
}

// What was typed beyond the limits stays in the box; the slider shows what became of it.
void NumberPanel::ReadBox(u32 iBox)
{
    NumberBox *pBox = apBox[iBox];
    const ControlRecord *pctl = Control();
    f64 f;
    if (!pctl || !asBox[iBox].bTyped || !pBox->IsUnread())
        return;
    if (!ParseNumber(pctl, pBox->text().toStdU16String(), &f))
        return pBox->SetRead();
    if (Write(WriteNumberPart(pctl, Place(), asBox[iBox].ePart, f)) == EditResult::Refused)
        return; // it is still to be read
    pBox->SetRead();
    if (Control())
        ShowSlider();
}

// From what is being typed, else from the number behind the box, of which it may show less.
void NumberPanel::StepBox(u32 iBox, i32 nSteps)
{
    const ControlRecord *pctl = Control();
    if (!pctl)
        return;
    f64 f = NumberOf(pctl, asBox[iBox].ePart);
    if (apBox[iBox]->IsUnread())
        ParseNumber(pctl, apBox[iBox]->text().toStdU16String(), &f);
    Write(WriteNumberPart(pctl, Place(), asBox[iBox].ePart, StepNumber(pctl, f, nSteps)));
    ShowEdited();
}

void NumberPanel::TakeSlider()
{
    const ControlRecord *pctl = Control();
    if (!pctl)
        return;
    std::vector<FieldWrite> writes = SliderWrites(pctl, Place(), Shown, pSlider->Info);
    if (pSlider->Info.bDragging)
        DragFields(std::move(writes));
    else
        Write(std::move(writes));
    if (!Control())
        return;
    PlaceThumbs();
    DragPace.Ask();
}

void NumberPanel::EndSliderDrag()
{
    EndFieldDrag();
    DragPace.Finish();
}

void NumberPanel::TakeDefault(u32 dwThumb)
{
    if (const ControlRecord *pctl = Control())
        Write(WriteThumbDefault(pctl, Place(), dwThumb));
    ShowEdited();
}

} // namespace

Panel *MakeNumberPanel(TreeNode *pNode, QWidget *pOwner)
{
    return new NumberPanel(pNode, pOwner);
}
