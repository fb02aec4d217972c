// PresetSearch.h -- the text that a user looks for, and what matches it
#pragma once

#include "library/PresetInfo.h"

#include <string>
#include <string_view>
#include <vector>

// The parts between the stars: all have to be found one behind the other. A star at the start or the end that the
// length leaves no room for ties the first or last part to the end of the name.
struct SearchPattern {
    std::vector<std::u16string> parts; // none empty; lower case
    bool bTiedToStart, bTiedToEnd;
};

// "*" stands for any run of characters, and one is taken to stand at either end. [any-thread]
SearchPattern MakeSearchPattern(std::u16string_view text);
// A to Z match without regard to case; an empty text never matches. [any-thread]
bool MatchesSearch(const SearchPattern &pattern, std::u16string_view text);
// One bit for each module that takes part and whose display name matches. [main-thread]
u64 ModulesOfSearch(const SearchPattern &pattern);
// Whether the preset uses a module of these bits. Under the table's lock.
bool PresetUsesOneOf(const PresetInfo *lppi, u64 qwModules);
