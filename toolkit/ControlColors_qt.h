// ControlColors_qt.h -- the user's colours on single controls: lists, trees, texts, check boxes
#pragma once

#include "toolkit/ControlShapes.h"

class QAbstractItemView;
class QCheckBox;
class QTextEdit;
class QWidget;

// Every control passes here once, when the style first sees it: it takes its colours and is marked with the property
// "CtrlCustomized" of the value 1. A marked one is left alone. Returns 1, for null too. [main-thread]
u32 CustomizeControl(QWidget *pControl);
// A user colour has changed: colours that a control holds for itself are given anew.
void RefreshControlColors(QWidget *pControl);

enum class ViewColors : u32 { None, List, Tree };
ViewColors ViewColorsOf(const QWidget *pView);
// The "ListView" or "TreeView" colours, kept up to date from then on. Of itself a QTreeView takes those of a tree, any
// other item view those of a list: a list of several columns, which is a QTreeView here, asks for them.
void ApplyListColors(QAbstractItemView *pView);
void ApplyTreeColors(QAbstractItemView *pView);

// All text "Window Text" on "Window Background", a tab stop every 16 dialog units, addresses of pages and of mail as
// links. For a text without colours of its own; again after each new text. Kept up to date when the colours change.
void ApplyRichEditColors(QTextEdit *pEdit);

void SetCheckPlacement(QCheckBox *pBox, CheckPlacement ePlacement);
CheckPlacement CheckPlacementOf(const QWidget *pBox);
