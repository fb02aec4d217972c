// StartUp_qt_bench.cpp -- from the start of the program to its first frame, against an empty window of the toolkit
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"
#include "bench/OwnScreen.h"
#include "bench/PresetFolder.h"

#include <QApplication>
#include <QWidget>

#include <string>

namespace {

constexpr unsigned STARTS = 21;
constexpr u32 PRESETS = 10000;
constexpr double START_GOAL_MS = 150;

class EmptyWindow : public QWidget {
  protected:
    void paintEvent(QPaintEvent *) override
    {
        std::puts("first frame");
        std::fflush(stdout);
        QCoreApplication::exit();
    }
};

int ShowEmptyWindow(int argc, char **argv)
{
    QApplication app(argc, argv);
    EmptyWindow window;
    window.resize(1280, 720);
    window.show();
    return QApplication::exec();
}

// Milliseconds from the start of a program to its first line.
struct StartTime {
    double fWall;
    double fMainThread; // processor time: what a busy machine does not stretch
};

double MainThreadMs(pid_t pid)
{
    const std::string sPath = "/proc/" + std::to_string(pid) + "/schedstat";
    long long nNs = 0;
    if (FILE *pFile = std::fopen(sPath.c_str(), "r")) {
        if (std::fscanf(pFile, "%lld", &nNs) != 1)
            nNs = 0;
        std::fclose(pFile);
    }
    return static_cast<double>(nNs) / 1e6;
}

// Ends the benchmark if the line never comes.
StartTime TimeFirstLine(const std::vector<const char *> &apszArgument)
{
    int fdOutput;
    const auto tStart = std::chrono::steady_clock::now();
    const pid_t pid = bench::StartReading(apszArgument, &fdOutput);
    char szLine[16] = {};
    const ssize_t cb = read(fdOutput, szLine, sizeof szLine - 1);
    const std::chrono::duration<double, std::milli> dTaken = std::chrono::steady_clock::now() - tStart;
    const double fMainThread = MainThreadMs(pid);
    close(fdOutput);
    waitpid(pid, nullptr, 0);
    if (cb > 0 && std::strncmp(szLine, "first", 5) == 0)
        return {dTaken.count(), fMainThread};
    std::fprintf(stderr, "%s showed no frame\n", apszArgument[0]);
    std::exit(1);
}

// One entry a round.
struct Starts {
    void Add(const StartTime &start)
    {
        afWall.push_back(start.fWall);
        afMainThread.push_back(start.fMainThread);
    }
    std::vector<double> afWall, afMainThread;
};

void ReportShare(const char *pszName, const Starts &with, const Starts &without)
{
    ReportFigure(pszName, Median(with.afMainThread) - Median(without.afMainThread), 0, "ms", BenchGoal::NONE);
}

bool ReportStarts(const Starts &empty, const Starts &program, const Starts &noMain)
{
    const bool bMet =
        ReportFigure("StartUp/first frame beyond an empty window", Median(program.afWall) - Median(empty.afWall),
                     START_GOAL_MS, "ms", BenchGoal::AT_MOST);
    ReportFigure("StartUp/first frame over an empty window", MedianRatio(program.afWall, empty.afWall), 0, "x",
                 BenchGoal::NONE);
    ReportFigure("StartUp/first frame without the main window, beyond", Median(noMain.afWall) - Median(empty.afWall), 0,
                 "ms", BenchGoal::NONE);
    ReportFigure("StartUp/an empty window", Median(empty.afWall), 0, "ms", BenchGoal::NONE);
    ReportFigure("StartUp/main thread of an empty window", Median(empty.afMainThread), 0, "ms", BenchGoal::NONE);
    ReportShare("StartUp/main thread beyond it", program, empty);
    ReportShare("StartUp/main thread for the main window", program, noMain);
    return bMet;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--empty-window") == 0)
        return ShowEmptyWindow(argc, argv);
    const BenchFolder folder;
    bench::MakePresetFolder(folder.Path() / "Presets", PRESETS);
    const std::string sData = folder.Path().string();
    const pid_t pidScreen = bench::StartScreen();
    setenv("VD_END_AT_FIRST_FRAME", "1", 1);
    constexpr const char *PROGRAM = PROGRAM_FOLDER "/vorticade";
    Starts empty, program, noMain;
    for (unsigned i = 0; i <= STARTS; i++) {
        if (i == 1) // the first round warms the file cache
            empty = program = noMain = {};
        empty.Add(TimeFirstLine({argv[0], "--empty-window", nullptr}));
        program.Add(TimeFirstLine({PROGRAM, "--data", sData.c_str(), nullptr}));
        noMain.Add(TimeFirstLine({PROGRAM, "--data", sData.c_str(), "--no-main", nullptr}));
    }
    bench::StopScreen(pidScreen);
    return ReportStarts(empty, program, noMain) ? 0 : 1;
}
