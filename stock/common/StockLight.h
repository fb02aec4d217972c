// StockLight.h -- what the effects on light share: fresh pictures, rounding by a fine pattern, bytes of pixels
#ifndef VORTICADE_STOCK_LIGHT_H
#define VORTICADE_STOCK_LIGHT_H

#include "StockDrawing.h"
#include "StockWide.h"

// ---- Time and fresh pictures

// Overlays and post-processing find the picture as the modules before made it, not as they left it.
inline bool IsFreshPicture(const PlaneInfo *ppi)
{
    return !ppi->hbmResolved || ppi->hbmDraw == ppi->hbmResolved;
}

enum { UNFOLDS_IN_TIME, UNFOLDS_AT_ONCE, UNFOLDS_MODES };

// aRows: UNFOLDS_MODES rows of the instance.
template <size_t nName>
inline ControlRecord *AddUnfolds(const ControlMaker &maker, const char16_t (&szName)[nName],
                                 ItemSelectRow (&aRows)[UNFOLDS_MODES])
{
    static const char16_t *const aszText[UNFOLDS_MODES] = {u"In time", u"At once"};
    return AddItemSelect(maker, szName,
                         u"In time: over a second, for trails that stay. At once: for a picture that is drawn anew in "
                         u"every frame; overlays and post-processing always are",
                         aRows, aszText, UNFOLDS_IN_TIME, FromFixed());
}

// How much of a second's work an effect does in this drawing: the step on a picture that it meets again, all of it
// on one that is new in every frame.
inline float UnfoldSeconds(const PlaneInfo *ppi, uint32_t dwUnfolds, float fStepSeconds)
{
    return dwUnfolds == UNFOLDS_AT_ONCE || IsFreshPicture(ppi) ? 1 : fStepSeconds;
}

// A share that is to be reached after a second: what one drawing has to do for it.
inline float UnfoldShare(float fShare, float fUnfoldSeconds)
{
    return fUnfoldSeconds == 1 ? fShare : 1 - std::pow(1 - std::min(fShare, 0.999f), fUnfoldSeconds);
}

// ---- Rounding pattern: the sequence of the plastic number in two dimensions, another one in every frame. Rounded
// by it, slopes show no steps, and what is less than a step of a byte adds up over the frames.

#define ROUNDING_X 49471u /* in 1/65536 */
#define ROUNDING_Y 37345u
#define ROUNDING_FRAME 40503u

// The 16-bit value at the beginning of a row; each pixel to the right adds ROUNDING_X.
inline uint32_t RoundingStart(int32_t y, uint32_t nFrame)
{
    return ((uint32_t)y * ROUNDING_Y + nFrame * ROUNDING_FRAME) & 65535;
}

inline uint8_t RoundingByte(int32_t y, uint32_t nFrame)
{
    return (uint8_t)(RoundingStart(y, nFrame) >> 8);
}

// ---- Pixels

inline uint8_t *PixelBytes(uint32_t *pdwPixels)
{
    return (uint8_t *)pdwPixels;
}

inline const uint8_t *PixelBytes(const uint32_t *pdwPixels)
{
    return (const uint8_t *)pdwPixels;
}

// 0 to 255, green counting most.
inline uint32_t BrightnessOf(uint32_t dwPixel)
{
    return ((dwPixel & 255) * 29 + (dwPixel >> 8 & 255) * 150 + (dwPixel >> 16 & 255) * 77) >> 8;
}

// A length in percent of the picture's height, in pixels.
inline float PercentOfHeight(const Canvas &canvas, float fPercent)
{
    return 0.01f * fPercent * (float)canvas.nHeight;
}

#endif
