#include "linux/drivers/HostHardware.h"

#include "tests/support/FakeDriver.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace orv {

namespace {

using namespace std::string_literals;

TEST(HostHardwareTest, ModelAndProcessorAreNeverEmpty)
{
    const std::string dmi = "/sys/class/dmi/id/product_name";
    const std::string tree = "/proc/device-tree/model";
    const std::string processors = "/proc/cpuinfo";
    const std::string intel = "processor\t: 0\nmodel name\t: Intel(R) Core(TM) i7\nstepping\t: 1\n";
    const auto m2 = "Apple MacBook Air (13-inch, M2, 2022)\0"s;
    const struct {
        std::map<std::string, std::string> files;
        std::string model;
        std::string processor;
    } cases[]{
        {{{dmi, "MacBookPro11,4\n"}, {processors, intel}}, "MacBookPro11,4", "Intel(R) Core(TM) i7"},
        {{{tree, m2}, {processors, "processor\t: 0\n"}}, m2.c_str(), m2.c_str()},
        {{{tree, m2}, {dmi, "Unknown\n"}, {processors, intel}}, m2.c_str(), m2.c_str()},
        {{{tree, "Raspberry Pi 4\0"s}, {processors, "model name\t: ARMv7\n"}}, "Raspberry Pi 4", "ARMv7"},
        {{{dmi, " \n"}, {processors, "model name\t:\nvendor\t: x\n"}}, "Linux", "Linux"},
        {{}, "Linux", "Linux"},
    };
    for (const auto& [files, model, processor] : cases) {
        const std::string root = testing::TempDir() + "/host-hardware";
        for (const auto& [path, content] : files) {
            std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
            std::ofstream(root + path, std::ios::binary) << content;
        }
        FakeDriver fake;
        HostHardware hardware(root, fake);
        EXPECT_EQ(hardware.systemValue("hw.model"), model + '\0');
        EXPECT_EQ(hardware.systemValue("machdep.cpu.brand_string"), processor + '\0');
        EXPECT_EQ(hardware.systemValue("hw.perflevel0.logicalcpu"), std::nullopt);
        std::filesystem::remove_all(root);
    }
}

} // namespace

} // namespace orv
