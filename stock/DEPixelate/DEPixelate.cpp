// DEPixelate.cpp -- DEPixelate.dll, a drawing effect: the picture in blocks whose size follows the sound
//
// All shapes are the same to the loops: along each row of the canvas, blocks of two kinds take turns, a block of the
// first kind every nSize pixels and one of the second kind in what it leaves. Squares have no second kind.
#include "../common/StockModule.h"
#include "../common/StockScratch.h"

enum { SHAPE_SQUARES, SHAPE_HEXAGONS, SHAPE_TRIANGLES, SHAPES };

enum { CONTROL_SHAPE, CONTROL_SIZE, CONTROL_BEAT, CONTROL_DOUBLING, CONTROL_SEAMS, CONTROL_SHINE, CONTROLS };

struct Pixelate {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aShapeRow[SHAPES];
    DrawClock clock;
    float fSize, fSeams, fShine; // eased; size in heights
    ScratchPicture source;
    uint32_t *pdwBlock[2]; // the blocks of both kinds in one band of rows
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Pixelate",
                   u"Shows the picture in squares, hexagons or triangles whose size follows the sound");
}

static void AddControls(Pixelate *pPixelate, const ControlMaker &maker)
{
    static const char16_t *const aszShapes[SHAPES] = {u"Squares", u"Hexagons", u"Triangles"};
    ControlRecord **ap = pPixelate->apControl;
    ap[CONTROL_SHAPE] = AddItemSelect(maker, u"Blocks\0Shape\0", u"Shape of the blocks", pPixelate->aShapeRow,
                                      aszShapes, SHAPE_HEXAGONS, FromFixed());
    ap[CONTROL_SIZE] = AddFloat(maker, u"Blocks\0Size\0", u"Width of a block in percent of the picture's height",
                                {0.2f, 50}, {1.2f, 5}, 3, FromWave(21000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Blocks\0Beat\0", u"Percent that come on top, meant for sound", {0, 50}, {0, 5},
                                0, FromSound(6));
    ap[CONTROL_DOUBLING] = AddBoolean(maker, u"Blocks\0Doubling\0", u"The size only doubles and halves, in leaps", 0.5f,
                                      false, FromFixed());
    ap[CONTROL_SEAMS] = AddFloat(maker, u"Look\0Seams\0", u"Width of the dark seams between blocks", {0, 1}, {0, 0.35f},
                                 0.2f, FromWave(33000));
    ap[CONTROL_SHINE] = AddFloat(maker, u"Look\0Shine\0",
                                 u"How much the blocks differ in brightness, where colors are "
                                 u"drawn",
                                 {0, 1}, {0, 0.3f}, 0.15f, FromSound(12));
}

static float ReadSize(const Pixelate *pPixelate)
{
    return (ReadFloat(pPixelate->apControl[CONTROL_SIZE]) + ReadFloat(pPixelate->apControl[CONTROL_BEAT])) * 0.01f;
}

static void Start(Pixelate *pPixelate, PlaneInfo *)
{
    pPixelate->clock = {};
    pPixelate->fSize = ReadSize(pPixelate);
    pPixelate->fSeams = ReadFloat(pPixelate->apControl[CONTROL_SEAMS]);
    pPixelate->fShine = ReadFloat(pPixelate->apControl[CONTROL_SHINE]);
}

// ---- The lattice of blocks, around the middle of the picture

struct Lattice {
    uint32_t dwShape;
    float xMiddle, yMiddle;
    float fSize, fBand; // from block to block of one kind, and from band to band of rows
    float fSeam;        // pixels
    uint32_t nShine;    // of 256
    int32_t nBlocks;    // of each kind in a band
};

// A band of rows: the middles of its blocks.
struct Band {
    int32_t iBand;
    float xFirst, yFirst; // of the first kind; the second one is half a size further
    float ySecond;
};

static Lattice LayLattice(const Pixelate *pPixelate, const Canvas &canvas)
{
    Lattice lattice = {};
    float fSize = std::max(pPixelate->fSize * (float)canvas.nHeight, 2.0f);
    if (ReadBoolean(pPixelate->apControl[CONTROL_DOUBLING]))
        fSize = std::exp2(std::floor(std::log2(fSize) + 0.5f));
    lattice.dwShape = ReadItem(pPixelate->apControl[CONTROL_SHAPE]);
    lattice.xMiddle = 0.5f * (float)canvas.nWidth;
    lattice.yMiddle = 0.5f * (float)canvas.nHeight;
    lattice.fSize = fSize;
    lattice.fBand = lattice.dwShape == SHAPE_SQUARES ? fSize : fSize * 0.8660254f;
    lattice.fSeam = fSize >= 4 ? 0.35f * pPixelate->fSeams * fSize : 0;
    lattice.nShine = (uint32_t)(pPixelate->fShine * 256);
    lattice.nBlocks = (int32_t)((float)canvas.nWidth / fSize) + 4;
    return lattice;
}

static Band FindBand(const Lattice &lattice, int32_t y)
{
    Band band = {};
    band.iBand = (int32_t)std::floor(((float)y - lattice.yMiddle) / lattice.fBand);
    const float yLow = lattice.yMiddle + (float)band.iBand * lattice.fBand;
    const float fLead = (std::floor(lattice.xMiddle / lattice.fSize) + 1) * lattice.fSize;
    const bool bShifted = lattice.dwShape != SHAPE_SQUARES && (band.iBand & 1);
    band.xFirst = lattice.xMiddle - fLead - (bShifted ? 0.5f * lattice.fSize : 0);
    const float afFirst[SHAPES] = {0.5f, 0, 0.333f}, afSecond[SHAPES] = {0.5f, 1, 0.667f};
    band.yFirst = yLow + afFirst[lattice.dwShape] * lattice.fBand;
    band.ySecond = yLow + afSecond[lattice.dwShape] * lattice.fBand;
    if (lattice.dwShape == SHAPE_SQUARES)
        band.xFirst += 0.5f * lattice.fSize; // the middle of the picture is a corner: doubled squares fit the old ones
    return band;
}

// Half of the width that blocks of the first kind have in a row.
static float HalfWidth(const Lattice &lattice, const Band &band, int32_t y)
{
    const float fLow = (float)y - band.yFirst, fHigh = band.ySecond - (float)y;
    if (lattice.dwShape == SHAPE_HEXAGONS) // the border is as far from one middle as from the other
        return std::clamp(0.25f * lattice.fSize + (fHigh * fHigh - fLow * fLow) / lattice.fSize, 0.0f,
                          0.5f * lattice.fSize);
    if (lattice.dwShape == SHAPE_TRIANGLES)
        return std::clamp(0.5f * lattice.fSize * (1 - fLow / lattice.fBand - 0.333f), 0.0f, 0.5f * lattice.fSize);
    return 0.5f * lattice.fSize;
}

// ---- The color of a block

// The mean of up to 4 x 4 places around the middle.
static uint32_t MeanColor(const ScratchPicture &source, float x, float y, float fSize)
{
    const int32_t nSide = fSize < 4 ? 1 : fSize < 8 ? 2 : 4;
    const float fStep = 0.7f * fSize / (float)nSide, fFirst = -0.5f * fStep * (float)(nSide - 1);
    uint32_t nBlue = 0, nGreen = 0, nRed = 0;
    for (int32_t iRow = 0; iRow < nSide; iRow++) {
        const float yPlace = std::clamp(y + fFirst + (float)iRow * fStep, 0.0f, (float)(source.nHeight - 1));
        const uint32_t *pdwRow = ScratchRow(source, (int32_t)yPlace);
        for (int32_t i = 0; i < nSide; i++) {
            const float xPlace = std::clamp(x + fFirst + (float)i * fStep, 0.0f, (float)(source.nWidth - 1));
            const uint32_t dwPixel = pdwRow[(int32_t)xPlace];
            nBlue += dwPixel & 255;
            nGreen += dwPixel >> 8 & 255;
            nRed += dwPixel >> 16 & 255;
        }
    }
    const uint32_t nPlaces = (uint32_t)(nSide * nSide);
    return nBlue / nPlaces | nGreen / nPlaces << 8 | nRed / nPlaces << 16;
}

// Darkens a block by up to the shine, each block by a number of its own.
static uint32_t ShadeBlock(uint32_t dwColor, uint32_t nShine, int32_t iBlock, int32_t iBand)
{
    const uint32_t nOwn = ((uint32_t)iBlock * 0x9E3779B1u ^ (uint32_t)iBand * 0x85EBCA77u) * 0xC2B2AE3Du >> 24;
    const uint32_t nLight = 256 - (nShine * nOwn >> 8);
    return ((dwColor & 0xFF00FF) * nLight >> 8 & 0xFF00FF) | ((dwColor & 0xFF00) * nLight >> 8 & 0xFF00);
}

static uint32_t ColorOfBlock(const Canvas &canvas, const ScratchPicture &source, const Lattice &lattice, float x,
                             float y, int32_t iBlock, int32_t iBand)
{
    if (!canvas.bIndexed) // blocks count from the middle, so that their shades stay with them when the size changes
        return ShadeBlock(MeanColor(source, x, y, lattice.fSize), lattice.nShine,
                          (int32_t)std::floor((x - lattice.xMiddle) * 2 / lattice.fSize + 0.25f), iBand * 2 + iBlock);
    const int32_t xPlace = (int32_t)std::clamp(x, 0.0f, (float)(source.nWidth - 1));
    return ScratchRow(source, (int32_t)std::clamp(y, 0.0f, (float)(source.nHeight - 1)))[xPlace];
}

static void ReadBand(const Pixelate *pPixelate, const Canvas &canvas, const Lattice &lattice, const Band &band)
{
    for (int32_t i = 0; i < lattice.nBlocks; i++) {
        const float x = band.xFirst + (float)i * lattice.fSize;
        pPixelate->pdwBlock[0][i] = ColorOfBlock(canvas, pPixelate->source, lattice, x, band.yFirst, 0, band.iBand);
        if (lattice.dwShape != SHAPE_SQUARES)
            pPixelate->pdwBlock[1][i] =
                ColorOfBlock(canvas, pPixelate->source, lattice, x + 0.5f * lattice.fSize, band.ySecond, 1, band.iBand);
    }
}

// ---- Drawing

// Fills up to xEnd and returns where to go on; keeps the alpha.
static int32_t FillTo(uint32_t *pdwRow, int32_t nWidth, int32_t x, float fEnd, uint32_t dwColor, uint32_t dwKept)
{
    const int32_t xEnd = (int32_t)std::clamp(std::ceil(fEnd), 0.0f, (float)nWidth);
    for (; x < xEnd; x++)
        pdwRow[x] = (pdwRow[x] & dwKept) | dwColor;
    return x;
}

static void DrawRow(const Pixelate *pPixelate, const Canvas &canvas, const Lattice &lattice, const Band &band,
                    int32_t y)
{
    uint32_t *pdwRow = CanvasRow(canvas, y);
    const uint32_t dwKept = canvas.bIndexed ? 0 : 0xFF000000u;
    const float fHalf = HalfWidth(lattice, band, y), fSeam = lattice.fSeam;
    const float fFromEdge = (float)y - (lattice.yMiddle + (float)band.iBand * lattice.fBand);
    if (lattice.dwShape != SHAPE_HEXAGONS && fFromEdge < fSeam) {
        FillTo(pdwRow, canvas.nWidth, 0, (float)canvas.nWidth, 0, dwKept);
        return;
    }
    int32_t x = 0;
    for (int32_t i = 0; i < lattice.nBlocks && x < canvas.nWidth; i++) {
        const float fMiddle = band.xFirst + (float)i * lattice.fSize, fEnd = fMiddle + fHalf;
        const float fNext = fMiddle + lattice.fSize - fHalf;
        x = FillTo(pdwRow, canvas.nWidth, x, std::min(fMiddle - fHalf + fSeam, fEnd), 0, dwKept);
        x = FillTo(pdwRow, canvas.nWidth, x, fEnd, pPixelate->pdwBlock[0][i], dwKept);
        x = FillTo(pdwRow, canvas.nWidth, x, std::min(fEnd + fSeam, fNext), 0, dwKept);
        x = FillTo(pdwRow, canvas.nWidth, x, fNext, pPixelate->pdwBlock[1][i], dwKept);
    }
}

static bool FitBlocks(Pixelate *pPixelate, int32_t nBlocks)
{
    for (uint32_t *&pdw : pPixelate->pdwBlock) {
        free(pdw);
        pdw = (uint32_t *)calloc((size_t)nBlocks, sizeof(uint32_t));
    }
    return pPixelate->pdwBlock[0] && pPixelate->pdwBlock[1];
}

static uint32_t Draw(Pixelate *pPixelate, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pPixelate->clock, ppi);
    Approach(&pPixelate->fSize, ReadSize(pPixelate), fSeconds, 0.08f);
    Approach(&pPixelate->fSeams, ReadFloat(pPixelate->apControl[CONTROL_SEAMS]), fSeconds, 0.3f);
    Approach(&pPixelate->fShine, ReadFloat(pPixelate->apControl[CONTROL_SHINE]), fSeconds, 0.1f);
    const Lattice lattice = LayLattice(pPixelate, canvas);
    if (!FitBlocks(pPixelate, lattice.nBlocks) || !CopyCanvas(&pPixelate->source, canvas))
        return 0;
    int32_t iLast = INT32_MIN;
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        const Band band = FindBand(lattice, y);
        if (band.iBand != iLast)
            ReadBand(pPixelate, canvas, lattice, band);
        iLast = band.iBand;
        DrawRow(pPixelate, canvas, lattice, band, y);
    }
    return 0;
}

static void Release(Pixelate *pPixelate)
{
    FreeScratch(&pPixelate->source);
    for (uint32_t *&pdw : pPixelate->pdwBlock) {
        free(pdw);
        pdw = nullptr;
    }
}

STOCK_DRAWING_MODULE(Pixelate)
