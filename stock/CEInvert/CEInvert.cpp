// CEInvert.cpp -- colour effect: goes over to the complement or the negative of the palette with the sound
#include "stock/common/ColorEffect.h"

namespace {

enum { INVERT_HUES = 0, INVERT_LIGHT = 1, INVERT_BOTH = 2, INVERT_COUNT = 3 };

struct Invert {
    ControlRecord *pKind, *pAmount, *pRise, *pFall, *pKeepBlack;
    ItemSelectRow aKindRows[INVERT_COUNT];
    float fAmount;       // eased
    float fHues, fLight; // the kind as shares, eased
};

void AddControls(Invert *pInvert, const ControlMaker &maker)
{
    static const char16_t *const aszKind[INVERT_COUNT] = {u"Opposite hues", u"Light and dark", u"Both"};
    pInvert->pKind = AddItemSelect(maker, u"Invert\0Kind\0", u"What turns into its opposite.", pInvert->aKindRows,
                                   aszKind, INVERT_HUES, FromFixed());
    pInvert->pAmount = AddFloat(maker, u"Invert\0Amount\0", u"How far the colors go over: 1 for all the way.", {0, 1},
                                {0, 1}, 0.5f, FromSound(6));
    pInvert->pRise = AddFloat(maker, u"Motion\0Rise\0", u"Seconds until the colors have followed upward.", {0.05f, 10},
                              {0.1f, 1}, 0.2f, FromFixed());
    pInvert->pFall = AddFloat(maker, u"Motion\0Fall\0", u"Seconds until the colors have come back.", {0.05f, 10},
                              {0.3f, 3}, 0.9f, FromFixed());
    pInvert->pKeepBlack =
        AddBoolean(maker, u"Palette\0Keep Black\0", u"Keeps the ends of the palette black, so that nothing flashes.",
                   0.5f, true, FromFixed());
}

void Start(Invert *, PlaneInfo *)
{
}

void EaseControls(Invert *pInvert, float fSeconds)
{
    const float fTarget = ReadFloat(pInvert->pAmount);
    const ControlRecord *pctl = fTarget > pInvert->fAmount ? pInvert->pRise : pInvert->pFall;
    Glide(&pInvert->fAmount, fTarget, fSeconds, std::fmax(ReadFloat(pctl), 0.05f));
    const uint32_t dwKind = ReadItem(pInvert->pKind);
    Glide(&pInvert->fHues, dwKind != INVERT_LIGHT ? 1 : 0, fSeconds, 0.5f);
    Glide(&pInvert->fLight, dwKind != INVERT_HUES ? 1 : 0, fSeconds, 0.5f);
}

// How far the light of colour i has gone over. The middle of the palette goes first: halfway between a palette and its
// negative all would be equally gray.
float ShareOfColor(float fAmount, int32_t i, int32_t nColors)
{
    const float fOrder = std::fabs(2 * (float)i / (float)nColors - 1);
    return SmoothStep(2 * fAmount - fOrder);
}

// Hues go round the circle to their opposites: a straight way would lead through gray.
void Change(Invert *pInvert, const PlaneInfo *, const CodeTables *pTables, const uint32_t *pFrom, uint32_t *pTo,
            int32_t nColors, float fSeconds)
{
    EaseControls(pInvert, fSeconds);
    const float fTurn = 0.5f * pInvert->fHues * pInvert->fAmount;
    const float fCosine = CosineOfTurns(fTurn), fSine = SineOfTurns(fTurn);
    const bool bKeepBlack = ReadBoolean(pInvert->pKeepBlack);
    for (int32_t i = 0; i < nColors; i++) {
        const Lab c = LabOfPixel(pTables, pFrom[i]);
        const float fNegative = pInvert->fLight * ShareOfColor(pInvert->fAmount, i, nColors);
        const Lab cTurned = {Mix(c.L, 1 - c.L, fNegative), c.a * fCosine - c.b * fSine, c.a * fSine + c.b * fCosine};
        pTo[i] = PixelOfLab(pTables, bKeepBlack ? DarkenEnds(cTurned, i, nColors) : cTurned);
    }
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLOREFFECT, u"Invert by Sound",
                   u"Goes over to the opposite hues or to the negative of the palette with the sound");
}

STOCK_COLOR_EFFECT(Invert)
