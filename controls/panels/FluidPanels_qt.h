// FluidPanels_qt.h -- the sub-panels of a control's animated sources, at the bottom of its panel
#pragma once

#include <QWidget>

class FluidPanel;
class Panel;

constexpr int FLUID_PANELS = 3;

// For the panel of a control that supports animated sources: one widget over its full width, at its bottom. It shows
// the sub-panel of the control's source, and takes no room where the source has none; the panel's window grows and
// shrinks with it. The sub-panels are made together on first need. [main-thread]
class FluidPanels : public QWidget {
  public:
    explicit FluidPanels(Panel *pPanel);

    // The source has changed: another sub-panel, or none.
    void ShowSource();
    // All controls from the record; the source too.
    void Fill();
    // The monitor in view draws its next step; from Panel::Follow.
    void Follow();

  private:
    void Make();
    FluidPanel *Wanted();

    Panel *pPanel;
    FluidPanel *apSub[FLUID_PANELS] = {}; // null: not made yet
    FluidPanel *pShown = nullptr;
};
