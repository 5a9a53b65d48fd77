#include "orvctl/screen/FaultRestore.h"

#include "orvctl/screen/Curses.h"
#include "orvctl/screen/HeldComplaints.h"

#include <fcntl.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace orv {

namespace {

constexpr std::array faults{SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGQUIT, SIGSYS};

termios modesBefore{};
HeldComplaints* heldComplaints = nullptr;
std::array<char, 512> ending{};
std::size_t endingLength = 0;

void addCapability(const char* name)
{
    const char* const text = capability(name);
    if (!text)
        return;
    const auto length = std::strlen(text);
    if (endingLength + length > ending.size())
        return;
    std::memcpy(ending.data() + endingLength, text, length);
    endingLength += length;
}

// The screen's library may be in the middle of anything, and the terminal may take nothing.
void giveBack()
{
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    tcflush(STDOUT_FILENO, TCOFLUSH);
    fcntl(STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK);
    [[maybe_unused]] const auto written = write(STDOUT_FILENO, ending.data(), endingLength);
    fcntl(STDOUT_FILENO, F_SETFL, flags);
    tcsetattr(STDIN_FILENO, TCSANOW, &modesBefore);
    heldComplaints->release();
}

void endByFault(int signal)
{
    giveBack();
    raise(signal); // which by now does what it does by itself
}

void endLate(int)
{
    giveBack();
    _exit(0);
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    sigaction(signal, &action, nullptr);
}

} // namespace

void rememberTerminal()
{
    tcgetattr(STDIN_FILENO, &modesBefore);
}

void restoreTerminalAtFaults(HeldComplaints& complaints)
{
    heldComplaints = &complaints;
    endingLength = 0;
    for (const auto* capability : {"sgr0", "op", "cnorm", "rmkx", "rmcup"})
        addCapability(capability);
    for (const int fault : faults)
        handle(fault, endByFault);
    handle(SIGALRM, endLate);
}

void forgetTerminal()
{
    alarm(0);
    for (const int fault : faults)
        signal(fault, SIG_DFL);
}

} // namespace orv
