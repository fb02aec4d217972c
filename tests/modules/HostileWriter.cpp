// HostileWriter.cpp -- a module that writes outside its bitmap; for a child process under an address sanitizer
#include "EmptyEntryPoints.h"
#include "HostileModes.h"

MODULE_EXPORT std::atomic<uint32_t> HostileReach;
std::atomic<uint32_t> HostileReach = HostileSetting("HOSTILE_REACH", 0);

void ModuleGetDescription(ModuleDescription *pmd)
{
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
    pmd->szName[0] = u'W';
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = nullptr;
}

uint32_t ModuleDrawFrame(void *, PlaneInfo *ppi)
{
    auto *pdw = static_cast<volatile uint32_t *>(ppi->hbmDraw->pBits);
    const uint64_t nPixels = ppi->hbmDraw->cbRow / 4 * static_cast<uint64_t>(ppi->hbmDraw->nHeight);
    for (uint64_t i = nPixels; i < nPixels + HostileReach; i++)
        pdw[i] = 0xFFFFFF;
    return 0;
}

void ModuleCleanUp(void *)
{
}
