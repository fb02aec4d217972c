// ModuleCalls.cpp -- the one place from which the host enters module code
#include "modules/ModuleCalls.h"

#include "controls/ControlManager.h"
#include "controls/HostControl.h"
#include "platform/GLWindow.h"

namespace {

// Stands around every call into a module.
class ModuleCall {
  public:
    explicit ModuleCall(const ModuleSlot *pmsCalled) : pms(pmsCalled)
    {
    }
    ~ModuleCall()
    {
        TakeBackControls(pms);
        if (pms->hwndGL)
            ReleaseCurrentGL();
    }
    ModuleCall(const ModuleCall &) = delete;
    ModuleCall &operator=(const ModuleCall &) = delete;

  private:
    const ModuleSlot *pms;
};

} // namespace

void CallBuildControlStructure(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms);
    pms->pmf->pfnBuildControlStructure(&pms->pvContext, ppi, AllocControl, &nControlsShown);
}

void CallPreInitialize(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms);
    pms->pmf->pfnPreInitialize(pms->pvContext, ppi);
}

void CallInitialize(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms);
    pms->pmf->pfnInitialize(pms->pvContext, ppi);
}

u32 CallDrawFrame(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms);
    return pms->pmf->pfnDrawFrame(pms->pvContext, ppi);
}

void CallResolveIndexedPlane(ModuleSlot *pms, PlaneInfo *ppi, HostBitmap *hbmTarget)
{
    const ModuleCall call(pms);
    pms->pmf->pfnResolveIndexedPlane(pms->pvContext, ppi, hbmTarget);
}

void CallCleanUp(ModuleSlot *pms)
{
    const ModuleCall call(pms);
    pms->pmf->pfnCleanUp(pms->pvContext);
}

void CallDestroyControlStructure(ModuleSlot *pms)
{
    const ModuleCall call(pms);
    pms->pmf->pfnDestroyControlStructure(pms->pvContext);
}
