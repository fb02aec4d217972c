// CMShift.cpp -- colour interpolator: eases from palette to palette, cycles the colours, resolves the indices
#include "Shift.h"

#include <cstdlib>

namespace {

const uint32_t nLongestFrameMs = 1000; // a longer gap counts as this: nothing leaps after a pause

const char16_t *const aszEase[EASE_COUNT] = {u"Smooth", u"Even", u"Slow start", u"Slow end"};
const char16_t *const aszOrder[ORDER_COUNT] = {u"All together", u"Dark colors first", u"Bright colors first",
                                               u"Sweep along the palette", u"Scattered"};

void AddTransitionControls(ShiftControls *pctl, const ControlMaker &maker)
{
    pctl->pTransitionTime = AddFloat(maker, u"Transition\0Time\0", u"Seconds that the way to the next palette takes.",
                                     {0, 60}, {4, 9}, 6, FromPeriodic(12000));
    pctl->pHoldTime =
        AddFloat(maker, u"Transition\0Hold\0", u"Seconds that a palette rests before the next one is asked for.",
                 {0, 120}, {3, 12}, 7, FromPeriodic(15000));
    pctl->pEase = AddItemSelect(maker, u"Transition\0Ease\0", u"How a color starts and ends its way.", pctl->aEaseRows,
                                aszEase, EASE_SMOOTH, FromFixed());
    pctl->pOrder = AddItemSelect(maker, u"Transition\0Order\0", u"Which colors of the palette go first.",
                                 pctl->aOrderRows, aszOrder, ORDER_SWEEP, FromRandom());
}

void AddCycleControls(ShiftControls *pctl, const ControlMaker &maker)
{
    pctl->pCycleSpeed =
        AddFloat(maker, u"Cycle\0Speed\0", u"How often a minute the colors travel once through the whole palette.",
                 {0, 60}, {1, 9}, 3, FromSound(10));
    pctl->pCycleBack = AddBoolean(maker, u"Cycle\0Backwards\0", u"Lets the colors travel the other way.", 0.65f, false,
                                  FromPeriodic(23000));
}

void AddLightControls(ShiftControls *pctl, const ControlMaker &maker)
{
    pctl->pBrightness = AddFloat(maker, u"Light\0Brightness\0", u"Makes all colors lighter or darker.", {0, 2},
                                 {1, 1.4f}, 1.1f, FromSound(8));
    pctl->pContrast = AddFloat(maker, u"Light\0Contrast\0", u"Drives light and dark colors apart, below 1 together.",
                               {0, 2}, {0.9f, 1.25f}, 1, FromWave(41000));
    pctl->pSaturation = AddFloat(maker, u"Light\0Saturation\0", u"How colorful the colors are; 0 makes them gray.",
                                 {0, 2}, {0.95f, 1.3f}, 1, FromWave(29000));
    pctl->pSoften = AddFloat(maker, u"Light\0Soften\0", u"Melts each color into its neighbors in the palette.", {0, 1},
                             {0, 0.35f}, 0, FromWave(53000, WAVETYPE_TRIANGLE));
}

// The host resolves through the first interpolator of a plane. One that draws without being resolved through
// stands further down the list and leaves the plane's colours to the first.
bool IsFirstOfPlane(const Shift *pShift, uint64_t qwTick)
{
    if (!pShift->bDrawn || qwTick <= pShift->qwDrawTick)
        return true;
    return pShift->bResolved && pShift->qwResolveTick >= pShift->qwDrawTick;
}

void RaiseBeat(PaletteInfo *pInfo)
{
    PaletteDesk desk = ReadDesk(pInfo);
    desk.nBeat++;
    WriteDesk(pInfo, desk);
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLORINTERPOLATOR, u"Shift",
                   u"Eases from palette to palette and lets the colors travel");
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    Shift *pShift = (Shift *)calloc(1, sizeof(Shift));
    *ppvContext = pShift;
    if (!pShift)
        return;
    MakeCodeTables(&pShift->codes);
    const ControlMaker maker = {pfnAllocControl, pnControls};
    AddTransitionControls(&pShift->ctl, maker);
    AddCycleControls(&pShift->ctl, maker);
    AddLightControls(&pShift->ctl, maker);
}

void ModulePreInitialize(void *pvContext, PlaneInfo *ppi)
{
    Shift *pShift = (Shift *)pvContext;
    if (!pShift || !ppi->pPaletteInfo)
        return;
    BeginPace(&pShift->pace, ppi->pPaletteInfo);
    pShift->bDrawn = pShift->bResolved = false;
    RaiseBeat(ppi->pPaletteInfo);
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi)
{
    Shift *pShift = (Shift *)pvContext;
    if (!pShift)
        return;
    pShift->random = {ppi->hdc->qwSeed};
    pShift->pace.nOwnPalette = RandomBelow(&pShift->random, nOwnPalettes);
    pShift->clock = {};
}

uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)
{
    Shift *pShift = (Shift *)pvContext;
    if (!pShift || !ppi->pPaletteInfo || !ppi->lpColorTable)
        return 0;
    const uint64_t qwTick = ppi->hdc->qwTick;
    const bool bFirst = IsFirstOfPlane(pShift, qwTick);
    pShift->bDrawn = true;
    pShift->qwDrawTick = qwTick;
    const uint32_t nElapsedMs = ElapsedMs(&pShift->clock, qwTick, nLongestFrameMs);
    if (bFirst)
        FillColorTable(pShift, ppi, AdvancePace(pShift, ppi, nElapsedMs), nElapsedMs);
    return 0;
}

void ModuleResolveIndexedPlane(void *pvContext, PlaneInfo *ppi, HostBitmap *hbmTarget)
{
    Shift *pShift = (Shift *)pvContext;
    if (pShift) {
        pShift->bResolved = true;
        pShift->qwResolveTick = ppi->hdc->qwTick;
        if (ppi->pPaletteInfo)
            RaiseBeat(ppi->pPaletteInfo);
    }
    if (hbmTarget && ppi->hbmDraw)
        ResolveIndices(ppi->lpColorTable, ppi->nColors, ppi->hbmDraw, hbmTarget);
}

void ModuleCleanUp(void *)
{
}

void ModuleDestroyControlStructure(void *pvContext)
{
    free(pvContext);
}
