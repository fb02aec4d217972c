// HostileGarbage.cpp -- a module whose description has no end and whose draws leave garbage behind
#include "EmptyEntryPoints.h"

#include <algorithm>
#include <atomic>
#include <iterator>

namespace {

constexpr uint32_t adwResult[] = {0xDEADBEEF, 0xFFFFFFFF, 1, 3, 0x80000002, MODULEDRAW_RESET};
constexpr int32_t anColors[] = {-1, 2049, 0x7FFFFFFF, static_cast<int32_t>(0x80000000), 0};

std::atomic<uint32_t> nDraws;

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->bUnavailable = 0xFFFFFFFF;
    pmd->dwCapabilities = 0xFFFFFFFF;
    std::fill(std::begin(pmd->adwReserved), std::end(pmd->adwReserved), 0xFFFFFFFF);
    std::fill(std::begin(pmd->szName), std::end(pmd->szName), u'N');
    std::fill(std::begin(pmd->szDescription), std::end(pmd->szDescription), u'D');
    std::fill(std::begin(pmd->szBuild), std::end(pmd->szBuild), static_cast<char16_t>(0xDC00)); // lone surrogates
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn, int32_t *)
{
    *ppvContext = nullptr;
}

// Everything by which the host and other modules would find their way into memory that is nobody's.
static void SpoilRecords(PlaneInfo *ppi)
{
    void *const pGarbage = reinterpret_cast<void *>(uintptr_t{0x5A5A5A5A5A5A5A58});
    if (ppi->hbmDraw)
        *ppi->hbmDraw = {0, 1 << 30, -1, 0, 1, pGarbage};
    if (ppi->hdc) {
        ppi->hdc->pfnSelectBitmap = nullptr;
        ppi->hdc->pSelected = static_cast<HostBitmap *>(pGarbage);
    }
    ppi->lpColorTable = static_cast<uint32_t *>(pGarbage);
    ppi->pPaletteInfo = static_cast<PaletteInfo *>(pGarbage);
    ppi->hbmDraw = ppi->hbmResolved = static_cast<HostBitmap *>(pGarbage);
    ppi->hdc = static_cast<HostContext *>(pGarbage);
    if (ppi->hwndGL)
        *ppi->hwndGL = {0, -1, -1, 0, pGarbage, pGarbage, pGarbage};
    ppi->pSound = nullptr;
    ppi->hwndVisuals = nullptr;
    ppi->pfnShowMessage = nullptr;
    ppi->nWidth = ppi->nHeight = -1;
}

uint32_t ModuleDrawFrame(void *, PlaneInfo *ppi)
{
    const uint32_t n = nDraws++;
    ppi->nColors = anColors[n % std::size(anColors)];
    ppi->dwTimeScale = 0;
    ppi->dwReserved = 0xFFFFFFFF;
    if (ppi->pPaletteInfo) {
        ppi->pPaletteInfo->nStep = -1;
        ppi->pPaletteInfo->nSteps = 0x7FFFFFFF;
    }
    if (ppi->hbmDraw) // on an indexed plane: indices beyond every palette
        std::fill_n(static_cast<uint32_t *>(ppi->hbmDraw->pBits), ppi->nWidth, 0xFFFFFFF0 + n);
    SpoilRecords(ppi);
    return adwResult[n % std::size(adwResult)];
}

void ModuleCleanUp(void *)
{
}
