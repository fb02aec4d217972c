// ValueTexts.cpp -- numbers as the boxes of panels read and print them
#include "controls/panels/ValueTexts.h"

#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr size_t PRINTED_CHARS = 512; // the largest f64 has 309 digits

// Reads a text from left to right, by what it may be made of.
struct Reader {
    std::string_view text;

    bool Take(std::string_view any)
    {
        if (text.empty() || any.find(text.front()) == any.npos)
            return false;
        text.remove_prefix(1);
        return true;
    }
    bool TakeDigits()
    {
        bool bAny = false;
        while (Take("0123456789"))
            bAny = true;
        return bAny;
    }
};

bool IsWhole(std::string_view text)
{
    Reader reader = {text};
    reader.Take("-");
    return reader.TakeDigits() && reader.text.empty();
}

bool IsReal(std::string_view text)
{
    Reader reader = {text};
    reader.Take("-");
    bool bDigits = reader.TakeDigits();
    if (reader.Take("."))
        bDigits = reader.TakeDigits() || bDigits;
    if (!bDigits)
        return false;
    if (!reader.Take("eE"))
        return reader.text.empty();
    reader.Take("+-");
    return reader.TakeDigits() && reader.text.empty();
}

// Without blanks around it and a plus sign, with a point for a comma; empty where it cannot be a number.
std::string Plain(std::u16string_view text)
{
    const auto isBlank = [](char16_t ch) { return ch == u' ' || ch == u'\t' || ch == u'\u00A0'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    if (text.size() > 1 && text[0] == u'+' && text[1] != u'-')
        text.remove_prefix(1);
    return text.size() > NUMBER_CHARS ? std::string() : ToUtf8(text);
}

// Of a text that is a number. Only the exponent can lead out of the range: a box is too short for so many digits.
f64 NumberIn(std::string_view text)
{
    f64 f = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), f);
    if (result.ec != std::errc::result_out_of_range)
        return f;
    const bool bTiny = text.find_last_of('-') != text.npos && text.find_last_of('-') > 0;
    return std::copysign(bTiny ? 0.0 : std::numeric_limits<f64>::max(), text.front() == '-' ? -1.0 : 1.0);
}

} // namespace

bool ParseWhole(std::u16string_view text, f64 *pf)
{
    const std::string s = Plain(text);
    if (!IsWhole(s))
        return false;
    *pf = NumberIn(s);
    return true;
}

bool ParseReal(std::u16string_view text, f64 *pf)
{
    std::string s = Plain(text);
    std::replace(s.begin(), s.end(), ',', '.');
    if (!IsReal(s))
        return false;
    *pf = NumberIn(s);
    return true;
}

std::u16string WholeText(f64 f)
{
    return RealText(f, 0);
}

std::u16string RealText(f64 f, i32 nDecimals)
{
    char sz[PRINTED_CHARS];
    const std::to_chars_result result = std::to_chars(sz, sz + sizeof sz, f, std::chars_format::fixed, nDecimals);
    return FromUtf8(std::string_view(sz, static_cast<size_t>(result.ptr - sz)));
}
