// PaletteColor.h -- colour arithmetic of the colour modules: Oklab, sRGB, and the elementary functions for them
//
// Oklab (Ottosson 2020) is the space in which equal steps look equal: L is lightness 0 to 1, a and b span
// the hues. Roots and sines are worked out here with basic arithmetic alone, so that a film is the same,
// byte for byte, whatever mathematics library a machine has.
#ifndef VORTICADE_PALETTE_COLOR_H
#define VORTICADE_PALETTE_COLOR_H

#include "PaletteProtocol.h"

#include <bit>
#include <cmath>

struct Lab {
    float L, a, b;
};

struct LinearRgb {
    float r, g, b;
};

// ---- Elementary functions

inline float Limit(float f, float fLow, float fHigh)
{
    return !(f > fLow) ? fLow : f < fHigh ? f : fHigh;
}

inline float Mix(float f1, float f2, float fShare)
{
    return f1 + (f2 - f1) * fShare;
}

inline float SmoothStep(float f)
{
    f = Limit(f, 0, 1);
    return f * f * (3 - 2 * f);
}

// Fraction of a turn, 0 to below 1.
inline float WrapTurns(float fTurns)
{
    fTurns -= std::floor(fTurns);
    return fTurns < 1 ? fTurns : 0;
}

// The way from one hue to another the short way round, -0.5 to 0.5.
inline float HueDifference(float fFrom, float fTo)
{
    return WrapTurns(fTo - fFrom + 0.5f) - 0.5f;
}

// Sine of an angle in turns; error below 4e-6.
inline float SineOfTurns(float fTurns)
{
    float x = WrapTurns(fTurns + 0.5f) - 0.5f;
    if (x > 0.25f)
        x = 0.5f - x;
    if (x < -0.25f)
        x = -0.5f - x;
    const float y = x * 6.28318531f, y2 = y * y;
    return y * (1 + y2 * (-1.66666667e-1f + y2 * (8.33333333e-3f + y2 * (-1.98412698e-4f + y2 * 2.75573192e-6f))));
}

inline float CosineOfTurns(float fTurns)
{
    return SineOfTurns(fTurns + 0.25f);
}

// Cube root of a number that is not negative: a guess from the exponent, then Newton.
inline float CubeRoot(float f)
{
    if (!(f > 1e-12f))
        return 0;
    float y = std::bit_cast<float>(std::bit_cast<uint32_t>(f) / 3 + 0x2A514067u);
    for (int i = 0; i < 3; i++)
        y = (2 * y + f / (y * y)) * (1.0f / 3);
    return y;
}

// f to the power of 1/5, for 0 to 1.
inline float FifthRoot(float f)
{
    if (!(f > 1e-12f))
        return 0;
    float y = Mix(0.3f, 1, f);
    for (int i = 0; i < 12; i++)
        y = (4 * y + f / (y * y * y * y)) * 0.2f;
    return y;
}

// ---- sRGB

// Value of a screen, 0 to 1, to the amount of light; power 2.4.
inline float LightOfCode(float f)
{
    if (f <= 0.04045f)
        return f / 12.92f;
    const float x = (f + 0.055f) / 1.055f, root = FifthRoot(x);
    return x * x * root * root;
}

// The way back; power 5/12.
inline float CodeOfLight(float f)
{
    if (f <= 0.0031308f)
        return f * 12.92f;
    const float root = CubeRoot(std::sqrt(std::sqrt(f)));
    return 1.055f * root * root * root * root * root - 0.055f;
}

#define ENCODE_STEPS 8192 // fine enough that the dark end skips no code

// Tables of both ways. One an instance: it is quick to make and needs no guard.
struct CodeTables {
    float afLight[256];
    uint8_t abCode[ENCODE_STEPS + 1];
};

inline void MakeCodeTables(CodeTables *pTables)
{
    for (int i = 0; i < 256; i++)
        pTables->afLight[i] = LightOfCode((float)i / 255);
    for (int i = 0; i <= ENCODE_STEPS; i++)
        pTables->abCode[i] = (uint8_t)(CodeOfLight((float)i / ENCODE_STEPS) * 255 + 0.5f);
}

inline uint32_t CodeOf(const CodeTables *pTables, float fLight)
{
    return pTables->abCode[(int)(Limit(fLight, 0, 1) * ENCODE_STEPS + 0.5f)];
}

// ---- Oklab

inline LinearRgb LightOfLab(const Lab &c)
{
    const float l = c.L + 0.3963377774f * c.a + 0.2158037573f * c.b;
    const float m = c.L - 0.1055613458f * c.a - 0.0638541728f * c.b;
    const float s = c.L - 0.0894841775f * c.a - 1.2914855480f * c.b;
    const float l3 = l * l * l, m3 = m * m * m, s3 = s * s * s;
    return {4.0767416621f * l3 - 3.3077115913f * m3 + 0.2309699292f * s3,
            -1.2684380046f * l3 + 2.6097574011f * m3 - 0.3413193965f * s3,
            -0.0041960863f * l3 - 0.7034186147f * m3 + 1.7076147010f * s3};
}

inline Lab LabOfLight(const LinearRgb &c)
{
    const float l = CubeRoot(0.4122214708f * c.r + 0.5363325363f * c.g + 0.0514459929f * c.b);
    const float m = CubeRoot(0.2119034982f * c.r + 0.6806995451f * c.g + 0.1073969566f * c.b);
    const float s = CubeRoot(0.0883024619f * c.r + 0.2817188376f * c.g + 0.6299787005f * c.b);
    return {0.2104542553f * l + 0.7936177850f * m - 0.0040720468f * s,
            1.9779984951f * l - 2.4285922050f * m + 0.4505937099f * s,
            0.0259040371f * l + 0.7827717662f * m - 0.8086757660f * s};
}

inline Lab LabOfCodes(const CodeTables *pTables, uint8_t r, uint8_t g, uint8_t b)
{
    return LabOfLight({pTables->afLight[r], pTables->afLight[g], pTables->afLight[b]});
}

inline Lab LabOfHue(float L, float fChroma, float fHueTurns)
{
    return {L, fChroma * CosineOfTurns(fHueTurns), fChroma * SineOfTurns(fHueTurns)};
}

inline float ChromaOf(const Lab &c)
{
    return std::sqrt(c.a * c.a + c.b * c.b);
}

inline bool InGamut(const LinearRgb &c)
{
    const float fLow = -1e-4f, fHigh = 1 + 1e-4f;
    return c.r >= fLow && c.g >= fLow && c.b >= fLow && c.r <= fHigh && c.g <= fHigh && c.b <= fHigh;
}

// Share of the way from grey that one gun can go.
inline float GunShare(float fGrey, float fGun)
{
    return fGun > 1 ? (1 - fGrey) / (fGun - fGrey) : fGun < 0 ? fGrey / (fGrey - fGun) : 1;
}

// Colours that no screen has fade toward the grey of the same lightness, all guns alike, so that the hue stays.
inline LinearRgb FitGamut(const Lab &c)
{
    const float fGrey = Limit(c.L * c.L * c.L, 0, 1);
    const LinearRgb rgb = LightOfLab(c);
    float fShare = GunShare(fGrey, rgb.r);
    fShare = std::fmin(fShare, GunShare(fGrey, rgb.g));
    fShare = std::fmin(fShare, GunShare(fGrey, rgb.b));
    return {Mix(fGrey, rgb.r, fShare), Mix(fGrey, rgb.g, fShare), Mix(fGrey, rgb.b, fShare)};
}

// The strongest chroma of a lightness and a hue that a screen can show.
inline float GreatestChroma(float L, float fHue)
{
    const Lab unit = LabOfHue(L, 1, fHue);
    float fLow = 0, fHigh = 0.4f;
    for (int i = 0; i < 10; i++) {
        const float fTry = (fLow + fHigh) * 0.5f;
        if (InGamut(LightOfLab({L, unit.a * fTry, unit.b * fTry})))
            fLow = fTry;
        else
            fHigh = fTry;
    }
    return fLow;
}

// A word of the colour table.
inline uint32_t PixelOfLab(const CodeTables *pTables, const Lab &c)
{
    const LinearRgb rgb = FitGamut(c);
    return CodeOf(pTables, rgb.b) | CodeOf(pTables, rgb.g) << 8 | CodeOf(pTables, rgb.r) << 16;
}

// ---- Hues

// Yellow with green in it is harsh in the light and mud in the dark. The hues beside it spread over its place, and
// yellow itself turns to gold and red gold on the way down.
inline float HueOfShade(float fHue, float L)
{
    const float fGreenish = 0.335f, fGold = 0.27f;
    const float fBeside = HueDifference(fGreenish, fHue);
    fHue += 1.8f * fBeside * SmoothStep(1 - std::fabs(fBeside) / 0.12f);
    const float fNear = SmoothStep(1.25f * (1 - std::fabs(HueDifference(fGold, fHue)) / 0.13f));
    return fHue - 0.1f * fNear * SmoothStep((0.9f - L) / 0.35f);
}

// The hue of a colour in turns, 0 to below 1; 0 for grey. Error below 1e-4.
inline float HueOf(const Lab &c)
{
    const float fA = std::fabs(c.a), fB = std::fabs(c.b), fLong = std::fmax(fA, fB);
    if (!(fLong > 1e-6f))
        return 0;
    const float x = std::fmin(fA, fB) / fLong, x2 = x * x;
    float fTurns = x * (0.1591549f + x2 * (-0.0529586f + x2 * (0.0309196f + x2 * (-0.0185312f + x2 * 0.0064151f))));
    fTurns = fB > fA ? 0.25f - fTurns : fTurns;
    fTurns = c.a < 0 ? 0.5f - fTurns : fTurns;
    return WrapTurns(c.b < 0 ? -fTurns : fTurns);
}

// ---- Light

// Brightness above 1 lifts the middle, so that what is bright already does not go white. Contrast above 1 bends
// the lightness into an S, below 1 back from it. Black and white stay.
inline float LightenL(float L, float fBrightness, float fContrast)
{
    L = Limit(fBrightness > 1 ? L + (fBrightness - 1) * L * (1 - L) : L * fBrightness, 0, 1);
    return Limit(L + (fContrast - 1) * (SmoothStep(L) - L), 0, 1);
}

// ---- Palettes

// Writes colour i of the second palette.
inline void WriteSecondColor(PaletteInfo *pInfo, int32_t i, uint32_t dwPixel)
{
    pInfo->abBlue2[i] = (uint8_t)dwPixel;
    pInfo->abGreen2[i] = (uint8_t)(dwPixel >> 8);
    pInfo->abRed2[i] = (uint8_t)(dwPixel >> 16);
}

// How much of its light colour i of a palette keeps so that both ends of the loop run into the black of colour 0.
inline float FloorOfIndex(int32_t i, int32_t nColors)
{
    const float fRamp = std::fmax(1.0f, (float)nColors * 0.04f);
    const int32_t nFromBlack = i < nColors - i ? i : nColors - i;
    return SmoothStep((float)nFromBlack / fRamp);
}

#endif
