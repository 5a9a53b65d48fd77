#include "linux/XdgBundle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace orv {

namespace {

class Environment {
public:
    Environment(const char* variable, const char* value)
        : name(variable)
    {
        if (const char* earlier = std::getenv(name))
            before = earlier;
        set(value);
    }
    ~Environment() { set(before ? before->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void set(const char* value) const { value ? setenv(name, value, 1) : unsetenv(name); }

    const char* name;
    std::optional<std::string> before;
};

TEST(XdgBundleTest, ContainerLiesWhereTheBaseDirectoryRulesPutData)
{
    struct Case {
        const char* data;
        const char* home;
        std::optional<std::string> container;
    };
    const Case cases[]{
        {"/data", "/home/one", "/data/group"},
        {nullptr, "/home/one", "/home/one/.local/share/group"},
        {"", "/home/one", "/home/one/.local/share/group"},
        {"data", "/home/one", "/home/one/.local/share/group"},
        {"", "", std::nullopt},
        {nullptr, nullptr, std::nullopt},
        {nullptr, "home", std::nullopt},
    };
    for (const auto& [data, home, container] : cases) {
        const Environment first("XDG_DATA_HOME", data);
        const Environment second("HOME", home);
        EXPECT_EQ(XdgBundle("bundle", "/usr").groupContainer("group"), container)
            << (data ? data : "none") << ' ' << (home ? home : "none");
    }
}

TEST(XdgBundleTest, ResourcesAreThoseOfTheExtensionInOrder)
{
    const std::filesystem::path prefix = testing::TempDir() + "/xdg-bundle";
    const auto folder = prefix / "lib/orv/Resources";
    std::filesystem::create_directories(folder);
    for (const auto* name : {"b.app", "a.app", "c.application", "d.txt", "app", "e.app.old"})
        std::ofstream(folder / name) << "";
    const XdgBundle bundle("bundle", prefix);
    EXPECT_EQ(bundle.resources("app"), (std::vector{(folder / "a.app").string(), (folder / "b.app").string()}));
    std::filesystem::remove_all(prefix);
    EXPECT_TRUE(bundle.resources("app").empty());
}

} // namespace

} // namespace orv
