// Genome.cpp -- making, crossing and changing the genes of palettes
#include "Genome.h"

namespace {

// A gene that is a plain number, with the range that it lives in.
struct Gene {
    float Crest::*pf;
    float fLow;
    float fHigh;
};

const Gene aGenes[] = {
    {&Crest::fFamily, 0, 0.999f},    {&Crest::fStray, -1, 1},       {&Crest::fPeak, -1, 1},
    {&Crest::fValley, 0.03f, 0.32f}, {&Crest::fWidth, 0.75f, 1.4f}, {&Crest::fSkew, 0.33f, 0.67f},
    {&Crest::fShade, 0, 1},          {&Crest::fDrift, -1, 1},       {&Crest::fShine, 0.1f, 1},
};

const float fRichnessLow = 0.86f, fRichnessHigh = 1;

// About normal, -1 to 1, mostly small.
float Wobble(StockRandom *pRandom)
{
    return (RandomUnit(pRandom) + RandomUnit(pRandom) + RandomUnit(pRandom)) * (2.0f / 3) - 1;
}

float Inherit(StockRandom *pRandom, float fMother, float fFather)
{
    switch (RandomBelow(pRandom, 3)) {
    case 0:
        return fMother;
    case 1:
        return fFather;
    default:
        return Mix(fMother, fFather, RandomUnit(pRandom));
    }
}

} // namespace

Genome MakeGenome(StockRandom *pRandom)
{
    Genome genome;
    genome.dwHarmony = 1 + RandomBelow(pRandom, HARMONY_COUNT - 1);
    genome.fBaseHue = RandomUnit(pRandom);
    genome.fRichness = RandomBetween(pRandom, fRichnessLow, fRichnessHigh);
    for (Crest &crest : genome.aCrest)
        for (const Gene &gene : aGenes)
            crest.*gene.pf = RandomBetween(pRandom, gene.fLow, gene.fHigh);
    return genome;
}

Genome CrossGenomes(StockRandom *pRandom, const Genome &mother, const Genome &father)
{
    Genome child;
    child.dwHarmony = RandomBelow(pRandom, 2) ? mother.dwHarmony : father.dwHarmony;
    const float fStep = HueDifference(mother.fBaseHue, father.fBaseHue);
    child.fBaseHue = WrapTurns(mother.fBaseHue + Inherit(pRandom, 0, fStep));
    child.fRichness = Inherit(pRandom, mother.fRichness, father.fRichness);
    for (uint32_t i = 0; i < CRESTS_MAX; i++)
        for (const Gene &gene : aGenes)
            child.aCrest[i].*gene.pf = Inherit(pRandom, mother.aCrest[i].*gene.pf, father.aCrest[i].*gene.pf);
    return child;
}

void MutateGenome(StockRandom *pRandom, Genome *pGenome, float fStrength)
{
    if (RandomUnit(pRandom) < fStrength * 0.5f)
        pGenome->dwHarmony = 1 + RandomBelow(pRandom, HARMONY_COUNT - 1);
    pGenome->fBaseHue = WrapTurns(pGenome->fBaseHue + Wobble(pRandom) * 0.5f * fStrength);
    pGenome->fRichness = Limit(pGenome->fRichness + Wobble(pRandom) * 0.1f * fStrength, fRichnessLow, fRichnessHigh);
    for (Crest &crest : pGenome->aCrest)
        for (const Gene &gene : aGenes) {
            const float fReach = (gene.fHigh - gene.fLow) * fStrength;
            crest.*gene.pf = Limit(crest.*gene.pf + Wobble(pRandom) * fReach, gene.fLow, gene.fHigh);
        }
}
