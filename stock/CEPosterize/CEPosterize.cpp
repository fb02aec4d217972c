// CEPosterize.cpp -- colour effect: makes a few broad bands of the palette, with hard or soft edges or black lines
#include "stock/common/ColorEffect.h"

namespace {

const float fEase = 0.5f;       // seconds
const float fHardReach = 1e-4f; // of an edge, in bands

struct Posterize {
    ControlRecord *pSteps, *pSoftness, *pLines, *pAmount;
    bool bStarted;
    float fSteps, fSoftness, fLines, fAmount; // eased
};

void AddControls(Posterize *pPosterize, const ControlMaker &maker)
{
    pPosterize->pSteps = AddInteger(maker, u"Bands\0Steps\0", u"Number of colors that are left of the palette.",
                                    {2, 64}, {5, 16}, 8, FromPeriodic(12000));
    pPosterize->pSoftness = AddFloat(maker, u"Bands\0Softness\0", u"0 for hard edges, 1 for bands that run together.",
                                     {0, 1}, {0, 0.5f}, 0.15f, FromWave(23000));
    pPosterize->pLines = AddFloat(maker, u"Bands\0Lines\0", u"Width of the black lines between the bands.", {0, 1},
                                  {0, 0.5f}, 0.12f, FromSound(12));
    pPosterize->pAmount =
        AddFloat(maker, u"Bands\0Amount\0", u"How much of the effect shows.", {0, 1}, {0.3f, 1}, 1, FromFixed());
}

void Start(Posterize *, PlaneInfo *)
{
}

void EaseControls(Posterize *pPosterize, float fSeconds)
{
    const float fWhole = pPosterize->bStarted ? fSeconds : 1e6f;
    pPosterize->bStarted = true;
    Glide(&pPosterize->fSteps, (float)ReadInteger(pPosterize->pSteps), fWhole, fEase);
    Glide(&pPosterize->fSoftness, ReadFloat(pPosterize->pSoftness), fWhole, fEase);
    Glide(&pPosterize->fLines, ReadFloat(pPosterize->pLines), fWhole, fEase * 0.3f);
    Glide(&pPosterize->fAmount, ReadFloat(pPosterize->pAmount), fWhole, fEase);
}

struct PosterSource {
    const CodeTables *pTables;
    const uint32_t *pFrom;
    int32_t nColors;
};

Lab ColorOfBand(const PosterSource &source, int32_t iBand, int32_t nBands)
{
    const int32_t i = (int32_t)((int64_t)iBand * source.nColors / nBands) % source.nColors;
    return LabOfPixel(source.pTables, source.pFrom[i]);
}

Lab MixLab(const Lab &c1, const Lab &c2, float fShare)
{
    return {Mix(c1.L, c2.L, fShare), Mix(c1.a, c2.a, fShare), Mix(c1.b, c2.b, fShare)};
}

// The bands lie around their own colours, band 0 around colour 0, so that black stays black.
Lab ColorInBands(const PosterSource &source, const Posterize *pPosterize, int32_t i, int32_t nBands)
{
    const float fPlace = (float)i * (float)nBands / (float)source.nColors;
    const int32_t iBand = (int32_t)fPlace;
    const float fBeside = fPlace - (float)iBand - 0.5f; // -0.5 to 0.5, the edge at 0
    const float fReach = std::fmax(0.5f * pPosterize->fSoftness, fHardReach);
    const Lab c = MixLab(ColorOfBand(source, iBand, nBands), ColorOfBand(source, iBand + 1, nBands),
                         SmoothStep(0.5f + 0.5f * (fBeside + fHardReach) / fReach));
    const float fHalf = 0.5f * pPosterize->fLines, fRim = std::fmax(fReach * 0.5f, fHalf * 0.25f);
    const float fInk = fHalf > 0 ? 1 - SmoothStep((std::fabs(fBeside) - fHalf) / fRim + 0.5f) : 0;
    return {c.L * (1 - fInk), c.a * (1 - fInk), c.b * (1 - fInk)};
}

// A number of bands between two whole ones is a mix of both pictures: the number can glide.
void Change(Posterize *pPosterize, const PlaneInfo *, const CodeTables *pTables, const uint32_t *pFrom, uint32_t *pTo,
            int32_t nColors, float fSeconds)
{
    EaseControls(pPosterize, fSeconds);
    const PosterSource source = {pTables, pFrom, nColors};
    const int32_t nBands = (int32_t)pPosterize->fSteps;
    const float fShare = pPosterize->fSteps - (float)nBands;
    for (int32_t i = 0; i < nColors; i++) {
        Lab c = ColorInBands(source, pPosterize, i, nBands < 1 ? 1 : nBands);
        if (fShare > 0.01f)
            c = MixLab(c, ColorInBands(source, pPosterize, i, nBands + 1), fShare);
        pTo[i] = PixelOfLab(pTables, MixLab(LabOfPixel(pTables, pFrom[i]), c, pPosterize->fAmount));
    }
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLOREFFECT, u"Posterize",
                   u"Leaves a few broad bands of the palette, with hard or soft edges or black lines");
}

STOCK_COLOR_EFFECT(Posterize)
