// ValueTexts.h -- numbers as the boxes of panels read and print them, the same in every language
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

constexpr u32 NUMBER_CHARS = 64; // what a box takes at most

// False, and no change, where the text is no such number: nothing, words, hexadecimal digits, a number and more. Blanks
// around it do not matter. Numbers beyond what a record holds come out as large as they are.
bool ParseWhole(std::u16string_view text, f64 *pf);
// With a point or a comma, perhaps an exponent; what is too large for an f64 becomes the largest one.
bool ParseReal(std::u16string_view text, f64 *pf);

std::u16string WholeText(f64 f);
std::u16string RealText(f64 f, i32 nDecimals);
