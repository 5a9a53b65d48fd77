#include "simulated/SimulatedBundle.h"

#include "base/File.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace orv;

namespace {

std::optional<std::string> watchFile(const SimulatedBundle& bundle)
{
    const auto container = bundle.groupContainer("group");
    return container ? readFile(*container + watchFileInContainer, 100) : std::nullopt;
}

} // namespace

TEST(SimulatedBundle, HasTheFileThatItsCompanionWrote)
{
    SimulatedBundle bundle("bundle", "one");
    EXPECT_EQ(bundle.resources("app").size(), 1u);
    EXPECT_TRUE(bundle.resources("txt").empty());
    bundle.setWatchFile("two");
    EXPECT_EQ(bundle.groupContainer("group"), std::nullopt);
    bundle.runCompanion();
    EXPECT_EQ(watchFile(bundle), "two");
    bundle.setWatchFile("three");
    EXPECT_EQ(watchFile(bundle), "three");
    bundle.setWatchFile(std::nullopt);
    EXPECT_EQ(watchFile(bundle), std::nullopt);
    bundle.runCompanion();
    EXPECT_EQ(watchFile(bundle), std::nullopt);
    EXPECT_EQ(bundle.resources("app").size(), 1u);
    bundle.setWatchFile("four");
    EXPECT_EQ(watchFile(bundle), "four");
    const auto container = *bundle.groupContainer("group");
    bundle.removeContainer();
    bundle.runCompanion();
    EXPECT_EQ(bundle.groupContainer("group"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(container));
}

TEST(SimulatedBundle, GetsACompanionWithItsFirstContent)
{
    for (const bool isKeptWritten : {false, true}) {
        SimulatedBundle bundle("bundle", std::nullopt);
        if (isKeptWritten)
            bundle.keepWatchFileWritten();
        bundle.runCompanion();
        EXPECT_TRUE(bundle.resources("app").empty());
        EXPECT_EQ(bundle.groupContainer("group"), std::nullopt);
        bundle.setWatchFile("one");
        EXPECT_EQ(bundle.resources("app").size(), 1u);
        EXPECT_EQ(watchFile(bundle), isKeptWritten ? std::optional<std::string>("one") : std::nullopt);
        bundle.runCompanion();
        EXPECT_EQ(watchFile(bundle), "one");
    }
}
