#include "linux/SpawnLauncher.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <optional>
#include <system_error>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t largestOutput = 64u << 20;

/// posix_spawn's file actions: null device in, the given file out.
class ChildFiles {
public:
    explicit ChildFiles(int output)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    }
    ChildFiles(const ChildFiles&) = delete;
    ChildFiles& operator=(const ChildFiles&) = delete;
    ~ChildFiles() { posix_spawn_file_actions_destroy(&actions); }

    posix_spawn_file_actions_t actions;
};

/// posix_spawn's attributes: no signal blocked and none ignored, whatever the launching thread does with them.
class ChildSignals {
public:
    ChildSignals()
    {
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ChildSignals(const ChildSignals&) = delete;
    ChildSignals& operator=(const ChildSignals&) = delete;
    ~ChildSignals() { posix_spawnattr_destroy(&attributes); }

    posix_spawnattr_t attributes;
};

std::optional<pid_t> spawn(const LaunchedProgram& program, const std::vector<std::string>& arguments, int output)
{
    std::vector<char*> words{const_cast<char*>(program.path.c_str())};
    const auto further = program.furtherArguments ? program.furtherArguments() : std::vector<std::string>();
    for (const auto* list : {&arguments, &program.arguments, &further}) {
        for (const auto& argument : *list)
            words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);

    const ChildFiles files(output);
    const ChildSignals signals;
    pid_t child = 0;
    const int error =
        posix_spawn(&child, program.path.c_str(), &files.actions, &signals.attributes, words.data(), environ);
    return error == 0 ? std::optional(child) : std::nullopt;
}

bool isReadable(int file)
{
    pollfd waited{file, POLLIN, 0};
    return poll(&waited, 1, 0) > 0;
}

/// Waits for the child and reaps it; false when it was killed because everything stops.
bool waitForExit(pid_t child, int stopping)
{
    // Where the kernel has no pidfd the wait below blocks, which only a stop would notice.
    const FileDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    pollfd waited[]{{process.get(), POLLIN, 0}, {stopping, POLLIN, 0}};
    while (process && poll(waited, 2, -1) < 0 && errno == EINTR) { }
    const bool isStopped = waited[1].revents != 0;
    if (isStopped)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
    return !isStopped;
}

std::string content(int file)
{
    const auto end = lseek(file, 0, SEEK_END);
    std::string bytes(std::min(end < 0 ? 0 : static_cast<std::size_t>(end), largestOutput), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto count = pread(file, bytes.data() + filled, bytes.size() - filled, static_cast<off_t>(filled));
        if (count <= 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

} // namespace

SpawnLauncher::SpawnLauncher(std::map<std::string, LaunchedProgram> programs)
    : substitutes(std::move(programs))
    , stopping(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!stopping)
        throw std::system_error(errno, std::generic_category(), "cannot create an event descriptor");
}

void SpawnLauncher::start(
    const std::string& path, const std::vector<std::string>& arguments, std::function<void(std::string output)> onExit)
{
    const auto substitute = substitutes.find(path);
    const auto program = substitute == substitutes.end() ? LaunchedProgram{path, {}} : substitute->second;
    const FileDescriptor output(memfd_create("output", MFD_CLOEXEC));
    if (!output || isReadable(stopping.get()))
        return;
    const auto child = spawn(program, arguments, output.get());
    if (child && waitForExit(*child, stopping.get()))
        onExit(content(output.get()));
}

void SpawnLauncher::run(const std::string& path)
{
    const FileDescriptor output(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    if (!output || isReadable(stopping.get()))
        return;
    if (const auto child = spawn({path, {}}, {}, output.get()))
        waitForExit(*child, stopping.get());
}

void SpawnLauncher::stop()
{
    eventfd_write(stopping.get(), 1);
}

} // namespace orv
