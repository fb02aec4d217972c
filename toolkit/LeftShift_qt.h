// LeftShift_qt.h -- whether the left Shift key is down now, the right one notwithstanding
#pragma once

// Asks the X server; on other systems either Shift key counts. [main-thread]
bool LeftShiftIsDown();
