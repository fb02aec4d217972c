// PresetFile_test.cpp -- tests PresetReader.cpp, PresetWriter.cpp and ControlFile.cpp
#include "engine/PresetFile.h"

#include "controls/ControlManager.h"
#include "controls/FileList.h"
#include "controls/FluidSources.h"
#include "tests/EngineFixture.h"
#include "tests/TempFolder.h"

#include <filesystem>
#include <random>

namespace {

constexpr const char *HEADER = "<?xml version=\"1.0\"?>\n";

class PresetFile : public EngineTest {
  protected:
    std::mt19937 rng{11};
    PresetReport report = {};

    u32 Random(u32 n)
    {
        return std::uniform_int_distribution<u32>(0, n - 1)(rng);
    }
    bool Chance(u32 n)
    {
        return Random(n) == 0;
    }
    // A number that six decimals hold exactly.
    f32 Fraction()
    {
        return static_cast<f32>(Random(65)) / 64.0f;
    }

    // Every recorder that is built from now on has controls of these types, over and over.
    static void BuildWith(u32 nControls, std::vector<u32> types = {2, 3, 4, 5, 6, 7})
    {
        RecorderBehaviour rb = {};
        rb.nControls = nControls;
        for (u32 i = 0; i < std::min<u32>(nControls, CONTROLS_MAX); i++)
            rb.adwType[i] = types[i % types.size()];
        Behave(nullptr, rb);
    }

    static std::string TextOf(PresetState *lppsiFrom)
    {
        XmlContext *pxc = XmlCreate();
        WritePreset(pxc, lppsiFrom);
        const std::string s = ToUtf8(XmlDocumentText(pxc));
        XmlClose(pxc);
        return s;
    }
    PresetState *Load(const std::string &sText)
    {
        report = {};
        return LoadPresetText(sText, &report);
    }
    // Takes the place of lppsi.
    void Reload(const std::string &sText)
    {
        DestroyPresetState(lppsi);
        lppsi = Load(sText);
        ASSERT_TRUE(lppsi);
    }
    // One plane with one recorder in it, with this inside its module body.
    void LoadModuleBody(const std::string &sBody, const std::string &sDll = "Recorder.dll")
    {
        Reload(HEADER +
               std::string("<Preset><NumPlanes>1</NumPlanes><Plane0><Indexed>1</Indexed><NumDPainter>1"
                           "</NumDPainter><DPainter0><ModuleDLL>") +
               sDll + "</ModuleDLL>" + sBody + "</DPainter0></Plane0></Preset>");
    }
    ModuleSlot *Painter(i32 i = 0)
    {
        return lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][i];
    }

    void Randomize(ControlRecord *pctl, bool bDrawn);
    void Randomize(ModuleSlot *pms, bool bDrawn);
    void MakeRandomPreset(bool bDrawn);
};

// bDrawn allows sources for which the format stores what chance drew.
void PresetFile::Randomize(ControlRecord *pctl, bool bDrawn)
{
    ControlBase &Base = pctl->Base;
    const bool bDraws = Base.dwType == CONTROLTYPE_ITEMSELECT || Base.dwType == CONTROLTYPE_BOOLEAN;
    do
        Base.dwSource = 1u << Random(Base.dwType == CONTROLTYPE_ITEMSELECT ? 2 : 5);
    while (Base.dwSource == FLUIDSOURCE_RANDOM && bDraws && !bDrawn);
    Base.nSamples = Random(45);
    Base.nWavePeriod = 400 + Random(119601);
    Base.dwWaveType = Random(4);
    Base.bRandomPhase = Random(2);
    Base.fWavePhase = Fraction();
    Base.nNoisePeriod = Random(16001);
    if (Base.dwType == CONTROLTYPE_INTEGER) {
        for (i32 *pn : {&pctl->Integer.nMin, &pctl->Integer.nMax, &pctl->Integer.nValue})
            *pn = static_cast<i32>(Random(101));
        for (u32 *pb : {&pctl->Integer.bOnlyEven, &pctl->Integer.bOnlyOdd, &pctl->Integer.bMinMax})
            *pb = Chance(4);
    } else if (Base.dwType == CONTROLTYPE_FLOAT) {
        for (f32 *pf : {&pctl->Float.fMin, &pctl->Float.fMax, &pctl->Float.fValue})
            *pf = Chance(2) ? Fraction() : static_cast<f32>(rng() % 1000003) / 1000003.0f;
        pctl->Float.bMinMax = Chance(4);
    } else if (Base.dwType == CONTROLTYPE_ITEMSELECT) {
        pctl->ItemSelect.nCurrentItemValue = Random(3);
    } else if (Base.dwType == CONTROLTYPE_BOOLEAN) {
        pctl->Boolean.bState = Random(2);
        pctl->Boolean.fThreshold = static_cast<f32>(rng() % 1000003) / 1000003.0f;
    } else if (Base.dwType == CONTROLTYPE_FILESELECT) {
        pctl->FileSelect.bShuffle = Random(2);
        const std::u16string list = u"C:\\b\u00e4r.png\r\n\u732b.png" + std::u16string(Random(300), u'x');
        auto *pszList = static_cast<char16_t *>(std::malloc((list.size() + 1) * sizeof(char16_t)));
        std::copy_n(list.c_str(), list.size() + 1, pszList);
        SetFileList(pctl, Chance(4) ? (std::free(pszList), nullptr) : pszList);
    } else if (Base.dwType == CONTROLTYPE_TILE) {
        pctl->Tile.nXTiles = Chance(3) ? 1 + Random(32) : 32;
        pctl->Tile.nYTiles = Chance(3) ? 1 + Random(32) : 32;
        std::generate_n(pctl->Tile.pTileMask, pctl->Tile.nXTiles * pctl->Tile.nYTiles, [&] { return Random(2); });
    }
}

void PresetFile::Randomize(ModuleSlot *pms, bool bDrawn)
{
    pms->nDuration = Chance(2) ? 16 : 1 + Random(181);
    pms->nCallsPerFrame = Chance(2) ? 1 : static_cast<i32>(Random(65)) - 32;
    pms->bClearOnReset = static_cast<i32>(Random(2));
    for (i32 i = 0; i < pms->nControls; i++)
        if (Chance(2))
            Randomize(pms->apControl[i], bDrawn);
}

void PresetFile::MakeRandomPreset(bool bDrawn)
{
    constexpr const char16_t *apszDll[] = {u"Recorder.dll", u"RecorderColor.dll", u"Idle.dll"};
    BuildWith(Chance(6) ? CONTROLS_MAX : Random(20));
    DestroyPresetState(lppsi);
    lppsi = CreatePresetState(0);
    for (u32 nPlanes = Random(PLANES_MAX + 1); nPlanes > 0; nPlanes--) {
        const PlaneState *pps = AddPlane(lppsi, Random(2), 0);
        for (u32 i = 0; i < MODULEINDEX_MIXER; i++)
            for (u32 nModules = Chance(40) ? LIST_MODULES_MAX : Random(3); nModules > 0; nModules--)
                Randomize(AddModule(lppsi, apszDll[Random(3)], lppsi->nPlanes - 1, i, 0, 1), bDrawn);
        ASSERT_TRUE(pps);
    }
    for (u32 nRules = 1 + Random(MIX_RULES_MAX); nRules > 0; nRules--)
        if (MixRule *pmr = AddMixRule(lppsi)) {
            pmr->MixOp = static_cast<i32>(Chance(2) ? 1 : Random(17));
            for (i32 *pn : {&pmr->SrcIdx1, &pmr->SrcIdx2, &pmr->AplhaIdx})
                *pn = static_cast<i32>(Random(32));
            if (pmr->MixOp == MIXOP_BLEND)
                Randomize(&pmr->BlendWeight, true);
        }
    for (u32 nModules = Random(4); nModules > 0; nModules--)
        Randomize(AddModule(lppsi, Chance(2) ? u"Recorder.dll" : u"Idle.dll", -1, MODULEINDEX_NUMINDICIES, 0, 1),
                  bDrawn);
}

// What the format tells of a control, field by field.
void CompareControls(const ControlRecord &a, const ControlRecord &b)
{
    const ControlBase &Base = a.Base;
    ASSERT_EQ(Base.dwSource, b.Base.dwSource);
    const bool bFixed = Base.dwSource == FLUIDSOURCE_FIXED;
    const bool bAnimated = (Base.dwSource & FLUIDSOURCE_ANIMATED) != 0;
    EXPECT_TRUE(Base.dwSource != FLUIDSOURCE_SOUND || Base.nSamples == b.Base.nSamples);
    EXPECT_TRUE(Base.dwSource != FLUIDSOURCE_PERIODIC || Base.nNoisePeriod == b.Base.nNoisePeriod);
    if (Base.dwSource == FLUIDSOURCE_WAVE) {
        EXPECT_EQ(Base.nWavePeriod, b.Base.nWavePeriod);
        EXPECT_EQ(Base.dwWaveType, b.Base.dwWaveType);
        EXPECT_EQ(Base.bRandomPhase, b.Base.bRandomPhase);
        EXPECT_TRUE(Base.bRandomPhase || Base.fWavePhase == b.Base.fWavePhase);
    }
    switch (Base.dwType) {
    case CONTROLTYPE_INTEGER:
        EXPECT_TRUE(!bFixed || a.Integer.nValue == b.Integer.nValue);
        EXPECT_TRUE(bFixed || (a.Integer.nMin == b.Integer.nMin && a.Integer.nMax == b.Integer.nMax));
        EXPECT_TRUE(bFixed || (a.Integer.bOnlyEven == b.Integer.bOnlyEven && a.Integer.bOnlyOdd == b.Integer.bOnlyOdd &&
                               a.Integer.bMinMax == b.Integer.bMinMax));
        break;
    case CONTROLTYPE_FLOAT:
        EXPECT_TRUE(!bFixed || std::abs(a.Float.fValue - b.Float.fValue) <= 0.000001f);
        EXPECT_TRUE(bFixed || std::abs(a.Float.fMin - b.Float.fMin) <= 0.00001f);
        EXPECT_TRUE(bFixed || std::abs(a.Float.fMax - b.Float.fMax) <= 0.00001f);
        EXPECT_TRUE(bFixed || a.Float.bMinMax == b.Float.bMinMax);
        break;
    case CONTROLTYPE_ITEMSELECT:
        EXPECT_TRUE(!bFixed || a.ItemSelect.nCurrentItemValue == b.ItemSelect.nCurrentItemValue);
        break;
    case CONTROLTYPE_BOOLEAN:
        EXPECT_TRUE(!bFixed || a.Boolean.bState == b.Boolean.bState);
        EXPECT_TRUE(!bAnimated || std::abs(a.Boolean.fThreshold - b.Boolean.fThreshold) <= 0.000001f);
        break;
    case CONTROLTYPE_FILESELECT:
        ASSERT_EQ(a.FileSelect.pszFileList != nullptr, b.FileSelect.pszFileList != nullptr);
        EXPECT_EQ(std::u16string(a.FileSelect.pszFileList ? a.FileSelect.pszFileList : u""),
                  b.FileSelect.pszFileList ? b.FileSelect.pszFileList : u"");
        EXPECT_TRUE(!a.FileSelect.pszFileList || a.FileSelect.bShuffle == b.FileSelect.bShuffle);
        break;
    case CONTROLTYPE_TILE:
        if (ControlIsStored(&a)) {
            EXPECT_EQ(a.Tile.nXTiles, b.Tile.nXTiles);
            EXPECT_EQ(a.Tile.nYTiles, b.Tile.nYTiles);
            EXPECT_TRUE(
                std::equal(a.Tile.pTileMask, a.Tile.pTileMask + a.Tile.nXTiles * a.Tile.nYTiles, b.Tile.pTileMask));
        }
        break;
    }
}

void CompareSlots(const ModuleSlot *pmsA, const ModuleSlot *pmsB)
{
    EXPECT_EQ(pmsA->pszDll, pmsB->pszDll);
    EXPECT_EQ(pmsA->nDuration, pmsB->nDuration);
    EXPECT_EQ(pmsA->nCallsPerFrame, pmsB->nCallsPerFrame);
    EXPECT_EQ(pmsA->bClearOnReset, pmsB->bClearOnReset);
    EXPECT_EQ(pmsB->bActive, 1);
    EXPECT_EQ(pmsB->qwNextReset, 0u);
    ASSERT_EQ(pmsA->nControls, pmsB->nControls);
    for (i32 i = 0; i < pmsA->nControls; i++)
        CompareControls(*pmsA->apControl[i], *pmsB->apControl[i]);
}

void ComparePresets(const PresetState &a, const PresetState &b)
{
    ASSERT_EQ(a.nPlanes, b.nPlanes);
    ASSERT_EQ(a.nMixRules, b.nMixRules);
    ASSERT_EQ(a.nPostProc, b.nPostProc);
    for (i32 i = 0; i < a.nPlanes; i++) {
        EXPECT_EQ(a.psPlane[i]->Info.bIndexed, b.psPlane[i]->Info.bIndexed);
        for (u32 iKind = 0; iKind < MODULEINDEX_MIXER; iKind++) {
            ASSERT_EQ(a.psPlane[i]->anModules[iKind], b.psPlane[i]->anModules[iKind]);
            for (i32 j = 0; j < a.psPlane[i]->anModules[iKind]; j++)
                CompareSlots(a.psPlane[i]->apModule[iKind][j], b.psPlane[i]->apModule[iKind][j]);
        }
    }
    for (u32 i = 0; i < a.nMixRules; i++) {
        const MixRule &ruleA = a.asMixRule[i], &ruleB = b.asMixRule[i];
        EXPECT_EQ(std::tie(ruleA.MixOp, ruleA.SrcIdx1, ruleA.SrcIdx2, ruleA.AplhaIdx),
                  std::tie(ruleB.MixOp, ruleB.SrcIdx1, ruleB.SrcIdx2, ruleB.AplhaIdx));
        CompareControls(ruleA.BlendWeight, ruleB.BlendWeight);
    }
    for (i32 i = 0; i < a.nPostProc; i++)
        CompareSlots(a.apPostProc[i], b.apPostProc[i]);
}

} // namespace

TEST_F(PresetFile, ARandomPresetComesBackFieldByFieldAndSavesToTheSameBytes)
{
    for (int i = 0; i < 24; i++) {
        const bool bDrawn = i % 2;
        MakeRandomPreset(bDrawn);
        const std::string sText = TextOf(lppsi);
        PresetState *lppsiLoaded = Load(sText);
        ASSERT_TRUE(lppsiLoaded);
        ComparePresets(*lppsi, *lppsiLoaded);
        EXPECT_EQ(report.asLine, std::vector<std::string>());
        EXPECT_TRUE(bDrawn || TextOf(lppsiLoaded) == sText) << TextOf(lppsiLoaded);
        DestroyPresetState(lppsiLoaded);
        ASSERT_FALSE(HasFailure()) << i << "\n" << sText;
    }
}

TEST_F(PresetFile, AChangeThatTheFormatCannotTellIsNotWritten)
{
    BuildWith(3, {CONTROLTYPE_FLOAT, CONTROLTYPE_FLOAT, CONTROLTYPE_INTEGER});
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    ControlInteger &Int = pms->apControl[2]->Integer;
    Int.nDefaultValue = Int.nAbsMax;
    Int.nValue = Int.nAbsMax + 5;         // comes down to the default
    pms->apControl[0]->Base.nSamples = 5; // of a source that is not in use
    pms->apControl[1]->Base.dwSource = FLUIDSOURCE_RANDOM;
    pms->apControl[1]->Float.fMin = 0.000009f; // nearer to its default than the format tells apart
    const std::string sText = TextOf(lppsi);
    EXPECT_NE(sText.find("<NumControls>1</NumControls>"), std::string::npos);
    EXPECT_EQ(sText.find("<Min>"), std::string::npos);
    AddMixRule(lppsi);
    const std::string sWithRule = TextOf(lppsi);
    Reload(sText);
    EXPECT_EQ(TextOf(lppsi), sWithRule);
}

TEST_F(PresetFile, AFileHasTheOutlineOfTheFormat)
{
    BuildWith(6);
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_COLORINTERPOLATOR);
    pms->nCallsPerFrame = -5;
    pms->nDuration = DURATION_NEVER;
    pms->apControl[0]->Base.dwSource = FLUIDSOURCE_SOUND;
    pms->apControl[0]->Base.nSamples = 4;
    pms->apControl[2]->Float.fValue = 0.25f;
    AddMixRule(lppsi)->MixOp = MIXOP_BLEND;
    EXPECT_EQ(TextOf(lppsi), HEADER + std::string(R"(<Preset>
	<NumPlanes>1</NumPlanes>
	<Plane0>
		<Indexed>1</Indexed>
		<NumCInterpolator>1</NumCInterpolator>
		<CInterpolator0>
			<ModuleDLL>Recorder.dll</ModuleDLL>
			<CallsPerFrame>-5</CallsPerFrame>
			<Duration>181</Duration>
			<NumControls>2</NumControls>
			<Control0>
				<Name>Recorder.Control 000</Name>
				<Source>8</Source>
				<Samples>4</Samples>
			</Control0>
			<Control1>
				<Name>Recorder.Control 002</Name>
				<Source>1</Source>
				<Val>0.250000</Val>
			</Control1>
		</CInterpolator0>
	</Plane0>
	<NumMixerOps>1</NumMixerOps>
	<MixOp0>
		<MixOp>1</MixOp>
		<SrcIdx1>0</SrcIdx1>
		<SrcIdx2>0</SrcIdx2>
		<AplhaIdx>0</AplhaIdx>
		<BlendWeight>
			<Name>Mixer - Blend Weighting</Name>
			<Source>1</Source>
		</BlendWeight>
	</MixOp0>
</Preset>)"));
}

TEST_F(PresetFile, ControlsAreFoundByNameAcrossGapsCaseAndOrder)
{
    BuildWith(3, {CONTROLTYPE_INTEGER});
    LoadModuleBody("<NumControls>2</NumControls>"
                   "<control7><NAME>recorder.CONTROL 002</NAME><source>1</source><val>7</val></control7>"
                   "<Control3><Name>Recorder.Gone</Name><Source>1</Source><Val>9</Val></Control3>"
                   "<Control139><Name>Recorder.Control 000</Name><Source>1</Source><Val>1000</Val></Control139>",
                   "RECORDER.DLL");
    ASSERT_TRUE(Painter());
    EXPECT_EQ(Painter()->apControl[0]->Integer.nValue, 100);
    EXPECT_EQ(Painter()->apControl[1]->Integer.nValue, 50);
    EXPECT_EQ(Painter()->apControl[2]->Integer.nValue, 7);
    ASSERT_EQ(report.asLine.size(), 1u);
    EXPECT_NE(report.asLine[0].find("Recorder.Gone"), std::string::npos);
}

TEST_F(PresetFile, WhatCannotBeUsedIsPassedOverAndReported)
{
    BuildWith(1);
    Reload(HEADER + std::string("<Preset><NumPlanes>9</NumPlanes><Plane0><Indexed>0</Indexed>"
                                "<NumDPainter>3</NumDPainter>"
                                "<DPainter0><ModuleDLL>Nowhere.dll</ModuleDLL></DPainter0><DPainter1></DPainter1>"
                                "<DPainter2><ModuleDLL>Idle.dll</ModuleDLL></DPainter2></Plane0>"
                                "<Plane1><Indexed>1</Indexed></Plane1><Plane2></Plane2><Plane3></Plane3>"
                                "<Plane4><Indexed>1</Indexed></Plane4><NumMixerOps>40</NumMixerOps>"
                                "<MixOp0><MixOp>-7</MixOp><SrcIdx1>2000000000</SrcIdx1></MixOp0>"
                                "<PostProc><NumPEffect>2</NumPEffect>"
                                "<PEffect0><ModuleDLL>RecorderColor.dll</ModuleDLL></PEffect0>"
                                "<PEffect1><ModuleDLL>Recorder.dll</ModuleDLL></PEffect1></PostProc></Preset>"));
    EXPECT_EQ(lppsi->nPlanes, PLANES_MAX);
    EXPECT_EQ(lppsi->psPlane[0]->Info.bIndexed, 0u);
    EXPECT_EQ(lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER], 1);
    EXPECT_EQ(lppsi->nMixRules, MIX_SOURCES_MAX - PLANES_MAX);
    EXPECT_EQ(lppsi->asMixRule[0].SrcIdx1, 2000000000);
    EXPECT_EQ(lppsi->nPostProc, 1); // the palette of a plane is what a colour module works on
    EXPECT_EQ(report.asLine.size(), 8u);
    GlobalSettings.ThreadedPlanes = 0;
    EXPECT_TRUE(Step());
}

TEST_F(PresetFile, HostileValuesComeInsideTheirLimits)
{
    BuildWith(6,
              {CONTROLTYPE_FLOAT, CONTROLTYPE_ITEMSELECT, CONTROLTYPE_TILE, CONTROLTYPE_BOOLEAN, CONTROLTYPE_INTEGER});
    const auto control = [](int i, const std::string &sBody) {
        const std::string n = std::to_string(i);
        return "<Control" + n + "><Name>Recorder.Control 00" + n + "</Name>" + sBody + "</Control" + n + ">";
    };
    LoadModuleBody(
        "<CallsPerFrame>2147483647</CallsPerFrame><Duration>0</Duration><NumControls>2147483647</NumControls>" +
        control(0, "<Source>4</Source><WaveType>9</WaveType><WavePeriod>0</WavePeriod><RandomPhase>0"
                   "</RandomPhase><WavePhase>-1e30</WavePhase><Min>nan</Min><Max>1e39</Max>") +
        control(1, "<Source>1</Source><Index>4294967295</Index>") +
        control(2, "<Source>1</Source><XTiles>-1</XTiles><YTiles>1000000</YTiles><TileMask0>0x" +
                       std::string(100, '0') + "</TileMask0><TileMask1>0</TileMask1>") +
        control(3, "<Source>16</Source><NoisePeriod>-5</NoisePeriod><Threshold>7</Threshold>") +
        control(4, "<Source>3</Source><Samples>99</Samples><Val>-2147483648</Val>") +
        control(5, "<Source>8</Source><Samples>181</Samples><WavePeriod>181</WavePeriod>"));
    const ModuleSlot *pms = Painter();
    EXPECT_EQ(pms->nCallsPerFrame, 32);
    EXPECT_EQ(pms->nDuration, 1u);
    const ControlRecord &Float = *pms->apControl[0];
    EXPECT_EQ(Float.Base.dwWaveType, u32{WAVETYPE_SINE});
    EXPECT_EQ(Float.Base.nWavePeriod, 400u);
    EXPECT_EQ(Float.Base.fWavePhase, 0.0f);
    EXPECT_EQ(Float.Float.fMin, 0.0f);
    EXPECT_EQ(Float.Float.fMax, 1.0f);
    EXPECT_EQ(pms->apControl[1]->ItemSelect.nCurrentItemValue, 1u);
    EXPECT_EQ(pms->apControl[2]->Tile.nXTiles, 1u);
    EXPECT_EQ(pms->apControl[2]->Tile.nYTiles, 32u);
    EXPECT_EQ(pms->apControl[2]->Tile.pTileMask[0], 0u);
    EXPECT_EQ(pms->apControl[2]->Tile.pTileMask[1], 0u);
    EXPECT_EQ(pms->apControl[2]->Tile.pTileMask[2], 1u);
    EXPECT_EQ(pms->apControl[3]->Base.nNoisePeriod, 0u);
    EXPECT_EQ(pms->apControl[3]->Boolean.fThreshold, 1.0f);
    EXPECT_EQ(pms->apControl[4]->Base.dwSource, u32{FLUIDSOURCE_FIXED});
    EXPECT_EQ(pms->apControl[4]->Integer.nValue, 0);
    EXPECT_EQ(pms->apControl[5]->Base.nSamples, SOUND_HISTORY);
    EXPECT_EQ(pms->apControl[5]->Base.nWavePeriod, DURATION_NEVER);
    EXPECT_TRUE(Step());
}

TEST_F(PresetFile, ADocumentOfNestedRepeatsIsReadInTheTimeOfItsSize)
{
    BuildWith(CONTROLS_MAX, {CONTROLTYPE_FILESELECT});
    std::string sOpen = HEADER + std::string("<Preset><NumPlanes>4</NumPlanes>");
    std::string sClose = "</Preset>";
    const auto wrap = [&](const std::string &sTag) {
        sOpen += "<" + sTag + ">";
        sClose = "</" + sTag + ">" + sClose;
    };
    for (u32 i = 0; i < PLANES_MAX; i++)
        wrap("Plane" + std::to_string(i));
    for (u32 iKind = 0; iKind < MODULEINDEX_MIXER; iKind++) {
        sOpen += "<Num" + ToUtf8(ModuleKindWord(iKind)) + ">8</Num" + ToUtf8(ModuleKindWord(iKind)) + ">";
        for (u32 i = 0; i < 8; i++)
            wrap(ToUtf8(NumberedTag(ModuleKindWord(iKind), i)));
    }
    sOpen += "<ModuleDLL>Recorder.dll</ModuleDLL><NumControls>140</NumControls>";
    for (u32 i = 0; i < CONTROLS_MAX; i++)
        wrap("Control" + std::to_string(i));
    sOpen +=
        "<Name>Recorder.Control 000</Name><Source>1</Source><FileList>" + std::string(1000000, 'f') + "</FileList>";
    Reload(sOpen + sClose);
    EXPECT_EQ(lppsi->psPlane[3]->anModules[MODULEINDEX_OVERLAYEFFECT], 8);
}

TEST_F(PresetFile, APresetWithoutARuleGetsOneAndAFileThatIsNoneGivesNull)
{
    Reload(HEADER + std::string("<Preset></Preset>"));
    EXPECT_EQ(lppsi->nPlanes, 0);
    EXPECT_EQ(lppsi->nMixRules, 1u);
    EXPECT_EQ(lppsi->asMixRule[0].MixOp, MIXOP_TILE_PLANES);
    EXPECT_TRUE(lppsi->piPostProc.hdc);
    for (const char *pszText : {"", "GIF89a", "<?xml?>\n<Fragment><NumPlanes>1</NumPlanes></Fragment>"}) {
        EXPECT_EQ(Load(pszText), nullptr);
        EXPECT_NE(report.sFailure, "");
    }
}

TEST_F(PresetFile, ACutOffFileSaysThatNothingIsInIt)
{
    BuildWith(6);
    MakeRandomPreset(true);
    const std::string sWhole = TextOf(lppsi);
    Reload(sWhole);
    EXPECT_TRUE(report.asLine.empty());
    for (size_t cb = sWhole.find("<Preset>") + 8; cb < sWhole.size() - 3; cb += 97) {
        Reload(sWhole.substr(0, cb));
        ASSERT_EQ(report.asLine.size(), 1u);
        EXPECT_NE(report.asLine[0].find("cut off"), std::string::npos);
    }
}

TEST_F(PresetFile, TheOuterTagMayStandInTheLineThatIsSkipped)
{
    Reload("<Preset>\n<NumPlanes>1</NumPlanes><Plane0><Indexed>1</Indexed></Plane0></Preset>");
    EXPECT_EQ(lppsi->nPlanes, 1);
}

TEST_F(PresetFile, APresetIsFoundByPathAndByNameInThePresetFolder)
{
    const TempFolder folder;
    InitFolders({u"/nowhere/vorticade", folder.Wide(), FromUtf8(TEST_MODULE_FOLDER)});
    std::filesystem::create_directory(folder / "Presets");
    MakePreset(2);
    AddMixRule(lppsi);
    std::string sWhy;
    EXPECT_TRUE(SavePresetFile(lppsi, folder.Wide("Presets/Mine.VD"), &sWhy)) << sWhy;
    EXPECT_FALSE(SavePresetFile(lppsi, folder.Wide("Missing/Mine.VD"), &sWhy));
    EXPECT_NE(sWhy, "");
    EXPECT_FALSE(SavePresetFile(nullptr, folder.Wide("Presets/Mine.VD")));
    for (const std::u16string &name :
         {folder.Wide("Presets/Mine.VD"), std::u16string(u"Mine.VD"), std::u16string(u"mine.vd")}) {
        PresetState *lppsiLoaded = LoadPresetFile(name);
        ASSERT_TRUE(lppsiLoaded) << ToUtf8(name);
        EXPECT_EQ(lppsiLoaded->nPlanes, 2);
        DestroyPresetState(lppsiLoaded);
    }
    EXPECT_EQ(LoadPresetFile(u"Gone.VD"), nullptr);
    EXPECT_EQ(LoadPresetFile(u""), nullptr);
}

TEST_F(PresetFile, EveryModuleIsUpAfterLoadingAndResetsRightAfterItsFirstFrame)
{
    BuildWith(0);
    LoadModuleBody("");
    ModuleSlot *pms = Painter();
    ASSERT_TRUE(pms);
    EXPECT_EQ(CallsOf(TakeLog(), pms->pvContext), "BPI");
    Step();
    EXPECT_TRUE(pms->bResetPending);
    Step();
    EXPECT_EQ(CallsOf(TakeLog(), pms->pvContext), "DID");
}

TEST_F(PresetFile, TheWeightsOfTheRulesStartLikeAnyControl)
{
    const auto rule = [](i32 n, const std::string &sBody) {
        return "<MixOp" + std::to_string(n) + "><MixOp>1</MixOp><BlendWeight><Name>Mixer - Blend Weighting</Name>" +
               sBody + "</BlendWeight></MixOp" + std::to_string(n) + ">";
    };
    Reload(HEADER + std::string("<Preset><NumMixerOps>3</NumMixerOps>") +
           rule(0, "<Source>2</Source><Min>7</Min><Max>7</Max>") + rule(1, "<Source>4</Source>") +
           rule(2, "<Source>4</Source><RandomPhase>0</RandomPhase><WavePhase>0.25</WavePhase>") + "</Preset>");
    ASSERT_EQ(3u, lppsi->nMixRules);
    EXPECT_EQ(7, lppsi->asMixRule[0].BlendWeight.Integer.nValue) << "drawn once, when the preset starts";
    EXPECT_GT(lppsi->asMixRule[1].BlendWeight.Base.fWavePhase, 0.0f);
    EXPECT_EQ(0.25f, lppsi->asMixRule[2].BlendWeight.Base.fWavePhase);
}

TEST_F(PresetFile, PartsOfADocumentCanBeReadOnTheirOwn)
{
    BuildWith(0);
    MakePreset(3);
    XmlContext *pxc =
        XmlOpenBytes(HEADER + std::string("<Fragment><Plane2><Indexed>0</Indexed><NumOFull>1</NumOFull><OFull0>"
                                          "<ModuleDLL>Recorder.dll</ModuleDLL><Duration>5</Duration></OFull0>"
                                          "</Plane2></Fragment>"));
    ASSERT_TRUE(XmlEnterTag(pxc, u"Fragment"));
    const PlaneState *pps = ReadPlane(pxc, lppsi, FIRST_STORED_PLANE);
    ASSERT_TRUE(pps);
    EXPECT_EQ(lppsi->psPlane[3], pps);
    EXPECT_EQ(pps->anModules[MODULEINDEX_OVERLAYFULL], 1);
    EXPECT_EQ(ReadPlane(pxc, lppsi, FIRST_STORED_PLANE), nullptr); // there is no room
    const ModuleSlot *pms = ReadEnteredModule(pxc, lppsi, 0, 0, MODULEINDEX_DRAWFULL);
    ASSERT_TRUE(pms);
    EXPECT_EQ(pms->nDuration, 5u);
    EXPECT_EQ(ReadModule(pxc, lppsi, 0, 0, MODULEINDEX_DRAWFULL), nullptr);
    EXPECT_EQ(pxc->nDepth, 1u);
    XmlClose(pxc);
}
