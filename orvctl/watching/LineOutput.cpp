#include "orvctl/watching/LineOutput.h"

#include "base/ReplacedFile.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <thread>

namespace orv {

bool LineOutput::write(const std::string& text)
{
    if (writeWhole(STDOUT_FILENO, text))
        return true;
    if (errno != EPIPE)
        fault = std::string("cannot write: ") + std::strerror(errno);
    return false;
}

namespace {

sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    for (const int mayBeIgnored : {SIGHUP, SIGQUIT}) {
        struct sigaction action{};
        if (sigaction(mayBeIgnored, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            sigaddset(&signals, mayBeIgnored); // not as under nohup
    }
    return signals;
}

// SIGQUIT asks for a core, which only its own end leaves.
[[noreturn]] void endBy(int arrived)
{
    if (arrived == SIGQUIT) {
        sigset_t quit;
        sigemptyset(&quit);
        sigaddset(&quit, SIGQUIT);
        pthread_sigmask(SIG_UNBLOCK, &quit, nullptr);
        raise(SIGQUIT);
    }
    std::_Exit(0);
}

} // namespace

// A thread of its own: the others may be waiting for a reader, or for a program that was started.
void endOnSignals(void (*clean)())
{
    signal(SIGPIPE, SIG_IGN);
    const auto signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals, clean] {
        int arrived = 0;
        sigwait(&signals, &arrived);
        clean();
        endBy(arrived);
    }).detach();
}

} // namespace orv
