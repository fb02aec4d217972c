// RichText_test.cpp -- tests RichText.cpp
#include "toolkit/RichText.h"

#include "platform/Text.h"

#include <gtest/gtest.h>

namespace {

RichRun RunOf(const RichDocument &doc, size_t iParagraph, size_t iRun)
{
    if (iParagraph < doc.size() && iRun < doc[iParagraph].aRun.size())
        return doc[iParagraph].aRun[iRun];
    ADD_FAILURE() << "no run " << iRun << " in paragraph " << iParagraph;
    return {};
}

std::string Read(std::u16string_view text)
{
    return ToUtf8(TextOf(ReadRichText(text)));
}

TEST(RichText, LooksOpenAndCloseWithTheirGroups)
{
    const RichDocument doc = ReadRichText(
        u"{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red255\\green0\\blue16;\\red1\\green2\\blue3;}\\qc"
        u"\\fs40 Big {\\b bold\\cf1  red}\\highlight2  marked\\par\\pard\\plain\\i sl\\i0 up\\ul under}ignored");
    ASSERT_EQ(2u, doc.size());
    EXPECT_EQ(RichAlign::Center, doc[0].eAlign);
    EXPECT_EQ(u"Big ", RunOf(doc, 0, 0).text);
    EXPECT_EQ(40u, RunOf(doc, 0, 0).nHalfPoints);
    EXPECT_TRUE(RunOf(doc, 0, 1).bBold && !RunOf(doc, 0, 1).bColor);
    EXPECT_TRUE(RunOf(doc, 0, 2).bBold && RunOf(doc, 0, 2).bColor);
    EXPECT_EQ(0x1000FFu, RunOf(doc, 0, 2).dwColor);
    EXPECT_TRUE(!RunOf(doc, 0, 3).bBold && !RunOf(doc, 0, 3).bColor && RunOf(doc, 0, 3).bBack);
    EXPECT_EQ(0x030201u, RunOf(doc, 0, 3).dwBack);
    EXPECT_EQ(RichAlign::Left, doc[1].eAlign);
    EXPECT_TRUE(RunOf(doc, 1, 0).bItalic && RunOf(doc, 1, 0).nHalfPoints == 24 && !RunOf(doc, 1, 0).bBack);
    EXPECT_TRUE(!RunOf(doc, 1, 1).bItalic && RunOf(doc, 1, 2).bUnderline);
    EXPECT_EQ("Big bold red marked\nslupunder", ToUtf8(TextOf(doc)));
}

TEST(RichText, EscapesBecomeTheirCharacters)
{
    EXPECT_EQ("{a}\\b\tc", Read(u"{\\rtf1 \\{a\\}\\\\b\\tab c}"));
    EXPECT_EQ("caf\xC3\xA9 \xE2\x82\xAC\xE2\x80\x94 x", Read(u"{\\rtf1 caf\\'e9 \\'80\\emdash  x}"));
    EXPECT_EQ("\xE2\x82\xAC!", Read(u"{\\rtf1\\u8364?!}"));
    EXPECT_EQ("\xF0\x9F\x98\x80.", Read(u"{\\rtf1\\uc2\\u-10179\\'3f?\\u-8704??.}")) << "a pair, its stand-ins skipped";
    EXPECT_EQ("a\nb", Read(u"{\\rtf1 a\\line b}"));
    EXPECT_EQ("ab", Read(u"{\\rtf1 a\r\nb\\par}")) << "line ends of the file are none of the text";
}

TEST(RichText, AnythingElseIsPassedOver)
{
    EXPECT_EQ("ab", Read(u"{\\rtf1{\\*\\generator X{y}z;}a{\\pict 00ff}\\unknown12 b}"));
    EXPECT_EQ("open", Read(u"{\\rtf1{{{\\b open"));
    EXPECT_EQ("shut", Read(u"{\\rtf1 shut}}}} and more"));
    EXPECT_EQ("", Read(u"{\\rtf1\\"));
    EXPECT_EQ("x", Read(u"{\\rtf1\\'\\fs99999999999999999999\\cf-5\\'zx}").substr(1)) << "broken numbers do no harm";
    std::u16string deep = u"{\\rtf1 ";
    for (u32 i = 0; i < 1000; i++)
        deep += u"{\\b a";
    deep.append(1000, u'}');
    EXPECT_EQ(std::string(63, 'a') + "z", Read(deep + u"z}")) << "what is nested too deeply is left out";
    EXPECT_FALSE(IsRichText(u" {\\rtf1}"));
    EXPECT_EQ(3u, ReadPlainText(u"a\r\n\n{\\b c").size());
}

TEST(RichText, AddressesBecomeLinks)
{
    RichDocument doc = ReadPlainText(u"See (www.example.org/a?b=1), or https://x.y. nowww.here http:// mailto:me@x.y");
    MarkLinks(&doc);
    std::string s;
    for (const RichRun &run : doc[0].aRun)
        s += run.link.empty() ? "" : ToUtf8(run.link) + " ";
    EXPECT_EQ("www.example.org/a?b=1 https://x.y mailto:me@x.y ", s);
    EXPECT_EQ(u"See (www.example.org/a?b=1), or https://x.y. nowww.here http:// mailto:me@x.y", TextOf(doc));

    const RichDocument field =
        ReadRichText(u"{\\rtf1 {\\field{\\*\\fldinst HYPERLINK \"http://h.x/?q\"}{\\fldrslt {\\b here}}} after}");
    EXPECT_EQ(u"http://h.x/?q", RunOf(field, 0, 0).link);
    EXPECT_EQ(u"here", RunOf(field, 0, 0).text);
    EXPECT_TRUE(RunOf(field, 0, 1).link.empty());
}

} // namespace
