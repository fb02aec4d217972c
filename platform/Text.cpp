// Text.cpp -- UTF-16 text in fixed fields: bounded copies, caseless comparison, conversion
#include "platform/Text.h"

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <locale.h>

namespace {

// The upper half of Windows-1252, 0x80 to 0x9F; the rest of it equals Latin-1. Unassigned bytes map to themselves.
constexpr char16_t aWindows1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                       0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

locale_t FoldingLocale()
{
    static const locale_t locUtf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static const locale_t loc = locUtf8 ? locUtf8 : newlocale(LC_CTYPE_MASK, "C", nullptr);
    return loc;
}

// Decodes one character at text[*pi] and moves on. Returns false, and moves by nothing, for invalid UTF-8.
bool DecodeUtf8(std::string_view text, size_t *pi, char32_t *pch)
{
    const auto byte = [&](size_t i) { return static_cast<u8>(text[i]); };
    const u8 b0 = byte(*pi);
    const u32 nMore = b0 < 0x80                  ? 0
                      : b0 >= 0xC2 && b0 <= 0xDF ? 1
                      : (b0 & 0xF0) == 0xE0      ? 2
                      : b0 >= 0xF0 && b0 <= 0xF4 ? 3
                                                 : ALL_ONES;
    if (nMore == ALL_ONES || *pi + nMore >= text.size())
        return false;
    char32_t ch = nMore == 0 ? b0 : b0 & (0x3F >> nMore);
    for (u32 i = 1; i <= nMore; i++) {
        if ((byte(*pi + i) & 0xC0) != 0x80)
            return false;
        ch = ch << 6 | (byte(*pi + i) & 0x3F);
    }
    const bool bOverlong = (nMore == 2 && ch < 0x800) || (nMore == 3 && ch < 0x10000);
    if (bOverlong || ch > 0x10FFFF || (ch >= 0xD800 && ch <= 0xDFFF))
        return false;
    *pi += nMore + 1;
    *pch = ch;
    return true;
}

// Length of the plain ASCII at the beginning, eight bytes at a time: files are hardly anything else.
size_t AsciiRun(std::string_view text)
{
    size_t i = 0;
    for (u64 qw = 0; i + sizeof qw <= text.size(); i += sizeof qw) {
        std::memcpy(&qw, text.data() + i, sizeof qw);
        if (qw & 0x8080808080808080u)
            break;
    }
    while (i < text.size() && static_cast<u8>(text[i]) < 0x80)
        i++;
    return i;
}

// The same, four characters at a time.
size_t AsciiRun(std::u16string_view text)
{
    size_t i = 0;
    for (u64 qw = 0; i + sizeof qw / sizeof(char16_t) <= text.size(); i += sizeof qw / sizeof(char16_t)) {
        std::memcpy(&qw, text.data() + i, sizeof qw);
        if (qw & 0xFF80FF80FF80FF80u)
            break;
    }
    while (i < text.size() && text[i] < 0x80)
        i++;
    return i;
}

void AppendUtf8(std::string *ps, char32_t ch)
{
    const auto add = [&](char32_t b) { ps->push_back(static_cast<char>(b)); };
    if (ch < 0x80) {
        add(ch);
    } else if (ch < 0x800) {
        add(0xC0 | ch >> 6);
        add(0x80 | (ch & 0x3F));
    } else if (ch < 0x10000) {
        add(0xE0 | ch >> 12);
        add(0x80 | (ch >> 6 & 0x3F));
        add(0x80 | (ch & 0x3F));
    } else {
        add(0xF0 | ch >> 18);
        add(0x80 | (ch >> 12 & 0x3F));
        add(0x80 | (ch >> 6 & 0x3F));
        add(0x80 | (ch & 0x3F));
    }
}

} // namespace

u32 TextLength(const char16_t *psz, u32 cch)
{
    u32 n = 0;
    while (n < cch && psz[n])
        n++;
    return n;
}

u32 CopyText(char16_t *pszTo, u32 cchTo, std::u16string_view text)
{
    u32 cch = static_cast<u32>(std::min<size_t>(text.size(), cchTo - 1));
    const bool bHalf = cch > 0 && cch < text.size() && (text[cch - 1] & 0xFC00) == 0xD800;
    cch -= bHalf; // the other half of the character would be cut off
    std::copy_n(text.data(), cch, pszTo);
    pszTo[cch] = 0;
    return cch;
}

char16_t FoldWideCase(char16_t ch)
{
    return static_cast<char16_t>(towlower_l(ch, FoldingLocale()));
}

char16_t UpperCase(char16_t ch)
{
    if (ch < 0x80)
        return ch >= u'a' && ch <= u'z' ? static_cast<char16_t>(ch - 32) : ch;
    return static_cast<char16_t>(towupper_l(ch, FoldingLocale()));
}

bool EqualNoCase(std::u16string_view a, std::u16string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return x == y || FoldCase(x) == FoldCase(y); });
}

size_t FindNoCase(std::u16string_view text, std::u16string_view what)
{
    const auto it = std::search(text.begin(), text.end(), what.begin(), what.end(),
                                [](char16_t x, char16_t y) { return FoldCase(x) == FoldCase(y); });
    return it == text.end() && !what.empty() ? std::u16string_view::npos : static_cast<size_t>(it - text.begin());
}

bool ContainsNoCase(std::u16string_view text, std::u16string_view what)
{
    return FindNoCase(text, what) != std::u16string_view::npos;
}

std::string ToUtf8(std::u16string_view text)
{
    std::string s;
    s.reserve(text.size());
    for (size_t i = 0; i < text.size(); i++) {
        const size_t cchAscii = AsciiRun(text.substr(i));
        s.append(text.data() + i, text.data() + i + cchAscii);
        i += cchAscii;
        if (i == text.size())
            break;
        char32_t ch = text[i];
        const bool bHigh = ch >= 0xD800 && ch <= 0xDBFF;
        if (bHigh && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF)
            ch = 0x10000 + ((ch - 0xD800) << 10) + (text[++i] - 0xDC00u);
        else if (ch >= 0xD800 && ch <= 0xDFFF)
            ch = 0xFFFD;
        AppendUtf8(&s, ch);
    }
    return s;
}

std::u16string FromUtf8(std::string_view text)
{
    std::u16string s;
    s.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const size_t cchAscii = AsciiRun(text.substr(i));
        s.append(text.data() + i, text.data() + i + cchAscii);
        i += cchAscii;
        if (i == text.size())
            break;
        char32_t ch = 0;
        if (!DecodeUtf8(text, &i, &ch)) {
            const u8 b = static_cast<u8>(text[i++]);
            ch = b >= 0x80 && b < 0xA0 ? aWindows1252[b - 0x80] : b;
        }
        if (ch >= 0x10000) {
            s.push_back(static_cast<char16_t>(0xD800 + ((ch - 0x10000) >> 10)));
            s.push_back(static_cast<char16_t>(0xDC00 + ((ch - 0x10000) & 0x3FF)));
        } else {
            s.push_back(static_cast<char16_t>(ch));
        }
    }
    return s;
}
