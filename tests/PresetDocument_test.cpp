// PresetDocument_test.cpp -- tests PresetDocument.cpp, and what follows its news
#include "engine/PresetDocument.h"

#include "controls/ControlManager.h"
#include "engine/PresetNews.h"
#include "platform/Files.h"
#include "tests/EngineFixture.h"
#include "tests/TempFolder.h"

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class Document : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        fs::create_directory(folder / "Presets");
        fs::create_directory(folder / "Elsewhere");
        InitFolders({u"/nowhere/vorticade", folder.Wide(), FromUtf8(TEST_MODULE_FOLDER)});
        Write("Presets/One.VD", 1);
        Write("Presets/Two.VD", 2);
        Write("Elsewhere/Three.VD", 3);
        std::ofstream(folder / "Presets/Broken.VD") << "this is no preset";
        OpenFirstPreset(Path("Presets/One.VD"), nullptr, nullptr);
        PresetListeners.Add(OnNews, this);
    }
    void TearDown() override
    {
        PresetListeners.Remove(OnNews, this);
        SwitchPreset(nullptr, nullptr);
        bPresetChanged = 0;
        EngineTest::TearDown();
    }

    void Write(const std::string &sName, i32 nPlanes) const
    {
        std::ofstream(folder / sName) << "<?xml?>\n<Preset><NumPlanes>" << nPlanes
                                      << "</NumPlanes><Plane0></Plane0><Plane1></Plane1><Plane2></Plane2></Preset>";
    }
    std::u16string Path(const std::string &sName) const
    {
        return folder.Wide(sName);
    }
    static i32 Planes()
    {
        return CurrentPreset() ? CurrentPreset()->nPlanes : -1;
    }
    // A star for the mark, the name, and below the data folder the path.
    std::string State() const
    {
        const std::string sPath = ToUtf8(PresetPath());
        return (bPresetChanged ? "*" : "") + ToUtf8(PresetName()) + " " +
               (sPath.empty() ? "nowhere" : fs::path(sPath).lexically_relative(folder.string()).string());
    }
    static std::string Stored()
    {
        return ToUtf8(GlobalSettings.Preset);
    }
    // What was told since the last call, with the state of the document at that time.
    std::string TakeTold()
    {
        return std::exchange(sTold, "");
    }
    static void OnNews(const PresetNews &news, void *pv)
    {
        auto *pThis = static_cast<Document *>(pv);
        const char *apszKind[] = {"going", "came", "marked"};
        const u32 dwKind = static_cast<u32>(news.eKind);
        EXPECT_EQ(news.eKind == NewsKind::Going ? nullptr : news.lppsi, CurrentPreset());
        pThis->sTold += std::string(dwKind < 3                      ? apszKind[dwKind]
                                    : news.eKind == NewsKind::Saved ? "saved"
                                                                    : "?") +
                        ": " + pThis->State() + "\n";
    }

    TempFolder folder;
    std::string sTold;
};

TEST_F(Document, ANewPresetIsEmptyUntitledAndUnmarked)
{
    MarkPresetChanged();
    TakeTold();
    NewPreset();
    EXPECT_EQ(0, Planes());
    EXPECT_EQ("going: *One.VD Presets/One.VD\n"
              "came: Tempname.VD nowhere\n"
              "marked: Tempname.VD nowhere\n",
              TakeTold());
    EXPECT_EQ("Tempname.VD", Stored());
    OpenDefaultPreset();
    EXPECT_EQ(2, Planes());
    EXPECT_EQ("Tempname.VD nowhere", State());
}

TEST_F(Document, APresetIsOpenedByPathOrByItsNameInThePresetFolder)
{
    MarkPresetChanged();
    TakeTold();
    EXPECT_TRUE(LoadPresetByName(u"Two.VD"));
    EXPECT_EQ(2, Planes());
    EXPECT_EQ("going: *One.VD Presets/One.VD\n"
              "came: Two.VD Presets/Two.VD\n"
              "marked: Two.VD Presets/Two.VD\n",
              TakeTold());
    EXPECT_TRUE(LoadPresetByName(Path("Elsewhere/Three.VD")));
    EXPECT_EQ(3, Planes());
    EXPECT_EQ("Three.VD Elsewhere/Three.VD", State());
    EXPECT_EQ("Three.VD", Stored()) << "a name without a path";
}

TEST_F(Document, WithoutSuchAFileNothingChanges)
{
    MarkPresetChanged();
    TakeTold();
    const PresetState *lppsiBefore = CurrentPreset();
    for (const std::u16string &name : {std::u16string(u"Gone.VD"), std::u16string(), Path("Presets"), Path("Gone.VD")})
        EXPECT_FALSE(LoadPresetByName(name)) << ToUtf8(name);
    EXPECT_EQ(lppsiBefore, CurrentPreset());
    EXPECT_EQ("*One.VD Presets/One.VD", State());
    EXPECT_EQ("", TakeTold());
}

TEST_F(Document, AFileThatCannotBeReadLeavesNoPresetAndNoName)
{
    PresetReport report = {};
    TakeTold();
    EXPECT_TRUE(LoadPresetByName(u"Broken.VD", &report));
    EXPECT_NE(report.sFailure.find("Broken.VD: no preset stands in it"), std::string::npos) << report.sFailure;
    EXPECT_EQ(nullptr, CurrentPreset());
    EXPECT_EQ("going: One.VD Presets/One.VD\n"
              "came: Tempname.VD nowhere\n"
              "marked: Tempname.VD nowhere\n",
              TakeTold());
    std::string sWhy;
    EXPECT_FALSE(SavePresetAs(Path("Presets/Mine.VD"), &sWhy));
    EXPECT_EQ("there is no preset to save", sWhy);
    EXPECT_EQ("", TakeTold());
    EXPECT_TRUE(LoadPresetByName(u"One.VD"));
    EXPECT_EQ("came: One.VD Presets/One.VD\nmarked: One.VD Presets/One.VD\n", TakeTold()) << "nothing was there to go";
}

TEST_F(Document, ASavedPresetTakesTheNameAndLosesTheMark)
{
    MarkPresetChanged();
    EXPECT_TRUE(DiscardNeedsQuestion());
    TakeTold();
    std::string sWhy;
    EXPECT_FALSE(SavePresetAs(Path("Missing/Mine.VD"), &sWhy));
    EXPECT_NE(sWhy.find("Mine.VD"), std::string::npos) << sWhy;
    EXPECT_EQ("*One.VD Presets/One.VD", State());
    EXPECT_EQ("", TakeTold()) << "a save that failed changes nothing";
    EXPECT_TRUE(SavePresetAs(Path("Elsewhere/Mine.VD"), &sWhy));
    EXPECT_EQ("marked: Mine.VD Elsewhere/Mine.VD\nsaved: Mine.VD Elsewhere/Mine.VD\n", TakeTold());
    EXPECT_FALSE(DiscardNeedsQuestion());
    EXPECT_EQ("Mine.VD", Stored());
    LoadPresetByName(u"Two.VD");
    LoadPresetByName(Path("Elsewhere/Mine.VD"));
    EXPECT_EQ(1, Planes());
}

TEST_F(Document, TheMarkIsToldOnceHoweverOftenItIsSet)
{
    TakeTold();
    MarkPresetChanged();
    MarkPresetChanged();
    EXPECT_EQ("marked: *One.VD Presets/One.VD\n", TakeTold());
    SetPresetChanged(u"/some/where\\Else.VD", 0);
    EXPECT_EQ("marked: Else.VD Presets/One.VD\n", TakeTold());
    bPresetChanged = 1; // as a list of files does that finds its lines
    MarkPresetChanged();
    EXPECT_EQ("", TakeTold());
}

TEST_F(Document, APresetWithListsOfFilesIsUnmarkedAfterItsFirstFrames)
{
    RecorderBehaviour rb = {};
    rb.nControls = 1;
    rb.adwType[0] = CONTROLTYPE_FILESELECT;
    Behave(nullptr, rb);
    const std::string sModule = "<ModuleDLL>Recorder.dll</ModuleDLL><NumControls>1</NumControls><Control0><Name>"
                                "Recorder.Control 000</Name><Source>1</Source><Shuffle>0</Shuffle><FileList>"
                                "a.png\r\nb.png</FileList></Control0>";
    std::ofstream(folder / "Presets/Lists.VD")
        << "<?xml?>\n<Preset><NumPlanes>1</NumPlanes><Plane0><NumDFull>1</NumDFull><DFull0>" + sModule +
               "</DFull0><NumOEffect>1</NumOEffect><OEffect0>" + sModule +
               "</OEffect0></Plane0><PostProc><NumPEffect>1</NumPEffect><PEffect0>" + sModule +
               "</PEffect0></PostProc></Preset>";
    ASSERT_TRUE(LoadPresetByName(u"Lists.VD"));
    lppsi = CurrentPreset();
    const ModuleSlot *apms[] = {lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWFULL][0],
                                lppsi->psPlane[0]->apModule[MODULEINDEX_OVERLAYEFFECT][0], lppsi->apPostProc[0]};
    for (u32 nFrame = 0; nFrame < 4; nFrame++) {
        EXPECT_EQ("Lists.VD Presets/Lists.VD", State()) << nFrame;
        EXPECT_FALSE(DiscardNeedsQuestion());
        EXPECT_EQ(Step(100), 1u);
    }
    for (const ModuleSlot *pms : apms) {
        ASSERT_NE(pms, nullptr);
        EXPECT_EQ(pms->apControl[0]->FileSelect.nLines, 2u) << "the list was read and counted";
    }
    EXPECT_FALSE(DiscardNeedsQuestion());
    lppsi = nullptr; // the document's
}

// What the start says about a preset of that name in the settings, or of that path on the command line.
std::string TroubleAtStart(std::u16string_view stored, std::u16string_view path = {})
{
    std::string sTrouble;
    PresetReport report = {};
    CopyText(GlobalSettings.Preset, stored);
    OpenFirstPreset(path, &report, &sTrouble);
    return sTrouble;
}

TEST_F(Document, TheStartOpensTheCommandLinesFileElseTheStoredChoice)
{
    EXPECT_EQ("", TroubleAtStart(u"Two.VD"));
    EXPECT_EQ(2, Planes());
    EXPECT_EQ("Two.VD Presets/Two.VD", State());
    EXPECT_EQ("", TroubleAtStart(u"Two.VD", Path("Elsewhere/Three.VD")));
    EXPECT_EQ(3, Planes());
    EXPECT_EQ("Three.VD", Stored());
    for (const char16_t *pszStored : {u"Tempname.VD", u""}) {
        EXPECT_EQ("", TroubleAtStart(pszStored)) << "nobody has chosen a preset yet";
        EXPECT_EQ("Tempname.VD nowhere", State());
    }
}

TEST_F(Document, AStoredChoiceThatCannotBeReadIsKeptUntilAnotherPresetWasOpenedOrSaved)
{
    for (const bool bSave : {false, true}) {
        EXPECT_EQ("Away.VD: there is no such file, nor one in the preset folder", TroubleAtStart(u"Away.VD"));
        EXPECT_EQ(2, Planes()) << "the default preset";
        EXPECT_EQ("Tempname.VD nowhere", State());
        MarkPresetChanged();
        LoadPresetByName(u"Broken.VD");
        NewPreset();
        MarkPresetChanged();
        EXPECT_EQ("*Tempname.VD nowhere", State());
        EXPECT_EQ("Away.VD", Stored());
        EXPECT_TRUE(bSave ? SavePresetAs(Path("Presets/Mine.VD")) : LoadPresetByName(u"One.VD"));
        EXPECT_EQ(ToUtf8(PresetName()), Stored());
        NewPreset();
        EXPECT_EQ("Tempname.VD", Stored());
    }
    EXPECT_NE(TroubleAtStart(u"Broken.VD").find("no preset stands in it"), std::string::npos);
    EXPECT_EQ("Broken.VD", Stored());
    EXPECT_NE(TroubleAtStart(u"Two.VD", Path("Presets/Broken.VD")), "");
    EXPECT_EQ(2, Planes());
    EXPECT_EQ("Two.VD", Stored()) << "another program's mistake on the command line costs no choice";
}

TEST_F(Document, TheShownFramesCountAnewAfterOpeningAndNotAfterNew)
{
    ResetFrameStatsWithPresets();
    for (const auto &[pfnChange, qwLeft] : {
             std::pair<void (*)(), u64>{[] { NewPreset(); }, 9},
             {[] { MarkPresetChanged(); }, 9},
             {[] { LoadPresetByName(u"Gone.VD"); }, 9},
             {[] { LoadPresetByName(u"Broken.VD"); }, 0},
             {[] { LoadPresetByName(u"Two.VD"); }, 0},
         }) {
        qwFramesTotal = 9;
        pfnChange();
        EXPECT_EQ(qwLeft, qwFramesTotal);
    }
}

} // namespace
