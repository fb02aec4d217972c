// PPScanLines.cpp -- PPScanLines.dll, an effect for colors: the picture on an old tube, with lines, mask and a rolling
// band
#include "../common/StockLight.h"
#include "../common/StockModule.h"
#include "../common/StockScratch.h"

#define GAIN_ONE 128 /* gains of colors; up to twice that */
#define MARGIN_LEAST 2

enum {
    CONTROL_LINES,
    CONTROL_DEPTH,
    CONTROL_ROLL,
    CONTROL_MASK,
    CONTROL_BAND,
    CONTROL_BANDPERIOD,
    CONTROL_WOBBLE,
    CONTROL_LIGHT,
    CONTROL_UNFOLDS,
    CONTROLS
};

struct TubeLook {
    float fDepth, fRoll, fMask, fBand, fWobble, fLight;
};

struct ScanLines {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    TubeLook look; // eased
    float fRollPhase, fBandPhase, afWobblePhase[2];
    uint32_t nFrame;
    ColumnTables tables;
    uint16_t *pwMask; // in the tables, per element of a row, GAIN_ONE for all of it
    uint8_t *pbRow;   // in the tables, a row with a margin that repeats its ends
    int32_t nMargin;  // pixels
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_RGB, u"Scan Lines",
                   u"An old tube: lines, a shadow mask, a rolling band, and a hold that shakes with the sound");
}

static void AddControls(ScanLines *pLines, const ControlMaker &maker)
{
    ControlRecord **ap = pLines->apControl;
    ap[CONTROL_LINES] =
        AddInteger(maker, u"Lines\0Count\0", u"Lines from the bottom to the top, as far as there is room", {8, 1080},
                   {120, 300}, 180, FromFixed());
    ap[CONTROL_DEPTH] = AddFloat(maker, u"Lines\0Depth\0", u"How dark it is between the lines", {0, 1}, {0.25f, 0.6f},
                                 0.45f, FromSound(12));
    ap[CONTROL_ROLL] = AddFloat(maker, u"Lines\0Roll\0", u"Lines that pass by in a second, below 0 upwards", {-20, 20},
                                {-1.5f, 1.5f}, 0.6f, FromWave(39000));
    ap[CONTROL_MASK] = AddFloat(maker, u"Mask\0Strength\0", u"Stripes of red, green and blue across the lines", {0, 1},
                                {0, 0.5f}, 0.25f, FromRandom());
    ap[CONTROL_BAND] = AddFloat(maker, u"Band\0Strength\0", u"A band of light that rolls through the picture", {0, 1},
                                {0, 0.4f}, 0.2f, FromWave(17000));
    ap[CONTROL_BANDPERIOD] = AddFloat(maker, u"Band\0Period\0", u"Seconds that it takes through the picture",
                                      {0.5f, 60}, {4, 14}, 8, FromFixed());
    ap[CONTROL_WOBBLE] = AddFloat(maker, u"Hold\0Wobble\0", u"How far lines shake sideways, in percent of the width",
                                  {0, 10}, {0, 0.7f}, 0.1f, FromSound(3));
    ap[CONTROL_LIGHT] = AddFloat(maker, u"Lines\0Light\0", u"Makes up for the dark between the lines", {0.5f, 2},
                                 {1, 1.5f}, 1.2f, FromFixed());
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Lines\0Unfolds\0", pLines->aUnfoldsRow);
}

static TubeLook ReadLook(const ScanLines *pLines)
{
    const auto Float = [&](int32_t iControl) { return ReadFloat(pLines->apControl[iControl]); };
    return {Float(CONTROL_DEPTH), Float(CONTROL_ROLL),   Float(CONTROL_MASK),
            Float(CONTROL_BAND),  Float(CONTROL_WOBBLE), Float(CONTROL_LIGHT)};
}

static void EaseLook(TubeLook *pLook, const TubeLook &target, float fSeconds)
{
    Approach(&pLook->fDepth, target.fDepth, fSeconds, 0.12f);
    Approach(&pLook->fRoll, target.fRoll, fSeconds, 0.5f);
    Approach(&pLook->fMask, target.fMask, fSeconds, 0.5f);
    Approach(&pLook->fBand, target.fBand, fSeconds, 0.3f);
    Approach(&pLook->fWobble, target.fWobble, fSeconds, 0.06f);
    Approach(&pLook->fLight, target.fLight, fSeconds, 0.3f);
}

static void Start(ScanLines *pLines, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pLines->fBandPhase = RandomUnit(&random);
    for (float &fPhase : pLines->afWobblePhase)
        fPhase = RandomUnit(&random);
    pLines->clock = {};
    pLines->look = ReadLook(pLines);
}

static bool FitTables(ScanLines *pLines, int32_t nColumns)
{
    // For each column the words of the mask and two pixels: the margins take less than the row itself.
    if (!FitColumns(&pLines->tables, nColumns + MARGIN_LEAST, 4 * sizeof(uint16_t) + 2 * sizeof(uint32_t)))
        return false;
    pLines->pwMask = (uint16_t *)pLines->tables.pv;
    pLines->pbRow = (uint8_t *)(pLines->pwMask + (size_t)nColumns * 4);
    pLines->nMargin = nColumns / 10 + MARGIN_LEAST; // the most that a line shakes, and a pixel to interpolate with
    return true;
}

// Each column keeps one of the three colors and dims the others; two pixels wide on large pictures.
static void FillMask(const ScanLines *pLines, int32_t nColumns, float fMask, int32_t nWide)
{
    const uint16_t wDim = (uint16_t)(GAIN_ONE * (1 - fMask) + 0.5f);
    for (int32_t x = 0; x < nColumns; x++)
        for (int32_t i = 0; i < 4; i++)
            pLines->pwMask[x * 4 + i] = i == 3 || 2 - i == x / nWide % 3 ? GAIN_ONE : wDim;
}

static void TakeRow(const ScanLines *pLines, const uint32_t *pdwRow, size_t nColumns)
{
    const size_t nMargin = (size_t)pLines->nMargin;
    memcpy(pLines->pbRow + nMargin * 4, pdwRow, nColumns * 4);
    for (size_t i = 0; i < nMargin; i++) {
        memcpy(pLines->pbRow + i * 4, pdwRow, 4);
        memcpy(pLines->pbRow + (nMargin + nColumns + i) * 4, pdwRow + nColumns - 1, 4);
    }
}

struct TubeRow {
    uint16_t wGain;     // GAIN_ONE for 1
    uint16_t wPart;     // of the pixel to the right, in 1/256
    uint16_t wRounding; // 0 to 127
};

STOCK_WIDE static void ShowRow(const uint8_t *pbFrom, const uint16_t *pwMask, int32_t nColumns, const TubeRow row,
                               uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nColumns * 4; i++) {
        const uint16_t wShifted =
            (uint16_t)((uint16_t)(pbFrom[i] * (256 - row.wPart) + pbFrom[i + 4] * row.wPart + 128) >> 8);
        const uint16_t wGain = std::min((uint16_t)((uint16_t)(pwMask[i] * row.wGain + 64) >> 7), (uint16_t)255);
        const uint16_t wShown = (uint16_t)((uint16_t)(wShifted * wGain + row.wRounding) >> 7);
        const uint8_t bNew = (uint8_t)std::min(wShown, (uint16_t)255);
        pbRow[i] = (i & 3) == 3 ? pbRow[i] : bNew;
    }
}

// How far the row stands from its place, -1 to 1: two waves that run against each other.
static float WobbleAt(const ScanLines *pLines, float fUp)
{
    return 0.6f * SineTurn(3.1f * fUp + pLines->afWobblePhase[0]) +
           0.4f * SineTurn(11.3f * fUp - pLines->afWobblePhase[1]);
}

// Bright where the band is, with a soft front and a long tail.
static float BandAt(const ScanLines *pLines, float fUp)
{
    const float fBehind = WrapUnit(fUp + pLines->fBandPhase);
    return fBehind < 0.05f ? fBehind * 20 : (1 - fBehind) * (1 - fBehind) * 1.108f;
}

static void MoveTube(ScanLines *pLines, float fSeconds)
{
    EaseLook(&pLines->look, ReadLook(pLines), fSeconds);
    AdvancePhase(&pLines->fRollPhase, pLines->look.fRoll, fSeconds);
    AdvancePhase(&pLines->fBandPhase, 1 / std::max(ReadFloat(pLines->apControl[CONTROL_BANDPERIOD]), 0.5f), fSeconds);
    AdvancePhase(&pLines->afWobblePhase[0], 0.9f, fSeconds);
    AdvancePhase(&pLines->afWobblePhase[1], 2.3f, fSeconds);
}

// The drawing does the part of a second that has unfolded: gains to the power, ways by the factor.
static void DrawTube(const ScanLines *pLines, const Canvas &canvas, float fUnfolded)
{
    const TubeLook &look = pLines->look;
    // Lines of whole pixels, three at least, never beat against the pixels.
    const int32_t nLines = std::max(ReadInteger(pLines->apControl[CONTROL_LINES]), 1);
    const int32_t nPitch = std::max((int32_t)((float)canvas.nHeight / (float)nLines + 0.5f), 3);
    const float fMostWobble = (float)(pLines->nMargin - 2);
    FillMask(pLines, canvas.nWidth, UnfoldShare(look.fMask, fUnfolded), canvas.nHeight > 1200 ? 2 : 1);
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        const float fUp = (float)y / (float)canvas.nHeight;
        const float fLine = FoldUnit(((float)y + 0.5f) / (float)nPitch + pLines->fRollPhase);
        const float fGain = look.fLight * (1 - 0.98f * look.fDepth * fLine) * (1 + look.fBand * BandAt(pLines, fUp));
        const float fWobble = 0.01f * look.fWobble * fUnfolded * (float)canvas.nWidth * WobbleAt(pLines, fUp);
        const float xFrom = (float)pLines->nMargin + std::clamp(fWobble, -fMostWobble, fMostWobble);
        const int32_t nFrom = (int32_t)xFrom;
        const TubeRow row = {(uint16_t)(std::min(std::pow(fGain, fUnfolded), 2.0f) * GAIN_ONE + 0.5f),
                             (uint16_t)((xFrom - (float)nFrom) * 256),
                             (uint16_t)(RoundingByte(y, pLines->nFrame) >> 1)};
        TakeRow(pLines, CanvasRow(canvas, y), (size_t)canvas.nWidth);
        ShowRow(pLines->pbRow + (size_t)nFrom * 4, pLines->pwMask, canvas.nWidth, row,
                PixelBytes(CanvasRow(canvas, y)));
    }
}

static uint32_t Draw(ScanLines *pLines, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pLines->clock, ppi);
    MoveTube(pLines, fSeconds);
    const float fUnfolded = UnfoldSeconds(ppi, ReadItem(pLines->apControl[CONTROL_UNFOLDS]), fSeconds);
    if (canvas.bIndexed || fUnfolded <= 0 || !FitTables(pLines, canvas.nWidth))
        return 0;
    DrawTube(pLines, canvas, fUnfolded);
    pLines->nFrame++;
    return 0;
}

static void Release(ScanLines *pLines)
{
    FreeColumns(&pLines->tables);
}

STOCK_DRAWING_MODULE(ScanLines)
