// CETint.cpp -- colour effect: turns the hues, changes saturation, light and contrast, and leans all colours to one
#include "stock/common/ColorEffect.h"

namespace {

const float fEase = 0.25f; // seconds

// What is done to each colour; eased, so that a control that jumps does not show.
struct TintLook {
    float fTurn; // of the hues
    float fSaturation;
    float fBrightness;
    float fContrast;
    float fTint; // 0 to 1
    float fTintA, fTintB;
};

struct Tint {
    ControlRecord *pTurn, *pSaturation, *pBrightness, *pContrast, *pTint, *pTintHue, *pTintStrength;
    bool bStarted;
    TintLook look;
};

void AddControls(Tint *pTint, const ControlMaker &maker)
{
    pTint->pTurn = AddFloat(maker, u"Color\0Hue Turn\0", u"Turns all hues round the circle, in degrees.", {-360, 360},
                            {-60, 60}, 0, FromWave(60000));
    pTint->pSaturation = AddFloat(maker, u"Color\0Saturation\0", u"How colorful the colors are; 0 makes them gray.",
                                  {0, 2}, {0.9f, 1.4f}, 1.1f, FromWave(37000));
    pTint->pBrightness = AddFloat(maker, u"Light\0Brightness\0", u"Makes all colors lighter or darker.", {0, 2},
                                  {0.9f, 1.4f}, 1, FromSound(10));
    pTint->pContrast = AddFloat(maker, u"Light\0Contrast\0", u"Drives light and dark colors apart, below 1 together.",
                                {0, 2}, {0.9f, 1.4f}, 1.1f, FromWave(47000));
    pTint->pTint = AddFloat(maker, u"Tint\0Amount\0", u"How far all colors go over to the tint.", {0, 1}, {0, 0.8f}, 0,
                            FromFixed());
    pTint->pTintHue = AddFloat(maker, u"Tint\0Hue\0",
                               u"Hue of the tint in degrees: 30 red, 70 gold, 140 green, 200 cyan, 260 blue, 330 pink.",
                               {0, 360}, {20, 100}, 70, FromFixed());
    pTint->pTintStrength = AddFloat(maker, u"Tint\0Strength\0", u"How colorful the tint is; 0 for black and white.",
                                    {0, 1}, {0.2f, 0.8f}, 0.5f, FromFixed());
    SetDependsOn(pTint->pTintHue, pTint->pTint, DEPENDOP_GREATER, 0);
    SetDependsOn(pTint->pTintStrength, pTint->pTint, DEPENDOP_GREATER, 0);
}

void Start(Tint *, PlaneInfo *)
{
}

TintLook ReadLook(const Tint *pTint)
{
    const Lab tint = LabOfHue(1, ReadFloat(pTint->pTintStrength) * 0.3f, WrapTurns(ReadFloat(pTint->pTintHue) / 360));
    return {ReadFloat(pTint->pTurn) / 360,
            ReadFloat(pTint->pSaturation),
            ReadFloat(pTint->pBrightness),
            ReadFloat(pTint->pContrast),
            ReadFloat(pTint->pTint),
            tint.a,
            tint.b};
}

void EaseLook(Tint *pTint, float fSeconds)
{
    const TintLook target = ReadLook(pTint);
    if (!pTint->bStarted)
        pTint->look = target;
    pTint->bStarted = true;
    for (float TintLook::*pf : {&TintLook::fTurn, &TintLook::fSaturation, &TintLook::fBrightness, &TintLook::fContrast,
                                &TintLook::fTint, &TintLook::fTintA, &TintLook::fTintB})
        Glide(&(pTint->look.*pf), target.*pf, fSeconds, fEase);
}

void Change(Tint *pTint, const PlaneInfo *, const CodeTables *pTables, const uint32_t *pFrom, uint32_t *pTo,
            int32_t nColors, float fSeconds)
{
    EaseLook(pTint, fSeconds);
    const TintLook &look = pTint->look;
    const float fCosine = CosineOfTurns(look.fTurn), fSine = SineOfTurns(look.fTurn);
    for (int32_t i = 0; i < nColors; i++) {
        const Lab c = LabOfPixel(pTables, pFrom[i]);
        const float L = LightenL(c.L, look.fBrightness, look.fContrast);
        const float fGain = (c.L > 0.001f ? std::fmin(L / c.L, 1.4f) : 0) * look.fSaturation;
        const float a = (c.a * fCosine - c.b * fSine) * fGain, b = (c.a * fSine + c.b * fCosine) * fGain;
        // A tint is strongest in the middle of the light and leaves black and white alone.
        const float fTone = 4 * L * (1 - L);
        pTo[i] =
            PixelOfLab(pTables, {L, Mix(a, look.fTintA * fTone, look.fTint), Mix(b, look.fTintB * fTone, look.fTint)});
    }
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLOREFFECT, u"Tint and Contrast",
                   u"Turns hues, changes saturation, light and contrast, and tints the palette");
}

STOCK_COLOR_EFFECT(Tint)
