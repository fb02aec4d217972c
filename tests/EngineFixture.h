// EngineFixture.h -- an engine on a fixed clock with a fixed seed, and modules that write down what happens to them
#pragma once

#include "app/SettingsTable.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"
#include "engine/DrawPipeline.h"
#include "engine/FrameStep.h"
#include "engine/MixRules.h"
#include "engine/ModuleSlots.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetManager.h"
#include "engine/SoundSampling.h"
#include "modules/ModuleRegistry.h"
#include "output/mixer/PlaneMixer.h"
#include "output/FrameStats.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Random.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"
#include "tests/modules/RecorderLog.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

class EngineTest : public testing::Test {
  protected:
    void SetUp() override
    {
        UseFixedClock(1000);
        SeedAllRandom(1);
        InitFolders({u"/nowhere/vorticade", {}, FromUtf8(TEST_MODULE_FOLDER)});
        SetDefaultSettings();
        ForgetSoundRange();
        GlobalSettings.nBufferWidth = 131;
        GlobalSettings.nBufferHeight = 129;
        GlobalSettings.ThreadedPlanes = 0;
        GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
        for (const char16_t *pszName : {u"Recorder.dll", u"RecorderColor.dll", u"Idle.dll"})
            ASSERT_EQ(1u, LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/" + pszName));
        for (const char16_t *pszName : {u"Recorder.dll", u"RecorderColor.dll"}) {
            Share(pszName)(&qwOrder);
            Take(pszName)(nullptr, 0);
        }
    }

    void TearDown() override
    {
        DestroyPresetState(lppsi);
        lppsi = nullptr;
        UnloadModules();
        std::free(GlobalSettings.pSound);
        GlobalSettings = {};
        UseSystemClock();
        UseStrongRandom();
    }

    template <typename Fn> static Fn Export(const char16_t *pszDll, const char16_t *pszName)
    {
        return FindEntryPointAs<Fn>(FindModuleRecord(pszDll)->mf.pLibrary, pszName);
    }
    static RecorderTakeFn Take(const char16_t *pszDll)
    {
        return Export<RecorderTakeFn>(pszDll, u"RecorderTake");
    }
    static RecorderShareOrderFn Share(const char16_t *pszDll)
    {
        return Export<RecorderShareOrderFn>(pszDll, u"RecorderShareOrder");
    }
    // For one instance, or for all those of Recorder.dll that are built from now on.
    static void Behave(ModuleSlot *pms, const RecorderBehaviour &rb)
    {
        Export<RecorderSetBehaviourFn>(pms ? pms->pszDll : u"Recorder.dll",
                                       u"RecorderSetBehaviour")(pms ? pms->pvContext : nullptr, &rb);
    }

    // Everything that happened to the recorders since the last call, in order.
    static std::vector<RecorderEntry> TakeLog()
    {
        std::vector<RecorderEntry> log;
        for (const char16_t *pszDll : {u"Recorder.dll", u"RecorderColor.dll"}) {
            RecorderEntry entry;
            while (Take(pszDll)(&entry, 1))
                log.push_back(entry);
        }
        std::sort(log.begin(), log.end(), [](auto &a, auto &b) { return a.qwOrder < b.qwOrder; });
        return log;
    }
    // The same as calls of one instance only, one letter each: Build, Pre, Init, Draw, Resolve, Cleanup, X destroy.
    static std::string CallsOf(const std::vector<RecorderEntry> &log, const void *pvContext)
    {
        std::string s;
        for (const RecorderEntry &entry : log)
            if (entry.pvContext == pvContext)
                s += " BPIDRCX"[entry.dwCall];
        return s;
    }

    void MakePreset(i32 nPlanes, u32 bIndexed = 1)
    {
        lppsi = CreatePresetState(0);
        for (i32 i = 0; i < nPlanes; i++)
            AddPlane(lppsi, bIndexed, 0);
    }
    ModuleSlot *Add(u32 dwModuleType, i32 iPlane = 0, const char16_t *pszDll = u"Recorder.dll")
    {
        return AddModule(lppsi, pszDll, iPlane, dwModuleType, 0, 1);
    }
    // One frame, dt milliseconds later, shown.
    u32 Step(u64 nMs = 16)
    {
        SetFixedTick(TickCount() + nMs);
        const u32 bFrame = RunFrameStep(lppsi);
        if (bFrame)
            CountShownFrame();
        return bFrame;
    }

    PresetState *lppsi = nullptr;
    u64 qwOrder = 0;
};
