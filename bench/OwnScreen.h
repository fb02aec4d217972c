// OwnScreen.h -- starting programs and reading what they say, and a screen of its own for a benchmark
#pragma once

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace bench {

// Starts a program whose standard output is the pipe's write end.
inline pid_t Start(const std::vector<const char *> &apszArgument, int fdOutput, int fdOther)
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

// The same with a pipe made for it; *pfdOutput is its read end.
inline pid_t StartReading(const std::vector<const char *> &apszArgument, int *pfdOutput)
{
    int afd[2];
    if (pipe(afd) != 0)
        std::exit(1);
    const pid_t pid = Start(apszArgument, afd[1], afd[0]);
    close(afd[1]);
    *pfdOutput = afd[0];
    return pid;
}

// Runs an X server and makes it the display of this program and of those that it starts. Returns the server's process.
inline pid_t StartScreen()
{
    int fdOutput;
    const pid_t pid = StartReading({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1000x24", nullptr}, &fdOutput);
    char szDisplay[16] = ":";
    const ssize_t cb = read(fdOutput, szDisplay + 1, sizeof szDisplay - 2);
    if (cb <= 0) {
        std::fprintf(stderr, "Xvfb does not start\n");
        std::exit(1);
    }
    szDisplay[std::strcspn(szDisplay, "\n")] = 0;
    setenv("DISPLAY", szDisplay, 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    return pid;
}

inline void StopScreen(pid_t pid)
{
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
}

} // namespace bench
