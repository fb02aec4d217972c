// PresetNews_test.cpp -- tests PresetNews.cpp and what the engine tells through it
#include "engine/PresetFile.h"
#include "engine/PresetNews.h"
#include "tests/AllocationCounter.h"
#include "tests/EngineFixture.h"

#include <set>

namespace {

constexpr i32 EDITS = 10000;
constexpr const char *STORED =
    "<?xml?>\n<Preset><NumPlanes>2</NumPlanes>"
    "<Plane0><NumDFull>1</NumDFull><DFull0><ModuleDLL>Recorder.dll</ModuleDLL></DFull0>"
    "</Plane0><Plane1></Plane1><NumMixerOps>2</NumMixerOps>"
    "<PostProc><NumPEffect>1</NumPEffect><PEffect0><ModuleDLL>Idle.dll</ModuleDLL></PEffect0>"
    "</PostProc></Preset>";

PresetState *ReadStored(const void *)
{
    return LoadPresetText(STORED);
}

PresetState *MakeEmpty(const void *)
{
    return CreatePresetState(0);
}

struct Parts {
    std::set<const PlaneState *> planes;
    std::set<const ModuleSlot *> slots;
    std::set<const ControlRecord *> controls;
    bool operator==(const Parts &) const = default;
    void Add(Parts other)
    {
        planes.merge(other.planes);
        slots.merge(other.slots);
        controls.merge(other.controls);
    }
};

void AddSlots(Parts *p, ModuleSlot *const *apSlot, i32 nCount)
{
    for (i32 i = 0; i < nCount; i++) {
        p->slots.insert(apSlot[i]);
        p->controls.insert(apSlot[i]->apControl, apSlot[i]->apControl + apSlot[i]->nControls);
    }
}

// All that the preset consists of now.
Parts PartsOf(const PresetState *lppsi)
{
    Parts parts;
    for (i32 i = 0; lppsi && i < lppsi->nPlanes; i++) {
        parts.planes.insert(lppsi->psPlane[i]);
        for (u32 k = 0; k < MODULEINDEX_MIXER; k++)
            AddSlots(&parts, lppsi->psPlane[i]->apModule[k], lppsi->psPlane[i]->anModules[k]);
    }
    if (lppsi)
        AddSlots(&parts, lppsi->apPostProc, lppsi->nPostProc);
    return parts;
}

// What a window would do: keeps pointers to everything, adds what is new, drops what the news say goes.
struct Keeper {
    Parts parts;
    std::string sLog; // a letter for each of the news, of a slot or plane that goes a small one
    u64 qwSum = 0;    // so that no read is left out

    void Read()
    {
        for (const PlaneState *pps : parts.planes)
            qwSum += pps->bPaused + static_cast<u64>(pps->Info.lpColorTable[0]);
        for (const ModuleSlot *pms : parts.slots)
            qwSum += static_cast<u64>(pms->nControls) + pms->nDuration;
        for (const ControlRecord *pctl : parts.controls)
            qwSum += pctl->Base.dwType;
    }
    void Drop(const ModuleSlot *pms)
    {
        EXPECT_EQ(1u, parts.slots.erase(pms)) << "told twice, or never of its coming";
        for (i32 i = 0; i < pms->nControls; i++)
            parts.controls.erase(pms->apControl[i]);
    }
    void Hear(const PresetNews &news)
    {
        sLog += "GCMPpSsKXV"[static_cast<u32>(news.eKind)];
        Read(); // all of it is there until it has been told of
        if (news.eKind == NewsKind::Going)
            parts = {};
        else if (news.eKind == NewsKind::SlotGoes)
            Drop(news.pms);
        else if (news.eKind == NewsKind::PlaneGoes)
            EXPECT_EQ(1u, parts.planes.erase(news.pps));
        else
            parts.Add(PartsOf(news.lppsi)); // and nothing is left out on the way: only news take a pointer away
    }
    static void OnNews(const PresetNews &news, void *pv)
    {
        static_cast<Keeper *>(pv)->Hear(news);
    }
};

class News : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        RecorderBehaviour rb = {};
        rb.nControls = 6;
        for (u32 i = 0; i < rb.nControls; i++)
            rb.adwType[i] = CONTROLTYPE_INTEGER + i;
        Behave(nullptr, rb);
        PresetListeners.Add(Keeper::OnNews, &keeper);
    }
    void TearDown() override
    {
        SwitchPreset(nullptr, nullptr);
        PresetListeners.Remove(Keeper::OnNews, &keeper);
        EngineTest::TearDown();
    }

    static i32 Random(i32 n)
    {
        return static_cast<i32>(RandomWord() % static_cast<u32>(n));
    }
    std::string TakeTold()
    {
        return std::exchange(keeper.sLog, "");
    }
    static PlaneState *AnyPlane(const PresetState *lppsi)
    {
        return lppsi->nPlanes ? lppsi->psPlane[Random(lppsi->nPlanes)] : nullptr;
    }
    static ModuleSlot *AnySlot(const PresetState *lppsi)
    {
        const std::set<const ModuleSlot *> slots = PartsOf(lppsi).slots;
        return slots.empty()
                   ? nullptr
                   : const_cast<ModuleSlot *>(*std::next(slots.begin(), Random(static_cast<i32>(slots.size()))));
    }
    static void AddAny(PresetState *lppsi)
    {
        const char16_t *pszDll = Random(2) ? u"Recorder.dll" : u"Idle.dll";
        const i32 iPlane = Random(lppsi->nPlanes + 1) - 1;
        AddModule(lppsi, pszDll, iPlane, iPlane < 0 ? MODULEINDEX_NUMINDICIES : static_cast<u32>(Random(9)), 0, 1);
    }

    Keeper keeper;
};

// One of the ways in which a running preset changes; those that take much away come seldom.
void EditAtRandom(PresetState *lppsi, i32 nDie, PlaneState *pps, ModuleSlot *pms, ModuleSlot *pmsOther)
{
    if (nDie < 10)
        AddPlane(lppsi, nDie & 1, nDie < 4);
    else if (nDie < 14 && pps)
        RemovePlane(lppsi, pps);
    else if (nDie == 14)
        RemovePlane(lppsi, nullptr);
    else if (nDie == 15)
        RemoveModule(lppsi, nullptr);
    else if (nDie < 30 && pms)
        RemoveModule(lppsi, pms);
    else if (nDie < 40)
        SwapModuleSlots(lppsi, pms, pmsOther);
    else if (nDie < 50)
        AddMixRule(lppsi);
    else if (nDie < 54)
        RemoveMixRule(lppsi, 0);
    else if (nDie == 54)
        RemoveAllMixRules(lppsi);
}

TEST_F(News, WhoDropsWhatGoesNeverHoldsAPointerIntoWhatIsGone)
{
    constexpr PresetState *(*apfnMake[])(const void *) = {ReadStored, MakeEmpty, MakeDefaultPreset, nullptr};
    u32 nSwitches = 0;
    for (i32 i = 0; i < EDITS; i++) {
        PresetState *lppsiNow = CurrentPreset();
        const i32 nDie = Random(100);
        if (!lppsiNow || nDie >= 97) {
            SwitchPreset(apfnMake[Random(4)], nullptr);
            nSwitches++;
        } else if (nDie >= 60) {
            AddAny(lppsiNow);
        } else {
            EditAtRandom(lppsiNow, nDie, AnyPlane(lppsiNow), AnySlot(lppsiNow), AnySlot(lppsiNow));
        }
        keeper.Read();
        ASSERT_TRUE(keeper.parts == PartsOf(CurrentPreset())) << "step " << i << ", die " << nDie;
    }
    EXPECT_GT(nSwitches, 200u);
    for (const char ch : std::string("GCPpSsX"))
        EXPECT_NE(keeper.sLog.find(ch), std::string::npos) << ch;
}

TEST_F(News, APlaneThatGoesIsPrecededByItsSlotsAndFollowedByTheRules)
{
    PresetState *lppsiNow = SwitchPreset(ReadStored, nullptr);
    EXPECT_EQ("C", TakeTold()) << "nothing of its parts while it is read";
    AddModule(lppsiNow, u"Idle.dll", 0, MODULEINDEX_OVERLAYFULL, 0, 1);
    AddModule(lppsiNow, u"Idle.dll", 1, MODULEINDEX_OVERLAYFULL, 0, 1);
    EXPECT_EQ("SS", TakeTold());
    RemovePlane(lppsiNow, lppsiNow->psPlane[0]);
    EXPECT_EQ("sspPX", TakeTold());
    RemovePlane(lppsiNow, nullptr);
    EXPECT_EQ("spP", TakeTold()) << "there are no rules left to tell of";
    EXPECT_EQ(0u, RemovePlane(lppsiNow, nullptr));
    EXPECT_EQ(nullptr, AddModule(lppsiNow, u"Idle.dll", 0, MODULEINDEX_OVERLAYFULL, 0, 1));
    EXPECT_EQ("", TakeTold()) << "nothing has changed";
    AddPlane(lppsiNow, 1, 1);
    EXPECT_EQ("P", TakeTold()) << "with its modules";
    SwitchPreset(nullptr, nullptr);
    EXPECT_EQ("GC", TakeTold());
}

TEST_F(News, ExchangingAndPuttingBackIsToldByTheFunctionsThatDoIt)
{
    PresetState *lppsiNow = SwitchPreset(MakeEmpty, nullptr);
    AddPlane(lppsiNow, 1, 0);
    PlaneState *pps = AddPlane(lppsiNow, 0, 0);
    AddMixRule(lppsiNow)->MixOp = MIXOP_NEGATIVE;
    AddMixRule(lppsiNow)->MixOp = MIXOP_BLEND;
    TakeTold();
    EXPECT_NE(0u, SwapPlanes(lppsiNow, 0, 1));
    EXPECT_EQ("P", TakeTold());
    EXPECT_NE(0u, SwapMixRules(lppsiNow, 0, 1));
    EXPECT_EQ("X", TakeTold());
    MixRule rule = lppsiNow->asMixRule[0];
    EXPECT_NE(0u, InsertMixRule(lppsiNow, 1, rule));
    EXPECT_EQ("X", TakeTold());
    EXPECT_EQ(MIXOP_NEGATIVE, lppsiNow->asMixRule[2].MixOp);
    EXPECT_NE(lppsiNow->asMixRule[0].hbmRule, lppsiNow->asMixRule[1].hbmRule);
    EXPECT_NE(0u, TakePlane(lppsiNow, pps));
    EXPECT_EQ("pP", TakeTold()) << "the rules stay";
    EXPECT_EQ(3u, lppsiNow->nMixRules);
    EXPECT_NE(0u, ReplaceMixRules(lppsiNow, {&rule, 1}));
    EXPECT_EQ("X", TakeTold());
    EXPECT_EQ(1u, lppsiNow->nMixRules);
    const std::vector<MixRule> tooMany(MIX_RULES_MAX + 1);
    EXPECT_EQ(0u, SwapPlanes(lppsiNow, 0, 1) | SwapMixRules(lppsiNow, 0, 1) | InsertMixRule(lppsiNow, 2, rule) |
                      ReplaceMixRules(lppsiNow, tooMany) | TakePlane(lppsiNow, pps));
    EXPECT_EQ("", TakeTold()) << "nothing has changed";
}

TEST_F(News, APresetThatIsNotTheCurrentOneIsNoNews)
{
    SwitchPreset(ReadStored, nullptr);
    TakeTold();
    lppsi = LoadPresetText(STORED);
    RemoveModule(lppsi, lppsi->apPostProc[0]);
    AddMixRule(lppsi);
    RemovePlane(lppsi, lppsi->psPlane[0]);
    DestroyPresetState(std::exchange(lppsi, nullptr));
    EXPECT_EQ("", TakeTold());
}

TEST_F(News, FramesTellNothingAlsoWhenTheyResize)
{
    PresetState *lppsiNow = SwitchPreset(ReadStored, nullptr);
    AddPlane(lppsiNow, 1, 0);
    TakeTold();
    GlobalSettings.bVisualsWindow = 1;
    for (i32 i = 0; i < 20; i++) {
        GlobalSettings.hwndVisuals.nWidth = GlobalSettings.hwndVisuals.nHeight = 200 + i;
        GlobalSettings.bResizePending = i & 1;
        GlobalSettings.ThreadedPlanes = i & 2;
        SetFixedTick(TickCount() + 20);
        ASSERT_TRUE(RunFrameStep(lppsiNow));
    }
    EXPECT_GE(GlobalSettings.nBufferWidth, 190);
    EXPECT_EQ("", TakeTold());
}

TEST_F(News, TellingAllocatesNothing)
{
    u64 qwHeard = 0;
    const auto pfnCount = [](const PresetNews &, void *pv) { ++*static_cast<u64 *>(pv); };
    for (i32 i = 0; i < 10; i++)
        PresetListeners.Add(pfnCount, &qwHeard);
    const u64 nBefore = AllocationCount();
    for (i32 i = 0; i < 100; i++)
        TellPresetNews({NewsKind::Marked, nullptr, nullptr, nullptr, nullptr});
    EXPECT_LE(AllocationCount() - nBefore, 10u) << "no more than the growing text of the log needs";
    EXPECT_EQ(1000u, qwHeard);
    PresetListeners.Remove(pfnCount, &qwHeard);
}

} // namespace
