#include "orvctl/watching/LineOutput.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

namespace orv {

bool LineOutput::write(const std::string& text)
{
    for (std::string_view rest = text; !rest.empty();) {
        const auto written = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            if (errno != EPIPE)
                fault = std::string("cannot write: ") + std::strerror(errno);
            return false;
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// A thread of its own: the others may be waiting for a reader, or for a program that was started.
void endOnSignals(void (*clean)())
{
    signal(SIGPIPE, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int ending : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, ending);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals, clean] {
        int arrived = 0;
        sigwait(&signals, &arrived);
        clean();
        std::_Exit(0);
    }).detach();
}

} // namespace orv
