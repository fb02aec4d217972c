// RecordingDialog_qt.h -- the dialog "Recording Settings"
#pragma once

class QWidget;

// Opens it, or brings it to the front where it is open. Does not wait for its end. [main-thread]
void ShowRecordingDialog(QWidget *pParent);
