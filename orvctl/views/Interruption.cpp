#include "orvctl/views/Interruption.h"

#include <csignal>

namespace orv {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note(int)
{
    interrupted = 1;
}

void handle(void (*handler)(int))
{
    std::signal(SIGINT, handler);
    std::signal(SIGTERM, handler);
    if (std::signal(SIGHUP, handler) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN); // as under nohup
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
}

bool Interruption::hasCome() const
{
    return interrupted != 0;
}

} // namespace orv
