// DialogControls_qt.h -- the controls of a window that scales: which take part, what is kept of each, how layouts place
// them
//
// For the files of dialog scaling alone.
#pragma once

#include "toolkit/DialogScaling_qt.h"

#include <QFont>
#include <QRect>

#include <vector>

enum class DialogPart : u32 {
    None,      // takes no part: windows, menu bars, the sizing band
    Control,   // one piece, whatever it is made of
    KeepsFont, // the same, with a font of its own: lists, trees, texts of several lines, scroll areas with what is in
               // them
    Group,     // a layout of its own, which rests too; its children are placed, and get fonts
    Pages,     // it places its children by itself; they get fonts
};
DialogPart PartOf(const QWidget *pWidget);

struct ControlRecord {
    SDScaleInfo Info;
    QFont OwnFont;     // that it was given; without any property where it had none
    QFont GivenFont;   // by scaling, while bFontGiven is set
    QSize Least, Most; // limits that hold for layouts, not for scaling
    QSize TextRoom;    // what it has beside its text at the design size, at least
    i32 nListAsked;    // of a combo box: width that others asked for its list, and that it was given here
    i32 nListGiven;
    bool bFontGiven;
    bool bPlaced;      // by scaling
    bool bScaled;      // of a window: it does not stand as it was laid out
    QSize DesignAsked; // of a window: its design size, if it was given one
};

// Null: none.
ControlRecord *RecordOf(const QWidget *pWidget);
ControlRecord *MakeRecord(QWidget *pWidget, QWidget *pTop);

WindowRect RectOf(const QRect &rc);
QRect ToQRect(const WindowRect &rc);

// All that ForEachDialogChild walks, in its order.
std::vector<QWidget *> DialogChildren(QWidget *pParent);

// Where the area of the window begins that scales: under its menu bar.
int ScaledTop(const QWidget *pDialog);
// As wide as the window; never scaled.
void PlaceMenuBar(QWidget *pDialog);

// The size that the contents ask for.
QSize AskedSize(const QWidget *pDialog);
// Its layout, and those of groups in it, place everything, and then rest until they are asked again.
void LayOut(QWidget *pGroup, const QSize &size);
bool StandsInLayout(const QWidget *pControl);

// Its limits and fonts are again those that it was given.
void PutBack(QWidget *pControl);
// From now on it has its place in the design, and its limits do not hold; unless others place it, for fonts alone.
void TakeControl(QWidget *pControl, QWidget *pTop, const WindowRect &rcDesign, bool bPlaced);
