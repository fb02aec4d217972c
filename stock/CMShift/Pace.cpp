// Pace.cpp -- when the interpolator rests, asks for a palette and moves to it
#include "Shift.h"

namespace {

const int32_t nTransitionSteps = 1000;
const int32_t nOwnColors = 256;

uint64_t ChecksumOfFirst(const PaletteInfo *pInfo)
{
    return ChecksumOfPalette(pInfo->abRed1, pInfo->abGreen1, pInfo->abBlue1);
}

uint64_t ChecksumOfSecond(const PaletteInfo *pInfo)
{
    return ChecksumOfPalette(pInfo->abRed2, pInfo->abGreen2, pInfo->abBlue2);
}

void WriteStep(Pace *pPace, PaletteInfo *pInfo, int32_t nStep, int32_t nSteps)
{
    pInfo->nStep = pPace->nStepWritten = nStep;
    pInfo->nSteps = pPace->nStepsWritten = nSteps;
}

void TakeOwnPalette(Shift *pShift, PaletteInfo *pInfo, int32_t nColors)
{
    Pace *pPace = &pShift->pace;
    pPace->nOwnPalette = (pPace->nOwnPalette + 1 + RandomBelow(&pShift->random, nOwnPalettes - 1)) % nOwnPalettes;
    WriteOwnPalette(pInfo, &pShift->codes, pPace->nOwnPalette, nColors);
    WriteSizes(pInfo, ReadSizes(pInfo).nColors1, nColors);
}

// A plane that has no palette of a known size gets one: what a stranger left there, or one of the module's own.
void EnsureFirstPalette(Shift *pShift, PlaneInfo *ppi)
{
    PaletteInfo *pInfo = ppi->pPaletteInfo;
    if (ReadSizes(pInfo).nColors1 > 0)
        return;
    static const uint8_t abNone[PALETTE_COLORS_MAX] = {};
    if (ChecksumOfFirst(pInfo) == ChecksumOfPalette(abNone, abNone, abNone)) {
        TakeOwnPalette(pShift, pInfo, nOwnColors);
        KeepSecondPalette(pInfo);
        return;
    }
    const int32_t nColors = ppi->nColors > 0 ? LimitColors(ppi->nColors) : nOwnColors;
    WriteSizes(pInfo, nColors, nColors);
}

bool MovedByStranger(const Pace *pPace, const PaletteInfo *pInfo)
{
    return TransitionUnderWay(pInfo) && (pInfo->nStep != pPace->nStepWritten || pInfo->nSteps != pPace->nStepsWritten);
}

// Looks for a palette to move to; knows afterwards what lies in second place.
bool NewPaletteLies(Pace *pPace, PlaneInfo *ppi)
{
    PaletteInfo *pInfo = ppi->pPaletteInfo;
    const uint64_t qwSecond = ChecksumOfSecond(pInfo);
    const bool bChanged = pPace->bKnowsSecond && qwSecond != pPace->qwSecondSeen && qwSecond != ChecksumOfFirst(pInfo);
    pPace->qwSecondSeen = qwSecond;
    pPace->bKnowsSecond = true;
    const PaletteOffer offer = ReadOffer(pInfo);
    if (offer.dwMark && offer.nOffered != pPace->nTaken) {
        pPace->nTaken = offer.nOffered;
        return true;
    }
    if (!bChanged && !MovedByStranger(pPace, pInfo))
        return false;
    pPace->bStrangerSeen = !offer.dwMark;
    const PaletteSizes sizes = ReadSizes(pInfo);
    WriteSizes(pInfo, sizes.nColors1, ppi->nColors > 0 ? LimitColors(ppi->nColors) : sizes.nColors1);
    return true;
}

void StartTransition(Shift *pShift, PaletteInfo *pInfo)
{
    pShift->pace.bMoving = true;
    pShift->pace.fProgress = 0;
    pShift->qwScatterSeed = NextRandom(&pShift->random);
    WriteStep(&pShift->pace, pInfo, 0, nTransitionSteps);
}

void FinishTransition(Pace *pPace, PaletteInfo *pInfo)
{
    KeepSecondPalette(pInfo);
    WriteStep(pPace, pInfo, nTransitionSteps, nTransitionSteps);
    pPace->bMoving = false;
    pPace->fRestedMs = 0;
    pPace->qwSecondSeen = ChecksumOfSecond(pInfo);
    pPace->bKnowsSecond = true;
}

void Rest(Shift *pShift, PlaneInfo *ppi, double fElapsedMs)
{
    Pace *pPace = &pShift->pace;
    PaletteInfo *pInfo = ppi->pPaletteInfo;
    pPace->fRestedMs += fElapsedMs;
    if (NewPaletteLies(pPace, ppi)) {
        StartTransition(pShift, pInfo);
        return;
    }
    if (pPace->fRestedMs < (double)ReadFloat(pShift->ctl.pHoldTime) * 1000)
        return;
    PaletteDesk desk = ReadDesk(pInfo);
    const PaletteOffer offer = ReadOffer(pInfo);
    if (offer.dwMark && desk.nWanted == offer.nServed) {
        desk.nWanted++;
        WriteDesk(pInfo, desk);
    } else if (!offer.dwMark && !pPace->bStrangerSeen) {
        TakeOwnPalette(pShift, pInfo, ReadSizes(pInfo).nColors1);
        StartTransition(pShift, pInfo);
    }
}

void Move(Shift *pShift, PaletteInfo *pInfo, double fElapsedMs)
{
    Pace *pPace = &pShift->pace;
    const double fWholeMs = (double)ReadFloat(pShift->ctl.pTransitionTime) * 1000;
    pPace->fProgress = fWholeMs > 0 ? pPace->fProgress + fElapsedMs / fWholeMs : 1;
    if (pPace->fProgress < 1)
        WriteStep(pPace, pInfo, (int32_t)(pPace->fProgress * nTransitionSteps), nTransitionSteps);
    else
        FinishTransition(pPace, pInfo);
}

} // namespace

uint64_t ChecksumOfPalette(const uint8_t *pRed, const uint8_t *pGreen, const uint8_t *pBlue)
{
    uint64_t qwSum = 0;
    for (int32_t i = 0; i < PALETTE_COLORS_MAX; i += 8) {
        uint64_t aqw[3];
        memcpy(&aqw[0], pRed + i, 8);
        memcpy(&aqw[1], pGreen + i, 8);
        memcpy(&aqw[2], pBlue + i, 8);
        for (uint64_t qw : aqw) {
            qwSum = (qwSum ^ qw) * 0x9E3779B97F4A7C15u;
            qwSum ^= qwSum >> 32;
        }
    }
    return qwSum;
}

void BeginPace(Pace *pPace, PaletteInfo *pInfo)
{
    *pPace = {};
    if (ReadOffer(pInfo).dwMark)
        memset(pInfo->abModules1, 0, sizeof pInfo->abModules1);
    pPace->bMoving = TransitionUnderWay(pInfo) && pInfo->nStep >= 0 && ReadSizes(pInfo).nColors2 > 0;
    if (pPace->bMoving)
        pPace->fProgress = (double)pInfo->nStep / pInfo->nSteps;
    pPace->nStepWritten = pInfo->nStep;
    pPace->nStepsWritten = pInfo->nSteps;
}

int32_t AdvancePace(Shift *pShift, PlaneInfo *ppi, uint32_t nElapsedMs)
{
    const double fElapsedMs = (double)nElapsedMs / ReadTimeScale(ppi);
    EnsureFirstPalette(pShift, ppi);
    if (!pShift->pace.bMoving)
        Rest(pShift, ppi, fElapsedMs);
    if (pShift->pace.bMoving)
        Move(pShift, ppi->pPaletteInfo, fElapsedMs);
    const PaletteSizes sizes = ReadSizes(ppi->pPaletteInfo);
    const int32_t nColors = pShift->pace.bMoving ? sizes.nColors2 : sizes.nColors1;
    return nColors > 0 ? nColors : 1;
}
