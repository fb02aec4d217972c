// MissingEntryPoint.cpp -- a library that describes itself as a module but lacks ModuleCleanUp
#include "EmptyEntryPoints.h"

void ModuleGetDescription(ModuleDescription *pmd)
{
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB;
    pmd->szName[0] = u'M';
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = nullptr;
}

uint32_t ModuleDrawFrame(void *, PlaneInfo *)
{
    return 0;
}
