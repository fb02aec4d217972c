// CECycle.cpp -- colour effect: lets the colours travel round the palette, or back and forth, and leap with the sound
#include "stock/common/ColorEffect.h"

namespace {

enum { TRAVEL_AROUND = 0, TRAVEL_PINGPONG = 1, TRAVEL_COUNT = 2 };

const float fInertia = 0.8f;                      // seconds; speed and direction never change at a stroke
const float fSoundRise = 0.1f, fSoundFall = 0.5f; // seconds

struct Cycle {
    ControlRecord *pTravel, *pSpeed, *pBackwards, *pSpan, *pPush, *pKeepBlack;
    ItemSelectRow aTravelRows[TRAVEL_COUNT];
    float fVelocity; // loops a second
    float fPhase;    // loops
    float fPush;     // loops, eased
    float fAround;   // 1: the colours go round, 0: back and forth; eased
};

void AddControls(Cycle *pCycle, const ControlMaker &maker)
{
    static const char16_t *const aszTravel[TRAVEL_COUNT] = {u"Round and round", u"Back and forth"};
    pCycle->pTravel = AddItemSelect(maker, u"Motion\0Travel\0", u"How the colors move through the palette.",
                                    pCycle->aTravelRows, aszTravel, TRAVEL_AROUND, FromFixed());
    pCycle->pSpeed = AddFloat(maker, u"Motion\0Speed\0", u"How often a minute the colors go round, or back and forth.",
                              {0, 120}, {2, 14}, 6, FromWave(31000));
    pCycle->pBackwards = AddBoolean(maker, u"Motion\0Backwards\0", u"Lets the colors go round the other way.", 0.6f,
                                    false, FromPeriodic(15000));
    pCycle->pSpan = AddFloat(maker, u"Motion\0Span\0", u"How much of the palette a way back and forth covers.", {0, 1},
                             {0.1f, 0.5f}, 0.3f, FromWave(43000));
    pCycle->pPush = AddFloat(maker, u"Sound\0Push\0", u"How far a loud sound pushes the colors on; they come back.",
                             {0, 1}, {0, 0.3f}, 0.15f, FromFixed());
    pCycle->pKeepBlack =
        AddBoolean(maker, u"Palette\0Keep Black\0", u"Keeps the ends of the palette black, whatever travels there.",
                   0.5f, true, FromFixed());
    SetDependsOn(pCycle->pBackwards, pCycle->pTravel, DEPENDOP_EQUAL, TRAVEL_AROUND);
    SetDependsOn(pCycle->pSpan, pCycle->pTravel, DEPENDOP_EQUAL, TRAVEL_PINGPONG);
}

void Start(Cycle *, PlaneInfo *)
{
}

// How far the colours have travelled, in loops.
float AdvanceTravel(Cycle *pCycle, const PlaneInfo *ppi, float fSeconds)
{
    const bool bAround = ReadItem(pCycle->pTravel) == TRAVEL_AROUND;
    const float fSpeed = ReadFloat(pCycle->pSpeed) / 60;
    Glide(&pCycle->fVelocity, bAround && ReadBoolean(pCycle->pBackwards) ? -fSpeed : fSpeed, fSeconds, fInertia);
    Glide(&pCycle->fAround, bAround ? 1 : 0, fSeconds, fInertia);
    pCycle->fPhase = WrapTurns(pCycle->fPhase + pCycle->fVelocity * fSeconds);
    const float fPush = SoundLevel(ppi) * ReadFloat(pCycle->pPush);
    Glide(&pCycle->fPush, fPush, fSeconds, fPush > pCycle->fPush ? fSoundRise : fSoundFall);
    const float fSwing = ReadFloat(pCycle->pSpan) * (0.5f - 0.5f * CosineOfTurns(pCycle->fPhase));
    return Mix(fSwing, pCycle->fPhase, pCycle->fAround) + pCycle->fPush;
}

void Change(Cycle *pCycle, const PlaneInfo *ppi, const CodeTables *pTables, const uint32_t *pFrom, uint32_t *pTo,
            int32_t nColors, float fSeconds)
{
    const float fShift = WrapTurns(AdvanceTravel(pCycle, ppi, fSeconds)) * (float)nColors;
    const int32_t nWhole = (int32_t)fShift;
    const float fShare = fShift - (float)nWhole;
    const bool bKeepBlack = ReadBoolean(pCycle->pKeepBlack);
    for (int32_t i = 0; i < nColors; i++) {
        const Lab c1 = LabOfPixel(pTables, pFrom[(i + nWhole) % nColors]);
        const Lab c2 = LabOfPixel(pTables, pFrom[(i + nWhole + 1) % nColors]);
        const Lab c = {Mix(c1.L, c2.L, fShare), Mix(c1.a, c2.a, fShare), Mix(c1.b, c2.b, fShare)};
        pTo[i] = PixelOfLab(pTables, bKeepBlack ? DarkenEnds(c, i, nColors) : c);
    }
}

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_COLOR, MODULECAP_COLOREFFECT, u"Color Cycle",
                   u"Lets the colors travel round the palette or back and forth, pushed by the sound");
}

STOCK_COLOR_EFFECT(Cycle)
