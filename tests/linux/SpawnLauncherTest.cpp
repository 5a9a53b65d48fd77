#include "linux/SpawnLauncher.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <optional>
#include <thread>

using namespace orv;

namespace {

struct Launcher : testing::Test {
    SpawnLauncher launcher{{{"/usr/sbin/nothing", {"/bin/sh", {"42"}}}}};

    std::optional<std::string> outputOf(const std::string& script, const std::string& path = "/bin/sh")
    {
        std::optional<std::string> result;
        int exits = 0;
        launcher.start(path, {"-c", script}, [&](std::string output) {
            result = std::move(output);
            ++exits;
        });
        EXPECT_EQ(exits, result ? 1 : 0);
        return result;
    }
};

std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

} // namespace

TEST_F(Launcher, GivesAllOutputOfAChildThatHasEnded)
{
    EXPECT_EQ(outputOf("echo one; sleep 0.05; echo two; exit 3"), "one\ntwo\n");
    EXPECT_EQ(outputOf("true"), "");
    EXPECT_EQ(outputOf("echo one; kill -9 $$"), "one\n");
    EXPECT_EQ(outputOf("head -c 5000000 /dev/zero")->size(), 5000000u); // far more than a pipe holds
    EXPECT_EQ(outputOf("head -c 67108865 /dev/zero")->size(), 67108864u); // cut: a child may write without end
    EXPECT_EQ(outputOf("cat"), ""); // nothing to read
    EXPECT_EQ(outputOf("exec >&-; sleep 0.05"), "");
}

TEST_F(Launcher, PassesTheEnvironmentOnAndAddsArguments)
{
    setenv("ORV_INHERITED", "yes", 1);
    EXPECT_EQ(outputOf("echo $ORV_INHERITED$0", "/usr/sbin/nothing"), "yes42\n");
}

TEST_F(Launcher, NeverCallsBackForAChildThatCannotBeStarted)
{
    EXPECT_EQ(outputOf("true", "/nonexistent/program"), std::nullopt);
    EXPECT_EQ(outputOf("true", "/etc"), std::nullopt);
}

TEST_F(Launcher, LeaksNeitherDescriptorsNorSignalMasks)
{
    const auto before = openDescriptors();
    for (int round = 0; round < 20; ++round) {
        outputOf("true");
        outputOf("true", "/nonexistent/program");
    }
    EXPECT_EQ(openDescriptors(), before);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigset_t saved;
    pthread_sigmask(SIG_BLOCK, &signals, &saved);
    EXPECT_EQ(outputOf("grep SigBlk /proc/self/status; ls -l /proc/$$/fd | grep -c -e eventfd -e memfd"),
        "SigBlk:\t0000000000000000\n1\n"); // its standard output alone
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

TEST_F(Launcher, KillsWhatRunsWhenItStops)
{
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        launcher.stop();
    });
    EXPECT_EQ(outputOf("exec sleep 100"), std::nullopt);
    stopper.join();
}

TEST_F(Launcher, StartsNothingOnceStopped)
{
    const auto trace = testing::TempDir() + "/orv-started";
    launcher.stop();
    EXPECT_EQ(outputOf("touch " + trace), std::nullopt);
    launcher.run("/bin/true");
    EXPECT_FALSE(std::filesystem::exists(trace));
}
