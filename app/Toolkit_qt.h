// Toolkit_qt.h -- brings the window toolkit up the way this program needs it
#pragma once

#include <QApplication>

#include <memory>

// Makes the application object. Null, with one line on standard error, where there is no display; a toolkit that cannot
// use the display ends the process likewise, with exit code 1. From then on the toolkit's messages are lines of this
// program. Call once, before any window. [main-thread]
std::unique_ptr<QApplication> StartToolkit();
