// ModuleSlots.cpp -- makes, removes and exchanges module instances
#include "engine/ModuleSlots.h"

#include "controls/ControlManager.h"
#include "engine/DrawPipeline.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetNews.h"
#include "modules/HiddenGLWindows.h"
#include "modules/ModuleCalls.h"
#include "modules/ModuleRegistry.h"
#include "modules/OpenGLTest.h"
#include "modules/ShaderList.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr u32 DEFAULT_DURATION = 16; // seconds

// A list of slots, wherever it lives.
struct SlotList {
    ModuleSlot **apSlot; // LIST_MODULES_MAX entries
    i32 *pnCount;        // null: none
    PlaneState *pps;     // null: post-processing
    u32 dwModuleType;
};

SlotList PlaneList(PlaneState *pps, u32 dwModuleType)
{
    return {pps->apModule[dwModuleType], &pps->anModules[dwModuleType], pps, dwModuleType};
}

SlotList PostProcessingList(PresetState *lppsi)
{
    return {lppsi->apPostProc, &lppsi->nPostProc, nullptr, MODULEINDEX_NUMINDICIES};
}

SlotList FindList(PresetState *lppsi, i32 iPlane, u32 dwModuleType)
{
    if (iPlane == -1)
        return PostProcessingList(lppsi);
    if (iPlane < 0 || iPlane >= PLANES_MAX || !lppsi->psPlane[iPlane] || dwModuleType >= MODULEINDEX_MIXER)
        return {};
    return PlaneList(lppsi->psPlane[iPlane], dwModuleType);
}

i32 FindInList(const SlotList &list, const ModuleSlot *pms)
{
    for (i32 i = 0; i < *list.pnCount; i++)
        if (list.apSlot[i] == pms)
            return i;
    return -1;
}

// The list that holds the slot; without pnCount if none does.
SlotList ListOfSlot(PresetState *lppsi, const ModuleSlot *pms)
{
    if (!pms->ppsOwner)
        return FindInList(PostProcessingList(lppsi), pms) >= 0 ? PostProcessingList(lppsi) : SlotList{};
    for (u32 i = 0; i < MODULEINDEX_MIXER; i++)
        if (FindInList(PlaneList(pms->ppsOwner, i), pms) >= 0)
            return PlaneList(pms->ppsOwner, i);
    return {};
}

void BindShader(ModuleSlot *pms, PlaneState *pps, u32 dwShader)
{
    const ShaderEntry *pse = pps && dwShader ? GetShaderEntry(dwShader - 1) : nullptr;
    if (!pse)
        return;
    pms->lpszShader = pse->szName;
    pps->Info.lpszShaderPath = pse->szPath;
}

// Lets the module make its instance and its controls.
void BuildSlot(PresetState *lppsi, PlaneState *pps, ModuleSlot *pms)
{
    PlaneInfo *ppi = pps ? &pps->Info : &lppsi->piPostProc;
    RefreshHead(ppi, pms);
    BeginControls(pms);
    CallBuildControlStructure(pms, ppi);
    EndControls(pms);
    if (pps)
        pps->Info.lpszShaderPath = nullptr;
}

void SetSlotDefaults(ModuleSlot *pms)
{
    pms->nCallsPerFrame = 1;
    pms->nDuration = DEFAULT_DURATION;
    pms->qwNextReset = TickCount() + static_cast<u64>(pms->nDuration) * GlobalSettings.TimeScale * 1000;
}

ModuleSlot *NewSlot(ModuleRecord *pmr)
{
    auto *pms = static_cast<ModuleSlot *>(std::calloc(1, sizeof(ModuleSlot)));
    if (!pms)
        return nullptr;
    pms->pmf = &pmr->mf;
    pms->pmd = &pmr->md;
    pms->pszDll = pmr->szDll;
    pms->Random = NewRandomStream();
    if (pmr->md.bNeedsOpenGL)
        pms->hwndGL = CreateHiddenGLWindow();
    return pms;
}

void FreeSlot(ModuleSlot *pms)
{
    for (ControlRecord *&pctl : pms->apControl) {
        if (pctl)
            FreeControl(pctl);
        pctl = nullptr;
    }
    if (pms->hwndGL)
        DestroyHiddenGLWindow(pms->hwndGL);
    std::free(pms);
}

void RemoveFromList(PresetState *lppsi, const SlotList &list, i32 iSlot)
{
    ModuleSlot *pms = list.apSlot[iSlot];
    RunSlotInPlace(lppsi, list.pps, list.dwModuleType, pms, MODSTEPS_TAKEDOWN);
    std::copy(list.apSlot + iSlot + 1, list.apSlot + *list.pnCount, list.apSlot + iSlot);
    list.apSlot[--*list.pnCount] = nullptr;
    FreeSlot(pms);
}

u32 EmptyList(PresetState *lppsi, const SlotList &list)
{
    const u32 bAny = *list.pnCount > 0;
    while (*list.pnCount > 0)
        RemoveFromList(lppsi, list, 0);
    return bAny;
}

void TellSlots(PresetState *lppsi, const SlotList &list)
{
    TellIfCurrent({NewsKind::Slots, lppsi, list.pps, nullptr, nullptr});
}

void TellSlotGoes(PresetState *lppsi, ModuleSlot *pms)
{
    TellIfCurrent({NewsKind::SlotGoes, lppsi, pms->ppsOwner, pms, nullptr});
}

// With news.
u32 RemoveList(PresetState *lppsi, const SlotList &list)
{
    std::for_each_n(list.apSlot, *list.pnCount, [=](ModuleSlot *pms) { TellSlotGoes(lppsi, pms); });
    if (!EmptyList(lppsi, list))
        return 0;
    TellSlots(lppsi, list);
    return 1;
}

} // namespace

ModuleSlot *AddModule(PresetState *lppsi, std::u16string_view dll, i32 iPlane, u32 dwModuleType, u32 dwShader,
                      u32 bInitialize)
{
    ASSERT_MAIN_THREAD();
    SettlePlaneThreads();
    ModuleRecord *pmr = dll.empty() ? nullptr : FindModuleRecord(dll);
    const SlotList list = FindList(lppsi, iPlane, dwModuleType);
    if (!pmr || !ModuleIsAvailable(*pmr) || !list.pnCount || *list.pnCount >= LIST_MODULES_MAX)
        return nullptr;
    if (list.pps && PlaneIsBusy(list.pps))
        return nullptr;
    ModuleSlot *pms = NewSlot(pmr);
    if (!pms)
        return nullptr;
    BindShader(pms, list.pps, dwShader);
    BuildSlot(lppsi, list.pps, pms);
    SetSlotDefaults(pms);
    pms->ppsOwner = list.pps;
    list.apSlot[(*list.pnCount)++] = pms;
    if (bInitialize)
        RunSlotInPlace(lppsi, list.pps, dwModuleType, pms, MODSTEPS_BRINGUP);
    pms->bActive = 1;
    TellSlots(lppsi, list);
    return pms;
}

u32 RemoveModule(PresetState *lppsi, ModuleSlot *pms)
{
    ASSERT_MAIN_THREAD();
    SettlePlaneThreads();
    if (pms) {
        const SlotList list = ListOfSlot(lppsi, pms);
        if (!list.pnCount || (list.pps && PlaneIsBusy(list.pps)))
            return 0;
        TellSlotGoes(lppsi, pms);
        RemoveFromList(lppsi, list, FindInList(list, pms));
        TellSlots(lppsi, list);
        return 1;
    }
    u32 bAny = 0;
    for (PlaneState *pps : lppsi->psPlane)
        for (u32 i = 0; pps && !PlaneIsBusy(pps) && i < MODULEINDEX_MIXER; i++)
            bAny |= RemoveList(lppsi, PlaneList(pps, i));
    return bAny | RemoveList(lppsi, PostProcessingList(lppsi));
}

void RemovePlaneModules(PlaneState *pps)
{
    ASSERT_MAIN_THREAD();
    for (u32 i = 0; i < MODULEINDEX_MIXER; i++)
        EmptyList(pps->lppsi, PlaneList(pps, i));
}

u32 SwapModuleSlots(PresetState *lppsi, ModuleSlot *pmsA, ModuleSlot *pmsB)
{
    ASSERT_MAIN_THREAD();
    if (!pmsA || !pmsB || pmsA->ppsOwner != pmsB->ppsOwner)
        return 0;
    SettlePlaneThreads();
    const SlotList listA = ListOfSlot(lppsi, pmsA);
    const SlotList listB = ListOfSlot(lppsi, pmsB);
    if (!listA.pnCount || !listB.pnCount)
        return 0;
    std::swap(listA.apSlot[FindInList(listA, pmsA)], listB.apSlot[FindInList(listB, pmsB)]);
    TellSlots(lppsi, listA);
    return 1;
}
