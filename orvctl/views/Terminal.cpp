#include "orvctl/views/Terminal.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orv {

Colour terminalColour()
{
    const char* noColour = std::getenv("NO_COLOR");
    const bool isRefused = noColour && *noColour;
    return isatty(STDOUT_FILENO) && !isRefused ? Colour::on : Colour::off;
}

int print(const std::string& text)
{
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return isWritten ? 0 : complain(std::string("cannot write: ") + std::strerror(errno), 1);
}

int complain(const std::string& reason, int status)
{
    std::fprintf(stderr, "orvctl: %s\n", reason.c_str());
    return status;
}

} // namespace orv
