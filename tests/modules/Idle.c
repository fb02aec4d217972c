/* Idle.c -- a module that fits every list of class 1 and does nothing: what is left of a frame is the host's own */
#include "module.h"

void ModuleGetDescription(ModuleDescription *pmd)
{
    static const char16_t szName[] = u"Idle";
    for (uint32_t i = 0; i < sizeof szName / sizeof szName[0]; i++)
        pmd->szName[i] = szName[i];
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_COLORINTERPOLATOR | MODULECAP_COLORGENERATOR | MODULECAP_COLOREFFECT |
                          MODULECAP_FULL | MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    (void)ppi;
    (void)pfnAllocControl;
    (void)pnControls;
    *ppvContext = 0;
}

void ModulePreInitialize(void *pvContext, PlaneInfo *ppi)
{
    (void)pvContext;
    (void)ppi;
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    (void)pvContext;
    (void)ppi;
}

uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    (void)pvContext;
    (void)ppi;
    return 0;
}

void ModuleResolveIndexedPlane(void *pvContext, PlaneInfo *ppi, HostBitmap *hbmTarget)
{
    (void)pvContext;
    (void)ppi;
    (void)hbmTarget;
}

void ModuleCleanUp(void *pvContext)
{
    (void)pvContext;
}

void ModuleDestroyControlStructure(void *pvContext)
{
    (void)pvContext;
}
