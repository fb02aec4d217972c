// PresetSearch.cpp -- which presets match what the user is looking for
#include "library/PresetSearch.h"

#include "library/PresetTable.h"
#include "modules/ModuleRegistry.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr size_t SEARCH_CHARS = 258; // of the search field

// The parts between the stars: all have to be found one behind the other. A star at the start or the end that the
// length leaves no room for ties the first or last part to the end of the name.
struct Pattern {
    std::vector<std::u16string> parts; // none empty; lower case
    bool bTiedToStart, bTiedToEnd;
};

char16_t Lower(char16_t ch)
{
    return ch >= u'A' && ch <= u'Z' ? static_cast<char16_t>(ch + 32) : ch;
}

Pattern MakePattern(std::u16string_view text)
{
    std::u16string s(text.substr(0, SEARCH_CHARS));
    if (!s.starts_with(u'*') && s.size() < SEARCH_CHARS)
        s.insert(s.begin(), u'*');
    if (!s.ends_with(u'*') && s.size() < SEARCH_CHARS)
        s.push_back(u'*');
    Pattern pattern = {{}, !s.starts_with(u'*'), !s.ends_with(u'*')};
    std::transform(s.begin(), s.end(), s.begin(), Lower);
    for (size_t i = 0; i < s.size();) {
        const size_t iStar = std::min(s.find(u'*', i), s.size());
        if (iStar > i)
            pattern.parts.push_back(s.substr(i, iStar - i));
        i = iStar + 1;
    }
    return pattern;
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

bool Matches(const Pattern &pattern, std::u16string_view text)
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

// One bit for each module that takes part and whose display name matches.
u64 MatchingModules(const Pattern &pattern)
{
    u64 qw = 0;
    for (u32 i = 0; i < std::min(ModuleCount(), PRESET_MODULES); i++)
        if (Matches(pattern, GetModuleRecord(i)->md.szName))
            qw |= 1ull << i;
    return qw;
}

bool UsesOneOf(const PresetInfo *lppi, u64 qwModules)
{
    for (u32 i = 0; i < PRESET_MODULES; i++)
        if (lppi->bModuleUsed[i] && (qwModules >> i & 1))
            return true;
    return false;
}

bool AnyPresetChanged()
{
    bool bAny = false;
    ForEachPreset([&](i32, const PresetInfo *lppi) { bAny = bAny || lppi->bChanged; });
    return bAny;
}

} // namespace

u32 ApplySearch(std::u16string_view text, u32 bModuleNames)
{
    ASSERT_MAIN_THREAD();
    const Pattern pattern = MakePattern(text);
    const PresetTableLock lock;
    const u64 qwModules = bModuleNames ? MatchingModules(pattern) : 0;
    const bool bUnsure = bModuleNames && AnyPresetChanged();
    u32 nMatches = 0;
    ForEachPreset([&](i32, PresetInfo *lppi) {
        const std::u16string_view path(lppi->szPath, TextLength(lppi->szPath, NAME_CHARS));
        const bool bMatch = Matches(pattern, NameWithoutExtension(path)) ||
                            (bModuleNames && (bUnsure || !lppi->bSummarized || UsesOneOf(lppi, qwModules)));
        lppi->bFiltered = !bMatch;
        nMatches += bMatch;
    });
    return nMatches;
}
