// Text.h -- UTF-16 text in fixed fields: bounded copies, caseless comparison, conversion
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Length of a text in a field of cch characters, which need not hold a terminating 0.
u32 TextLength(const char16_t *psz, u32 cch);

// Copies as much as fits and always terminates. psz may be null: empty. Returns the length copied.
u32 CopyText(char16_t *pszTo, u32 cchTo, std::u16string_view text);
template <u32 N> u32 CopyText(char16_t (&szTo)[N], std::u16string_view text)
{
    return CopyText(szTo, N, text);
}

// Case is folded the same way on every machine, without regard to the locale.
char16_t FoldWideCase(char16_t ch);
inline char16_t FoldCase(char16_t ch)
{
    if (ch >= 0x80)
        return FoldWideCase(ch);
    return ch >= u'A' && ch <= u'Z' ? static_cast<char16_t>(ch + 32) : ch;
}
char16_t UpperCase(char16_t ch);
bool EqualNoCase(std::u16string_view a, std::u16string_view b);
bool ContainsNoCase(std::u16string_view text, std::u16string_view what);
// Place of the first match, or npos.
size_t FindNoCase(std::u16string_view text, std::u16string_view what);

// 8-bit text is UTF-8; on the way in, a byte that is no part of valid UTF-8 is taken as Windows-1252. On the way
// out, an unpaired surrogate becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
std::u16string FromUtf8(std::string_view text);
