// Hostile_test.cpp -- modules that break the rules; meant to run under an address sanitizer
#include "controls/ControlManager.h"
#include "controls/FileList.h"
#include "controls/FluidSources.h"
#include "platform/Threads.h"
#include "tests/EngineFixture.h"
#include "tests/modules/HostileModes.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool ADDRESSES_ARE_CHECKED = true;
#elif defined(__has_feature)
constexpr bool ADDRESSES_ARE_CHECKED = __has_feature(address_sanitizer);
#else
constexpr bool ADDRESSES_ARE_CHECKED = false;
#endif

class Hostile : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        for (const char16_t *pszName :
             {u"HostileControls.dll", u"HostileGarbage.dll", u"HostileSlow.dll", u"HostileWriter.dll"})
            ASSERT_EQ(1u, LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/" + pszName));
    }
    static std::atomic<u32> &Variable(const char16_t *pszDll, const char16_t *pszName)
    {
        return *static_cast<std::atomic<u32> *>(FindEntryPoint(FindModuleRecord(pszDll)->mf.pLibrary, pszName));
    }
};
using HostileDeathTest = Hostile;

constexpr u32 SLEEP_UNTIL_TOLD = 600000;

template <typename Fn> void WaitUntil(Fn fn)
{
    while (!fn())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

bool SlotHolds(const ModuleSlot *pms, const ControlRecord *pctl)
{
    return std::find(pms->apControl, pms->apControl + pms->nControls, pctl) != pms->apControl + pms->nControls;
}

// Whatever the module did, the slot's own fields are in order.
void ExpectSoundSlot(const ModuleSlot *pms)
{
    for (i32 i = 0; i < CONTROLS_MAX; i++) {
        const ControlRecord *pctl = pms->apControl[i];
        ASSERT_EQ(i < pms->nControls, pctl != nullptr) << i;
        if (!pctl)
            continue;
        EXPECT_EQ(pms, pctl->Base.pOwner);
        EXPECT_LT(TextLength(pctl->Base.szDescription, CONTROL_TEXT), u32{CONTROL_TEXT});
        EXPECT_TRUE(!pctl->Base.pDependsOn || SlotHolds(pms, pctl->Base.pDependsOn));
    }
}

// What panels, files and the tree do with a control.
void UseControl(ControlRecord *pctl)
{
    NameText szName;
    ControlDottedName(pctl, szName);
    EXPECT_LT(TextLength(szName, NAME_CHARS), NAME_CHARS);
    ControlIsActive(pctl);
    ControlSupportsFluidSources(pctl);
    EffectiveWavePeriod(pctl);
    ClampControl(pctl);
    ControlIsDefault(pctl);
    RestoreControlDefaults(pctl);
}

struct ModeRow {
    u32 dwMode;
    i32 nControls; // that the slot ends up with
};
constexpr ModeRow asMode[] = {
    {HOSTILE_MANY, CONTROLS_MAX}, {HOSTILE_COUNT, 4},   {HOSTILE_TYPE, 5},      {HOSTILE_NAME, 4},
    {HOSTILE_ITEMS, 5},           {HOSTILE_RANGES, 30}, {HOSTILE_SOURCE, 24},   {HOSTILE_DEPENDS, 3},
    {HOSTILE_POINTERS, 2},        {HOSTILE_LATER, 6},   {0xFFFF, CONTROLS_MAX},
};

struct PlaceRow {
    i32 iPlane;
    u32 dwModuleType;
};
constexpr PlaceRow asPlace[] = {
    {0, MODULEINDEX_DRAWPAINTER}, {0, MODULEINDEX_OVERLAYEFFECT}, {-1, MODULEINDEX_NUMINDICIES}};

TEST_F(Hostile, WrongControlsAreKeptOrRefusedAndEveryUseOfThemIsHarmless)
{
    GlobalSettings.pSound->fRawLevel = 0.7f;
    MakePreset(1);
    for (const ModeRow &mode : asMode)
        for (const PlaceRow &place : asPlace) {
            SCOPED_TRACE(testing::Message() << "mode " << mode.dwMode << ", kind " << place.dwModuleType);
            Variable(u"HostileControls.dll", u"HostileMode") = mode.dwMode;
            ModuleSlot *pms = Add(place.dwModuleType, place.iPlane, u"HostileControls.dll");
            ASSERT_NE(nullptr, pms);
            EXPECT_EQ(mode.nControls, pms->nControls);
            ExpectSoundSlot(pms);
            for (int i = 0; i < 8; i++) {
                pms->bResetPending = i % 3 == 2;
                GlobalSettings.TimeScale = i % 2 ? TIME_SCALE_MAX : 1;
                EXPECT_EQ(1u, Step(1700));
            }
            ExpectSoundSlot(pms);
            CountChangedControls(pms);
            std::for_each(pms->apControl, pms->apControl + pms->nControls, UseControl);
            EXPECT_EQ(1u, Step(1700));
            EXPECT_EQ(1u, RemoveModule(lppsi, pms));
        }
}

TEST_F(Hostile, AControlThatIsSpoiledAfterBuildingKeepsItsTypeAndWhatTheHostHoldsForIt)
{
    MakePreset(1);
    Variable(u"HostileControls.dll", u"HostileMode") = HOSTILE_LATER;
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileControls.dll");
    ASSERT_EQ(6, pms->nControls);
    ControlRecord *pctlFile = pms->apControl[CONTROLTYPE_FILESELECT - CONTROLTYPE_INTEGER];
    ControlRecord *pctlTile = pms->apControl[CONTROLTYPE_TILE - CONTROLTYPE_INTEGER];
    auto *pszList = static_cast<char16_t *>(std::calloc(8, sizeof(char16_t)));
    std::copy_n(u"a.x\nb.x", 7, pszList);
    SetFileList(pctlFile, pszList);
    const u32 *pTileMask = pctlTile->Tile.pTileMask;
    for (int i = 0; i < 24; i++) {
        pms->bResetPending = i % 2;
        EXPECT_EQ(1u, Step());
        for (u32 dwType = CONTROLTYPE_INTEGER; dwType <= CONTROLTYPE_TILE; dwType++)
            ASSERT_EQ(dwType, pms->apControl[dwType - CONTROLTYPE_INTEGER]->Base.dwType);
        ASSERT_EQ(pszList, pctlFile->FileSelect.pszFileList);
        ASSERT_EQ(2u, pctlFile->FileSelect.nLines);
        ASSERT_EQ(pTileMask, pctlTile->Tile.pTileMask);
        ASSERT_LE(pctlTile->Tile.nXTiles * pctlTile->Tile.nYTiles, 1024u);
        ASSERT_FALSE(ControlIsDefault(pctlFile));
        ASSERT_TRUE(std::all_of(pTileMask, pTileMask + 1024, [](u32 dw) { return dw == 1; }));
    }
    ExpectSoundSlot(pms);
    EXPECT_EQ(1u, RemoveModule(lppsi, pms));
}

TEST_F(Hostile, OnlyTheResultTwoAsksForAReset)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileGarbage.dll");
    pms->nDuration = DURATION_NEVER;
    int nResets = 0;
    for (int i = 0; i < 12; i++) {
        Step();
        nResets += pms->bResetPending;
    }
    EXPECT_EQ(2, nResets) << "its results repeat every six draws, and one of them is 2";
}

TEST_F(Hostile, GarbageInThePlaneInfoReachesNoOtherModule)
{
    MakePreset(1);
    PlaneInfo &Info = lppsi->psPlane[0]->Info;
    Info.nColors = 7;
    Add(MODULEINDEX_OVERLAYPAINTER, 0, u"HostileGarbage.dll");
    Add(MODULEINDEX_COLORINTERPOLATOR, 0, u"RecorderColor.dll");
    for (int i = 0; i < 6; i++)
        Step();
    EXPECT_EQ(7, Info.nColors) << "an overlay has a copy of its own";

    GlobalSettings.TimeScale = 5;
    Add(MODULEINDEX_DRAWFULL, 0, u"HostileGarbage.dll");
    Add(MODULEINDEX_NUMINDICIES, -1, u"HostileGarbage.dll");
    const PlaneInfo piBefore = Info;
    const HostBitmap hbmBefore = *Info.hbmDraw;
    const ModuleSlot *pms = Add(MODULEINDEX_DRAWEFFECT);
    TakeLog();
    for (int i = 0; i < 6; i++)
        Step();
    i32 nDraws = 0;
    for (const RecorderEntry &entry : TakeLog())
        if (entry.pvContext == pms->pvContext && entry.dwCall == RECORDERCALL_DRAW) {
            nDraws++;
            EXPECT_EQ(5u, entry.dwTimeScale) << "renewed before every call";
        }
    EXPECT_EQ(6, nDraws);
    Info.nColors = piBefore.nColors; // the one field that is a module's to write
    EXPECT_EQ(0, memcmp(&piBefore, &Info, sizeof Info));
    EXPECT_EQ(0, memcmp(&hbmBefore, Info.hbmDraw, sizeof hbmBefore));
    EXPECT_EQ(nullptr, Info.hdc->pSelected) << "nothing is selected when a call begins";
    EXPECT_NE(nullptr, Info.hdc->pfnSelectBitmap);

    HostGLWindow window = {sizeof window, 131, 129, 0, nullptr, nullptr, &Info};
    ModuleSlot *pmsGarbage = lppsi->apPostProc[0];
    pmsGarbage->hwndGL = &window;
    Step();
    pmsGarbage->hwndGL = nullptr;
    EXPECT_EQ(131, window.nWidth);
    EXPECT_EQ(&Info, window.pSurface) << "the host destroys the surface that stands there";
}

TEST_F(Hostile, ALatePlaneCostsItsFramesAndThenComesBack)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 20;
    Variable(u"HostileSlow.dll", u"HostileSleepMs") = SLEEP_UNTIL_TOLD;
    MakePreset(2);
    Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileSlow.dll");
    const ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER, 1);
    TakeLog();
    EXPECT_EQ(0u, Step());
    std::string sCalls;
    WaitUntil(
        [&] { return PlaneIsBusy(lppsi->psPlane[0]) && !(sCalls += CallsOf(TakeLog(), pms->pvContext)).empty(); });

    GlobalSettings.dwPlaneWaitMs = WAIT_FOREVER;
    Variable(u"HostileSlow.dll", u"HostileSleepMs") = 0;
    EXPECT_EQ(1u, Step());
    EXPECT_EQ(1u, Step());
    EXPECT_EQ("DDD", sCalls + CallsOf(TakeLog(), pms->pvContext)) << "the plane beside it drew in every frame";
}

// What the stuck thread holds stays for as long as the process lives; these tell a leak checker that somebody knows it.
PlaneState *volatile ppsStuck;
ModuleSlot *volatile pmsStuck;

TEST_F(Hostile, APlaneWithAModuleThatDoesNotReturnIsLeftAlone)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 20;
    Variable(u"HostileSlow.dll", u"HostileSleepMs") = SLEEP_UNTIL_TOLD;
    MakePreset(1);
    pmsStuck = Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileSlow.dll");
    ppsStuck = lppsi->psPlane[0];
    EXPECT_EQ(0u, Step());
    WaitUntil([&] { return PlaneIsBusy(lppsi->psPlane[0]); });

    DestroyPresetState(lppsi);
    lppsi = nullptr;
    EXPECT_TRUE(AnyThreadIsStuck());
    Variable(u"HostileSlow.dll", u"HostileSleepMs") = 0;
    WaitUntil([] { return !AnyThreadIsStuck(); });
    EXPECT_EQ(1u, *BitmapPixels(ppsStuck->Info.hbmDraw)) << "it drew on its bitmap after the preset was gone";
}

TEST_F(HostileDeathTest, AWriteOutsideTheBitmapIsSeenByAnAddressSanitizer)
{
    MakePreset(1);
    Add(MODULEINDEX_DRAWPAINTER, 0, u"HostileWriter.dll");
    Variable(u"HostileWriter.dll", u"HostileReach") = 0;
    EXPECT_EQ(1u, Step()) << "all is well while it stays inside";
    if (!ADDRESSES_ARE_CHECKED)
        GTEST_SKIP() << "this build checks no addresses";
    Variable(u"HostileWriter.dll", u"HostileReach") = 1;
    EXPECT_DEATH(Step(), "heap-buffer-overflow");
}

} // namespace
