// PaletteGenerator.h -- the generator's side of the palette protocol, whatever its palettes are made of
//
// A generator keeps a PaletteGenerator in its record, starts it at every bring-up and reset and runs it every frame.
// Both take a function that makes the next palette: it writes colours and size of the second palette (WriteSecondColor,
// WriteSizes) and returns true, or returns false if there is none, and is asked again in the next frame then.
#ifndef VORTICADE_PALETTE_GENERATOR_H
#define VORTICADE_PALETTE_GENERATOR_H

#include "PaletteMix.h"
#include "StockControls.h"

#define PALETTE_LONGEST_FRAME_MS 1000u /* a longer gap counts as this: nothing leaps after a pause */
#define PALETTE_YOUNG_MS 500u          /* a reset this soon after the start may still change the first palette */
#define PALETTE_SOLO_STEPS 200         /* some seconds for a stranger that takes one each frame */
#define PALETTE_SOLO_MOST_MS 6000.0    /* longest transition without an interpolator */

// The generator on its own: no interpolator of the protocol paces it.
struct PaletteSolo {
    bool bWatching; // the two fields at the end hold
    bool bMoving;
    bool bStranger;          // somebody else moves nStep
    uint64_t qwStrangerTick; // when that was last seen
    double fProgress;        // of the transition, 0 to 1
    double fAgeMs;           // of the newest palette, divided by the time scale
    int32_t nStepWritten;    // what this module left in the block
    int32_t nStepsWritten;
};

struct PaletteGenerator {
    CodeTables codes;
    StockClock clock;
    PaletteSolo solo;
    bool bOfferDue;  // offer a palette unasked
    bool bInstalled; // filled both palettes of an empty plane, at the tick below
    uint64_t qwInstallTick;
    uint16_t nBeatSeen;
    bool bPaced; // an interpolator of the protocol is at work, last seen at the tick below
    uint64_t qwBeatTick;
    PaletteColor aFrom[PALETTE_COLORS_MAX]; // the two palettes while the generator mixes them itself
    PaletteColor aTo[PALETTE_COLORS_MAX];
};

// ---- With an interpolator

// A beat that moved since the last look; its absence is believed after a while.
inline void LookForInterpolator(PaletteGenerator *pGenerator, const PlaneInfo *ppi)
{
    const PaletteDesk desk = ReadDesk(ppi->pPaletteInfo);
    const uint64_t qwTick = ppi->hdc->qwTick;
    if (desk.dwMark && desk.nBeat != pGenerator->nBeatSeen) {
        pGenerator->nBeatSeen = desk.nBeat;
        pGenerator->qwBeatTick = qwTick;
        pGenerator->bPaced = true;
    } else if (!desk.dwMark || qwTick - pGenerator->qwBeatTick > PALETTE_PATIENCE_MS) {
        pGenerator->bPaced = false;
    }
}

// Nobody has seen a palette here for more than a moment.
inline bool PlaneIsFresh(const PaletteGenerator *pGenerator, const PlaneInfo *ppi)
{
    if (TransitionUnderWay(ppi->pPaletteInfo))
        return false;
    if (ReadSizes(ppi->pPaletteInfo).nColors1 == 0)
        return true;
    return pGenerator->bInstalled && ppi->hdc->qwTick - pGenerator->qwInstallTick < PALETTE_YOUNG_MS;
}

template <class MakePalette>
inline void InstallFirstPalette(PaletteGenerator *pGenerator, PlaneInfo *ppi, MakePalette make)
{
    if (!make(ppi->pPaletteInfo))
        return;
    KeepSecondPalette(ppi->pPaletteInfo);
    if (!pGenerator->bInstalled)
        pGenerator->qwInstallTick = ppi->hdc->qwTick;
    pGenerator->bInstalled = true;
    pGenerator->bOfferDue = false;
}

// Answers a request; also the unasked offer after a reset. A transition under way keeps its palettes.
template <class MakePalette>
inline void ServeInterpolator(PaletteGenerator *pGenerator, PaletteInfo *pInfo, MakePalette make)
{
    const PaletteDesk desk = ReadDesk(pInfo);
    PaletteOffer offer = ReadOffer(pInfo);
    const bool bDue = pGenerator->bOfferDue || desk.nWanted != offer.nServed;
    if (bDue && !TransitionUnderWay(pInfo) && make(pInfo)) {
        pGenerator->bOfferDue = false;
        offer.nServed = desk.nWanted;
        offer.nOffered++;
    }
    WriteOffer(pInfo, offer);
}

// ---- On its own

inline void WriteSoloStep(PaletteSolo *pSolo, PaletteInfo *pInfo, int32_t nStep, int32_t nSteps)
{
    pInfo->nStep = pSolo->nStepWritten = nStep;
    pInfo->nSteps = pSolo->nStepsWritten = nSteps;
}

// Whoever else moves nStep mixes the palettes himself; his hand is taken to be off after a while of rest.
inline void WatchForStranger(PaletteSolo *pSolo, const PaletteInfo *pInfo, uint64_t qwTick)
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
inline void TakeUpTransition(PaletteSolo *pSolo, const PaletteInfo *pInfo)
{
    if (pSolo->bStranger || pSolo->bMoving || !TransitionUnderWay(pInfo))
        return;
    pSolo->bMoving = true;
    pSolo->fProgress = pInfo->nStep > 0 ? (double)pInfo->nStep / pInfo->nSteps : 0;
}

template <class MakePalette>
inline void StartSoloTransition(PaletteGenerator *pGenerator, PaletteInfo *pInfo, MakePalette make)
{
    PaletteSolo *pSolo = &pGenerator->solo;
    KeepSecondPalette(pInfo);
    if (!make(pInfo))
        return;
    pGenerator->bOfferDue = false;
    pSolo->fAgeMs = 0;
    pSolo->fProgress = 0;
    pSolo->bMoving = !pSolo->bStranger;
    WriteSoloStep(pSolo, pInfo, 0, pSolo->bStranger && pInfo->nSteps > 0 ? pInfo->nSteps : PALETTE_SOLO_STEPS);
}

inline void MoveSolo(PaletteSolo *pSolo, PaletteInfo *pInfo, double fElapsedMs, double fLifetimeMs)
{
    pSolo->fProgress += fElapsedMs / std::fmin(PALETTE_SOLO_MOST_MS, fLifetimeMs * 0.4);
    if (pSolo->fProgress < 1) {
        WriteSoloStep(pSolo, pInfo, (int32_t)(pSolo->fProgress * PALETTE_SOLO_STEPS), PALETTE_SOLO_STEPS);
        return;
    }
    pSolo->bMoving = false;
    KeepSecondPalette(pInfo);
    WriteSoloStep(pSolo, pInfo, PALETTE_SOLO_STEPS, PALETTE_SOLO_STEPS);
}

inline void FillSoloTable(PaletteGenerator *pGenerator, PlaneInfo *ppi)
{
    const PaletteInfo *pInfo = ppi->pPaletteInfo;
    const CodeTables *pTables = &pGenerator->codes;
    const PaletteSizes sizes = ReadSizes(pInfo);
    const int32_t nTo = sizes.nColors2, nFrom = sizes.nColors1 > 0 ? sizes.nColors1 : nTo;
    const float fShare = pGenerator->solo.bMoving ? SmoothStep((float)pGenerator->solo.fProgress) : 1;
    PaletteColor *aFrom = pGenerator->aFrom, *aTo = pGenerator->aTo;
    for (int32_t i = 0; i < nFrom; i++)
        aFrom[i] = PaletteColorOf(LabOfCodes(pTables, pInfo->abRed1[i], pInfo->abGreen1[i], pInfo->abBlue1[i]));
    for (int32_t i = 0; i < nTo; i++)
        aTo[i] = PaletteColorOf(LabOfCodes(pTables, pInfo->abRed2[i], pInfo->abGreen2[i], pInfo->abBlue2[i]));
    const float fParting = FindParting(aFrom, nFrom, aTo, nTo);
    for (int32_t i = 0; i < nTo; i++) {
        const PaletteColor &from = aFrom[(int64_t)i * nFrom / nTo];
        ppi->lpColorTable[i] = PixelOfLab(pTables, MixAround(from, aTo[i], fShare, fParting));
    }
    ppi->nColors = nTo;
}

// One frame without an interpolator of the protocol.
template <class MakePalette>
inline void RunSolo(PaletteGenerator *pGenerator, PlaneInfo *ppi, uint32_t nElapsedMs, double fLifetimeMs,
                    MakePalette make)
{
    PaletteSolo *pSolo = &pGenerator->solo;
    PaletteInfo *pInfo = ppi->pPaletteInfo;
    const double fElapsedMs = (double)nElapsedMs / ReadTimeScale(ppi);
    if (ReadSizes(pInfo).nColors2 == 0) { // somebody wrote over the sizes
        if (!make(pInfo))
            return;
        KeepSecondPalette(pInfo);
    }
    WatchForStranger(pSolo, pInfo, ppi->hdc->qwTick);
    TakeUpTransition(pSolo, pInfo);
    pSolo->fAgeMs += fElapsedMs;
    if (pSolo->bMoving)
        MoveSolo(pSolo, pInfo, fElapsedMs, fLifetimeMs);
    else if (!TransitionUnderWay(pInfo) && (pGenerator->bOfferDue || pSolo->fAgeMs >= fLifetimeMs))
        StartSoloTransition(pGenerator, pInfo, make);
    if (!pSolo->bStranger)
        FillSoloTable(pGenerator, ppi);
}

// ---- What a generator calls

// In ModulePreInitialize.
inline void PrepareGenerator(PaletteGenerator *pGenerator)
{
    pGenerator->solo = {};
    pGenerator->bPaced = false;
}

// In ModuleInitialize, with a palette at hand: an empty plane gets it at once, another one as an offer.
template <class MakePalette> inline void StartGenerator(PaletteGenerator *pGenerator, PlaneInfo *ppi, MakePalette make)
{
    pGenerator->clock = {};
    LookForInterpolator(pGenerator, ppi);
    if (PlaneIsFresh(pGenerator, ppi))
        InstallFirstPalette(pGenerator, ppi, make);
    else
        pGenerator->bOfferDue = true;
    WriteOffer(ppi->pPaletteInfo, ReadOffer(ppi->pPaletteInfo));
}

// In ModuleDrawFrame. fLifetimeMs: from palette to palette where no interpolator asks for them.
template <class MakePalette>
inline void RunGenerator(PaletteGenerator *pGenerator, PlaneInfo *ppi, double fLifetimeMs, MakePalette make)
{
    const uint32_t nElapsedMs = ElapsedMs(&pGenerator->clock, ppi->hdc->qwTick, PALETTE_LONGEST_FRAME_MS);
    LookForInterpolator(pGenerator, ppi);
    if (pGenerator->bPaced) {
        pGenerator->solo = {};
        ServeInterpolator(pGenerator, ppi->pPaletteInfo, make);
    } else {
        RunSolo(pGenerator, ppi, nElapsedMs, fLifetimeMs, make);
    }
}

#endif
