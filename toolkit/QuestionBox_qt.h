// QuestionBox_qt.h -- message boxes that neither stop the show nor hold up their caller
#pragma once

#include <QString>

#include <functional>

class QWidget;

// Asks ConfirmDiscard's question over the window if the current preset has changes, and calls proceed on yes; without
// changes at once. While the question is open, another call brings it to the front and drops its own proceed: there is
// one decision to make. [main-thread]
void ConfirmDiscard(QWidget *pParent, std::function<void()> proceed);

// An error in plain text with an OK button. [main-thread]
void ShowErrorBox(QWidget *pParent, const QString &title, const QString &text);
