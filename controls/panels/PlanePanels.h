// PlanePanels.h -- what the two panels of planes say and do
#pragma once

#include "editing/PresetTree.h"

#include <span>

// "Plane %d\t [%s]", the position from 1, with "Indexed" or "RGB"; "Unused" for a position that holds no plane.
std::u16string PlaneBoxText(const PresetState *lppsi, i32 iPlane);

enum class PlaneButton : u32 { MoveLeft, Pause, Clear, Remove, MoveRight };

// A button of a plane as its panel shows it.
struct PlaneButtonLook {
    const char *pszIcon;
    const char16_t *pszName; // its tip too
};
PlaneButtonLook LookOfPlaneButton(PlaneButton eButton, bool bPaused);

// From the left to the right: of a plane's own panel, and of a column among all planes. The outer columns have nothing
// to be moved to on one side.
std::span<const PlaneButton> ButtonsOfPlane();
std::span<const PlaneButton> ButtonsOfColumn(i32 iPlane);
// Whether a click on it does something: there is a plane, and for a move one beside it.
bool PlaneButtonActs(const PresetState *lppsi, i32 iPlane, PlaneButton eButton);

// A click on the button of a column. One that does nothing changes nothing, and leaves the preset unmarked.
void ClickPlaneButton(PresetTree &tree, i32 iPlane, PlaneButton eButton);
// A click on the button of a plane's own panel. Remove builds the whole tree anew: the node is gone, and with it every
// panel of the preset.
void ClickOwnPlaneButton(TreeNode *pPlane, PlaneButton eButton);
// With its default modules. Nothing happens at PLANES_MAX.
void AddPlaneTo(TreeNode *pPlanes, bool bIndexed);
