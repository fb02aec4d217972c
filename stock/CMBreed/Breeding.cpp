// Breeding.cpp -- the stable: parents, children, and the choice among them
#include "Breed.h"

namespace {

const uint32_t nChildren = 10;

struct Verdict {
    float fScore;
    float fHue; // of the whole
    Lab aColor[JUDGED_COLORS];
};

float DistanceOf(const Lab &c1, const Lab &c2)
{
    const float fL = c1.L - c2.L, fA = c1.a - c2.a, fB = c1.b - c2.b;
    return std::sqrt(fL * fL + fA * fA + fB * fB);
}

// Gray of middle lightness, where a picture looks dirty.
float MudOf(const Lab &c)
{
    const float fMiddle = SmoothStep((c.L - 0.25f) * 8) * SmoothStep((0.85f - c.L) * 8);
    return fMiddle * SmoothStep((0.09f - ChromaOf(c)) * 20);
}

// Yellow and orange of full strength. They are fine as sparks; as a field they turn brown where planes are blended.
float BrownOf(const Lab &c)
{
    const float fNear = SmoothStep(1.6f * (1 - std::fabs(HueDifference(0.26f, HueOf(c))) / 0.13f));
    return fNear * SmoothStep(ChromaOf(c) * 12) * SmoothStep((0.93f - c.L) * 6);
}

float NoveltyOfHue(const Stable *pStable, float fHue)
{
    float fNearest = 0.5f;
    for (float fRecent : pStable->afRecentHue)
        fNearest = std::fmin(fNearest, std::fabs(HueDifference(fRecent, fHue)));
    return fNearest * 2;
}

// Rich in light and colour, clean, unlike what was shown last, and near the wished hue.
void JudgePalette(Verdict *pVerdict, const Stable *pStable, const GrownPalette &palette, const BreedWish &wish)
{
    const float fShare = 1.0f / JUDGED_COLORS;
    float fMud = 0, fChange = 0;
    Lab mean = {};
    float fChroma = 0;
    for (uint32_t i = 0; i < JUDGED_COLORS; i++) {
        const Lab c = pVerdict->aColor[i] = ColorAt(palette, (float)i * fShare);
        mean = {mean.L + c.L * fShare, mean.a + c.a * fShare, mean.b + c.b * fShare};
        fChroma += ChromaOf(c) * fShare;
        fMud += (MudOf(c) + 0.4f * BrownOf(c)) * fShare;
        fChange += std::fmin(DistanceOf(c, pStable->aShown[i]), 0.3f) * fShare;
    }
    pVerdict->fHue = HueOf(mean);
    const float fUnited = ChromaOf(mean) / std::fmax(fChroma, 0.01f); // 1: a single hue
    const float fLean = wish.fAttraction * fUnited * CosineOfTurns(pVerdict->fHue - wish.fHue);
    pVerdict->fScore = 2 * fChroma - 3 * fMud - 2 * std::fabs(mean.L - 0.56f) + 2 * fChange +
                       NoveltyOfHue(pStable, pVerdict->fHue) + 1.5f * fLean;
}

Genome MakeChild(Stable *pStable, StockRandom *pRandom, float fMutation)
{
    const uint32_t iMother = RandomBelow(pRandom, STOCK_PALETTES);
    const uint32_t iFather = (iMother + 1 + RandomBelow(pRandom, STOCK_PALETTES - 1)) % STOCK_PALETTES;
    // Without fresh blood the stable would grow alike.
    const bool bFreshBlood = RandomUnit(pRandom) < 0.15f + 0.35f * fMutation;
    const Genome stranger = MakeGenome(pRandom);
    Genome child = CrossGenomes(pRandom, pStable->aLiving[iMother], bFreshBlood ? stranger : pStable->aLiving[iFather]);
    MutateGenome(pRandom, &child, fMutation);
    return child;
}

} // namespace

void FoundStable(Stable *pStable, StockRandom *pRandom)
{
    for (Genome &genome : pStable->aLiving)
        genome = MakeGenome(pRandom);
}

GrownPalette BreedPalette(Stable *pStable, StockRandom *pRandom, const BreedWish &wish)
{
    Genome bestChild = {};
    GrownPalette bestPalette = {};
    Verdict best, verdict;
    for (uint32_t i = 0; i < nChildren; i++) {
        const Genome child = MakeChild(pStable, pRandom, wish.fMutation);
        const GrownPalette palette = GrowPalette(child, wish.growth);
        JudgePalette(&verdict, pStable, palette, wish);
        if (i && !(verdict.fScore > best.fScore))
            continue;
        best = verdict;
        bestChild = child;
        bestPalette = palette;
    }
    pStable->aLiving[pStable->iOldest] = bestChild;
    pStable->iOldest = (pStable->iOldest + 1) % STOCK_PALETTES;
    pStable->afRecentHue[pStable->iRecentHue] = best.fHue;
    pStable->iRecentHue = (pStable->iRecentHue + 1) % RECENT_HUES;
    memcpy(pStable->aShown, best.aColor, sizeof pStable->aShown);
    return bestPalette;
}
