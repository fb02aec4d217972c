// PPSharpen.cpp -- PPSharpen.dll, an effect for colors: lifts the picture off its own blur
#include "../common/StockBlur.h"
#include "../common/StockModule.h"

enum { CONTROL_AMOUNT, CONTROL_RADIUS, CONTROL_THRESHOLD, CONTROL_LIMIT, CONTROL_UNFOLDS, CONTROLS };

struct Sharpen {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    float fAmount, fRadius; // eased
    uint32_t nFrame;
    BlurRoom room;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_RGB, u"Sharpen",
                   u"Makes details crisp; with a wide radius it deepens the whole picture");
}

static void AddControls(Sharpen *pSharpen, const ControlMaker &maker)
{
    ControlRecord **ap = pSharpen->apControl;
    ap[CONTROL_AMOUNT] = AddFloat(maker, u"Sharpen\0Amount\0", u"How much details are lifted", {0, 4}, {0.4f, 1.6f},
                                  0.8f, FromSound(10));
    ap[CONTROL_RADIUS] = AddFloat(maker, u"Sharpen\0Radius\0",
                                  u"Size of the details that are lifted, in percent of the picture's height",
                                  {0.05f, 8}, {0.15f, 1.2f}, 0.3f, FromWave(37000));
    ap[CONTROL_THRESHOLD] = AddFloat(maker, u"Sharpen\0Threshold\0",
                                     u"Differences up to this, in percent, are left alone: grain stays grain", {0, 20},
                                     {0.5f, 3}, 1, FromFixed());
    ap[CONTROL_LIMIT] =
        AddFloat(maker, u"Sharpen\0Limit\0", u"The most that anything changes, in percent: small for no halos",
                 {1, 100}, {15, 60}, 30, FromFixed());
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Sharpen\0Unfolds\0", pSharpen->aUnfoldsRow);
}

static void Start(Sharpen *pSharpen, PlaneInfo *)
{
    pSharpen->clock = {};
    pSharpen->fAmount = ReadFloat(pSharpen->apControl[CONTROL_AMOUNT]);
    pSharpen->fRadius = ReadFloat(pSharpen->apControl[CONTROL_RADIUS]);
}

struct SharpenRow {
    int16_t nAmount; // in 1/64
    int16_t nThreshold, nLimit;
    int16_t nRounding; // 0 to 63
};

STOCK_WIDE static void LiftRow(const uint8_t *pbBlurred, int32_t nPixels, const SharpenRow row,
                               uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nPixels * 4; i++) {
        const int16_t nAway = (int16_t)(pbRow[i] - pbBlurred[i]), nSize = (int16_t)(nAway < 0 ? -nAway : nAway);
        const int16_t nLift = std::max((int16_t)(nSize - row.nThreshold), (int16_t)0);
        // 7 bits of amount and 8 of lift stay in 16: what is lifted further is beyond the limit of a byte anyway.
        const int16_t nLifted = (int16_t)(std::min(nLift, (int16_t)125) * row.nAmount + row.nRounding);
        const int16_t nMore = std::min((int16_t)(nLifted >> 6), row.nLimit);
        const int16_t nNew = (int16_t)(nAway < 0 ? pbRow[i] - nMore : pbRow[i] + nMore);
        const uint8_t bNew = (uint8_t)std::clamp(nNew, (int16_t)0, (int16_t)255);
        pbRow[i] = (i & 3) == 3 ? pbRow[i] : bNew;
    }
}

static int16_t ByteOfPercent(const Sharpen *pSharpen, int32_t iControl)
{
    return (int16_t)(ReadFloat(pSharpen->apControl[iControl]) * 2.55f + 0.5f);
}

// In 1/64. Where little is lifted in each of many drawings, what is less than a 64th comes now and then.
static int16_t AmountOfDrawing(const Sharpen *pSharpen, float fUnfolded)
{
    const float fRounding = fUnfolded < 1 ? (float)RoundingStart(0, pSharpen->nFrame) * (1 / 65536.0f) : 0.5f;
    return (int16_t)(pSharpen->fAmount * fUnfolded * 64 + fRounding);
}

static uint32_t Draw(Sharpen *pSharpen, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pSharpen->clock, ppi);
    Approach(&pSharpen->fAmount, ReadFloat(pSharpen->apControl[CONTROL_AMOUNT]), fSeconds, 0.1f);
    Approach(&pSharpen->fRadius, ReadFloat(pSharpen->apControl[CONTROL_RADIUS]), fSeconds, 0.5f);
    const float fUnfolded = UnfoldSeconds(ppi, ReadItem(pSharpen->apControl[CONTROL_UNFOLDS]), fSeconds);
    const float fRadius = PercentOfHeight(canvas, pSharpen->fRadius);
    SharpenRow row = {AmountOfDrawing(pSharpen, fUnfolded), ByteOfPercent(pSharpen, CONTROL_THRESHOLD),
                      ByteOfPercent(pSharpen, CONTROL_LIMIT), 0};
    const uint32_t nFrame = pSharpen->nFrame++;
    if (canvas.bIndexed || row.nAmount <= 0 || !FitBlurRoom(&pSharpen->room, canvas, false))
        return 0;
    BlurCanvas(canvas, {fRadius, fRadius, false}, &pSharpen->room, nFrame, [&](int32_t y, const uint32_t *pdwBlurred) {
        row.nRounding = (int16_t)(RoundingByte(y, nFrame + 3) >> 2);
        LiftRow(PixelBytes(pdwBlurred), canvas.nWidth, row, PixelBytes(CanvasRow(canvas, y)));
    });
    return 0;
}

static void Release(Sharpen *pSharpen)
{
    FreeBlurRoom(&pSharpen->room);
}

STOCK_DRAWING_MODULE(Sharpen)
