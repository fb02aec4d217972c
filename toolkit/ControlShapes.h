// ControlShapes.h -- where the parts of group boxes and check boxes lie
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

struct ControlBox {
    i32 x;
    i32 y;
    i32 w;
    i32 h;
};

enum class CheckPlacement : u32 {
    MarkLeft,     // the mark at the left edge
    TextLeft,     // the text first, the mark near the right edge
    RightAligned, // the mark at the right edge, the text at the left
    Centred,      // mark and text as one block in the middle
};

struct CheckBoxShape {
    ControlBox mark;
    ControlBox text; // what the text may cover; it starts at the left of it
};

// A check box of w by h with a font of nFontHeight and a text of nTextWidth. The mark is as wide as the font is high.
CheckBoxShape PlaceCheckMark(CheckPlacement ePlacement, i32 w, i32 h, i32 nFontHeight, i32 nTextWidth);
// The width that shows all of the text.
i32 CheckBoxWidth(CheckPlacement ePlacement, i32 nFontHeight, i32 nTextWidth);

struct GroupBoxShape {
    ControlBox outline;
    ControlBox caption; // of a width of 0 when there is none
    ControlBox contents;
};

// A group box of w by h; nCaptionWidth is that of what GroupCaption returns, a check mark's included.
GroupBoxShape PlaceGroupBox(i32 w, i32 h, i32 nFontHeight, i32 nCaptionWidth);
// "[ %s ]" with the first 64 characters of the caption; empty for an empty one.
std::u16string GroupCaption(std::u16string_view caption);
// The first 128 characters of a check box's caption.
std::u16string CheckCaption(std::u16string_view caption);
