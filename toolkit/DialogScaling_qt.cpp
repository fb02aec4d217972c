// DialogScaling_qt.cpp -- windows whose controls and text grow with them
#include "toolkit/DialogScaling_qt.h"

#include <QWidget>

void EnableDialogScaling(QWidget *pDialog)
{
    if (!pDialog->testAttribute(Qt::WA_Resized))
        pDialog->adjustSize();
}

void KeepPlaceWhenHidden(QWidget *pControl)
{
    QSizePolicy policy = pControl->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    pControl->setSizePolicy(policy);
}
