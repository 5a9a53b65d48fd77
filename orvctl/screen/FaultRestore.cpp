#include "orvctl/screen/FaultRestore.h"

#include "orvctl/screen/Curses.h"
#include "orvctl/screen/HeldComplaints.h"

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
    const char* const text = tigetstr(name);
    if (!text || text == reinterpret_cast<const char*>(-1))
        return;
    const auto length = std::strlen(text);
    if (endingLength + length > ending.size())
        return;
    std::memcpy(ending.data() + endingLength, text, length);
    endingLength += length;
}

// The screen's library may be in the middle of anything.
void giveBack(int signal)
{
    [[maybe_unused]] const auto written = write(STDOUT_FILENO, ending.data(), endingLength);
    tcsetattr(STDIN_FILENO, TCSANOW, &modesBefore);
    heldComplaints->release();
    raise(signal); // which by now does what it does by itself
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
    struct sigaction action{};
    action.sa_handler = giveBack;
    action.sa_flags = SA_RESETHAND | SA_NODEFER;
    for (const int fault : faults)
        sigaction(fault, &action, nullptr);
}

void forgetTerminal()
{
    for (const int fault : faults)
        signal(fault, SIG_DFL);
}

} // namespace orv
