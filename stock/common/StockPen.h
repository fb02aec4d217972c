// StockPen.h -- what the painters share: coordinates that suit every picture, eased controls, the pen's color
//
// A painter places what it draws in a view: the origin in the middle of the picture, y upwards, 1 the shorter side.
// So a figure keeps its size at every resolution and reaches into the corners of every shape of picture.
#ifndef VORTICADE_STOCK_PEN_H
#define VORTICADE_STOCK_PEN_H

#include "StockDrawing.h"

struct View {
    float xMiddle, yMiddle; // pixels
    float fSide;            // pixels of one unit
    float xReach, yReach;   // units from the middle to the edges
};

inline View ViewOf(const Canvas &canvas)
{
    const float fWidth = (float)canvas.nWidth, fHeight = (float)canvas.nHeight, fSide = std::min(fWidth, fHeight);
    return {0.5f * (fWidth - 1), 0.5f * (fHeight - 1), fSide, 0.5f * fWidth / fSide, 0.5f * fHeight / fSide};
}

// fRadius in units.
inline StrokePoint PointInView(const View &view, float x, float y, float fRadius, float fPlace, float fWeight)
{
    return {view.xMiddle + x * view.fSide, view.yMiddle + y * view.fSide, fRadius * view.fSide, fPlace, fWeight};
}

// A soft streak from one point to another, round at both ends; a dot where they meet.
inline void PaintStreak(const Canvas &canvas, const Paint &paint, const StrokePoint &from, const StrokePoint &to,
                        float fHardness)
{
    StrokePoint aPoint[2] = {from, to};
    PaintCurve(canvas, paint, aPoint, 2, fHardness, ENDS_ROUND);
}

// Where on the palette a number of turns lies: up and down the bright part of it, without a seam.
inline float PlaceOfTurns(float fTurns)
{
    return 0.28f + 0.66f * FoldUnit(0.5f * fTurns);
}

// ---- Eased controls: a module keeps their records and their values side by side

inline float ReadNumber(const ControlRecord *pctl)
{
    if (!pctl || pctl->Base.dwType == CONTROLTYPE_TILE)
        return 0;
    if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
        return ReadFloat(pctl);
    if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
        return (float)ReadInteger(pctl);
    return pctl->Base.dwType == CONTROLTYPE_BOOLEAN ? (float)ReadBoolean(pctl) : (float)ReadItem(pctl);
}

// afSeconds: how long each takes to follow; 0 for at once.
template <size_t nControls>
inline void EaseControls(ControlRecord *const (&apControl)[nControls], const float (&afSeconds)[nControls],
                         float (&afValue)[nControls], float fSeconds)
{
    for (size_t i = 0; i < nControls; i++)
        if (afSeconds[i] > 0)
            Approach(&afValue[i], ReadNumber(apControl[i]), fSeconds, afSeconds[i]);
        else
            afValue[i] = ReadNumber(apControl[i]);
}

template <size_t nControls>
inline void SettleControls(ControlRecord *const (&apControl)[nControls], float (&afValue)[nControls])
{
    for (size_t i = 0; i < nControls; i++)
        afValue[i] = ReadNumber(apControl[i]);
}

// ---- A look: the controls as a record of nothing but floats, in the units of the drawing, eased

inline float ReadPercent(const ControlRecord *pctl)
{
    return ReadFloat(pctl) * 0.01f;
}

// Per second, of a control that counts by the minute.
inline float ReadPerMinute(const ControlRecord *pctl)
{
    return ReadFloat(pctl) / 60;
}

// For PaintCurve, of a hardness from 0 to 1.
inline float ReadHardness(const ControlRecord *pctl)
{
    return 1 + 7 * ReadFloat(pctl) * ReadFloat(pctl);
}

// Where a number of the look comes from.
template <typename Look> struct LookRow {
    float Look::*pfValue;
    int32_t iControl;
    float (*pfnRead)(const ControlRecord *pctl);
    float fSeconds; // how long it takes to follow
};

template <typename Look, size_t nRows>
inline void EaseLook(const LookRow<Look> (&aRow)[nRows], ControlRecord *const *apControl, Look *pLook, float fSeconds)
{
    static_assert(nRows * sizeof(float) == sizeof(Look), "every number of the look needs a row");
    for (const LookRow<Look> &row : aRow)
        Approach(&(pLook->*row.pfValue), row.pfnRead(apControl[row.iControl]), fSeconds, row.fSeconds);
}

template <typename Look, size_t nRows>
inline void SettleLook(const LookRow<Look> (&aRow)[nRows], ControlRecord *const *apControl, Look *pLook)
{
    for (const LookRow<Look> &row : aRow)
        pLook->*row.pfValue = row.pfnRead(apControl[row.iControl]);
}

// Two swings of a middle that strays, -1 to 1.
inline float Stray(const float *pfPhases)
{
    return 0.7f * SineTurn(pfPhases[0]) + 0.3f * SineTurn(pfPhases[1]);
}

// ---- Controls that all of them have

template <size_t nText>
inline ControlRecord *AddThickness(const ControlMaker &maker, const char16_t (&szDescription)[nText], FloatRange range,
                                   float fValue, const FluidDefault &fd)
{
    return AddFloat(maker, u"Pen\0Thickness\0", szDescription, {0.05f, 10}, range, fValue, fd);
}

// Half of it draws as each painter finds right; HardnessOf tells what that is.
inline ControlRecord *AddHardness(const ControlMaker &maker, FloatRange range = {0.25f, 0.75f}, float fValue = 0.5f,
                                  const FluidDefault &fd = FromFixed())
{
    return AddFloat(maker, u"Pen\0Hardness\0", u"0 glows softly, 1 has a firm edge", {0, 1}, range, fValue, fd);
}

// From a third of fMiddle to three times as much, for PaintCurve.
inline float HardnessOf(float fValue, float fMiddle)
{
    return fMiddle * std::exp2(3.2f * (fValue - 0.5f));
}

template <size_t nText>
inline ControlRecord *AddPlace(const ControlMaker &maker, const char16_t (&szDescription)[nText],
                               FloatRange range = {0.35f, 1}, const FluidDefault &fd = FromWave(19000))
{
    return AddFloat(maker, u"Color\0Place\0", szDescription, {0, 1}, range, 0.7f, fd);
}

template <size_t nText>
inline ControlRecord *AddSpread(const ControlMaker &maker, const char16_t (&szDescription)[nText],
                                FloatRange range = {0.2f, 0.8f}, float fValue = 0.4f,
                                const FluidDefault &fd = FromPeriodic(9000))
{
    return AddFloat(maker, u"Color\0Spread\0", szDescription, {0, 2}, range, fValue, fd);
}

inline ControlRecord *AddPaintMode(const ControlMaker &maker, ItemSelectRow (&aRow)[PAINT_MODES], uint32_t dwMode)
{
    static const char16_t *const aszPaint[PAINT_MODES] = {u"Over", u"Lighten", u"Add"};
    return AddItemSelect(maker, u"Color\0Paint\0", u"How the pen meets what is there", aRow, aszPaint, dwMode,
                         FromFixed());
}

#endif
