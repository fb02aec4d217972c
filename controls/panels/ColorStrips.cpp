// ColorStrips.cpp -- the pixels of the colour window: a strip a plane with its colours, its transition and its progress
#include "controls/panels/ColorStrips.h"

#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr u32 RGB = 0x00FFFFFF, RED = 0x00FF0000, GREEN = 0x0000FF00, BLUE = 0x000000FF;
constexpr u32 OPAQUE = 0xFF000000;
constexpr i32 METER_PART = 6; // of the strip's height
constexpr i32 METER_ROWS_MIN = 8;

constexpr ColorSwitch asSwitch[] = {
    {u"Show Transition Palettes", &GlobalSettingsRecord::ShowMP},
    {u"Separate RGB Components", &GlobalSettingsRecord::ShowRGB},
    {u"Display Transition Progress", &GlobalSettingsRecord::ShowPrg},
    {u"Show On Single Row", &GlobalSettingsRecord::ShowOneRow},
};

// One row of the picture's bands, or several, from top to bottom.
struct Band {
    u32 (ColorState::*padwColor)[PALETTE_COLORS_MAX];
    u32 dwMask;
    u32 GlobalSettingsRecord::*pbShown; // null: always
};
constexpr Band asBand[] = {
    {&ColorState::adwColor, RGB, nullptr},
    {&ColorState::adwFrom, RGB, &GlobalSettingsRecord::ShowMP},
    {&ColorState::adwTo, RGB, &GlobalSettingsRecord::ShowMP},
    {&ColorState::adwColor, RED, &GlobalSettingsRecord::ShowRGB},
    {&ColorState::adwColor, GREEN, &GlobalSettingsRecord::ShowRGB},
    {&ColorState::adwColor, BLUE, &GlobalSettingsRecord::ShowRGB},
};

std::vector<Band> BandsOf(const GlobalSettingsRecord &settings)
{
    std::vector<Band> bands;
    for (const Band &band : asBand)
        if (!band.pbShown || settings.*band.pbShown)
            bands.push_back(band);
    return bands;
}

void TakePalette(u32 *padwColor, const u8 *pabRed, const u8 *pabGreen, const u8 *pabBlue)
{
    for (size_t i = 0; i < PALETTE_COLORS_MAX; i++)
        padwColor[i] = static_cast<u32>(pabRed[i]) << 16 | static_cast<u32>(pabGreen[i]) << 8 | pabBlue[i];
}

void TakeTransition(ColorState *pcs, const PaletteInfo &info)
{
    TakePalette(pcs->adwFrom, info.abRed1, info.abGreen1, info.abBlue1);
    TakePalette(pcs->adwTo, info.abRed2, info.abGreen2, info.abBlue2);
    pcs->nStep = info.nStep;
    pcs->nSteps = info.nSteps;
}

// Row iRow of nRows in a band.
void FillBandRow(const ColorState &cs, const Band &band, i32 iRow, i32 nRows, std::span<u32> row)
{
    const u64 nCells = row.size() * static_cast<u64>(nRows), nColors = static_cast<u64>(cs.nColors);
    u64 k = row.size() * static_cast<u64>(iRow);
    for (u32 &dwPixel : row)
        dwPixel = OPAQUE | ((cs.*band.padwColor)[k++ * nColors / nCells] & band.dwMask);
}

i32 RowsOfBand(const ColorState &cs, const GlobalSettingsRecord &settings, i32 nWidth)
{
    return settings.ShowOneRow ? 1 : (cs.nColors + nWidth - 1) / nWidth;
}

// The small picture has nRows rows a band; here it is stretched to nHeight.
void FillBands(const ColorState &cs, const GlobalSettingsRecord &settings, i32 nWidth, i32 nHeight, u32 *pPixel)
{
    const std::vector<Band> bands = BandsOf(settings);
    const i32 nRows = RowsOfBand(cs, settings, nWidth);
    const i64 nSmall = nRows * static_cast<i64>(bands.size());
    i64 iBefore = -1;
    for (i32 y = 0; y < nHeight; y++, pPixel += nWidth) {
        const i64 iRow = y * nSmall / nHeight;
        if (iRow == iBefore)
            std::copy_n(pPixel - nWidth, nWidth, pPixel);
        else
            FillBandRow(cs, bands[static_cast<size_t>(iRow / nRows)], static_cast<i32>(iRow % nRows), nRows,
                        {pPixel, static_cast<size_t>(nWidth)});
        iBefore = iRow;
    }
}

bool IsUnderWay(const ColorState &cs)
{
    return cs.nSteps > 0 && cs.nStep < cs.nSteps;
}

// 0: there is no meter now.
i32 MeterRows(const ColorState &cs, const GlobalSettingsRecord &settings, i32 nHeight)
{
    return settings.ShowPrg && IsUnderWay(cs) ? std::min(std::max(nHeight / METER_PART, METER_ROWS_MIN), nHeight) : 0;
}

void FillMeter(const ColorState &cs, i32 nWidth, i32 nRows, u32 *pRow)
{
    const f32 fLevel = static_cast<f32>(std::max(cs.nStep, 0)) / static_cast<f32>(cs.nSteps);
    FillProgressStrip({pRow, static_cast<size_t>(nWidth)}, fLevel, UIColorTable[UICOLOR_METER_LOW].dwColor,
                      UIColorTable[UICOLOR_METER_HIGH].dwColor);
    for (i32 i = 1; i < nRows; i++)
        std::copy_n(pRow, nWidth, pRow + static_cast<size_t>(i) * static_cast<size_t>(nWidth));
}

} // namespace

std::span<const ColorSwitch> ColorSwitches()
{
    return asSwitch;
}

u32 TakeColorState(ColorState *pcs, const PlaneInfo &pi)
{
    static_assert(std::has_unique_object_representations_v<ColorState>);
    const auto pNew = std::make_unique<ColorState>();
    pNew->nColors = pi.lpColorTable ? std::clamp(pi.nColors, 0, PALETTE_COLORS_MAX) : 0;
    for (i32 i = 0; i < pNew->nColors; i++)
        pNew->adwColor[i] = pi.lpColorTable[i] & RGB; // byte 3 is the modules' own
    if (pi.pPaletteInfo)
        TakeTransition(pNew.get(), *pi.pPaletteInfo);
    if (!std::memcmp(pcs, pNew.get(), sizeof(ColorState)))
        return 0;
    *pcs = *pNew;
    return 1;
}

ColorStripPlace PlaceColorStrip(i32 i, i32 nStrips, i32 nHeight, i32 nGap)
{
    const i64 nAll = i64{nHeight} + nGap;
    const i32 yTop = static_cast<i32>(nAll * i / nStrips), yNext = static_cast<i32>(nAll * (i + 1) / nStrips);
    return {yTop, std::max(yNext - nGap, yTop)};
}

u32 DrawColorStrip(const ColorState &cs, const GlobalSettingsRecord &settings, i32 nWidth, std::span<u32> picture)
{
    const i32 nHeight = nWidth > 0 ? static_cast<i32>(picture.size() / static_cast<size_t>(nWidth)) : 0;
    if (cs.nColors <= 0 || nHeight == 0)
        return 0;
    const i32 nMeter = MeterRows(cs, settings, nHeight), nBands = nHeight - nMeter;
    FillBands(cs, settings, nWidth, nBands, picture.data());
    if (nMeter)
        FillMeter(cs, nWidth, nMeter, &picture[static_cast<size_t>(nBands) * static_cast<size_t>(nWidth)]);
    return 1;
}
