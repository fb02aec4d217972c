// DialogScaling.h -- how a dialog that is stretched places its controls, chooses its font and is taken by its edge
//
// Rectangles in, rectangles and fonts out; pixels of one kind throughout. At the design size everything stands as it
// was laid out.
#pragma once

#include "platform/BaseTypes.h"
#include "toolkit/WindowLayouts.h"

#include <type_traits>

constexpr i32 SIZING_BAND = 5; // of the thin frame at the left, right and bottom

struct ScaleFactors {
    f32 fScaleX, fScaleY; // present over design size; 1 where there is no design size
};

struct ScaledFont {
    i32 lfHeight; // below 0: of the letters; above 0: of the line
    i32 lfWidth;  // average width of a letter; 0: as the font's own proportions have it
    i32 lfWeight; // 0: the default
};
static_assert(std::is_trivially_copyable_v<ScaledFont>);

// To nearest, halves away from zero.
i32 RoundAway(f64 f);

ScaleFactors GetDialogScale(const WindowRect &rcNow, const WindowRect &rcDesign);
// A dialog's design rectangle from its client rectangle at the design size.
WindowRect DialogDesignRect(const WindowRect &rcClient);
// A control's, from the place that it has while the dialog is stretched.
WindowRect BringToDesign(const WindowRect &rcNow, const ScaleFactors &factors);
// Where a control goes. A combo box has room for its list: its height gains its width.
WindowRect PlaceControl(const WindowRect &rcDesign, const ScaleFactors &factors, u32 bComboBox);

// The width that belongs to a design font of that height.
i32 DesignFontWidth(i32 lfHeight);
// The one font of the dialog's controls. nDesignHeight is the height of the dialog's design rectangle.
ScaledFont ScaleFont(const ScaledFont &lfDesign, const ScaleFactors &factors, i32 nDesignHeight);

// Width of the letters in per cent of what the design font's proportions give them at that height; 100 at most.
i32 FontStretch(const ScaledFont &lf, const ScaledFont &lfDesign);

// The largest height from 1 to nWanted, which is at least 1, at which the text still fits; not below nLeast, the height
// at the design size, unless nWanted is. pfnFits says so for one height, and that of every smaller one then too.
i32 FitFontHeight(i32 nWanted, i32 nLeast, bool (*pfnFits)(i32 nHeight, void *pvContext), void *pvContext);

// Where a control of a window of that size goes that would cover the sizing band.
WindowRect LeaveBandFree(const WindowRect &rc, i32 nWidth, i32 nHeight);
// The least size of a window that scales.
WindowRect LeastDialogRect(const WindowRect &rcDesign);

enum class SizingEdge : u32 { None, Left, Right, Top, Bottom, TopLeft, TopRight, BottomLeft, BottomRight };
// What of the edge lies under a point of the client area, which is nWidth times nHeight; None: what would be there
// anyway.
SizingEdge HitSizingBand(i32 x, i32 y, i32 nWidth, i32 nHeight);
