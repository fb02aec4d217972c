// Idle.cpp -- a module that fits every list of class 1 and does nothing: what is left of a frame is the host's own
#include "EmptyEntryPoints.h"

#include <algorithm>
#include <iterator>

void ModuleGetDescription(ModuleDescription *pmd)
{
    static const char16_t szName[] = u"Idle";
    std::copy(std::begin(szName), std::end(szName), pmd->szName);
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_COLORINTERPOLATOR | MODULECAP_COLORGENERATOR | MODULECAP_COLOREFFECT |
                          MODULECAP_FULL | MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = nullptr;
}

uint32_t ModuleDrawFrame(void *, PlaneInfo *)
{
    return 0;
}

void ModuleCleanUp(void *)
{
}
