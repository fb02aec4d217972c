// PresetNews.cpp -- which changes are news
#include "engine/PresetNews.h"

#include "engine/PresetManager.h"

#include <algorithm>

namespace {

bool PlaneIsListed(const PresetState *lppsi, const PlaneState *pps)
{
    PlaneState *const *ppEnd = lppsi->psPlane + lppsi->nPlanes;
    return std::find(lppsi->psPlane, ppEnd, pps) != ppEnd;
}

} // namespace

void TellIfCurrent(const PresetNews &news)
{
    if (!news.lppsi || news.lppsi != CurrentPreset())
        return;
    if (!news.pps || PlaneIsListed(news.lppsi, news.pps))
        TellPresetNews(news);
}
