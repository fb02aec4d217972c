// PresetManager.cpp -- the preset and its planes: make, change, resize, destroy
#include "engine/PresetManager.h"

#include "engine/BufferSize.h"
#include "engine/DrawPipeline.h"
#include "engine/MixRules.h"
#include "engine/ModuleSlots.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetNews.h"
#include "modules/HiddenGLWindows.h"
#include "platform/Assert.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr i32 GREY_COLORS = 256;

PresetState *lppsiCurrent = nullptr;
u32 nBitmapGeneration = 0;

struct DefaultModule {
    i32 iPlane;
    u32 dwModuleType;
    const char16_t *pszDll;
};

constexpr DefaultModule asDefaultModule[] = {
    {0, MODULEINDEX_COLORINTERPOLATOR, u"CMShift.dll"}, {0, MODULEINDEX_COLORGENERATOR, u"CMBreed.dll"},
    {0, MODULEINDEX_DRAWPAINTER, u"PMRotor.dll"},       {0, MODULEINDEX_DRAWEFFECT, u"PMGust.dll"},
    {1, MODULEINDEX_COLORINTERPOLATOR, u"CMShift.dll"}, {1, MODULEINDEX_COLORGENERATOR, u"CMBreed.dll"},
    {1, MODULEINDEX_DRAWPAINTER, u"PMArc.dll"},         {1, MODULEINDEX_DRAWEFFECT, u"PMGust.dll"},
};

HostBitmap *NewBufferBitmap()
{
    return CreateBitmap(GlobalSettings.nBufferWidth, GlobalSettings.nBufferHeight);
}

void AddDefaultModules(PresetState *lppsi)
{
    AddPlane(lppsi, 1, 0);
    AddPlane(lppsi, 1, 0);
    for (const DefaultModule &row : asDefaultModule)
        AddModule(lppsi, row.pszDll, row.iPlane, row.dwModuleType, 0, 0); // a missing one is skipped
    if (MixRule *pmr = AddMixRule(lppsi)) {
        pmr->SrcIdx2 = 1;
        pmr->MixOp = MIXOP_BLEND;
    }
}

u32 *MakeGreyRamp()
{
    auto *padwColor = static_cast<u32 *>(std::calloc(GREY_COLORS, sizeof(u32)));
    for (u32 i = 0; padwColor && i < GREY_COLORS; i++)
        padwColor[i] = i * 0x010101u;
    return padwColor;
}

void FreePostProcessing(PresetState *lppsi)
{
    DeleteContext(lppsi->piPostProc.hdc);
    std::free(lppsi->piPostProc.lpColorTable);
    lppsi->piPostProc = {};
}

// The blocks that a plane cannot do without.
void AllocatePlaneBlocks(PlaneInfo *ppi)
{
    ppi->lpColorTable = static_cast<u32 *>(std::calloc(PALETTE_COLORS_MAX, sizeof(u32)));
    VD_ASSERT(ppi->lpColorTable);
    ppi->pPaletteInfo = static_cast<PaletteInfo *>(std::calloc(1, sizeof(PaletteInfo)));
    VD_ASSERT(ppi->pPaletteInfo);
}

// Modules call it without a question: there is always one, also in a program without an overlay.
u32 ShowNoMessage(const char16_t *)
{
    return 0;
}

void SetUpPlaneHead(PlaneInfo *ppi, u32 bIndexed)
{
    ppi->bIndexed = bIndexed ? 1 : 0;
    ppi->nWidth = GlobalSettings.nBufferWidth;
    ppi->nHeight = GlobalSettings.nBufferHeight;
    ppi->hwndVisuals = &GlobalSettings.hwndVisuals;
    ppi->pSound = GlobalSettings.pSound;
    ppi->pfnShowMessage = GlobalSettings.pfnShowMessage ? GlobalSettings.pfnShowMessage : ShowNoMessage;
    ppi->dwTimeScale = GlobalSettings.TimeScale;
}

void FreePlane(PlaneState *pps)
{
    if (PlaneIsBusy(pps))
        return; // a thread hangs inside: leaving the records alone is the only safe thing to do
    RemovePlaneModules(pps);
    DeleteBitmap(pps->Info.hbmDraw);
    DeleteBitmap(pps->Info.hbmResolved);
    DeleteContext(pps->Info.hdc);
    std::free(pps->Info.lpColorTable);
    std::free(pps->Info.pPaletteInfo);
    std::free(pps);
}

// The last picture may be a plane's own: before one is freed, nothing may name it any more.
void ForgetPicture(PresetState *lppsi)
{
    lppsi->phbmOutput = nullptr;
    lppsi->piPostProc.hbmDraw = lppsi->hbmFinal;
}

void TellPlanes(PresetState *lppsi)
{
    TellIfCurrent({NewsKind::Planes, lppsi, nullptr, nullptr, nullptr});
}

// Also of a plane that a thread hangs in: nobody is to keep what nobody can free.
void TellPlaneGoes(PlaneState *pps)
{
    for (u32 i = 0; i < MODULEINDEX_MIXER; i++)
        for (i32 k = 0; k < pps->anModules[i]; k++)
            TellIfCurrent({NewsKind::SlotGoes, pps->lppsi, pps, pps->apModule[i][k], nullptr});
    TellIfCurrent({NewsKind::PlaneGoes, pps->lppsi, pps, nullptr, nullptr});
}

u32 RemoveAllPlanes(PresetState *lppsi)
{
    const u32 bAny = lppsi->nPlanes > 0;
    std::for_each_n(lppsi->psPlane, lppsi->nPlanes, TellPlaneGoes);
    ForgetPicture(lppsi);
    for (PlaneState *&pps : lppsi->psPlane) {
        if (pps)
            FreePlane(pps);
        pps = nullptr;
    }
    lppsi->nPlanes = 0; // a thread that was given up has read it before it entered its plane, which FreePlane saw
    if (bAny)
        TellPlanes(lppsi);
    return bAny;
}

// Paused planes too: their modules must not meet a new size unprepared when the plane is resumed.
void RunEveryModule(PresetState *lppsi, u32 dwSteps)
{
    for (i32 i = 0; i < lppsi->nPlanes; i++)
        RunPlaneModules(lppsi->psPlane[i], dwSteps);
    if (dwSteps & MODSTEP_INIT)
        EvaluateRuleWeights(lppsi, true);
    RunPostProcessing(lppsi, dwSteps);
}

void ReplaceBitmap(HostBitmap **phbm)
{
    DeleteBitmap(*phbm);
    *phbm = NewBufferBitmap();
    VD_ASSERT(*phbm);
}

// phbmOutput goes on to name the same handle, which now is an empty bitmap of the new size.
void ReplaceBitmaps(PresetState *lppsi)
{
    for (i32 i = 0; i < lppsi->nPlanes; i++) {
        PlaneInfo *ppi = &lppsi->psPlane[i]->Info;
        ppi->nWidth = GlobalSettings.nBufferWidth;
        ppi->nHeight = GlobalSettings.nBufferHeight;
        ReplaceBitmap(&ppi->hbmDraw);
        ReplaceBitmap(&ppi->hbmResolved);
    }
    ReplaceBitmap(&lppsi->hbmFinal);
    SetUpPostProcessing(lppsi);
    for (u32 i = 0; i < lppsi->nMixRules; i++)
        ReplaceBitmap(&lppsi->asMixRule[i].hbmRule);
}

bool AnyPlaneIsBusy(PresetState *lppsi)
{
    return std::any_of(lppsi->psPlane, lppsi->psPlane + lppsi->nPlanes, PlaneIsBusy);
}

} // namespace

PresetState *AllocatePresetState()
{
    ASSERT_MAIN_THREAD();
    auto *lppsi = static_cast<PresetState *>(std::calloc(1, sizeof(PresetState)));
    VD_ASSERT(lppsi);
    lppsi->hbmFinal = NewBufferBitmap();
    VD_ASSERT(lppsi->hbmFinal);
    return lppsi;
}

PresetState *CreatePresetState(u32 bDefaults)
{
    ASSERT_MAIN_THREAD();
    ComputeBufferSize(GlobalSettings.DetailScale);
    PresetState *lppsi = AllocatePresetState();
    if (bDefaults)
        AddDefaultModules(lppsi);
    SetUpPostProcessing(lppsi);
    SetModuleTick(TickCount());
    RunPresetModules(lppsi, MODSTEPS_BRINGUP);
    return lppsi;
}

void SetUpPostProcessing(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    PlaneInfo *ppi = &lppsi->piPostProc;
    ppi->nWidth = GlobalSettings.nBufferWidth;
    ppi->nHeight = GlobalSettings.nBufferHeight;
    ppi->hbmDraw = lppsi->hbmFinal;
    ppi->bIndexed = 0;
    ppi->pSound = GlobalSettings.pSound;
    if (ppi->nColors)
        return;
    ppi->hdc = CreateContext();
    ppi->lpColorTable = ppi->hdc ? MakeGreyRamp() : nullptr;
    ppi->nColors = ppi->lpColorTable ? GREY_COLORS : 0;
}

u32 DestroyPresetState(PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi)
        return 0;
    VD_ASSERT(lppsi != lppsiCurrent);
    StopPlaneThreads();
    RemoveAllPlanes(lppsi);
    RemoveAllMixRules(lppsi);
    RemoveModule(lppsi, nullptr); // what is left: post-processing
    FreePostProcessing(lppsi);
    DeleteBitmap(lppsi->hbmFinal);
    std::free(lppsi);
    return 1;
}

PlaneState *AddPlane(PresetState *lppsi, u32 bIndexed, u32 bDefaultModules)
{
    ASSERT_MAIN_THREAD();
    const i32 iPlane = lppsi->nPlanes;
    if (iPlane >= PLANES_MAX)
        return nullptr;
    SettlePlaneThreads();
    VD_ASSERT(lppsi->psPlane[iPlane] == NULL);
    auto *pps = static_cast<PlaneState *>(std::calloc(1, sizeof(PlaneState)));
    if (!pps)
        return nullptr;
    pps->lppsi = lppsi;
    SetUpPlaneHead(&pps->Info, bIndexed);
    AllocatePlaneBlocks(&pps->Info);
    pps->Info.hbmDraw = NewBufferBitmap();
    pps->Info.hbmResolved = NewBufferBitmap();
    pps->Info.hdc = CreateContext();
    if (!pps->Info.hbmDraw || !pps->Info.hbmResolved || !pps->Info.hdc) {
        FreePlane(pps);
        return nullptr;
    }
    lppsi->psPlane[iPlane] = pps;
    if (bDefaultModules) {
        AddModule(lppsi, u"CMShift.dll", iPlane, MODULEINDEX_COLORINTERPOLATOR, 0, 0);
        AddModule(lppsi, u"CMBreed.dll", iPlane, MODULEINDEX_COLORGENERATOR, 0, 0);
        SetModuleTick(TickCount());
        RunPlaneModules(pps, MODSTEPS_BRINGUP);
    }
    lppsi->nPlanes = iPlane + 1;
    TellPlanes(lppsi);
    return pps;
}

u32 TakePlane(PresetState *lppsi, PlaneState *pps)
{
    ASSERT_MAIN_THREAD();
    SettlePlaneThreads();
    PlaneState **ppEnd = lppsi->psPlane + lppsi->nPlanes;
    PlaneState **ppFound = std::find(lppsi->psPlane, ppEnd, pps);
    if (ppFound == ppEnd)
        return 0;
    TellPlaneGoes(pps);
    ForgetPicture(lppsi);
    FreePlane(pps);
    std::copy(ppFound + 1, ppEnd, ppFound);
    lppsi->psPlane[--lppsi->nPlanes] = nullptr;
    TellPlanes(lppsi);
    return 1;
}

u32 RemovePlane(PresetState *lppsi, PlaneState *pps)
{
    ASSERT_MAIN_THREAD();
    SettlePlaneThreads();
    if (!pps)
        return RemoveAllPlanes(lppsi);
    if (!TakePlane(lppsi, pps))
        return 0;
    RemoveAllMixRules(lppsi);
    return 1;
}

u32 SwapPlanes(PresetState *lppsi, i32 iPlaneA, i32 iPlaneB)
{
    ASSERT_MAIN_THREAD();
    if (std::min(iPlaneA, iPlaneB) < 0 || std::max(iPlaneA, iPlaneB) >= lppsi->nPlanes)
        return 0;
    SettlePlaneThreads();
    if (PlaneIsBusy(lppsi->psPlane[iPlaneA]) || PlaneIsBusy(lppsi->psPlane[iPlaneB]))
        return 0;
    ForgetPicture(lppsi);
    std::swap(lppsi->psPlane[iPlaneA], lppsi->psPlane[iPlaneB]);
    TellPlanes(lppsi);
    return 1;
}

u32 ResizePresetBuffers(PresetState *lppsi, i32 nDetailScale)
{
    ASSERT_MAIN_THREAD();
    if (!lppsi)
        return 0;
    if (AnyPlaneIsBusy(lppsi)) {
        GlobalSettings.bResizePending = 1;
        return 1;
    }
    if (!ComputeBufferSize(nDetailScale))
        return 1;
    RunEveryModule(lppsi, MODSTEP_CLEANUP);
    ResizeHiddenGLWindows(GlobalSettings.nBufferWidth, GlobalSettings.nBufferHeight);
    ReplaceBitmaps(lppsi);
    nBitmapGeneration++;
    SetModuleTick(TickCount());
    RunEveryModule(lppsi, MODSTEPS_BRINGUP);
    return 1;
}

u32 BitmapGeneration()
{
    ASSERT_MAIN_THREAD();
    return nBitmapGeneration;
}

PresetState *CurrentPreset()
{
    ASSERT_MAIN_THREAD();
    return lppsiCurrent;
}

PresetState *SwitchPreset(PresetState *(*pfnMake)(const void *pvArgument), const void *pvArgument)
{
    ASSERT_MAIN_THREAD();
    PresetState *lppsiOld = lppsiCurrent;
    lppsiCurrent = nullptr;
    if (lppsiOld)
        TellPresetNews({NewsKind::Going, lppsiOld, nullptr, nullptr, nullptr});
    DestroyPresetState(lppsiOld);
    lppsiCurrent = pfnMake ? pfnMake(pvArgument) : nullptr;
    TellPresetNews({NewsKind::Came, lppsiCurrent, nullptr, nullptr, nullptr});
    return lppsiCurrent;
}

PresetState *MakeDefaultPreset(const void *)
{
    return CreatePresetState(1);
}
