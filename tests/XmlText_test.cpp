// XmlText_test.cpp -- tests XmlReader.cpp and XmlWriter.cpp
#include "engine/XmlText.h"

#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/WholeFile.h"
#include "tests/TempFolder.h"
#include "tests/XmlOracle.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>

namespace {

struct Closer {
    void operator()(XmlContext *pxc) const
    {
        XmlClose(pxc);
    }
};
using Context = std::unique_ptr<XmlContext, Closer>;

constexpr const char *HEADER = "<?xml version=\"1.0\"?>\n";

Context Open(const std::string &sBody)
{
    return Context(XmlOpenBytes(HEADER + sBody));
}

class XmlFile : public ::testing::Test {
  protected:
    TempFolder folder;
    std::u16string path = folder.Wide("Document.VD");

    std::string Bytes() const
    {
        std::string s;
        EXPECT_TRUE(ReadWholeFile(path, 1u << 30, &s));
        return s;
    }
};

u32 Random(std::mt19937 &rng, u32 n)
{
    return std::uniform_int_distribution<u32>(0, n - 1)(rng);
}

} // namespace

TEST_F(XmlFile, ASavedDocumentHasTheBytesOfTheFormat)
{
    Context pxc(XmlCreate());
    XmlBeginTag(pxc.get(), u"Preset");
    XmlWriteInt(pxc.get(), u"NumPlanes", -7);
    XmlBeginTag(pxc.get(), u"Plane0");
    XmlWriteFloat(pxc.get(), u"Val", 0.1f);
    XmlWriteString(pxc.get(), u"Name", u"Gr\u00fc\u00df & <co>\r\nline 2");
    XmlWriteString(pxc.get(), u"Empty", u"");
    XmlEndTag(pxc.get());
    XmlEndTag(pxc.get());
    EXPECT_EQ(XmlEndTag(pxc.get()), 0u);
    ASSERT_TRUE(XmlSaveFile(pxc.get(), path));
    const std::string expected = "<?xml version=\"1.0\"?>\n<Preset>\n\t<NumPlanes>-7</NumPlanes>\n\t<Plane0>\n"
                                 "\t\t<Val>0.100000</Val>\n\t\t<Name>Gr\xC3\xBC\xC3\x9F & <co>\r\nline 2</Name>\n"
                                 "\t\t<Empty></Empty>\n\t</Plane0>\n</Preset>";
    EXPECT_EQ(Bytes(), expected + std::string(1, '\0'));

    Context pxcRead(XmlOpenFile(path));
    ASSERT_TRUE(pxcRead && XmlEnterTag(pxcRead.get(), u"preset") && XmlEnterTag(pxcRead.get(), u"PLANE0"));
    char16_t szName[64] = u"before";
    EXPECT_TRUE(XmlReadString(pxcRead.get(), u"Name", szName));
    EXPECT_EQ(std::u16string(szName), u"Gr\u00fc\u00df & ");
    EXPECT_TRUE(XmlReadString(pxcRead.get(), u"Empty", szName));
    EXPECT_EQ(szName[0], 0);
}

TEST(XmlReader, FindsTheFirstTagOfTheRangeChildrenIncluded)
{
    Context pxc = Open("<A><B><Val>1</Val></B><VAL>2</VAL></A><Val>3</Val>");
    i32 n = 0;
    ASSERT_TRUE(XmlEnterTag(pxc.get(), u"A"));
    EXPECT_TRUE(XmlReadInt(pxc.get(), u"Val", &n));
    EXPECT_EQ(n, 1);
    XmlLeaveTag(pxc.get());
    XmlLeaveTag(pxc.get());
    EXPECT_TRUE(XmlReadInt(pxc.get(), u"val", &n));
    EXPECT_EQ(n, 1);
}

TEST(XmlReader, TakesTheClosingTagFromTheStartOfTheParentsRange)
{
    i32 n = 7;
    Context pxcEarly = Open("</A> <A><Val>1</Val></A>");
    EXPECT_TRUE(XmlEnterTag(pxcEarly.get(), u"A"));
    EXPECT_FALSE(XmlReadInt(pxcEarly.get(), u"Val", &n));
    Context pxcNever = Open("<A><Val>1</Val>");
    EXPECT_TRUE(XmlEnterTag(pxcNever.get(), u"A"));
    EXPECT_FALSE(XmlReadInt(pxcNever.get(), u"Val", &n));
    EXPECT_FALSE(XmlEnterTag(pxcNever.get(), u"Val"));
    EXPECT_EQ(n, 7);
}

TEST(XmlReader, GivesTheNearestNumberOfTheTypeAndZeroForNoNumber)
{
    const struct {
        const char *pszText;
        i32 nInt;
        f32 fFloat;
    } asCase[] = {{"", 0, 0},
                  {" \t+12abc", 12, 12},
                  {"-12.75", -12, -12.75f},
                  {"99999999999999999999", INT_MAX, 1e20f},
                  {"-99999999999999999999", INT_MIN, -1e20f},
                  {"1e999", 1, FLT_MAX},
                  {"-inf", 0, -FLT_MAX},
                  {"nan", 0, 0},
                  {"\xC2\xBD", 0, 0},
                  {"000000000000000000000000000000000000000000000000000000000000000005", 5, 5},
                  {"0000000000000000000000000000000000000000000000000000000000000000000005", 0, 0}};
    for (const auto &c : asCase) {
        Context pxc = Open(std::string("<V>") + c.pszText + "</V>");
        i32 n = 77;
        f32 f = 77;
        EXPECT_TRUE(XmlReadInt(pxc.get(), u"V", &n) && XmlReadFloat(pxc.get(), u"V", &f));
        EXPECT_EQ(n, c.nInt) << c.pszText;
        EXPECT_EQ(f, c.fFloat) << c.pszText;
    }
}

TEST(XmlReader, CutsAStringToTheBufferOfItsCaller)
{
    Context pxc = Open("<V>" + std::string(5000, 'x') + "</V>");
    struct {
        char16_t sz[8];
        char16_t chGuard;
    } s = {u"before", u'#'};
    EXPECT_TRUE(XmlReadString(pxc.get(), u"V", s.sz));
    EXPECT_EQ(std::u16string(s.sz), u"xxxxxxx");
    EXPECT_EQ(s.chGuard, u'#');
    Context pxcPair = Open("<V>\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80\xF0\x9F\x98\x80</V>");
    EXPECT_TRUE(XmlReadString(pxcPair.get(), u"V", s.sz));
    EXPECT_EQ(std::u16string(s.sz), u"\U0001F600\U0001F600\U0001F600");
}

TEST(XmlReader, ALongValueIsNotHandedOutForEver)
{
    Context pxc = Open("<V>" + std::string(100000, 'x') + "</V><W>1</W>");
    std::u16string_view value;
    u32 nTimes = 0;
    while (nTimes < 1000 && XmlReadText(pxc.get(), u"V", &value))
        nTimes++;
    EXPECT_GE(nTimes, 2u);
    EXPECT_LT(nTimes, 10u);
    i32 n = 0;
    EXPECT_TRUE(XmlReadInt(pxc.get(), u"W", &n) && XmlReadInt(pxc.get(), u"V", &n));
}

TEST(XmlReader, SurvivesEverySortOfEmptiness)
{
    using namespace std::string_literals;
    for (const std::string &s : {""s, "\0"s, "<"s, "\n"s, "no line end<A>1</A>"s, "\xFF\xFE<\0A\0>\0"s, "x\n<"s,
                                 "x\n<A"s, "x\n<A></A"s, "x\n<></>"s, "x\n\0"s}) {
        Context pxc(XmlOpenBytes(s));
        ASSERT_TRUE(pxc);
        i32 n = 7;
        const bool bEntered = XmlEnterTag(pxc.get(), u"A");
        EXPECT_FALSE(XmlReadInt(pxc.get(), u"B", &n) || XmlReadInt(pxc.get(), u"", &n));
        EXPECT_EQ(bEntered, s == "x\n<A></A"s) << s;
        EXPECT_EQ(n, 7);
    }
}

TEST(XmlReader, KeepsTheLimitsOfLevelsAndNames)
{
    std::string s;
    for (int i = 0; i < 40; i++)
        s += "<L" + std::to_string(i) + ">";
    for (int i = 40; i-- > 0;)
        s += "</L" + std::to_string(i) + ">";
    Context pxc = Open(s + "<" + std::string(63, 'y') + ">63</" + std::string(63, 'y') + "><" + std::string(64, 'z') +
                       ">64</" + std::string(64, 'z') + ">");
    i32 n = 0;
    EXPECT_TRUE(XmlEnterTag(pxc.get(), std::u16string(63, u'y')));
    XmlLeaveTag(pxc.get());
    EXPECT_FALSE(XmlEnterTag(pxc.get(), std::u16string(64, u'z')));
    EXPECT_FALSE(XmlReadInt(pxc.get(), std::u16string(64, u'z'), &n));
    for (u32 i = 0; i < 40; i++)
        EXPECT_EQ(XmlEnterTag(pxc.get(), NumberedTag(u"L", i)), i < XML_LEVELS - 1 ? 1u : 0u);
    EXPECT_EQ(pxc->nDepth, XML_LEVELS - 1);
}

TEST(XmlReader, AnswersLikeATextSearchOnTextThatNobodyWrote)
{
    // "costarring" and "liquid" share the hash of the search table.
    const std::u16string asPiece[] = {u"<",
                                      u">",
                                      u"/",
                                      u"<a>",
                                      u"</a>",
                                      u"<A>",
                                      u"</A>",
                                      u"<b>",
                                      u"</b>",
                                      u"<ab>",
                                      u"\n",
                                      u"</",
                                      u"a",
                                      u"1",
                                      u"-2.5",
                                      u" ",
                                      u"<<a>>",
                                      u"</ab>",
                                      u"<costarring>",
                                      u"<LIQUID>",
                                      u"</liquid>",
                                      u"</costarring>",
                                      u"<\u00c4>",
                                      u"</\u00e4>",
                                      u"\U0001F600",
                                      std::u16string(1, 0)};
    const std::u16string asTag[] = {u"a", u"B", u"ab", u"\u00e4", u"aa", u"/a", u"liquid", u"Costarring"};
    std::mt19937 rng(20240517);
    u32 nFound = 0;
    for (int nDocument = 0; nDocument < 4000; nDocument++) {
        std::u16string text = u"head\n";
        for (u32 i = Random(rng, 60); i > 0; i--)
            text += asPiece[Random(rng, static_cast<u32>(std::size(asPiece)))];
        Context pxc(XmlOpenText(text));
        pxc->cchTextLeft = SIZE_MAX;
        XmlOracle oracle(text);
        for (int nStep = 0; nStep < 30; nStep++) {
            const std::u16string &tag = asTag[Random(rng, static_cast<u32>(std::size(asTag)))];
            const u32 nWhat = Random(rng, 5);
            if (nWhat == 0) {
                XmlLeaveTag(pxc.get());
                oracle.Leave();
            } else if (nWhat == 1) {
                ASSERT_EQ(XmlEnterTag(pxc.get(), tag) != 0, oracle.Enter(tag));
            } else {
                const auto expected = oracle.Value(tag);
                std::u16string_view value;
                ASSERT_EQ(XmlReadText(pxc.get(), tag, &value) != 0, expected.has_value());
                ASSERT_EQ(value, expected ? expected->substr(0, expected->find(u'\0')) : u"");
                nFound += expected.has_value();
            }
        }
    }
    EXPECT_GT(nFound, 10000u);
}

namespace {

struct Node {
    std::u16string tag;
    u32 nKind; // 0 branch, 1 integer, 2 float, 3 text
    i32 nValue = 0;
    f32 fValue = 0;
    std::u16string text;
    std::vector<Node> children;
};

std::u16string RandomText(std::mt19937 &rng)
{
    std::u16string s;
    for (u32 i = Random(rng, 40); i > 0; i--) {
        const u32 n = Random(rng, 10);
        const char16_t ch = static_cast<char16_t>(n < 6   ? 32 + Random(rng, 95)
                                                  : n < 9 ? 0xA0 + Random(rng, 0xD000)
                                                          : u'\n');
        s.push_back(ch == u'<' ? u'>' : ch);
    }
    return s;
}

// Leaves before branches, as every writer of the program does. Names are unique in the document.
Node RandomNode(std::mt19937 &rng, u32 nLevel, u32 *pnNext)
{
    Node node;
    node.tag = NumberedTag(u"Tag", (*pnNext)++);
    node.nKind = nLevel == 0 || (nLevel < XML_LEVELS - 2 && Random(rng, 3) == 0) ? 0 : 1 + Random(rng, 3);
    node.nValue = static_cast<i32>(rng());
    node.fValue = std::ldexp(static_cast<f32>(node.nValue), static_cast<int>(Random(rng, 130)) - 50);
    node.text = RandomText(rng);
    if (node.nKind == 0)
        for (u32 i = Random(rng, 8); i > 0; i--)
            node.children.push_back(RandomNode(rng, nLevel + 1, pnNext));
    return node;
}

bool WriteLeaf(XmlContext *pxc, const Node &node)
{
    return node.nKind == 1   ? XmlWriteInt(pxc, node.tag, node.nValue)
           : node.nKind == 2 ? XmlWriteFloat(pxc, node.tag, node.fValue)
                             : XmlWriteString(pxc, node.tag, node.text);
}

void Write(XmlContext *pxc, const Node &node)
{
    if (node.nKind != 0) {
        EXPECT_TRUE(WriteLeaf(pxc, node));
        return;
    }
    EXPECT_TRUE(XmlBeginTag(pxc, node.tag));
    for (const Node &child : node.children)
        Write(pxc, child);
    EXPECT_TRUE(XmlEndTag(pxc));
}

void Compare(XmlContext *pxc, const Node &node)
{
    i32 n = 0;
    f32 f = 0;
    std::u16string_view text;
    if (node.nKind == 1) {
        EXPECT_TRUE(XmlReadInt(pxc, node.tag, &n));
        EXPECT_EQ(n, node.nValue);
    } else if (node.nKind == 2) {
        EXPECT_TRUE(XmlReadFloat(pxc, node.tag, &f));
        EXPECT_LE(std::abs(f - node.fValue), std::abs(node.fValue) < 16 ? 1e-6f : 0.0f);
    } else if (node.nKind == 3) {
        EXPECT_TRUE(XmlReadText(pxc, node.tag, &text));
        EXPECT_EQ(text, node.text);
    } else {
        ASSERT_TRUE(XmlEnterTag(pxc, node.tag));
        for (const Node &child : node.children)
            Compare(pxc, child);
        XmlLeaveTag(pxc);
    }
}

} // namespace

TEST_F(XmlFile, WhatWasWrittenIsReadBack)
{
    std::mt19937 rng(7);
    for (int i = 0; i < 60; i++) {
        u32 nNext = 0;
        const Node root = RandomNode(rng, 0, &nNext);
        Context pxc(XmlCreate());
        Write(pxc.get(), root);
        const bool bThroughFile = i % 20 == 0;
        ASSERT_TRUE(!bThroughFile || XmlSaveFile(pxc.get(), path));
        Context pxcRead(bThroughFile ? XmlOpenFile(path) : XmlOpenText(std::u16string(XmlDocumentText(pxc.get()))));
        Compare(pxcRead.get(), root);
        EXPECT_EQ(pxcRead->nDepth, 0u);
    }
}

TEST_F(XmlFile, ADocumentThatLostAPartIsNotSaved)
{
    const std::u16string chunk(1000000, u'x');
    const auto full = [&](XmlContext *pxc) {
        u32 nWritten = 0;
        while (XmlWriteString(pxc, u"Chunk", chunk))
            nWritten++;
        EXPECT_EQ(nWritten, 15u);
    };
    const auto deep = [](XmlContext *pxc) {
        u32 nLevels = 0;
        while (XmlBeginTag(pxc, u"Level"))
            nLevels++;
        EXPECT_EQ(nLevels, XML_LEVELS - 1);
        while (XmlEndTag(pxc)) {
        }
    };
    const auto open = [](XmlContext *pxc) { XmlBeginTag(pxc, u"Open"); };
    const auto name = [](XmlContext *pxc) { XmlWriteInt(pxc, u"a><b", 1); };
    folder.Write("Document.VD", "the old one");
    for (const std::function<void(XmlContext *)> &spoil :
         std::initializer_list<std::function<void(XmlContext *)>>{full, deep, open, name}) {
        Context pxc(XmlCreate());
        spoil(pxc.get());
        std::string sWhy;
        EXPECT_EQ(XmlSaveFile(pxc.get(), path, &sWhy), 0u);
        EXPECT_NE(sWhy, "");
        EXPECT_EQ(Bytes(), "the old one");
    }
}

TEST_F(XmlFile, AFileBeyondAllLimitsIsRefusedAndTheLargestHostileOnesAreRead)
{
    std::filesystem::resize_file(folder.Write("Document.VD"), 100000000);
    EXPECT_EQ(XmlOpenFile(path), nullptr);
    EXPECT_EQ(XmlOpenFile(FromUtf8(folder.string())), nullptr);
    EXPECT_EQ(XmlOpenFile(path + u".missing"), nullptr);
    // Sizes at which a reader that searches for each lookup would take hours.
    for (const char *pszPiece : {"<", "<a>", "<a></a>", "</a><a>"}) {
        std::string s = HEADER;
        while (s.size() < 4000000)
            s += pszPiece;
        Context pxc(XmlOpenBytes(s));
        ASSERT_TRUE(pxc);
        i32 n = 0;
        for (u32 i = 0; i < 200000; i++) {
            const bool bEntered = XmlEnterTag(pxc.get(), u"a");
            XmlReadInt(pxc.get(), NumberedTag(u"missing", i), &n);
            if (bEntered)
                XmlLeaveTag(pxc.get());
        }
    }
}
