// StartUp_qt_bench.cpp -- from the start of the program to its first frame, against an empty window of the toolkit
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"

#include <QApplication>
#include <QWidget>

#include <csignal>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned STARTS = 21;
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

// Starts a program whose standard output is the pipe's write end.
pid_t Start(const std::vector<const char *> &apszArgument, int fdOutput, int fdOther)
{
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    dup2(fdOutput, STDOUT_FILENO);
    close(fdOutput);
    close(fdOther);
    execvp(apszArgument[0], const_cast<char *const *>(apszArgument.data()));
    _exit(127);
}

// Milliseconds until the program writes its first line; ends the benchmark if it never does.
double TimeFirstLine(const std::vector<const char *> &apszArgument)
{
    int afd[2];
    if (pipe(afd) != 0)
        std::exit(1);
    const auto tStart = std::chrono::steady_clock::now();
    const pid_t pid = Start(apszArgument, afd[1], afd[0]);
    close(afd[1]);
    char szLine[16] = {};
    const ssize_t cb = read(afd[0], szLine, sizeof szLine - 1);
    const std::chrono::duration<double, std::milli> dTaken = std::chrono::steady_clock::now() - tStart;
    close(afd[0]);
    waitpid(pid, nullptr, 0);
    if (cb > 0 && std::strncmp(szLine, "first", 5) == 0)
        return dTaken.count();
    std::fprintf(stderr, "%s showed no frame\n", apszArgument[0]);
    std::exit(1);
}

// A screen of its own for the benchmark. Returns the server's process.
pid_t StartScreen()
{
    int afd[2];
    if (pipe(afd) != 0)
        std::exit(1);
    const pid_t pid = Start({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1000x24", nullptr}, afd[1], afd[0]);
    close(afd[1]);
    char szDisplay[16] = ":";
    const ssize_t cb = read(afd[0], szDisplay + 1, sizeof szDisplay - 2);
    if (cb <= 0) {
        std::fprintf(stderr, "Xvfb does not start\n");
        std::exit(1);
    }
    szDisplay[std::strcspn(szDisplay, "\n")] = 0;
    setenv("DISPLAY", szDisplay, 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("VD_END_AT_FIRST_FRAME", "1", 1);
    return pid;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--empty-window") == 0)
        return ShowEmptyWindow(argc, argv);
    const pid_t pidScreen = StartScreen();
    const BenchFolder folder;
    const std::string sData = folder.Path().string();
    std::vector<double> afProgram, afEmpty;
    for (unsigned i = 0; i <= STARTS; i++) { // the first round warms the file cache
        const double fEmpty = TimeFirstLine({argv[0], "--empty-window", nullptr});
        const double fProgram = TimeFirstLine({PROGRAM_FOLDER "/vorticade", "--data", sData.c_str(), nullptr});
        if (i > 0) {
            afEmpty.push_back(fEmpty);
            afProgram.push_back(fProgram);
        }
    }
    kill(pidScreen, SIGTERM);
    waitpid(pidScreen, nullptr, 0);
    ReportFigure("StartUp/first frame beyond an empty window", Median(afProgram) - Median(afEmpty), START_GOAL_MS, "ms",
                 BenchGoal::AT_MOST);
    ReportFigure("StartUp/first frame over an empty window", MedianRatio(afProgram, afEmpty), 0, "x", BenchGoal::NONE);
    return 0;
}
