#include "bench/support/DriverFiles.h"

#include "bench/support/CatalogueMac.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>

namespace orv {

namespace {

std::string written(const std::string& path, const std::string& text)
{
    if (auto* const file = std::fopen(path.c_str(), "w")) {
        std::fputs(text.c_str(), file);
        std::fclose(file);
    }
    return path;
}

// As the kernel lists a driver whose attributes are those of its device.
void addToClass(const std::string& root, const std::string& driver)
{
    using namespace std::filesystem;
    create_directories(driver + "hwmon/hwmon0");
    create_directories(root + "/sys/bus/platform");
    create_directories(root + "/sys/class/hwmon");
    create_symlink("../../../bus/platform", driver + "subsystem");
    create_symlink("../../../applesmc.768", driver + "hwmon/hwmon0/device");
    create_symlink("../../devices/platform/applesmc.768/hwmon/hwmon0", root + "/sys/class/hwmon/hwmon0");
}

} // namespace

DriverFiles::DriverFiles()
    : root("/tmp/orv-bench-host-" + std::to_string(getpid()))
{
    const auto driver = root + folder + '/';
    std::filesystem::create_directories(driver);
    written(driver + "name", "applesmc\n");
    addTemperatures(driver);
    addFans(driver);
    std::ranges::sort(sensors, {}, &Sensor::key);
    addToClass(root, driver);
}

DriverFiles::~DriverFiles()
{
    std::filesystem::remove_all(root);
}

void DriverFiles::addTemperatures(const std::string& driver)
{
    int number = 0;
    for (const auto& key : CatalogueMac{}.keys()) {
        if (!key.starts_with('T'))
            continue;
        const auto stem = driver + "temp" + std::to_string(++number);
        written(stem + "_label", key + '\n');
        sensors.push_back({key, {written(stem + "_input", "47500\n")}});
    }
}

void DriverFiles::addFans(const std::string& driver)
{
    for (std::size_t fan = 0; fan < CatalogueMac{}.fans; ++fan) {
        const auto stem = driver + "fan" + std::to_string(fan + 1);
        auto& sensor = sensors.emplace_back(Sensor{"F" + std::to_string(fan) + "Ac", {}});
        for (const char* ending : {"_input", "_min", "_max"})
            sensor.files.push_back(written(stem + ending, "1200\n"));
    }
}

} // namespace orv
