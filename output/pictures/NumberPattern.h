// NumberPattern.h -- file names with one number field, which a user types and no formatter ever sees
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// A name such as "f-%04d.png": at most one field of the forms %d, %i, %u with flags and width; "%%" is a percent sign.
struct NumberPattern {
    std::u16string before;
    std::u16string after;
    u32 bHasNumber;
    u32 nWidth; // least characters of the number; more than 1000 count as 1000
    u32 bZeros; // filled with zeros instead of blanks
    u32 bLeft;  // blanks behind the number
    u32 bPlus;  // a plus sign before it
    u32 bBlank; // a blank before it, without a plus sign
};

// Takes the pattern apart. Null, or a clear text that says what is wrong with it.
const char *ParseNumberPattern(std::u16string_view text, NumberPattern *pnp);
// The name for a number.
std::u16string FormatNumberPattern(const NumberPattern &np, u32 dwNumber);
