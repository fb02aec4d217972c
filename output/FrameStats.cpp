// FrameStats.cpp -- how many frames a second are shown
#include "output/FrameStats.h"

#include "engine/PresetDocument.h"
#include "engine/PresetNews.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "state/GlobalSettings.h"

#include <algorithm>

u64 qwFramesTotal = 0;
u64 qwFramesRecent = 0;
u64 qwStatsStart = STATS_NOT_STARTED;
u64 qwRecentStart = STATS_NOT_STARTED;

namespace {

constexpr u64 RECENT_WINDOW_MAX_MS = 5000;

// After one that is new the figures fall by themselves: nothing is shown any more.
void OnPresetNews(const PresetNews &news, void *)
{
    const bool bIsNew = news.lppsi && !*PresetPath();
    if (news.eKind == NewsKind::Came && !bIsNew)
        ResetFrameStats();
}

} // namespace

void CountShownFrame()
{
    ASSERT_MAIN_THREAD();
    qwFramesTotal++;
    qwFramesRecent++;
    GlobalSettings.dwFramesShown++;
}

void ResetFrameStats()
{
    qwStatsStart = qwRecentStart = TickCount();
    qwFramesTotal = qwFramesRecent = 0;
}

void ResetFrameStatsWithPresets()
{
    PresetListeners.Remove(OnPresetNews);
    PresetListeners.Add(OnPresetNews);
}

f32 GetRecentFps()
{
    const u64 qwNow = TickCount() + 1;
    const u64 qwElapsed = qwNow - qwRecentStart;
    const f32 fFps = static_cast<f32>(qwFramesRecent) / static_cast<f32>(qwElapsed) * 1000.0f;
    if (qwElapsed > RECENT_WINDOW_MAX_MS) {
        qwFramesRecent = std::max<u64>(qwFramesRecent / 10, 1);
        qwRecentStart = qwNow - qwElapsed / 10;
    }
    return fFps;
}

f32 GetOverallFps()
{
    if (qwStatsStart == STATS_NOT_STARTED) {
        ResetFrameStats();
        return 1.0f;
    }
    const u64 qwElapsed = std::max<u64>(TickCount() - qwStatsStart, 1);
    return static_cast<f32>(qwFramesTotal) * (999.99994f / static_cast<f32>(qwElapsed));
}
