// RangeSlider.h -- the slider with one thumb for a value or two for a range: geometry, mouse, wheel, keys, pixels
//
// All sizes are device pixels, from the top left; nScale is how many of them make one of the design, in hundredths
// (100, 150, 200). A scale without width, or whose ends are no numbers, has all thumbs at the left and no drag changes
// it.
#pragma once

#include "platform/BaseTypes.h"

#include <span>
#include <type_traits>

enum SliderThumb : u32 { THUMB_NONE = 0, THUMB_LOW, THUMB_HIGH, THUMB_VALUE };

// What a slider shows. Its owner may write it at any time and repaints then. Nothing keeps fRangeLow below fRangeHigh.
struct SliderInfo {
    f32 fMinimum; // left end of the scale
    f32 fMaximum;
    f32 fValue;
    f32 fRangeLow;
    f32 fRangeHigh;
    u32 bRangeMode; // 0: the value's thumb alone; 1: the two of the range
    u32 bShowValue; // in range mode the value's thumb too
    u32 bFloat;     // 0: a scale of whole numbers, on which a step is at least 1
    u32 bDragging;
    u32 nDragThumb; // SliderThumb
};
static_assert(sizeof(SliderInfo) == 40 && std::is_trivially_copyable_v<SliderInfo>);

// Of the form 0x00BBGGRR; one set for all sliders. [main-thread]
struct SliderColorSet {
    u32 crLowThumb, crHighThumb, crValueThumb, crBackground, crOutline;
};
extern SliderColorSet SliderColors;
// The thumbs of the range take the user's meter colours.
void TakeUserSliderColors();

struct SliderBox {
    i32 x, y, nWidth, nHeight;
};

// The thumb's number; 0 for none.
f32 SliderThumbValue(const SliderInfo &info, u32 dwThumb);
// Sets it as it is, also beyond the scale. 0 for none.
u32 SetSliderThumb(SliderInfo *pInfo, u32 dwThumb, f32 fValue);
// Where the number stands on a width of w.
i32 SliderPosition(const SliderInfo &info, f32 fValue, i32 w);
// The rectangle in which the thumb is painted and hit.
SliderBox SliderThumbBox(const SliderInfo &info, u32 dwThumb, i32 w, i32 h, u32 nScale);
// The thumb under the point; the upper bound where both of a range are.
u32 HitSlider(const SliderInfo &info, i32 x, i32 y, i32 w, i32 h, u32 nScale);

// Where a drag was when it last changed between the plain and the fine manner.
struct SliderGrip {
    i32 x;
    f32 fValue;
    u32 bFine;
};

// Ends what was dragged before. Non-zero if a thumb was hit and is dragged from now on.
u32 BeginSliderDrag(SliderInfo *pInfo, SliderGrip *pGrip, i32 x, i32 y, i32 w, i32 h, u32 nScale);
// The pointer at x puts the dragged thumb there, within the scale; in the fine manner it moves a tenth as far as the
// pointer does from then on. Non-zero if there is a drag: the owner is told.
u32 DragSlider(SliderInfo *pInfo, SliderGrip *pGrip, i32 x, i32 w, u32 bFine);
void EndSliderDrag(SliderInfo *pInfo);

// One notch of the wheel, by its sign, moves the value or, by the pointer's height, an end of the range. Non-zero: the
// owner is told.
u32 TurnSlider(SliderInfo *pInfo, i32 nSign, i32 y, i32 h);
// Arrow keys and page keys: so many steps, each a thousandth of the scale or, for whole numbers, 1 at least.
u32 StepSlider(SliderInfo *pInfo, u32 dwThumb, i32 nSteps);

// Paints w times h pixels of the form 0xFFRRGGBB, top row first.
void PaintSlider(const SliderInfo &info, std::span<u32> pixels, i32 w, i32 h, u32 nScale);
