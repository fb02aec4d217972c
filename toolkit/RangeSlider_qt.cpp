// RangeSlider_qt.cpp -- the slider with one thumb for a value or two for a range, as a widget
#include "toolkit/RangeSlider_qt.h"

#include <QAccessibleWidget>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <QtMath>

#include <span>

namespace {

constexpr QSize DESIGN_SIZE(160, 22);
constexpr i32 PAGE_STEPS = 10;

// Screen readers hear of the thumb that keys move.
class SliderVoice : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit SliderVoice(RangeSelectSlider *p) : QAccessibleWidget(p, QAccessible::Slider), pSlider(p)
    {
    }
    void *interface_cast(QAccessible::InterfaceType eType) override
    {
        return eType == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                    : QAccessibleWidget::interface_cast(eType);
    }
    QString text(QAccessible::Text eText) const override
    {
        if (eText != QAccessible::Value)
            return QAccessibleWidget::text(eText);
        const SliderInfo &info = pSlider->Info;
        return info.bRangeMode
                   ? pSlider->TextOf(info.fRangeLow) + QStringLiteral(" to ") + pSlider->TextOf(info.fRangeHigh)
                   : pSlider->TextOf(info.fValue);
    }
    QVariant currentValue() const override
    {
        return SliderThumbValue(pSlider->Info, pSlider->FocusedThumb());
    }
    void setCurrentValue(const QVariant &value) override
    {
        if (!(pSlider->Info.fMinimum < pSlider->Info.fMaximum))
            return;
        SetSliderThumb(&pSlider->Info, pSlider->FocusedThumb(), value.toFloat());
        StepSlider(&pSlider->Info, pSlider->FocusedThumb(), 0); // into the scale
        pSlider->update();
        if (pSlider->pfnChanged)
            pSlider->pfnChanged();
    }
    QVariant maximumValue() const override
    {
        return pSlider->Info.fMaximum;
    }
    QVariant minimumValue() const override
    {
        return pSlider->Info.fMinimum;
    }
    QVariant minimumStepSize() const override
    {
        return pSlider->Info.bFloat ? 0.0f : 1.0f;
    }

  private:
    RangeSelectSlider *pSlider;
};

QAccessibleInterface *MakeVoice(const QString &, QObject *pObject)
{
    auto *pSlider = dynamic_cast<RangeSelectSlider *>(pObject);
    return pSlider ? new SliderVoice(pSlider) : nullptr;
}

struct KeyStep {
    int nKey;
    i32 nSteps;
};
constexpr KeyStep asKeyStep[] = {
    {Qt::Key_Left, -1}, {Qt::Key_Down, -1},           {Qt::Key_Right, 1},
    {Qt::Key_Up, 1},    {Qt::Key_PageUp, PAGE_STEPS}, {Qt::Key_PageDown, -PAGE_STEPS},
};

} // namespace

RangeSelectSlider::RangeSelectSlider(const SliderInfo &info, QWidget *pParent)
    : QWidget(pParent), Info(info), Pace([this] { ShowDrag(); })
{
    static const bool bHeard = [] {
        QAccessible::installFactory(MakeVoice);
        return true;
    }();
    Q_UNUSED(bHeard)
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize RangeSelectSlider::sizeHint() const
{
    return DESIGN_SIZE;
}

QSize RangeSelectSlider::minimumSizeHint() const
{
    return QSize(DESIGN_SIZE.height(), DESIGN_SIZE.height() / 2);
}

u32 RangeSelectSlider::FocusedThumb() const
{
    return Info.bRangeMode ? dwFocused : static_cast<u32>(THUMB_VALUE);
}

void RangeSelectSlider::SetFocusedThumb(u32 dwThumb)
{
    if (dwThumb == THUMB_LOW || dwThumb == THUMB_HIGH)
        dwFocused = dwThumb;
    update();
}

QString RangeSelectSlider::TextOf(f32 fValue) const
{
    return Info.bFloat ? QString::number(static_cast<double>(fValue), 'f', 5) : QString::number(qRound64(fValue));
}

QSize RangeSelectSlider::DeviceSize() const
{
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

QPoint RangeSelectSlider::DevicePlace(const QPointF &place) const
{
    const QPointF device = place * devicePixelRatioF();
    return QPoint(qFloor(device.x()), qFloor(device.y()));
}

// Thumbs grow with the slider's height, as all of a stretched dialog does.
u32 RangeSelectSlider::Scale() const
{
    return static_cast<u32>(qRound(devicePixelRatioF() * 100 * qMax(height(), 1) / DESIGN_SIZE.height()));
}

void RangeSelectSlider::ShowDrag()
{
    update();
    if (Info.bDragging)
        QToolTip::showText(xyPointer, TextOf(SliderThumbValue(Info, Info.nDragThumb)), this);
}

void RangeSelectSlider::Changed()
{
    Pace.Ask();
    QAccessibleValueChangeEvent event(this, SliderThumbValue(Info, FocusedThumb()));
    QAccessible::updateAccessibility(&event);
    if (pfnChanged)
        pfnChanged();
}

void RangeSelectSlider::paintEvent(QPaintEvent *)
{
    QImage image(DeviceSize(), QImage::Format_RGB32);
    if (image.isNull())
        return;
    const size_t nPixels = static_cast<size_t>(image.width()) * static_cast<size_t>(image.height());
    PaintSlider(Info, std::span<u32>(reinterpret_cast<u32 *>(image.bits()), nPixels), image.width(), image.height(),
                Scale());
    image.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(this);
    painter.drawImage(QPoint(0, 0), image);
    if (!hasFocus())
        return;
    const SliderBox box = SliderThumbBox(Info, FocusedThumb(), image.width(), image.height(), Scale());
    const qreal f = devicePixelRatioF();
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = QRectF(box.x / f, box.y / f, box.nWidth / f, box.nHeight / f).toAlignedRect().adjusted(2, 2, -2, -2);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void RangeSelectSlider::mousePressEvent(QMouseEvent *pEvent)
{
    const QPoint place = DevicePlace(pEvent->position());
    const QSize size = DeviceSize();
    if (pEvent->button() != Qt::LeftButton ||
        !BeginSliderDrag(&Info, &Grip, place.x(), place.y(), size.width(), size.height(), Scale()))
        return;
    SetFocusedThumb(Info.nDragThumb);
    if (pfnDrag)
        pfnDrag(true);
}

void RangeSelectSlider::mouseMoveEvent(QMouseEvent *pEvent)
{
    const bool bFine = pEvent->modifiers() & Qt::ShiftModifier;
    if (!DragSlider(&Info, &Grip, DevicePlace(pEvent->position()).x(), DeviceSize().width(), bFine))
        return;
    xyPointer = pEvent->globalPosition().toPoint();
    Changed();
}

void RangeSelectSlider::EndDrag()
{
    if (!Info.bDragging)
        return;
    EndSliderDrag(&Info);
    QToolTip::hideText();
    update();
    if (pfnDrag)
        pfnDrag(false);
}

void RangeSelectSlider::mouseReleaseEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() == Qt::LeftButton)
        EndDrag();
}

void RangeSelectSlider::mouseDoubleClickEvent(QMouseEvent *pEvent)
{
    const QPoint place = DevicePlace(pEvent->position());
    const QSize size = DeviceSize();
    const u32 dwThumb = HitSlider(Info, place.x(), place.y(), size.width(), size.height(), Scale());
    if (pEvent->button() == Qt::LeftButton && dwThumb && pfnDefault)
        pfnDefault(dwThumb);
}

void RangeSelectSlider::wheelEvent(QWheelEvent *pEvent)
{
    const int y = DevicePlace(pEvent->position()).y();
    if (TurnSlider(&Info, pEvent->angleDelta().y(), y, DeviceSize().height()))
        Changed();
}

void RangeSelectSlider::keyPressEvent(QKeyEvent *pEvent)
{
    for (const KeyStep &row : asKeyStep)
        if (row.nKey == pEvent->key()) {
            if (StepSlider(&Info, FocusedThumb(), row.nSteps))
                Changed();
            return;
        }
    QWidget::keyPressEvent(pEvent);
}

void RangeSelectSlider::focusInEvent(QFocusEvent *pEvent)
{
    if (pEvent->reason() == Qt::TabFocusReason)
        SetFocusedThumb(THUMB_LOW);
    else if (pEvent->reason() == Qt::BacktabFocusReason)
        SetFocusedThumb(THUMB_HIGH);
    update();
}

void RangeSelectSlider::focusOutEvent(QFocusEvent *)
{
    update();
}

bool RangeSelectSlider::focusNextPrevChild(bool bNext)
{
    if (!Info.bRangeMode || dwFocused == (bNext ? THUMB_HIGH : THUMB_LOW))
        return QWidget::focusNextPrevChild(bNext);
    SetFocusedThumb(bNext ? THUMB_HIGH : THUMB_LOW);
    return true;
}

void RangeSelectSlider::hideEvent(QHideEvent *)
{
    EndDrag();
}
