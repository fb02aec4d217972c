// RecorderBody.h -- the module behind Recorder.cpp and RecorderColor.cpp, which differ in class and name alone
#pragma once

#include "RecorderLog.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr size_t ENTRIES_MAX = 1u << 17; // a log that nobody takes stops growing here

struct Instance {
    uint32_t nNumber;
    RecorderBehaviour Behaviour; // guarded by mtx
    std::vector<ControlRecord *> apControl;
    int32_t nRefused;
};

std::mutex mtx;
std::condition_variable cvRelease;
std::deque<RecorderEntry> Log; // guarded by mtx, as is all below
RecorderBehaviour BehaviourOfNext;
uint32_t nInstances;
uint64_t qwOwnOrder;
uint64_t *pqwOrder = &qwOwnOrder;

const ItemSelectRow asRow[] = {{u"First", 0, 0}, {u"Second", 1, 0}, {u"Third", 2, 0}};

template <size_t N> void CopyTo(char16_t *pszTo, const char16_t (&szFrom)[N])
{
    std::memcpy(pszTo, szFrom, sizeof szFrom);
}

float ControlValue(const ControlRecord &ctl)
{
    switch (ctl.Base.dwType) {
    case CONTROLTYPE_INTEGER:
        return static_cast<float>(ctl.Integer.nValue);
    case CONTROLTYPE_FLOAT:
        return ctl.Float.fValue;
    case CONTROLTYPE_ITEMSELECT:
        return static_cast<float>(ctl.ItemSelect.nCurrentItemValue);
    case CONTROLTYPE_BOOLEAN:
        return static_cast<float>(ctl.Boolean.bState);
    case CONTROLTYPE_TILE:
        return ctl.Tile.pTileMask ? static_cast<float>(ctl.Tile.pTileMask[0]) : 0;
    default:
        return 0;
    }
}

void NotePlane(RecorderEntry &entry, const PlaneInfo *ppi, const HostBitmap *hbmTarget)
{
    entry.ppi = ppi;
    entry.hbmDraw = ppi->hbmDraw;
    entry.hbmResolved = ppi->hbmResolved;
    entry.hbmTarget = hbmTarget;
    entry.nWidth = ppi->nWidth;
    entry.nHeight = ppi->nHeight;
    entry.nColors = ppi->nColors;
    entry.bIndexed = ppi->bIndexed;
    entry.bDrawIsResolved = ppi->hbmDraw == ppi->hbmResolved;
    entry.dwFirstPixel = ppi->hbmDraw ? *static_cast<const uint32_t *>(ppi->hbmDraw->pBits) : 0;
    entry.dwTimeScale = ppi->dwTimeScale;
    entry.bMessage = ppi->pfnShowMessage != nullptr;
    entry.bVisuals = ppi->hwndVisuals != nullptr;
    entry.bPalette = ppi->pPaletteInfo != nullptr;
    entry.bOpenGL = ppi->hwndGL != nullptr;
    entry.bShaderPath = entry.dwCall == RECORDERCALL_BUILD && ppi->lpszShaderPath;
    entry.bFixedClock = ppi->hdc ? ppi->hdc->bFixedClock : 0;
    entry.qwTick = ppi->hdc ? ppi->hdc->qwTick : 0;
    entry.qwSeed = ppi->hdc ? ppi->hdc->qwSeed : 0;
    entry.fRawLevel = ppi->pSound ? ppi->pSound->fRawLevel : 0;
}

void Note(RecorderCall eCall, void *pvContext, const PlaneInfo *ppi, const HostBitmap *hbmTarget)
{
    const auto *p = static_cast<const Instance *>(pvContext);
    RecorderEntry entry = {};
    entry.dwCall = eCall;
    entry.nInstance = p->nNumber;
    entry.pvContext = pvContext;
    entry.qwThread = std::hash<std::thread::id>()(std::this_thread::get_id());
    if (eCall == RECORDERCALL_BUILD) {
        entry.nControls = static_cast<int32_t>(p->apControl.size());
        entry.nRefused = p->nRefused;
    }
    for (size_t i = 0; i < p->apControl.size() && i < RECORDER_VALUES; i++)
        entry.afValue[i] = ControlValue(*p->apControl[i]);
    if (ppi)
        NotePlane(entry, ppi, hbmTarget);
    const std::lock_guard lock(mtx);
    entry.qwOrder = __atomic_fetch_add(pqwOrder, 1, __ATOMIC_RELAXED);
    if (Log.size() < ENTRIES_MAX)
        Log.push_back(entry);
}

void FillControl(ControlRecord &ctl, uint32_t dwType, size_t iControl)
{
    constexpr char16_t szName[] = u"Recorder\0Control 000\0";
    CopyTo(ctl.Base.szName, szName);
    char16_t *pszNumber = ctl.Base.szName + std::size(szName) - 5;
    for (uint32_t i = 3, n = static_cast<uint32_t>(iControl); i-- > 0; n /= 10)
        pszNumber[i] = static_cast<char16_t>(u'0' + n % 10);
    ctl.Base.dwType = dwType;
    ctl.Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;
    if (dwType == CONTROLTYPE_INTEGER) {
        ctl.Integer = {0, 100, 0, 100, 0, 100, 50, 50, 0, 0, 0};
    } else if (dwType == CONTROLTYPE_FLOAT) {
        ctl.Float = {0, 1, 0, 1, 0, 1, 0.5f, 0.5f, 0};
    } else if (dwType == CONTROLTYPE_ITEMSELECT) {
        ctl.Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM;
        ctl.ItemSelect = {3, 1, 1, 0, const_cast<ItemSelectRow *>(asRow)};
    } else if (dwType == CONTROLTYPE_BOOLEAN) {
        ctl.Boolean = {0.5f, 0.5f, 1, 1};
    } else if (dwType == CONTROLTYPE_FILESELECT) {
        ctl.FileSelect.pszFileType = u"Picture";
    }
}

void AskForControls(Instance *p, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    for (uint32_t i = 0; i < p->Behaviour.nControls; i++) {
        ControlRecord *pctl = pfnAllocControl(pnControls);
        if (!pctl) {
            p->nRefused++;
            continue;
        }
        FillControl(*pctl, i < CONTROLS_MAX ? p->Behaviour.adwType[i] : uint32_t{CONTROLTYPE_INTEGER}, i);
        p->apControl.push_back(pctl);
    }
}

void Describe(ModuleDescription *pmd)
{
    CopyTo(pmd->szDescription, u"Writes down every call that it gets.");
    CopyTo(pmd->szBuild, u"1");
    pmd->dwCapabilities = MODULECAP_COLORINTERPOLATOR | MODULECAP_COLORGENERATOR | MODULECAP_COLOREFFECT |
                          MODULECAP_FULL | MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
}

uint32_t *Row(const HostBitmap *hbm, int32_t y)
{
    return reinterpret_cast<uint32_t *>(static_cast<char *>(hbm->pBits) + static_cast<uint64_t>(y) * hbm->cbRow);
}

} // namespace

MODULE_EXPORT void RecorderSetBehaviour(void *pvContext, const RecorderBehaviour *pBehaviour)
{
    const std::lock_guard lock(mtx);
    (pvContext ? static_cast<Instance *>(pvContext)->Behaviour : BehaviourOfNext) = *pBehaviour;
    cvRelease.notify_all();
}

MODULE_EXPORT uint32_t RecorderTake(RecorderEntry *pEntry, uint32_t nMax)
{
    const std::lock_guard lock(mtx);
    const size_t n = pEntry ? std::min<size_t>(nMax, Log.size()) : Log.size();
    if (pEntry)
        std::copy_n(Log.begin(), n, pEntry);
    Log.erase(Log.begin(), Log.begin() + static_cast<std::ptrdiff_t>(n));
    return static_cast<uint32_t>(n);
}

MODULE_EXPORT void RecorderShareOrder(uint64_t *pqwNext)
{
    const std::lock_guard lock(mtx);
    pqwOrder = pqwNext ? pqwNext : &qwOwnOrder;
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    auto *p = new Instance{};
    *ppvContext = p;
    {
        const std::lock_guard lock(mtx);
        p->nNumber = ++nInstances;
        p->Behaviour = BehaviourOfNext;
    }
    AskForControls(p, pfnAllocControl, pnControls);
    Note(RECORDERCALL_BUILD, p, ppi, nullptr);
}

void ModulePreInitialize(void *pvContext, PlaneInfo *ppi)
{
    Note(RECORDERCALL_PREINITIALIZE, pvContext, ppi, nullptr);
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    Note(RECORDERCALL_INITIALIZE, pvContext, ppi, nullptr);
}

uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    auto *p = static_cast<Instance *>(pvContext);
    Note(RECORDERCALL_DRAW, pvContext, ppi, nullptr);
    std::unique_lock lock(mtx);
    cvRelease.wait(lock, [p] { return !p->Behaviour.bHold; });
    const RecorderBehaviour Behaviour = p->Behaviour;
    lock.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(Behaviour.nSleepMs));
    for (int32_t y = 0; Behaviour.bFill && y < ppi->hbmDraw->nHeight; y++)
        std::fill_n(Row(ppi->hbmDraw, y), ppi->hbmDraw->nWidth, Behaviour.dwFill);
    if (Behaviour.bWriteIndexed)
        ppi->bIndexed = Behaviour.dwIndexed;
    return Behaviour.dwDrawResult;
}

// As an interpolator it turns each index into the grey of that brightness.
void ModuleResolveIndexedPlane(void *pvContext, PlaneInfo *ppi, HostBitmap *hbmTarget)
{
    Note(RECORDERCALL_RESOLVE, pvContext, ppi, hbmTarget);
    for (int32_t y = 0; hbmTarget && y < hbmTarget->nHeight; y++)
        std::transform(Row(ppi->hbmDraw, y), Row(ppi->hbmDraw, y) + hbmTarget->nWidth, Row(hbmTarget, y),
                       [](uint32_t dwIndex) { return (dwIndex & 255) * 0x010101u; });
}

void ModuleCleanUp(void *pvContext)
{
    Note(RECORDERCALL_CLEANUP, pvContext, nullptr, nullptr);
}

void ModuleDestroyControlStructure(void *pvContext)
{
    Note(RECORDERCALL_DESTROY, pvContext, nullptr, nullptr);
    delete static_cast<Instance *>(pvContext);
}
