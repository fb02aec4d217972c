// RangeSlider_qt.h -- the slider with one thumb for a value or two for a range, as a widget
#pragma once

#include "toolkit/FramePace_qt.h"
#include "toolkit/RangeSlider.h"

#include <QWidget>

#include <functional>

// The arrow keys move the focused thumb, Tab goes from thumb to thumb before it leaves. A drag shows the value at the
// pointer; Shift makes it ten times finer. [main-thread]
class RangeSelectSlider : public QWidget {
  public:
    explicit RangeSelectSlider(const SliderInfo &info, QWidget *pParent = nullptr);

    // The owner writes the record and calls update().
    SliderInfo Info;
    // The thumb that keys move, always one that is there.
    u32 FocusedThumb() const;
    void SetFocusedThumb(u32 dwThumb);
    // What a read-out says of a number of this scale.
    QString TextOf(f32 fValue) const;

    // After each change by mouse, wheel or key, and at both ends of a drag, which is one edit.
    std::function<void()> pfnChanged;
    std::function<void(bool bBegins)> pfnDrag;
    std::function<void(u32 dwThumb)> pfnDefault; // a double click on the thumb

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseMoveEvent(QMouseEvent *pEvent) override;
    void mouseReleaseEvent(QMouseEvent *pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent *pEvent) override;
    void wheelEvent(QWheelEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void focusInEvent(QFocusEvent *pEvent) override;
    void focusOutEvent(QFocusEvent *pEvent) override;
    bool focusNextPrevChild(bool bNext) override;
    void hideEvent(QHideEvent *pEvent) override;

  private:
    QSize DeviceSize() const;
    QPoint DevicePlace(const QPointF &place) const;
    u32 Scale() const;
    void Changed();
    void ShowDrag();
    void EndDrag();

    FramePace Pace;
    QPoint xyPointer; // of the drag, on the screen
    SliderGrip Grip = {};
    u32 dwFocused = THUMB_LOW; // counts in range mode
};
