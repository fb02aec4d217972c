// OwnPalettes.cpp -- the palettes that the interpolator has of its own, for planes without a generator
#include "Shift.h"

namespace {

const int32_t nAnchorsMost = 12;

// Stations of a loop from black to black, 0xRRGGBB, at equal distances. Ends at the first 0 after the first.
struct AnchorPalette {
    uint32_t adwAnchor[nAnchorsMost];
};

const AnchorPalette aOwn[] = {
    {{0x000000, 0x3A0716, 0xA3152F, 0xF0502A, 0xFFB238, 0xFFF4C9, 0xF58E4B, 0x9C2350, 0x2E0A3A}}, // embers
    {{0x000000, 0x05203F, 0x0B5C86, 0x14B5B0, 0xA8F5D0, 0xFFFCEB, 0x6FD0EE, 0x2A6FD6, 0x1A1E66}}, // lagoon
    {{0x000000, 0x240A4A, 0x6A16A8, 0xD42CC4, 0xFF7FB2, 0xFFE3D6, 0xFF9A4D, 0xC22F3C, 0x4A0F3F}}, // neon dusk
    {{0x000000, 0x06261E, 0x0F6A3C, 0x52C246, 0xB4F59A, 0xFFFFE4, 0x6FE3B0, 0x1587A0, 0x0A2C5A}}, // aurora
    {{0x000000, 0x1B1140, 0x3A2FA6, 0x4F7BFF, 0x8FE1FF, 0xFFFFFF, 0xD5B3FF, 0x9A4CE0, 0x43188A}}, // ice flower
    {{0x000000, 0x33110A, 0x8C3A12, 0xE58A1E, 0xFFD972, 0x4FD6C8, 0x1480A8, 0x123F77, 0x0B1638}}, // copper and sea
    {{0x000000, 0x2B0633, 0x8A0F5E, 0xEE2F6B, 0xFF9A8A, 0xFFF0DC, 0x9FD8FF, 0x4A6BE8, 0x2A1C86}}, // rose and sky
    {{0x000000, 0x2A1500, 0x7D4A00, 0xD99A06, 0xFFE566, 0xFFFFF0, 0xFFC24A, 0xC45A0A, 0x561A08}}, // gold
    {{0x000000, 0x0B1B4D, 0x1B3FC4, 0x8A5CFF, 0xFF7BE0, 0xFFD9C2, 0xFF6A5A, 0xB81D55, 0x3E0B4E}}, // electric
    {{0x000000, 0x04302F, 0x067A6A, 0x2ED69A, 0xE6FFB0, 0xFFC86A, 0xF56A3C, 0xA31C4A, 0x3A0A3C}}, // papaya
};

int32_t CountAnchors(const AnchorPalette &own)
{
    int32_t nAnchors = 1;
    while (nAnchors < nAnchorsMost && own.adwAnchor[nAnchors])
        nAnchors++;
    return nAnchors;
}

// A curve through four neighbours in a row (Catmull and Rom), between the middle two.
float CurveThrough(float f0, float f1, float f2, float f3, float t)
{
    const float fA = 2 * f1, fB = f2 - f0, fC = 2 * f0 - 5 * f1 + 4 * f2 - f3, fD = 3 * f1 - f0 - 3 * f2 + f3;
    return 0.5f * (fA + t * (fB + t * (fC + t * fD)));
}

} // namespace

const uint32_t nOwnPalettes = sizeof aOwn / sizeof aOwn[0];

void WriteOwnPalette(PaletteInfo *pInfo, const CodeTables *pTables, uint32_t iPalette, int32_t nColors)
{
    const AnchorPalette &own = aOwn[iPalette % nOwnPalettes];
    const int32_t nAnchors = CountAnchors(own);
    Lab aAnchor[nAnchorsMost];
    for (int32_t i = 0; i < nAnchors; i++)
        aAnchor[i] = LabOfCodes(pTables, (uint8_t)(own.adwAnchor[i] >> 16), (uint8_t)(own.adwAnchor[i] >> 8),
                                (uint8_t)own.adwAnchor[i]);
    for (int32_t i = 0; i < nColors; i++) {
        const float x = (float)i * (float)nAnchors / (float)nColors;
        const int32_t k = (int32_t)x;
        const float t = x - (float)k;
        const Lab &c0 = aAnchor[(k + nAnchors - 1) % nAnchors], &c1 = aAnchor[k % nAnchors];
        const Lab &c2 = aAnchor[(k + 1) % nAnchors], &c3 = aAnchor[(k + 2) % nAnchors];
        const Lab c = {Limit(CurveThrough(c0.L, c1.L, c2.L, c3.L, t), 0, 1), CurveThrough(c0.a, c1.a, c2.a, c3.a, t),
                       CurveThrough(c0.b, c1.b, c2.b, c3.b, t)};
        WriteSecondColor(pInfo, i, i ? PixelOfLab(pTables, c) : 0);
    }
}
