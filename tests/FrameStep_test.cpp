// FrameStep_test.cpp -- tests FrameStep.cpp, PlaneThreads.cpp and SoundSampling.cpp
#include "platform/Notices.h"
#include "tests/EngineFixture.h"
#include "tests/AllocationCounter.h"

#include <chrono>
#include <cmath>
#include <pthread.h>
#include <set>
#include <thread>

namespace {

class FrameStep : public EngineTest {
  protected:
    // A monitor that gives what the test says.
    static inline f32 fTestLevel = 0;
    static inline u32 bTestHasLevel = 1;
    static u32 GetTestLevel(void *, i32, f32 *pfLevel)
    {
        *pfLevel = fTestLevel;
        return bTestHasLevel;
    }
    static void BindTestMonitor()
    {
        bTestHasLevel = 1;
        GlobalSettings.Monitor.pfnGetLevel = GetTestLevel;
    }
    // What was given up is never freed by the host; here, where the thread is known to be gone, it can be.
    static void FreeGivenUp(PlaneState *pps, ModuleSlot *pms)
    {
        DeleteBitmap(pps->Info.hbmDraw);
        DeleteBitmap(pps->Info.hbmResolved);
        DeleteContext(pps->Info.hdc);
        std::free(pps->Info.lpColorTable);
        std::free(pps->Info.pPaletteInfo);
        std::free(pps);
        pms->pmf->pfnDestroyControlStructure(pms->pvContext);
        std::free(pms);
    }
    u32 StepWithLevel(f32 fLevel)
    {
        fTestLevel = fLevel;
        return Step();
    }
};

TEST_F(FrameStep, TheGateOpensOnlyWhenMoreThanTheIntervalHasPassedFromStartToStart)
{
    MakePreset(1);
    GlobalSettings.FPSTarget = 60;
    const i64 nInterval = PerfFrequency() / 60;
    EXPECT_EQ(1u, Step());
    EXPECT_EQ(0u, RunFrameStep(lppsi));
    AdvanceFixedCounter(nInterval);
    EXPECT_EQ(0u, RunFrameStep(lppsi)) << "the interval itself is not enough";
    AdvanceFixedCounter(1);
    EXPECT_EQ(NextFrameCount(), PerfCounter());
    EXPECT_EQ(1u, RunFrameStep(lppsi));
    AdvanceFixedCounter(5 * nInterval);
    EXPECT_EQ(1u, RunFrameStep(lppsi));
    EXPECT_EQ(0u, RunFrameStep(lppsi)) << "a late frame carries no debt over";
    GlobalSettings.FPSTarget = 0;
    EXPECT_EQ(0u, RunFrameStep(lppsi)) << "a target of 0 must not reach a division";
}

TEST_F(FrameStep, WithoutPresetOrPlanesThereIsNoFrameButTheSoundIsSampled)
{
    SetFixedTick(TickCount() + 16);
    EXPECT_EQ(0u, RunFrameStep(nullptr));
    BindTestMonitor();
    MakePreset(0);
    EXPECT_EQ(0u, StepWithLevel(0.25f));
    EXPECT_EQ(0.25f, GlobalSettings.pSound->fRawLevel);
    GlobalSettings.ThreadedPlanes = 1;
    EXPECT_EQ(0u, StepWithLevel(0.5f));
    EXPECT_EQ(0.5f, GlobalSettings.pSound->fRawLevel);
}

TEST_F(FrameStep, SoundIsNormalisedToTheRangeOfTheRunAndJitteredByAFifthOfIt)
{
    MakePreset(1);
    BindTestMonitor();
    const SoundFrame *psf = GlobalSettings.pSound;
    StepWithLevel(0.5f);
    EXPECT_EQ(0.5f, psf->fRawLevel);
    EXPECT_TRUE(std::isfinite(psf->fLevelA) && std::isfinite(psf->afSampleMean[15])) << "the range is still 0";
    StepWithLevel(0.1f);
    StepWithLevel(0.9f);
    std::set<f32> distinct;
    for (i32 i = 0; i < 200; i++) {
        StepWithLevel(0.5f);
        ASSERT_NEAR(0.5f, psf->fLevelA, 0.16f + 1e-5f); // a fifth of a range of 0.8
        ASSERT_NEAR(0.5f, psf->fLevelB, 0.16f + 1e-5f);
        for (u32 k = 0; k < SOUND_SAMPLES; k++) {
            ASSERT_NEAR(psf->fLevelA, psf->afSampleA[k], 0.16f + 1e-5f);
            ASSERT_FLOAT_EQ((psf->afSampleA[k] + psf->afSampleB[k]) * 0.5f, psf->afSampleMean[k]);
            distinct.insert(psf->afSampleA[k]);
        }
    }
    EXPECT_GT(distinct.size(), 3000u);
    EXPECT_LT(*distinct.begin(), 0.5f - 0.2f) << "the jitter goes both ways";
    EXPECT_GT(*distinct.rbegin(), 0.5f + 0.2f);
}

TEST_F(FrameStep, AMonitorWithoutALevelOrWithNonsenseChangesNothing)
{
    MakePreset(1);
    BindTestMonitor();
    StepWithLevel(0.5f);
    StepWithLevel(NAN);
    StepWithLevel(INFINITY);
    bTestHasLevel = 0;
    StepWithLevel(0.7f);
    EXPECT_EQ(0.5f, GlobalSettings.pSound->fRawLevel);
    bTestHasLevel = 1;
    StepWithLevel(0.75f);
    EXPECT_TRUE(std::isfinite(GlobalSettings.pSound->fLevelA));
}

TEST_F(FrameStep, EachStepDrawsSixtyEightRandomNumbers)
{
    MakePreset(1);
    BindTestMonitor();
    Step();
    SeedAllRandom(42);
    Step();
    const u32 dwNext = RandomWord();
    SeedAllRandom(42);
    for (i32 i = 0; i < 68; i++)
        RandomWord();
    EXPECT_EQ(dwNext, RandomWord());
}

TEST_F(FrameStep, ThreadsDrawThePlanesAndLeaveThePausedOnesAlone)
{
    GlobalSettings.ThreadedPlanes = 1;
    MakePreset(3);
    for (i32 i = 0; i < 3; i++)
        Add(MODULEINDEX_DRAWPAINTER, i);
    lppsi->psPlane[1]->bPaused = 1;
    TakeLog();
    ASSERT_EQ(1u, Step());
    ASSERT_EQ(1u, Step());
    std::set<u64> threads;
    std::set<const PlaneInfo *> planes;
    for (const RecorderEntry &entry : TakeLog()) {
        threads.insert(entry.qwThread);
        planes.insert(entry.ppi);
    }
    EXPECT_EQ(2u, threads.size()) << "one thread a plane, the same in every frame";
    EXPECT_EQ((std::set<const PlaneInfo *>{&lppsi->psPlane[0]->Info, &lppsi->psPlane[2]->Info}), planes);
    EXPECT_EQ(0u, StartPlaneThreads()) << "they run";
    GlobalSettings.ThreadedPlanes = 0;
    EXPECT_EQ(1u, Step()) << "no frame is lost when they are turned off";
    EXPECT_EQ(1u, StartPlaneThreads()) << "they were stopped";
}

TEST_F(FrameStep, WithoutThreadsToBeHadThePlanesAreDrawnHere)
{
    pthread_attr_t before, attr;
    ASSERT_EQ(0, pthread_getattr_default_np(&before));
    ASSERT_EQ(0, pthread_getattr_default_np(&attr));
    ASSERT_EQ(0, pthread_attr_setstacksize(&attr, size_t{1} << 62));
    ASSERT_EQ(0, pthread_setattr_default_np(&attr)); // no thread can have such a stack
    GlobalSettings.ThreadedPlanes = 1;
    MakePreset(2);
    for (i32 i = 0; i < 2; i++)
        Add(MODULEINDEX_DRAWPAINTER, i);
    TakeLog();
    EXPECT_EQ(1u, Step());
    std::set<const PlaneInfo *> planes;
    for (const RecorderEntry &entry : TakeLog())
        planes.insert(entry.ppi);
    EXPECT_EQ(2u, planes.size());
    EXPECT_FALSE(PlaneThreadsRun());
    ASSERT_EQ(0, pthread_setattr_default_np(&before));
    for (i32 i = 0; i < 1000 && !PlaneThreadsRun(); i++)
        Step();
    EXPECT_TRUE(PlaneThreadsRun()) << "they are asked for again";
    EXPECT_NE(std::string::npos, NoticeText().find("no threads to give"));
}

TEST_F(FrameStep, ASeededRunIsTheSameInBothThreadModes)
{
    std::vector<std::vector<u64>> seeds;
    for (u32 bThreaded : {0u, 1u, 1u}) {
        UseFixedClock(1000);
        SeedAllRandom(9);
        GlobalSettings.ThreadedPlanes = bThreaded;
        MakePreset(4);
        std::vector<ModuleSlot *> apms;
        for (i32 i = 0; i < 8; i++)
            apms.push_back(Add(MODULEINDEX_DRAWPAINTER, i % 4));
        std::vector<u64> aqw;
        for (i32 iFrame = 0; iFrame < 5; iFrame++) {
            for (ModuleSlot *pms : apms)
                pms->bResetPending = 1;
            TakeLog();
            Step();
            std::vector<RecorderEntry> log = TakeLog();
            std::sort(log.begin(), log.end(), [](auto &a, auto &b) {
                return std::pair(a.nInstance, a.qwOrder) < std::pair(b.nInstance, b.qwOrder);
            });
            for (const RecorderEntry &entry : log)
                aqw.push_back(entry.qwSeed);
        }
        seeds.push_back(aqw);
        DestroyPresetState(lppsi);
        lppsi = nullptr;
    }
    EXPECT_EQ(seeds[0], seeds[1]);
    EXPECT_EQ(seeds[1], seeds[2]);
}

TEST_F(FrameStep, ALatePlaneDropsFramesAndDoesNotCompleteALaterOne)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 50;
    MakePreset(2);
    ModuleSlot *pmsLate = Add(MODULEINDEX_DRAWPAINTER, 0);
    Add(MODULEINDEX_DRAWPAINTER, 1);
    ASSERT_EQ(1u, Step());
    RecorderBehaviour rb = {};
    rb.bHold = 1;
    Behave(pmsLate, rb);
    TakeLog();
    DismissNotices();
    EXPECT_EQ(0u, Step()) << "dropped";
    EXPECT_NE(std::string::npos, NoticeText().find("plane 1 hangs"));
    DismissNotices();
    EXPECT_EQ(0u, Step()) << "and the next one too";
    EXPECT_EQ("", NoticeText()) << "a hang is told of once";
    EXPECT_TRUE(PlaneIsBusy(lppsi->psPlane[0]));
    EXPECT_FALSE(PlaneIsBusy(lppsi->psPlane[1]));
    EXPECT_EQ("D", CallsOf(TakeLog(), pmsLate->pvContext)) << "nobody else enters the plane";
    GlobalSettings.dwPlaneWaitMs = 20000;
    rb.bHold = 0;
    Behave(pmsLate, rb);
    EXPECT_EQ(1u, Step());
    const std::vector<RecorderEntry> log = TakeLog();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ("D", CallsOf(log, pmsLate->pvContext).substr(0, 1));
    EXPECT_EQ(TickCount(), log.back().qwTick) << "the frame that was handed out is the present one";
}

TEST_F(FrameStep, AStuckThreadIsGivenUpWithAllThatItMayTouch)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 50;
    MakePreset(1);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    RecorderBehaviour rb = {};
    rb.bHold = 1;
    Behave(pms, rb);
    EXPECT_EQ(0u, Step());
    PlaneState *pps = lppsi->psPlane[0];
    void *pv = pms->pvContext;
    testing::internal::CaptureStderr();
    DestroyPresetState(lppsi);
    lppsi = nullptr;
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find("stuck"));
    EXPECT_TRUE(AnyThreadIsStuck());
    EXPECT_EQ(131, pps->Info.nWidth) << "left alone, not freed";
    EXPECT_EQ(std::string::npos, CallsOf(TakeLog(), pv).find('X'));
    rb.bHold = 0;
    const auto behave = Export<RecorderSetBehaviourFn>(u"Recorder.dll", u"RecorderSetBehaviour");
    behave(pv, &rb);
    while (AnyThreadIsStuck())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    FreeGivenUp(pps, pms);
}

TEST_F(FrameStep, RemovingAPlaneThatHangsBringsTheFramesOfTheOthersBack)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 50;
    MakePreset(2);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
    PlaneState *pps = lppsi->psPlane[0];
    RecorderBehaviour rb = {};
    rb.bHold = 1;
    Behave(pms, rb);
    EXPECT_EQ(0u, Step());
    EXPECT_EQ(nullptr, Add(MODULEINDEX_DRAWPAINTER)) << "nothing is built in a plane that somebody is inside of";
    EXPECT_NE(0u, RemovePlane(lppsi, pps));
    GlobalSettings.dwPlaneWaitMs = 20000;
    EXPECT_EQ(1u, Step());
    rb.bHold = 0;
    Behave(pms, rb);
    while (AnyThreadIsStuck())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    FreeGivenUp(pps, pms);
}

TEST_F(FrameStep, AnOldDoneEventDoesNotCountForAPlaneThatWasAdded)
{
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.dwPlaneWaitMs = 20000;
    MakePreset(1);
    Step();
    Step();
    AddPlane(lppsi, 1, 0);
    ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER, 1);
    RecorderBehaviour rb = {};
    rb.nSleepMs = 100;
    rb.bFill = 1;
    rb.dwFill = 5;
    Behave(pms, rb);
    EXPECT_EQ(1u, Step());
    EXPECT_EQ(5u, *BitmapPixels(lppsi->psPlane[1]->Info.hbmDraw)) << "the step waited for the new plane";
}

TEST_F(FrameStep, AResizeComesAfterTheFrameWithThreadsAndBeforeItWithout)
{
    GlobalSettings.bVisualsWindow = 1;
    for (u32 bThreaded : {0u, 1u}) {
        GlobalSettings.ThreadedPlanes = bThreaded;
        GlobalSettings.nBufferWidth = 131;
        GlobalSettings.nBufferHeight = 129;
        GlobalSettings.bVisualsWindow = 0;
        MakePreset(1);
        ModuleSlot *pms = Add(MODULEINDEX_DRAWPAINTER);
        GlobalSettings.bVisualsWindow = 1;
        GlobalSettings.hwndVisuals.nWidth = 200 + static_cast<i32>(bThreaded);
        GlobalSettings.hwndVisuals.nHeight = 200;
        GlobalSettings.bResizePending = 1;
        TakeLog();
        EXPECT_EQ(1u, Step());
        EXPECT_EQ(bThreaded ? "DCPI" : "CPID", CallsOf(TakeLog(), pms->pvContext));
        EXPECT_EQ(0u, GlobalSettings.bResizePending);
        EXPECT_EQ(200, (*lppsi->phbmOutput)->nHeight);
        EXPECT_EQ(1u, Step());
        DestroyPresetState(lppsi);
        lppsi = nullptr;
    }
}

TEST_F(FrameStep, PostProcessingServesItsResetsInTheExtraPassWithoutThreads)
{
    for (u32 bThreaded : {0u, 1u}) {
        GlobalSettings.ThreadedPlanes = bThreaded;
        MakePreset(1);
        ModuleSlot *pmsPlane = Add(MODULEINDEX_DRAWPAINTER);
        ModuleSlot *pmsPost = Add(MODULEINDEX_NUMINDICIES, -1);
        Step();
        pmsPost->bResetPending = 1;
        TakeLog();
        Step();
        const std::vector<RecorderEntry> log = TakeLog();
        EXPECT_EQ("ID", CallsOf(log, pmsPost->pvContext));
        EXPECT_EQ("D", CallsOf(log, pmsPlane->pvContext));
        DestroyPresetState(lppsi);
        lppsi = nullptr;
    }
}

TEST_F(FrameStep, TheStepAllocatesNothing)
{
    BindTestMonitor();
    for (u32 bThreaded : {0u, 1u}) {
        GlobalSettings.ThreadedPlanes = bThreaded;
        RecorderBehaviour rb = {};
        MakePreset(4);
        for (i32 i = 0; i < 4; i++)
            Add(MODULEINDEX_DRAWPAINTER, i, u"Idle.dll");
        AddMixRule(lppsi)->MixOp = MIXOP_BLEND;
        for (i32 i = 0; i < 20; i++)
            Step(); // what is made on first use is made now
        const u64 qwBefore = AllocationCount();
        for (i32 i = 0; i < 200; i++)
            Step();
        EXPECT_EQ(qwBefore, AllocationCount()) << (bThreaded ? "threaded" : "single-threaded");
        DestroyPresetState(lppsi);
        lppsi = nullptr;
        (void)rb;
    }
}

} // namespace
