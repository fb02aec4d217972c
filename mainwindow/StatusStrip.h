// StatusStrip.h -- what the fields under the preset tree say, and when they say it anew
#pragma once

#include "platform/BaseTypes.h"

#include <string>

constexpr u32 STATUS_TIMER_MS = 30;
constexpr u64 STATUS_TEXTS_MS = 300; // the numbers change no more often than that

struct StatusTexts {
    std::u16string sFps;    // recent frames per second, three decimals
    std::u16string sBuffer; // size of the bitmaps
    std::u16string sWindow; // client size of the visuals window, device pixels
};

extern u64 dwStatusTick; // tick of the last update of the number fields

// Non-zero, with the texts filled, if more than STATUS_TEXTS_MS have passed since the last time. [main-thread]
u32 TakeStatusTexts(u64 qwTick, StatusTexts *pTexts);
// Title of the main window: mark, preset name and product name. [main-thread]
std::u16string MainWindowTitle();
