// PresetCache_test.cpp -- tests PresetCache.cpp and PresetSummary.cpp: hashes, the cache file, what a text tells
#include "library/PresetCache.h"

#include "library/PresetSummary.h"
#include "tests/PresetFolderFixture.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace {

// Word for word, the slow way: characters as bytes, bits turned one by one.
u32 SlowHash(std::u16string name)
{
    std::vector<u8> bytes;
    for (char16_t ch : name) {
        bytes.push_back(static_cast<u8>(UpperCase(ch) & 0xFF));
        bytes.push_back(static_cast<u8>(UpperCase(ch) >> 8));
    }
    const size_t nWords = name.size() / 4, nTail = name.size() % 4;
    u32 dwHash = 0;
    for (size_t k = 0; k < nWords + (nTail != 0); k++) {
        u32 dw = 0;
        for (size_t b = 0; b < (k < nWords ? 4 : nTail); b++)
            dw |= static_cast<u32>(bytes[k * 4 + b]) << 8 * b;
        for (size_t n = 0; n < k % 32; n++)
            dw = dw << 1 | dw >> 31;
        dwHash ^= dw;
    }
    return dwHash;
}

TEST(HashBaseName, FollowsTheExamples)
{
    EXPECT_EQ(0x004200C7u, HashBaseName(u"ABCDEF"));
    EXPECT_EQ(0x004200C7u, HashBaseName(u"/some.where/else\\abcDEF.VD"));
    EXPECT_EQ(0u, HashBaseName(u""));
    EXPECT_EQ(0u, HashBaseName(u"/folder/.VD"));
    EXPECT_EQ(u32{'A'}, HashBaseName(u"a.b"));
    EXPECT_EQ(0x00410041u ^ 0x00410041u << 1, HashBaseName(u"aaaaaaaa.VD"));
    EXPECT_EQ(HashBaseName(u"\u00c4\u0416"), HashBaseName(u"\u00e4\u0436")) << "case beyond ASCII";
}

TEST(HashBaseName, EqualsTheSlowWayForNamesOfEveryLength)
{
    std::mt19937 random(1);
    for (size_t cch = 0; cch < 300; cch++) {
        std::u16string name;
        while (name.size() < cch)
            name.push_back(static_cast<char16_t>(random() % 2 ? 'a' + random() % 26 : 0x400 + random() % 0x60));
        ASSERT_EQ(SlowHash(name.substr(0, 255)), HashBaseName(u"/x/" + name + u".VD")) << cch;
    }
}

TEST(HashBaseName, DoesNotSeeTheSecondHalfOfAName)
{
    EXPECT_EQ(HashBaseName(u"abcdefgh"), HashBaseName(u"abcdxyzw"));
    EXPECT_NE(HashBaseName(u"abcdefgh"), HashBaseName(u"abxdefgh"));
}

class PresetCache : public PresetFolderTest {
  protected:
    fs::path CachePath() const
    {
        return presets / "PresetCache.dat";
    }
    // Reads the presets and writes the cache, as a run would.
    void RunOnce() const
    {
        OpenAndScan();
        ASSERT_EQ(1u, ShutdownPresetLibrary());
    }
};

TEST_F(PresetCache, TheFileHoldsTheRecordsByteForByte)
{
    Write("abcdef.VD", Text({"ALPHA.DLL", "gamma.dll"}, true));
    Write("gone.VD", Text({}));
    fs::last_write_time(presets / "abcdef.VD", fs::file_time_type(std::chrono::seconds(0)));
    OpenAndScan();
    SetFavor("abcdef.VD", 7);
    DropPreset(FindPresetFile(Path("gone.VD")));
    const PresetInfo info = Entry("abcdef.VD");
    ASSERT_EQ(1u, ShutdownPresetLibrary());
    const std::string bytes = Read(CachePath());
    ASSERT_EQ(4u + 288, bytes.size());
    const auto word = [&](size_t cbOffset) {
        u32 dw;
        std::memcpy(&dw, bytes.data() + cbOffset, sizeof dw);
        return dw;
    };
    std::vector<u32> expected(73, 0);
    expected[0] = 1;
    expected[1] = 0x004200C7;
    expected[3] = static_cast<u32>(info.ftLastWrite);
    expected[4] = static_cast<u32>(info.ftLastWrite >> 32);
    expected[5] = static_cast<u32>(Text({"ALPHA.DLL", "gamma.dll"}, true).size());
    expected[6] = 1;
    expected[7] = 7;
    expected[8] = HashBaseName(u"Alpha.dll");
    expected[10] = HashBaseName(u"Gamma.dll");
    for (size_t i = 0; i < expected.size(); i++)
        EXPECT_EQ(expected[i], word(i * 4)) << "word " << i;
}

TEST_F(PresetCache, SummariesComeBackUnderTheModulesOfAnotherRun)
{
    Write("both.VD", Text({"Alpha.dll", "Gamma.dll"}, true));
    Write("lost.VD", Text({"Beta.dll"}));
    OpenAndScan();
    SetFavor("both.VD", 3);
    ShutdownPresetLibrary();
    UseModules({"New.dll", "Gamma.dll", "Alpha.dll"});
    Open(); // reads no preset
    EXPECT_EQ("+Gamma Alpha ", Summary("both.VD"));
    EXPECT_EQ("", Summary("lost.VD"));
    EXPECT_EQ(3, Entry("both.VD").nFavor);
    GetModuleRecord(2)->md.bUnavailable = 1;
    FreePresetLibrary();
    Open();
    EXPECT_EQ("+!Gamma Alpha ", Summary("both.VD")) << "can it run here is worked out anew";
    EXPECT_EQ("", Summary("lost.VD"));
}

TEST_F(PresetCache, AFileThatChangedMeanwhileIsReadAgainAndStartsFromZero)
{
    Write("a.VD", Text({"Alpha.dll"}));
    OpenAndScan();
    SetFavor("a.VD", 5);
    ShutdownPresetLibrary();
    Write("a.VD", Text({"Beta.dll"}, true));
    fs::last_write_time(presets / "a.VD", fs::file_time_type::clock::now() - std::chrono::hours(100));
    Open();
    EXPECT_EQ("?", Summary("a.VD"));
    ScanPresetFolder(1);
    EXPECT_EQ("+Beta ", Summary("a.VD"));
    EXPECT_EQ(0, Entry("a.VD").nFavor);
}

TEST_F(PresetCache, TheFirstOfTwoEqualRecordsAnswers)
{
    for (const char *pszName : {"abcd1.VD", "abcd2.VD"}) { // hash alike but for one byte of the tail
        Write(pszName, Text({}));
        fs::last_write_time(presets / pszName, fs::file_time_type(std::chrono::seconds(1)));
    }
    RunOnce();
    std::string bytes = Read(CachePath());
    bytes[4 + 24] = 11;
    bytes[4 + 288 + 24] = 22;
    std::copy_n(bytes.begin() + 4, 4, bytes.begin() + 4 + 288); // the same hash
    std::ofstream(CachePath(), std::ios::binary) << bytes;
    Open();
    EXPECT_EQ(11, Entry("abcd1.VD").nFavor);
}

TEST_F(PresetCache, ADamagedFileIsIgnoredAsAWhole)
{
    Write("a.VD", Text({"Alpha.dll"}));
    Write("b.VD", Text({"Beta.dll"}));
    RunOnce();
    const std::string good = Read(CachePath());
    const auto with_count = [&](u32 nCount) {
        std::string s = good;
        std::memcpy(s.data(), &nCount, sizeof nCount);
        return s;
    };
    for (const std::string &bad :
         {std::string(), good.substr(0, 3), good.substr(0, good.size() - 1), good + "x", with_count(0), with_count(1),
          with_count(3), with_count(0xFFFFFFFF), with_count(0x80000002), with_count(7456540)}) {
        FreePresetLibrary();
        std::ofstream(CachePath(), std::ios::binary) << bad;
        Open();
        EXPECT_EQ("?", Summary("a.VD")) << bad.size();
    }
    ScanPresetFolder(1);
    EXPECT_EQ("Alpha ", Summary("a.VD"));
    FreePresetLibrary();
    fs::remove(CachePath());
    fs::create_directory(CachePath());
    Open();
    EXPECT_EQ("?", Summary("a.VD"));
    EXPECT_EQ(0u, SavePresetCache(Wide(presets))) << "a folder stands in the way";
}

TEST_F(PresetCache, RecordsOfMoreThanSixtyFourModulesStayInTheirBounds)
{
    std::vector<std::string> asName;
    for (u32 i = 0; i < 70; i++) // their first halves differ, which is all that the hash sees
        asName.push_back(std::to_string(10 + i) + "xx.dll");
    UseModules(asName);
    Write("all.VD", Text(asName));
    RunOnce();
    Open();
    const PresetInfo info = Entry("all.VD");
    EXPECT_EQ(64, std::count(info.bModuleUsed, info.bModuleUsed + 64, 1u));
    EXPECT_EQ(0u, info.bDeleted);
    EXPECT_EQ(1u, info.bCompatible);
}

TEST_F(PresetCache, AModuleWithANameOf260BytesTakesNoPart)
{
    std::string sUmlauts; // more bytes than characters
    while (sUmlauts.size() < 200)
        sUmlauts += "\u00e4";
    for (u32 cb : {259u, 260u}) {
        const std::string sName = std::string(cb - 204, 'x') + sUmlauts + ".dll";
        CopyText(GetModuleRecord(1)->szDll, FromUtf8(sName));
        PrepareSummaries();
        const std::string sPadded = sName + std::string(READ_SLACK, '\0');
        EXPECT_EQ(cb < 260 ? 2u : 0u, SummarizeText(sPadded.data(), cb).qwModules);
    }
}

std::string LowerText(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](char ch) { return ch >= 'A' && ch <= 'Z' ? ch + 32 : ch; });
    return s;
}

// Pieces that nearly say something, in random order and case, against a search for each text by itself.
TEST_F(PresetCache, OnePassOverATextFindsWhatSingleSearchesFind)
{
    const std::vector<std::string> asModule = {"A.dll", "bA.dll", "Plain.so", ".dll", "x.dll.dll", "\xC3\xA9.dll"};
    const std::vector<std::string> asPiece = {
        "a.DLL", "b",    ".d",   "ll",   ">8</source>",       ">8</sourc",    ">8",
        ".",     "A.dl", "l",    "x.",   "plain.SO",          "\xC3\xA9.dll", "</Source>",
        "\xC3",  "\xA9", ".dll", "\0\0", std::string(61, ' ')};
    UseModules(asModule);
    PrepareSummaries();
    std::mt19937 random(2);
    for (u32 nRound = 0; nRound < 4000; nRound++) {
        std::string s;
        for (auto n = random() % 12; n > 0; n--)
            s += asPiece[random() % asPiece.size()];
        const std::string sLower = LowerText(s);
        u64 qwExpected = 0;
        for (size_t i = 0; i < asModule.size(); i++)
            qwExpected |= u64{sLower.find(LowerText(asModule[i])) != s.npos} << i;
        const std::string sPadded = s + std::string(READ_SLACK, '\0');
        const PresetSummary summary = SummarizeText(sPadded.data(), s.size());
        ASSERT_EQ(qwExpected, summary.qwModules) << s;
        ASSERT_EQ(sLower.find(">8</source>") != s.npos, summary.bSoundSync != 0) << s;
    }
}

} // namespace
