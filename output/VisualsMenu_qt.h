// VisualsMenu_qt.h -- the context menu of the visuals window
#pragma once

class QMenu;
class QWidget;

// Made anew for every use, so that marks and grey entries are those of the moment. Belongs to the parent and deletes
// itself when it closes.
QMenu *BuildVisualsMenu(QWidget *pParent);
