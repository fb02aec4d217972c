// CMPalette.cpp -- colour generator: plays the palettes of a list of files
#include "stock/common/PaletteGenerator.h"
#include "stock/common/StockEntryPoints.h"
#include "stock/shared/PaletteFile.h"

namespace {

const uint64_t nAskAgainMs = 1000; // between two requests for a reset: a list of broken files is walked slowly

// A palette as it is handed on. Filled by the reader and by the shaping below.
struct FilePalette {
    int32_t nColors; // 0: none read yet
    uint8_t abRed[PALETTE_COLORS_MAX], abGreen[PALETTE_COLORS_MAX], abBlue[PALETTE_COLORS_MAX];
};

struct PaletteFiles {
    ControlRecord *pFiles;
    ControlRecord *pInterpolate;
    ControlRecord *pReverse;
    ControlRecord *pThereAndBack;
    ControlRecord *pTurn; // share of the loop
    ControlRecord *pBlackStart;
    PaletteGenerator generator;
    FilePalette palette;
    bool bFresh; // the palette has not been handed on yet
    char16_t szTried[CONTROL_TEXT];
    bool bAsked;
    uint64_t qwAskTick; // of the last request for a reset
};

// ---- From the file to the palette

void Interpolate(FilePalette *pPalette)
{
    if (pPalette->nColors == PALETTE_COLORS_MAX)
        return;
    for (uint8_t *pGun : {pPalette->abRed, pPalette->abGreen, pPalette->abBlue})
        InterpolatePalette(pGun, pPalette->nColors);
    pPalette->nColors = PALETTE_COLORS_MAX;
}

// Colour i of the palette that is handed on comes from this one of the file's.
int32_t SourceOfColor(const PaletteFiles *pFiles, int32_t i, int32_t nColors, int32_t nFile)
{
    int32_t k = (i + (int32_t)(ReadFloat(pFiles->pTurn) * (float)nColors)) % nColors;
    if (ReadBoolean(pFiles->pReverse))
        k = (nColors - k) % nColors;
    if (!ReadBoolean(pFiles->pThereAndBack))
        return k;
    const int32_t nFold = 2 * k < nColors ? 2 * k : 2 * (nColors - k);
    return (int32_t)((int64_t)nFold * (nFile - 1) / nColors);
}

uint32_t DarkenToBlack(const CodeTables *pTables, uint8_t r, uint8_t g, uint8_t b, float fLight)
{
    const Lab c = LabOfCodes(pTables, r, g, b);
    return PixelOfLab(pTables, {c.L * fLight, c.a * fLight, c.b * fLight});
}

// Writes the palette into second place, shaped as the controls say.
void WriteShaped(const PaletteFiles *pFiles, PaletteInfo *pInfo)
{
    const FilePalette &file = pFiles->palette;
    const int32_t nWanted = ReadBoolean(pFiles->pThereAndBack) ? 2 * file.nColors : file.nColors;
    const int32_t nColors = LimitColors(nWanted);
    const bool bBlackStart = ReadBoolean(pFiles->pBlackStart);
    for (int32_t i = 0; i < nColors; i++) {
        const int32_t k = SourceOfColor(pFiles, i, nColors, file.nColors);
        const float fLight = bBlackStart ? FloorOfIndex(i, nColors) : 1;
        const uint8_t r = file.abRed[k], g = file.abGreen[k], b = file.abBlue[k];
        const uint32_t dwPlain = (uint32_t)(r << 16 | g << 8 | b);
        WriteSecondColor(pInfo, i, fLight < 1 ? DarkenToBlack(&pFiles->generator.codes, r, g, b, fLight) : dwPlain);
    }
    WriteSizes(pInfo, ReadSizes(pInfo).nColors1, nColors);
}

// Reads the file of the moment. One that cannot be read, or holds no colours, leaves the palette as it was.
void TryFile(PaletteFiles *pFiles)
{
    const std::u16string_view path = ReadFileName(pFiles->pFiles);
    memset(pFiles->szTried, 0, sizeof pFiles->szTried);
    path.copy(pFiles->szTried, CONTROL_TEXT - 1);
    FilePalette palette = {};
    if (path.empty() || !ReadPaletteFile(path, &palette.nColors, palette.abRed, palette.abGreen, palette.abBlue) ||
        !palette.nColors)
        return;
    if (ReadBoolean(pFiles->pInterpolate))
        Interpolate(&palette);
    pFiles->palette = palette;
    pFiles->bFresh = true;
}

// The host may also move on in the list without a reset.
void TryChangedFile(PaletteFiles *pFiles)
{
    if (ReadFileName(pFiles->pFiles) == std::u16string_view(pFiles->szTried))
        return;
    TryFile(pFiles);
    pFiles->generator.bOfferDue |= pFiles->bFresh;
}

// ---- From file to file

// The host moves on in its list, in order or shuffled, when the module resets. False while it is too early to ask.
bool AskForNextFile(PaletteFiles *pFiles, uint64_t qwTick)
{
    if (ReadFileName(pFiles->pFiles).empty() || (pFiles->bAsked && qwTick - pFiles->qwAskTick < nAskAgainMs))
        return false;
    pFiles->bAsked = true;
    pFiles->qwAskTick = qwTick;
    return true;
}

bool HandOn(PaletteFiles *pFiles, PaletteInfo *pInfo)
{
    if (!pFiles->bFresh)
        return false;
    WriteShaped(pFiles, pInfo);
    pFiles->bFresh = false;
    return true;
}

void AddControls(PaletteFiles *pFiles, const ControlMaker &maker)
{
    MakeCodeTables(&pFiles->generator.codes);
    pFiles->pFiles = AddFileSelect(maker, u"Palettes\0Files\0",
                                   u"The palette files; the next one comes with each reset of this module.", u".pal");
    pFiles->pInterpolate = AddBoolean(maker, u"Colors\0Interpolate\0",
                                      u"Fills up short palettes with colors between theirs.", 0.5f, true, FromFixed());
    pFiles->pReverse = AddBoolean(maker, u"Colors\0Reverse\0", u"Lets the palette run from its end to its start.", 0.5f,
                                  false, FromFixed());
    pFiles->pThereAndBack = AddBoolean(
        maker, u"Colors\0There and Back\0",
        u"Lets the palette run to its end and back, so that its ends meet without a seam.", 0.5f, false, FromFixed());
    pFiles->pTurn = AddFloat(maker, u"Colors\0Turn\0", u"Where in the loop the palette begins, 1 for once around.",
                             {0, 1}, {0, 1}, 0, FromFixed());
    pFiles->pBlackStart =
        AddBoolean(maker, u"Colors\0Black Start\0",
                   u"Darkens both ends to black, so that empty places add nothing where planes are mixed.", 0.5f, true,
                   FromFixed());
}

void Prepare(PaletteFiles *pFiles)
{
    PrepareGenerator(&pFiles->generator);
}

void Start(PaletteFiles *pFiles, PlaneInfo *ppi)
{
    if (!ppi->pPaletteInfo)
        return;
    TryFile(pFiles);
    if (pFiles->bFresh)
        StartGenerator(&pFiles->generator, ppi, [=](PaletteInfo *pInfo) { return HandOn(pFiles, pInfo); });
}

// Without any palette the module claims nothing, and the interpolator shows palettes of its own.
uint32_t DrawFrame(PaletteFiles *pFiles, PlaneInfo *ppi)
{
    if (!ppi->pPaletteInfo || !ppi->lpColorTable)
        return 0;
    TryChangedFile(pFiles);
    bool bWantsNext = !pFiles->palette.nColors;
    const auto HandOnOrAsk = [=, &bWantsNext](PaletteInfo *pInfo) {
        bWantsNext = !HandOn(pFiles, pInfo);
        return !bWantsNext;
    };
    if (pFiles->palette.nColors)
        RunGenerator(&pFiles->generator, ppi, INFINITY, HandOnOrAsk);
    return bWantsNext && AskForNextFile(pFiles, ppi->hdc->qwTick) ? MODULEDRAW_RESET : 0;
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLORGENERATOR, u"Palette Files",
                   u"Plays palettes from files, one after the other or shuffled");
}

STOCK_ENTRY_POINTS(PaletteFiles)
