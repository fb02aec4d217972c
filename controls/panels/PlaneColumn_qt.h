// PlaneColumn_qt.h -- one plane in the panels of planes: its preview, its box, its buttons
#pragma once

#include "controls/panels/PlanePanels.h"

#include <QWidget>

#include <functional>
#include <vector>

class PlanePreview;
class QLineEdit;
class QToolButton;

class PlaneColumn : public QWidget {
  public:
    using ClickFn = std::function<void(PlaneButton eButton)>;
    // The function names the plane that is shown, or null.
    PlaneColumn(std::function<const PlaneState *()> pfnPlane, std::span<const PlaneButton> buttons, ClickFn pfnClick);

    // Box and buttons, for the plane at that position or none.
    void ShowState(const PresetState *lppsi, i32 iPlane);
    void FollowPicture();

  private:
    struct Button {
        PlaneButton eButton;
        QToolButton *pButton;
    };

    PlanePreview *pPreview;
    QLineEdit *pBox;
    std::vector<Button> Buttons;
};
