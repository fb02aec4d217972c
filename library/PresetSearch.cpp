// PresetSearch.cpp -- the text that a user looks for, and what matches it
#include "library/PresetSearch.h"

#include "modules/ModuleRegistry.h"
#include "platform/MainThread.h"

#include <algorithm>

namespace {

constexpr size_t SEARCH_CHARS = 258; // of the search field

char16_t Lower(char16_t ch)
{
    return ch >= u'A' && ch <= u'Z' ? static_cast<char16_t>(ch + 32) : ch;
}

bool EqualAt(std::u16string_view text, size_t i, std::u16string_view part)
{
    return i + part.size() <= text.size() &&
           std::equal(part.begin(), part.end(), text.begin() + static_cast<ptrdiff_t>(i),
                      [](char16_t a, char16_t b) { return a == Lower(b); });
}

size_t FindPart(std::u16string_view text, size_t iFrom, std::u16string_view part)
{
    for (size_t i = iFrom; i + part.size() <= text.size(); i++)
        if (Lower(text[i]) == part[0] && EqualAt(text, i, part))
            return i;
    return text.npos;
}

} // namespace

SearchPattern MakeSearchPattern(std::u16string_view text)
{
    std::u16string s(text.substr(0, SEARCH_CHARS));
    if (!s.starts_with(u'*') && s.size() < SEARCH_CHARS)
        s.insert(s.begin(), u'*');
    if (!s.ends_with(u'*') && s.size() < SEARCH_CHARS)
        s.push_back(u'*');
    SearchPattern pattern = {{}, !s.starts_with(u'*'), !s.ends_with(u'*')};
    std::transform(s.begin(), s.end(), s.begin(), Lower);
    for (size_t i = 0; i < s.size();) {
        const size_t iStar = std::min(s.find(u'*', i), s.size());
        if (iStar > i)
            pattern.parts.push_back(s.substr(i, iStar - i));
        i = iStar + 1;
    }
    return pattern;
}

bool MatchesSearch(const SearchPattern &pattern, std::u16string_view text)
{
    if (text.empty())
        return false;
    size_t i = 0;
    for (size_t iPart = 0; iPart < pattern.parts.size(); iPart++) {
        const std::u16string &part = pattern.parts[iPart];
        const bool bAtEnd = pattern.bTiedToEnd && iPart + 1 == pattern.parts.size();
        const size_t iFrom = bAtEnd && text.size() >= i + part.size() ? text.size() - part.size() : i;
        const size_t iFound = FindPart(text, iFrom, part);
        if (iFound == text.npos || (iPart == 0 && pattern.bTiedToStart && iFound != 0))
            return false;
        i = iFound + part.size();
    }
    return !(pattern.bTiedToStart && pattern.bTiedToEnd && pattern.parts.size() == 1) || i == text.size();
}

u64 ModulesOfSearch(const SearchPattern &pattern)
{
    ASSERT_MAIN_THREAD();
    u64 qw = 0;
    for (u32 i = 0; i < std::min(ModuleCount(), PRESET_MODULES); i++)
        if (MatchesSearch(pattern, GetModuleRecord(i)->md.szName))
            qw |= 1ull << i;
    return qw;
}

bool PresetUsesOneOf(const PresetInfo *lppi, u64 qwModules)
{
    for (u32 i = 0; i < PRESET_MODULES; i++)
        if (lppi->bModuleUsed[i] && (qwModules >> i & 1))
            return true;
    return false;
}
