// ControlSurface_qt.cpp -- the monitor of a fluid sub-panel: its drawing and the bars beside it
#include "controls/panels/ControlSurface_qt.h"

#include "controls/panels/FieldSlider_qt.h"
#include "controls/panels/Panel_qt.h"
#include "platform/Clock.h"
#include "toolkit/UIColors.h"

#include <QGridLayout>
#include <QImage>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace {

constexpr QSize AREA_SIZE(180, 96);
constexpr int AREA_MAX = 32767; // pixels each way
constexpr int BAR_LINE = 100, BAR_PAGE = 1000;

i32 DevicePixels(int n, qreal fRatio)
{
    return std::min(static_cast<i32>(std::lround(n * fRatio)), AREA_MAX);
}

} // namespace

SurfaceArea::SurfaceArea(Panel *p) : pPanel(p)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(QStringLiteral("Monitor"));
}

QSize SurfaceArea::sizeHint() const
{
    return AREA_SIZE;
}

void SurfaceArea::Draw(const ControlRecord *pctl)
{
    const qreal fRatio = devicePixelRatioF();
    DrawSurface(&Surface, pctl, DevicePixels(width(), fRatio), DevicePixels(height(), fRatio));
}

// The history moves here and not in paintEvent, which runs as often as something covers the area.
void SurfaceArea::Step()
{
    const ControlRecord *pctl = pPanel->Control();
    if (!pctl)
        return;
    Draw(pctl);
    StepSurface(&Surface, pctl, SurfaceLevel(pctl));
    update();
}

void SurfaceArea::DrawAnew()
{
    Surface.bValid = 0;
    update();
}

void SurfaceArea::paintEvent(QPaintEvent *)
{
    const ControlRecord *pctl = pPanel->Control();
    if (!pctl)
        return;
    Draw(pctl);
    QImage picture(Surface.nWidth, Surface.nHeight, QImage::Format_RGB32);
    if (picture.isNull())
        return;
    ShowSurface(Surface, pctl, TickCount(), {reinterpret_cast<u32 *>(picture.bits()), Surface.pixels.size()});
    QPainter(this).drawImage(rect(), picture);
}

SurfaceMonitor::SurfaceMonitor(Panel *p, u32 dwSource) : pPanel(p), pArea(new SurfaceArea(p))
{
    auto *pLayout = new QGridLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    pLayout->addWidget(pArea, 0, 0);
    if (dwSource == FLUIDSOURCE_WAVE) {
        pPhase = MakeBar(Qt::Horizontal, QStringLiteral("Wave Phase"), EditField::WavePhase);
        pLayout->addWidget(pPhase, 1, 0);
    }
    const ControlRecord *pctl = pPanel->Control();
    if (pctl && pctl->Base.dwType == CONTROLTYPE_BOOLEAN) {
        pThreshold = MakeBar(Qt::Vertical, QStringLiteral("Threshold"), EditField::Threshold);
        pLayout->addWidget(pThreshold, 0, 1);
    }
    UIColorListeners.Add(HearColor, this);
}

SurfaceMonitor::~SurfaceMonitor()
{
    UIColorListeners.Remove(HearColor, this);
}

QScrollBar *SurfaceMonitor::MakeBar(Qt::Orientation eOrientation, const QString &name, EditField eField)
{
    auto *pBar = new QScrollBar(eOrientation);
    pBar->setRange(0, SURFACE_BAR_MAX);
    pBar->setSingleStep(BAR_LINE);
    pBar->setPageStep(BAR_PAGE);
    pBar->setFocusPolicy(Qt::StrongFocus);
    pBar->setAccessibleName(name);
    WriteWithSlider(
        pPanel, pBar,
        [this, eField](i32 nPosition) { return WriteFloat(pPanel->Place(), eField, SurfaceBarValue(nPosition)); },
        [this] { pArea->update(); });
    return pBar;
}

void SurfaceMonitor::HearColor(u32, void *pv)
{
    static_cast<SurfaceMonitor *>(pv)->pArea->DrawAnew();
}

void SurfaceMonitor::Fill()
{
    const ControlRecord *pctl = pPanel->Control();
    if (!pctl)
        return;
    if (pPhase) {
        PlaceSlider(pPhase, SurfaceBarPosition(pctl->Base.fWavePhase));
        pPhase->setEnabled(!pctl->Base.bRandomPhase);
    }
    if (pThreshold)
        PlaceSlider(pThreshold, SurfaceBarPosition(pctl->Boolean.fThreshold));
    if (pPhase)
        pArea->DrawAnew();
    else
        pArea->update(); // a history goes on
}

void SurfaceMonitor::Step()
{
    pArea->Step();
}
