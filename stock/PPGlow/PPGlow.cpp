// PPGlow.cpp -- PPGlow.dll, an effect for colors: what is bright shines over its surroundings
//
// The picture is reduced, its bright parts are kept, blurred and added.
#include "../common/StockModule.h"
#include "../common/StockReduced.h"

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
    ReducedPicture reduced;
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

// ---- What shines: a pixel as far as it is bright

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

static uint32_t PassPixel(const BrightPass &pass, uint32_t dwMean)
{
    const uint32_t adwElement[3] = {dwMean & 255, dwMean >> 8 & 255, dwMean >> 16 & 255};
    const uint32_t dwBrightest = std::max(std::max(adwElement[0], adwElement[1]), adwElement[2]);
    uint32_t dwPixel = 0;
    for (int32_t i = 0; i < 3; i++) {
        const uint32_t dwTinted = dwBrightest * pass.adwTint[i] / 255;
        const uint32_t dwColor = adwElement[i] * (256 - pass.dwTintShare) + dwTinted * pass.dwTintShare;
        dwPixel |= (dwColor * pass.adwShare[dwBrightest] >> 16) << 8 * i;
    }
    return dwPixel;
}

static void TakeBrightParts(const ReducedPicture &reduced, const Canvas &canvas, const BrightPass &pass)
{
    for (int32_t y = 0; y < reduced.pixels.nHeight; y++) {
        ReduceRow(reduced, y, canvas.nWidth, canvas.nHeight,
                  [&](int32_t yRow) { return PixelBytes(CanvasRow(canvas, yRow)); });
        uint32_t *pdwRow = ScratchRow(reduced.pixels, y);
        for (int32_t x = 0; x < reduced.pixels.nWidth; x++)
            pdwRow[x] = PassPixel(pass, pdwRow[x]);
    }
}

// ---- Adding

// pwGlow: in 1/64. wStrength: 16384 for 1.
STOCK_WIDE static void AddRow(const uint16_t *pwGlow, int32_t nElements, uint16_t wStrength, uint16_t wRounding,
                              bool bScreen, uint8_t *__restrict pbRow)
{
    for (int32_t i = 0; i < nElements; i++) {
        const uint16_t wGlow = (uint16_t)((uint32_t)(uint16_t)(pwGlow[i] << 2) * wStrength >> 16);
        const uint16_t wSteps = (uint16_t)((uint16_t)(wGlow + wRounding) >> 6);
        const uint16_t wMore = std::min(wSteps, (uint16_t)255);
        const uint16_t wLeft = (uint16_t)(255 - pbRow[i]);
        const uint16_t wScreened = (uint16_t)((uint16_t)(wMore * wLeft + 128) >> 8);
        const uint16_t wAdded = bScreen ? wScreened : wMore;
        const uint8_t bNew = (uint8_t)(pbRow[i] + std::min(wAdded, wLeft));
        pbRow[i] = (i & 3) == 3 ? pbRow[i] : bNew;
    }
}

static uint32_t Draw(Glow *pGlow, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pGlow->clock, ppi);
    EaseControls(pGlow, fSeconds);
    const float fStrength =
        pGlow->fStrength * UnfoldSeconds(ppi, ReadItem(pGlow->apControl[CONTROL_UNFOLDS]), fSeconds);
    if (canvas.bIndexed || fStrength <= 0 || !FitReduced(&pGlow->reduced, canvas, true))
        return 0;
    BrightPass pass;
    FillBrightPass(pGlow, canvas, &pass);
    TakeBrightParts(pGlow->reduced, canvas, pass);
    const float fRadius = PercentOfHeight(canvas, pGlow->fRadius), fStretch = pGlow->fStretch;
    BlurReduced(&pGlow->reduced, {fRadius * std::min(1 + fStretch, 1.0f), fRadius * std::min(1 - fStretch, 1.0f), true},
                pGlow->nFrame);
    const uint16_t wStrength = (uint16_t)std::min(fStrength * 16384, 65535.0f);
    const bool bScreen = ReadItem(pGlow->apControl[CONTROL_MIX]) == MIX_SCREEN;
    for (int32_t y = 0; y < canvas.nHeight; y++)
        AddRow(SpreadRow(pGlow->reduced, y), canvas.nWidth * 4, wStrength, RoundingByte(y, pGlow->nFrame) >> 2, bScreen,
               PixelBytes(CanvasRow(canvas, y)));
    pGlow->nFrame++;
    return 0;
}

static void Release(Glow *pGlow)
{
    FreeReduced(&pGlow->reduced);
}

STOCK_DRAWING_MODULE(Glow)
