// StatusStrip.cpp -- what the fields under the preset tree say, and when they say it anew
#include "mainwindow/StatusStrip.h"

#include "controls/ControlManager.h"
#include "engine/PresetDocument.h"
#include "output/FrameStats.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"

#include <cstdio>

namespace {

std::u16string SizeText(i32 nWidth, i32 nHeight)
{
    return FromUtf8(std::to_string(nWidth) + " x " + std::to_string(nHeight));
}

std::u16string RateText()
{
    char sz[32];
    std::snprintf(sz, sizeof sz, "%.3f", static_cast<double>(GetRecentFps()));
    return FromUtf8(sz);
}

} // namespace

u64 dwStatusTick = 0;

u32 TakeStatusTexts(u64 qwTick, StatusTexts *pTexts)
{
    ASSERT_MAIN_THREAD();
    if (qwTick - dwStatusTick <= STATUS_TEXTS_MS)
        return 0;
    dwStatusTick = qwTick;
    *pTexts = {RateText(), SizeText(GlobalSettings.nBufferWidth, GlobalSettings.nBufferHeight),
               SizeText(GlobalSettings.hwndVisuals.nWidth, GlobalSettings.hwndVisuals.nHeight)};
    return 1;
}

std::u16string MainWindowTitle()
{
    ASSERT_MAIN_THREAD();
    return (bPresetChanged ? u"*" : u"") + std::u16string(PresetName()) + u" - Vorticade";
}
