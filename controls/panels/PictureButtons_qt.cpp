// PictureButtons_qt.cpp -- buttons of panels that show a picture instead of a text
#include "controls/panels/PictureButtons_qt.h"

#include "toolkit/DialogPieces_qt.h"
#include "toolkit/Icons_qt.h"

#include <QToolButton>

QToolButton *MakePictureButton(const char *pszIcon, const QString &text)
{
    auto *pButton = new QToolButton;
    SetPictureButton(pButton, pszIcon, text);
    return pButton;
}

void SetPictureButton(QToolButton *pButton, const char *pszIcon, const QString &text)
{
    if (pButton->accessibleName() == text)
        return;
    pButton->setIcon(UserIcon(pszIcon));
    pButton->setAccessibleName(text);
    AddToolTip(pButton, text);
}
