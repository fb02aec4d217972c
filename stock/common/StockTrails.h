// StockTrails.h -- arithmetic of pictures that are carried on and fade frame by frame: weights, rounding, fades
#ifndef VORTICADE_STOCK_TRAILS_H
#define VORTICADE_STOCK_TRAILS_H

#include "StockDrawing.h"

// The rounding pattern is the sequence of the plastic number in two dimensions, in 1/256; its steps:
#define PATTERN_X 193
#define PATTERN_Y 146
#define PATTERN_FRAME 159

// ---- Fades

// How much of a picture stays over one frame.
struct TrailFade {
    float fKeep; // factor
    float fBurn; // part of the full scale that goes on top
};

// Trails die out in about 0.55 / decay^2 seconds: at first by parts of what is left, at the end evenly.
inline TrailFade FadeFor(float fDecay, float fSeconds)
{
    const float fRate = fDecay * fDecay * fSeconds;
    return {std::exp(-4 * fRate), 0.5f * fRate};
}

inline bool IsFading(const TrailFade &fade)
{
    return fade.fKeep < 1 || fade.fBurn > 0;
}

// The fade of a value in 8.8 bits: it loses value * nLoss / 65536, and nBurn.
struct ColorFade {
    uint16_t nLoss, nBurn;
};

inline ColorFade FadeOfColors(const TrailFade &fade)
{
    const float fBurn = IsFading(fade) ? std::max(std::min(fade.fBurn, 1.0f) * 65280, 1.0f) : 0;
    return {(uint16_t)std::min((1 - fade.fKeep) * 65536, 65535.0f), (uint16_t)fBurn};
}

// ---- Mixing the four neighbours of places between the pixels

#define TRAIL_SPAN 128 // places at most

// For a place nX and nY of 256 away from its lower left neighbour: what each neighbour counts. The weights add up to
// exactly 256, so an even area stays even.
struct PlaceWeights {
    uint32_t nLeft, nRight, nUpperLeft, nUpperRight;
};

inline PlaceWeights WeighNeighbors(uint32_t nX, uint32_t nY)
{
    const uint32_t nBoth = nX * nY >> 8;
    return {256 - nX - nY + nBoth, nX - nBoth, nY - nBoth, nBoth};
}

// Pixels by channel, in 8.8 bits: the first and third channels of each pixel, then the second and fourth ones.
struct MixedColors {
    alignas(32) uint32_t adwEven[TRAIL_SPAN], adwOdd[TRAIL_SPAN];
};

// pnFrom: where the lower left neighbours lie; pnX, pnY: places between the pixels, of which 8 bits count.
inline void MixNeighbors(const uint32_t *pPicture, size_t nStride, const int32_t *pnFrom, const int32_t *pnX,
                         const int32_t *pnY, int32_t nPixels, MixedColors *__restrict pMixed)
{
    alignas(32) uint32_t adwLower[2 * TRAIL_SPAN], adwUpper[2 * TRAIL_SPAN]; // pairs of neighbours
    for (int32_t i = 0; i < nPixels; i++) {
        memcpy(&adwLower[2 * i], pPicture + pnFrom[i], 8);
        memcpy(&adwUpper[2 * i], pPicture + pnFrom[i] + nStride, 8);
    }
    const uint32_t dwMask = 0x00FF00FFu; // two channels at a time: no sum goes beyond 16 bits
    for (int32_t i = 0; i < nPixels; i++) {
        const PlaceWeights w = WeighNeighbors((uint32_t)pnX[i] & 255, (uint32_t)pnY[i] & 255);
        const uint32_t a = adwLower[2 * i], b = adwLower[2 * i + 1], c = adwUpper[2 * i], d = adwUpper[2 * i + 1];
        pMixed->adwEven[i] = (a & dwMask) * w.nLeft + (b & dwMask) * w.nRight + (c & dwMask) * w.nUpperLeft +
                             (d & dwMask) * w.nUpperRight;
        pMixed->adwOdd[i] = (a >> 8 & dwMask) * w.nLeft + (b >> 8 & dwMask) * w.nRight +
                            (c >> 8 & dwMask) * w.nUpperLeft + (d >> 8 & dwMask) * w.nUpperRight;
    }
}

typedef uint16_t PixelWord __attribute__((may_alias)); // half of a pixel

// What is left of a value in 8.8 bits.
inline uint16_t FadedValue(uint16_t wMixed, const ColorFade &fade)
{
    const uint16_t wKept = (uint16_t)(wMixed - (uint16_t)((uint32_t)wMixed * fade.nLoss >> 16));
    return (uint16_t)(wKept > fade.nBurn ? wKept - fade.nBurn : 0);
}

// Rounds by a fine pattern, not to the nearest: slow fades go on below one step of a byte, without bands.
// pbPattern: two bytes for each pixel; bStart moves it.
inline void FadeColors(const MixedColors &mixed, int32_t nPixels, const ColorFade fade, const uint8_t *pbPattern,
                       uint8_t bStart, uint32_t *pdwOut)
{
    const PixelWord *pwEven = (const PixelWord *)mixed.adwEven, *pwOdd = (const PixelWord *)mixed.adwOdd;
    PixelWord *__restrict pwOut = (PixelWord *)pdwOut;
    for (int32_t i = 0; i < 2 * nPixels; i++) {
        const uint16_t wPattern = (uint8_t)(pbPattern[i] + bStart);
        const uint16_t wEven = (uint16_t)(FadedValue(pwEven[i], fade) + wPattern);
        const uint16_t wOdd = (uint16_t)(FadedValue(pwOdd[i], fade) + wPattern);
        pwOut[i] = (uint16_t)(wEven >> 8 | (wOdd & 0xFF00));
    }
}

#endif
