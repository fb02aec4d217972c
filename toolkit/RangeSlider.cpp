// RangeSlider.cpp -- the slider with one thumb for a value or two for a range: geometry, mouse, wheel, keys, pixels
#include "toolkit/RangeSlider.h"

#include "platform/Assert.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr i32 THUMB_WIDTH = 12;
constexpr i32 BAND_INSET = 2;  // of the gradient inside the outline
constexpr i32 BAND_BEYOND = 2; // pixels by which it is longer than the thumbs are apart
constexpr i32 STRIP_MAX = 256;
constexpr f32 BAND_SHADE = 0.7f;
constexpr f32 WHEEL_STEP = 0.0001f; // of the scale
constexpr f32 KEY_STEP = 0.001f;
constexpr f32 FINE = 0.1f;

f32 Length(const SliderInfo &info)
{
    return info.fMaximum - info.fMinimum;
}

bool HasLength(const SliderInfo &info)
{
    return std::isfinite(Length(info)) && Length(info) != 0;
}

f32 *FieldOf(SliderInfo *pInfo, u32 dwThumb)
{
    switch (dwThumb) {
    case THUMB_LOW:
        return &pInfo->fRangeLow;
    case THUMB_HIGH:
        return &pInfo->fRangeHigh;
    case THUMB_VALUE:
        return &pInfo->fValue;
    default:
        return nullptr;
    }
}

// Also for a scale that runs from right to left; what is no number goes to the left end.
f32 Limit(const SliderInfo &info, f32 fValue)
{
    const auto [fLow, fHigh] = std::minmax(info.fMinimum, info.fMaximum);
    return std::isnan(fValue) ? info.fMinimum : std::clamp(fValue, fLow, fHigh);
}

i32 Scaled(i32 n, u32 nScale)
{
    return static_cast<i32>(i64{n} * nScale / 100);
}

// Both rows of a range are cut at thirds by whole numbers.
SliderBox RowsOf(u32 dwThumb, i32 h)
{
    switch (dwThumb) {
    case THUMB_LOW:
        return {0, 0, 0, h * 2 / 3};
    case THUMB_HIGH:
        return {0, h / 3, 0, h - h / 3};
    default:
        return {0, 0, 0, h};
    }
}

bool Contains(const SliderBox &box, i32 x, i32 y)
{
    return x >= box.x && x < box.x + box.nWidth && y >= box.y && y < box.y + box.nHeight;
}

u32 MoveThumb(SliderInfo *pInfo, u32 dwThumb, f32 fBy)
{
    f32 *pf = FieldOf(pInfo, dwThumb);
    if (!pf || !HasLength(*pInfo))
        return 0;
    *pf = Limit(*pInfo, *pf + fBy);
    return 1;
}

f32 StepOf(const SliderInfo &info, f32 fPart)
{
    const f32 fStep = Length(info) * fPart;
    return info.bFloat ? fStep : std::copysign(std::max(std::fabs(fStep), 1.0f), fStep);
}

// A picture that knows its size.
struct Canvas {
    std::span<u32> pixels;
    i32 w, h;

    void Fill(const SliderBox &box, u32 dwColor) const
    {
        const i32 xFrom = std::clamp(box.x, 0, w), xTo = std::clamp(box.x + box.nWidth, xFrom, w);
        for (i32 y = std::max(box.y, 0); y < std::min(box.y + box.nHeight, h); y++)
            std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(y) * w + xFrom, xTo - xFrom, dwColor);
    }
    void FillOutlined(const SliderBox &box, u32 dwFill, i32 nLine) const
    {
        Fill(box, PixelOfColor(SliderColors.crOutline));
        Fill({box.x + nLine, box.y + nLine, box.nWidth - 2 * nLine, box.nHeight - 2 * nLine}, PixelOfColor(dwFill));
    }
};

void PaintBand(const SliderInfo &info, const Canvas &canvas, u32 nScale)
{
    const i32 nInset = Scaled(BAND_INSET, nScale);
    const i32 nInner = canvas.w - 2 * nInset;
    const i32 xLow = SliderPosition(info, info.fRangeLow, nInner);
    const i32 xHigh = SliderPosition(info, info.fRangeHigh, nInner);
    const i32 nBand = std::abs(xHigh - xLow) + Scaled(BAND_BEYOND, nScale);
    const i32 nStrip = std::min(nBand, STRIP_MAX);
    u32 dwLeft = ScaleColor(SliderColors.crLowThumb, BAND_SHADE);
    u32 dwRight = ScaleColor(SliderColors.crHighThumb, BAND_SHADE);
    if (info.fRangeLow > info.fRangeHigh)
        std::swap(dwLeft, dwRight);
    const i32 xFrom = nInset + std::min(xLow, xHigh);
    for (i32 x = 0; x < std::min(nBand, canvas.w - nInset - xFrom); x++) {
        const i32 iStrip = static_cast<i32>(i64{x} * nStrip / nBand);
        canvas.Fill({xFrom + x, nInset, 1, canvas.h - 2 * nInset},
                    PixelOfColor(LerpColor(dwLeft, dwRight, iStrip, nStrip)));
    }
}

} // namespace

SliderColorSet SliderColors = {0x64FF64, 0x6464FF, 0xFF6464, 0x000000, 0xFFFFFF};

void TakeUserSliderColors()
{
    SliderColors.crLowThumb = UIColorTable[UICOLOR_METER_LOW].dwColor;
    SliderColors.crHighThumb = UIColorTable[UICOLOR_METER_HIGH].dwColor;
    SliderColors.crValueThumb = 0x00BCBC;
}

f32 SliderThumbValue(const SliderInfo &info, u32 dwThumb)
{
    SliderInfo copy = info;
    const f32 *pf = FieldOf(&copy, dwThumb);
    return pf ? *pf : 0;
}

u32 SetSliderThumb(SliderInfo *pInfo, u32 dwThumb, f32 fValue)
{
    f32 *pf = FieldOf(pInfo, dwThumb);
    if (!pf)
        return 0;
    *pf = fValue;
    return 1;
}

i32 SliderPosition(const SliderInfo &info, f32 fValue, i32 w)
{
    const f32 fPlace = HasLength(info) ? (fValue - info.fMinimum) / Length(info) * static_cast<f32>(w) : 0.0f;
    const f32 fFar = static_cast<f32>(w) * 2; // as good as out of sight
    return std::isnan(fPlace) ? 0 : static_cast<i32>(std::clamp(fPlace, -fFar, fFar));
}

SliderBox SliderThumbBox(const SliderInfo &info, u32 dwThumb, i32 w, i32 h, u32 nScale)
{
    SliderBox box = RowsOf(dwThumb, h);
    box.nWidth = Scaled(THUMB_WIDTH, nScale);
    box.x = SliderPosition(info, SliderThumbValue(info, dwThumb), w) - box.nWidth / 2;
    return box;
}

u32 HitSlider(const SliderInfo &info, i32 x, i32 y, i32 w, i32 h, u32 nScale)
{
    u32 dwHit = THUMB_NONE;
    for (const u32 dwThumb : {THUMB_LOW, THUMB_HIGH, THUMB_VALUE})
        if ((dwThumb == THUMB_VALUE) == !info.bRangeMode && Contains(SliderThumbBox(info, dwThumb, w, h, nScale), x, y))
            dwHit = dwThumb;
    return dwHit;
}

u32 BeginSliderDrag(SliderInfo *pInfo, SliderGrip *pGrip, i32 x, i32 y, i32 w, i32 h, u32 nScale)
{
    pInfo->nDragThumb = HitSlider(*pInfo, x, y, w, h, nScale);
    pInfo->bDragging = pInfo->nDragThumb != THUMB_NONE;
    *pGrip = {x, SliderThumbValue(*pInfo, pInfo->nDragThumb), 0};
    return pInfo->bDragging;
}

u32 DragSlider(SliderInfo *pInfo, SliderGrip *pGrip, i32 x, i32 w, u32 bFine)
{
    f32 *pf = pInfo->bDragging ? FieldOf(pInfo, pInfo->nDragThumb) : nullptr;
    if (!pf || w <= 0 || !HasLength(*pInfo))
        return 0;
    if (bFine != pGrip->bFine)
        *pGrip = {x, *pf, bFine};
    const f32 fPlain = static_cast<f32>(x) / static_cast<f32>(w) * Length(*pInfo) + pInfo->fMinimum;
    const f32 fMoved = static_cast<f32>(x - pGrip->x) / static_cast<f32>(w) * Length(*pInfo) * FINE;
    *pf = Limit(*pInfo, bFine ? pGrip->fValue + fMoved : fPlain);
    return 1;
}

void EndSliderDrag(SliderInfo *pInfo)
{
    pInfo->bDragging = 0;
    pInfo->nDragThumb = THUMB_NONE;
}

u32 TurnSlider(SliderInfo *pInfo, i32 nSign, i32 y, i32 h)
{
    const u32 dwThumb = !pInfo->bRangeMode ? THUMB_VALUE : y >= h / 2 ? THUMB_HIGH : THUMB_LOW;
    if (nSign == 0)
        return 0;
    return MoveThumb(pInfo, dwThumb, StepOf(*pInfo, WHEEL_STEP) * (nSign > 0 ? 1.0f : -1.0f));
}

u32 StepSlider(SliderInfo *pInfo, u32 dwThumb, i32 nSteps)
{
    return MoveThumb(pInfo, dwThumb, StepOf(*pInfo, KEY_STEP) * static_cast<f32>(nSteps));
}

void PaintSlider(const SliderInfo &info, std::span<u32> pixels, i32 w, i32 h, u32 nScale)
{
    if (w <= 0 || h <= 0)
        return;
    VD_ASSERT(pixels.size() >= static_cast<size_t>(w) * static_cast<size_t>(h));
    const Canvas canvas = {pixels, w, h};
    const i32 nLine = std::max(Scaled(1, nScale), 1);
    const auto paintThumb = [&](u32 dwThumb, u32 dwColor) {
        canvas.FillOutlined(SliderThumbBox(info, dwThumb, w, h, nScale), dwColor, nLine);
    };
    canvas.FillOutlined({0, 0, w, h}, SliderColors.crBackground, nLine);
    if (info.bRangeMode)
        PaintBand(info, canvas, nScale);
    if (!info.bRangeMode || info.bShowValue)
        paintThumb(THUMB_VALUE, SliderColors.crValueThumb);
    if (!info.bRangeMode)
        return;
    paintThumb(THUMB_LOW, SliderColors.crLowThumb);
    paintThumb(THUMB_HIGH, SliderColors.crHighThumb);
}
