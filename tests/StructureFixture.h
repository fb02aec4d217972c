// StructureFixture.h -- a current preset whose tree follows it, for tests of panels
#pragma once

#include "tests/TreeFixture.h"

#include "editing/TreeFollower.h"
#include "engine/PresetDocument.h"
#include "modules/ShaderList.h"

#include <thread>

class StructureTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        FollowPreset(tree);
    }
    void TearDown() override
    {
        UsePreset(nullptr);
        UnfollowPreset(tree);
        FreeShaderList();
        TreeTest::TearDown();
    }
    // It becomes the current one, in the place of another; its tree comes by the news.
    void UsePreset(PresetState *p)
    {
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, p);
        lppsi = p;
        SetPresetChanged(u"Test.vd", 0);
    }
    void UsePlanes(i32 nPlanes)
    {
        MakePreset(nPlanes);
        UsePreset(lppsi);
    }
    ModuleSlot *AddIdle(u32 dwList, i32 iPlane = 0)
    {
        ModuleSlot *pms = Add(dwList, iPlane, u"Idle.dll");
        SyncPresetTree(tree);
        return pms;
    }
    // Whether it was marked since the last time.
    static bool TakeMark()
    {
        const bool bMarked = bPresetChanged != 0;
        SetPresetChanged(u"Test.vd", 0);
        return bMarked;
    }
    TreeNode *PlanesNode() const
    {
        return ChildOfType(tree.pRoot, OBJECT_PLANETREE);
    }
    TreeNode *PostProcNode() const
    {
        return ChildOfType(tree.pRoot, OBJECT_POSTPROC);
    }
    static ModuleDescription &Described(const char16_t *pszDll)
    {
        return FindModuleRecord(pszDll)->md;
    }
    // A thread hangs in the first plane, in a module that is added here, until LetGo.
    void Hang()
    {
        GlobalSettings.ThreadedPlanes = 1;
        GlobalSettings.dwPlaneWaitMs = 50;
        pmsHanging = Add(MODULEINDEX_DRAWPAINTER);
        SyncPresetTree(tree);
        RecorderBehaviour rb = {};
        rb.bHold = 1;
        Behave(pmsHanging, rb);
        EXPECT_EQ(0u, Step());
        ASSERT_TRUE(PlaneIsBusy(lppsi->psPlane[0]));
    }
    void LetGo()
    {
        Behave(pmsHanging, {});
        while (PlaneIsBusy(lppsi->psPlane[0]) || AnyThreadIsStuck())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    ModuleSlot *pmsHanging = nullptr;
};
