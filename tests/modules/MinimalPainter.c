/* MinimalPainter.c -- a module in C whose picture a test can work out: one formula over place and frame */
#include "module.h"

#include <stdlib.h>
#include <string.h>

typedef struct Instance {
    ControlRecord *pStep; /* what each draw adds to nFrame; 1 unless the user or a file says otherwise */
    uint32_t nFrame;      /* 0 in the first draw after ModuleInitialize */
} Instance;

static void CopyTo(char16_t *pszTo, const char16_t *pszFrom, size_t nChars)
{
    memcpy(pszTo, pszFrom, nChars * sizeof(char16_t));
}

void ModuleGetDescription(ModuleDescription *pmd)
{
    static const char16_t szName[] = u"Minimal Painter";
    static const char16_t szDescription[] = u"Paints a moving ramp that a test can work out.";
    static const char16_t szBuild[] = u"1";
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB;
    CopyTo(pmd->szName, szName, sizeof szName / sizeof szName[0]);
    CopyTo(pmd->szDescription, szDescription, sizeof szDescription / sizeof szDescription[0]);
    CopyTo(pmd->szBuild, szBuild, sizeof szBuild / sizeof szBuild[0]);
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *ppi, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    static const char16_t szName[] = u"Ramp\0Step\0"; /* the literal adds the second 0 */
    Instance *p = calloc(1, sizeof *p);
    (void)ppi;
    *ppvContext = p;
    if (!p)
        return;
    p->pStep = pfnAllocControl(pnControls);
    if (!p->pStep)
        return;
    p->pStep->Base.dwType = CONTROLTYPE_INTEGER;
    CopyTo(p->pStep->Base.szName, szName, sizeof szName / sizeof szName[0]);
    p->pStep->Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;
    p->pStep->Integer.nAbsMin = p->pStep->Integer.nDefaultMin = p->pStep->Integer.nMin = 0;
    p->pStep->Integer.nAbsMax = p->pStep->Integer.nDefaultMax = p->pStep->Integer.nMax = 16;
    p->pStep->Integer.nDefaultValue = p->pStep->Integer.nValue = 1;
}

void ModulePreInitialize(void *pvContext, PlaneInfo *ppi)
{
    (void)pvContext;
    (void)ppi;
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    Instance *p = pvContext;
    (void)ppi;
    if (p)
        p->nFrame = 0;
}

/* Indexed: (x + 3y + frame) & 255. RGB: that as blue, x & 255 as green, y & 255 as red. y counts from the bottom. */
uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    Instance *p = pvContext;
    if (!p || !ppi->hbmDraw)
        return 0;
    for (uint32_t y = 0; y < (uint32_t)ppi->nHeight; y++) {
        uint32_t *pdwRow = (uint32_t *)((char *)ppi->hbmDraw->pBits + y * ppi->hbmDraw->cbRow);
        for (uint32_t x = 0; x < (uint32_t)ppi->nWidth; x++) {
            const uint32_t dwIndex = (x + 3 * y + p->nFrame) & 255;
            pdwRow[x] = ppi->bIndexed ? dwIndex : dwIndex | (x & 255) << 8 | (y & 255) << 16;
        }
    }
    p->nFrame += p->pStep ? (uint32_t)p->pStep->Integer.nValue : 1;
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
    free(pvContext);
}
