// PPGlow.cpp -- PPGlow.dll, an effect for colors: what is bright shines over its surroundings
//
// The picture is reduced to a quarter of its width and height, its bright parts are kept, blurred and added. So a wide
// glow costs little more than a narrow one.
#include "../common/StockBlur.h"
#include "../common/StockModule.h"

#define GLOW_REDUCE 4

enum { MIX_ADD, MIX_SCREEN, MIXES };

enum {
    CONTROL_STRENGTH,
    CONTROL_RADIUS,
    CONTROL_STRETCH,
    CONTROL_THRESHOLD,
    CONTROL_KNEE,
    CONTROL_MIX,
    CONTROL_TINT,
    CONTROL_PLACE,
    CONTROL_UNFOLDS,
    CONTROLS
};

struct Glow {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aMixRow[MIXES], aUnfoldsRow[UNFOLDS_MODES];
    DrawClock clock;
    float fStrength, fRadius, fStretch, fThreshold; // eased
    uint32_t nFrame;
    ScratchPicture reduced;
    BlurRoom room;
    uint16_t *pwLine; // the sums of a row of the picture, with a reduced pixel to spare at either end
    int32_t nLinePixels;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_RGB, u"Glow",
                   u"Lets the bright parts of the picture shine over their surroundings");
}

static void AddControls(Glow *pGlow, const ControlMaker &maker)
{
    static const char16_t *const aszMix[MIXES] = {u"Add", u"Screen"};
    ControlRecord **ap = pGlow->apControl;
    ap[CONTROL_STRENGTH] =
        AddFloat(maker, u"Glow\0Strength\0", u"How much light is added", {0, 4}, {0.4f, 1.6f}, 0.9f, FromSound(6));
    ap[CONTROL_RADIUS] = AddFloat(maker, u"Glow\0Radius\0", u"How far it shines, in percent of the picture's height",
                                  {0.5f, 25}, {2, 8}, 4, FromWave(23000));
    ap[CONTROL_STRETCH] = AddFloat(maker, u"Glow\0Stretch\0", u"1 shines only sideways, -1 only up and down", {-1, 1},
                                   {-0.5f, 0.8f}, 0, FromFixed());
    ap[CONTROL_THRESHOLD] = AddFloat(maker, u"Source\0Threshold\0", u"What is darker than this does not shine", {0, 1},
                                     {0.3f, 0.7f}, 0.45f, FromWave(41000));
    ap[CONTROL_KNEE] = AddFloat(maker, u"Source\0Knee\0", u"How gently shining begins around the threshold",
                                {0.01f, 0.5f}, {0.1f, 0.4f}, 0.25f, FromFixed());
    ap[CONTROL_MIX] = AddItemSelect(maker, u"Glow\0Mix\0", u"Add burns out to white, Screen keeps what is there",
                                    pGlow->aMixRow, aszMix, MIX_SCREEN, FromFixed());
    ap[CONTROL_TINT] = AddFloat(maker, u"Color\0Tint\0", u"How much the glow takes on a color of the palette", {0, 1},
                                {0, 0.8f}, 0, FromFixed());
    ap[CONTROL_PLACE] = AddFloat(maker, u"Color\0Place\0", u"Where in the palette that color lies", {0, 1}, {0.3f, 1},
                                 0.8f, FromWave(29000));
    SetDependsOn(ap[CONTROL_PLACE], ap[CONTROL_TINT], DEPENDOP_GREATER, 0);
    ap[CONTROL_UNFOLDS] = AddUnfolds(maker, u"Glow\0Unfolds\0", pGlow->aUnfoldsRow);
}

static void EaseControls(Glow *pGlow, float fSeconds)
{
    Approach(&pGlow->fStrength, ReadFloat(pGlow->apControl[CONTROL_STRENGTH]), fSeconds, 0.08f);
    Approach(&pGlow->fRadius, ReadFloat(pGlow->apControl[CONTROL_RADIUS]), fSeconds, 0.3f);
    Approach(&pGlow->fStretch, ReadFloat(pGlow->apControl[CONTROL_STRETCH]), fSeconds, 0.5f);
    Approach(&pGlow->fThreshold, ReadFloat(pGlow->apControl[CONTROL_THRESHOLD]), fSeconds, 0.3f);
}

static void Start(Glow *pGlow, PlaneInfo *)
{
    pGlow->clock = {};
    pGlow->fStrength = ReadFloat(pGlow->apControl[CONTROL_STRENGTH]);
    pGlow->fRadius = ReadFloat(pGlow->apControl[CONTROL_RADIUS]);
    pGlow->fStretch = ReadFloat(pGlow->apControl[CONTROL_STRETCH]);
    pGlow->fThreshold = ReadFloat(pGlow->apControl[CONTROL_THRESHOLD]);
}

static Canvas ReducedCanvas(const ScratchPicture &reduced)
{
    return {
        PixelBytes(reduced.pPixels), reduced.nWidth, reduced.nHeight, (size_t)reduced.nWidth * 4, false, 256, nullptr};
}

static bool FitGlow(Glow *pGlow, const Canvas &canvas)
{
    Canvas small = canvas;
    small.nWidth = (canvas.nWidth + GLOW_REDUCE - 1) / GLOW_REDUCE;
    small.nHeight = (canvas.nHeight + GLOW_REDUCE - 1) / GLOW_REDUCE;
    if (!FitScratch(&pGlow->reduced, small) || !FitBlurRoom(&pGlow->room, small, true))
        return false;
    const int32_t nLinePixels = (small.nWidth + 2) * GLOW_REDUCE;
    if (pGlow->nLinePixels == nLinePixels)
        return true;
    free(pGlow->pwLine);
    pGlow->pwLine = (uint16_t *)calloc((size_t)nLinePixels * 4, sizeof(uint16_t));
    pGlow->nLinePixels = pGlow->pwLine ? nLinePixels : 0;
    return pGlow->pwLine != nullptr;
}

// ---- Reducing: the mean of each block, as far as it is bright

struct BrightPass {
    uint32_t adwShare[256];           // by the brightest element, in 1/256
    uint32_t dwTintShare, adwTint[3]; // in 1/256
};

static void FillBrightPass(const Glow *pGlow, const Canvas &canvas, BrightPass *pPass)
{
    const float fKnee = std::max(ReadFloat(pGlow->apControl[CONTROL_KNEE]), 0.01f);
    for (int32_t i = 0; i < 256; i++) {
        const float f = std::clamp(((float)i / 255 - pGlow->fThreshold) / (2 * fKnee) + 0.5f, 0.0f, 1.0f);
        pPass->adwShare[i] = (uint32_t)(f * f * (3 - 2 * f) * 256);
    }
    const uint32_t dwTint = ColorAt(canvas, ReadFloat(pGlow->apControl[CONTROL_PLACE]));
    pPass->dwTintShare = (uint32_t)(ReadFloat(pGlow->apControl[CONTROL_TINT]) * 256);
    for (int32_t i = 0; i < 3; i++)
        pPass->adwTint[i] = dwTint >> 8 * i & 255;
}

static uint32_t PassPixel(const BrightPass &pass, const uint32_t *pdwElements)
{
    const uint32_t dwBrightest = std::max({pdwElements[0], pdwElements[1], pdwElements[2]});
    uint32_t dwPixel = 0;
    for (int32_t i = 0; i < 3; i++) {
        const uint32_t dwTinted = dwBrightest * pass.adwTint[i] / 255;
        const uint32_t dwColor = pdwElements[i] * (256 - pass.dwTintShare) + dwTinted * pass.dwTintShare;
        dwPixel |= (dwColor * pass.adwShare[dwBrightest] >> 16) << 8 * i;
    }
    return dwPixel;
}

STOCK_WIDE static void SumRows(const uint8_t *const *apbRow, int32_t nElements, uint16_t *__restrict pwLine)
{
    const uint8_t *pb0 = apbRow[0], *pb1 = apbRow[1], *pb2 = apbRow[2], *pb3 = apbRow[3];
    for (int32_t i = 0; i < nElements; i++)
        pwLine[i] = (uint16_t)(pb0[i] + pb1[i] + pb2[i] + pb3[i]);
}

static void ReduceRow(const Glow *pGlow, const Canvas &canvas, const BrightPass &pass, int32_t y)
{
    const uint8_t *apbRow[GLOW_REDUCE];
    for (int32_t i = 0; i < GLOW_REDUCE; i++)
        apbRow[i] = PixelBytes(CanvasRow(canvas, std::min(y * GLOW_REDUCE + i, canvas.nHeight - 1)));
    SumRows(apbRow, canvas.nWidth * 4, pGlow->pwLine);
    uint32_t *pdwTo = ScratchRow(pGlow->reduced, y);
    for (int32_t x = 0; x < pGlow->reduced.nWidth; x++) {
        uint32_t adwElement[3] = {};
        for (int32_t i = 0; i < GLOW_REDUCE; i++) {
            const uint16_t *pw = pGlow->pwLine + std::min(x * GLOW_REDUCE + i, canvas.nWidth - 1) * 4;
            for (int32_t k = 0; k < 3; k++)
                adwElement[k] += pw[k];
        }
        for (uint32_t &dwElement : adwElement)
            dwElement = (dwElement + GLOW_REDUCE * GLOW_REDUCE / 2) / (GLOW_REDUCE * GLOW_REDUCE);
        pdwTo[x] = PassPixel(pass, adwElement);
    }
}

// ---- Adding: between the middles of the reduced pixels, in eighths

// Spread over two rows, 8 parts of each element, with the ends repeated.
STOCK_WIDE static void MixRows(const uint8_t *pbLower, const uint8_t *pbUpper, uint16_t wUpper, int32_t nElements,
                               uint16_t *__restrict pwTo)
{
    for (int32_t i = 0; i < nElements; i++)
        pwTo[i] = (uint16_t)(pbLower[i] * (8 - wUpper) + pbUpper[i] * wUpper);
}

// Four pixels from each reduced one; all elements of a pixel at once.
static void SpreadRow(const uint16_t *pwFrom, int32_t nReduced, uint16_t *__restrict pwTo)
{
    uint64_t qwLeft, qwHere, qwRight;
    memcpy(&qwHere, pwFrom, 8);
    qwLeft = qwHere;
    for (int32_t x = 0; x < nReduced; x++) {
        memcpy(&qwRight, pwFrom + std::min(x + 1, nReduced - 1) * 4, 8);
        const uint64_t aqw[GLOW_REDUCE] = {qwLeft * 3 + qwHere * 5, qwLeft + qwHere * 7, qwHere * 7 + qwRight,
                                           qwHere * 5 + qwRight * 3};
        memcpy(pwTo + x * GLOW_REDUCE * 4, aqw, sizeof aqw);
        qwLeft = qwHere;
        qwHere = qwRight;
    }
}

// pwGlow: in 1/64. wStrength: 16384 for 1.
STOCK_WIDE static void AddRow(const uint16_t *pwGlow, int32_t nElements, uint16_t wStrength, uint16_t wRounding,
                              bool bScreen, uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nElements; i++) {
        const uint16_t wGlow = (uint16_t)((uint32_t)(uint16_t)(pwGlow[i] << 2) * wStrength >> 16);
        const uint16_t wMore = (uint16_t)std::min((wGlow + wRounding) >> 6, 255);
        const uint16_t wLeft = (uint16_t)(255 - pbRow[i]);
        const uint16_t wScreened = (uint16_t)((uint16_t)(wMore * wLeft + 128) >> 8);
        const uint16_t wAdded = bScreen ? wScreened : wMore;
        const uint8_t bNew = (uint8_t)(pbRow[i] + std::min(wAdded, wLeft));
        pbRow[i] = (i & 3) == 3 ? pbRow[i] : bNew;
    }
}

static void ShineOnRow(const Glow *pGlow, const Canvas &canvas, int32_t y, uint16_t wStrength, bool bScreen)
{
    static const uint16_t awUpper[GLOW_REDUCE] = {5, 7, 1, 3};
    const int32_t yUpper = (y + GLOW_REDUCE / 2) / GLOW_REDUCE, nReduced = pGlow->reduced.nWidth;
    const uint32_t *pdwLower = ScratchRow(pGlow->reduced, std::max(yUpper - 1, 0));
    const uint32_t *pdwUpper = ScratchRow(pGlow->reduced, std::min(yUpper, pGlow->reduced.nHeight - 1));
    uint16_t *pwMixed = (uint16_t *)pGlow->room.pPadded;
    MixRows(PixelBytes(pdwLower), PixelBytes(pdwUpper), awUpper[y % GLOW_REDUCE], nReduced * 4, pwMixed);
    SpreadRow(pwMixed, nReduced, pGlow->pwLine);
    AddRow(pGlow->pwLine, canvas.nWidth * 4, wStrength, RoundingByte(y, pGlow->nFrame) >> 2, bScreen,
           PixelBytes(CanvasRow(canvas, y)));
}

static uint32_t Draw(Glow *pGlow, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pGlow->clock, ppi);
    EaseControls(pGlow, fSeconds);
    const float fStrength =
        pGlow->fStrength * UnfoldSeconds(ppi, ReadItem(pGlow->apControl[CONTROL_UNFOLDS]), fSeconds);
    if (canvas.bIndexed || fStrength <= 0 || !FitGlow(pGlow, canvas))
        return 0;
    BrightPass pass;
    FillBrightPass(pGlow, canvas, &pass);
    for (int32_t y = 0; y < pGlow->reduced.nHeight; y++)
        ReduceRow(pGlow, canvas, pass, y);
    const float fRadius = PercentOfHeight(canvas, pGlow->fRadius) / GLOW_REDUCE;
    const BlurSize size = {fRadius * std::min(1 + pGlow->fStretch, 1.0f), fRadius * std::min(1 - pGlow->fStretch, 1.0f),
                           true};
    BlurCanvas(ReducedCanvas(pGlow->reduced), size, &pGlow->room, pGlow->nFrame, [&](int32_t y, const uint32_t *pdw) {
        memcpy(ScratchRow(pGlow->reduced, y), pdw, (size_t)pGlow->reduced.nWidth * 4);
    });
    const bool bScreen = ReadItem(pGlow->apControl[CONTROL_MIX]) == MIX_SCREEN;
    for (int32_t y = 0; y < canvas.nHeight; y++)
        ShineOnRow(pGlow, canvas, y, (uint16_t)std::min(fStrength * 16384, 65535.0f), bScreen);
    pGlow->nFrame++;
    return 0;
}

static void Release(Glow *pGlow)
{
    FreeScratch(&pGlow->reduced);
    FreeBlurRoom(&pGlow->room);
    free(pGlow->pwLine);
    pGlow->pwLine = nullptr;
    pGlow->nLinePixels = 0;
}

STOCK_DRAWING_MODULE(Glow)
