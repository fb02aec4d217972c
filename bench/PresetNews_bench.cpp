// PresetNews_bench.cpp -- what it costs to tell the windows of a change
#include "bench/BenchReport.h"

#include "engine/PresetNews.h"

namespace {

constexpr unsigned ROUNDS = 60;
constexpr unsigned CALLS = 10000;
constexpr size_t LISTENERS = 12; // more than there are windows with a preset's parts in them
constexpr double TELL_GOAL_US = 1;

void NoteNews(const PresetNews &news, void *pv)
{
    *static_cast<u32 *>(pv) |= 1u << static_cast<u32>(news.eKind);
}

} // namespace

int main()
{
    u32 adwNoted[LISTENERS] = {};
    for (u32 &dwNoted : adwNoted)
        PresetListeners.Add(NoteNews, &dwNoted);
    const PresetNews news = {NewsKind::Control, nullptr, nullptr, nullptr, nullptr};
    // The reference: the same functions, called by their names.
    const auto times = TimeInterleaved(
        ROUNDS, CALLS,
        [&] {
            TellPresetNews(news);
            KeepResult(adwNoted);
        },
        [&] {
            for (u32 &dwNoted : adwNoted)
                NoteNews(news, &dwNoted);
            KeepResult(adwNoted);
        });
    ReportFigure("PresetNews/telling twelve listeners", Median(times[0]), TELL_GOAL_US, "us", BenchGoal::AT_MOST);
    ReportFigure("PresetNews/against the bare calls", MedianRatio(times[0], times[1]), 0, "x", BenchGoal::NONE);
    return 0;
}
