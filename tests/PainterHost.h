// PainterHost.h -- the least host that a drawing module can live in, with walls around its bitmap
#ifndef VORTICADE_PAINTER_HOST_H
#define VORTICADE_PAINTER_HOST_H

#include "include/module.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

// One plane. The bitmap stands between two walls of known bytes.
struct TestPlane {
    static constexpr size_t nWall = 4096; // pixels
    static constexpr uint32_t dwWall = 0xA5C3E17Bu;

    std::vector<uint32_t> adwMemory, adwTable = std::vector<uint32_t>(PALETTE_COLORS_MAX);
    HostBitmap bitmap = {}, resolved = {};
    HostContext context = {};
    SoundFrame sound = {};
    PlaneInfo info = {};

    TestPlane(int32_t nWidth, int32_t nHeight, bool bIndexed, int32_t nColors)
    {
        for (uint32_t i = 0; i < PALETTE_COLORS_MAX; i++)
            adwTable[i] = (i * 0x00030507u + 0x00404040u) & 0xFFFFFF;
        context.cbSize = sizeof context;
        context.qwTick = 5000000;
        info.lpColorTable = adwTable.data();
        info.nColors = nColors;
        info.bIndexed = bIndexed;
        info.hbmDraw = &bitmap;
        info.hbmResolved = &resolved;
        info.hdc = &context;
        info.pSound = &sound;
        info.dwTimeScale = 1;
        Resize(nWidth, nHeight);
    }
    void Resize(int32_t nWidth, int32_t nHeight)
    {
        adwMemory.assign((size_t)nWidth * (size_t)nHeight + 2 * nWall, dwWall);
        bitmap = {sizeof bitmap, nWidth, nHeight, 32, (uint64_t)nWidth * 4, adwMemory.data() + nWall};
        info.nWidth = nWidth;
        info.nHeight = nHeight;
        Fill(0);
    }
    size_t Pixels() const
    {
        return adwMemory.size() - 2 * nWall;
    }
    uint32_t *Bits()
    {
        return adwMemory.data() + nWall;
    }
    void Fill(uint32_t dwPixel)
    {
        std::fill_n(Bits(), Pixels(), dwPixel);
    }
    std::vector<uint32_t> Picture()
    {
        return {Bits(), Bits() + Pixels()};
    }
    bool WallsStand() const
    {
        for (size_t i = 0; i < nWall; i++)
            if (adwMemory[i] != dwWall || adwMemory[adwMemory.size() - 1 - i] != dwWall)
                return false;
        return true;
    }
};

inline std::vector<std::unique_ptr<ControlRecord>> *pBuilding;
inline size_t nRecordsGranted = CONTROLS_MAX;

inline ControlRecord *GiveRecord(int32_t *pnControls)
{
    if (pBuilding->size() >= nRecordsGranted)
        return nullptr;
    pBuilding->push_back(std::make_unique<ControlRecord>());
    ControlRecord *pctl = pBuilding->back().get();
    memset(pctl, 0, sizeof *pctl);
    pctl->Base.dwDefaultSource = pctl->Base.dwSource = FLUIDSOURCE_FIXED;
    pctl->Base.nDefaultWavePeriod = pctl->Base.nWavePeriod = 8000;
    pctl->Base.nDefaultNoisePeriod = pctl->Base.nNoisePeriod = 1500;
    ++*pnControls;
    return pctl;
}

// "Group.Name" of a control.
inline std::string DottedName(const ControlRecord &ctl)
{
    std::string name;
    for (const char16_t *p = ctl.Base.szName; *p; p++) {
        if (!name.empty())
            name += '.';
        for (; *p; p++)
            name += (char)*p;
    }
    return name;
}

struct TestModule {
    std::vector<std::unique_ptr<ControlRecord>> apControl;
    void *pLibrary = nullptr, *pvContext = nullptr;

    template <typename Function> Function Entry(const char *szName) const
    {
        return (Function)dlsym(pLibrary, szName);
    }
    TestModule(const char *szDll, TestPlane &plane, uint64_t qwSeed = 1)
    {
        pLibrary = dlopen((std::string(STOCK_MODULE_FOLDER "/") + szDll).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!pLibrary) {
            fprintf(stderr, "%s\n", dlerror());
            abort();
        }
        int32_t nControls = 0;
        pBuilding = &apControl;
        Entry<ModuleBuildControlStructureFn>("ModuleBuildControlStructure")(&pvContext, &plane.info, GiveRecord,
                                                                            &nControls);
        BringUp(plane, qwSeed);
    }
    TestModule(const TestModule &) = delete;
    TestModule &operator=(const TestModule &) = delete;
    ~TestModule()
    {
        CleanUp();
        Entry<ModuleDestroyControlStructureFn>("ModuleDestroyControlStructure")(pvContext);
        dlclose(pLibrary);
    }
    void BringUp(TestPlane &plane, uint64_t qwSeed)
    {
        Entry<ModulePreInitializeFn>("ModulePreInitialize")(pvContext, &plane.info);
        Reset(plane, qwSeed);
    }
    void Reset(TestPlane &plane, uint64_t qwSeed)
    {
        plane.context.qwSeed = qwSeed;
        Entry<ModuleInitializeFn>("ModuleInitialize")(pvContext, &plane.info);
    }
    void CleanUp()
    {
        Entry<ModuleCleanUpFn>("ModuleCleanUp")(pvContext);
    }
    uint32_t Draw(TestPlane &plane)
    {
        return Entry<ModuleDrawFrameFn>("ModuleDrawFrame")(pvContext, &plane.info);
    }
    // Draws frames at a rate, the first one a frame after the plane's present tick.
    void Run(TestPlane &plane, int32_t nFrames, int32_t nPerSecond = 60)
    {
        const uint64_t qwStart = plane.context.qwTick;
        for (int32_t i = 1; i <= nFrames; i++) {
            plane.context.qwTick = qwStart + (uint64_t)(i * 1000 / nPerSecond);
            Draw(plane);
        }
    }
    ControlRecord *Find(const char *szName)
    {
        for (auto &pctl : apControl)
            if (DottedName(*pctl) == szName)
                return pctl.get();
        fprintf(stderr, "no control %s\n", szName);
        abort();
    }
    void Set(const char *szName, float fValue)
    {
        ControlRecord *pctl = Find(szName);
        if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
            pctl->Float.fValue = fValue;
        else if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
            pctl->Integer.nValue = (int32_t)fValue;
        else if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN)
            pctl->Boolean.bState = fValue != 0;
        else
            pctl->ItemSelect.nCurrentItemValue = (uint32_t)fValue;
    }
    // Somewhere in their default ranges, as an animated source would leave them.
    void Animate(std::mt19937 &random)
    {
        for (auto &pctl : apControl) {
            const float f = (float)(random() >> 8) / 16777216.0f;
            if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
                pctl->Float.fValue = pctl->Float.fMin + f * (pctl->Float.fMax - pctl->Float.fMin);
            else if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
                pctl->Integer.nValue =
                    pctl->Integer.nMin + (int32_t)(f * (float)(pctl->Integer.nMax - pctl->Integer.nMin) + 0.5f);
            else if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN)
                pctl->Boolean.bState = f > pctl->Boolean.fThreshold;
        }
    }
};

#endif
