// Meters.cpp -- the pixels of level meters and progress bars, their peak markers, and the two colour helpers
#include "toolkit/Meters.h"

#include "platform/MainThread.h"

#include <algorithm>

namespace {

constexpr u64 SAMPLE_MS = 20;
constexpr i32 LINE_EVERY = 4; // columns from one black line to the next
constexpr i32 MARKER_COLUMNS = 3;
constexpr f32 FACTOR_MAX = 100;
constexpr u32 BLACK = 0xFF000000;

// A level may come from a sound library: it can be anything, also no number.
f32 LimitLevel(f32 fLevel)
{
    return fLevel > 0 ? std::min(fLevel, 1.0f) : 0.0f;
}

template <typename Fn> u32 MapBytes(Fn byteAt)
{
    return byteAt(0) | byteAt(8) << 8 | byteAt(16) << 16;
}

void FillBar(std::span<u32> strip, i32 nLit, u32 dwLow, u32 dwHigh)
{
    const i32 w = static_cast<i32>(strip.size());
    for (i32 x = 0; x < w; x++) {
        const bool bLit = x < std::max(nLit, 1) && x % LINE_EVERY != 0;
        strip[static_cast<size_t>(x)] = bLit ? PixelOfColor(LerpColor(dwLow, dwHigh, x, w)) : BLACK;
    }
}

void FillMarker(std::span<u32> strip, i32 xPeak, u32 dwColor)
{
    for (i32 x = xPeak; x > xPeak - MARKER_COLUMNS; x--)
        if (x >= 0 && static_cast<size_t>(x) < strip.size())
            strip[static_cast<size_t>(x)] = PixelOfColor(dwColor);
}

} // namespace

PeakStore PeakStores[PEAK_STORES];

void ClearPeakStores()
{
    ASSERT_MAIN_THREAD();
    std::fill(std::begin(PeakStores), std::end(PeakStores), PeakStore{});
}

u32 LerpColor(u32 dwFrom, u32 dwTo, i32 k, i32 n)
{
    if (n == 0)
        return dwFrom;
    return MapBytes([=](u32 nShift) {
        const i64 a = dwFrom >> nShift & 0xFF;
        const i64 b = dwTo >> nShift & 0xFF;
        return static_cast<u32>(std::clamp<i64>((a * (i64{n} - k) + b * k) / n, 0, 255));
    });
}

u32 ScaleColor(u32 dwColor, f32 fFactor)
{
    const f32 fLimited = fFactor > 0 ? std::min(fFactor, FACTOR_MAX) : 0.0f;
    return MapBytes([=](u32 nShift) {
        const f32 fByte = static_cast<f32>(dwColor >> nShift & 0xFF) * fLimited;
        return static_cast<u32>(std::min(fByte, 255.0f));
    });
}

f32 KeepPeak(PeakStore *pps, f32 fLevel, u64 qwTick)
{
    if (qwTick - pps->aqwTick[pps->iTail] >= SAMPLE_MS) {
        pps->afLevel[pps->iTail] = fLevel;
        pps->aqwTick[pps->iTail] = qwTick;
        pps->iTail = (pps->iTail + 1) % PEAK_SAMPLES;
        if (pps->iTail == pps->iHead)
            pps->iHead = (pps->iHead + 1) % PEAK_SAMPLES;
    }
    f32 fPeak = 0;
    for (i32 i = pps->iHead; i != pps->iTail; i = (i + 1) % PEAK_SAMPLES)
        fPeak = std::max(fPeak, pps->afLevel[i]);
    return fPeak;
}

void FillMeterStrip(std::span<u32> strip, f32 fLevel, PeakStore *pps, u32 dwLow, u32 dwHigh, u64 qwTick)
{
    const f32 fLimited = LimitLevel(fLevel);
    const f32 fLast = static_cast<f32>(strip.size()) - 1;
    FillBar(strip, static_cast<i32>(fLast * fLimited), dwLow, dwHigh);
    if (!pps)
        return;
    const f32 fPeak = KeepPeak(pps, fLimited, qwTick);
    FillMarker(strip, std::max(static_cast<i32>(fLast * fPeak), 1), dwHigh);
}

void FillProgressStrip(std::span<u32> strip, f32 fLevel, u32 dwLow, u32 dwHigh)
{
    FillBar(strip, static_cast<i32>(static_cast<f32>(strip.size()) * LimitLevel(fLevel)), dwLow, dwHigh);
}
