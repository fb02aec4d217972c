// PresetManager_test.cpp -- tests PresetManager.cpp, ModuleSlots.cpp and BufferSize.cpp
#include "tests/EngineFixture.h"

#include "engine/BufferSize.h"

#include <algorithm>

namespace {

class PresetManager : public EngineTest {};

TEST_F(PresetManager, AFifthPlaneIsRefusedAndChangesNothing)
{
    MakePreset(4);
    PlaneState *ppsLast = lppsi->psPlane[3];
    EXPECT_EQ(nullptr, AddPlane(lppsi, 1, 0));
    EXPECT_EQ(4, lppsi->nPlanes);
    EXPECT_EQ(ppsLast, lppsi->psPlane[3]);
}

TEST_F(PresetManager, RemovingAPlaneMovesTheLaterOnesDownAndDropsTheMixerRules)
{
    MakePreset(3);
    PlaneState *ppsSecond = lppsi->psPlane[1];
    PlaneState *ppsThird = lppsi->psPlane[2];
    AddMixRule(lppsi);
    Step();
    EXPECT_EQ(&lppsi->hbmFinal, lppsi->phbmOutput);
    EXPECT_NE(0u, RemovePlane(lppsi, lppsi->psPlane[0]));
    EXPECT_EQ(2, lppsi->nPlanes);
    EXPECT_EQ(ppsSecond, lppsi->psPlane[0]);
    EXPECT_EQ(ppsThird, lppsi->psPlane[1]);
    EXPECT_EQ(nullptr, lppsi->psPlane[2]);
    EXPECT_EQ(0u, lppsi->nMixRules);
    EXPECT_EQ(nullptr, lppsi->phbmOutput) << "it may point into the plane that is gone";
    Step();
    EXPECT_EQ(&ppsSecond->Info.hbmResolved, lppsi->phbmOutput);
    EXPECT_NE(0u, RemovePlane(lppsi, nullptr));
    EXPECT_EQ(0, lppsi->nPlanes);
    EXPECT_EQ(0u, RemovePlane(lppsi, ppsSecond)) << "it is gone already";
}

TEST_F(PresetManager, ExchangedPlanesAreDrawnInTheirNewOrder)
{
    MakePreset(3);
    PlaneState *const apps[] = {lppsi->psPlane[0], lppsi->psPlane[1], lppsi->psPlane[2]};
    AddMixRule(lppsi);
    Step();
    EXPECT_NE(0u, SwapPlanes(lppsi, 0, 2));
    EXPECT_EQ(nullptr, lppsi->phbmOutput);
    for (i32 i = 0; i < 3; i++)
        EXPECT_EQ(apps[2 - i], lppsi->psPlane[i]);
    EXPECT_EQ(1u, lppsi->nMixRules);
    for (const auto &[iA, iB] : {std::pair{-1, 0}, std::pair{0, 3}, std::pair{4, 1}})
        EXPECT_EQ(0u, SwapPlanes(lppsi, iA, iB));
    EXPECT_EQ(apps[1], lppsi->psPlane[1]);
    RemoveAllMixRules(lppsi);
    Step();
    EXPECT_EQ(&apps[2]->Info.hbmResolved, lppsi->phbmOutput);
}

TEST_F(PresetManager, PostProcessingNeverSeesThePictureOfAPlaneThatIsGone)
{
    MakePreset(2);
    ModuleSlot *pms = Add(MODULEINDEX_NUMINDICIES, -1);
    pms->bClearOnReset = 1;
    Step(); // without rules the picture is the first plane's own
    pms->bResetPending = 1;
    RemovePlane(lppsi, lppsi->psPlane[0]);
    EXPECT_EQ(lppsi->hbmFinal, lppsi->piPostProc.hbmDraw);
    Step();
    pms->bResetPending = 1;
    EXPECT_NE(0u, DestroyPresetState(lppsi)) << "the reset that is due then clears a picture, too";
    lppsi = nullptr;
}

TEST_F(PresetManager, TheDefaultPresetStandsWithoutItsModules)
{
    lppsi = CreatePresetState(1);
    ASSERT_EQ(2, lppsi->nPlanes);
    EXPECT_NE(0u, lppsi->psPlane[0]->Info.bIndexed);
    EXPECT_NE(0u, lppsi->psPlane[1]->Info.bIndexed);
    for (PlaneState *pps : {lppsi->psPlane[0], lppsi->psPlane[1]})
        EXPECT_EQ(0, std::count_if(pps->anModules, pps->anModules + MODULEINDEX_NUMINDICIES, [](i32 n) { return n; }));
    ASSERT_EQ(1u, lppsi->nMixRules);
    const MixRule &rule = lppsi->asMixRule[0];
    EXPECT_EQ(0, rule.SrcIdx1);
    EXPECT_EQ(1, rule.SrcIdx2);
    EXPECT_EQ(0, rule.AplhaIdx);
    EXPECT_EQ(MIXOP_BLEND, rule.MixOp);
    EXPECT_EQ(1u, Step());
}

TEST_F(PresetManager, AListTakesThirtyTwoModulesAndNoMore)
{
    MakePreset(1);
    for (i32 i = 0; i < LIST_MODULES_MAX; i++) {
        ASSERT_NE(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u"Idle.dll"));
        ASSERT_NE(nullptr, Add(MODULEINDEX_NUMINDICIES, -1, u"Idle.dll"));
    }
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u"Idle.dll"));
    EXPECT_EQ(nullptr, Add(MODULEINDEX_NUMINDICIES, -1, u"Idle.dll"));
    EXPECT_EQ(LIST_MODULES_MAX, lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER]);
    EXPECT_EQ(LIST_MODULES_MAX, lppsi->nPostProc);
    EXPECT_EQ(1u, Step());
}

TEST_F(PresetManager, WhatCannotBeAddedLeavesThePresetAsItWas)
{
    MakePreset(1);
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u""));
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u"NoSuch.dll"));
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, 1)) << "no such plane";
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, -2));
    EXPECT_EQ(nullptr, Add(MODULEINDEX_MIXER)) << "a list that stays empty";
    EXPECT_EQ(nullptr, Add(12345));
    FindModuleRecord(u"Idle.dll")->md.bUnavailable = 1;
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u"Idle.dll"));
    EXPECT_EQ(0, lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER]);
    EXPECT_NE(nullptr, Add(MODULEINDEX_DRAWPAINTER, 0, u"RECORDER.DLL")) << "names are compared without case";
}

TEST_F(PresetManager, AnInstanceLivesFromBuildingToDestroyingInOrder)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    void *pv = pms->pvContext;
    EXPECT_EQ(16u, pms->nDuration);
    EXPECT_EQ(17000u, pms->qwNextReset);
    EXPECT_EQ(1, pms->nCallsPerFrame);
    EXPECT_EQ(1, pms->bActive);
    Step();
    EXPECT_NE(0u, RemoveModule(lppsi, pms));
    EXPECT_EQ("BPIDCX", CallsOf(TakeLog(), pv));
    EXPECT_EQ(0, lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER]);
}

TEST_F(PresetManager, RemovingClosesTheGapAndNullRemovesAll)
{
    MakePreset(2);
    ModuleSlot *pmsA = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsB = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsC = Add(MODULEINDEX_DRAWPAINTER);
    Add(MODULEINDEX_OVERLAYEFFECT, 1);
    Add(MODULEINDEX_NUMINDICIES, -1);
    RemoveModule(lppsi, pmsB);
    EXPECT_EQ(pmsA, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][0]);
    EXPECT_EQ(pmsC, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][1]);
    EXPECT_EQ(nullptr, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][2]);
    EXPECT_NE(0u, RemoveModule(lppsi, nullptr));
    EXPECT_EQ(0, lppsi->psPlane[0]->anModules[MODULEINDEX_DRAWPAINTER]);
    EXPECT_EQ(0, lppsi->psPlane[1]->anModules[MODULEINDEX_OVERLAYEFFECT]);
    EXPECT_EQ(0, lppsi->nPostProc);
    EXPECT_EQ(0u, RemoveModule(lppsi, nullptr));
}

TEST_F(PresetManager, OnlySlotsOfOneOwnerChangePlaces)
{
    MakePreset(2);
    ModuleSlot *pmsA = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsB = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsOther = Add(MODULEINDEX_DRAWPAINTER, 1);
    ModuleSlot *pmsP = Add(MODULEINDEX_NUMINDICIES, -1);
    ModuleSlot *pmsQ = Add(MODULEINDEX_NUMINDICIES, -1);
    EXPECT_NE(0u, SwapModuleSlots(lppsi, pmsA, pmsB));
    EXPECT_EQ(pmsB, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][0]);
    EXPECT_EQ(pmsA, lppsi->psPlane[0]->apModule[MODULEINDEX_DRAWPAINTER][1]);
    EXPECT_NE(0u, SwapModuleSlots(lppsi, pmsP, pmsQ));
    EXPECT_EQ(pmsQ, lppsi->apPostProc[0]);
    EXPECT_EQ(0u, SwapModuleSlots(lppsi, pmsA, pmsOther));
    EXPECT_EQ(0u, SwapModuleSlots(lppsi, pmsA, pmsP));
    EXPECT_EQ(pmsOther, lppsi->psPlane[1]->apModule[MODULEINDEX_DRAWPAINTER][0]);
}

// The window asks for another size; the preset follows.
class PresetResize : public EngineTest {
  protected:
    void ResizeTo(i32 nWidth, i32 nHeight)
    {
        GlobalSettings.bVisualsWindow = 1;
        GlobalSettings.hwndVisuals.nWidth = nWidth;
        GlobalSettings.hwndVisuals.nHeight = nHeight;
        ResizePresetBuffers(lppsi, GlobalSettings.DetailScale);
    }
};

TEST_F(PresetResize, EveryBitmapGetsTheNewSizeAndEveryModuleANewBringUp)
{
    MakePreset(2);
    AddMixRule(lppsi);
    AddMixRule(lppsi);
    ModuleSlot *pmsPlane = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsOverlay = Add(MODULEINDEX_OVERLAYPAINTER, 1);
    ModuleSlot *pmsPost = Add(MODULEINDEX_NUMINDICIES, -1);
    TakeLog();
    ResizeTo(257, 200);
    std::vector<HostBitmap *> ahbm = {lppsi->hbmFinal, lppsi->asMixRule[0].hbmRule, lppsi->asMixRule[1].hbmRule};
    for (i32 i = 0; i < 2; i++)
        ahbm.insert(ahbm.end(), {lppsi->psPlane[i]->Info.hbmDraw, lppsi->psPlane[i]->Info.hbmResolved});
    for (const HostBitmap *hbm : ahbm)
        EXPECT_TRUE(hbm->nWidth == 257 && hbm->nHeight == 200);
    EXPECT_EQ(lppsi->hbmFinal, lppsi->piPostProc.hbmDraw);
    EXPECT_EQ(257, lppsi->piPostProc.nWidth);
    const std::vector<RecorderEntry> log = TakeLog();
    for (ModuleSlot *pms : {pmsPlane, pmsOverlay, pmsPost})
        EXPECT_EQ("CPI", CallsOf(log, pms->pvContext));
    for (const RecorderEntry &entry : log)
        if (entry.dwCall == RECORDERCALL_INITIALIZE) {
            EXPECT_EQ(257, entry.nWidth);
            EXPECT_EQ(200, entry.nHeight);
        }
}

TEST_F(PresetResize, ModulesOfAPausedPlaneDoNotMeetTheNewSizeUnprepared)
{
    MakePreset(2);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER, 1);
    lppsi->psPlane[1]->bPaused = 1;
    TakeLog();
    ResizeTo(300, 300);
    Step();
    lppsi->psPlane[1]->bPaused = 0;
    Step();
    EXPECT_EQ("CPID", CallsOf(TakeLog(), pms->pvContext));
}

TEST_F(PresetResize, NothingHappensWithoutAChangeOrWhileALateThreadIsInside)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    ResizeTo(200, 200);
    TakeLog();
    ResizeTo(200, 200);
    EXPECT_EQ("", CallsOf(TakeLog(), pms->pvContext));
    lppsi->psPlane[0]->dwBusy = 1;
    const HostBitmap *hbm = lppsi->psPlane[0]->Info.hbmDraw;
    ResizeTo(220, 220);
    EXPECT_EQ(hbm, lppsi->psPlane[0]->Info.hbmDraw);
    EXPECT_NE(0u, GlobalSettings.bResizePending) << "put off, not forgotten";
    lppsi->psPlane[0]->dwBusy = 0;
    EXPECT_EQ(1u, Step());
    EXPECT_EQ(220, lppsi->psPlane[0]->Info.nWidth);
}

// The size of a window of W by H, worked out the slow way.
BufferSize SlowFit(i64 nW, i64 nH, i64 nScale, i64 nCap)
{
    const i64 nLimit = nCap < 200000 ? 200000 : nCap > 33177600 ? 33177600 : nCap;
    if (nLimit == 33177600 && nScale == 100)
        return {static_cast<i32>(nW), static_cast<i32>(nH)};
    i64 nDivisor = 101;
    while ((nW * nScale / nDivisor) * (nH * nScale / nDivisor) > nLimit)
        nDivisor++;
    return {static_cast<i32>(nW * nScale / nDivisor), static_cast<i32>(nH * nScale / nDivisor)};
}

class BufferSizes : public EngineTest {
  protected:
    void SetWindow(i32 nWidth, i32 nHeight)
    {
        GlobalSettings.bVisualsWindow = 1;
        GlobalSettings.hwndVisuals.nWidth = nWidth;
        GlobalSettings.hwndVisuals.nHeight = nHeight;
    }
};

TEST_F(BufferSizes, FollowScaleAndCapWithTheirOddFirstDivisor)
{
    for (u32 dwCap : {0u, 200000u, 1000000u, 33177599u, 33177600u, 0xFFFFFFFFu})
        for (i32 nScale : {10, 37, 99, 100})
            for (i32 nWidth : {640, 1921, 3840, 8191}) {
                const BufferSize expected = SlowFit(nWidth, 1081, nScale, dwCap);
                const BufferSize size = FitBufferSize(nWidth, 1081, nScale, dwCap);
                EXPECT_EQ(expected.nWidth, size.nWidth) << dwCap << " " << nScale << " " << nWidth;
                EXPECT_EQ(expected.nHeight, size.nHeight);
            }
    const BufferSize capped = FitBufferSize(1010, 505, 100, 33177599);
    EXPECT_EQ(1000, capped.nWidth) << "below the full cap it is 100/101 of the window";
}

TEST_F(BufferSizes, AreClampedLaterButNotAtTheStart)
{
    SetWindow(100, 100);
    SetStartBufferSize();
    EXPECT_EQ(100, GlobalSettings.nBufferWidth);
    EXPECT_NE(0u, ComputeBufferSize(100));
    EXPECT_EQ(128, GlobalSettings.nBufferWidth);
    EXPECT_EQ(128, GlobalSettings.nBufferHeight);
    EXPECT_EQ(0u, ComputeBufferSize(100)) << "no change";
}

TEST_F(BufferSizes, StayUsableWithoutAWindowOrWithAnUnknownSize)
{
    EXPECT_EQ(0u, ComputeBufferSize(100));
    SetWindow(0, 0);
    EXPECT_EQ(0u, ComputeBufferSize(100));
    SetStartBufferSize();
    EXPECT_EQ(131, GlobalSettings.nBufferWidth);
    EXPECT_EQ(129, GlobalSettings.nBufferHeight);
}

TEST_F(BufferSizes, BelongToTheRecorderWhileItRuns)
{
    SetWindow(500, 400);
    GlobalSettings.bRecording = 1;
    GlobalSettings.FrameRecordWidth = 64;
    GlobalSettings.FrameRecordHeight = 9000;
    EXPECT_NE(0u, ComputeBufferSize(100));
    EXPECT_EQ(64, GlobalSettings.nBufferWidth) << "exactly and unclamped";
    EXPECT_EQ(9000, GlobalSettings.nBufferHeight);
    EXPECT_NE(0u, ComputeBufferSize(100)) << "it always counts as changed";
}

} // namespace
