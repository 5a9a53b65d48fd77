#include "orvctl/screen/Signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace orv {

namespace {

constexpr std::array noted{SIGINT, SIGTERM, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH};

constexpr unsigned patience = 3; // seconds

volatile sig_atomic_t pipeEnd = -1;

// A program that waits for a terminal which takes nothing hears of no signal: then the alarm ends it.
void note(int signal)
{
    const int before = errno;
    if (signal == SIGINT || signal == SIGTERM || signal == SIGHUP)
        alarm(patience);
    const auto which = static_cast<unsigned char>(signal);
    // A pipe that is full holds enough of them already.
    [[maybe_unused]] const auto written = write(static_cast<int>(pipeEnd), &which, 1);
    errno = before;
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action{};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

void setNonblocking(int descriptor)
{
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

Signals::Signals()
{
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0)
        return;
    arriving = FileDescriptor(ends[0]);
    noting = FileDescriptor(ends[1]);
    setNonblocking(ends[0]);
    setNonblocking(ends[1]);
    pipeEnd = ends[1];
    for (const int signal : noted)
        handle(signal, note);
    handle(SIGPIPE, SIG_IGN);
}

Signals::~Signals()
{
    for (const int signal : noted)
        handle(signal, SIG_DFL);
    pipeEnd = -1;
}

std::vector<int> Signals::take()
{
    std::array<unsigned char, 64> signals{};
    const auto count = read(arriving.get(), signals.data(), signals.size());
    return count > 0 ? std::vector<int>(signals.begin(), signals.begin() + count) : std::vector<int>();
}

void Signals::stop()
{
    handle(SIGTSTP, SIG_DFL);
    raise(SIGTSTP);
    handle(SIGTSTP, note);
}

} // namespace orv
