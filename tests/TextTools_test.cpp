// TextTools_test.cpp -- tests TextTools.cpp
#include "engine/TextTools.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// The obvious, exponential way.
bool MatchSlowly(std::u16string_view text, std::u16string_view pattern)
{
    if (pattern.empty())
        return text.empty();
    if (pattern[0] == u'*')
        return MatchSlowly(text, pattern.substr(1)) || (!text.empty() && MatchSlowly(text.substr(1), pattern));
    return !text.empty() && FoldCase(text[0]) == FoldCase(pattern[0]) && MatchSlowly(text.substr(1), pattern.substr(1));
}

} // namespace

TEST(TextTools, WildcardsMatchLikeTheObviousRecursion)
{
    std::mt19937 rng(3);
    const auto random = [&](std::u16string_view letters, size_t cchMax) {
        std::u16string s;
        for (size_t i = rng() % (cchMax + 1); i > 0; i--)
            s.push_back(letters[rng() % letters.size()]);
        return s;
    };
    u32 nMatches = 0;
    for (int i = 0; i < 20000; i++) {
        const std::u16string text = random(u"aAb\u00c4", 9), pattern = random(u"ab\u00e4**", 7);
        const bool bMatch = MatchWildcard(text, pattern);
        ASSERT_EQ(bMatch, MatchSlowly(text, pattern));
        nMatches += bMatch;
    }
    EXPECT_GT(nMatches, 1000u);
    EXPECT_FALSE(MatchWildcard(std::u16string(20000, u'a'), u"*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST(TextTools, SearchesFoldCaseAndStayInsideTheirBounds)
{
    EXPECT_EQ(FindTextNoCase(u"xxABCx", 5, u"abc"), 2u);
    EXPECT_EQ(FindTextNoCase(u"xxABCx", 4, u"abc"), std::u16string_view::npos);
    EXPECT_EQ(FindWideNoCase(u"", u""), 0u);
    EXPECT_EQ(FindAnsiNoCase("", ""), 0u);
    EXPECT_EQ(FindAnsiNoCase("<Source>8</SOURCE>", ">8</source>"), 7u);
    EXPECT_EQ(FindAnsiNoCase("\xC3\x84", "\xE3\xA4"), std::string_view::npos);
    EXPECT_EQ(FindAnsiNoCase("ab", "abc"), std::string_view::npos);
}

TEST(TextTools, AListWithoutItsSecondZeroEndsAtItsBound)
{
    const char16_t szList[] = u"one\0two\0three\0";
    EXPECT_EQ(ListItem(szList, std::size(szList), 1), u"two");
    EXPECT_EQ(ListItem(szList, std::size(szList), ALL_ONES), u"three");
    EXPECT_EQ(ListItem(szList, std::size(szList), 3), u"");
    EXPECT_EQ(ListItem(szList, 10, ALL_ONES), u"th");
    EXPECT_EQ(ListItem(szList, 0, 0), u"");
}

TEST(TextTools, TheCodePageIsNeverCutInsideACharacter)
{
    char sz[4];
    bool bWhole = true;
    EXPECT_EQ(WideToAnsi(u"ab\u20ac", sz, sizeof sz, &bWhole), 2u);
    EXPECT_STREQ(sz, "ab");
    EXPECT_FALSE(bWhole);
    EXPECT_EQ(WideToAnsi(u"\u20ac", sz, sizeof sz, &bWhole), 3u);
    EXPECT_TRUE(bWhole);
}
