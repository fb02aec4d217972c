// Breed.h -- the instance of the palette generator and what its files do for each other
#ifndef VORTICADE_CMBREED_BREED_H
#define VORTICADE_CMBREED_BREED_H

#include "Genome.h"
#include "stock/common/PaletteMix.h"

#define STOCK_PALETTES 8 // living palettes, the parents of the next
#define JUDGED_COLORS 64 // samples of a palette when its beauty is judged
#define RECENT_HUES 4

struct BreedControls {
    ControlRecord *pColors;
    ControlRecord *pHarmony; // HARMONY_*
    ControlRecord *pBands;
    ControlRecord *pVividness;
    ControlRecord *pContrast;
    ControlRecord *pGlow;
    ControlRecord *pHue; // degrees
    ControlRecord *pAttraction;
    ControlRecord *pMutation;
    ControlRecord *pLifetime; // seconds
    ItemSelectRow aHarmonyRows[HARMONY_COUNT];
};

// The living and the memory of what was shown.
struct Stable {
    Genome aLiving[STOCK_PALETTES];
    uint32_t iOldest;
    Lab aShown[JUDGED_COLORS];
    float afRecentHue[RECENT_HUES];
    uint32_t iRecentHue;
};

// What the next palette is to be like.
struct BreedWish {
    GrowthWish growth;
    float fMutation;   // 0 to 1
    float fHue;        // turns
    float fAttraction; // of that hue, 0 to 1
};

// The generator on its own: no interpolator of the protocol paces it.
struct Solo {
    bool bWatching; // the two fields at the end hold
    bool bMoving;
    bool bStranger;          // somebody else moves nStep
    uint64_t qwStrangerTick; // when that was last seen
    double fProgress;        // of the transition, 0 to 1
    double fAgeMs;           // of the newest palette, divided by the time scale
    int32_t nStepWritten;    // what this module left in the block
    int32_t nStepsWritten;
};

struct Breed {
    BreedControls ctl;
    CodeTables codes;
    StockRandom random;
    StockClock clock;
    Stable stable;
    Solo solo;
    bool bOfferDue;  // offer a palette unasked
    bool bInstalled; // filled both palettes of an empty plane, at the tick below
    uint64_t qwInstallTick;
    uint16_t nBeatSeen;
    bool bPaced; // an interpolator of the protocol is at work, last seen at the tick below
    uint64_t qwBeatTick;
    PaletteColor aFrom[PALETTE_COLORS_MAX]; // the two palettes while the generator mixes them itself
    PaletteColor aTo[PALETTE_COLORS_MAX];
};

// Fills the stable with founders.
void FoundStable(Stable *pStable, StockRandom *pRandom);

// The best of several children of the stable; it joins the stable in the place of the oldest.
GrownPalette BreedPalette(Stable *pStable, StockRandom *pRandom, const BreedWish &wish);

// Breeds as the controls say, into the second palette of the block.
void BreedSecondPalette(Breed *pBreed, PaletteInfo *pInfo);

// One frame without an interpolator of the protocol.
void RunSolo(Breed *pBreed, PlaneInfo *ppi, uint32_t nElapsedMs);

#endif
