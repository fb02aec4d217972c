// DEBlur.cpp -- DEBlur.dll, a drawing effect: softens the picture, wider with the sound
#include "../common/StockBlur.h"
#include "../common/StockModule.h"

enum { SHAPE_BOX, SHAPE_SOFT, SHAPES };
enum { MIX_REPLACE, MIX_LIGHTEN, MIX_DARKEN, MIXES };

enum { CONTROL_RADIUS, CONTROL_STRETCH, CONTROL_SHAPE, CONTROL_UNFOLDS, CONTROL_AMOUNT, CONTROL_MIX, CONTROLS };

struct Blur {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aShapeRow[SHAPES], aUnfoldsRow[UNFOLDS_MODES], aMixRow[MIXES];
    DrawClock clock;
    float fRadius, fStretch, fAmount; // eased
    uint32_t nFrame;
    BlurRoom room;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Blur",
                   u"Softens the picture; trails run like ink on wet paper");
}

static void AddControls(Blur *pBlur, const ControlMaker &maker)
{
    static const char16_t *const aszShape[SHAPES] = {u"Box", u"Soft"};
    static const char16_t *const aszMix[MIXES] = {u"Replace", u"Lighten", u"Darken"};
    ControlRecord **ap = pBlur->apControl;
    ap[CONTROL_RADIUS] =
        AddFloat(maker, u"Blur\0Radius\0", u"How far light spreads, in percent of the picture's height", {0, 12},
                 {0.2f, 2}, 0.8f, FromSound(8));
    ap[CONTROL_STRETCH] = AddFloat(maker, u"Blur\0Stretch\0", u"1 spreads only sideways, -1 only up and down", {-1, 1},
                                   {-0.6f, 0.6f}, 0, FromWave(19000));
    ap[CONTROL_SHAPE] = AddItemSelect(maker, u"Blur\0Shape\0", u"Box is quick; Soft has no edges", pBlur->aShapeRow,
                                      aszShape, SHAPE_BOX, FromFixed());
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Blur\0Unfolds\0", pBlur->aUnfoldsRow);
    ap[CONTROL_AMOUNT] = AddFloat(maker, u"Mix\0Amount\0", u"How much of the sharp picture gives way", {0, 1},
                                  {0.6f, 1}, 1, FromWave(27000));
    ap[CONTROL_MIX] = AddItemSelect(maker, u"Mix\0How\0", u"Lighten keeps what is brighter, Darken what is darker",
                                    pBlur->aMixRow, aszMix, MIX_REPLACE, FromFixed());
}

static void EaseControls(Blur *pBlur, float fSeconds)
{
    Approach(&pBlur->fRadius, ReadFloat(pBlur->apControl[CONTROL_RADIUS]), fSeconds, 0.08f);
    Approach(&pBlur->fStretch, ReadFloat(pBlur->apControl[CONTROL_STRETCH]), fSeconds, 0.5f);
    Approach(&pBlur->fAmount, ReadFloat(pBlur->apControl[CONTROL_AMOUNT]), fSeconds, 0.3f);
}

static void Start(Blur *pBlur, PlaneInfo *)
{
    pBlur->clock = {};
    pBlur->fRadius = ReadFloat(pBlur->apControl[CONTROL_RADIUS]);
    pBlur->fStretch = ReadFloat(pBlur->apControl[CONTROL_STRETCH]);
    pBlur->fAmount = ReadFloat(pBlur->apControl[CONTROL_AMOUNT]);
}

// ---- One row: the sharp one and the blurred one become the new one

struct RowMix {
    uint32_t dwMix;
    uint32_t dwAmount; // in 1/256
    uint8_t bRounding;
};

template <typename Value> static inline Value MixValue(Value sharp, Value blurred, const RowMix &mix)
{
    const Value low = sharp < blurred ? sharp : blurred, high = sharp < blurred ? blurred : sharp;
    const Value other = mix.dwMix == MIX_LIGHTEN ? high : mix.dwMix == MIX_DARKEN ? low : blurred;
    const Value sharpWeight = (Value)(256 - mix.dwAmount), otherWeight = (Value)mix.dwAmount;
    return (Value)((Value)(sharp * sharpWeight + other * otherWeight + mix.bRounding) >> 8);
}

STOCK_WIDE static void MixColorRow(const uint8_t *pbBlurred, int32_t nPixels, const RowMix mix,
                                   uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nPixels * 4; i++) {
        const uint8_t bNew = (uint8_t)MixValue((uint16_t)pbRow[i], (uint16_t)pbBlurred[i], mix);
        pbRow[i] = (i & 3) == 3 ? pbRow[i] : bNew;
    }
}

STOCK_WIDE static void MixIndexRow(const uint32_t *pdwBlurred, int32_t nPixels, const RowMix mix, uint32_t dwTop,
                                   uint32_t *__restrict pdwRow)
{
    for (int32_t i = 0; i < nPixels; i++)
        pdwRow[i] = MixValue(pdwRow[i] < dwTop ? pdwRow[i] : dwTop, pdwBlurred[i], mix);
}

STOCK_WIDE static void ReplaceColorRow(const uint32_t *pdwBlurred, int32_t nPixels, uint32_t *pdwRow)
{
    for (int32_t i = 0; i < nPixels; i++)
        pdwRow[i] = (pdwRow[i] & 0xFF000000u) | (pdwBlurred[i] & 0xFFFFFFu);
}

static void TakeRow(const Canvas &canvas, int32_t y, const uint32_t *pdwBlurred, const RowMix &mix)
{
    uint32_t *pdwRow = CanvasRow(canvas, y);
    if (canvas.bIndexed)
        MixIndexRow(pdwBlurred, canvas.nWidth, mix, (uint32_t)canvas.nColors - 1, pdwRow);
    else if (mix.dwMix == MIX_REPLACE && mix.dwAmount == 256)
        ReplaceColorRow(pdwBlurred, canvas.nWidth, pdwRow);
    else
        MixColorRow(PixelBytes(pdwBlurred), canvas.nWidth, mix, PixelBytes(pdwRow));
}

static uint32_t Draw(Blur *pBlur, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pBlur->clock, ppi);
    EaseControls(pBlur, fSeconds);
    const bool bSoft = ReadItem(pBlur->apControl[CONTROL_SHAPE]) == SHAPE_SOFT;
    // Blurs one after the other add up by the squares of their radii.
    const float fUnfolded = UnfoldSeconds(ppi, ReadItem(pBlur->apControl[CONTROL_UNFOLDS]), fSeconds);
    const float fRadius = PercentOfHeight(canvas, pBlur->fRadius) * std::sqrt(fUnfolded);
    const BlurSize size = {fRadius * std::min(1 + pBlur->fStretch, 1.0f), fRadius * std::min(1 - pBlur->fStretch, 1.0f),
                           bSoft};
    RowMix mix = {ReadItem(pBlur->apControl[CONTROL_MIX]), (uint32_t)(pBlur->fAmount * 256 + 0.5f), 0};
    if (mix.dwAmount == 0 || fRadius <= 0 || !FitBlurRoom(&pBlur->room, canvas, bSoft))
        return 0;
    const uint32_t nFrame = pBlur->nFrame++;
    BlurCanvas(canvas, size, &pBlur->room, nFrame, [&](int32_t y, const uint32_t *pdwBlurred) {
        mix.bRounding = RoundingByte(y, nFrame + 3);
        TakeRow(canvas, y, pdwBlurred, mix);
    });
    return 0;
}

static void Release(Blur *pBlur)
{
    FreeBlurRoom(&pBlur->room);
}

STOCK_DRAWING_MODULE(Blur)
