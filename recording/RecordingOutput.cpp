#include "recording/RecordingOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

namespace orv {

namespace {

constexpr mode_t permissions = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

// A link fails where something stands; a rename takes its place.
bool move(const std::string& from, const std::string& to, bool replaces)
{
    if (replaces)
        return std::rename(from.c_str(), to.c_str()) == 0;
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const auto count = ::write(descriptor, text.data(), text.size());
        if (count >= 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

RecordingOutput::RecordingOutput(std::string path, WritingMode writingMode, bool mayReplace)
    : place(std::move(path))
    , mode(writingMode)
    , replaces(mayReplace)
{
}

RecordingOutput::~RecordingOutput()
{
    if (!unfinished.empty())
        ::unlink(unfinished.c_str());
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
    auto beside = place + ".XXXXXX";
    file = FileDescriptor(::mkostemp(beside.data(), O_CLOEXEC));
    if (!file)
        return fail();
    unfinished = std::move(beside);
    const auto mask = ::umask(0);
    ::umask(mask);
    return ::fchmod(file.get(), permissions & ~mask) == 0 || fail();
}

void RecordingOutput::write(std::string_view text)
{
    if (!firstFault.empty())
        return;
    if (writeAll(mode == WritingMode::toStandardOutput ? STDOUT_FILENO : file.get(), text)) {
        size += static_cast<off_t>(text.size());
        return;
    }
    fail();
    // A pipe or a device cannot be cut, nor need it be.
    if (mode != WritingMode::toStandardOutput)
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
    if (!firstFault.empty() || unfinished.empty())
        return;
    if (::fsync(file.get()) != 0 || !move(unfinished, place, replaces)) {
        fail();
        return;
    }
    unfinished.clear();
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
