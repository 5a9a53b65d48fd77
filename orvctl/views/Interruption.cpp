#include "orvctl/views/Interruption.h"

#include <csignal>
#include <initializer_list>

namespace orv {

namespace {

volatile std::sig_atomic_t interrupted = 0; // by this signal

// Who asks to quit a second time does not wait for the program to hear of it.
void note(int signal)
{
    interrupted = signal;
    if (signal == SIGQUIT)
        std::signal(SIGQUIT, SIG_DFL);
}

void handle(void (*handler)(int))
{
    std::signal(SIGINT, handler);
    std::signal(SIGTERM, handler);
    for (const int mayBeIgnored : {SIGHUP, SIGQUIT}) {
        if (std::signal(mayBeIgnored, handler) == SIG_IGN)
            std::signal(mayBeIgnored, SIG_IGN); // as under nohup
    }
}

} // namespace

Interruption::Interruption()
{
    interrupted = 0;
    handle(note);
    std::signal(SIGPIPE, SIG_IGN);
}

Interruption::~Interruption()
{
    handle(SIG_DFL);
    std::signal(SIGPIPE, SIG_DFL);
    if (interrupted == SIGQUIT)
        std::raise(SIGQUIT); // its end is asked for, with a core
}

bool Interruption::hasCome() const
{
    return interrupted != 0;
}

} // namespace orv
