// PlanePreview_qt.h -- the picture of a plane as a small widget
#pragma once

#include "state/PresetState.h"

#include <QImage>
#include <QWidget>

#include <functional>

// Shows the plane's output, stretched over the widget. The function names the plane of the moment, or null: black.
// [main-thread]
class PlanePreview : public QWidget {
  public:
    explicit PlanePreview(std::function<const PlaneState *()> pfnPlane);

    // Takes the picture of the moment, and repaints where it is another one. For a timer: a widget that cannot be seen
    // does nothing.
    void Follow();
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *pEvent) override;

  private:
    QImage Take() const;

    const std::function<const PlaneState *()> pfnPlane;
    QImage Picture;
    bool bFresh = false; // taken since the last painting
};
