#include "base/ReplacedFile.h"

#include <fcntl.h>
#include <sys/file.h>

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

// Hidden, and without the ending by which others know the place's kind.
std::string nameBeside(const std::string& place)
{
    const auto name = place.rfind('/') + 1; // 0 without a folder
    return place.substr(0, name) + '.' + place.substr(name) + ".orv~";
}

bool isNamed(const FileDescriptor& file, const std::string& path)
{
    struct stat opened{};
    struct stat named{};
    return ::fstat(file.get(), &opened) == 0 && ::lstat(path.c_str(), &named) == 0 && opened.st_dev == named.st_dev
        && opened.st_ino == named.st_ino;
}

// Who holds the lock of what has the name writes it, and alone removes it or moves it away. The kernel takes the lock
// from a writer that is killed.
bool lock(const FileDescriptor& file)
{
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

void removeAbandoned(const std::string& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && lock(file) && isNamed(file, path))
        ::unlink(path.c_str());
}

// None while another writes it, nor when another took it for abandoned before it was locked.
FileDescriptor createAnew(const std::string& path)
{
    removeAbandoned(path);
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file && ((!lock(file) && errno == EWOULDBLOCK) || !isNamed(file, path)))
        file.reset();
    return file;
}

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
    auto path = nameBeside(place);
    file = createAnew(path);
    if (!file) {
        path = place + ".XXXXXX";
        file = FileDescriptor(::mkostemp(path.data(), O_CLOEXEC));
    }
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
