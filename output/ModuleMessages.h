// ModuleMessages.h -- texts that modules show: the mailbox, and the colours that stand in them as numbers
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

constexpr u32 MESSAGE_CHARS = 4096; // the terminating 0 included; longer texts are cut

// The callback that modules get. Takes a copy; the last text wins. Null: an empty text. Returns 1. [any-thread]
u32 ShowModuleMessage(const char16_t *pszText);
// Copies the text that came last into szText, if one came since the last call. Non-zero: one came. [main-thread]
u32 TakeModuleMessage(char16_t (&szText)[MESSAGE_CHARS]);

// The highlight that goes with a text colour, 0x00BBGGRR: half as much again, with red and green exchanged.
u32 HighlightOf(u32 dwTextColor);
// Puts red, green and blue of the background, the text and the highlight, nine numbers, in the place of the first nine
// fields "%d", "%i" or "%u" (flags, a width and "l" or "h" may stand in a field). "%%" becomes a percent sign. Every
// other percent sign stays as it is.
std::u16string ExpandColorFields(std::u16string_view text, u32 dwBackColor, u32 dwTextColor);
