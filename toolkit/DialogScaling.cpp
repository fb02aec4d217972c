// DialogScaling.cpp -- how a dialog that is stretched places its controls, chooses its font and is taken by its edge
#include "toolkit/DialogScaling.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr f64 WIDTH_OF_HEIGHT = 0.45;
constexpr f32 PART_OF_WINDOW = 0.8f; // that a font gets which is too tall for it
constexpr i32 CORNER = 16;

i32 Width(const WindowRect &rc)
{
    return rc.right - rc.left;
}

i32 Height(const WindowRect &rc)
{
    return rc.bottom - rc.top;
}

f32 Ratio(i32 nNow, i32 nDesign)
{
    return nDesign > 0 && nNow > 0 ? static_cast<f32>(nNow) / static_cast<f32>(nDesign) : 1.0f;
}

WindowRect Multiply(const WindowRect &rc, f32 fX, f32 fY)
{
    return {RoundAway(rc.left * f64{fX}), RoundAway(rc.top * f64{fY}), RoundAway(rc.right * f64{fX}),
            RoundAway(rc.bottom * f64{fY})};
}

} // namespace

i32 RoundAway(f64 f)
{
    return static_cast<i32>(std::round(std::clamp(f, -2147483647.0, 2147483647.0)));
}

ScaleFactors GetDialogScale(const WindowRect &rcNow, const WindowRect &rcDesign)
{
    return {Ratio(Width(rcNow), Width(rcDesign)), Ratio(Height(rcNow), Height(rcDesign))};
}

WindowRect DialogDesignRect(const WindowRect &rcClient)
{
    return {rcClient.left, rcClient.top, rcClient.right + SIZING_BAND, rcClient.bottom + SIZING_BAND};
}

WindowRect BringToDesign(const WindowRect &rcNow, const ScaleFactors &factors)
{
    return Multiply(rcNow, 1 / factors.fScaleX, 1 / factors.fScaleY);
}

WindowRect PlaceControl(const WindowRect &rcDesign, const ScaleFactors &factors, u32 bComboBox)
{
    WindowRect rc = Multiply(rcDesign, factors.fScaleX, factors.fScaleY);
    if (bComboBox)
        rc.bottom += Width(rc);
    return rc;
}

i32 DesignFontWidth(i32 lfHeight)
{
    return std::abs(RoundAway(lfHeight * WIDTH_OF_HEIGHT));
}

ScaledFont ScaleFont(const ScaledFont &lfDesign, const ScaleFactors &factors, i32 nDesignHeight)
{
    const i32 nHeight = static_cast<i32>(static_cast<f32>(std::abs(lfDesign.lfHeight)) * factors.fScaleY);
    ScaledFont lf = {-nHeight, 0, 0};
    lf.lfWidth = lfDesign.lfWidth ? RoundAway(lfDesign.lfWidth * f64{factors.fScaleX}) : DesignFontWidth(nHeight);
    const f32 fWindow = static_cast<f32>(nDesignHeight) * factors.fScaleY;
    if (static_cast<f32>(nHeight) > fWindow) {
        const f32 fLess = fWindow / static_cast<f32>(nHeight) * PART_OF_WINDOW;
        lf.lfHeight = static_cast<i32>(static_cast<f32>(nHeight) * fLess);
        lf.lfWidth = RoundAway(lf.lfWidth * f64{fLess});
    }
    if (factors.fScaleX > factors.fScaleY)
        lf.lfWidth = 0;
    return lf;
}

i32 FontStretch(const ScaledFont &lf, const ScaledFont &lfDesign)
{
    const f64 fOwn = std::abs(1.0 * lf.lfHeight * lfDesign.lfWidth);
    if (lf.lfWidth <= 0 || fOwn <= 0)
        return 100;
    return std::clamp(RoundAway(100.0 * lf.lfWidth * std::abs(lfDesign.lfHeight) / fOwn), 1, 100);
}

i32 FitFontHeight(i32 nWanted, i32 nLeast, bool (*pfnFits)(i32 nHeight, void *pvContext), void *pvContext)
{
    i32 nFits = std::clamp(nLeast, 1, std::max(nWanted, 1));
    i32 nTooTall = std::max(nWanted, 1) + 1;
    while (nFits + 1 < nTooTall) {
        const i32 nTry = nFits + (nTooTall - nFits) / 2;
        (pfnFits(nTry, pvContext) ? nFits : nTooTall) = nTry;
    }
    return nFits;
}

WindowRect LeaveBandFree(const WindowRect &rc, i32 nWidth, i32 nHeight)
{
    const i32 xRight = std::max(nWidth - SIZING_BAND, SIZING_BAND), yBottom = std::max(nHeight - SIZING_BAND, 0);
    return {std::clamp(rc.left, SIZING_BAND, xRight), std::min(rc.top, yBottom),
            std::clamp(rc.right, SIZING_BAND, xRight), std::min(rc.bottom, yBottom)};
}

WindowRect LeastDialogRect(const WindowRect &rcDesign)
{
    return {0, 0, Width(rcDesign) / 2, Height(rcDesign) / 2};
}

SizingEdge HitSizingBand(i32 x, i32 y, i32 nWidth, i32 nHeight)
{
    const i32 xRight = nWidth + SIZING_BAND, yBottom = nHeight + SIZING_BAND; // of the client area and its band
    const bool bLeft = x < CORNER, bRight = x >= xRight - (CORNER - 1);
    const bool bTop = y < CORNER, bBottom = y >= yBottom - (CORNER - 1);
    struct Row {
        bool bHit;
        SizingEdge eEdge;
    };
    const Row asRow[] = {
        {bLeft && bTop, SizingEdge::TopLeft},   {bLeft && bBottom, SizingEdge::BottomLeft},
        {bRight && bTop, SizingEdge::TopRight}, {bRight && bBottom, SizingEdge::BottomRight},
        {x <= SIZING_BAND, SizingEdge::Left},   {x >= xRight - SIZING_BAND, SizingEdge::Right},
        {y <= SIZING_BAND, SizingEdge::Top},    {y < yBottom - SIZING_BAND, SizingEdge::None},
    };
    for (const Row &row : asRow)
        if (row.bHit)
            return row.eEdge;
    return SizingEdge::Bottom;
}
