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

// Milliseconds until the program writes its first line; ends the benchmark if it never does.
double TimeFirstLine(const std::vector<const char *> &apszArgument)
{
    int fdOutput;
    const auto tStart = std::chrono::steady_clock::now();
    const pid_t pid = bench::StartReading(apszArgument, &fdOutput);
    char szLine[16] = {};
    const ssize_t cb = read(fdOutput, szLine, sizeof szLine - 1);
    const std::chrono::duration<double, std::milli> dTaken = std::chrono::steady_clock::now() - tStart;
    close(fdOutput);
    waitpid(pid, nullptr, 0);
    if (cb > 0 && std::strncmp(szLine, "first", 5) == 0)
        return dTaken.count();
    std::fprintf(stderr, "%s showed no frame\n", apszArgument[0]);
    std::exit(1);
}

// Makes the data folder of the programs that are started.
struct Starts {
    std::vector<double> afEmpty, afProgram, afNoMain;
};

Starts TimeStarts(const char *pszSelf, const char *pszData)
{
    constexpr const char *PROGRAM = PROGRAM_FOLDER "/vorticade";
    Starts starts;
    for (unsigned i = 0; i <= STARTS; i++) { // the first round warms the file cache
        const double fEmpty = TimeFirstLine({pszSelf, "--empty-window", nullptr});
        const double fProgram = TimeFirstLine({PROGRAM, "--data", pszData, nullptr});
        const double fNoMain = TimeFirstLine({PROGRAM, "--data", pszData, "--no-main", nullptr});
        if (i == 0)
            continue;
        starts.afEmpty.push_back(fEmpty);
        starts.afProgram.push_back(fProgram);
        starts.afNoMain.push_back(fNoMain);
    }
    return starts;
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
    const Starts starts = TimeStarts(argv[0], sData.c_str());
    bench::StopScreen(pidScreen);

    const double fProgram = Median(starts.afProgram), fNoMain = Median(starts.afNoMain);
    const bool bMet = ReportFigure("StartUp/first frame beyond an empty window", fProgram - Median(starts.afEmpty),
                                   START_GOAL_MS, "ms", BenchGoal::AT_MOST);
    ReportFigure("StartUp/first frame over an empty window", MedianRatio(starts.afProgram, starts.afEmpty), 0, "x",
                 BenchGoal::NONE);
    ReportFigure("StartUp/an empty window", Median(starts.afEmpty), 0, "ms", BenchGoal::NONE);
    ReportFigure("StartUp/the main window's share", fProgram - fNoMain, 0, "ms", BenchGoal::NONE);
    return bMet ? 0 : 1;
}
