#include "base/ReplacedFile.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orv {

namespace {

constexpr mode_t readableByAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

// A link fails where something stands; a rename takes its place.
bool move(const std::string& from, const std::string& to, bool replaces)
{
    if (replaces)
        return std::rename(from.c_str(), to.c_str()) == 0;
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

// Not waited for: a pipe that nobody reads must not stop the caller.
bool writeInPlace(const std::string& path, std::string_view text)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    return file && writeWhole(file.get(), text);
}

bool replace(const std::string& path, std::string_view text)
{
    ReplacedFile file(path);
    return file.open(readableByAll) && file.write(text) && file.moveToPlace(true);
}

bool replaceWhatStandsAt(const std::string& path, std::string_view text)
{
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0)
        return replace(path, text);
    if (!S_ISREG(status.st_mode))
        return writeInPlace(path, text);
    std::error_code error;
    const auto place = std::filesystem::canonical(path, error);
    return replace(error ? path : place.string(), text);
}

} // namespace

ReplacedFile::ReplacedFile(std::string givenPlace)
    : place(std::move(givenPlace))
{
}

ReplacedFile::~ReplacedFile()
{
    const int fault = errno; // of what failed, and is asked for once this is gone
    if (!beside.empty())
        ::unlink(beside.c_str());
    errno = fault;
}

bool ReplacedFile::open(mode_t permissions)
{
    auto path = place + ".XXXXXX";
    file = FileDescriptor(::mkostemp(path.data(), O_CLOEXEC));
    if (!file)
        return false;
    beside = std::move(path);
    return ::fchmod(file.get(), permissions) == 0;
}

bool ReplacedFile::write(std::string_view text)
{
    return writeWhole(file.get(), text);
}

bool ReplacedFile::moveToPlace(bool replaces)
{
    if (::fsync(file.get()) != 0 || !move(beside, place, replaces))
        return false;
    beside.clear();
    return true;
}

bool writeWhole(int descriptor, std::string_view text)
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

std::string replaceFile(const std::string& path, std::string_view text)
{
    return replaceWhatStandsAt(path, text) ? std::string() : path + ": " + std::strerror(errno);
}

} // namespace orv
