// Genome.h -- the genes of a palette: made, crossed, changed, grown into colours
//
// A palette is a loop of light waves. Each wave rises from a dark valley over a body of strong colour to a narrow
// glint and falls into the next valley; the first and the last valley are the black of colour 0. The hues of the
// bodies come from a scheme around one base hue. Toward the glint they turn to the light (yellow, cyan), toward
// the valleys to violet, as flames, water and painters' shadows do.
#ifndef VORTICADE_CMBREED_GENOME_H
#define VORTICADE_CMBREED_GENOME_H

#include "stock/common/PaletteColor.h"
#include "stock/common/StockControls.h"

#define CRESTS_MAX 6

enum {
    HARMONY_ANY = 0, // what the genes say
    HARMONY_ONE_HUE = 1,
    HARMONY_NEIGHBORS = 2,
    HARMONY_OPPOSITES = 3,
    HARMONY_SPLIT = 4,
    HARMONY_CORNERS = 5,
    HARMONY_COUNT = 6
};

struct Crest {
    float fFamily; // which hue of the scheme, 0 to below 1
    float fStray;  // hue beside it, -1 to 1
    float fPeak;   // lightness of the body against the strongest one of its hue, -1 to 1
    float fValley; // lightness of the valley after it, 0 to 1
    float fWidth;  // share of the loop, relative
    float fSkew;   // place of the crest within its wave, 0 to 1
    float fShade;  // how far the valley after it turns to violet, 0 to 1
    float fDrift;  // free turn of the hue in that valley, -1 to 1
    float fShine;  // strength of the glint, 0 to 1
};

struct Genome {
    uint32_t dwHarmony; // HARMONY_ONE_HUE and above
    float fBaseHue;     // turns
    float fRichness;    // share of the chroma that a screen can show
    Crest aCrest[CRESTS_MAX];
};

// What the user's controls make of the genes when they grow.
struct GrowthWish {
    uint32_t dwHarmony; // HARMONY_*
    int32_t nBands;     // crests, 1 to CRESTS_MAX
    float fVividness;   // 0 to 1
    float fContrast;    // 0 to 1
    float fGlow;        // 0 to 1
};

Genome MakeGenome(StockRandom *pRandom);

// Each gene from one of the parents, or from between them.
Genome CrossGenomes(StockRandom *pRandom, const Genome &mother, const Genome &father);

// fStrength: 0 nothing to 1 all over.
void MutateGenome(StockRandom *pRandom, Genome *pGenome, float fStrength);

// One wave of a palette that has grown.
struct GrownWave {
    float fStart; // place in the loop, 0 to 1
    float fEnd;
    float fSkew;
    float fHue; // of the body
    float fLight;
    float fGlint;       // lightness that the glint adds
    float fGlintTurn;   // turn of its hue
    float afValley[2];  // lightness of the valleys before and after the crest
    float afHueStep[2]; // turns from the body's hue to the valley's
};

// A genome with the wishes applied, ready to be asked for colours.
struct GrownPalette {
    int32_t nWaves;
    float fChroma; // share of what a screen can show
    GrownWave aWave[CRESTS_MAX];
};

GrownPalette GrowPalette(const Genome &genome, const GrowthWish &wish);

// The colour at a place of the loop, 0 to below 1; black at 0.
Lab ColorAt(const GrownPalette &palette, float fPlace);

#endif
