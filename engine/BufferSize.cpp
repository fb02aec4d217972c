// BufferSize.cpp -- the size of all bitmaps of a preset
#include "engine/BufferSize.h"

#include "platform/MainThread.h"
#include "state/GlobalSettings.h"
#include "state/PresetState.h"

#include <algorithm>

namespace {

constexpr i32 FIRST_DIVISOR = 101;

u32 StoreBufferSize(BufferSize size)
{
    if (size.nWidth == GlobalSettings.nBufferWidth && size.nHeight == GlobalSettings.nBufferHeight)
        return 0;
    GlobalSettings.nBufferWidth = size.nWidth;
    GlobalSettings.nBufferHeight = size.nHeight;
    return 1;
}

bool WindowHasSize()
{
    return GlobalSettings.bVisualsWindow && GlobalSettings.hwndVisuals.nWidth > 0 &&
           GlobalSettings.hwndVisuals.nHeight > 0;
}

} // namespace

BufferSize FitBufferSize(i32 nWindowWidth, i32 nWindowHeight, i32 nDetailScale, u32 dwBufferCap)
{
    const i64 nLimit = std::clamp(dwBufferCap, BUFFER_PIXELS_MIN, BUFFER_PIXELS_MAX);
    i64 nWidth = nWindowWidth;
    i64 nHeight = nWindowHeight;
    if (nLimit != BUFFER_PIXELS_MAX || nDetailScale != 100) {
        for (i64 nDivisor = FIRST_DIVISOR; nDivisor == FIRST_DIVISOR || nWidth * nHeight > nLimit; nDivisor++) {
            nWidth = static_cast<i64>(nWindowWidth) * nDetailScale / nDivisor;
            nHeight = static_cast<i64>(nWindowHeight) * nDetailScale / nDivisor;
        }
    }
    return {static_cast<i32>(std::max<i64>(nWidth, 1)), static_cast<i32>(std::max<i64>(nHeight, 1))};
}

u32 ComputeBufferSize(i32 nDetailScale)
{
    ASSERT_MAIN_THREAD();
    if (!GlobalSettings.bVisualsWindow)
        return 0;
    if (GlobalSettings.bRecording) {
        GlobalSettings.nBufferWidth = GlobalSettings.FrameRecordWidth;
        GlobalSettings.nBufferHeight = GlobalSettings.FrameRecordHeight;
        return 1;
    }
    if (!WindowHasSize())
        return 0;
    BufferSize size = FitBufferSize(GlobalSettings.hwndVisuals.nWidth, GlobalSettings.hwndVisuals.nHeight, nDetailScale,
                                    GlobalSettings.BufferCap);
    size.nWidth = std::clamp(size.nWidth, BUFFER_SIDE_MIN, BUFFER_SIDE_MAX);
    size.nHeight = std::clamp(size.nHeight, BUFFER_SIDE_MIN, BUFFER_SIDE_MAX);
    return StoreBufferSize(size);
}

void SetStartBufferSize()
{
    ASSERT_MAIN_THREAD();
    if (WindowHasSize())
        StoreBufferSize(FitBufferSize(GlobalSettings.hwndVisuals.nWidth, GlobalSettings.hwndVisuals.nHeight,
                                      GlobalSettings.DetailScale, GlobalSettings.BufferCap));
}
