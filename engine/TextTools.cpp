// TextTools.cpp -- the small text and file tools beside the tag reader
#include "engine/TextTools.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>

namespace {

struct FoldByte {
    std::array<u8, 256> ab{};
    constexpr FoldByte()
    {
        for (u32 i = 0; i < 256; i++)
            ab[i] = static_cast<u8>(i >= 'A' && i <= 'Z' ? i + 32 : i);
    }
    u8 operator()(char ch) const
    {
        return ab[static_cast<u8>(ch)];
    }
};
constexpr FoldByte Fold;

} // namespace

size_t FindAnsiNoCase(std::string_view text, std::string_view what)
{
    const auto equal = [](char a, char b) { return Fold(a) == Fold(b); };
    const std::boyer_moore_horspool_searcher searcher(what.begin(), what.end(), Fold, equal);
    const auto it = std::search(text.begin(), text.end(), searcher);
    return it == text.end() && !what.empty() ? text.npos : static_cast<size_t>(it - text.begin());
}

bool MatchWildcard(std::u16string_view text, std::u16string_view pattern)
{
    size_t i = 0, j = 0;
    size_t iRetry = 0, jStar = pattern.npos; // where to go on when the last star takes one character more
    while (i < text.size()) {
        if (j < pattern.size() && pattern[j] == u'*') {
            jStar = j++;
            iRetry = i;
        } else if (j < pattern.size() && FoldCase(pattern[j]) == FoldCase(text[i])) {
            i++;
            j++;
        } else if (jStar != pattern.npos) {
            i = ++iRetry;
            j = jStar + 1;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', j) == pattern.npos;
}

std::u16string_view ListItem(const char16_t *pszList, u32 cch, u32 nItem)
{
    std::u16string_view item;
    for (u32 i = 0, n = 0; i < cch && pszList[i]; n++) {
        item = {pszList + i, TextLength(pszList + i, cch - i)};
        if (n == nItem)
            return item;
        i += static_cast<u32>(item.size()) + 1;
    }
    return nItem == ALL_ONES ? item : std::u16string_view();
}

u32 WideToAnsi(std::u16string_view text, char *pszTo, u32 cb, bool *pbWhole)
{
    const std::string s = ToUtf8(text);
    size_t n = std::min<size_t>(s.size(), cb - 1);
    while (n > 0 && n < s.size() && (static_cast<u8>(s[n]) & 0xC0) == 0x80)
        n--;
    std::memcpy(pszTo, s.data(), n);
    pszTo[n] = 0;
    if (pbWhole)
        *pbWhole = n == s.size();
    return static_cast<u32>(n);
}
