// DialogScaling_qt.h -- windows whose controls and text grow with them
#pragma once

class QWidget;

// The one call, from the window's making, when its controls are there. The toolkit's layouts give every control its
// place at the design size, which is the size that the window was given or the one that its contents ask for. What a
// control needs to be hidden at first and yet have a place in the design: KeepPlaceWhenHidden before. [main-thread]
void EnableDialogScaling(QWidget *pDialog);
// Layouts keep room for it while it is hidden.
void KeepPlaceWhenHidden(QWidget *pControl);
