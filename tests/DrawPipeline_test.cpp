// DrawPipeline_test.cpp -- tests DrawPipeline.cpp: order of a frame, resets, calls per frame, what modules see
#include "tests/EngineFixture.h"

namespace {

class DrawPipeline : public EngineTest {
  protected:
    // The calls of the last frames as they came, as instance numbers of what was drawn or resolved.
    static std::vector<void *> DrawOrder(const std::vector<RecorderEntry> &log)
    {
        std::vector<void *> apv;
        for (const RecorderEntry &entry : log)
            if (entry.dwCall == RECORDERCALL_DRAW || entry.dwCall == RECORDERCALL_RESOLVE)
                apv.push_back(entry.pvContext);
        return apv;
    }
    static const RecorderEntry *FindCall(const std::vector<RecorderEntry> &log, const void *pv, u32 dwCall)
    {
        for (const RecorderEntry &entry : log)
            if (entry.pvContext == pv && entry.dwCall == dwCall)
                return &entry;
        return nullptr;
    }
};

TEST_F(DrawPipeline, AFrameRunsColoursDrawingResolveOverlaysAndThenPostProcessing)
{
    MakePreset(1);
    // Added in reverse, so that the order of adding cannot be the order of drawing by accident.
    void *aapv[MODULEINDEX_MIXER][2];
    void *pvPost = Add(MODULEINDEX_NUMINDICIES, -1)->pvContext;
    for (u32 dwKind = MODULEINDEX_MIXER; dwKind-- > 0;)
        for (void *&pv : aapv[dwKind])
            pv = Add(dwKind, 0, dwKind <= MODULEINDEX_COLOREFFECT ? u"RecorderColor.dll" : u"Recorder.dll")->pvContext;
    std::vector<void *> expected;
    for (u32 dwKind = 0; dwKind < MODULEINDEX_MIXER; dwKind++) {
        if (dwKind == MODULEINDEX_OVERLAYFULL)
            expected.push_back(aapv[MODULEINDEX_COLORINTERPOLATOR][0]); // the first interpolator resolves
        expected.insert(expected.end(), {aapv[dwKind][0], aapv[dwKind][1]});
    }
    expected.push_back(pvPost);
    TakeLog();
    Step();
    EXPECT_EQ(expected, DrawOrder(TakeLog()));
}

TEST_F(DrawPipeline, OverlaysGetACopyOfTheHeadAndPostProcessingAPseudoPlane)
{
    MakePreset(1);
    ModuleSlot *pmsDraw = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsOverlay = Add(MODULEINDEX_OVERLAYPAINTER);
    ModuleSlot *pmsPost = Add(MODULEINDEX_NUMINDICIES, -1);
    RecorderBehaviour rb = {};
    rb.bWriteIndexed = 1;
    rb.dwIndexed = 77;
    Behave(pmsOverlay, rb);
    TakeLog();
    Step();
    Step();
    const std::vector<RecorderEntry> log = TakeLog();
    const RecorderEntry *pDraw = FindCall(log, pmsDraw->pvContext, RECORDERCALL_DRAW);
    EXPECT_EQ(&lppsi->psPlane[0]->Info, pDraw->ppi);
    EXPECT_EQ(1u, pDraw->bIndexed);
    EXPECT_TRUE(pDraw->bMessage && pDraw->bVisuals && pDraw->bPalette);
    const RecorderEntry *pOverlay = FindCall(log, pmsOverlay->pvContext, RECORDERCALL_DRAW);
    EXPECT_NE(&lppsi->psPlane[0]->Info, pOverlay->ppi);
    EXPECT_EQ(0u, pOverlay->bIndexed);
    EXPECT_EQ(lppsi->psPlane[0]->Info.hbmResolved, pOverlay->hbmDraw);
    EXPECT_EQ(1u, lppsi->psPlane[0]->Info.bIndexed) << "a write into the copy must not reach the plane";
    const RecorderEntry *pPost = FindCall(log, pmsPost->pvContext, RECORDERCALL_DRAW);
    EXPECT_EQ(0u, pPost->bIndexed);
    EXPECT_EQ(*lppsi->phbmOutput, pPost->hbmDraw);
    EXPECT_EQ(256, pPost->nColors);
    EXPECT_TRUE(!pPost->bMessage && !pPost->bVisuals && !pPost->bPalette);
    for (u32 i = 0; i < 256; i++)
        ASSERT_EQ(i * 0x010101u, lppsi->piPostProc.lpColorTable[i]);
}

TEST_F(DrawPipeline, BringUpOfAnOverlayAlsoSeesTheResolvedPicture)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_OVERLAYFULL);
    const std::vector<RecorderEntry> log = TakeLog();
    EXPECT_TRUE(FindCall(log, pms->pvContext, RECORDERCALL_INITIALIZE)->bDrawIsResolved);
    EXPECT_FALSE(FindCall(log, pms->pvContext, RECORDERCALL_INITIALIZE)->bIndexed);
}

TEST_F(DrawPipeline, NoCallSeesWhatTheCallsBeforeItLeftInTheHead)
{
    MakePreset(1);
    PlaneInfo *ppi = &lppsi->psPlane[0]->Info;
    HostGLWindow gone = {};
    ppi->hwndGL = &gone; // of a module that was removed
    ppi->dwTimeScale = 0;
    ppi->hdc->pfnSelectBitmap(ppi->hdc, ppi->hbmDraw);
    AddModule(lppsi, u"Recorder.dll", 0, MODULEINDEX_DRAWPAINTER, 0, 0);
    EXPECT_EQ(nullptr, ppi->hwndGL) << "building counts as a call";
    EXPECT_EQ(1u, ppi->dwTimeScale);
    EXPECT_EQ(nullptr, ppi->hdc->pSelected);
    ppi->hdc->pfnSelectBitmap(ppi->hdc, ppi->hbmDraw);
    Step();
    EXPECT_EQ(nullptr, ppi->hdc->pSelected);
}

TEST_F(DrawPipeline, FractionalCallsFollowTheFramesShown)
{
    MakePreset(1);
    ModuleSlot *pmsThird = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsEvery = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsDouble = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsHostile = Add(MODULEINDEX_DRAWPAINTER);
    pmsThird->nCallsPerFrame = -3;
    pmsEvery->nCallsPerFrame = -1;
    pmsDouble->nCallsPerFrame = 2;
    pmsHostile->nCallsPerFrame = INT32_MIN;
    GlobalSettings.dwFramesShown = 0;
    std::string sThird, sHostile;
    for (i32 i = 0; i < 7; i++) {
        TakeLog();
        Step();
        const std::vector<RecorderEntry> log = TakeLog();
        sThird += CallsOf(log, pmsThird->pvContext).empty() ? '-' : 'D';
        sHostile += CallsOf(log, pmsHostile->pvContext).empty() ? '-' : 'D';
        EXPECT_EQ("D", CallsOf(log, pmsEvery->pvContext));
        EXPECT_EQ("DD", CallsOf(log, pmsDouble->pvContext));
    }
    EXPECT_EQ("D--D--D", sThird);
    EXPECT_EQ("D------", sHostile);
}

TEST_F(DrawPipeline, AskingForAResetInEveryCallGivesOneResetInTheNextRun)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    RecorderBehaviour rb = {};
    rb.dwDrawResult = MODULEDRAW_RESET;
    Behave(pms, rb);
    pms->nCallsPerFrame = 3;
    TakeLog();
    Step();
    Step();
    EXPECT_EQ("DDDIDDD", CallsOf(TakeLog(), pms->pvContext)) << "and no ModulePreInitialize for a reset";
    rb.dwDrawResult = 0xDEADBEEF;
    Behave(pms, rb);
    Step();
    Step();
    EXPECT_EQ("IDDDDDD", CallsOf(TakeLog(), pms->pvContext)) << "other results mean nothing";
}

TEST_F(DrawPipeline, AResetFallsDueAfterDurationTimesTimeScale)
{
    GlobalSettings.TimeScale = 3;
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    TakeLog();
    SetFixedTick(1000 + 48000 - 16);
    Step();
    EXPECT_EQ("D", CallsOf(TakeLog(), pms->pvContext)) << "not at 48 seconds sharp";
    Step(1);
    EXPECT_EQ("D", CallsOf(TakeLog(), pms->pvContext)) << "the module finishes its frame first";
    Step(1);
    EXPECT_EQ("ID", CallsOf(TakeLog(), pms->pvContext));
    EXPECT_EQ(TickCount() + 48000, pms->qwNextReset);
}

TEST_F(DrawPipeline, NeverMeansNeverButAFreshlyLoadedSlotResetsOnceAfterItsFirstFrame)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    pms->nDuration = DURATION_NEVER;
    TakeLog();
    SetFixedTick(1000 + 3600000ull * 24);
    Step();
    Step();
    EXPECT_EQ("DD", CallsOf(TakeLog(), pms->pvContext));
    pms->qwNextReset = 0; // as a reader of files leaves it
    RunSlotInPlace(lppsi, pms->ppsOwner, MODULEINDEX_DRAWPAINTER, pms, MODSTEPS_BRINGUP);
    Step();
    Step();
    SetFixedTick(TickCount() + 3600000ull * 24);
    Step();
    EXPECT_EQ("PIDIDD", CallsOf(TakeLog(), pms->pvContext));
}

TEST_F(DrawPipeline, AResetClearsThePlaneFirstIfItIsToldTo)
{
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    RecorderBehaviour rb = {};
    rb.bFill = 1;
    rb.dwFill = 0x01020304;
    Behave(pms, rb);
    Step();
    pms->bResetPending = 1;
    TakeLog();
    Step();
    EXPECT_EQ(0x01020304u, FindCall(TakeLog(), pms->pvContext, RECORDERCALL_INITIALIZE)->dwFirstPixel);
    pms->bResetPending = 1;
    pms->bClearOnReset = 1;
    Step();
    EXPECT_EQ(0u, FindCall(TakeLog(), pms->pvContext, RECORDERCALL_INITIALIZE)->dwFirstPixel);
}

TEST_F(DrawPipeline, APausedSlotKeepsStillButServesAPendingReset)
{
    MakePreset(1);
    ModuleSlot *pmsZero = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsInactive = Add(MODULEINDEX_DRAWPAINTER);
    pmsZero->nCallsPerFrame = 0;
    pmsInactive->bActive = 0;
    TakeLog();
    SetFixedTick(TickCount() + 100000);
    Step();
    EXPECT_TRUE(TakeLog().empty()) << "no draw, and no reset by time";
    pmsZero->bResetPending = pmsInactive->bResetPending = 1;
    Step();
    const std::vector<RecorderEntry> log = TakeLog();
    EXPECT_EQ("I", CallsOf(log, pmsZero->pvContext));
    EXPECT_EQ("I", CallsOf(log, pmsInactive->pvContext));
}

TEST_F(DrawPipeline, OnlyAPlaneWithAnInterpolatorResolves)
{
    MakePreset(1, 0);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    RecorderBehaviour rb = {};
    rb.bFill = 1;
    rb.dwFill = 0x00ABCDEF;
    Behave(pms, rb);
    Step();
    EXPECT_EQ(0u, *BitmapPixels(*lppsi->phbmOutput)) << "nothing reaches the output";
    ModuleSlot *pmsFirst = Add(MODULEINDEX_COLORINTERPOLATOR, 0, u"RecorderColor.dll");
    ModuleSlot *pmsSecond = Add(MODULEINDEX_COLORINTERPOLATOR, 0, u"RecorderColor.dll");
    pmsFirst->nCallsPerFrame = 0;
    pmsFirst->bActive = 0;
    TakeLog();
    Step();
    EXPECT_EQ(0x00ABCDEFu, *BitmapPixels(*lppsi->phbmOutput));
    std::vector<RecorderEntry> log = TakeLog();
    EXPECT_EQ("R", CallsOf(log, pmsFirst->pvContext)) << "whatever its calls per frame say";
    EXPECT_EQ("D", CallsOf(log, pmsSecond->pvContext)) << "the first one alone resolves";
    EXPECT_EQ(nullptr, FindCall(log, pmsFirst->pvContext, RECORDERCALL_RESOLVE)->hbmTarget) << "null on an RGB plane";
}

TEST_F(DrawPipeline, AnIndexedPlaneResolvesIntoItsOutput)
{
    MakePreset(1, 1);
    ModuleSlot *pms = Add(MODULEINDEX_COLORINTERPOLATOR, 0, u"RecorderColor.dll");
    TakeLog();
    Step();
    const std::vector<RecorderEntry> log = TakeLog();
    EXPECT_EQ(lppsi->psPlane[0]->Info.hbmResolved, FindCall(log, pms->pvContext, RECORDERCALL_RESOLVE)->hbmTarget);
}

TEST_F(DrawPipeline, SeedsAreFreshForEveryBringUpAndResetAndTheTickIsTheFrames)
{
    MakePreset(1);
    ModuleSlot *pmsA = Add(MODULEINDEX_DRAWPAINTER);
    ModuleSlot *pmsB = Add(MODULEINDEX_DRAWPAINTER);
    pmsA->bResetPending = 1;
    Step(17);
    std::vector<u64> aqwSeed;
    for (const RecorderEntry &entry : TakeLog()) {
        if (entry.dwCall == RECORDERCALL_INITIALIZE)
            aqwSeed.push_back(entry.qwSeed);
        if (entry.dwCall == RECORDERCALL_DRAW) {
            EXPECT_EQ(1017u, entry.qwTick);
        }
        EXPECT_EQ(1u, entry.bFixedClock);
    }
    ASSERT_EQ(3u, aqwSeed.size());
    std::sort(aqwSeed.begin(), aqwSeed.end());
    EXPECT_EQ(aqwSeed.end(), std::unique(aqwSeed.begin(), aqwSeed.end()));
    (void)pmsB;
}

TEST_F(DrawPipeline, ControlsAreEvaluatedBeforeEveryCallAndAtEveryReset)
{
    RecorderBehaviour rb = {};
    rb.nControls = 1;
    rb.adwType[0] = CONTROLTYPE_FLOAT;
    Behave(nullptr, rb);
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    Behave(nullptr, {});
    ControlRecord *pctl = pms->apControl[0];
    ASSERT_NE(nullptr, pctl);
    EXPECT_EQ(pms, pctl->Base.pOwner);
    pctl->Float.fMin = pctl->Float.fAbsMin;
    pctl->Float.fMax = pctl->Float.fAbsMax;
    pctl->Base.dwSource = FLUIDSOURCE_SOUND;
    GlobalSettings.pSound->fRawLevel = 1.0f;
    TakeLog();
    Step();
    const std::vector<RecorderEntry> log = TakeLog();
    EXPECT_EQ(pctl->Float.fAbsMax, FindCall(log, pms->pvContext, RECORDERCALL_DRAW)->afValue[0]);
}

} // namespace
