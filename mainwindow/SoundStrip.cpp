// SoundStrip.cpp -- the sound meter under the status fields: its levels and its pixels
#include "mainwindow/SoundStrip.h"

#include "include/sound.h"
#include "platform/Assert.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <vector>

namespace {

constexpr i32 PICTURE_ROWS = 12;
constexpr i32 ROWS_A_TYPE = 3; // two of the bar, one that stays black
constexpr i32 TOP_GAP = 1;     // between the strip's top and the bars
constexpr u32 BLACK = 0xFF000000;

u32 MeterLow()
{
    return UIColorTable[UICOLOR_METER_LOW].dwColor;
}

u32 MeterHigh()
{
    return UIColorTable[UICOLOR_METER_HIGH].dwColor;
}

u32 GetLevel(u32 dwType, f32 *pfLevel)
{
    const SoundMonitorBinding &monitor = GlobalSettings.Monitor;
    return monitor.pfnGetLevel && monitor.pfnGetLevel(monitor.hMonitor, static_cast<i32>(dwType), pfLevel);
}

std::span<u32> Row(std::span<u32> pixels, i32 w, i32 y)
{
    return pixels.subspan(static_cast<size_t>(y) * static_cast<size_t>(w), static_cast<size_t>(w));
}

void DrawOneBar(f32 fLevel, std::span<u32> pixels, i32 w, i32 h, u64 qwTick)
{
    const std::span<u32> first = Row(pixels, w, 0);
    FillMeterStrip(first, fLevel, &PeakStores[VOLUMETYPE_DYNAMIC_SIMULATED], MeterLow(), MeterHigh(), qwTick);
    for (i32 y = 1; y < h; y++)
        std::copy(first.begin(), first.end(), Row(pixels, w, y).begin());
}

// Each row of the strip shows one of the twelve; the last rows, which the gap pushes out, are cut off.
void DrawFourBars(const SoundStrip &strip, std::span<u32> pixels, i32 w, i32 h, u64 qwTick)
{
    std::vector<u32> bars(static_cast<size_t>(w) * SOUND_STRIP_TYPES);
    for (u32 i = 0; i < SOUND_STRIP_TYPES; i++)
        FillMeterStrip(Row(bars, w, static_cast<i32>(i)), strip.afLevel[i], &PeakStores[i], MeterLow(), MeterHigh(),
                       qwTick);
    for (i32 y = TOP_GAP; y < h; y++) {
        const i32 iRow = static_cast<i32>(i64{y - TOP_GAP} * PICTURE_ROWS / h);
        const std::span<u32> to = Row(pixels, w, y);
        if (iRow % ROWS_A_TYPE == ROWS_A_TYPE - 1) {
            std::fill(to.begin(), to.end(), BLACK);
            continue;
        }
        const std::span<u32> from = Row(bars, w, iRow / ROWS_A_TYPE);
        std::copy(from.begin(), from.end(), to.begin());
    }
}

} // namespace

SoundStrip ReadSoundStrip(u32 bQuiet)
{
    ASSERT_MAIN_THREAD();
    SoundStrip strip = {};
    strip.bLevels = GetLevel(VOLUMETYPE_RAW, &strip.afLevel[VOLUMETYPE_RAW]);
    for (u32 i = 1; strip.bLevels && i < SOUND_STRIP_TYPES; i++)
        GetLevel(i, &strip.afLevel[i]);
    strip.bOneBar = bQuiet && GlobalSettings.VolumeType == VOLUMETYPE_DYNAMIC_SIMULATED;
    return strip;
}

u32 DrawSoundStrip(const SoundStrip &strip, std::span<u32> pixels, i32 w, i32 h, u64 qwTick)
{
    ASSERT_MAIN_THREAD();
    if (!strip.bLevels || w <= 0 || h <= 0)
        return 0;
    VD_ASSERT(pixels.size() >= static_cast<size_t>(w) * static_cast<size_t>(h));
    if (strip.bOneBar)
        DrawOneBar(strip.afLevel[VOLUMETYPE_DYNAMIC_SIMULATED], pixels, w, h, qwTick);
    else
        DrawFourBars(strip, pixels, w, h, qwTick);
    return 1;
}
