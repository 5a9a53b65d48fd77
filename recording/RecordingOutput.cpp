#include "recording/RecordingOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <tuple>
#include <utility>

namespace orv {

namespace {

constexpr mode_t permissions = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

} // namespace

RecordingOutput::RecordingOutput(std::string path, WritingMode writingMode, bool mayReplace)
    : place(std::move(path))
    , mode(writingMode)
    , replaces(mayReplace)
{
}

bool RecordingOutput::open()
{
    if (mode == WritingMode::toStandardOutput)
        return true;
    struct stat status{};
    const bool isThere = ::lstat(place.c_str(), &status) == 0;
    if (isThere && !replaces) {
        errno = EEXIST;
        return fail();
    }
    // A device, a pipe or a link in the file's place is written to, and never moved away.
    if (mode == WritingMode::lineByLine || (isThere && !S_ISREG(status.st_mode))) {
        const int existing = replaces ? O_TRUNC : O_EXCL;
        file = FileDescriptor(::open(place.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_APPEND | existing, permissions));
        return file || fail();
    }
    const auto mask = ::umask(0);
    ::umask(mask);
    return beside.emplace(place).open(permissions & ~mask) || fail();
}

void RecordingOutput::write(std::string_view text)
{
    if (!firstFault.empty())
        return;
    const int descriptor = mode == WritingMode::toStandardOutput ? STDOUT_FILENO : file.get();
    if (beside ? beside->write(text) : writeWhole(descriptor, text)) {
        size += static_cast<off_t>(text.size());
        return;
    }
    fail();
    // A pipe or a device cannot be cut, nor need it be.
    if (file)
        std::ignore = ::ftruncate(file.get(), size);
}

bool RecordingOutput::isRead()
{
    pollfd reader{STDOUT_FILENO, 0, 0};
    if (mode != WritingMode::toStandardOutput || poll(&reader, 1, 0) <= 0 || (reader.revents & POLLERR) == 0)
        return true;
    errno = EPIPE;
    return fail();
}

void RecordingOutput::finish()
{
    if (firstFault.empty() && beside && !beside->moveToPlace(replaces))
        fail();
}

bool RecordingOutput::fail()
{
    fileIsInTheWay = errno == EEXIST && !replaces;
    if (firstFault.empty()) {
        firstFault = mode == WritingMode::toStandardOutput ? "cannot write" : place;
        firstFault +=
            fileIsInTheWay ? ": is there already (--force replaces it)" : std::string(": ") + std::strerror(errno);
    }
    return false;
}

} // namespace orv
