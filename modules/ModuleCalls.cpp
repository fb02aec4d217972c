// ModuleCalls.cpp -- the one place from which the host enters module code
#include "modules/ModuleCalls.h"

#include "controls/ControlManager.h"
#include "controls/HostControl.h"
#include "platform/GLWindow.h"

#include <cstring>

namespace {

// The records that the host lends for a call, as they were before it.
class LentRecords {
  public:
    explicit LentRecords(PlaneInfo *ppiLent) : ppi(ppiLent)
    {
        if (!ppi)
            return;
        piBefore = *ppi;
        if (ppi->hbmDraw)
            hbmDraw = *ppi->hbmDraw;
        if (ppi->hbmResolved)
            hbmResolved = *ppi->hbmResolved;
        if (ppi->hdc)
            hdc = *ppi->hdc;
    }
    // Whatever a module did to them: the host frees by them, and the next module draws by them.
    void TakeBack() const
    {
        if (!ppi)
            return;
        const i32 nColors = ppi->nColors;
        const u32 bIndexed = ppi->bIndexed;
        *ppi = piBefore;
        ppi->nColors = nColors;
        ppi->bIndexed = bIndexed;
        TakeBackBitmap(ppi->hbmDraw, hbmDraw);
        TakeBackBitmap(ppi->hbmResolved, hbmResolved);
        if (ppi->hdc)
            *ppi->hdc = hdc;
    }

  private:
    // Written only if it was changed: the main thread may be showing the picture of a plane that is late.
    static void TakeBackBitmap(HostBitmap *hbm, const HostBitmap &hbmBefore)
    {
        if (hbm && std::memcmp(hbm, &hbmBefore, sizeof *hbm) != 0)
            *hbm = hbmBefore;
    }

    PlaneInfo *ppi; // null: a call without one
    PlaneInfo piBefore;
    HostBitmap hbmDraw, hbmResolved;
    HostContext hdc;
};

// Stands around every call into a module.
class ModuleCall {
  public:
    explicit ModuleCall(const ModuleSlot *pmsCalled, PlaneInfo *ppi = nullptr) : pms(pmsCalled), lent(ppi)
    {
        if (pms->hwndGL)
            windowBefore = *pms->hwndGL;
    }
    ~ModuleCall()
    {
        lent.TakeBack();
        TakeBackControls(pms);
        if (!pms->hwndGL)
            return;
        *pms->hwndGL = windowBefore;
        ReleaseCurrentGL();
    }
    ModuleCall(const ModuleCall &) = delete;
    ModuleCall &operator=(const ModuleCall &) = delete;

  private:
    const ModuleSlot *pms;
    const LentRecords lent;
    HostGLWindow windowBefore;
};

} // namespace

void CallBuildControlStructure(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms, ppi);
    pms->pmf->pfnBuildControlStructure(&pms->pvContext, ppi, AllocControl, &nControlsShown);
}

void CallPreInitialize(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms, ppi);
    pms->pmf->pfnPreInitialize(pms->pvContext, ppi);
}

void CallInitialize(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms, ppi);
    pms->pmf->pfnInitialize(pms->pvContext, ppi);
}

u32 CallDrawFrame(ModuleSlot *pms, PlaneInfo *ppi)
{
    const ModuleCall call(pms, ppi);
    return pms->pmf->pfnDrawFrame(pms->pvContext, ppi);
}

void CallResolveIndexedPlane(ModuleSlot *pms, PlaneInfo *ppi, HostBitmap *hbmTarget)
{
    const ModuleCall call(pms, ppi);
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
