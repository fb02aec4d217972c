// PaletteMix.h -- the way from one palette to another
//
// A straight mix of two hues leads through grey, and a moving picture would look dirty for as long as it takes.
// So hues travel round the colour circle. All colours of a palette have to agree on where the two ways round
// part, or neighbours would run apart: the parting is put where the pair of palettes has no colours.
#ifndef VORTICADE_PALETTE_MIX_H
#define VORTICADE_PALETTE_MIX_H

#include "PaletteColor.h"

struct PaletteColor {
    Lab lab;
    float fChroma;
    float fHue; // turns
};

inline PaletteColor PaletteColorOf(const Lab &c)
{
    return {c, ChromaOf(c), HueOf(c)};
}

#define PARTING_BINS 24

// Turn of the hue beyond which the other way round is taken, 0.25 to 0.75. Colour i of the nTo goes with the
// colour at the same place of the nFrom.
inline float FindParting(const PaletteColor *pFrom, int32_t nFrom, const PaletteColor *pTo, int32_t nTo)
{
    float afWeight[PARTING_BINS] = {}, fTotal = 0;
    for (int32_t i = 0; i < nTo; i++) {
        const PaletteColor &from = pFrom[(int64_t)i * nFrom / nTo], &to = pTo[i];
        const float fWeight = std::fmin(from.fChroma, to.fChroma);
        afWeight[(int32_t)(WrapTurns(to.fHue - from.fHue) * PARTING_BINS) % PARTING_BINS] += fWeight;
        fTotal += fWeight;
    }
    int32_t iBest = PARTING_BINS / 2;
    float fBest = 0;
    for (int32_t i = PARTING_BINS / 4; i <= PARTING_BINS * 3 / 4; i++) {
        const float fFar = std::fabs((float)i / PARTING_BINS - 0.5f);
        const float fCost = afWeight[i - 1] + afWeight[i % PARTING_BINS] + fTotal * fFar * 0.25f;
        if (i == PARTING_BINS / 4 || fCost < fBest) {
            fBest = fCost;
            iBest = i;
        }
    }
    return (float)iBest / PARTING_BINS;
}

inline Lab MixAround(const PaletteColor &from, const PaletteColor &to, float fShare, float fParting)
{
    if (!(fShare > 0))
        return from.lab;
    if (!(fShare < 1))
        return to.lab;
    const float fUnderWay = std::fmin(1.0f, 4 * fShare * (1 - fShare));
    const float L = Mix(from.lab.L, to.lab.L, fShare), fChroma = Mix(from.fChroma, to.fChroma, fShare);
    float fTurn = WrapTurns(to.fHue - from.fHue);
    fTurn -= fTurn > fParting ? 1.0f : 0.0f;
    // What has more chroma has more of a say.
    const float fTurned = fChroma > 1e-6f ? fShare * to.fChroma / fChroma : fShare;
    const float fHue = from.fHue + fTurn * fTurned;
    return LabOfHue(L, fChroma * (1 + 0.4f * fUnderWay), Mix(fHue, HueOfShade(fHue, L), fUnderWay));
}

#endif
