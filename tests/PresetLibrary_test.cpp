// PresetLibrary_test.cpp -- the library over real files: passes, the watch, favorites, what is not as it should be
#include "engine/PresetDocument.h"
#include "library/FolderWatch.h"
#include "library/PresetWatch.h"
#include "platform/AtomicFile.h"
#include "state/GlobalSettings.h"
#include "tests/PresetFolderFixture.h"

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using List = std::vector<std::string>;

class PresetLibrary : public PresetFolderTest {};

TEST_F(PresetLibrary, TheFirstPassListsAndTheSecondReads)
{
    Write("b.VD", Text({"beta.DLL"}, true));
    Write("a.vd", Text({}));
    Write("c.txt", Text({"Alpha.dll"}));
    GetModuleRecord(1)->md.bUnavailable = 1;
    Open();
    EXPECT_EQ((List{"a.vd", "b.VD"}), Names());
    EXPECT_EQ(22, PresetSlotCount());
    EXPECT_EQ("?", Summary("b.VD"));
    EXPECT_EQ(0u, PresetScanDone());
    EXPECT_EQ(Text({"beta.DLL"}, true).size(), Entry("b.VD").dwSize);
    EXPECT_EQ(1u, ScanPresetFolder(1));
    EXPECT_EQ("+!Beta ", Summary("b.VD"));
    EXPECT_EQ("", Summary("a.vd"));
    EXPECT_EQ(1u, PresetScanDone());
    EXPECT_EQ(0.0f, PresetScanProgress());
    EXPECT_EQ(0u, ScanPresetFolder(1)) << "nothing has changed";
}

TEST_F(PresetLibrary, DatesAreCountedFromSixteenHundredAndOneAlsoBeforeNineteenSeventy)
{
    Write("a.VD", Text({}));
    const struct {
        timespec ts;
        u64 ft;
    } aDate[] = {{{0, 0}, 116444736000000000},
                 {{-1, 999999900}, 116444735999999999},
                 {{1000000000, 12345678}, 126444736000123456}};
    for (const auto &date : aDate) {
        const timespec ats[] = {date.ts, date.ts};
        ASSERT_EQ(0, utimensat(AT_FDCWD, (presets / "a.VD").c_str(), ats, 0));
        Open();
        EXPECT_EQ(date.ft, Entry("a.VD").ftLastWrite);
        FreePresetLibrary();
    }
}

TEST_F(PresetLibrary, OddNamesAndThingsThatAreNoFilesDoNoHarm)
{
    std::string sLong; // as long as a name can be
    while (sLong.size() + 2 <= 252)
        sLong += "\u00e4";
    sLong += ".VD";
    for (const std::string &sName :
         {sLong, std::string("A.VD"), std::string("a.VD"), std::string("\u96ea.vD"), std::string(".VD")})
        Write(sName, Text({"Alpha.dll"}));
    Write("latin\xE4.VD", Text({})); // could not be opened again
    Write("back\\slash.VD", Text({}));
    Write(std::string(252, 'x') + ".VD", Text({})); // too long for an entry together with the folder
    fs::create_directory(presets / "folder.VD");
    fs::create_symlink("nowhere", presets / "dangling.VD");
    fs::create_symlink("A.VD", presets / "link.VD");
    ASSERT_EQ(0, mkfifo((presets / "pipe.VD").c_str(), 0600));
    OpenAndScan();
    EXPECT_EQ((List{".VD", "A.VD", "a.VD", "link.VD", sLong, "\u96ea.vD"}), Names());
    EXPECT_EQ("1 presets are left out: their paths are longer than 259 characters; 2 presets are left out: their names "
              "are not UTF-8 or hold a backslash",
              DescribePresetsLeftOut());
    for (const std::string &sName : Names())
        EXPECT_EQ("Alpha ", Summary(sName)) << sName;
    EXPECT_EQ(0u, AddPresetInfo(Path("folder.VD"), 1));
    EXPECT_EQ(0u, AddPresetInfo(Path("pipe.VD"), 1));
    EXPECT_EQ(0u, AddPresetInfo(Path("no-such.VD"), 0));
    Write("preset.txt", Text({}));
    EXPECT_EQ(0u, AddPresetInfo(Path("preset.txt"), 0));
    Write("kept.VDF", Text({}));
    EXPECT_EQ(1u, AddPresetInfo(Path("kept.VDF"), 1)) << "the test of the name is a loose one";
}

TEST_F(PresetLibrary, AFileThatCannotBeReadIsListedWithoutASummary)
{
    if (geteuid() == 0) { // nothing is closed to root: a file beyond the size that can be read stands in
        Write("a.VD", "");
        fs::resize_file(presets / "a.VD", 60000000);
    } else {
        Write("a.VD", Text({}));
        fs::permissions(presets / "a.VD", fs::perms::none);
    }
    Write("b.VD", Text({"Beta.dll"}));
    OpenAndScan();
    EXPECT_EQ("?", Summary("a.VD"));
    EXPECT_EQ("Beta ", Summary("b.VD"));
    EXPECT_EQ(1u, PresetScanDone());
}

TEST_F(PresetLibrary, AMissingFolderIsAnEmptyLibrary)
{
    fs::remove(presets);
    OpenAndScan();
    EXPECT_EQ(20, PresetSlotCount());
    EXPECT_EQ(0u, PresetScanDone());
    EXPECT_EQ(0u, WatchPresets());
    EXPECT_EQ(0u, ShutdownPresetLibrary());
    EXPECT_FALSE(fs::exists(presets));
}

TEST_F(PresetLibrary, ThePassInPlaceOfNoticesFindsAdditionsRemovalsRenamesAndChanges)
{
    for (const char *pszName : {"changed.VD", "gone.VD", "old.VD", "Case.VD", "same.VD"})
        Write(pszName, Text({"Alpha.dll"}));
    OpenAndScan();
    for (const char *pszName : {"changed.VD", "old.VD", "Case.VD"})
        SetFavor(pszName, 4);
    fs::remove(presets / "gone.VD");
    fs::rename(presets / "old.VD", presets / "renamed.VD");
    fs::rename(presets / "Case.VD", presets / "case.VD");
    const auto date = fs::last_write_time(presets / "changed.VD");
    Write("changed.VD", Text({"Beta.dll", "Beta.dll"}, true));
    fs::last_write_time(presets / "changed.VD", date); // the size alone tells
    Write("new1.VD", Text({"Gamma.dll"}));
    Write("new2.VD", Text({}));
    EXPECT_EQ(1u, RescanPresetFolder());
    EXPECT_EQ((List{"case.VD", "changed.VD", "new1.VD", "renamed.VD", "same.VD", "new2.VD"}), Names());
    for (const char *pszName : {"changed.VD", "renamed.VD", "case.VD"})
        EXPECT_EQ(4, Entry(pszName).nFavor) << pszName;
    EXPECT_EQ("+Beta ", Summary("changed.VD"));
    EXPECT_EQ("Gamma ", Summary("new1.VD"));
    EXPECT_EQ("Alpha ", Summary("renamed.VD"));
    EXPECT_EQ(0u, RescanPresetFolder());
    fs::remove_all(presets);
    EXPECT_EQ(1u, RescanPresetFolder());
    EXPECT_TRUE(Names().empty());
}

TEST_F(PresetLibrary, TwoNamesOfOneFileNeverBecomeOneEntryTwice)
{
    Write("a.VD", Text({"Alpha.dll"}));
    fs::create_hard_link(presets / "a.VD", presets / "b.VD");
    OpenAndScan();
    fs::create_hard_link(presets / "a.VD", presets / "c.VD");
    fs::remove(presets / "a.VD");
    fs::remove(presets / "b.VD");
    EXPECT_EQ(1u, RescanPresetFolder());
    EXPECT_EQ(List{"c.VD"}, Names());
}

TEST_F(PresetLibrary, NoticesOfNamesThatAreGoneCountWhateverStandsThereNow)
{
    const std::u16string tooLong = std::u16string(252, u'x') + u".VD";
    for (const char *pszName : {"a.VD", "b.VD", "c.VD"})
        Write(pszName, Text({"Alpha.dll"}));
    OpenAndScan();
    fs::remove(presets / "a.VD");
    fs::create_directory(presets / "a.VD");
    PresetFolderCallback(u"a.VD", WATCH_REMOVED);
    EXPECT_EQ((List{"b.VD", "c.VD"}), Names());
    fs::remove(presets / "b.VD");
    PresetFolderCallback(u"b.VD", WATCH_OLD_NAME);
    PresetFolderCallback(tooLong.c_str(), WATCH_NEW_NAME);
    EXPECT_EQ(List{"c.VD"}, Names());
    Write("z.VD", Text({}));
    PresetFolderCallback(u"c.VD", WATCH_OLD_NAME);
    PresetFolderCallback(tooLong.c_str(), WATCH_OLD_NAME);
    PresetFolderCallback(u"z.VD", WATCH_NEW_NAME);
    EXPECT_EQ(List{"c.VD"}, Names()) << "a name that was too long was no preset's";
}

TEST_F(PresetLibrary, AFileRenamedFromAStrangersNameIsNotAddedLaterEither)
{
    const auto change = [](const char16_t *pszName, u32 dwAction) { PresetFolderCallback(pszName, dwAction); };
    OpenAndScan();
    Write("x.VD", Text({}));
    change(u"tmp", WATCH_ADDED); // at work for so long that its coming and its going are two changes
    change(u"tmp", WATCH_OLD_NAME);
    change(u"x.VD", WATCH_NEW_NAME);
    change(u"x.VD", WATCH_MODIFIED); // its writer closes it, or changes its date, after the rename
    EXPECT_EQ(List{}, Names());
    fs::rename(presets / "x.VD", presets / "y.VD");
    change(u"x.VD", WATCH_OLD_NAME);
    change(u"y.VD", WATCH_NEW_NAME);
    change(u"y.VD", WATCH_MODIFIED);
    EXPECT_EQ(List{}, Names()) << "another name of the same file";
    Write("x.VD", Text({}));
    change(u"x.VD", WATCH_MODIFIED);
    EXPECT_EQ(List{"x.VD"}, Names()) << "another file of the same name, which could not be read when it came";
    fs::rename(presets / "y.VD", presets / "x.VD");
    change(u"y.VD", WATCH_OLD_NAME);
    change(u"x.VD", WATCH_NEW_NAME);
    EXPECT_EQ(List{"x.VD"}, Names());
    Write("y.VD", Text({}));
    change(u"y.VD", WATCH_ADDED);
    EXPECT_EQ((List{"x.VD", "y.VD"}), Names());
}

TEST_F(PresetLibrary, AFileReplacedJustBeforeItsRenameIsReadAgain)
{
    Write("a.VD", Text({"Alpha.dll"}));
    OpenAndScan();
    SetFavor("a.VD", 3);
    fs::remove(presets / "a.VD");
    Write("b.VD", Text({"Beta.dll"}, true));
    PresetFolderCallback(u"a.VD", WATCH_OLD_NAME);
    PresetFolderCallback(u"b.VD", WATCH_NEW_NAME);
    EXPECT_EQ("+Beta ", Summary("b.VD"));
    EXPECT_EQ(3, Entry("b.VD").nFavor);
    fs::remove(presets / "b.VD");
    fs::create_directory(presets / "c.VD");
    PresetFolderCallback(u"b.VD", WATCH_OLD_NAME);
    PresetFolderCallback(u"c.VD", WATCH_NEW_NAME);
    PresetFolderCallback(u"c.VD", WATCH_REMOVED);
    EXPECT_EQ(List{}, Names()) << "a folder has its name now";
}

TEST_F(PresetLibrary, TheProgressOfAPassGrowsAndStaysBelowOne)
{
    for (u32 i = 0; i < 3000; i++)
        Write(std::to_string(i) + ".VD", "x");
    Open();
    std::thread pass([] { ScanPresetFolder(1); });
    f32 fLast = 0;
    while (!PresetScanDone()) {
        const f32 fProgress = PresetScanProgress();
        if (PresetScanDone())
            break; // the end shows 0 again
        ASSERT_GE(fProgress, fLast);
        ASSERT_LT(fProgress, 1.0f);
        fLast = fProgress;
    }
    pass.join();
    EXPECT_EQ(0.0f, PresetScanProgress());
}

class WatchedPresets : public PresetFolderTest {
  protected:
    void SetUp() override
    {
        PresetFolderTest::SetUp();
        SetSaveFolder(Wide(data / ".saving"));
        for (const char *pszName : {"a.VD", "b.VD"})
            Write(pszName, Text({"Alpha.dll"}));
        OpenAndScan();
        SetFavor("a.VD", 2);
        ASSERT_NE(0u, WatchPresets());
    }
    void TearDown() override
    {
        PresetFolderTest::TearDown();
        SetSaveFolder(u"");
    }
    static bool SoonListed(const List &names)
    {
        return Soon([&] { return Names() == names; });
    }
};

TEST_F(WatchedPresets, TheTableFollowsSingleChanges)
{
    static std::atomic<u32> nNotices;
    nNotices = 0;
    AddPresetNotice({&nNotices, 1, [](void *, u32) { nNotices++; }});
    Write("c.VD", Text({"Gamma.dll"}, true));
    EXPECT_TRUE(Soon([&] { return Summary("c.VD") == "+Gamma "; })) << Summary("c.VD");
    Write("a.VD", Text({"Beta.dll"}));
    EXPECT_TRUE(Soon([&] { return Summary("a.VD") == "Beta "; })) << Summary("a.VD");
    EXPECT_EQ(2, Entry("a.VD").nFavor) << "a count outlives a change of the file";
    fs::rename(presets / "a.VD", presets / "z.VD");
    EXPECT_TRUE(SoonListed({"z.VD", "b.VD", "c.VD"}));
    EXPECT_EQ(2, Entry("z.VD").nFavor);
    fs::remove(presets / "b.VD");
    EXPECT_TRUE(SoonListed({"z.VD", "c.VD"}));
    fs::rename(presets / "c.VD", presets / "z.VD");
    EXPECT_TRUE(SoonListed({"z.VD"}));
    EXPECT_TRUE(Soon([&] { return Summary("z.VD") == "+Gamma "; }));
    fs::rename(presets / "z.VD", data / "z.VD");
    EXPECT_TRUE(SoonListed({}));
    EXPECT_GE(nNotices, 6u);
}

TEST_F(WatchedPresets, ASavedPresetIsAddedOrModifiedAndAStrangersRenameAddsNothing)
{
    ASSERT_NE(0u, SaveFileAtomically(Path("saved.VD"), Text({"Gamma.dll"})));
    EXPECT_TRUE(Soon([&] { return Summary("saved.VD") == "Gamma "; }));
    ASSERT_NE(0u, SaveFileAtomically(Path("a.VD"), Text({"Beta.dll"})));
    EXPECT_TRUE(Soon([&] { return Summary("a.VD") == "Beta "; }));
    EXPECT_EQ(2, Entry("a.VD").nFavor);
    Write("stranger", Text({}));
    fs::rename(presets / "stranger", presets / "disguised.VD");
    Write(".b.VD.part", Text({"Gamma.dll"}, true)); // copied in by a tool that renames at the end
    fs::rename(presets / ".b.VD.part", presets / "copied.VD");
    EXPECT_TRUE(SoonListed({"a.VD", "b.VD", "saved.VD", "copied.VD"}));
    Write("editor~", Text({"Beta.dll"}, true));
    fs::rename(presets / "editor~", presets / "b.VD");
    EXPECT_TRUE(Soon([&] { return Summary("b.VD") == "+Beta "; })) << "over a preset it is a change of it";
    EXPECT_EQ((List{"a.VD", "b.VD", "saved.VD", "copied.VD"}), Names());
}

TEST_F(WatchedPresets, AFolderThatIsReplacedWholeIsTakenUp)
{
    fs::rename(presets, data / "before");
    EXPECT_TRUE(SoonListed({}));
    fs::create_directory(presets);
    Write("b.VD", Text({"Beta.dll"}));
    EXPECT_TRUE(SoonListed({"b.VD"}));
    Write("c.VD", Text({}));
    EXPECT_TRUE(SoonListed({"b.VD", "c.VD"}));
}

TEST_F(WatchedPresets, ABurstOfAThousandFilesArrivesWhole)
{
    for (u32 i = 0; i < 1000; i++)
        Write("burst " + std::to_string(i) + ".VD", Text({"Beta.dll"}, i % 2));
    EXPECT_TRUE(Soon([&] { return Names().size() == 1002 && Summary("burst 999.VD") == "+Beta "; }));
    for (u32 i = 0; i < 1000; i++)
        fs::remove(presets / ("burst " + std::to_string(i) + ".VD"));
    EXPECT_TRUE(SoonListed({"a.VD", "b.VD"}));
}

// A writer without rest, a reader of the folder, and in the end the truth.
TEST_F(WatchedPresets, PresetsThatAreWrittenWhileTheyAreReadComeRightInTheEnd)
{
    std::atomic<bool> bEnd{false};
    std::thread writer([&] {
        for (u32 n = 0; n < 400; n++) {
            Write("w" + std::to_string(n % 5) + ".VD", Text(List(n % 300, "Beta.dll"), n % 2));
            fs::rename(presets / ("w" + std::to_string(n % 5) + ".VD"),
                       presets / ("w" + std::to_string(n % 7) + ".VD"));
        }
        bEnd = true;
    });
    while (!bEnd) {
        ScanPresetFolder(1);
        RescanPresetFolder();
    }
    writer.join();
    for (u32 i = 0; i < 7; i++)
        Write("w" + std::to_string(i) + ".VD", Text({"Gamma.dll"}));
    EXPECT_TRUE(Soon([&] {
        List names = Names();
        std::sort(names.begin(), names.end());
        return names == List{"a.VD", "b.VD", "w0.VD", "w1.VD", "w2.VD", "w3.VD", "w4.VD", "w5.VD", "w6.VD"} &&
               std::all_of(names.begin() + 2, names.end(), [&](const auto &s) { return Summary(s) == "Gamma "; });
    }));
}

class FavoritesFile : public PresetFolderTest {
  protected:
    fs::path File() const
    {
        return data / "Favorites.XML";
    }
    u32 Save() const
    {
        return SaveFavorites(Wide(File()));
    }
};

TEST_F(FavoritesFile, CountsComeBackByNameOnceTheCacheIsGone)
{
    for (const char *pszName : {"a.VD", "B & \u00f6.VD", "c.VD"})
        Write(pszName, Text({}));
    OpenAndScan();
    EXPECT_EQ(1u, Save());
    EXPECT_FALSE(fs::exists(File())) << "nothing to write";
    SetFavor("B & \u00f6.VD", 3);
    SetFavor("c.VD", 12);
    EXPECT_EQ(1u, Save());
    EXPECT_EQ("<?xml version=\"1.0\"?>\n<Favorites>\n\t<Entries>2</Entries>\n"
              "\t<Fave0>\n\t\t<Name>B & \u00f6.VD</Name>\n\t\t<Favor>3</Favor>\n\t</Fave0>\n"
              "\t<Fave1>\n\t\t<Name>c.VD</Name>\n\t\t<Favor>12</Favor>\n\t</Fave1>\n</Favorites>" +
                  std::string(1, '\0'),
              Read(File()));
    FreePresetLibrary();
    Open();
    EXPECT_EQ(3, Entry("B & \u00f6.VD").nFavor);
    EXPECT_EQ(12, Entry("c.VD").nFavor);
    SetFavor("c.VD", 0);
    ShutdownPresetLibrary(); // with a cache the file is not asked
    Open();
    EXPECT_EQ(0, Entry("c.VD").nFavor);
    SetFavor("B & \u00f6.VD", 0);
    EXPECT_EQ(1u, Save());
    EXPECT_NE(std::string::npos, Read(File()).find("<Favor>12")) << "without any count the file stays";
}

TEST_F(FavoritesFile, AFileMadeByHandIsReadAsFarAsItMakesSense)
{
    for (const char *pszName : {"a.VD", "b.VD", "c.VD", "d.VD", "e.VD"})
        Write(pszName, Text({}));
    Open();
    EXPECT_EQ(0u, LoadFavorites(Wide(File())));
    std::ofstream(File()) << "<?xml version=\"1.0\"?>\n<Favorites><Entries>2000000000</Entries>"
                             "<Fave999999><Name>e.VD</Name><Favor>6</Favor></Fave999999>"
                             "<Fave0><Name>A.vd</Name><Favor>5</Favor></Fave0>"
                             "<Fave2><Name>b.VD</Name></Fave2>"
                             "<Fave3><Favor>9</Favor></Fave3>"
                             "<Fave4><Name>c.VD</Name><Favor>-7</Favor></Fave4>"
                             "<Fave5><Name>"
                          << std::string(100000, 'x') << "</Name><Favor>1</Favor></Fave5>"
                          << "<Fave6><Name>../d.VD</Name><Favor>1</Favor></Fave6></Favorites>";
    EXPECT_EQ(1u, LoadFavorites(Wide(File())));
    EXPECT_EQ(5, Entry("a.VD").nFavor) << "without regard to case";
    EXPECT_EQ(6, Entry("e.VD").nFavor) << "numbers may be left out";
    for (const char *pszName : {"b.VD", "c.VD", "d.VD"})
        EXPECT_EQ(0, Entry(pszName).nFavor) << pszName;
    std::ofstream(File()) << "no favorites at all";
    EXPECT_EQ(1u, LoadFavorites(Wide(File())));
}

TEST_F(FavoritesFile, PressesBetweenTwoTicksCountOnceForThePresetThatRuns)
{
    Write("a.VD", Text({}));
    Open();
    u32 bPending = 0;
    SetPresetChanged(u"a.VD", 0);
    EXPECT_EQ(0u, ServeFavorPresses(&bPending));
    bPending = 1;
    EXPECT_EQ(1u, ServeFavorPresses(&bPending));
    EXPECT_EQ(0u, ServeFavorPresses(&bPending));
    EXPECT_EQ(1, Entry("a.VD").nFavor);
    for (const char16_t *pszPreset : {u"A.VD", u"Tempname.VD", u""}) {
        SetPresetChanged(pszPreset, 0);
        bPending = 1;
        EXPECT_EQ(1u, ServeFavorPresses(&bPending));
    }
    EXPECT_EQ(1, Entry("a.VD").nFavor);
    GlobalSettings = {};
}

} // namespace
