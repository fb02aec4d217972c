// GlobalsFile_test.cpp -- tests GlobalsFile.cpp and SettingsTable.cpp
#include "app/GlobalsFile.h"

#include "app/SettingsTable.h"
#include "output/RecorderCombos.h"
#include "platform/Notices.h"
#include "platform/Text.h"
#include "platform/WholeFile.h"
#include "state/Folders.h"
#include "tests/TempFolder.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

class Globals : public ::testing::Test {
  protected:
    TempFolder folder;

    void SetUp() override
    {
        InitFolders({.program = {}, .data = folder.Wide(), .modules = {}});
        RecorderCombos = {};
        CurrentCombo = {};
        SetDefaultSettings();
    }
    u32 Read(const std::string &sBody)
    {
        folder.Write("Globals.XML", "<?xml version=\"1.0\"?>\n<Globals>\n" + sBody + "</Globals>");
        return ReadGlobals(&GlobalSettings);
    }
    std::string Written()
    {
        std::string s;
        EXPECT_TRUE(WriteGlobals(&GlobalSettings));
        EXPECT_TRUE(ReadWholeFile(FolderPath(PATH_GLOBALS), 1u << 20, &s));
        return s;
    }
};

// The open tags of a document in order, a full stop for each level that they are indented.
std::vector<std::string> TagsOf(const std::string &sDocument)
{
    std::vector<std::string> as;
    std::istringstream lines(sDocument);
    for (std::string sLine; std::getline(lines, sLine);) {
        const size_t iOpen = sLine.find('<');
        if (iOpen != sLine.npos && std::isalpha(static_cast<u8>(sLine[iOpen + 1])))
            as.push_back(std::string(iOpen, '.') + sLine.substr(iOpen + 1, sLine.find('>') - iOpen - 1));
    }
    return as;
}

i32 Field(const char *pszTag)
{
    const std::pair<const char *, i32> asField[] = {
        {"PresetBView", GlobalSettings.PresetBView},
        {"ShowModules", GlobalSettings.ShowModules},
        {"DetailScale", GlobalSettings.DetailScale},
        {"BufferCap", static_cast<i32>(GlobalSettings.BufferCap)},
        {"FPSTarget", GlobalSettings.FPSTarget},
        {"ThreadedPlanes", static_cast<i32>(GlobalSettings.ThreadedPlanes)},
        {"AutoAdjustBufferCap", static_cast<i32>(GlobalSettings.AutoAdjustBufferCap)},
        {"FrameThickness", GlobalSettings.FrameThickness},
        {"VolumeType", GlobalSettings.VolumeType},
        {"TimeScale", static_cast<i32>(GlobalSettings.TimeScale)},
        {"FrameRecordWidth", GlobalSettings.FrameRecordWidth},
        {"FrameRecordDelay", GlobalSettings.FrameRecordDelay},
        {"FrameRecordMethod", GlobalSettings.FrameRecordMethod},
    };
    for (const auto &[pszName, nValue] : asField)
        if (std::string(pszName) == pszTag)
            return nValue;
    ADD_FAILURE() << pszTag;
    return 0;
}

} // namespace

TEST_F(Globals, TheFirstRunWritesAllDefaultsInTheOrderOfTheFile)
{
    EXPECT_EQ(ReadGlobals(&GlobalSettings), 0u);
    const std::string sFile = Written();
    const std::vector<std::string> asTag = {"Globals",
                                            ".PresetBView",
                                            ".ShowModules",
                                            ".SnapToEdge",
                                            ".DetailScale",
                                            ".BufferCap",
                                            ".FPSTarget",
                                            ".ThreadedPlanes",
                                            ".MixInParallel",
                                            ".AutoAdjustBuffer",
                                            ".AutoAdjustBufferCap",
                                            ".FrameThickness",
                                            ".VolumeType",
                                            ".TimeScale",
                                            ".Preset",
                                            ".FrameRecordFormat",
                                            ".FrameRecordFolder",
                                            ".FrameRecordWidth",
                                            ".FrameRecordHeight",
                                            ".FrameRecordDelay",
                                            ".FrameRecordMethod",
                                            ".FriendlyName",
                                            ".FrameRecordStart",
                                            ".FrameRecordStop",
                                            ".ScreenRecorders",
                                            ".PalWin",
                                            "..ShowMP",
                                            "..ShowRGB",
                                            "..ShowPrg",
                                            "..ShowOneRow",
                                            ".UIColors",
                                            "..Meter_High",
                                            "..Meter_Low",
                                            "..Timer_Background"};
    std::vector<std::string> asFound = TagsOf(sFile);
    EXPECT_EQ(asFound.size(), asTag.size() + UICOLORS - 3);
    asFound.resize(asTag.size());
    EXPECT_EQ(asFound, asTag);
    EXPECT_EQ(asFound.back(), "..Timer_Background");
    for (const char *pszLine :
         {"\t<PresetBView>3<", "\t<DetailScale>100<", "\t<BufferCap>33177600<", "\t<FPSTarget>60<",
          "\t<ThreadedPlanes>1<", "\t<MixInParallel>0<", "\t<FrameThickness>0<", "\t<VolumeType>3<", "\t<TimeScale>1<",
          "\t<Preset>Tempname.VD<", "\t<FrameRecordFormat>Untitled-%04d.png<", "/ScreenShots</FrameRecordFolder>",
          "\t<FrameRecordWidth>640<", "\t<FrameRecordDelay>500<", "\t<FriendlyName><", "\t\t<ShowRGB>0<",
          "\t\t<Meter_High>5263610<", "\t\t<TreeView_Planes_Branch_Text>9235455<"})
        EXPECT_NE(sFile.find(pszLine), std::string::npos) << pszLine;
    EXPECT_EQ(sFile.substr(sFile.size() - 11), std::string("</Globals>\0", 11));
}

TEST_F(Globals, EveryNumberComesInsideItsLimits)
{
    const struct {
        const char *pszTag;
        i32 nInFile, nExpected;
    } asCase[] = {{"TimeScale", 0, 1},
                  {"TimeScale", 500, 100},
                  {"TimeScale", -5, 1},
                  {"FrameRecordDelay", 20000, 500},
                  {"FrameRecordDelay", 10000, 10000},
                  {"FrameRecordDelay", -1, 500},
                  {"FrameRecordDelay", 0, 0},
                  {"FPSTarget", 0, 20},
                  {"FPSTarget", 481, 480},
                  {"DetailScale", 5, 10},
                  {"DetailScale", 101, 100},
                  {"BufferCap", -1, 200000},
                  {"BufferCap", 2000000000, 33177600},
                  {"FrameThickness", 33, 32},
                  {"FrameThickness", 0, 0},
                  {"VolumeType", -1, 3},
                  {"VolumeType", 4, 3},
                  {"VolumeType", 2, 2},
                  {"PresetBView", 1, 1},
                  {"PresetBView", 2, 3},
                  {"ShowModules", 7, 1},
                  {"ThreadedPlanes", -1, 1},
                  {"FrameRecordWidth", 0, 128},
                  {"FrameRecordWidth", 100000, 8192},
                  {"FrameRecordMethod", 9, 1},
                  {"AutoAdjustBufferCap", -77, -77}};
    for (const auto &c : asCase) {
        SetDefaultSettings();
        const std::string sTag = c.pszTag;
        EXPECT_EQ(Read("\t<" + sTag + ">" + std::to_string(c.nInFile) + "</" + sTag + ">\n"), 1u);
        EXPECT_EQ(Field(c.pszTag), c.nExpected) << sTag << " " << c.nInFile;
    }
    GlobalSettings.TimeScale = 1000;
    EXPECT_NE(Written().find("<TimeScale>100<"), std::string::npos);
}

TEST_F(Globals, WhatWasWrittenIsReadBackAndWrittenAgainTheSame)
{
    GlobalSettings.PresetBView = 1;
    GlobalSettings.FPSTarget = 144;
    GlobalSettings.AutoAdjustBufferCap = ALL_ONES;
    GlobalSettings.ShowRGB = 1;
    GlobalSettings.ShowMP = 0;
    CopyText(GlobalSettings.Preset, u"Fr\u00fchling & \u96ea.VD");
    CopyText(GlobalSettings.FrameRecordFolder, std::u16string(400, u'f'));
    CopyText(GlobalSettings.FriendlyName, u"OBS Studio");
    CopyText(GlobalSettings.FrameRecordStart, u"Alt+[");
    CopyText(GlobalSettings.FrameRecordStop, u"Alt+]");
    PrepareRecorderCombos();
    AddRecorderCombo(u"Mine", u"Ctrl+1", u"Ctrl+2");
    SetUIColor(UICOLOR_TILE_ON, 0x123456);
    const GlobalSettingsRecord gs = GlobalSettings;
    const std::string sFile = Written();

    RecorderCombos = {};
    SetDefaultSettings();
    EXPECT_EQ(UIColorTable[UICOLOR_TILE_ON].dwColor, 0x32E132u);
    EXPECT_EQ(ReadGlobals(&GlobalSettings), 1u);
    EXPECT_EQ(std::memcmp(&gs, &GlobalSettings, sizeof gs), 0);
    EXPECT_EQ(UIColorTable[UICOLOR_TILE_ON].dwColor, 0x123456u);
    EXPECT_EQ(Written(), sFile);
}

TEST_F(Globals, CombinationsJoinTheBuiltInOnesByName)
{
    Read("\t<ScreenRecorders>\n<Combo0><Name>obs studio</Name><Start>F1</Start><Stop>F2</Stop></Combo0>"
         "<Combo1><Name>" +
         std::string(60, 'n') +
         "</Name><Start>F3</Start></Combo1><Combo3><Name>Lost</Name></Combo3></ScreenRecorders>\n");
    ASSERT_EQ(RecorderCombos.nCount, 4u);
    EXPECT_EQ(std::u16string(RecorderCombos.asCombo[1].szName), u"OBS Studio");
    EXPECT_EQ(std::u16string(RecorderCombos.asCombo[1].szStart), u"F1");
    EXPECT_EQ(std::u16string(RecorderCombos.asCombo[3].szName), std::u16string(41, u'n'));
    EXPECT_EQ(std::u16string(RecorderCombos.asCombo[3].szStart), u"F3");
    EXPECT_EQ(std::u16string(RecorderCombos.asCombo[3].szStop), u"");

    std::string s = "<ScreenRecorders>";
    for (int i = 0; i < 50; i++) {
        const std::string n = std::to_string(i);
        s += "<Combo" + n + "><Name>c" + n + "</Name></Combo" + n + ">";
    }
    Read(s + "</ScreenRecorders>");
    EXPECT_EQ(RecorderCombos.nCount, RECORDER_COMBOS_MAX);
}

TEST_F(Globals, TheKeysInUseAreTheStoredOnesOrThoseOfTheFirstCombination)
{
    Read("\t<FrameRecordStart>F5</FrameRecordStart>\n");
    EXPECT_EQ(std::u16string(GlobalSettings.FrameRecordStart), u"Windows+Alt+R");
    EXPECT_EQ(std::u16string(GlobalSettings.FrameRecordStop), u"Windows+Alt+R");
    EXPECT_EQ(std::u16string(CurrentCombo.szName), u"XBOX Game Bar");
    Read("\t<FrameRecordStart>F5</FrameRecordStart>\n\t<FrameRecordStop>F6</FrameRecordStop>\n");
    EXPECT_EQ(std::u16string(CurrentCombo.szName), u"Current");
    EXPECT_EQ(std::u16string(CurrentCombo.szStart), u"F5");
    EXPECT_EQ(std::u16string(CurrentCombo.szStop), u"F6");
}

TEST_F(Globals, ColoursAreFoundUnderTheirUnderscoresAlone)
{
    static u32 dwBackground, nTold;
    dwBackground = nTold = 0;
    constexpr auto pfnTake = [](u32 iRow, void *) {
        nTold++;
        if (iRow == UICOLOR_WINDOW_BACKGROUND)
            dwBackground = UIColorTable[iRow].dwColor;
    };
    UIColorListeners.Add(pfnTake);
    Read("\t<UIColors>\n<Meter High>1</Meter High><Meter_Low>2</Meter_Low><window_background>-1</window_background>"
         "<Timer>x</Timer></UIColors>\n");
    EXPECT_EQ(UIColorTable[UICOLOR_METER_HIGH].dwColor, 0x5050FAu);
    EXPECT_EQ(UIColorTable[UICOLOR_METER_LOW].dwColor, 2u);
    EXPECT_EQ(UIColorTable[UICOLOR_TIMER].dwColor, 0u);
    EXPECT_EQ(dwBackground, 0xFFFFFFu);
    EXPECT_EQ(SetUIColor(UICOLORS, 5), 0u);
    EXPECT_EQ(SetUIColor(UICOLOR_METER_LOW, 0xFF000003), 2u);
    EXPECT_EQ(UIColorTable[UICOLOR_METER_LOW].dwColor, 3u);
    const u32 nChanges = std::exchange(nTold, 0u);
    SetUIColor(UICOLOR_METER_LOW, 3);
    UIColorListeners.Remove(pfnTake);
    EXPECT_EQ(nChanges, 4u);
    EXPECT_EQ(nTold, 0u) << "nothing has changed";
}

TEST_F(Globals, TheWindowLayoutSurvivesAProgramWithoutWindows)
{
    const std::string sDigits = "2c000000" + std::string(80, '0');
    const std::string sLayout = "\t<DTRect>" + std::string(32, 'f') +
                                "</DTRect>\n\t<Window1>\n\t\t<Name>Main</Name>\n"
                                "\t\t<Open>0</Open>\n\t\t<Position>" +
                                sDigits +
                                "</Position>\n\t</Window1>\n"
                                "\t<Window2>\n\t\t<Name>Sound</Name>\n\t\t<Open>1</Open>\n\t\t<Position></Position>\n"
                                "\t</Window2>\n\t<LockWin>1</LockWin>\n";
    Read("\t<FPSTarget>30</FPSTarget>\n" + sLayout);
    EXPECT_NE(Written().find("\t</ScreenRecorders>\n" + sLayout + "\t<PalWin>"), std::string::npos);
    EXPECT_EQ(GlobalSettings.FPSTarget, 30);
    Read("");
}

TEST_F(Globals, AFileThatIsNoSettingsFileLeavesTheDefaultsAndIsKept)
{
    const GlobalSettingsRecord gs = GlobalSettings;
    for (const char *pszText :
         {"", "x", "<?xml?>\n<Preset><FPSTarget>30</FPSTarget></Preset>", "\xFF\xFE\n<Globals>"}) {
        folder.Write("Globals.XML", pszText);
        EXPECT_EQ(ReadGlobals(&GlobalSettings), 1u);
        CopyText(GlobalSettings.FrameRecordStart, u"");
        CopyText(GlobalSettings.FrameRecordStop, u"");
        EXPECT_EQ(GlobalSettings.FPSTarget, gs.FPSTarget);
        EXPECT_EQ(std::u16string(GlobalSettings.Preset), gs.Preset);
        std::string sKept = "?";
        EXPECT_FALSE(fs::exists(folder / "Globals.XML"));
        EXPECT_TRUE(ReadWholeFile(FromUtf8((folder / "Globals.XML.unread").string()), 1000, &sKept));
        EXPECT_EQ(sKept, pszText);
    }
    fs::create_directory(folder / "Globals.XML");
    const u32 nNotices = NoticeCount();
    EXPECT_EQ(ReadGlobals(&GlobalSettings), 0u);
    EXPECT_EQ(NoticeCount(), nNotices + 1);
    std::string sWhy;
    EXPECT_FALSE(WriteGlobals(&GlobalSettings, &sWhy));
    EXPECT_NE(sWhy.find("Globals.XML"), std::string::npos);
}
