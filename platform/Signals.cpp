// Signals.cpp -- termination signals as data
#include "platform/Signals.h"

#include <csignal>
#include <sys/signalfd.h>

namespace {

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
