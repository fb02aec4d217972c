// ControlShapes.cpp -- where the parts of group boxes and check boxes lie
#include "toolkit/ControlShapes.h"

#include "platform/Text.h"

#include <algorithm>

namespace {

constexpr i32 CHECK_GAP = 5;
constexpr i32 CAPTION_INDENT = 10; // from the left edge of a group box
constexpr i32 CONTENTS_MARGIN = 2; // from the outline of a group box

} // namespace

CheckBoxShape PlaceCheckMark(CheckPlacement ePlacement, i32 w, i32 h, i32 nFontHeight, i32 nTextWidth)
{
    const i32 nSide = nFontHeight;
    i32 xMark = 0;
    i32 xText = 0;
    i32 xTextEnd = w;
    switch (ePlacement) {
    case CheckPlacement::TextLeft:
        xMark = w - CHECK_GAP - nSide;
        xText = CHECK_GAP;
        xTextEnd = xMark;
        break;
    case CheckPlacement::RightAligned:
        xMark = w - nSide;
        xTextEnd = xMark - CHECK_GAP;
        break;
    case CheckPlacement::Centred:
        xMark = std::max((w - (nSide + CHECK_GAP + nTextWidth)) / 2, 0);
        xText = xMark + nSide + CHECK_GAP;
        break;
    case CheckPlacement::MarkLeft:
        xText = nSide + CHECK_GAP;
        break;
    }
    return {{xMark, (h - nSide) / 2, nSide, nSide}, {xText, 0, std::max(xTextEnd - xText, 0), h}};
}

i32 CheckBoxWidth(CheckPlacement ePlacement, i32 nFontHeight, i32 nTextWidth)
{
    const i32 nMargins = ePlacement == CheckPlacement::TextLeft ? 2 * CHECK_GAP : 0;
    return nMargins + nFontHeight + (nTextWidth ? CHECK_GAP + nTextWidth : 0);
}

GroupBoxShape PlaceGroupBox(i32 w, i32 h, i32 nFontHeight, i32 nCaptionWidth)
{
    const i32 yTop = nFontHeight / 2;
    const i32 yContents = nCaptionWidth ? nFontHeight : yTop;
    GroupBoxShape shape = {};
    shape.outline = {0, yTop, w, std::max(h - yTop, 0)};
    shape.caption = {CAPTION_INDENT, 0, std::clamp(w - 2 * CAPTION_INDENT, 0, nCaptionWidth), nFontHeight};
    shape.contents = {CONTENTS_MARGIN, yContents + CONTENTS_MARGIN, std::max(w - 2 * CONTENTS_MARGIN, 0),
                      std::max(h - yContents - 2 * CONTENTS_MARGIN, 0)};
    return shape;
}

std::u16string GroupCaption(std::u16string_view caption)
{
    if (caption.empty())
        return {};
    char16_t sz[64 + 1];
    CopyText(sz, caption);
    return std::u16string(u"[ ") + sz + u" ]";
}

std::u16string CheckCaption(std::u16string_view caption)
{
    char16_t sz[128 + 1];
    CopyText(sz, caption);
    return sz;
}
