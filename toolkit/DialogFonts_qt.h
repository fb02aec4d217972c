// DialogFonts_qt.h -- the one font of a window that scales, fitted to the texts of its controls
//
// For the files of dialog scaling alone.
#pragma once

#include "toolkit/DialogScaling.h"

#include <QFont>

#include <vector>

class QWidget;
struct ControlRecord;

ScaledFont DesignFontOf(const QWidget *pWidget);

// The room that it has beside its text, while it stands at its design size with its own font.
void TakeFont(QWidget *pControl, ControlRecord *pRecord);
// It has the font again that it was given, unless somebody else has changed it meanwhile.
void PutFontBack(QWidget *pControl, ControlRecord *pRecord);

// The font for these factors; smaller where a text that is whole at the design size would be cut. The controls have
// their places.
QFont FitDialogFont(const QWidget *pDialog, const std::vector<QWidget *> &apControl, const ScaleFactors &factors);
// The font pass: all controls but those that keep theirs. Lists of combo boxes grow too.
void GiveFont(const std::vector<QWidget *> &apControl, const QFont &font);
