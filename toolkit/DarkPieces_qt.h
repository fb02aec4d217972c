// DarkPieces_qt.h -- what the dark style paints in place of the style below it
#pragma once

#include <QIcon>
#include <QRect>
#include <QSize>
#include <QStyle>

class QPainter;
class QStyleOption;
class QWidget;

// What every painter gets; pStyle is the dark style itself, for the geometry.
struct DarkPiece {
    const QStyle *pStyle;
    const QStyleOption *pOption;
    QPainter *pPainter;
    const QWidget *pWidget; // may be null
};

// Buttons and marks
void DrawPushButton(const DarkPiece &piece);
void DrawToolButtonPanel(const DarkPiece &piece);
void DrawCheckIndicator(const DarkPiece &piece);
void DrawRadioIndicator(const DarkPiece &piece);
void DrawCheckBox(const DarkPiece &piece);
void DrawGroupBox(const DarkPiece &piece);
void DrawFocusRect(const DarkPiece &piece);
void DrawUpArrow(const DarkPiece &piece);
void DrawDownArrow(const DarkPiece &piece);
void DrawLeftArrow(const DarkPiece &piece);
void DrawRightArrow(const DarkPiece &piece);
void DrawHeaderArrow(const DarkPiece &piece);
void DrawTabClose(const DarkPiece &piece);

// A check box's mark or text, and a group box's parts, as rectangles of the option's own.
QRect CheckMarkRect(const QStyleOption *pOption, const QWidget *pWidget);
QRect CheckTextRect(const QStyleOption *pOption, const QWidget *pWidget);
QSize CheckBoxSize(const QStyleOption *pOption, const QWidget *pWidget);
QRect GroupBoxRect(const QStyleOption *pOption, QStyle::SubControl ePart, const QRect &other);
QSize GroupBoxSize(const QStyleOption *pOption, const QSize &contents);

// Fields
void DrawFieldPanel(const DarkPiece &piece);
void DrawFieldFrame(const DarkPiece &piece);
void DrawFrame(const DarkPiece &piece);
void DrawComboBox(const DarkPiece &piece);
void DrawSpinBox(const DarkPiece &piece);

// Bars
void DrawSlider(const DarkPiece &piece);
void DrawScrollBar(const DarkPiece &piece);
void DrawScrollCorner(const DarkPiece &piece);
void DrawProgressGroove(const DarkPiece &piece);
void DrawProgressContents(const DarkPiece &piece);
void DrawProgressLabel(const DarkPiece &piece);
void DrawSplitter(const DarkPiece &piece);
void DrawSizeGrip(const DarkPiece &piece);
void DrawTabShape(const DarkPiece &piece);
void DrawTabPage(const DarkPiece &piece);
void DrawTabBase(const DarkPiece &piece);
void DrawToolBar(const DarkPiece &piece);

// Menus and tips
void DrawMenuPanel(const DarkPiece &piece);
void DrawMenuItem(const DarkPiece &piece);
void DrawMenuBarItem(const DarkPiece &piece);
void DrawMenuBarSpace(const DarkPiece &piece);
void DrawTipPanel(const DarkPiece &piece);
QSize MenuItemSize(const QStyleOption *pOption, const QSize &below);
// The icon of a message box, for SP_MessageBoxInformation and its like; a null one for anything else.
QIcon MakeMessageIcon(QStyle::StandardPixmap eIcon);

// Lists and trees
void DrawItemPanel(const DarkPiece &piece);
void DrawItemTextBack(const DarkPiece &piece);
void DrawBranch(const DarkPiece &piece);
void DrawHeaderSection(const DarkPiece &piece);
void DrawHeaderSpace(const DarkPiece &piece);
void DrawNothing(const DarkPiece &piece);
