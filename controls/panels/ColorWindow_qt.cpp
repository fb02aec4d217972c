// ColorWindow_qt.cpp -- the colour window, "Color Palettes": what all planes of the preset make of their colours
#include "controls/panels/ColorWindow_qt.h"

#include "controls/panels/ColorStrips.h"
#include "controls/panels/PanelHost_qt.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetManager.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/UIColors.h"
#include "toolkit/WindowEvents_qt.h"
#include "toolkit/WindowLayouts_qt.h"

#include <QBasicTimer>
#include <QCheckBox>
#include <QGridLayout>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <QWindow>

#include <cmath>
#include <memory>

namespace {

constexpr QSize STRIPS_SIZE(380, 240);
constexpr int STRIPS_MAX = 32767; // pixels each way
constexpr int GAP = 6;            // between strips
constexpr int SWITCH_COLUMNS = 2;

// All strips, one below the other.
class ColorStripsView : public QWidget {
  public:
    ColorStripsView();
    ~ColorStripsView() override;

    // Takes over what has changed, and repaints if anything has.
    void Follow();
    QSize sizeHint() const override
    {
        return STRIPS_SIZE;
    }

  protected:
    void paintEvent(QPaintEvent *pEvent) override;

  private:
    static void HearColor(u32 iRow, void *pv);
    bool TakeStates();
    void PaintStrip(QPainter *pPainter, i32 i) const;

    const std::unique_ptr<ColorState[]> aState = std::make_unique<ColorState[]>(PLANES_MAX);
    i32 nStrips = 0;
};

ColorStripsView::ColorStripsView()
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(QStringLiteral("Colors of the planes"));
    UIColorListeners.Add(HearColor, this);
}

ColorStripsView::~ColorStripsView()
{
    UIColorListeners.Remove(HearColor, this);
}

void ColorStripsView::HearColor(u32, void *pv)
{
    static_cast<ColorStripsView *>(pv)->update();
}

// Between frames no plane is drawn, but for one that missed its frame: what was seen of it last stays.
bool ColorStripsView::TakeStates()
{
    const PresetState *lppsi = CurrentPreset();
    const i32 nPlanes = lppsi ? lppsi->nPlanes : 0;
    bool bChanged = nPlanes != nStrips;
    nStrips = nPlanes;
    for (i32 i = 0; i < nPlanes; i++)
        if (!PlaneIsBusy(lppsi->psPlane[i]))
            bChanged |= TakeColorState(&aState[static_cast<size_t>(i)], lppsi->psPlane[i]->Info) != 0;
    return bChanged;
}

void ColorStripsView::Follow()
{
    if (TakeStates())
        update();
}

void ColorStripsView::PaintStrip(QPainter *pPainter, i32 i) const
{
    const qreal fRatio = devicePixelRatioF();
    const ColorStripPlace place = PlaceColorStrip(i, nStrips, height(), GAP);
    const QRect rc(0, place.yTop, width(), place.yBottom - place.yTop);
    const QSize size = (QSizeF(rc.size()) * fRatio).toSize().boundedTo(QSize(STRIPS_MAX, STRIPS_MAX));
    QImage picture(size, QImage::Format_RGB32);
    if (picture.isNull())
        return;
    const size_t nPixels = static_cast<size_t>(size.width()) * static_cast<size_t>(size.height());
    std::span<u32> pixels(reinterpret_cast<u32 *>(picture.bits()), nPixels);
    if (DrawColorStrip(aState[static_cast<size_t>(i)], GlobalSettings, size.width(), pixels))
        pPainter->drawImage(rc, picture);
}

void ColorStripsView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    for (i32 i = 0; i < nStrips; i++)
        PaintStrip(&painter, i);
}

class ColorWindow : public QWidget {
  public:
    explicit ColorWindow(QWidget *pOwner);

  protected:
    void showEvent(QShowEvent *pEvent) override;
    void hideEvent(QHideEvent *pEvent) override;
    void timerEvent(QTimerEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;

  private:
    QLayout *MakeSwitches();
    bool CanBeSeen() const;

    ColorStripsView *pStrips = new ColorStripsView;
    QBasicTimer Timer;
};

ColorWindow::ColorWindow(QWidget *pOwner) : QWidget(pOwner, Qt::Dialog)
{
    setWindowTitle(QStringLiteral("Color Palettes"));
    setAttribute(Qt::WA_ShowWithoutActivating); // read when PutBeside makes the window system's part
    KeepFramesUnder(this);
    auto *pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pStrips, 1);
    pLayout->addLayout(MakeSwitches());
    EnableDialogScaling(this);
}

QLayout *ColorWindow::MakeSwitches()
{
    auto *pLayout = new QGridLayout;
    int i = 0;
    for (const ColorSwitch &row : ColorSwitches()) {
        auto *pBox = new QCheckBox(QString::fromUtf16(row.pszText));
        pBox->setChecked(GlobalSettings.*row.pbOn != 0);
        connect(pBox, &QCheckBox::toggled, this, [this, pbOn = row.pbOn](bool bOn) {
            GlobalSettings.*pbOn = bOn;
            pStrips->update();
        });
        pLayout->addWidget(pBox, i / SWITCH_COLUMNS, i % SWITCH_COLUMNS);
        i++;
    }
    return pLayout;
}

bool ColorWindow::CanBeSeen() const
{
    return isVisible() && !isMinimized() && windowHandle() && windowHandle()->isExposed();
}

void ColorWindow::showEvent(QShowEvent *pEvent)
{
    QWidget::showEvent(pEvent);
    pStrips->Follow();
    Timer.start(COLOR_TIMER_MS, Qt::PreciseTimer, this);
}

void ColorWindow::hideEvent(QHideEvent *pEvent)
{
    Timer.stop();
    QWidget::hideEvent(pEvent);
}

void ColorWindow::timerEvent(QTimerEvent *pEvent)
{
    if (pEvent->timerId() != Timer.timerId())
        return QWidget::timerEvent(pEvent);
    if (CanBeSeen())
        pStrips->Follow();
}

void ColorWindow::keyPressEvent(QKeyEvent *pEvent)
{
    if (KeyEventOf(*pEvent).dwKey == KEY_ESCAPE)
        close();
    else
        QWidget::keyPressEvent(pEvent);
}

void *MakeColorWindow(void *pvOwner)
{
    auto *pOwner = static_cast<QWidget *>(pvOwner);
    auto *pWindow = new ColorWindow(pOwner);
    if (pOwner)
        PutBeside(pWindow, pOwner);
    FollowWindow(ColorWindowKind.pszName, pWindow); // where it stood before, if it did
    return static_cast<QWidget *>(pWindow);
}

} // namespace

const WindowKind ColorWindowKind = {PALETTE_WINDOW, WindowUse::Child, MakeColorWindow, &WidgetFunctions};
