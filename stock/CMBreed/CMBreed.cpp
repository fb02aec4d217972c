// CMBreed.cpp -- colour generator: breeds new palettes from the ones that live
#include "Breed.h"

#include "../common/StockEntryPoints.h"

namespace {

const char16_t *const aszHarmony[HARMONY_COUNT] = {u"Any",       u"One hue",         u"Neighboring hues",
                                                   u"Opposites", u"Split opposites", u"Three corners"};

void AddPaletteControls(BreedControls *pctl, const ControlMaker &maker)
{
    pctl->pColors = AddInteger(maker, u"Palette\0Colors\0", u"Number of colors in a palette.", {16, PALETTE_COLORS_MAX},
                               {128, 512}, 256, FromFixed());
    pctl->pHarmony = AddItemSelect(maker, u"Palette\0Harmony\0", u"How the hues of a palette lie to each other.",
                                   pctl->aHarmonyRows, aszHarmony, HARMONY_ANY, FromFixed());
    pctl->pBands = AddInteger(maker, u"Palette\0Bands\0", u"Bright bands from one end of the palette to the other.",
                              {1, CRESTS_MAX}, {2, 4}, 3, FromPeriodic(20000));
    pctl->pVividness = AddFloat(maker, u"Palette\0Vividness\0", u"How strong the colors of new palettes are.", {0, 1},
                                {0.88f, 1}, 0.95f, FromWave(47000));
    pctl->pContrast = AddFloat(maker, u"Palette\0Contrast\0", u"How dark the valleys between bright bands are.", {0, 1},
                               {0.35f, 1}, 0.7f, FromWave(61000));
    pctl->pGlow = AddFloat(maker, u"Palette\0Glow\0", u"How near to white the brightest colors get.", {0, 1},
                           {0.15f, 0.7f}, 0.4f, FromSound(20));
}

void AddBreedingControls(BreedControls *pctl, const ControlMaker &maker)
{
    // In step on all planes, so that their palettes go together. From coral over violet and blue to green and
    // back; gold comes in by harmonies and sparks, for as a field it turns brown where planes are blended.
    pctl->pHue =
        AddFloat(maker, u"Breeding\0Hue\0", u"The hue to which new palettes lean, in degrees round the circle.",
                 {-360, 360}, {-210, 40}, -90, FromWave(120000, WAVETYPE_TRIANGLE));
    SetWaveInStep(pctl->pHue);
    pctl->pAttraction = AddFloat(maker, u"Breeding\0Attraction\0", u"How much new palettes lean to that hue.", {0, 1},
                                 {0.2f, 0.7f}, 0.5f, FromWave(37000));
    pctl->pMutation = AddFloat(maker, u"Breeding\0Mutation\0", u"How far a new palette strays from its parents.",
                               {0, 1}, {0.1f, 0.6f}, 0.25f, FromSound(30));
    pctl->pLifetime = AddFloat(maker, u"Breeding\0Lifetime\0",
                               u"Seconds from palette to palette where the interpolator does not ask for them.",
                               {1, 300}, {10, 30}, 18, FromPeriodic(30000));
}

BreedWish ReadWish(const BreedControls &ctl)
{
    return {{ReadItem(ctl.pHarmony), ReadInteger(ctl.pBands), ReadFloat(ctl.pVividness), ReadFloat(ctl.pContrast),
             ReadFloat(ctl.pGlow)},
            ReadFloat(ctl.pMutation),
            ReadFloat(ctl.pHue) / 360,
            ReadFloat(ctl.pAttraction)};
}

// Breeds as the controls say, into the second palette of the block.
bool BreedSecondPalette(Breed *pBreed, PaletteInfo *pInfo)
{
    const GrownPalette palette = BreedPalette(&pBreed->stable, &pBreed->random, ReadWish(pBreed->ctl));
    const int32_t nColors = ReadInteger(pBreed->ctl.pColors) > 0 ? ReadInteger(pBreed->ctl.pColors) : 1;
    for (int32_t i = 0; i < nColors; i++) {
        const Lab c = ColorAt(palette, (float)i / (float)nColors);
        WriteSecondColor(pInfo, i, i ? PixelOfLab(&pBreed->generator.codes, c) : 0);
    }
    WriteSizes(pInfo, ReadSizes(pInfo).nColors1, nColors);
    return true;
}

} // namespace

static void AddControls(Breed *pBreed, const ControlMaker &maker)
{
    MakeCodeTables(&pBreed->generator.codes);
    AddPaletteControls(&pBreed->ctl, maker);
    AddBreedingControls(&pBreed->ctl, maker);
}

static void Prepare(Breed *pBreed)
{
    PrepareGenerator(&pBreed->generator);
}

static void Start(Breed *pBreed, PlaneInfo *ppi)
{
    if (!ppi->pPaletteInfo)
        return;
    pBreed->random = {ppi->hdc->qwSeed};
    FoundStable(&pBreed->stable, &pBreed->random);
    StartGenerator(&pBreed->generator, ppi, [=](PaletteInfo *pInfo) { return BreedSecondPalette(pBreed, pInfo); });
}

static uint32_t DrawFrame(Breed *pBreed, PlaneInfo *ppi)
{
    if (!ppi->pPaletteInfo || !ppi->lpColorTable)
        return 0;
    RunGenerator(&pBreed->generator, ppi, (double)ReadFloat(pBreed->ctl.pLifetime) * 1000,
                 [=](PaletteInfo *pInfo) { return BreedSecondPalette(pBreed, pInfo); });
    return 0;
}

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLORGENERATOR, u"Breed",
                   u"Breeds palettes from palettes: harmonious, clean and full of light");
}

STOCK_ENTRY_POINTS(Breed)
