// PresetLibrary_bench.cpp -- the preset library over thousands of files, against the tools that walk and search folders
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"
#include "bench/PresetFolder.h"
#include "library/PresetCache.h"
#include "library/PresetLibrary.h"
#include "library/PresetScan.h"
#include "library/browser/PresetFilter.h"
#include "library/PresetSummary.h"
#include "library/PresetTable.h"
#include "platform/Clock.h"

#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr unsigned ROUNDS = 9;
constexpr u32 RESCANS = 1000;
constexpr double BYTES_GOAL = 1.2 * 1024;

void RunTool(const std::vector<const char *> &apszArgument)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    int nStatus = 0;
    if (posix_spawnp(&pid, apszArgument[0], &actions, nullptr, const_cast<char *const *>(apszArgument.data()), environ))
        std::exit(1);
    waitpid(pid, &nStatus, 0);
    posix_spawn_file_actions_destroy(&actions);
    if (WIFEXITED(nStatus) && WEXITSTATUS(nStatus) == 127)
        std::exit(1);
}

void ListAnew(const std::u16string &folder)
{
    FreePresetLibrary();
    SetPresetFolder(folder);
    AllowPresetScans();
    ScanPresetFolder(0);
}

void ReportPasses(const std::string &sName, const std::string &sPath, u32 nPresets)
{
    const std::u16string folder = FromUtf8(sPath);
    const auto first = [&] { ListAnew(folder); };
    const auto find = [&] { RunTool({"find", sPath.c_str(), "-name", "*.VD", "-printf", "%f %s %T@\\n", nullptr}); };
    const auto af = TimeInterleaved(ROUNDS, 1, find, first);
    ReportFigure((sName + "first pass over find -printf").c_str(), MedianRatio(af[1], af[0]), 1.0, "x",
                 BenchGoal::AT_MOST);
    ReportFigure((sName + "first pass").c_str(), Median(af[1]) / 1000, 0, "ms", BenchGoal::NONE);

    // Only the second of each pair counts.
    std::vector<double> afSummary, afSearch;
    for (unsigned i = 0; i <= ROUNDS; i++) {
        const double fSearch = TimeCalls(1, [&] { RunTool({"rg", "-il", ">8</source>", sPath.c_str(), nullptr}); });
        ListAnew(folder);
        const double fSummary = TimeCalls(1, [&] { ScanPresetFolder(1); });
        if (i > 0) {
            afSearch.push_back(fSearch);
            afSummary.push_back(fSummary);
        }
    }
    ReportFigure((sName + "summary over rg -il").c_str(), MedianRatio(afSummary, afSearch), 0.6, "x",
                 BenchGoal::AT_MOST);
    ReportFigure((sName + "summary").c_str(), Median(afSummary) / 1000, 0, "ms", BenchGoal::NONE);

    SavePresetCache(folder);
    const auto cached = [&] {
        FreePresetLibrary();
        OpenPresetLibrary(folder, u"");
    };
    const auto afStart = TimeInterleaved(ROUNDS, 1, first, cached);
    ReportFigure((sName + "start from the cache beyond the first pass, for 10000").c_str(),
                 (Median(afStart[1]) - Median(afStart[0])) / 1000 * 10000 / nPresets, 10, "ms", BenchGoal::AT_MOST);
    u32 nSummarized = 0;
    ForEachPreset([&](i32, const PresetInfo *lppi) { nSummarized += lppi->bSummarized; });
    if (nSummarized != nPresets)
        std::exit(1);
}

double HeapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// The table, the index and the cache that stands behind them.
void ReportMemory(const std::string &sName, const std::u16string &folder, u32 nPresets)
{
    FreePresetLibrary();
    const double fBefore = HeapBytes();
    OpenPresetLibrary(folder, u"");
    ReportFigure((sName + "memory for a preset").c_str(), (HeapBytes() - fBefore) / nPresets, BYTES_GOAL, "bytes",
                 BenchGoal::AT_MOST);
}

void ReportRescans(const bench::fs::path &folder)
{
    bench::MakePresetFolder(folder, 1000);
    FreePresetLibrary();
    OpenPresetLibrary(FromUtf8(folder.string()), u"");
    RescanPresetFolder();
    const double fBefore = HeapBytes();
    for (u32 i = 0; i < RESCANS; i++)
        i % 2 ? RescanPresetFolder() : ScanPresetFolder(1);
    ReportFigure("PresetLibrary/growth in 1000 rescans", HeapBytes() - fBefore, 0, "bytes", BenchGoal::AT_MOST);
}

void ReportSearch(const std::string &sName, u32 nPresets)
{
    const auto af = TimeInterleaved(ROUNDS, 1, [] { KeepResult(ApplySearch(u"over storm 77", 0)); });
    ReportFigure((sName + "search in all names, for 10000").c_str(), Median(af[0]) / 1000 * 10000 / nPresets, 3, "ms",
                 BenchGoal::AT_MOST);
}

void BusyFor(i64 nNanoseconds)
{
    for (const i64 nEnd = RealNanoseconds() + nNanoseconds; RealNanoseconds() < nEnd;)
        ;
}

// Frames that were not done when the next one was due: 60 a second, six milliseconds of work in each.
u32 MissedFrames(u32 nFrames, const std::atomic<bool> *pbEnd)
{
    constexpr i64 FRAME_NS = 1000000000 / 60, WORK_NS = 6000000;
    u32 nMissed = 0;
    i64 nDue = RealNanoseconds();
    for (u32 i = 0; pbEnd ? !*pbEnd : i < nFrames; i++, nDue += FRAME_NS) {
        std::this_thread::sleep_for(std::chrono::nanoseconds(std::max<i64>(nDue - RealNanoseconds(), 0)));
        BusyFor(WORK_NS);
        nMissed += RealNanoseconds() > nDue + FRAME_NS;
        nDue = std::max(nDue, RealNanoseconds() - FRAME_NS);
    }
    return nMissed;
}

// The summary of everything, again and again for two seconds, beside the frames.
void ReportFrames(const std::string &sName, const std::u16string &folder)
{
    std::filesystem::remove(std::filesystem::path(ToUtf8(folder)) / "PresetCache.dat");
    const u32 nAlone = MissedFrames(120, nullptr);
    std::atomic<bool> bEnd{false};
    std::thread reader([&] {
        for (const i64 nEnd = RealNanoseconds() + 2000000000; RealNanoseconds() < nEnd;) {
            ListAnew(folder);
            ScanPresetFolder(1);
        }
        bEnd = true;
    });
    const u32 nBeside = MissedFrames(0, &bEnd);
    reader.join();
    ReportFigure((sName + "missed frames at 60 FPS without summaries").c_str(), nAlone, 0, "frames", BenchGoal::NONE);
    ReportFigure((sName + "missed frames at 60 FPS beside summaries").c_str(), nBeside, nAlone, "frames",
                 BenchGoal::AT_MOST);
}

template <typename Fn> double MillisecondsUntil(Fn &&fn)
{
    const i64 nStart = RealNanoseconds();
    while (!fn() && RealNanoseconds() - nStart < 20000000000)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return static_cast<double>(RealNanoseconds() - nStart) / 1e6;
}

bool IsSummarized(const std::u16string &path)
{
    const PresetTableLock lock;
    const PresetInfo *lppi = GetPresetInfo(FindPresetFile(path));
    return lppi && lppi->bSummarized;
}

// From the last byte on the disk to the entry in the table, in a large folder.
void ReportWatch(const std::string &sName, const std::u16string &folder)
{
    FreePresetLibrary();
    OpenPresetLibrary(folder, u"");
    ScanPresetFolder(1);
    if (!WatchPresets())
        std::exit(1);
    u32 dwState = 7;
    std::vector<double> afSingle;
    for (u32 i = 0; i < 5; i++) {
        const std::u16string path = folder + u"/single " + FromUtf8(std::to_string(i)) + u".VD";
        std::ofstream(ToUtf8(path)) << bench::PresetText(&dwState);
        afSingle.push_back(MillisecondsUntil([&] { return IsSummarized(path); }));
    }
    ReportFigure((sName + "a new file in the table after").c_str(), Median(afSingle), 500, "ms", BenchGoal::AT_MOST);
    std::vector<std::u16string> paths;
    for (u32 i = 0; i < 1000; i++) {
        paths.push_back(folder + u"/burst " + FromUtf8(std::to_string(i)) + u".VD");
        std::ofstream(ToUtf8(paths.back())) << bench::PresetText(&dwState);
    }
    const double fBurst = MillisecondsUntil([&] { return std::all_of(paths.begin(), paths.end(), IsSummarized); });
    ReportFigure((sName + "1000 new files in the table after").c_str(), fBurst, 2000, "ms", BenchGoal::AT_MOST);
    FreePresetLibrary();
}

void Measure(const bench::fs::path &folder, u32 nPresets)
{
    const std::string sName = "PresetLibrary/" + std::to_string(nPresets) + " presets, ";
    const std::string sPath = (folder / std::to_string(nPresets)).string();
    bench::MakePresetFolder(sPath, nPresets);
    ReportPasses(sName, sPath, nPresets);
    ReportMemory(sName, FromUtf8(sPath), nPresets);
    ReportSearch(sName, nPresets);
    if (nPresets > 10000)
        return;
    ReportFrames(sName, FromUtf8(sPath));
    ReportWatch(sName, FromUtf8(sPath));
}

} // namespace

int main()
{
    const BenchFolder own;
    const bench::fs::path &folder = own.Path();
    bench::LoadManyModules(folder / "DLL", 64);
    PrepareSummaries();
    ReportRescans(folder / "rescans");
    for (u32 nPresets : {10000u, 50000u})
        Measure(folder, nPresets);
    FreePresetLibrary();
    UnloadModules();
    return 0;
}
