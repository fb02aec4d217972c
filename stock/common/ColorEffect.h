// ColorEffect.h -- the frame of a colour effect: it changes the colour table that the interpolator has filled
//
// The modules of a plane run in the order interpolators, generators, effects, and what draws comes after them. So an
// effect finds a table of fresh colours, changes it, and the interpolator fills it anew for the next frame. Where the
// interpolator does not (it is paused, or draws every third frame only), the effects find their own work of the last
// frame. To change it again would add up, so they mark what they have done: the spare byte of colour 0 says at which
// tick effects were at work. Whoever fills the table writes over it.
//
// A module gives AddControls and Start as StockEntryPoints.h says, and
//
//   void Change(Record *, const PlaneInfo *, const CodeTables *, const uint32_t *pFrom, uint32_t *pTo, int32_t nColors,
//               float fSeconds)                                     one frame: fills pTo from pFrom
//
// and ends with STOCK_COLOR_EFFECT(Record).
#ifndef VORTICADE_COLOR_EFFECT_H
#define VORTICADE_COLOR_EFFECT_H

#include "PaletteColor.h"
#include "StockEntryPoints.h"

#define EFFECT_LONGEST_FRAME_MS 100u /* after a pause the colours go on from where they stood */

template <class Record> struct ColorEffect {
    Record record;
    CodeTables codes;
    StockClock clock;
    float fSeconds; // of the frame
    bool bWorked;   // the fields below hold
    uint64_t qwWorkTick;
    int32_t nColors;
    uint32_t adwFrom[PALETTE_COLORS_MAX]; // the colours before this effect
};

// Never 0 or 255, which whoever fills the table may write.
inline uint32_t MarkOfTick(uint64_t qwTick)
{
    return (uint32_t)(qwTick % 254 + 1) << 24;
}

// Takes the colours to be changed: those of the table, or the ones kept where the table holds old work.
template <class Record> inline void TakeColors(ColorEffect<Record> *pEffect, const PlaneInfo *ppi, int32_t nColors)
{
    const uint64_t qwTick = ppi->hdc->qwTick;
    const uint32_t dwMark = ppi->lpColorTable[0] & 0xFF000000;
    const bool bKept = pEffect->bWorked && pEffect->nColors == nColors;
    const bool bOthersNow = dwMark == MarkOfTick(qwTick) && pEffect->qwWorkTick != qwTick;
    const bool bFresh = dwMark == 0 || dwMark == 0xFF000000 || bOthersNow;
    if (bFresh || !bKept)
        for (int32_t i = 0; i < nColors; i++)
            pEffect->adwFrom[i] = ppi->lpColorTable[i] & 0x00FFFFFF;
    pEffect->bWorked = true;
    pEffect->qwWorkTick = qwTick;
    pEffect->nColors = nColors;
}

template <class Record> inline void AddControls(ColorEffect<Record> *pEffect, const ControlMaker &maker)
{
    MakeCodeTables(&pEffect->codes);
    AddControls(&pEffect->record, maker);
}

template <class Record> inline void Start(ColorEffect<Record> *pEffect, PlaneInfo *ppi)
{
    Start(&pEffect->record, ppi);
}

// Further calls within a frame hurry the motion, which is what their user asks for, and change the colours once.
template <class Record> inline uint32_t DrawFrame(ColorEffect<Record> *pEffect, PlaneInfo *ppi)
{
    const int32_t nColors = LimitColors(ppi->nColors);
    if (!ppi->lpColorTable || nColors < 1)
        return 0; // no colours yet
    const uint64_t qwTick = ppi->hdc->qwTick;
    TakeColors(pEffect, ppi, nColors);
    if (!pEffect->clock.bStarted || qwTick != pEffect->clock.qwLastTick)
        pEffect->fSeconds = (float)ElapsedMs(&pEffect->clock, qwTick, EFFECT_LONGEST_FRAME_MS) * 0.001f;
    Change(&pEffect->record, ppi, &pEffect->codes, pEffect->adwFrom, ppi->lpColorTable, nColors,
           pEffect->fSeconds / (float)ReadTimeScale(ppi));
    ppi->lpColorTable[0] = (ppi->lpColorTable[0] & 0x00FFFFFF) | MarkOfTick(qwTick);
    return 0;
}

// ---- What the effects share

inline Lab LabOfPixel(const CodeTables *pTables, uint32_t dwPixel)
{
    return LabOfCodes(pTables, (uint8_t)(dwPixel >> 16), (uint8_t)(dwPixel >> 8), (uint8_t)dwPixel);
}

// What is meant for a place where nothing is drawn: black, with a ramp at both ends of the loop.
inline Lab DarkenEnds(const Lab &c, int32_t i, int32_t nColors)
{
    const float fLight = FloorOfIndex(i, nColors);
    return {c.L * fLight, c.a * fLight, c.b * fLight};
}

// Glides towards a target, so that a control that jumps does not make the colours jump.
inline void Glide(float *pfValue, float fTarget, float fSeconds, float fTimeConstant)
{
    *pfValue += (fTarget - *pfValue) * fSeconds / (fSeconds + fTimeConstant);
}

// The level of the frame, 0 to 1.
inline float SoundLevel(const PlaneInfo *ppi)
{
    return ppi->pSound ? Limit(ppi->pSound->fLevelA, 0, 1) : 0;
}

#define STOCK_COLOR_EFFECT(Record) STOCK_ENTRY_POINTS(ColorEffect<Record>)

#endif
