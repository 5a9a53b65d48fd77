#include "orvctl/screen/Explainer.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

extern char** environ; // NOLINT(readability-redundant-declaration): not every system declares it

namespace orv {

namespace {

constexpr std::size_t longestAnswer = 1 << 20;

std::vector<char*> argumentPointers(std::vector<std::string>& arguments)
{
    std::vector<char*> pointers;
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The error number, 0 for none. The child reads nothing, and writes both outputs to `output`.
int spawn(pid_t& child, std::vector<std::string> arguments, int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    const auto pointers = argumentPointers(arguments);
    const int error = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

void Explainer::ask(const std::string& subject, const std::vector<std::string>& options)
{
    end();
    answer.clear();
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0)
        return;
    for (const int each : ends)
        fcntl(each, F_SETFD, FD_CLOEXEC);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    output = FileDescriptor(ends[0]);
    const FileDescriptor input(ends[1]);
    std::vector<std::string> arguments{orvctl, "explain"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"--", subject});
    if (const int error = spawn(child, std::move(arguments), input.get()); error != 0) {
        child = 0;
        answer = orvctl + ": " + std::strerror(error) + '\n';
    }
}

std::optional<std::string> Explainer::take()
{
    std::array<char, 4096> part{};
    for (;;) {
        const auto length = read(output.get(), part.data(), part.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0 && errno == EAGAIN)
            return std::nullopt;
        if (length <= 0 || answer.size() > longestAnswer)
            break;
        answer.append(part.data(), static_cast<std::size_t>(length));
    }
    end();
    return std::exchange(answer, {});
}

void Explainer::end()
{
    output.reset();
    if (child == 0)
        return;
    kill(child, SIGKILL); // one that has ended waits to be asked for
    waitpid(std::exchange(child, 0), nullptr, 0);
}

} // namespace orv
