// RecordingDialog_qt.h -- the dialog "Recording Settings"
#pragma once

#include "toolkit/WindowLayouts.h"

// Its row in the table of windows.
extern const WindowKind RecordingDialogKind;
