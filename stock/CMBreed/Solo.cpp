// Solo.cpp -- the generator without its interpolator: it moves from palette to palette itself
#include "Breed.h"

namespace {

const int32_t nTransitionSteps = 200; // some seconds for a stranger that takes one each frame
const double fLongestTransitionMs = 6000;

void WriteStep(Solo *pSolo, PaletteInfo *pInfo, int32_t nStep, int32_t nSteps)
{
    pInfo->nStep = pSolo->nStepWritten = nStep;
    pInfo->nSteps = pSolo->nStepsWritten = nSteps;
}

// Whoever else moves nStep mixes the palettes himself; his hand is taken to be off after a while of rest.
void WatchForStranger(Solo *pSolo, const PaletteInfo *pInfo, uint64_t qwTick)
{
    const bool bMoved = pInfo->nStep != pSolo->nStepWritten || pInfo->nSteps != pSolo->nStepsWritten;
    if (bMoved && pSolo->bWatching) {
        pSolo->bStranger = true;
        pSolo->bMoving = false;
        pSolo->qwStrangerTick = qwTick;
    } else if (TransitionUnderWay(pInfo) && qwTick - pSolo->qwStrangerTick > PALETTE_PATIENCE_MS) {
        pSolo->bStranger = false;
    }
    pSolo->bWatching = true;
    pSolo->nStepWritten = pInfo->nStep;
    pSolo->nStepsWritten = pInfo->nSteps;
}

// A transition that somebody began and left is carried on.
void TakeUpTransition(Solo *pSolo, const PaletteInfo *pInfo)
{
    if (pSolo->bStranger || pSolo->bMoving || !TransitionUnderWay(pInfo))
        return;
    pSolo->bMoving = true;
    pSolo->fProgress = pInfo->nStep > 0 ? (double)pInfo->nStep / pInfo->nSteps : 0;
}

void StartTransition(Breed *pBreed, PaletteInfo *pInfo)
{
    Solo *pSolo = &pBreed->solo;
    KeepSecondPalette(pInfo);
    BreedSecondPalette(pBreed, pInfo);
    pSolo->fAgeMs = 0;
    pSolo->fProgress = 0;
    pSolo->bMoving = !pSolo->bStranger;
    WriteStep(pSolo, pInfo, 0, pSolo->bStranger && pInfo->nSteps > 0 ? pInfo->nSteps : nTransitionSteps);
}

void Move(Solo *pSolo, PaletteInfo *pInfo, double fElapsedMs, double fLifetimeMs)
{
    pSolo->fProgress += fElapsedMs / std::fmin(fLongestTransitionMs, fLifetimeMs * 0.4);
    if (pSolo->fProgress < 1) {
        WriteStep(pSolo, pInfo, (int32_t)(pSolo->fProgress * nTransitionSteps), nTransitionSteps);
        return;
    }
    pSolo->bMoving = false;
    KeepSecondPalette(pInfo);
    WriteStep(pSolo, pInfo, nTransitionSteps, nTransitionSteps);
}

void FillTable(Breed *pBreed, PlaneInfo *ppi)
{
    const PaletteInfo *pInfo = ppi->pPaletteInfo;
    const PaletteSizes sizes = ReadSizes(pInfo);
    const int32_t nTo = sizes.nColors2, nFrom = sizes.nColors1 > 0 ? sizes.nColors1 : nTo;
    const float fShare = pBreed->solo.bMoving ? SmoothStep((float)pBreed->solo.fProgress) : 1;
    PaletteColor *aFrom = pBreed->aFrom, *aTo = pBreed->aTo;
    for (int32_t i = 0; i < nFrom; i++)
        aFrom[i] = PaletteColorOf(LabOfCodes(&pBreed->codes, pInfo->abRed1[i], pInfo->abGreen1[i], pInfo->abBlue1[i]));
    for (int32_t i = 0; i < nTo; i++)
        aTo[i] = PaletteColorOf(LabOfCodes(&pBreed->codes, pInfo->abRed2[i], pInfo->abGreen2[i], pInfo->abBlue2[i]));
    const float fParting = FindParting(aFrom, nFrom, aTo, nTo);
    for (int32_t i = 0; i < nTo; i++) {
        const PaletteColor &from = aFrom[(int64_t)i * nFrom / nTo];
        ppi->lpColorTable[i] = PixelOfLab(&pBreed->codes, MixAround(from, aTo[i], fShare, fParting));
    }
    ppi->nColors = nTo;
}

} // namespace

void RunSolo(Breed *pBreed, PlaneInfo *ppi, uint32_t nElapsedMs)
{
    Solo *pSolo = &pBreed->solo;
    PaletteInfo *pInfo = ppi->pPaletteInfo;
    const double fElapsedMs = (double)nElapsedMs / ReadTimeScale(ppi);
    const double fLifetimeMs = (double)ReadFloat(pBreed->ctl.pLifetime) * 1000;
    if (ReadSizes(pInfo).nColors2 == 0) { // somebody wrote over the sizes
        BreedSecondPalette(pBreed, pInfo);
        KeepSecondPalette(pInfo);
    }
    WatchForStranger(pSolo, pInfo, ppi->hdc->qwTick);
    TakeUpTransition(pSolo, pInfo);
    pSolo->fAgeMs += fElapsedMs;
    if (pSolo->bMoving)
        Move(pSolo, pInfo, fElapsedMs, fLifetimeMs);
    else if (!TransitionUnderWay(pInfo) && (pBreed->bOfferDue || pSolo->fAgeMs >= fLifetimeMs)) {
        pBreed->bOfferDue = false;
        StartTransition(pBreed, pInfo);
    }
    if (!pSolo->bStranger)
        FillTable(pBreed, ppi);
}
