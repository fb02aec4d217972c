// FluidPanels_qt.cpp -- the sub-panels of a control's animated sources, at the bottom of its panel
#include "controls/panels/FluidPanels_qt.h"

#include "controls/ControlManager.h"
#include "controls/panels/ControlSurface_qt.h"
#include "controls/panels/FieldSlider_qt.h"
#include "controls/panels/FluidSettings.h"
#include "controls/panels/Panel_qt.h"
#include "platform/Assert.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/FrameExtents_qt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

#include <algorithm>

namespace {

QString Text(const char16_t *psz)
{
    return QString::fromUtf16(psz);
}

// A window that has grown over the lower or the right edge of the work area goes up or left, but not over the others.
void KeepInWorkArea(QWidget *pWindow)
{
    if (!pWindow->isVisible())
        return;
    const QRect rc = FrameRectOf(pWindow), rcWork = WorkAreaOf(pWindow);
    const QPoint over(std::max(rc.right() - rcWork.right(), 0), std::max(rc.bottom() - rcWork.bottom(), 0));
    const QPoint room(std::max(rc.left() - rcWork.left(), 0), std::max(rc.top() - rcWork.top(), 0));
    const QPoint by(std::min(over.x(), room.x()), std::min(over.y(), room.y()));
    if (!by.isNull())
        SetFrameRect(pWindow, rc.translated(-by));
}

} // namespace

// One sub-panel: its settings at the left, its monitor at the right.
class FluidPanel : public QGroupBox {
  public:
    FluidPanel(Panel *pPanel, const FluidSetting &setting);
    void Fill();
    void Step()
    {
        pMonitor->Step();
    }
    const FluidSetting &Setting;

  private:
    QLayout *MakeWaveType();
    QLayout *MakeReadout();
    QLayout *MakeSlider();
    QCheckBox *MakeRandomPhase();
    void ShowReadout();

    Panel *pPanel;
    SurfaceMonitor *pMonitor;
    QSlider *pSlider = new QSlider(Qt::Horizontal);
    QLabel *pReadout = new QLabel;
    QComboBox *pWaveType = nullptr; // these two of a wave alone
    QCheckBox *pRandomPhase = nullptr;
};

FluidPanel::FluidPanel(Panel *p, const FluidSetting &setting)
    : QGroupBox(Text(setting.pszGroup)), Setting(setting), pPanel(p), pMonitor(new SurfaceMonitor(p, setting.dwSource))
{
    const bool bWave = Setting.dwSource == FLUIDSOURCE_WAVE;
    auto *pSettings = new QVBoxLayout;
    if (bWave)
        pSettings->addLayout(MakeWaveType());
    pSettings->addLayout(MakeReadout());
    pSettings->addLayout(MakeSlider());
    if (bWave)
        pSettings->addWidget(MakeRandomPhase());
    pSettings->addStretch(1);
    auto *pLayout = new QHBoxLayout(this);
    pLayout->addLayout(pSettings, 1);
    pLayout->addWidget(pMonitor, 1);
}

QLayout *FluidPanel::MakeWaveType()
{
    pWaveType = new QComboBox;
    auto *pLabel = new QLabel(QStringLiteral("Wave Type:"));
    pLabel->setBuddy(pWaveType);
    pWaveType->setAccessibleName(QStringLiteral("Wave Type"));
    for (const WaveTypeName &name : WaveTypeNames())
        AddComboItem(pWaveType, Text(name.pszName), name.dwWaveType, WAVETYPE_SINE);
    connect(pWaveType, &QComboBox::activated, this, [this] {
        pPanel->Write(WriteNumber(pPanel->Place(), EditField::WaveType, ComboValue(pWaveType, WAVETYPE_SINE)));
        Fill();
    });
    auto *pRow = new QHBoxLayout;
    pRow->addWidget(pLabel);
    pRow->addWidget(pWaveType, 1);
    return pRow;
}

QLayout *FluidPanel::MakeReadout()
{
    auto *pLabel = new QLabel(Text(Setting.pszSlider));
    pLabel->setBuddy(pSlider);
    pReadout->setTextFormat(Qt::PlainText);
    pReadout->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *pRow = new QHBoxLayout;
    pRow->addWidget(pLabel);
    pRow->addWidget(pReadout, 1);
    return pRow;
}

QLayout *FluidPanel::MakeSlider()
{
    pSlider->setRange(Setting.nMin, Setting.nMax);
    pSlider->setSingleStep(Setting.nLine);
    pSlider->setPageStep(Setting.nPage);
    pSlider->setAccessibleName(Text(Setting.pszSlider));
    WriteWithSlider(
        pPanel, pSlider, [this](i32 n) { return WriteNumber(pPanel->Place(), Setting.eField, n); },
        [this] { ShowReadout(); });
    auto *pRow = new QHBoxLayout;
    pRow->addWidget(new QLabel(Text(Setting.pszLow)));
    pRow->addWidget(pSlider, 1);
    pRow->addWidget(new QLabel(Text(Setting.pszHigh)));
    return pRow;
}

QCheckBox *FluidPanel::MakeRandomPhase()
{
    pRandomPhase = new QCheckBox(QStringLiteral("Randomize Wave Phase"));
    connect(pRandomPhase, &QCheckBox::clicked, this, [this](bool bOn) {
        pPanel->Write(WriteNumber(pPanel->Place(), EditField::RandomPhase, bOn));
        Fill();
    });
    return pRandomPhase;
}

void FluidPanel::ShowReadout()
{
    if (const ControlRecord *pctl = pPanel->Control())
        pReadout->setText(QString::fromStdU16String(FluidReadout(Setting, pctl)));
}

void FluidPanel::Fill()
{
    const ControlRecord *pctl = pPanel->Control();
    if (!pctl)
        return;
    PlaceSlider(pSlider, static_cast<i32>(std::min(pctl->Base.*Setting.pnValue, static_cast<u32>(Setting.nMax))));
    ShowReadout();
    if (pWaveType)
        pWaveType->setCurrentIndex(pWaveType->findData(QVariant::fromValue<qlonglong>(pctl->Base.dwWaveType)));
    if (pRandomPhase)
        pRandomPhase->setChecked(pctl->Base.bRandomPhase != 0);
    pMonitor->Fill();
}

FluidPanels::FluidPanels(Panel *p) : QWidget(p), pPanel(p)
{
    auto *pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
}

// All of one size, so that only the step from none to one moves the window's edge. Measured while they have no parent
// yet, whose font may be a scaled one.
void FluidPanels::Make()
{
    const ControlRecord *pctl = pPanel->Control();
    VD_ASSERT(ControlSupportsFluidSources(pctl));
    QSize size;
    for (int i = 0; i < FLUID_PANELS; i++) {
        apSub[i] = new FluidPanel(pPanel, FluidSettings()[static_cast<size_t>(i)]);
        size = size.expandedTo(apSub[i]->sizeHint());
    }
    for (FluidPanel *pSub : apSub) {
        pSub->setMinimumSize(size);
        pSub->setParent(this);
        pSub->hide();
        pPanel->Node()->Info.*(pSub->Setting.phPanel) = pSub;
    }
}

FluidPanel *FluidPanels::Wanted()
{
    const ControlRecord *pctl = pPanel->Control();
    const FluidSetting *pSetting = pctl ? FluidSettingOf(pctl) : nullptr;
    if (!pSetting)
        return nullptr;
    if (!apSub[0])
        Make();
    for (FluidPanel *pSub : apSub)
        if (&pSub->Setting == pSetting)
            return pSub;
    return nullptr;
}

// Only the one in view stands in the layout: there is room for no other, and in the scaled design neither.
void FluidPanels::ShowSource()
{
    FluidPanel *pWanted = Wanted();
    if (pWanted)
        pWanted->Fill();
    if (pWanted == pShown)
        return;
    if (pShown) {
        layout()->removeWidget(pShown);
        pShown->hide();
    }
    if (pWanted) {
        layout()->addWidget(pWanted);
        pWanted->show();
    }
    pShown = pWanted;
    updateGeometry(); // a layout that rests does not pass it on
    TakeDesignAgain(window());
    if (pShown)
        KeepInWorkArea(window());
}

void FluidPanels::Fill()
{
    ShowSource();
}

void FluidPanels::Follow()
{
    if (pShown)
        pShown->Step();
}
