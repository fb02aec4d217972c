// NumberPanel.h -- what the panel of integers and floats shows and writes
//
// Both kinds of numbers come and go as f64, which holds either of them exactly. What is written is brought into its
// limits by the door of edits.
#pragma once

#include "editing/EditFields.h"
#include "toolkit/RangeSlider.h"

#include <span>
#include <string_view>

enum class NumberPart : u32 { AbsMin, AbsMax, DefaultMin, DefaultMax, Min, Max, Value, DefaultValue, Count };

// An integer or a float.
bool IsNumber(const ControlRecord *pctl);
f64 NumberOf(const ControlRecord *pctl, NumberPart ePart);

// In full, as a box shows it after an edit.
std::u16string NumberText(const ControlRecord *pctl, NumberPart ePart);
// As a fill of the whole panel writes it: the two ends of a float's range are rounded there.
std::u16string NumberFillText(const ControlRecord *pctl, NumberPart ePart);
// What the control's source gives now.
std::u16string ReadOutText(const ControlRecord *pctl);

// The value has a box under a fixed source, the two ends of the range have theirs under any other one.
bool PartIsShown(const ControlRecord *pctl, NumberPart ePart);
// False, and no change, for what is no number of the control's kind.
bool ParseNumber(const ControlRecord *pctl, std::u16string_view text, f64 *pf);
// So many steps of the arrow keys further: of 1, or of a thousandth of a float's absolute range.
f64 StepNumber(const ControlRecord *pctl, f64 f, i32 nSteps);
// Of the value, or an end of the range.
FieldWrite WriteNumberPart(const ControlRecord *pctl, const EditPlace &place, NumberPart ePart, f64 f);

struct NumberFlag {
    const char16_t *pszText;
    EditField eInteger, eFloat;                // Count: controls of that type have no such flag
    u32 (*pfnInteger)(const ControlInteger &); // what it is now
    u32 (*pfnFloat)(const ControlFloat &);
};
std::span<const NumberFlag> NumberFlags();
// EditField::Count: not for this control.
EditField FlagField(const ControlRecord *pctl, const NumberFlag &flag);
bool FlagIsSet(const ControlRecord *pctl, const NumberFlag &flag);

// Scale, thumbs and mode; what a drag keeps there stays.
void ShowInSlider(const ControlRecord *pctl, SliderInfo *pInfo);
// After the user moved a thumb: all three numbers. Those whose thumbs stand as the panel has put them keep what the
// record holds, which may be finer than the slider's numbers and may have moved on. What is no finite number is left
// out.
std::vector<FieldWrite> SliderWrites(const ControlRecord *pctl, const EditPlace &place, const SliderInfo &before,
                                     const SliderInfo &now);
// The default of the number that the thumb (SliderThumb, not none) stands for.
FieldWrite WriteThumbDefault(const ControlRecord *pctl, const EditPlace &place, u32 dwThumb);
