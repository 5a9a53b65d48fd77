#include "orvctl/screen/HeldOutput.h"

#include "base/Fatal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

namespace orv {

namespace {

FileDescriptor fileInMemory()
{
#ifdef MFD_CLOEXEC
    return FileDescriptor(memfd_create("picture", MFD_CLOEXEC));
#else
    return FileDescriptor();
#endif
}

// A terminal may be set not to wait by a program that shares it.
bool waitFor(int terminal)
{
    pollfd awaited{terminal, POLLOUT, 0};
    return errno == EINTR || (errno == EAGAIN && poll(&awaited, 1, -1) > 0);
}

void writeAll(int terminal, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = write(terminal, bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0 || !waitFor(terminal))
            return; // it has gone
    }
}

} // namespace

HeldOutput::HeldOutput()
    : terminal(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0))
    , held(fileInMemory())
    , written(fdopen(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0), "w"))
{
    if (!terminal || !written)
        fatalError("no descriptor is left for the terminal");
}

HeldOutput::~HeldOutput()
{
    std::fclose(written);
}

void HeldOutput::hold()
{
    if (held)
        dup2(held.get(), fileno(written));
}

void HeldOutput::send()
{
    if (!held)
        return;
    dup2(terminal.get(), fileno(written));
    fcntl(fileno(written), F_SETFD, FD_CLOEXEC);
    const auto size = lseek(held.get(), 0, SEEK_CUR);
    std::string bytes(static_cast<std::size_t>(std::max<off_t>(size, 0)), '\0');
    const auto count = pread(held.get(), bytes.data(), bytes.size(), 0);
    writeAll(terminal.get(), std::string_view(bytes).substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0))));
    lseek(held.get(), 0, SEEK_SET);
}

} // namespace orv
