// ControlSurface.cpp -- the monitor of a fluid sub-panel: the pixels of its wave or of its history, its marks and its
// bars
#include "controls/panels/ControlSurface.h"

#include "controls/FluidSources.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr i32 STEP_COLUMNS = 2; // of the history
constexpr f32 PHASE_STEP = 0.00001f;
constexpr f32 BAR_UNIT = 0.0001f;
constexpr u32 BLACK = 0xFF000000, WHITE = 0xFFFFFFFF;

u32 ColorOf(UIColor eColor)
{
    return UIColorTable[eColor].dwColor;
}

bool IsWave(const ControlRecord *pctl)
{
    return pctl->Base.dwSource == FLUIDSOURCE_WAVE;
}

u32 *RowOf(ControlSurface *pcs, i32 y)
{
    return pcs->pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(pcs->nWidth);
}

// First row that is lit; a level from outside can be anything, also no number.
i32 TopOf(i32 nHeight, f32 fLevel)
{
    const f32 fLit = static_cast<f32>(nHeight) * (fLevel > 0 ? std::min(fLevel, 1.0f) : 0.0f);
    return nHeight - static_cast<i32>(fLit);
}

u32 GradientPixel(i32 y, i32 nHeight)
{
    return PixelOfColor(LerpColor(ColorOf(UICOLOR_METER_HIGH), ColorOf(UICOLOR_METER_LOW), y, nHeight));
}

void FillColumn(ControlSurface *pcs, i32 x, i32 yTop)
{
    const u32 dwBackground = PixelOfColor(ColorOf(UICOLOR_TIMER_BACKGROUND));
    for (i32 y = 0; y < pcs->nHeight; y++)
        RowOf(pcs, y)[x] = y < yTop ? dwBackground : GradientPixel(y, pcs->nHeight);
}

void TakeSize(ControlSurface *pcs, i32 nWidth, i32 nHeight)
{
    const i32 w = std::max(nWidth, 0), h = std::max(nHeight, 0);
    if (w == pcs->nWidth && h == pcs->nHeight)
        return;
    pcs->nWidth = w;
    pcs->nHeight = h;
    pcs->pixels.assign(static_cast<size_t>(w) * static_cast<size_t>(h), 0);
    pcs->bValid = 0;
}

void TakePhase(ControlSurface *pcs, f32 fPhase)
{
    if (!(std::fabs(fPhase - pcs->fPhaseDrawn) > PHASE_STEP))
        return;
    pcs->fPhaseDrawn = fPhase;
    pcs->bValid = 0;
}

void DrawWave(ControlSurface *pcs, const ControlBase &Base)
{
    const u32 nPeriod = static_cast<u32>(pcs->nWidth);
    for (i32 x = 0; x < pcs->nWidth; x++) {
        const f32 fLevel = WaveValue(Base.dwWaveType, Base.fWavePhase, nPeriod, static_cast<u64>(x));
        FillColumn(pcs, x, TopOf(pcs->nHeight, fLevel));
    }
}

void DrawSilence(ControlSurface *pcs)
{
    for (i32 x = 0; x < pcs->nWidth; x++)
        FillColumn(pcs, x, pcs->nHeight);
}

// Three lines, the middle one at i: black, white, black. Outside of the picture there is nothing.
template <typename Fn> void Mark(i32 i, i32 nLines, Fn fillLine)
{
    for (const i32 iLine : {i - 1, i, i + 1})
        if (iLine >= 0 && iLine < nLines)
            fillLine(iLine, iLine == i ? WHITE : BLACK);
}

void MarkPosition(const ControlSurface &cs, const ControlRecord *pctl, u64 qwTick, std::span<u32> picture)
{
    const u64 qwPeriod = std::max(EffectiveWavePeriod(pctl), 1u);
    const size_t w = static_cast<size_t>(cs.nWidth);
    const i32 x = static_cast<i32>(w * (qwTick % qwPeriod) / qwPeriod);
    Mark(x, cs.nWidth, [=](i32 iColumn, u32 dwPixel) {
        for (size_t i = static_cast<size_t>(iColumn); i < picture.size(); i += w)
            picture[i] = dwPixel;
    });
}

// A threshold of 0 is marked in the last row, where it can still be seen.
void MarkThreshold(const ControlSurface &cs, f32 fThreshold, std::span<u32> picture)
{
    const f32 fAbove = 1.0f - fThreshold;
    const f32 fRow = (fAbove > 0 ? std::min(fAbove, 1.0f) : 0.0f) * static_cast<f32>(cs.nHeight);
    const i32 y = std::min(static_cast<i32>(fRow), cs.nHeight - 1);
    const size_t w = static_cast<size_t>(cs.nWidth);
    Mark(y, cs.nHeight,
         [=](i32 iRow, u32 dwPixel) { std::ranges::fill(picture.subspan(static_cast<size_t>(iRow) * w, w), dwPixel); });
}

} // namespace

f32 SurfaceLevel(const ControlRecord *pctl)
{
    switch (pctl->Base.dwSource) {
    case FLUIDSOURCE_SOUND:
        return SmoothedSoundLevel(pctl);
    case FLUIDSOURCE_PERIODIC:
        return pctl->Base.fLastRandom;
    default:
        return 0;
    }
}

void DrawSurface(ControlSurface *pcs, const ControlRecord *pctl, i32 nWidth, i32 nHeight)
{
    TakeSize(pcs, nWidth, nHeight);
    if (IsWave(pctl))
        TakePhase(pcs, pctl->Base.fWavePhase);
    if (pcs->bValid)
        return;
    if (IsWave(pctl))
        DrawWave(pcs, pctl->Base);
    else
        DrawSilence(pcs);
    pcs->bValid = 1;
}

void StepSurface(ControlSurface *pcs, const ControlRecord *pctl, f32 fLevel)
{
    if (IsWave(pctl))
        return;
    const i32 nNew = std::min(STEP_COLUMNS, pcs->nWidth);
    for (i32 y = 0; y < pcs->nHeight; y++)
        std::copy(RowOf(pcs, y) + nNew, RowOf(pcs, y) + pcs->nWidth, RowOf(pcs, y));
    for (i32 x = pcs->nWidth - nNew; x < pcs->nWidth; x++)
        FillColumn(pcs, x, TopOf(pcs->nHeight, fLevel));
}

void ShowSurface(const ControlSurface &cs, const ControlRecord *pctl, u64 qwTick, std::span<u32> picture)
{
    if (picture.empty() || picture.size() != cs.pixels.size())
        return;
    std::ranges::copy(cs.pixels, picture.begin());
    if (IsWave(pctl))
        MarkPosition(cs, pctl, qwTick, picture);
    if (pctl->Base.dwType == CONTROLTYPE_BOOLEAN)
        MarkThreshold(cs, pctl->Boolean.fThreshold, picture);
}

i32 SurfaceBarPosition(f32 fUnit)
{
    const f32 fPosition = (1.0f - fUnit) * static_cast<f32>(SURFACE_BAR_MAX);
    return fPosition > 0 ? static_cast<i32>(std::min(fPosition, static_cast<f32>(SURFACE_BAR_MAX))) : 0;
}

f32 SurfaceBarValue(i32 nPosition)
{
    return 1.0f - static_cast<f32>(std::clamp(nPosition, 0, SURFACE_BAR_MAX)) * BAR_UNIT;
}
