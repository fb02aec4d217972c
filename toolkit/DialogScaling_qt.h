// DialogScaling_qt.h -- windows whose controls and text grow with them
#pragma once

#include "toolkit/DialogScaling.h"

class QWidget;

// What is known of a window that scales, and of each of its controls. It lives as long as the widget, as its property
// "SDScaleInfo".
struct SDScaleInfo {
    WindowRect rcDesign; // of a window: its area under the menu; of a control: its place in its parent; at design size
    ScaledFont lfDesign; // lfHeight below 0
    QWidget *hwndTop;    // what it scales with; of a window: itself
    u32 bRawChildRects;  // of a window: rectangles of controls that come later are taken as they are
    u32 bResizing;       // of a window: a pass runs
};
static_assert(std::is_trivially_copyable_v<SDScaleInfo>);

// The one call, from the window's making, when its controls are there. The toolkit's layouts give every control its
// place at the design size, which is the size that the window was given or the one that its contents ask for; then they
// rest. From then on each resize places the controls, and picks one font for all but lists, trees and texts of several
// lines. Around them runs a thin band by which the window is sized. A control that is created or first shown later
// takes its place at once: one in a layout by laying out the window anew, any other one where its maker has put it.
// What a control needs to be hidden at first and yet have a place in the design: KeepPlaceWhenHidden before.
// [main-thread]
void EnableDialogScaling(QWidget *pDialog);
// Layouts keep room for it while it is hidden.
void KeepPlaceWhenHidden(QWidget *pControl);

// Null where the widget does not scale.
SDScaleInfo *ScaleInfoOf(const QWidget *pWidget);
// Present over design size, of a window that scales or of one of its controls. 0, and factors of 1, for anything else.
u32 GetDialogScale(const QWidget *pWidget, ScaleFactors *pFactors);
// One pass: places, then fonts. Nothing to do where everything stands at the design size already.
void ScaleDialog(QWidget *pDialog);
// Lays the window out anew at its design size, and scales it as it was scaled: after a change of the user's font, or of
// what the layouts hold. The window grows or shrinks with its design.
void TakeDesignAgain(QWidget *pDialog);
// The widget scales no more, and keeps what it looks like; a window with all of its controls.
void ReleaseScaleInfo(QWidget *pWidget);

// The window's children that take part, in the toolkit's order, and those of groups in it. Dialogs inside of dialogs
// are walked to that depth. The function's 0 ends the walk, and is its result.
constexpr i32 DIALOG_DEPTH = 2;
u32 ForEachDialogChild(QWidget *pParent, u32 (*pfn)(QWidget *pChild, void *pv), void *pv, i32 nDepth);
