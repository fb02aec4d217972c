// Growth.cpp -- from genes to colours
#include "Genome.h"

namespace {

// Hues of a scheme, in turns from the base hue. The first counts most.
const float aafScheme[HARMONY_COUNT][4] = {
    {0, 0, 0, 0},              // any: the genes' own scheme stands in
    {0, 0.02f, -0.02f, 0},     // one hue
    {0, 0.10f, -0.10f, 0.05f}, // neighbors
    {0, 0.03f, 0.5f, -0.03f},  // opposites
    {0, 0.42f, -0.42f, 0},     // split opposites
    {0, 0.3333f, 0.6667f, 0},  // three corners
};

const float fYellow = 0.30f, fCyan = 0.54f, fViolet = 0.79f;
const float fLeastLight = 0.8f; // of every crest: half of it is left where two planes are blended
const float fStrayTurns = 0.025f;
const float fDriftTurns = 0.08f;

float HueOfCrest(const Genome &genome, uint32_t dwHarmony, int32_t i)
{
    const Crest &crest = genome.aCrest[i];
    const float fScheme = aafScheme[dwHarmony][i ? (int32_t)(crest.fFamily * 4) : 0];
    return WrapTurns(genome.fBaseHue + fScheme + crest.fStray * fStrayTurns);
}

// The lightness at which a hue is strongest on a screen: 0.45 for blue, 0.97 for yellow.
float LightOfStrongest(float fHue)
{
    float fBest = 0, fBestLight = 0.7f;
    for (int i = 0; i < 20; i++) {
        const float L = 0.42f + 0.028f * (float)i, fChroma = GreatestChroma(L, fHue);
        if (fChroma > fBest) {
            fBest = fChroma;
            fBestLight = L;
        }
    }
    return fBestLight;
}

// Toward yellow or cyan, whichever is nearer, and not all the way.
float TurnToLight(float fHue)
{
    const float fToYellow = HueDifference(fHue, fYellow), fToCyan = HueDifference(fHue, fCyan);
    const float fNearer = std::fabs(fToYellow) < std::fabs(fToCyan) ? fToYellow : fToCyan;
    return Limit(fNearer * 0.6f, -0.1f, 0.1f);
}

void PlaceWaves(GrownPalette *pPalette, const Genome &genome)
{
    float fTotal = 0, fPlace = 0;
    for (int32_t i = 0; i < pPalette->nWaves; i++)
        fTotal += genome.aCrest[i].fWidth;
    for (int32_t i = 0; i < pPalette->nWaves; i++) {
        pPalette->aWave[i].fStart = fPlace / fTotal;
        fPlace += genome.aCrest[i].fWidth;
        pPalette->aWave[i].fEnd = i + 1 < pPalette->nWaves ? fPlace / fTotal : 1;
    }
}

void GrowWave(GrownWave *pWave, const Crest &crest, float fHue, const GrowthWish &wish)
{
    pWave->fHue = fHue;
    pWave->fLight = Mix(LightOfStrongest(fHue), 0.78f, 0.45f) + 0.06f * crest.fPeak;
    pWave->fSkew = crest.fSkew;
    pWave->fGlint = (0.97f - pWave->fLight) * Limit(crest.fShine * 2 * wish.fGlow, 0, 1);
    pWave->fGlint = std::fmax(pWave->fGlint, fLeastLight - pWave->fLight);
    pWave->fGlintTurn = TurnToLight(fHue);
}

// The hue of a valley: halfway between its neighbours, then some way to violet.
float HueOfValley(const Crest &crest, float fHueBefore, float fHueAfter)
{
    const float fStep = HueDifference(fHueBefore, fHueAfter);
    float fHue = fHueBefore + fStep * 0.5f;
    // Between opposites both ways round are equally far: the one by violet does not pass the dirty greens.
    if (std::fabs(fStep) > 0.4f && std::fabs(HueDifference(fHue, fViolet)) > 0.25f)
        fHue += 0.5f;
    fHue += HueDifference(fHue, fViolet) * crest.fShade * 0.6f;
    return WrapTurns(fHue + crest.fDrift * fDriftTurns);
}

// The valley between wave i and the next one, as both see it.
void JoinWaves(GrownPalette *pPalette, const Genome &genome, const GrowthWish &wish, int32_t i)
{
    const int32_t iNext = (i + 1) % pPalette->nWaves;
    GrownWave *pWave = &pPalette->aWave[i], *pNext = &pPalette->aWave[iNext];
    const float fValley = iNext ? genome.aCrest[i].fValley * Mix(1.4f, 0.3f, wish.fContrast) : 0;
    const float fHue = HueOfValley(genome.aCrest[i], pWave->fHue, pNext->fHue);
    pWave->afValley[1] = pNext->afValley[0] = fValley;
    pWave->afHueStep[1] = HueDifference(pWave->fHue, fHue);
    pNext->afHueStep[0] = HueDifference(pNext->fHue, fHue);
}

const GrownWave &WaveAt(const GrownPalette &palette, float fPlace)
{
    int32_t i = 0;
    while (i + 1 < palette.nWaves && fPlace >= palette.aWave[i].fEnd)
        i++;
    return palette.aWave[i];
}

} // namespace

GrownPalette GrowPalette(const Genome &genome, const GrowthWish &wish)
{
    GrownPalette palette = {};
    const uint32_t dwHarmony = wish.dwHarmony != HARMONY_ANY ? wish.dwHarmony : genome.dwHarmony;
    palette.nWaves = wish.nBands < 1 ? 1 : wish.nBands > CRESTS_MAX ? CRESTS_MAX : wish.nBands;
    palette.fChroma = Limit(genome.fRichness * wish.fVividness, 0, 1);
    PlaceWaves(&palette, genome);
    for (int32_t i = 0; i < palette.nWaves; i++)
        GrowWave(&palette.aWave[i], genome.aCrest[i], HueOfCrest(genome, dwHarmony, i), wish);
    for (int32_t i = 0; i < palette.nWaves; i++)
        JoinWaves(&palette, genome, wish, i);
    return palette;
}

Lab ColorAt(const GrownPalette &palette, float fPlace)
{
    const GrownWave &wave = WaveAt(palette, fPlace);
    const float u = (fPlace - wave.fStart) / (wave.fEnd - wave.fStart);
    const int iSide = u >= wave.fSkew;
    const float fClimb = Limit(iSide ? (1 - u) / (1 - wave.fSkew) : u / wave.fSkew, 0, 1); // 0 valley, 1 crest
    const float fDepth = 1 - fClimb, fRise = SmoothStep(fClimb);
    const float fBody = Mix(fRise, fRise * (2 - fRise), 0.6f); // bodies broader than valleys
    const float fGlint = fRise * fRise * fRise * fRise * fRise * fRise;

    const float L = Mix(wave.afValley[iSide], wave.fLight, fBody) + wave.fGlint * fGlint;
    const float fTurn = wave.afHueStep[iSide] * fDepth * SmoothStep(fDepth * 1.3f) + wave.fGlintTurn * fGlint;
    const float fHue = HueOfShade(wave.fHue + fTurn, L);
    return LabOfHue(L, GreatestChroma(L, fHue) * palette.fChroma, fHue);
}
