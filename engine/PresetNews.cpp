// PresetNews.cpp -- which changes are news
#include "engine/PresetNews.h"

#include "engine/PresetManager.h"
#include "platform/MainThread.h"

#include <algorithm>

namespace {

bool PlaneIsListed(const PresetState *lppsi, const PlaneState *pps)
{
    PlaneState *const *ppEnd = lppsi->psPlane + lppsi->nPlanes;
    return std::find(lppsi->psPlane, ppEnd, pps) != ppEnd;
}

} // namespace

void TellPresetNews(const PresetNews &news)
{
    ASSERT_MAIN_THREAD();
    PresetListeners.Tell(news);
}

void TellIfCurrent(const PresetNews &news)
{
    ASSERT_MAIN_THREAD();
    if (!news.lppsi || news.lppsi != CurrentPreset())
        return;
    if (!news.pps || PlaneIsListed(news.lppsi, news.pps))
        TellPresetNews(news);
}
