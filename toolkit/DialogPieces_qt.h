// DialogPieces_qt.h -- the small parts that dialogs and panels are made of, with the names that a screen reader says
#pragma once

#include "platform/BaseTypes.h"

#include <QString>

#include <functional>
#include <string>

class QAbstractItemView;
class QComboBox;
class QLineEdit;
class QSlider;
class QSpinBox;
class QTreeView;
class QWidget;

// A window's title that is shown as it is: "[*]" is the toolkit's own placeholder, and window managers show a line end
// as rubbish.
QString TitleText(const std::u16string &title);
// A tool tip that is shown as it is, whatever markup it seems to hold.
QString PlainTip(const QString &text);
// Names the control too, where nothing else does.
void AddToolTip(QWidget *pControl, const QString &text);

// Adds a text with its value, selects it if that is the one wanted, and widens the dropped list to the text.
void AddComboItem(QComboBox *pCombo, const QString &text, i64 nValue, i64 nWanted);
// nNone where nothing is selected.
i64 ComboValue(const QComboBox *pCombo, i64 nNone);

struct TrackBarRange {
    i32 nMin, nMax;
    i32 nLine = 1, nPage = 10; // steps of the arrow keys and of the page keys
};
// The field shows where the slider stands; what is typed into it leaves the slider alone. Both are called by the name.
void InitTrackBar(QSlider *pSlider, QSpinBox *pField, const TrackBarRange &range, i32 nValue, const QString &name);

// With so many decimals, and a point whatever the user's language writes.
void SetDlgItemFloat(QLineEdit *pField, double f, int nDecimals);
// False, and no change, where the field does not hold a number.
bool GetDlgItemFloat(const QLineEdit *pField, double *pf);

QSpinBox *MakeNumberField(i32 nMin, i32 nMax, const QString &name);
QLineEdit *MakeTextField(i32 nCharsMax, const QString &name);

// A line of text with a "..." button that asks for a folder; frames go on behind the question.
struct PathField {
    QLineEdit *pLine;
    QWidget *pRow; // both of them
};
// picked is called when a folder was chosen by the button and stands in the line.
PathField MakeFolderField(const QString &name, const QString &prompt, i32 nCharsMax, std::function<void()> picked);

// Ctrl and the wheel change the font's height by one unit, within readable bounds.
void ZoomListFont(QAbstractItemView *pView);
// A click on a heading sorts by it, a second one flips the direction; the arrow says which.
void ListColumnClickSort(QTreeView *pList, int iColumn, bool bDescending);
