// ControlSurface_qt.h -- the monitor of a fluid sub-panel: its drawing and the bars beside it
#pragma once

#include "controls/panels/ControlSurface.h"
#include "editing/EditFields.h"

#include <QWidget>

class Panel;
class QScrollBar;

// The drawing alone.
class SurfaceArea : public QWidget {
  public:
    explicit SurfaceArea(Panel *pPanel);

    void Step();
    // The wave or a colour has changed.
    void DrawAnew();

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *pEvent) override;

  private:
    void Draw(const ControlRecord *pctl);

    Panel *pPanel;
    ControlSurface Surface = {};
};

// The drawing with its bars: for the phase under that of a wave, for the threshold beside that of a boolean.
// [main-thread]
class SurfaceMonitor : public QWidget {
  public:
    // The source is one of FLUIDSOURCE_*.
    SurfaceMonitor(Panel *pPanel, u32 dwSource);
    ~SurfaceMonitor() override;

    // The bars and the drawing from the record.
    void Fill();
    // The next step, each PANEL_TIMER_MS while it can be seen.
    void Step();

  private:
    QScrollBar *MakeBar(Qt::Orientation eOrientation, const QString &name, EditField eField);
    static void HearColor(u32 iRow, void *pv);

    Panel *pPanel;
    SurfaceArea *pArea;
    QScrollBar *pPhase = nullptr;     // null: no wave
    QScrollBar *pThreshold = nullptr; // null: no boolean
};
