// DEFade.cpp -- DEFade.dll, a drawing effect: lets the picture fade towards black or another place of the palette
#include "../common/StockLight.h"
#include "../common/StockModule.h"
#include "../common/StockScratch.h"

enum { CONTROL_TIME, CONTROL_KICK, CONTROL_CURVE, CONTROL_PLACE, CONTROL_EDGES, CONTROL_UNFOLDS, CONTROLS };

// What a value loses in one drawing: a share of its way to the target, and steps of the scale.
struct FadeStep {
    float fShare, fSteps;
};

// For each column of the picture.
struct FadeColumns {
    float *pfSpeed;
    uint16_t *pwRounding;
    int32_t nColumns;
};

struct Fade {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    float fSpeed, fPlace, fEdges; // eased; speed in whole fades a second
    uint32_t nFrame;
    ColumnTables tables;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Fade",
                   u"Lets trails fade to black or to another place of the palette, without ghosts");
}

static void AddControls(Fade *pFade, const ControlMaker &maker)
{
    ControlRecord **ap = pFade->apControl;
    ap[CONTROL_TIME] =
        AddFloat(maker, u"Fade\0Time\0", u"Seconds until nothing is left", {0.1f, 180}, {2, 9}, 4, FromWave(31000));
    ap[CONTROL_KICK] = AddFloat(maker, u"Fade\0Kick\0", u"Times that fading runs faster, best from the sound", {1, 20},
                                {1, 3}, 1, FromSound(4));
    ap[CONTROL_CURVE] = AddFloat(maker, u"Fade\0Curve\0", u"0 fades evenly, 1 fast at first and slowly at the end",
                                 {0, 1}, {0.3f, 0.9f}, 0.6f, FromRandom());
    ap[CONTROL_PLACE] =
        AddFloat(maker, u"Target\0Place\0", u"Where in the palette everything ends; 0 is black or the first color",
                 {0, 1}, {0, 0.4f}, 0, FromFixed());
    ap[CONTROL_EDGES] =
        AddFloat(maker, u"Target\0Edges\0", u"Above 0 the edges fade faster than the middle, below 0 slower", {-1, 1},
                 {-0.5f, 0.8f}, 0.3f, FromWave(47000));
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Fade\0Unfolds\0", pFade->aUnfoldsRow);
}

static float ReadSpeed(const Fade *pFade)
{
    return std::max(ReadFloat(pFade->apControl[CONTROL_KICK]), 1.0f) /
           std::max(ReadFloat(pFade->apControl[CONTROL_TIME]), 0.1f);
}

static void EaseControls(Fade *pFade, float fSeconds)
{
    Approach(&pFade->fSpeed, ReadSpeed(pFade), fSeconds, 0.1f);
    Approach(&pFade->fPlace, ReadFloat(pFade->apControl[CONTROL_PLACE]), fSeconds, 0.5f);
    Approach(&pFade->fEdges, ReadFloat(pFade->apControl[CONTROL_EDGES]), fSeconds, 0.5f);
}

static void Start(Fade *pFade, PlaneInfo *)
{
    pFade->clock = {};
    pFade->fSpeed = ReadSpeed(pFade);
    pFade->fPlace = ReadFloat(pFade->apControl[CONTROL_PLACE]);
    pFade->fEdges = ReadFloat(pFade->apControl[CONTROL_EDGES]);
}

// ---- How much goes

// A full scale of fScale steps is gone after one fade: with the share k of what is left and the even part e that goes
// in the time of a fade, ln(1 + k / e) / k = 1. The even part makes it end.
static FadeStep StepOfFade(float fFades, float fCurve, float fScale)
{
    const float fShare = 4 * fCurve, fEven = fShare < 0.01f ? 1 : fShare / (std::exp(fShare) - 1);
    return {1 - std::exp(-fShare * fFades), fEven * fFades * fScale};
}

// Speed 1 at the edges and less in the middle, or the other way round, is the sum of a column's and a row's part.
static float SpeedPart(float fEdges, int32_t i, int32_t nCount)
{
    const float fOut = 2 * (float)i / (float)std::max(nCount - 1, 1) - 1;
    const float fPart = 0.475f * std::fabs(fEdges);
    return fEdges > 0 ? 0.5f - fPart * (1 - fOut * fOut) : 0.5f - fPart * fOut * fOut;
}

static FadeColumns FillColumns(const ColumnTables &tables, float fEdges)
{
    float *pfSpeed = (float *)tables.pv;
    const FadeColumns columns = {pfSpeed, (uint16_t *)(void *)(pfSpeed + tables.nColumns), tables.nColumns};
    for (int32_t x = 0; x < tables.nColumns; x++) {
        columns.pfSpeed[x] = SpeedPart(fEdges, x, tables.nColumns);
        columns.pwRounding[x] = (uint16_t)((uint32_t)x * ROUNDING_X);
    }
    return columns;
}

// ---- The loops

struct FadeRow {
    FadeStep step;
    float fSpeed;
    uint16_t wRounding;
};

struct FadePixel {
    float fSpeed, fRounding;
};

static inline FadePixel PixelOfRow(const FadeColumns &columns, const FadeRow &row, int32_t x)
{
    return {columns.pfSpeed[x] + row.fSpeed, (float)(uint16_t)(columns.pwRounding[x] + row.wRounding) * (1 / 65536.0f)};
}

// Steps below one are rounded up now here, now there: in the end they add up.
static inline uint32_t FadedValue(int32_t nValue, int32_t nTarget, const FadeStep &step, const FadePixel &pixel)
{
    const int32_t nWay = std::abs(nValue - nTarget);
    const float fStep = ((float)nWay * step.fShare + step.fSteps) * pixel.fSpeed;
    const int32_t nStep = std::min((int32_t)(fStep + pixel.fRounding), nWay);
    return (uint32_t)(nValue > nTarget ? nValue - nStep : nValue + nStep);
}

STOCK_WIDE static void FadeColorRow(const FadeColumns columns, const FadeRow row, uint32_t dwTarget,
                                    uint32_t *__restrict pdwRow)
{
    const int32_t nBlue = dwTarget & 255, nGreen = dwTarget >> 8 & 255, nRed = dwTarget >> 16 & 255;
    for (int32_t x = 0; x < columns.nColumns; x++) {
        const uint32_t dwOld = pdwRow[x];
        const FadePixel pixel = PixelOfRow(columns, row, x);
        pdwRow[x] = (dwOld & 0xFF000000u) | FadedValue(dwOld & 255, nBlue, row.step, pixel) |
                    FadedValue(dwOld >> 8 & 255, nGreen, row.step, pixel) << 8 |
                    FadedValue(dwOld >> 16 & 255, nRed, row.step, pixel) << 16;
    }
}

STOCK_WIDE static void FadeIndexRow(const FadeColumns columns, const FadeRow row, int32_t nTop, int32_t nTarget,
                                    uint32_t *__restrict pdwRow)
{
    for (int32_t x = 0; x < columns.nColumns; x++) {
        const int32_t nIndex = std::min((int32_t)(pdwRow[x] & (PALETTE_COLORS_MAX - 1)), nTop);
        pdwRow[x] = FadedValue(nIndex, nTarget, row.step, PixelOfRow(columns, row, x));
    }
}

static uint32_t Draw(Fade *pFade, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pFade->clock, ppi);
    EaseControls(pFade, fSeconds);
    const float fFades = pFade->fSpeed * UnfoldSeconds(ppi, ReadItem(pFade->apControl[CONTROL_UNFOLDS]), fSeconds);
    if (fFades <= 0 || !FitColumns(&pFade->tables, canvas.nWidth, sizeof(float) + sizeof(uint16_t)))
        return 0;
    const int32_t nTop = canvas.nColors - 1, nTarget = (int32_t)(pFade->fPlace * (float)nTop + 0.5f);
    const uint32_t dwColor = pFade->fPlace > 0 ? ColorAt(canvas, pFade->fPlace) : 0;
    const FadeColumns columns = FillColumns(pFade->tables, pFade->fEdges);
    FadeRow row = {StepOfFade(fFades, ReadFloat(pFade->apControl[CONTROL_CURVE]),
                              canvas.bIndexed ? (float)std::max(nTop, 1) : 255),
                   0, 0};
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        row.fSpeed = SpeedPart(pFade->fEdges, y, canvas.nHeight);
        row.wRounding = (uint16_t)RoundingStart(y, pFade->nFrame);
        if (canvas.bIndexed)
            FadeIndexRow(columns, row, nTop, nTarget, CanvasRow(canvas, y));
        else
            FadeColorRow(columns, row, dwColor, CanvasRow(canvas, y));
    }
    pFade->nFrame++;
    return 0;
}

static void Release(Fade *pFade)
{
    FreeColumns(&pFade->tables);
}

STOCK_DRAWING_MODULE(Fade)
