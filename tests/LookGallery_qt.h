// LookGallery_qt.h -- a window with every standard control in its states, for eyes and for tests
#pragma once

class QWidget;

// The caller deletes it. Names of the objects inside: "checkTextLeft", "list" and so on, see the source. [main-thread]
QWidget *MakeLookGallery();
