// PresetEdit_test.cpp -- tests the door of edits (editing/)
#include "editing/PresetEdit.h"

#include "controls/ControlManager.h"
#include "controls/FileList.h"
#include "engine/PresetDocument.h"
#include "engine/PresetNews.h"
#include "tests/EngineFixture.h"
#include "tests/PresetSnapshot.h"

#include <cmath>
#include <random>
#include <thread>

namespace {

const u32 adwType[] = {CONTROLTYPE_GROUP,   CONTROLTYPE_INTEGER,    CONTROLTYPE_ITEMSELECT, CONTROLTYPE_FLOAT,
                       CONTROLTYPE_BOOLEAN, CONTROLTYPE_FILESELECT, CONTROLTYPE_TILE,       CONTROLTYPE_INTEGER};
enum { GROUP, INTEGER, ITEM, FLOAT, BOOLEAN, FILES, TILES, STIFF };

PresetState *MakeEmptyPreset(const void *)
{
    return CreatePresetState(0);
}

} // namespace

class PresetEdits : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        RecorderBehaviour rb = {};
        rb.nControls = std::size(adwType);
        std::copy(std::begin(adwType), std::end(adwType), rb.adwType);
        for (const char16_t *pszDll : {u"Recorder.dll", u"RecorderColor.dll"})
            Export<RecorderSetBehaviourFn>(pszDll, u"RecorderSetBehaviour")(nullptr, &rb);
        lppsi = SwitchPreset(MakeEmptyPreset, nullptr);
        PresetListeners.Add(Hear, this);
        bPresetChanged = 0;
    }

    void TearDown() override
    {
        PresetListeners.Remove(Hear, this);
        SwitchPreset(nullptr, nullptr);
        lppsi = nullptr;
        EngineTest::TearDown();
        bPresetChanged = 0;
    }

    static void Hear(const PresetNews &news, void *pvContext)
    {
        static_cast<PresetEdits *>(pvContext)->heard.push_back(news);
    }
    bool Heard(NewsKind eKind) const
    {
        return std::any_of(heard.begin(), heard.end(), [=](const PresetNews &news) { return news.eKind == eKind; });
    }

    PresetNews LastOf(NewsKind eKind) const
    {
        PresetNews last = {};
        for (const PresetNews &news : heard)
            if (news.eKind == eKind)
                last = news;
        return last;
    }

    // Two planes with modules, a post-processing module and two rules.
    void FillPreset()
    {
        for (u32 bIndexed : {1u, 0u})
            AddPlane(lppsi, bIndexed, 0);
        pmsPainter = Add(MODULEINDEX_DRAWPAINTER, 0);
        Add(MODULEINDEX_DRAWPAINTER, 0, u"Idle.dll");
        Add(MODULEINDEX_COLORINTERPOLATOR, 0, u"RecorderColor.dll");
        Add(MODULEINDEX_OVERLAYEFFECT, 1);
        Add(MODULEINDEX_NUMINDICIES, -1);
        AddMixRule(lppsi)->MixOp = MIXOP_BLEND;
        AddMixRule(lppsi)->MixOp = MIXOP_NEGATIVE;
        pmsPainter->apControl[STIFF]->Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM;
        bPresetChanged = 0;
        heard.clear();
    }

    EditResult Run(const PresetEdit &edit)
    {
        return RunPresetEdit(edit, &inverse);
    }
    EditResult Run(EditKind eKind, const EditPlace &place, i32 nArgument = 0)
    {
        return Run(MakeEdit(eKind, place, nArgument));
    }
    EditResult Set(const FieldWrite &write)
    {
        return Run(MakeFieldEdit(write));
    }
    void UndoGives(const PresetSnapshot &before)
    {
        EXPECT_EQ(EditResult::Done, RunPresetEdit(inverse));
        EXPECT_EQ("", PresetSnapshot::Difference(before, PresetSnapshot(lppsi)));
    }

    static EditPlace Painter()
    {
        return ModulePlace(ListPlace(0, MODULEINDEX_DRAWPAINTER), 0);
    }
    static EditPlace Control(i32 iControl)
    {
        return ControlPlace(Painter(), iControl);
    }
    ControlRecord &Ctl(i32 iControl)
    {
        return *pmsPainter->apControl[iControl];
    }

    std::vector<PresetNews> heard;
    PresetEdit inverse = {};
    ModuleSlot *pmsPainter = nullptr;

    // Of the first plane, in a module that waits until it is let go.
    void LetAThreadHang()
    {
        FillPreset();
        GlobalSettings.ThreadedPlanes = 1;
        GlobalSettings.dwPlaneWaitMs = 50;
        RecorderBehaviour rb = {};
        rb.bHold = 1;
        Behave(pmsPainter, rb);
        EXPECT_EQ(0u, Step());
        ASSERT_TRUE(PlaneIsBusy(lppsi->psPlane[0]));
    }
};

// Random edits, most of which fit.
class EditMaker {
  public:
    explicit EditMaker(const PresetState *lppsiNow) : lppsi(lppsiNow)
    {
    }

    PresetEdit Next()
    {
        switch (Below(36)) {
        case 0:
            return MakeEdit(EditKind::AddPlane, PresetPlace(), Flag());
        case 1:
            return Below(3) ? Move(EditKind::MovePlane, AnyPlane()) : MakeEdit(EditKind::RemovePlane, AnyPlane());
        case 2:
        case 3:
        case 4:
            return MakeModuleEdit(AnyList(), pszDlls[Below(3)]);
        case 5:
            return MakeEdit(EditKind::RemoveModule, AnyOf(PlaceKind::Module));
        case 6:
            return Move(EditKind::MoveModule, AnyOf(PlaceKind::Module));
        case 7:
            return MakeEdit(Flag() ? EditKind::PauseModule : EditKind::RestoreItem, AnyOf(PlaceKind::Module));
        case 8:
            return MakeEdit(Flag() ? EditKind::PausePlane : EditKind::RestoreItem, AnyPlane());
        case 9:
            return MakeEdit(EditKind::RestoreItem, AnyOf(PlaceKind::Control));
        case 10:
            return MakeEdit(EditKind::RestoreBranch, AnyBranch());
        case 11:
        case 15:
        case 16:
            return MakeRuleEdit(Number(-1, 5), Number(-1, 5), Number(-1, 5), Number(0, 16));
        case 12:
        case 13:
        case 14:
            return Below(2) ? Move(EditKind::MoveRule, AnyRule()) : MakeEdit(EditKind::RemoveRule, AnyRule());
        default:
            return AnyFields();
        }
    }

    u32 Below(u32 n)
    {
        return static_cast<u32>(random() % n);
    }

  private:
    static constexpr const char16_t *pszDlls[] = {u"Recorder.dll", u"RecorderColor.dll", u"Idle.dll"};

    i32 Flag()
    {
        return static_cast<i32>(Below(2));
    }
    i32 Number(i32 nLow, i32 nHigh)
    {
        return nLow + static_cast<i32>(Below(static_cast<u32>(nHigh - nLow + 1)));
    }
    EditPlace AnyPlane()
    {
        return PlanePlace(Number(0, std::max(lppsi->nPlanes - 1, 0)));
    }
    EditPlace AnyList()
    {
        return ListPlace(Number(-1, std::max(lppsi->nPlanes - 1, 0)), Below(MODULEINDEX_MIXER));
    }
    EditPlace AnyRule()
    {
        return RulePlace(Below(std::max(lppsi->nMixRules, 1u)));
    }
    EditPlace AnyOf(PlaceKind eKind)
    {
        std::vector<EditPlace> places = PlacesOfBranch(lppsi, PresetPlace());
        std::erase_if(places, [=](const EditPlace &place) { return place.eKind != eKind; });
        return places.empty() ? EditPlace{} : places[Below(static_cast<u32>(places.size()))];
    }
    EditPlace AnyBranch()
    {
        switch (Below(12)) {
        case 0:
            return PresetPlace();
        case 1:
            return PlanesPlace();
        case 2:
            return FamilyPlace(AnyPlane().iPlane, Below(3) * 3);
        case 3:
            return AnyPlane();
        case 4:
        case 5:
            return GroupPlace(AnyOf(PlaceKind::Control), 1 + Below(2));
        case 6:
            return AnyList();
        default:
            return AnyOf(PlaceKind::Module);
        }
    }
    PresetEdit Move(EditKind eKind, const EditPlace &place)
    {
        return MakeEdit(eKind, place, Flag() ? 1 : -1);
    }

    // One to three values for one place, as panels write them.
    PresetEdit AnyFields()
    {
        const u32 nWhere = Below(16);
        const EditPlace place = nWhere == 0   ? AnyPlane()
                                : nWhere == 1 ? AnyRule()
                                : nWhere == 2 ? WeightPlace(AnyRule().iRule)
                                : nWhere < 5  ? AnyOf(PlaceKind::Module)
                                              : AnyOf(PlaceKind::Control);
        std::vector<EditField> fields;
        FieldWrite now;
        for (u32 i = 0; i < static_cast<u32>(EditField::Count); i++)
            if (ReadField(lppsi, place, static_cast<EditField>(i), 0, &now))
                fields.push_back(static_cast<EditField>(i));
        PresetEdit edit = MakeEdit(EditKind::SetFields, {});
        for (u32 n = Below(3) + 1; n > 0 && !fields.empty(); n--)
            edit.writes.push_back(AnyWrite(place, fields[Below(static_cast<u32>(fields.size()))]));
        return edit;
    }

    FieldWrite AnyWrite(const EditPlace &place, EditField eField)
    {
        static const i32 anValue[] = {0, 1, 0, 1, 2, 4, 8, 16, 17, 99, 181, 500, 9999, -1, -7};
        FieldWrite write = WriteNumber(place, eField, anValue[Below(std::size(anValue))]);
        write.fValue = static_cast<f32>(Below(300)) / 200.0f - 0.25f;
        if (eField == EditField::Tile)
            write.iElement = Below(1100);
        if (eField == EditField::FileList)
            for (u32 n = Below(4); n > 0; n--)
                write.sText += Flag() ? u"\r\nname.png\r\n" : u"other.jpg\r\n";
        return write;
    }

    const PresetState *lppsi;
    std::mt19937 random{7};
};

TEST_F(PresetEdits, AllInversesInReverseOrderBringEveryFieldBack)
{
    FillPreset();
    EditMaker maker(lppsi);
    const PresetSnapshot first(lppsi);
    std::vector<PresetEdit> inverses;
    std::vector<std::pair<size_t, PresetSnapshot>> stations;
    u32 anRun[3] = {}, anDone[static_cast<u32>(EditKind::Count)] = {};
    const auto UndoOne = [&] {
        if (!stations.empty() && stations.back().first == inverses.size()) {
            ASSERT_EQ("", PresetSnapshot::Difference(stations.back().second, PresetSnapshot(lppsi)));
            stations.pop_back();
        }
        ASSERT_EQ(EditResult::Done, RunPresetEdit(inverses.back(), &inverse)) << ToUtf8(EditName(inverses.back()));
        if (maker.Below(4) == 0) { // there and back again
            ASSERT_EQ(EditResult::Done, RunPresetEdit(inverse, &inverse));
            ASSERT_EQ(EditResult::Done, RunPresetEdit(inverse));
        }
        inverses.pop_back();
    };
    for (u32 i = 0; i < 6000; i++) {
        SetFixedTick(TickCount() + maker.Below(3));
        if (maker.Below(8) == 0 && !inverses.empty()) {
            UndoOne();
            if (HasFatalFailure())
                return;
            continue;
        }
        const PresetEdit edit = maker.Next();
        const EditResult eResult = Run(edit);
        anRun[static_cast<u32>(eResult)]++;
        ASSERT_EQ(eResult == EditResult::Done, inverse.eKind != EditKind::None);
        if (eResult != EditResult::Done)
            continue;
        anDone[static_cast<u32>(edit.eKind)]++;
        inverses.push_back(inverse);
        if (maker.Below(100) == 0)
            stations.emplace_back(inverses.size(), PresetSnapshot(lppsi));
    }
    for (u32 n : anRun)
        EXPECT_GT(n, 50u) << "all three answers";
    for (u32 i = static_cast<u32>(EditKind::SetFields); i < static_cast<u32>(EditKind::PutBack); i++)
        EXPECT_TRUE(anDone[i] > 10 || i == static_cast<u32>(EditKind::ClearPlane)) << "edits of kind " << i;
    while (!inverses.empty() && !HasFatalFailure())
        UndoOne();
    EXPECT_EQ("", PresetSnapshot::Difference(first, PresetSnapshot(lppsi)));
}

TEST_F(PresetEdits, WhatDoesNotFitIsRefusedAndChangesNothing)
{
    FillPreset();
    const PresetSnapshot before(lppsi);
    const f32 fNoNumber = std::nanf("");
    const EditPlace painters = ListPlace(0, MODULEINDEX_DRAWPAINTER);
    const EditPlace aPlace[] = {PlanePlace(2),
                                PlanePlace(-1),
                                PlanePlace(INT32_MAX),
                                ModulePlace(painters, 2),
                                ModulePlace(painters, -1),
                                ModulePlace(ListPlace(0, MODULEINDEX_MIXER), 0),
                                ModulePlace(ListPlace(0, ALL_ONES), 0),
                                ModulePlace(ListPlace(POST_PROCESSING, 0), 1),
                                Control(8),
                                Control(-1),
                                RulePlace(2),
                                WeightPlace(ALL_ONES),
                                {static_cast<PlaceKind>(77), 0, 0, 0, 0, 0, 0},
                                {}};
    for (const EditPlace &place : aPlace)
        for (u32 i = 0; i <= static_cast<u32>(EditKind::Count); i++)
            EXPECT_EQ(EditResult::Refused, Run(static_cast<EditKind>(i), place, 1)) << "kind " << i;
    const FieldWrite aWrite[] = {
        WriteNumber(PlanePlace(7), EditField::Paused, 1),
        WriteNumber(PlanePlace(0), EditField::Paused, 2),
        WriteNumber(PlanePlace(0), EditField::Active, 1),
        WriteNumber(Painter(), EditField::Duration, 0),
        WriteNumber(Painter(), EditField::Duration, 182),
        WriteNumber(Painter(), EditField::CallsPerFrame, -33),
        WriteNumber(Painter(), EditField::IntegerValue, 1),
        WriteNumber(Painter(), EditField::Count, 1),
        WriteNumber(Painter(), static_cast<EditField>(ALL_ONES), 1),
        WriteNumber(Control(GROUP), EditField::Source, 4),
        WriteNumber(Control(INTEGER), EditField::Source, 3),
        WriteNumber(Control(INTEGER), EditField::Source, 0),
        WriteNumber(Control(STIFF), EditField::Source, FLUIDSOURCE_WAVE),
        WriteNumber(Control(INTEGER), EditField::WaveType, 4),
        WriteNumber(Control(INTEGER), EditField::WavePeriod, 399),
        WriteNumber(Control(INTEGER), EditField::Samples, 45),
        WriteNumber(Control(INTEGER), EditField::NoisePeriod, 16001),
        WriteNumber(Control(INTEGER), EditField::OnlyEven, 2),
        WriteNumber(Control(INTEGER), EditField::IntegerValue, 1, 1),
        WriteFloat(Control(INTEGER), EditField::FloatValue, 0.25f),
        WriteFloat(Control(INTEGER), EditField::WavePhase, 1.5f),
        WriteFloat(Control(INTEGER), EditField::WavePhase, fNoNumber),
        WriteFloat(Control(FLOAT), EditField::FloatValue, fNoNumber),
        WriteFloat(Control(BOOLEAN), EditField::Threshold, -0.1f),
        WriteNumber(Control(ITEM), EditField::Item, 9999),
        WriteNumber(Control(TILES), EditField::Tile, 1, 1024),
        WriteNumber(Control(TILES), EditField::Tile, 2, 0),
        WriteNumber(Control(TILES), EditField::TileColumns, 8),
        WriteNumber(Control(FILES), EditField::LineCount, 8),
        WriteText(Control(FILES), EditField::CurrentFile, u"x"),
        WriteText(Control(FILES), EditField::FileList, std::u16string(u"a\0b", 3)),
        WriteNumber(RulePlace(0), EditField::Operator, MIXOP_COUNT),
        WriteNumber(RulePlace(0), EditField::Source1, 4),
        WriteNumber(RulePlace(0), EditField::Mask, -2),
    };
    for (const FieldWrite &write : aWrite) {
        EXPECT_EQ(EditResult::Refused, Set(write)) << "field " << static_cast<u32>(write.eField);
        PresetEdit edit = MakeFieldEdit(WriteNumber(Painter(), EditField::CallsPerFrame, 5));
        edit.writes.push_back(write);
        EXPECT_EQ(EditResult::Refused, Run(edit)) << "all or nothing";
    }
    PresetEdit many = MakeFieldEdit(WriteNumber(Painter(), EditField::CallsPerFrame, 5));
    many.writes.resize(FIELD_WRITES_MAX + 1, many.writes[0]);
    EXPECT_EQ(EditResult::Refused, Run(many));
    const PresetEdit aEdit[] = {
        MakeModuleEdit(painters, u""),
        MakeModuleEdit(painters, std::u16string(300, u'x')),
        MakeModuleEdit(painters, u"Idle.dll", -1),
        MakeModuleEdit(painters, u"Idle.dll", 4000),
        MakeModuleEdit(ListPlace(3, MODULEINDEX_DRAWPAINTER), u"Idle.dll"),
        MakeEdit(EditKind::AddPlane, PresetPlace(), 2),
        MakeEdit(EditKind::MovePlane, PlanePlace(0), 2),
        MakeEdit(EditKind::MoveModule, Painter(), 0),
        MakeEdit(EditKind::MoveRule, RulePlace(0), INT32_MIN),
        MakeRuleEdit(0, 4, 0, 0),
        MakeRuleEdit(0, 0, 0, -1),
        MakeEdit(EditKind::InsertPlane, PlanePlace(0), 1),
        MakeEdit(EditKind::InsertModule, Painter()),
        MakeEdit(EditKind::InsertRule, RulePlace(0)),
    };
    for (const PresetEdit &edit : aEdit)
        EXPECT_EQ(EditResult::Refused, Run(edit)) << ToUtf8(EditName(edit));
    EXPECT_EQ("", PresetSnapshot::Difference(before, PresetSnapshot(lppsi)));
    EXPECT_EQ(0u, bPresetChanged);
    EXPECT_TRUE(heard.empty());
    lppsi = SwitchPreset(nullptr, nullptr);
    EXPECT_EQ(EditResult::Refused, Run(EditKind::AddPlane, PresetPlace())) << "without a preset";
}

TEST_F(PresetEdits, WhatCannotBeDoneChangesNothingAndMarksThePresetAllTheSame)
{
    FillPreset();
    const EditPlace painters = ListPlace(0, MODULEINDEX_DRAWPAINTER);
    AddPlane(lppsi, 1, 0);
    AddPlane(lppsi, 1, 0);
    while (Add(MODULEINDEX_COLOREFFECT, 1, u"Idle.dll"))
        ;
    const PresetSnapshot before(lppsi);
    const PresetEdit aEdit[] = {
        MakeEdit(EditKind::AddPlane, PresetPlace()),
        MakeEdit(EditKind::MovePlane, PlanePlace(0), -1),
        MakeEdit(EditKind::MovePlane, PlanePlace(3), 1),
        MakeEdit(EditKind::MoveModule, Painter(), -1),
        MakeEdit(EditKind::MoveModule, ModulePlace(painters, 1), 1),
        MakeModuleEdit(painters, u"NoSuchModule.dll"),
        MakeModuleEdit(ListPlace(1, MODULEINDEX_COLOREFFECT), u"Idle.dll"),
        MakeEdit(EditKind::RestoreItem, PlanePlace(0)),
        MakeEdit(EditKind::RestoreItem, Control(INTEGER)),
        MakeEdit(EditKind::RestoreItem, Control(GROUP)),
    };
    for (const PresetEdit &edit : aEdit) {
        bPresetChanged = 0;
        EXPECT_EQ(EditResult::Unchanged, Run(edit)) << ToUtf8(EditName(edit));
        EXPECT_EQ(1u, bPresetChanged) << ToUtf8(EditName(edit));
        EXPECT_EQ(EditKind::None, inverse.eKind);
    }
    EXPECT_EQ("", PresetSnapshot::Difference(before, PresetSnapshot(lppsi)));
}

TEST_F(PresetEdits, PausingAndWhatNoFileHoldsDoNotMarkThePreset)
{
    FillPreset();
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Run(EditKind::PausePlane, PlanePlace(0)));
    EXPECT_TRUE(lppsi->psPlane[0]->bPaused && Heard(NewsKind::Planes));
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Run(EditKind::PauseModule, Painter()));
    EXPECT_TRUE(!pmsPainter->bActive && Heard(NewsKind::Slots));
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Painter(), EditField::ClearOnReset, 1)));
    EXPECT_EQ(EditResult::Done, Run(EditKind::ClearPlane, PlanePlace(0)));
    EXPECT_EQ(0u, bPresetChanged);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Painter(), EditField::CallsPerFrame, -4)));
    EXPECT_EQ(1u, bPresetChanged);
    EXPECT_EQ(0, pmsPainter->bResetPending) << "that never restarts the module";
}

TEST_F(PresetEdits, AControlThatCannotBeAnimatedRestartsItsModule)
{
    FillPreset();
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(INTEGER), EditField::IntegerValue, 7)));
    EXPECT_EQ(0, pmsPainter->bResetPending);
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(STIFF), EditField::IntegerValue, 9999)));
    EXPECT_EQ(1, pmsPainter->bResetPending);
    EXPECT_EQ(100, Ctl(STIFF).Integer.nValue) << "moved to the nearer limit";
    EXPECT_EQ(&Ctl(STIFF), LastOf(NewsKind::Control).pctl);
    EXPECT_EQ(pmsPainter, LastOf(NewsKind::Control).pms);
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(TILES), EditField::Tile, 0, 5)));
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(ITEM), EditField::Item, 2)));
    EXPECT_EQ(1, pmsPainter->bResetPending);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(WeightPlace(1), EditField::IntegerValue, 300)));
    EXPECT_EQ(255, lppsi->asMixRule[1].BlendWeight.Integer.nValue);
    EXPECT_EQ(&lppsi->asMixRule[1].BlendWeight, LastOf(NewsKind::Control).pctl);
    EXPECT_EQ(nullptr, LastOf(NewsKind::Control).pms);
}

TEST_F(PresetEdits, UndoingWhatAModuleHasTakenInRestartsItOnceMore)
{
    FillPreset();
    pmsPainter->nDuration = DURATION_NEVER;
    Step();
    ASSERT_EQ(EditResult::Done, Set(WriteNumber(Control(STIFF), EditField::IntegerValue, 9)));
    const PresetEdit first = inverse;
    Step();
    ASSERT_EQ(0, pmsPainter->bResetPending) << "the module has seen the 9";
    ASSERT_EQ(EditResult::Done, Set(WriteNumber(Control(STIFF), EditField::IntegerValue, 8)));
    EXPECT_EQ(EditResult::Done, RunPresetEdit(inverse));
    EXPECT_EQ(0, pmsPainter->bResetPending) << "nobody has seen the 8";
    EXPECT_EQ(EditResult::Done, RunPresetEdit(first, &inverse));
    EXPECT_EQ(50, Ctl(STIFF).Integer.nValue);
    EXPECT_EQ(1, pmsPainter->bResetPending);
    Step();
    EXPECT_EQ(EditResult::Done, RunPresetEdit(inverse)) << "and forth again";
    EXPECT_EQ(9, Ctl(STIFF).Integer.nValue);
    EXPECT_EQ(1, pmsPainter->bResetPending);
}

TEST_F(PresetEdits, FieldsThatHangTogetherComeBackTogether)
{
    FillPreset();
    ControlRecord &ctl = Ctl(INTEGER);
    ctl.Integer.bOnlyOdd = 1;
    ctl.Base.bRandomPhase = 0;
    ctl.Base.fWavePhase = 2;
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(INTEGER), EditField::OnlyEven, 1)));
    EXPECT_EQ(0u, ctl.Integer.bOnlyOdd);
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(Control(INTEGER), EditField::RandomPhase, 1)));
    EXPECT_LE(ctl.Base.fWavePhase, 1.0f) << "drawn at once";
    UndoGives(before);

    ControlRecord &files = Ctl(FILES);
    EXPECT_EQ(EditResult::Done, Set(WriteText(Control(FILES), EditField::FileList, u"one.png\r\n\r\ntwo.png\r\n")));
    EXPECT_EQ(ALL_ONES, files.FileSelect.nLines);
    Step();
    TakeNextFile(&files);
    ASSERT_EQ("two.png", ToUtf8(files.FileSelect.szCurrentFile));
    bPresetChanged = 0;
    const PresetSnapshot counted(lppsi);
    EXPECT_EQ(EditResult::Done, Set(WriteText(Control(FILES), EditField::FileList, u"")));
    EXPECT_EQ(nullptr, files.FileSelect.pszFileList);
    EXPECT_EQ("", ToUtf8(files.FileSelect.szCurrentFile));
    UndoGives(counted);
    EXPECT_EQ("two.png", ToUtf8(files.FileSelect.szCurrentFile));
}

TEST_F(PresetEdits, ARemovedPlaneComesBackWithModulesControlsAndRules)
{
    FillPreset();
    lppsi->psPlane[0]->bPaused = 1;
    lppsi->psPlane[0]->Info.nColors = 99;
    lppsi->psPlane[0]->Info.lpColorTable[37] = 0x123456;
    pmsPainter->nCallsPerFrame = -3;
    pmsPainter->bResetPending = pmsPainter->bClearOnReset = 1;
    Ctl(TILES).Tile.pTileMask[77] = 0;
    Ctl(INTEGER).Base.dwSource = FLUIDSOURCE_RANDOM;
    Ctl(INTEGER).Integer.nValue = 31;
    lppsi->asMixRule[0].BlendWeight.Integer.nValue = 3;
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RemovePlane, PlanePlace(0)));
    EXPECT_EQ(1, lppsi->nPlanes);
    EXPECT_EQ(0u, lppsi->nMixRules);
    TakeLog();
    heard.clear();
    UndoGives(before);
    EXPECT_TRUE(Heard(NewsKind::Planes) && Heard(NewsKind::Mixer));
    Step();
    EXPECT_EQ(&lppsi->hbmFinal, lppsi->phbmOutput);
}

TEST_F(PresetEdits, AnInstanceThatComesBackStartsWithTheValuesThatItHad)
{
    FillPreset();
    Ctl(INTEGER).Base.dwSource = FLUIDSOURCE_RANDOM;
    Ctl(INTEGER).Integer.nValue = 31;
    EXPECT_EQ(EditResult::Done, Run(EditKind::RemoveModule, Painter()));
    TakeLog();
    EXPECT_EQ(EditResult::Done, RunPresetEdit(inverse));
    const ModuleSlot *pms = SlotAt(lppsi, Painter());
    const std::vector<RecorderEntry> log = TakeLog();
    EXPECT_EQ("BPI", CallsOf(log, pms->pvContext));
    EXPECT_EQ(31.0f, log.back().afValue[INTEGER]);
}

TEST_F(PresetEdits, UndoingAnAddedPlaneKeepsTheRules)
{
    FillPreset();
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Run(EditKind::AddPlane, PresetPlace(), 1));
    UndoGives(before);
    EXPECT_EQ(2u, lppsi->nMixRules);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RemoveRule, RulePlace(0)));
    EXPECT_EQ(MIXOP_NEGATIVE, lppsi->asMixRule[0].MixOp);
    const PresetEdit back = inverse;
    bPresetChanged = 0;
    EXPECT_EQ(EditResult::Unchanged, Run(EditKind::RemoveRule, RulePlace(0))) << "never the last one";
    EXPECT_EQ(0u, bPresetChanged);
    inverse = back;
    UndoGives(before);
}

TEST_F(PresetEdits, RestoringABranchReachesWhatStandsInItAndNothingElse)
{
    FillPreset();
    const auto Spoil = [this] {
        for (i32 i : {INTEGER, STIFF})
            Ctl(i).Integer.nValue = 3;
        pmsPainter->nDuration = 40;
        lppsi->psPlane[1]->apModule[MODULEINDEX_OVERLAYEFFECT][0]->nDuration = 50;
        lppsi->apPostProc[0]->nDuration = 60;
        lppsi->psPlane[0]->bPaused = 1;
    };
    Spoil();
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RestoreItem, Painter()));
    EXPECT_EQ(16u, pmsPainter->nDuration);
    EXPECT_EQ(1, pmsPainter->bResetPending);
    EXPECT_EQ(3, Ctl(INTEGER).Integer.nValue) << "the item alone";
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RestoreBranch, GroupPlace(Control(INTEGER), 1)));
    EXPECT_EQ(50, Ctl(STIFF).Integer.nValue) << "of the same group";
    EXPECT_EQ(40u, pmsPainter->nDuration);
    UndoGives(before);
    EXPECT_EQ(EditResult::Unchanged, Run(EditKind::RestoreBranch, GroupPlace(Control(INTEGER), 2)));
    EXPECT_EQ(EditResult::Unchanged, Run(EditKind::RestoreBranch, FamilyPlace(0, MODULEINDEX_OVERLAYFULL)));
    EXPECT_EQ(EditResult::Done, Run(EditKind::RestoreBranch, FamilyPlace(0, MODULEINDEX_DRAWFULL)));
    EXPECT_EQ(16u, pmsPainter->nDuration);
    EXPECT_EQ(1u, lppsi->psPlane[0]->bPaused);
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RestoreBranch, PlanesPlace()));
    EXPECT_EQ(0u, lppsi->psPlane[0]->bPaused);
    EXPECT_EQ(60u, lppsi->apPostProc[0]->nDuration);
    UndoGives(before);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RestoreBranch, PresetPlace()));
    EXPECT_EQ(16u, lppsi->apPostProc[0]->nDuration);
    UndoGives(before);
}

TEST_F(PresetEdits, ADragIsOneEdit)
{
    FillPreset();
    const PresetSnapshot before(lppsi);
    EditDrag drag = {};
    EXPECT_FALSE(BeginDrag(&drag, Control(9)));
    EXPECT_EQ(EditResult::Refused, DragValue(&drag, {WriteNumber(Control(9), EditField::IntegerMin, 1)}));
    ASSERT_TRUE(BeginDrag(&drag, Control(STIFF)));
    for (i32 n = 1; n <= 20; n++)
        EXPECT_EQ(EditResult::Done, DragValue(&drag, {WriteNumber(Control(STIFF), EditField::IntegerMin, n),
                                                      WriteNumber(Control(STIFF), EditField::IntegerValue, 2 * n)}));
    EXPECT_EQ(EditResult::Refused, DragValue(&drag, {WriteNumber(Painter(), EditField::Duration, 3)}));
    EXPECT_EQ(20, Ctl(STIFF).Integer.nMin);
    EndDrag(&drag, &inverse);
    UndoGives(before);
    EXPECT_EQ(EditResult::Refused, DragValue(&drag, {WriteNumber(Control(STIFF), EditField::IntegerMin, 1)}));

    ASSERT_TRUE(BeginDrag(&drag, Control(TILES)));
    for (u32 i : {3u, 4u, 3u, 40u})
        DragValue(&drag, {WriteNumber(Control(TILES), EditField::Tile, 0, i)});
    EndDrag(&drag, &inverse);
    EXPECT_EQ(3u, inverse.writes.size());
    UndoGives(before);

    ASSERT_TRUE(BeginDrag(&drag, Control(INTEGER)));
    EXPECT_EQ(EditResult::Done, DragValue(&drag, {WriteNumber(Control(INTEGER), EditField::IntegerMin, 4)}));
    EXPECT_EQ(EditResult::Done, Run(EditKind::MoveModule, Painter(), 1));
    EXPECT_EQ(EditResult::Refused, DragValue(&drag, {WriteNumber(Control(INTEGER), EditField::IntegerMin, 5)}))
        << "something else stands there now";
    EndDrag(&drag, &inverse);
    EXPECT_EQ(EditKind::None, inverse.eKind);
}

TEST_F(PresetEdits, PlacesNameWhatTheyWereMadeFrom)
{
    FillPreset();
    for (const EditPlace &place : PlacesOfBranch(lppsi, PresetPlace())) {
        EXPECT_TRUE(PlaceExists(lppsi, place));
        if (place.eKind == PlaceKind::Plane)
            EXPECT_EQ(place, PlaceOfPlane(lppsi, PlaneAt(lppsi, place)));
        else if (place.eKind == PlaceKind::Module)
            EXPECT_EQ(place, PlaceOfSlot(lppsi, SlotAt(lppsi, place)));
        else
            EXPECT_EQ(place, PlaceOfControl(lppsi, ControlAt(lppsi, place)));
    }
    EXPECT_EQ(WeightPlace(1), PlaceOfControl(lppsi, &lppsi->asMixRule[1].BlendWeight));
    EXPECT_EQ(PlaceKind::None, PlaceOfControl(lppsi, &lppsi->asMixRule[2].BlendWeight).eKind) << "no rule in use";
    const auto *pmsGone = reinterpret_cast<const ModuleSlot *>(u8{1} + reinterpret_cast<const u8 *>(pmsPainter));
    EXPECT_EQ(PlaceKind::None, PlaceOfSlot(lppsi, pmsGone).eKind) << "an address is not followed";
}

TEST_F(PresetEdits, NothingIsDoneToAPlaneThatAThreadHangsIn)
{
    LetAThreadHang();
    bPresetChanged = 0;
    heard.clear();
    const EditPlace painters = ListPlace(0, MODULEINDEX_DRAWPAINTER);
    const PresetEdit aEdit[] = {
        MakeFieldEdit(WriteNumber(Control(STIFF), EditField::IntegerValue, 9)),
        MakeFieldEdit(WriteText(Control(FILES), EditField::FileList, u"one.png")),
        MakeEdit(EditKind::PausePlane, PlanePlace(0)),
        MakeEdit(EditKind::MovePlane, PlanePlace(0), 1),
        MakeEdit(EditKind::MovePlane, PlanePlace(1), -1),
        MakeEdit(EditKind::ClearPlane, PlanePlace(0)),
        MakeModuleEdit(painters, u"Idle.dll"),
        MakeEdit(EditKind::RemoveModule, Painter()),
        MakeEdit(EditKind::MoveModule, Painter(), 1),
        MakeEdit(EditKind::RestoreBranch, PresetPlace()),
    };
    const PresetSnapshot before(lppsi);
    for (const PresetEdit &edit : aEdit)
        EXPECT_EQ(EditResult::Refused, Run(edit)) << ToUtf8(EditName(edit));
    EXPECT_EQ("", PresetSnapshot::Difference(before, PresetSnapshot(lppsi)));
    EXPECT_EQ(0u, bPresetChanged);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(EditResult::Done, Set(WriteNumber(PlanePlace(1), EditField::Paused, 1))) << "the other one is free";
    Behave(pmsPainter, {});
    while (PlaneIsBusy(lppsi->psPlane[0]) || AnyThreadIsStuck())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(EditResult::Done, Run(aEdit[7]));
}

TEST_F(PresetEdits, APlaneThatAThreadHangsInCanBeRemovedAndComesBackAsANewOne)
{
    LetAThreadHang();
    PlaneState *ppsStuck = lppsi->psPlane[0];
    const PresetSnapshot before(lppsi);
    EXPECT_EQ(EditResult::Done, Run(EditKind::RemovePlane, PlanePlace(0)));
    EXPECT_EQ(1, lppsi->nPlanes);
    UndoGives(before);
    EXPECT_NE(ppsStuck, lppsi->psPlane[0]);
    EXPECT_FALSE(PlaneIsBusy(lppsi->psPlane[0]));
    Behave(pmsPainter, {});
    while (AnyThreadIsStuck())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    RemovePlaneModules(ppsStuck); // what was left alone
    DeleteBitmap(ppsStuck->Info.hbmDraw);
    DeleteBitmap(ppsStuck->Info.hbmResolved);
    DeleteContext(ppsStuck->Info.hdc);
    std::free(ppsStuck->Info.lpColorTable);
    std::free(ppsStuck->Info.pPaletteInfo);
    std::free(ppsStuck);
}
