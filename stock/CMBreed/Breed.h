// Breed.h -- the instance of the palette generator and what its files do for each other
#ifndef VORTICADE_CMBREED_BREED_H
#define VORTICADE_CMBREED_BREED_H

#include "Genome.h"
#include "stock/common/PaletteGenerator.h"

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

struct Breed {
    BreedControls ctl;
    StockRandom random;
    Stable stable;
    PaletteGenerator generator;
};

// Fills the stable with founders.
void FoundStable(Stable *pStable, StockRandom *pRandom);

// The best of several children of the stable; it joins the stable in the place of the oldest.
GrownPalette BreedPalette(Stable *pStable, StockRandom *pRandom, const BreedWish &wish);

#endif
