// BufferSize.h -- the size of all bitmaps of a preset
#pragma once

#include "platform/BaseTypes.h"

struct BufferSize {
    i32 nWidth;
    i32 nHeight;
};

// Scales a window's client size by percent until it has at most BufferCap pixels: the first divisor is 101, so that
// only the full cap at 100 percent gives the window's own size. Not clamped to the limits of a buffer, but at least
// one pixel each way.
BufferSize FitBufferSize(i32 nWindowWidth, i32 nWindowHeight, i32 nDetailScale, u32 dwBufferCap);

// Works the global buffer size out anew from the visuals window, or from the recorder while it runs. Non-zero if it
// changed. Without a window, or with one whose size is unknown, nothing changes. [main-thread]
u32 ComputeBufferSize(i32 nDetailScale);

// The size for a window that has just been created: neither clamped nor compared.
void SetStartBufferSize();
