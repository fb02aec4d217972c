// PictureButtons_qt.h -- buttons of panels that show a picture instead of a text
#pragma once

#include <QString>

class QToolButton;

// The picture is data/UI/NAME.svg; the text is its tip, and what a screen reader says.
QToolButton *MakePictureButton(const char *pszIcon, const QString &text);
// Changes both; nothing is painted anew where they are what they were.
void SetPictureButton(QToolButton *pButton, const char *pszIcon, const QString &text);
