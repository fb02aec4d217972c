// PresetTable_test.cpp -- tests PresetTable.cpp without files: slots, lookups, growth, threads
#include "library/PresetTable.h"

#include "library/browser/PresetFilter.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>

namespace {

#if defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds STRESS_TIME(10);
#elif defined(__has_feature)
constexpr std::chrono::seconds STRESS_TIME(__has_feature(thread_sanitizer) ? 10 : 1);
#else
constexpr std::chrono::seconds STRESS_TIME(1);
#endif

class PresetTable : public testing::Test {
  protected:
    void TearDown() override
    {
        FreePresetTable();
    }
    static std::u16string Path(const std::string &sName)
    {
        return u"/p/" + FromUtf8(sName);
    }
    static PresetInfo *Place(const std::string &sName, i32 nFavor = 0, u32 bFavorKnown = 0, u32 bSummarized = 0)
    {
        PresetInfo info = {};
        CopyText(info.szPath, Path(sName));
        info.nFavor = nFavor;
        info.bSummarized = bSummarized;
        return PlacePreset(info, 1, bFavorKnown);
    }
};

TEST_F(PresetTable, LooksUpTheSpellingFirstAndAnyCaseAfterIt)
{
    Place("\u00c4b.VD");
    Place("\u00e4B.vd");
    EXPECT_EQ(1, FindPresetInfo(Path("\u00e4B.vd")));
    EXPECT_EQ(0, FindPresetInfo(Path("\u00c4B.VD"))) << "the first of those that differ by case";
    EXPECT_EQ(-1, FindPresetFile(Path("\u00c4B.VD")));
    EXPECT_EQ(-1, FindPresetInfo(u"/q/\u00c4b.VD"));
    EXPECT_EQ(-1, FindPresetInfo(u""));
    EXPECT_EQ(nullptr, GetPresetInfo(-1));
    EXPECT_EQ(nullptr, GetPresetInfo(PresetSlotCount()));
}

TEST_F(PresetTable, TheFirstFreeSlotServesTheNextFileAndKeepsItsCount)
{
    ReservePresetSlots(5);
    for (const char *pszName : {"a", "b", "c", "d"})
        Place(pszName, 1, 1);
    const PresetInfo *lppiB = GetPresetInfo(1);
    DropPreset(2);
    DropPreset(1);
    EXPECT_EQ(nullptr, GetLivePreset(1));
    EXPECT_EQ(1, FindFreeSlot());
    EXPECT_EQ(lppiB, Place("e", 9, 0)) << "in place";
    EXPECT_EQ(1, lppiB->nFavor);
    EXPECT_EQ(-1, FindPresetInfo(Path("b")));
    EXPECT_EQ(1, FindPresetInfo(Path("e")));
    EXPECT_EQ(6, Place("f", 6, 1)->nFavor) << "a count from the cache counts more";
    EXPECT_EQ(4, FindFreeSlot());
    Place("g");
    EXPECT_EQ(-1, FindFreeSlot());
    EXPECT_EQ(5, PresetSlotCount());
    Place("h");
    EXPECT_EQ(5 + 8192, PresetSlotCount());
    EXPECT_EQ(5, FindPresetFile(Path("h")));
}

TEST_F(PresetTable, AFileThatIsThereAlreadyGetsNoSecondEntryAndAStaleCountDoesNotComeBack)
{
    Place("a", 2, 1, 1);
    GetPresetInfo(0)->nFavor = 5; // pressed since
    EXPECT_EQ(GetPresetInfo(0), Place("a", 2, 1, 1));
    EXPECT_EQ(5, GetPresetInfo(0)->nFavor);
    DropPreset(0);
    Place("a", 2, 1, 1); // the deletion was undone
    EXPECT_EQ(5, GetPresetInfo(0)->nFavor);
    PresetInfo info = {};
    CopyText(info.szPath, Path("b"));
    EXPECT_EQ(0u, UpdatePreset(info, 1, 0));
    EXPECT_EQ(-1, FindPresetFile(Path("b")));
}

// The table against a map, through adds, removals and renames enough for two growths.
TEST_F(PresetTable, AgreesWithAMapOverTwentyThousandEntries)
{
    std::mt19937 random(3);
    std::map<std::string, PresetInfo *> expected;
    ReservePresetSlots(20);
    const auto name = [&] { return "Name " + std::to_string(random() % 30000) + ".VD"; };
    for (u32 n = 0; n < 60000; n++) {
        const std::string sName = name(), sOther = name();
        const auto it = expected.find(sName);
        if (it == expected.end()) {
            expected[sName] = Place(sName);
        } else if (random() % 8 == 0) {
            DropPreset(FindPresetFile(Path(sName)));
            expected.erase(it);
        } else if (!expected.count(sOther)) {
            MovePreset(FindPresetFile(Path(sName)), Path(sOther));
            expected[sOther] = it->second;
            expected.erase(it);
        }
    }
    ASSERT_GT(expected.size(), 2u * 8192);
    std::set<PresetInfo *> live;
    ForEachPreset([&](i32, PresetInfo *lppi) { live.insert(lppi); });
    EXPECT_EQ(expected.size(), live.size());
    for (const auto &[sName, lppi] : expected) {
        ASSERT_EQ(lppi, GetPresetInfo(FindPresetInfo(Path(sName)))) << "entries stay at their address";
        ASSERT_EQ(Path(sName), lppi->szPath);
    }
}

TEST_F(PresetTable, ChangesPostToEachWindowTheMessageThatItAskedFor)
{
    using Posted = std::vector<u32>;
    constexpr auto pfnPost = [](void *hwnd, u32 uMsg) { static_cast<Posted *>(hwnd)->push_back(uMsg); };
    Posted first, second, noMessage;
    NotifyPresetChange();
    AddPresetNotice({&first, 7, pfnPost});
    AddPresetNotice({&second, 8, pfnPost});
    AddPresetNotice({&noMessage, 0, pfnPost});
    AddPresetNotice({nullptr, 9, pfnPost});
    NotifyPresetChange();
    AddPresetNotice({&second, 10, pfnPost});
    NotifyPresetChange();
    RemovePresetNotice(&first);
    NotifyPresetChange();
    EXPECT_EQ((Posted{7, 7}), first);
    EXPECT_EQ((Posted{8, 10, 10}), second);
    EXPECT_EQ(Posted{}, noMessage);
}

TEST_F(PresetTable, AWindowThatIsRemovedIsToldNoMoreWhicheverThreadTells)
{
    std::atomic<bool> bEnd = false;
    std::thread scan([&] {
        while (!bEnd)
            NotifyPresetChange();
    });
    for (i32 i = 0; i < 1000; i++) {
        auto hwnd = std::make_unique<u32>(0); // gone as soon as it is removed
        AddPresetNotice({hwnd.get(), 1, [](void *pv, u32) { ++*static_cast<u32 *>(pv); }});
        NotifyPresetChange();
        RemovePresetNotice(hwnd.get());
        const u32 nTold = *hwnd;
        NotifyPresetChange();
        ASSERT_GE(nTold, 1u);
        ASSERT_EQ(nTold, *hwnd);
    }
    bEnd = true;
    scan.join();
}

// One thread adds and removes, one renames and favors, one lists and searches.
TEST_F(PresetTable, ThreeThreadsKeepItWhole)
{
    std::atomic<bool> bEnd{false};
    std::atomic<u64> nDone{0};
    ReservePresetSlots(20);
    const auto run = [&](u32 dwSeed, auto &&fn) {
        return std::thread([&bEnd, &nDone, dwSeed, fn] {
            for (std::mt19937 random(dwSeed); !bEnd; nDone++)
                fn(random);
        });
    };
    const auto name = [](std::mt19937 &random) { return "Preset " + std::to_string(random() % 12000) + ".VD"; };
    std::thread adder = run(1, [&](std::mt19937 &random) {
        const PresetTableLock lock;
        const std::string sName = name(random);
        const i32 iSlot = FindPresetFile(Path(sName));
        if (iSlot >= 0 && random() % 4 == 0)
            DropPreset(iSlot);
        else
            Place(sName, 1, 0, 1);
    });
    i64 nFavored = 0; // guarded by the table's lock, like all that the renamer counts
    std::thread renamer = run(2, [&](std::mt19937 &random) {
        const PresetTableLock lock;
        const std::u16string to = Path(name(random));
        const i32 iSlot = FindPresetInfo(Path(name(random)));
        if (iSlot >= 0 && FindPresetFile(to) < 0)
            MovePreset(iSlot, to);
        if (PresetInfo *lppi = GetLivePreset(iSlot))
            nFavored += ++lppi->nFavor > 0;
        NotifyPresetChange();
    });
    std::thread reader = run(3, [&](std::mt19937 &random) {
        if (random() % 16 == 0)
            ApplySearch(u"7", random() % 2);
        for (i32 i = 0, n = PresetSlotCount(); i < n; i += 97) {
            const PresetTableLock lock;
            const PresetInfo *lppi = GetLivePreset(i);
            ASSERT_TRUE(!lppi || FindPresetFile(lppi->szPath) == i) << "a slot is found under its name at any time";
        }
        StorePresetScanState(0, PresetScanProgress() + 0.25f);
    });
    std::this_thread::sleep_for(STRESS_TIME);
    bEnd = true;
    for (std::thread *pThread : {&adder, &renamer, &reader})
        pThread->join();
    EXPECT_GT(nDone, 100u);
    std::set<std::u16string> names;
    u32 nLive = 0;
    ForEachPreset([&](i32 iSlot, const PresetInfo *lppi) {
        nLive++;
        names.insert(lppi->szPath);
        ASSERT_EQ(iSlot, FindPresetFile(lppi->szPath));
    });
    EXPECT_EQ(nLive, names.size()) << "no file has two entries";
    for (i32 i = 0; i < PresetSlotCount(); i++)
        if (const PresetInfo *lppi = GetPresetInfo(i))
            nFavored -= lppi->nFavor;
    EXPECT_EQ(0, nFavored) << "entries that served one file after another keep every press";
}

} // namespace
