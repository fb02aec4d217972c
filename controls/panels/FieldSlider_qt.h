// FieldSlider_qt.h -- sliders and scroll bars that write a field of a panel's record
#pragma once

#include "editing/EditFields.h"

#include <functional>

class Panel;
class QAbstractSlider;

// Each movement by the user is written at once; those of one drag are one edit. pfnWrite says what a position means;
// pfnWritten, if it is not null, is called after each one that was accepted or changed nothing.
void WriteWithSlider(Panel *pPanel, QAbstractSlider *pSlider, std::function<FieldWrite(i32 nPosition)> pfnWrite,
                     std::function<void()> pfnWritten = nullptr);
// Nothing is written.
void PlaceSlider(QAbstractSlider *pSlider, i32 nPosition);
