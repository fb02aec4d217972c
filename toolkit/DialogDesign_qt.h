// DialogDesign_qt.h -- the design of a window that scales: taken when it is made, again, and of controls that come
// later
//
// For the files of dialog scaling alone.
#pragma once

#include "toolkit/DialogScaling_qt.h"

#include <QRect>

// Of a widget that has one.
const SDScaleInfo &InfoOf(const QWidget *pWidget);
QSize DesignSize(const QWidget *pWidget);
bool BelongsTo(const QWidget *pWidget, const QWidget *pDialog);

// Of a window that scales: its area under the menu bar. Of a control: its place; a window's own controls count from
// there.
QRect PlaceOf(const QWidget *pWidget, const QWidget *pTop);
// Where the control's parent begins in that area, at the design size and now. Places are scaled as the window has them:
// rounded within each parent, what ends with its parent would be cut.
QPoint ParentAtDesign(const QWidget *pControl, const QWidget *pDialog);
QPoint ParentNow(const QWidget *pControl, const QWidget *pDialog);
// Something between it and the window places its children by itself.
bool StandsInPages(const QWidget *pControl, const QWidget *pDialog);

void PolishAll(QWidget *pDialog);
// What the layouts make of the window becomes its design, whose size this is. The window may have any size meanwhile.
QSize TakeDesign(QWidget *pDialog);
// The least size follows the design; a side that the owner has fixed stays so.
void LimitWindow(QWidget *pDialog);
// Controls that came later: where they stand now is where they belong at the present size.
void TakeLateControls(QWidget *pDialog, const ScaleFactors &factors);
