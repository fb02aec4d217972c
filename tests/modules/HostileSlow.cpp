// HostileSlow.cpp -- a module that sleeps in its draws for longer than the host waits
#include "EmptyEntryPoints.h"
#include "HostileModes.h"

#include <chrono>
#include <thread>

MODULE_EXPORT std::atomic<uint32_t> HostileSleepMs;
std::atomic<uint32_t> HostileSleepMs = HostileSetting("HOSTILE_SLEEP_MS", HOSTILE_SLEEP_MS);

void ModuleGetDescription(ModuleDescription *pmd)
{
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
    pmd->szName[0] = u'S';
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = nullptr;
}

// Touches its bitmap after the sleep, as a late module does: the bitmap must still be there.
uint32_t ModuleDrawFrame(void *, PlaneInfo *ppi)
{
    for (uint32_t nSlept = 0; nSlept < HostileSleepMs; nSlept += 10)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    *static_cast<uint32_t *>(ppi->hbmDraw->pBits) = 1;
    return 0;
}

void ModuleCleanUp(void *)
{
}
