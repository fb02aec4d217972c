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

// Rounds by a fine pattern, not to the nearest: slow fades go on below one step of a byte, without bands.
inline void FadeColors(const uint16_t *pwMixed, int32_t nBytes, const ColorFade &fade, const uint8_t *pbPattern,
                       uint8_t bPatternStart, uint8_t *pbOut)
{
    for (int32_t i = 0; i < nBytes; i++) {
        const uint16_t wKept = (uint16_t)(pwMixed[i] - (uint16_t)((uint32_t)pwMixed[i] * fade.nLoss >> 16));
        const uint16_t wLeft = (uint16_t)(wKept > fade.nBurn ? wKept - fade.nBurn : 0);
        const uint8_t bPattern = (uint8_t)(pbPattern[i] + bPatternStart);
        pbOut[i] = (uint8_t)((uint16_t)(wLeft + bPattern) >> 8);
    }
}

// ---- Weights of the four neighbours of a place between the pixels

typedef uint8_t Bytes16 __attribute__((vector_size(16)));
typedef uint16_t Words8 __attribute__((vector_size(16)));
typedef uint32_t Doubles4 __attribute__((vector_size(16)));
typedef uint64_t Quads2 __attribute__((vector_size(16)));

// For a place nX and nY of 256 away from the lower left neighbour: the weights of the lower and of the upper pair,
// the left one in the low word. The four add up to exactly 256, so an even area stays even.
inline void WeighNeighbors(int32_t nX, int32_t nY, uint32_t *pdwLower, uint32_t *pdwUpper)
{
    const int32_t nBoth = nX * nY >> 8;
    *pdwLower = (uint32_t)((256 - nX - nY + nBoth) | (nX - nBoth) << 16);
    *pdwUpper = (uint32_t)((nY - nBoth) | nBoth << 16);
}

// The bytes of a pixel and of its right neighbour, each times its weight.
inline Words8 WeighPair(const uint32_t *p, uint32_t dwWeights)
{
    uint64_t qwPair;
    memcpy(&qwPair, p, sizeof qwPair);
    const Bytes16 pair = (Bytes16)Quads2{qwPair}, zero = {};
    const Words8 words =
        (Words8)__builtin_shufflevector(pair, zero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    const Words8 weights = (Words8)Doubles4{dwWeights};
    const Doubles4 twice = (Doubles4)__builtin_shufflevector(weights, weights, 0, 8, 1, 9, 2, 10, 3, 11);
    return words * (Words8)__builtin_shufflevector(twice, twice, 0, 0, 1, 1);
}

// Writes the four channels of a place in 8.8 bits. p: its lower left neighbour; nStride: pixels from row to row.
inline void MixNeighbors(const uint32_t *p, size_t nStride, uint32_t dwLower, uint32_t dwUpper, uint16_t *pwMixed)
{
    const Words8 sums = WeighPair(p, dwLower) + WeighPair(p + nStride, dwUpper);
    const Quads2 mixed = (Quads2)(sums + (Words8)__builtin_shufflevector((Quads2)sums, (Quads2)sums, 1, 0));
    memcpy(pwMixed, &mixed, 8);
}

#endif
