// ColourHost.h -- one plane with colour modules, driven as the host drives them, for tests of these modules
#pragma once

#include "include/module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct ColourModule {
    void *pvContext = nullptr;
    std::vector<std::unique_ptr<ControlRecord>> apctl;
    ModuleInitializeFn pfnPreInitialize = nullptr, pfnInitialize = nullptr;
    ModuleDrawFrameFn pfnDrawFrame = nullptr;
    ModuleResolveIndexedPlaneFn pfnResolve = nullptr;
    ModuleCleanUpFn pfnCleanUp = nullptr, pfnDestroy = nullptr;
    uint32_t dwResult = 0; // of the last ModuleDrawFrame
};

inline thread_local ColourModule *pModuleInTheMaking = nullptr;

inline ControlRecord *AllocTestControl(int32_t *pnControls)
{
    auto pctl = std::make_unique<ControlRecord>();
    memset(pctl.get(), 0, sizeof *pctl);
    ControlBase &base = pctl->Base;
    base.dwDefaultSource = base.dwSource = FLUIDSOURCE_FIXED;
    base.nDefaultWavePeriod = base.nWavePeriod = 8000;
    base.bDefaultRandomPhase = base.bRandomPhase = 1;
    base.nDefaultNoisePeriod = base.nNoisePeriod = 1500;
    pModuleInTheMaking->apctl.push_back(std::move(pctl));
    ++*pnControls;
    return pModuleInTheMaking->apctl.back().get();
}

// The plane. Bitmaps are exactly as large as the boundary says, so that the address sanitizer sees every slip.
class ColourHost {
  public:
    ColourHost(int32_t nWidth, int32_t nHeight, uint64_t qwSeed) : qwNextSeed(qwSeed)
    {
        apvBits[0].resize((size_t)nWidth * (size_t)nHeight);
        apvBits[1].resize(apvBits[0].size());
        draw = {sizeof(HostBitmap), nWidth, nHeight, 32, (uint64_t)nWidth * 4, apvBits[0].data()};
        resolved = {sizeof(HostBitmap), nWidth, nHeight, 32, (uint64_t)nWidth * 4, apvBits[1].data()};
        plane.lpColorTable = adwTable.data();
        plane.bIndexed = 1;
        plane.nWidth = nWidth;
        plane.nHeight = nHeight;
        plane.hbmDraw = &draw;
        plane.hbmResolved = &resolved;
        plane.hdc = &context;
        plane.pPaletteInfo = pInfo.get();
        plane.dwTimeScale = 1;
    }
    ColourHost(const ColourHost &) = delete;
    ColourHost &operator=(const ColourHost &) = delete;
    ~ColourHost()
    {
        while (!apModule.empty())
            Remove(0);
    }

    // Loads a stock module, which stays loaded, makes an instance and brings it up.
    ColourModule *Add(const char *pszDll)
    {
        auto pModule = std::make_unique<ColourModule>();
        const std::string path = std::string(STOCK_MODULE_FOLDER) + "/" + pszDll;
        void *hLibrary = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!hLibrary)
            abort();
        Find(hLibrary, "ModulePreInitialize", &pModule->pfnPreInitialize);
        Find(hLibrary, "ModuleInitialize", &pModule->pfnInitialize);
        Find(hLibrary, "ModuleDrawFrame", &pModule->pfnDrawFrame);
        Find(hLibrary, "ModuleResolveIndexedPlane", &pModule->pfnResolve);
        Find(hLibrary, "ModuleCleanUp", &pModule->pfnCleanUp);
        Find(hLibrary, "ModuleDestroyControlStructure", &pModule->pfnDestroy);
        ModuleBuildControlStructureFn pfnBuild = nullptr;
        Find(hLibrary, "ModuleBuildControlStructure", &pfnBuild);
        pModuleInTheMaking = pModule.get();
        int32_t nControls = 0;
        pfnBuild(&pModule->pvContext, &plane, AllocTestControl, &nControls);
        apModule.push_back(std::move(pModule));
        BringUp(apModule.back().get());
        return apModule.back().get();
    }

    void Remove(size_t iModule)
    {
        ColourModule *pModule = apModule[iModule].get();
        pModule->pfnCleanUp(pModule->pvContext);
        pModule->pfnDestroy(pModule->pvContext);
        apModule.erase(apModule.begin() + (std::ptrdiff_t)iModule);
    }

    void BringUp(ColourModule *pModule)
    {
        pModule->pfnPreInitialize(pModule->pvContext, &plane);
        Reset(pModule);
    }

    void Reset(ColourModule *pModule)
    {
        context.qwSeed = qwNextSeed = qwNextSeed * 6364136223846793005u + 1442695040888963407u;
        pModule->pfnInitialize(pModule->pvContext, &plane);
    }

    // One frame: the modules of the list in order, then the resolve by the first. pPaused does not draw.
    void Frame(uint64_t nElapsedMs, const ColourModule *pPaused = nullptr)
    {
        context.qwTick += nElapsedMs;
        for (auto &pModule : apModule)
            if (pModule.get() != pPaused)
                pModule->dwResult = pModule->pfnDrawFrame(pModule->pvContext, &plane);
        if (!apModule.empty())
            apModule[0]->pfnResolve(apModule[0]->pvContext, &plane, plane.bIndexed ? &resolved : nullptr);
    }

    std::vector<uint32_t> adwTable = std::vector<uint32_t>(PALETTE_COLORS_MAX);
    std::unique_ptr<PaletteInfo> pInfo = std::make_unique<PaletteInfo>();
    std::vector<std::unique_ptr<ColourModule>> apModule;
    std::vector<uint32_t> apvBits[2];
    HostBitmap draw = {}, resolved = {};
    HostContext context = {sizeof(HostContext), 1, nullptr, nullptr, 5000, 0};
    PlaneInfo plane = {};

  private:
    template <class Fn> static void Find(void *hLibrary, const char *pszName, Fn *ppfn)
    {
        *ppfn = reinterpret_cast<Fn>(dlsym(hLibrary, pszName));
        if (!*ppfn)
            abort();
    }

    uint64_t qwNextSeed;
};

// The control whose own name, the last part of its path, is this one.
inline ControlRecord *FindControl(const ColourModule *pModule, std::u16string_view szName)
{
    for (auto &pctl : pModule->apctl) {
        const char16_t *psz = pctl->Base.szName;
        std::u16string_view last;
        while (*psz) {
            last = psz;
            psz += last.size() + 1;
        }
        if (last == szName)
            return pctl.get();
    }
    abort();
}

inline void SetFloat(const ColourModule *pModule, std::u16string_view szName, float fValue)
{
    FindControl(pModule, szName)->Float.fValue = fValue;
}

// An interpolator that shows palettes as they are: no cycle, no light of its own.
inline ColourModule *AddPlainShift(ColourHost *pHost, float fTransition, float fHold, uint32_t dwOrder = 0)
{
    ColourModule *pShift = pHost->Add("CMShift.dll");
    SetFloat(pShift, u"Time", fTransition);
    SetFloat(pShift, u"Hold", fHold);
    SetFloat(pShift, u"Speed", 0);
    SetFloat(pShift, u"Soften", 0);
    for (const char16_t *psz : {u"Brightness", u"Contrast", u"Saturation"})
        SetFloat(pShift, psz, 1);
    FindControl(pShift, u"Order")->ItemSelect.nCurrentItemValue = dwOrder;
    return pShift;
}
