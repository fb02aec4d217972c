// Signals.cpp -- termination signals as data
#include "platform/Signals.h"

#include <atomic>
#include <csignal>
#include <sys/signalfd.h>

namespace {

std::atomic<bool> bTermination = false;

void NoteTermination(int nSignal)
{
    bTermination = true;
    std::signal(nSignal, SIG_DFL);
}

sigset_t TerminationSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

void BlockTerminationSignals()
{
    const sigset_t set = TerminationSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

int OpenTerminationSignals()
{
    const sigset_t set = TerminationSignals();
    return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

void NoteTerminationSignals()
{
    for (const int nSignal : {SIGINT, SIGTERM})
        if (std::signal(nSignal, NoteTermination) == SIG_IGN)
            std::signal(nSignal, SIG_IGN); // as whoever started the program wants it
}

bool TerminationWasAsked()
{
    return bTermination;
}

void IgnoreWriteSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}
