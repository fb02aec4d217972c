// PresetFilter_test.cpp -- tests PresetFilter.cpp and PresetSearch.cpp: what a search leaves out, what is to be listed
// anew
#include "library/browser/PresetFilter.h"

#include "library/PresetTable.h"
#include "platform/Text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class PresetFilter : public testing::Test {
  protected:
    void SetUp() override
    {
        for (const char *pszName : {"Storm over Fjord.VD", "storm.VD", "Fjord storm.VD", "\u00c4rger.VD", ".VD"})
            Place(pszName);
    }
    void TearDown() override
    {
        FreePresetTable();
    }
    static PresetInfo *Place(const std::string &sName)
    {
        PresetInfo info = {};
        CopyText(info.szPath, u"/p/" + FromUtf8(sName));
        info.bSummarized = 1;
        return PlacePreset(info, 1, 0);
    }
    static void ListAll()
    {
        ForEachPreset([](i32, PresetInfo *lppi) { MarkPresetListed(lppi); });
    }
    // One letter a slot: changed or listed.
    static std::string Marks()
    {
        std::string s;
        for (i32 i = 0; GetPresetInfo(i); i++)
            s += GetPresetInfo(i)->bChanged ? 'c' : 'l';
        return s;
    }
};

TEST_F(PresetFilter, SearchesFindTheirPartsInOrderWithoutRegardToAsciiCase)
{
    EXPECT_EQ(4u, ApplySearch(u"", 0)) << "a name that is only an extension never matches";
    EXPECT_EQ(4u, ApplySearch(u"*", 0));
    EXPECT_EQ(3u, ApplySearch(u"STORM", 0));
    EXPECT_EQ(1u, ApplySearch(u"storm*fjord", 0));
    EXPECT_EQ(0u, GetPresetInfo(0)->bFiltered);
    EXPECT_EQ(1u, GetPresetInfo(2)->bFiltered);
    EXPECT_EQ(0u, ApplySearch(u"\u00e4rger", 0));
    EXPECT_EQ(1u, ApplySearch(u"\u00c4RGER", 0));
    EXPECT_EQ(0u, ApplySearch(u"vd", 0)) << "the extension is not searched";
    EXPECT_EQ(0u, ApplySearch(std::u16string(300, u'x'), 0));
}

TEST_F(PresetFilter, ASearchOfModuleNamesKeepsWhatItCannotKnow)
{
    ListAll();
    GetPresetInfo(1)->bSummarized = 0;
    EXPECT_EQ(1u, ApplySearch(u"nothing", 1)) << "it may yet match by a module";
    MarkPresetChanged(GetPresetInfo(2));
    EXPECT_EQ(5u, ApplySearch(u"nothing", 1));
}

TEST_F(PresetFilter, EveryChangeOfAnEntryIsListedAnewAndKeepsTheSearch)
{
    EXPECT_EQ("ccccc", Marks());
    ListAll();
    EXPECT_EQ("lllll", Marks());
    ApplySearch(u"fjord", 0);
    Place("storm.VD");
    EXPECT_EQ("lclll", Marks());
    EXPECT_EQ(1u, GetPresetInfo(1)->bFiltered) << "until the browser searches again";
    MovePreset(2, u"/p/Thunder.VD");
    DropPreset(3);
    EXPECT_EQ("lcccl", Marks());
    ListAll();
    EXPECT_EQ("lllcl", Marks()) << "what is gone cannot be listed";
    ForgetListedPresets();
    EXPECT_EQ("ccccc", Marks());
}

} // namespace
